// Budgets, and what is posted beside them.

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class BudgetCommand : public CliTest {
 protected:
  void Keep() const {
    CliTest::Keep("2024",
                  "1000,Cash,1,asset\n"
                  "4000,Sales,-1,income\n"
                  "5000,Costs,1,expense\n"
                  "5000.01,Rent,1,\n",
                  "a,2024-02-05,1000,80,\na,2024-02-05,4000,,80\n"
                  "b,2024-02-05,5000.01,30,\nb,2024-02-05,1000,,30\n");
  }
};

TEST_P(BudgetCommand, BudgetsAreSetReplacedListedAndTakenAway) {
  Keep();
  EXPECT_EQ(Said({"budget", "--year", "2025"}), "0 Nothing is budgeted for 2025.\n");
  EXPECT_EQ(Said({"budget", "4000", "900"}), "0 The budget of 4000 for 2024 is 900.00.\n");
  EXPECT_EQ(Said({"budget", "--year", "2024", "4000", "1000"}),
            "0 The budget of 4000 for 2024 is 1,000.00.\n");
  EXPECT_EQ(Said({"budget", "5000.01", "12.5", "--period", "2"}),
            "0 The budget of 5000.01 for 2024/2 is 12.50.\n");
  const std::string sales = "4000     Sales  2024    1,000.00\n";
  EXPECT_EQ(Said({"budget"}),
            "0 Account  Name   Period    Budget\n" + sales + "5000.01  Rent   2024/2     12.50\n");
  EXPECT_EQ(Said({"budget", "5000.01", "0", "--period", "2"}).substr(0, 2), "0 ");
  EXPECT_EQ(Said({"budget"}), "0 Account  Name   Period    Budget\n" + sales);
}

TEST_P(BudgetCommand, TheIncomeStatementHasThemBesideWhatIsPosted) {
  Keep();
  ASSERT_EQ(Run({"budget", "4000", "1000"}).code, 0);
  ASSERT_EQ(Run({"budget", "5000", "20", "--period", "2"}).code, 0);
  EXPECT_EQ(Run({"income", "--budget", "--from", "2", "--to", "2"}).out,
            "Account  Name           2024/2  Budget  Difference       %\n"
            "         Income\n"
            "4000       Sales         80.00   83.34       -3.34   96.0%\n"
            "         Total income    80.00   83.34       -3.34   96.0%\n"
            "         Expense\n"
            "5000       Costs         30.00   20.00       10.00  150.0%\n"
            "5000.01      Rent        30.00    0.00       30.00\n"
            "         Total expense   30.00   20.00       10.00  150.0%\n"
            "         Result          50.00   63.34      -13.34   78.9%\n");
  const auto rows = ParseJson(Run({"income", "--budget", "--json"}).out);
  EXPECT_EQ(rows[0]["FBudget"], "1000.0000");
  EXPECT_EQ(rows[0]["FDifference"], "-920.0000");
  EXPECT_EQ(rows[0]["FBudgetPercent"], 8.0);
}

TEST_P(BudgetCommand, AFileIsImportedAndWhatIsWrongInItReported) {
  Keep();
  const std::string file = folder.Write("budgets.csv", "account,year,period,amount\n"
                                                       "4000,2024,,1200\n5000.01,2024,3,50\n"
                                                       "9999,2024,,1\n5000,2024,x,1\n"
                                                       "5000,2024,13,1\n5000,2024,1,1.23456\n");
  const RunResult result = Run({"budget", "--import", file});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.out, "budgets: 2 stored, 4 left out\n");
  EXPECT_EQ(result.err, file + ":4:1: 80044213: There is no account \"9999\".\n" + file +
                            ":5:11: \"x\" is not a whole number\n" + file +
                            ":6:1: 80044212: Budget 5000 2024/13 (Costs): FYear is 0 (each year) "
                            "or a year, FPeriod 0 "
                            "(all periods) to 12.\n" +
                            file + ":7:13: \"1.23456\" has more than 4 decimals\n");
  EXPECT_EQ(Run({"budget", "--csv"}).out,
            "FBudgetID,FVersion,FNumber,FName,FAccountID,FAccountNumber,FAccountName,FYear,"
            "FPeriod,FAmount\n"
            "1,1,4000 2024,Sales,2,4000,Sales,2024,0,1200.0000\n"
            "2,1,5000.01 2024/3,Rent,4,5000.01,Rent,2024,3,50.0000\n");
  EXPECT_EQ(Said({"doctor"}), "0 The books are in order.\n");
}

TEST_P(BudgetCommand, WhatCanNotBeMeantIsTold) {
  Keep();
  EXPECT_EQ(Said({"budget", "4000"}),
            "2 qdclgl: budget takes ACCOUNT and AMOUNT; see qdclgl help budget\n");
  EXPECT_EQ(Said({"budget", "4000", "much"}),
            "2 qdclgl: \"much\" is not an amount; see qdclgl help budget\n");
  EXPECT_EQ(Said({"budget", "9999", "5"}), "1 qdclgl: 80044213: There is no account \"9999\".\n");
  EXPECT_EQ(Said({"income", "--budget", "--compare"}).substr(0, 2), "2 ");
}

QDCLGL_CLI_TEST(BudgetCommand);

}  // namespace
}  // namespace qdclgl::cli::testing
