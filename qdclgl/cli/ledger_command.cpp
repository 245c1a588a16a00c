// Multi-column ledgers: printing one, and adding one.
#include <algorithm>
#include <sstream>

#include "qdclgl/accounts/account_set.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/day_words.h"
#include "qdclgl/cli/ledger_page.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/ledgers/multi_ledger_set.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kInfo = "QDSVGLMCLedger.MultiColumnLedgerInfo";
constexpr const char* kAdd = "add";

struct LedgerOptions {
  Login login;
  Format format = Format::kPlain;
  bool html = false;
  std::vector<std::string> words;  // behind BOOK: NAME, or add and NAME
  std::string name;
  std::string from, to;
  std::string account, columns, side, currencies;
};

[[noreturn]] void RefuseMissing(const std::string& what) {
  throw Error(server::refusal::kNotFound, "qdclgl", "There is no " + what + ".");
}

// ---- Printing ----

int PrintLedger(const LedgerOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  const DateTime from = DayFrom(props, "--from", options.from, DayEnd::kFirst);
  const DateTime to = DayFrom(props, "--to", options.to, DayEnd::kLast);
  const auto info = CreateObject(kInfo);
  const auto ledger = info->Call("GetDetailByNumber", props, options.name).As<Dictionary>();
  if (!ledger) RefuseMissing("ledger " + Quoted(options.name));
  const auto sheet =
      info->Call("GetLedger", props, ledger->Value("FLedgerID"), from, to).As<Recordset>();
  if (options.html) WriteLedgerPage(console, *ledger, *sheet);
  else if (options.format == Format::kPlain) WriteLedgerTable(console, *ledger, *sheet);
  else WriteRecordset(console, options.format, sheet, {});
  return kDone;
}

// ---- Adding ----

std::vector<std::string> Words(const std::string& list) {
  std::vector<std::string> words;
  std::istringstream in(list);
  for (std::string word; std::getline(in, word, ',');) {
    const std::size_t first = word.find_first_not_of(' ');
    if (first == word.npos) continue;
    words.push_back(word.substr(first, word.find_last_not_of(' ') - first + 1));
  }
  return words;
}

// The accounts that a filter finds, by number.
Ref<AccountSet> AccountsWhere(const std::string& filter) {
  auto accounts = Make<AccountSet>();
  accounts->Filter(filter);
  accounts->Sort("FNumber");
  return accounts;
}

Ref<Account> AccountOf(const std::string& number) {
  const auto accounts = AccountsWhere("FNumber = " + FilterText(ToUpper(number)));
  if (accounts->Count() == 0) RefuseMissing("account " + Quoted(number));
  return accounts->GetCurrent();
}

// The side that a column of an account counts: as told, or that of the account's balance.
Long SideOf(const Account& account, const std::string& side) {
  if (side.empty()) return account.DC() < 0 ? 0 : 1;
  if (side != "debit" && side != "credit") throw UsageError("--side takes debit or credit");
  return side == "debit" ? 1 : 0;
}

void AddColumn(MultiLedger& ledger, const Account& account, const std::string& side) {
  const auto columns = ledger.Columns();
  columns->Add();
  const auto column = columns->Item(columns->Count());
  column->AccountID(account.AccountID());
  column->ColumnName(account.Name());
  column->DC(SideOf(account, side));
}

int AddLedger(const LedgerOptions& options, const Console& console) {
  if (options.account.empty()) throw UsageError("a new ledger takes an --account");
  options.login.Open();
  const Ref<Account> account = AccountOf(options.account);
  const Ref<MultiLedger> ledger = Make<MultiLedgerSet>()->CreateNew(options.name);
  ledger->AccountID(account->AccountID());
  if (options.columns == "children") {
    const auto children = AccountsWhere("FParentID = " + std::to_string(account->AccountID()));
    for (auto& child : *children) AddColumn(*ledger, child, options.side);
  } else {
    for (const std::string& number : Words(options.columns)) {
      AddColumn(*ledger, *AccountOf(number), options.side);
    }
  }
  for (const std::string& number : Words(options.currencies)) {
    const auto currency = Make<CurrencySet>()->Item(ToUpper(number));
    if (currency->CurrencyID() == 0) RefuseMissing("currency " + Quoted(number));
    const auto sub_columns = ledger->SubColumns();
    sub_columns->Add();
    const auto sub_column = sub_columns->Item(sub_columns->Count());
    sub_column->CurrencyID(currency->CurrencyID());
    sub_column->SubColumnName(currency->Number());
  }
  ledger->SaveChanges();
  const Long count = ledger->Columns()->Count();
  console.out << "Ledger " << options.name << " has " << count
              << (count == 1 ? " column.\n" : " columns.\n");
  return kDone;
}

// With books from the environment the first word is not BOOK.
bool IsName(const std::string& first, const std::vector<std::string>& rest) {
  return !BookFromEnvironment().empty() && (rest.empty() || (first == kAdd && rest.size() == 1));
}

int RunLedger(LedgerOptions& options, const Console& console) {
  const std::vector<std::string>& words = options.words;
  const bool adds = words.size() == 2 && words.front() == kAdd;
  if (words.size() != (adds ? 2u : 1u)) throw UsageError("NAME is required");
  options.name = words.back();
  return adds ? AddLedger(options, console) : PrintLedger(options, console);
}

}  // namespace

void AddLedgerCommand(Program& program) {
  const auto options = std::make_shared<LedgerOptions>();
  const Command command = program.AddForWords(
      "ledger", "Prints a multi-column ledger, or adds one", options->login, options->words,
      {"NAME", "The ledger; behind the word add, a new one", IsName},
      [options, &program] { return RunLedger(*options, program.console()); });
  const Option from =
      command.Text("--from", options->from, "DAY", "The first day or period [this year's]");
  const Option to =
      command.Text("--to", options->to, "DAY", "The last day or period [that year's]");
  AddFormat(command, options->format);
  const Option html = command.Flag("--html", options->html, "Prints a page for a browser");
  html.Excludes("--csv").Excludes("--json");
  for (const Option& option :
       {command.Text("--account", options->account, "NUMBER", "The account of a new ledger"),
        command.Text("--columns", options->columns, "NUMBERS",
                     "Its columns: accounts with commas between them, or children"),
        command.Text("--side", options->side, "SIDE",
                     "What its columns count: debit or credit [as their accounts' balances]"),
        command.Text("--currencies", options->currencies, "NUMBERS",
                     "Its sub-columns: currencies with commas between them")}) {
    option.Excludes(from).Excludes(to).Excludes(html);
  }
}

}  // namespace qdclgl::cli
