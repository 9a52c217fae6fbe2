/// @file
/// How help is laid out.
#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>

namespace driverlist {

/// Columns of help that goes to no terminal.
constexpr std::size_t UsualHelpWidth = 79;

/// Columns of the terminal behind standard output, else UsualHelpWidth.
std::size_t HelpWidth();

/// Lines of up to `width` columns, except those of examples, which are to be copied. The commands are those of the
/// command table.
class HelpText : public CLI::Formatter {
 public:
  explicit HelpText(std::size_t width);
  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
  std::string make_expanded(const CLI::App* sub) const override;
  std::string make_description(const CLI::App* app) const override;
  std::string make_usage(const CLI::App* app, std::string name) const override;
  std::string make_option_opts(const CLI::Option* option) const override;
  std::string make_option_desc(const CLI::Option* option) const override;
  std::string make_footer(const CLI::App* app) const override;

 private:
  std::size_t m_width;
  /// Of the names of options, in front of their descriptions.
  std::size_t m_namesWidth;
};

}  // namespace driverlist
