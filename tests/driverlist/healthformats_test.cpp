#include "formats/healthformats.h"

#include <gmock/gmock.h>

#include "formats/formats.h"

using namespace driverlist;
using inventory::Finding;
using inventory::Severity;

namespace {

const std::vector<Finding> TwoFindings = {
    {"device-without-driver", "8086-7E4C-1028-0A5C_nodriver#",
     "Signal processing controller by Unknown maker, as the device says", Severity::Medium},
    {"unused-package", "oem3.inf", "Ger\u00E4te\u202E", Severity::Low,
     "remove with pnputil /delete-driver oem3.inf, unless its device is only "
     "unplugged, as in this long sentence"}};

TEST(HealthTable, NamesTheRuleAndTheEvidence) {
  EXPECT_EQ(
      FormatHealthTable(TwoFindings, {}, {0, false}),
      "device-without-driver (devices that are present and have no driver), medium: 1\n"
      "what                           evidence\n"
      "8086-7E4C-1028-0A5C_nodriver#  Signal processing controller by Unknown maker, as the device says\n"
      "\n"
      "unused-package (OEM packages that no device and no service uses), low: 1\n"
      "what      evidence\n"
      "oem3.inf  Ger\u00E4te[U+202E]\n"
      "          next: remove with pnputil /delete-driver oem3.inf, unless its device is only unplugged, as in this "
      "long sentence\n");
}

TEST(HealthTable, WrapsEvidenceOnATerminalOf80Columns) {
  EXPECT_EQ(FormatHealthTable(TwoFindings, {}, {79, false}),
            "device-without-driver (devices that are present and have no driver), medium: 1\n"
            "what                           evidence\n"
            "8086-7E4C-1028-0A5C_nodriver#  Signal processing controller by Unknown maker,\n"
            "                               as the device says\n"
            "\n"
            "unused-package (OEM packages that no device and no service uses), low: 1\n"
            "what      evidence\n"
            "oem3.inf  Ger\u00E4te[U+202E]\n"
            "          next: remove with pnputil /delete-driver oem3.inf, unless its device\n"
            "          is only unplugged, as in this long sentence\n");
}

TEST(HealthTable, PutsEvidenceBelowSubjectsOnATerminalOf40Columns) {
  EXPECT_EQ(FormatHealthTable(TwoFindings, {}, {39, true}),
            "device-without-driver (devices that are\n"
            "present and have no driver), medium: 1\n"
            "\x1B[33m8086-7E4C-1028-0A5C_nodriver#\x1B[0m\n"
            "  Signal processing controller by\n"
            "  Unknown maker, as the device says\n"
            "\n"
            "unused-package (OEM packages that no\n"
            "device and no service uses), low: 1\n"
            "oem3.inf\n"
            "  Ger\u00E4te[U+202E]\n"
            "  next: remove with pnputil\n"
            "  /delete-driver oem3.inf, unless its\n"
            "  device is only unplugged, as in this\n"
            "  long sentence\n");
}

TEST(HealthTable, OfNothingSaysSo) { EXPECT_EQ(FormatHealthTable({}, {}, {0, true}), "nothing found\n"); }

TEST(HealthTable, SaysWhatABaselineHides) {
  inventory::Hiding hiding;
  hiding.baseline.time = "2024-05-06T07:08:09Z";
  hiding.hidden = 1;
  EXPECT_EQ(FormatHealthTable({}, {}, {0, false}, hiding),
            "nothing new found\n\n1 finding is hidden by the baseline of 2024-05-06T07:08:09Z\n");
  hiding.hidden = 2;
  hiding.baseline.time.clear();
  EXPECT_THAT(FormatHealthTable(TwoFindings, {}, {0, false}, hiding),
              testing::EndsWith("\n\n2 findings are hidden by the baseline\n"));
}

TEST(HealthCsv, HasTheMembersOfADocument) {
  EXPECT_EQ(FormatCsv(FindingsTable({{"unsigned", "a,b", "=e", Severity::High, "n", "unsigned-1"}}), {}),
            "rule,severity,id,subject,evidence,next_step\r\nunsigned,high,unsigned-1,\"a,b\",'=e,n\r\n");
}

/// Verified by a list of the day before, and one without date.
inventory::Inventory Verified() {
  inventory::Inventory inventory;
  inventory.head.time = "2024-03-01T07:08:09Z";
  inventory.isVerified = true;
  inventory.lists = {{"LOLDrivers", "", "2024-02-29", "", "", 661}, {"Microsoft", "10.0.1.0", "", "", "", 1}};
  return inventory;
}

TEST(HealthTable, OfAVerifiedInventorySaysHowOldTheListsAre) {
  EXPECT_EQ(FormatHealthTable({}, Verified(), {0, true}),
            "nothing found\n\nlooked up in LOLDrivers of 2024-02-29, 1 day old (661 entries); Microsoft 10.0.1.0 (1 "
            "entry)\n");
  EXPECT_EQ(ListsText({{"a", "", "2023-02-28", "", "", 2}}, "2024-03-01T00:00:00Z"),
            "looked up in a of 2023-02-28, 367 days old (2 entries)");
  EXPECT_EQ(ListsText({{"a", "", "2024-03-02", "", "", 2}}, "2024-03-01T00:00:00Z"),
            "looked up in a of 2024-03-02 (2 entries)");
}

TEST(HealthTable, OfAVerifiedInventorySaysThatThereWasNoList) {
  inventory::Inventory inventory;
  inventory.isVerified = true;
  EXPECT_EQ(FormatHealthTable({}, inventory, {0, true}),
            "nothing found\n\nthere is no list of known drivers: give one with --known, or make known-drivers.json "
            "next to the program with scripts/make-known-drivers\n");
}

TEST(HealthTable, IsLoudAboutMaliciousImages) {
  EXPECT_EQ(FormatHealthTable({{"known-malicious", "evil", "e"}}, {}, {0, true}),
            "!!! known-malicious (images listed as malicious), critical: 1\n"
            "\x1B[1mwhat\x1B[0m  \x1B[1mevidence\x1B[0m\n"
            "\x1B[31mevil\x1B[0m  e\n");
}

}  // namespace
