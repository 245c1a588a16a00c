#include "qdclgl/cli/table.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "qdclgl/frame/containers/vector.h"

namespace qdclgl::cli {
namespace {

std::string Written(Format format, const std::vector<std::vector<Variant>>& rows) {
  std::ostringstream out;
  TableWriter table(out, format, {"Name", "Amount"});
  for (const auto& row : rows) table.Row(row);
  table.Finish();
  return out.str();
}

TEST(TableWriter, APlainTableIsAlignedWithNumbersToTheRight) {
  EXPECT_EQ(
      Written(Format::kPlain, {{"Ann", Currency(5)}, {"\xE8\x8C\xB6\xC3\xA9", Currency(1200)}}),
      "Name     Amount\n"
      "Ann      5.0000\n"
      "\xE8\x8C\xB6\xC3\xA9   1200.0000\n");
}

TEST(TableWriter, APlainCellStaysOnItsLine) {
  EXPECT_EQ(Written(Format::kPlain, {{"a\nb\x1B[2J\xC2\x9B", Long{1}}}),
            "Name      Amount\na b [2J        1\n");
}

TEST(TableWriter, APlainTableLeavesOutWhatNoRowFillsWhereThatIsAskedFor) {
  std::ostringstream out;
  for (const bool leaves_out : {false, true}) {
    TableWriter table(out, Format::kPlain, {"Line", "Unit", "Debit"});
    if (leaves_out) table.LeaveOutEmpty();
    table.Row({Long{1}, "", Currency(5)});
    table.Row({Long{2}, "", ""});
    table.Finish();
  }
  EXPECT_EQ(out.str(), "Line  Unit   Debit\n   1        5.0000\n   2\n"
                       "Line   Debit\n   1  5.0000\n   2\n");
}

TEST(TableWriter, CsvQuotesWhatNeedsIt) {
  EXPECT_EQ(Written(Format::kCsv,
                    {{"a,b", Currency(1)}, {"say \"x\"", true}, {" c", Null}, {"d\ne", 0.5}}),
            "Name,Amount\n\"a,b\",1.0000\n\"say \"\"x\"\"\",true\n\" c\",\n\"d\ne\",0.5\n");
}

TEST(TableWriter, JsonHasAmountsAsTextAndIsValidWithoutRows) {
  const auto json = nlohmann::json::parse(
      Written(Format::kJson,
              {{"a\"b\n", Currency(1)}, {Null, Long{3}}, {DateTime::FromYmd(2024, 1, 31), false}}));
  EXPECT_EQ(json.dump(),
            "[{\"Amount\":\"1.0000\",\"Name\":\"a\\\"b\\n\"},{\"Amount\":3,\"Name\":null},"
            "{\"Amount\":false,\"Name\":\"2024-01-31\"}]");
  EXPECT_EQ(nlohmann::json::parse(Written(Format::kJson, {})).dump(), "[]");
}

TEST(TableWriter, JsonSurvivesTextThatIsNotUtf8) {
  EXPECT_EQ(nlohmann::json::parse(Written(Format::kJson, {{"\xE9", Long{1}}})).size(), 1u);
}

TEST(TableWriter, ATreeBecomesObjectsAndArrays) {
  auto row = Make<Dictionary>();
  auto list = Make<Vector>();
  auto line = Make<Dictionary>();
  line->Value("FAmount", Currency::FromUnits(15000));
  list->Append(Variant(line));
  row->Value("FNumber", Long{7});
  row->Value("_Entries", list);
  row->Value("None", Nothing);
  EXPECT_EQ(ToJson(Variant(row)).dump(),
            "{\"FNumber\":7,\"_Entries\":[{\"FAmount\":\"1.5000\"}],\"None\":null}");
}

}  // namespace
}  // namespace qdclgl::cli
