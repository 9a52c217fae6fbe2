/// @file
/// How help is laid out.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace driverlist {

/// Lines of up to 79 columns.
class HelpText : public CLI::Formatter {
 public:
  HelpText();
  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
  std::string make_description(const CLI::App* app) const override;
  std::string make_usage(const CLI::App* app, std::string name) const override;
  std::string make_option_opts(const CLI::Option* option) const override;
  std::string make_option_desc(const CLI::Option* option) const override;
};

}  // namespace driverlist
