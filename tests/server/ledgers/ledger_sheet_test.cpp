#include "qdclgl/server/ledgers/ledger_sheet.h"

#include "tests/server/ledger_fixture.h"
#include "tests/server/query_plan.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLMCLedger.MultiColumnLedgerInfo";
constexpr const char* kUpdate = "QDSVGLMCLedger.MColLedgerUpdate";

class LedgerSheetTest : public LedgerTest {
 protected:
  Long AccountId(std::string_view number) {
    return Call("QDSVGLAccount.AccountInfo", "GetDetailByNumber", props, number)
        .As<Dictionary>()
        ->Value("FAccountID")
        .As<Long>();
  }

  // A ledger of an account with a column for each "NUMBER" (debit) or "-NUMBER" (credit).
  Long Ledger(std::string_view account, std::vector<std::string> columns,
              std::vector<Long> currencies = {}) {
    auto column_rows = Make<Vector>(), sub_rows = Make<Vector>();
    for (const std::string& column : columns) {
      const bool credit = column.front() == '-';
      column_rows->Append(Variant(Row({{"FAccountID", AccountId(column.substr(credit ? 1 : 0))},
                                       {"FDC", Long{credit ? 0 : 1}}})));
    }
    for (const Long currency : currencies) {
      sub_rows->Append(Variant(Row({{"FCurrencyID", currency}})));
    }
    return Call(kUpdate, "Create", props,
                Row({{"FLedgerName", "L" + std::to_string(++ledgers_)},
                     {"FAccountID", AccountId(account)},
                     {"_Columns", Variant(column_rows)},
                     {"_SubColumns", Variant(sub_rows)}}))
        .As<Long>();
  }

  void Post(std::string_view date, std::vector<Ref<Dictionary>> lines) {
    Step("Post", Save(Voucher(date, std::move(lines))));
  }

  Ref<Recordset> Sheet(Long ledger, std::string_view from = "", std::string_view to = "") {
    const auto day = [](std::string_view text) {
      return text.empty() ? DateTime() : CDate(Variant(text));
    };
    return Call(kInfo, "GetLedger", props, ledger, day(from), day(to)).As<Recordset>();
  }
  // The figures of each row: "Line 2024-01-05 4000.01: 10 0 = 1 10 | 10 0".
  std::string Text(const Ref<Recordset>& sheet) {
    std::string text;
    for (; !sheet->Eof(); sheet->MoveNext()) {
      const Ref<Dictionary> row = sheet->Row();
      text += CStr(row->Value("FRow")) + " " + row->Value("FDate").As<DateTime>().ToText();
      const String account = row->Value("FAccountNumber").As<String>();
      if (!account.empty()) text += " " + account;
      text += ":";
      for (std::uint32_t i = 10; i < row->size(); ++i) {
        if (i == 12) text += " =";
        if (i == 14) text += " |";
        text += " " + ValueText(row->value_at(i));
      }
      text += "\n";
    }
    return text;
  }

 private:
  int ledgers_ = 0;
};

TEST_P(LedgerSheetTest, ALineHasItsVoucherItsBalanceAndItsColumn) {
  Post("2024-01-05", {Line("4000.01", Currency(10), 0, {{"FExplanation", "Rent of January"}}),
                      Line("1000", 0, Currency(10))});
  Post("2024-01-04", {Line("4000.02", Currency(7), 0), Line("4000.01", 0, Currency(2)),
                      Line("1000", 0, Currency(5))});
  const auto sheet =
      Sheet(Ledger("4000", {"4000.01", "4000.02", "-4000.01"}), "2024-01-01", "2024-01-31");
  EXPECT_EQ(Text(sheet), "Opening 2024-01-01: 0 0 = 0 0 | 0 0 0\n"
                         "Line 2024-01-04 4000.02: 7 0 = 1 7 | 0 7 0\n"
                         "Line 2024-01-04 4000.01: 0 2 = 1 5 | 0 0 2\n"
                         "Line 2024-01-05 4000.01: 10 0 = 1 15 | 10 0 0\n"
                         "Period 2024-01-31: 17 2 = 1 15 | 10 7 2\n"
                         "Year 2024-01-31: 17 2 = 1 15 | 10 7 2\n"
                         "Closing 2024-01-31: 17 2 = 1 15 | 10 7 2\n");
  sheet->MoveFirst();
  for (int i = 0; i < 3; ++i) sheet->MoveNext();
  EXPECT_EQ(TextOf(*sheet->Row()).substr(0, TextOf(*sheet->Row()).find("FDebit")),
            TextOf(*Row({{"FRow", "Line"},
                         {"FDate", DateTime::FromYmd(2024, 1, 5)},
                         {"FYear", Long{2024}},
                         {"FPeriod", Long{1}},
                         {"FVoucherID", Long{1}},
                         {"FEntryID", Long{1}},
                         {"FGroup", "Receipts"},
                         {"FNumber", Long{1}},
                         {"FAccountNumber", "4000.01"},
                         {"FExplanation", "Rent of January"}})));
}

TEST_P(LedgerSheetTest, WhatIsNotPostedOrIsOfOtherAccountsIsNotShown) {
  Save(Voucher("2024-01-05", {Line("4000.01", Currency(10), 0), Line("1000", 0, Currency(10))}));
  Post("2024-01-06", {Line("2000", Currency(3), 0), Line("1000", 0, Currency(3))});
  EXPECT_EQ(Text(Sheet(Ledger("4000", {"4000.01"}))), "Opening 2024-01-01: 0 0 = 0 0 | 0\n"
                                                      "Closing 2024-12-31: 0 0 = 0 0 | 0\n");
}

TEST_P(LedgerSheetTest, PeriodsYearsAndWhatWentBeforeHaveTheirSums) {
  const auto rent = [&](std::string_view date, Currency amount) {
    Post(date, {Line("4000.01", amount, 0), Line("1000", 0, amount)});
  };
  rent("2024-01-31", Currency(1));
  rent("2024-03-10", Currency(2));
  rent("2024-03-20", Currency(4));
  rent("2024-12-31", Currency(8));
  rent("2025-01-01", Currency(16));
  rent("2025-02-01", Currency(32));
  const Long ledger = Ledger("4000.01", {"4000.01"});
  EXPECT_EQ(Text(Sheet(ledger, "2024-03-15", "2025-01-31")),
            "Opening 2024-03-15: 0 0 = 1 3 | 0\n"
            "Line 2024-03-20 4000.01: 4 0 = 1 7 | 4\n"
            "Period 2024-03-31: 4 0 = 1 7 | 4\n"
            "Year 2024-03-31: 7 0 = 1 7 | 7\n"
            "Line 2024-12-31 4000.01: 8 0 = 1 15 | 8\n"
            "Period 2024-12-31: 8 0 = 1 15 | 8\n"
            "Year 2024-12-31: 15 0 = 1 15 | 15\n"
            "Line 2025-01-01 4000.01: 16 0 = 1 31 | 16\n"
            "Period 2025-01-31: 16 0 = 1 31 | 16\n"
            "Year 2025-01-31: 16 0 = 1 31 | 16\n"
            "Closing 2025-01-31: 28 0 = 1 31 | 28\n");
  EXPECT_EQ(Text(Sheet(ledger, "2025-02-01", "2025-02-01")),
            "Opening 2025-02-01: 0 0 = 1 31 | 0\n"
            "Line 2025-02-01 4000.01: 32 0 = 1 63 | 32\n"
            "Period 2025-02-01: 32 0 = 1 63 | 32\n"
            "Year 2025-02-01: 48 0 = 1 63 | 48\n"
            "Closing 2025-02-01: 32 0 = 1 63 | 32\n");
  EXPECT_EQ(Text(Sheet(ledger, "2025-02-01 13:00:00", "2025-02-01 01:00:00")),
            Text(Sheet(ledger, "2025-02-01", "2025-02-01")))
      << "days count, whatever their time";
  EXPECT_EQ(Text(Sheet(ledger, "2024-03-31", "2024-03-31")), "Opening 2024-03-31: 0 0 = 1 7 | 0\n"
                                                             "Closing 2024-03-31: 0 0 = 1 7 | 0\n");
}

TEST_P(LedgerSheetTest, WithoutDaysItIsTheCurrentYear) {
  Post("2024-06-01", {Line("1000", Currency(1), 0), Line("3000", 0, Currency(1))});
  Post("2025-06-01", {Line("1000", Currency(2), 0), Line("3000", 0, Currency(2))});
  const Long ledger = Ledger("3000", {});
  EXPECT_EQ(Text(Sheet(ledger)), "Opening 2024-01-01: 0 0 = 0 0\n"
                                 "Line 2024-06-01 3000: 0 1 = -1 1\n"
                                 "Period 2024-06-30: 0 1 = -1 1\n"
                                 "Year 2024-06-30: 0 1 = -1 1\n"
                                 "Closing 2024-12-31: 0 1 = -1 1\n");
  EXPECT_EQ(Sheet(ledger, "2025-01-01")->RecordCount(), 5);
}

TEST_P(LedgerSheetTest, OtherAccountsOfAVoucherCountOnceInItsFirstRow) {
  // Two lines on the bank, for rent, wages and red ink on the sales.
  Post("2024-01-05", {Line("2000", 0, Currency(6)), Line("4000.01", Currency(5), 0),
                      Line("4000.02", Currency(3), 0), Line("3000", 0, Currency(-2)),
                      Line("2000", 0, Currency(4)), Line("2000", 0, 0)});
  Post("2024-01-06", {Line("2000", 0, Currency(1)), Line("4000.01", Currency(1), 0)});
  EXPECT_EQ(Text(Sheet(Ledger("2000", {"4000", "4000.01", "-3000", "-2000"}), "2024-01-01",
                       "2024-01-05")),
            "Opening 2024-01-01: 0 0 = 0 0 | 0 0 0 0\n"
            "Line 2024-01-05 2000: 0 6 = -1 6 | 8 5 -2 6\n"
            "Line 2024-01-05 2000: 0 4 = -1 10 | 0 0 0 4\n"
            "Line 2024-01-05 2000: 0 0 = -1 10 | 0 0 0 0\n"
            "Period 2024-01-05: 0 10 = -1 10 | 8 5 -2 10\n"
            "Year 2024-01-05: 0 10 = -1 10 | 8 5 -2 10\n"
            "Closing 2024-01-05: 0 10 = -1 10 | 8 5 -2 10\n");
}

TEST_P(LedgerSheetTest, SubColumnsHaveTheAmountsInTheirCurrencyAndTheRate) {
  Post("2024-01-05",
       {Line("4000.01", Currency(10), 0,
             {{"FCurrencyID", Long{2}}, {"FAmountFor", Currency(20)}, {"FExchangeRate", 0.5}}),
        Line("4000.02", Currency(4), 0), Line("1000", 0, Currency(14))});
  EXPECT_EQ(Text(Sheet(Ledger("4000", {"4000.01", "4000.02"}, {2, 1}), "2024-01-01", "2024-01-31")),
            "Opening 2024-01-01: 0 0 = 0 0 | 0 0  0 0  0 0 0 0 0 0\n"
            "Line 2024-01-05 4000.01: 10 0 = 1 10 | 20 0 0.5 0 0  10 20 0 0 0 0\n"
            "Line 2024-01-05 4000.02: 4 0 = 1 14 | 0 0  4 0 0 0 0 0 4 0 4\n"
            "Period 2024-01-31: 14 0 = 1 14 | 20 0  4 0  10 20 0 4 0 4\n"
            "Year 2024-01-31: 14 0 = 1 14 | 20 0  4 0  10 20 0 4 0 4\n"
            "Closing 2024-01-31: 14 0 = 1 14 | 20 0  4 0  10 20 0 4 0 4\n");
}

TEST_P(LedgerSheetTest, LinesGoByDayGroupAndNumber) {
  const auto sale = [&](std::string_view date, Long group, Long number) {
    Step("Post", Save(Voucher(date, {Line("1000", Currency(1), 0), Line("3000", 0, Currency(1))},
                              {{"FGroupID", group}, {"FNumber", number}})));
  };
  sale("2024-01-02", 1, 9);
  sale("2024-01-02", 2, 8);
  sale("2024-01-02", 1, 3);
  sale("2024-01-01", 1, 20);
  const auto sheet = Sheet(Ledger("3000", {}));
  std::string order;
  for (; !sheet->Eof(); sheet->MoveNext()) {
    const Ref<Dictionary> row = sheet->Row();
    if (CStr(row->Value("FRow")) != "Line") continue;
    order += CStr(row->Value("FGroup")) + CStr(row->Value("FNumber")) + " ";
  }
  EXPECT_EQ(order, "Receipts20 Payments8 Receipts3 Receipts9 ");
}

TEST_P(LedgerSheetTest, BalancesAndColumnsAgreeWithTheBalancesOfTheBooks) {
  for (int month = 1; month <= 12; ++month) {
    const std::string date =
        "2024-" + std::string(month < 10 ? "0" : "") + std::to_string(month) + "-15";
    Post(date, {Line("4000.01", Currency(month), 0), Line("4000.02", Currency(3 * month), 0),
                Line("4000.01", 0, Currency(1)), Line("1000", 0, Currency(4 * month - 1))});
  }
  const Long ledger = Ledger("4000", {"4000.01", "-4000.01", "4000.02"});
  for (const auto& [from, to] : {std::pair(1, 12), std::pair(3, 7), std::pair(12, 12)}) {
    const auto balance = [&, from = from, to = to](std::string_view number) {
      return Call("QDSVGLBalance.BalanceInfo", "GetList", props, Long{2024}, Long{from}, Long{to},
                  "FCurrencyID = 0 AND FAccountNumber = '" + std::string(number) + "'")
          .As<Recordset>()
          ->Row();
    };
    const auto two = [](int number) {
      return std::string(number < 10 ? "0" : "") + std::to_string(number);
    };
    const auto sheet = Sheet(ledger, "2024-" + two(from) + "-01", "2024-" + two(to) + "-28");
    EXPECT_EQ(ValueText(sheet->FieldValue(sheet->FieldPosition("FBalance"))),
              ValueText(balance("4000")->Value("FBeginBalance")));
    Ref<Dictionary> last;
    for (; !sheet->Eof(); sheet->MoveNext()) last = sheet->Row();
    const auto costs = balance("4000"), rent = balance("4000.01"), wages = balance("4000.02");
    const std::pair<const char*, Variant> expected[] = {
        {"FDebit", costs->Value("FDebit")},        {"FCredit", costs->Value("FCredit")},
        {"FBalance", costs->Value("FEndBalance")}, {"FColumn1", rent->Value("FDebit")},
        {"FColumn2", rent->Value("FCredit")},      {"FColumn3", wages->Value("FDebit")}};
    for (const auto& [field, value] : expected) {
      EXPECT_EQ(ValueText(last->Value(field)), ValueText(value)) << field << " " << from;
    }
  }
}

TEST_P(LedgerSheetTest, WhatCanNotBeToldIsRefused) {
  const Long ledger = Ledger("4000", {});
  EXPECT_EQ(RefusalOf([&] { Sheet(99); }), "NotFound");
  EXPECT_EQ(RefusalOf([&] { Sheet(ledger, "2024-02-01", "2024-01-31"); }), "BadValue");
  EXPECT_EQ(SentenceOf([&] { Sheet(ledger, "2024-02-01", "2024-01-31"); }),
            "Days go forward, not from 2024-02-01 to 2024-01-31.");
}

// The lines are found by account and by the ids of the vouchers of those years, and by nothing
// else: what the books hold besides is not looked at.
TEST_P(LedgerSheetTest, OnlyTheAccountsOwnLinesAreRead) {
  const Long ledger = Ledger("4000", {"4000.01", "1000"});
  std::vector<std::string> queries;
  Database::SetStatementHook([&](std::string_view sql) { queries.emplace_back(sql); });
  Sheet(ledger);
  Database::SetStatementHook(nullptr);
  const bool is_sqlite = Books().IsSQLite();
  int of_lines = 0, of_years = 0;
  for (const std::string& sql : queries) {
    const bool reads_lines = sql.find("t_VoucherEntry") != sql.npos;
    if (!reads_lines && sql.find("t_Voucher ") == sql.npos) continue;
    ++(reads_lines ? of_lines : of_years);
    const std::string plan = PlanOf(Books(), sql);
    const auto shows = [&](std::string_view part) { return plan.find(part) != plan.npos; };
    if (reads_lines) {
      EXPECT_TRUE(shows(is_sqlite ? "INDEX t_VoucherEntry_Account (FAccountID=? AND FVoucherID>? "
                                    "AND FVoucherID<?)"
                                  : "using t_voucherentry_account on t_voucherentry"))
          << plan;
    } else {
      EXPECT_TRUE(shows(is_sqlite ? "INDEX t_Voucher_Year (FYear=?)" : "using t_voucher_year"))
          << plan;
    }
    for (const char* scan : {"SCAN e", "SCAN v", "SCAN t_Voucher", "Seq Scan on t_voucher"}) {
      EXPECT_FALSE(shows(scan)) << plan;
    }
  }
  EXPECT_EQ(of_lines, 2);
  EXPECT_EQ(of_years, 1);
}

QDCLGL_BOOKS_TEST(LedgerSheetTest);

}  // namespace
}  // namespace qdclgl::server::testing
