// The getters against the documents.
#include "machine.h"

namespace {

/// What the getters say of a member; null for nothing.
test::Json Got(const driverinventory* inventory, std::size_t record, int32_t member) {
  const char* text = nullptr;
  std::size_t length = 0;
  uint64_t number = 0;
  std::size_t count = 0;
  switch (driverinventory_member_type(member)) {
    case DRIVERINVENTORY_TEXT: {
      const auto status = driverinventory_text(inventory, record, member, &text, &length);
      EXPECT_EQ(status == DRIVERINVENTORY_ABSENT, text == nullptr);
      return text == nullptr ? test::Json() : test::Json(std::string(text, length));
    }
    case DRIVERINVENTORY_NUMBER:
      return driverinventory_number(inventory, record, member, &number) == DRIVERINVENTORY_OK ? test::Json(number)
                                                                                              : test::Json();
    case DRIVERINVENTORY_FLAG:
      if (driverinventory_number(inventory, record, member, &number) != DRIVERINVENTORY_OK) return {};
      EXPECT_EQ(number, 1u);
      return true;
    default: {
      test::Json texts;
      driverinventory_text_count(inventory, record, member, &count);
      for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(driverinventory_text_at(inventory, record, member, i, &text, &length), DRIVERINVENTORY_OK);
        texts.push_back(std::string(text, length));
      }
      return texts;
    }
  }
}

/// All records, by the getters alone.
test::Json AllGot(const driverinventory* inventory) {
  test::Json records = test::Json::array();
  std::size_t count = 0;
  EXPECT_EQ(driverinventory_count(inventory, &count), DRIVERINVENTORY_OK);
  for (std::size_t i = 0; i < count; ++i) {
    test::Json& record = records.emplace_back(test::Json::object());
    for (int32_t member = 0; member < driverinventory_member_count(); ++member) {
      const test::Json value = Got(inventory, i, member);
      if (!value.is_null()) record[driverinventory_member_name(member)] = value;
    }
  }
  return records;
}

using GettersOfAMachine = test::HostedMachine;

TEST_F(GettersOfAMachine, GiveWhatTheDocumentHas) {
  const test::Handle inventory = test::Collected();
  EXPECT_EQ(AllGot(inventory.get()).dump(),
            test::Json::parse(test::Document(inventory.get(), DRIVERINVENTORY_JSON)).at("drivers").dump());
}

TEST(Getters, GiveTextsNumbersFlagsAndArrays) {
  const test::Handle inventory = test::Read(test::SmallSnapshot);
  EXPECT_EQ(AllGot(inventory.get()).dump(),
            R"([{"kind":"service","name":"one.sys","version":"1.0","version_key":"b1a","service":"one",)"
            R"("image_missing":true,"size":4096},)"
            R"({"kind":"device","name":"two","instance_id":"PCI\\TWO","names":["two","zwölf"],"problem_code":28,)"
            R"("problem":"CM_PROB_FAILED_INSTALL"},)"
            R"({"kind":"package","name":"three.sys","inf":"oem3.inf","files":["three.sys"],"devices_using":0}])");
}

TEST(Getters, KnowTheHead) {
  const test::Handle inventory = test::Read(test::SmallSnapshot);
  std::string head;
  for (const char* const name : {"tool_version", "host", "host_id", "windows", "time"}) {
    const char* text = nullptr;
    std::size_t length = 0;
    EXPECT_EQ(driverinventory_head(inventory.get(), name, &text, &length), DRIVERINVENTORY_OK);
    head += std::string(text, length) + ";";
  }
  EXPECT_EQ(head, "0.1.0;h\u00F6st;4f1e;10.0.22621;2024-05-06T07:08:09Z;");
  const char* text = "x";
  EXPECT_EQ(driverinventory_head(inventory.get(), "kind", &text, nullptr), DRIVERINVENTORY_E_MEMBER);
  EXPECT_STREQ(driverinventory_error(), "The head has no \"kind\".");
  EXPECT_EQ(text, nullptr);
}

TEST(Getters, RefuseWhatIsNotThere) {
  const test::Handle inventory = test::Read(test::SmallSnapshot);
  const int32_t name = driverinventory_find_member("name");
  const int32_t size = driverinventory_find_member("size");
  const int32_t names = driverinventory_find_member("names");
  const char* text = nullptr;
  uint64_t number = 0;
  std::size_t count = 0;
  EXPECT_EQ(driverinventory_text(inventory.get(), 3, name, &text, nullptr), DRIVERINVENTORY_E_RANGE);
  EXPECT_STREQ(driverinventory_error(), "There is no record 3: there are 3.");
  EXPECT_EQ(driverinventory_text(inventory.get(), 0, -1, &text, nullptr), DRIVERINVENTORY_E_MEMBER);
  EXPECT_STREQ(driverinventory_error(), "There is no member -1.");
  EXPECT_EQ(driverinventory_text(inventory.get(), 0, driverinventory_member_count(), &text, nullptr),
            DRIVERINVENTORY_E_MEMBER);
  EXPECT_EQ(driverinventory_text(inventory.get(), 0, size, &text, nullptr), DRIVERINVENTORY_E_MEMBER);
  EXPECT_STREQ(driverinventory_error(), "size is not a text.");
  EXPECT_EQ(driverinventory_number(inventory.get(), 0, name, &number), DRIVERINVENTORY_E_MEMBER);
  EXPECT_STREQ(driverinventory_error(), "name is not a number.");
  EXPECT_EQ(driverinventory_text_count(inventory.get(), 1, name, &count), DRIVERINVENTORY_E_MEMBER);
  EXPECT_STREQ(driverinventory_error(), "name is not an array of texts.");
  EXPECT_EQ(driverinventory_text_at(inventory.get(), 1, names, 2, &text, nullptr), DRIVERINVENTORY_E_RANGE);
  EXPECT_STREQ(driverinventory_error(), "There is no text 2: there are 2.");
  EXPECT_EQ(driverinventory_text_count(inventory.get(), 0, names, &count), DRIVERINVENTORY_ABSENT);
  EXPECT_EQ(driverinventory_number(inventory.get(), 1, size, &number), DRIVERINVENTORY_ABSENT);
}

TEST(Members, AreFoundByTheirNames) {
  for (int32_t member = 0; member < driverinventory_member_count(); ++member) {
    EXPECT_EQ(driverinventory_find_member(driverinventory_member_name(member)), member);
  }
  EXPECT_EQ(driverinventory_find_member("Name"), -1);
  EXPECT_EQ(driverinventory_find_member(nullptr), -1);
  EXPECT_EQ(driverinventory_member_name(-1), nullptr);
  EXPECT_EQ(driverinventory_member_name(driverinventory_member_count()), nullptr);
  EXPECT_EQ(driverinventory_member_type(driverinventory_member_count()), 0);
}

}  // namespace
