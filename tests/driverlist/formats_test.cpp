#include "formats.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <iterator>
#include <nlohmann/json.hpp>

#include "unicode.h"

using namespace driverlist;
using Orvane::DriverData;

namespace {

std::vector<Column> Fields(const std::vector<std::string>& names) {
  std::vector<Column> columns;
  for (const std::string& name : names) columns.push_back(*FindColumn(name));
  return columns;
}

DriverData Driver(const std::string& name, const std::string& version, const std::string& description = "") {
  DriverData driver;
  driver.name = name;
  driver.file_version = version;
  driver.description = description;
  return driver;
}

TEST(Columns, GiveEveryFieldItsText) {
  DriverData driver;
  std::string DriverData::*const texts[] = {
      &DriverData::name,         &DriverData::description,     &DriverData::provider,   &DriverData::path,
      &DriverData::file_version, &DriverData::state,           &DriverData::start_type, &DriverData::date,
      &DriverData::size,         &DriverData::product_version, &DriverData::reserved1,  &DriverData::reserved2};
  for (std::size_t i = 0; i < std::size(texts); ++i) driver.*texts[i] = std::to_string(i);
  driver.reserved_list = {"a", "b"};
  driver.found_by_device = 1;
  std::string all;
  for (const Column& column : AllColumns()) all += std::string(column.name) + "=" + ColumnText(driver, column) + " ";
  EXPECT_EQ(
      all,
      "name=0 description=1 provider=2 path=3 file_version=4 state=5 start_type=6 date=7 size=8 product_version=9 "
      "reserved1=10 reserved2=11 reserved_list=a;b found_by_device=1 ");
  EXPECT_EQ(FindColumn("colour"), nullptr);
}

TEST(Table, AlignsItsColumns) {
  EXPECT_EQ(FormatTable({Driver("acpi.sys", "6.2"), Driver("a.sys", ""), Driver("", "10.0.19041.1")},
                        Fields({"name", "file_version"}), 0),
            "name      file_version\n"
            "acpi.sys  6.2\n"
            "a.sys\n"
            "          10.0.19041.1\n");
}

TEST(Table, OfNothingIsItsHead) { EXPECT_EQ(FormatTable({}, Fields({"name", "size"}), 0), "name  size\n"); }

TEST(Table, FitsAWidthByCuttingTheWidestColumns) {
  const auto columns = Fields({"name", "description"});
  const std::vector<DriverData> drivers = {Driver("driver.sys", "", "a long description"),
                                           Driver("b.sys", "", "short one")};
  EXPECT_EQ(FormatTable(drivers, columns, 30),
            "name        description\n"
            "driver.sys  a long description\n"
            "b.sys       short one\n");
  EXPECT_EQ(FormatTable(drivers, columns, 25),
            "name        description\n"
            "driver.sys  a long descr\u2026\n"
            "b.sys       short one\n");
  EXPECT_EQ(FormatTable(drivers, columns, 12),
            "name   desc\u2026\n"
            "driv\u2026  a lo\u2026\n"
            "b.sys  shor\u2026\n");
}

TEST(Table, StaysWithinAnyWidth) {
  const std::vector<DriverData> drivers = {Driver("driver.sys", "1.2.3.4", "a long description")};
  for (std::size_t width = 1; width < 60; ++width) {
    const std::string table = FormatTable(drivers, AllColumns(), width);
    std::size_t start = 0;
    for (std::size_t end; (end = table.find('\n', start)) != std::string::npos; start = end + 1) {
      EXPECT_LE(Columns(table.substr(start, end - start)), width);
    }
  }
}

TEST(Table, IsReadableOnATerminalOf80Columns) {
  DriverData service = Driver("mdpower.sys", "10.0.22621.1");
  service.state = "Running";
  service.start_type = "System Start";
  service.provider = "Meridian Systems";
  DriverData device = Driver("INTC-VOKTA_HIDEVENTFILTER_0000-0000-0000-0000", "2.2.1.386");
  device.provider = "Sample Platform Components";
  EXPECT_EQ(FormatTable({service, device, Driver("nlnet_8086-15FB-1028-0A5C", "12.19.2.45")},
                        Fields({"name", "file_version", "state", "start_type", "provider"}), 79),
            "name                        file_version  state    start_type    provider\n"
            "mdpower.sys                 10.0.22621.1  Running  System Start  Meridian Syst\u2026\n"
            "INTC-VOKTA_HIDEVENTFILTER\u2026  2.2.1.386                            Sample Platfo\u2026\n"
            "nlnet_8086-15FB-1028-0A5C   12.19.2.45\n");
}

TEST(Table, ColoursStatesAndMissingDrivers) {
  DriverData running = Driver("a", "1");
  running.state = "Running";
  DriverData stopped = Driver("b", "N/A");
  stopped.state = "Stopped";
  EXPECT_EQ(FormatTable({running, stopped}, Fields({"name", "file_version", "state"}), 0, true),
            "\x1B[1mname\x1B[0m  \x1B[1mfile_version\x1B[0m  \x1B[1mstate\x1B[0m\n"
            "a     1             \x1B[32mRunning\x1B[0m\n"
            "b     \x1B[31mN/A\x1B[0m           \x1B[33mStopped\x1B[0m\n");
}

TEST(Table, LetsNoTextMoveTheCursor) {
  if (GetACP() != 1252) GTEST_SKIP() << "the bytes are those of code page 1252";
  EXPECT_EQ(FormatTable({Driver("a\x1B[2Jb\r\n\x7F\x81"
                                "c",
                                "")},
                        Fields({"name"}), 0),
            "name\na?[2Jb????c\n");
}

TEST(Csv, QuotesWhatNeedsIt) {
  EXPECT_EQ(FormatCsv({Driver("plain", "1.2"), Driver("a,b", "say \"so\""), Driver("two\r\nlines", " blank "),
                       Driver("", "")},
                      Fields({"name", "file_version"})),
            "name,file_version\r\n"
            "plain,1.2\r\n"
            "\"a,b\",\"say \"\"so\"\"\"\r\n"
            "\"two\r\nlines\", blank \r\n"
            ",\r\n");
}

TEST(Csv, HasARecordPerDriverAlsoWithOneColumnThatIsEmpty) {
  EXPECT_EQ(FormatCsv({Driver("", ""), Driver("", "")}, Fields({"name"})), "name\r\n\"\"\r\n\"\"\r\n")
      << "an empty line would be no record to many readers";
}

TEST(Json, TellsContextAndDrivers) {
  DriverData driver = Driver("acpi.sys", "6.2", "say \"so\"\n");
  driver.reserved_list = {"a", "b"};
  driver.found_by_device = 1;
  const std::string json = FormatJson({driver}, Fields({"name", "description", "reserved_list", "found_by_device"}),
                                      {"host", "2024-05-06T07:08:09Z", "registered"});
  EXPECT_EQ(json,
            "{\n"
            "  \"schema_version\": 1,\n"
            "  \"host\": \"host\",\n"
            "  \"time\": \"2024-05-06T07:08:09Z\",\n"
            "  \"mode\": \"registered\",\n"
            "  \"drivers\": [\n"
            "    {\n"
            "      \"name\": \"acpi.sys\",\n"
            "      \"description\": \"say \\\"so\\\"\\n\",\n"
            "      \"reserved_list\": [\n"
            "        \"a\",\n"
            "        \"b\"\n"
            "      ],\n"
            "      \"found_by_device\": 1\n"
            "    }\n"
            "  ]\n"
            "}\n");
}

TEST(Json, OfNothingHasAnEmptyArray) {
  const auto json = nlohmann::json::parse(FormatJson({}, AllColumns(), {"h", "t", "all"}));
  EXPECT_EQ(json.at("drivers"), nlohmann::json::array());
}

TEST(JsonLines, AreAnObjectEachThatTellsItsContext) {
  const std::string lines =
      FormatJsonLines({Driver("a.sys", "1", "two\nlines"), Driver("b.sys", "2")},
                      Fields({"name", "description", "found_by_device"}), {"host", "2024-05-06T07:08:09Z", "all"});
  EXPECT_EQ(lines, R"({"schema_version":1,"host":"host","time":"2024-05-06T07:08:09Z","mode":"all",)"
                   R"("name":"a.sys","description":"two\nlines","found_by_device":0})"
                   "\n"
                   R"({"schema_version":1,"host":"host","time":"2024-05-06T07:08:09Z","mode":"all",)"
                   R"("name":"b.sys","description":"","found_by_device":0})"
                   "\n");
}

TEST(JsonLines, OfNothingAreNone) { EXPECT_EQ(FormatJsonLines({}, AllColumns(), {}), ""); }

TEST(Markdown, LetsEveryTextMeanItself) {
  EXPECT_EQ(FormatMarkdown({Driver("a_b.sys", "1.2"), Driver("<b>|`*", "", "[x](y) & ~#\\\r\n"), Driver("", "")},
                           Fields({"name", "file_version", "description"})),
            "| name | file\\_version | description |\n"
            "| --- | --- | --- |\n"
            "| a\\_b.sys | 1.2 |  |\n"
            "| \\<b\\>\\|\\`\\* |  | \\[x\\](y) \\& \\~\\#\\\\?? |\n"
            "|  |  |  |\n");
}

TEST(Formats, AreUtf8) {
  if (GetACP() != 1252) GTEST_SKIP() << "the bytes are those of code page 1252";
  const std::vector<DriverData> drivers = {Driver("Ger\xE4t \x80", "")};
  const auto columns = Fields({"name"});
  EXPECT_EQ(FormatTable(drivers, columns, 0), "name\nGer\u00E4t \u20AC\n");
  EXPECT_EQ(FormatCsv(drivers, columns), "name\r\nGer\u00E4t \u20AC\r\n");
  EXPECT_EQ(FormatMarkdown(drivers, columns), "| name |\n| --- |\n| Ger\u00E4t \u20AC |\n");
  EXPECT_EQ(nlohmann::json::parse(FormatJson(drivers, columns, {})).at("drivers").at(0).at("name"),
            "Ger\u00E4t \u20AC");
  EXPECT_EQ(nlohmann::json::parse(FormatJsonLines(drivers, columns, {})).at("name"), "Ger\u00E4t \u20AC");
}

TEST(Utf8, IsCutBetweenCharacters) {
  EXPECT_EQ(Columns("Ger\u00E4t\u20AC"), 6u);
  EXPECT_EQ(Cut("Ger\u00E4t\u20AC", 6), "Ger\u00E4t\u20AC");
  EXPECT_EQ(Cut("Ger\u00E4t\u20AC", 5), "Ger\u00E4\u2026");
  EXPECT_EQ(Cut("Ger\u00E4t\u20AC", 4), "Ger\u2026");
  EXPECT_EQ(Cut("ab", 1), "\u2026");
  EXPECT_EQ(Cut("ab", 0), "");
  EXPECT_EQ(Cut("", 3), "");
}

TEST(Utf8, ComesFromAndGoesToUtf16) {
  EXPECT_EQ(Utf8FromWide(L"\u0436\u4E2D"), "\u0436\u4E2D");
  EXPECT_EQ(WideFromUtf8("\u0436\u4E2D"), L"\u0436\u4E2D");
  EXPECT_EQ(Utf8FromWide(L""), "");
  EXPECT_EQ(WideFromUtf8(""), L"");
}

}  // namespace
