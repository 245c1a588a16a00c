#include "qdclgl/server/ledgers/line_search.h"

#include <algorithm>

#include "qdclgl/server/periods/text_signature.h"
#include "qdclgl/server/vouchers/voucher_tree.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

// 1 is posted in January, 2 in February, 3 isn't; 4 is deleted.
class LineSearchTest : public LedgerTest {
 protected:
  LineSearchTest() {
    const auto customer = [] {
      auto details = Make<Vector>();
      details->Append(Variant(Row({{"FItemClassNumber", "CUSTOMER"}, {"FItemNumber", "C001"}})));
      return details;
    };
    auto customers = Make<Vector>();
    customers->Append(Variant(Row({{"FItemClassID", Long{3}}})));
    Call("QDSVGLAccount.AccountUpdate", "Create", props,
         Row({{"FNumber", "1130"}, {"FName", "Receivables"}, {"_Items", Variant(customers)}}));
    Call("QDSVGLItem.ItemUpdate", "Create", props, Long{3},
         Row({{"FItemClassID", Long{3}}, {"FNumber", "C001"}, {"FName", "Änne"}}));
    Save(Voucher("2024-02-05", {Line("4000.01", Currency(119), 0, {{"FExplanation", "Green TEA"}}),
                                Line("1000", 0, Currency(119), {{"FTransNo", "R-17"}})}));
    Save(Voucher("2024-01-05",
                 {Line("4000.02", Currency(7), 0, {{"FExplanation", "tea for staff"}}),
                  Line("1000", 0, Currency(7))},
                 {{"FGroupID", Long{2}}, {"FReference", "TEA-119"}}));
    Save(Voucher("2024-03-05", {Line("1130", Currency(5), 0, {{"_Details", Variant(customer())}}),
                                Line("3000", 0, Currency(5))}));
    Long deleted = Save(Sale(Currency(119), "2024-02-06"));
    Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, ByRef(deleted));
    Step("Post", 1);
    Step("Post", 2);
  }

  // "VOUCHER/LINE" of what is found.
  template <class... More>
  std::string Found(std::string_view words, More... more) {
    const auto lines =
        Call("QDSVGLLine.LineInfo", "Find", props, words, more...).template As<Recordset>();
    std::string text;
    for (; !lines->Eof(); lines->MoveNext()) {
      text +=
          (text.empty() ? "" : " ") + CStr(lines->FieldValue(0)) + "/" + CStr(lines->FieldValue(1));
    }
    return text;
  }
};

TEST_P(LineSearchTest, EachWordStandsSomewhereInALine) {
  EXPECT_EQ(Found("tea"), "2/1 2/2 1/1") << "in the voucher's reference too, by day";
  EXPECT_EQ(Found("tea green"), "1/1");
  EXPECT_EQ(Found("r-17"), "1/2");
  EXPECT_EQ(Found("rent"), "1/1") << "the account's name";
  EXPECT_EQ(Found("4000.0"), "2/1 1/1") << "its number";
  EXPECT_EQ(Found("\"for staff\""), "2/1");
  EXPECT_EQ(Found("änne"), "3/1");
  EXPECT_EQ(Found("ÄNNE c001"), "3/1");
  EXPECT_EQ(Found("coffee"), "");
  EXPECT_EQ(Found("\"greenr\""), "") << "texts don't run into each other";
  EXPECT_EQ(Found(""), "2/1 2/2 1/1 1/2 3/1 3/2");
}

TEST_P(LineSearchTest, ANumberIsAnAmountToTheLastDigitOrAPartOfAText) {
  EXPECT_EQ(Found("119"), "2/1 2/2 1/1 1/2");
  EXPECT_EQ(Found("119.00"), "1/1 1/2");
  EXPECT_EQ(Found("tea 119.0000"), "1/1");
  EXPECT_EQ(Found("119.0001"), "");
  EXPECT_EQ(Found("-119"), "2/1 2/2") << "TEA-119";
  EXPECT_EQ(Found("11"), "2/1 2/2 3/1") << "no part of an amount; TEA-119 and 1130";
}

TEST_P(LineSearchTest, ADayIsThatOfTheVoucher) {
  EXPECT_EQ(Found("2024-02-05"), "1/1 1/2");
  EXPECT_EQ(Found("2024-02-05 cash"), "1/2");
}

TEST_P(LineSearchTest, OptionsNarrowWhatIsFound) {
  const auto day = [](const char* text) { return CDate(Variant(text)); };
  EXPECT_EQ(Found("", "", "1000"), "2/2 1/2");
  EXPECT_EQ(Found("tea", "", "4000"), "2/1 1/1");
  EXPECT_EQ(Found("", "", "1130"), "3/1") << "not posted, by account";
  EXPECT_EQ(Found("", "", "", day("2024-02-01"), day("2024-02-29")), "1/1 1/2");
  EXPECT_EQ(Found("", "", "1000", day("2024-02-05")), "1/2");
  EXPECT_EQ(Found("", "", "", DateTime(), DateTime(), LineInfo::kPosted), "2/1 2/2 1/1 1/2");
  EXPECT_EQ(Found("", "", "", DateTime(), DateTime(), LineInfo::kNotPosted), "3/1 3/2");
  EXPECT_EQ(Found("", "", "1130", DateTime(), DateTime(), LineInfo::kPosted), "");
  EXPECT_EQ(Found("", "", "", DateTime(), DateTime(), Long{0}, "CUSTOMER", "c001"), "3/1");
  EXPECT_EQ(Found("", "FGroup = 'Payments' AND FAmount <= 7"), "2/1 2/2");
  EXPECT_EQ(Found("", "FPreparer = 'nobody'"), "");
}

TEST_P(LineSearchTest, PagesGoOnWhereTheOthersEnd) {
  const auto page = [&](Long first, Long count) {
    return Found("", "", "", DateTime(), DateTime(), Long{0}, "", "", first, count);
  };
  EXPECT_EQ(page(1, 2), "2/1 2/2");
  EXPECT_EQ(page(3, 3), "1/1 1/2 3/1");
  EXPECT_EQ(page(6, 3), "3/2");
  EXPECT_EQ(page(5, 0), "3/1 3/2");
  EXPECT_EQ(Found("tea", "", "", DateTime(), DateTime(), Long{0}, "", "", Long{2}, Long{2}),
            "2/2 1/1")
      << "of what the words leave";
}

TEST_P(LineSearchTest, APageIsLookedForBehindThousandsOfEarlierVouchersToo) {
  std::string columns = NamesOf(kStateColumns) + ", " + NamesOf(kHeaderColumns) + ", FExtra";
  columns.erase(0, columns.find("FVersion"));
  std::string values = columns;
  const auto put = [&](std::string_view column, std::string_view value) {
    values.replace(values.find(std::string(column) + ","), column.size(), value);
  };
  put("FNumber", "FNumber + n.i");
  put("FDate", "'2024-01-01'");
  Books().Execute("WITH RECURSIVE n AS (SELECT 1 AS i UNION ALL SELECT i + 1 FROM n WHERE i < 6000)"
                  " INSERT INTO t_Voucher (" +
                  columns + ") SELECT " + values +
                  " FROM t_Voucher v CROSS JOIN n WHERE v.FVoucherID = 3");
  EXPECT_EQ(Found("tea", "", "", DateTime(), DateTime(), Long{0}, "", "", Long{1}, Long{2}),
            "2/1 2/2");
}

TEST_P(LineSearchTest, WhatIsFoundIsTheSameInPeriodsThatAreClosed) {
  // Some blocks of vouchers in each of four months, of which three are closed.
  const std::vector<std::string> texts = {
      "Green TEA for 12 staff", "Rückzahlung", "办公用品", "invoice 2024-000317",
      "\\_quoted \"as it is\"", "Straße",      "x",        ""};
  for (int i = 0; i < 400; ++i) {
    const std::string day = "2024-0" + std::to_string(1 + i / 100) + "-11";
    const std::string text = i % 40 == 7 ? texts[static_cast<std::size_t>(i / 40) % texts.size()]
                                         : "Delivery no. " + std::to_string(5000 + i);
    const Long id = Save(Sale(Currency(100 + i), day,
                              {{"FExplanation", text}, {"FReference", i == 210 ? "Quince" : ""}}));
    if (i < 300) Step("Post", id);
  }
  Step("Post", 3);
  const auto all = [&] {
    std::string found;
    for (const char* const word :
         {"tea",    "green tea", "\"tea for\"", "rückzahlung",   "RÜCKZAHLUNG",
          "用品",   "公",        "000317",      "2024-000317",   "5317",
          "no. 5",  "\\_quot",   "strasse",     "straße",        "x",
          "quince", "quinces",   "sales",       "cash delivery", "quince delivery",
          "119",    "300",       "2024-03-11",  "änne",          "c001",
          "r-17",   "marzipan",  "jarzipam"}) {
      found += std::string(word) + ": " + Found(word) + "\n";
    }
    return found;
  };
  const std::string open = all();
  EXPECT_NE(open.find("\nquince: 215/1 215/2\n"), std::string::npos) << open;
  for (int i = 0; i < 3; ++i) Call("QDSVGLPeriod.PeriodUpdate", "Close", props);
  const auto signatures = [&] {
    std::string text;
    for (const auto& [block, year, period] : Books().Query<Long, Long, Long>(
             "SELECT FBlock, FYear, FPeriod FROM t_TextSignature ORDER BY FBlock")) {
      text += std::to_string(block) + ": " + AccountingPeriod{year, period}.ToText() + "\n";
    }
    return text;
  };
  EXPECT_EQ(signatures(), "0: 2024/3\n1: 2024/2\n2: 2024/2\n3: 2024/3\n")
      << "the fifth block goes on in April";
  EXPECT_EQ(all(), open);
  EXPECT_EQ(Breaches(), "");

  Call("QDSVGLPeriod.PeriodUpdate", "Reopen", props);
  EXPECT_EQ(signatures(), "1: 2024/2\n2: 2024/2\n");
  Step("UnPost", 215);
  Update(215, Sale(Currency(7), "2024-03-11",
                   {{"FExplanation", "jarzipam"}, {"FVersion", Read(215)->Value("FVersion")}}));
  EXPECT_EQ(Found("jarzipam"), "215/1 215/2");
  EXPECT_EQ(Found("quince"), "");
  Step("Post", 215);
  Call("QDSVGLPeriod.PeriodUpdate", "Close", props);
  EXPECT_EQ(Found("jarzipam"), "215/1 215/2");
  Call("QDSVGLPeriod.PeriodUpdate", "ReopenTo", props, Long{2024}, Long{1});
  EXPECT_EQ(signatures(), "");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(LineSearchTest, OnlyVouchersThatMayHaveTheWordAreReadInClosedPeriods) {
  for (int i = 0; i < 196; ++i) {
    Step("Post", Save(Sale(1, "2024-01-11", {{"FExplanation", i == 130 ? "Quince" : "Rent"}})));
  }
  Break("INSERT INTO t_TextSignature VALUES (1, 1, 1, ''), (-2147483648, 1, 1, 'x'),"
        " (2147483647, 1, 1, '')");
  Call("QDSVGLPeriod.PeriodUpdate", "Close", props);
  // What a voucher says that is not read does not show.
  Break("UPDATE t_VoucherEntry SET FExplanation = 'Quince' WHERE FVoucherID IN (5, 70)");
  EXPECT_EQ(Found("quince"), "5/1 5/2 135/1 135/2") << "70 lies in a block of rent";
  EXPECT_EQ(Found("quince rent"), "");
  EXPECT_EQ(Found("qu").substr(0, 4), "5/1 ") << "two letters have no mark";
  EXPECT_NE(Breaches().find("TextSignature Books 0 64-127\n"), std::string::npos) << Breaches();
}

TEST_P(LineSearchTest, AClosingOrReopeningThatFailsLeavesSignaturesAsTheyWere) {
  Step("UnPost", 1);  // of February, so that January can be opened again
  for (int i = 0; i < 130; ++i) Step("Post", Save(Sale(1, "2024-01-11")));
  const auto count = [&] {
    return std::to_string(*Books().QueryValue<Long>("SELECT COUNT(*) FROM t_TextSignature"));
  };
  FailEachStatement([&] { Call("QDSVGLPeriod.PeriodUpdate", "Close", props); }, count);
  EXPECT_EQ(count(), "1");
  FailEachStatement([&] { Call("QDSVGLPeriod.PeriodUpdate", "Reopen", props); }, count);
  EXPECT_EQ(count(), "0");
}

TEST_P(LineSearchTest, SignaturesOfAllClosedPeriodsAreThoseThatClosingThemMakes) {
  for (int i = 0; i < 300; ++i) {
    Step("Post", Save(Sale(1, i < 150 ? "2024-01-11" : "2024-02-11",
                           {{"FExplanation", "No. " + std::to_string(i * 7919)}})));
  }
  const auto signatures = [&] {
    std::string text;
    for (const auto& [block, year, period, signature] :
         Books().Query<Long, Long, Long, std::string>(
             "SELECT FBlock, FYear, FPeriod, FSignature FROM t_TextSignature ORDER BY FBlock")) {
      text += std::to_string(block) + " " + AccountingPeriod{year, period}.ToText() + " " +
              signature + "\n";
    }
    return text;
  };
  for (int i = 0; i < 2; ++i) Call("QDSVGLPeriod.PeriodUpdate", "Close", props);
  const std::string closed = signatures();
  EXPECT_EQ(std::ranges::count(closed, '\n'), 3) << "0 goes on in March, and 4 is the last";
  Transaction transaction(Books(), Transaction::Kind::kChangeRules);
  TakeBackSignatures(Books(), {2024, 1});
  EXPECT_EQ(signatures(), "");
  std::vector<double> shares;
  SignVouchersBefore(Books(), {2024, 3}, [&](double share) { shares.push_back(share); });
  EXPECT_EQ(signatures(), closed);
  EXPECT_EQ(shares, std::vector<double>{0});
}

TEST_P(LineSearchTest, WhatIsNotThereIsRefused) {
  EXPECT_EQ(RefusalOf([&] { Found("", "", "9"); }), "NotFound");
  EXPECT_EQ(RefusalOf([&] { Found("", "FNothing = 1"); }), "BadFilter");
  EXPECT_EQ(
      RefusalOf([&] { Found("", "", "", DateTime(), DateTime(), Long{0}, "CUSTOMER", "C009"); }),
      "BadReference");
  EXPECT_EQ(RefusalOf([&] { Found("", "", "", DateTime(), DateTime(), Long{3}); }), "BadValue");
  EXPECT_EQ(
      RefusalOf([&] { Found("", "", "", DateTime(), DateTime(), Long{0}, "", "", Long{-1}); }),
      "BadValue");
}

QDCLGL_BOOKS_TEST(LineSearchTest);

}  // namespace
}  // namespace qdclgl::server::testing
