// snapshot, diff, health and collect as a user runs them, on a machine of two drivers.
#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "commands/commands.h"
#include "importhook.h"
#include "pciinfo.h"
#include "platform/encoding.h"
#include "program.h"
#include "scratchmachine.h"
#include "scriptedterminal.h"

using test::Driverlist;
using test::DriverService;
using test::ProgramResult;
using test::ScratchFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

namespace {

using Json = nlohmann::ordered_json;

std::wstring Quoted(const std::wstring& path) { return L"\"" + path + L"\""; }

/// A device of the system that is always full; none on Windows.
constexpr wchar_t FullDevice[] = L"Z:\\dev\\full";

class ProgramCommand : public test::ScratchMachine {
 protected:
  void SetUp() override {
    ScratchMachine::SetUp();
    if (!IsSkipped()) m_machine = std::make_unique<Machine>();
  }

  ProgramResult Snapshot(const std::wstring& file) const {
    return Driverlist(L"snapshot " + Quoted(folder.Path(file)));
  }
  ProgramResult Diff(const std::wstring& before, const std::wstring& after, const std::wstring& more = L"") const {
    return Driverlist(L"diff " + Quoted(folder.Path(before)) + L" " + after + L" " + more);
  }

  test::TemporaryFolder folder;

 private:
  struct Machine {
    ScratchFile bus{test::DriverPath("OiBus.sys"), L"images\\full.sys"};
    ScratchFile german{test::DriverPath("OiGeraet.sys"), L"images\\codepage.sys"};
    DriverService busService{"OiBus", "\\SystemRoot\\System32\\drivers\\OiBus.sys"};
    DriverService germanService{"OiGeraet", "System32\\drivers\\OiGeraet.sys"};
  };
  std::unique_ptr<Machine> m_machine;
};

Json SnapshotIn(const std::wstring& path) { return Json::parse(test::FileContent(path)); }

TEST_F(ProgramCommand, SnapshotsTheWholeInventory) {
  const test::RegistryValue chipset("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1.18793.8276");
  const ProgramResult result = Snapshot(L"\u0436 snapshot.json");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(folder.Files(), ElementsAre(L"\u0436 snapshot.json"));
  Json snapshot = SnapshotIn(folder.Path(L"\u0436 snapshot.json"));
  Json list = Json::parse(Driverlist(L"list --format json").output);
  EXPECT_THAT(list.at("drivers"), testing::Contains(Json::parse(R"({"kind": "chipset", "name": "intel_chipset",
      "description": "Intel chipset Driver", "provider": "Intel", "version": "10.1.18793.8276",
      "version_key": "c10b1f18793e8276"})")));
  EXPECT_EQ(snapshot.begin().key(), "kind");
  EXPECT_EQ(snapshot.at("kind"), "driverlist snapshot");
  EXPECT_THAT(snapshot.at("time").get<std::string>(), MatchesRegex("\\d\\d\\d\\d-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ"));
  snapshot.erase("kind");
  for (Json* const document : {&snapshot, &list}) document->erase("time");
  EXPECT_EQ(snapshot, list);
}

std::vector<Json> LinesOf(const std::string& text) {
  std::vector<Json> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(Json::parse(line));
  return lines;
}

TEST_F(ProgramCommand, CollectsEveryRecordOfTheInventoryAsALine) {
  const std::vector<Json> lines = LinesOf(Driverlist(L"collect").output);
  const std::vector<Json> listed = LinesOf(Driverlist(L"list --format jsonl").output);
  ASSERT_EQ(lines.size(), listed.size() + 1);
  EXPECT_EQ(lines[0].at("kind"), "collection");
  EXPECT_EQ(lines[0].at("drivers"), listed.size());
  for (std::size_t i = 0; i < listed.size(); ++i) {
    Json line = lines[i + 1];
    EXPECT_EQ(line.at("time"), lines[0].at("time"));
    line["time"] = listed[i].at("time");
    EXPECT_EQ(line.dump(), listed[i].dump());
  }
}

TEST_F(ProgramCommand, CollectsOneLineUnlessTheDigestIsAnotherOne) {
  const Json first = LinesOf(Driverlist(L"collect").output).at(0);
  const std::wstring unless = L"collect --unless-digest " + Orvane::WideFromUtf8(first.at("digest").get<std::string>());
  std::vector<Json> lines = LinesOf(Driverlist(unless).output);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].at("unchanged"), true);
  lines[0].erase("unchanged");
  lines[0]["time"] = first.at("time");
  EXPECT_EQ(lines[0].dump(), first.dump());

  const DriverService another("OiSecond", "System32\\drivers\\OiBus.sys");
  lines = LinesOf(Driverlist(unless).output);
  EXPECT_EQ(lines.size(), first.at("drivers").get<std::size_t>() + 2);
  EXPECT_NE(lines[0].at("digest"), first.at("digest"));
  EXPECT_FALSE(lines[0].contains("unchanged"));
}

TEST_F(ProgramCommand, LeavesTheFormerSnapshotWhenItCannotWrite) {
  test::WriteText(folder.Path(L"s.json"), "former");
  // Someone reads it and lets nobody replace it.
  Orvane::FileHandle reader(
      CreateFileW(folder.Path(L"s.json").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  const ProgramResult result = Snapshot(L"s.json");
  reader.reset();
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot write .*s.json: .+\n"));
  EXPECT_EQ(test::FileContent(folder.Path(L"s.json")), "former");
  EXPECT_THAT(folder.Files(), ElementsAre(L"s.json"));
  EXPECT_EQ(Snapshot(L"none\\s.json").exitCode, 1u);
}

TEST_F(ProgramCommand, FindsNoDifferenceWhereThereIsNone) {
  ASSERT_EQ(Snapshot(L"a").exitCode, 0u);
  for (const std::wstring& other : {Quoted(folder.Path(L"a")), std::wstring(L"live")}) {
    const ProgramResult result = Diff(L"a", other);
    EXPECT_EQ(result.exitCode, 0u);
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(result.output, MatchesRegex("old: .+\nnew: .+\n\\d+ the same\n"));
  }
}

TEST_F(ProgramCommand, ShowsWhatChanged) {
  ASSERT_EQ(Snapshot(L"a").exitCode, 0u);
  const std::string same = std::to_string(SnapshotIn(folder.Path(L"a")).at("drivers").size());
  {
    const ScratchFile image(test::DriverPath("OiNew.sys"), L"images\\fixedonly.sys");
    const DriverService service("OiNew", "\\SystemRoot\\System32\\drivers\\OiNew.sys");
    const ProgramResult result = Diff(L"a", L"live");
    EXPECT_EQ(result.exitCode, 1u);
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(result.output, MatchesRegex("old: .+\nnew: .+\n"
                                            "difference  kind     name       member   old  new\n"
                                            "added       service  OiNew\\.sys  version       1\\.2\\.3\\.4\n"
                                            "added       service  OiNew\\.sys  path          C:.+.drivers.OiNew\\.sys\n"
                                            "1 added, " +
                                            same + " the same\n"));
    ASSERT_EQ(Snapshot(L"b").exitCode, 0u);
  }
  const ProgramResult result = Diff(L"b", Quoted(folder.Path(L"a")), L"--format json --host-id here");
  EXPECT_EQ(result.exitCode, 1u);
  const Json json = Json::parse(result.output);
  EXPECT_EQ(json.at("host_id"), "here");
  EXPECT_EQ(json.at("old").at("time"), SnapshotIn(folder.Path(L"b")).at("time"));
  EXPECT_EQ(json.at("new").at("time"), SnapshotIn(folder.Path(L"a")).at("time"));
  EXPECT_EQ(json.at("summary").dump(),
            R"({"added":0,"removed":1,"upgraded":0,"downgraded":0,"changed":0,"same":)" + same + "}");
  ASSERT_EQ(json.at("differences").size(), 1u);
  Json difference = json.at("differences").at(0);
  difference.erase("changes");
  EXPECT_EQ(difference.dump(),
            R"({"difference":"removed","group":1,"kind":"service","key":"oinew","name":"OiNew.sys"})");
}

/// `utf8` as PowerShell's ">" writes it.
std::string Utf16(const std::string& utf8) {
  const std::wstring wide = Orvane::WideFromUtf8(utf8);
  return "\xFF\xFE" + std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t));
}

TEST_F(ProgramCommand, ReadsSnapshotsInUtf16) {
  ASSERT_EQ(Snapshot(L"a").exitCode, 0u);
  test::WriteText(folder.Path(L"wide"), Utf16(test::FileContent(folder.Path(L"a"))));
  const ProgramResult result = Diff(L"wide", Quoted(folder.Path(L"a")));
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, MatchesRegex("old: .+\nnew: .+\n\\d+ the same\n"));
}

/// This machine as driverlist recorded it in schema 1: the library's listings of devices and of services, and of the
/// merged one the packages.
Json Schema1OfThisMachine() {
  Json drivers = Json::array();
  const auto add = [&drivers](const char* foundBy, const std::wstring& mode, bool (*isFound)(const Json&)) {
    const Json list = Json::parse(Driverlist(L"list --format json --mode " + mode).output);
    for (Json driver : list.at("drivers")) {
      if (!isFound(driver)) continue;
      driver["found_by"] = foundBy;
      drivers.push_back(std::move(driver));
    }
  };
  add("device", L"by-device", [](const Json&) { return true; });
  add("service", L"registered", [](const Json& driver) { return driver.at("path") != ""; });
  add("package", L"all",
      [](const Json& driver) { return driver.at("found_by_device") == 0 && driver.at("path") == ""; });
  return {{"kind", "driverlist snapshot"}, {"schema_version", 1},     {"host", "h"},
          {"windows", "6.1.7601"},         {"tool_version", "0.1.0"}, {"time", "t"},
          {"drivers", std::move(drivers)}};
}

TEST_F(ProgramCommand, ComparesSnapshotsOfSchema1) {
  const test::RegistryValue chipset("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1.18793.8276");
  const auto package = [](const std::string& version, const std::string& file) {
    return std::vector<std::string>{"[Version]",          "Signature=\"$WINDOWS NT$\"",
                                    "Provider=Maker",     "DriverVer=01/02/2023," + version,
                                    "[SourceDisksFiles]", file + "=1"};
  };
  const ScratchFile unused(test::InfDirectory() + "\\oem9000.inf", package("1.2", "OiUnused.sys"));
  const ScratchFile older(test::InfDirectory() + "\\oem9001.inf", package("1.2", "oibus.sys"));
  const ScratchFile newer(test::InfDirectory() + "\\oem9002.inf", package("7.0", "OiGeraet.sys"));
  Json snapshot = Schema1OfThisMachine();
  test::WriteText(folder.Path(L"old"), snapshot.dump());
  const ProgramResult same = Diff(L"old", L"live");
  EXPECT_EQ(same.errors, "");
  EXPECT_THAT(same.output, MatchesRegex("old: h, Windows 6.1.7601, t\nnew: .+\n\\d+ the same\n"));
  EXPECT_EQ(same.exitCode, 0u);

  for (Json& driver : snapshot["drivers"]) {
    if (driver.at("name") == "OiUnused.sys") driver["file_version"] = "1.3";
    if (driver.at("name") == "OiBus.sys") driver["name"] = "OIBUS.SYS";
  }
  test::WriteText(folder.Path(L"old"), snapshot.dump());
  const ProgramResult result = Diff(L"old", L"live");
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_THAT(result.output, HasSubstr("\ndifference  kind     name          member   old  new\n"
                                       "downgraded  package  OiUnused.sys  version  1.3  1.2\n"
                                       "1 downgraded, "));
}

TEST_F(ProgramCommand, RefusesFilesThatAreNoSnapshots) {
  ASSERT_EQ(Snapshot(L"good").exitCode, 0u);
  const std::string good = test::FileContent(folder.Path(L"good"));
  const auto with = [&good](const std::string& before, const std::string& after) {
    std::string text = good;
    return text.replace(text.find(before), before.size(), after);
  };
  const std::string list = Driverlist(L"list --format json").output;
  test::WriteText(folder.Path(L"csv"), Driverlist(L"list --format csv").output);
  test::WriteText(folder.Path(L"jsonl"), Driverlist(L"list --format jsonl").output);
  test::WriteText(folder.Path(L"list"), list);
  test::WriteText(folder.Path(L"wide"), Utf16(list));
  test::WriteText(folder.Path(L"mode"), Driverlist(L"list --mode all --format json").output);
  test::WriteText(folder.Path(L"short"), good.substr(0, good.size() / 2));
  test::WriteText(folder.Path(L"torn"), with("\"drivers\": [", "\"drivers\": [}"));
  test::WriteText(folder.Path(L"newer"), with("\"schema_version\": 2", "\"schema_version\": 7"));
  test::WriteText(folder.Path(L"type"), with("\"start_type\": \"", "\"size\": \"5\", \"start_type\": \""));
  test::WriteText(folder.Path(L"deep"), with("\"drivers\": [", "\"deep\": " + std::string(1'000'000, '[')));
  test::WriteText(folder.Path(L"name"),
                  with("\"start_type\": \"", "\"state\": 5, \"name\": \"\\u001b[31m\u202E\", \"x\": \""));
  const std::string wantsList = " is a list, not a snapshot: write one with .driverlist snapshot.\\.\n";
  const std::pair<const wchar_t*, std::string> cases[] = {
      {L"none", " cannot be read: there is no such file\\.\n"},
      {L".", " cannot be read: it is a folder\\.\n"},
      {L"csv", " is not a snapshot of driverlist\\.\n"},
      {L"jsonl", " is not a snapshot of driverlist\\.\n"},
      {L"list", wantsList},
      {L"wide", wantsList},
      {L"mode", wantsList},
      {L"short", " is damaged: it ends early\\.\n"},
      {L"torn", " is damaged: line \\d+ is not JSON\\.\n"},
      {L"newer",
       " was written by a newer driverlist: its schema version is 7, but this driverlist reads only up to 2\\.\n"},
      {L"type", " is damaged: driver \\d+ \\(.+\\.sys\\): size is a text, but should be a whole number\\.\n"},
      {L"deep", " is nested more than 16 levels deep\\.\n"},
      {L"name",
       " is damaged: driver \\d+ \\(.U\\+001B..31m.U\\+202E.\\): state is a whole number, but should be a "
       "text\\.\n"}};
  for (const auto& [file, sentence] : cases) {
    for (const ProgramResult& result : {Diff(file, L"live"), Diff(L"good", Quoted(folder.Path(file)))}) {
      EXPECT_EQ(result.exitCode, 2u) << sentence;
      EXPECT_EQ(result.output, "");
      EXPECT_THAT(result.errors, MatchesRegex("driverlist: .*" + sentence));
    }
  }
}

TEST_F(ProgramCommand, SnapshotsToStandardOutput) {
  ASSERT_EQ(Snapshot(L"a").exitCode, 0u);
  const ProgramResult result = Driverlist(L"snapshot -");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, Not(HasSubstr("\r"))) << "nothing is put between the bytes";
  Json printed = Json::parse(result.output);
  Json written = SnapshotIn(folder.Path(L"a"));
  for (Json* const document : {&printed, &written}) document->erase("time");
  EXPECT_EQ(printed, written);
}

TEST_F(ProgramCommand, ListsFromASnapshotWhatItHolds) {
  std::wstring from;
  Json snapshot;
  {
    const DriverService gone("OiGone", "\\??\\C:\\gone\\OiGone.sys", SERVICE_AUTO_START);
    ASSERT_EQ(Snapshot(L"a").exitCode, 0u);
    snapshot = SnapshotIn(folder.Path(L"a"));
    from = L" --from " + Quoted(folder.Path(L"a"));
  }
  const ProgramResult list = Driverlist(L"list --format json" + from);
  EXPECT_EQ(list.errors, "");
  EXPECT_EQ(list.exitCode, 0u);
  Json expected = snapshot;
  expected.erase("kind");
  EXPECT_EQ(Json::parse(list.output), expected) << "of its machine and its time";

  const ProgramResult health = Driverlist(L"health --format json" + from);
  EXPECT_EQ(health.exitCode, 1u);
  EXPECT_THAT(health.output, HasSubstr("OiGone"));
  EXPECT_EQ(Json::parse(health.output).at("time"), snapshot.at("time"));

  const ProgramResult page = Driverlist(L"list --format html --kind service" + from);
  EXPECT_THAT(page.output, HasSubstr("<time datetime=\"" + snapshot.at("time").get<std::string>() + "\">"));
  EXPECT_THAT(page.output, HasSubstr("OiGone.sys"));
  EXPECT_THAT(page.output, Not(HasSubstr("What deserves a look"))) << "nobody verified its images";
}

TEST_F(ProgramCommand, WritesFindingsAndDifferencesAsPages) {
  const DriverService gone("OiGone", "\\??\\C:\\gone\\OiGone.sys", SERVICE_AUTO_START);
  ASSERT_EQ(Snapshot(L"a").exitCode, 0u);
  const std::wstring snapshot = Quoted(folder.Path(L"a"));
  const ProgramResult health = Driverlist(L"health --no-verify --rule image-missing --format html --from " + snapshot);
  EXPECT_EQ(health.errors, "");
  EXPECT_EQ(health.exitCode, 1u);
  EXPECT_THAT(health.output, testing::StartsWith("<!doctype html>\n"));
  EXPECT_THAT(health.output, HasSubstr("<h1>Findings on "));
  EXPECT_THAT(health.output, HasSubstr(">OiGone</a></dt>"));
  EXPECT_THAT(health.output, HasSubstr("Running services")) << "all records are below";

  const ProgramResult same = Driverlist(L"diff " + snapshot + L" " + snapshot + L" --format html");
  EXPECT_EQ(same.errors, "");
  EXPECT_EQ(same.exitCode, 0u);
  EXPECT_THAT(same.output, HasSubstr("<h1>Changes on "));
  EXPECT_THAT(same.output, HasSubstr("Nothing differs."));
}

TEST_F(ProgramCommand, PutsFindingsFirstWhereImagesWereVerified) {
  const ProgramResult page = Driverlist(L"list --verify --kind service --where service=OiBus --format html");
  EXPECT_EQ(page.exitCode, 0u);
  EXPECT_THAT(page.output, HasSubstr("What deserves a look <small>"));
  EXPECT_THAT(page.output, HasSubstr("Images without a signature"));
  EXPECT_THAT(page.output, HasSubstr(">OiBus</a></dt>"));
  EXPECT_LT(page.output.find("What deserves a look"), page.output.find("Running services"));
}

TEST_F(ProgramCommand, ListsFromNothingThatIsNoWholeSnapshot) {
  test::WriteText(folder.Path(L"old"), R"({"kind": "driverlist snapshot", "schema_version": 1, "drivers": []})");
  const std::pair<const wchar_t*, std::string> cases[] = {
      {L"none", " cannot be read: there is no such file\\.\n"},
      {L".", " cannot be read: it is a folder\\.\n"},
      {L"old",
       " was written by an older driverlist, which kept too little about each driver: only diff can read it\\.\n"}};
  for (const auto& [file, sentence] : cases) {
    for (const auto& [command, exitCode] : {std::pair(L"list", 1u), std::pair(L"health", 2u)}) {
      const ProgramResult result = Driverlist(command + (L" --from " + Quoted(folder.Path(file))));
      EXPECT_EQ(result.exitCode, exitCode);
      EXPECT_EQ(result.output, "");
      EXPECT_THAT(result.errors, MatchesRegex("driverlist: .*" + sentence));
    }
  }
}

TEST_F(ProgramCommand, SaysWhenNothingMatches) {
  const ProgramResult nothing = Driverlist(L"--where name=none --columns name");
  EXPECT_EQ(nothing.exitCode, 0u);
  EXPECT_EQ(nothing.output, "name\n");
  EXPECT_EQ(nothing.errors, "No drivers match.\n");
  const ProgramResult json = Driverlist(L"--match \"no such text\" --group-by kind --format json");
  EXPECT_EQ(Json::parse(json.output).at("groups").size(), 0u);
  EXPECT_EQ(json.errors, "No drivers match.\n");
}

TEST_F(ProgramCommand, FailsWhenAskedToAndTellsThatFromTrouble) {
  const std::pair<const wchar_t*, DWORD> cases[] = {{L"--where name=none --fail-if-none", 1},
                                                    {L"--where name=oi* --fail-if-none", 0},
                                                    {L"--where name=none --fail-if-any", 0},
                                                    {L"--where name=oi* --fail-if-any", 1},
                                                    {L"--where name=oi* --fail-if-any --mode registered", 1},
                                                    {L"--fail-if-any --from none.json", 2},
                                                    {L"--from none.json", 1}};
  for (const auto& [arguments, exitCode] : cases) {
    EXPECT_EQ(Driverlist(arguments).exitCode, exitCode) << Orvane::Utf8FromWide(arguments);
  }
}

TEST_F(ProgramCommand, AsksForWhatTheUserMeans) {
  const std::wstring list = L"--format csv --columns name --where service=oi* ";
  EXPECT_EQ(Driverlist(list + L"--sort -version").output, "name\r\nOiBus.sys\r\nOiGeraet.sys\r\n");
  EXPECT_EQ(Driverlist(list + L"--where \"version<5\"").output, "name\r\nOiGeraet.sys\r\n");
  EXPECT_EQ(Driverlist(list + L"--where version=4.* --or --where name=oibus*").output,
            "name\r\nOiBus.sys\r\nOiGeraet.sys\r\n");
  EXPECT_EQ(Driverlist(list + L"--match bus").output, "name\r\nOiBus.sys\r\n");
  EXPECT_EQ(Driverlist(list + L"--sort name --first 1").output, "name\r\nOiBus.sys\r\n");
  EXPECT_EQ(Driverlist(L"--where service=oi* --group-by kind,state").output,
            "kind     state    count\nservice  Stopped  2\n");
}

TEST_F(ProgramCommand, SaysWhenAFolderIsNamedForAFile) {
  const std::wstring here = Quoted(folder.Path(L"."));
  const std::pair<std::wstring, DWORD> cases[] = {
      {L"snapshot " + here, 1}, {L"list --output " + here, 1}, {L"health --output " + here, 2}};
  for (const auto& [arguments, exitCode] : cases) {
    const ProgramResult result = Driverlist(arguments);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot write .*: it is a folder\\.\n"));
  }
  EXPECT_THAT(Driverlist(L"list --log-file " + here).errors,
              MatchesRegex("driverlist: cannot open the log file .*: it is a folder\\.\n"));
}

TEST_F(ProgramCommand, ShowsTheRightOrderOfADifference) {
  const ProgramResult result = Driverlist(L"diff live before.json");
  EXPECT_EQ(result.exitCode, 2u);
  EXPECT_EQ(result.errors,
            "driverlist: OLD: \"live\" can only be the newer side: write \"driverlist diff before.json live\".\n");
}

TEST_F(ProgramCommand, TellsWhatDeservesALook) {
  const DriverService gone("OiGone", "\\??\\C:\\gone\\OiGone.sys", SERVICE_AUTO_START);
  const ProgramResult table = Driverlist(L"health");
  EXPECT_EQ(table.exitCode, 1u);
  EXPECT_EQ(table.errors, "");
  EXPECT_THAT(table.output, HasSubstr("image-missing (services whose configured image does not exist), medium: 1\n"
                                      "what    evidence\n"
                                      "OiGone  the configured image C:\\gone\\OiGone.sys does not exist\n"
                                      "        next: install the driver again, or remove the service with sc.exe "
                                      "delete OiGone\n"));
  const ProgramResult json = Driverlist(L"health --format json");
  EXPECT_EQ(json.exitCode, 1u);
  const Json report = Json::parse(json.output);
  EXPECT_EQ(report.at("summary").at("image-missing"), 1);
  EXPECT_EQ(report.at("tool_version"), PROJECT_VERSION);
}

TEST_F(ProgramCommand, FindsNothingOnAHealthyMachine) {
  // Wine's own display adapter has no driver. The library and the inventory both ask for devices.
  const auto noDevices = [](std::vector<Orvane::PciDeviceRecord>&) {};
  HOOK(notListed, test::Library(), GetPciInfo, noDevices);
  HOOK(notFound, test::ThisProgram(), GetPciInfo, noDevices);
  driverlist::Options options;
  options.command = driverlist::Command::Health;
  options.output = Orvane::Utf8FromWide(folder.Path(L"health.txt"));
  EXPECT_EQ(driverlist::RunHealth(options), 0);
  EXPECT_EQ(test::FileContent(folder.Path(L"health.txt")), "nothing found\n");
}

TEST_F(ProgramCommand, WritesReportsToFiles) {
  ASSERT_EQ(Snapshot(L"a").exitCode, 0u);
  const ProgramResult diff = Diff(L"a", L"live", L"--output " + Quoted(folder.Path(L"diff.txt")));
  EXPECT_EQ(diff.exitCode, 0u);
  EXPECT_EQ(diff.output, "");
  EXPECT_THAT(test::FileContent(folder.Path(L"diff.txt")), HasSubstr(" the same\n"));
  const ProgramResult health = Driverlist(L"health --output " + Quoted(folder.Path(L"health.txt")));
  EXPECT_EQ(health.output, "");
  EXPECT_NE(test::FileContent(folder.Path(L"health.txt")), "");
}

TEST_F(ProgramCommand, EndsWithTwoWhereReportsHaveTrouble) {
  ASSERT_EQ(Snapshot(L"a").exitCode, 0u);
  const std::wstring nowhere = L"--output " + Quoted(folder.Path(L"none\\out"));
  const std::wstring badLog = L"--log-file " + Quoted(folder.Path(L"a\"\"b"));
  const std::wstring diff = L"diff " + Quoted(folder.Path(L"a")) + L" live ";
  for (const std::wstring& command : {diff, std::wstring(L"health ")}) {
    for (const std::wstring& trouble : {nowhere, badLog, std::wstring(L"--format xml"), std::wstring(L"--colour")}) {
      const ProgramResult result = Driverlist(command + trouble);
      EXPECT_EQ(result.exitCode, 2u) << result.errors;
      EXPECT_EQ(result.output, "");
      EXPECT_THAT(result.errors, MatchesRegex("driverlist: .+\n"));
    }
  }
  EXPECT_EQ(Driverlist(L"diff").exitCode, 2u);
}

TEST_F(ProgramCommand, FailsWhenNobodyReadsItsOutput) {
  ASSERT_EQ(Snapshot(L"a").exitCode, 0u);
  const std::pair<std::wstring, DWORD> cases[] = {
      {L"diff " + Quoted(folder.Path(L"a")) + L" live", 2}, {L"health", 2}, {L"list --format jsonl", 1}};
  for (const auto& [arguments, exitCode] : cases) {
    const ProgramResult result = Driverlist(arguments, test::UnreadPipe().get());
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot write the output: .+\n"));
  }
}

TEST_F(ProgramCommand, FailsWhenTheDiskIsFull) {
  SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
  const Orvane::FileHandle full(
      CreateFileW(FullDevice, GENERIC_WRITE, FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0, nullptr));
  if (!full) GTEST_SKIP() << "there is no device that is full";
  ASSERT_EQ(Snapshot(L"a").exitCode, 0u);
  const std::pair<std::wstring, DWORD> cases[] = {
      {L"--output ", 1},        {L"list --format json --output ", 1},
      {L"snapshot ", 1},        {L"collect --output ", 1},
      {L"health --output ", 2}, {L"diff " + Quoted(folder.Path(L"a")) + L" live --output ", 2}};
  for (const auto& [arguments, exitCode] : cases) {
    const ProgramResult result = Driverlist(arguments + FullDevice);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot write Z:.dev.full: .+\n"));
  }
  const ProgramResult result = Driverlist(L"list", full.get());
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot write the output: .+\n"));
}

TEST_F(ProgramCommand, PrintsItsHelp) {
  for (const wchar_t* const command : {L"list", L"snapshot", L"diff", L"health", L"collect"}) {
    const ProgramResult help = Driverlist(std::wstring(command) + L" --help");
    EXPECT_EQ(help.exitCode, 0u);
    EXPECT_EQ(help.errors, "");
    EXPECT_THAT(help.output, HasSubstr("--quiet"));
  }
}

TEST_F(ProgramCommand, ShowsNoProgressButOnATerminal) {
  for (const wchar_t* const arguments : {L"list", L"list --quiet", L"snapshot NUL", L"health", L"collect"}) {
    EXPECT_EQ(Driverlist(arguments).errors, "");
  }
}

TEST_F(ProgramCommand, LogsWhenAskedTo) {
  EXPECT_THAT(Driverlist(L"snapshot NUL --log-level 4").errors, HasSubstr("Start to list registered driver files."));
  EXPECT_THAT(Driverlist(L"health --log-level 4 --quiet").errors, HasSubstr("DRIVERINFO.name=OiBus.sys "));
}

TEST_F(ProgramCommand, ListsWithAndWithoutItsName) {
  const std::wstring options = L"--mode registered --columns name,provider --where name=oi* --sort name --format csv";
  EXPECT_EQ(Driverlist(L"list " + options).output, Driverlist(options).output);
  EXPECT_THAT(Driverlist(options).output, HasSubstr("\r\nOiGeraet.sys,"));
  const ProgramResult matched = Driverlist(options + L" --match *ger\u00E4te*");
  EXPECT_THAT(matched.output, HasSubstr("\r\nOiGeraet.sys,"));
  EXPECT_THAT(matched.output, Not(HasSubstr("OiBus")));
  EXPECT_EQ(matched.exitCode, 0u);
}

/// What `arguments` print on a terminal of `width` columns.
std::string OnATerminal(SHORT width, const std::vector<std::string>& arguments) {
  const driverlist::ScriptedTerminal terminal(STD_OUTPUT_HANDLE, width);
  const driverlist::Options options = driverlist::ParseCommandLine(arguments).options.value();
  EXPECT_EQ(
      options.command == driverlist::Command::Health ? driverlist::RunHealth(options) : driverlist::RunList(options),
      options.command == driverlist::Command::Health ? 1 : 0);
  return terminal.Text();
}

TEST_F(ProgramCommand, IsColouredOnATerminal) {
  const std::vector<std::string> list = {"--where", "service=OiBus"};
  EXPECT_EQ(OnATerminal(80, list),
            "\x1B[1mkind\x1B[0m     \x1B[1mname\x1B[0m       \x1B[1mversion\x1B[0m         \x1B[1mstate\x1B[0m    "
            "\x1B[1mstart_type\x1B[0m  \x1B[1mprovider\x1B[0m       \x1B[1mservice\x1B[0m\n"
            "service  OiBus.sys  6.2.9200.16384  \x1B[33mStopped\x1B[0m  Manual      Example Syst\u2026  OiBus\n"
            "\nThere is no room for inf and path; --columns shows them.\n");
  const test::EnvironmentVariable forbidden("NO_COLOR", "1");
  EXPECT_EQ(OnATerminal(200, list),
            "kind     name       version         state    start_type  provider         service  inf  path\n"
            "service  OiBus.sys  6.2.9200.16384  Stopped  Manual      Example Systems  OiBus         "
            "C:\\windows\\System32\\drivers\\OiBus.sys\n");
}

TEST_F(ProgramCommand, ShowsAPathOnANarrowTerminalToThoseWhoAsk) {
  const test::EnvironmentVariable forbidden("NO_COLOR", "1");
  EXPECT_EQ(OnATerminal(40, {"--mode", "registered", "--where", "name=OiBus*", "--columns", "name,path"}),
            "name       path\n"
            "OiBus.sys  \u2026\\system32\\drivers\\OiBus.sys\n");
}

TEST_F(ProgramCommand, PutsNoColoursIntoJson) {
  EXPECT_THAT(OnATerminal(80, {"--format", "json"}), Not(HasSubstr("\x1B")));
  EXPECT_THAT(OnATerminal(80, {"health", "--format", "json"}), Not(HasSubstr("\x1B")));
  EXPECT_THAT(OnATerminal(80, {"health"}), HasSubstr("\x1B[33m0000-0000-0000-0000_nodriver#\x1B[0m  Wine Adapter\n"));
}

/// A snapshot under way.
class RunningSnapshot {
 public:
  explicit RunningSnapshot(const std::wstring& file) {
    std::wstring command = Quoted(test::ProgramDirectory() + L"\\driverlist.exe") + L" snapshot " + Quoted(file);
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &started)) {
      throw std::runtime_error("cannot start driverlist.exe");
    }
    m_process.reset(started.hProcess);
    m_thread.reset(started.hThread);
  }

  bool IsRunning() const { return WaitForSingleObject(m_process.get(), 0) == WAIT_TIMEOUT; }
  /// True when it was still under way.
  bool Kill() const {
    constexpr DWORD killed = 77;
    TerminateProcess(m_process.get(), killed);
    WaitForSingleObject(m_process.get(), INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(m_process.get(), &exitCode);
    return exitCode == killed;
  }

 private:
  Orvane::ProcessHandle m_process;
  Orvane::ProcessHandle m_thread;
};

DWORD MillisecondsOf(const std::wstring& file) {
  const ULONGLONG start = GetTickCount64();
  const RunningSnapshot snapshot(file);
  while (snapshot.IsRunning()) Sleep(1);
  return static_cast<DWORD>(GetTickCount64() - start);
}

TEST_F(ProgramCommand, LeavesTheOldOrTheNewSnapshotWhenItIsKilled) {
  const std::wstring file = folder.Path(L"s.json");
  const DWORD whole = MillisecondsOf(file);
  const std::size_t drivers = Json::parse(test::FileContent(file)).at("drivers").size();
  int killed = 0;
  int old = 0;
  for (DWORD i = 0; i < 100; ++i) {
    test::WriteText(file, "old");
    const RunningSnapshot snapshot(file);
    if (i % 2 == 0) {
      Sleep(whole * i / 80);
    } else {
      // As soon as it writes.
      while (snapshot.IsRunning() && folder.Files().size() < 2) Sleep(0);
    }
    killed += snapshot.Kill() ? 1 : 0;
    const std::string content = test::FileContent(file);
    if (content == "old") {
      ++old;
      continue;
    }
    const Json json = Json::parse(content, nullptr, false);
    ASSERT_TRUE(json.is_object()) << "run " << i << ": half a snapshot of " << content.size() << " bytes";
    ASSERT_EQ(json.at("drivers").size(), drivers) << "run " << i;
  }
  RecordProperty("killed", killed);
  RecordProperty("old", old);
  EXPECT_GT(killed, 20);
  EXPECT_GT(old, 20);
  EXPECT_LE(folder.Files().size(), 2u) << "drafts pile up";
  ASSERT_EQ(Snapshot(L"s.json").exitCode, 0u);
  EXPECT_THAT(folder.Files(), ElementsAre(L"s.json"));
}

}  // namespace
