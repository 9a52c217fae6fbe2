// The size of driverinfo.dll and the time to load it.
#include <windows.h>

#include <stdexcept>

#include "figures.h"

namespace {

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
  const HMODULE module = LoadLibraryA(Library);
  WORD count = 0;
  const IMAGE_SECTION_HEADER* const sections = Sections(module, count);
  double bytes = 0;
  for (WORD i = 0; i < count; ++i) {
    if ((sections[i].Characteristics & IMAGE_SCN_MEM_DISCARDABLE) == 0) bytes += sections[i].SizeOfRawData;
  }
  FreeLibrary(module);
  return bytes;
}

double FileBytes() {
  WIN32_FILE_ATTRIBUTE_DATA file{};
  char path[MAX_PATH];
  const HMODULE module = LoadLibraryA(Library);
  GetModuleFileNameA(module, path, MAX_PATH);
  FreeLibrary(module);
  GetFileAttributesExA(path, GetFileExInfoStandard, &file);
  return file.nFileSizeLow;
}

/// Seconds to load it, and what it imports, into a process that has none of it.
double LoadSeconds() {
  if (GetModuleHandleA(Library) != nullptr) throw std::runtime_error("driverinfo.dll is loaded already");
  HMODULE module = nullptr;
  const double seconds = bench::Seconds([&] { module = LoadLibraryA(Library); });
  FreeLibrary(module);
  return seconds;
}

void AddFigures() {
  bench::AddValue("driverinfo.dll, code and data", "KiB", &CodeAndDataBytes);
  bench::AddValue("driverinfo.dll, file with debug information", "KiB", &FileBytes);
  bench::AddValue("driverinfo.dll, time to load with its modules", "ms", &LoadSeconds);
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
