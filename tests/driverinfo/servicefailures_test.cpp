// What Windows does to the service listing.
#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <utility>

#include "servicelisting.h"

using namespace test;
using Orvane::DriverData;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The error text that the platform gives now, wherever the test runs.
std::string ErrorText(DWORD code) {
  char text[512];
  return std::string(text, FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                                          0x400, text, sizeof(text), nullptr));
}

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
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, LogLine{2, ErrorText(ERROR_ACCESS_DENIED)}, EnterImage, ExitImage,
                                      ServiceListed("OiGood.sys", ""), NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, LogsATextWithThePlacesForItsInserts) {
  const DriverService service("OiBad", "OiBad.sys");
  HOOK(open, Library(), OpenServiceA, [](SC_HANDLE, const char*, DWORD) -> SC_HANDLE {
    SetLastError(ERROR_BAD_EXE_FORMAT);
    return nullptr;
  });
  ASSERT_THAT(ErrorText(ERROR_BAD_EXE_FORMAT), testing::HasSubstr("%1"));
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(),
              ElementsAre(StartServices, LogLine{2, ErrorText(ERROR_BAD_EXE_FORMAT)}, NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, SkipsAServiceThatVanishesMeanwhile) {
  auto service = std::make_unique<DriverService>("OiGone", "OiGone.sys");
  HOOK(open, Library(), OpenServiceA, [&](SC_HANDLE manager, const char* name, DWORD access) {
    service.reset();
    return open.Real(manager, name, access);
  });
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(),
              ElementsAre(StartServices, LogLine{2, ErrorText(ERROR_SERVICE_DOES_NOT_EXIST)}, NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, SkipsAServiceWhoseConfigurationDoesNotFit) {
  const ScratchFile image(DriverPath("OiGood.sys"), 1);
  const DriverService large("OiLarge", std::string(5000, 'p'));
  const DriverService good("OiGood", "OiGood.sys");
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiGood.sys " + DriverPath("OiGood.sys")));
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, LogLine{2, ErrorText(ERROR_INSUFFICIENT_BUFFER)}, EnterImage,
                                      ExitImage, ServiceListed("OiGood.sys", ""), NoIntel, NoAmd, NoPshed));
}

#ifdef __MINGW32__
constexpr char LogConstructor[] = "_ZN6Orvane3LogC1EiPKci";
#else
constexpr char LogConstructor[] = "??0Log@Orvane@@QEAA@HPEBDH@Z";
#endif

/// The signature of the constructor as the machine sees it.
void* ConstructLog(Orvane::Log* self, int, const char*, int) { return self; }

/// Another logging module may change the last error as soon as it is called.
struct CarelessLogger {
  ImportHook<&ConstructLog> hook{Library(), LogConstructor,
                                 [this](Orvane::Log* self, int level, const char* file, int line) {
                                   void* const log = hook.Real(self, level, file, line);
                                   SetLastError(ERROR_FILE_NOT_FOUND);
                                   return log;
                                 }};
};

TEST_F(ServiceListing, TakesTheErrorOfOpeningBeforeALoggerChangesIt) {
  const DriverService service("OiBad", "OiBad.sys");
  HOOK(open, Library(), OpenServiceA, [](SC_HANDLE, const char*, DWORD) -> SC_HANDLE {
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
  });
  const CarelessLogger logger;
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(),
              ElementsAre(StartServices, LogLine{2, ErrorText(ERROR_ACCESS_DENIED)}, NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, TakesTheErrorOfQueryingBeforeALoggerChangesIt) {
  const DriverService service("OiBad", "OiBad.sys");
  HOOK(query, Library(), QueryServiceConfigA, [](SC_HANDLE, QUERY_SERVICE_CONFIGA*, DWORD, DWORD*) -> BOOL {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
  });
  const CarelessLogger logger;
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(),
              ElementsAre(StartServices, LogLine{2, ErrorText(ERROR_ACCESS_DENIED)}, NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, LogsAnEmptyLineForAnErrorWithoutText) {
  const DriverService service("OiBad", "OiBad.sys");
  HOOK(open, Library(), OpenServiceA, [](SC_HANDLE, const char*, DWORD) -> SC_HANDLE { return nullptr; });
  HOOK(format, Library(), FormatMessageA, [](auto...) { return DWORD{0}; });
  List();
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, LogLine{2, ""}, NoIntel, NoAmd, NoPshed));
}

TEST_F(ServiceListing, WithoutServiceControlManagerHoldsTheChipsetPackagesOnly) {
  const DriverService service("Oi", "Oi.sys");
  const RegistryValue intel("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1");
  HOOK(open, Library(), OpenSCManagerA, [](const char*, const char*, DWORD) -> SC_HANDLE { return nullptr; });
  EXPECT_THAT(NamesAndPaths(), ElementsAre("intel_chipset "));
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, NoAmd, NoPshed));
}

TEST_F(ServiceListing, WithoutEnumerationHoldsTheChipsetPackagesOnly) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  const RegistryValue intel("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1");
  // The buffer is filled, and yet the call says that it failed.
  HOOK(enumerate, Library(), EnumServicesStatusA,
       [&](SC_HANDLE manager, DWORD type, DWORD state, Entries* entries, DWORD size, DWORD* needed, DWORD* returned,
           DWORD* resume) -> BOOL {
         enumerate.Real(manager, type, state, entries, size, needed, returned, resume);
         if (entries != nullptr) SetLastError(ERROR_ACCESS_DENIED);
         return FALSE;
       });
  EXPECT_THAT(NamesAndPaths(), ElementsAre("intel_chipset "));
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, NoAmd, NoPshed));
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

/// Changes what the enumeration of services gave: its entries and their count.
struct ChangedEntries {
  explicit ChangedEntries(std::function<void(Entries*, DWORD&)> changeEntries) : change(std::move(changeEntries)) {}

  std::function<void(Entries*, DWORD&)> change;
  HOOK(enumerate, Library(), EnumServicesStatusA,
       [this](SC_HANDLE manager, DWORD type, DWORD state, Entries* entries, DWORD size, DWORD* needed, DWORD* returned,
              DWORD* resume) {
         const BOOL result = enumerate.Real(manager, type, state, entries, size, needed, returned, resume);
         if (entries != nullptr) change(entries, *returned);
         return result;
       });
};

/// Changes the configuration of a service, which stands in a buffer of `size` bytes.
struct ChangedConfiguration {
  using Change = std::function<void(QUERY_SERVICE_CONFIGA*, DWORD size)>;
  explicit ChangedConfiguration(Change changeConfiguration) : change(std::move(changeConfiguration)) {}

  Change change;
  HOOK(query, Library(), QueryServiceConfigA,
       [this](SC_HANDLE handle, QUERY_SERVICE_CONFIGA* config, DWORD size, DWORD* needed) {
         const BOOL result = query.Real(handle, config, size, needed);
         change(config, size);
         return result;
       });
};

TEST_F(ServiceListing, ReadsNoMoreEntriesThanFitTheBuffer) {
  const ScratchFile image(DriverPath("OiA.sys"), 1);
  const DriverService service("OiA", "OiA.sys");
  const ChangedEntries changed([](Entries*, DWORD& count) { count = 0xFFFFFFFF; });
  // One entry, and a name behind it that no second entry fits into.
  EXPECT_THAT(NamesAndPaths(), ElementsAre("OiA.sys " + DriverPath("OiA.sys")));
}

/// Fills the buffer of the enumeration as a test says.
struct ScriptedEntries {
  using Fill = std::function<void(Entries* entries, std::size_t size, DWORD& count)>;
  ScriptedEntries(std::size_t bytesNeeded, Fill fillEntries) : size(bytesNeeded), fill(std::move(fillEntries)) {}

  std::size_t size;
  Fill fill;
  HOOK(enumerate, Library(), EnumServicesStatusA,
       [this](SC_HANDLE, DWORD, DWORD, Entries* entries, DWORD room, DWORD* needed, DWORD* returned, DWORD*) -> BOOL {
         *needed = static_cast<DWORD>(size);
         *returned = 0;
         if (entries != nullptr) fill(entries, room, *returned);
         SetLastError(ERROR_MORE_DATA);
         return room >= size;
       });
};

/// Room for two entries. The second one, which would be the service OiB, has the text of the first in it.
ScriptedEntries SecondEntryHolds(char* Entries::*text) {
  return {2 * sizeof(Entries), [text](Entries* entries, std::size_t, DWORD& count) {
            static char a[] = "OiA";
            static char b[] = "OiB";
            char* const behind = reinterpret_cast<char*>(&entries[1].ServiceStatus);
            entries[0].lpServiceName = a;
            entries[0].lpDisplayName = a;
            entries[1].lpServiceName = b;
            std::memcpy(behind, a, sizeof(a));
            entries[0].*text = behind;
            count = 2;
          }};
}

class ServiceEntries : public ServiceListing {
 private:
  const ScratchFile m_image{DriverPath("Oi.sys"), 1};
  const DriverService m_first{"OiA", "Oi.sys"};
  const DriverService m_second{"OiB", "Oi.sys"};
};

TEST_F(ServiceEntries, EndWhereANameBegins) {
  const ScriptedEntries scripted = SecondEntryHolds(&Entries::lpServiceName);
  EXPECT_EQ(List().size(), 1u);
}

TEST_F(ServiceEntries, EndWhereADisplayNameBegins) {
  const ScriptedEntries scripted = SecondEntryHolds(&Entries::lpDisplayName);
  EXPECT_EQ(List().size(), 1u);
}

TEST_F(ServiceEntries, MayTakeMoreThan64KiB) {
  static constexpr std::size_t services = 1500;
  const ScriptedEntries scripted(services * sizeof(Entries), [](Entries* entries, std::size_t size, DWORD& count) {
    static char none[] = "";
    static char last[] = "OiB";
    count = static_cast<DWORD>(std::min(size / sizeof(Entries), services));
    for (std::size_t i = 0; i < count; ++i) entries[i].lpServiceName = i + 1 < services ? none : last;
  });
  EXPECT_THAT(NamesAndPaths(), ElementsAre("oi.sys " + DriverPath("oi.sys")));
}

TEST_F(ServiceListing, HasNoNameForAStateOrStartTypeThatIsNone) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  const ChangedEntries changedEntries([](Entries* entries, DWORD&) { entries[0].ServiceStatus.dwCurrentState = 8; });
  const ChangedConfiguration changed([](QUERY_SERVICE_CONFIGA* config, DWORD) { config->dwStartType = 0xFFFFFFFF; });
  EXPECT_THAT(List(), ElementsAre("name=Oi.sys; path=" + DriverPath("Oi.sys") +
                                  "; date=06/21/2006 13:05:09; size=0; found_by_device=0"));
}

TEST_F(ServiceListing, TakesTheStateOfTheEnumeration) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  const ChangedEntries changed(
      [](Entries* entries, DWORD&) { entries[0].ServiceStatus.dwCurrentState = SERVICE_RUNNING; });
  EXPECT_EQ(Records().at(0).state, "Running");
}

TEST_F(ServiceListing, BoundsAConfiguredPathByItsBuffer) {
  const DriverService service("Oi", "Oi.sys");
  const ChangedConfiguration changed([](QUERY_SERVICE_CONFIGA* config, DWORD size) {
    char* const end = reinterpret_cast<char*>(config) + size;
    config->lpBinaryPathName = end - 5;
    std::memcpy(end - 5, "x.sys", 5);
  });
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, ImageNotFound("\\SystemRoot\\system32\\drivers\\x.sys"), NoIntel,
                                      NoAmd, NoPshed));
}

TEST_F(ServiceListing, TakesAMissingConfiguredPathForAnEmptyOne) {
  const ScratchFile image(DriverPath("Oi.sys"), 1);
  const DriverService service("Oi", "Oi.sys");
  const ChangedConfiguration changed([](QUERY_SERVICE_CONFIGA* config, DWORD) { config->lpBinaryPathName = nullptr; });
  EXPECT_THAT(NamesAndPaths(), ElementsAre("Oi.sys " + DriverPath("Oi.sys")));
}

TEST_F(ServiceListing, KeepsWhatItHadWhenMemoryRunsOut) {
  const ScratchFile first(DriverPath("OiA.sys"), 1);
  const ScratchFile second(DriverPath("OiB.sys"), 1);
  const DriverService serviceA("OiA", "OiA.sys");
  const DriverService serviceB("OiB", "OiB.sys");
  HOOK(size, Library(), GetFileVersionInfoSizeA, [&](const char* path, DWORD* handle) {
    if (path == DriverPath("OiB.sys")) throw std::bad_alloc();
    return size.Real(path, handle);
  });
  const OpenHandles open;
  std::vector<DriverData> drivers;
  EXPECT_THROW(info.list_drivers(drivers, Orvane::Registered), std::bad_alloc);
  const std::vector<std::string> kept = Described(drivers);
  EXPECT_THAT(kept, ElementsAre(testing::StartsWith("name=OiA.sys; ")));
  EXPECT_EQ(open.services, 0);
  EXPECT_EQ(open.finds, 0);
  log.Take();
  EXPECT_EQ(List(), kept);
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, FromCache)) << "the cache holds what the listing had";
}

}  // namespace
