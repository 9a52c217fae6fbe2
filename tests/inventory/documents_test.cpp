#include "inventory/documents.h"

#include <gmock/gmock.h>

#include <utility>

#include "inventories.h"

using namespace inventory;
using test::DeviceRecord;
using test::PackageRecord;
using test::ServiceRecord;

namespace {

const Head TheHead = {"0.1.0", "h\u00F6st", "4f1e", "10.0.1", "2024-05-06T07:08:09Z"};

/// An update of a package with its device, and a service that came.
Comparison Update() {
  Inventory before;
  before.head = {"0.1.0", "host", "4f1e", "10.0.1", "2024-05-06T07:08:09Z"};
  before.records = {DeviceRecord("PCI", "1.0", "oem1.inf"), PackageRecord("oem1.inf", "1.0", "", {"a"}),
                    PackageRecord("oem2.inf", "3")};
  Inventory after;
  after.head = {"0.2.0", "h\u00F6st", "4f1e", "10.0.2", "2024-05-07T07:08:09Z"};
  after.records = before.records;
  Record& device = after.records[0];
  Record& package = after.records[1];
  device.version = package.version = "1.1";
  package.files = {"a", "b"};
  device.problem_code = 43;
  after.records.push_back(ServiceRecord("new", ""));
  return Compare(std::move(before), std::move(after));
}

TEST(InventoryDocument, HasTheHeadAndEveryRecordWithTheMembersThatItHas) {
  EXPECT_EQ(InventoryJson({TheHead, {ServiceRecord("new", "1.0"), PackageRecord("oem1.inf", "", "", {"a", "b"})}}), R"({
  "schema_version": 2,
  "tool_version": "0.1.0",
  "host": "höst",
  "host_id": "4f1e",
  "windows": "10.0.1",
  "time": "2024-05-06T07:08:09Z",
  "drivers": [
    {
      "kind": "service",
      "name": "new.sys",
      "version": "1.0",
      "version_key": "b1a",
      "service": "new"
    },
    {
      "kind": "package",
      "name": "a",
      "inf": "oem1.inf",
      "files": [
        "a",
        "b"
      ]
    }
  ]
}
)");
}

TEST(InventoryDocument, OfNothingHasNoDrivers) {
  EXPECT_EQ(InventoryJson({}), "{\n  \"schema_version\": 2,\n  \"drivers\": []\n}\n");
  EXPECT_EQ(InventoryJsonLines({TheHead, {}}), "");
}

TEST(InventoryLines, HaveTheHeadInFrontOfEachRecord) {
  EXPECT_EQ(
      InventoryJsonLines({{"1", "host", "", "", ""}, {ServiceRecord("one", ""), DeviceRecord("two", "")}}),
      R"({"schema_version":2,"tool_version":"1","host":"host","kind":"service","name":"one.sys","service":"one"})"
      "\n"
      R"({"schema_version":2,"tool_version":"1","host":"host","kind":"device","name":"two_name","instance_id":"two"})"
      "\n");
}

TEST(ComparisonDocument, HasBothHeadsAndEveryDifference) {
  EXPECT_EQ(ComparisonJson(Update(), {"0.3.0", "here", "77", "10.0.3", "2024-05-08T07:08:09Z"}), R"({
  "schema_version": 2,
  "tool_version": "0.3.0",
  "host": "here",
  "host_id": "77",
  "windows": "10.0.3",
  "time": "2024-05-08T07:08:09Z",
  "old": {
    "tool_version": "0.1.0",
    "host": "host",
    "host_id": "4f1e",
    "windows": "10.0.1",
    "time": "2024-05-06T07:08:09Z"
  },
  "new": {
    "tool_version": "0.2.0",
    "host": "höst",
    "host_id": "4f1e",
    "windows": "10.0.2",
    "time": "2024-05-07T07:08:09Z"
  },
  "summary": {
    "added": 1,
    "removed": 0,
    "upgraded": 1,
    "downgraded": 0,
    "changed": 0,
    "same": 1
  },
  "differences": [
    {
      "difference": "added",
      "group": 1,
      "kind": "service",
      "key": "new",
      "name": "new.sys",
      "changes": []
    },
    {
      "difference": "upgraded",
      "group": 2,
      "kind": "package",
      "key": "oem1.inf",
      "name": "a",
      "changes": [
        {
          "member": "version",
          "old": "1.0",
          "new": "1.1"
        },
        {
          "member": "files",
          "old": [
            "a"
          ],
          "new": [
            "a",
            "b"
          ]
        }
      ]
    },
    {
      "difference": "upgraded",
      "group": 2,
      "kind": "device",
      "key": "pci",
      "name": "PCI_name",
      "changes": [
        {
          "member": "version",
          "old": "1.0",
          "new": "1.1"
        },
        {
          "member": "problem_code",
          "new": 43
        }
      ]
    }
  ]
}
)");
}

TEST(FindingsDocument, HasTheHeadTheCountsAndTheFindings) {
  Inventory inventory;
  inventory.head = {"0.1.0", "host", "8f0c", "10.0.1", "2024-05-06T07:08:09Z"};
  EXPECT_EQ(FindingsJson(
                {{"unused-package", "oem3.inf", "Ger\u00E4te\u202E", Severity::Low, "remove it", "unused-package-01"}},
                inventory),
            R"({
  "schema_version": 2,
  "tool_version": "0.1.0",
  "host": "host",
  "host_id": "8f0c",
  "windows": "10.0.1",
  "time": "2024-05-06T07:08:09Z",
  "summary": {
    "known-malicious": 0,
    "known-vulnerable": 0,
    "signature-invalid": 0,
    "unsigned": 0,
    "listed-name": 0,
    "image-in-user-folder": 0,
    "device-problem": 0,
    "device-without-driver": 0,
    "not-running": 0,
    "image-missing": 0,
    "no-version-or-company": 0,
    "several-versions": 0,
    "unused-package": 1
  },
  "findings": [
    {
      "rule": "unused-package",
      "severity": "low",
      "id": "unused-package-01",
      "subject": "oem3.inf",
      "evidence": ")"
            "Ger\u00E4te\u202E"
            R"(",
      "next_step": "remove it"
    }
  ]
}
)");
}

TEST(FindingsDocument, OfAVerifiedInventoryNamesTheLists) {
  Inventory inventory;
  inventory.isVerified = true;
  inventory.lists = {{"LOLDrivers", "", "2024-02-29", "", "", 661}, {"Microsoft", "10.0.1.0", "", "", "", 1}};
  const std::string json = FindingsJson({}, inventory);
  EXPECT_EQ(json.substr(json.find("  \"findings\"")), R"(  "findings": [],
  "known_lists": [
    {
      "name": "LOLDrivers",
      "date": "2024-02-29",
      "entries": 661
    },
    {
      "name": "Microsoft",
      "version": "10.0.1.0",
      "entries": 1
    }
  ]
}
)");
}

}  // namespace
