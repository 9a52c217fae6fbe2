// samplemachine clear | make FILE | start FILE | remove FILE: see samplemachine.h.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "samplemachine.h"

int main(int argc, char** argv) {
  CLI::App app("Turns a Wine prefix into a sample machine.", "samplemachine");
  app.allow_windows_style_options(false);
  app.require_subcommand(1);
  std::string file;
  CLI::App* const clear = app.add_subcommand("clear", "Takes away what makes machines differ");
  CLI::App* const make = app.add_subcommand("make", "Makes the machine of a description");
  CLI::App* const start = app.add_subcommand("start", "Starts the drivers of a description that run");
  CLI::App* const remove = app.add_subcommand("remove", "Takes away the machine of a description");
  for (CLI::App* const command : {make, start, remove})
    command->add_option("FILE", file, "The description")->required();
  CLI11_PARSE(app, argc, argv);
  try {
    if (!test::IsWine()) throw std::runtime_error("this is not Wine, and a real machine is not to be changed.");
    if (*clear) {
      samplemachine::Clear();
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
