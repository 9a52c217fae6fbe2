#include "formats/formats.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "formats/tone.h"
#include "terminal/text.h"

using namespace driverlist;
using inventory::Kind;
using inventory::ListedDriver;
using inventory::Record;
using inventory::Records;

namespace {

std::vector<inventory::Column> Columns(const Table& table, const std::vector<std::string>& names) {
  std::vector<inventory::Column> columns;
  for (const std::string& name : names) columns.push_back(table.columns.at(IndexOf(table.columns, name)));
  return columns;
}

/// Those columns of all rows.
template <typename Owners>
Table Showing(const Owners& owners, const std::vector<std::string>& names) {
  Table table = TableOf(owners);
  std::vector<std::size_t> rows(owners.size());
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = i;
  const auto columns = Columns(table, names);
  return PartOf(std::move(table), rows, columns);
}

Record Service(const std::string& name, const std::string& version, const std::string& description = "") {
  Record record;
  record.name = name;
  record.version = version;
  record.description = description;
  return record;
}

inventory::Head TheHead() { return {"1.2.3", "host", "id", "10.0.22621", "2024-05-06T07:08:09Z"}; }

// --- Tables of records

TEST(TableOfRecords, HasACellForEveryMember) {
  Record record;
  record.kind = Kind::Package;
  record.files = {"a.sys", "b.dll"};
  record.devices_using = 0;
  const Table table = TableOf(Records{record});
  ASSERT_EQ(table.columns.size(), inventory::Members().size());
  ASSERT_EQ(table.rows.size(), 1u);
  std::string texts;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    EXPECT_EQ(table.columns[i].name, inventory::Members()[i].name);
    const std::string text = inventory::TextOf(table.rows[0][i].value);
    if (!text.empty()) texts += std::string(table.columns[i].name) + "=" + text + " ";
  }
  EXPECT_EQ(texts, "kind=package files=a.sys;b.dll devices_using=0 ");
}

TEST(TableOfListing, HasACellForEveryField) {
  ListedDriver driver;
  driver.name = "a.sys";
  driver.file_version = "1.0";
  driver.reserved_list = {"a", "b"};
  driver.found_by_device = 1;
  const Table table = TableOf(std::vector<ListedDriver>{driver});
  std::string texts;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    texts += std::string(table.columns[i].name) + "=" + inventory::TextOf(table.rows.at(0)[i].value) + " ";
  }
  EXPECT_EQ(texts,
            "name=a.sys description= provider= path= file_version=1.0 state= start_type= date= size= product_version= "
            "reserved1= reserved2= reserved_list=a;b found_by_device=1 ");
}

/// Name of the column and tone of the cells that are not plain.
std::string Tones(const Record& record) {
  const Table table = TableOf(Records{record});
  std::string tones;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Tone tone = table.rows.at(0)[i].tone;
    if (tone == Tone::Plain) continue;
    tones += std::string(table.columns[i].name) + (tone == Tone::Good       ? "=good "
                                                   : tone == Tone::Doubtful ? "=doubtful "
                                                                            : "=bad ");
  }
  return tones;
}

TEST(Tones, AreThoseOfWhatIsTrueOfARecord) {
  Record running = Service("a", "1");
  running.state = "Running";
  EXPECT_EQ(Tones(running), "state=good ");
  Record gone = Service("b", "1");
  gone.state = "Stopped";
  gone.image_missing = true;
  EXPECT_EQ(Tones(gone), "name=bad state=doubtful image_missing=bad ");
  Record device;
  device.kind = Kind::Device;
  EXPECT_EQ(Tones(device), "name=bad ") << "a device without driver";
  device.inf = "oem1.inf";
  EXPECT_EQ(Tones(device), "");
  device.problem_code = 28;
  EXPECT_EQ(Tones(device), "name=bad problem_code=bad ");
  Record package;
  package.kind = Kind::Package;
  EXPECT_EQ(Tones(package), "");
}

// --- Table

TEST(Table, AlignsItsColumns) {
  const Records records = {Service("acpi.sys", "6.2"), Service("a.sys", ""), Service("", "10.0.19041.1")};
  EXPECT_EQ(FormatTable(Showing(records, {"name", "version"}), {}),
            "name      version\n"
            "acpi.sys  6.2\n"
            "a.sys\n"
            "          10.0.19041.1\n");
}

TEST(Table, OfNothingIsItsHead) { EXPECT_EQ(FormatTable(Showing(Records(), {"name", "size"}), {}), "name  size\n"); }

TEST(Table, ShowsEveryTypeOfValue) {
  Record record = Service("a.sys", "1.0");
  record.size = 1024;
  record.image_missing = true;
  record.files = {"a.sys", "b.dll"};
  EXPECT_EQ(FormatTable(Showing(Records{record}, {"kind", "size", "image_missing", "files", "version_key"}), {}),
            "kind     size  image_missing  files        version_key\n"
            "service  1024  true           a.sys;b.dll  b1a\n");
}

TEST(Table, FitsAWidthByCuttingTheWidestColumns) {
  const Table table =
      Showing(Records{Service("driver.sys", "", "a long description"), Service("b.sys", "", "short one")},
              {"name", "description"});
  EXPECT_EQ(FormatTable(table, {30, false}),
            "name        description\n"
            "driver.sys  a long description\n"
            "b.sys       short one\n");
  EXPECT_EQ(FormatTable(table, {25, false}),
            "name        description\n"
            "driver.sys  a long descr\u2026\n"
            "b.sys       short one\n");
  EXPECT_EQ(FormatTable(table, {14, false}),
            "name    descr\u2026\n"
            "drive\u2026  a lon\u2026\n"
            "b.sys   short\u2026\n");
}

TEST(Table, StaysWithinAnyWidth) {
  const Table table = TableOf(Records{Service("\u65E5\u672C\u8A9E.sys", "1.2.3.4", "a long description\x1B")});
  // The narrowest has room for an indent and a wide character.
  for (std::size_t width = 4; width < 200; ++width) {
    const std::string text = FormatTable(table, {width, false});
    std::size_t start = 0;
    for (std::size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
      EXPECT_LE(driverlist::Columns(text.substr(start, end - start)), width);
    }
  }
}

TEST(Table, IsReadableOnATerminalOf80Columns) {
  Record service = Service("mdpower.sys", "10.0.22621.1");
  service.state = "Running";
  service.start_type = "System Start";
  service.provider = "Meridian Systems";
  Record device = Service("INTC-VOKTA_HIDEVENTFILTER_0000-0000-0000-0000", "2.2.1.386");
  device.kind = Kind::Device;
  device.provider = "Sample Platform Components";
  EXPECT_EQ(FormatTable(Showing(Records{service, device, Service("nlnet.sys", "12.19.2.45")},
                                {"kind", "name", "version", "state", "start_type", "provider"}),
                        {79, false}),
            "kind     name                version       state    start_type    provider\n"
            "service  mdpower.sys         10.0.22621.1  Running  System Start  Meridian Sys\u2026\n"
            "device   INTC-VOKTA_HIDEVE\u2026  2.2.1.386                            Sample Platf\u2026\n"
            "service  nlnet.sys           12.19.2.45\n");
}

TEST(Table, ColoursWhatIsTrueOfARecord) {
  Record running = Service("a", "1");
  running.state = "Running";
  Record gone = Service("b", "");
  gone.state = "Stopped";
  gone.image_missing = true;
  EXPECT_EQ(FormatTable(Showing(Records{running, gone}, {"name", "version", "state"}), {0, true}),
            "\x1B[1mname\x1B[0m  \x1B[1mversion\x1B[0m  \x1B[1mstate\x1B[0m\n"
            "a     1        \x1B[32mRunning\x1B[0m\n"
            "\x1B[31mb\x1B[0m              \x1B[33mStopped\x1B[0m\n");
}

TEST(Table, LetsNoTextMoveTheCursor) {
  EXPECT_EQ(FormatTable(Showing(Records{Service("a\x1B[2Jb\r\n\u202E", "")}, {"name"}), {}),
            "name\na[U+001B][2Jb[U+000D][U+000A][U+202E]\n");
}

// --- CSV

std::string CsvOf(const std::vector<std::string>& names, const CsvStyle& style) {
  Records records;
  for (const std::string& name : names) records.push_back(Service(name, ""));
  return FormatCsv(Showing(records, {"name"}), style);
}

TEST(Csv, QuotesWhatNeedsIt) {
  const Records records = {Service("plain", "1.2"), Service("a,b", "say \"so\""), Service("two\r\nlines", " blank "),
                           Service("", "")};
  EXPECT_EQ(FormatCsv(Showing(records, {"name", "version"}), {}),
            "name,version\r\n"
            "plain,1.2\r\n"
            "\"a,b\",\"say \"\"so\"\"\"\r\n"
            "\"two\r\nlines\", blank \r\n"
            ",\r\n");
}

TEST(Csv, HasARecordPerDriverAlsoWithOneColumnThatIsEmpty) {
  EXPECT_EQ(CsvOf({"", ""}, {}), "name\r\n\"\"\r\n\"\"\r\n") << "an empty line would be no record to many readers";
}

TEST(Csv, WritesEveryTypeOfValue) {
  Record record = Service("a.sys", "1.0");
  record.size = 1024;
  record.image_missing = true;
  record.files = {"a.sys", "b, c.dll"};
  EXPECT_EQ(FormatCsv(Showing(Records{record, Record()}, {"size", "image_missing", "files"}), {}),
            "size,image_missing,files\r\n"
            "1024,true,\"a.sys;b, c.dll\"\r\n"
            ",,\r\n");
}

TEST(Csv, MakesHarmlessWhatASpreadsheetWouldTakeForAFormula) {
  EXPECT_EQ(CsvOf({"=1+1", "+1", "-1", "@SUM(A1)", "\tx", "\rx", "=HYPERLINK(\"http://a\",1)"}, {}),
            "name\r\n'=1+1\r\n'+1\r\n'-1\r\n'@SUM(A1)\r\n'\tx\r\n\"'\rx\"\r\n\"'=HYPERLINK(\"\"http://a\"\",1)\"\r\n");
  EXPECT_EQ(CsvOf({"a=1", "1-1", " =1", "'=1",
                   "\u2212"
                   "1"},
                  {}),
            "name\r\na=1\r\n1-1\r\n =1\r\n'=1\r\n\u2212"
            "1\r\n")
      << "a text is one by how it begins";
  Record record;
  record.files = {"=a", "b"};
  EXPECT_EQ(FormatCsv(Showing(Records{record}, {"files"}), {}), "files\r\n'=a;b\r\n");
}

TEST(Csv, LeavesTextsAsTheyAreWhenRaw) { EXPECT_EQ(CsvOf({"=1+1", "@x"}, {true, false}), "name\r\n=1+1\r\n@x\r\n"); }

TEST(Csv, BeginsWithAByteOrderMarkWhereThatIsWanted) {
  EXPECT_EQ(CsvOf({"\u65E5"}, {false, true}), "\xEF\xBB\xBFname\r\n\u65E5\r\n");
}

// --- JSON

TEST(Json, HasTheHeadAndOnlyWhatIsKnownOfARecord) {
  Record record = Service("acpi.sys", "6.2", "say \"so\"\n");
  record.size = 1024;
  record.image_missing = true;
  record.files = {"a", "b"};
  const std::string json = FormatJson(Showing(Records{record, Record()}, {"kind", "name", "description", "version",
                                                                          "state", "image_missing", "size", "files"}),
                                      {TheHead(), ""});
  EXPECT_EQ(json,
            "{\n"
            "  \"schema_version\": 2,\n"
            "  \"tool_version\": \"1.2.3\",\n"
            "  \"host\": \"host\",\n"
            "  \"host_id\": \"id\",\n"
            "  \"windows\": \"10.0.22621\",\n"
            "  \"time\": \"2024-05-06T07:08:09Z\",\n"
            "  \"drivers\": [\n"
            "    {\n"
            "      \"kind\": \"service\",\n"
            "      \"name\": \"acpi.sys\",\n"
            "      \"description\": \"say \\\"so\\\"\\n\",\n"
            "      \"version\": \"6.2\",\n"
            "      \"image_missing\": true,\n"
            "      \"size\": 1024,\n"
            "      \"files\": [\n"
            "        \"a\",\n"
            "        \"b\"\n"
            "      ]\n"
            "    },\n"
            "    {\n"
            "      \"kind\": \"service\"\n"
            "    }\n"
            "  ]\n"
            "}\n");
}

TEST(Json, HasAllFieldsOfAListingOfTheLibrary) {
  const std::string json =
      FormatJson(TableOf(std::vector<ListedDriver>(1)), {{"1.2.3", "", "", "", "time"}, "registered"});
  EXPECT_EQ(
      nlohmann::ordered_json::parse(json).dump(),
      R"({"schema_version":2,"tool_version":"1.2.3","time":"time","mode":"registered","drivers":[{"name":"",)"
      R"("description":"","provider":"","path":"","file_version":"","state":"","start_type":"","date":"","size":"",)"
      R"("product_version":"","reserved1":"","reserved2":"","reserved_list":[],"found_by_device":0}]})");
}

TEST(Json, OfNothingHasAnEmptyArray) {
  EXPECT_EQ(nlohmann::json::parse(FormatJson(TableOf(Records()), {TheHead(), ""})).at("drivers"),
            nlohmann::json::array());
}

TEST(Json, CallsCountsGroups) {
  Record record;
  record.image_missing = true;
  const Table table = Showing(Records{record}, {"provider", "image_missing"});
  const auto json = nlohmann::json::parse(FormatJson(table, {TheHead(), "", true}));
  EXPECT_EQ(json.at("groups"), nlohmann::json::parse(R"([{"image_missing": true}])"));
  EXPECT_FALSE(json.contains("drivers"));
}

TEST(JsonLines, AreAnObjectEachWithTheHead) {
  const Table table =
      Showing(Records{Service("a.sys", "1", "two\nlines"), Service("b.sys", "2")}, {"name", "description"});
  EXPECT_EQ(FormatJsonLines(table, {TheHead(), ""}),
            R"({"schema_version":2,"tool_version":"1.2.3","host":"host","host_id":"id","windows":"10.0.22621",)"
            R"("time":"2024-05-06T07:08:09Z","name":"a.sys","description":"two\nlines"})"
            "\n"
            R"({"schema_version":2,"tool_version":"1.2.3","host":"host","host_id":"id","windows":"10.0.22621",)"
            R"("time":"2024-05-06T07:08:09Z","name":"b.sys"})"
            "\n");
}

TEST(JsonLines, SayWhichListingTheyAre) {
  EXPECT_EQ(FormatJsonLines(Showing(std::vector<ListedDriver>(1), {"name"}), {{"1", "", "", "", ""}, "all"}),
            R"({"schema_version":2,"tool_version":"1","mode":"all","name":""})"
            "\n");
}

TEST(JsonLines, OfNothingAreNone) { EXPECT_EQ(FormatJsonLines(TableOf(Records()), {TheHead(), ""}), ""); }

// --- Markdown

TEST(Markdown, LetsEveryTextMeanItself) {
  const Records records = {Service("a_b.sys", "1.2"), Service("<b>|`*", "", "[x](y) & ~#\\\r\n"), Service("", "")};
  EXPECT_EQ(FormatMarkdown(Showing(records, {"name", "product_version", "description"})),
            "| name | product\\_version | description |\n"
            "| --- | --- | --- |\n"
            "| a\\_b.sys |  |  |\n"
            "| \\<b\\>\\|\\`\\* |  | \\[x\\](y) \\& \\~\\#\\\\\\[U+000D\\]\\[U+000A\\] |\n"
            "|  |  |  |\n");
}

TEST(Markdown, ShowsWhatTurnsText) {
  EXPECT_EQ(FormatMarkdown(Showing(Records{Service("\u202Egpj.sys", "")}, {"name"})),
            "| name |\n| --- |\n| \\[U+202E\\]gpj.sys |\n");
}

TEST(Formats, AreUtf8) {
  const std::string name = "Ger\u00E4t \u20AC \u0442\u0435\u0441\u0442 \u65E5\u672C\u8A9E \U0001F680";
  const Table table = Showing(Records{Service(name, "")}, {"name"});
  EXPECT_EQ(FormatTable(table, {}), "name\n" + name + "\n");
  EXPECT_EQ(FormatCsv(table, {}), "name\r\n" + name + "\r\n");
  EXPECT_EQ(FormatMarkdown(table), "| name |\n| --- |\n| " + name + " |\n");
  EXPECT_EQ(nlohmann::json::parse(FormatJson(table, {})).at("drivers").at(0).at("name"), name);
  EXPECT_EQ(nlohmann::json::parse(FormatJsonLines(table, {})).at("name"), name);
}

}  // namespace
