#include <gtest/gtest.h>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class Statements : public CliTest {
 protected:
  void InitWithPostings() const {
    Init();
    ASSERT_EQ(ImportRows("v1,2024-01-05,2000.01,10.5,\nv1,2024-01-05,1000,,10.5\n"
                         "v2,2024-02-05,2000.01,3,\nv2,2024-02-05,1001,,2\nv2,2024-02-05,1000,,1\n"
                         "v3,2024-02-07,1000,4,\nv3,2024-02-07,2000.01,,4\n",
                         {"--check-all", "--post-all"})
                  .code,
              0);
  }
};

TEST_P(Statements, AreLinesWithTheirOtherSideAndTheBalance) {
  InitWithPostings();
  const std::string february =
      "Date        Voucher    Account  Contra     Explanation      Debit  Credit  Balance\n"
      "2024-02-01                                 Brought forward                   10.50\n"
      "2024-02-05  General 1  2000.01  1000,1001                    3.00            13.50\n"
      "2024-02-07  General 2  2000.01  1000                                 4.00     9.50\n"
      "2024-02-29                                 Carried forward   3.00    4.00     9.50\n";
  for (const auto& [from, to] :
       {std::pair("2024-02", "2024-02"), std::pair("2024/2", "2024/2"),
        std::pair("2024-02-01", "2024-02-29"), std::pair("2024-2", "2024/02")}) {
    EXPECT_EQ(Run({"statement", "2000", "--from", from, "--to", to}).out, february) << from;
  }
  EXPECT_EQ(Run({"statement", "--to", "2024/2", "2000.01", "--from", "2024-02-06"}).out,
            "Date        Voucher    Contra  Explanation      Credit  Balance\n"
            "2024-02-06                     Brought forward            13.50\n"
            "2024-02-07  General 2  1000                       4.00     9.50\n"
            "2024-02-29                     Carried forward    4.00     9.50\n");
  EXPECT_EQ(Run({"statement", "2000", "--from", "2024", "--to", "2024", "--csv"}).out,
            Run({"statement", "2000", "--csv"}).out);
}

TEST_P(Statements, AreALineForEachPeriodWhereThatIsAskedFor) {
  InitWithPostings();
  EXPECT_EQ(Run({"statement", "2000", "--monthly"}).out,
            "Period  Opening  Debit  Credit  Closing\n"
            "2024/1     0.00  10.50            10.50\n"
            "2024/2    10.50   3.00    4.00     9.50\n"
            "Total      0.00  13.50    4.00     9.50\n");
}

TEST_P(Statements, WhatIsNotPostedIsMarked) {
  Init();
  ImportRows("v1,2024-01-05,1000,10.5,\nv1,2024-01-05,1001,,10.5\n");
  EXPECT_EQ(Run({"statement", "1000"}).out,
            "Nothing moves on 1000 from 2024-01-01 to 2024-12-31; the balance is 0.00.\n");
  EXPECT_EQ(Run({"statement", "1000", "--unposted"}).out,
            "Date        Voucher    State       Contra  Explanation      Debit  Balance\n"
            "2024-01-01                                 Brought forward            0.00\n"
            "2024-01-05  General 1  not posted  1001                     10.50    10.50\n"
            "2024-12-31                                 Carried forward  10.50    10.50\n");
}

TEST_P(Statements, GoOnWhereTheirPageEnds) {
  InitWithPostings();
  const std::string page = Run({"statement", "2000", "--count", "2"}).out;
  EXPECT_TRUE(page.ends_with("There are more lines; they go on with --after 2/1\n")) << page;
  EXPECT_EQ(Run({"statement", "2000", "--count", "2", "--after", "2/1"}).out,
            "Date        Voucher    Account  Contra  Explanation      Credit  Balance\n"
            "2024-01-01                              Brought forward            13.50\n"
            "2024-02-07  General 2  2000.01  1000                       4.00     9.50\n"
            "2024-12-31                              Carried forward    4.00     9.50\n");
}

TEST_P(Statements, GoItemByItemOrAreOfOneItem) {
  Init();
  for (const auto& words : std::initializer_list<std::vector<std::string>>{
           {"add", "accounts", "1100", "FName=Receivables", R"(_Items=[{"FItemClassID":3}])"},
           {"add", "items", "C001", "FItemClassID=3", "FName=Anna"},
           {"add", "items", "C002", "FItemClassID=3", "FName=Bert"}}) {
    ASSERT_EQ(Run(words).err, "");
  }
  const std::string path = folder.Write(
      "journal.csv",
      "voucher,date,account,debit,credit,customer\n"
      "a,2024-01-05,1100,10,,C002\na,2024-01-05,1100,5,,C001\na,2024-01-05,1000,,15,\n");
  ASSERT_EQ(Run({"import", "--journal", path, "--check-all", "--post-all"}).err, "");
  EXPECT_EQ(
      Run({"statement", "1100", "--by", "customers", "--from", "2024/1", "--to", "2024/1"}).out,
      "Item       Date        Voucher    Contra  Explanation      Debit  Balance\n"
      "C001 Anna  2024-01-01                     Brought forward            0.00\n"
      "C001 Anna  2024-01-05  General 1  1000                      5.00     5.00\n"
      "C001 Anna  2024-01-31                     Carried forward   5.00     5.00\n"
      "C002 Bert  2024-01-01                     Brought forward            0.00\n"
      "C002 Bert  2024-01-05  General 1  1000                     10.00    10.00\n"
      "C002 Bert  2024-01-31                     Carried forward  10.00    10.00\n"
      "           2024-01-31                     Total            15.00    15.00\n");
  EXPECT_EQ(Run({"statement", "1100", "--item", "customer=c001", "--monthly"}).out,
            "Item       Period  Opening  Debit  Closing\n"
            "C001 Anna  2024/1     0.00   5.00     5.00\n"
            "C001 Anna  Total      0.00   5.00     5.00\n");
}

TEST_P(Statements, CsvAndJsonHaveAllThatTheServerTells) {
  InitWithPostings();
  const std::string csv = Run({"statement", "1000", "--csv"}).out;
  EXPECT_TRUE(csv.starts_with(
      "FRow,FItemNumber,FItemName,FDate,FYear,FPeriod,FVoucherID,FEntryID,FGroup,FNumber,FPosted,"
      "FAccountNumber,FContra,FExplanation,FTransNo,FBeginBalance,FDebit,FCredit,FBalance,"
      "FCurrencyNumber,FExchangeRate,FDebitFor,FCreditFor,FBalanceFor\n"
      "Opening,,,2024-01-01,2024,1,0,0,,0,true,,,,,0.0000,0.0000,0.0000,0.0000,"))
      << csv;
  const auto rows = ParseJson(Run({"statement", "1000", "--json"}).out);
  EXPECT_EQ(rows.back()["FRow"], "Closing");
  EXPECT_EQ(rows.back()["FBalance"], "-7.5000");
  EXPECT_EQ(rows[2]["FContra"], "2000.01");
}

TEST_P(Statements, WithBooksFromTheEnvironmentTheWordIsTheAccount) {
  InitWithPostings();
  SetVariable("QDCLGL_BOOK", book);
  EXPECT_EQ(RunInProcess({"statement", "1000", "--csv"}).out,
            Run({"statement", "1000", "--csv"}).out);
  UnsetVariable("QDCLGL_BOOK");
}

QDCLGL_CLI_TEST(Statements);

}  // namespace
}  // namespace qdclgl::cli::testing
