// The statements of a year.
#include "qdclgl/server/reports/report.h"

#include "tests/server/reports/statement_fixture.h"

namespace qdclgl::server::testing {
namespace {

class ReportTest : public StatementTest {
 protected:
  Ref<Recordset> Fetch(std::string_view method, std::string_view spans) {
    return Call("QDSVGLReport.ReportInfo", method, props, spans).As<Recordset>();
  }
  // "Account income 3000: 100 40%" a line, with the figures of all columns behind each other.
  std::string Text(std::string_view method, std::string_view spans, std::size_t columns = 1) {
    const Ref<Recordset> rows = Fetch(method, spans);
    std::string text;
    for (std::size_t i = 0; !rows->Eof(); rows->MoveNext(), ++i) {
      const Ref<Dictionary> row = rows->Row();
      if (i % columns == 0) {
        text += CStr(row->Value("FRow")) + " " + CStr(row->Value("FKind"));
        const String number = row->Value("FAccountNumber").As<String>();
        text += (number.empty() ? "" : " ") + number + ":";
      }
      text +=
          " " + ValueText(row->Value("FAmount")) + " " + ValueText(row->Value("FPercent")) + "%";
      if (i % columns == columns - 1) text += "\n";
    }
    return text;
  }
};

TEST_P(ReportTest, IncomeAndExpenseAreAddedUpAlongTheTreeAndHaveAResult) {
  TellKinds();
  Post("2024-01-15", "1000", "3000", Currency(400));
  Post("2024-02-01", "4000.01", "1000", Currency(100));
  Post("2024-02-02", "4000.02", "1000", Currency(50));
  Post("2024-03-01", "2000", "1000", Currency(70));
  Save(Sale(9));  // not posted
  EXPECT_EQ(Text("GetIncome", "2024"), "Account income 3000: 400 100%\n"
                                       "Total income: 400 100%\n"
                                       "Account expense 4000: 150 37.5%\n"
                                       "Account expense 4000.01: 100 25%\n"
                                       "Account expense 4000.02: 50 12.5%\n"
                                       "Total expense: 150 37.5%\n"
                                       "Result : 250 62.5%\n");
  EXPECT_EQ(TextOf(*Fetch("GetIncome", "2024/1-2024/3")->Row()),
            TextOf(*Row({{"FRow", "Account"},
                         {"FKind", "income"},
                         {"FAccountID", AccountRow("3000")->Value("FAccountID")},
                         {"FAccountNumber", "3000"},
                         {"FAccountName", "Sales"},
                         {"FLevel", Long{1}},
                         {"FDetail", true},
                         {"FFrom", "2024/1"},
                         {"FTo", "2024/3"},
                         {"FAmount", Currency(400)},
                         {"FPercent", 100.0}})));
}

TEST_P(ReportTest, SpansOfPeriodsStandBesideEachOther) {
  TellKinds();
  Post("2024-01-15", "1000", "3000", Currency(3));
  Post("2024-02-15", "4000.01", "1000", Currency(8));
  Post("2025-02-15", "1000", "3000", Currency(7));
  EXPECT_EQ(Text("GetIncome", "2024/1,2024/2,2024/1-2024/12,2025,2024/2-2025/2", 5),
            "Account income 3000: 3 100% 0 0% 3 100% 7 100% 7 100%\n"
            "Total income: 3 100% 0 0% 3 100% 7 100% 7 100%\n"
            "Account expense 4000: 0 0% 8 0% 8 266.6667% 0 0% 8 114.2857%\n"
            "Account expense 4000.01: 0 0% 8 0% 8 266.6667% 0 0% 8 114.2857%\n"
            "Total expense: 0 0% 8 0% 8 266.6667% 0 0% 8 114.2857%\n"
            "Result : 3 100% -8 0% -5 -166.6667% 7 100% -1 -14.2857%\n");
  EXPECT_EQ(Text("GetPosition", "2024/1,2024/2,2025", 3),
            "Account asset 1000: 3 100% -5 100% 2 100%\n"
            "Total asset: 3 100% -5 100% 2 100%\n"
            "Total liability: 0 0% 0 0% 0 0%\n"
            "Earlier equity: 0 0% 0 0% -5 -250%\n"
            "Result equity: 3 100% -5 100% 7 350%\n"
            "Total equity: 3 100% -5 100% 2 100%\n"
            "Sources : 3 100% -5 100% 2 100%\n"
            "Difference : 0 0% 0 0% 0 0%\n");
}

TEST_P(ReportTest, AnAccountCountsInItsOwnKindOrInThatOfTheOneAbove) {
  TellKinds();
  SetKind("4000.02", "liability");  // its wages are owed
  Post("2024-01-15", "4000.01", "4000.02", Currency(5));
  EXPECT_EQ(Text("GetIncome", "2024"), "Total income: 0 0%\n"
                                       "Account expense 4000: 5 0%\n"
                                       "Account expense 4000.01: 5 0%\n"
                                       "Total expense: 5 0%\n"
                                       "Result : -5 0%\n");
  EXPECT_EQ(Text("GetPosition", "2024"), "Total asset: 0 0%\n"
                                         "Account liability 4000: 5 0%\n"
                                         "Account liability 4000.02: 5 0%\n"
                                         "Total liability: 5 0%\n"
                                         "Earlier equity: 0 0%\n"
                                         "Result equity: -5 0%\n"
                                         "Total equity: -5 0%\n"
                                         "Sources : 0 0%\n"
                                         "Difference : 0 0%\n");
}

TEST_P(ReportTest, AccountsWithoutAKindStandApartAndMakeTheDifference) {
  TellKinds();
  AddAccount("5000", "Unsorted", "");
  Post("2024-01-15", "1000", "5000", Currency(5));
  EXPECT_EQ(Text("GetIncome", "2024"), "Total income: 0 0%\n"
                                       "Total expense: 0 0%\n"
                                       "Result : 0 0%\n"
                                       "Account  5000: -5 0%\n");
  EXPECT_EQ(Text("GetPosition", "2024"), "Account asset 1000: 5 100%\n"
                                         "Total asset: 5 100%\n"
                                         "Total liability: 0 0%\n"
                                         "Earlier equity: 0 0%\n"
                                         "Result equity: 0 0%\n"
                                         "Total equity: 0 0%\n"
                                         "Sources : 0 0%\n"
                                         "Account  5000: -5 -100%\n"
                                         "Difference : 5 100%\n");
}

TEST_P(ReportTest, AVoucherThatCarriesTheResultIsInTheBalanceSheetAlone) {
  TellKinds();
  AddAccount("5000", "Earnings", "equity");
  Post("2024-01-15", "1000", "3000", Currency(5));
  Post("2024-12-31", "3000", "5000", Currency(5), {{"FInternalInd", "TransferPL"}});
  EXPECT_EQ(Text("GetIncome", "2024"), "Account income 3000: 5 100%\n"
                                       "Total income: 5 100%\n"
                                       "Total expense: 0 0%\n"
                                       "Result : 5 100%\n");
  EXPECT_EQ(Text("GetPosition", "2024"), "Account asset 1000: 5 100%\n"
                                         "Total asset: 5 100%\n"
                                         "Total liability: 0 0%\n"
                                         "Account equity 5000: 5 100%\n"
                                         "Earlier equity: 0 0%\n"
                                         "Result equity: 0 0%\n"
                                         "Total equity: 5 100%\n"
                                         "Sources : 5 100%\n"
                                         "Difference : 0 0%\n");
}

TEST_P(ReportTest, AnAccountStandsBehindTheOneAboveItWhateverTheirNumbersSay) {
  AddAccount("7000", "Above", "income");
  AddAccount("7000-A", "Neighbour", "income");
  AddAccount("7000.01", "Below", "");
  Post("2024-01-15", "1000", "7000.01", Currency(5));
  Post("2024-01-15", "1000", "7000-A", Currency(6));
  const std::string text = Text("GetIncome", "2024");
  EXPECT_EQ(text.substr(0, text.find("Total")), "Account income 7000: 5 45.4545%\n"
                                                "Account income 7000.01: 5 45.4545%\n"
                                                "Account income 7000-A: 6 54.5455%\n");
}

TEST_P(ReportTest, SpansThatThereAreNotAreRefused) {
  const auto refusal = [&](const std::string& spans) {
    return ErrorText([&] { Fetch("GetIncome", spans); });
  };
  const auto no_span = [](const std::string& text) {
    return "80044212: \"" + text + "\" is no span of periods; 2024, 2024/3 and 2024/1-2024/3 are.";
  };
  for (const std::string text : {"", "x", "2024/", "2024/1-", "2024/1/2", "2024-01-31"}) {
    EXPECT_EQ(refusal(text), no_span(text));
  }
  EXPECT_EQ(refusal("2024,"), no_span(""));
  EXPECT_EQ(refusal("2024/13"), "80044212: There is no period 2024/13; a year has 12.");
  EXPECT_EQ(refusal("2024/2-2024/1"), "80044212: Periods go forward, not from 2024/2 to 2024/1.");
  std::string many = "2024";
  for (int i = 0; i < 1000; ++i) many += ",2024";
  EXPECT_EQ(refusal(many), "80044212: A statement has at most 1000 spans of periods.");
}

TEST_P(ReportTest, AKindIsOneOfFiveWordsInWhateverCase) {
  SetKind("1000", "ASSET");
  EXPECT_EQ(CStr(AccountRow("1000")->Value("FKind")), "asset");
  EXPECT_EQ(ErrorText([&] { SetKind("1000", "cash"); }),
            "80044212: Account 1000 (Cash): FKind is asset, liability, equity, income or expense, "
            "not \"cash\".");
  SetKind("1000", "");
  EXPECT_EQ(CStr(AccountRow("1000")->Value("FKind")), "");
}

QDCLGL_BOOKS_TEST(ReportTest);

}  // namespace
}  // namespace qdclgl::server::testing
