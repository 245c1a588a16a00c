// Budgets of accounts: listed, set one by one, or imported.
#include <array>

#include "qdclgl/accounts/account_set.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/sheet_import.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kInfo = "QDSVGLBudget.BudgetInfo";
constexpr const char* kUpdate = "QDSVGLBudget.BudgetUpdate";

struct BudgetOptions {
  Login login;
  Format format = Format::kPlain;
  std::vector<std::string> words;  // behind BOOK: nothing, or ACCOUNT and AMOUNT
  Long year = 0;
  Long period = 0;
  std::string file;
};

struct Budget {
  std::string account;
  Long year = 0;
  Long period = 0;  // 0: spread over the year's
  Currency amount;

  // The number under which the books keep it, so that a second one takes its place.
  std::string Number() const {
    const std::string number = ToUpper(account) + " " + std::to_string(year);
    return period == 0 ? number : number + "/" + std::to_string(period);
  }
};

// Makes or changes the record; one of nothing is removed.
void Put(const std::string& props, const Budget& budget) {
  const auto accounts = Make<AccountSet>();
  const Long account = accounts->ExistenceCheck(Missing, ToUpper(budget.account));
  if (account == 0) {
    throw Error(server::refusal::kNotFound, "qdclgl",
                "There is no account " + Quoted(budget.account) + ".");
  }
  const auto update = CreateObject(kUpdate);
  auto record =
      CreateObject(kInfo)->Call("GetDetailByNumber", props, budget.Number()).As<Dictionary>();
  const Long id = record ? record->Value("FBudgetID").As<Long>() : 0;
  if (budget.amount == Currency()) {
    if (record) update->Call("Delete", props, id);
    return;
  }
  if (!record) record = Make<Dictionary>();
  record->Put("FNumber", budget.Number());
  record->Put("FName", accounts->Item(account)->Name());
  record->Put("FAccountID", account);
  record->Put("FYear", budget.year);
  record->Put("FPeriod", budget.period);
  record->Put("FAmount", budget.amount);
  if (id == 0) update->Call("Create", props, record);
  else update->Call("Update", props, id, record);
}

std::string PeriodText(Long year, Long period) {
  const std::string text = year == 0 ? "each year" : std::to_string(year);
  return period == 0 ? text : text + "/" + std::to_string(period);
}

Long YearOf(const BudgetOptions& options) {
  return options.year != 0 ? options.year : Make<SystemProfile>()->GLGetCurrentYear();
}

int SetBudget(const BudgetOptions& options, const Console& console) {
  Budget budget;
  budget.account = options.words[0];
  budget.period = options.period;
  try {
    budget.amount = ReadAmount(options.words[1]);
  } catch (const BadCell& bad) {
    throw UsageError(bad.what());
  }
  const std::string props = options.login.Open();
  budget.year = YearOf(options);
  Put(props, budget);
  console.out << "The budget of " << ToUpper(budget.account) << " for "
              << PeriodText(budget.year, budget.period) << " is "
              << MoneyText(budget.amount, console.look.DecimalsOf(kBaseCurrencyID)) << ".\n";
  return kDone;
}

// ---- Listing ----

int ListBudgets(const BudgetOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  const Long year = YearOf(options);
  const auto rows =
      CreateObject(kInfo)
          ->Call("GetList", props, Long{0}, "FYear = 0 OR FYear = " + std::to_string(year),
                 "FAccountNumber, FPeriod")
          .As<Recordset>();
  if (options.format != Format::kPlain) {
    WriteRecordset(console, options.format, rows, {});
    return kDone;
  }
  TableWriter table(console, Format::kPlain,
                    {"FAccountNumber", "FAccountName", "FPeriod", "FBudget"});
  table.IfEmpty("Nothing is budgeted for " + std::to_string(year) + ".");
  for (; !rows->Eof(); rows->MoveNext()) {
    const Ref<Dictionary> row = rows->Row();
    table.Row({row->Value("FAccountNumber"), row->Value("FAccountName"),
               PeriodText(row->Value("FYear").As<Long>(), row->Value("FPeriod").As<Long>()),
               row->Value("FAmount")});
  }
  table.Finish();
  return kDone;
}

// ---- Importing ----

enum Column : std::size_t { kAccount, kYear, kPeriod, kAmount };
constexpr std::array kColumns = {SheetColumn{"account", true}, SheetColumn{"year", true},
                                 SheetColumn{"period"}, SheetColumn{"amount", true}};

Budget ReadBudget(RowCells& cells) {
  Budget budget;
  budget.account = cells.Text(kAccount);
  if (budget.account.empty()) throw BadCell("the budget has no account");
  budget.year = ReadWhole(cells.Text(kYear));
  const std::string& period = cells.Text(kPeriod);
  if (!period.empty()) budget.period = ReadWhole(period);
  budget.amount = ReadAmount(cells.Text(kAmount));
  cells.Leave();
  return budget;
}

int ImportBudgets(const BudgetOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  return ImportSheet(options.file, kColumns, "budgets", props, console,
                     [&](RowCells& cells) { Put(props, ReadBudget(cells)); });
}

int RunBudget(const BudgetOptions& options, const Console& console) {
  if (!options.file.empty()) {
    if (!options.words.empty()) throw UsageError("budget takes ACCOUNT and AMOUNT, or --import");
    return ImportBudgets(options, console);
  }
  if (options.words.empty()) return ListBudgets(options, console);
  if (options.words.size() != 2) throw UsageError("budget takes ACCOUNT and AMOUNT");
  return SetBudget(options, console);
}

}  // namespace

void AddBudgetCommand(Program& program) {
  const auto options = std::make_shared<BudgetOptions>();
  const Command command = program.AddForWords(
      "budget", "Lists, sets or imports budgets of accounts", options->login, options->words,
      {"ACCOUNT AMOUNT", "The account, and its budget; 0 takes it away",
       [](const std::string&, const auto& rest) {
         return !BookFromEnvironment().empty() && rest.size() == 1;
       }},
      [options, &program] { return RunBudget(*options, program.console()); });
  command.Whole("--year", options->year, "The accounting year [the books' current one]");
  command.Whole("--period", options->period, "The period [the year, spread over its periods]");
  command
      .Text("--import", options->file, "FILE",
            "Budgets from a CSV file: account, year, period, amount")
      .Excludes("--year")
      .Excludes("--period");
  AddFormat(command, options->format);
}

}  // namespace qdclgl::cli
