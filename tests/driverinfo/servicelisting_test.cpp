// What the service listing finds and tells.
#include "servicelisting.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "locales.h"
#include "platform/handles.h"

using namespace test;
using Orvane::DriverData;
using Orvane::DriverInfo;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST_F(ServiceListing, TellsEverythingAboutADriver) {
  const ScratchFile image(DriverPath("OiBus.sys"), L"images\\full.sys");
  const DriverService service("OiBus", "\\SystemRoot\\System32\\drivers\\OiBus.sys", SERVICE_SYSTEM_START);
  WIN32_FIND_DATAA file;
  ASSERT_TRUE(Orvane::FindHandle(FindFirstFileA(DriverPath("OiBus.sys").c_str(), &file)));
  EXPECT_THAT(List(),
              ElementsAre("name=OiBus.sys; description=Example bus driver; provider=Example Systems; path=" +
                          DriverPath("OiBus.sys") +
                          "; file_version=6.2.9200.16384; state=Stopped; start_type=System Start; "
                          "date=06/21/2006 13:05:09; size=" +
                          std::to_string(file.nFileSizeLow / 1024) + "; product_version=10.0.1.2; found_by_device=0"));
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, EnterImage, ExitImage,
                                      ServiceListed("OiBus.sys", "6.2.9200.16384"), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, OfABareMachineIsEmpty) {
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, ListsAnImageWithoutVersionResource) {
  const ScratchFile image(DriverPath("OiPlain.sys"), 2048);
  const DriverService service("OiPlain", "System32\\drivers\\OiPlain.sys");
  EXPECT_THAT(List(),
              ElementsAre("name=OiPlain.sys; path=" + DriverPath("OiPlain.sys") +
                          "; state=Stopped; start_type=Manual; date=06/21/2006 13:05:09; size=2; found_by_device=0"));
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, EnterImage, ExitImage, ServiceListed("OiPlain.sys", ""), NoIntel,
                                      NoAmd, NoPshed));
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
  const std::vector<DriverData> drivers = Records();
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
              ElementsAre(StartServices, ImageNotFound("\\SystemRoot\\system32\\drivers\\OiEmpty.sys"),
                          ImageNotFound("\\SystemRoot\\system32\\drivers\\C:\\Tools\\x.sys"),
                          ImageNotFound("\\SystemRoot\\system32\\drivers\\oimissing.sys"), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, ExpandsEnvironmentVariables) {
  const ScratchFile image(DriverPath("OiExpand.sys"), 1);
  const DriverService service("OiExpand", "%SystemRoot%\\system32\\drivers\\OiExpand.sys");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiExpand.sys " + DriverPath("OiExpand.sys")));
}

TEST_F(ServiceListing, ExpandsVariablesWithinAPath) {
  const test::EnvironmentVariable folder("OI_FOLDER", "drivers");
  const ScratchFile image(DriverPath("OiWithin.sys"), 1);
  const DriverService service("OiWithin", "System32\\%OI_FOLDER%\\OiWithin.sys");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiWithin.sys " + DriverPath("OiWithin.sys")));
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
  const std::vector<DriverData> drivers = Records();
  std::vector<std::string> sizes;
  for (const DriverData& driver : drivers) sizes.push_back(driver.size);
  EXPECT_THAT(sizes, ElementsAre("0", "0", "1", "4882"));
}

TEST_F(ServiceListing, JoinsBothWordsOfALargeSize) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  HOOK(find, Library(), FindFirstFileA, [&](const char* path, WIN32_FIND_DATAA* data) {
    const HANDLE found = find.Real(path, data);
    data->nFileSizeHigh = 0xFFFFFFFF;
    data->nFileSizeLow = 0xFFFFFFFF;
    return found;
  });
  const std::vector<DriverData> drivers = Records();
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
  const std::vector<DriverData> drivers = Records();
  EXPECT_EQ(drivers.at(0).date, "");
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, LogLine{4, "Invalid datetime encountered..."}, EnterImage,
                                      ExitImage, ServiceListed("Oi.sys", ""), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, WritesNumbersWithoutGroupingDigits) {
  const ScratchFile image(DriverPath("Oi.sys"), 5'000'000);
  const ScratchFile full(DriverPath("OiFull.sys"), L"images\\full.sys");
  const DriverService service("Oi", "Oi.sys");
  const DriverService serviceFull("OiFull", "OiFull.sys");
  const test::HostLocale<test::GroupedDigits> locale;
  const std::vector<DriverData> drivers = Records();
  EXPECT_EQ(drivers.at(0).size, "4882");
  EXPECT_EQ(drivers.at(1).file_version, "6.2.9200.16384");
  EXPECT_EQ(drivers.at(1).date, "06/21/2006 13:05:09");
}

TEST_F(ServiceListing, LowersImageNamesWithTheGlobalLocale) {
  const DriverService service("OiService", "OiQ.sys");
  const test::HostLocale<test::OddLetters> locale;
  List();
  EXPECT_EQ(log.Take().at(1), ImageNotFound("\\SystemRoot\\system32\\drivers\\oix.sys"));
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
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, EnterImage, ExitImage, ServiceListed("Oi.sys", ""),
                                      LogLine{4, "success to get amd chipset."},
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
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, FromCache));
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

}  // namespace
