// Loading and unloading.
#include <windows.h>
// After windows.h.
#include <psapi.h>
#include <setupapi.h>

#include <thread>

#include "importhook.h"
#include "library.h"
#include "machine.h"

namespace {

/// Loads, uses from two threads and unloads: failures too, since each leaves a sentence with its thread.
void Use(const test::LibraryFile& file) {
  const test::LoadedLibrary library(file);
  const auto use = [&library] {
    driverinventory* inventory = nullptr;
    char* text = nullptr;
    EXPECT_EQ(library.read(test::SmallSnapshot.data(), test::SmallSnapshot.size(), &inventory), DRIVERINVENTORY_OK);
    EXPECT_EQ(library.document(inventory, DRIVERINVENTORY_JSON, &text, nullptr), DRIVERINVENTORY_OK);
    EXPECT_EQ(library.free(text), DRIVERINVENTORY_OK);
    EXPECT_EQ(library.release(inventory), DRIVERINVENTORY_OK);
    EXPECT_EQ(library.release(inventory), DRIVERINVENTORY_E_HANDLE);
    EXPECT_STRNE(library.error(), "");
  };
  use();
  std::thread(use).join();
}

std::size_t PrivateBytes() {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof(counters));
  return counters.PrivateUsage;
}

TEST(Loading, AThousandTimesLeavesNothing) {
  const test::LibraryFile file;
  for (int i = 0; i < 100; ++i) Use(file);
  const std::size_t before = PrivateBytes();
  for (int i = 100; i < 1000; ++i) Use(file);
  const std::size_t after = PrivateBytes();
  // A hundred bytes for each would be seen.
  EXPECT_LT(after, before + 900 * 100) << after - before << " bytes more";
  EXPECT_EQ(GetModuleHandleA("hosted.dll"), nullptr);
}

using LoadingOnAMachine = test::HostedMachine;

TEST_F(LoadingOnAMachine, ClosesEveryRegistryKeyAtTheLatestWhenItIsUnloaded) {
  // The library keeps the key of a service open whose image has its name.
  const test::ScratchFile image(test::SystemDirectory() + "\\drivers\\IfKept.sys", L"images\\full.sys");
  const test::DriverService service("IfKept", "System32\\drivers\\IfKept.sys");
  const test::LibraryFile file;
  int open = 0;
  int opened = 0;
  {
    auto library = std::make_unique<test::LoadedLibrary>(file);
    // The slots of the library are gone before it is; so are the hooks, but for the keys that it closes last.
    void** const slot = test::ImportSlot(library->Module(), "RegCloseKey");
    static int* closed;
    closed = &open;
    static LSTATUS (*real)(HKEY);
    real =
        reinterpret_cast<LSTATUS (*)(HKEY)>(test::ReplaceSlot(slot, reinterpret_cast<void*>(+[](HKEY key) -> LSTATUS {
                                                                --*closed;
                                                                return real(key);
                                                              })));
    {
      HOOK(openKey, library->Module(), RegOpenKeyExW,
           [&](HKEY key, const wchar_t* name, DWORD options, REGSAM access, HKEY* result) {
             const LSTATUS status = openKey.Real(key, name, options, access, result);
             if (status == ERROR_SUCCESS) ++open, ++opened;
             return status;
           });
      HOOK(openDevice, library->Module(), SetupDiOpenDevRegKey,
           [&](HDEVINFO set, SP_DEVINFO_DATA* device, DWORD scope, DWORD profile, DWORD type, REGSAM access) {
             const HKEY key = openDevice.Real(set, device, scope, profile, type, access);
             if (key != INVALID_HANDLE_VALUE) ++open;
             return key;
           });
      driverinventory* inventory = nullptr;
      ASSERT_EQ(library->collect(nullptr, &inventory), DRIVERINVENTORY_OK);
      ASSERT_EQ(library->release(inventory), DRIVERINVENTORY_OK);
    }
    EXPECT_GT(opened, 0);
    library.reset();
  }
  EXPECT_EQ(open, 0);
}

}  // namespace
