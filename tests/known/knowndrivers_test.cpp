// Which images lists know, and by what.
#include "trust/knowndrivers.h"

#include <gmock/gmock.h>

#include "trust/signature.h"

using namespace trust;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string FileHash(64, '1');
const std::string ImageHash(64, '2');
const std::string Authority(40, 'a');

KnownDrivers Of(const std::vector<KnownEntry>& entries) {
  KnownDrivers known;
  known.Add({{"list", "1", "2024-05-06", "", "", entries.size()}}, entries);
  return known;
}

KnownEntry Hashed(const std::string& id, const std::string& hash, Category category = Category::Vulnerable) {
  KnownEntry entry;
  entry.id = id;
  entry.category = category;
  entry.hashes = {hash};
  return entry;
}

NameRule Named(const std::string& name, const char* minimum, const char* maximum) {
  NameRule rule;
  rule.originalName = name;
  rule.minimum = ParseFileVersion(minimum).value();
  rule.maximum = ParseFileVersion(maximum).value();
  return rule;
}

/// By a vendor whose certificate is of the authority.
KnownEntry Signed(const std::string& id, const std::string& publisher, const std::string& program,
                  const std::vector<NameRule>& names) {
  KnownEntry entry;
  entry.id = id;
  entry.signer = SignerRule{Authority, publisher, program};
  entry.names = names;
  return entry;
}

Hashes SomeHashes() {
  Hashes hashes;
  hashes.fileSha256 = FileHash;
  hashes.imageSha256 = ImageHash;
  return hashes;
}

Signature SignedBy(const std::string& signer, const std::string& program = "") {
  Signature signature;
  signature.state = SignatureState::Valid;
  signature.facts.chain = {{signer, "", "", std::string(40, 'b')}, {"authority", "", "", Authority}};
  signature.facts.programName = program;
  return signature;
}

ImageNames Image(const std::string& name, const char* version) {
  ImageNames names;
  names.originalName = name;
  names.version = ParseFileVersion(version);
  return names;
}

/// "id kind"
std::vector<std::string> Told(const std::vector<KnownMatch>& matches) {
  std::vector<std::string> told;
  for (const KnownMatch& match : matches) told.push_back(match.entry + " " + std::string(NameOf(match.kind)));
  return told;
}

TEST(KnownDrivers, MatchByHashes) {
  const KnownDrivers known = Of({Hashed("file", FileHash), Hashed("image", ImageHash), Hashed("other", Authority)});
  EXPECT_THAT(Told(known.Match(SomeHashes(), {}, {})), ElementsAre("file file-hash", "image image-hash"));
  Hashes old;
  old.imageSha1 = Authority;
  EXPECT_THAT(Told(known.Match(old, {}, {})), ElementsAre("other image-hash"));
  EXPECT_THAT(known.Match({}, {}, {}), IsEmpty());
}

TEST(KnownDrivers, AreMatchedWhateverTheListTakesAHashFor) {
  KnownEntry both = Hashed("both", ImageHash);
  both.hashes.push_back(FileHash);
  EXPECT_THAT(Told(Of({both}).Match(SomeHashes(), {}, {})), ElementsAre("both file-hash"));
}

TEST(KnownDrivers, ComeWithWhatTheListSaysOfThem) {
  KnownEntry entry = Hashed("1234", FileHash, Category::Malicious);
  entry.name = "evil.sys";
  entry.cves = {"CVE-2024-1"};
  const std::vector<KnownMatch> matches = Of({entry}).Match(SomeHashes(), {}, {});
  ASSERT_EQ(matches.size(), 1u);
  EXPECT_EQ(matches[0].list, "list");
  EXPECT_EQ(matches[0].entry, "1234");
  EXPECT_EQ(matches[0].name, "evil.sys");
  EXPECT_EQ(matches[0].category, Category::Malicious);
  EXPECT_EQ(matches[0].cves, std::vector<std::string>{"CVE-2024-1"});
}

TEST(KnownDrivers, BeginWithTheMaliciousOnes) {
  const KnownDrivers known = Of({Hashed("vulnerable", FileHash), Hashed("malicious", ImageHash, Category::Malicious)});
  EXPECT_THAT(Told(known.Match(SomeHashes(), {}, {})), ElementsAre("malicious image-hash", "vulnerable file-hash"));
}

TEST(KnownDrivers, MatchASignerOnlyWithTheVendor) {
  const KnownDrivers known = Of({Signed("rule", "Careless Vendor", "", {})});
  EXPECT_THAT(Told(known.Match({}, SignedBy("Careless Vendor"), {})), ElementsAre("rule signer-rule"));
  EXPECT_THAT(known.Match({}, SignedBy("Careful Vendor"), {}), IsEmpty()) << "under the same authority";
  Signature elsewhere = SignedBy("Careless Vendor");
  elsewhere.facts.chain.pop_back();
  EXPECT_THAT(known.Match({}, elsewhere, {}), IsEmpty()) << "under another authority";
  EXPECT_THAT(known.Match({}, {}, {}), IsEmpty());
}

TEST(KnownDrivers, MatchASignerOnlyWithTheNameOfTheProgram) {
  const KnownDrivers known = Of({Signed("rule", "", "Cheat Engine", {})});
  EXPECT_THAT(Told(known.Match({}, SignedBy("anybody", "Cheat Engine"), {})), ElementsAre("rule signer-rule"));
  EXPECT_THAT(known.Match({}, SignedBy("anybody"), {}), IsEmpty());
}

TEST(KnownDrivers, MatchASignerOnlyWithinTheRangeOfOneOfItsNames) {
  const KnownDrivers known =
      Of({Signed("rule", "Vendor", "", {Named("a.sys", "1.0.0.0", "2.0.0.5"), Named("b.sys", "0.0.0.0", "1.0.0.0")})});
  const auto isMatched = [&known](const char* name, const char* version) {
    return !known.Match({}, SignedBy("Vendor"), Image(name, version)).empty();
  };
  EXPECT_TRUE(isMatched("A.SYS", "1.0.0.0"));
  EXPECT_TRUE(isMatched("a.sys", "2.0.0.5"));
  EXPECT_TRUE(isMatched("b.sys", "0.9.65535.1"));
  EXPECT_FALSE(isMatched("a.sys", "2.0.0.6"));
  EXPECT_FALSE(isMatched("a.sys", "10.0.0.0")) << "as a text it would be below 2";
  EXPECT_FALSE(isMatched("a.sys", "0.65535.0.0"));
  EXPECT_FALSE(isMatched("c.sys", "1.5.0.0"));
  EXPECT_FALSE(isMatched("a.sys", "unknown"));
}

TEST(KnownDrivers, MatchANestedSignatureToo) {
  Signature signature = SignedBy("Careful Vendor");
  signature.nested.push_back(SignedBy("Careless Vendor").facts);
  EXPECT_THAT(Told(Of({Signed("rule", "Careless Vendor", "", {})}).Match({}, signature, {})),
              ElementsAre("rule signer-rule"));
}

TEST(KnownDrivers, OfAnOpenRangeNeedNoVersion) {
  NameRule rule;
  rule.productName = "Product";
  const KnownDrivers known = Of({Signed("rule", "Vendor", "", {rule})});
  ImageNames names;
  names.productName = "product";
  EXPECT_THAT(Told(known.Match({}, SignedBy("Vendor"), names)), ElementsAre("rule signer-rule"));
}

TEST(KnownDrivers, WithTheNameAndVersionOfAnImageAreAHint) {
  KnownEntry entry = Hashed("hint", FileHash);
  entry.names = {Named("disk.sys", "1.2.3.4", "1.2.3.4")};
  const KnownDrivers known = Of({entry});
  EXPECT_THAT(Told(known.Match({}, {}, Image("Disk.sys", "1.2.3.4"))), ElementsAre("hint name-and-version"));
  EXPECT_THAT(known.Match({}, {}, Image("disk.sys", "1.2.3.5")), IsEmpty());
  EXPECT_THAT(known.Match({}, {}, Image("disc.sys", "1.2.3.4")), IsEmpty());
  EXPECT_THAT(Told(known.Match(SomeHashes(), {}, Image("disk.sys", "1.2.3.4"))), ElementsAre("hint file-hash"));
}

TEST(KnownDrivers, AreNoHintWhereAHashIsKnown) {
  KnownEntry hint;
  hint.id = "hint";
  hint.names = {Named("disk.sys", "0.0.0.0", "9.0.0.0")};
  const KnownDrivers known = Of({hint, Hashed("hash", FileHash)});
  EXPECT_THAT(Told(known.Match(SomeHashes(), {}, Image("disk.sys", "1.0.0.0"))), ElementsAre("hash file-hash"));
}

TEST(KnownDrivers, OfSeveralListsSayWhichKnowsAnImage) {
  KnownDrivers known = Of({Hashed("1", FileHash)});
  known.Add({{"second", "", "", "", "", 1}}, {Hashed("2", FileHash)});
  std::vector<std::string> lists;
  for (const KnownMatch& match : known.Match(SomeHashes(), {}, {})) lists.push_back(match.list + " " + match.entry);
  EXPECT_THAT(lists, ElementsAre("list 1", "second 2"));
}

TEST(KnownDrivers, WantOnlyTheHashesThatListsHave) {
  const auto wanted = [](const std::string& hash) { return Of({Hashed("1", hash)}).WantedHashes(); };
  EXPECT_FALSE(wanted(FileHash).fileSha1 || wanted(FileHash).fileMd5 || wanted(FileHash).imageSha1);
  EXPECT_TRUE(wanted(std::string(40, '1')).fileSha1 && wanted(std::string(40, '1')).imageSha1);
  EXPECT_FALSE(wanted(std::string(40, '1')).fileMd5);
  EXPECT_TRUE(wanted(std::string(32, '1')).fileMd5 && wanted(std::string(32, '1')).imageMd5);
}

}  // namespace
