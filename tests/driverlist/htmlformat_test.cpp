#include "htmlformat.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "htmltext.h"
#include "imagedate.h"
#include "locales.h"
#include "skeleton.h"
#include "summary.h"

using namespace driverlist;
using Orvane::DriverData;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const ListingContext Context = {"HOST", "2024-05-06T07:08:09Z", "all"};

std::vector<Column> Fields(const std::vector<std::string>& names) {
  std::vector<Column> columns;
  for (const std::string& name : names) columns.push_back(*FindColumn(name));
  return columns;
}

DriverData Named(const std::string& name) {
  DriverData driver;
  driver.name = name;
  return driver;
}

DriverData By(const std::string& provider) {
  DriverData driver;
  driver.provider = provider;
  return driver;
}

DriverData Service(const std::string& state, const std::string& startType) {
  DriverData driver;
  driver.state = state;
  driver.start_type = startType;
  return driver;
}

DriverData Dated(const std::string& date) {
  DriverData driver;
  driver.date = date;
  return driver;
}

/// What stands between the first `start` and the `end` behind it.
std::string Between(const std::string& text, const std::string& start, const std::string& end) {
  const std::size_t from = text.find(start);
  const std::size_t to = from == std::string::npos ? from : text.find(end, from + start.size());
  if (to == std::string::npos) {
    ADD_FAILURE() << "there is no " << start << " ... " << end;
    return std::string();
  }
  return text.substr(from + start.size(), to - from - start.size());
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
    const std::string text = group.label + " " + std::to_string(group.drivers) + "/" + std::to_string(group.running);
    texts.push_back(group.unknown ? "(" + text + ")" : text);
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

// --- Dates

TEST(ImageDate, IsWrittenUnambiguously) {
  EXPECT_EQ(IsoText(*ParseImageDate("05/06/2023 22:14:31")), "2023-05-06 22:14:31");
  EXPECT_EQ(IsoText(*ParseImageDate("12/31/1999 ")), "1999-12-31 00:00:00") << "so records write midnight";
}

TEST(ImageDate, IsNoOtherText) {
  for (const char* text : {"", "N/A", "05/06/2023", "5/6/2023 22:14:31", "13/06/2023 22:14:31", "00/06/2023 22:14:31",
                           "05/32/2023 22:14:31", "05/00/2023 22:14:31", "05/06/0000 22:14:31", "05/06/2023 22:14",
                           "05/06/2023 22:14:31 ", "2023-05-06 22:14:31", "05/06/2023 aa:bb:cc"}) {
    EXPECT_FALSE(ParseImageDate(text)) << text;
  }
}

TEST(DayNumber, CountsTheDaysOfTheCalendar) {
  EXPECT_EQ(DayNumber({2024, 3, 1}) - DayNumber({2024, 2, 28}), 2);
  EXPECT_EQ(DayNumber({2023, 3, 1}) - DayNumber({2023, 2, 28}), 1);
  EXPECT_EQ(DayNumber({2100, 3, 1}) - DayNumber({2100, 2, 28}), 1);
  EXPECT_EQ(DayNumber({2024, 1, 1}) - DayNumber({2023, 12, 31}), 1);
  EXPECT_EQ(DayNumber({2001, 1, 1}) - DayNumber({1601, 1, 1}), 146097);
  EXPECT_EQ(DayNumber({2023, 2, 29}), DayNumber({2023, 3, 1}));
}

// --- Summary

TEST(ReportSummary, CountsDriversServicesAndDevices) {
  const Summary summary =
      Summarized({Service("Running", "Boot Start"), Service("Stopped", "Manual"), Named("8086-0001_nodriver#"),
                  Named("_nodriver#.sys"), By("Maker"), By("Maker"), By("maker")},
                 Context.time);
  EXPECT_EQ(summary.drivers, 7u);
  EXPECT_EQ(summary.services, 2u);
  EXPECT_EQ(summary.running, 1u);
  EXPECT_EQ(summary.devicesWithoutDriver, 1u);
  EXPECT_EQ(summary.providers, 2u);
}

TEST(ReportSummary, NamesTheProvidersOfMostDriversFirst) {
  const Summary summary = Summarized({By("b"), By(""), By("c"), By("b"), By("a")}, Context.time);
  EXPECT_THAT(Described(summary.byProvider), ElementsAre("b 2/0", "a 1/0", "c 1/0", "(Unknown 1/0)"));
}

TEST(ReportSummary, PutsProvidersPastTheEighthTogether) {
  std::vector<DriverData> drivers = {By("j"), By("j"), By("")};
  for (const char* provider : {"a", "b", "c", "d", "e", "f", "g", "h"}) drivers.push_back(By(provider));
  EXPECT_THAT(
      Described(Summarized(drivers, Context.time).byProvider),
      ElementsAre("j 2/0", "a 1/0", "b 1/0", "c 1/0", "d 1/0", "e 1/0", "f 1/0", "g 1/0", "h 1/0", "(Unknown 1/0)"))
      << "one line for a single other provider would save nothing";
  drivers.push_back(By("i"));
  EXPECT_THAT(Described(Summarized(drivers, Context.time).byProvider),
              ElementsAre("j 2/0", "a 1/0", "b 1/0", "c 1/0", "d 1/0", "e 1/0", "f 1/0", "g 1/0",
                          "2 other providers 2/0", "(Unknown 1/0)"));
}

TEST(ReportSummary, GroupsByStateAndStartType) {
  const Summary summary = Summarized(
      {Service("Running", "Boot Start"), Service("Stopped", "Manual"), Service("Running", "Manual"),
       Service("Stop Pending", "Manual"), Service("Stopped", "Disabled"), Service("Running", "Automatic"),
       Service("Running", "System Start"), Service("Stopped", "At noon"), Service("Running", ""), Service("", "")},
      Context.time);
  EXPECT_THAT(Described(summary.byState),
              ElementsAre("Running 5/5", "Stopped 3/0", "Other state 1/0", "(Not a service 1/0)"));
  EXPECT_THAT(Described(summary.byStartType), ElementsAre("Boot Start 1/1", "System Start 1/1", "Automatic 1/1",
                                                          "Manual 3/1", "Disabled 1/0", "Other start type 2/1"));
}

TEST(ReportSummary, GroupsByFullYearsSinceTheImageWasMade) {
  const Summary summary =
      Summarized({Dated("05/08/2024 00:00:01"), Dated("05/07/2024 23:00:00"), Dated("05/07/2023 00:00:00"),
                  Dated("05/06/2023 23:59:59"), Dated("05/07/2022 12:00:00"), Dated("05/06/2022 12:00:00"),
                  Dated("05/07/2019 12:00:00"), Dated("05/06/2019 12:00:00"), Dated("05/07/2014 12:00:00"),
                  Dated("05/06/2014 12:00:00"), Dated("01/01/1970 "), Dated(""), Dated("yesterday")},
                 "2024-05-06T07:08:09Z");
  EXPECT_THAT(Described(summary.byAge),
              ElementsAre("Under 1 year 2/0", "1 to 2 years 2/0", "2 to 5 years 2/0", "5 to 10 years 2/0",
                          "10 years and more 2/0", "In the future 1/0", "(No date 2/0)"));
}

TEST(ReportSummary, KnowsTheAgeOnALeapDay) {
  const Summary summary =
      Summarized({Dated("03/01/2023 12:00:00"), Dated("03/02/2023 12:00:00")}, "2024-02-29T12:00:00Z");
  EXPECT_THAT(Described(summary.byAge), testing::Contains("1 to 2 years 1/0"))
      << "a year before 29 February is 1 March";
}

TEST(ReportSummary, KnowsNoAgeWithoutTheTimeOfTheReport) {
  EXPECT_THAT(Described(Summarized({Dated("05/06/2023 12:00:00")}, "noon").byAge), testing::Contains("(No date 1/0)"));
}

TEST(ReportSummary, OfNothingHasAgesOnly) {
  const Summary summary = Summarized({}, Context.time);
  EXPECT_THAT(Described(summary.byProvider), IsEmpty());
  EXPECT_THAT(Described(summary.byState), IsEmpty());
  EXPECT_THAT(Described(summary.byStartType), IsEmpty());
  EXPECT_THAT(Described(summary.byAge), ElementsAre("Under 1 year 0/0", "1 to 2 years 0/0", "2 to 5 years 0/0",
                                                    "5 to 10 years 0/0", "10 years and more 0/0"));
}

// --- Page

TEST(Html, SaysWhereWhenAndHowTheDriversWereListed) {
  const std::string html = FormatHtml({}, AllColumns(), Context);
  EXPECT_EQ(Between(html, "<title>", "</title>"), "Drivers of HOST");
  EXPECT_THAT(Texts(html, "<header class=\"page\">", "</header>"),
              ElementsAre("Drivers of HOST", "Listed", "2024-05-06 07:08:09 UTC", "Scope",
                          "Devices, services and OEM packages (all)"));
}

TEST(Html, NamesNeitherHostNorTimeThatItDoesNotKnow) {
  const std::string html = FormatHtml({}, AllColumns(), {"", "<noon>", "<mode>"});
  EXPECT_EQ(Between(html, "<title>", "</title>"), "Drivers of an unnamed machine");
  EXPECT_EQ(Between(html, "<dt>Listed</dt><dd>", "</dd>"), "&lt;noon&gt;");
  EXPECT_EQ(Between(html, "<dt>Scope</dt><dd>", "</dd>"), "&lt;mode&gt;");
}

TEST(Html, TellsTheNumbersOfItsBarsAsText) {
  DriverData acpi = Service("Running", "Boot Start");
  acpi.provider = "Maker & Sons";
  acpi.date = "05/06/2020 12:00:00";
  DriverData beep = Service("Stopped", "Boot Start");
  beep.provider = acpi.provider;
  const std::string html = FormatHtml({acpi, beep, Named("8086-0001_nodriver#")}, AllColumns(), Context);
  EXPECT_THAT(Texts(html, "aria-label=\"Summary\">", "</section>"),
              ElementsAre("Drivers", "3", "Running", "1 ", "of 2 services", "Devices without a driver", "1",
                          "Providers", "1", "Provider", "Maker &amp; Sons", "2", "Unknown", "1", "State", "Running",
                          "1", "Stopped", "1", "Not a service", "1", "Start type", "Boot Start", "2", "1 running",
                          "Age", "Under 1 year", "0", "1 to 2 years", "0", "2 to 5 years", "1", "5 to 10 years", "0",
                          "10 years and more", "0", "No date", "2"));
}

TEST(Html, DrawsBarsAsLongAsTheirNumbers) {
  const std::string html = FormatHtml({Service("Running", "Manual"), Service("Stopped", "Manual"),
                                       Service("Stopped", "Manual"), Service("Running", "Disabled")},
                                      AllColumns(), Context);
  EXPECT_THAT(Between(html, "<span class=\"label\">Manual</span>", "</svg>"),
              HasSubstr("<rect class=\"whole\" width=\"1000\" height=\"1\"/><rect class=\"part\" width=\"333\""));
  EXPECT_THAT(Between(html, "<span class=\"label\">Disabled</span>", "</svg>"),
              HasSubstr("<rect class=\"whole\" width=\"333\" height=\"1\"/><rect class=\"part\" width=\"333\""));
}

TEST(Html, DrawsOneAmongThousandsSoThatItIsSeen) {
  std::vector<DriverData> drivers(2000, By("many"));
  drivers.push_back(By("one"));
  const std::string html = FormatHtml(drivers, AllColumns(), Context);
  EXPECT_THAT(Between(html, "<span class=\"label\">one</span>", "</svg>"),
              HasSubstr("<rect class=\"part\" width=\"4\""));
}

TEST(Html, HasARowPerDriverAndACellPerColumn) {
  DriverData driver = Service("Running", "Boot Start");
  driver.name = "a_b.sys";
  driver.path = "C:\\windows\\a_b.sys";
  driver.date = "05/06/2023 22:14:31";
  driver.found_by_device = 1;
  const std::string html = FormatHtml({driver, Service("Paused", "")},
                                      Fields({"name", "state", "date", "path", "found_by_device"}), Context);
  EXPECT_THAT(Texts(html, "<thead>", "</thead>"),
              ElementsAre("Name", "State", "Image date", "Path", "Found by device"));
  EXPECT_EQ(Rows(html),
            "<tr><th scope=\"row\" class=\"name\">a_<wbr>b.sys</th><td class=\"state Running\">Running</td>"
            "<td class=\"date\">2023-05-06 22:14:31</td>"
            "<td class=\"path\">C:\\<wbr>windows\\<wbr>a_<wbr>b.sys</td><td class=\"found_by_device\">yes</td></tr>\n"
            "<tr><th scope=\"row\" class=\"name\"></th><td class=\"state\">Paused</td><td class=\"date\"></td>"
            "<td class=\"path\"></td><td class=\"found_by_device\">no</td></tr>\n");
}

TEST(Html, LabelsEveryColumn) {
  EXPECT_THAT(
      Texts(FormatHtml({}, AllColumns(), Context), "<thead>", "</thead>"),
      ElementsAre("Name", "Description", "Provider", "Path", "Version", "State", "Start", "Image date", "Size, KiB",
                  "Product version", "Reserved 1", "Reserved 2", "Reserved list", "Found by device"));
}

TEST(Html, ShowsADateThatIsNoneAsItIs) {
  EXPECT_EQ(Rows(FormatHtml({Dated("<b>13/45/2023")}, Fields({"date"}), Context)),
            "<tr><td class=\"date\">&lt;b&gt;13/45/2023</td></tr>\n");
}

TEST(Html, SaysThatAListIsEmpty) {
  const std::string html = FormatHtml({}, Fields({"name"}), Context);
  EXPECT_EQ(Rows(html), "");
  EXPECT_THAT(html, HasSubstr("<p class=\"none\">No driver was found.</p>"));
  EXPECT_THAT(FormatHtml({Named("a.sys")}, Fields({"name"}), Context), Not(HasSubstr("No driver was found.")));
}

TEST(Html, ShowsTextsOfAnyRecordAndContextAsText) {
  const std::string hostile = "\"'><script>x</script></table></title>{{table}}\x1B";
  const std::string shown =
      "&quot;&#39;&gt;&lt;script&gt;x&lt;/script&gt;&lt;/table&gt;&lt;/title&gt;{{table}}[U+001B]";
  DriverData driver;
  for (const Column& column : AllColumns()) {
    if (const auto* text = std::get_if<std::string DriverData::*>(&column.member)) driver.*(*text) = hostile;
  }
  driver.reserved_list = {hostile, "b"};
  const std::string html = FormatHtml({driver}, AllColumns(), {hostile, hostile, hostile});
  EXPECT_THAT(html, Not(HasSubstr("<script>x")));
  EXPECT_THAT(html, Not(HasSubstr("\x1B")));
  EXPECT_EQ(Between(html, "<title>", "</title>"), "Drivers of " + shown);
  EXPECT_EQ(Between(html, "<dt>Listed</dt><dd>", "</dd>"), shown);
  EXPECT_EQ(Between(html, "<dt>Scope</dt><dd>", "</dd>"), shown);
  EXPECT_EQ(Between(html, "<span class=\"label\">", "</span>"), shown);
  std::vector<std::string> cells(12, shown);
  cells.push_back(shown + ";b");
  cells.push_back("no");
  EXPECT_EQ(Texts(html, "<tbody>\n", "</tbody>"), cells);
}

TEST(Html, IsUtf8WhateverTheCodePage) {
  if (GetACP() != 1252) GTEST_SKIP() << "the bytes are those of code page 1252";
  DriverData driver = Named("Ger\xE4t \x80\x81");
  driver.provider = driver.name;
  const std::string html = FormatHtml({driver}, Fields({"name"}), {"\u4E2D\xFF", "", "all"});
  EXPECT_EQ(Rows(html), "<tr><th scope=\"row\" class=\"name\">Ger\u00E4t \u20AC[U+0081]</th></tr>\n");
  EXPECT_EQ(Between(html, "<span class=\"label\">", "</span>"), "Ger\u00E4t \u20AC[U+0081]");
  EXPECT_EQ(Between(html, "<title>", "</title>"), "Drivers of \u4E2D\uFFFD");
}

TEST(Html, NamesNothingToFetch) {
  const std::string html = FormatHtml({Named("a.sys")}, AllColumns(), Context);
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
  EXPECT_THAT(FormatHtml({}, AllColumns(), Context), Not(HasSubstr("{{")));
}

TEST(Html, IsTheSameInEveryLocale) {
  const std::vector<DriverData> drivers(1500, By("maker"));
  const std::string html = FormatHtml(drivers, AllColumns(), Context);
  EXPECT_THAT(html, HasSubstr("<span class=\"count\">1500</span>"));
  const test::HostLocale<test::GroupedDigits> grouped;
  EXPECT_EQ(FormatHtml(drivers, AllColumns(), Context), html);
}

}  // namespace
