// What the service listing asks of Windows, in which order, and what it leaves open.
#include "servicelisting.h"

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

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
  Orvane::LogToFunction([&](int level, const char*, int, const std::string& text) {
    if (level == 4) calls.push_back("log " + text);
  });
  List();
  EXPECT_THAT(openServices, IsEmpty());
  EXPECT_THAT(calls, ElementsAre("log " + StartServices.text, "open manager 4", "enumerate 11 3 size",
                                 "enumerate 11 3 entries", "open service Oi 1", "query configuration 4096",
                                 "open key System\\CurrentControlSet\\Services\\oi 1", "query value ImagePath 2 1024",
                                 "find " + DriverPath("Oi.sys"), "log " + EnterImage.text,
                                 "read versions of " + DriverPath("Oi.sys"), "log " + ExitImage.text,
                                 "close find handle", "log " + ServiceListed("Oi.sys", "6.2.9200.16384").text,
                                 "close service handle", "open key SOFTWARE\\Intel\\InfInst\\ 131353",
                                 "open key SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ 131353",
                                 "query value ProductVersion 1 1024",
                                 "open key SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver\\ 131353",
                                 "close service handle"));
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_EQ(RegQueryValueExA(keys[1], "no such value", nullptr, nullptr, nullptr, nullptr), ERROR_FILE_NOT_FOUND)
      << "the key of the package was closed";
  // The handle of a key that was closed may be that of the next one.
  EXPECT_EQ(RegQueryValueExA(keys[0], "ImagePath", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS)
      << "the key of the service was closed";
}

TEST_F(ServiceListing, ClosesItsHandlesWhateverFails) {
  const ScratchFile image(DriverPath("OiGood.sys"), 1);
  const DriverService large("OiLarge", std::string(5000, 'p'));
  const DriverService missing("OiMissing", "OiMissing.sys");
  const DriverService good("OiGood", "OiGood.sys");
  const OpenHandles open;
  EXPECT_EQ(List().size(), 1u);
  EXPECT_EQ(open.services, 0);
  EXPECT_EQ(open.finds, 0);
}

TEST_F(ServiceListing, NamesItsSourceFileInTheLog) {
  std::vector<std::string> files;
  Orvane::LogToFunction([&](int, const char* file, int line, const std::string&) {
    files.emplace_back(file);
    EXPECT_GT(line, 0);
  });
  List();
  EXPECT_THAT(files, ElementsAre(testing::EndsWith("servicedrivers.cpp"), testing::EndsWith("registrypackages.cpp"),
                                 testing::EndsWith("registrypackages.cpp"), testing::EndsWith("registrypackages.cpp")));
}

}  // namespace
