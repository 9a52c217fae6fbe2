#include "formats/healthformats.h"

#include <gmock/gmock.h>

using namespace driverlist;
using inventory::Finding;

namespace {

const std::vector<Finding> TwoFindings = {{"device-without-driver", "8086-7E4C-1028-0A5C_nodriver#",
                                           "Signal processing controller by Unknown maker, as the device says"},
                                          {"unused-package", "oem3.inf", "Ger\u00E4te\u202E"}};

TEST(HealthTable, NamesTheRuleAndTheEvidence) {
  EXPECT_EQ(FormatHealthTable(TwoFindings, {0, false}),
            "device-without-driver (devices that are present and have no driver): 1\n"
            "what                           evidence\n"
            "8086-7E4C-1028-0A5C_nodriver#  Signal processing controller by Unknown maker, as the device says\n"
            "\n"
            "unused-package (OEM packages that no device and no service uses): 1\n"
            "what      evidence\n"
            "oem3.inf  Ger\u00E4te[U+202E]\n");
}

TEST(HealthTable, WrapsEvidenceOnATerminalOf80Columns) {
  EXPECT_EQ(FormatHealthTable(TwoFindings, {79, false}),
            "device-without-driver (devices that are present and have no driver): 1\n"
            "what                           evidence\n"
            "8086-7E4C-1028-0A5C_nodriver#  Signal processing controller by Unknown maker,\n"
            "                               as the device says\n"
            "\n"
            "unused-package (OEM packages that no device and no service uses): 1\n"
            "what      evidence\n"
            "oem3.inf  Ger\u00E4te[U+202E]\n");
}

TEST(HealthTable, OfNothingSaysSo) { EXPECT_EQ(FormatHealthTable({}, {0, true}), "nothing found\n"); }

TEST(HealthJson, HasTheHeadTheCountsAndTheFindings) {
  const inventory::Head head = {"0.1.0", "host", "8f0c", "10.0.1", "2024-05-06T07:08:09Z"};
  EXPECT_EQ(FormatHealthJson({TwoFindings[1]}, head), R"({
  "schema_version": 2,
  "tool_version": "0.1.0",
  "host": "host",
  "host_id": "8f0c",
  "windows": "10.0.1",
  "time": "2024-05-06T07:08:09Z",
  "summary": {
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
      "subject": "oem3.inf",
      "evidence": ")"
                                                      "Ger\u00E4te\u202E"
                                                      R"("
    }
  ]
}
)");
}

}  // namespace
