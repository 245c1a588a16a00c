// A year's result is carried to the equity, and taken back.
#include <sstream>

#include "qdclgl/cli/program.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class YearEndCommand : public CliTest {
 protected:
  // Income of 80 and costs of 30 in 2024.
  void Keep() const {
    CliTest::Keep("2024",
                  "1000,Cash,1,asset\n"
                  "3000,Earnings,-1,equity\n"
                  "4000,Sales,-1,income\n"
                  "5000,Costs,1,expense\n",
                  "a,2024-02-05,1000,80,\na,2024-02-05,4000,,80\n"
                  "b,2024-05-05,5000,30,\nb,2024-05-05,1000,,30\n");
  }
};

constexpr const char* kLines = "Account  Name      Items  Currency  Amount  Debit  Credit\n"
                               "4000     Sales                              80.00\n"
                               "5000     Costs                                      30.00\n"
                               "3000     Earnings                                   50.00\n";

TEST_P(YearEndCommand, TheResultIsShownCarriedAndTakenBack) {
  Keep();
  const std::string income = Run({"income", "--year", "2024"}).out;
  const std::string balance = Run({"balance"}).out;
  const std::string shown =
      std::string("This carries the result of 2024 to 3000 Earnings:\n\n") + kLines + "\n";
  EXPECT_EQ(Said({"close", "--year", "2024", "--to", "3000", "--dry-run"}), "0 " + shown);
  EXPECT_EQ(Run({"balance"}).out, balance);
  EXPECT_EQ(Said({"close", "--to", "3000", "--yes", "--year"}),
            "0 " + shown + "Voucher 3 is made: 2024/12 General 1, 2024-12-31, 80.00.\n");
  EXPECT_EQ(Run({"balance", "--csv"}).out, "account,debit,credit,balance\n"
                                           "1000,80.0000,30.0000,50.0000\n"
                                           "3000,0.0000,50.0000,-50.0000\n"
                                           "4000,80.0000,80.0000,0.0000\n"
                                           "5000,30.0000,30.0000,0.0000\n");
  EXPECT_EQ(Run({"income", "--year", "2024"}).out, income);
  // The account need not be named again.
  EXPECT_EQ(Said({"close", "--year", "--yes"}), "0 There is no result of 2024 to carry.\n");
  EXPECT_EQ(Said({"close", "--undo", "--yes", "--year", "2024"}),
            "0 This removes 1 voucher that carries the result of 2024.\n"
            "The result of 2024 is taken back.\n");
  EXPECT_EQ(Run({"balance"}).out, balance);
  EXPECT_EQ(Said({"close", "--undo", "--yes", "--year", "2024"}),
            "0 No result of 2024 is carried.\n");
  EXPECT_EQ(Said({"doctor"}), "0 The books are in order.\n");
}

TEST_P(YearEndCommand, AClosedYearIsReopenedToTakeItsResultBack) {
  Keep();
  ASSERT_EQ(Run({"close", "--year", "--to", "3000", "--yes"}).err, "");
  for (int i = 0; i < 12; ++i) ASSERT_EQ(Run({"close", "--yes"}).err, "");
  EXPECT_EQ(Said({"close", "--year", "2024", "--undo", "--yes"}),
            "0 This removes 1 voucher that carries the result of 2024.\n"
            "Period 2024/12 and all behind it are reopened.\n"
            "The result of 2024 is taken back.\n");
  EXPECT_EQ(Run({"vouchers", "--csv", "--filter", "FPeriod = 12"}).out.find("\n"),
            Run({"vouchers", "--csv", "--filter", "FPeriod = 12"}).out.size() - 1);
}

TEST_P(YearEndCommand, WhoMayNotPostLeavesThatToOthers) {
  Keep();
  ASSERT_EQ(Run({"user", "ann", "--roles", "preparer", "--no-password"}).err, "");
  const RunResult result =
      Run({"close", "--year", "2024", "--to", "3000", "--yes", "--user", "ann"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "qdclgl: 80044202: User ann (preparer) may not post vouchers.\n");
  EXPECT_EQ(result.out.substr(result.out.find("Voucher 3")),
            "Voucher 3 is made: 2024/12 General 1, 2024-12-31, 80.00.\n"
            "Somebody else has to take it through posting.\n");
  EXPECT_EQ(Said({"close", "--year", "2024", "--to", "3000", "--yes"}),
            "1 qdclgl: 80044250: The voucher with the id 3 carries the result of 2024 and is not "
            "posted; post or delete it.\n");
  ASSERT_EQ(Run({"post", "3"}).err, "");
  EXPECT_EQ(Said({"close", "--year", "2024", "--to", "3000", "--yes"}),
            "0 There is no result of 2024 to carry.\n");
}

TEST_P(YearEndCommand, NobodyCarriesWithoutBeingAsked) {
  Keep();
  std::istringstream no("n\n");
  std::ostringstream out, err;
  EXPECT_EQ(cli::Run({"close", book, "--year", "2024", "--to", "3000"},
                     {.out = out, .err = err, .answers = &no}),
            1);
  EXPECT_NE(out.str().find("Nothing is carried.\n"), std::string::npos);
  EXPECT_EQ(Said({"close", "--year", "2024"}),
            "2 qdclgl: close --year takes --to, the account of equity that the result is carried "
            "to; it is kept for the next time; see qdclgl help close\n");
  EXPECT_EQ(Said({"close", "--year", "2024", "--to", "9999"}),
            "1 qdclgl: 80044213: There is no account \"9999\".\n");
  EXPECT_EQ(Said({"close", "--to", "3000"}).substr(0, 2), "2 ");
}

TEST_P(YearEndCommand, BooksMayStandBehindTheYearThatIsLeftOut) {
  Keep();
  EXPECT_EQ(RunInProcess({"close", "--to", "3000", "--dry-run", "--year", book}).out,
            std::string("This carries the result of 2024 to 3000 Earnings:\n\n") + kLines + "\n");
}

QDCLGL_CLI_TEST(YearEndCommand);

}  // namespace
}  // namespace qdclgl::cli::testing
