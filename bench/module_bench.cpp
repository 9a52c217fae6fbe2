// The size of driverinfo.dll, and the time to load it against a module that imports the same and does nothing.
#include <windows.h>

#include <stdexcept>
#include <string>

#include "figures.h"
#include "importhook.h"
#include "platform/handles.h"

namespace {

using Orvane::ModuleHandle;

constexpr char Library[] = "driverinfo.dll";

const IMAGE_SECTION_HEADER* Sections(HMODULE module, WORD& count) {
  const char* const base = reinterpret_cast<const char*>(module);
  const auto* const headers =
      reinterpret_cast<const IMAGE_NT_HEADERS*>(base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
  count = headers->FileHeader.NumberOfSections;
  return IMAGE_FIRST_SECTION(headers);
}

/// Bytes of code and data in the file; the rest of it is for debuggers.
double CodeAndDataBytes() {
  const ModuleHandle module(LoadLibraryA(Library));
  WORD count = 0;
  const IMAGE_SECTION_HEADER* const sections = Sections(module.get(), count);
  double bytes = 0;
  for (WORD i = 0; i < count; ++i) {
    if ((sections[i].Characteristics & IMAGE_SCN_MEM_DISCARDABLE) == 0) bytes += sections[i].SizeOfRawData;
  }
  return bytes;
}

/// Seconds to load a module, and what it imports, into a process that has none of it.
double LoadSeconds(const char* module) {
  if (test::Library() != nullptr) throw std::runtime_error("driverinfo.dll is loaded already");
  ModuleHandle loaded;
  const double seconds = bench::Seconds([&] { loaded.reset(LoadLibraryA(module)); });
  if (!loaded) throw std::runtime_error(std::string(module) + " cannot be loaded");
  return seconds;
}

void AddFigures() {
  bench::AddValue("driverinfo.dll, code and data", "KiB", &CodeAndDataBytes);
  bench::AddComparison({"driverinfo.dll, load with its modules over a module that only imports", "ms", 1.5, "empty",
                        [] { return LoadSeconds("emptymodule.dll"); }, "library", [] { return LoadSeconds(Library); }});
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
