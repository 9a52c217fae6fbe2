// Real driver packages through the INF reader, against what an independent parser made of them.
#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>

#include "logcapture.h"
#include "machine.h"
#include "packagefiles.h"
#include "records.h"

using Orvane::DriverData;
using test::LogLine;

namespace {

std::string WithBackslashes(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

DriverData Record(const nlohmann::json& json) {
  DriverData driver;
  driver.name = json.at("name").get<std::string>();
  driver.description = json.at("description").get<std::string>();
  driver.provider = json.at("provider").get<std::string>();
  driver.file_version = json.at("file_version").get<std::string>();
  return driver;
}

/// The one known difference of Wine: it answers the question for the original name of a package with the name of the
/// file itself. Windows knows the names under which its own store's packages were delivered, and none for a file that
/// it did not install.
void AddOriginalName(const std::string& file, const nlohmann::json& expected, std::vector<DriverData>& records,
                     std::vector<LogLine>& lines) {
  if (!expected.at("original_query") || !test::IsWine()) return;
  DriverData package;
  package.name = file.substr(file.rfind('\\') + 1);
  package.description = package.provider = expected.at("provider").get<std::string>();
  package.file_version = expected.at("version").get<std::string>();
  lines.push_back({4, "add origin inf file:" + package.name});
  records.push_back(package);
}

TEST(Corpus, IsReadAsAnIndependentParserReadsIt) {
  std::ifstream stream(std::string(CORPUS_FOLDER) + "/expected.json");
  if (!stream) GTEST_SKIP() << "there is no corpus of real packages beside the checkout";
  const nlohmann::json corpus = nlohmann::json::parse(stream);
  std::size_t recordCount = 0;
  for (const auto& [name, expected] : corpus.items()) {
    SCOPED_TRACE(name);
    const std::string file = WithBackslashes(std::string(CORPUS_FOLDER) + "/inf/" + name);
    std::vector<DriverData> records;
    for (const nlohmann::json& record : expected.at("records")) records.push_back(Record(record));
    std::vector<LogLine> lines = {{4, "Start to parse " + file}};
    for (const std::string text : expected.at("log")) lines.push_back({4, text});
    AddOriginalName(file, expected, records, lines);

    test::LogCapture log;
    std::vector<DriverData> drivers;
    Orvane::PackageFiles::ReadInfPackage(file, drivers);
    EXPECT_EQ(test::Described(drivers), test::Described(records));
    EXPECT_EQ(log.Take(), lines);
    recordCount += drivers.size();
  }
  RecordProperty("files", static_cast<int>(corpus.size()));
  RecordProperty("records", static_cast<int>(recordCount));
  EXPECT_GT(recordCount, corpus.size()) << "the corpus is not what it was";
}

}  // namespace
