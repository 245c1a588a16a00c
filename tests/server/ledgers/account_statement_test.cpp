#include "qdclgl/server/ledgers/account_statement.h"

#include <map>

#include "tests/server/ledger_fixture.h"
#include "tests/server/query_plan.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLStatement.StatementInfo";
constexpr const char* kAccounts = "QDSVGLAccount.AccountUpdate";

DateTime Day(std::string_view text) { return text.empty() ? DateTime() : CDate(Variant(text)); }

class AccountStatementTest : public LedgerTest {
 protected:
  Long Post(std::string_view date, std::vector<Ref<Dictionary>> lines) {
    const Long id = Save(Voucher(date, std::move(lines)));
    Step("Post", id);
    return id;
  }
  Long Rent(std::string_view date, Currency amount, Cells more = {}) {
    return Post(date, {Line("4000.01", amount, 0, more), Line("1000", 0, amount)});
  }

  template <class... More>
  Ref<Recordset> Statement(std::string_view account, std::string_view from = "",
                           std::string_view to = "", More... more) {
    return Call(kInfo, "GetStatement", props, account, Day(from), Day(to), more...)
        .template As<Recordset>();
  }
  template <class... More>
  Ref<Recordset> Periods(std::string_view account, std::string_view from = "",
                         std::string_view to = "", More... more) {
    return Call(kInfo, "GetPeriods", props, account, Day(from), Day(to), more...)
        .template As<Recordset>();
  }
  static std::string Figures(const Ref<Recordset>& rows) {
    return TextOf(rows, {"FRow", "FDate", "FBeginBalance", "FDebit", "FCredit", "FBalance"});
  }

  // Account 1130 asks for customers, and so does 1140.01, below 1140 that doesn't.
  void AddCustomers() {
    const auto customers = [] {
      auto list = Make<Vector>();
      list->Append(Variant(Row({{"FItemClassID", Long{3}}})));
      return list;
    };
    for (const char* number : {"1130", "1140", "1140.01"}) {
      const Ref<Dictionary> account = Row({{"FNumber", number}, {"FName", number}});
      if (number != std::string_view("1140")) account->Put("_Items", Variant(customers()));
      Call(kAccounts, "Create", props, account);
    }
    for (const auto& [number, name] :
         {std::pair("C002", "Bert"), std::pair("C001", "Anna"), std::pair("C003", "Carl")}) {
      Call("QDSVGLItem.ItemUpdate", "Create", props, Long{3},
           Row({{"FItemClassID", Long{3}}, {"FNumber", number}, {"FName", name}}));
    }
  }
  static Ref<Dictionary> For(std::string_view customer, const Ref<Dictionary>& line) {
    auto details = Make<Vector>();
    details->Append(Variant(Row({{"FItemClassNumber", "CUSTOMER"}, {"FItemNumber", customer}})));
    line->Put("_Details", Variant(details));
    return line;
  }
};

TEST_P(AccountStatementTest, ALineHasItsVoucherTheOtherSideAndTheBalanceBehindIt) {
  const Long second =
      Post("2024-02-05", {Line("4000.02", Currency(7), 0), Line("4000.01", Currency(2), 0),
                          Line("1000", 0, Currency(9))});
  const Long first =
      Rent("2024-02-04", Currency(10), {{"FExplanation", "Rent of February"}, {"FTransNo", "R-2"}});
  const Ref<Recordset> cash = Statement("1000", "2024-02-01", "2024-02-29");
  EXPECT_EQ(TextOf(cash, {"FRow", "FDate", "FVoucherID", "FEntryID", "FContra", "FDebit", "FCredit",
                          "FBalance"}),
            "Opening 2024-02-01 0 0  0 0 0\n"
            "Line 2024-02-04 " +
                std::to_string(first) +
                " 2 4000.01 0 10 -10\n"
                "Line 2024-02-05 " +
                std::to_string(second) +
                " 3 4000.01,4000.02 0 9 -19\n"
                "Closing 2024-02-29 0 0  0 19 -19\n");
  const Ref<Recordset> rent = Statement("4000.01", "2024-02-01", "2024-02-29");
  rent->MoveNext();
  EXPECT_EQ(TextOf(*rent->Row()), TextOf(*Row({{"FRow", "Line"},
                                               {"FItemNumber", ""},
                                               {"FItemName", ""},
                                               {"FDate", DateTime::FromYmd(2024, 2, 4)},
                                               {"FYear", Long{2024}},
                                               {"FPeriod", Long{2}},
                                               {"FVoucherID", first},
                                               {"FEntryID", Long{1}},
                                               {"FGroup", "Receipts"},
                                               {"FNumber", Long{2}},
                                               {"FPosted", true},
                                               {"FAccountNumber", "4000.01"},
                                               {"FContra", "1000"},
                                               {"FExplanation", "Rent of February"},
                                               {"FTransNo", "R-2"},
                                               {"FBeginBalance", Currency(0)},
                                               {"FDebit", Currency(10)},
                                               {"FCredit", Currency(0)},
                                               {"FBalance", Currency(10)},
                                               {"FCurrencyNumber", "EUR"},
                                               {"FExchangeRate", 0.0},
                                               {"FDebitFor", Currency(10)},
                                               {"FCreditFor", Currency(0)},
                                               {"FBalanceFor", Currency(10)}})));
}

TEST_P(AccountStatementTest, ANegativeAmountStandsOnTheOtherSideForContraAccounts) {
  Post("2024-01-05", {Line("4000.01", Currency(-3), 0), Line("1000", 0, Currency(-3))});
  const Ref<Recordset> rows = Statement("4000.01");
  EXPECT_EQ(TextOf(rows, {"FRow", "FContra", "FDebit"}), "Opening  0\nLine 1000 -3\nClosing  -3\n");
}

TEST_P(AccountStatementTest, AHeadingHasTheLinesOfAllBelowIt) {
  Rent("2024-01-05", Currency(1));
  Post("2024-01-06", {Line("4000.02", Currency(2), 0), Line("1000", 0, Currency(2))});
  EXPECT_EQ(TextOf(Statement("4000"), {"FRow", "FAccountNumber", "FBalance"}),
            "Opening  0\nLine 4000.01 1\nLine 4000.02 3\nClosing  3\n");
}

TEST_P(AccountStatementTest, WhatWentBeforeIsTheOpeningWhereverTheDaysBegin) {
  Rent("2024-12-31", Currency(8));
  Rent("2024-03-20", Currency(4));
  Rent("2024-01-31", Currency(1));
  Rent("2024-03-10", Currency(2));
  Rent("2025-01-01", Currency(16));
  EXPECT_EQ(Figures(Statement("4000.01", "2024-03-15", "2025-01-01")),
            "Opening 2024-03-15 3 0 0 3\n"
            "Line 2024-03-20 3 4 0 7\n"
            "Line 2024-12-31 7 8 0 15\n"
            "Line 2025-01-01 15 16 0 31\n"
            "Closing 2025-01-01 3 28 0 31\n");
  EXPECT_EQ(Figures(Statement("4000.01", "2024-03-01", "2024-03-10")),
            "Opening 2024-03-01 1 0 0 1\nLine 2024-03-10 1 2 0 3\nClosing 2024-03-10 1 2 0 3\n");
  EXPECT_EQ(Figures(Statement("4000.01", "2024-02-01", "2024-02-29")),
            "Opening 2024-02-01 1 0 0 1\nClosing 2024-02-29 1 0 0 1\n");
}

TEST_P(AccountStatementTest, WhatIsNotPostedIsShownWhereThatIsAskedFor) {
  Rent("2024-01-31", Currency(1));
  Save(Voucher("2024-01-10", {Line("4000.01", Currency(2), 0), Line("1000", 0, Currency(2))}));
  const Long open =
      Save(Voucher("2024-02-10", {Line("4000.01", Currency(4), 0), Line("1000", 0, Currency(4))}));
  Long deleted =
      Save(Voucher("2024-02-11", {Line("4000.01", Currency(8), 0), Line("1000", 0, Currency(8))}));
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, ByRef(deleted), false, "", "");
  const auto rows = [&](bool with_unposted) {
    return TextOf(Statement("4000.01", "2024-02-01", "2024-02-29", with_unposted),
                  {"FRow", "FPosted", "FBalance"});
  };
  EXPECT_EQ(rows(false), "Opening True 1\nClosing True 1\n");
  EXPECT_EQ(rows(true), "Opening True 3\nLine False 7\nClosing True 7\n");
  EXPECT_EQ(Figures(Periods("4000.01", "2024-01-15", "2024-02-10", true)),
            "Opening 2024-01-15 2 0 0 2\nPeriod 2024-01-31 2 1 0 3\nPeriod 2024-02-10 3 4 0 7\n"
            "Closing 2024-02-10 2 5 0 7\n");
  Step("Post", open);
  EXPECT_EQ(rows(false), "Opening True 1\nLine True 5\nClosing True 5\n");
  Step("UnPost", open);
  EXPECT_EQ(rows(false), "Opening True 1\nClosing True 1\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(AccountStatementTest, AmountsInOtherCurrenciesStandBesideThoseThatTheyAreWorth) {
  Post("2024-01-05",
       {Line("2000", Currency(110), 0,
             {{"FCurrencyID", Long{2}}, {"FAmountFor", Currency(100)}, {"FExchangeRate", 1.1}}),
        Line("1000", 0, Currency(110))});
  Post("2024-02-05",
       {Line("1000", Currency(55), 0),
        Line("2000", 0, Currency(55),
             {{"FCurrencyID", Long{2}}, {"FAmountFor", Currency(50)}, {"FExchangeRate", 1.1}})});
  const auto rows = [&](std::string_view from) {
    return TextOf(Statement("2000", from, "2024-02-29"),
                  {"FRow", "FCurrencyNumber", "FExchangeRate", "FDebitFor", "FCreditFor",
                   "FBalanceFor", "FBalance"});
  };
  EXPECT_EQ(rows("2024-02-01"), "Opening USD 0 0 0 100 110\n"
                                "Line USD 1.1 0 50 50 55\n"
                                "Closing USD 0 0 50 50 55\n");
  Post("2024-02-07", {Line("2000", Currency(5), 0), Line("1000", 0, Currency(5))});
  EXPECT_EQ(rows("2024-02-01"), "Opening USD 0 0 0 100 110\n"
                                "Line USD 1.1 0 50 50 55\n"
                                "Line EUR 0 5 0 5 60\n"
                                "Closing  0 0 0 0 60\n")
      << "several currencies have no sum but the base currency's";
}

TEST_P(AccountStatementTest, GoesItemByItemOrIsOfOneItem) {
  AddCustomers();
  const auto sold = [&](std::string_view date, std::string_view account, std::string_view customer,
                        Currency amount) {
    Post(date, {For(customer, Line(account, amount, 0)), Line("3000", 0, amount)});
  };
  sold("2024-01-05", "1130", "C002", Currency(1));
  sold("2024-02-05", "1130", "C001", Currency(2));
  sold("2024-02-06", "1130", "C002", Currency(4));
  sold("2024-02-07", "1140.01", "C001", Currency(8));
  const auto rows = [](const Ref<Recordset>& list) {
    return TextOf(list,
                  {"FRow", "FItemNumber", "FItemName", "FBeginBalance", "FDebit", "FBalance"});
  };
  EXPECT_EQ(rows(Statement("1130", "2024-02-01", "2024-02-29", false, "CUSTOMER")),
            "Opening C001 Anna 0 0 0\n"
            "Line C001 Anna 0 2 2\n"
            "Closing C001 Anna 0 2 2\n"
            "Opening C002 Bert 1 0 1\n"
            "Line C002 Bert 1 4 5\n"
            "Closing C002 Bert 1 4 5\n"
            "Total   1 6 7\n");
  EXPECT_EQ(rows(Statement("1130", "2024-02-01", "2024-02-29", false, "customer", "c002")),
            "Opening C002 Bert 1 0 1\nLine C002 Bert 1 4 5\nClosing C002 Bert 1 4 5\n");
  EXPECT_EQ(rows(Periods("1130", "2024-01-01", "2024-02-29", false, "CUSTOMER", "C002")),
            "Opening C002 Bert 0 0 0\nPeriod C002 Bert 0 1 1\nPeriod C002 Bert 1 4 5\n"
            "Closing C002 Bert 0 5 5\n");
  EXPECT_EQ(rows(Statement("1140", "", "", false, "CUSTOMER")),
            "Opening C001 Anna 0 0 0\nLine C001 Anna 0 8 8\nClosing C001 Anna 0 8 8\n"
            "Total   0 8 8\n");
  EXPECT_EQ(rows(Statement("1130", "2024-02-01", "2024-02-29", false, "CUSTOMER", "C003")),
            "Opening C003 Carl 0 0 0\nClosing C003 Carl 0 0 0\n");
}

TEST_P(AccountStatementTest, WhatCanNotBeToldIsRefused) {
  AddCustomers();
  const auto outcome = [&](auto... arguments) {
    const auto call = [&] { Statement(arguments...); };
    return RefusalOf(call) + ": " + SentenceOf(call);
  };
  EXPECT_EQ(outcome("9"), "NotFound: There is no account \"9\".");
  EXPECT_EQ(outcome("1000", "2024-02-01", "2024-01-31"),
            "BadValue: Days go forward, not from 2024-02-01 to 2024-01-31.");
  EXPECT_EQ(outcome("1130", "", "", false, "NOBODY"),
            "BadReference: There is no item class \"NOBODY\".");
  EXPECT_EQ(outcome("1130", "", "", false, "CUSTOMER", "C009"),
            "BadReference: There is no item \"C009\" of item class CUSTOMER.");
  EXPECT_EQ(outcome("1130", "", "", false, "", "C001"),
            "BadReference: An item is of an item class.");
  EXPECT_EQ(outcome("1000", "", "", false, "CUSTOMER"),
            "BadReference: Neither account 1000 nor any below it asks for items of item class "
            "CUSTOMER.");
  EXPECT_EQ(outcome("1130", "", "", false, "CUSTOMER", "", Long{5}),
            "BadValue: A statement item by item has no pages.");
  EXPECT_EQ(outcome("1000", "", "", false, "", "", Long{-1}),
            "BadValue: A page has at least one line.");
  EXPECT_EQ(outcome("1000", "", "", false, "", "", Long{1}, Long{99}),
            "NotFound: There is no voucher with the id 99.");
}

// Many vouchers in no order of days.
class AccountStatementOfManyLines : public AccountStatementTest {
 protected:
  AccountStatementOfManyLines() {
    unsigned random = 7;
    for (int i = 0; i < 60; ++i) {
      random = random * 1103515245 + 12345;
      const unsigned number = random >> 8;
      const DateTime day(DateTime::FromYmd(2024, 1, 1).days + number % 800);
      const Currency amount(static_cast<double>(1 + number % 97));
      const bool is_income = number % 3 == 0;
      Post(day.ToText(), {Line(number % 2 == 0 ? "4000.01" : "4000.02", is_income ? 0 : amount,
                               is_income ? amount : 0),
                          Line("1000", is_income ? amount : 0, is_income ? 0 : amount)});
    }
  }
};

TEST_P(AccountStatementOfManyLines, AgreeWithTheBalancesPeriodByPeriod) {
  for (const std::string_view account : {"4000", "4000.01", "1000"}) {
    for (int month = 1; month <= 12; ++month) {
      const DateTime first = DateTime::FromYmd(2024, month, 1);
      const DateTime last(DateTime::FromYmd(month == 12 ? 2025 : 2024, month % 12 + 1, 1).days - 1);
      const auto balances =
          Call("QDSVGLBalance.BalanceInfo", "GetList", props, Long{2024}, Long{month}, Long{month},
               "FCurrencyID = 0 AND FAccountNumber = '" + std::string(account) + "'")
              .As<Recordset>();
      const auto of = [&](const char* column) {
        return balances->Eof() ? std::string("0")
                               : ValueText(balances->FieldValue(balances->FieldPosition(column)));
      };
      const auto rows = Statement(account, first.ToText(), last.ToText());
      Ref<Dictionary> closing;
      for (; !rows->Eof(); rows->MoveNext()) closing = rows->Row();
      EXPECT_EQ(ValueText(closing->Value("FBeginBalance")), of("FBeginBalance")) << month;
      EXPECT_EQ(ValueText(closing->Value("FDebit")), of("FDebit")) << month;
      EXPECT_EQ(ValueText(closing->Value("FCredit")), of("FCredit")) << month;
      EXPECT_EQ(ValueText(closing->Value("FBalance")), of("FEndBalance")) << month;
    }
  }
}

// A period's sums are those of its lines, whichever days are asked for.
TEST_P(AccountStatementOfManyLines, PeriodsAreTheSumsOfTheLines) {
  std::size_t periods_told = 0;
  for (const auto& [from, to] :
       {std::pair("2024-01-01", "2025-12-31"), std::pair("2024-02-10", "2024-02-20"),
        std::pair("2024-02-10", "2024-03-31"), std::pair("2024-02-01", "2024-03-10"),
        std::pair("2024-02-10", "2024-03-10"), std::pair("2024-01-15", "2025-06-15"),
        std::pair("2024-02-01", "2024-02-29")}) {
    std::map<std::pair<Long, Long>, std::pair<Currency, Currency>> expected, told;
    const auto lines = Statement("4000", from, to);
    std::string opening, closing;
    for (; !lines->Eof(); lines->MoveNext()) {
      const Ref<Dictionary> row = lines->Row();
      const String kind = row->Value("FRow").As<String>();
      if (kind == "Opening") opening = TextOf(*row);
      if (kind == "Closing") closing = TextOf(*row);
      if (kind != "Line") continue;
      auto& [debit, credit] =
          expected[{row->Value("FYear").As<Long>(), row->Value("FPeriod").As<Long>()}];
      debit += row->Value("FDebit").As<Currency>();
      credit += row->Value("FCredit").As<Currency>();
    }
    const auto periods = Periods("4000", from, to);
    for (; !periods->Eof(); periods->MoveNext()) {
      const Ref<Dictionary> row = periods->Row();
      const String kind = row->Value("FRow").As<String>();
      if (kind == "Opening") {
        EXPECT_EQ(TextOf(*row), opening) << from;
      }
      if (kind == "Closing") {
        EXPECT_EQ(TextOf(*row), closing) << from;
      }
      if (kind != "Period") continue;
      told[{row->Value("FYear").As<Long>(), row->Value("FPeriod").As<Long>()}] = {
          row->Value("FDebit").As<Currency>(), row->Value("FCredit").As<Currency>()};
    }
    EXPECT_EQ(told, expected) << from << " " << to;
    periods_told += told.size();
  }
  EXPECT_GT(periods_told, 30u);
}

TEST_P(AccountStatementOfManyLines, PagesAreTheWholeOneBehindTheOther) {
  const auto lines_of = [](const Ref<Recordset>& rows) {
    std::string lines;
    for (; !rows->Eof(); rows->MoveNext()) {
      if (rows->FieldValue(0).As<String>() == "Line") lines += TextOf(*rows->Row()) + "\n";
    }
    rows->MoveFirst();
    return lines;
  };
  const std::string whole = lines_of(Statement("4000", "2024-02-10", "2026-01-31"));
  std::string paged;
  Long voucher = 0, entry = 0;
  int pages = 0;
  for (bool has_more = true; has_more; ++pages) {
    ASSERT_LT(pages, 60);
    const auto page =
        Statement("4000", "2024-02-10", "2026-01-31", false, "", "", Long{7}, voucher, entry);
    paged += lines_of(page);
    Ref<Dictionary> last;
    for (; !page->Eof(); page->MoveNext()) last = page->Row();
    has_more = last->Value("FRow").As<String>() == "More";
    voucher = last->Value("FVoucherID").As<Long>();
    entry = last->Value("FEntryID").As<Long>();
  }
  EXPECT_EQ(paged, whole);
  EXPECT_GT(pages, 4);
}

// ---- What is read ----

TEST_P(AccountStatementTest, OnlyTheLinesOfItsDaysAreRead) {
  AddCustomers();
  Rent("2024-01-05", Currency(1));
  std::vector<std::string> queries;
  Database::SetStatementHook([&](std::string_view sql) { queries.emplace_back(sql); });
  Statement("4000", "2024-01-01", "2024-01-31", true);
  Statement("1130", "2024-01-01", "2024-01-31", true, "CUSTOMER");
  Statement("1130", "2024-01-01", "2024-01-31", true, "CUSTOMER", "C001");
  Database::SetStatementHook(nullptr);
  int posted = 0, not_posted = 0, contra = 0;
  for (const std::string& sql : queries) {
    if (sql.find("t_VoucherEntry") == sql.npos) continue;
    const std::string plan = PlanOf(Books(), sql);
    const auto shows = [&](std::string_view sqlite, std::string_view postgresql) {
      return plan.find(Books().Dialect(sqlite, postgresql)) != plan.npos;
    };
    if (sql.find("t_PostedLine") != sql.npos) {
      ++posted;
      EXPECT_TRUE(shows("SEARCH p USING PRIMARY KEY (FAccountID=? AND FDate>? AND FDate<?)",
                        "using t_postedline_pkey on t_postedline p"))
          << plan;
      EXPECT_TRUE(shows("", "Index Cond: ((faccountid = below.faccountid) AND (fdate >= "
                            "'2024-01-01'::text) AND (fdate < '2024-01-01'::text))"))
          << plan;
    } else if (sql.find("FPosted = 0") != sql.npos) {
      ++not_posted;
      EXPECT_TRUE(shows("USING INDEX t_Voucher_NotPosted (FDate>? AND FDate<?)",
                        "using t_voucher_notposted on t_voucher"))
          << plan;
    } else {
      ++contra;
      EXPECT_TRUE(shows("SEARCH e USING PRIMARY KEY (FVoucherID=?)",
                        "using t_voucherentry_pkey on t_voucherentry e"))
          << plan;
    }
    for (const char* scan : {"SCAN e", "SCAN v", "SCAN p", "SCAN d", "SCAN t_Voucher",
                             "Seq Scan on t_voucher", "Seq Scan on t_postedline"}) {
      EXPECT_EQ(plan.find(scan), plan.npos) << plan;
    }
  }
  EXPECT_EQ(posted, 3);
  EXPECT_EQ(not_posted, 6);
  EXPECT_EQ(contra, 1);
}

QDCLGL_BOOKS_TEST(AccountStatementTest);
QDCLGL_BOOKS_TEST(AccountStatementOfManyLines);

}  // namespace
}  // namespace qdclgl::server::testing
