#include "inventory/join.h"

#include <gmock/gmock.h>

#include "inventory/json.h"

using namespace inventory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

ImageTexts NoImage(const std::string& path) {
  ADD_FAILURE() << "the library listed this image: " << path;
  return {};
}

ServiceFacts Service(const std::string& name, const std::string& configured, const std::string& path) {
  ServiceFacts service;
  service.service = name;
  service.configured = configured;
  service.path = path;
  service.state = "Running";
  service.start_type = "Boot Start";
  service.image_time = "2024-05-06T07:08:09Z";
  service.size = 4096;
  return service;
}

ListedDriver Listed(const std::string& name, const std::string& path, const std::string& version) {
  ListedDriver driver;
  driver.name = name;
  driver.path = path;
  driver.file_version = version;
  driver.description = "Description of " + name;
  driver.provider = "Maker of " + name;
  driver.product_version = "1.0";
  driver.state = "Running";
  driver.start_type = "Boot Start";
  return driver;
}

/// Of the device listing.
ListedDriver ListedName(const std::string& name) {
  ListedDriver driver;
  driver.name = name;
  driver.found_by_device = 1;
  return driver;
}

std::string Text(const Record& record) {
  Json object = Json::object();
  AddMembers(object, record);
  return JsonText(object, false);
}

TEST(JoinedServices, TakeTheTextsOfTheirImageFromTheListingWithThatPath) {
  Facts facts;
  facts.services = {Service("Disk", "\\SystemRoot\\disk.sys", "C:\\Windows\\System32\\disk.sys")};
  facts.listedServices = {Listed("disk.sys", "C:\\windows\\system32\\disk.sys", "10.0.1.2")};
  const Records records = Join(facts, &NoImage);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(Text(records[0]),
            "{\"kind\":\"service\",\"name\":\"disk.sys\",\"description\":\"Description of disk.sys\","
            "\"provider\":\"Maker of disk.sys\",\"version\":\"10.0.1.2\",\"product_version\":\"1.0\","
            "\"version_key\":\"c10ab1b2\",\"service\":\"Disk\",\"path\":\"C:\\\\Windows\\\\System32\\\\disk.sys\","
            "\"state\":\"Running\",\"start_type\":\"Boot Start\",\"image_time\":\"2024-05-06T07:08:09Z\","
            "\"size\":4096}");
}

TEST(JoinedServices, ReadTheirImageWhereTheLibraryListsAnotherOrNoFile) {
  Facts facts;
  facts.services = {Service("a", "D:\\new\\disk.sys", "D:\\new\\disk.sys")};
  facts.listedServices = {Listed("disk.sys", "C:\\windows\\system32\\drivers\\disk.sys", "1.0")};
  std::vector<std::string> read;
  const Records records = Join(facts, [&read](const std::string& path) {
    read.push_back(path);
    return ImageTexts{"New disk", "New maker", "2.0 beta", "2.1"};
  });
  EXPECT_THAT(read, ElementsAre("D:\\new\\disk.sys"));
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].name, "disk.sys");
  EXPECT_EQ(records[0].path, "D:\\new\\disk.sys");
  EXPECT_EQ(records[0].description, "New disk");
  EXPECT_EQ(records[0].provider, "New maker");
  EXPECT_EQ(records[0].version, "2.0") << "up to the first blank, as the library has it";
  EXPECT_EQ(records[0].product_version, "2.1");
}

TEST(JoinedServices, AreThereWithoutTheirImage) {
  Facts facts;
  facts.services = {Service("gone", "", "C:\\Windows\\System32\\drivers\\gone.x.SYS"), Service("bare", "", "")};
  for (ServiceFacts& service : facts.services) {
    service.size.reset();
    service.image_time.clear();
  }
  facts.services[0].image_missing = true;
  const Records records = Join(facts, &NoImage);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].name, "bare.sys") << "a service whose configuration cannot be read";
  EXPECT_FALSE(records[0].image_missing);
  EXPECT_EQ(records[1].name, "gone.sys");
  EXPECT_TRUE(records[1].image_missing);
  EXPECT_EQ(records[1].version, "");
}

TEST(JoinedServices, OfOneImageAreOneRecordEach) {
  Facts facts;
  facts.services = {Service("two", "x.sys", "C:\\x.sys"), Service("One", "X.SYS", "c:\\X.SYS")};
  facts.services[1].state = "Stopped";
  facts.listedServices = {Listed("x.sys", "C:\\x.sys", "1.0"), Listed("x.sys", "C:\\x.sys", "1.0")};
  const Records records = Join(facts, &NoImage);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].service, "One");
  EXPECT_EQ(records[0].state, "Stopped");
  EXPECT_EQ(records[1].service, "two");
  EXPECT_EQ(records[1].state, "Running");
  for (const Record& record : records) EXPECT_EQ(record.version, "1.0");
}

TEST(JoinedServices, KeepTheNameUnderWhichTheLibraryListsAnotherFileForThem) {
  // The library looks for the key that carries the name of the image; there it finds the path of something else.
  Facts facts;
  facts.services = {Service("first", "drivers\\a.sys", "C:\\drivers\\a.sys"),
                    Service("second", "\\??\\D:\\b.sys", "D:\\b.sys")};
  facts.listedServices = {Listed("a.sys", "C:\\drivers\\a.sys", "1.0"), Listed("other.sys", "C:\\other.sys", "2.0")};
  const Records records = Join(facts, [](const std::string&) { return ImageTexts{"", "", "3.0", ""}; });
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].name, "a.sys");
  EXPECT_EQ(records[0].version, "1.0");
  EXPECT_EQ(records[1].name, "other.sys");
  EXPECT_EQ(records[1].path, "D:\\b.sys");
  EXPECT_EQ(records[1].version, "3.0");
}

DeviceFacts Device(const std::string& instanceId, const std::string& inf) {
  DeviceFacts device;
  device.instance_id = instanceId;
  device.hardware_id = "PCI\\VEN_8086&DEV_15F3";
  device.description = "Network adapter";
  device.manufacturer = "Some maker";
  device.class_name = "Net";
  device.service = "net";
  device.vendor_id = "8086";
  device.device_id = "15F3";
  device.identity_part3 = "1028";
  device.identity_part4 = "0A5C";
  device.inf = inf;
  device.version = "12.1.0.0";
  device.date = "5-17-2023";
  return device;
}

PackageFacts Package(const std::string& inf, std::vector<std::string> files) {
  PackageFacts package;
  package.inf = inf;
  package.original_inf = "delivered.inf";
  package.provider = "Some provider";
  package.version = "12.1.0.0";
  package.date = "2023-05-17";
  package.class_name = "Net";
  package.disk = "Some disk";
  package.files = std::move(files);
  return package;
}

TEST(JoinedDevices, HaveTheNamesUnderWhichTheLibraryListsThem) {
  Facts facts;
  facts.devices = {Device("PCI\\1", "OEM1.inf"), Device("PCI\\0", "OEM1.inf")};
  facts.devices[1].friendly_name = "Network adapter #2";
  facts.packages = {Package("oem1.inf", {"net.dll", "net.sys", "net.inf", "netvf.SYS", "lost.sys"})};
  facts.nodes = {{"pci\\1", {}, 43}};
  facts.listedDevices = {ListedName("net.sys"), ListedName("net_8086-15F3-1028-0A5C"),
                         ListedName("netvf_8086-15F3-1028-0A5C")};
  const Records records = Join(facts, &NoImage);
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(Text(records[0]),
            "{\"kind\":\"device\",\"name\":\"net_8086-15F3-1028-0A5C\",\"description\":\"Network adapter #2\","
            "\"provider\":\"Some provider\",\"version\":\"12.1.0.0\",\"version_key\":\"c12b1aa\",\"service\":\"net\","
            "\"inf\":\"OEM1.inf\",\"inf_date\":\"2023-05-17\",\"class\":\"Net\",\"instance_id\":\"PCI\\\\0\","
            "\"hardware_id\":\"PCI\\\\VEN_8086&DEV_15F3\",\"identity\":\"8086-15F3-1028-0A5C\","
            "\"names\":[\"net_8086-15F3-1028-0A5C\",\"netvf_8086-15F3-1028-0A5C\"]}");
  EXPECT_EQ(records[1].instance_id, "PCI\\1");
  EXPECT_EQ(records[1].description, "Network adapter");
  EXPECT_EQ(records[1].problem_code, 43u);
}

TEST(JoinedDevices, WithoutPackageHaveNoDriver) {
  Facts facts;
  facts.devices = {Device("PCI\\0", "")};
  facts.listedDevices = {ListedName("8086-15F3-1028-0A5C_nodriver#")};
  const Records records = Join(facts, &NoImage);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(Text(records[0]),
            "{\"kind\":\"device\",\"name\":\"8086-15F3-1028-0A5C_nodriver#\",\"description\":\"Network adapter\","
            "\"provider\":\"Some maker\",\"service\":\"net\",\"class\":\"Net\",\"instance_id\":\"PCI\\\\0\","
            "\"hardware_id\":\"PCI\\\\VEN_8086&DEV_15F3\",\"identity\":\"8086-15F3-1028-0A5C\","
            "\"names\":[\"8086-15F3-1028-0A5C_nodriver#\"]}");
}

TEST(JoinedDevices, OfOneKindGetTheirFixedNameOnce) {
  Facts facts;
  for (const char* const instance : {"ACPI\\B", "ACPI\\A"}) {
    DeviceFacts device = Device(instance, "");
    device.vendor_id = "AMDI";
    device.device_id = "0030";
    device.identity_part3 = device.identity_part4 = "0000";
    facts.devices.push_back(device);
  }
  facts.listedDevices = {ListedName("AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000"),
                         ListedName("AMDI-0030-0000-0000_nodriver#")};
  const Records records = Join(facts, &NoImage);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].name, "AMDI-0030-0000-0000_nodriver#");
  EXPECT_EQ(records[1].name, "AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000") << "the first that the device inventory reports";
}

TEST(JoinedDevices, ThatTheLibraryDoesNotNameHaveTheirIdentity) {
  Facts facts;
  facts.devices = {Device("PCI\\0", "oem1.inf")};
  facts.packages = {Package("oem1.inf", {})};
  const Records records = Join(facts, &NoImage);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].name, "8086-15F3-1028-0A5C");
  EXPECT_THAT(records[0].names, IsEmpty());
}

TEST(JoinedPackages, KnowTheirFilesAndHowManyDevicesUseThem) {
  Facts facts;
  facts.packages = {Package("oem10.inf", {}), Package("OEM2.inf", {"net.dll", "net.sys", "other.sys"})};
  facts.packages[0].disk.clear();
  // Three devices use it; one of them is installed from it and extended by it.
  facts.nodes = {{"a", {"oem2.inf"}, {}}, {"b", {"OEM2.INF", "oem2.inf"}, {}}, {"c", {"x.inf", "oem2.inf"}, {}}};
  const Records records = Join(facts, &NoImage);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(Text(records[0]),
            "{\"kind\":\"package\",\"name\":\"delivered.inf\",\"description\":\"Some provider\","
            "\"provider\":\"Some provider\",\"version\":\"12.1.0.0\",\"version_key\":\"c12b1aa\",\"inf\":\"oem10.inf\","
            "\"original_inf\":\"delivered.inf\",\"inf_date\":\"2023-05-17\",\"class\":\"Net\",\"devices_using\":0}");
  EXPECT_EQ(records[1].name, "net.sys");
  EXPECT_EQ(records[1].description, "Some disk");
  EXPECT_THAT(records[1].files, ElementsAre("net.dll", "net.sys", "other.sys"));
  EXPECT_EQ(records[1].devices_using, 3u);
}

TEST(JoinedPackages, ThatCannotBeReadHaveTheNameOfTheirInf) {
  Facts facts;
  facts.packages.emplace_back().inf = "oem7.inf";
  const Records records = Join(facts, &NoImage);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(Text(records[0]), "{\"kind\":\"package\",\"name\":\"oem7.inf\",\"inf\":\"oem7.inf\",\"devices_using\":0}");
}

TEST(JoinedChipsets, AreThoseThatTheDeviceListingHas) {
  Facts facts;
  facts.listedDevices = {ListedName("net.sys"), ListedName("intel_chipset")};
  facts.listedDevices[1].description = "Intel chipset Driver";
  facts.listedDevices[1].provider = "Intel";
  facts.listedDevices[1].file_version = "10.1";
  const Records records = Join(facts, &NoImage);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(Text(records[0]),
            "{\"kind\":\"chipset\",\"name\":\"intel_chipset\",\"description\":\"Intel chipset Driver\","
            "\"provider\":\"Intel\",\"version\":\"10.1\",\"version_key\":\"c10b1\"}");
}

}  // namespace
