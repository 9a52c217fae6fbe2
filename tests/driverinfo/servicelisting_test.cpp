#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

#include "driverinfo.h"
#include "importhook.h"
#include "locales.h"
#include "logcapture.h"
#include "records.h"
#include "redirection.h"
#include "scratchmachine.h"

using Orvane::DriverData;
using Orvane::DriverInfo;
using test::Described;
using test::DriverService;
using test::LogLine;
using test::RegistryKey;
using test::RegistryValue;
using test::ScratchFile;
using test::SystemDirectory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

HMODULE Library() { return GetModuleHandleA("driverinfo.dll"); }

std::string DriverPath(const std::string& file) { return SystemDirectory() + "\\drivers\\" + file; }

std::string ServiceKey(const std::string& name) { return "System\\CurrentControlSet\\Services\\" + name; }

/// The error text that the platform gives now, wherever the test runs.
std::string ErrorText(DWORD code) {
  char text[512];
  return std::string(text, FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                                          0x400, text, sizeof(text), nullptr));
}

const LogLine Start{4, "Start to list registered driver files."};
const LogLine FromCache{4, "Get data from cache."};
const LogLine Enter{4, "Enter DriverInfoImp::GetDriveInfoFromSysFile()"};
const LogLine Exit{4, "Exiting DriverInfoImp::GetDriveInfoFromSysFile()"};
const LogLine NoIntel{1, "Failed to open SOFTWARE\\Intel\\InfInst\\ in HKEY_LOCAL_MACHINE"};
const LogLine NoAmd{1, "Failed to open SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ in HKEY_LOCAL_MACHINE"};
const LogLine NoPshed{
    1, "Failed to open SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver\\ in HKEY_LOCAL_MACHINE"};

LogLine Listed(const std::string& name, const std::string& version) {
  return {4, "DRIVERINFO.name=" + name + " DRIVERINFO.file_version=" + version};
}

LogLine NotFound(const std::string& path) { return {4, "can not find bpname= " + path}; }

class ServiceListing : public test::ScratchMachine {
 protected:
  std::vector<std::string> List() {
    std::vector<DriverData> drivers;
    EXPECT_EQ(info.list_drivers(drivers, Orvane::Registered), 0);
    return Described(drivers);
  }

  std::vector<std::string> NamesAndPaths() {
    std::vector<DriverData> drivers;
    EXPECT_EQ(info.list_drivers(drivers, Orvane::Registered), 0);
    std::vector<std::string> lines;
    for (const DriverData& driver : drivers) lines.push_back(driver.name + " " + driver.path);
    return lines;
  }

  DriverInfo info;
  test::LogCapture log;
};

TEST_F(ServiceListing, TellsEverythingAboutADriver) {
  const ScratchFile image(DriverPath("OiBus.sys"), L"images\\full.sys");
  const DriverService service("OiBus", "\\SystemRoot\\System32\\drivers\\OiBus.sys", SERVICE_SYSTEM_START);
  WIN32_FIND_DATAA file;
  FindClose(FindFirstFileA(DriverPath("OiBus.sys").c_str(), &file));
  EXPECT_THAT(List(),
              ElementsAre("name=OiBus.sys; description=Example bus driver; provider=Example Systems; path=" +
                          DriverPath("OiBus.sys") +
                          "; file_version=6.2.9200.16384; state=Stopped; start_type=System Start; "
                          "date=06/21/2006 13:05:09; size=" +
                          std::to_string(file.nFileSizeLow / 1024) + "; product_version=10.0.1.2; found_by_device=0"));
  EXPECT_THAT(log.Take(),
              ElementsAre(Start, Enter, Exit, Listed("OiBus.sys", "6.2.9200.16384"), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, OfABareMachineIsEmpty) {
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(), ElementsAre(Start, NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, ListsAnImageWithoutVersionResource) {
  const ScratchFile image(DriverPath("OiPlain.sys"), 2048);
  const DriverService service("OiPlain", "System32\\drivers\\OiPlain.sys");
  EXPECT_THAT(List(),
              ElementsAre("name=OiPlain.sys; path=" + DriverPath("OiPlain.sys") +
                          "; state=Stopped; start_type=Manual; date=06/21/2006 13:05:09; size=2; found_by_device=0"));
  EXPECT_THAT(log.Take(), ElementsAre(Start, Enter, Exit, Listed("OiPlain.sys", ""), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, KeepsTheOrderOfTheServiceControlManagerAndDuplicates) {
  const ScratchFile z(DriverPath("OiZ.sys"), 1);
  const ScratchFile a(DriverPath("OiA.sys"), 1);
  const DriverService serviceZ("OiZ", "System32\\drivers\\OiZ.sys");
  const DriverService serviceA("OiA", "System32\\drivers\\OiA.sys");
  const DriverService again("OiAgain", "System32\\drivers\\OiA.sys");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiZ.sys " + DriverPath("OiZ.sys"), "OiA.sys " + DriverPath("OiA.sys"),
                                           "OiA.sys " + DriverPath("OiA.sys")));
}

TEST_F(ServiceListing, NamesEveryStartType) {
  const ScratchFile image(DriverPath("Oi0.sys"), 1);
  std::vector<std::unique_ptr<DriverService>> services;
  for (const DWORD type :
       {SERVICE_BOOT_START, SERVICE_SYSTEM_START, SERVICE_AUTO_START, SERVICE_DEMAND_START, SERVICE_DISABLED}) {
    services.push_back(
        std::make_unique<DriverService>("Oi" + std::to_string(type), "System32\\drivers\\Oi0.sys", type));
  }
  std::vector<DriverData> drivers;
  info.list_drivers(drivers, Orvane::Registered);
  std::vector<std::string> types;
  for (const DriverData& driver : drivers) types.push_back(driver.start_type);
  EXPECT_THAT(types, ElementsAre("Boot Start", "System Start", "Automatic", "Manual", "Disabled"));
}

TEST_F(ServiceListing, ListsFileSystemDriversAndNoProgramServices) {
  const ScratchFile image(DriverPath("OiFs.sys"), 1);
  const DriverService fileSystem("OiFs", "System32\\drivers\\OiFs.sys", SERVICE_DEMAND_START,
                                 SERVICE_FILE_SYSTEM_DRIVER);
  const DriverService program("OiProgram", "System32\\drivers\\OiFs.sys", SERVICE_DEMAND_START,
                              SERVICE_WIN32_OWN_PROCESS);
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiFs.sys " + DriverPath("OiFs.sys")));
}

TEST_F(ServiceListing, ReadsThePathFromTheKeyThatCarriesTheNameOfTheImage) {
  const ScratchFile ours(DriverPath("OiOurs.sys"), 1);
  const ScratchFile other(DriverPath("OiOther.sys"), 1);
  // The service OiLeft is configured with OiRight's image, so OiRight's key tells where that is.
  const DriverService left("OiLeft", "\\SystemRoot\\System32\\drivers\\OiRight.sys");
  const DriverService right("OiRight", "\\SystemRoot\\System32\\drivers\\OiOther.sys");
  // And no key is called oiother, so OiRight's image is looked for below the drivers folder, in lower case.
  EXPECT_THAT(NamesAndPaths(),
              ElementsAre("OiOther.sys " + DriverPath("OiOther.sys"), "oiother.sys " + DriverPath("oiother.sys")));
}

TEST_F(ServiceListing, FallsBackToTheDriversFolderWhenNoKeyCarriesTheNameOfTheImage) {
  const ScratchFile image(DriverPath("oiimage.sys"), 1);
  const DriverService service("OiService", "\\SystemRoot\\Elsewhere\\OiImage.sys");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("oiimage.sys " + DriverPath("oiimage.sys")));
}

TEST_F(ServiceListing, FallsBackToTheDriversFolderWhenTheRegisteredPathIsWrong) {
  const ScratchFile image(DriverPath("oiwrong.sys"), 1);
  const DriverService service("OiWrong", "\\SystemRoot\\System32\\elsewhere\\OiWrong.sys");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("oiwrong.sys " + DriverPath("oiwrong.sys")));
}

TEST_F(ServiceListing, LooksForAServiceWithoutPathUnderItsOwnName) {
  const ScratchFile image(DriverPath("OiEmpty.sys"), 1);
  const DriverService service("OiEmpty", "");
  std::vector<std::string> opened;
  HOOK(open, Library(), RegOpenKeyExA, [&](HKEY root, const char* path, DWORD options, REGSAM access, HKEY* key) {
    opened.emplace_back(path);
    return open.Real(root, path, options, access, key);
  });
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiEmpty.sys " + DriverPath("OiEmpty.sys")));
  EXPECT_EQ(opened.at(0), ServiceKey("OiEmpty"));
}

TEST_F(ServiceListing, NamesThePathThatItTriedLast) {
  const DriverService empty("OiEmpty", "");
  const DriverService object("OiObject", "\\??\\C:\\Tools\\x.sys");
  const DriverService missing("OiMissing", "System32\\drivers\\OiMissing.sys");
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(),
              ElementsAre(Start, NotFound("\\SystemRoot\\system32\\drivers\\OiEmpty.sys"),
                          NotFound("\\SystemRoot\\system32\\drivers\\C:\\Tools\\x.sys"),
                          NotFound("\\SystemRoot\\system32\\drivers\\oimissing.sys"), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, ExpandsEnvironmentVariables) {
  const ScratchFile image(DriverPath("OiExpand.sys"), 1);
  const DriverService service("OiExpand", "%SystemRoot%\\system32\\drivers\\OiExpand.sys");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiExpand.sys " + DriverPath("OiExpand.sys")));
}

TEST_F(ServiceListing, ExpandsWhateverTypeTheValueHas) {
  const ScratchFile image(DriverPath("OiBytes.sys"), 1);
  const DriverService service("OiBytes", "elsewhere\\OiBytes.sys");
  const RegistryValue value(ServiceKey("OiBytes"), "ImagePath", REG_BINARY,
                            "%SystemRoot%\\system32\\drivers\\OiBytes.sys");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiBytes.sys " + DriverPath("OiBytes.sys")));
}

/// The paths under which the library looked for files.
struct Searches {
  std::vector<std::string> paths;
  HOOK(hook, Library(), FindFirstFileA, [this](const char* path, WIN32_FIND_DATAA* data) {
    paths.emplace_back(path);
    return hook.Real(path, data);
  });
};

TEST_F(ServiceListing, ReadsAPathThatFillsTheBufferToItsEnd) {
  const DriverService service("OiLong", "OiLong.sys");
  const std::string path(1024, 'p');
  const RegistryValue value(ServiceKey("OiLong"), "ImagePath", REG_BINARY, path);
  const Searches searches;
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_EQ(searches.paths.at(0), DriverPath(path));
}

TEST_F(ServiceListing, HasNoPathFromAValueThatDoesNotFit) {
  const DriverService service("OiLong", "OiLong.sys");
  const RegistryValue value(ServiceKey("OiLong"), "ImagePath", REG_BINARY, std::string(1025, 'p'));
  const Searches searches;
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_EQ(searches.paths.at(0), DriverPath(""));
}

TEST_F(ServiceListing, ReadsAnExpansionThatFillsTheBufferToItsEnd) {
  const DriverService service("OiLong", "%OI%");
  HOOK(expand, Library(), ExpandEnvironmentStringsA, [](const char* source, char* target, DWORD size) -> DWORD {
    EXPECT_STREQ(source, "%OI%");
    EXPECT_EQ(size, 1024u);
    EXPECT_TRUE(std::all_of(target, target + size, [](char c) { return c == '\0'; }));
    std::memset(target, 'e', size);
    return 2000;
  });
  const Searches searches;
  // The configured path has no key of its own name.
  const RegistryValue value(ServiceKey("%oi%"), "ImagePath", REG_SZ, "%OI%");
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_EQ(searches.paths.at(0), DriverPath(std::string(1024, 'e')));
}

TEST_F(ServiceListing, CutsTheNameAtItsFirstDotAndTheKeyAtTheLast) {
  const ScratchFile dots(DriverPath("OiA.b.sys"), 1);
  const ScratchFile upper(DriverPath("OiUpper.SYS"), 1);
  const ScratchFile none(DriverPath("OiNone"), 1);
  const DriverService serviceDots("oia.b", "System32\\drivers\\OiA.b.sys");
  const DriverService serviceUpper("OiUpper", "System32\\drivers\\OiUpper.SYS");
  const DriverService serviceNone("OiNone", "System32\\drivers\\OiNone");
  EXPECT_THAT(NamesAndPaths(),
              ElementsAre("OiA.sys " + DriverPath("OiA.b.sys"), "OiUpper.sys " + DriverPath("OiUpper.SYS"),
                          "OiNone " + DriverPath("OiNone")));
}

TEST_F(ServiceListing, RoundsSizesDownToKiB) {
  const ScratchFile empty(DriverPath("Oi0.sys"), 0);
  const ScratchFile small(DriverPath("Oi1023.sys"), 1023);
  const ScratchFile one(DriverPath("Oi1024.sys"), 1024);
  const ScratchFile large(DriverPath("OiLarge.sys"), 5'000'000);
  const DriverService service0("Oi0", "Oi0.sys");
  const DriverService service1("Oi1023", "Oi1023.sys");
  const DriverService service2("Oi1024", "Oi1024.sys");
  const DriverService service3("OiLarge", "OiLarge.sys");
  std::vector<DriverData> drivers;
  info.list_drivers(drivers, Orvane::Registered);
  std::vector<std::string> sizes;
  for (const DriverData& driver : drivers) sizes.push_back(driver.size);
  EXPECT_THAT(sizes, ElementsAre("0", "0", "1", "4882"));
}

/// Answers every file search with these find data, for "Oi.sys" in the drivers folder.
TEST_F(ServiceListing, JoinsBothWordsOfALargeSize) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  HOOK(find, Library(), FindFirstFileA, [&](const char* path, WIN32_FIND_DATAA* data) {
    const HANDLE found = find.Real(path, data);
    data->nFileSizeHigh = 0xFFFFFFFF;
    data->nFileSizeLow = 0xFFFFFFFF;
    return found;
  });
  std::vector<DriverData> drivers;
  info.list_drivers(drivers, Orvane::Registered);
  EXPECT_EQ(drivers.at(0).size, "18014398509481983");
}

TEST_F(ServiceListing, HasNoDateForATimeBeforeTheEpoch) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  HOOK(find, Library(), FindFirstFileA, [&](const char* path, WIN32_FIND_DATAA* data) {
    const HANDLE found = find.Real(path, data);
    data->ftCreationTime = FILETIME{};
    return found;
  });
  std::vector<DriverData> drivers;
  info.list_drivers(drivers, Orvane::Registered);
  EXPECT_EQ(drivers.at(0).date, "");
  EXPECT_THAT(log.Take(), ElementsAre(Start, LogLine{4, "Invalid datetime encountered..."}, Enter, Exit,
                                      Listed("Oi.sys", ""), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, WritesNumbersWithoutGroupingDigits) {
  const ScratchFile image(DriverPath("Oi.sys"), 5'000'000);
  const ScratchFile full(DriverPath("OiFull.sys"), L"images\\full.sys");
  const DriverService service("Oi", "Oi.sys");
  const DriverService serviceFull("OiFull", "OiFull.sys");
  const test::HostLocale<test::GroupedDigits> locale;
  std::vector<DriverData> drivers;
  info.list_drivers(drivers, Orvane::Registered);
  EXPECT_EQ(drivers.at(0).size, "4882");
  EXPECT_EQ(drivers.at(1).file_version, "6.2.9200.16384");
  EXPECT_EQ(drivers.at(1).date, "06/21/2006 13:05:09");
}

TEST_F(ServiceListing, LowersImageNamesWithTheGlobalLocale) {
  const DriverService service("OiService", "OiQ.sys");
  const test::HostLocale<test::OddLetters> locale;
  List();
  EXPECT_EQ(log.Take().at(1), NotFound("\\SystemRoot\\system32\\drivers\\oix.sys"));
}

// --- The chipset packages, the cache, the caller's vector.

TEST_F(ServiceListing, EndsWithTheChipsetPackages) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  const RegistryValue intel("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1");
  const RegistryValue amd("SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers", "ProductVersion", REG_SZ, "6.05");
  const RegistryValue pshed("SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver", "ProductVersion", REG_SZ,
                            "1.0");
  EXPECT_THAT(NamesAndPaths(),
              ElementsAre("Oi.sys " + DriverPath("Oi.sys"), "intel_chipset ", "amd_chipset ", "amd_ppd "));
  EXPECT_THAT(log.Take(),
              ElementsAre(Start, Enter, Exit, Listed("Oi.sys", ""), LogLine{4, "success to get amd chipset."},
                          LogLine{4, "success to get AMD EPYC SP3 PSHED Plug-in Driver."}));
}

TEST_F(ServiceListing, AnswersFromItsCacheWithoutTheChipsetPackages) {
  const RegistryValue intel("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1");
  const ScratchFile a(DriverPath("OiA.sys"), 1);
  const ScratchFile b(DriverPath("OiB.sys"), L"images\\full.sys");
  std::vector<std::string> first;
  {
    const DriverService serviceB("OiB", "OiB.sys");
    const DriverService serviceA("OiA", "OiA.sys");
    first = List();
  }
  EXPECT_EQ(first.size(), 3u);
  log.Take();
  HOOK(open, Library(), OpenSCManagerA, [](const char*, const char*, DWORD) -> SC_HANDLE {
    ADD_FAILURE() << "asked the service control manager again";
    return nullptr;
  });
  const std::vector<std::string> second = List();
  EXPECT_EQ(second, std::vector<std::string>(first.begin(), first.begin() + 2));
  EXPECT_THAT(log.Take(), ElementsAre(Start, FromCache));
  DriverInfo other;
  std::vector<DriverData> drivers;
  other.list_drivers(drivers, Orvane::Registered);
  EXPECT_EQ(Described(drivers), second) << "the cache is the process's, not the object's";
}

TEST_F(ServiceListing, AppendsToWhatTheCallerHas) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  std::vector<DriverData> drivers(2);
  drivers[0].name = "Oi.sys";
  drivers[1].name = "AMDI-0030-0000-0000_nodriver#";
  for (int call = 1; call <= 2; ++call) {
    info.list_drivers(drivers, Orvane::Registered);
    ASSERT_EQ(drivers.size(), 2u + static_cast<std::size_t>(call));
    EXPECT_EQ(Described(drivers[0]), "name=Oi.sys; found_by_device=0");
    EXPECT_EQ(Described(drivers[1]), "name=AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000; file_version=N/A; found_by_device=0")
        << "the AMD components of the caller are renamed too";
    EXPECT_EQ(drivers.back().path, DriverPath("Oi.sys"));
  }
}

TEST_F(ServiceListing, ListsAfreshWhileItFindsNoService) {
  const RegistryValue intel("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("intel_chipset "));
  EXPECT_THAT(NamesAndPaths(), ElementsAre("intel_chipset "));
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("Oi.sys " + DriverPath("Oi.sys"), "intel_chipset "));
}

// --- What fails.

TEST_F(ServiceListing, SkipsAServiceThatCannotBeOpened) {
  const ScratchFile image(DriverPath("OiGood.sys"), 1);
  const DriverService bad("OiBad", "OiGood.sys");
  const DriverService good("OiGood", "OiGood.sys");
  HOOK(open, Library(), OpenServiceA, [&](SC_HANDLE manager, const char* name, DWORD access) -> SC_HANDLE {
    if (name != std::string("OiBad")) return open.Real(manager, name, access);
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
  });
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiGood.sys " + DriverPath("OiGood.sys")));
  EXPECT_THAT(log.Take(), ElementsAre(Start, LogLine{2, ErrorText(ERROR_ACCESS_DENIED)}, Enter, Exit,
                                      Listed("OiGood.sys", ""), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, SkipsAServiceThatVanishesMeanwhile) {
  auto service = std::make_unique<DriverService>("OiGone", "OiGone.sys");
  HOOK(open, Library(), OpenServiceA, [&](SC_HANDLE manager, const char* name, DWORD access) {
    service.reset();
    return open.Real(manager, name, access);
  });
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(),
              ElementsAre(Start, LogLine{2, ErrorText(ERROR_SERVICE_DOES_NOT_EXIST)}, NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, SkipsAServiceWhoseConfigurationDoesNotFit) {
  const ScratchFile image(DriverPath("OiGood.sys"), 1);
  const DriverService large("OiLarge", std::string(5000, 'p'));
  const DriverService good("OiGood", "OiGood.sys");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiGood.sys " + DriverPath("OiGood.sys")));
  EXPECT_THAT(log.Take(), ElementsAre(Start, LogLine{2, ErrorText(ERROR_INSUFFICIENT_BUFFER)}, Enter, Exit,
                                      Listed("OiGood.sys", ""), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, TakesTheErrorTextBeforeALoggerChangesTheLastError) {
  const DriverService service("OiBad", "OiBad.sys");
  HOOK(open, Library(), OpenServiceA, [](SC_HANDLE, const char*, DWORD) -> SC_HANDLE {
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
  });
  Orvane::LogToFunction([](int, const char*, int, const std::string&) { SetLastError(ERROR_FILE_NOT_FOUND); });
  DWORD asked = 0;
  HOOK(format, Library(), FormatMessageA,
       [&](DWORD flags, const void* source, DWORD code, DWORD language, char* buffer, DWORD size, va_list* arguments) {
         asked = code;
         return format.Real(flags, source, code, language, buffer, size, arguments);
       });
  List();
  EXPECT_EQ(asked, DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(ServiceListing, LogsAnEmptyLineForAnErrorWithoutText) {
  const DriverService service("OiBad", "OiBad.sys");
  HOOK(open, Library(), OpenServiceA, [](SC_HANDLE, const char*, DWORD) -> SC_HANDLE { return nullptr; });
  HOOK(format, Library(), FormatMessageA, [](auto...) { return DWORD{0}; });
  List();
  EXPECT_THAT(log.Take(), ElementsAre(Start, LogLine{2, ""}, NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, WithoutServiceControlManagerHoldsTheChipsetPackagesOnly) {
  const DriverService service("Oi", "Oi.sys");
  const RegistryValue intel("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1");
  HOOK(open, Library(), OpenSCManagerA, [](const char*, const char*, DWORD) -> SC_HANDLE { return nullptr; });
  EXPECT_THAT(NamesAndPaths(), ElementsAre("intel_chipset "));
  EXPECT_THAT(log.Take(), ElementsAre(Start, NoAmd, NoPshed));
}

using Entries = ENUM_SERVICE_STATUSA;

TEST_F(ServiceListing, WithoutEnumerationHoldsTheChipsetPackagesOnly) {
  const DriverService service("Oi", "Oi.sys");
  HOOK(enumerate, Library(), EnumServicesStatusA,
       [](SC_HANDLE, DWORD, DWORD, Entries*, DWORD, DWORD* needed, DWORD* returned, DWORD*) -> BOOL {
         *needed = 100000;
         *returned = 7;
         SetLastError(ERROR_ACCESS_DENIED);
         return FALSE;
       });
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(), ElementsAre(Start, NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, TakesWhatItGotWhenADriverIsRegisteredBetweenTheCalls) {
  const ScratchFile image(DriverPath("OiA.sys"), 1);
  const DriverService first("OiA", "OiA.sys");
  std::unique_ptr<DriverService> second;
  HOOK(enumerate, Library(), EnumServicesStatusA,
       [&](SC_HANDLE manager, DWORD type, DWORD state, Entries* entries, DWORD size, DWORD* needed, DWORD* returned,
           DWORD* resume) -> BOOL {
         const BOOL result = enumerate.Real(manager, type, state, entries, size, needed, returned, resume);
         if (entries == nullptr) return result;
         *needed = 40;
         SetLastError(ERROR_MORE_DATA);
         return FALSE;
       });
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiA.sys " + DriverPath("OiA.sys")));
}

TEST_F(ServiceListing, ReadsNoMoreEntriesThanFitTheBuffer) {
  const ScratchFile image(DriverPath("OiA.sys"), 1);
  const DriverService service("OiA", "OiA.sys");
  HOOK(enumerate, Library(), EnumServicesStatusA,
       [&](SC_HANDLE manager, DWORD type, DWORD state, Entries* entries, DWORD size, DWORD* needed, DWORD* returned,
           DWORD* resume) {
         const BOOL result = enumerate.Real(manager, type, state, entries, size, needed, returned, resume);
         if (entries != nullptr) *returned = 0xFFFFFFFF;
         return result;
       });
  // One entry, and a name behind it that no second entry fits into.
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiA.sys " + DriverPath("OiA.sys")));
}

TEST_F(ServiceListing, HasNoNameForAStateOrStartTypeThatIsNone) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  HOOK(enumerate, Library(), EnumServicesStatusA,
       [&](SC_HANDLE manager, DWORD type, DWORD state, Entries* entries, DWORD size, DWORD* needed, DWORD* returned,
           DWORD* resume) {
         const BOOL result = enumerate.Real(manager, type, state, entries, size, needed, returned, resume);
         if (entries != nullptr) entries[0].ServiceStatus.dwCurrentState = 8;
         return result;
       });
  HOOK(query, Library(), QueryServiceConfigA,
       [&](SC_HANDLE handle, QUERY_SERVICE_CONFIGA* config, DWORD size, DWORD* needed) {
         const BOOL result = query.Real(handle, config, size, needed);
         config->dwStartType = 0xFFFFFFFF;
         return result;
       });
  EXPECT_THAT(List(), ElementsAre("name=Oi.sys; path=" + DriverPath("Oi.sys") +
                                  "; date=06/21/2006 13:05:09; size=0; found_by_device=0"));
}

TEST_F(ServiceListing, TakesTheStateOfTheEnumeration) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  HOOK(enumerate, Library(), EnumServicesStatusA,
       [&](SC_HANDLE manager, DWORD type, DWORD state, Entries* entries, DWORD size, DWORD* needed, DWORD* returned,
           DWORD* resume) {
         const BOOL result = enumerate.Real(manager, type, state, entries, size, needed, returned, resume);
         if (entries != nullptr) entries[0].ServiceStatus.dwCurrentState = SERVICE_RUNNING;
         return result;
       });
  std::vector<DriverData> drivers;
  info.list_drivers(drivers, Orvane::Registered);
  EXPECT_EQ(drivers.at(0).state, "Running");
}

TEST_F(ServiceListing, BoundsAConfiguredPathByItsBuffer) {
  const DriverService service("Oi", "Oi.sys");
  HOOK(query, Library(), QueryServiceConfigA,
       [&](SC_HANDLE handle, QUERY_SERVICE_CONFIGA* config, DWORD size, DWORD* needed) {
         const BOOL result = query.Real(handle, config, size, needed);
         char* const end = reinterpret_cast<char*>(config) + size;
         config->lpBinaryPathName = end - 5;
         std::memcpy(end - 5, "x.sys", 5);
         return result;
       });
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(),
              ElementsAre(Start, NotFound("\\SystemRoot\\system32\\drivers\\x.sys"), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, TakesAMissingConfiguredPathForAnEmptyOne) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  HOOK(query, Library(), QueryServiceConfigA,
       [&](SC_HANDLE handle, QUERY_SERVICE_CONFIGA* config, DWORD size, DWORD* needed) {
         const BOOL result = query.Real(handle, config, size, needed);
         config->lpBinaryPathName = nullptr;
         return result;
       });
  EXPECT_THAT(NamesAndPaths(), ElementsAre("Oi.sys " + DriverPath("Oi.sys")));
}

// --- The second reading of a version resource.

/// Reads another image while redirection is switched off.
struct OtherImage {
  OtherImage(const test::Redirection& switchable, std::string image)
      : redirection(switchable), other(std::move(image)) {}

  const char* Seen(const char* path) const { return redirection.off ? other.c_str() : path; }

  const test::Redirection& redirection;
  std::string other;
  HOOK(size, Library(), GetFileVersionInfoSizeA,
       [this](const char* path, DWORD* handle) { return size.Real(Seen(path), handle); });
  HOOK(read, Library(), GetFileVersionInfoA, [this](const char* path, DWORD handle, DWORD bytes, void* buffer) {
    return read.Real(Seen(path), handle, bytes, buffer);
  });
};

std::string Image(const std::wstring& name) { return test::ProgramFile(L"images\\" + name); }

TEST_F(ServiceListing, TakesWhatIsMissingFromASecondReadingWithoutRedirection) {
  const ScratchFile image(DriverPath("Oi.sys"), 2048);
  const DriverService service("Oi", "Oi.sys");
  test::Redirection redirection(Library(), TRUE);
  const OtherImage other(redirection, Image(L"full.sys"));
  EXPECT_THAT(List(), ElementsAre("name=Oi.sys; description=Example bus driver; provider=Example Systems; path=" +
                                  DriverPath("Oi.sys") +
                                  "; file_version=6.2.9200.16384; state=Stopped; start_type=Manual; "
                                  "date=06/21/2006 13:05:09; size=2; product_version=10.0.1.2; found_by_device=0"));
  EXPECT_THAT(log.Take(), ElementsAre(Start, Enter, Exit, Enter, Exit, Listed("Oi.sys", "6.2.9200.16384"), NoIntel,
                                      NoAmd, NoPshed));
  EXPECT_THAT(redirection.calls, ElementsAre("load kernel32.dll 8", "look up Wow64DisableWow64FsRedirection", "disable",
                                             "look up Wow64RevertWow64FsRedirection", "revert null", "free"));
}

TEST_F(ServiceListing, KeepsWhatTheFirstReadingFound) {
  const ScratchFile image(DriverPath("Oi.sys"), L"images\\nocompany.sys");
  const DriverService service("Oi", "Oi.sys");
  test::Redirection redirection(Library(), TRUE);
  const OtherImage other(redirection, Image(L"full.sys"));
  std::vector<DriverData> drivers;
  info.list_drivers(drivers, Orvane::Registered);
  const DriverData& driver = drivers.at(0);
  EXPECT_EQ(driver.description, "Driver of no one");
  EXPECT_EQ(driver.provider, "Example Systems");
  EXPECT_EQ(driver.file_version, "10.0.0.10");
  EXPECT_EQ(driver.product_version, "10.0.100.0");
}

TEST_F(ServiceListing, ReadsNoSecondTimeWhenNothingIsMissing) {
  const ScratchFile image(DriverPath("Oi.sys"), L"images\\full.sys");
  const DriverService service("Oi", "Oi.sys");
  test::Redirection redirection(Library(), TRUE);
  List();
  EXPECT_THAT(redirection.calls, IsEmpty());
}

TEST_F(ServiceListing, ReadsNoSecondTimeUnlessRedirectionIsOffForCertain) {
  const ScratchFile image(DriverPath("Oi.sys"), L"images\\nocompany.sys");
  const DriverService service("Oi", "Oi.sys");
  test::Redirection redirection(Library(), 2);
  List();
  EXPECT_THAT(log.Take(), ElementsAre(Start, Enter, Exit, Listed("Oi.sys", "10.0.0.10"), NoIntel, NoAmd, NoPshed));
  EXPECT_THAT(redirection.calls, ElementsAre("load kernel32.dll 8", "look up Wow64DisableWow64FsRedirection", "disable",
                                             "look up Wow64RevertWow64FsRedirection", "revert null", "free"));
}

// --- What the library asks of Windows, in which order.

TEST_F(ServiceListing, AsksInOrderAndClosesEverythingButTheRegistryKeys) {
  const ScratchFile image(DriverPath("Oi.sys"), L"images\\full.sys");
  const DriverService service("Oi", "Oi.sys");
  const RegistryKey amd("SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers");
  std::vector<std::string> calls;
  std::vector<SC_HANDLE> openServices;
  HOOK(openManager, Library(), OpenSCManagerA, [&](const char* machine, const char* database, DWORD access) {
    EXPECT_EQ(machine, nullptr);
    EXPECT_EQ(database, nullptr);
    calls.push_back("open manager " + std::to_string(access));
    openServices.push_back(openManager.Real(machine, database, access));
    return openServices.back();
  });
  DWORD needed = 0;
  HOOK(enumerate, Library(), EnumServicesStatusA,
       [&](SC_HANDLE manager, DWORD type, DWORD state, Entries* entries, DWORD size, DWORD* bytes, DWORD* count,
           DWORD* resume) {
         EXPECT_EQ(size, needed);
         EXPECT_EQ(*resume, 0u);
         calls.push_back("enumerate " + std::to_string(type) + " " + std::to_string(state) +
                         (entries == nullptr ? " size" : " entries"));
         const BOOL result = enumerate.Real(manager, type, state, entries, size, bytes, count, resume);
         needed = *bytes;
         return result;
       });
  HOOK(openService, Library(), OpenServiceA, [&](SC_HANDLE manager, const char* name, DWORD access) {
    calls.push_back("open service " + std::string(name) + " " + std::to_string(access));
    openServices.push_back(openService.Real(manager, name, access));
    return openServices.back();
  });
  HOOK(query, Library(), QueryServiceConfigA,
       [&](SC_HANDLE handle, QUERY_SERVICE_CONFIGA* config, DWORD size, DWORD* bytes) {
         calls.push_back("query configuration " + std::to_string(size));
         return query.Real(handle, config, size, bytes);
       });
  HOOK(closeService, Library(), CloseServiceHandle, [&](SC_HANDLE handle) {
    EXPECT_EQ(openServices.back(), handle);
    openServices.pop_back();
    calls.push_back("close service handle");
    return closeService.Real(handle);
  });
  std::vector<HKEY> keys;
  HOOK(openKey, Library(), RegOpenKeyExA, [&](HKEY root, const char* path, DWORD options, REGSAM access, HKEY* key) {
    EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
    EXPECT_EQ(options, 0u);
    calls.push_back("open key " + std::string(path) + " " + std::to_string(access));
    const LSTATUS status = openKey.Real(root, path, options, access, key);
    if (status == ERROR_SUCCESS) keys.push_back(*key);
    return status;
  });
  HOOK(
      queryKey, Library(), RegQueryValueExA,
      [&](HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size) {
        calls.push_back("query value " + std::string(name) + " " + std::to_string(*type) + " " + std::to_string(*size));
        return queryKey.Real(key, name, reserved, type, data, size);
      });
  HOOK(find, Library(), FindFirstFileA, [&](const char* path, WIN32_FIND_DATAA* data) {
    calls.push_back("find " + std::string(path));
    return find.Real(path, data);
  });
  HOOK(closeFind, Library(), FindClose, [&](HANDLE handle) {
    calls.push_back("close find handle");
    return closeFind.Real(handle);
  });
  HOOK(read, Library(), GetFileVersionInfoA, [&](const char* path, DWORD handle, DWORD bytes, void* buffer) {
    calls.push_back("read versions of " + std::string(path));
    return read.Real(path, handle, bytes, buffer);
  });
  List();
  EXPECT_THAT(openServices, IsEmpty());
  EXPECT_THAT(calls, ElementsAre("open manager 4", "enumerate 11 3 size", "enumerate 11 3 entries", "open service Oi 1",
                                 "query configuration 4096", "open key System\\CurrentControlSet\\Services\\oi 1",
                                 "query value ImagePath 2 1024", "find " + DriverPath("Oi.sys"),
                                 "read versions of " + DriverPath("Oi.sys"), "close find handle",
                                 "close service handle", "open key SOFTWARE\\Intel\\InfInst\\ 131353",
                                 "open key SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ 131353",
                                 "query value ProductVersion 1 1024",
                                 "open key SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver\\ 131353",
                                 "close service handle"));
  EXPECT_EQ(keys.size(), 2u);
  for (const HKEY key : keys) {
    EXPECT_EQ(RegQueryValueExA(key, "no such value", nullptr, nullptr, nullptr, nullptr), ERROR_FILE_NOT_FOUND)
        << "the key was closed";
  }
}

TEST_F(ServiceListing, ClosesItsHandlesWhateverFails) {
  const ScratchFile image(DriverPath("OiGood.sys"), 1);
  const DriverService large("OiLarge", std::string(5000, 'p'));
  const DriverService missing("OiMissing", "OiMissing.sys");
  const DriverService good("OiGood", "OiGood.sys");
  int openServices = 0;
  int openFinds = 0;
  HOOK(openManager, Library(), OpenSCManagerA, [&](const char* machine, const char* database, DWORD access) {
    ++openServices;
    return openManager.Real(machine, database, access);
  });
  HOOK(openService, Library(), OpenServiceA, [&](SC_HANDLE manager, const char* name, DWORD access) {
    ++openServices;
    return openService.Real(manager, name, access);
  });
  HOOK(closeService, Library(), CloseServiceHandle, [&](SC_HANDLE handle) {
    --openServices;
    return closeService.Real(handle);
  });
  HOOK(find, Library(), FindFirstFileA, [&](const char* path, WIN32_FIND_DATAA* data) {
    const HANDLE found = find.Real(path, data);
    if (found != INVALID_HANDLE_VALUE) ++openFinds;
    return found;
  });
  HOOK(closeFind, Library(), FindClose, [&](HANDLE handle) {
    --openFinds;
    return closeFind.Real(handle);
  });
  EXPECT_EQ(List().size(), 1u);
  EXPECT_EQ(openServices, 0);
  EXPECT_EQ(openFinds, 0);
}

TEST_F(ServiceListing, NamesItsSourceFileInTheLog) {
  std::vector<std::string> files;
  Orvane::LogToFunction([&](int, const char* file, int line, const std::string&) {
    files.emplace_back(file);
    EXPECT_GT(line, 0);
  });
  List();
  EXPECT_THAT(files, ElementsAre(testing::EndsWith("servicedrivers.cpp"), testing::EndsWith("devicediscovery.cpp"),
                                 testing::EndsWith("devicediscovery.cpp"), testing::EndsWith("devicediscovery.cpp")));
}

}  // namespace
