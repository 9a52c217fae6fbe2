#include <gmock/gmock.h>
#include <malloc.h>
#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <cstring>
#include <memory>

#include "importhook.h"
#include "locales.h"
#include "logcapture.h"
#include "packagefiles.h"
#include "records.h"
#include "scratchmachine.h"
#include "temporaryfiles.h"

#if defined(_MSC_VER)
// GetVersionExA is deprecated, but what the library asks.
#pragma warning(disable : 4996)
#endif

using namespace Orvane;
using test::Described;
using test::LogLine;
using test::ScratchFile;
using test::ThisProgram;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Lines = std::vector<std::string>;

Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

const Lines Version = {"[Version]", "Signature=\"$WINDOWS NT$\"", "Provider=%Maker%",
                       "DriverVer=06/21/2006,10.0.19041.1"};
const Lines Strings = {"[Strings]", "Maker=\"Example Networks\""};
const Lines Disks = {"[SourceDisksNames]", "1=\"Driver disk\""};

/// What the tests compare of a record: all of it is in the text.
std::string Record(const std::string& name, const std::string& description) {
  return "name=" + name + "; description=" + description +
         "; provider=Example Networks; file_version=10.0.19041.1; found_by_device=0";
}

LogLine Listed(const std::string& name) { return {4, "Get driver file: " + name}; }
LogLine Sys(const std::string& name) { return {4, "exist sys file: " + name}; }
const LogLine VersionRead{4, "Get driver version: 10.0.19041.1"};
const LogLine VersionFailed{4, "Get driver version failed"};
const LogLine ProviderFailed{4, "Get driver Provider failed"};

class InfPackage : public testing::Test {
 protected:
  std::vector<std::string> Read(const Lines& lines) {
    const ScratchFile inf(path, lines);
    return ReadPath(path);
  }

  std::vector<std::string> ReadPath(const std::string& infPath) {
    std::vector<DriverData> drivers;
    PackageFiles::ReadInfPackage(infPath, drivers);
    return Described(drivers);
  }

  /// The lines of the log, the first of which names the file.
  std::vector<LogLine> Log() {
    std::vector<LogLine> lines = log.Take();
    EXPECT_FALSE(lines.empty());
    EXPECT_EQ(lines.at(0), (LogLine{4, "Start to parse " + path}));
    lines.erase(lines.begin());
    return lines;
  }

  std::string path = test::TemporaryPath("package.inf");
  test::LogCapture log;
};

TEST_F(InfPackage, GivesARecordPerDriverFile) {
  EXPECT_THAT(Read(Version + Strings + Disks + Lines{"[SourceDisksFiles]", "net.sys=1", "PKG.INF=1,,5", "net.dll=1"}),
              ElementsAre(Record("net.sys", "Driver disk"), Record("PKG.INF", "Driver disk")));
  EXPECT_THAT(Log(), ElementsAre(VersionRead, Sys("net.sys"), Listed("net.sys"), Listed("PKG.INF")));
}

TEST_F(InfPackage, IgnoresTheCaseOfExtensionsAndSections) {
  EXPECT_THAT(Read({"[VERSION]", "signature=\"$Windows NT$\"", "PROVIDER=\"Example Networks\"",
                    "driverver = 06/21/2006,10.0.19041.1", "[sourcedisksnames]", "1=\"Driver disk\"",
                    "[SOURCEDISKSFILES]", "PKG.INF=1", "drv.SYS=1"}),
              ElementsAre(Record("PKG.INF", "Driver disk"), Record("drv.SYS", "Driver disk")));
  EXPECT_THAT(Log(), ElementsAre(VersionRead, Listed("PKG.INF"), Sys("drv.SYS"), Listed("drv.SYS")));
}

TEST_F(InfPackage, VisitsTheSectionsOfAllProcessorsInTheOrderOfTheirNames) {
  EXPECT_THAT(
      Read(Version + Strings +
           Lines{"[SourceDisksFiles.x86]", "x86.sys=1", "[SourceDisksFiles.ia64]", "ia64.sys=1",
                 "[SourceDisksFiles.amd64]", "amd64.sys=1", "[SourceDisksFiles]", "all.sys=1",
                 "[SourceDisksFiles.arm64]", "arm64.sys=1", "[SourceDisksNames]", "1=all", "[SourceDisksNames.x86]",
                 "1=x86", "[SourceDisksNames.amd64]", "1=amd64", "[SourceDisksNames.ia64]", "1=ia64"}),
      ElementsAre(Record("all.sys", "all"), Record("amd64.sys", "amd64"), Record("ia64.sys", "ia64"),
                  Record("x86.sys", "x86")));
}

TEST_F(InfPackage, GivesARecordPerListingOfAFile) {
  EXPECT_THAT(Read(Version + Strings + Disks +
                   Lines{"[SourceDisksFiles.amd64]", "e1d.sys=1", "[SourceDisksFiles.x86]", "e1d.sys=1",
                         "[SourceDisksNames.x86]", "1=\"x86 disk\"", "[SourceDisksNames.amd64]", "1=\"amd64 disk\""}),
              ElementsAre(Record("e1d.sys", "amd64 disk"), Record("e1d.sys", "x86 disk")));
}

TEST_F(InfPackage, DescribesAFileByTheWholeLineOfItsDisk) {
  EXPECT_THAT(
      Read(Version + Strings +
           Lines{"[SourceDisksNames]", "1 = %Maker% disk , cab.cab ,, \\x64", "[SourceDisksFiles]", "net.sys = 1"}),
      ElementsAre(Record("net.sys", "Example Networks disk,cab.cab,,\\x64")));
}

TEST_F(InfPackage, DescribesAFileByTheIdentifierOfADiskThatIsNotDescribed) {
  EXPECT_THAT(Read(Version + Strings + Disks + Lines{"[SourceDisksFiles]", "net.sys=2"}),
              ElementsAre(Record("net.sys", "2")));
  EXPECT_THAT(Read(Version + Strings + Disks + Lines{"[SourceDisksFiles.amd64]", "net.sys=1"}),
              ElementsAre(Record("net.sys", "1")))
      << "another section describes disk 1";
}

TEST_F(InfPackage, OfTwoDisksOfOneNameTakesTheFirst) {
  EXPECT_THAT(Read(Version + Strings + Disks + Lines{"1=\"Other disk\"", "[SourceDisksFiles]", "net.sys=1"}),
              ElementsAre(Record("net.sys", "Driver disk")));
}

/// The platform reads "name" and "name=" as a line with an empty field 1, so a line without one takes a stand-in.
TEST_F(InfPackage, DescribesAFileWithoutDiskByItsProvider) {
  HOOK(read, ThisProgram(), SetupGetStringFieldA,
       [&](INFCONTEXT* line, DWORD index, char* buffer, DWORD size, DWORD* required) -> BOOL {
         if (index == 1 && SetupGetFieldCount(line) == 1) {
           char text[100] = "";
           read.Real(line, 1, text, sizeof(text), nullptr);
           if (text == std::string("none")) return FALSE;
         }
         return read.Real(line, index, buffer, size, required);
       });
  EXPECT_THAT(
      Read(Version + Strings + Disks + Lines{"[SourceDisksFiles]", "a.sys=1", "b.sys=none", "c.sys=1"}),
      ElementsAre(Record("a.sys", "Driver disk"), Record("b.sys", "Example Networks"), Record("c.sys", "Driver disk")));
}

TEST_F(InfPackage, SkipsALineWithoutName) {
  HOOK(read, ThisProgram(), SetupGetStringFieldA,
       [&](INFCONTEXT* line, DWORD index, char* buffer, DWORD size, DWORD* required) -> BOOL {
         const BOOL result = read.Real(line, index, buffer, size, required);
         return result && !(index == 0 && buffer == std::string("b.sys"));
       });
  EXPECT_THAT(Read(Version + Strings + Disks + Lines{"[SourceDisksFiles]", "a.sys=1", "b.sys=1", "c.sys=1"}),
              ElementsAre(Record("a.sys", "Driver disk"), Record("c.sys", "Driver disk")));
  EXPECT_THAT(Log(), ElementsAre(VersionRead, Sys("a.sys"), Listed("a.sys"), Sys("c.sys"), Listed("c.sys")));
}

TEST_F(InfPackage, WithoutVersionGivesNothing) {
  const Lines files = Strings + Disks + Lines{"[SourceDisksFiles]", "net.sys=1"};
  EXPECT_THAT(Read(Lines{"[Version]", "Signature=\"$WINDOWS NT$\"", "Provider=%Maker%"} + files), IsEmpty());
  EXPECT_THAT(Log(), ElementsAre(VersionFailed));
  EXPECT_THAT(
      Read(Lines{"[Version]", "Signature=\"$WINDOWS NT$\"", "Provider=%Maker%", "DriverVer=06/21/2006"} + files),
      IsEmpty());
  EXPECT_THAT(Log(), ElementsAre(VersionFailed)) << "a date alone";
}

TEST_F(InfPackage, WithoutProviderGivesNothing) {
  const Lines files = Strings + Disks + Lines{"[SourceDisksFiles]", "net.sys=1"};
  EXPECT_THAT(Read(Lines{"[Version]", "Signature=\"$WINDOWS NT$\"", "DriverVer=06/21/2006,10.0.19041.1"} + files),
              IsEmpty());
  EXPECT_THAT(Log(), ElementsAre(VersionRead, ProviderFailed));
}

TEST_F(InfPackage, MayHaveEmptyTexts) {
  EXPECT_THAT(Read({"[Version]", "Signature=\"$WINDOWS NT$\"", "Provider=", "DriverVer=06/21/2006,",
                    "[SourceDisksFiles]", "net.sys="}),
              ElementsAre("name=net.sys; found_by_device=0"));
  EXPECT_THAT(Log(), ElementsAre(LogLine{4, "Get driver version: "}, Sys("net.sys"), Listed("net.sys")));
}

TEST_F(InfPackage, ThatCannotBeOpenedGivesNothing) {
  const Lines texts[] = {{"this is no INF"}, {}, {"[Version]", "DriverVer=06/21/2006,10.0.19041.1", "Provider=Maker"}};
  for (const Lines& lines : texts) {
    EXPECT_THAT(Read(lines), IsEmpty());
    EXPECT_THAT(Log(), ElementsAre(VersionFailed));
  }
  EXPECT_THAT(ReadPath(path), IsEmpty()) << "there is no such file";
  EXPECT_THAT(Log(), ElementsAre(VersionFailed));
  EXPECT_THAT(ReadPath(""), IsEmpty());
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{4, "Start to parse "}, VersionFailed));
}

TEST_F(InfPackage, AppendsToWhatIsThere) {
  const ScratchFile inf(path, Version + Strings + Disks + Lines{"[SourceDisksFiles]", "net.sys=1"});
  std::vector<DriverData> drivers(1);
  drivers[0].name = "net.sys";
  PackageFiles::ReadInfPackage(path, drivers);
  PackageFiles::ReadInfPackage(path, drivers);
  EXPECT_THAT(Described(drivers), ElementsAre("name=net.sys; found_by_device=0", Record("net.sys", "Driver disk"),
                                              Record("net.sys", "Driver disk")));
}

TEST_F(InfPackage, WithoutSysFileGivesOneRecordForItself) {
  const std::string self = path.substr(path.rfind('\\') + 1);
  EXPECT_THAT(Read(Version + Strings + Disks + Lines{"[SourceDisksFiles]", "readme.txt=1", "e1d.cat=1"}),
              ElementsAre(Record(self, "Example Networks")));
  EXPECT_THAT(Log(), ElementsAre(VersionRead, LogLine{4, "add origin inf file:" + self}));
}

TEST_F(InfPackage, WithInfFilesAloneGivesThemAndItself) {
  const std::string self = path.substr(path.rfind('\\') + 1);
  EXPECT_THAT(Read(Version + Strings + Disks + Lines{"[SourceDisksFiles]", "other.inf=1"}),
              ElementsAre(Record("other.inf", "Driver disk"), Record(self, "Example Networks")));
  EXPECT_THAT(Read(Version + Strings), ElementsAre(Record(self, "Example Networks"))) << "no section at all";
}

// --- The original name, which Wine takes to be the file's own.

class OriginalName : public InfPackage {
 protected:
  void SetUp() override { inf = std::make_unique<ScratchFile>(path, Version + Strings); }
  void TearDown() override { inf.reset(); }

  std::unique_ptr<ScratchFile> inf;
};

TEST_F(OriginalName, IsTheNameUnderWhichThePackageWasDelivered) {
  HOOK(query, ThisProgram(), SetupQueryInfOriginalFileInformationA,
       [](SP_INF_INFORMATION*, UINT, SP_ALTPLATFORM_INFO*, SP_ORIGINAL_FILE_INFO_A* original) {
         lstrcpyA(original->OriginalInfName, "netexample.inf");
         return TRUE;
       });
  EXPECT_THAT(ReadPath(path), ElementsAre(Record("netexample.inf", "Example Networks")));
  EXPECT_THAT(Log(), ElementsAre(VersionRead, LogLine{4, "add origin inf file:netexample.inf"}));
}

TEST_F(OriginalName, IsAskedForThisWindows) {
  SYSTEM_INFO system;
  GetSystemInfo(&system);
  OSVERSIONINFOEXA windows{};
  windows.dwOSVersionInfoSize = 156;
  GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&windows));
  std::vector<DWORD> asked;
  std::vector<DWORD> sizes;
  HOOK(information, ThisProgram(), SetupGetInfInformationA,
       [&](const void* spec, DWORD control, SP_INF_INFORMATION* buffer, DWORD size, DWORD* required) {
         EXPECT_EQ(static_cast<const char*>(spec), path);
         EXPECT_EQ(control, 2u);
         EXPECT_EQ(buffer == nullptr, sizes.empty());
         sizes.push_back(size);
         const BOOL result = information.Real(spec, control, buffer, size, required);
         if (buffer == nullptr) asked.push_back(*required);
         return result;
       });
  HOOK(query, ThisProgram(), SetupQueryInfOriginalFileInformationA,
       [&](SP_INF_INFORMATION*, UINT index, SP_ALTPLATFORM_INFO* platform, SP_ORIGINAL_FILE_INFO_A* original) {
         EXPECT_EQ(index, 0u);
         EXPECT_EQ(platform->cbSize, 28u);
         EXPECT_EQ(platform->Platform, windows.dwPlatformId);
         EXPECT_EQ(platform->ProcessorArchitecture, system.wProcessorArchitecture);
         EXPECT_EQ(platform->Flags, 1);
         EXPECT_EQ(platform->MajorVersion, windows.dwMajorVersion);
         EXPECT_EQ(platform->MinorVersion, windows.dwMajorVersion);
         EXPECT_EQ(platform->FirstValidatedMajorVersion, windows.dwMajorVersion);
         EXPECT_EQ(platform->FirstValidatedMinorVersion, windows.dwMajorVersion);
         EXPECT_EQ(original->cbSize, 524u);
         return FALSE;
       });
  EXPECT_THAT(ReadPath(path), IsEmpty());
  ASSERT_EQ(asked.size(), 1u);
  EXPECT_THAT(sizes, ElementsAre(0u, asked[0]));
}

TEST_F(OriginalName, ThatIsNotToldGivesNoRecordAndNoLine) {
  {
    HOOK(version, ThisProgram(), GetVersionExA, [](OSVERSIONINFOA* windows) {
      EXPECT_EQ(windows->dwOSVersionInfoSize, 156u);
      return FALSE;
    });
    EXPECT_THAT(ReadPath(path), IsEmpty());
    EXPECT_THAT(Log(), ElementsAre(VersionRead));
  }
  for (const int failing : {1, 2}) {
    int calls = 0;
    HOOK(information, ThisProgram(), SetupGetInfInformationA,
         [&](const void* spec, DWORD control, SP_INF_INFORMATION* buffer, DWORD size, DWORD* required) {
           return ++calls == failing ? FALSE : information.Real(spec, control, buffer, size, required);
         });
    EXPECT_THAT(ReadPath(path), IsEmpty());
    EXPECT_THAT(Log(), ElementsAre(VersionRead));
    EXPECT_EQ(calls, failing);
  }
  for (const BOOL answer : {FALSE, BOOL{2}}) {
    HOOK(query, ThisProgram(), SetupQueryInfOriginalFileInformationA,
         [&](SP_INF_INFORMATION*, UINT, SP_ALTPLATFORM_INFO*, SP_ORIGINAL_FILE_INFO_A* original) {
           lstrcpyA(original->OriginalInfName, "netexample.inf");
           return answer;
         });
    EXPECT_THAT(ReadPath(path), IsEmpty());
    EXPECT_THAT(Log(), ElementsAre(VersionRead));
  }
}

TEST_F(OriginalName, IsWrittenOnSuccessOnly) {
  std::string name = "before";
  EXPECT_TRUE(GetInfOriginalName(path, name));
  EXPECT_EQ(name, path.substr(path.rfind('\\') + 1));
  EXPECT_FALSE(GetInfOriginalName("C:\\no such file.inf", name));
  EXPECT_EQ(name, path.substr(path.rfind('\\') + 1));
}

TEST_F(OriginalName, EndsWithItsBuffer) {
  HOOK(query, ThisProgram(), SetupQueryInfOriginalFileInformationA,
       [](SP_INF_INFORMATION*, UINT, SP_ALTPLATFORM_INFO*, SP_ORIGINAL_FILE_INFO_A* original) {
         std::memset(original->OriginalInfName, 'n', sizeof(original->OriginalInfName));
         std::memset(original->OriginalCatalogName, 'c', sizeof(original->OriginalCatalogName));
         return TRUE;
       });
  std::string name;
  EXPECT_TRUE(GetInfOriginalName(path, name));
  EXPECT_EQ(name, std::string(MAX_PATH, 'n'));
}

// --- What is asked of the Setup API.

TEST_F(InfPackage, IsOpenedAsAnInfOfThisWindowsAndClosed) {
  int open = 0;
  HOOK(openInf, ThisProgram(), SetupOpenInfFileA,
       [&](const char* name, const char* infClass, DWORD style, UINT* errorLine) {
         EXPECT_EQ(name, path);
         EXPECT_EQ(infClass, nullptr);
         EXPECT_EQ(style, 2u);
         EXPECT_EQ(errorLine, nullptr);
         ++open;
         return openInf.Real(name, infClass, style, errorLine);
       });
  HOOK(close, ThisProgram(), SetupCloseInfFile, [&](HINF inf) {
    --open;
    close.Real(inf);
  });
  Read(Version + Strings + Disks + Lines{"[SourceDisksFiles]", "net.sys=1"});
  EXPECT_EQ(open, 0);
  Read({"[Version]", "Signature=\"$WINDOWS NT$\""});
  EXPECT_EQ(open, 0) << "also when there is nothing to read";
}

TEST_F(InfPackage, ThatCannotBeOpenedIsNotAskedAnything) {
  HOOK(find, ThisProgram(), SetupFindFirstLineA, [](auto...) {
    ADD_FAILURE() << "a failed handle was used";
    return FALSE;
  });
  EXPECT_THAT(ReadPath(path), IsEmpty());
}

TEST_F(InfPackage, ReadsEveryTextIntoOneBufferOf512Characters) {
  std::vector<char*> buffers;
  HOOK(field, ThisProgram(), SetupGetStringFieldA,
       [&](INFCONTEXT* line, DWORD index, char* buffer, DWORD size, DWORD* required) {
         EXPECT_EQ(size, 512u);
         buffers.push_back(buffer);
         return field.Real(line, index, buffer, size, required);
       });
  HOOK(text, ThisProgram(), SetupGetLineTextA,
       [&](INFCONTEXT* context, HINF inf, const char* section, const char* key, char* buffer, DWORD size,
           DWORD* required) {
         EXPECT_EQ(context, nullptr);
         EXPECT_STREQ(section, "SourceDisksNames");
         EXPECT_STREQ(key, "1");
         EXPECT_STREQ(buffer, "1") << "what the look-up leaves when it fails";
         EXPECT_EQ(size, 512u);
         buffers.push_back(buffer);
         return text.Real(context, inf, section, key, buffer, size, required);
       });
  Read(Version + Strings + Disks + Lines{"[SourceDisksFiles]", "net.sys=1"});
  ASSERT_EQ(buffers.size(), 5u);
  for (char* const buffer : buffers) EXPECT_EQ(buffer, buffers[0]);
}

TEST_F(InfPackage, TakesWhatAFailedDiskLookUpLeaves) {
  HOOK(text, ThisProgram(), SetupGetLineTextA,
       [](INFCONTEXT*, HINF, const char*, const char*, char* buffer, DWORD, DWORD*) {
         lstrcpyA(buffer, "half a li");
         return FALSE;
       });
  EXPECT_THAT(Read(Version + Strings + Disks + Lines{"[SourceDisksFiles]", "net.sys=1"}),
              ElementsAre(Record("net.sys", "half a li")));
}

TEST_F(InfPackage, EndsTextsWithTheBuffer) {
  HOOK(text, ThisProgram(), SetupGetLineTextA,
       [](INFCONTEXT*, HINF, const char*, const char*, char* buffer, DWORD size, DWORD*) {
         std::memset(buffer, 'd', size);
         return TRUE;
       });
  EXPECT_THAT(Read(Version + Strings + Disks + Lines{"[SourceDisksFiles]", "net.sys=1"}),
              ElementsAre(Record("net.sys", std::string(512, 'd'))));
}

TEST_F(InfPackage, NeedsEveryStepOfVersionAndProvider) {
  const Lines lines = Version + Strings + Disks + Lines{"[SourceDisksFiles]", "net.sys=1"};
  const std::vector<LogLine> logs[] = {{VersionFailed}, {VersionRead, ProviderFailed}};
  // The first two fields that are read are those of DriverVer and Provider.
  for (const int failing : {1, 2}) {
    int calls = 0;
    HOOK(field, ThisProgram(), SetupGetStringFieldA,
         [&](INFCONTEXT* line, DWORD index, char* buffer, DWORD size, DWORD* required) {
           return ++calls == failing ? FALSE : field.Real(line, index, buffer, size, required);
         });
    EXPECT_THAT(Read(lines), IsEmpty());
    EXPECT_EQ(Log(), logs[failing - 1]);
  }
  for (const int failing : {1, 2}) {
    int calls = 0;
    HOOK(count, ThisProgram(), SetupGetFieldCount, [&](INFCONTEXT* line) {
      return ++calls != failing ? count.Real(line) : failing == 1 ? 1u : 0u;
    });
    EXPECT_THAT(Read(lines), IsEmpty());
    EXPECT_EQ(Log(), logs[failing - 1]);
  }
}

TEST_F(InfPackage, TestsExtensionsWithTheGlobalLocale) {
  const Lines lines = Version + Strings + Disks + Lines{"[SourceDisksFiles]", "net.Qys=1", "net.sys=1"};
  EXPECT_EQ(Read(lines).size(), 1u);
  const test::HostLocale<test::OddLetters> locale;
  EXPECT_EQ(Read(lines).size(), 2u);
}

TEST(OriginalNameStructure, HasRoomForTheStructureHoweverLittleWindowsAsksFor) {
  std::size_t room = 0;
  HOOK(information, ThisProgram(), SetupGetInfInformationA,
       [&](const void*, DWORD, SP_INF_INFORMATION* inf, DWORD, DWORD* needed) -> BOOL {
         *needed = 1;
         if (inf != nullptr) room = _msize(inf);
         return TRUE;
       });
  HOOK(query, ThisProgram(), SetupQueryInfOriginalFileInformationA,
       [](SP_INF_INFORMATION*, UINT, SP_ALTPLATFORM_INFO*, SP_ORIGINAL_FILE_INFO_A*) -> BOOL { return FALSE; });
  std::string name;
  EXPECT_FALSE(GetInfOriginalName("x.inf", name));
  EXPECT_GE(room, sizeof(SP_INF_INFORMATION));
}

}  // namespace
