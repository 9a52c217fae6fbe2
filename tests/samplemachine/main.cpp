// samplemachine clear | replace-adapter | make FILE | start FILE | remove FILE: see samplemachine.h.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "samplemachine.h"

int wmain(int argc, wchar_t** argv) {
  CLI::App app("Turns a Wine prefix into a sample machine.", "samplemachine");
  app.allow_windows_style_options(false);
  app.require_subcommand(1);
  std::string file;
  std::vector<std::string> arguments;
  for (int i = argc - 1; i > 0; --i) arguments.push_back(std::filesystem::path(argv[i]).u8string());
  CLI::App* const clear = app.add_subcommand("clear", "Takes away what makes machines differ");
  CLI::App* const replace =
      app.add_subcommand("replace-adapter", "Puts a fixed display adapter in the place of Wine's");
  CLI::App* const make = app.add_subcommand("make", "Makes the machine of a description");
  CLI::App* const start = app.add_subcommand("start", "Starts the drivers of a description that run");
  CLI::App* const remove = app.add_subcommand("remove", "Takes away the machine of a description");
  for (CLI::App* const command : {make, start, remove})
    command->add_option("FILE", file, "The description")->required();
  try {
    app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  try {
    if (!test::IsPrivateMachine()) {
      throw std::runtime_error("this is no private Wine machine of this project, and no other is to be changed.");
    }
    if (*clear) {
      samplemachine::Clear();
      return 0;
    }
    if (*replace) {
      samplemachine::ReplaceDisplayAdapter();
      return 0;
    }
    const samplemachine::Description description = samplemachine::ReadDescription(file);
    if (*make) samplemachine::Make(description);
    if (*start) samplemachine::Start(description);
    if (*remove) samplemachine::Remove(description);
    return 0;
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "samplemachine: %s\n", problem.what());
    return 1;
  }
}
