#include "inventory/conditions.h"

#include <gtest/gtest.h>

#include "inventory/listing.h"

using namespace inventory;

namespace {

constexpr char Now[] = "2024-06-01T12:00:00Z";

Record Driver() {
  Record record;
  record.name = "nlnet.sys";
  record.provider = "Northlight Networks";
  record.version = "12.19.2.45";
  record.size = 612352;
  record.image_time = "2024-05-01T12:00:00Z";
  record.inf_date = "2023-05-17";
  record.files = {"nlnet.sys", "nlnet.dll"};
  return record;
}

bool Holds(const std::string& text, const Record& record = Driver()) {
  return Hold({{Condition(text, RecordColumns())}}, record, Now);
}

TEST(Condition, TakesAPatternForTheWholeText) {
  EXPECT_TRUE(Holds("name=NLNET.SYS"));
  EXPECT_TRUE(Holds("name=nl*"));
  EXPECT_FALSE(Holds("name=nlnet"));
  EXPECT_TRUE(Holds("kind=service"));
  EXPECT_TRUE(Holds("size=6*2"));
  EXPECT_TRUE(Holds("version=12.*"));
  EXPECT_TRUE(Holds("image_time=2024-05*"));
}

TEST(Condition, CanBeThatAPatternDoesNotMatch) {
  EXPECT_FALSE(Holds("name!=nl*"));
  EXPECT_TRUE(Holds("name!=nlnet"));
  EXPECT_TRUE(Holds("state!=running")) << "what is unknown is not running";
  EXPECT_FALSE(Holds("files!=nlnet.dll"));
  EXPECT_TRUE(Holds("files!=other.sys"));
}

TEST(Condition, FindsWhatIsUnknown) {
  EXPECT_TRUE(Holds("state="));
  EXPECT_FALSE(Holds("name="));
  EXPECT_TRUE(Holds("name!="));
  EXPECT_TRUE(Holds("problem_code="));
}

TEST(Condition, TakesAFlagThatIsNotSetForFalse) {
  Record gone = Driver();
  gone.image_missing = true;
  EXPECT_TRUE(Holds("image_missing=true", gone));
  EXPECT_FALSE(Holds("image_missing=false", gone));
  EXPECT_TRUE(Holds("image_missing!=false", gone));
  EXPECT_TRUE(Holds("image_missing=false"));
  EXPECT_TRUE(Holds("image_missing="));
  EXPECT_FALSE(Holds("image_missing=true"));
}

TEST(Condition, NeedsOneOfSeveralTexts) {
  EXPECT_TRUE(Holds("files=nlnet.dll"));
  EXPECT_FALSE(Holds("files=nlnet.sys;nlnet.dll"));
}

/// Which of "<", "<=", "=", ">=", ">" hold, with "." for those that do not.
std::string Relations(const std::string& member, const std::string& value, const Record& record = Driver()) {
  std::string held;
  for (const char* const sign : {"<", "<=", ">=", ">"}) {
    held += Holds(member + sign + value, record) ? std::string(" ") + sign : std::string(" .");
  }
  return held;
}

constexpr char Below[] = " < <= . .";
constexpr char Equal[] = " . <= >= .";
constexpr char Above[] = " . . >= >";

TEST(Condition, ComparesVersionsInTheOrderOfTheLibrary) {
  EXPECT_EQ(Relations("version", "12.19.2.45"), Equal);
  EXPECT_EQ(Relations("version", "12.019.2.45"), Equal) << "zeros in front do not count";
  EXPECT_EQ(Relations("version", "9.99"), Above);
  EXPECT_EQ(Relations("version", "12.19"), Above);
  EXPECT_EQ(Relations("version", "12.19.10"), Below) << "10 is more than 2";
  EXPECT_EQ(Relations("version", "a"), Above) << "components are hexadecimal, and 12 has more digits";
  EXPECT_EQ(Relations("version", "100"), Below);
}

TEST(Condition, ComparesNumbers) {
  EXPECT_EQ(Relations("size", "612352"), Equal);
  EXPECT_EQ(Relations("size", "99999"), Above);
  EXPECT_EQ(Relations("size", "1000000"), Below);
  EXPECT_EQ(Relations("size", "18446744073709551615"), Below);
}

TEST(Condition, ComparesTimesAsFarAsTheyAreWritten) {
  EXPECT_EQ(Relations("image_time", "2024"), Equal);
  EXPECT_EQ(Relations("image_time", "2024-05"), Equal);
  EXPECT_EQ(Relations("image_time", "2024-05-01"), Equal);
  EXPECT_EQ(Relations("image_time", "2024-05-01T12:00"), Equal);
  EXPECT_EQ(Relations("image_time", "2024-05-01T12:00:00Z"), Equal);
  EXPECT_EQ(Relations("image_time", "2024-05-01T12:00:01"), Below);
  EXPECT_EQ(Relations("image_time", "2024-04"), Above);
  EXPECT_EQ(Relations("image_time", "2025"), Below);
  EXPECT_EQ(Relations("inf_date", "2023-05-17"), Equal);
  EXPECT_EQ(Relations("inf_date", "2023-05-18"), Below);
  EXPECT_EQ(Relations("inf_date", "2023-05-17T00:00"), Below) << "nobody knows when on that day";
}

TEST(Condition, ComparesAges) {
  EXPECT_EQ(Relations("image_time", "30d"), Above) << "it is 31 days old";
  EXPECT_EQ(Relations("image_time", "31d"), Equal);
  EXPECT_EQ(Relations("image_time", "32d"), Below);
  EXPECT_EQ(Relations("image_time", "744h"), Equal);
  EXPECT_EQ(Relations("image_time", "5w"), Below);
  EXPECT_EQ(Relations("image_time", "1y"), Below);
  EXPECT_EQ(Relations("inf_date", "1y"), Above);
  Record future = Driver();
  future.image_time = "2024-07-01T00:00:00Z";
  EXPECT_EQ(Relations("image_time", "1h", future), Below) << "it is not old at all";
}

TEST(Condition, OfAnAgeNeedsTwoTimes) {
  Record damaged = Driver();
  damaged.image_time = "yesterday";
  EXPECT_EQ(Relations("image_time", "1d", damaged), " . . . .");
  EXPECT_FALSE(Hold({{Condition("image_time>1d", RecordColumns())}}, Driver(), ""));
}

TEST(Condition, ComparesNothingThatIsUnknown) {
  EXPECT_EQ(Relations("version", "1", Record()), " . . . .");
  EXPECT_EQ(Relations("size", "1", Record()), " . . . .");
  EXPECT_EQ(Relations("image_time", "2024", Record()), " . . . .");
  EXPECT_EQ(Relations("image_time", "1d", Record()), " . . . .");
}

TEST(Condition, DoesNotCountBlanksAroundItsParts) {
  EXPECT_TRUE(Holds("version < 12.20"));
  EXPECT_TRUE(Holds(" provider = Northlight Networks "));
}

TEST(Condition, EndsItsMemberAtTheFirstSign) {
  Record record = Driver();
  record.description = "a=b<c";
  EXPECT_TRUE(Holds("description=a=b<c", record));
  EXPECT_FALSE(Holds("description!=a=b<c", record));
}

TEST(Condition, IsForTheColumnsOfAnyTable) {
  const std::vector<Column> fields(ListingFields().begin(), ListingFields().end());
  const Condition condition("file_version>=2.0", fields);
  EXPECT_EQ(fields.at(condition.ColumnIndex()).name, "file_version");
  EXPECT_TRUE(condition.Holds(Value("2.1"), Now));
  EXPECT_FALSE(condition.Holds(Value("N/A"), Now)) << "that is not a version";
  EXPECT_TRUE(Condition("size>9", fields).Holds(Value("10"), Now)) << "the library writes numbers as texts";
}

TEST(Conditions, NeedAllOfOneAlternative) {
  const auto condition = [](const char* text) { return Condition(text, RecordColumns()); };
  const Condition yes = condition("name=nl*");
  const Condition no = condition("name=other");
  EXPECT_TRUE(Hold({}, Driver(), Now));
  EXPECT_TRUE(Hold({{yes, yes}}, Driver(), Now));
  EXPECT_FALSE(Hold({{yes, no}}, Driver(), Now));
  EXPECT_TRUE(Hold({{yes, no}, {yes}}, Driver(), Now));
  EXPECT_FALSE(Hold({{no}, {no, yes}}, Driver(), Now));
}

std::string ProblemOf(const std::string& text) {
  try {
    return "no problem in column " + std::to_string(Condition(text, RecordColumns()).ColumnIndex());
  } catch (const ConditionProblem& problem) {
    return problem.what();
  }
}

TEST(Condition, SaysWhatIsWrongWithIt) {
  const std::pair<const char*, const char*> cases[] = {
      {"state", R"("state" is not a condition: write MEMBER=PATTERN, or !=, <, <=, > or >= instead of =)"},
      {"state!x", R"("state!x" is not a condition: write MEMBER=PATTERN, or !=, <, <=, > or >= instead of =)"},
      {"", R"("" is not a condition: write MEMBER=PATTERN, or !=, <, <=, > or >= instead of =)"},
      {"stat=x", R"(there is no member "stat"; did you mean "state"?)"},
      {"colour<1", R"(there is no member "colour"; "driverlist help members" lists them all)"},
      {"=x", R"(there is no member ""; "driverlist help members" lists them all)"},
      {"name<m", "name is a text, which < cannot compare: use = or != with a pattern, such as name=a*"},
      {"files>=m", "files is a list of texts, which >= cannot compare: use = or != with a pattern, such as files=a*"},
      {"image_missing>0",
       "image_missing is true or unknown, which > cannot compare: use = or != with a pattern, such as "
       "image_missing=true"},
      {"version<10.*", R"("version<10.*": < compares with a value, not with a pattern)"},
      {"version<", "version needs a version to compare with"},
      {"size>big", R"("big" is not a whole number, which size needs)"},
      {"size>-1", R"("-1" is not a whole number, which size needs)"},
      {"size>18446744073709551616", R"("18446744073709551616" is not a whole number, which size needs)"},
      {"size>", R"("" is not a whole number, which size needs)"}};
  for (const auto& [text, problem] : cases) EXPECT_EQ(ProblemOf(text), problem);
  for (const char* const time : {"", "yesterday", "0d", "d", "30m", "-1d", "1000001d", "99999999999999999999d", "202",
                                 "2020-1-1", "2020-01-01T", "2020-01-01 12:00", "01/02/2020"}) {
    EXPECT_EQ(ProblemOf(std::string("image_time>") + time),
              "\"" + std::string(time) + "\" is neither a time, such as 2020-01-31, nor an age, such as 30d");
  }
}

}  // namespace
