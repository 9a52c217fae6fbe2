#include "inventory/comparison.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>

#include "inventories.h"
#include "random.h"

using namespace inventory;
using test::DeviceRecord;
using test::PackageRecord;
using test::ServiceRecord;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Inventory Of(const Records& records) {
  Inventory inventory;
  inventory.records = records;
  return inventory;
}

Inventory OfSchema1(const Records& records) {
  Inventory inventory = Of(records);
  inventory.schema = 1;
  return inventory;
}

/// "1 upgraded package oem1.inf: version 1 -> 2; size 5 -> 6", where 1 is the group.
std::vector<std::string> Told(const Comparison& comparison) {
  std::vector<std::string> told;
  for (const Difference& difference : comparison.differences) {
    std::string changes;
    for (const Change& change : ChangesOf(difference)) {
      changes += (changes.empty() ? ": " : "; ") + std::string(change.member->name) + " " + TextOf(change.before) +
                 " -> " + TextOf(change.after);
    }
    told.push_back(std::to_string(difference.group) + " " + std::string(DifferenceName(difference.kind)) + " " +
                   std::string(KindName(difference.Latest().kind)) + " " + comparison.KeyOf(difference) + changes);
  }
  return told;
}

std::vector<std::string> Told(const Records& before, const Records& after) {
  return Told(Compare(Of(before), Of(after)));
}

/// Added, removed, upgraded, downgraded, changed, same.
std::vector<std::size_t> Counts(const Comparison& comparison) {
  std::vector<std::size_t> counts;
  for (const DifferenceKind kind : DifferenceKinds) counts.push_back(comparison.GroupsOf(kind));
  counts.push_back(comparison.same);
  return counts;
}

Record Chipset(const std::string& name, const std::string& version) {
  Record record;
  record.kind = Kind::Chipset;
  record.name = name;
  record.version = version;
  return record;
}

TEST(Comparison, OfTheSameIsNothing) {
  const Records records = {ServiceRecord("a", "1"), DeviceRecord("a", "1"), PackageRecord("a", "1"), Chipset("a", "1"),
                           ServiceRecord("b", "")};
  const Comparison comparison = Compare(Of(records), Of({records.rbegin(), records.rend()}));
  EXPECT_THAT(Told(comparison), IsEmpty());
  EXPECT_THAT(Counts(comparison), ElementsAre(0, 0, 0, 0, 0, 5));
  EXPECT_THAT(Counts(Compare(Of({}), Of({}))), ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST(Comparison, ShowsWhatIntroducesARecordThatCameOrWent) {
  Record gone = ServiceRecord("b", "2", "C:\\b.sys");
  gone.provider = "Maker";
  gone.state = "Running";
  const Comparison comparison = Compare(Of({ServiceRecord("a", "1"), gone}),
                                        Of({ServiceRecord("a", "1"), ServiceRecord("C", "3"), Chipset("d", "")}));
  EXPECT_THAT(Told(comparison),
              ElementsAre("1 removed service b: provider Maker -> ; version 2 -> ; path C:\\b.sys -> ",
                          "2 added service c: version  -> 3", "3 added chipset d"));
  EXPECT_THAT(Counts(comparison), ElementsAre(2, 1, 0, 0, 0, 1));
}

TEST(Comparison, KeepsKindsApart) {
  EXPECT_THAT(Told({DeviceRecord("a", "1")}, {ServiceRecord("a", "1")}),
              ElementsAre("1 added service a: version  -> 1", "2 removed device a: version 1 -> "));
}

TEST(Comparison, OrdersVersionsAsTheLibraryDoes) {
  const Records before = {ServiceRecord("a", "9.1"), ServiceRecord("b", "10.1"),  ServiceRecord("c", "1.2"),
                          ServiceRecord("d", "1.A"), ServiceRecord("e", "1.2.3"), ServiceRecord("f", "1.2")};
  const Records after = {ServiceRecord("a", "10.1"), ServiceRecord("b", "9.1"), ServiceRecord("c", "1.02"),
                         ServiceRecord("d", "1.b"),  ServiceRecord("e", "1.2"), ServiceRecord("f", "1.2")};
  EXPECT_THAT(Told(before, after),
              ElementsAre("1 upgraded service a: version 9.1 -> 10.1", "2 downgraded service b: version 10.1 -> 9.1",
                          "3 changed service c: version 1.2 -> 1.02", "4 upgraded service d: version 1.A -> 1.b",
                          "5 downgraded service e: version 1.2.3 -> 1.2"));
}

TEST(Comparison, TakesAVersionThatIsNotKnownForNoUpgrade) {
  EXPECT_THAT(Told({ServiceRecord("a", "N/A"), ServiceRecord("b", "1"), ServiceRecord("c", "")},
                   {ServiceRecord("a", "1"), ServiceRecord("b", "N/A"), ServiceRecord("c", "1")}),
              ElementsAre("1 changed service a: version N/A -> 1", "2 changed service b: version 1 -> N/A",
                          "3 changed service c: version  -> 1"));
}

/// Gives each member that is not made of others another value than `step` - 1 did.
struct Set {
  Record& record;
  std::uint64_t step;

  void operator()(std::string Record::*member) const { record.*member = std::to_string(step); }
  void operator()(std::optional<std::uint64_t> Record::*member) const { record.*member = step; }
  void operator()(bool Record::*member) const { record.*member = step % 2 == 0; }
  void operator()(std::vector<std::string> Record::*member) const { record.*member = {"x", std::to_string(step)}; }
  void operator()(std::string (*)(const Record&)) const {}
};

TEST(Comparison, ShowsEveryMemberThatCounts) {
  Record before;
  Record after;
  for (const Member& member : Members()) {
    std::visit(Set{before, 1}, member.source);
    std::visit(Set{after, 2}, member.source);
  }
  before.service = after.service = "key";
  before.original_inf.clear();
  ASSERT_THAT(
      Told({before}, {after}),
      ElementsAre("1 upgraded service key: provider 1 -> 2; version 1 -> 2; product_version 1 -> 2; path 1 -> 2; "
                  "state 1 -> 2; start_type 1 -> 2; image_missing  -> true; size 1 -> 2; inf 1 -> 2; "
                  "original_inf  -> 2; inf_date 1 -> 2; class 1 -> 2; files x;1 -> x;2; problem_code 1 -> 2; signature "
                  "1 -> 2; signer 1 -> 2"));
  const Change size = ChangesOf(Compare(Of({before}), Of({after})).differences.front())[7];
  EXPECT_EQ(std::get<std::uint64_t>(size.before), 1u) << "as a number";
}

TEST(Comparison, PassesOverMembersThatDoNotCount) {
  Record before = ServiceRecord("a", "1");
  Record after = before;
  after.name = "b";
  after.description = "d";
  after.image_time = "2024-05-06T07:08:09Z";
  after.devices_using = 3;
  after.hardware_id = "h";
  after.identity = "i";
  after.names = {"n"};
  EXPECT_THAT(Told({before}, {after}), IsEmpty());
}

/// A service whose image was verified.
Record VerifiedService(const std::string& version, const std::string& imageHash, const std::string& signer) {
  Record service = ServiceRecord("net", version);
  service.signature = signer.empty() ? "unsigned" : "valid";
  service.sha256 = "file " + imageHash + signer;
  service.image_sha256 = imageHash;
  service.signer = signer;
  return service;
}

TEST(Comparison, ShowsAnImageThatChangedWhileItsVersionDidNot) {
  EXPECT_THAT(Told({VerifiedService("1", "aa", "Maker")}, {VerifiedService("1", "bb", "Maker")}),
              ElementsAre("1 changed service net: image_sha256 aa -> bb"));
  EXPECT_THAT(Told({VerifiedService("1", "aa", "Maker")}, {VerifiedService("2", "bb", "Maker")}),
              ElementsAre("1 upgraded service net: version 1 -> 2"))
      << "another version is another image";
}

TEST(Comparison, ShowsAnotherSigner) {
  EXPECT_THAT(Told({VerifiedService("1", "aa", "Maker")}, {VerifiedService("2", "bb", "Somebody")}),
              ElementsAre("1 upgraded service net: version 1 -> 2; signer Maker -> Somebody"));
  EXPECT_THAT(Told({VerifiedService("1", "aa", "Maker")}, {VerifiedService("1", "aa", "")}),
              ElementsAre("1 changed service net: signature valid -> unsigned"));
}

TEST(Comparison, TakesAnInventoryThatWasNotVerifiedForNoDifference) {
  const Record verified = VerifiedService("1", "aa", "Maker");
  const Record plain = ServiceRecord("net", "1");
  EXPECT_THAT(Told({verified}, {plain}), IsEmpty());
  EXPECT_THAT(Told({plain}, {verified}), IsEmpty());
  Comparer comparer(Of({verified}));
  EXPECT_FALSE(comparer.Settle(VerifiedService("1", "bb", "Maker"), 2));
  EXPECT_TRUE(comparer.Settle(plain, 2));
}

TEST(Comparison, IgnoresTheCaseThatWindowsIgnores) {
  Record before = ServiceRecord("Ger\u00E4t", "1.A", "C:\\Windows\\\u0436.sys");
  before.inf = "OEM1.INF";
  before.original_inf = "Net.inf";
  before.files = {"A.sys", "\u0416.SYS"};
  Record after = before;
  after.service = "GER\u00C4T";
  after.path = "c:\\WINDOWS\\\u0416.SYS";
  after.inf = "oem1.inf";
  after.original_inf = "NET.INF";
  after.files = {"a.SYS", "\u0436.sys"};
  EXPECT_THAT(Told({before}, {after}), IsEmpty());
  after.provider = "maker";
  before.provider = "Maker";
  EXPECT_THAT(Told({before}, {after}), ElementsAre("1 changed service ger\u00E4t: provider Maker -> maker"));
}

TEST(Comparison, PairsRecordsOfOneKeyByWhatIsEqualThenByPath) {
  const Comparison comparison = Compare(
      Of({ServiceRecord("a", "1", "C:\\1"), ServiceRecord("a", "2", "C:\\2"), ServiceRecord("a", "3", "C:\\3")}),
      Of({ServiceRecord("a", "4", "c:\\2"), ServiceRecord("a", "3", "C:\\3")}));
  EXPECT_THAT(Told(comparison), ElementsAre("1 upgraded service a: version 2 -> 4",
                                            "2 removed service a: version 1 -> ; path C:\\1 -> "));
  EXPECT_EQ(comparison.same, 1u);
}

TEST(Comparison, PairsTheRestFromTheNewestOn) {
  EXPECT_THAT(Told({Chipset("a", "9"), Chipset("a", "10")}, {Chipset("a", "11")}),
              ElementsAre("1 upgraded chipset a: version 10 -> 11", "2 removed chipset a: version 9 -> "));
  EXPECT_THAT(Told({Chipset("a", "11")}, {Chipset("a", "9"), Chipset("a", "10")}),
              ElementsAre("1 downgraded chipset a: version 11 -> 10", "2 added chipset a: version  -> 9"));
  EXPECT_EQ(Compare(Of({Chipset("a", "1"), Chipset("a", "1")}), Of({Chipset("a", "1"), Chipset("a", "1")})).same, 2u);
  EXPECT_THAT(Told({Chipset("a", "1"), Chipset("a", "1")}, {Chipset("a", "1")}),
              ElementsAre("1 removed chipset a: version 1 -> "));
}

TEST(Comparison, FollowsAPackageThatGotAnotherName) {
  EXPECT_THAT(Told({PackageRecord("oem5.inf", "1.0", "Net.inf")}, {PackageRecord("oem7.inf", "1.1", "net.inf")}),
              ElementsAre("1 upgraded package oem7.inf: version 1.0 -> 1.1; inf oem5.inf -> oem7.inf"));
  EXPECT_THAT(Told({PackageRecord("oem5.inf", "1.1", "net.inf")}, {PackageRecord("oem7.inf", "1.0", "net.inf")}),
              ElementsAre("1 downgraded package oem7.inf: version 1.1 -> 1.0; inf oem5.inf -> oem7.inf"));
  EXPECT_THAT(Told({PackageRecord("oem5.inf", "1.0", "net.inf")}, {PackageRecord("oem7.inf", "1.0", "net.inf")}),
              ElementsAre("1 changed package oem7.inf: inf oem5.inf -> oem7.inf"));
}

TEST(Comparison, DoesNotTakeAPackageForAnotherThatGotItsName) {
  // Windows gives names that became free to the next packages.
  EXPECT_THAT(Told({PackageRecord("oem1.inf", "1.0", "net.inf"), PackageRecord("oem2.inf", "5.0", "sound.inf")},
                   {PackageRecord("oem1.inf", "5.1", "sound.inf"), PackageRecord("oem2.inf", "1.0", "net.inf")}),
              ElementsAre("1 upgraded package oem1.inf: version 5.0 -> 5.1; inf oem2.inf -> oem1.inf",
                          "2 changed package oem2.inf: inf oem1.inf -> oem2.inf"));
  EXPECT_THAT(Told({PackageRecord("oem1.inf", "1.0", "net.inf")}, {PackageRecord("oem1.inf", "5.0", "sound.inf")}),
              ElementsAre("1 removed package oem1.inf: version 1.0 -> ", "2 added package oem1.inf: version  -> 5.0"));
}

TEST(Comparison, KnowsAPackageWithoutItsDeliveredNameByItsOwn) {
  EXPECT_THAT(
      Told(
          {PackageRecord("oem1.inf", "1.0"), PackageRecord("oem2.inf", "1.0", "a.inf"), PackageRecord("oem3.inf", "1")},
          {PackageRecord("oem1.inf", "1.1"), PackageRecord("oem2.inf", "1.1"), PackageRecord("oem4.inf", "1")}),
      ElementsAre("1 upgraded package oem1.inf: version 1.0 -> 1.1",
                  "2 upgraded package oem2.inf: version 1.0 -> 1.1; original_inf a.inf -> ",
                  "3 removed package oem3.inf: version 1 -> ", "4 added package oem4.inf: version  -> 1"));
}

TEST(ComparisonGroups, AnUpdateIsOneWithItsDevicesAndServices) {
  const Records before = {ServiceRecord("net", "1.0", "C:\\old\\net.sys"),
                          ServiceRecord("filter", "1.0", "C:\\drivers\\FILTER.sys"),
                          ServiceRecord("other", "1.0"),
                          DeviceRecord("PCI\\1", "1.0", "oem5.inf", "Net"),
                          DeviceRecord("PCI\\2", "1.0", "OEM5.inf", "net"),
                          DeviceRecord("PCI\\3", "1.0", "oem9.inf", "other"),
                          PackageRecord("oem5.inf", "1.0", "net.inf", {"filter.sys"})};
  Records after = before;
  after[0] = ServiceRecord("NET", "1.1", "C:\\new\\net.sys");
  after[1].version = "1.1";
  after[2].version = "1.1";
  for (const std::size_t device : {3u, 4u}) {
    after[device].version = "1.1";
    after[device].inf = "oem7.inf";
  }
  after[5].problem_code = 43;
  after[6] = PackageRecord("oem7.inf", "1.1", "net.inf", {"filter.sys"});
  const Comparison comparison = Compare(Of(before), Of(after));
  EXPECT_THAT(
      Told(comparison),
      ElementsAre("1 upgraded service other: version 1.0 -> 1.1", "2 changed device pci\\3: problem_code  -> 43",
                  "3 upgraded package oem7.inf: version 1.0 -> 1.1; inf oem5.inf -> oem7.inf",
                  "3 upgraded service filter: version 1.0 -> 1.1",
                  "3 upgraded service net: version 1.0 -> 1.1; path C:\\old\\net.sys -> C:\\new\\net.sys",
                  "3 upgraded device pci\\1: version 1.0 -> 1.1; inf oem5.inf -> oem7.inf",
                  "3 upgraded device pci\\2: version 1.0 -> 1.1; inf OEM5.inf -> oem7.inf"));
  EXPECT_THAT(Counts(comparison), ElementsAre(0, 0, 2, 0, 1, 0));
}

TEST(ComparisonGroups, AreUpdatesAlsoWhereTheOlderPackageStaysInTheStore) {
  const Record older = PackageRecord("oem5.inf", "1.0", "net.inf", {"net.sys"});
  const Comparison comparison = Compare(
      Of({DeviceRecord("d", "1.0", "oem5.inf"), older}),
      Of({DeviceRecord("d", "1.1", "oem7.inf"), older, PackageRecord("oem7.inf", "1.1", "net.inf", {"net.sys"})}));
  EXPECT_THAT(Told(comparison), ElementsAre("1 added package oem7.inf: version  -> 1.1",
                                            "1 upgraded device d: version 1.0 -> 1.1; inf oem5.inf -> oem7.inf"));
  EXPECT_THAT(Counts(comparison), ElementsAre(0, 0, 1, 0, 0, 1));
}

TEST(ComparisonGroups, HaveWhatCameAndWentWithThePackage) {
  const Records all = {ServiceRecord("s", "1", "C:\\x\\S.SYS"), DeviceRecord("d", "1", "oem1.inf"),
                       PackageRecord("oem1.inf", "1", "a.inf", {"S.sys"})};
  EXPECT_THAT(Told(all, {}), ElementsAre("1 removed package oem1.inf: version 1 -> ",
                                         "1 removed service s: version 1 -> ; path C:\\x\\S.SYS -> ",
                                         "1 removed device d: version 1 -> "));
  EXPECT_THAT(Counts(Compare(Of({}), Of(all))), ElementsAre(1, 0, 0, 0, 0, 0));
}

TEST(ComparisonGroups, PreferWhereTheDeviceIsNow) {
  EXPECT_THAT(Told({DeviceRecord("d", "1", "oem1.inf"), PackageRecord("oem1.inf", "1", "a.inf")},
                   {DeviceRecord("d", "2", "oem2.inf"), PackageRecord("oem2.inf", "2", "b.inf")}),
              ElementsAre("1 removed package oem1.inf: version 1 -> ", "2 added package oem2.inf: version  -> 2",
                          "2 upgraded device d: version 1 -> 2; inf oem1.inf -> oem2.inf"));
  // Only the package that it had differs.
  const Record stays = PackageRecord("oem2.inf", "2", "b.inf");
  EXPECT_THAT(Told({DeviceRecord("d", "1", "oem1.inf"), PackageRecord("oem1.inf", "1", "a.inf"), stays},
                   {DeviceRecord("d", "2", "oem2.inf"), stays}),
              ElementsAre("1 removed package oem1.inf: version 1 -> ",
                          "1 upgraded device d: version 1 -> 2; inf oem1.inf -> oem2.inf"));
}

TEST(ComparisonGroups, PreferTheServiceOfADeviceToTheNameOfAFile) {
  const auto side = [](const std::string& version) -> Records {
    return {ServiceRecord("s", version, "C:\\shared.sys"), DeviceRecord("d", version, "oem2.inf", "s"),
            PackageRecord("oem1.inf", version, "a.inf", {"shared.sys"}),
            PackageRecord("oem2.inf", version, "b.inf", {"shared.sys"})};
  };
  EXPECT_THAT(Told(side("1"), side("2")),
              ElementsAre("1 upgraded package oem1.inf: version 1 -> 2", "2 upgraded package oem2.inf: version 1 -> 2",
                          "2 upgraded service s: version 1 -> 2", "2 upgraded device d: version 1 -> 2"));
}

Record Named(Kind kind, const std::string& name, const std::string& version, const std::string& path = "") {
  Record record;
  record.kind = kind;
  record.name = name;
  record.version = version;
  record.path = path;
  return record;
}

TEST(ComparisonWithSchema1, GoesByNames) {
  const Comparison comparison = Compare(
      OfSchema1({Named(Kind::Service, "a.sys", "1", "C:\\a.sys"), Named(Kind::Service, "A.SYS", "1", "D:\\a.sys"),
                 Named(Kind::Package, "p.sys", "1"), Named(Kind::Device, "d_1", "1")}),
      OfSchema1({Named(Kind::Service, "a.sys", "2", "d:\\a.sys"), Named(Kind::Package, "P.sys", "2"),
                 Named(Kind::Device, "d_1", "1"), Named(Kind::Chipset, "amd_ppd", "1")}));
  EXPECT_THAT(Told(comparison),
              ElementsAre("1 upgraded service a.sys: version 1 -> 2",
                          "2 removed service a.sys: version 1 -> ; path C:\\a.sys -> ",
                          "3 upgraded package p.sys: version 1 -> 2", "4 added chipset amd_ppd: version  -> 1"));
  EXPECT_THAT(Counts(comparison), ElementsAre(1, 1, 2, 0, 0, 1));
}

/// A machine with everything that both schemas know.
Records Machine(const std::string& version) {
  Record service = ServiceRecord("Net", version, "C:\\windows\\net.sys");
  service.name = "net.sys";
  service.provider = "Maker";
  service.state = "Running";
  service.start_type = "Manual";
  service.size = 5;
  Record card = DeviceRecord("PCI\\1", version, "oem1.inf", "Net");
  card.names = {"net_8086"};
  Record twin = card;
  twin.instance_id = "PCI\\2";
  Record package = PackageRecord("oem1.inf", version, "net.inf", {"net.sys"});
  package.provider = "Maker";
  Record unused = PackageRecord("oem2.inf", version, "unused.inf", {"unused.sys"});
  unused.provider = "Maker";
  return {service, card, twin, package, unused, Chipset("amd_ppd", "5")};
}

TEST(ComparisonWithSchema1, OfOneMachineIsNothing) {
  const Record service = Machine("1").front();
  Record listed = Named(Kind::Service, "net.sys", "1", "C:\\Windows\\NET.sys");
  listed.provider = service.provider;
  listed.state = service.state;
  listed.start_type = service.start_type;
  Records older = {Named(Kind::Device, "net_8086", "1"), Named(Kind::Device, "net.sys", "1"), listed,
                   Named(Kind::Package, "unused.sys", "1"), Named(Kind::Chipset, "amd_ppd", "5")};
  for (Record& record : older) {
    if (record.kind == Kind::Device || record.kind == Kind::Package) record.provider = "Maker";
  }
  const Comparison comparison = Compare(OfSchema1(older), Of(Machine("1")));
  EXPECT_THAT(Told(comparison), IsEmpty());
  EXPECT_EQ(comparison.same, 5u);
  EXPECT_THAT(
      Told(Compare(OfSchema1(older), Of(Machine("2")))),
      ElementsAre("1 upgraded service net.sys: version 1 -> 2", "2 upgraded device net.sys: version 1 -> 2",
                  "3 upgraded device net_8086: version 1 -> 2", "4 upgraded package unused.sys: version 1 -> 2"));
  EXPECT_THAT(Told(Compare(Of({}), OfSchema1({older.back()}))), ElementsAre("1 added chipset amd_ppd: version  -> 5"));
}

/// A few records of few names, so that many are alike.
Records RandomRecords(test::Random& random) {
  const auto text = [&random](const std::string& prefix) { return prefix + std::to_string(random.Below(3)); };
  Records records;
  for (std::size_t i = random.Below(12); i > 0; --i) {
    switch (random.Below(3)) {
      case 0:
        records.push_back(ServiceRecord(text("s"), text(""), text("C:\\s") + ".sys"));
        break;
      case 1:
        records.push_back(DeviceRecord(text("d"), text(""), text("oem"), text("s")));
        break;
      default:
        records.push_back(PackageRecord(text("oem"), text(""), text("p"), {text("s") + ".sys"}));
    }
  }
  return records;
}

TEST(Comparison, AccountsForEveryRecordOnce) {
  for (std::uint64_t seed = 1; seed <= 2000; ++seed) {
    test::Random random(seed);
    const Comparison comparison = Compare(Of(RandomRecords(random)), Of(RandomRecords(random)));
    std::multiset<const Record*> expected;
    for (const Inventory* const side : {&comparison.before, &comparison.after}) {
      for (const Record& record : side->records) expected.insert(&record);
    }
    std::multiset<const Record*> accounted;
    std::size_t last = 0;
    for (const Difference& difference : comparison.differences) {
      if (difference.before != nullptr) accounted.insert(difference.before);
      if (difference.after != nullptr) accounted.insert(difference.after);
      ASSERT_TRUE(difference.group == last || difference.group == last + 1) << "seed " << seed;
      last = difference.group;
    }
    ASSERT_EQ(accounted.size() + 2 * comparison.same, expected.size()) << "seed " << seed;
    ASSERT_TRUE(std::includes(expected.begin(), expected.end(), accounted.begin(), accounted.end())) << "seed " << seed;
  }
}

TEST(Comparison, IsTheOppositeTheOtherWayRound) {
  for (std::uint64_t seed = 1; seed <= 2000; ++seed) {
    test::Random random(seed);
    const Records before = RandomRecords(random);
    const Records after = RandomRecords(random);
    const std::vector<std::size_t> there = Counts(Compare(Of(before), Of(after)));
    const Comparison back = Compare(Of(after), Of(before));
    ASSERT_EQ(there[5], back.same) << "seed " << seed;
    std::map<DifferenceKind, std::size_t> kinds;
    for (const Difference& difference : back.differences) ++kinds[difference.kind];
    for (const Difference& difference : Compare(Of(before), Of(after)).differences) {
      const DifferenceKind opposite[] = {DifferenceKind::Removed, DifferenceKind::Added, DifferenceKind::Downgraded,
                                         DifferenceKind::Upgraded, DifferenceKind::Changed};
      --kinds[opposite[static_cast<std::size_t>(difference.kind)]];
    }
    for (const auto& [kind, count] : kinds) ASSERT_EQ(count, 0u) << DifferenceName(kind) << ", seed " << seed;
  }
}

TEST(Comparison, LetsTheSameRecordsGoWhileTheyAreRead) {
  for (std::uint64_t seed = 1; seed <= 2000; ++seed) {
    test::Random random(seed);
    const Records before = RandomRecords(random);
    const Records after = RandomRecords(random);
    Comparer comparer(Of(before));
    Inventory rest;
    for (const Record& record : after) {
      if (!comparer.Settle(record, 2)) rest.records.push_back(record);
    }
    const Comparison whole = Compare(Of(before), Of(after));
    const std::size_t settled = after.size() - rest.records.size();
    ASSERT_EQ(settled, whole.same) << "seed " << seed;
    const Comparison comparison = comparer.Compare(std::move(rest));
    ASSERT_EQ(Told(comparison), Told(whole)) << "seed " << seed;
    ASSERT_EQ(Counts(comparison), Counts(whole)) << "seed " << seed;
  }
}

TEST(Comparison, LetsNothingGoThatIsOfAnotherSchema) {
  Comparer comparer(Of({Chipset("amd_ppd", "1")}));
  EXPECT_FALSE(comparer.Settle(Chipset("amd_ppd", "1"), 1));
  EXPECT_TRUE(comparer.Settle(Chipset("amd_ppd", "1"), 2));
  EXPECT_FALSE(comparer.Settle(Chipset("amd_ppd", "1"), 2)) << "there is only one";
}

}  // namespace
