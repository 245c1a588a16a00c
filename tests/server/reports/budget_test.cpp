#include "qdclgl/server/reports/budget.h"

#include "tests/server/records/record_suite.h"
#include "tests/server/reports/statement_fixture.h"

namespace qdclgl::server::testing {
namespace {

Long NewAccount(RecordBooks& books) {
  static int number = 0;
  return books.AddAccount("N" + std::to_string(++number));
}

const RecordKind kBudgets = {
    .noun = "Budget",
    .subject = "Budget",
    .info = "QDSVGLBudget.BudgetInfo",
    .update = "QDSVGLBudget.BudgetUpdate",
    .table = "t_Budget",
    .id = "FBudgetID",
    .columns = {{"FNumber", "RENT", "RENT 2"},
                {"FName", "Rent", "Rent of the shop"},
                {"FAccountID", Long{1}, Long{2}},
                {"FAccountNumber", "1000", "2000"},
                {"FAccountName", "Cash", "Bank"},
                {"FYear", Long{2024}, Long{2025}},
                {"FPeriod", Long{3}, Long{12}},
                {"FAmount", Currency(100), Currency(200)}},
    .spelled = {{"FNumber", "Rent"}},
    .coded = {"FNumber"},
    .joined = {"FAccountNumber", "FAccountName"},
    .required = {"FNumber"},
    .unique = {{"FNumber", "NumberTaken"}},
    .order = "FNumber",
    .text_key = "FNumber",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "BudgetID",
    .text_argument = "Number",
    .prepare =
        [](RecordBooks& books) {
          books.AddAccount("1000", "Cash");
          books.AddAccount("2000", "Bank");
        },
    .references = {{.column = "FAccountID",
                    .noun = "account",
                    .id = "FAccountID",
                    .update = "QDSVGLAccount.AccountUpdate",
                    .make = NewAccount,
                    .is_required = true}},
};

QDCLGL_RECORD_KIND(Budget, kBudgets);

class BudgetTest : public StatementTest {
 protected:
  BudgetTest() { TellKinds(); }

  void Add(std::string_view account, Long year, Long period, Currency amount) {
    Call("QDSVGLBudget.BudgetUpdate", "Create", props,
         Row({{"FNumber", "B" + std::to_string(++budgets_)},
              {"FAccountID", AccountRow(account)->Value("FAccountID")},
              {"FYear", year},
              {"FPeriod", period},
              {"FAmount", amount}}));
  }
  // "3000: 10 - 100 = -90 10%" a row, with what is in all columns behind each other.
  std::string Text(const std::string& spans, std::size_t columns = 1) {
    const auto rows =
        Call("QDSVGLReport.ReportInfo", "GetIncomeWithBudget", props, spans).As<Recordset>();
    std::string text;
    for (std::size_t i = 0; !rows->Eof(); rows->MoveNext(), ++i) {
      const Ref<Dictionary> row = rows->Row();
      const auto value = [&](const char* column) { return ValueText(row->Value(column)); };
      if (i % columns == 0) {
        text += row->Value("FAccountID").As<Long>() != 0 ? value("FAccountNumber")
                                                         : value("FRow") + " " + value("FKind");
        text += ":";
      }
      text += " " + value("FAmount") + " - " + value("FBudget") + " = " + value("FDifference") +
              " " + value("FBudgetPercent") + "%";
      if (i % columns == columns - 1) text += "\n";
    }
    return text;
  }

 private:
  int budgets_ = 0;
};

TEST_P(BudgetTest, StandsBesideWhatIsPostedAndAddsUpAlongTheTree) {
  Add("3000", 2024, 0, Currency(1200));
  Add("4000.01", 2024, 2, Currency(80));
  Add("4000", 2024, 2, Currency(20));  // for whatever is below
  Add("4000.01", 2023, 2, Currency(7));
  Post("2024-02-05", "1000", "3000", Currency(150));
  Post("2024-02-05", "4000.01", "1000", Currency(60));
  EXPECT_EQ(Text("2024/2"), "3000: 150 - 100 = 50 150%\n"
                            "Total income: 150 - 100 = 50 150%\n"
                            "4000: 60 - 100 = -40 60%\n"
                            "4000.01: 60 - 80 = -20 75%\n"
                            "Total expense: 60 - 100 = -40 60%\n"
                            "Result : 90 - 0 = 90 0%\n");
  EXPECT_EQ(Text("2024/1,2024", 2).substr(0, 56),
            "3000: 0 - 100 = -100 0% 150 - 1200 = -1050 12.5%\nTotal i");
}

TEST_P(BudgetTest, OneOfEachYearCountsInEachOfThem) {
  Add("3000", 0, 3, Currency(5));
  const std::string text = Text("2023,2024/1-2025/12,2024/1-2024/2", 3);
  EXPECT_EQ(text.substr(0, text.find("\n")), "3000: 0 - 5 = -5 0% 0 - 10 = -10 0% 0 - 0 = 0 0%");
}

TEST_P(BudgetTest, PeriodsAreThoseOfTheCalendar) {
  for (const auto& [year, period] : {std::pair{2024, 13}, {2024, -1}, {-1, 1}}) {
    EXPECT_EQ(ErrorText([&, y = year, p = period] { Add("3000", y, p, Currency(5)); }).substr(0, 9),
              "80044212:");
  }
}

TEST_P(BudgetTest, AllOfThemAddUpOrAreRefused) {
  const Currency most = Currency::FromUnits(INT64_MAX / 2);
  Add("3000", 0, 0, Currency::FromUnits(INT64_MAX / 2 - 10'000));
  EXPECT_EQ(RefusalOf([&] { Add("3000", 2024, 0, Currency(-2)); }), "TooLarge");
  EXPECT_EQ(RefusalOf([&] { Add("4000.01", 2024, 0, most); }), "TooLarge");
  EXPECT_EQ(RefusalOf([&] { Add("3000", 2024, 0, Currency::FromUnits(INT64_MIN)); }), "TooLarge");
  Add("3000", 2024, 0, Currency(1));
  EXPECT_NE(Text("2024"), "");
  EXPECT_EQ(RefusalOf([&] { Text("2024/1-2028/12"); }), "TooLarge") << "each year has it again";
}

TEST(BudgetShare, AddsUpToTheAmountInWholeUnitsOfTheCurrency) {
  constexpr Units kCent = 100;
  for (const Units amount : {Units{100'000'000}, Units{1'000'000}, Units{-1'000'000}, Units{12'345},
                             Units{-12'345}, Units{7}, Units{0}, Units{INT64_MAX}}) {
    for (const Long count : {1, 4, 12, 13, 52}) {
      Units sum = 0, least = INT64_MAX, most = INT64_MIN;
      for (Long number = 1; number <= count; ++number) {
        const Units share = ShareOf(amount, count, number, kCent);
        if (number < count) {
          EXPECT_EQ(share % kCent, 0);
          least = std::min(least, share);
          most = std::max(most, share);
        }
        sum += share;
      }
      EXPECT_EQ(sum, amount) << count;
      if (count > 1) {
        EXPECT_LE(most - least, kCent) << amount << " " << count;
      }
    }
  }
  EXPECT_EQ(ShareOf(1'000'000, 12, 1, kCent), 83'400);  // 100.00: four times 8.34, then 8.33
  EXPECT_EQ(ShareOf(1'000'000, 12, 5, kCent), 83'300);
}

QDCLGL_BOOKS_TEST(BudgetTest);

}  // namespace
}  // namespace qdclgl::server::testing
