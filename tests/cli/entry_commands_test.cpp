// Vouchers entered by words, copied and reversed.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class Entries : public CliTest {
 protected:
  void InitWithDollars() const {
    Init();
    ASSERT_EQ(Run({"add", "currencies", "USD", "FName=Dollar", "FExchangeRate=0.9"}).code, 0);
    // The group of the vouchers comes with the first.
    ASSERT_EQ(ImportRows("v1,2024-01-05,1000,10,\nv1,2024-01-05,2000.01,,10\n").code, 0);
  }
};

TEST_P(Entries, AVoucherIsEnteredByTheWordsOfItsLines) {
  InitWithDollars();
  const RunResult made =
      Run({"new", "--line", "1000 debit 119.50 Tea for  two", "--line", "1001 credit 100", "--line",
           "2000.01 credit", "--date", "2024-01-07", "--reference", "R 7"});
  EXPECT_EQ(made.err, "");
  EXPECT_EQ(made.out, "Voucher 2 is made: 2024/1 General 2, 2024-01-07, 119.50.\n");
  EXPECT_EQ(Run({"voucher", "2"}).out, "Voucher    2\n"
                                       "Number     2024/1 General 2\n"
                                       "Date       2024-01-07\n"
                                       "Reference  R 7\n"
                                       "Prepared   administrator\n"
                                       "State      open\n"
                                       "\n"
                                       "Line  Account  Name     Explanation    Debit  Credit\n"
                                       "   1  1000     Cash     Tea for  two  119.50\n"
                                       "   2  1001     Bank                           100.00\n"
                                       "   3  2000.01  Capital                         19.50\n");
  EXPECT_EQ(Run({"doctor"}).code, 0);
}

TEST_P(Entries, AnAmountMayHaveACurrencyAndItsRate) {
  InitWithDollars();
  ASSERT_EQ(Run({"new", "--line", "1000 debit 100USD Tea", "--line", "1001 credit 50USD@0.8",
                 "--line", "2000.01 credit", "--date", "2024-01-07"})
                .err,
            "");
  EXPECT_EQ(Lines("2"),
            "Line  Account  Name     Explanation  Debit  Credit  Currency  Amount  Rate\n"
            "   1  1000     Cash     Tea          90.00          USD       100.00   0.9\n"
            "   2  1001     Bank                          40.00  USD        50.00   0.8\n"
            "   3  2000.01  Capital                       50.00\n");
}

TEST_P(Entries, AmountsAreShownWithTheDecimalsOfTheirCurrency) {
  Init();
  ASSERT_EQ(Run({"add", "groups", "General"}).code, 0);
  ASSERT_EQ(Run({"add", "currencies", "JPY", "FExchangeRate=0.5", "FScale=0"}).code, 0);
  ASSERT_EQ(Run({"add", "currencies", "KWD", "FExchangeRate=3", "FScale=3"}).code, 0);
  ASSERT_EQ(Run({"new", "--line", "1000 debit 12000JPY", "--line", "1001 debit 1.5KWD", "--line",
                 "2000.01 credit", "--date", "2024-01-07"})
                .err,
            "");
  EXPECT_EQ(Lines("1"), "Line  Account  Name        Debit    Credit  Currency  Amount  Rate\n"
                        "   1  1000     Cash     6,000.00            JPY       12,000   0.5\n"
                        "   2  1001     Bank         4.50            KWD        1.500     3\n"
                        "   3  2000.01  Capital            6,004.50\n");
}

TEST_P(Entries, ACopyHasTheLinesAndNothingOfTheWorkflow) {
  InitWithDollars();
  ASSERT_EQ(Run({"new", "--line", "1000 debit 100USD@0.8 Tea", "--line", "1001 credit", "--date",
                 "2024-01-07", "--reference", "R 7"})
                .code,
            0);
  ASSERT_EQ(Run({"check", "2"}).code, 0);
  EXPECT_EQ(Run({"copy", "2"}).out, "Voucher 3 is made: 2024/1 General 3, 2024-01-31, 80.00.\n")
      << "the nearest day of the current period";
  EXPECT_EQ(Lines("3"), Lines("2"));
  const std::string untouched =
      Run({"vouchers", "--filter", "FVoucherID = 3 AND FChecked = FALSE AND FReference = ''",
           "--csv"})
          .out;
  EXPECT_EQ(std::count(untouched.begin(), untouched.end(), '\n'), 2) << untouched;
  ASSERT_EQ(Run({"set", "groups", "General", "FName=Usual"}).code, 0);
  EXPECT_EQ(Run({"copy", "3", "--date", "2024-01-09", "--reference", "again"}).out,
            "Voucher 4 is made: 2024/1 Usual 4, 2024-01-09, 80.00.\n");
  EXPECT_EQ(Run({"doctor"}).code, 0);
}

TEST_P(Entries, AReversalTakesEveryBalanceBack) {
  InitWithDollars();
  ASSERT_EQ(Run({"new", "--line", "1000 debit 100USD@0.8 Tea", "--line", "1001 credit", "--date",
                 "2024-01-07"})
                .code,
            0);
  ASSERT_EQ(Run({"check", "--all"}).code, 0);
  ASSERT_EQ(Run({"post", "--all"}).code, 0);
  ASSERT_EQ(Run({"reverse", "2", "--date", "2024-01-20"}).out,
            "Voucher 3 is made: 2024/1 General 3, 2024-01-20, 80.00.\n");
  EXPECT_EQ(Lines("3"), "Line  Account  Name  Explanation  Debit  Credit  Currency  Amount  Rate\n"
                        "   1  1000     Cash  Tea                  80.00  USD       100.00   0.8\n"
                        "   2  1001     Bank               80.00\n");
  EXPECT_NE(Run({"voucher", "3"}).out.find("\nReference  Reversal of 2024/1 General 2\n"),
            std::string::npos);
  ASSERT_EQ(Run({"post", "3"}).code, 0);
  EXPECT_EQ(Run({"balance", "--csv"}).out, "account,debit,credit,balance\n"
                                           "1000,90.0000,80.0000,10.0000\n"
                                           "1001,80.0000,80.0000,0.0000\n"
                                           "2000.01,0.0000,10.0000,-10.0000\n");
}

TEST_P(Entries, ARedReversalKeepsTheSides) {
  InitWithDollars();
  ASSERT_EQ(Run({"reverse", "1", "--red", "--date", "2024-01-20"}).err, "");
  EXPECT_EQ(Lines("2"), "Line  Account  Name      Debit  Credit\n"
                        "   1  1000     Cash     -10.00\n"
                        "   2  2000.01  Capital          -10.00\n");
  ASSERT_EQ(Run({"post", "--all"}).code, 0);
  EXPECT_EQ(Run({"balance", "--csv"}).out, "account,debit,credit,balance\n") << "nothing has moved";
}

TEST_P(Entries, WhatCanNotBeSavedMakesNothing) {
  InitWithDollars();
  const auto said = [&](std::vector<std::string> words) {
    const RunResult result = Run(words);
    EXPECT_EQ(result.out, "");
    return std::to_string(result.code) + " " + result.err;
  };
  EXPECT_EQ(said({"new"}),
            "2 qdclgl: new needs a --line for each line of the voucher; see qdclgl help new\n");
  EXPECT_EQ(said({"new", "--line", "1000 debt 1"}),
            "2 qdclgl: --line: \"1000 debt 1\" is not ACCOUNT debit|credit [AMOUNT] [TEXT]; see "
            "qdclgl help new\n");
  EXPECT_EQ(said({"new", "--line", "1000 debit 1.23456"}),
            "2 qdclgl: --line: \"1.23456\" has more than 4 decimals; see qdclgl help new\n");
  EXPECT_EQ(said({"new", "--line", "1000 debit 1USD@0"}),
            "2 qdclgl: --line: \"0\" is not a rate above 0; see qdclgl help new\n");
  EXPECT_EQ(said({"new", "--line", "1000 debit 1", "--date", "1.1.2024"}),
            "2 qdclgl: --date: \"1.1.2024\" is not a date; dates are written as yyyy-mm-dd; see "
            "qdclgl help new\n");
  const std::vector<std::string> cash = {"new",    "--line",     "1000 debit",
                                         "--date", "2024-01-07", "--line"};
  const auto with = [&](const std::string& line) {
    std::vector<std::string> words = cash;
    words.push_back(line);
    return said(words);
  };
  EXPECT_EQ(with("9999 credit 1"), "1 qdclgl: 80044222: The new voucher of 2024-01-07: line 2: "
                                   "there is no account 9999.\n");
  EXPECT_EQ(with("1001 credit 5GBP"), "1 qdclgl: 80044223: There is no currency GBP.\n");
  EXPECT_EQ(with("1001 credit"), "1 qdclgl: 80044221: More than one line has no amount; give "
                                 "amounts to all but one.\n");
  EXPECT_EQ(said({"copy"}), "2 qdclgl: copy takes one ID, or FROM and TO; see qdclgl help copy\n");
  EXPECT_EQ(said({"reverse", "9"}), "1 qdclgl: 80044213: There is no voucher with the id 9.\n");
  EXPECT_EQ(Run({"vouchers", "--csv"}).out.find("\n2,"), std::string::npos);
}

QDCLGL_CLI_TEST(Entries);

}  // namespace
}  // namespace qdclgl::cli::testing
