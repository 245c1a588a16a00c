// Balances as posting keeps them, by period and of whole years, beside those of the lines.
#include "qdclgl/server/vouchers/balance.h"

#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

class BalanceServer : public LedgerTest {
 protected:
  // A sale of this day in a currency that is not the base one, with a quantity.
  Long SaveExport(std::string_view date, Currency amount) {
    return Save(Voucher(
        date, {Line("1000", amount, 0, {{"FCurrencyID", Long{2}}, {"FAmountFor", Currency(3)}}),
               Line("3000", 0, amount, {{"FQuantity", 2.5}})}));
  }

  // The sums of years: account, currency, year, debit, credit, both in the currency, both
  // quantities, a line each; and the last year that is summed.
  std::string Years() {
    std::string text;
    for (const auto& [account, currency, year, debit, credit, debit_for, credit_for, debit_quantity,
                      credit_quantity] :
         Books()
             .Query<std::string, Long, Long, std::int64_t, std::int64_t, std::int64_t, std::int64_t,
                    std::int64_t, std::int64_t>(
                 "SELECT a.FNumber, y.FCurrencyID, y.FYear, y.FDebit / 10000, y.FCredit / 10000,"
                 " y.FDebitFor / 10000, y.FCreditFor / 10000, y.FDebitQty, y.FCreditQty"
                 " FROM t_YearBalance y JOIN t_Account a ON a.FAccountID = y.FAccountID"
                 " ORDER BY 1, 2, 3")) {
      text += account + " " + std::to_string(currency) + " " + std::to_string(year);
      for (const std::int64_t sum :
           {debit, credit, debit_for, credit_for, debit_quantity, credit_quantity}) {
        text += " " + std::to_string(sum);
      }
      text += "\n";
    }
    return text + "until " +
           std::to_string(*Books().QueryValue<Long>("SELECT FSummedYear FROM t_Posted"));
  }

  // That the balances of every span are those of the lines, and that the books are whole.
  void ExpectBalancesOfLines(const std::string& when) {
    EXPECT_EQ(BalanceText(), RecomputedText()) << when;
    for (Long year = 2024; year <= 2028; ++year) {
      EXPECT_EQ(BalanceText(year), RecomputedText(year)) << when << ", " << year;
      EXPECT_EQ(BalanceText(year, 2, 3), RecomputedText(year, 2, 3)) << when << ", " << year;
    }
    EXPECT_EQ(Breaches(), "") << when;
  }
};
QDCLGL_BOOKS_TEST(BalanceServer);

TEST_P(BalanceServer, PostingsOfTheLatestYearAreNotSummedByYear) {
  Step("Post", Save(Sale(100)));
  EXPECT_EQ(Years(), "until 2023");
  Step("Post", Save(Sale(10, "2024-12-31")));
  EXPECT_EQ(Years(), "until 2023");
  ExpectBalancesOfLines("in one year");
}

TEST_P(BalanceServer, AYearIsSummedWhenAnythingIsPostedBehindIt) {
  Step("Post", Save(Sale(100)));
  Step("Post", Save(Sale(20, "2024-11-30")));
  Step("Post", SaveExport("2024-03-01", 7));
  const std::string year =
      "1000 1 2024 120 0 120 0 0 0\n1000 2 2024 7 0 3 0 0 0\n3000 1 2024 0 127 0 127 0 2500000\n";
  Step("Post", Save(Sale(5, "2025-01-01")));
  EXPECT_EQ(Years(), year + "until 2024");
  ExpectBalancesOfLines("behind the year");
  Step("Post", Save(Sale(6, "2025-02-01")));
  EXPECT_EQ(Years(), year + "until 2024");
}

TEST_P(BalanceServer, BelatedPostingsAndUnpostingsMoveTheSumsOfTheirYear) {
  Step("Post", Save(Sale(5, "2026-01-01")));
  EXPECT_EQ(Years(), "until 2025");
  const Long belated = Save(Sale(100)), in_another = SaveExport("2025-06-01", 7);
  Step("Post", belated);
  Step("Post", in_another);
  EXPECT_EQ(Years(), "1000 1 2024 100 0 100 0 0 0\n1000 2 2025 7 0 3 0 0 0\n"
                     "3000 1 2024 0 100 0 100 0 0\n3000 1 2025 0 7 0 7 0 2500000\nuntil 2025");
  ExpectBalancesOfLines("belated");
  Step("UnPost", in_another);
  EXPECT_EQ(Years(), "1000 1 2024 100 0 100 0 0 0\n1000 2 2025 0 0 0 0 0 0\n"
                     "3000 1 2024 0 100 0 100 0 0\n3000 1 2025 0 0 0 0 0 0\nuntil 2025");
  ExpectBalancesOfLines("taken back");
}

TEST_P(BalanceServer, AreThoseOfTheLinesInWhateverOrderYearsArePosted) {
  std::vector<Long> vouchers;
  int amount = 1;
  for (const char* const year : {"2025", "2024", "2027", "2026", "2024", "2027", "2025"}) {
    for (const char* const day : {"-01-01", "-02-29", "-12-31"}) {
      if (std::string_view(day) == "-02-29" && std::string_view(year) != "2024") continue;
      vouchers.push_back(Save(Sale(amount *= 2, std::string(year) + day)));
      Step("Post", vouchers.back());
    }
    ExpectBalancesOfLines(std::string("posted in ") + year);
  }
  while (!vouchers.empty()) {
    Step("UnPost", vouchers.back());
    vouchers.pop_back();
    if (vouchers.size() % 4 == 0) {
      ExpectBalancesOfLines(std::to_string(vouchers.size()) + " left");
    }
  }
  EXPECT_EQ(BalanceText(), "");
}

TEST_P(BalanceServer, AFailedPostingIntoANewYearLeavesTheSumsAsTheyWere) {
  Step("Post", Save(Sale(100)));
  const Long later = Save(Sale(5, "2025-01-01"));
  FailEachStatement([&] { Step("Post", later); }, [&] { return Years(); });
  EXPECT_EQ(Years(), "1000 1 2024 100 0 100 0 0 0\n3000 1 2024 0 100 0 100 0 0\nuntil 2024");
}

TEST_P(BalanceServer, AnAccountWithoutPostingsGoesWithItsSumsOfYears) {
  const Long rent = Save(Voucher("2024-03-01", {Line("4000.01", 40, 0), Line("1000", 0, 40)}));
  Step("Post", rent);
  Step("Post", Save(Sale(5, "2025-01-01")));
  Step("UnPost", rent);
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, rent, true);
  const auto account =
      Books().QueryValue<Long>("SELECT FAccountID FROM t_Account WHERE FNumber = '4000.01'");
  Call("QDSVGLAccount.AccountUpdate", "Delete", props, *account, true);
  EXPECT_EQ(Years(), "1000 1 2024 0 0 0 0 0 0\nuntil 2024");
  ExpectBalancesOfLines("without the account");
}

}  // namespace
}  // namespace qdclgl::server::testing
