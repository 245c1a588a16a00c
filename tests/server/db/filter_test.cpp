#include "qdclgl/server/db/filter.h"

#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

constexpr Column kColumns[] = {
    {"FID", ColumnType::kLong},      {"FSmall", ColumnType::kInteger},
    {"FFlag", ColumnType::kBoolean}, {"FAmount", ColumnType::kCurrency},
    {"FRate", ColumnType::kDouble},  {"FDate", ColumnType::kDate},
    {"FName", ColumnType::kText},    {"FOther", ColumnType::kText},
};

// The SQL, and behind it the values that are bound to it.
std::string FilterText(std::string_view text) {
  const Filter filter = ParseFilter(text, kColumns);
  std::string result = filter.sql;
  for (const BoundValue& value : filter.values) {
    result += " | ";
    if (const auto* whole = std::get_if<std::int64_t>(&value)) result += std::to_string(*whole);
    if (const auto* real = std::get_if<double>(&value)) result += RealText(*real, 15);
    if (const auto* words = std::get_if<std::string>(&value)) result += "'" + *words + "'";
  }
  return result;
}

std::string Refused(std::string_view text) {
  const auto parse = [&] { ParseFilter(text, kColumns); };
  const std::string refusal = RefusalOf(parse);
  return refusal == "BadFilter" ? SentenceOf(parse) : refusal;
}

TEST(FilterTest, ComparisonsBindTheirValues) {
  EXPECT_EQ(FilterText(""), "");
  EXPECT_EQ(FilterText(" \t\r\n"), "");
  EXPECT_EQ(FilterText("fid = 5"), "FID = ? | 5");
  EXPECT_EQ(FilterText("FID<>-5"), "FID <> ? | -5");
  EXPECT_EQ(FilterText("FID >= +7"), "FID >= ? | 7");
  EXPECT_EQ(FilterText("FSmall < 3.0"), "FSmall < ? | 3");
  EXPECT_EQ(FilterText("FAmount <= 1000.5"), "FAmount <= ? | 10005000");
  EXPECT_EQ(FilterText("FAmount > -.0001"), "FAmount > ? | -1");
  EXPECT_EQ(FilterText("FRate = 1e-3"), "FRate = ? | 0.001");
  EXPECT_EQ(FilterText("FDate = #2024-01-31#"), "FDate = ? | '2024-01-31'");
  EXPECT_EQ(FilterText("FDate = '2024-01-31'"), "FDate = ? | '2024-01-31'");
  EXPECT_EQ(FilterText("FName = 'O''Neill ; --'"), "FName = ? | 'O'Neill ; --'");
  EXPECT_EQ(FilterText("FName = ''"), "FName = ? | ''");
  EXPECT_EQ(FilterText("FFlag = TRUE"), "FFlag = ? | 1");
  EXPECT_EQ(FilterText("FFlag = 0"), "FFlag = ? | 0");
  EXPECT_EQ(FilterText("FFlag"), "FFlag <> 0");
  EXPECT_EQ(FilterText("FName <> FOther"), "FName <> FOther");
}

TEST(FilterTest, ConditionsJoinAndNest) {
  EXPECT_EQ(FilterText("FID = 1 and not (FFlag or FName LIKE 'a%') OR FID IN (1,2, 3)"),
            "FID = ? AND NOT (FFlag <> 0 OR FName LIKE ? ESCAPE '\\') OR FID IN (?, ?, ?)"
            " | 1 | 'a%' | 1 | 2 | 3");
  EXPECT_EQ(FilterText("FName NOT IN ('a') AND FName NOT LIKE '\\%\\\\'"),
            "FName NOT IN (?) AND FName NOT LIKE ? ESCAPE '\\' | 'a' | '\\%\\\\'");
  EXPECT_EQ(FilterText("NOT NOT FFlag"), "NOT NOT FFlag <> 0");
}

TEST(FilterTest, ErrorsTellThePlace) {
  EXPECT_EQ(Refused("FID = 1 AN FFlag"),
            "The filter can't be understood at character 9: AND, OR or the end is expected.");
  EXPECT_EQ(Refused("FName = '元𝄞' x"),
            "The filter can't be understood at character 15: AND, OR or the end is expected.");
  EXPECT_EQ(Refused("FNope = 1"), "The filter can't be understood at character 1: there is no "
                                  "column FNope; there are FID, FSmall, FFlag, FAmount, "
                                  "FRate, FDate, FName, FOther.");
}

TEST(FilterTest, WhatIsNotTheLanguageIsRefused) {
  for (const std::string_view text : {"1 = 1",
                                      "FID",
                                      "FID =",
                                      "FID = 'x'",
                                      "FID = 1.5",
                                      "FID = 1e5",
                                      "FID == 1",
                                      "FID = 1;",
                                      "FID = 99999999999999999999",
                                      "FAmount = 0.00001",
                                      "FAmount = '5'",
                                      "FRate = 1e999",
                                      "FRate = nan",
                                      "FRate = 1.2.3",
                                      "FRate = --1",
                                      "FDate = #2024-13-01#",
                                      "FDate = 5",
                                      "FDate = #2024-01-01",
                                      "FName = 5",
                                      "FName = x",
                                      "FName = \"x\"",
                                      "FName = 'x",
                                      "FName = 'x''",
                                      "FName LIKE 5",
                                      "FName LIKE FOther",
                                      "FName LIKE 'x\\'",
                                      "FID LIKE '1'",
                                      "FID IN ()",
                                      "FID IN 1",
                                      "FID IN (1",
                                      "FID IN (1,)",
                                      "FID IN (SELECT 1)",
                                      "(FFlag",
                                      "FFlag)",
                                      "()",
                                      "AND",
                                      "NOT",
                                      "FFlag AND",
                                      "FFlag FFlag",
                                      "FFlag NOT",
                                      "FFlag = 'x'",
                                      "FID = FName",
                                      "FID + 1 = 2",
                                      "FName || 'x' = 'y'",
                                      "lower(FName) = 'x'",
                                      "FID IS NULL",
                                      "FID = NULL",
                                      "FID BETWEEN 1 AND 2",
                                      "FID = ?",
                                      "FID = :p1",
                                      "FFlag -- x",
                                      "FFlag /* x */",
                                      "t.FID = 1",
                                      "FID = 1 UNION SELECT 1",
                                      "FName = E'x'",
                                      "FName = $$x$$",
                                      "FID = 0x10",
                                      "\\",
                                      "FID = 1\\"}) {
    EXPECT_EQ(RefusalOf([&] { ParseFilter(text, kColumns); }), "BadFilter") << text;
  }
  EXPECT_EQ(RefusalOf([] { ParseFilter(std::string_view("FName = 'a\0b'", 13), kColumns); }),
            "BadFilter");
  EXPECT_EQ(RefusalOf([] { ParseFilter(std::string_view("FFlag\0", 6), kColumns); }), "BadFilter");
  EXPECT_EQ(RefusalOf([] { ParseFilter("FName = '\xFF'", kColumns); }), "BadFilter");
}

TEST(FilterTest, HugeFiltersAreRefusedAndDoNotCrash) {
  const auto repeated = [](std::string_view text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) result += text;
    return result;
  };
  EXPECT_NE(Refused(repeated("(", 100'000)).find("too deeply"), std::string::npos);
  EXPECT_NE(Refused(repeated("NOT ", 100'000)).find("too deeply"), std::string::npos);
  EXPECT_NE(Refused("FID IN (1" + repeated(",1", 100'000) + ")").find("too many values"),
            std::string::npos);
  EXPECT_NE(FilterText("FName = '" + repeated("x", 1'000'000) + "'"), "");
  EXPECT_NE(FilterText(repeated("(", 90) + "FFlag" + repeated(")", 90)), "");
}

TEST(SortTest, ColumnsWithDirections) {
  EXPECT_EQ(SortText(SortTerms("", kColumns)), "");
  EXPECT_EQ(SortText(SortTerms("fname desc , FID asc,FRate", kColumns)), "FName DESC, FID, FRate");
  for (const std::string_view text :
       {",", "FID,", "FID FName", "FID DESC ASC", "1", "FID; DROP TABLE t_User", "FNope",
        "(SELECT 1)", "FID --", "FID NULLS FIRST", "'FID'", "-FID", "FID COLLATE NOCASE"}) {
    EXPECT_EQ(RefusalOf([&] { SortText(SortTerms(text, kColumns)); }), "BadSort") << text;
  }
}

// The same filters find the same rows on every database.
class FilteredListTest : public RecordsTest {
 protected:
  std::string Numbers(std::string_view filter, std::string_view sort = "") {
    return TextOf(
        Call("QDSVGLAccount.AccountInfo", "GetList", props, Long{0}, filter, sort).As<Recordset>(),
        {"FNumber"});
  }
};

TEST_P(FilteredListTest, TextsCompareByteByByte) {
  for (const auto& [number, name] : std::initializer_list<std::pair<const char*, const char*>>{
           {"1", "a"}, {"2", "B"}, {"3", "ä"}, {"4", "a b"}, {"5", "A"}, {"6", "元"}}) {
    AddAccount(number, name);
  }
  EXPECT_EQ(Numbers("", "FName"), "5\n2\n1\n4\n3\n6\n");
  EXPECT_EQ(Numbers("FName > 'B'", "FName DESC"), "6\n3\n4\n1\n");
  EXPECT_EQ(Numbers("FName LIKE 'a%'"), "1\n4\n");
  EXPECT_EQ(Numbers("FName LIKE '_'"), "1\n2\n3\n5\n6\n");
  EXPECT_EQ(Numbers("FName IN ('A', 'ä', 'a ', 'B ')"), "3\n5\n");
  EXPECT_EQ(Numbers("NOT FName = 'a' AND FName < 'b'"), "2\n4\n5\n");
  EXPECT_EQ(Numbers("FFullName = FName AND NOT FDelete AND FLevel IN (1, 2)").size(), 12u);
  EXPECT_EQ(Numbers("FLastIntDate = #1899-12-30#").size(), 12u) << "the empty date";
  EXPECT_EQ(Numbers("FintRate < 0.5 AND FintRate > -1e300").size(), 12u);
  EXPECT_EQ(Numbers("FAccountID > 9223372036854775807"), "");
}

TEST_P(FilteredListTest, HostileTextsFindNothingAndBreakNothing) {
  AddAccount("1", "x");
  const std::string before = State();
  for (const char* text : {"' OR ''='", "x' --", "x'; DROP TABLE t_Account; --", "\\", "%", "?",
                           ":p1", "x\\' OR 1=1 --"}) {
    std::string quoted;
    for (const char* c = text; *c != '\0'; ++c) quoted.append(*c == '\'' ? 2 : 1, *c);
    EXPECT_EQ(Numbers("FName = '" + quoted + "'"), "") << text;
  }
  EXPECT_EQ(Numbers("FName LIKE '%'"), "1\n");
  EXPECT_EQ(State(), before);
}

TEST_P(FilteredListTest, AFilterOfAThousandValuesIsAnswered) {
  AddAccount("1");
  std::string list = "'1'";
  for (int i = 0; i < 999; ++i) list += ",'" + std::to_string(2 * i + 2) + "'";
  EXPECT_EQ(Numbers("FNumber IN (" + list + ")"), "1\n");
}

QDCLGL_BOOKS_TEST(FilteredListTest);

}  // namespace
}  // namespace qdclgl::server::testing
