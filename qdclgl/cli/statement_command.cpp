// Statements of accounts.
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/day_words.h"
#include "qdclgl/cli/item_classes.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/ledgers/account_statement.h"
#include "qdclgl/server/ledgers/ledger_sheet.h"

namespace qdclgl::cli {

namespace {

using namespace server;

struct StatementOptions {
  Login login;
  Format format = Format::kPlain;
  std::vector<std::string> words;  // ACCOUNT
  std::string from, to;
  std::string by, item;
  std::string after;  // "VOUCHER/LINE"
  Long count = 0;
  bool monthly = false;
  bool unposted = false;
};

// ---- Asking ----

struct LinePlace {
  Long voucher = 0, line = 0;
};

LinePlace PlaceFrom(const std::string& text) {
  if (text.empty()) return {};
  const std::size_t mark = text.find('/');
  if (mark == text.npos) throw UsageError("--after takes VOUCHER/LINE, not " + Quoted(text));
  return {WholeOption("--after", text.substr(0, mark)),
          WholeOption("--after", text.substr(mark + 1))};
}

Ref<Recordset> StatementOf(const StatementOptions& options, const std::string& props) {
  std::string item_class, item;
  if (!options.by.empty()) item_class = ItemClassNamed(ItemClassesOfBooks(), options.by).number;
  if (!options.item.empty()) {
    const std::vector<NamedItemClass> classes = ItemClassesOfBooks();
    const NamedItem named = ItemNamed(classes, options.item);
    item_class = named.item_class.number;
    item = named.number;
  }
  const DateTime from = DayFrom(props, "--from", options.from, DayEnd::kFirst);
  const DateTime to = DayFrom(props, "--to", options.to, DayEnd::kLast);
  const auto info = CreateObject(StatementInfo::kProgID);
  const std::string& account = options.words.front();
  const Boolean unposted = options.unposted;
  if (options.monthly) {
    return info->Call("GetPeriods", props, account, from, to, unposted, item_class, item)
        .As<Recordset>();
  }
  const LinePlace after = PlaceFrom(options.after);
  return info
      ->Call("GetStatement", props, account, from, to, unposted, item_class, item, options.count,
             after.voucher, after.line)
      .As<Recordset>();
}

// ---- Printing ----

std::string Text(const Dictionary& row, std::string_view key) {
  return row.Value(key).As<String>();
}

std::string ItemOf(const Dictionary& row) {
  const std::string number = Text(row, "FItemNumber");
  return number.empty() ? "" : number + " " + Text(row, "FItemName");
}

// An amount that is nothing is left out.
Variant Figure(const Dictionary& row, std::string_view key) {
  const Variant value = row.Value(key);
  return value.As<Currency>() == 0 ? Variant("") : value;
}

std::string WordsOf(const Dictionary& row) {
  const String kind = Text(row, "FRow");
  if (kind == sheet_row::kLine) return Text(row, "FExplanation");
  if (kind == sheet_row::kOpening) return "Brought forward";
  return kind == statement_row::kTotal ? "Total" : "Carried forward";
}

// Amounts in a currency stand beside those that it is worth.
bool IsForeign(const Dictionary& row, const String& base) {
  const String currency = Text(row, "FCurrencyNumber");
  return !currency.empty() && currency != base;
}

String BaseCurrency(const std::string& props) {
  return CreateObject("QDSVGLCurrency.CurrencyInfo")
      ->Call("GetDetail", props, Long{1})
      .As<Dictionary>()
      ->Value("FNumber")
      .As<String>();
}

void PrintLines(Recordset& rows, const String& account, const String& base,
                const Console& console) {
  TableWriter table(console, Format::kPlain,
                    {"Item", "Date", "Voucher", "State", "Account", "Contra", "Explanation",
                     "Reference", "Currency", "Rate", "Debit for", "Credit for", "Balance for",
                     "FDebit", "FCredit", "FBalance"});
  table.LeaveOutEmpty();
  std::string next;
  for (; !rows.Eof(); rows.MoveNext()) {
    const Ref<Dictionary> row = rows.Row();
    const String kind = Text(*row, "FRow");
    const bool is_line = kind == sheet_row::kLine;
    const bool is_foreign = IsForeign(*row, base);
    const auto foreign = [&](const Variant& value) { return is_foreign ? value : Variant(""); };
    const String number = Text(*row, "FAccountNumber");
    table.Row({ItemOf(*row), CellText(row->Value("FDate")),
               is_line ? Text(*row, "FGroup") + " " + Text(*row, "FNumber") : "",
               row->Value("FPosted").As<Boolean>() ? "" : "not posted",
               number == account ? "" : number, Text(*row, "FContra"), WordsOf(*row),
               Text(*row, "FTransNo"), foreign(row->Value("FCurrencyNumber")),
               foreign(is_line ? row->Value("FExchangeRate") : Variant("")),
               foreign(Figure(*row, "FDebitFor")), foreign(Figure(*row, "FCreditFor")),
               foreign(row->Value("FBalanceFor")), Figure(*row, "FDebit"), Figure(*row, "FCredit"),
               row->Value("FBalance")});
    if (kind == statement_row::kMore)
      next = Text(*row, "FVoucherID") + "/" + Text(*row, "FEntryID");
  }
  table.Finish();
  if (!next.empty())
    console.out << "There are more lines; they go on with --after " << next << "\n";
}

void PrintPeriods(Recordset& rows, const Console& console) {
  TableWriter table(console, Format::kPlain,
                    {"Item", "Period", "Opening", "Debit", "Credit", "Closing"});
  table.LeaveOutEmpty();
  for (; !rows.Eof(); rows.MoveNext()) {
    const Ref<Dictionary> row = rows.Row();
    const String kind = Text(*row, "FRow");
    if (kind == sheet_row::kOpening) continue;
    const bool is_period = kind == sheet_row::kPeriod;
    table.Row({ItemOf(*row),
               is_period ? Text(*row, "FYear") + "/" + Text(*row, "FPeriod") : "Total",
               row->Value("FBeginBalance"), row->Value("FDebit"), row->Value("FCredit"),
               row->Value("FBalance")});
  }
  table.Finish();
}

// Whether something moved; otherwise a sentence tells so.
bool HasMovements(const Ref<Recordset>& rows, const String& account, const Console& console) {
  Ref<Dictionary> first, last;
  bool has_any = false;
  const Ref<Recordset> all = rows->Clone();
  for (; !all->Eof(); all->MoveNext()) {
    last = all->Row();
    if (!first) first = last;
    const String kind = Text(*last, "FRow");
    has_any = has_any || kind == sheet_row::kLine || kind == sheet_row::kPeriod;
  }
  if (has_any) return true;
  console.out << "Nothing moves on " << account << " from " << CellText(first->Value("FDate"))
              << " to " << CellText(last->Value("FDate")) << "; the balance is "
              << MoneyText(last->Value("FBalance").As<Currency>(),
                           console.look.DecimalsOf(kBaseCurrencyID), console.look.negatives)
              << ".\n";
  return false;
}

int PrintStatement(const StatementOptions& options, const Console& console) {
  if (options.words.size() != 1) throw UsageError("statement takes one ACCOUNT");
  const std::string props = options.login.Open();
  const Ref<Recordset> rows = StatementOf(options, props);
  const String& account = options.words.front();
  if (options.format != Format::kPlain) WriteRecordset(console, options.format, rows, {});
  else if (!HasMovements(rows, account, console)) return kDone;
  else if (options.monthly) PrintPeriods(*rows, console);
  else PrintLines(*rows, account, BaseCurrency(props), console);
  return kDone;
}

// With books from the environment the first word is not BOOK.
bool IsAccount(const std::string&, const std::vector<std::string>& rest) {
  return rest.empty() && !BookFromEnvironment().empty();
}

}  // namespace

void AddStatementCommand(Program& program) {
  const auto options = std::make_shared<StatementOptions>();
  const Command command = program.AddForWords(
      "statement", "Prints what is posted on an account, with balances", options->login,
      options->words, {"ACCOUNT", "The number of an account; those below it count too", IsAccount},
      [options, &program] { return PrintStatement(*options, program.console()); });
  command.Text("--from", options->from, "DAY", "The first day, period or year [this year's]");
  command.Text("--to", options->to, "DAY", "The last day, period or year [that year's]");
  const Option monthly = command.Flag("--monthly", options->monthly, "A line for each period");
  command.Flag("--unposted", options->unposted, "What is not posted too");
  const Option by = command.Text("--by", options->by, "CLASS", "Item by item of this class");
  command.Text("--item", options->item, "CLASS=NUMBER", "Only what is posted for this item")
      .Excludes(by);
  command.Whole("--count", options->count, "At most so many lines").Excludes(monthly).Excludes(by);
  command.Text("--after", options->after, "VOUCHER/LINE", "Goes on behind this line")
      .Excludes(monthly)
      .Excludes(by);
  AddFormat(command, options->format);
}

}  // namespace qdclgl::cli
