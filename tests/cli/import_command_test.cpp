#include <gtest/gtest.h>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class Import : public CliTest {
 protected:
  // A voucher of two balanced rows.
  static std::string Good(const std::string& key, const std::string& date = "2024-01-05") {
    return key + "," + date + ",1000,10.00,\n" + key + "," + date + ",2000.01,,10.00\n";
  }
  // The references of the vouchers in the books, in order.
  std::string References() const {
    std::string text;
    for (const auto& row : ParseJson(Run({"vouchers", "--json"}).out)) {
      text += row["FReference"].get<std::string>() + " ";
    }
    return text;
  }
  // A journal with the voucher `rows` between two good ones: what is reported, and that only the
  // good ones are stored.
  std::string ReportOf(const std::string& rows) const {
    const RunResult result = ImportRows(Good("first") + rows + Good("last"));
    EXPECT_EQ(result.code, 3) << result.out;
    EXPECT_EQ(result.out, "vouchers: 2 stored as import 1, 0 passed over, 1 left out\n");
    EXPECT_EQ(References(), "first last ");
    return result.err;
  }
};

TEST_P(Import, StoresWhatTheJournalSays) {
  Init();
  const std::string chart =
      folder.Write("chart.csv", "quantities,unit,currency,dc,name,number\n"
                                "yes,kg,,1,\"Tea, green\",1100\n,,usd,1,Dollars,1200\n");
  const std::string journal = folder.Write(
      "full.csv",
      "\xEF\xBB\xBF"
      "department,reference,unit_price,unit,quantity,rate,amount_for,currency,credit,debit,account,"
      "explanation,number,group,date,voucher\r\n"
      "SHOP,INV-1,4.10,kg,2.5,,,,,10.25,1100,\"Tea, bought\",7,Buys,2024-02-03,A/1\r\n"
      ",,,,,0.92,-11.1413,USD,0,-10.25,1200,Tea,7,Buys,2024-02-03,A/1\r\n"
      ",,,,,,,EUR,-0.0001,,1000,,7,Buys,2024-02-03,A/1\r\n"
      ",,,,,,,eur,0.0001,,1000,,7,Buys,2024-02-03,A/1\r\n");
  const RunResult result =
      Run({"import", "--accounts", chart, "--journal", journal, "--new-currencies"});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "accounts: 2 stored, 0 there already, 0 left out\n"
                        "vouchers: 1 stored as import 1, 0 passed over, 0 left out\n");
  EXPECT_EQ(result.code, 0);

  const auto id = ParseJson(Run({"vouchers", "--json"}).out).at(0).at("FVoucherID");
  const auto voucher = ParseJson(Run({"voucher", std::to_string(id.get<int>()), "--json"}).out);
  EXPECT_EQ(voucher["FDate"], "2024-02-03");
  EXPECT_EQ(voucher["FPeriod"], 2);
  EXPECT_EQ(voucher["FGroup"], "Buys");
  EXPECT_EQ(voucher["FNumber"], 7);
  EXPECT_EQ(voucher["FReference"], "A/1");
  EXPECT_EQ(voucher["FExplanation"], "Tea, bought");
  const auto& lines = voucher["_Entries"];
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0]["FAmount"], "10.2500");
  EXPECT_EQ(lines[0]["FDC"], 1);
  EXPECT_EQ(lines[0]["FQuantity"], 2.5);
  EXPECT_EQ(lines[0]["FMeasureUnit"], "kg");
  EXPECT_EQ(lines[0]["FUnitPrice"], 4.1);
  EXPECT_EQ(lines[0]["FTransNo"], "INV-1");
  EXPECT_EQ(lines[0]["_Details"][0]["FItemClassNumber"], "DEP");
  EXPECT_EQ(lines[0]["_Details"][0]["FItemNumber"], "SHOP");
  EXPECT_EQ(lines[1]["FCurrencyNumber"], "USD");
  EXPECT_EQ(lines[1]["FAmountFor"], "-11.1413");
  EXPECT_EQ(lines[1]["FExchangeRate"], 0.92);
  EXPECT_EQ(lines[2]["FAmount"], "-0.0001");
  EXPECT_EQ(lines[2]["FDC"], 0);
  EXPECT_EQ(lines[3]["FCurrencyID"], 1);
  const auto accounts =
      ParseJson(Run({"accounts", "--json", "--filter", "FNumber IN ('1100', '1200')"}).out);
  EXPECT_EQ(accounts[0]["FName"], "Tea, green");
  EXPECT_EQ(accounts[0]["FQuantities"], true);
  EXPECT_EQ(accounts[0]["FMeasureUnit"], "kg");
  EXPECT_EQ(accounts[1]["FCurrencyNumber"], "USD");
}

TEST_P(Import, AUnitThatTheBooksHaveIsStoredWithItsId) {
  Init();
  const auto add = [&](std::vector<std::string> words) { EXPECT_EQ(Run(words).code, 0); };
  add({"add", "unit-groups", "Weights"});
  add({"add", "units", "kg", "FName=Kilogram", "FUnitGroupID=1"});
  add({"add", "units", "t", "FName=Tonne", "FUnitGroupID=1", "FCoefficient=1000"});
  add({"add", "unit-groups", "Pieces"});
  add({"add", "units", "pc", "FName=Piece", "FUnitGroupID=2"});
  const std::string chart = folder.Write("chart.csv", "number,name,dc,unit\n1100,Tea,1,Kilogram\n"
                                                      "1200,Cups,1,cup\n");
  const std::string journal =
      folder.Write("journal.csv", "voucher,date,account,debit,credit,quantity,unit\n"
                                  "a,2024-01-05,1100,5,,2,Tonne\na,2024-01-05,1100,,1,3,pc\n"
                                  "a,2024-01-05,1200,,4,1,kg\n");
  const RunResult result = Run({"import", "--accounts", chart, "--journal", journal});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.code, 0);
  const auto accounts =
      ParseJson(Run({"accounts", "--json", "--filter", "FNumber IN ('1100', '1200')"}).out);
  const auto unit_of = [](const Json& row) {
    return row["FMeasureUnit"].get<std::string>() + " " + row["FMeasureUnitID"].dump();
  };
  EXPECT_EQ(unit_of(accounts[0]), "Kilogram 1");
  EXPECT_EQ(unit_of(accounts[1]), "cup 0");
  const auto lines = ParseJson(Run({"voucher", "1", "--json"}).out)["_Entries"];
  EXPECT_EQ(unit_of(lines[0]), "Tonne 2");
  EXPECT_EQ(lines[0]["FBaseQuantity"], 2000);
  EXPECT_EQ(unit_of(lines[1]), "pc 0") << "it is of another group than the account's";
  EXPECT_EQ(unit_of(lines[2]), "kg 0");
}

// ---- What can't be right in a cell ----

TEST_P(Import, AnUnknownAccountIsReportedAtItsCell) {
  Init();
  EXPECT_EQ(ReportOf("b,2024-01-05,1000,5,\nb,2024-01-05,9999,,5\n"),
            "journal.csv:5:14: there is no account \"9999\"\n");
}

TEST_P(Import, BothSidesAndNoSideAreReported) {
  Init();
  EXPECT_EQ(ReportOf("b,2024-01-05,1000,5,5\nb,2024-01-05,2000.01,,\n"),
            "journal.csv:4:21: the row has both a debit and a credit\n"
            "journal.csv:5:22: the row has neither a debit nor a credit\n");
}

TEST_P(Import, TooManyDecimalsAndWordsForAmountsAreReported) {
  Init();
  EXPECT_EQ(ReportOf("b,2024-01-05,1000,5.00001,\nb,2024-01-05,2000.01,,five\n"),
            "journal.csv:4:19: \"5.00001\" has more than 4 decimals\n"
            "journal.csv:5:23: \"five\" is not an amount\n");
}

TEST_P(Import, ABadDateAndNoneAreReported) {
  Init();
  EXPECT_EQ(ReportOf("b,2024-13-05,1000,5,\nb,2024-13-05,2000.01,,5\n"),
            "journal.csv:4:3: \"2024-13-05\" is not a day of the calendar\n");
}

TEST_P(Import, AVoucherWithoutADateIsReported) {
  Init();
  EXPECT_EQ(ReportOf("b,,1000,5,\nb,,2000.01,,5\n"), "journal.csv:4:3: the row has no date\n");
}

TEST_P(Import, RowsOfAVoucherAgree) {
  Init();
  EXPECT_EQ(
      ReportOf("b,2024-01-05,1000,5,\nb,2024-01-06,2000.01,,5\n"),
      "journal.csv:5:3: \"2024-01-06\" differs from \"2024-01-05\" in the first row of voucher "
      "\"b\"\n");
}

TEST_P(Import, TextThatIsNotUtf8IsReported) {
  Init();
  EXPECT_EQ(ReportOf("b,2024-01-05,10\xE9"
                     "0,5,\nb,2024-01-05,2000.01,,5\n"),
            "journal.csv:4:14: the text is not UTF-8\n");
}

// ---- What can't be right in a row ----

TEST_P(Import, BadQuotingCostsItsVoucherAlone) {
  Init();
  EXPECT_EQ(
      ReportOf("b,2024-01-05,\"10\"00,5,\nb,2024-01-05,2000.01,,5\n"),
      "journal.csv:4:18: the quotes are wrong here: a cell with a quote in it stands in quotes, "
      "and each quote inside is doubled\n");
}

TEST_P(Import, AnOpenQuoteCostsItsVoucherAlone) {
  Init();
  EXPECT_EQ(
      ReportOf("b,2024-01-05,\"1000,5,\nb,2024-01-05,2000.01,,5\n"),
      "journal.csv:4:14: the quoted text that begins here is not closed, or goes on behind its "
      "closing quote\n");
}

TEST_P(Import, ARowWithTooManyOrTooFewCellsIsReported) {
  Init();
  EXPECT_EQ(ReportOf("b,2024-01-05,1000,5,,\nb,2024-01-05,2000.01,5\n"),
            "journal.csv:4:1: the row has 6 cells under 5 headings\n"
            "journal.csv:5:1: the row has 4 cells under 5 headings\n");
}

TEST_P(Import, ARowThatNamesNoVoucherTakesBothItsNeighboursAlong) {
  Init();
  const RunResult result =
      ImportRows(Good("a") + Good("b") + ",2024-01-05,1000,5,\n" + Good("c") + Good("d"));
  EXPECT_EQ(result.err,
            "journal.csv:6:1: the row names no voucher; the vouchers before and behind it are left "
            "out\n");
  EXPECT_EQ(result.out, "vouchers: 2 stored as import 1, 0 passed over, 2 left out\n");
  EXPECT_EQ(References(), "a d ");
}

TEST_P(Import, AVoucherThatComesBackIsReported) {
  Init();
  const RunResult result = ImportRows(Good("a") + Good("b") + Good("a"));
  EXPECT_EQ(result.err,
            "journal.csv:6:1: voucher \"a\" stands further up already; the rows of a voucher stand "
            "together\n");
  EXPECT_EQ(References(), "a b ");
}

TEST_P(Import, ALeftOutVoucherThatComesBackStaysOut) {
  Init();
  const RunResult result =
      ImportRows("a,2024-01-05,1000,x,\n" + Good("b") + Good("a"), {"--resume"});
  EXPECT_EQ(result.out, "vouchers: 1 stored as import 1, 0 passed over, 2 left out\n");
  EXPECT_EQ(References(), "b ");
}

// ---- What the server refuses ----

TEST_P(Import, AnUnbalancedVoucherIsReportedAtItsFirstRow) {
  Init();
  EXPECT_EQ(ReportOf("b,2024-01-05,1000,5,\nb,2024-01-05,2000.01,,4\n"),
            "journal.csv:4:1: 80044221: The new voucher of 2024-01-05 (b): debits 5 and credits 4 "
            "differ by 1.\n");
}

TEST_P(Import, AClosedPeriodIsReported) {
  Init();
  EXPECT_EQ(
      ReportOf("b,2023-12-31,1000,5,\nb,2023-12-31,2000.01,,5\n"),
      "journal.csv:4:1: 80044226: The new voucher of 2023-12-31 (b): period 2023/12 is closed; "
      "the books stand at 2024/1.\n");
}

TEST_P(Import, AVoucherThatIsThereIsRefusedOrPassedOver) {
  Init();
  ASSERT_EQ(ImportRows(Good("it's")).code, 0);
  const RunResult again = ImportRows(Good("it's") + Good("new"));
  EXPECT_EQ(again.code, 3);
  EXPECT_EQ(again.err, "journal.csv:2:1: voucher \"it's\" is in the books already; --resume passes "
                       "over it\n");
  const RunResult resumed = ImportRows(Good("it's") + Good("new"), {"--resume"});
  EXPECT_EQ(resumed.code, 0);
  EXPECT_EQ(resumed.out, "vouchers: 0 stored, 2 passed over, 0 left out\n");
  EXPECT_EQ(References(), "it's new ");
}

TEST_P(Import, LinesOnAnAccountWithOthersBelowItGetAnAccountOfTheirOwn) {
  Init();
  ASSERT_EQ(ImportRows("a,2024-01-05,2000,,5\na,2024-01-05,1000,5,\n"
                       "b,2024-01-05,2000,,7\nb,2024-01-05,2000.01,,1\nb,2024-01-05,1000,8,\n",
                       {"--check-all", "--post-all"})
                .code,
            0);
  EXPECT_EQ(
      Run({"balance", "--csv"}).out,
      "account,debit,credit,balance\n1000,13.0000,0.0000,13.0000\n2000,0.0000,12.0000,-12.0000\n"
      "2000.01,0.0000,1.0000,-1.0000\n");
  const auto accounts =
      ParseJson(Run({"accounts", "--json", "--filter", "FNumber = '2000._'"}).out);
  ASSERT_EQ(accounts.size(), 1u);
  EXPECT_EQ(accounts[0]["FName"], "Equity (own lines)");
  EXPECT_EQ(accounts[0]["FDC"], -1);
}

// ---- Currencies ----

TEST_P(Import, CurrenciesThatCanNotBeAreReportedAtTheirCells) {
  Init();
  const std::string journal =
      folder.Write("currencies.csv", "voucher,date,account,debit,credit,currency,amount_for,rate\n"
                                     "a,2024-01-05,1000,5,,US-D,5,\na,2024-01-05,1001,,5,,,\n"
                                     "b,2024-01-05,1000,5,,USD,,0.9\nb,2024-01-05,1001,,5,,,\n"
                                     "c,2024-01-05,1000,5,,EUR,6,\nc,2024-01-05,1001,,5,,,\n"
                                     "d,2024-01-05,1000,5,,GBP,,\nd,2024-01-05,1001,,5,,,\n");
  const RunResult result = Run({"import", "--journal", journal, "--new-currencies"});
  EXPECT_EQ(result.err,
            journal + ":2:22: \"US-D\" can't be a currency: up to 8 letters, digits and " +
                "underscores\n" + journal +
                ":4:22: a line in another currency at a rate needs its amount_for\n" + journal +
                ":6:26: a line in the base currency has the same amount in both\n");
  EXPECT_EQ(result.out, "vouchers: 1 stored as import 1, 0 passed over, 3 left out\n");
}

TEST_P(Import, ARateThatIsNotGivenComesFromTheTwoAmounts) {
  Init();
  const std::string journal =
      folder.Write("currencies.csv", "voucher,date,account,debit,credit,currency,amount_for\n"
                                     "a,2024-01-05,1000,5,,USD,10\na,2024-01-05,1001,,5,,\n");
  ASSERT_EQ(Run({"import", "--journal", journal, "--new-currencies"}).code, 0);
  const auto currencies = ParseJson(Run({"currencies", "--json"}).out);
  ASSERT_EQ(currencies.size(), 2u);
  EXPECT_EQ(currencies[1]["FNumber"], "USD");
  EXPECT_EQ(currencies[1]["FExchangeRate"], 0.5);
}

TEST_P(Import, ACurrencyThatIsNotThereIsMadeOnlyWhenAskedFor) {
  Init();
  const std::string journal =
      folder.Write("currencies.csv", "voucher,date,account,debit,credit,currency,amount_for\n"
                                     "a,2024-01-05,1000,5,,UDS,10\na,2024-01-05,1001,,5,,\n"
                                     "b,2024-01-05,1000,5,,,\nb,2024-01-05,1001,,5,EUR,\n");
  const std::string chart = folder.Write("chart.csv", "number,name,dc,currency\n7,Dollars,1,UDS\n");
  const RunResult result = Run({"import", "--accounts", chart, "--journal", journal});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err, chart + ":2:13: there is no currency \"UDS\"; --new-currencies makes it\n" +
                            journal +
                            ":2:22: there is no currency \"UDS\"; --new-currencies makes it\n");
  EXPECT_EQ(References(), "b ");
  EXPECT_EQ(ParseJson(Run({"currencies", "--json"}).out).size(), 1u);
  EXPECT_EQ(
      Run({"import", "--accounts", chart, "--journal", journal, "--resume", "--new-currencies"})
          .code,
      0);
  EXPECT_EQ(References(), "b a ");
}

TEST_P(Import, AnAmountThatIsNotAtItsRateIsReported) {
  Init();
  const std::string journal =
      folder.Write("rates.csv", "voucher,date,account,debit,credit,currency,amount_for,rate\n"
                                "a,2024-01-05,1000,90,,USD,100,0.8\na,2024-01-05,1001,,90,,,\n"
                                "b,2024-01-05,1000,80,,USD,100,0.8\nb,2024-01-05,1001,,80,,,\n");
  const RunResult result = Run({"import", "--journal", journal, "--new-currencies"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err, journal + ":2:1: 80044260: The new voucher of 2024-01-05 (a): line 1: 100 "
                                  "times 0.8 is not 90.\n");
  EXPECT_EQ(References(), "b ");
}

// ---- Whole files ----

TEST_P(Import, WhateverIsReportedTheExitCodeTells) {
  Init();
  for (const char* rows : {"\"b,2024-01-05,1000,5,\n", "\"b,2024-01-05,1000,5,", "\"", ",,,,\n"}) {
    const RunResult result = ImportRows(rows);
    EXPECT_EQ(result.code, 3) << rows;
    EXPECT_EQ(result.err.substr(0, 16), "journal.csv:2:1:") << rows;
  }
  EXPECT_EQ(ImportRows("").code, 0);
}

TEST_P(Import, AZeroByteCostsItsVoucherAlone) {
  Init();
  using namespace std::string_literals;
  EXPECT_EQ(ReportOf("b\0,2024-01-05,1000,5,\nb\0,2024-01-05,2000.01,,5\n"s),
            "journal.csv:4:1: the text holds a zero byte\n"
            "journal.csv:5:1: the text holds a zero byte\n");
}

TEST_P(Import, ARowOfTooManyCellsIsOneReport) {
  Init();
  EXPECT_EQ(ReportOf("b,2024-01-05,1000,5" + std::string(300'000, ',') + "\n"),
            "journal.csv:4:1017: the row has more than 1000 cells\n");
  const std::string journal = folder.Write("wide.csv", std::string(300'000, ',') + "\n");
  const RunResult result = Run({"import", "--journal", journal});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err, journal + ":1:1001: the row has more than 1000 cells\n");
}

TEST_P(Import, HeadingsThatCanNotBeUsedLeaveTheFileOut) {
  Init();
  const std::string journal =
      folder.Write("odd.csv", "voucher,day,account,debit,debit\n1,2,3,4,5\n");
  const RunResult result = Run({"import", "--journal", journal});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err, journal +
                            ":1:9: there is no column \"day\"; there are voucher, "
                            "date, account, debit, credit, group, number, explanation, "
                            "currency, amount_for, rate, quantity, unit, unit_price, "
                            "reference, voucher_reference, voucher_explanation, settlement, "
                            "CUSTOMER, department, GOODS, STAFF, SUPPLIER\n" +
                            journal + ":1:27: the column \"debit\" stands here a second time\n" +
                            journal + ":1:1: the column \"date\" is missing\n" + journal +
                            ":1:1: the column \"credit\" is missing\n");
  EXPECT_EQ(References(), "");
}

TEST_P(Import, AFileThatIsNotThereIsAnErrorOfItsOwn) {
  Init();
  const RunResult result = Run({"import", "--journal", folder.Path("none.csv")});
  EXPECT_EQ(result.code, 6);
  EXPECT_EQ(result.err, "qdclgl: " + folder.Path("none.csv") + " can't be read\n");
  EXPECT_EQ(Run({"import", "--journal", folder.Path("")}).code, 6);
}

TEST_P(Import, AccountsThatCanNotBeAreReportedAndTheOthersStored) {
  Init();
  const std::string chart =
      folder.Write("chart.csv", "number,name,dc,currency,quantities\n"
                                "3000.01,Child first,1,,\n3000,Parent later,1,,\n"
                                "3001,,1,,\n3002,Side,2,,\n3003,Money,1,TOOLONGCODE,\n"
                                "3004,Truth,1,,maybe\n4000.01,Orphan,1,,\n3000,Twice,1,,\n"
                                "1000,There already,1,,\n30 05,Number,1,,\n");
  const RunResult result = Run({"import", "--accounts", chart});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.out, "accounts: 2 stored, 1 there already, 7 left out\n");
  EXPECT_EQ(result.err,
            chart + ":4:6: the account has no name\n" + chart +
                ":5:11: \"2\" is no side; 1 is debit, -1 credit, 0 either\n" + chart +
                ":7:15: \"maybe\" is neither yes nor no\n" + chart +
                ":9:1: account 3000 stands further up already\n" + chart +
                ":11:1: 80044233: Account 30 05 (Number): a number has 1 to 40 letters, digits, "
                "\"-\" and "
                "\"_\", with single dots between the levels.\n" +
                chart +
                ":6:14: \"TOOLONGCODE\" can't be a currency: up to 8 letters, digits and "
                "underscores\n" +
                chart +
                ":8:1: 80044230: Account 4000.01 (Orphan): there is no account 4000 above it.\n");
  EXPECT_EQ(ParseJson(Run({"accounts", "--json", "--filter", "FNumber LIKE '3%'"}).out).size(), 2u);
}

TEST_P(Import, AnAccountIsOfTheKindThatTheChartTells) {
  Init();
  const std::string chart = folder.Write("chart.csv", "number,name,dc,kind\n3000,Sales,-1,Income\n"
                                                      "3000.01,At home,-1,\n4000,Rent,1,cost\n");
  const RunResult result = Run({"import", "--accounts", chart});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.out, "accounts: 2 stored, 0 there already, 1 left out\n");
  EXPECT_EQ(result.err, chart + ":4:13: \"cost\" is no kind of account; they are asset, liability, "
                                "equity, income or expense\n");
  const std::string accounts = Run({"accounts", "--json", "--filter", "FKind <> ''"}).out;
  const auto rows = ParseJson(accounts);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0]["FNumber"], "3000");
  EXPECT_EQ(rows[0]["FKind"], "income");
}

TEST_P(Import, NothingToImportIsWrongUsage) {
  Init();
  EXPECT_EQ(Run({"import"}).code, 2);
}

QDCLGL_CLI_TEST(Import);

}  // namespace
}  // namespace qdclgl::cli::testing
