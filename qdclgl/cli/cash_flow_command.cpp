// The cash flow.
#include "qdclgl/cli/day_words.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/ledgers/cash_flow.h"
#include "qdclgl/server/ledgers/ledger_sheet.h"

namespace qdclgl::cli {

namespace {

struct CashFlowOptions {
  Login login;
  Format format = Format::kPlain;
  std::string from, to;
  bool compare = false;
};

std::string Text(const Dictionary& row, std::string_view key) {
  return row.Value(key).As<String>();
}

Variant Figure(const Dictionary& row, std::string_view key) {
  const Variant value = row.Value(key);
  return value.As<Currency>() == 0 ? Variant("") : value;
}

void PrintPlain(Recordset& rows, bool compare, const Console& console) {
  TableWriter table(console, Format::kPlain,
                    {"Item", "Account", "Name", "In", "Out", "Net", "Year before"});
  table.LeaveOutEmpty();
  for (; !rows.Eof(); rows.MoveNext()) {
    const Ref<Dictionary> row = rows.Row();
    const String kind = Text(*row, "FRow");
    const bool is_opening = kind == server::sheet_row::kOpening;
    const bool is_balance = is_opening || kind == server::sheet_row::kClosing;
    const auto item = row->Value("FCashFlowItem").As<Long>();
    const auto flow = [&](std::string_view key) {
      return is_balance ? Variant("") : Figure(*row, key);
    };
    table.Row({item == 0 ? "" : std::to_string(item), Text(*row, "FAccountNumber"),
               is_balance ? (is_opening ? "Cash at the beginning" : "Cash at the end")
                          : Text(*row, "FAccountName"),
               flow("FInflow"), flow("FOutflow"), row->Value("FNet"),
               compare ? row->Value("FNetBefore") : Variant("")});
  }
  table.Finish();
}

int PrintCashFlow(const CashFlowOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  const auto rows =
      CreateObject(server::CashFlowInfo::kProgID)
          ->Call("GetCashFlow", props, DayFrom(props, "--from", options.from, DayEnd::kFirst),
                 DayFrom(props, "--to", options.to, DayEnd::kLast), Boolean{options.compare})
          .As<Recordset>();
  if (options.format != Format::kPlain) WriteRecordset(console, options.format, rows, {});
  else PrintPlain(*rows, options.compare, console);
  return kDone;
}

}  // namespace

void AddCashFlowCommand(Program& program) {
  const auto options = std::make_shared<CashFlowOptions>();
  const Command command = program.AddForBooks(
      "cashflow", "Prints where cash has come from and gone to", options->login,
      [options, &program] { return PrintCashFlow(*options, program.console()); });
  command.Text("--from", options->from, "DAY", "The first day, period or year [this year's]");
  command.Text("--to", options->to, "DAY", "The last day, period or year [that year's]");
  command.Flag("--compare", options->compare, "The same days a year before beside them");
  AddFormat(command, options->format);
}

}  // namespace qdclgl::cli
