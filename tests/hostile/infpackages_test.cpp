// INF files of driver packages, damaged: those of the sample machines and, where there are any, real ones.
#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "description.h"
#include "hostile.h"
#include "packagefiles.h"
#include "records.h"
#include "scratchmachine.h"
#include "temporaryfiles.h"

using boost::algorithm::iends_with;
using Orvane::DriverData;
using Orvane::PackageFiles;
using test::HostileBatch;
using test::Random;

namespace {

std::vector<std::string> SamplePackages() {
  std::vector<std::string> packages;
  for (const char* const machine : {"intel-laptop", "amd-server"}) {
    const auto description = samplemachine::ReadDescription(std::string(SAMPLE_MACHINES) + "/" + machine + ".json");
    for (const samplemachine::Package& package : description.packages) {
      std::string text;
      for (const std::string& line : package.lines) text += line + "\r\n";
      packages.push_back(text);
    }
  }
  return packages;
}

/// Real packages; none where there is no corpus of them.
std::vector<std::string> RealPackages() {
  std::vector<std::string> packages;
  std::ifstream stream(std::string(CORPUS_FOLDER) + "/expected.json");
  if (!stream) return packages;
  const nlohmann::json corpus = nlohmann::json::parse(stream);
  for (const auto& [name, expected] : corpus.items()) {
    std::ifstream file(std::string(CORPUS_FOLDER) + "/inf/" + name, std::ios::binary);
    packages.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    if (packages.back().empty()) throw std::runtime_error("the corpus has no file " + name);
  }
  return packages;
}

std::string Widened(const std::string& text) {
  std::string wide = "\xFF\xFE";
  for (const char c : text) wide += {c, '\0'};
  return wide;
}

/// Begin and size of a line of `text`, its end included.
std::pair<std::size_t, std::size_t> AnyLine(const std::string& text, Random& random) {
  const std::size_t position = random.Below(text.size());
  const std::size_t begin = position == 0 ? 0 : text.rfind('\n', position - 1) + 1;
  const std::size_t end = std::min(text.find('\n', position), text.size() - 1) + 1;
  return {begin, end - begin};
}

std::string HostilePiece(Random& random) {
  static const std::string pieces[] = {"%",
                                       "%%",
                                       "%Maker%",
                                       "%no such string%",
                                       "\"",
                                       "\"\"",
                                       "\\\r\n",
                                       "\\",
                                       ";",
                                       "[",
                                       "]",
                                       "[]",
                                       "=",
                                       ",",
                                       ",,,,,,,,",
                                       "\r\n",
                                       "\n",
                                       "\r",
                                       std::string(1, '\0'),
                                       "\x1A",
                                       "\xEF\xBB\xBF",
                                       "\xFF\xFE",
                                       "\xE9",
                                       " ",
                                       "\t",
                                       ".sys",
                                       ".inf",
                                       "[SourceDisksFiles]\r\n",
                                       "[Version]\r\n",
                                       "[Strings]\r\n",
                                       "[SourceDisksNames]\r\n",
                                       "x.sys=1\r\n",
                                       "DriverVer=,\r\n",
                                       "Provider=\r\n",
                                       "%Maker%=1\r\n",
                                       "Maker=%Maker%\r\n"};
  if (random.OneIn(4)) return random.Text(random.Below(6000));
  return random.Pick(pieces);
}

std::string Damaged(const std::vector<std::string>& packages, Random& random) {
  std::string text = random.Pick(packages);
  for (std::size_t damage = 1 + random.Below(6); damage > 0 && !text.empty(); --damage) {
    const auto [begin, size] = AnyLine(text, random);
    switch (random.Below(9)) {
      case 0:
        text[random.Below(text.size())] = random.Byte();
        break;
      case 1:
        text.erase(begin, size);
        break;
      case 2:
        text.insert(begin, text.substr(begin, size));
        break;
      case 3: {
        const std::string& other = random.Pick(packages);
        const auto [otherBegin, otherSize] = AnyLine(other, random);
        text.insert(begin, other.substr(otherBegin, otherSize));
        break;
      }
      case 4:
        text.resize(random.Below(text.size() + 1));
        break;
      case 5:
        text.erase(random.Below(text.size()), 1 + random.Below(30));
        break;
      default:
        text.insert(random.Below(text.size() + 1), HostilePiece(random));
    }
  }
  if (random.OneIn(10)) text = Widened(text);
  return text;
}

/// Longest text that the Setup API gives into the reader's buffer.
constexpr std::size_t LongestText = 511;

/// What holds for the record of a package, whatever the package says.
void ExpectPackageRecord(const DriverData& driver, const DriverData& first) {
  for (const std::string& text : {driver.name, driver.description, driver.provider, driver.file_version}) {
    EXPECT_LE(text.size(), LongestText);
    EXPECT_EQ(text.find('\0'), std::string::npos);
  }
  EXPECT_EQ(driver.provider, first.provider);
  EXPECT_EQ(driver.file_version, first.file_version);
  DriverData rest = driver;
  rest.name = rest.description = rest.provider = rest.file_version = std::string();
  EXPECT_EQ(test::Described(rest), test::Described(DriverData()));
}

TEST(HostilePackages, GiveRecordsOfWhatTheyList) {
  std::vector<std::string> packages = SamplePackages();
  const std::vector<std::string> real = RealPackages();
  std::printf("hostile input: %zu packages of the sample machines, %zu real ones%s\n", packages.size(), real.size(),
              real.empty() ? ", for there is no folder " CORPUS_FOLDER : "");
  packages.insert(packages.end(), real.begin(), real.end());
  const test::ScratchFile inf(test::TemporaryPath("hostile.inf"), 0);
  const std::string file = inf.Path().substr(inf.Path().rfind('\\') + 1);
  DriverData former;
  former.name = "former";
  std::size_t withRecords = 0;
  HostileBatch batch("INF files");
  batch.ForEach([&](Random& random) {
    const std::string text = Damaged(packages, random);
    std::ofstream(inf.Path(), std::ios::binary | std::ios::trunc) << text;
    std::vector<DriverData> drivers(1, former);
    PackageFiles::ReadInfPackage(inf.Path(), drivers);
    EXPECT_EQ(test::Described(drivers[0]), test::Described(former));
    // A record per line, and one for the package itself.
    const auto lines =
        std::count_if(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\x1A'; });
    EXPECT_LE(drivers.size(), 1 + static_cast<std::size_t>(lines) + 2);
    for (std::size_t i = 1; i < drivers.size(); ++i) {
      ExpectPackageRecord(drivers[i], drivers[1]);
      const bool isDriverFile = iends_with(drivers[i].name, ".sys") || iends_with(drivers[i].name, ".inf");
      EXPECT_TRUE(isDriverFile || (i + 1 == drivers.size() && drivers[i].name == file)) << drivers[i].name;
    }
    withRecords += drivers.size() > 1;
  });
  EXPECT_GT(withRecords, batch.Size() / 4) << "most inputs are too damaged to reach anything";
}

}  // namespace
