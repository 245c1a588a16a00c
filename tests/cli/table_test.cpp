#include "qdclgl/cli/table.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "qdclgl/cli/headings.h"
#include "qdclgl/cli/text_width.h"
#include "qdclgl/frame/containers/vector.h"
#include "tests/support/json.h"

namespace qdclgl::cli {
namespace {

using qdclgl::testing::Json;
using qdclgl::testing::ParseJson;

using Rows = std::vector<std::vector<Variant>>;

std::string Table(const Look& look, const std::vector<std::string>& keys, const Rows& rows,
                  const std::vector<Variant>& total = {}, Format format = Format::kPlain) {
  std::ostringstream out;
  const Console console{out, out, false, nullptr, look};
  TableWriter table(console, format, keys);
  table.Bars("FEndBalance");
  table.IfEmpty("There is nothing.");
  for (const auto& row : rows) table.Row(row);
  if (!total.empty()) table.Total(total);
  table.Finish();
  return out.str();
}

std::string Written(Format format, const Rows& rows) {
  return Table({}, {"Name", "Amount"}, rows, {}, format);
}

Look Terminal(std::size_t width) {
  Look look;
  look.width = width;
  look.height = 10;
  look.has_unicode = true;
  return look;
}

TEST(TableWriter, APlainTableIsAlignedWithNumbersToTheRight) {
  EXPECT_EQ(
      Written(Format::kPlain, {{"Ann", Currency(5)}, {"\xE8\x8C\xB6\xC3\xA9", Currency(1200)}}),
      "Name    Amount\n"
      "Ann       5.00\n"
      "\xE8\x8C\xB6\xC3\xA9   1,200.00\n");
}

TEST(TableWriter, APlainCellStaysOnItsLine) {
  EXPECT_EQ(Written(Format::kPlain, {{"a\nb\x1B[2J\xC2\x9B", Long{1}}}),
            "Name      Amount\na b [2J        1\n");
}

TEST(TableWriter, APlainTableHasHeadingsAndTheOtherFormsHaveKeys) {
  const std::vector<std::string> keys = {"FVoucherDate", "FAccountNumber", "FAccountName", "FDC"};
  const Rows rows = {{DateTime::FromYmd(2024, 1, 31), "10", "Cash", Long{-1}}};
  EXPECT_EQ(Table({}, keys, rows), "Voucher date  Account  Name  Side\n"
                                   "2024-01-31    10       Cash  credit\n");
  Look look;
  look.shows_keys = true;
  EXPECT_EQ(Table(look, keys, rows), "FVoucherDate  FAccountNumber  FAccountName  FDC\n"
                                     "2024-01-31    10              Cash          credit\n");
  EXPECT_EQ(Table({}, keys, rows, {}, Format::kCsv),
            "FVoucherDate,FAccountNumber,FAccountName,FDC\n2024-01-31,10,Cash,-1\n");
}

TEST(TableWriter, ColumnsThatNoRowFillsAreLeftOutWhereThatIsAskedFor) {
  std::ostringstream out;
  const Console console{out, out, false, nullptr, {}};
  for (const bool leaves_out : {false, true}) {
    TableWriter table(console, Format::kPlain, {"Line", "Unit", "Debit"});
    if (leaves_out) table.LeaveOutEmpty();
    table.Row({Long{1}, "", Currency(5)});
    table.Row({Long{2}, "", ""});
    table.Finish();
  }
  EXPECT_EQ(out.str(), "Line  Unit  Debit\n   1         5.00\n   2\n"
                       "Line  Debit\n   1   5.00\n   2\n");
}

TEST(TableWriter, NothingIsToldInASentence) {
  EXPECT_EQ(Written(Format::kPlain, {}), "There is nothing.\n");
  EXPECT_EQ(Written(Format::kCsv, {}), "Name,Amount\n");
}

TEST(TableWriter, DebitsAndCreditsOfNothingAreBlankAndBalancesAreNot) {
  EXPECT_EQ(
      Table({}, {"FDebit", "FCredit", "FEndBalance"}, {{Currency(1), Currency(0), Currency(0)}}),
      "Debit  Credit   End\n 1.00          0.00\n");
}

TEST(TableWriter, NegativeAmountsStandInParenthesesWhereThatIsWanted) {
  Look look;
  look.negatives = Negatives::kParentheses;
  EXPECT_EQ(Table(look, {"FAmount"}, {{Currency(-1234)}, {Currency(5)}}),
            "    Amount\n(1,234.00)\n     5.00\n");
}

TEST(TableWriter, ColumnsWithOneHeadingKeepTheWordsOfTheirKeys) {
  std::ostringstream out;
  const Console console{out, out};
  TableWriter table(console, Format::kPlain, {"FAmount", "FAmountFor", "USD"});
  table.Row({Currency::FromUnits(12345), Currency(7), Currency(7)}, 3);
  table.Finish();
  EXPECT_EQ(out.str(), "Amount  Amount for   USD\n1.2345        7.00  7.00\n");
}

TEST(TableWriter, TextsAreCutToTheTerminalAndFiguresAreNot) {
  const Rows rows = {{"Costs of the tea that was sold abroad", Currency(1234567)}};
  EXPECT_EQ(Table(Terminal(30), {"FName", "FAmount"}, rows),
            "Name                    Amount\nCosts of the te…  1,234,567.00\n");
  EXPECT_EQ(Table(Terminal(10), {"FName", "FAmount"}, rows),
            "Name          Amount\nCosts…  1,234,567.00\n")
      << "the figure stays whole whatever the width";
  EXPECT_EQ(Table({}, {"FName", "FAmount"}, rows),
            "Name                                         Amount\n"
            "Costs of the tea that was sold abroad  1,234,567.00\n")
      << "nothing is cut where there is no terminal";
}

TEST(TableWriter, ColoursMarkHeadingsNegativeAmountsAndTotals) {
  Look look = Terminal(80);
  look.has_colour = true;
  EXPECT_EQ(Table(look, {"FName", "FAmount"}, {{"A", Currency(-1)}}, {"Total", Currency(-1)}),
            "\033[1mName\033[0m   \033[1mAmount\033[0m\n"
            "A       \033[31m-1.00\033[0m\n"
            "\033[1mTotal\033[0m   \033[1;31m-1.00\033[0m\n");
}

TEST(TableWriter, BarsStandWhereThereIsRoom) {
  const Rows rows = {{"A", Currency(8)}, {"B", Currency(3)}, {"C", Currency(-4)}};
  EXPECT_EQ(Table(Terminal(21), {"FName", "FEndBalance"}, rows, {"", Currency(7)}),
            "Name    End\n"
            "A      8.00  ████████\n"
            "B      3.00  ███\n"
            "C     -4.00  ▒▒▒▒\n"
            "       7.00\n");
  const std::string without = "Name    End\nA      8.00\nB      3.00\nC     -4.00\n";
  EXPECT_EQ(Table(Terminal(20), {"FName", "FEndBalance"}, rows), without);
  EXPECT_EQ(Table({}, {"FName", "FEndBalance"}, rows), without);
  Look ascii = Terminal(80);
  ascii.has_unicode = false;
  EXPECT_EQ(Table(ascii, {"FName", "FEndBalance"}, rows), without);
}

TEST(TableWriter, TheLeastAmountHasABarToo) {
  const auto least = Currency::FromUnits(std::numeric_limits<std::int64_t>::min());
  EXPECT_NE(
      Table(Terminal(80), {"FEndBalance"}, {{least}}).find("  ▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒▒\n"),
      std::string::npos);
}

TEST(Money, HasThousandsAndTheDecimalsOfItsCurrency) {
  EXPECT_EQ(MoneyText(Currency(0), 2), "0.00");
  EXPECT_EQ(MoneyText(Currency(999), 2), "999.00");
  EXPECT_EQ(MoneyText(Currency(1000), 0), "1,000");
  EXPECT_EQ(MoneyText(Currency(-1234567), 3), "-1,234,567.000");
  EXPECT_EQ(MoneyText(Currency::FromUnits(12345), 2), "1.2345") << "nothing is hidden";
  EXPECT_EQ(MoneyText(Currency::FromUnits(std::numeric_limits<std::int64_t>::min()), 2),
            "-922,337,203,685,477.5808");
  EXPECT_EQ(MoneyText(Currency(-1), 2, Negatives::kParentheses), "(1.00)");
  EXPECT_EQ(MoneyText(Currency(1), 2, Negatives::kParentheses), "1.00 ");
}

TEST(TextWidth, CountsColumnsOfATerminal) {
  EXPECT_EQ(WidthOf("Tee"), 3u);
  EXPECT_EQ(WidthOf("Café"), 4u);
  EXPECT_EQ(WidthOf("Cafe\u0301"), 4u) << "a mark stands on the letter before it";
  EXPECT_EQ(WidthOf("客户"), 4u);
  EXPECT_EQ(WidthOf("한글ｶﾅ"), 6u) << "half-width letters take one";
  EXPECT_EQ(WidthOf("🍵"), 2u);
  EXPECT_EQ(WidthOf("a\u200Bb"), 2u);
}

TEST(TextWidth, TextsAreCutBetweenCharacters) {
  EXPECT_EQ(CutTo("Tea", 3, "…"), "Tea");
  EXPECT_EQ(CutTo("Teapot", 3, "…"), "Te…");
  EXPECT_EQ(CutTo("Teapot", 5, "..."), "Te...");
  EXPECT_EQ(CutTo("客户客户", 6, "…"), "客户…") << "half a character is none";
  EXPECT_EQ(CutTo("e\u0301e\u0301e\u0301", 2, "…"), "e\u0301…");
  EXPECT_EQ(CutTo("Teapot", 2, "..."), "Te") << "there is no room for the mark";
}

TEST(Headings, AreMadeOfKeys) {
  EXPECT_EQ(HeadingOf("FDate"), "Date");
  EXPECT_EQ(HeadingOf("FAccountNumber"), "Account");
  EXPECT_EQ(HeadingOf("FNumber"), "Number");
  EXPECT_EQ(HeadingOf("FDebitTotal"), "Debit total");
  EXPECT_EQ(HeadingOf("FVoucherID"), "Voucher ID");
  EXPECT_EQ(HeadingOf("FAcctID2"), "Acct ID2");
  EXPECT_EQ(HeadingOf("FDC"), "Side");
  EXPECT_EQ(HeadingOf("F1000_101"), "F1000_101") << "a column that a class of items has made";
  EXPECT_EQ(HeadingOf("Figures"), "Figures") << "a word that is no key";
  EXPECT_EQ(HeadingsOf({"FAccountNumber", "FAccountID", "FName", "FAccountName"}),
            (std::vector<std::string>{"Account", "Account ID", "Name", "Account name"}));
}

TEST(TableWriter, CsvQuotesWhatNeedsIt) {
  EXPECT_EQ(Written(Format::kCsv,
                    {{"a,b", Currency(1)}, {"say \"x\"", true}, {" c", Null}, {"d\ne", 0.5}}),
            "Name,Amount\n\"a,b\",1.0000\n\"say \"\"x\"\"\",true\n\" c\",\n\"d\ne\",0.5\n");
}

TEST(TableWriter, JsonHasAmountsAsTextAndIsValidWithoutRows) {
  const auto json = ParseJson(
      Written(Format::kJson,
              {{"a\"b\n", Currency(1)}, {Null, Long{3}}, {DateTime::FromYmd(2024, 1, 31), false}}));
  EXPECT_EQ(json.dump(),
            "[{\"Name\":\"a\\\"b\\n\",\"Amount\":\"1.0000\"},{\"Name\":null,\"Amount\":3},"
            "{\"Name\":\"2024-01-31\",\"Amount\":false}]");
  EXPECT_EQ(ParseJson(Written(Format::kJson, {})).dump(), "[]");
}

TEST(TableWriter, JsonSurvivesTextThatIsNotUtf8) {
  EXPECT_EQ(ParseJson(Written(Format::kJson, {{"\xE9", Long{1}}})).size(), 1u);
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
