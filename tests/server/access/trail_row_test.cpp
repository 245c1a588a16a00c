#include "qdclgl/server/access/trail_row.h"

#include <gtest/gtest.h>

namespace qdclgl::server::testing {
namespace {

constexpr Column kColumns[] = {
    {"FNumber", ColumnType::kLong},  {"FSmall", ColumnType::kInteger},
    {"FFlag", ColumnType::kBoolean}, {"FAmount", ColumnType::kCurrency},
    {"FRate", ColumnType::kDouble},  {"FSingle", ColumnType::kSingle},
    {"FDate", ColumnType::kDate},    {"FName", ColumnType::kText},
};

TrailRow RowWith(Long number, bool flag, Currency amount, double rate, std::string_view name) {
  const Variant values[] = {Variant(number),
                            Variant(Integer{-1}),
                            Variant(flag),
                            Variant(amount),
                            Variant(rate),
                            Variant(Single{0.5f}),
                            Variant(DateTime::FromYmd(2024, 1, 31)),
                            Variant(name)};
  TrailRow row;
  row.Add(kColumns, values);
  return row;
}

TrailRow Named(std::string_view name) {
  TrailRow row;
  row.AddText("FName", name);
  return row;
}

TrailRow WithLines(std::string_view name, std::vector<TrailRow> lines) {
  TrailRow row = Named(name);
  row.lists.push_back({"_Entries", std::move(lines)});
  return row;
}

TEST(TrailRowTest, AWholeRowHasWhatIsNotEmptyInItsType) {
  EXPECT_EQ(WholeText(RowWith(7, true, Currency::FromUnits(-15000), 1e21, "Ann")),
            R"({"FNumber":7,"FSmall":-1,"FFlag":true,"FAmount":"-1.5","FRate":1e+21,)"
            R"("FSingle":0.5,"FDate":"2024-01-31","FName":"Ann"})");
  EXPECT_EQ(WholeText(RowWith(0, false, Currency(), 0, "")),
            R"({"FSmall":-1,"FSingle":0.5,"FDate":"2024-01-31"})");
  EXPECT_EQ(WholeText(WithLines("", {})), "{}");
}

TEST(TrailRowTest, TextsAreJsonWhateverIsInThem) {
  EXPECT_EQ(WholeText(Named("a\"b\\c\nd\x01 Müller 😀")),
            "{\"FName\":\"a\\\"b\\\\c\\u000ad\\u0001 Müller 😀\"}");
}

TEST(TrailRowTest, AChangeHasTheOldValueAndTheNewOne) {
  const TrailRow before = RowWith(7, false, Currency(), 0.1, ""),
                 after = RowWith(8, true, Currency(2), 0.1, "0");
  EXPECT_EQ(ChangesText(&before, &after),
            R"({"FNumber":[7,8],"FFlag":[false,true],"FAmount":[0,"2"],"FName":["","0"]})");
  EXPECT_EQ(ChangesText(&before, &before), "");
  EXPECT_EQ(ShortChanges(ChangesText(&before, &after)),
            "FNumber: 7 -> 8; FFlag: false -> true; FAmount: 0 -> 2; FName:  -> 0");
}

TEST(TrailRowTest, RowsOfListsAreChangedMadeAndRemovedByTheirNumbers) {
  const TrailRow one = WithLines("a", {Named("x"), Named("y")}),
                 two = WithLines("a", {Named("x"), Named("z"), Named("w")});
  EXPECT_EQ(ChangesText(&one, &two),
            R"({"_Entries":{"2":{"FName":["y","z"]},"3":{"new":{"FName":"w"}}}})");
  EXPECT_EQ(ChangesText(&two, &one),
            R"({"_Entries":{"2":{"FName":["z","y"]},"3":{"old":{"FName":"w"}}}})");
  EXPECT_EQ(ShortChanges(ChangesText(&one, &two)), "line 2 FName: y -> z; line 3 added");
  EXPECT_EQ(ShortChanges(ChangesText(&two, &one)), "line 2 FName: z -> y; line 3 removed");
}

TEST(TrailRowTest, WhatIsMadeOrRemovedIsTheWholeOfIt) {
  const TrailRow row = WithLines("a", {Named("x"), Named("")});
  EXPECT_EQ(ChangesText(nullptr, &row), R"({"new":{"FName":"a","_Entries":[{"FName":"x"},{}]}})");
  EXPECT_EQ(ChangesText(&row, nullptr), R"({"old":{"FName":"a","_Entries":[{"FName":"x"},{}]}})");
  EXPECT_EQ(ShortChanges(ChangesText(nullptr, &row)), "FName a, lines 2");
}

TEST(TrailRowTest, TextsOfFormerVersionsStayAsTheyAre) {
  for (const char* text : {"", "FName: Round -> Oval", "FReference, line 1 FAmount", "1", "[1]",
                           "{", R"({"FName":[1]})", R"({"FName":{"1":2}})"}) {
    EXPECT_EQ(ShortChanges(text), text);
  }
}

// ---- Taking changes back ----

TEST(ValueChangesTest, AreThoseOfTheRowsOwnValuesInTheirOwnWords) {
  const auto text = [](std::string_view changes) {
    const auto values = ValueChanges(changes);
    if (!values) return std::string("none");
    std::string all;
    for (const ValueChange& value : *values) {
      all.append(value.key).append(":").append(value.before).append("->").append(value.after) +=
          ' ';
    }
    return all;
  };
  EXPECT_EQ(text(R"({"FVersion":[1,2],"FChecked":[false,true],"FName":["a, \"b\\","]}"]})"),
            R"(FVersion:1->2 FChecked:false->true FName:"a, \"b\\"->"]}" )");
  EXPECT_EQ(text(R"({"FRate":[-1.5e-07,0]})"), "FRate:-1.5e-07->0 ");
  for (const char* other :
       {"", "{", "{}", "[]", "remark", R"({"FName":["a"]})", R"({"FName":["a","b","c"]})",
        R"({"FName":["a","b"])", R"({"FName":["a","b"]}x)", R"({"FName":["a","b])",
        R"({"FName":["a",{"b":1}]})", R"({"FName":"a"})", R"({"_Entries":{"1":{"FDC":[0,1]}}})",
        R"({"FName":["a","b"],"_Entries":{"1":{"old":{}}}})", R"({"FName" : ["a", "b"]})",
        R"({FName:["a","b"]})", R"({"FName":["a","b"],})", R"({"FName":[,"b"]})"}) {
    EXPECT_EQ(text(other), "none") << other;
  }
}

TEST(ValueChangesTest, ARowIsWrittenAsItWasBeforeThem) {
  TrailRow row;
  row.AddText("FNumber", "7");
  row.AddText("FName", "New");
  row.AddText("FNote", "");
  row.lists.push_back({"_Entries", {TrailRow()}});
  row.lists.back().rows.back().AddText("FItem", "x");
  const auto before = [&](const std::vector<ValueChange>& changes) {
    return WholeTextBefore(row, changes).value_or("none");
  };
  EXPECT_EQ(before({}), WholeText(row));
  EXPECT_EQ(before({{"FName", R"("Old")", R"("New")"}, {"FNote", R"("n")", R"("")"}}),
            R"({"FNumber":"7","FName":"Old","FNote":"n","_Entries":[{"FItem":"x"}]})");
  EXPECT_EQ(before({{"FName", R"("")", R"("New")"}}),
            R"({"FNumber":"7","_Entries":[{"FItem":"x"}]})");
  EXPECT_EQ(before({{"FName", R"("Old")", R"("Other")"}}), "none") << "it became another value";
  EXPECT_EQ(before({{"FGone", "1", "2"}}), "none") << "the row has no such value";
}

}  // namespace
}  // namespace qdclgl::server::testing
