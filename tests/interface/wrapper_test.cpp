// The wrapper for C++.
#include <driverinventory.hpp>

#include <algorithm>

#include "machine.h"

using Orvane::DriverInventory;
using Orvane::DriverInventoryError;
using Orvane::DriverRecord;

namespace {

TEST(Wrapper, GoesFromRecordToRecord) {
  const DriverInventory inventory = DriverInventory::Read(test::SmallSnapshot);
  std::vector<std::string> lines;
  for (const DriverRecord record : inventory) {
    std::string line(record.Text("name"));
    line += record.Flag("image_missing") ? " missing " : " ";
    line += std::to_string(record.Number("size").value_or(0));
    for (const std::string_view name : record.Texts("names")) line.append(" ").append(name);
    lines.push_back(line);
  }
  EXPECT_THAT(lines, testing::ElementsAre("one.sys missing 4096", "two 0 two zw\u00F6lf", "three.sys 0"));
  EXPECT_EQ(inventory.size(), 3u);
  EXPECT_EQ(inventory.Head("host"), "h\u00F6st");
  EXPECT_EQ(std::count_if(inventory.begin(), inventory.end(),
                          [](const DriverRecord& record) { return record.Text("kind") == "device"; }),
            1);
}

TEST(Wrapper, WritesTheDocumentsOfTheInterface) {
  const DriverInventory inventory = DriverInventory::Read(test::SmallSnapshot);
  const test::Handle handle = test::Read(test::SmallSnapshot);
  EXPECT_EQ(inventory.Json(), test::Document(handle.get(), DRIVERINVENTORY_JSON));
  EXPECT_EQ(inventory.JsonLines(), test::Document(handle.get(), DRIVERINVENTORY_JSON_LINES));
  EXPECT_EQ(inventory.Snapshot(), test::Document(handle.get(), DRIVERINVENTORY_SNAPSHOT));
  EXPECT_THAT(inventory.Health(), testing::HasSubstr("\"image-missing\": 1"));
  EXPECT_THAT(inventory.ComparedWith(inventory), testing::HasSubstr("\"same\": 3"));
}

TEST(Wrapper, ThrowsWhatTheLibrarySays) {
  try {
    DriverInventory::Open("Z:\\no\\such\\file.json");
    FAIL();
  } catch (const DriverInventoryError& error) {
    EXPECT_EQ(error.Status(), DRIVERINVENTORY_E_INPUT);
    EXPECT_THAT(error.what(), testing::StartsWith("Z:\\no\\such\\file.json cannot be read"));
  }
  const DriverInventory inventory = DriverInventory::Read(test::SmallSnapshot);
  EXPECT_THROW((*inventory.begin()).Text("size"), DriverInventoryError);
  EXPECT_THROW((*inventory.begin()).Text("no member"), DriverInventoryError);
}

TEST(Wrapper, CarriesExceptionsOfTheCallbackPastTheLibrary) {
  Orvane::DriverInventoryOptions options;
  options.progress = [](std::string_view, std::uint64_t, std::uint64_t) -> bool { throw std::out_of_range("mine"); };
  EXPECT_THROW(DriverInventory::Collect(options), std::out_of_range);
  options.progress = [](std::string_view, std::uint64_t, std::uint64_t) { return false; };
  try {
    DriverInventory::Collect(options);
    FAIL();
  } catch (const DriverInventoryError& error) {
    EXPECT_EQ(error.Status(), DRIVERINVENTORY_E_STOPPED);
  }
}

TEST(Wrapper, MovesItsInventory) {
  DriverInventory first = DriverInventory::Read(test::SmallSnapshot);
  DriverInventory second = std::move(first);
  EXPECT_EQ(second.size(), 3u);
  first = std::move(second);
  EXPECT_EQ(first.size(), 3u);
}

}  // namespace
