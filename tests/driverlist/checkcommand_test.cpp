// health with a baseline, and check, as a user runs them, on a machine of two drivers.
#include <gmock/gmock.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "platform/encoding.h"
#include "program.h"
#include "scratchmachine.h"

using test::Driverlist;
using test::DriverService;
using test::ProgramResult;
using test::ScratchFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::ordered_json;

namespace {

std::wstring Quoted(const std::wstring& path) { return L"\"" + path + L"\""; }

/// "OiBus" is stopped though it should run; its image is unsigned.
class ProgramOnTwoDrivers : public test::ScratchMachine {
 protected:
  void SetUp() override {
    ScratchMachine::SetUp();
    if (!IsSkipped()) m_machine = std::make_unique<Machine>();
  }

  std::wstring Path(const std::wstring& file) const { return Quoted(folder.Path(file)); }
  void Write(const std::wstring& file, const std::string& text) const { test::WriteText(folder.Path(file), text); }

  test::TemporaryFolder folder;

 private:
  struct Machine {
    ScratchFile bus{test::DriverPath("OiBus.sys"), L"images\\full.sys"};
    ScratchFile german{test::DriverPath("OiGeraet.sys"), L"images\\codepage.sys"};
    DriverService busService{"OiBus", "\\SystemRoot\\System32\\drivers\\OiBus.sys", SERVICE_AUTO_START};
    DriverService germanService{"OiGeraet", "System32\\drivers\\OiGeraet.sys"};
  };
  std::unique_ptr<Machine> m_machine;
};

/// "rule subject" of each finding.
std::vector<std::string> Findings(const ProgramResult& result) {
  const Json document = Json::parse(result.output);
  std::vector<std::string> found;
  for (const Json& finding : document.at("findings")) {
    found.push_back(finding.at("rule").get<std::string>() + " " + finding.at("subject").get<std::string>());
  }
  return found;
}

class ProgramBaseline : public ProgramOnTwoDrivers {
 protected:
  ProgramResult Accept(const std::wstring& more = L"") const { return Driverlist(L"baseline " + Path(L"b") + more); }
  ProgramResult Health(const std::wstring& more = L"") const {
    return Driverlist(L"health --baseline " + Path(L"b") + L" --format json" + more);
  }
};

TEST_F(ProgramBaseline, HidesEverythingOnAMachineThatDidNotChange) {
  for (const std::wstring& how : {std::wstring(), std::wstring(L" --no-verify")}) {
    const ProgramResult accepted = Accept(how);
    EXPECT_EQ(accepted.exitCode, 0u);
    EXPECT_EQ(accepted.errors, "");
    EXPECT_THAT(accepted.output, MatchesRegex("\\d+ findings accepted: .*\\d+ medium.*\n"));
    const std::size_t count = Json::parse(test::FileContent(folder.Path(L"b"))).at("findings").size();
    EXPECT_GT(count, 0u);
    const ProgramResult result = Health(how);
    EXPECT_EQ(result.exitCode, 0u) << result.output;
    EXPECT_THAT(Findings(result), IsEmpty());
    EXPECT_EQ(Json::parse(result.output).at("baseline").at("hidden"), count);
  }
}

TEST_F(ProgramBaseline, NamesAloneWhatIsNew) {
  ASSERT_EQ(Accept().exitCode, 0u);
  const ScratchFile image(test::DriverPath("OiNew.sys"), L"images\\full.sys");
  const DriverService service("OiNew", "System32\\drivers\\OiNew.sys");
  const ProgramResult result = Health();
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_THAT(Findings(result), ElementsAre("unsigned OiNew"));
  const std::string table = Driverlist(L"health --baseline " + Path(L"b")).output;
  EXPECT_THAT(table, StartsWith("unsigned (images without a signature), high: 1\n"));
  EXPECT_THAT(table, HasSubstr("next: get a signed version from Example Systems, or remove the service with sc.exe "
                               "delete OiNew\n"));
  EXPECT_THAT(table, testing::ContainsRegex("\n\\d+ findings are hidden by the baseline of 20"));
  EXPECT_THAT(table, Not(HasSubstr("OiBus")));
}

TEST_F(ProgramBaseline, NamesAnImageThatWasReplaced) {
  const auto service = [] { return DriverService("OiSwap", "System32\\drivers\\OiSwap.sys"); };
  {
    const ScratchFile image(test::DriverPath("OiSwap.sys"), L"images\\full.sys");
    const auto swapped = service();
    ASSERT_EQ(Accept().exitCode, 0u);
    EXPECT_EQ(Health().exitCode, 0u);
  }
  const ScratchFile image(test::DriverPath("OiSwap.sys"), L"images\\codepage.sys");
  const auto swapped = service();
  EXPECT_THAT(Findings(Health()), testing::Contains("unsigned OiSwap"));
}

TEST_F(ProgramBaseline, MadeWithoutVerificationHidesNoImage) {
  ASSERT_EQ(Accept(L" --no-verify").exitCode, 0u);
  const ProgramResult result = Health();
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_THAT(Findings(result), testing::IsSupersetOf({"unsigned OiBus", "unsigned OiGeraet"}));
}

TEST_F(ProgramBaseline, OfVerifiedImagesIsRefusedWhereTheyAreNotVerified) {
  ASSERT_EQ(Accept().exitCode, 0u);
  const ProgramResult result = Health(L" --no-verify");
  EXPECT_EQ(result.exitCode, 2u);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors,
              MatchesRegex("driverlist: .*b was made of verified images, and these are not verified: what it would "
                           "hide was not looked at\\.\n"));
}

TEST_F(ProgramBaseline, HoldsWhatWasChosen) {
  ASSERT_EQ(Accept(L" --rule not-running --no-verify").exitCode, 0u);
  EXPECT_THAT(Findings(Health(L" --no-verify --rule not-running")), IsEmpty());
  ASSERT_EQ(Accept(L" --no-verify --not-rule not-running").exitCode, 0u);
  EXPECT_THAT(Findings(Health(L" --no-verify")), testing::Contains("not-running OiBus"));
}

TEST_F(ProgramBaseline, OfASnapshotIsPrinted) {
  ASSERT_EQ(Driverlist(L"snapshot " + Path(L"s")).exitCode, 0u);
  const ProgramResult result = Driverlist(L"baseline - --from " + Path(L"s"));
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  Write(L"b", result.output);
  EXPECT_EQ(Health(L" --from " + Path(L"s")).exitCode, 0u);
  EXPECT_EQ(Health(L" --no-verify").exitCode, 0u) << "the machine is the same";
}

TEST_F(ProgramBaseline, OfAnotherMachineIsRefused) {
  ASSERT_EQ(Accept(L" --no-verify --host-id other").exitCode, 0u);
  const ProgramResult result = Health(L" --no-verify");
  EXPECT_EQ(result.exitCode, 2u);
  EXPECT_THAT(result.errors, HasSubstr(" is the baseline of another machine: its host_id is \"other\", and this is "));
  EXPECT_EQ(Health(L" --no-verify --host-id OTHER").exitCode, 0u);
}

TEST_F(ProgramBaseline, ThatIsNoneIsRefusedBeforeTheMachineIsRead) {
  Write(L"b", "{}");
  const ProgramResult result = Health();
  EXPECT_EQ(result.exitCode, 2u);
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: .*b is not a baseline of driverlist\\.\n"));
  EXPECT_EQ(Driverlist(L"health --baseline " + Path(L"nowhere")).exitCode, 2u);
}

TEST_F(ProgramBaseline, LeavesTheFormerOneWhenItCannotWrite) {
  EXPECT_EQ(Driverlist(L"baseline --no-verify " + Path(L"nowhere\\b")).exitCode, 2u);
  EXPECT_THAT(folder.Files(), IsEmpty());
}

using ProgramHealth = ProgramOnTwoDrivers;

TEST_F(ProgramHealth, ReportsWhatIsChosen) {
  const auto findings = [](const std::wstring& arguments) {
    return Findings(Driverlist(L"health --format json " + arguments));
  };
  EXPECT_THAT(findings(L"--no-verify --rule not-running"), ElementsAre("not-running OiBus"));
  EXPECT_THAT(findings(L"--rule unsigned"), testing::IsSupersetOf({"unsigned OiBus", "unsigned OiGeraet"}));
  for (const std::string& finding : findings(L"--severity high")) EXPECT_THAT(finding, StartsWith("unsigned "));
  EXPECT_THAT(findings(L"--not-rule unsigned --severity medium"), testing::Contains("not-running OiBus"));
  EXPECT_EQ(Driverlist(L"health --no-verify --severity critical --format csv").exitCode, 0u);
  EXPECT_THAT(Driverlist(L"health --no-verify --rule not-running --format csv").output,
              MatchesRegex("rule,severity,id,subject,evidence,next_step\r\nnot-running,medium,not-running-\\w+,"
                           "OiBus,.*\r\n"));
  EXPECT_THAT(Driverlist(L"health --no-verify --rule not-running --format markdown").output,
              HasSubstr("| not-running | medium |"));
}

TEST_F(ProgramHealth, RefusesARuleThatNeedsImagesWithoutThem) {
  const ProgramResult result = Driverlist(L"health --no-verify --rule unsigned");
  EXPECT_EQ(result.exitCode, 2u);
  EXPECT_EQ(result.errors, "driverlist: rule unsigned needs verified images, and these are not verified.\n");
}

class ProgramPolicy : public ProgramOnTwoDrivers {
 protected:
  ProgramResult Check(const std::string& rules, const std::wstring& more = L"") const {
    Write(L"p.json", "{\"name\": \"p\", \"rules\": [" + rules + "]}");
    return Driverlist(L"check " + Path(L"p.json") + more);
  }
};

constexpr char Bus[] = R"({"name": "bus", "driver": "OiBus.sys", "minimum_version": "6.2"})";
constexpr char NewerBus[] =
    R"({"name": "newer-bus", "message": "Update it.", "severity": "high", "driver": "oibus.sys", "minimum_version": "7"})";

TEST_F(ProgramPolicy, IsKeptOrBrokenAsTheExitCodeSays) {
  const ProgramResult kept = Check(Bus);
  EXPECT_EQ(kept.exitCode, 0u);
  EXPECT_EQ(kept.errors, "");
  EXPECT_EQ(kept.output, "passed: bus\nno rule of 1 rule failed\n");
  const ProgramResult broken = Check(std::string(Bus) + ", " + NewerBus);
  EXPECT_EQ(broken.exitCode, 1u);
  EXPECT_EQ(broken.output,
            "newer-bus (Update it.), high: 1 of 1\n"
            "what   evidence\n"
            "OiBus  version is 6.2.9200.16384, where version>=7 is expected\n"
            "\n"
            "passed: bus\n"
            "1 of 2 rules failed\n");
}

TEST_F(ProgramPolicy, VerifiesImagesWhereItAsksForThem) {
  const ProgramResult result = Check(R"({"name": "s", "driver": "Oi*", "signed": true})");
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_THAT(result.output, HasSubstr("\nOiBus     signature is unsigned, where signature=valid is expected\n"));
  EXPECT_THAT(result.output, HasSubstr("\nOiGeraet  signature is unsigned, where signature=valid is expected\n"));
}

TEST_F(ProgramPolicy, NeverPassesBecauseNobodyLooked) {
  ASSERT_EQ(Driverlist(L"snapshot " + Path(L"s")).exitCode, 0u);
  const ProgramResult unverified = Check(R"({"name": "s", "signed": true})", L" --from " + Path(L"s"));
  EXPECT_EQ(unverified.exitCode, 2u);
  EXPECT_EQ(unverified.output, "");
  EXPECT_THAT(unverified.errors,
              MatchesRegex("driverlist: .*s contains no verified images, which rule \"s\" needs: make "
                           "it with --verify\\.\n"));
  const ProgramResult unlisted = Check(R"({"name": "k", "forbid": "known=*"})");
  EXPECT_EQ(unlisted.exitCode, 2u);
  EXPECT_EQ(unlisted.errors,
            "driverlist: this machine was not looked up in a list of known drivers, which rule \"k\" needs.\n");
}

TEST_F(ProgramPolicy, ChecksSnapshots) {
  ASSERT_EQ(Driverlist(L"snapshot " + Path(L"a") + L" --host-id first").exitCode, 0u);
  ASSERT_EQ(Driverlist(L"snapshot " + Path(L"b") + L" --host-id second").exitCode, 0u);
  const ProgramResult result = Check(NewerBus, L" --format json --from " + Path(L"a") + L" --from " + Path(L"b"));
  EXPECT_EQ(result.exitCode, 1u);
  const Json document = Json::parse(result.output);
  EXPECT_EQ(document.at("summary"), Json::parse(R"({"passed": 0, "failed": 2, "skipped": 0})"));
  ASSERT_EQ(document.at("machines").size(), 2u);
  EXPECT_EQ(document.at("machines")[0].at("host_id"), "first");
  EXPECT_EQ(document.at("machines")[1].at("host_id"), "second");
}

TEST_F(ProgramPolicy, IsRefusedWithThePlaceOfWhatIsNotUnderstood) {
  const ProgramResult result = Check(std::string(Bus) + R"(, {"name": "b", "forbid": ["stat=running"]})");
  EXPECT_EQ(result.exitCode, 2u);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: .*p.json is no policy: /rules/1/forbid/0: there is no member "
                                          "\"stat\"; did you mean \"state\"\\?\n"));
  EXPECT_EQ(Driverlist(L"check " + Path(L"nowhere.json")).exitCode, 2u);
}

TEST_F(ProgramPolicy, WritesJUnitToAFile) {
  EXPECT_EQ(Check(NewerBus, L" --format junit --output " + Path(L"r.xml")).exitCode, 1u);
  const std::string xml = test::FileContent(folder.Path(L"r.xml"));
  EXPECT_THAT(
      xml, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"p\" tests=\"1\" failures=\"1\""));
  EXPECT_THAT(xml, HasSubstr("<failure message=\"Update it.\" type=\"high\">OiBus: version is 6.2.9200.16384, where "
                             "version&gt;=7 is expected\n</failure>"));
}

}  // namespace
