// Income statement and balance sheet as the command line prints them.

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class ResultCommands : public CliTest {
 protected:
  // Two years of a small shop. 2000 has lines of its own beside those of 2000.01.
  void Keep() const {
    CliTest::Keep("2023",
                  "1000,Cash,1,asset\n"
                  "2000,Loans,-1,liability\n"
                  "2000.01,Bank loan,-1,\n"
                  "3000,Capital,-1,equity\n"
                  "4000,Sales,-1,income\n"
                  "5000,Costs,1,expense\n"
                  "5000.01,Rent,1,\n",
                  "a,2023-01-05,1000,100,\na,2023-01-05,3000,,100\n"
                  "b,2023-06-05,1000,40,\nb,2023-06-05,4000,,40\n"
                  "c,2024-02-05,1000,80,\nc,2024-02-05,4000,,80\n"
                  "d,2024-05-05,5000.01,30,\nd,2024-05-05,1000,,30\n"
                  "e,2024-06-05,1000,7,\ne,2024-06-05,2000,,7\n"
                  "f,2024-06-06,1000,5,\nf,2024-06-06,2000.01,,5\n");
  }
};

TEST_P(ResultCommands, TheIncomeStatementHasItsSectionsAndTheYearBefore) {
  Keep();
  const RunResult result = Run({"income", "--year", "2024", "--compare", "--percent"});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "Account  Name            2024       %   2023       %  Change\n"
                        "         Income\n"
                        "4000       Sales        80.00  100.0%  40.00  100.0%   40.00\n"
                        "         Total income   80.00  100.0%  40.00  100.0%   40.00\n"
                        "         Expense\n"
                        "5000       Costs        30.00   37.5%   0.00    0.0%   30.00\n"
                        "5000.01      Rent       30.00   37.5%   0.00    0.0%   30.00\n"
                        "         Total expense  30.00   37.5%   0.00    0.0%   30.00\n"
                        "         Result         50.00   62.5%  40.00  100.0%   10.00\n");
}

TEST_P(ResultCommands, QuartersStandBesideTheYearAndDepthLeavesOutWhatIsBelow) {
  Keep();
  const RunResult result = Run({"income", "--year", "2024", "--quarterly", "--depth", "1"});
  EXPECT_EQ(result.out,
            "Account  Name           2024/1-3  2024/4-6  2024/7-9  2024/10-12   2024\n"
            "         Income\n"
            "4000       Sales           80.00      0.00      0.00        0.00  80.00\n"
            "         Total income      80.00      0.00      0.00        0.00  80.00\n"
            "         Expense\n"
            "5000       Costs            0.00     30.00      0.00        0.00  30.00\n"
            "         Total expense      0.00     30.00      0.00        0.00  30.00\n"
            "         Result            80.00    -30.00      0.00        0.00  50.00\n");
  const auto rows = ParseJson(
      Run({"income", "--year", "2024", "--monthly", "--from", "2", "--to", "5", "--json"}).out);
  ASSERT_EQ(rows.size(), 6u * 4u) << "a row for each account or sum and each month, no total";
  EXPECT_EQ(rows[3]["FFrom"], "2024/5");
  EXPECT_EQ(rows[3]["FTo"], "2024/5");
}

TEST_P(ResultCommands, TheBalanceSheetAgreesAndShowsOwnLinesUnderTheirAccount) {
  Keep();
  const RunResult result = Run({"position", "--date", "2024-06-30", "--compare"});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "Account  Name                        2024-06-30  2023-06-30  Change\n"
                        "         Assets\n"
                        "1000       Cash                          202.00      140.00   62.00\n"
                        "         Total assets                    202.00      140.00   62.00\n"
                        "         Liabilities\n"
                        "2000       Loans                          12.00        0.00   12.00\n"
                        "2000.01      Bank loan                     5.00        0.00    5.00\n"
                        "2000         Loans (own lines)             7.00        0.00    7.00\n"
                        "         Total liabilities                12.00        0.00   12.00\n"
                        "         Equity\n"
                        "3000       Capital                       100.00      100.00    0.00\n"
                        "           Results of earlier years       40.00        0.00   40.00\n"
                        "           Result of the year             50.00       40.00   10.00\n"
                        "         Total equity                    190.00      140.00   50.00\n"
                        "         Liabilities and equity          202.00      140.00   62.00\n"
                        "         Difference                        0.00        0.00    0.00\n"
                        "Assets are equal to liabilities and equity.\n");
}

TEST_P(ResultCommands, AccountsWithoutAKindAreToldWithWhatToDo) {
  Keep();
  ASSERT_EQ(Run({"set", "accounts", "5000", "FKind="}).err, "");
  const std::string told = "An account has no kind and is in no sum: 5000 Costs.\n"
                           "Tell it with qdclgl set accounts 5000 FKind=..., which is asset, "
                           "liability, equity, income or expense; it holds for those below as "
                           "well.\n";
  const std::string income = Run({"income", "--year", "2024"}).out;
  EXPECT_EQ(income.substr(income.find("An account")), told);
  const std::string position = Run({"position", "--year", "2024"}).out;
  EXPECT_EQ(position.substr(position.find("         Accounts without")),
            "         Accounts without a kind\n"
            "5000       Costs                          30.00\n"
            "5000.01      Rent                         30.00\n"
            "         Difference                      -30.00\n"
            "2024-12-31: assets differ from liabilities and equity by -30.00, as accounts "
            "without a kind have balances.\n" +
                told);
}

TEST_P(ResultCommands, NothingIsToldInASentence) {
  Keep();
  EXPECT_EQ(Run({"income", "--year", "2022"}).out,
            "Nothing is posted on accounts of income or expense in these periods.\n");
  EXPECT_EQ(Run({"position", "--year", "2022"}).out,
            "Nothing is posted yet in these periods or before them.\n");
}

TEST_P(ResultCommands, WhatCanNotBeAskedForIsTold) {
  Keep();
  const auto said = [&](std::vector<std::string> words) {
    const RunResult result = Run(std::move(words));
    EXPECT_EQ(result.out, "");
    return std::to_string(result.code) + " " + result.err;
  };
  EXPECT_EQ(said({"position", "--date", "2024-06-15"}),
            "2 qdclgl: balances are kept by periods: 2024-06-15 lies within 2024/6, which ends on "
            "2024-06-30; see qdclgl help position\n");
  EXPECT_EQ(said({"income", "--from", "3", "--to", "2"}),
            "2 qdclgl: periods go forward, not from 3 to 2; see qdclgl help income\n");
  EXPECT_EQ(said({"income", "--to", "13"}),
            "1 qdclgl: 80044212: There is no period 2023/13; a year has 12.\n");
  EXPECT_EQ(said({"income", "--monthly", "--quarterly"}).substr(0, 2), "2 ");
  EXPECT_EQ(said({"position", "--date", "2024-06-30", "--year", "2024"}).substr(0, 2), "2 ");
}

QDCLGL_CLI_TEST(ResultCommands);

}  // namespace
}  // namespace qdclgl::cli::testing
