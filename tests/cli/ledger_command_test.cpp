#include <gtest/gtest.h>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class Ledgers : public CliTest {
 protected:
  // Vouchers of January and February on the accounts below 2000, posted.
  void InitWithPostings() const {
    Init();
    ASSERT_EQ(ImportRows("v1,2024-01-05,2000.01,10.5,\nv1,2024-01-05,1000,,10.5\n"
                         "v2,2024-02-05,2000.01,3,\nv2,2024-02-05,1001,,3\n",
                         {"--check-all", "--post-all"})
                  .code,
              0);
  }
};

TEST_P(Ledgers, ALedgerIsAddedListedAndPrinted) {
  InitWithPostings();
  EXPECT_EQ(Run({"ledger", "add", "Costs", "--account", "2000", "--columns", "children", "--side",
                 "debit"})
                .out,
            "Ledger Costs has 1 column.\n");
  EXPECT_EQ(Run({"ledgers"}).out, "Ledger ID  Ledger  Account  Name\n"
                                  "        1  Costs   2000     Equity\n");
  const std::string table =
      "Date        Voucher    Account  Explanation        Debit  Credit   Side  Balance  "
      "Capital\n"
      "2024-02-01                      Brought forward                   debit    10.50\n"
      "2024-02-05  General 1  2000.01                      3.00          debit    13.50     3.00\n"
      "2024-02-29                      Period 2024/2       3.00          debit    13.50     3.00\n"
      "2024-02-29                      Year 2024 to date  13.50          debit    13.50    13.50\n"
      "2024-02-29                      Carried forward     3.00          debit    13.50     3.00\n";
  EXPECT_EQ(Run({"ledger", "Costs", "--from", "2024/2", "--to", "2024-02-29"}).out, table);
  EXPECT_EQ(Run({"ledger", "Costs", "--from", "2024-02-01", "--to", "2024/2"}).out, table);
}

TEST_P(Ledgers, CsvAndJsonHaveAllThatTheServerTells) {
  InitWithPostings();
  Run({"ledger", "add", "Costs", "--account", "2000", "--columns", "2000.01, 1000", "--side",
       "debit", "--currencies", "eur"});
  const std::string csv = Run({"ledger", "Costs", "--csv"}).out;
  EXPECT_TRUE(
      csv.starts_with("FRow,FDate,FYear,FPeriod,FVoucherID,FEntryID,FGroup,FNumber,"
                      "FAccountNumber,FExplanation,FDebit,FCredit,FDC,FBalance,FSub1Debit,"
                      "FSub1Credit,FSub1Rate,FColumn1,FColumn1Sub1,FColumn2,FColumn2Sub1\n"))
      << csv;
  const auto rows = ParseJson(Run({"ledger", "Costs", "--json"}).out);
  EXPECT_EQ(rows.back()["FRow"], "Closing");
  EXPECT_EQ(rows.back()["FDebit"], "13.5000");
  EXPECT_EQ(rows.back()["FColumn1Sub1"], "13.5000");
}

TEST_P(Ledgers, ThePageHoldsWhatTheTableHoldsAndIsSafeWhateverNamesAre) {
  InitWithPostings();
  Run({"ledger", "add", "<b>\"Costs\" & co", "--account", "2000", "--columns", "children", "--side",
       "debit"});
  const std::string page = Run({"ledger", "<b>\"Costs\" & co", "--html"}).out;
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>")) << page;
  EXPECT_NE(page.find("<h1>&lt;b&gt;&quot;Costs&quot; &amp; co: 2000 "), page.npos) << page;
  EXPECT_NE(page.find("<td>2024-01-05</td><td>General 1</td><td>2000.01</td><td></td>"
                      "<td class=\"figure\">10.50</td><td class=\"figure\"></td>"
                      "<td class=\"figure\">debit</td><td class=\"figure\">10.50</td>"
                      "<td class=\"figure\">10.50</td>"),
            page.npos)
      << page;
  EXPECT_EQ(page.find("<b>"), page.npos);
}

TEST_P(Ledgers, WhatIsNotThereOrWronglyAskedIsOneLine) {
  InitWithPostings();
  const auto outcome = [&](std::vector<std::string> words) {
    words.insert(words.begin(), "ledger");
    const RunResult result = Run(words);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    return std::to_string(result.code) + " " + result.err;
  };
  EXPECT_EQ(outcome({"Costs"}), "1 qdclgl: 80044213: There is no ledger \"Costs\".\n");
  EXPECT_EQ(outcome({"add", "Costs", "--account", "9"}),
            "1 qdclgl: 80044213: There is no account \"9\".\n");
  EXPECT_EQ(outcome({"add", "Costs", "--account", "2000", "--columns", "9"}),
            "1 qdclgl: 80044213: There is no account \"9\".\n");
  EXPECT_EQ(outcome({"add", "Costs", "--account", "2000", "--currencies", "xyz"}),
            "1 qdclgl: 80044213: There is no currency \"xyz\".\n");
  EXPECT_EQ(outcome({"add", "Costs"}).substr(0, 1), "2");
  EXPECT_EQ(outcome({"add", "Costs", "--account", "2000", "--columns", "children", "--side", "x"})
                .substr(0, 1),
            "2");
  EXPECT_EQ(outcome({"Costs", "--from", "January"}).substr(0, 1), "2");
  EXPECT_EQ(outcome({"Costs", "--html", "--csv"}).substr(0, 1), "2");
  EXPECT_EQ(Run({"ledgers"}).out, "There are no multi-column ledgers.\n");
}

TEST_P(Ledgers, TheCommandsOfAllRecordsKnowLedgersAndTheirColumns) {
  InitWithPostings();
  EXPECT_EQ(Run({"add", "ledgers", "Costs", "FAccountID=4",
                 "_Columns=[{\"FColumnName\": \"Capital\", \"FAccountID\": 5, \"FDC\": 1}]"})
                .err,
            "");
  const auto ledger = ParseJson(Run({"show", "ledgers", "Costs", "--json"}).out)[0];
  EXPECT_EQ(ledger["FAccountNumber"], "2000");
  EXPECT_EQ(ledger["_Columns"][0]["FAccountNumber"], "2000.01");
  EXPECT_EQ(Run({"set", "ledgers", "Costs", "_Columns=" + ledger["_Columns"].dump(),
                 "FLedgerName=Equity"})
                .err,
            "")
      << "what was shown can be sent";
  EXPECT_EQ(Run({"remove", "ledgers", "Equity", "--yes"}).err, "");
}

TEST_P(Ledgers, WithBooksFromTheEnvironmentTheFirstWordIsNotTheBooks) {
  InitWithPostings();
  SetVariable("QDCLGL_BOOK", book);
  EXPECT_EQ(RunInProcess({"ledger", "add", "Costs", "--account", "2000"}).err, "");
  EXPECT_EQ(RunInProcess({"ledger", "Costs", "--csv"}).code, 0);
  EXPECT_EQ(RunInProcess({"ledger", book, "Costs", "--csv"}).code, 0);
  EXPECT_EQ(RunInProcess({"ledger", book, "add", "More", "--account", "2000"}).code, 0);
  UnsetVariable("QDCLGL_BOOK");
  EXPECT_EQ(Run({"ledgers", "--csv"}).out.find("More") == std::string::npos, false);
  EXPECT_EQ(RunInProcess({"ledger", book}).code, 2);
}

QDCLGL_CLI_TEST(Ledgers);

}  // namespace
}  // namespace qdclgl::cli::testing
