// What the built files are: their exports, imports, hardening and version resources.
#include <gmock/gmock.h>
#include <windows.h>

#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "importhook.h"
#include "platform/handles.h"
#include "scratchmachine.h"

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::UnorderedElementsAreArray;

/// A DLL or program of the project, mapped as Windows would run it, without running it.
class Module {
 public:
  explicit Module(const std::string& file)
      : m_path(test::ProgramFile(std::wstring(file.begin(), file.end()))),
        m_module(LoadLibraryExA(m_path.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES)) {
    EXPECT_TRUE(m_module) << m_path;
  }

  const IMAGE_OPTIONAL_HEADER& Header() const {
    const auto* const dos = At<IMAGE_DOS_HEADER>(0);
    return At<IMAGE_NT_HEADERS>(static_cast<DWORD>(dos->e_lfanew))->OptionalHeader;
  }

  /// In the order of the export table, which is that of the names.
  std::vector<std::string> Exports() const {
    const IMAGE_DATA_DIRECTORY& directory = Header().DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    std::vector<std::string> names;
    if (directory.VirtualAddress == 0) return names;
    const auto* const table = At<IMAGE_EXPORT_DIRECTORY>(directory.VirtualAddress);
    const auto* const nameOffsets = At<DWORD>(table->AddressOfNames);
    for (DWORD i = 0; i < table->NumberOfNames; ++i) names.emplace_back(At<char>(nameOffsets[i]));
    return names;
  }

  /// Names of the DLLs that it needs, in lower case.
  std::vector<std::string> ImportedModules() const {
    std::vector<std::string> names;
    const auto* dll = At<IMAGE_IMPORT_DESCRIPTOR>(Header().DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
    for (; dll->Name != 0; ++dll) {
      std::string name = At<char>(dll->Name);
      CharLowerA(name.data());
      names.push_back(name);
    }
    return names;
  }

  /// Names of the functions that it takes from `dll`, as the compiler decorates them.
  std::vector<std::string> Imports(const char* dll) const { return test::ImportedFunctions(m_module.get(), dll); }

  /// A text of the version resource; empty when there is none.
  std::string VersionText(const std::string& key) const {
    std::vector<char> resource(GetFileVersionInfoSizeA(m_path.c_str(), nullptr));
    if (resource.empty()) return std::string();
    GetFileVersionInfoA(m_path.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data());
    void* text = nullptr;
    UINT length = 0;
    VerQueryValueA(resource.data(), ("\\StringFileInfo\\040904b0\\" + key).c_str(), &text, &length);
    return length > 0 ? static_cast<const char*>(text) : std::string();
  }

 private:
  template <typename T>
  const T* At(DWORD offset) const {
    return reinterpret_cast<const T*>(reinterpret_cast<const char*>(m_module.get()) + offset);
  }

  std::string m_path;
  Orvane::ModuleHandle m_module;
};

[[maybe_unused]] std::vector<std::string> LinesOf(const std::string& path) {
  std::ifstream file(path);
  EXPECT_TRUE(file) << path;
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// The lists stand in the repository, so that a change of the interface is seen.
TEST(Modules, ExportTheirInterfaceAndNothingElse) {
#ifdef __MINGW32__
  for (const std::string name : {"driverinfo", "driverinventory", "logging", "pciinfo"}) {
    EXPECT_EQ(Module(name + ".dll").Exports(), LinesOf("expected/" + name + ".exports.txt")) << name;
  }
#else
  GTEST_SKIP() << "the lists hold names as GCC decorates them";
#endif
}

TEST(Modules, ShareTheCppRunTimeLibrary) {
  for (const char* const file : {"driverinfo.dll", "logging.dll", "driverlist.exe"}) {
    const auto modules = Module(file).ImportedModules();
    EXPECT_THAT(modules, Contains(AnyOf("libstdc++-6.dll", "msvcp140.dll", "msvcp140d.dll"))) << file;
    EXPECT_THAT(modules, Contains(AnyOf("libgcc_s_seh-1.dll", "vcruntime140.dll", "vcruntime140d.dll"))) << file;
  }
}

// Any module with these exports can stand in the place of the log.
TEST(Modules, NeedThreeMembersOfTheLog) {
#ifdef __MINGW32__
  for (const char* const file : {"driverinfo.dll", "pciinfo.dll"}) {
    EXPECT_THAT(Module(file).Imports("logging.dll"), UnorderedElementsAreArray(LinesOf("expected/log.imports.txt")))
        << file;
  }
#else
  GTEST_SKIP() << "the list holds names as GCC decorates them";
#endif
}

TEST(Modules, ExportTheDeviceInventoryByItsPlainName) {
  EXPECT_THAT(Module("pciinfo.dll").Exports(), ElementsAre("GetPciInfo"));
}

TEST(Modules, ForAnyLanguageNeedWindowsAlone) {
#ifdef __MINGW32__
  EXPECT_THAT(Module("driverinventory.dll").ImportedModules(),
              testing::Each(AnyOf("advapi32.dll", "bcrypt.dll", "crypt32.dll", "kernel32.dll", "msvcrt.dll",
                                  "setupapi.dll", "version.dll", "wintrust.dll")));
#else
  GTEST_SKIP() << "Visual C++'s run-time library is shared";
#endif
}

TEST(Modules, NeedNoWindowsLaterThan7) {
  for (const char* const file :
       {"driverinfo.dll", "driverinventory.dll", "logging.dll", "pciinfo.dll", "driverlist.exe"}) {
    EXPECT_THAT(Module(file).ImportedModules(), Not(Contains(testing::StartsWith("api-ms-win-core-")))) << file;
  }
}

TEST(Modules, AreHardened) {
  for (const char* const file :
       {"driverinfo.dll", "driverinventory.dll", "logging.dll", "pciinfo.dll", "driverlist.exe"}) {
    const Module module(file);
    const WORD characteristics = module.Header().DllCharacteristics;
    EXPECT_TRUE(characteristics & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE) << file;
    EXPECT_TRUE(characteristics & 0x0020) << file << ": high-entropy addresses";
    EXPECT_TRUE(characteristics & IMAGE_DLLCHARACTERISTICS_NX_COMPAT) << file;
    EXPECT_NE(module.Header().DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0u) << file << ": can be moved";
  }
}

TEST(Modules, SayWhatTheyAre) {
  for (const char* const file :
       {"driverinfo.dll", "driverinventory.dll", "logging.dll", "pciinfo.dll", "driverlist.exe"}) {
    const Module module(file);
    EXPECT_EQ(module.VersionText("OriginalFilename"), file);
    EXPECT_EQ(module.VersionText("FileVersion"), PROJECT_VERSION) << file;
    EXPECT_EQ(module.VersionText("ProductVersion"), PROJECT_VERSION) << file;
    EXPECT_NE(module.VersionText("FileDescription"), "") << file;
    EXPECT_EQ(module.VersionText("CompanyName"), "Orvane") << file;
  }
}

}  // namespace
