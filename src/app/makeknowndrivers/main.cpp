// Makes the compact list of known drivers: makeknowndrivers DATE FILE [DATE FILE]... prints it. DATE is the day of the
// file, for lists that do not say when they were made. scripts/make-known-drivers calls it.
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <exception>
#include <string>

#include "inventory/input.h"
#include "platform/encoding.h"
#include "trust/knowndrivers.h"
#include "trust/knownlists.h"

namespace {

int Fail(const std::string& sentence) {
  std::fprintf(stderr, "makeknowndrivers: %s\n", sentence.c_str());
  return 2;
}

void Add(const std::string& date, const std::string& path, trust::KnownDrivers& known) {
  inventory::InputFile file(path);
  trust::KnownContent content = trust::ReadKnownList(file);
  for (trust::KnownList& list : content.lists) {
    if (list.date.empty()) list.date = date;
  }
  known.Add(std::move(content.lists), std::move(content.entries));
}

int Run(int argc, wchar_t** argv) {
  if (argc < 3 || argc % 2 == 0) return Fail("call scripts/make-known-drivers FILE...");
  trust::KnownDrivers known;
  for (int i = 1; i < argc; i += 2) {
    const std::string path = Orvane::Utf8FromWide(argv[i + 1]);
    try {
      Add(Orvane::Utf8FromWide(argv[i]), path, known);
    } catch (const trust::InputProblem& problem) {
      return Fail(path + " " + problem.what() + ".");
    }
  }
  const std::string text = trust::CompactList(known);
  _setmode(_fileno(stdout), _O_BINARY);
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
  return isWritten ? 0 : Fail("the list cannot be written.");
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& problem) {
    return Fail(problem.what());
  }
}
