// Exchange rates by day: kept, listed, imported, and used where a line tells none.

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class RatesCommand : public CliTest {
 protected:
  void Init() const {
    CliTest::Init();
    ASSERT_EQ(Run({"add", "currencies", "USD", "FName=Dollar", "FExchangeRate=0.5"}).err, "");
    ASSERT_EQ(Run({"add", "groups", "General"}).err, "");
    ASSERT_EQ(Run({"add", "currencies", "JPY", "FName=Yen", "FOperator=/", "FScale=0"}).err, "");
  }
  // "1000 debit 92.0000 USD 100.0000 0.92" a line.
  std::string LinesOf(const std::string& id) const {
    std::string text;
    const auto voucher = ParseJson(Run({"voucher", id, "--json"}).out);
    for (const auto& line : voucher["_Entries"]) {
      text += line["FAccountNumber"].get<std::string>() +
              (line["FDC"] == 1 ? " debit " : " credit ") + line["FAmount"].get<std::string>() +
              " " + line["FCurrencyNumber"].get<std::string>() + " " +
              line["FAmountFor"].get<std::string>() + " " + line["FExchangeRate"].dump() + "\n";
    }
    return text;
  }
};

TEST_P(RatesCommand, RatesAreKeptReplacedListedAndTakenAway) {
  Init();
  EXPECT_EQ(Said({"rates"}), "0 No exchange rates are kept.\n");
  EXPECT_EQ(Said({"rates", "add", "usd", "0.92", "--date", "2024-01-31"}),
            "0 The rate of USD is 0.92 from 2024-01-31 on.\n");
  ASSERT_EQ(Run({"rates", "--date", "2024-02-29", "add", "USD", "0.93"}).code, 0);
  ASSERT_EQ(Run({"rates", "add", "JPY", "160", "--date", "2024-01-31"}).code, 0);
  ASSERT_EQ(Run({"rates", "add", "USD", "0.94", "--date", "2024-02-29"}).code, 0);
  EXPECT_EQ(Said({"rates", "USD"}), "0 Currency  Date        Rate  Name\n"
                                    "USD       2024-01-31  0.92\n"
                                    "USD       2024-02-29  0.94\n");
  const auto rows = ParseJson(Run({"rates", "--json"}).out);
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0]["FCurrencyNumber"], "JPY");
  EXPECT_EQ(rows[0]["FExchangeRate"], 160);
  EXPECT_EQ(Said({"rates", "remove", "USD", "--date", "2024-02-29"}),
            "0 The rate of USD of 2024-02-29 is removed.\n");
  EXPECT_EQ(Said({"rates", "remove", "USD", "--date", "2024-02-29"}),
            "1 qdclgl: 80044213: There is no rate of USD of 2024-02-29.\n");
  EXPECT_EQ(Said({"rates", "--date", "2024-02-29"}), "0 No exchange rates are kept.\n");
  EXPECT_EQ(Said({"rates", "CHF"}), "1 qdclgl: 80044223: There is no currency \"CHF\".\n");
}

TEST_P(RatesCommand, AFileIsImportedAndWhatIsWrongInItReported) {
  Init();
  const std::string file =
      folder.Write("rates.csv", "currency,date,rate\nUSD,2024-01-31,0.92\nUSD,2024-02-30,0.93\n"
                                "CHF,2024-01-31,1\nUSD,2024-03-31,-1\nJPY,2024-01-31\n"
                                ",2024-01-31,1\nUSD,2024-01-31,0.91\n");
  const RunResult result = Run({"rates", "--import", file});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.out, "rates: 2 stored, 5 left out\n");
  EXPECT_EQ(result.err, file + ":3:5: \"2024-02-30\" is not a day of the calendar\n" + file +
                            ":4:1: 80044223: There is no currency \"CHF\".\n" + file +
                            ":5:16: \"-1\" is not a rate above 0\n" + file +
                            ":6:1: the row has 2 cells under 3 headings\n" + file +
                            ":7:1: the rate has no currency\n");
  EXPECT_EQ(Run({"rates", "--csv", "USD"}).out.find("0.91") != std::string::npos, true);
}

TEST_P(RatesCommand, ALineOfANewVoucherThatTellsNoRateHasThatOfItsDay) {
  Init();
  ASSERT_EQ(Run({"rates", "add", "USD", "0.92", "--date", "2024-01-10"}).code, 0);
  ASSERT_EQ(Run({"rates", "add", "USD", "0.93", "--date", "2024-01-20"}).code, 0);
  const auto add = [&](const std::string& date, const std::string& worth) {
    const RunResult result =
        Run({"new", "--date", date, "--line", "1000 debit 100" + worth, "--line", "1001 credit"});
    EXPECT_EQ(result.err, "");
  };
  add("2024-01-05", "USD");
  add("2024-01-19", "USD");
  add("2024-01-20", "USD");
  add("2024-01-20", "USD@0.9");
  const auto line = [&](const char* id) {
    const std::string lines = LinesOf(id);
    return lines.substr(0, lines.find('\n'));
  };
  EXPECT_EQ(line("1"), "1000 debit 50.0000 USD 100.0000 0.5") << "none yet: the currency's";
  EXPECT_EQ(line("2"), "1000 debit 92.0000 USD 100.0000 0.92");
  EXPECT_EQ(line("3"), "1000 debit 93.0000 USD 100.0000 0.93");
  EXPECT_EQ(line("4"), "1000 debit 90.0000 USD 100.0000 0.9");
}

TEST_P(RatesCommand, ALineOfAJournalThatTellsNoForeignAmountHasThatAtTheRateOfItsDay) {
  Init();
  ASSERT_EQ(Run({"rates", "add", "USD", "0.92", "--date", "2024-01-10"}).code, 0);
  ASSERT_EQ(Run({"rates", "add", "JPY", "160", "--date", "2024-01-10"}).code, 0);
  const std::string journal =
      folder.Write("usd.csv", "voucher,date,account,debit,credit,currency,amount_for,rate\n"
                              "a,2024-01-05,1000,92,,USD,,\na,2024-01-05,1001,,92,,,\n"
                              "b,2024-01-15,1000,92,,USD,,\nb,2024-01-15,1001,,92,JPY,,\n"
                              "c,2024-01-15,1000,92,,USD,90,\nc,2024-01-15,1001,,92,,,\n");
  EXPECT_EQ(Run({"import", "--journal", journal}).err, "");
  EXPECT_EQ(LinesOf("1"),
            "1000 debit 92.0000 USD 92.0000 1.0\n1001 credit 92.0000 EUR 92.0000 1.0\n")
      << "one to one where there is no rate yet";
  EXPECT_EQ(LinesOf("2"),
            "1000 debit 92.0000 USD 100.0000 0.92\n1001 credit 92.0000 JPY 14720.0000 160.0\n");
  EXPECT_EQ(LinesOf("3").substr(0, 42), "1000 debit 92.0000 USD 90.0000 1.022222222")
      << "two amounts tell the rate";
}

TEST_P(RatesCommand, AForeignAmountHasMoreDecimalsWhereItsOwnAreTooFew) {
  Init();
  ASSERT_EQ(Run({"add", "currencies", "BTC", "FName=Coin"}).err, "");
  ASSERT_EQ(Run({"rates", "add", "BTC", "60", "--date", "2024-01-10"}).code, 0);
  const std::string journal =
      folder.Write("btc.csv", "voucher,date,account,debit,credit,currency\n"
                              "a,2024-01-15,1000,100.05,,BTC\na,2024-01-15,1001,,100.05,\n");
  EXPECT_EQ(Run({"import", "--journal", journal}).err, "");
  EXPECT_EQ(LinesOf("1").substr(0, 41), "1000 debit 100.0500 BTC 1.6675 60.0\n1001 ");
}

QDCLGL_CLI_TEST(RatesCommand);

}  // namespace
}  // namespace qdclgl::cli::testing
