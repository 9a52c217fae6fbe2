#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <type_traits>
#include <utility>

#include "driverinfo.h"
#include "locales.h"
#include "records.h"

using Orvane::DriverData;
using Orvane::DriverDataPre;
using Orvane::DriverDataPreComp;
using test::Described;

namespace {

/// Texts long enough to be allocated, and one short.
DriverData FullRecord() {
  DriverData driver;
  driver.name = "a name that is longer than a short string";
  driver.description = "description";
  driver.provider = "provider";
  driver.path = "path that is longer than a short string";
  driver.file_version = "1.2.3.4";
  driver.state = "state";
  driver.start_type = "start type";
  driver.date = "date";
  driver.size = "size";
  driver.product_version = "product version";
  driver.reserved1 = "first reserved text";
  driver.reserved2 = "second reserved text";
  driver.reserved_list = {"one", "two"};
  driver.found_by_device = 1;
  return driver;
}

constexpr char FullRecordText[] =
    "name=a name that is longer than a short string; description=description; provider=provider; "
    "path=path that is longer than a short string; file_version=1.2.3.4; state=state; start_type=start type; "
    "date=date; "
    "size=size; product_version=product version; reserved1=first reserved text; reserved2=second reserved text; "
    "reserved_list=one; reserved_list=two; found_by_device=1";

DriverData Record(const std::string& name, const std::string& version) {
  DriverData driver;
  driver.name = name;
  driver.file_version = version;
  return driver;
}

TEST(DriverData, StartsEmpty) { EXPECT_EQ(Described(DriverData()), "found_by_device=0"); }

/// Whether the members of an object lie behind each other in this order: the layout is part of the interface.
bool InOrder(std::initializer_list<const void*> members) {
  return std::is_sorted(members.begin(), members.end(), std::less<const void*>());
}

TEST(DriverData, HasItsFieldsInOrder) {
  const DriverData d;
  EXPECT_TRUE(InOrder({&d.name, &d.description, &d.provider, &d.path, &d.file_version, &d.state, &d.start_type, &d.date,
                       &d.size, &d.product_version, &d.reserved1, &d.reserved2, &d.reserved_list, &d.found_by_device}));
  EXPECT_EQ(static_cast<const void*>(&d.name), &d);
}

TEST(DriverDataPre, HasItsFieldsInOrder) {
  const DriverDataPre d;
  EXPECT_TRUE(InOrder({&d.text1, &d.text2, &d.sort_key, &d.text4, &d.text5, &d.text6, &d.items}));
  EXPECT_EQ(static_cast<const void*>(&d.text1), &d);
}

TEST(DriverData, CopiesEveryField) {
  const DriverData original = FullRecord();
  const DriverData copy(original);
  EXPECT_EQ(Described(copy), FullRecordText);
  EXPECT_EQ(Described(original), FullRecordText);
}

TEST(DriverData, MovesEveryFieldAndLeavesTextsAndListEmpty) {
  DriverData original = FullRecord();
  const DriverData moved(std::move(original));
  EXPECT_EQ(Described(moved), FullRecordText);
  original.found_by_device = 0;
  EXPECT_EQ(Described(original), "found_by_device=0");
}

TEST(DriverData, AssignsEveryField) {
  const DriverData original = FullRecord();
  DriverData target = Record("other", "9");
  target.reserved_list = {"three"};
  EXPECT_EQ(&(target = original), &target);
  EXPECT_EQ(Described(target), FullRecordText);
  EXPECT_EQ(Described(original), FullRecordText);
}

TEST(DriverData, MoveAssignsEveryFieldAndLeavesTextsAndListEmpty) {
  DriverData original = FullRecord();
  DriverData target = Record("another name that is longer than a short string", "9");
  target.reserved_list = {"three"};
  ASSERT_NE(target.found_by_device, original.found_by_device);
  EXPECT_EQ(&(target = std::move(original)), &target);
  EXPECT_EQ(Described(target), FullRecordText);
  EXPECT_EQ(original.found_by_device, FullRecord().found_by_device) << "a number stays where it was";
  original.found_by_device = 0;
  EXPECT_EQ(Described(original), "found_by_device=0");
}

TEST(DriverData, StaysAsItIsWhenAssignedToItself) {
  DriverData driver = FullRecord();
  DriverData& same = driver;
  driver = same;
  EXPECT_EQ(Described(driver), FullRecordText);
  driver = std::move(same);
  EXPECT_EQ(Described(driver), FullRecordText);
}

TEST(DriverData, MovesWithoutExceptions) {
  EXPECT_TRUE(std::is_nothrow_move_constructible_v<DriverData>);
  EXPECT_TRUE(std::is_nothrow_move_assignable_v<DriverData>);
}

TEST(DriverData, IsEqualByNameOnly) {
  DriverData other = Record("a.sys", "2");
  other.path = "elsewhere";
  EXPECT_TRUE(Record("a.sys", "1") == other);
  EXPECT_FALSE(Record("a.sys", "1") == Record("A.sys", "1"));
  EXPECT_FALSE(Record("a.sys", "1") == Record("a.sys2", "1"));
  EXPECT_TRUE(Record("", "1") == Record("", "2"));
}

bool OrderedBefore(const DriverData& a, const DriverData& b) { return a < b && !(b < a); }
bool Equivalent(const DriverData& a, const DriverData& b) { return !(a < b) && !(b < a); }

TEST(DriverDataOrder, IsByNameAsBytes) {
  EXPECT_TRUE(OrderedBefore(Record("a", "2"), Record("b", "1")));
  EXPECT_TRUE(OrderedBefore(Record("a", "2"), Record("aa", "1")));
  EXPECT_TRUE(OrderedBefore(Record("B", "2"), Record("a", "1")));
  EXPECT_TRUE(OrderedBefore(Record("ACPI.SYS", "2"), Record("ACPI.sys", "1")));
  EXPECT_TRUE(OrderedBefore(Record("z", "2"), Record("\xE4", "1")));
  EXPECT_TRUE(OrderedBefore(Record("", "2"), Record("a", "1")));
}

TEST(DriverDataOrder, IsByAscendingVersionWithinOneName) {
  EXPECT_TRUE(OrderedBefore(Record("a", "1.2"), Record("a", "1.10")));
  EXPECT_TRUE(OrderedBefore(Record("a", ""), Record("a", "1")));
  EXPECT_TRUE(OrderedBefore(Record("a", "1.0"), Record("a", "N/A")));
  EXPECT_TRUE(Equivalent(Record("a", "1.2"), Record("a", "01.2")));
}

TEST(DriverDataOrder, IgnoresTheCaseOfVersionsOnBothSides) {
  EXPECT_TRUE(Equivalent(Record("a", "1.2 BETA"), Record("a", "1.2 beta")));
  EXPECT_TRUE(Equivalent(Record("a", "n/a"), Record("a", "N/A")));
  EXPECT_TRUE(OrderedBefore(Record("a", "1.2 ALPHA"), Record("a", "1.2 beta")));
}

TEST(DriverDataOrder, LowersVersionsWithTheGlobalLocale) {
  EXPECT_FALSE(Equivalent(Record("a", "Q"), Record("a", "X")));
  const test::HostLocale<test::OddLetters> locale;
  EXPECT_TRUE(Equivalent(Record("a", "Q"), Record("a", "X")));
  EXPECT_TRUE(Equivalent(Record("a", "X"), Record("a", "Q")));
}

DriverDataPre FullPre() {
  DriverDataPre record;
  record.text1 = "first text, longer than a short string";
  record.text2 = "second";
  record.sort_key = "sort key, longer than a short string";
  record.text4 = "fourth";
  record.text5 = "fifth";
  record.text6 = "sixth";
  record.items = {"one", "two"};
  return record;
}

std::vector<std::string> Fields(const DriverDataPre& record) {
  std::vector<std::string> fields = {record.text1, record.text2, record.sort_key,
                                     record.text4, record.text5, record.text6};
  fields.insert(fields.end(), record.items.begin(), record.items.end());
  return fields;
}

const std::vector<std::string> FullPreFields = {"first text, longer than a short string",
                                                "second",
                                                "sort key, longer than a short string",
                                                "fourth",
                                                "fifth",
                                                "sixth",
                                                "one",
                                                "two"};
const std::vector<std::string> EmptyPreFields(6);

TEST(DriverDataPre, StartsEmpty) { EXPECT_EQ(Fields(DriverDataPre()), EmptyPreFields); }

TEST(DriverDataPre, CopiesEveryField) {
  const DriverDataPre original = FullPre();
  DriverDataPre assigned;
  EXPECT_EQ(Fields(DriverDataPre(original)), FullPreFields);
  EXPECT_EQ(Fields(assigned = original), FullPreFields);
  EXPECT_EQ(Fields(original), FullPreFields);
}

TEST(DriverDataPre, MovesEveryFieldAndLeavesTextsAndListEmpty) {
  DriverDataPre first = FullPre();
  DriverDataPre second(std::move(first));
  EXPECT_EQ(Fields(first), EmptyPreFields);
  EXPECT_EQ(Fields(second), FullPreFields);
  DriverDataPre third;
  third = std::move(second);
  EXPECT_EQ(Fields(second), EmptyPreFields);
  EXPECT_EQ(Fields(third), FullPreFields);
}

TEST(DriverDataPre, StaysAsItIsWhenAssignedToItself) {
  DriverDataPre record = FullPre();
  DriverDataPre& same = record;
  record = same;
  EXPECT_EQ(Fields(record), FullPreFields);
  record = std::move(same);
  EXPECT_EQ(Fields(record), FullPreFields);
}

bool Before(const std::string& keyA, const std::string& keyB) {
  DriverDataPre a;
  a.sort_key = keyA;
  a.text1 = "z";
  DriverDataPre b;
  b.sort_key = keyB;
  b.text1 = "a";
  return DriverDataPreComp()(a, b);
}

TEST(DriverDataPreComp, OrdersBySortKeyAsBytes) {
  EXPECT_TRUE(Before("abc", "abd"));
  EXPECT_TRUE(Before("abc", "abcd"));
  EXPECT_TRUE(Before("", "a"));
  EXPECT_TRUE(Before("Z", "a"));
  EXPECT_TRUE(Before("z", "\xE4"));
  EXPECT_FALSE(Before("abd", "abc"));
  EXPECT_FALSE(Before("abcd", "abc"));
}

TEST(DriverDataPreComp, FindsEqualKeysEqualWhateverElseDiffers) {
  EXPECT_FALSE(Before("key", "key"));
  DriverDataPre a = FullPre();
  DriverDataPre b;
  b.sort_key = a.sort_key;
  EXPECT_FALSE(DriverDataPreComp()(a, b));
  EXPECT_FALSE(DriverDataPreComp()(b, a));
}

TEST(DriverDataPreComp, AssignsToItself) {
  DriverDataPreComp comparator;
  const DriverDataPreComp other;
  EXPECT_EQ(&(comparator = other), &comparator);
  EXPECT_TRUE(std::is_empty_v<DriverDataPreComp>);
}

}  // namespace
