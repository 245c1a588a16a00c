#include "qdclgl/server/ledgers/cash_flow.h"

#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

// 1000 is a cash account, 2000 one at a bank.
class CashFlowTest : public LedgerTest {
 protected:
  CashFlowTest() {
    Mark("1000", "FIsCash");
    Mark("2000", "FIsBank");
  }

  void Mark(std::string_view number, std::string_view key, bool is_so = true) {
    const auto row =
        Call("QDSVGLAccount.AccountInfo", "GetDetailByNumber", props, number).As<Dictionary>();
    row->Put(RowKey(key), Variant(Boolean{is_so}));
    Call("QDSVGLAccount.AccountUpdate", "Update", props, row->Value("FAccountID").As<Long>(), row);
  }
  void Post(std::string_view date, std::vector<Ref<Dictionary>> lines) {
    Step("Post", Save(Voucher(date, std::move(lines))));
  }
  std::string Flow(std::string_view from, std::string_view to, bool with_year_before = false) {
    return TextOf(
        Call("QDSVGLCashFlow.CashFlowInfo", "GetCashFlow", props, CDate(Variant(from)),
             CDate(Variant(to)), with_year_before)
            .As<Recordset>(),
        {"FRow", "FCashFlowItem", "FAccountNumber", "FInflow", "FOutflow", "FNet", "FNetBefore"});
  }
};

TEST_P(CashFlowTest, IsByItemsAndOtherwiseByTheAccountsOnTheOtherSide) {
  Post("2024-01-05", {Line("1000", Currency(100), 0), Line("3000", 0, Currency(100))});
  Post("2024-02-05", {Line("1000", Currency(50), 0, {{"FCashFlowItem", Long{7}}}),
                      Line("3000", 0, Currency(50))});
  Post("2024-02-06", {Line("4000.01", Currency(30), 0), Line("4000.02", Currency(12), 0),
                      Line("2000", 0, Currency(42))});
  Post("2024-02-07", {Line("4000.02", Currency(5), 0, {{"FCashFlowItem", Long{9}}}),
                      Line("1000", 0, Currency(5))});
  Post("2024-02-08", {Line("2000", Currency(60), 0), Line("1000", 0, Currency(60))});
  Post("2024-02-09", {Line("4000.01", Currency(1), 0), Line("3000", 0, Currency(1))});
  EXPECT_EQ(Flow("2024-02-01", "2024-02-29"), "Opening 0  100 0 100 0\n"
                                              "Item 7  50 0 50 0\n"
                                              "Item 9  0 5 -5 0\n"
                                              "Account 0 4000.01 0 30 -30 0\n"
                                              "Account 0 4000.02 0 12 -12 0\n"
                                              "Closing 0  103 0 103 0\n")
      << "what goes from cash to the bank is no flow, and what is neither says nothing";
}

TEST_P(CashFlowTest, BesideLinesWithItemsTheOthersAreToldTogether) {
  Post("2024-02-05",
       {Line("1000", Currency(50), 0, {{"FCashFlowItem", Long{7}}}), Line("2000", Currency(8), 0),
        Line("3000", 0, Currency(40)), Line("4000.01", 0, Currency(18))});
  EXPECT_EQ(Flow("2024-02-01", "2024-02-29"), "Opening 0  0 0 0 0\n"
                                              "Item 7  50 0 50 0\n"
                                              "Account 0 3000,4000.01 8 0 8 0\n"
                                              "Closing 0  58 0 58 0\n");
}

TEST_P(CashFlowTest, StandsBesideThatOfTheYearBefore) {
  Post("2024-01-31", {Line("1000", Currency(3), 0), Line("3000", 0, Currency(3))});
  Post("2024-02-29", {Line("1000", Currency(10), 0), Line("3000", 0, Currency(10))});
  Post("2025-02-10", {Line("1000", Currency(20), 0), Line("4000.01", 0, Currency(20))});
  EXPECT_EQ(Flow("2025-02-01", "2025-02-28", true), "Opening 0  13 0 13 3\n"
                                                    "Account 0 4000.01 20 0 20 0\n"
                                                    "Closing 0  33 0 33 3\n");
  EXPECT_EQ(Flow("2025-02-01", "2025-03-01", true), "Opening 0  13 0 13 3\n"
                                                    "Account 0 3000 0 0 0 10\n"
                                                    "Account 0 4000.01 20 0 20 0\n"
                                                    "Closing 0  33 0 33 13\n");
}

TEST_P(CashFlowTest, BeginsAndEndsWithTheBalancesOfTheCashAccounts) {
  unsigned random = 11;
  const char* accounts[] = {"1000", "2000", "3000", "4000.01", "4000.02"};
  for (int i = 0; i < 60; ++i) {
    random = random * 1103515245 + 12345;
    const unsigned number = random >> 8;
    const DateTime day(DateTime::FromYmd(2024, 1, 1).days + number % 366);
    const Currency amount(static_cast<double>(1 + number % 97)),
        part(static_cast<double>(number % 7));
    Post(day.ToText(),
         {Line(accounts[number % 5], amount, 0, {{"FCashFlowItem", Long(number % 3)}}),
          Line(accounts[number / 5 % 5], part, 0, {{"FCashFlowItem", Long(number / 3 % 2)}}),
          Line(accounts[number / 25 % 5], 0, amount + part,
               {{"FCashFlowItem", Long(number / 7 % 2)}})});
  }
  for (int month = 1; month <= 12; ++month) {
    Currency begin, end;
    for (auto rows = Call("QDSVGLBalance.BalanceInfo", "GetList", props, Long{2024}, Long{month},
                          Long{month}, "FCurrencyID = 0 AND FAccountNumber IN ('1000', '2000')")
                         .As<Recordset>();
         !rows->Eof(); rows->MoveNext()) {
      begin += rows->Row()->Value("FBeginBalance").As<Currency>();
      end += rows->Row()->Value("FEndBalance").As<Currency>();
    }
    const auto flow =
        Call("QDSVGLCashFlow.CashFlowInfo", "GetCashFlow", props, DateTime::FromYmd(2024, month, 1),
             DateTime(DateTime::FromYmd(month == 12 ? 2025 : 2024, month % 12 + 1, 1).days - 1))
            .As<Recordset>();
    Currency opening, closing, flows;
    for (; !flow->Eof(); flow->MoveNext()) {
      const Ref<Dictionary> row = flow->Row();
      const String kind = row->Value("FRow").As<String>();
      const auto net = row->Value("FNet").As<Currency>();
      (kind == "Opening" ? opening : kind == "Closing" ? closing : flows) += net;
    }
    EXPECT_EQ(opening, begin) << month;
    EXPECT_EQ(closing, end) << month;
    EXPECT_EQ(opening + flows, closing) << month;
  }
}

TEST_P(CashFlowTest, WithoutCashAccountsThereIsNone) {
  Mark("1000", "FIsCash", false);
  Mark("2000", "FIsBank", false);
  EXPECT_EQ(SentenceOf([&] { Flow("2024-01-01", "2024-01-31"); }),
            "No account is a cash account: set FIsCash or FIsBank of those that are.");
  Mark("2000", "FIsCashFlow");
  EXPECT_EQ(Flow("2024-01-01", "2024-01-31"), "Opening 0  0 0 0 0\nClosing 0  0 0 0 0\n");
}

QDCLGL_BOOKS_TEST(CashFlowTest);

}  // namespace
}  // namespace qdclgl::server::testing
