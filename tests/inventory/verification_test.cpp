// Which images are read, how often, by how many threads, and what is set.
#include "inventory/verification.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <set>
#include <thread>

#include "importhook.h"
#include "inventories.h"
#include "platform/encoding.h"
#include "program.h"

using namespace inventory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Made by sha256sum.
constexpr char Sha256OfAbc[] = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

class ImagesOfServices : public testing::Test {
 protected:
  std::string Write(const std::wstring& name, const std::string& content) const {
    std::ofstream(std::filesystem::path(folder.Path(name)), std::ios::binary) << content;
    return Orvane::Utf8FromWide(folder.Path(name));
  }

  test::TemporaryFolder folder;
};

TEST_F(ImagesOfServices, AreHashedJudgedAndLookedUp) {
  const std::string path = Write(L"\u0436.sys", "abc");
  Record missing = test::ServiceRecord("missing", "1", "C:\\no such file.sys");
  missing.image_missing = true;
  Records records = {test::ServiceRecord("net", "1", path), missing, test::ServiceRecord("nowhere", "1"),
                     test::DeviceRecord("PCI\\1", "1")};
  trust::KnownEntry entry;
  entry.id = "7";
  entry.hashes = {Sha256OfAbc};
  trust::KnownDrivers known;
  known.Add({{"list", "", "", "", "", 1}}, {entry});
  Verification verification;
  verification.known = &known;
  ASSERT_TRUE(Verify(records, verification));
  EXPECT_EQ(records[0].sha256, Sha256OfAbc);
  EXPECT_EQ(records[0].image_sha256, "");
  EXPECT_NE(records[0].signature, "valid");
  EXPECT_NE(records[0].signature, "");
  ASSERT_EQ(records[0].known.size(), 1u);
  EXPECT_EQ(records[0].known[0].entry, "7");
  EXPECT_EQ(records[0].known[0].kind, trust::MatchKind::FileHash);
  for (std::size_t i = 1; i < records.size(); ++i) {
    EXPECT_EQ(records[i].signature, "") << i;
    EXPECT_EQ(records[i].sha256, "") << i;
  }
}

TEST_F(ImagesOfServices, ThatCannotBeReadAreUnknown) {
  Records records = {test::ServiceRecord("folder", "1", Orvane::Utf8FromWide(folder.Path(L"."))),
                     test::ServiceRecord("gone", "1", "C:\\no such file.sys")};
  ASSERT_TRUE(Verify(records, {}));
  for (const Record& record : records) {
    EXPECT_EQ(record.signature, "unknown");
    EXPECT_EQ(record.sha256, "");
    EXPECT_THAT(record.signature_problem, testing::MatchesRegex(".+\\(0x0000000.\\)"));
  }
}

TEST_F(ImagesOfServices, AreOneForAllServicesThatShareAFile) {
  const std::string path = Write(L"a.sys", "abc");
  const std::string otherCase = Orvane::LowerCase(path);
  Write(L"b.sys", "abc");
  Records records = {test::ServiceRecord("a", "1", path), test::ServiceRecord("b", "1", otherCase),
                     test::ServiceRecord("c", "1", Orvane::Utf8FromWide(folder.Path(L".")) + "\\a.sys"),
                     test::ServiceRecord("other", "1", Orvane::Utf8FromWide(folder.Path(L"b.sys")))};
  std::vector<std::size_t> told;
  Verification verification;
  verification.threads = 1;
  verification.progress = [&told](std::size_t done, std::size_t all) {
    EXPECT_EQ(all, 2u);
    told.push_back(done);
    return true;
  };
  ASSERT_TRUE(Verify(records, verification));
  EXPECT_THAT(told, ElementsAre(0, 1, 2));
  for (const Record& record : records) EXPECT_EQ(record.sha256, Sha256OfAbc);
}

TEST_F(ImagesOfServices, AreReadByAsManyThreadsAsAsked) {
  Records records;
  for (int i = 0; i < 20; ++i) {
    const std::string name = "image" + std::to_string(i);
    records.push_back(test::ServiceRecord(name, "1", Write(Orvane::WideFromUtf8(name), std::to_string(i))));
  }
  const std::thread::id caller = std::this_thread::get_id();
  std::size_t calls = 0;
  Verification verification;
  verification.threads = 4;
  verification.progress = [&calls, caller](std::size_t, std::size_t) {
    // A host hears of it on its own thread, once for each image that this thread takes.
    EXPECT_EQ(std::this_thread::get_id(), caller);
    ++calls;
    Sleep(5);
    return true;
  };
  ASSERT_TRUE(Verify(records, verification));
  EXPECT_GE(calls, 2u);
  EXPECT_LT(calls, 21u);
  std::set<std::string> hashes;
  for (const Record& record : records) hashes.insert(record.sha256);
  EXPECT_EQ(hashes.size(), 20u);
}

TEST_F(ImagesOfServices, AreLeftAsSoonAsThatIsWanted) {
  Records records;
  for (int i = 0; i < 10; ++i) {
    const std::string name = "image" + std::to_string(i);
    records.push_back(test::ServiceRecord(name, "1", Write(Orvane::WideFromUtf8(name), name)));
  }
  Verification verification;
  verification.threads = 1;
  verification.progress = [](std::size_t done, std::size_t) { return done < 4; };
  EXPECT_FALSE(Verify(records, verification));
  std::size_t verified = 0;
  for (const Record& record : records) verified += record.signature.empty() ? 0 : 1;
  EXPECT_EQ(verified, 4u);
}

TEST_F(ImagesOfServices, PassOnWhatGoesWrong) {
  Records records = {test::ServiceRecord("a", "1", Write(L"a", "a")), test::ServiceRecord("b", "1", Write(L"b", "b"))};
  Verification verification;
  verification.threads = 1;
  verification.progress = [](std::size_t done, std::size_t) -> bool {
    if (done == 1) throw std::bad_alloc();
    return true;
  };
  EXPECT_THROW(Verify(records, verification), std::bad_alloc);
}

TEST(Verification, OfNothingIsDone) {
  Records records;
  EXPECT_TRUE(Verify(records, {}));
}

}  // namespace
