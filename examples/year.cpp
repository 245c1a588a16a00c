// A small year: booked, looked at from all sides, revalued, closed and checked: year FILE
#include "examples/story.h"

namespace {

using namespace example;

void SetUp(const String& props) {
  Make<VoucherGroupSet>()->CreateNew("General")->SaveChanges();
  struct Line {
    const char *number, *name;
    Long side;
    const char* kind;
  };
  constexpr Long kDebit = 1, kCredit = -1;
  for (const auto& [number, name, side, kind] :
       {Line{"1000", "Bank", kDebit, "asset"}, Line{"2000", "Capital", kCredit, "equity"},
        Line{"4000", "Sales", kCredit, "income"}, Line{"5000", "Rent", kDebit, "expense"}}) {
    CreateObject("QDSVGLAccount.AccountUpdate")
        ->Call("Create", props,
               Row({{"FNumber", number},
                    {"FName", name},
                    {"FDC", side},
                    {"FKind", kind},
                    {"FIsBank", kind == std::string("asset")}}));
  }
  SaveAndPost(DateTime::FromYmd(2024, 1, 2), "Start", Currency(5000), "1000", "2000");
  SaveAndPost(DateTime::FromYmd(2024, 1, 10), "Sale", Currency(1200), "1000", "4000");
  SaveAndPost(DateTime::FromYmd(2024, 1, 31), "Rent", Currency(900), "5000", "1000");
}

void Statements(const String& props) {
  Print("the bank's statement",
        CreateObject("QDSVGLStatement.StatementInfo")
            ->Call("GetStatement", props, "1000", DateTime::FromYmd(2024, 1, 1),
                   DateTime::FromYmd(2024, 1, 31))
            .As<Recordset>(),
        {"FRow", "FDate", "FExplanation", "FDebit", "FCredit", "FBalance"});

  Print("income",
        CreateObject("QDSVGLReport.ReportInfo")->Call("GetIncome", props, "2024/1").As<Recordset>(),
        {"FRow", "FAccountName", "FAmount"});

  Print("cash flow",
        CreateObject("QDSVGLCashFlow.CashFlowInfo")
            ->Call("GetCashFlow", props, DateTime::FromYmd(2024, 1, 1),
                   DateTime::FromYmd(2024, 1, 31))
            .As<Recordset>(),
        {"FRow", "FAccountName", "FNet"});
}

void Budget(const String& props) {
  CreateObject("QDSVGLBudget.BudgetUpdate")
      ->Call("Create", props,
             Row({{"FNumber", "B1"},
                  {"FAccountID", AccountId("5000")},
                  {"FYear", Long{2024}},
                  {"FPeriod", Long{0}},
                  {"FAmount", Currency(10800)}}));
  Print("budgets", CreateObject("QDSVGLBudget.BudgetInfo")->Call("GetList", props).As<Recordset>(),
        {"FNumber", "FAccountName", "FAmount"});
}

void Revaluation(const String& props) {
  const auto differences = CreateObject("QDSVGLRevaluation.RevaluationInfo")
                               ->Call("GetDifferences", props, Long{2024}, Long{1})
                               .As<Recordset>();
  std::printf("%d balances in other currencies\n", static_cast<int>(differences->RecordCount()));
}

void Close(const String& props) {
  CreateObject("QDSVGLPeriod.PeriodUpdate")->Call("Close", props);
  std::printf("now in period %d\n", Make<SystemProfile>()->GLGetCurrentPeriod());

  const auto vouchers = CreateObject("QDSVGLYearEnd.YearEndInfo")
                            ->Call("GetResultVouchers", props, Long{2024}, AccountId("2000"))
                            .As<Recordset>();
  std::printf("%d voucher would carry the year's result\n",
              static_cast<int>(vouchers->RecordCount()));
}

void Check(const String& props) {
  const auto findings = CreateObject("QDSVGLBooks.BooksInfo")->Call("Check", props).As<Recordset>();
  std::printf("the check of the books finds %d faults\n",
              static_cast<int>(findings->RecordCount()));
}

void Keep(const String& props) {
  SetUp(props);
  Statements(props);
  Budget(props);
  Revaluation(props);
  Close(props);
  Check(props);
}

}  // namespace

int main(int count, char** arguments) { return Tell(count, arguments, Keep); }
