// A fresh listing against the questions that it asks of Windows, on the machine of benchmachine.
#include <algorithm>
#include <stdexcept>

#include "bare.h"
#include "calltrace.h"
#include "figures.h"
#include "freshlibrary.h"
#include "importhook.h"
#include "log.h"

namespace {

using bench::CallTrace;
using bench::FreshLibrary;
using bench::Record;
using bench::bare::Records;
using Lines = std::vector<std::string>;

enum Mode { ByDevice = 0, Registered = 1, All = 2 };

/// A listing of the library and the same questions without it.
struct Listing {
  const char* name;
  Mode mode;
  /// Whether an All listing came before, so that devices and services come from the caches and only the OEM packages
  /// are asked for.
  bool second;
  Records (*bare)();
  double limit;
};

constexpr Listing Listings[] = {{"Registered", Registered, false, &bench::bare::ListServices, 1.05},
                                {"ByDevice", ByDevice, false, &bench::bare::ListDevices, 1.05},
                                {"OEM scan", All, true, &bench::bare::ListOemPackages, 1.05},
                                {"All", All, false, &bench::bare::ListAll, 1.10}};

/// A library that will answer the listing.
class Prepared {
 public:
  explicit Prepared(const Listing& listing) : m_mode(listing.mode) {
    if (!listing.second) return;
    m_library.List(All);
    m_library.TakeRecords();
  }
  void List() { m_library.List(m_mode); }
  FreshLibrary& Library() { return m_library; }

 private:
  FreshLibrary m_library;
  Mode m_mode;
};

std::string FirstDifference(const Lines& bare, const Lines& library) {
  const auto [a, b] = std::mismatch(bare.begin(), bare.end(), library.begin(), library.end());
  return "call " + std::to_string(a - bare.begin() + 1) + ": bare " + (a != bare.end() ? *a : "none") + ", library " +
         (b != library.end() ? *b : "none");
}

/// `records`, and each of them under its base name too: the device listing gives the records of packages a second time,
/// under the base name, "_" and the identity of the device.
Records WithBaseNames(Records records) {
  for (std::size_t i = records.size(); i-- > 0;) {
    records.push_back(records[i]);
    records.back().name.resize(std::min(records[i].name.find('.'), records[i].name.size()));
  }
  std::sort(records.begin(), records.end());
  return records;
}

bool Holds(const Records& kept, Record record) {
  if (std::binary_search(kept.begin(), kept.end(), record)) return true;
  record.name.resize(std::min(record.name.find('_'), record.name.size()));
  return std::binary_search(kept.begin(), kept.end(), record);
}

/// Throws when the library answers what the bare listing did not keep.
void RequireKept(const Records& listed, const Records& kept) {
  if (listed.size() < 150) throw std::runtime_error("this is no machine of benchmachine");
  for (const Record& record : listed) {
    if (!Holds(kept, record)) throw std::runtime_error("the bare listing did not keep " + record.name);
  }
}

/// Throws when the library and the bare listing do not ask the same or keep the same.
void RequireSame(const Listing& listing) {
  Lines bareCalls;
  Records kept;
  {
    const CallTrace trace(test::ThisProgram());
    kept = listing.bare();
    bareCalls = trace.Lines();
  }
  Prepared prepared(listing);
  Lines libraryCalls;
  {
    const CallTrace trace(prepared.Library().Module());
    prepared.List();
    libraryCalls = trace.Lines();
  }
  if (bareCalls != libraryCalls) throw std::runtime_error(FirstDifference(bareCalls, libraryCalls));
  RequireKept(prepared.Library().TakeRecords(), WithBaseNames(listing.second ? bench::bare::ListAll() : kept));
  std::fprintf(stderr, "bench: %s: %zu calls, the same on both sides\n", listing.name, bareCalls.size());
}

double LibrarySeconds(const Listing& listing) {
  Prepared prepared(listing);
  return bench::Seconds([&] { prepared.List(); });
}

double LibrarySecondsWithLog(const Listing& listing) {
  Prepared prepared(listing);
  if (!Orvane::LogToFile(L"C:\\windows\\temp\\bench.log", 10 << 20, 1)) throw std::runtime_error("no log file");
  const double seconds = bench::Seconds([&] { prepared.List(); });
  Orvane::LogToNothing();
  return seconds;
}

double BareSeconds(const Listing& listing) {
  // As the library's records, these go after the clock has stopped.
  Records kept;
  return bench::Seconds([&] { kept = listing.bare(); });
}

void AddFigures() {
  for (const Listing& listing : Listings) {
    RequireSame(listing);
    bench::AddComparison({std::string(listing.name) + ", logging off", "ms", listing.limit, "bare",
                          [&] { return BareSeconds(listing); }, "library", [&] { return LibrarySeconds(listing); }});
  }
  for (const Listing& listing : Listings) {
    bench::AddComparison({std::string(listing.name) + ", logging to a file at level 4", "ms", 1.25, "bare",
                          [&] { return BareSeconds(listing); }, "library",
                          [&] { return LibrarySecondsWithLog(listing); }});
  }
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
