// Every allocation of a listing fails in turn: std::bad_alloc reaches the caller and nothing else does, nothing stays
// open or allocated, what was appended stays, and the next listing works.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <new>
#include <set>

#include "allocations.h"
#include "driverinfo.h"
#include "effects.h"
#include "platform.h"
#include "scratchmachine.h"

namespace {

using sweeps::Allocations;
using sweeps::FreshLibrary;
using sweeps::Records;

/// What became of a listing in which memory ran out.
struct Outcome {
  /// What reached the caller: "nothing", "std::bad_alloc" or "something else".
  std::string thrown = "nothing";
  /// The names that were in the vector by each allocation, ever.
  std::vector<std::set<std::string>> names;
  /// The vector when memory ran out, and after the listing.
  Records atFailure;
  Records records;
  /// What the next listing of the process finds.
  Records next;
  std::vector<std::string> trouble;
  /// Memory that is still allocated when the library is unloaded.
  std::size_t blocks = 0;
};

bool HoldsName(const Records& records, const std::string& name) {
  return std::any_of(records.begin(), records.end(),
                     [&](const test::Fields& record) { return record.at("name") == name; });
}

/// What the next listing of a process may find whose first one failed, when a fresh library finds `fresh`. Services
/// that were found are kept, and come without the chipset package then; the device listing keeps nothing that is not
/// complete.
std::vector<Records> ExpectedNext(int mode, const Records& failed, const Records& fresh) {
  if (mode != Orvane::Registered || !HoldsName(failed, "OiBus.sys")) return {fresh};
  const Records services(fresh.begin(), fresh.begin() + 1);
  if (HoldsName(failed, "intel_chipset")) return {services};
  return {services, fresh};
}

class AllocationSweep : public test::ScratchMachine {
 protected:
  static constexpr std::size_t Never = static_cast<std::size_t>(-1);

  /// A listing behind a record of the host's own; the allocations from `first` to `last` fail.
  Outcome List(int mode, std::size_t first, std::size_t last) {
    Outcome outcome;
    std::unique_ptr<FreshLibrary> library(new FreshLibrary);
    sweeps::Guest& host = library->Host();
    host.Append("a record of the host's own", "1.0");
    Allocations allocations(first, last, [&](bool fails) {
      const Records now = host.Records();
      if (fails) outcome.atFailure = now;
      std::set<std::string> names = outcome.names.empty() ? std::set<std::string>() : outcome.names.back();
      for (const test::Fields& record : now) names.insert(record.at("name"));
      outcome.names.push_back(names);
    });
    {
      sweeps::Faults faults({});
      sweeps::Platform platform(faults, m_remembered);
      platform.asksInventory = mode == Orvane::ByDevice;
      allocations.Begin();
      try {
        host.List(mode);
      } catch (const std::bad_alloc&) {
        outcome.thrown = "std::bad_alloc";
      } catch (...) {
        outcome.thrown = "something else";
      }
      allocations.End();
      outcome.trouble = faults.Trouble();
      outcome.records = host.Records();
      host.Clear();
      host.List(mode);
      outcome.next = host.Records();
    }
    allocations.LetGoOfLibrary();
    library.reset();
    outcome.blocks = allocations.Blocks();
    return outcome;
  }

  Records ListFresh(int mode) {
    const FreshLibrary library;
    sweeps::Faults faults({});
    const sweeps::Platform platform(faults, m_remembered);
    library.Host().List(mode);
    return library.Host().Records();
  }

  void Sweep(const char* name, int mode) {
    const Records fresh = ListFresh(mode);
    const Outcome whole = List(mode, Never, 0);
    EXPECT_EQ(whole.thrown, "nothing");
    EXPECT_EQ(whole.blocks, 0u);
    std::size_t thrown = 0;
    std::size_t leaks = 0;
    for (std::size_t i = 0; i < whole.names.size(); ++i) {
      for (const std::size_t last : {i, Never}) {
        SCOPED_TRACE(std::string(name) + ": allocation " + std::to_string(i) + (last == i ? "" : " and all behind it"));
        const Outcome outcome = List(mode, i, last);
        // The library may also find another way, which must lead to the same list.
        if (outcome.thrown == "nothing") {
          EXPECT_EQ(outcome.records, whole.records);
          EXPECT_EQ(outcome.next, whole.next);
        } else {
          EXPECT_EQ(outcome.thrown, "std::bad_alloc");
          EXPECT_EQ(outcome.records, outcome.atFailure);
          for (const std::string& known : outcome.names.back()) EXPECT_TRUE(HoldsName(outcome.records, known)) << known;
          EXPECT_THAT(ExpectedNext(mode, outcome.records, fresh), testing::Contains(outcome.next));
          ++thrown;
        }
        EXPECT_EQ(outcome.trouble, std::vector<std::string>());
        EXPECT_LE(outcome.blocks, 1u);
        leaks += outcome.blocks;
      }
    }
    // The file-system library makes a locale when it first walks a directory, and libstdc++ loses a facet where it runs
    // out of memory in that.
    EXPECT_LE(leaks, mode == Orvane::All ? 10u : 0u);
    EXPECT_GT(thrown, whole.names.size());
    std::printf("%-10s  %4zu allocations, %4zu of %4zu failures thrown\n", name, whole.names.size(), thrown,
                2 * whole.names.size());
  }

  const test::ScratchFile m_image{test::SystemDirectory() + "\\drivers\\OiBus.sys", L"images\\full.sys"};
  const test::DriverService m_service{"OiBus", "System32\\drivers\\OiBus.sys"};
  const test::ScratchFile m_package{test::InfDirectory() + "\\oi.inf", Package("oidevice.sys")};
  const test::ScratchFile m_oemPackage{test::InfDirectory() + "\\oem71.inf", Package("oipackage.dll")};
  const test::Device m_device{Device()};
  const test::RegistryValue m_chipset{"SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1"};

  static std::vector<std::string> Package(const std::string& file) {
    return {"[Version]",
            "Signature=\"$WINDOWS NT$\"",
            "Provider=\"Example Networks\"",
            "DriverVer=06/21/2006,1.2.3.4",
            "[SourceDisksNames]",
            "1=\"A disk with a name of some length\"",
            "[SourceDisksFiles]",
            file + "=1"};
  }

  static test::DeviceSettings Device() {
    test::DeviceSettings device;
    device.instanceId = "PCI\\VEN_1DB7&DEV_1017&SUBSYS_00501DB7&REV_00\\1";
    device.description = "Example adapter";
    device.manufacturer = "Example Networks";
    device.hardwareIds = {"PCI\\VEN_1DB7&DEV_1017&SUBSYS_00501DB7"};
    device.package = test::InstalledPackage{"oi.inf", "1.2.3.4", "6-21-2006"};
    return device;
  }

  const Orvane::ModuleHandle m_inventory{LoadLibraryA("pciinfo.dll")};
  const Orvane::ModuleHandle m_logging{LoadLibraryA("logging.dll")};
  sweeps::Remembered m_remembered;
};

TEST_F(AllocationSweep, OfTheDeviceListing) { Sweep("ByDevice", Orvane::ByDevice); }
TEST_F(AllocationSweep, OfTheServiceListing) { Sweep("Registered", Orvane::Registered); }
TEST_F(AllocationSweep, OfTheCombinedListing) { Sweep("All", Orvane::All); }

}  // namespace
