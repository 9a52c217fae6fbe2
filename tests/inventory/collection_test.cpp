#include "inventory/collection.h"

#include <gtest/gtest.h>

#include "inventories.h"

using namespace inventory;
using test::ServiceRecord;

namespace {

// Of the two record lines below without their heads, by another program (sha256sum).
constexpr char DigestOfTwo[] = "fddd6813974f226f71371b364f7ff073a15561d1ae1c15bd155e3379d8da80b6";

Inventory Two() {
  Inventory inventory;
  inventory.head = {"0.1.0", "h\u00F6st", "4f1e-id", "10.0.22621", "2024-05-06T07:08:09Z"};
  inventory.records = {ServiceRecord("a", "1.0", "C:\\a.sys"), ServiceRecord("b", "")};
  return inventory;
}

const std::string Head =
    "{\"schema_version\":2,\"tool_version\":\"0.1.0\",\"host\":\"h\u00F6st\",\"host_id\":\"4f1e-id\","
    "\"windows\":\"10.0.22621\",\"time\":\"2024-05-06T07:08:09Z\",";

TEST(Collection, IsALineAboutItselfAndOneForEachRecord) {
  EXPECT_EQ(CollectionLines(Two(), ""),
            Head + "\"kind\":\"collection\",\"drivers\":2,\"digest\":\"" + DigestOfTwo + "\"}\n" +  //
                Head +
                "\"kind\":\"service\",\"name\":\"a.sys\",\"version\":\"1.0\",\"version_key\":\"b1a\",\"service\":\"a\","
                "\"path\":\"C:\\\\a.sys\"}\n" +  //
                Head +
                "\"kind\":\"service\",\"name\":\"b.sys\",\"service\":\"b\"}\n");
}

TEST(Collection, IsOneLineWhenItsDigestIsKnownInEitherCase) {
  std::string upper(DigestOfTwo);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  for (const std::string& known : {std::string(DigestOfTwo), upper}) {
    EXPECT_EQ(CollectionLines(Two(), known),
              Head + "\"kind\":\"collection\",\"drivers\":2,\"digest\":\"" + DigestOfTwo + "\",\"unchanged\":true}\n");
  }
  EXPECT_EQ(CollectionLines(Two(), std::string(64, '0')), CollectionLines(Two(), ""));
}

TEST(Collection, HasADigestOfItsRecordsAlone) {
  const auto digest = [](const Inventory& inventory) {
    const std::string lines = CollectionLines(inventory, "");
    return Json::parse(lines.substr(0, lines.find('\n'))).at("digest").get<std::string>();
  };
  Inventory inventory = Two();
  inventory.head = {"0.2.0", "other", "", "6.1.7601", "2025-05-06T07:08:09Z"};
  EXPECT_EQ(digest(inventory), DigestOfTwo);
  inventory.records[1].state = "Running";
  EXPECT_NE(digest(inventory), DigestOfTwo);
  inventory.records = {};
  EXPECT_EQ(digest(inventory), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

}  // namespace
