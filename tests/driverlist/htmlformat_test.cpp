#include "formats/html/htmlformat.h"

#include <gmock/gmock.h>

#include "formats/html/htmldiff.h"
#include "formats/html/htmltext.h"
#include "formats/html/isotime.h"
#include "formats/html/linebreaks.h"
#include "formats/html/relations.h"
#include "formats/html/skeleton.h"
#include "formats/html/summary.h"
#include "inventory/json.h"
#include "locales.h"

using namespace driverlist;
using inventory::Column;
using inventory::Kind;
using inventory::Record;
using inventory::Records;
using inventory::ValueType;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr char Now[] = "2024-05-06T07:08:09Z";
const inventory::Head Head = {"0.1.0", "HOST", "", "10.0.22621", Now};

/// The page of an inventory, with all its members.
std::string PageOf(const Records& records) { return FormatHtml(TableOf(records), {Head, "", &records}); }

/// The page of a table, without a summary.
std::string PageOf(const Table& table) { return FormatHtml(table, {Head, "all", nullptr}); }

Column ColumnOf(std::string_view label, ValueType type) {
  Column column;
  column.name = label;
  column.label = label;
  column.type = type;
  return column;
}

Record Of(Kind kind) {
  Record record;
  record.kind = kind;
  return record;
}

Record Service(const std::string& state, const std::string& startType) {
  Record service = Of(Kind::Service);
  service.state = state;
  service.start_type = startType;
  return service;
}

Record Made(const std::string& time) {
  Record service = Of(Kind::Service);
  service.image_time = time;
  return service;
}

Record By(const std::string& provider, Kind kind = Kind::Package) {
  Record record = Of(kind);
  record.provider = provider;
  return record;
}

Record Package(const std::string& inf) {
  Record package = Of(Kind::Package);
  package.inf = inf;
  return package;
}

/// What is between the first `start` and the `end` behind it.
std::string Between(const std::string& text, const std::string& start, const std::string& end) {
  const std::size_t from = text.find(start);
  const std::size_t to = from == std::string::npos ? from : text.find(end, from + start.size());
  if (to == std::string::npos) {
    ADD_FAILURE() << "there is no " << start << " ... " << end;
    return std::string();
  }
  return text.substr(from + start.size(), to - from - start.size());
}

/// What the script of a page knows.
inventory::Json DataOf(const std::string& html) {
  return inventory::Json::parse(Between(html, "<script type=\"application/json\" id=\"data\">", "</script>"));
}

/// The texts of the elements between `start` and `end`, without their tags.
std::vector<std::string> Texts(const std::string& html, const std::string& start, const std::string& end) {
  std::vector<std::string> texts(1);
  bool inTag = false;
  for (const char c : Between(html, start, end)) {
    if (c == '<' && !texts.back().empty()) texts.emplace_back();
    if (c == '<') inTag = true;
    if (!inTag && c != '\n' && (c != ' ' || !texts.back().empty())) texts.back() += c;
    if (c == '>') inTag = false;
  }
  if (texts.back().empty()) texts.pop_back();
  return texts;
}

std::string Rows(const std::string& html) { return Between(html, "<tbody>\n", "</tbody>"); }

/// "label count/running" of each group, unknown ones in brackets.
std::vector<std::string> Described(const std::vector<Group>& groups) {
  std::vector<std::string> texts;
  for (const Group& group : groups) {
    const std::string text = group.label + " " + std::to_string(group.Count()) + "/" + std::to_string(group.running);
    texts.push_back(group.isUnknown ? "(" + text + ")" : text);
  }
  return texts;
}

// --- HtmlText

TEST(HtmlText, KeepsTextAsItIs) {
  EXPECT_EQ(HtmlText("Ger\u00E4t \u20AC \u4E2D \U0001F5A8 a-b_c#{}"), "Ger\u00E4t \u20AC \u4E2D \U0001F5A8 a-b_c#{}");
  EXPECT_EQ(HtmlText(""), "");
}

TEST(HtmlText, WritesMarkupAsText) {
  EXPECT_EQ(HtmlText("<script>alert(\"a\" & 'b')</script>"),
            "&lt;script&gt;alert(&quot;a&quot; &amp; &#39;b&#39;)&lt;/script&gt;");
  EXPECT_EQ(HtmlText("&lt;"), "&amp;lt;");
}

TEST(HtmlText, ShowsControlCharacters) {
  EXPECT_EQ(HtmlText(std::string("a\0b\t\r\n\x1B[2J\x7F", 11)),
            "a[U+0000]b[U+0009][U+000D][U+000A][U+001B][2J[U+007F]");
  EXPECT_EQ(HtmlText("\u0081\u009F"), "[U+0081][U+009F]");
}

TEST(HtmlText, ShowsWhatTurnsOrHidesText) {
  EXPECT_EQ(HtmlText("a\u202Egpj.exe\u2066\u200F\u061C"), "a[U+202E]gpj.exe[U+2066][U+200F][U+061C]");
  EXPECT_EQ(HtmlText("\u00AD\u200B\u2028\uFEFF\U000E0041"), "[U+00AD][U+200B][U+2028][U+FEFF][U+E0041]");
  EXPECT_EQ(HtmlText("\u0645\u06CC\u200C\u062E"), "\u0645\u06CC\u200C\u062E") << "Persian words need this joiner";
}

TEST(HtmlText, ReplacesWhatIsNoUtf8) {
  EXPECT_EQ(HtmlText("a\xFF"
                     "b"),
            "a\uFFFDb");
  EXPECT_THAT(HtmlText("cut \xE2\x82"), testing::StartsWith("cut \uFFFD"));
  EXPECT_THAT(HtmlText("\xC0\xBCscript>"), testing::EndsWith("script&gt;")) << "an overlong form of a bracket";
}

TEST(HtmlText, BeginsASentenceWithACapital) {
  EXPECT_EQ(Capitalized("images of 2 kinds"), "Images of 2 kinds");
  EXPECT_EQ(Capitalized("2 images"), "2 images");
  EXPECT_EQ(Capitalized("\u00E4"), "\u00E4");
  EXPECT_EQ(Capitalized(""), "");
}

// --- Places to break lines

TEST(LineBreaks, AreBehindTheMarksThatJoinNamesAndInLongWords) {
  EXPECT_EQ(Breakable("C:\\a_b/c-d&e;f,g"), "C:\\<wbr>a_<wbr>b/<wbr>c-<wbr>d&amp;<wbr>e;<wbr>f,<wbr>g");
  EXPECT_EQ(Breakable("Abcdefghijklmnopqrs"), "Abcdefghijklmnop<wbr>qrs");
  EXPECT_EQ(Breakable("Abcdefghijklmnop"), "Abcdefghijklmnop") << "there is nothing behind";
  EXPECT_EQ(Breakable("a\x1B-<b>"), "a[U+001B]-<wbr>&lt;b&gt;");
}

TEST(LineBreaks, AreNeverWithinANumber) {
  for (const char* number : {"10.0.22621.1635", "2024", "0123456789012345678901234567890123456789",
                             "a3f5e1b2c4d6a3f5e1b2c4d6a3f5e1b2c4d6a3f5e1b2c4d6a3f5e1b2c4d6a3f5"}) {
    EXPECT_EQ(Breakable(number), number);
  }
}

TEST(LineBreaks, LeavePartsOfAWidth) {
  EXPECT_EQ(WidestPart(""), 0u);
  EXPECT_EQ(WidestPart("C:\\windows\\System32"), 8u) << "the mark stays with what is before it";
  EXPECT_EQ(WidestPart("one three"), 5u);
  EXPECT_EQ(WidestPart("Abcdefghijklmnopqrs"), 16u);
  EXPECT_EQ(WidestPart("\u97F3\u6E90 \u97F3\u6E90.sys"), 4u) << "between wide characters, lines may break";
  EXPECT_EQ(WidestPart("\u0442\u0435\u043D\u044C"), 4u);
}

// --- Relations

Record Named(Kind kind, const std::string& service, const std::string& inf) {
  Record record = Of(kind);
  record.service = service;
  record.inf = inf;
  return record;
}

TEST(ReportRelations, JoinServicesDevicesAndPackagesInAnyCase) {
  Record service = Named(Kind::Service, "Net", "");
  service.path = "C:\\windows\\system32\\drivers\\NET.sys";
  Record helper = Named(Kind::Service, "helper", "");
  helper.path = "C:\\helper.sys";
  Record package = Named(Kind::Package, "", "oem1.inf");
  package.files = {"readme.txt", "Helper.SYS"};
  const Records records = {service, helper, Named(Kind::Device, "NET", "OEM1.INF"), package, Of(Kind::Chipset)};
  using Rows = std::vector<std::size_t>;
  EXPECT_THAT(Related(records), ElementsAre(Rows{2, 3}, Rows{3}, Rows{0, 3}, Rows{0, 1, 2}, Rows{}))
      << "the package is that of the device, and of the service that drives it";
}

TEST(ReportRelations, AreFewWhereADamagedSnapshotHasThousandsOfOneName) {
  Record package = Named(Kind::Package, "", "oem1.inf");
  Records records(1000, package);
  records.insert(records.end(), 1000, Named(Kind::Device, "", "oem1.inf"));
  std::size_t relations = 0;
  for (const auto& related : Related(records)) relations += related.size();
  EXPECT_EQ(relations, 2u * 16u * 1000u);
}

// --- Times

TEST(IsoTime, IsNoOtherText) {
  EXPECT_TRUE(IsIsoTime("2023-05-06T22:14:31Z"));
  for (const char* text : {"", "N/A", "2023-05-06", "2023-05-06T22:14:31", "2023-05-06T22:14:31Z ",
                           "2023-05-06 22:14:31Z", "2023-05-06T22:14:31+", "2023-05-06Taa:bb:ccZ"}) {
    EXPECT_FALSE(IsIsoTime(text)) << text;
  }
}

TEST(IsoTime, IsReadable) { EXPECT_EQ(ReadableTime("2023-05-06T22:14:31Z"), "2023-05-06 22:14:31"); }

TEST(IsoTime, OfYearsBefore) {
  EXPECT_EQ(YearsBefore("2024-05-06T07:08:09Z", 0), "2024-05-06T07:08:09Z");
  EXPECT_EQ(YearsBefore("2024-05-06T07:08:09Z", 10), "2014-05-06T07:08:09Z");
  EXPECT_EQ(YearsBefore("0003-05-06T07:08:09Z", 5), "0000-05-06T07:08:09Z");
}

// --- Summary

TEST(ReportSummary, CountsServicesDevicesAndPackages) {
  Record driven = By("Maker", Kind::Device);
  driven.inf = "oem1.inf";
  driven.problem_code = 43;
  const Summary summary =
      Summarized({Service("Running", "Boot Start"), Service("Stopped", "Manual"),
                  By("Microsoft Corporation", Kind::Service), driven, By("Maker", Kind::Device), Package("OEM1.inf"),
                  Package("netrtl.inf"), Package("disk.inf"), Of(Kind::Chipset)},
                 Now);
  EXPECT_EQ(summary.services, 3u);
  EXPECT_EQ(summary.runningServices, 1u);
  EXPECT_EQ(summary.thirdPartyServices, 2u);
  EXPECT_EQ(summary.devices, 2u);
  EXPECT_EQ(summary.devicesWithoutDriver, 1u);
  EXPECT_EQ(summary.devicesWithProblem, 1u);
  EXPECT_EQ(summary.packages, 3u);
  EXPECT_EQ(summary.oemPackages, 1u);
  EXPECT_THAT(Described(summary.byKind),
              ElementsAre("Services 3/1", "Devices 2/0", "Packages 3/0", "Chipset packages 1/0"));
}

TEST(ReportSummary, NamesTheProvidersOfMostRecordsFirst) {
  const Summary summary =
      Summarized({By("b"), By(""), By("c", Kind::Device), By("b", Kind::Chipset), By("a", Kind::Service)}, Now);
  EXPECT_THAT(Described(summary.byProvider), ElementsAre("b 2/0", "a 1/0", "c 1/0", "(Unknown 1/0)"));
}

TEST(ReportSummary, TellsAProviderOfThatNameFromAnUnknownOne) {
  EXPECT_THAT(Described(Summarized({By("Unknown"), By("")}, Now).byProvider),
              ElementsAre("Unknown 1/0", "(Unknown 1/0)"));
}

TEST(ReportSummary, PutsProvidersPastTheEighthTogether) {
  Records records = {By("j"), By("j"), By("")};
  for (const char* provider : {"a", "b", "c", "d", "e", "f", "g", "h"}) records.push_back(By(provider));
  EXPECT_THAT(
      Described(Summarized(records, Now).byProvider),
      ElementsAre("j 2/0", "a 1/0", "b 1/0", "c 1/0", "d 1/0", "e 1/0", "f 1/0", "g 1/0", "h 1/0", "(Unknown 1/0)"))
      << "one line for a single other provider would save nothing";
  records.push_back(By("i"));
  EXPECT_THAT(Described(Summarized(records, Now).byProvider),
              ElementsAre("j 2/0", "a 1/0", "b 1/0", "c 1/0", "d 1/0", "e 1/0", "f 1/0", "g 1/0",
                          "2 other providers 2/0", "(Unknown 1/0)"));
}

TEST(ReportSummary, GroupsServicesByStateAndStartType) {
  const Summary summary =
      Summarized({Service("Stopped", "Manual"), Service("Running", "Boot Start"), Service("Running", "Manual"),
                  Service("Stop Pending", "Manual"), Service("Stopped", "Disabled"), Service("Running", "Automatic"),
                  Service("Running", "System Start"), Service("Stopped", "At noon"), Service("Paused", ""),
                  Service("Paused", "Manual"), Service("", "Disabled"), Of(Kind::Device)},
                 Now);
  EXPECT_THAT(Described(summary.byState),
              ElementsAre("Running 4/4", "Stopped 3/0", "Paused 2/0", "Stop Pending 1/0", "(Unknown 1/0)"));
  EXPECT_THAT(Described(summary.byStartType),
              ElementsAre("Boot Start 1/1", "System Start 1/1", "Automatic 1/1", "Manual 4/1", "Disabled 2/0",
                          "At noon 1/0", "(Unknown 1/0)"));
}

TEST(ReportSummary, GroupsServicesByFullYearsSinceTheImageWasMade) {
  const Summary summary = Summarized(
      {Made("2024-05-06T07:08:10Z"), Made("2024-05-06T07:08:09Z"), Made("2023-05-06T07:08:10Z"),
       Made("2023-05-06T07:08:09Z"), Made("2022-05-06T07:08:10Z"), Made("2022-05-06T07:08:09Z"),
       Made("2019-05-06T07:08:10Z"), Made("2019-05-06T07:08:09Z"), Made("2014-05-06T07:08:10Z"),
       Made("2014-05-06T07:08:09Z"), Made("1970-01-01T00:00:00Z"), Made(""), Made("yesterday"), Of(Kind::Device)},
      Now);
  EXPECT_THAT(Described(summary.byAge),
              ElementsAre("Under 1 year 2/0", "1 to 2 years 2/0", "2 to 5 years 2/0", "5 to 10 years 2/0",
                          "10 years and more 2/0", "In the future 1/0", "(No time 2/0)"));
}

TEST(ReportSummary, KnowsTheAgeOnALeapDay) {
  const Summary summary =
      Summarized({Made("2023-02-28T23:59:59Z"), Made("2023-03-01T00:00:00Z")}, "2024-02-29T12:00:00Z");
  EXPECT_THAT(Described(summary.byAge), ElementsAre("Under 1 year 1/0", "1 to 2 years 1/0", "2 to 5 years 0/0",
                                                    "5 to 10 years 0/0", "10 years and more 0/0"))
      << "a year after 1 March 2023 is 1 March 2024";
}

TEST(ReportSummary, KnowsNoAgeWithoutItsOwnTime) {
  EXPECT_THAT(Described(Summarized({Made("2023-05-06T12:00:00Z")}, "noon").byAge),
              ElementsAre("Under 1 year 0/0", "1 to 2 years 0/0", "2 to 5 years 0/0", "5 to 10 years 0/0",
                          "10 years and more 0/0", "(No time 1/0)"));
}

TEST(ReportSummary, OfNothingHasAgesOnly) {
  const Summary summary = Summarized({}, Now);
  EXPECT_THAT(Described(summary.byProvider), IsEmpty());
  EXPECT_THAT(Described(summary.byState), IsEmpty());
  EXPECT_THAT(Described(summary.byStartType), IsEmpty());
  EXPECT_THAT(Described(summary.byKind), IsEmpty());
  EXPECT_THAT(Described(summary.byAge), ElementsAre("Under 1 year 0/0", "1 to 2 years 0/0", "2 to 5 years 0/0",
                                                    "5 to 10 years 0/0", "10 years and more 0/0"));
}

// --- Page

TEST(Html, SaysWhereWhenAndHowTheDriversWereListed) {
  const Records records;
  inventory::Head head = Head;
  head.host_id = "8f0c";
  const std::string html = FormatHtml(TableOf(records), {head, "", &records});
  EXPECT_EQ(Between(html, "<title>", "</title>"), "Drivers of HOST");
  EXPECT_EQ(Between(html, "name=\"generator\" content=\"", "\""), "driverlist 0.1.0");
  EXPECT_THAT(Texts(html, "<header class=\"page\">", "</header>"),
              ElementsAre("Drivers of HOST", "Listed", "2024-05-06 07:08:09 UTC", "Windows", "10.0.22621", "Host ID",
                          "8f0c", "Scope", "Inventory of services, devices and packages"));
  EXPECT_THAT(Texts(html, "<footer class=\"page\">", "</footer>"),
              ElementsAre("Written by driverlist 0.1.0. All times are UTC."));
}

TEST(Html, SaysWhichListingOfTheLibraryItShows) {
  const auto scope = [](const std::string& mode) {
    return Between(FormatHtml(Table(), {Head, mode, nullptr}), "<dt>Scope</dt><dd>", "</dd>");
  };
  EXPECT_EQ(scope("all"), "Listing of devices, services and OEM packages (all)");
  EXPECT_EQ(scope("by-device"), "Listing of present devices (by-device)");
  EXPECT_EQ(scope("registered"), "Listing of registered services (registered)");
  EXPECT_THAT(Texts(PageOf(Table()), "<footer class=\"page\">", "</footer>"),
              ElementsAre("Written by driverlist 0.1.0. Dates are in the machine&#39;s time zone."));
}

TEST(Html, LeavesOutWhatItDoesNotKnowOfTheMachine) {
  const std::string html = FormatHtml(Table(), {inventory::Head(), "", nullptr});
  EXPECT_EQ(Between(html, "<title>", "</title>"), "Drivers of an unnamed machine");
  EXPECT_THAT(Texts(html, "<header class=\"page\">", "</header>"),
              ElementsAre("Drivers of an unnamed machine", "Scope", "Inventory of services, devices and packages"));
}

TEST(Html, HasTheNumbersOfItsBarsAsText) {
  Record acpi = Service("Running", "Boot Start");
  acpi.provider = "Maker & Sons";
  acpi.image_time = "2020-05-06T12:00:00Z";
  Record beep = Service("Stopped", "Boot Start");
  beep.provider = acpi.provider;
  EXPECT_THAT(
      Texts(PageOf({acpi, beep, Of(Kind::Device), Package("oem1.inf")}), "aria-label=\"Summary\">", "</section>"),
      ElementsAre("Running services", "1 ", "of 2 services", "Third-party services", "2 ", "of 2 services",
                  "Devices without a driver", "1 ", "of 1 device", "OEM packages", "1 ", "of 1 package", "Provider",
                  "Maker &amp; Sons", "2", "Unknown", "2", "Kind", "Services", "2", "Devices", "1", "Packages", "1",
                  "State of services", "Running", "1", "Stopped", "1", "Start type of services", "Boot Start", "2",
                  "1 running", "Age of service images", "Under 1 year", "0", "1 to 2 years", "0", "2 to 5 years", "1",
                  "5 to 10 years", "0", "10 years and more", "0", "No time", "1"));
}

TEST(Html, CountsDevicesWithAProblemOnlyWhereThereAreAny) {
  Record device = Of(Kind::Device);
  EXPECT_THAT(PageOf({device}), Not(HasSubstr("Devices with a problem")));
  device.problem_code = 28;
  EXPECT_THAT(PageOf({device}), HasSubstr("<dt>Devices with a problem</dt><dd>1 <small>of 1 device</small></dd>"));
}

TEST(Html, OfALibraryListingHasNoSummary) {
  const std::string html = PageOf(TableOf({inventory::ListedDriver()}));
  EXPECT_THAT(html, Not(HasSubstr("aria-label=\"Summary\"")));
  EXPECT_THAT(html, HasSubstr("<td data-label=\"Found by device\" class=\"number\">0</td>"));
}

TEST(Html, DrawsBarsAsLongAsTheirNumbers) {
  const std::string html = PageOf({Service("Running", "Manual"), Service("Stopped", "Manual"),
                                   Service("Stopped", "Manual"), Service("Running", "Disabled")});
  EXPECT_THAT(Between(html, "<span class=\"label\">Manual</span>", "</svg>"),
              HasSubstr("<rect class=\"whole\" width=\"1000\" height=\"1\"/><rect class=\"part\" width=\"333\""));
  EXPECT_THAT(Between(html, "<span class=\"label\">Disabled</span>", "</svg>"),
              HasSubstr("<rect class=\"whole\" width=\"333\" height=\"1\"/><rect class=\"part\" width=\"333\""));
}

TEST(Html, DrawsOneAmongThousandsSoThatItIsSeen) {
  Records records(2000, By("many"));
  records.push_back(By("one"));
  EXPECT_THAT(Between(PageOf(records), "<span class=\"label\">one</span>", "</svg>"),
              HasSubstr("<rect class=\"part\" width=\"4\""));
}

TEST(Html, HasARowPerRecordAndACellPerColumn) {
  Table table;
  table.columns = {ColumnOf("Name", ValueType::Text), ColumnOf("State", ValueType::Text),
                   ColumnOf("Path", ValueType::Text), ColumnOf("Size", ValueType::Number)};
  table.columns[0].isTitle = true;
  table.columns[2].keepsEnd = true;
  table.rows = {{{"a_b.sys", Tone::Bad}, {"Running", Tone::Good}, {"C:\\a_b.sys"}, {std::uint64_t{43520}}},
                {{"<b>"}, {"Paused", Tone::Doubtful}, {}, {}}};
  const std::string html = PageOf(table);
  EXPECT_EQ(Between(html, "<thead><tr>", "</tr></thead>"),
            "<th scope=\"col\">Name</th><th scope=\"col\">State</th>"
            "<th scope=\"col\" class=\"place\">Path</th>"
            "<th scope=\"col\" class=\"number\">Size</th>");
  EXPECT_EQ(Rows(html),
            "<tr id=\"r0\"><th scope=\"row\" class=\"bad\">a_<wbr>b.sys</th>"
            "<td data-label=\"State\" class=\"good\">Running</td>"
            "<td data-label=\"Path\" class=\"place\">C:\\<wbr>a_<wbr>b.sys</td>"
            "<td data-label=\"Size\" class=\"number\">43520</td></tr>\n"
            "<tr id=\"r1\"><th scope=\"row\">&lt;b&gt;</th><td data-label=\"State\" class=\"doubtful\">Paused</td>"
            "<td></td><td></td></tr>\n");
}

TEST(Html, ShowsEachTypeOfValueInItsWay) {
  const auto cell = [](ValueType type, const inventory::Value& value) {
    Table table;
    table.columns = {ColumnOf("X", type)};
    table.rows = {{{value}}};
    return Rows(PageOf(table));
  };
  EXPECT_EQ(cell(ValueType::Version, "10.0.22621"),
            "<tr id=\"r0\"><td data-label=\"X\" class=\"version\">10.0.22621</td></tr>\n");
  EXPECT_EQ(cell(ValueType::Version, "N/A"), "<tr id=\"r0\"><td data-label=\"X\" class=\"version\">N/A</td></tr>\n");
  EXPECT_EQ(cell(ValueType::Time, "2023-05-06T22:14:31Z"),
            "<tr id=\"r0\"><td data-label=\"X, UTC\" class=\"time\">2023-05-06<span class=\"clock\"> "
            "22:14:31</span></td></tr>\n");
  EXPECT_EQ(cell(ValueType::Time, "<noon>"),
            "<tr id=\"r0\"><td data-label=\"X, UTC\" class=\"time\">&lt;noon&gt;</td></tr>\n");
  EXPECT_EQ(cell(ValueType::Date, "2023-05-06"),
            "<tr id=\"r0\"><td data-label=\"X\" class=\"time\">2023-05-06</td></tr>\n");
  EXPECT_EQ(cell(ValueType::Flag, true), "<tr id=\"r0\"><td data-label=\"X\">yes</td></tr>\n");
  EXPECT_EQ(cell(ValueType::Texts, std::vector<std::string>{"a_1.sys", "b\n.sys"}),
            "<tr id=\"r0\"><td data-label=\"X\" class=\"texts\">a_<wbr>1.sys\nb[U+000A].sys</td></tr>\n");
}

TEST(Html, LabelsEveryColumn) {
  std::vector<std::string> labels;
  for (const inventory::Member& member : inventory::Members()) {
    labels.push_back(std::string(member.label) + (member.type == ValueType::Time ? ", UTC" : ""));
  }
  EXPECT_THAT(Texts(PageOf(Records()), "<thead>", "</thead>"), testing::ElementsAreArray(labels));
}

TEST(Html, GivesColumnsTheirShareOfTheScreen) {
  Table table;
  table.columns = {ColumnOf("A", ValueType::Text), ColumnOf("B", ValueType::Text)};
  table.columns[0].width = 2;
  table.columns[1].width = 26;
  EXPECT_EQ(Between(PageOf(table), "<colgroup>", "</colgroup>"), "<col width=\"12.5%\"><col width=\"87.5%\">");
}

TEST(Html, SaysThatAListIsEmpty) {
  EXPECT_EQ(Rows(PageOf(Records())), "");
  EXPECT_THAT(PageOf(Records()), HasSubstr("<p class=\"none\">No driver was found.</p>"));
  EXPECT_THAT(PageOf({By("a")}), Not(HasSubstr("No driver was found.")));
}

TEST(Html, ShowsTextsOfAnyRecordAndHeadAsText) {
  const std::string hostile = "\"'><script>x</script></table></title>{{table}}\x1B\u202E\xFF";
  const std::string shown =
      "&quot;&#39;&gt;&lt;script&gt;x&lt;/script&gt;&lt;/table&gt;&lt;/title&gt;{{table}}[U+001B][U+202E]\uFFFD";
  Record record;
  std::size_t cells = 0;
  for (const inventory::Member& member : inventory::Members()) {
    const auto* const text = std::get_if<std::string Record::*>(&member.source);
    const auto* const texts = std::get_if<std::vector<std::string> Record::*>(&member.source);
    if (text != nullptr) record.*(*text) = hostile;
    if (texts != nullptr) record.*(*texts) = {hostile};
    cells += text != nullptr || texts != nullptr ? 1 : 0;
  }
  const Records records = {record};
  const std::string html =
      FormatHtml(TableOf(records), {{hostile, hostile, hostile, hostile, hostile}, hostile, &records});
  EXPECT_THAT(html, Not(HasSubstr("<script>x")));
  EXPECT_THAT(html, Not(HasSubstr("\x1B")));
  EXPECT_EQ(Between(html, "<title>", "</title>"), "Drivers of " + shown);
  EXPECT_THAT(Texts(html, "<header class=\"page\">", "</header>"),
              ElementsAre("Drivers of " + shown, "Listed", shown, "Windows", shown, "Host ID", shown, "Scope", shown));
  EXPECT_EQ(Between(html, "<span class=\"label\">", "</span>"), shown);
  std::string rows = Rows(html);
  for (std::size_t at; (at = rows.find("<wbr>")) != std::string::npos;) rows.erase(at, 5);
  const std::vector<std::string> texts = Texts("<" + rows + "$", "<", "$");
  EXPECT_EQ(std::count(texts.begin(), texts.end(), shown), static_cast<std::ptrdiff_t>(cells));
  EXPECT_EQ(texts.size(), cells + 2) << "besides texts, the row has its kind and the key of its version";
}

TEST(Html, GivesItsScriptAllThatIsKnownOfARow) {
  Record service = Service("Running", "Manual");
  service.name = "a.sys";
  service.version = "10.0.9";
  service.product_version = "N/A";
  service.size = 0;
  service.image_time = Now;
  Record gone = Service("Stopped", "Manual");
  gone.version = "10.0.10";
  gone.image_missing = true;
  const Records records = {service, gone};
  Table table = PartOf(TableOf(records), {0, 1}, {*inventory::FindMember("state"), *inventory::FindMember("name")});
  const inventory::Json data = DataOf(FormatHtml(table, {Head, "", &records}));
  const auto place = [](std::string_view name) {
    const auto& members = inventory::Members();
    return static_cast<std::size_t>(inventory::FindMember(name) - members.data());
  };
  EXPECT_EQ(data["shown"], inventory::Json({place("state"), place("name")}));
  EXPECT_EQ(data["columns"][place("size")],
            inventory::Json::parse(R"({"name": "size", "label": "Size, bytes", "kind": "number", "style": "number",
                                       "width": 11, "title": false})"));
  EXPECT_EQ(data["rows"][0][place("size")], 0);
  EXPECT_EQ(data["rows"][1][place("size")], "");
  EXPECT_EQ(data["rows"][1][place("image_missing")], true);
  EXPECT_EQ(data["rows"][0][place("image_time")], Now) << "as files have it";
  EXPECT_EQ(data["ranks"][std::to_string(place("version"))], inventory::Json({1, 2}));
  EXPECT_EQ(data["ranks"][std::to_string(place("product_version"))], inventory::Json({0, 0}));
  EXPECT_EQ(data["tones"][std::to_string(place("state"))], "12");
  EXPECT_EQ(data["facets"]["State of services"], inventory::Json::parse("[[0], [1]]"));
  EXPECT_EQ(data["texts"], inventory::Json::object());
}

TEST(Html, GivesItsScriptTheTextsThatThePageShowsOtherwise) {
  Record record = Of(Kind::Device);
  record.name = "a\u202Eb";
  record.names = {"x", "y\n"};
  const inventory::Json data = DataOf(PageOf({record}));
  EXPECT_EQ(data["rows"][0][1], "a[U+202E]b");
  EXPECT_EQ(data["texts"], inventory::Json::parse(R"({"0": {"1": "a\u202Eb", "23": "x;y\n"}})"));
}

// --- Findings

inventory::Finding FindingOf(const std::string& rule, inventory::Severity severity, const std::string& subject) {
  inventory::Finding finding;
  finding.rule = rule;
  finding.severity = severity;
  finding.subject = subject;
  finding.evidence = "it <is> so";
  finding.nextStep = "remove it";
  return finding;
}

std::string MeaningOf(std::string_view rule) {
  return Capitalized(std::string(inventory::FindHealthRule(rule)->meaning));
}

/// The page of services of those names, with findings.
std::string PageWith(const std::vector<inventory::Finding>& findings, const std::vector<std::string>& services) {
  Records records;
  for (const std::string& service : services) records.push_back(Named(Kind::Service, service, ""));
  HtmlContext context = {Head, "", &records, &findings, {"looked up in a list"}};
  return FormatHtml(TableOf(records), context);
}

TEST(HtmlFindings, AreBelowTheirRulesTheWorstFirst) {
  const std::string html = PageWith({FindingOf("unused-package", inventory::Severity::Low, "b"),
                                     FindingOf("known-malicious", inventory::Severity::Critical, "a"),
                                     FindingOf("unused-package", inventory::Severity::Low, "c")},
                                    {"c", "a", "b"});
  EXPECT_THAT(
      Texts(html, "class=\"page findings\" aria-labelledby=\"findings\">", "</section>"),
      ElementsAre("What deserves a look ", "3 findings", "critical", "1", MeaningOf("known-malicious"), "a", "a",
                  "it &lt;is&gt; so", "Remove it.", "low", "2", MeaningOf("unused-package"), "b, c", "b",
                  "it &lt;is&gt; so", "Remove it.", "c", "it &lt;is&gt; so", "Remove it.", "Looked up in a list."));
  EXPECT_THAT(html, HasSubstr("<dt><a href=\"#r2\">b</a></dt>")) << "a finding leads to its row";
  EXPECT_EQ(DataOf(html)["facets"]["Finding"], inventory::Json::parse("[[1], [0, 2]]"));
}

TEST(HtmlFindings, OfOtherRecordsAreLeftOut) {
  const std::string html = PageWith({FindingOf("unsigned", inventory::Severity::High, "elsewhere")}, {"a"});
  EXPECT_THAT(Texts(html, "class=\"page findings\" aria-labelledby=\"findings\">", "</section>"),
              ElementsAre("What deserves a look ", "nothing found", "Looked up in a list."));
}

TEST(HtmlFindings, AreNotThereWhenNobodyLooked) { EXPECT_THAT(PageOf({By("a")}), Not(HasSubstr("deserves a look"))); }

// --- Comparisons

TEST(HtmlDiff, HasARowPerChangeAndOpensToBothSides) {
  Record before = Named(Kind::Service, "net", "");
  before.name = "net.sys";
  before.version = "1.0";
  before.state = "Running";
  Record after = before;
  after.version = "2.0";
  after.state = "Stopped";
  inventory::Head newer = Head;
  newer.host = "LATER";
  const std::string html = FormatDiffHtml(inventory::Compare({Head, {before}}, {newer, {after}}), Head);
  EXPECT_EQ(Between(html, "<title>", "</title>"), "Changes on LATER");
  EXPECT_THAT(Texts(html, "<header class=\"page\">", "</header>"),
              ElementsAre("Changes on LATER", "Old", "HOST, Windows 10.0.22621, ", "2024-05-06 07:08:09 UTC", "New",
                          "LATER, Windows 10.0.22621, ", "2024-05-06 07:08:09 UTC"));
  EXPECT_THAT(Texts(html, "<thead>", "</thead>"), ElementsAre("Difference", "Kind", "Name", "Member", "Old", "New"));
  EXPECT_THAT(Texts(html, "<tbody>", "</tbody>"),
              ElementsAre("upgraded", "service", "net.sys", "version", "1.0", "2.0", "upgraded", "service", "net.sys",
                          "state", "Running", "Stopped"));
  EXPECT_THAT(Texts(html, "aria-label=\"Summary\">", "</section>"),
              ElementsAre("Added", "0", "Removed", "0", "Upgraded", "1", "Downgraded", "0", "Changed", "0", "The same",
                          "0 ", "records", "Difference", "upgraded", "2", "Kind", "service", "2", "Member", "version",
                          "1", "state", "1"));
  const inventory::Json data = DataOf(html);
  EXPECT_EQ(data["openingOfRow"], inventory::Json({0, 0}));
  EXPECT_EQ(data["openings"][0][2], inventory::Json({"Version", "1.0", "2.0"}));
}

TEST(HtmlDiff, OfTheSameSaysSo) {
  const std::string html = FormatDiffHtml(inventory::Compare({Head, {By("a")}}, {Head, {By("a")}}), Head);
  EXPECT_THAT(html, HasSubstr("<p class=\"none\">Nothing differs.</p>"));
  EXPECT_THAT(html, HasSubstr("<dt>The same</dt><dd>1 <small>record</small></dd>"));
}

TEST(Html, IsUtf8) {
  Record record = Of(Kind::Device);
  record.name = "\u30D7\u30EA\u30F3\u30BF\U0001F5A8";
  EXPECT_THAT(Rows(PageOf({record})), HasSubstr("<th scope=\"row\" class=\"bad\">" + record.name + "</th>"));
}

TEST(Html, NamesNothingToFetch) {
  const std::string html = PageOf({By("a")});
  for (const char* text :
       {"://", " src=", " href=", "url(", "@import", "import(", "fetch(", "XMLHttpRequest", "http:", "https:"}) {
    EXPECT_THAT(html, Not(HasSubstr(text)));
  }
  EXPECT_THAT(Between(html, "http-equiv=\"Content-Security-Policy\" content=\"", "\""),
              testing::MatchesRegex("default-src 'none'; style-src 'sha256-.+='; "
                                    "script-src 'sha256-.+='; base-uri 'none'; form-action 'none'"));
}

TEST(Html, FillsEveryPlaceOfItsSkeletonOnce) {
  const std::string skeleton(ReportSkeleton());
  EXPECT_THAT(skeleton, testing::StartsWith("<!doctype html>\n"));
  EXPECT_THAT(skeleton, testing::EndsWith("</html>\n"));
  EXPECT_THAT(skeleton, Not(HasSubstr("\r")));
  EXPECT_THAT(PageOf(Records()), Not(HasSubstr("{{")));
}

TEST(Html, IsTheSameInEveryLocale) {
  const Records records(1500, By("maker"));
  const std::string html = PageOf(records);
  EXPECT_THAT(html, HasSubstr("<span class=\"count\">1500</span>"));
  const test::HostLocale<test::GroupedDigits> grouped;
  EXPECT_EQ(PageOf(records), html);
}

}  // namespace
