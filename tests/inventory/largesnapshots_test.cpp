// Snapshots of a size that no machine has: what a comparison takes must not grow out of hand.
#include <gmock/gmock.h>
#include <windows.h>
// Behind windows.h.
#include <psapi.h>

#include <chrono>

#include "inventories.h"
#include "inventory/comparison.h"
#include "inventory/input.h"
#include "platform/encoding.h"
#include "platform/handles.h"
#include "temporaryfiles.h"

using namespace inventory;

namespace {

double Seconds(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// So many services of one name; `version` of each is another.
Inventory OfOneName(unsigned schema, std::size_t count, const std::string& version, bool haveOnePath) {
  Inventory inventory;
  inventory.schema = schema;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i * 7919 % count);
    inventory.records.push_back(test::ServiceRecord(
        "same", version + "." + number, "C:\\windows\\" + (haveOnePath ? "same" : version + number) + ".sys"));
  }
  return inventory;
}

TEST(LargeSnapshots, OfTwentyThousandServicesOfOneNameAreComparedInTwoSeconds) {
  constexpr std::size_t count = 20'000;
  for (const unsigned schema : {1u, 2u}) {
    for (const bool haveOnePath : {false, true}) {
      Inventory before = OfOneName(schema, count, "1", haveOnePath);
      Inventory after = OfOneName(schema, count, "2", haveOnePath);
      const auto start = std::chrono::steady_clock::now();
      const Comparison comparison = Compare(std::move(before), std::move(after));
      EXPECT_LT(Seconds(start), 2.0) << "schema " << schema << ", one path: " << haveOnePath;
      EXPECT_EQ(comparison.GroupsOf(DifferenceKind::Upgraded), count);
      EXPECT_EQ(comparison.differences.size(), count);
    }
  }
}

/// A service, its device and its package as they are on a machine, where "#" is for a number that no other three have.
Records Three(const std::string& version) {
  Record service = test::ServiceRecord("smpdrv#", version, "C:\\windows\\System32\\drivers\\smpdrv#.sys");
  service.description = "Sample Storage Driver #";
  service.provider = "Sample Semiconductors";
  service.product_version = version;
  service.state = "Running";
  service.start_type = "Boot Start";
  service.image_time = "2024-05-06T07:08:09Z";
  service.size = 123'456;
  Record device = test::DeviceRecord("PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03\\3&11583659&0&#", version,
                                     "oem#.inf", "smpdrv#");
  device.names = {"smpdrv#_8086-15F3-1028-0A5C"};
  device.name = device.names.front();
  device.description = "Sample Network Connection";
  device.provider = "Sample Semiconductors";
  device.inf_date = "2024-05-06";
  device.class_name = "Net";
  device.hardware_id = "PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03";
  device.identity = "8086-15F3-1028-0A5C";
  Record package = test::PackageRecord("oem#.inf", version, "smpdrv#.inf", {"smpdrv#.sys", "smpdrv#.dll"});
  package.description = "Sample Installation Disk";
  package.provider = "Sample Semiconductors";
  package.inf_date = "2024-05-06";
  package.class_name = "Net";
  package.devices_using = 1;
  return {service, device, package};
}

/// `text` with each "#" replaced by `number`.
std::string Numbered(const std::string& text, const std::string& number) {
  std::string numbered;
  for (const char c : text) c == '#' ? numbered += number : numbered += c;
  return numbered;
}

/// Writes a snapshot of `size` bytes, more or less. Of a hundred services, devices and packages one is of `version`.
void WriteSnapshot(const std::wstring& path, std::size_t size, const std::string& version) {
  Inventory inventory;
  inventory.head = {"0.1.0", "host", "4f1e", "10.0.22621", "2024-05-06T07:08:09Z"};
  const auto textOf = [&inventory](const std::string& own) {
    inventory.records = Three(own);
    return SnapshotText(inventory);
  };
  const std::string texts[] = {textOf(version), textOf("10.0.22621.1")};
  const std::size_t begin = texts[0].find("\n    {");
  const Orvane::FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  std::size_t written = 0;
  std::string part = texts[0].substr(0, begin);
  // In parts: what this process holds counts as memory that the comparison takes.
  const auto write = [&] {
    DWORD count = 0;
    ASSERT_TRUE(WriteFile(file.get(), part.data(), static_cast<DWORD>(part.size()), &count, nullptr));
    written += count;
    part.clear();
  };
  for (std::size_t i = 0; written < size; ++i) {
    const std::string& three = texts[i % 100 == 0 ? 0 : 1];
    part += (i == 0 ? "" : ",") + Numbered(three.substr(begin, three.rfind("\n  ]") - begin), std::to_string(i));
    if (part.size() > 1'000'000) write();
  }
  part += "\n  ]\n}\n";
  write();
}

PROCESS_MEMORY_COUNTERS Memory() {
  PROCESS_MEMORY_COUNTERS memory{};
  memory.cb = sizeof(memory);
  EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory)));
  return memory;
}

Inventory FromFile(const std::wstring& path, const IsSettled& isSettled = nullptr) {
  InputFile file(Orvane::Utf8FromWide(path));
  return ReadSnapshot(file, isSettled);
}

TEST(LargeSnapshots, AreComparedInLittleMemory) {
  const test::TemporaryFolder folder;
  WriteSnapshot(folder.Path(L"old"), 100'000'000, "10.0.22621.1");
  WriteSnapshot(folder.Path(L"new"), 100'000'000, "10.0.22621.1137");
  // What the program itself takes, its debug information included, is not what the comparison takes.
  const PROCESS_MEMORY_COUNTERS before = Memory();
  constexpr std::size_t megabyte = 1 << 20;
  if (before.PeakWorkingSetSize > before.WorkingSetSize + 30 * megabyte) {
    GTEST_SKIP() << "other tests of this process took more memory";
  }
  const auto start = std::chrono::steady_clock::now();
  Comparer comparer(FromFile(folder.Path(L"old")));
  const Comparison comparison =
      comparer.Compare(FromFile(folder.Path(L"new"), [&comparer](const Record& record, unsigned schema) {
        return comparer.Settle(record, schema);
      }));
  RecordProperty("seconds", std::to_string(Seconds(start)));
  const std::size_t megabytes = (Memory().PeakWorkingSetSize - before.PeakWorkingSetSize) / megabyte;
  RecordProperty("megabytes", std::to_string(megabytes));
  const std::size_t triples = comparison.before.records.size() / 3;
  EXPECT_EQ(comparison.GroupsOf(DifferenceKind::Upgraded), (triples + 99) / 100);
  EXPECT_EQ(comparison.same, 3 * (triples - (triples + 99) / 100));
  EXPECT_GT(megabytes, 100u) << "which holds one";
  EXPECT_LE(megabytes, 280u);
}

}  // namespace
