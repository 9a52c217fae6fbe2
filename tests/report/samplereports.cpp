// samplereports FOLDER: writes the pages that the browser reads besides those of sample machines.
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "commands/columns.h"
#include "formats/formats.h"
#include "formats/html/htmldiff.h"
#include "formats/html/htmlformat.h"
#include "platform/encoding.h"
#include "terminal/output.h"

using inventory::Kind;
using inventory::Record;
using inventory::Records;

namespace {

const inventory::Head Head = {"0.1.0", "SAMPLE-PC", "", "10.0.22621", "2024-05-06T07:08:09Z"};

Record Service(const std::string& name, const std::string& version, const std::string& time) {
  Record service;
  service.name = name;
  service.version = version;
  service.image_time = time;
  return service;
}

Record Sized(Record service, std::uint64_t size) {
  service.size = size;
  return service;
}

/// What a text order would get wrong, and unknown values.
Records ToBeSorted() {
  return {Sized(Service("beta10.sys", "10.0.9.1", "2019-12-31T10:00:00Z"), 9),
          Sized(Service("Beta9.sys", "10.0.10.1", "2021-01-01T00:00:00Z"), 1000),
          Service("alpha.sys", "N/A", ""),
          Sized(Service("\u00E4ther.sys", "9.5", "2020-06-15T09:30:00Z"), 80),
          Sized(Service("gamma.sys", "10.0.A.1", "2020-06-15T09:29:59Z"), 81),
          Sized(Service("delta.sys", "", "yesterday"), 0)};
}

/// A record all of whose texts are `text`.
Record Of(const std::string& text) {
  Record record;
  for (const inventory::Member& member : inventory::Members()) {
    if (const auto* const own = std::get_if<std::string Record::*>(&member.source)) record.*(*own) = text;
    if (const auto* const own = std::get_if<std::vector<std::string> Record::*>(&member.source)) {
      record.*(*own) = {text, text};
    }
  }
  record.known = {{text, text, "", trust::Category::Vulnerable, trust::MatchKind::NameAndVersion, {}}};
  return record;
}

/// Names that would be more than text if they could.
Records Hostile() {
  Records records;
  for (const std::string& name :
       {std::string("<script>window.hacked = 1</script>"), std::string("<img src=x onerror=\"window.hacked = 1\">"),
        std::string("\"><svg onload=window.hacked=1>"), std::string("'onmouseover='window.hacked=1"),
        std::string("</th></tr></tbody></table><h1>gone</h1>"), std::string("</script></style></title><!--"),
        std::string("{{table}}{{script}}"), std::string("&lt;b&gt; &amp;amp; &#60;"),
        "bell\a nul" + std::string(1, '\0') + " escape\x1B[2J line\r\nend",
        std::string("undefined \u0081 soft\u00ADhyphen turned \u202Egpj.exe"), std::string("  two  blanks  "),
        std::string("<iframe src=javascript:window.hacked=1></iframe>")}) {
    records.push_back(Of(name));
  }
  return records;
}

/// Texts that a saved file must write with care.
Records Formulas() {
  Records records;
  for (const char* name : {"=1+1", "+1", "-1", "@a", "\t=1", "\r=1", "'=1", "a,b", "a\"b", "a\nb", " =1", ""}) {
    records.push_back(Of(name));
    records.back().size = 5;
  }
  return records;
}

std::string Numbered(const char* format, int number) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format, number);
  return text.data();
}

Record LargeRecord(int i) {
  static const std::array<const char*, 7> providers = {
      "Meridian Systems", "Northlight Networks", "Tonart Audio", "Hafen Docking", "Intel", "Sample Platform", ""};
  static const std::array<const char*, 5> startTypes = {"Boot Start", "System Start", "Automatic", "Manual",
                                                        "Disabled"};
  const auto at = [i](const auto& values, int step) {
    return values[static_cast<std::size_t>(i / step) % values.size()];
  };
  // Spread over the list as if by chance, and the same every time.
  const int mixed = i * 7919 % 2003;
  Record record = Service(Numbered("drv%04d.sys", mixed), Numbered("10.0.22621.%d", i * 31 % 4001), "");
  record.description = Numbered("Sample driver for the device of slot %d", i);
  record.provider = mixed % 10 == 0 ? Numbered("Maker number %d", i % 23) : at(providers, 3);
  if (mixed % 4 == 0) {
    record.kind = Kind::Device;
    record.inf = mixed % 8 == 0 ? "" : Numbered("oem%d.inf", i % 50);
    return record;
  }
  record.service = Numbered("drv%04d", mixed);
  record.path = "C:\\windows\\system32\\drivers\\" + record.name;
  record.state = mixed % 3 == 0 ? "Stopped" : "Running";
  record.start_type = at(startTypes, 2);
  record.image_time = Numbered("%d", 2010 + mixed % 15) + Numbered("-05-%02dT12:30:45Z", 1 + i % 28);
  record.size = static_cast<std::uint64_t>(mixed) * 977;
  return record;
}

Records Large() {
  Records records;
  for (int i = 0; i < 3000; ++i) records.push_back(LargeRecord(i));
  return records;
}

/// One record of each kind with all that it can have, in many scripts.
Records Scripts() {
  Record service = Sized(Service("\u30D7\u30EA\u30F3\u30BF.sys", "10.0.22621.1137", "2023-11-05T23:59:59Z"), 134217728);
  service.description = "\u30D7\u30EA\u30F3\u30BF\u30FC\u306E\u30AB\u30FC\u30CD\u30EB\u30C9\u30E9\u30A4\u30D0";
  service.provider = "\u65E5\u672C\u8A9E\u682A\u5F0F\u4F1A\u793E \U0001F5A8\uFE0F";
  service.product_version = service.version;
  service.service = "\u30D7\u30EA\u30F3\u30BF \u30B5\u30FC\u30D3\u30B9";
  service.path =
      "C:\\Program Files\\\u30C6\u30B9\u30C8 \u4F1A\u793E\\A folder whose name is far longer than it would have to "
      "be\\and_one_more_without_any_blank_to_break_at\\x64\\\u30D7\u30EA\u30F3\u30BF.sys";
  service.state = "Running";
  service.start_type = "System Start";

  Record missing = Service("\u0442\u0435\u0441\u0442.sys", "", "");
  missing.service = "\u0442\u0435\u0441\u0442";
  missing.path = "C:\\windows\\system32\\drivers\\\u0442\u0435\u0441\u0442.sys";
  missing.state = "Stopped";
  missing.start_type = "Automatic";
  missing.image_missing = true;

  Record device;
  device.kind = Kind::Device;
  device.name = "\u30D7\u30EA\u30F3\u30BF_8086-15F3-1028-0A5C";
  device.description = "\u041A\u043E\u043D\u0442\u0440\u043E\u043B\u043B\u0435\u0440 \U0001F50C turned \u202Egpj";
  device.provider = "\u041F\u0440\u0438\u043C\u0435\u0440 \u041E\u041E\u041E";
  device.version = "2.1.1.7";
  device.service = service.service;
  device.inf = "oem12.inf";
  device.inf_date = "2023-10-31";
  device.class_name = "Printer";
  device.instance_id = "PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03\\3&11583659&0&E8";
  device.hardware_id = "PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03";
  device.identity = "8086-15F3-1028-0A5C";
  device.names = {device.name, "helper_8086-15F3-1028-0A5C", "third_8086-15F3-1028-0A5C"};
  device.problem_code = 43;

  Record package;
  package.kind = Kind::Package;
  package.name = service.name;
  package.description = "\u30D7\u30EA\u30F3\u30BF \u30C7\u30A3\u30B9\u30AF";
  package.provider = service.provider;
  package.version = "2.1.1.7";
  package.inf = "oem12.inf";
  package.original_inf = "\u30D7\u30EA\u30F3\u30BF.inf";
  package.inf_date = "2023-10-31";
  package.class_name = "Printer";
  for (int i = 1; i <= 30; ++i) package.files.push_back(Numbered("printer_resource_%02d.dll", i));
  package.devices_using = 1;

  Record chipset;
  chipset.kind = Kind::Chipset;
  chipset.name = "intel_chipset";
  chipset.description = "Intel chipset";
  chipset.provider = "Intel";
  chipset.version = "10.1.19600.8418";
  return {service, missing, device, package, chipset};
}

using Columns = std::vector<inventory::Column>;

/// `table` with those columns, all rows.
driverlist::Table WithColumns(const driverlist::Table& table, const Columns& columns) {
  std::vector<std::size_t> rows;
  for (std::size_t i = 0; i < table.rows.size(); ++i) rows.push_back(i);
  return driverlist::PartOf(table, rows, columns);
}

bool WriteFile(const std::string& path, const std::string& text) {
  const std::string problem = driverlist::WriteFileWhole(path, text);
  if (!problem.empty()) std::fprintf(stderr, "samplereports: cannot write %s: %s\n", path.c_str(), problem.c_str());
  return problem.empty();
}

bool Write(const std::string& path, const Records& records, const Columns& columns) {
  const driverlist::Table table = WithColumns(driverlist::TableOf(records), columns);
  return WriteFile(path, driverlist::FormatHtml(table, {Head, "", &records}));
}

bool WriteCsv(const std::string& path, const Records& records) {
  return WriteFile(path, driverlist::FormatCsv(driverlist::TableOf(records), {}));
}

/// A finding of every rule about every record.
std::vector<inventory::Finding> FindingsAbout(const Records& records) {
  std::vector<inventory::Finding> findings;
  for (const inventory::HealthRule& rule : inventory::HealthRules()) {
    for (const Record& record : records) {
      inventory::Finding finding;
      finding.rule = rule.name;
      finding.subject = inventory::KeyTextOf(record);
      finding.evidence = "evidence of " + record.name;
      finding.severity = rule.severity;
      finding.nextStep = "look at " + record.name;
      findings.push_back(finding);
    }
  }
  return findings;
}

/// The page of an examination, with the columns of one that was verified.
bool WriteExamination(const std::string& path, const Records& records, const Columns& columns) {
  const std::vector<inventory::Finding> findings = FindingsAbout(records);
  driverlist::HtmlContext context = {Head, "", &records, &findings, {"looked up in a list"}};
  context.isExamination = true;
  return WriteFile(path, driverlist::FormatHtml(WithColumns(driverlist::TableOf(records), columns), context));
}

/// Every record of `records` in another state than before, behind some that came.
bool WriteComparison(const std::string& path, const Records& records) {
  Records before = records;
  for (Record& record : before) record.provider += " of old";
  before.pop_back();
  inventory::Inventory older;
  older.head = Head;
  older.records = before;
  inventory::Inventory newer;
  newer.head = Head;
  newer.records = records;
  const inventory::Comparison comparison = inventory::Compare(std::move(older), std::move(newer));
  return WriteFile(path, driverlist::FormatDiffHtml(comparison, Head));
}

bool WriteListing(const std::string& path) {
  inventory::ListedDriver driver;
  driver.name = "beta10.sys";
  driver.file_version = "N/A";
  return WriteFile(path, driverlist::FormatHtml(driverlist::TableOf({driver}), {Head, "all", nullptr}));
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc != 2) {
    std::fputs("samplereports: it takes one folder.\n", stderr);
    return 2;
  }
  const std::string folder = Orvane::Utf8FromWide(argv[1]) + "\\";
  const Columns all = driverlist::ColumnsOf(std::nullopt);
  const Columns usual = driverlist::DefaultColumns(all, driverlist::Format::Html, false);
  const Columns verified = driverlist::DefaultColumns(all, driverlist::Format::Html, true);
  const bool isWritten = Write(folder + "sorting.html", ToBeSorted(), all) &&
                         Write(folder + "hostile.html", Hostile(), all) && Write(folder + "large.html", Large(), all) &&
                         Write(folder + "empty.html", {}, all) && Write(folder + "scripts.html", Scripts(), usual) &&
                         Write(folder + "scripts-all.html", Scripts(), all) && WriteListing(folder + "listing.html") &&
                         WriteCsv(folder + "hostile.csv", Hostile()) && WriteCsv(folder + "formulas.csv", Formulas()) &&
                         Write(folder + "formulas.html", Formulas(), all) &&
                         WriteCsv(folder + "sorting.csv", ToBeSorted()) &&
                         WriteExamination(folder + "findings.html", Scripts(), verified) &&
                         WriteExamination(folder + "hostile.findings.html", Hostile(), verified) &&
                         WriteComparison(folder + "differences.html", Scripts()) &&
                         WriteComparison(folder + "hostile.differences.html", Hostile());
  return isWritten ? 0 : 1;
}
