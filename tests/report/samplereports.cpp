// samplereports FOLDER: writes the pages that the browser reads besides those of sample machines.
#include <windows.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "htmlformat.h"
#include "output.h"
#include "unicode.h"

using driverlist::AllColumns;
using Orvane::DriverData;

namespace {

const driverlist::ListingContext Context = {"SAMPLE-PC", "2024-05-06T07:08:09Z", "all"};

DriverData Driver(const std::string& name, const std::string& version, const std::string& size,
                  const std::string& date) {
  DriverData driver;
  driver.name = name;
  driver.file_version = version;
  driver.size = size;
  driver.date = date;
  return driver;
}

/// What a text order would get wrong, and unknown values.
std::vector<DriverData> ToBeSorted() {
  return {Driver("beta10.sys", "10.0.9.1", "9", "12/31/2019 10:00:00"),
          Driver("Beta9.sys", "10.0.10.1", "1000", "01/01/2021 "),
          Driver("alpha.sys", "N/A", "", ""),
          Driver("\xE4"
                 "ther.sys",
                 "9.5", "80", "06/15/2020 09:30:00"),
          Driver("gamma.sys", "10.0.A.1", "81", "06/15/2020 09:29:59"),
          Driver("delta.sys", "", "0", "yesterday")};
}

/// Names that would be more than text if they could; the byte 0x81 is none of code page 1252.
std::vector<DriverData> Hostile() {
  const std::string names[] = {"<script>window.hacked = 1</script>",
                               "<img src=x onerror=\"window.hacked = 1\">",
                               "\"><svg onload=window.hacked=1>",
                               "'onmouseover='window.hacked=1",
                               "</th></tr></tbody></table><h1>gone</h1>",
                               "</script></style></title><!--",
                               "{{table}}{{script}}",
                               "&lt;b&gt; &amp;amp; &#60;",
                               "bell\a nul" + std::string(1, '\0') + " escape\x1B[2J line\r\nend",
                               "undefined \x81 soft\xADhyphen",
                               "  two  blanks  ",
                               "<iframe src=javascript:window.hacked=1></iframe>"};
  std::vector<DriverData> drivers;
  for (const std::string& name : names) {
    DriverData driver;
    std::string DriverData::*const texts[] = {
        &DriverData::name,         &DriverData::description,     &DriverData::provider,   &DriverData::path,
        &DriverData::file_version, &DriverData::state,           &DriverData::start_type, &DriverData::date,
        &DriverData::size,         &DriverData::product_version, &DriverData::reserved1,  &DriverData::reserved2};
    for (std::string DriverData::*const text : texts) driver.*text = name;
    driver.reserved_list = {name, name};
    drivers.push_back(driver);
  }
  return drivers;
}

std::string Numbered(const char* format, int number) {
  char text[64];
  std::snprintf(text, sizeof(text), format, number);
  return text;
}

DriverData LargeRecord(int i) {
  static const std::array<const char*, 7> providers = {
      "Meridian Systems", "Northlight Networks", "Tonart Audio", "Hafen Docking", "Intel", "Sample Platform", ""};
  static const std::array<const char*, 5> startTypes = {"Boot Start", "System Start", "Automatic", "Manual",
                                                        "Disabled"};
  const auto at = [i](const auto& values, int step) {
    return values[static_cast<std::size_t>(i / step) % values.size()];
  };
  // Spread over the list as if by chance, and the same every time.
  const int mixed = i * 7919 % 2003;
  DriverData driver =
      Driver(Numbered("drv%04d.sys", mixed), Numbered("10.0.22621.%d", i * 31 % 4001), std::to_string(mixed % 977), "");
  driver.description = Numbered("Sample driver for the device of slot %d", i);
  driver.provider = mixed % 10 == 0 ? Numbered("Maker number %d", i % 23) : at(providers, 3);
  if (mixed % 4 == 0) return driver;
  driver.path = "C:\\windows\\system32\\drivers\\" + driver.name;
  driver.state = mixed % 3 == 0 ? "Stopped" : "Running";
  driver.start_type = at(startTypes, 2);
  driver.date = Numbered("05/%02d/", 1 + i % 28) + Numbered("%d 12:30:45", 2010 + mixed % 15);
  return driver;
}

std::vector<DriverData> Large() {
  std::vector<DriverData> drivers;
  for (int i = 0; i < 2000; ++i) drivers.push_back(LargeRecord(i));
  return drivers;
}

bool Write(const std::string& folder, const std::string& file, const std::vector<DriverData>& drivers) {
  const std::string path = folder + "\\" + file;
  const std::string problem = driverlist::WriteFileWhole(path, driverlist::FormatHtml(drivers, AllColumns(), Context));
  if (!problem.empty()) std::fprintf(stderr, "samplereports: cannot write %s: %s\n", path.c_str(), problem.c_str());
  return problem.empty();
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc != 2 || GetACP() != 1252) {
    std::fputs("samplereports: it takes one folder, on a machine of code page 1252.\n", stderr);
    return 2;
  }
  const std::string folder = driverlist::Utf8FromWide(argv[1]);
  const bool written = Write(folder, "sorting.html", ToBeSorted()) && Write(folder, "hostile.html", Hostile()) &&
                       Write(folder, "large.html", Large()) && Write(folder, "empty.html", {});
  return written ? 0 : 1;
}
