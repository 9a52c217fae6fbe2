#include "formats/diffformats.h"

#include <gmock/gmock.h>

using namespace driverlist;
using namespace inventory;

namespace {

Record Of(Kind kind, const std::string& name, const std::string& version) {
  Record record;
  record.kind = kind;
  record.name = name;
  record.version = version;
  (kind == Kind::Service ? record.service : kind == Kind::Device ? record.instance_id : record.inf) = name + " Key";
  return record;
}

/// An update of a package with its device, and a service that came.
Comparison Update() {
  Inventory before;
  before.head = {"0.1.0", "host", "4f1e", "10.0.1", "2024-05-06T07:08:09Z"};
  before.records = {Of(Kind::Device, "net_8086", "1.0"), Of(Kind::Package, "net.sys", "1.0"),
                    Of(Kind::Package, "\u0436.sys", "3")};
  Inventory after;
  after.head = {"0.2.0", "h\u00F6st", "4f1e", "10.0.2", "2024-05-07T07:08:09Z"};
  after.records = before.records;
  Record& device = after.records[0];
  Record& package = after.records[1];
  for (Record* const record : {&before.records[0], &device}) record->inf = "net.sys Key";
  device.version = package.version = "1.1";
  package.files = {"a", "b"};
  device.problem_code = 43;
  after.records.push_back(Of(Kind::Service, "new.sys", ""));
  return Compare(std::move(before), std::move(after));
}

/// Of two inventories without records.
Comparison OfHeads(const Head& before, const Head& after) {
  Comparison comparison;
  comparison.before.head = before;
  comparison.after.head = after;
  comparison.same = 3;
  return comparison;
}

TEST(DiffTable, HasARowForEachMemberThatDiffers) {
  EXPECT_EQ(FormatDiffTable(Update(), {0, false}),
            "old: host, Windows 10.0.1, 2024-05-06T07:08:09Z\n"
            "new: h\u00F6st, Windows 10.0.2, 2024-05-07T07:08:09Z\n"
            "difference  kind     name      member        old  new\n"
            "added       service  new.sys\n"
            "upgraded    package  net.sys   version       1.0  1.1\n"
            "upgraded    package  net.sys   files              a;b\n"
            "  upgraded  device   net_8086  version       1.0  1.1\n"
            "  upgraded  device   net_8086  problem_code       43\n"
            "1 added, 1 upgraded, 1 the same\n");
}

TEST(DiffTable, ColoursTheDifferences) {
  Inventory before;
  before.records = {Of(Kind::Service, "down.sys", "2"), Of(Kind::Service, "gone.sys", "1"),
                    Of(Kind::Service, "other.sys", "N/A")};
  Inventory after;
  after.records = {Of(Kind::Service, "down.sys", "1"), Of(Kind::Service, "other.sys", "1")};
  const std::string table = FormatDiffTable(Compare(std::move(before), std::move(after)), {0, true});
  EXPECT_THAT(table, testing::HasSubstr("\n\x1B[31mdowngraded\x1B[0m  service  down.sys"));
  EXPECT_THAT(table, testing::HasSubstr("\n\x1B[31mremoved\x1B[0m     service  gone.sys"));
  EXPECT_THAT(table, testing::HasSubstr("\n\x1B[33mchanged\x1B[0m     service  other.sys"));
  EXPECT_THAT(FormatDiffTable(Update(), {0, true}),
              testing::HasSubstr("\n\x1B[32madded\x1B[0m       service  new.sys"));
}

TEST(DiffTable, OfTheSameSaysSo) {
  const Head head = {"0.1.0", "host", "", "10.0.1", "2024-05-06T07:08:09Z"};
  EXPECT_EQ(FormatDiffTable(OfHeads(head, head), {0, true}),
            "old: host, Windows 10.0.1, 2024-05-06T07:08:09Z\n"
            "new: host, Windows 10.0.1, 2024-05-06T07:08:09Z\n"
            "3 the same\n");
}

TEST(DiffTable, ShowsWhatIsKnownOfAMachineAndHowItIsSpelt) {
  EXPECT_EQ(FormatDiffTable(OfHeads({}, {"", "h\u202Est", "", "", ""}), {0, false}),
            "old: \n"
            "new: h[U+202E]st\n"
            "3 the same\n");
}

TEST(DiffTable, IsReadableOnATerminalOf80Columns) {
  Inventory before;
  Inventory after;
  for (Inventory* const inventory : {&before, &after}) {
    inventory->head = {"", "host", "", "", ""};
    inventory->records = {Of(Kind::Service, "smpgpio2.sys", "1.0")};
  }
  before.records[0].path = "C:\\windows\\system32\\DriverStore\\FileRepository\\smpgpio2.inf\\smpgpio2.sys";
  after.records[0].path = "C:\\windows\\system32\\drivers\\smpgpio2.sys";
  EXPECT_EQ(FormatDiffTable(Compare(std::move(before), std::move(after)), {79, false}),
            "old: host\n"
            "new: host\n"
            "difference  kind     name          member  old                new\n"
            "changed     service  smpgpio2.sys  path    \u2026inf\\smpgpio2.sys  \u2026ers\\smpgpio2.sys\n"
            "1 changed, 0 the same\n");
}

TEST(DiffTable, ShowsBothVersionsWholeOnATerminalOf80Columns) {
  Inventory before;
  before.head = {"", "host", "", "", ""};
  before.records = {Of(Kind::Device, "nlnet_8086-15FB-1028-0A5C", "10.0.22621.1635"),
                    Of(Kind::Package, "nlnet.sys", "10.0.22621.1635"), Of(Kind::Service, "gone.sys", "1.0")};
  before.records[0].inf = "nlnet.sys Key";
  before.records[2].provider = "Example Systems";
  Inventory after = {{"", "host", "", "", ""}, {before.records[0], before.records[1]}};
  for (Record& record : after.records) record.version = "10.0.22621.20001";
  after.records[0].class_name = "Net";
  after.records[1].files = {"C:\\windows\\System32\\DriverStore\\FileRepository\\nlnet.inf_amd64\\nlnet.sys"};
  const Comparison comparison = Compare(std::move(before), std::move(after));
  EXPECT_EQ(FormatDiffTable(comparison, {79, true}),
            "old: host\n"
            "new: host\n"
            "\x1B[31mremoved\x1B[0m service gone.sys\n"
            "  provider  Example Systems\n"
            "  version   1.0\n"
            "\x1B[32mupgraded\x1B[0m package nlnet.sys\n"
            "  version  10.0.22621.1635 -> 10.0.22621.20001\n"
            "  files    -> C:\\windows\\System32\\DriverStore\\FileRepository\\nlnet.inf_amd64\\\n"
            "              nlnet.sys\n"
            "  \x1B[32mupgraded\x1B[0m device nlnet_8086-15FB-1028-0A5C\n"
            "    version  10.0.22621.1635 -> 10.0.22621.20001\n"
            "    class    -> Net\n"
            "1 removed, 1 upgraded, 0 the same\n");
  EXPECT_EQ(FormatDiffTable(comparison, {32, false}),
            "old: host\n"
            "new: host\n"
            "removed service gone.sys\n"
            "  provider  Example Systems\n"
            "  version   1.0\n"
            "upgraded package nlnet.sys\n"
            "  version  10.0.22621.1635\n"
            "           -> 10.0.22621.20001\n"
            "  files    -> C:\\windows\\\n"
            "              System32\\DriverSto\n"
            "              re\\FileRepository\\\n"
            "              nlnet.inf_amd64\\\n"
            "              nlnet.sys\n"
            "  upgraded device\n"
            "  nlnet_8086-15FB-1028-0A5C\n"
            "    version\n"
            "      10.0.22621.1635\n"
            "      -> 10.0.22621.20001\n"
            "    class\n"
            "      -> Net\n"
            "1 removed, 1 upgraded, 0 the\n"
            "same\n");
}

}  // namespace
