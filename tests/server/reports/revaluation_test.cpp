// What balances in other currencies are worth at the end of a period.
#include "qdclgl/server/reports/revaluation.h"

#include "qdclgl/server/vouchers/exchange.h"
#include "tests/server/reports/statement_fixture.h"

namespace qdclgl::server::testing {
namespace {

class RevaluationTest : public StatementTest {
 protected:
  RevaluationTest() {
    TellKinds();
    AddAccount("1100", "Dollars", "asset");
    AddAccount("5000", "Differences", "expense");
  }

  Long IdOf(std::string_view number) { return AccountRow(number)->Value("FAccountID").As<Long>(); }
  void AddRate(std::string_view number, DateTime day, Double rate) {
    Call("QDSVGLExchangeRate.ExchangeRateUpdate", "Create", props,
         Row({{"FNumber", number},
              {"FCurrencyID", Long{2}},
              {"FDate", day},
              {"FExchangeRate", rate}}));
  }
  // So many dollars that cost an amount, posted.
  void Buy(std::string_view date, Currency dollars, Currency cost,
           std::string_view account = "1100") {
    Step("Post", Save(Voucher(date, {Line(account, cost, 0,
                                          {{"FCurrencyID", Long{2}}, {"FAmountFor", dollars}}),
                                     Line("1000", 0, cost)})));
  }
  std::string Differences(Long period = 3) {
    return TextOf(
        Call("QDSVGLRevaluation.RevaluationInfo", "GetDifferences", props, Long{2024}, period)
            .As<Recordset>(),
        {"FAccountNumber", "FItems", "FCurrencyNumber", "FAmountFor", "FAmount", "FExchangeRate",
         "FWorth", "FDifference"});
  }
  Ref<Recordset> Fetch(Long period = 3) {
    return Call("QDSVGLRevaluation.RevaluationInfo", "GetRevaluationVouchers", props, Long{2024},
                period, IdOf("5000"))
        .As<Recordset>();
  }
  // Saves and posts them; their ids.
  std::vector<Long> Book(Long period = 3) {
    std::vector<Long> ids;
    for (const Ref<Recordset> rows = Fetch(period); !rows->Eof(); rows->MoveNext()) {
      const Ref<Dictionary> voucher = rows->Row();
      voucher->Put("FGroup", "Receipts");
      ids.push_back(Save(voucher));
      Step("Post", ids.back());
    }
    return ids;
  }
};

TEST_P(RevaluationTest, BalancesComeToWhatTheyAreWorthAtThePeriodsEnd) {
  AddRate("a", DateTime::FromYmd(2024, 3, 31), 0.8);
  AddRate("b", DateTime::FromYmd(2024, 4, 1), 0.5);
  Buy("2024-01-10", Currency(100), Currency(92));
  Buy("2024-03-10", Currency(10), Currency(9));
  Buy("2024-04-10", Currency(7), Currency(7));
  EXPECT_EQ(Differences(), "1100  USD 110 101 0.8 88 -13\n");
  EXPECT_EQ(Book(), std::vector<Long>{4});
  EXPECT_EQ(Differences(), "1100  USD 110 88 0.8 88 0\n");
  EXPECT_EQ(BalanceText(2024, 3, 3).substr(BalanceText(2024, 3, 3).find("5000 0")),
            "5000 0 0 13 0 13\n5000 1 0 13 0 13\n");
  const Ref<Dictionary> voucher = Read(4);
  EXPECT_EQ(voucher->Value("FDate").As<DateTime>(), DateTime::FromYmd(2024, 3, 31));
  EXPECT_EQ(voucher->Value("FInternalInd").As<String>(), "Revaluation");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(RevaluationTest, AGainIsACreditOfTheAccountAndAPeriodWithoutADifferenceHasNoVoucher) {
  AddRate("a", DateTime::FromYmd(2024, 1, 1), 0.92);
  Buy("2024-01-10", Currency(100), Currency(92));
  EXPECT_TRUE(Fetch()->Eof());
  AddRate("b", DateTime::FromYmd(2024, 3, 1), 1.0);
  Book();
  EXPECT_EQ(Differences(), "1100  USD 100 100 1 100 0\n");
  EXPECT_EQ(BalanceText(2024, 3, 3).substr(BalanceText(2024, 3, 3).find("5000 0")),
            "5000 0 0 0 8 -8\n5000 1 0 0 8 -8\n");
}

TEST_P(RevaluationTest, WhatIsDoneAlreadyIsRefusedAndNamed) {
  AddRate("a", DateTime::FromYmd(2024, 1, 1), 0.5);
  Buy("2024-01-10", Currency(100), Currency(92));
  const Long id = Book().at(0);
  Buy("2024-03-11", Currency(1), Currency(1));
  const std::string refused = "8004422B: Voucher 2024/3 Receipts 1 (id " + std::to_string(id) +
                              ") revalues 2024/3 already; take it out of the books to do it again.";
  EXPECT_EQ(ErrorText([&] { Fetch(); }), refused);
  EXPECT_FALSE(Fetch(4)->Eof()) << "another period";
  Step("UnPost", id);
  EXPECT_EQ(ErrorText([&] { Fetch(); }), refused) << "one that is not posted too";
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, id);
  EXPECT_FALSE(Fetch()->Eof());
}

TEST_P(RevaluationTest, IncomeExpenseAndEquityKeepTheirWorth) {
  AddRate("a", DateTime::FromYmd(2024, 1, 1), 0.5);
  AddAccount("6000", "Capital", "equity");
  AddAccount("7000", "Debts", "liability");
  AddAccount("8000", "Of no kind", "");
  for (const char* account : {"3000", "4000.01", "6000", "7000", "8000"}) {
    Buy("2024-01-10", Currency(10), Currency(9), account);
  }
  EXPECT_EQ(Differences(), "7000  USD 10 9 0.5 5 -4\n8000  USD 10 9 0.5 5 -4\n");
}

TEST_P(RevaluationTest, ACurrencyWithoutARateIsNamed) {
  AddRate("a", DateTime::FromYmd(2024, 4, 1), 0.5);
  EXPECT_EQ(Differences(), "") << "no balance, no rate";
  Buy("2024-01-10", Currency(10), Currency(9));
  const std::string refused =
      "80044213: There is no exchange rate of USD for 2024-03-31 or before.";
  EXPECT_EQ(ErrorText([&] { Differences(); }), refused);
  EXPECT_EQ(ErrorText([&] { Fetch(); }), refused);
}

TEST_P(RevaluationTest, ACurrencyThatDividesIsDivided) {
  Call("QDSVGLCurrency.CurrencyUpdate", "Create", props,
       Row({{"FNumber", "JPY"}, {"FName", "Yen"}, {"FOperator", "/"}}));
  Call("QDSVGLExchangeRate.ExchangeRateUpdate", "Create", props,
       Row({{"FNumber", "y"}, {"FCurrencyID", Long{3}}, {"FExchangeRate", 160.0}}));
  Step("Post",
       Save(Voucher("2024-01-10", {Line("1100", Currency(9), 0,
                                        {{"FCurrencyID", Long{3}}, {"FAmountFor", Currency(1600)}}),
                                   Line("1000", 0, Currency(9))})));
  EXPECT_EQ(Differences(), "1100  JPY 1600 9 160 10 1\n");
}

TEST_P(RevaluationTest, BalancesByItemsAreRevaluedEachForItself) {
  AddRate("a", DateTime::FromYmd(2024, 1, 1), 0.5);
  Call("QDSVGLItems.ItemUpdate", "Create", props,
       Row({{"FItemClassID", Long{1}}, {"FNumber", "SALES"}, {"FName", "Sales"}}));
  Call("QDSVGLItems.ItemUpdate", "Create", props,
       Row({{"FItemClassID", Long{1}}, {"FNumber", "SHOP"}, {"FName", "Shop"}}));
  auto classes = Make<Vector>();
  classes->Append(Variant(Row({{"FItemClassID", Long{1}}})));
  Call("QDSVGLAccount.AccountUpdate", "Create", props,
       Row({{"FNumber", "1200"}, {"FName", "By items"}, {"FKind", "asset"}, {"_Items", classes}}));
  for (const Long item : {1, 2}) {
    auto details = Make<Vector>();
    details->Append(Variant(Row({{"FItemClassID", Long{1}}, {"FItemID", item}})));
    Step("Post", Save(Voucher("2024-01-10", {Line("1200", Currency(9), 0,
                                                  {{"FCurrencyID", Long{2}},
                                                   {"FAmountFor", Currency(10 * item)},
                                                   {"_Details", Variant(details)}}),
                                             Line("1000", 0, Currency(9))})));
  }
  EXPECT_EQ(Differences(), "1200 SALES USD 10 9 0.5 5 -4\n1200 SHOP USD 20 9 0.5 10 1\n");
  Book();
  EXPECT_EQ(Differences(), "1200 SALES USD 10 5 0.5 5 0\n1200 SHOP USD 20 10 0.5 10 0\n");
  EXPECT_EQ(Breaches(), "");
}

TEST(WorthOfForeignAmounts, IsExactInTheBaseCurrencysDecimals) {
  const auto worth = [](std::int64_t units, Double rate, Exchange exchange) {
    return WorthOf(Currency::FromUnits(units), rate, exchange).ToText();
  };
  EXPECT_EQ(worth(1000000, 0.92, {}), "92");
  EXPECT_EQ(worth(11500, 1.1, {}), "1.26") << "1.265 goes to the even one";
  EXPECT_EQ(worth(10000003500, 0.7, {}), "700000.24");
  EXPECT_EQ(worth(-333300, 3, {true, 2}), "-11.11");
  EXPECT_EQ(worth(1000000, 0.123456, {false, 4}), "12.3456");
  EXPECT_EQ(worth(1000000, 0.129, {false, 0}), "13");
}

QDCLGL_BOOKS_TEST(RevaluationTest);

}  // namespace
}  // namespace qdclgl::server::testing
