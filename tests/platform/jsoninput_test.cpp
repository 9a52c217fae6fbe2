#include "platform/jsoninput.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace Orvane;

namespace {

/// "{ name: number 5 }"
class Recorder final : public JsonEvents {
 public:
  std::string told;

  void Begin(JsonType type) override { Tell(type == JsonType::Array ? "[" : "{"); }
  void End() override { Tell("end"); }
  void Name(const std::string& name) override { Tell(name + ":"); }
  void Value(const JsonScalar& value) override {
    std::string text(JsonTypeName(value.type));
    if (value.type == JsonType::Number) text += " " + std::to_string(value.number);
    if (value.type == JsonType::Text) text += " " + std::string(value.text);
    Tell(text);
  }

 private:
  void Tell(const std::string& text) { told += (told.empty() ? "" : " ") + text; }
};

std::string Told(const std::string& json) {
  std::stringbuf text(json, std::ios_base::in);
  Recorder recorder;
  try {
    ReadJson(text, recorder);
  } catch (const InputProblem& problem) {
    return problem.what();
  }
  return recorder.told;
}

TEST(JsonInput, ComesInItsOrder) {
  EXPECT_EQ(Told(R"( {"a": [1, "\u0436", true], "b": {"c": null, "d": false}, "e": 18446744073709551615} )"),
            "{ a: [ a whole number 1 a text \u0436 true end b: { c: null d: false end "
            "e: a whole number 18446744073709551615 end");
  EXPECT_EQ(
      Told("[-1, 1.5, 1e3, 18446744073709551616]"),
      "[ a number of another kind a number of another kind a number of another kind a number of another kind end");
  EXPECT_EQ(Told("5"), "a whole number 5");
}

TEST(JsonInput, ThatEndsEarlyIsDamaged) {
  const std::string whole = R"({"a": [1, "x"], "b": true})";
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_EQ(Told(whole.substr(0, size)), "is damaged: it ends early") << size;
  }
}

TEST(JsonInput, ThatIsNotJsonIsDamagedAtALine) {
  EXPECT_EQ(Told("{\n\"a\": 1,\n}"), "is damaged: line 3 is not JSON");
  EXPECT_EQ(Told("{} {}"), "is damaged: line 1 is not JSON");
  EXPECT_EQ(Told("\n\n\"\xFF\""), "is damaged: line 3 is not JSON");
  EXPECT_EQ(Told(std::string("{\n\0}", 4)), "is damaged: line 2 is not JSON");
  EXPECT_EQ(Told("[1e999]"), "is damaged: line 1 is not JSON");
  std::string lines;
  for (int i = 0; i < 100'000; ++i) lines += i == 0 ? "[1\n" : ",1\n";
  EXPECT_EQ(Told(lines + "x"), "is damaged: line 100001 is not JSON");
}

TEST(JsonInput, MayBeNestedSixteenLevelsDeep) {
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_EQ(Told(nested(16)),
            "[ [ [ [ [ [ [ [ [ [ [ [ [ [ [ [ end end end end end end end end end end end end end end end end");
  for (const std::size_t depth : {17u, 15'000u, 1'000'000u}) {
    EXPECT_EQ(Told(nested(depth)), "is nested more than 16 levels deep") << depth;
  }
  std::string objects;
  for (int i = 0; i < 15'000; ++i) objects += "{\"a\":";
  EXPECT_EQ(Told(objects), "is nested more than 16 levels deep");
}

TEST(JsonInput, MayHoldTextsOfOneMebibyte) {
  const std::string longest(LongestText, 'x');
  EXPECT_TRUE(Told("[\"" + longest + "\"]") == "[ a text " + longest + " end");
  EXPECT_EQ(Told("[\"" + longest + "x\"]"), "contains a text of more than 1 MiB");
  EXPECT_EQ(Told("{\"" + longest + "x\":1}"), "contains a text of more than 1 MiB");
  std::string quotes;
  for (std::size_t i = 0; i < LongestText; ++i) quotes += "\\\"";
  EXPECT_EQ(Told("[\"" + quotes + "\"]"), "contains a text of more than 1 MiB");
}

TEST(JsonInput, MayHoldAMebibyteBetweenTwoTexts) {
  const std::string blanks(LongestText - 2, ' ');
  EXPECT_EQ(Told("[\"a\"," + blanks + " \"b\"]"), "[ a text a a text b end");
  EXPECT_EQ(Told("[\"a\"," + blanks + "   \"b\"]"), "contains more than 1 MiB without a text");
  EXPECT_EQ(Told("[" + std::string(LongestText, '1') + "]"), "contains more than 1 MiB without a text");
  std::string numbers = "[1";
  for (std::size_t i = 0; i < LongestText; ++i) numbers += ",1";
  EXPECT_EQ(Told(numbers + "]"), "contains more than 1 MiB without a text");
}

}  // namespace
