// Balances in other currencies are brought to what they are worth.

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class RevalueCommand : public CliTest {
 protected:
  // 100 dollars that cost 92, and the rate of the end of March.
  void Keep() const {
    CliTest::Keep("2024",
                  "1000,Cash,1,asset\n"
                  "1100,Dollars,1,asset\n"
                  "3000,Capital,-1,equity\n"
                  "5000,Differences,1,expense\n",
                  "a,2024-01-05,1000,500,\na,2024-01-05,3000,,500\n");
    ASSERT_EQ(Run({"add", "currencies", "USD", "FName=Dollar", "FExchangeRate=0.92"}).err, "");
    ASSERT_EQ(
        Run({"new", "--date", "2024-01-10", "--line", "1100 debit 100USD", "--line", "1000 credit"})
            .err,
        "");
    ASSERT_EQ(Run({"post", "2"}).err, "");
    ASSERT_EQ(Run({"rates", "add", "USD", "0.88", "--date", "2024-03-31"}).err, "");
  }
};

constexpr const char* kShown =
    "This brings balances in other currencies to their worth of 2024-03-31:\n\n"
    "Account  Name     Items  Currency  Amount for  Amount  Rate date   Rate  Worth  Difference\n"
    "1100     Dollars         USD           100.00   92.00  2024-03-31  0.88  88.00       -4.00\n\n"
    "by these lines, against 5000 Differences:\n\n"
    "Account  Name         Items  Currency  Amount  Debit  Credit\n"
    "1100     Dollars             USD         0.00           4.00\n"
    "5000     Differences                            4.00\n\n";

TEST_P(RevalueCommand, TheDifferencesAreShownBookedAndReversed) {
  Keep();
  const std::string balance = Run({"balance", "--csv"}).out;
  EXPECT_EQ(Said({"revalue", "--period", "2024/3", "--account", "5000", "--dry-run"}),
            std::string("0 ") + kShown);
  EXPECT_EQ(Run({"balance", "--csv"}).out, balance);
  EXPECT_EQ(Said({"revalue", "--period", "2024/3", "--account", "5000"}).substr(0, 2), "2 ");
  EXPECT_EQ(
      Said({"revalue", "--yes", "--account", "5000", "--period", "2024-03"}),
      std::string("0 ") + kShown + "Voucher 3 is made: 2024/3 General 1, 2024-03-31, 4.00.\n");
  EXPECT_EQ(Run({"balance", "--csv"}).out, "account,debit,credit,balance\n"
                                           "1000,500.0000,92.0000,408.0000\n"
                                           "1100,92.0000,4.0000,88.0000\n"
                                           "3000,0.0000,500.0000,-500.0000\n"
                                           "5000,4.0000,0.0000,4.0000\n");
  EXPECT_EQ(Said({"revalue", "--period", "2024/3", "--yes"}),
            "1 qdclgl: 8004422B: Voucher 2024/3 General 1 (id 3) revalues 2024/3 already; take it "
            "out of the books to do it again.\n")
      << "the account is kept";
  ASSERT_EQ(Run({"reverse", "3", "--date", "2024-04-01"}).err, "");
  ASSERT_EQ(Run({"post", "4"}).err, "");
  EXPECT_EQ(Run({"balance", "--csv"}).out, "account,debit,credit,balance\n"
                                           "1000,500.0000,92.0000,408.0000\n"
                                           "1100,96.0000,4.0000,92.0000\n"
                                           "3000,0.0000,500.0000,-500.0000\n"
                                           "5000,4.0000,4.0000,0.0000\n");
  EXPECT_EQ(Said({"doctor"}), "0 The books are in order.\n");
}

TEST_P(RevalueCommand, WhatCannotBeDoneIsTold) {
  Keep();
  EXPECT_EQ(Said({"revalue", "--period", "2024/3"}),
            "2 qdclgl: revalue takes --account, the one that differences are booked on; it is kept "
            "for the next time; see qdclgl help revalue\n");
  EXPECT_EQ(Said({"revalue", "--account", "5000"}),
            "2 qdclgl: revalue takes --period, such as 2024/3; see qdclgl help revalue\n");
  EXPECT_EQ(Said({"revalue", "--period", "2024/3", "--account", "9999"}),
            "1 qdclgl: 80044213: There is no account \"9999\".\n");
  EXPECT_EQ(Said({"revalue", "--period", "2024/1", "--account", "5000"}),
            "1 qdclgl: 80044213: There is no exchange rate of USD for 2024-01-31 or before.\n");
  ASSERT_EQ(Run({"rates", "add", "USD", "0.92", "--date", "2024-01-01"}).code, 0);
  EXPECT_EQ(Said({"revalue", "--period", "2024/1", "--account", "5000"}),
            "0 There is no difference to book for 2024/1.\n");
}

TEST_P(RevalueCommand, VouchersThatAreNotPostedAreAnnounced) {
  Keep();
  ASSERT_EQ(Run({"unpost", "1"}).err, "");
  const std::string said =
      Said({"revalue", "--period", "2024/3", "--account", "5000", "--dry-run"});
  EXPECT_EQ(said, std::string("0 ") + kShown +
                      "1 voucher up to that day that is not posted will not be in it.\n");
}

QDCLGL_CLI_TEST(RevalueCommand);

}  // namespace
}  // namespace qdclgl::cli::testing
