/// @file
/// The layout of the help.
#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>

namespace driverlist {

/// Width of help that is not written to a terminal.
constexpr std::size_t UsualHelpWidth = 79;

/// Width of the terminal behind standard output, otherwise UsualHelpWidth.
std::size_t HelpWidth();

/// Lines of up to `width` columns, except examples, which users copy. The commands are those in the command table.
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
  /// Width of the column of option names.
  std::size_t m_namesWidth;
};

}  // namespace driverlist
