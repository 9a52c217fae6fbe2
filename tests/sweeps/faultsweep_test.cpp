// Every platform call of a listing fails in turn: the list keeps what does not depend on it, and nothing stays open.
//
// A numbered call fails once, with each of the errors that are documented for it, in a library that was just loaded;
// all other calls go to the platform.
#include <gtest/gtest.h>

#include <cstdio>

#include "driverinfo.h"
#include "effects.h"
#include "freshlibrary.h"
#include "platform.h"
#include "platformimports.h"
#include "program.h"
#include "scratchmachine.h"

namespace {

using sweeps::Call;
using sweeps::Effect;
using sweeps::Faults;
using sweeps::FreshLibrary;
using sweeps::Platform;
using sweeps::Records;
using sweeps::Sources;

/// One listing of a fresh library.
struct Listing {
  int result;
  Records records;
  std::vector<Call> calls;
  std::vector<std::string> trouble;
};

/// How many faults there were, and how many of them changed the list.
struct Count {
  int faults = 0;
  int changed = 0;
};

int callsOfTheUncalled = 0;

/// Stands in for a function that nobody calls, whatever its arguments.
void* Uncalled() {
  ++callsOfTheUncalled;
  return nullptr;
}

class FaultSweep : public test::ScratchMachine {
 protected:
  void TearDown() override {
    if (!m_machine.empty()) CallSampleMachine(L"remove");
  }

  void Make(const std::wstring& machine) {
    m_machine = machine;
    CallSampleMachine(L"make");
    m_sources.devices = List(Orvane::ByDevice).records;
    m_sources.services = List(Orvane::Registered).records;
    m_sources.packages = ListPackages();
    m_sources.inventory = m_remembered.Devices({});
  }

  Listing List(int mode, const std::vector<sweeps::Fault>& fails = {}) {
    Faults faults(fails);
    const FreshLibrary library;
    Platform platform(faults, m_remembered);
    const int result = library.Host().List(mode);
    return {result, library.Host().Records(), faults.Calls(), faults.Trouble()};
  }

  /// Lets each call of the listing fail, with each of its errors.
  Count Sweep(const char* name, int mode) {
    const Listing whole = List(mode);
    EXPECT_EQ(whole.trouble, std::vector<std::string>());
    Count count;
    for (std::size_t i = 0; i < whole.calls.size(); ++i) {
      const Effect effect = sweeps::EffectOf(whole.calls, i, m_sources);
      for (std::size_t error = 0; error < whole.calls[i].errors.size(); ++error) {
        const Listing faulty = List(mode, {{i, error}});
        const std::string fault = FaultInWords(whole.calls, i, error);
        EXPECT_EQ(faulty.result, 0) << fault;
        EXPECT_EQ(faulty.trouble, std::vector<std::string>()) << fault;
        EXPECT_EQ(sweeps::Complaint(whole.records, faulty.records, effect, m_sources, mode == Orvane::All), "")
            << fault;
        ++count.faults;
        if (faulty.records != whole.records) ++count.changed;
      }
    }
    std::printf("%-10s  %4d faults, %4d of them changed the list\n", name, count.faults, count.changed);
    std::fflush(stdout);
    return count;
  }

  Count SweepAllModes() {
    Count sum;
    for (const Count& count :
         {Sweep("ByDevice", Orvane::ByDevice), Sweep("Registered", Orvane::Registered), Sweep("All", Orvane::All)}) {
      sum.faults += count.faults;
      sum.changed += count.changed;
    }
    return sum;
  }

  static std::string FaultInWords(const std::vector<sweeps::Call>& calls, std::size_t call, std::size_t error) {
    return "call " + std::to_string(call) + ", " + calls[call].function + " of \"" + calls[call].subject +
           "\", fails with error " + std::to_string(calls[call].errors[error]);
  }

 private:
  void CallSampleMachine(const std::wstring& command) {
    const test::ProgramResult result =
        test::RunProgram("samplemachine.exe", command + L" ..\\samplemachine\\" + m_machine + L".json");
    ASSERT_EQ(result.exitCode, 0u) << result.errors;
  }

  /// The records of the OEM packages that no other record hides.
  Records ListPackages() {
    const FreshLibrary library;
    Faults faults({});
    Platform platform(faults, m_remembered);
    platform.hasDevices = false;
    platform.services.hasServices = false;
    library.Host().List(Orvane::All);
    Records records;
    for (const test::Fields& record : library.Host().Records()) {
      // The chipset packages are no OEM packages; they come with the devices.
      if (record.at("found_by_device") == "0") records.push_back(record);
    }
    return records;
  }

  const Orvane::ModuleHandle m_inventory{LoadLibraryA("pciinfo.dll")};
  const Orvane::ModuleHandle m_logging{LoadLibraryA("logging.dll")};
  std::wstring m_machine;
  sweeps::Remembered m_remembered;
  Sources m_sources;
};

TEST_F(FaultSweep, OfTheIntelLaptop) {
  Make(L"intel-laptop");
  const Count count = SweepAllModes();
  EXPECT_GE(count.faults, 1000);
  EXPECT_GE(count.changed, 400);
}

TEST_F(FaultSweep, OfTheAmdServer) {
  Make(L"amd-server");
  const Count count = SweepAllModes();
  EXPECT_GE(count.faults, 500);
  EXPECT_GE(count.changed, 250);
}

/// The first call of a function.
std::size_t First(const std::vector<sweeps::Call>& calls, const std::string& function) {
  for (std::size_t i = 0; i < calls.size(); ++i) {
    if (calls[i].function == function) return i;
  }
  throw std::runtime_error("no call of " + function);
}

// Only where another call failed the platform is asked for the text of an error.
TEST_F(FaultSweep, OfTheTextsOfErrors) {
  Make(L"amd-server");
  const std::vector<sweeps::Call> calls = List(Orvane::All).calls;
  for (const auto& [failing, asksFor] :
       {std::pair("OpenServiceA", "FormatMessageA"), std::pair("CreateFileW", "FormatMessageW")}) {
    const sweeps::Fault fault{First(calls, failing), 0};
    const Listing withText = List(Orvane::All, {fault});
    for (const char* const function : {asksFor, "LocalFree"}) {
      const std::size_t call = First(withText.calls, function);
      for (std::size_t error = 0; error < withText.calls[call].errors.size(); ++error) {
        const Listing withoutText = List(Orvane::All, {fault, {call, error}});
        EXPECT_EQ(withoutText.result, 0) << function;
        EXPECT_EQ(withoutText.trouble, std::vector<std::string>()) << function;
        EXPECT_EQ(withoutText.records, withText.records) << function;
      }
    }
  }
}

TEST_F(FaultSweep, KnowsEveryPlatformFunctionOfTheLibrary) {
  const FreshLibrary library;
  std::set<std::string> known = sweeps::Swept;
  for (const auto& functions : {sweeps::CannotFail, sweeps::NeverCalled})
    known.insert(functions.begin(), functions.end());
  std::set<std::string> imported;
  for (const char* const dll : {"advapi32.dll", "kernel32.dll", "setupapi.dll", "version.dll"}) {
    for (const std::string& function : test::ImportedFunctions(test::Library(), dll)) imported.insert(function);
  }
  EXPECT_EQ(imported, known);
}

TEST_F(FaultSweep, ReachesEveryFunctionThatItKnows) {
  Make(L"intel-laptop");
  const std::vector<sweeps::Call> calls = List(Orvane::All).calls;
  const Listing withTexts = List(Orvane::All, {{First(calls, "OpenServiceA"), 0}});
  const Listing withWideTexts = List(Orvane::All, {{First(calls, "CreateFileW"), 0}});
  std::set<std::string> reached;
  for (const auto& some : {calls, withTexts.calls, withWideTexts.calls}) {
    for (const sweeps::Call& call : some) reached.insert(call.function);
  }
  std::set<std::string> expected = sweeps::Swept;
  // Of the C run-time library, and looked up while the library is loaded.
  expected.insert({"_ftime64_s", "_localtime64", "_mktime64", "NtQueryDirectoryFile"});
  EXPECT_EQ(reached, expected);
}

TEST_F(FaultSweep, LeavesOutNoFunctionThatAListingCalls) {
  Make(L"intel-laptop");
  const Records records = List(Orvane::All).records;
  const FreshLibrary library;
  for (const std::string& function : sweeps::NeverCalled) {
    test::ReplaceSlot(test::ImportSlot(test::Library(), function.c_str()), reinterpret_cast<void*>(&Uncalled));
  }
  library.Host().List(Orvane::All);
  EXPECT_EQ(library.Host().Records(), records);
  EXPECT_EQ(callsOfTheUncalled, 0);
}

}  // namespace
