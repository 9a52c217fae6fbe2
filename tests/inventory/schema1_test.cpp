#include "inventory/schema1.h"

#include <gmock/gmock.h>

#include "inventories.h"
#include "inventory/input.h"

using namespace inventory;
using test::DeviceRecord;
using test::PackageRecord;
using test::ServiceRecord;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

TEST(Schema1, IsReadAsFarAsRecordsHaveItsMembers) {
  EXPECT_EQ(
      test::Described(test::ReadSnapshotText(test::Schema1Text)),
      R"(schema 1 {"schema_version":2,"tool_version":"0.1.0","host":"höst","windows":"10.0.22621","time":"2024-05-06T07:08:09Z"}
{"kind":"device","name":"net_8086-15F3-1028-0A5C","description":"Disk","provider":"Maker","version":"1.2.3","version_key":"b1b2b3"}
{"kind":"device","name":"8086-7E4C-1028-0A5C_nodriver#","description":"Thing","provider":"Maker"}
{"kind":"chipset","name":"intel_chipset","description":"Intel chipset Driver","provider":"Intel","version":"10.1","version_key":"c10b1"}
{"kind":"service","name":"Gerät.sys","description":"d","provider":"p","version":"1.0","product_version":"1.1","version_key":"b1a","path":"C:\\a\\Gerät.sys","state":"Running","start_type":"Manual"}
{"kind":"service","name":"Gerät.sys","description":"d","provider":"p","path":"C:\\b\\Gerät.sys","state":"Stopped","start_type":"Manual"}
{"kind":"package","name":"old.sys","description":"Disk","provider":"Maker","version":"2.0","version_key":"b2a"}
)");
}

TEST(Schema1, SaysWhichRecordIsDamaged) {
  const auto problemWith = [](const std::string& member, const nlohmann::json& value) -> std::string {
    nlohmann::json json = nlohmann::json::parse(test::Schema1Text);
    json["drivers"][5][member] = value;
    try {
      test::ReadSnapshotText(json.dump());
    } catch (const InputProblem& problem) {
      return problem.what();
    }
    return "";
  };
  EXPECT_EQ(problemWith("found_by", "luck"), "is damaged: driver 6 (old.sys): its found_by is unknown");
  EXPECT_EQ(problemWith("found_by", "chipset"), "is damaged: driver 6 (old.sys): its found_by is unknown");
  EXPECT_EQ(problemWith("found_by", nullptr), "is damaged: driver 6 (old.sys): it has no found_by");
  EXPECT_EQ(problemWith("file_version", 5),
            "is damaged: driver 6 (old.sys): file_version is a whole number, but should be a text");
  EXPECT_EQ(problemWith("size", 5), "") << "which this schema has in KiB, and as a text";
}

/// "device a.sys 1.0", and " C:\a.sys" with a path.
std::vector<std::string> Told(const Records& records) {
  std::vector<std::string> told;
  for (const Record& record : records) {
    told.push_back(std::string(KindName(record.kind)) + " " + record.name + " " + record.version +
                   (record.path.empty() ? "" : " " + record.path));
  }
  return told;
}

Record Package(const std::string& inf, const std::string& version, const std::vector<std::string>& files,
               const std::string& name = "") {
  Record package = PackageRecord(inf, version, "", files);
  package.provider = "Maker";
  if (!name.empty()) package.name = name;
  return package;
}

TEST(Schema1, HadTheNamesOfDevicesAndTheFilesOfTheirPackages) {
  Record card = DeviceRecord("PCI\\1", "9", "oem1.inf", "net");
  card.names = {"net_8086", "net2_8086"};
  Record twin = card;
  twin.instance_id = "PCI\\2";
  Record bare = DeviceRecord("PCI\\3", "");
  bare.names = {"1234_nodriver#"};
  const Records records = {card, twin, bare, Package("OEM1.INF", "1.0", {"net.sys", "net.dll", "net2.SYS", "net.inf"})};
  EXPECT_THAT(Told(AsSchema1(records)),
              UnorderedElementsAre("device net_8086 1.0", "device net2_8086 1.0", "device net.sys 1.0",
                                   "device net2.SYS 1.0", "device net.inf 1.0", "device 1234_nodriver# "));
}

TEST(Schema1, HadTheMembersThatBothSchemasHave) {
  Record service = ServiceRecord("Net", "1.0", "C:\\net.sys");
  service.description = "d";
  service.provider = "p";
  service.product_version = "1.1";
  service.state = "Running";
  service.start_type = "Manual";
  service.image_time = "2024-05-06T07:08:09Z";
  service.size = 5;
  ASSERT_EQ(AsSchema1({service}).size(), 1u);
  Record expected = service;
  expected.service.clear();
  expected.image_time.clear();
  expected.size.reset();
  EXPECT_EQ(test::Described(AsSchema1({service}).front()), test::Described(expected));
}

TEST(Schema1, HadServicesWithAnImageAndChipsets) {
  Record missing = ServiceRecord("gone", "", "C:\\gone.sys");
  missing.image_missing = true;
  Record chipset;
  chipset.kind = Kind::Chipset;
  chipset.name = "amd_chipset";
  chipset.version = "5";
  EXPECT_THAT(
      Told(AsSchema1({ServiceRecord("a", "1", "C:\\a.sys"), ServiceRecord("a", "2", "D:\\a.sys"), missing, chipset})),
      ElementsAre("service a.sys 1 C:\\a.sys", "service a.sys 2 D:\\a.sys", "chipset amd_chipset 5"));
}

TEST(Schema1, HadOemPackagesThatNothingElseHidTheOldestOfEachName) {
  Record device = DeviceRecord("PCI\\1", "1", "oem1.inf");
  device.names = {"used_8086"};
  Record unlisted = Package("oem8.inf", "", {"unlisted.sys"});
  const Records records = {device,
                           ServiceRecord("same", "2.0", "C:\\same.sys"),
                           ServiceRecord("Older", "2.0", "C:\\Older.sys"),
                           Package("oem1.inf", "1.0", {"used.sys"}),
                           Package("oem2.inf", "0.5", {"USED.sys", "two.sys"}),
                           Package("oem3.inf", "2.0", {"same.sys"}),
                           Package("oem4.inf", "1.10", {"older.sys"}),
                           Package("oem5.inf", "1.9", {"two.sys"}),
                           Package("oem6.inf", "1.0", {"readme.txt", "six.inf"}, "delivered.inf"),
                           Package("net.inf", "1.0", {"inbox.sys"}),
                           unlisted};
  EXPECT_THAT(Told(AsSchema1(records)),
              UnorderedElementsAre("device used_8086 1.0", "device used.sys 1.0", "service same.sys 2.0 C:\\same.sys",
                                   "service Older.sys 2.0 C:\\Older.sys", "package two.sys 0.5",
                                   "package older.sys 1.10", "package six.inf 1.0", "package delivered.inf 1.0"));
}

}  // namespace
