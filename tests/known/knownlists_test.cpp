// What is read of lists as they are published, and what is refused.
#include "trust/knownlists.h"

#include <gmock/gmock.h>

#include <sstream>

#include "trust/signature.h"

using namespace trust;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string Sha256(64, 'a');
const std::string Sha1(40, 'b');
const std::string Md5(32, 'c');

KnownContent Read(const std::string& text) {
  std::stringbuf buffer(text, std::ios_base::in);
  return ReadKnownList(buffer);
}

/// What is wrong with a list; empty when it can be read.
std::string ProblemOf(const std::string& text) {
  try {
    Read(text);
    return {};
  } catch (const InputProblem& problem) {
    return problem.what();
  }
}

/// All of an entry, in a line.
std::string Told(const KnownEntry& entry) {
  std::string told = entry.id + " " + entry.name + " " + std::string(NameOf(entry.category));
  for (const std::string& cve : entry.cves) told += " " + cve;
  for (const std::string& hash : entry.hashes) told += " #" + hash;
  if (entry.signer) {
    told +=
        " tbs=" + entry.signer->tbsHash + " by=" + entry.signer->publisher + " program=" + entry.signer->programName;
  }
  for (const NameRule& rule : entry.names) {
    told += " [" + rule.originalName + "|" + rule.internalName + "|" + rule.productName + "|" + rule.description + "|" +
            FileVersionText(rule.minimum) + "-" + FileVersionText(rule.maximum) + "]";
  }
  return told;
}

std::vector<std::string> Told(const KnownContent& content) {
  std::vector<std::string> told;
  for (const KnownEntry& entry : content.entries) told.push_back(Told(entry));
  return told;
}

const std::string LolText = R"([
 {"Id": "1", "Tags": ["evil.sys", "other.sys"], "Category": "malicious", "Created": "2024-05-06", "CVE": null,
  "Commands": {"Command": "sc.exe create"}, "Unheard": [{"Of": [1, 2.5, true]}],
  "KnownVulnerableSamples": [
   {"SHA256": ")" + Sha256 + R"(", "SHA1": "", "MD5": "-", "OriginalFilename": "Evil.sys",
    "FileVersion": "1, 2, 3, 4", "Authentihash": {"SHA256": ")" +
                            Sha1 + R"(", "MD5": null}},
   {"SHA1": ")" + Md5 + R"(", "Authentihash": "", "OriginalFilename": "Evil.sys", "FileVersion": "unknown"}]},
 {"Id": "2", "Tags": [""], "Category": "vulnerable driver", "Created": "2024-05-07", "CVE": ["CVE-2024-1", ""],
  "KnownVulnerableSamples": [{"MD5": " CCCCCCCCCCCCCCCCCCCCCCCCCCCCCCCC "}]},
 {"Id": "3", "Category": "vulnerable driver", "CVE": "CVE-2024-2", "KnownVulnerableSamples": null}
])";

TEST(LolDrivers, AreReadWhateverTheListTakesAHashFor) {
  const KnownContent content = Read(LolText);
  EXPECT_THAT(Told(content), ElementsAre("1 evil.sys malicious #" + Sha256 + " #" + Sha1 + " #" + Md5 +
                                             " [Evil.sys||||1.2.3.4-1.2.3.4]",
                                         "2  vulnerable CVE-2024-1 #" + Md5, "3  vulnerable CVE-2024-2"));
  ASSERT_EQ(content.lists.size(), 1u);
  EXPECT_EQ(content.lists[0].name, "LOLDrivers");
  EXPECT_EQ(content.lists[0].date, "2024-05-07") << "that of the newest entry";
  EXPECT_EQ(content.lists[0].entries, 3u);
}

std::string PolicyText(const std::string& signers, const std::string& rules, const std::string& references) {
  return R"(<?xml version="1.0" encoding="utf-8"?>
<SiPolicy xmlns="urn:schemas-microsoft-com:sipolicy"><VersionEx>10.0.1.0</VersionEx><FileRules>
<Allow ID="ALLOW" FriendlyName="" FileName="*" />)" +
         rules + "</FileRules><Signers>" + signers +
         R"(</Signers><SigningScenarios><SigningScenario Value="131" ID="S"><ProductSigners>)" + references +
         R"(</ProductSigners></SigningScenario><SigningScenario Value="12" ID="W"><ProductSigners><FileRulesRef>
<FileRuleRef RuleID="PROGRAM" /></FileRulesRef></ProductSigners></SigningScenario></SigningScenarios></SiPolicy>)";
}

const std::string SomeRules = R"(<Deny ID="H1" FriendlyName="a.sys\1234 Hash Sha1" Hash=")" + std::string(40, 'B') +
                              R"(" />
<Deny ID="H2" FriendlyName="a.sys Hash Page Sha1" Hash=")" +
                              Sha1 + R"(" />
<Deny ID="PROGRAM" FriendlyName="program" Hash=")" +
                              Sha1 + R"(" />
<Deny ID="N" FriendlyName="Maker CVE-2018-5701 FileRule" FileName="amp.sys" MinimumFileVersion="0.0.0.0"
 MaximumFileVersion="5.4.11.1" />
<FileAttrib ID="A1" FriendlyName="x" FileName="b.sys" MinimumFileVersion="1.0.0.0" />
<FileAttrib ID="A2" FriendlyName="x" ProductName="Product" MaximumFileVersion="65535.65535.65535.65535" />)";

const std::string SomeSigners = R"(<Signer ID="S1" Name="Authority"><CertRoot Type="TBS" Value=")" + Sha256 +
                                R"(" /><CertPublisher Value="Vendor" /><FileAttribRef RuleID="A1" /><!-- x -->
<FileAttribRef RuleID="A2" /></Signer>
<Signer ID="S2" Name="Authority"><CertRoot Type="TBS" Value=")" +
                                Sha1 + R"(" /><CertOemID Value="Program" /></Signer>
<Signer ID="S3" Name="Allowed"><CertRoot Type="TBS" Value=")" +
                                Sha1 + R"(" /></Signer>)";

const std::string SomeReferences = R"(<FileRulesRef><FileRuleRef RuleID="ALLOW" /><FileRuleRef RuleID="H1" />
<FileRuleRef RuleID="H2" /><FileRuleRef RuleID="N" /><FileRuleRef RuleID="H1" /></FileRulesRef>
<DeniedSigners><DeniedSigner SignerId="S1" /><DeniedSigner SignerId="S2" /></DeniedSigners>)";

TEST(Policy, IsReadAsFarAsItDeniesToTheKernel) {
  const KnownContent content = Read(PolicyText(SomeSigners, SomeRules, SomeReferences));
  EXPECT_THAT(Told(content), ElementsAre("H1 a.sys vulnerable #" + Sha1,
                                         "N Maker CVE-2018-5701 vulnerable CVE-2018-5701 [amp.sys||||0.0.0.0-5.4.11.1]",
                                         "S1 Vendor vulnerable tbs=" + Sha256 +
                                             " by=Vendor program= [b.sys||||1.0.0.0-65535.65535.65535.65535]"
                                             " [||Product||0.0.0.0-65535.65535.65535.65535]",
                                         "S2 Authority vulnerable tbs=" + Sha1 + " by= program=Program"));
  ASSERT_EQ(content.lists.size(), 1u);
  EXPECT_EQ(content.lists[0].name, "Microsoft");
  EXPECT_EQ(content.lists[0].version, "10.0.1.0");
  EXPECT_EQ(content.lists[0].entries, 4u);
}

TEST(Policy, IsRefusedWhereARuleCannotBeChecked) {
  const auto problem = [](const std::string& signer) {
    return ProblemOf(PolicyText(R"(<Signer ID="S1" Name="x">)" + signer + "</Signer>", SomeRules,
                                R"(<DeniedSigners><DeniedSigner SignerId="S1" /></DeniedSigners>)"));
  };
  const std::string root = R"(<CertRoot Type="TBS" Value=")" + Sha1 + R"(" />)";
  EXPECT_EQ(problem(root), "");
  EXPECT_EQ(problem(R"(<CertRoot Type="Wellknown" Value="06" />)"),
            "contains a rule that cannot be checked: S1 has a root by name");
  EXPECT_EQ(problem(root + R"(<CertEKU ID="E" />)"), "contains a rule that cannot be checked: S1 has CertEKU");
  EXPECT_EQ(problem(root + R"(<FileAttribRef RuleID="GONE" />)"), "is damaged: there is no rule \"GONE\"");
  EXPECT_EQ(problem(R"(<CertRoot Type="TBS" Value="12" />)"), "is damaged: the signer S1 has no hash");
  EXPECT_EQ(ProblemOf(PolicyText("", R"(<Deny ID="D" FilePath="C:\x" />)",
                                 R"(<FileRulesRef><FileRuleRef RuleID="D" /></FileRulesRef>)")),
            "contains a rule that cannot be checked: D has FilePath");
  EXPECT_EQ(ProblemOf(PolicyText("", R"(<Deny ID="D" FileName="x" MinimumFileVersion="x" />)",
                                 R"(<FileRulesRef><FileRuleRef RuleID="D" /></FileRulesRef>)")),
            "is damaged: the MinimumFileVersion of D is not a version");
}

TEST(Policy, WithADocumentTypeIsRefused) {
  EXPECT_EQ(ProblemOf(R"(<!DOCTYPE SiPolicy [<!ENTITY a "aaaa"><!ENTITY b "&a;&a;">]><SiPolicy>&b;</SiPolicy>)"),
            "has a document type, which no policy needs");
}

TEST(Policy, ThatDeniesNothingIsRefused) {
  EXPECT_EQ(ProblemOf(PolicyText(SomeSigners, SomeRules, "")), "is a policy that denies no driver");
}

KnownDrivers Known() {
  KnownDrivers known;
  for (const std::string& text : {LolText, PolicyText(SomeSigners, SomeRules, SomeReferences)}) {
    KnownContent content = Read(text);
    known.Add(content.lists, content.entries);
  }
  return known;
}

TEST(CompactList, HoldsWhatTheListsHeldThatItWasMadeOf) {
  const KnownDrivers known = Known();
  const KnownContent read = Read(CompactList(known));
  std::vector<std::string> expected;
  for (const KnownEntry& entry : known.Entries()) expected.push_back(Told(entry));
  EXPECT_EQ(Told(read), expected);
  ASSERT_EQ(read.lists.size(), 2u);
  EXPECT_EQ(read.lists[0].licence, "Apache-2.0");
  EXPECT_EQ(read.lists[0].source, "https://www.loldrivers.io");
  EXPECT_EQ(read.lists[0].date, "2024-05-07");
  EXPECT_EQ(read.lists[1].version, "10.0.1.0");
}

TEST(CompactList, WithoutSomeOfItsEntriesIsRefused) {
  std::string text = CompactList(Known());
  const std::size_t begin = text.find("{\"list\":0,\"id\":\"2\"");
  text.erase(begin, text.find('\n', begin) + 1 - begin);
  EXPECT_EQ(ProblemOf(text), "is damaged: LOLDrivers has 2 entries instead of 3");
}

TEST(CompactList, OfAnotherFormIsRefused) {
  std::string text = CompactList(Known());
  text.replace(text.find("\"version\":1"), 11, "\"version\":2");
  EXPECT_EQ(ProblemOf(text), "is a list of format version 2, but this driverlist reads version 1");
}

TEST(CompactList, WithADamagedEntryIsRefused) {
  const auto entries = [](const std::string& text) {
    return ProblemOf(
        R"({"format": "known drivers", "version": 1, "lists": [{"name": "l", "entries": 1}], "entries": [)" + text +
        "]}");
  };
  EXPECT_EQ(entries(R"({"list": 0, "id": "1", "hashes": [")" + Md5 + R"("]})"), "");
  EXPECT_EQ(entries(R"({"list": 1, "id": "1"})"), "is damaged: 1 belongs to no list");
  EXPECT_EQ(entries(R"({"list": 0})"), "is damaged: entry 1 has no id");
  EXPECT_EQ(entries(R"({"list": 0, "id": "1", "hashes": ["12"]})"), "is damaged: entry 1 has an invalid hash");
  EXPECT_EQ(entries(R"({"list": 0, "id": "1", "names": [{"min": "x"}]})"),
            "is damaged: entry 1 has an invalid version");
  EXPECT_EQ(entries("[[]]"), "is damaged: entry 0 has no id");
}

TEST(KnownList, ThatIsCutShortIsRefusedWhereverThatIs) {
  for (const std::string& text : {LolText, PolicyText(SomeSigners, SomeRules, SomeReferences), CompactList(Known())}) {
    const std::size_t end = text.find_last_of("]}>");
    for (std::size_t size = 0; size < end; size += 7) {
      EXPECT_NE(ProblemOf(text.substr(0, size)), "") << text.substr(0, size);
    }
  }
}

TEST(KnownList, IsNoOtherFile) {
  const std::string notAList = "is not a list of known drivers";
  for (const char* const text :
       {"", " \n", "MZ", "<html><body>404</body></html>", "<", "[]", "[1]", "[{}]", "[[\"Id\"]]", "{}",
        "[{\"Id\": \"1\"}]", "{\"drivers\": []}", "{\"entries//\": {\"names//\": 1}}", "\"text\"",
        "{\"format\": \"other\"}", "[{", "{\"a\": "}) {
    EXPECT_EQ(ProblemOf(text), notAList) << text;
  }
}

TEST(KnownList, IsRefusedWithoutTheIdOfAnEntry) {
  std::string text = LolText;
  text.replace(text.find("\"Id\": \"2\""), 9, "\"ID\": \"2\"");
  EXPECT_EQ(ProblemOf(text), "is damaged: entry 2 has no Id");
}

TEST(KnownList, OfManyHashesIsRefused) {
  std::string text = R"([{"Id": "1", "KnownVulnerableSamples": [)";
  text.reserve(MostHashes * 50);
  for (std::size_t i = 0; i <= MostHashes; ++i) text += (i == 0 ? "{\"MD5\":\"" : ",{\"MD5\":\"") + Md5 + "\"}";
  EXPECT_EQ(ProblemOf(text + "]}]"), "contains more than 2,000,000 hashes");
}

TEST(Hashes, AreSeenByTheirLengthAndDigits) {
  EXPECT_EQ(HashIn(" " + std::string(40, 'B') + "\r\n"), Sha1);
  EXPECT_EQ(HashIn(Md5), Md5);
  EXPECT_EQ(HashIn(std::string(96, '0')), std::string(96, '0'));
  for (const std::string& none : {std::string(), std::string(" "), std::string(39, 'a'), std::string(40, 'g')}) {
    EXPECT_EQ(HashIn(none), "") << none;
  }
}

}  // namespace
