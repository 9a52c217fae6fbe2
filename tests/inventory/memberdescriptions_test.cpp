#include "inventory/memberdescriptions.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "program.h"

using namespace inventory;

namespace {

TEST(MemberDescriptions, AreThereForEveryMemberInItsOrder) {
  const std::vector<MemberDescription>& descriptions = MemberDescriptions();
  ASSERT_EQ(descriptions.size(), Members().size());
  for (std::size_t i = 0; i < descriptions.size(); ++i) {
    EXPECT_EQ(descriptions[i].name, Members()[i].name);
    EXPECT_NE(descriptions[i].meaning, "") << descriptions[i].name;
    EXPECT_NE(descriptions[i].kinds, 0u) << descriptions[i].name;
  }
}

TEST(MemberDescriptions, NameTheKinds) {
  EXPECT_EQ(KindsText({"x", KindBit(Kind::Device) | KindBit(Kind::Service), ""}), "service, device");
  EXPECT_EQ(KindsText({"x", KindBit(Kind::Chipset), ""}), "chipset");
  EXPECT_EQ(KindsText({"x", 15, ""}), "all");
}

TEST(MemberDescriptions, NameTheTypes) {
  EXPECT_EQ(TypeName(ValueType::Text), "text");
  EXPECT_EQ(TypeName(ValueType::Version), "version");
  EXPECT_EQ(TypeName(ValueType::Number), "number");
  EXPECT_EQ(TypeName(ValueType::Time), "time");
  EXPECT_EQ(TypeName(ValueType::Date), "date");
  EXPECT_EQ(TypeName(ValueType::Flag), "flag");
  EXPECT_EQ(TypeName(ValueType::Texts), "texts");
}

TEST(MemberDescriptions, AreTrueOfTheSampleMachines) {
  for (const wchar_t* const machine : {L"intel-laptop", L"amd-server", L"world"}) {
    const auto snapshot = nlohmann::json::parse(
        test::FileContent(std::wstring(L"..\\samplemachine\\expected\\") + machine + L".snapshot.json"));
    for (const auto& driver : snapshot.at("drivers")) {
      const Kind kind = KindNamed(driver.at("kind").get<std::string>()).value();
      for (const MemberDescription& member : MemberDescriptions()) {
        if (!driver.contains(member.name)) continue;
        EXPECT_NE(member.kinds & KindBit(kind), 0u) << member.name << " of a " << KindName(kind);
      }
    }
  }
}

}  // namespace
