// The trial balance.
#include <algorithm>
#include <map>

#include "qdclgl/cli/chart.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

namespace {

struct BalanceOptions {
  Login login;
  Format format = Format::kPlain;
  Long year = 0;
  Long from = 0;
  Long to = 0;
};

Currency Amount(Recordset& rows, std::string_view column) {
  return rows.FieldValue(rows.FieldPosition(column)).As<Currency>();
}

// One row for each account with movement, in the form that other programs read. To them the own
// lines of an account with others below it are the account's.
void PrintCsv(Recordset& rows, std::ostream& out) {
  std::map<std::string, std::vector<Variant>> lines;
  for (; !rows.Eof(); rows.MoveNext()) {
    const std::string number =
        WithoutOwnLines(rows.FieldValue(rows.FieldPosition("FAccountNumber")).As<String>());
    lines[number] = {number, Amount(rows, "FDebit"), Amount(rows, "FCredit"),
                     Amount(rows, "FEndBalance")};
  }
  TableWriter table(out, Format::kCsv, {"account", "debit", "credit", "balance"});
  for (const auto& [number, cells] : lines) table.Row(cells);
  table.Finish();
}

// All accounts as a tree, and the sums below it.
void PrintPlain(Recordset& rows, std::ostream& out) {
  TableWriter table(out, Format::kPlain, {"Account", "Name", "Begin", "Debit", "Credit", "End"});
  constexpr std::string_view kSums[] = {"FBeginBalance", "FDebit", "FCredit", "FEndBalance"};
  std::vector<Currency> totals(std::size(kSums));
  for (; !rows.Eof(); rows.MoveNext()) {
    const Ref<Dictionary> row = rows.Row();
    const auto level = row->Value("FLevel").As<Long>();
    const std::string indent(static_cast<std::size_t>(2 * std::max<Long>(level - 1, 0)), ' ');
    std::vector<Variant> cells = {row->Value("FAccountNumber"),
                                  indent + row->Value("FAccountName").As<String>()};
    for (std::size_t i = 0; i < std::size(kSums); ++i) {
      const auto amount = row->Value(kSums[i]).As<Currency>();
      if (row->Value("FDetail").As<Boolean>()) totals[i] += amount;
      cells.push_back(amount);
    }
    table.Row(cells);
  }
  table.Row({"", "Total", totals[0], totals[1], totals[2], totals[3]});
  table.Finish();
}

int PrintBalance(const BalanceOptions& options, const Console& console) {
  if (options.year == 0 && (options.from != 0 || options.to != 0)) {
    throw UsageError("--from and --to go with a --year");
  }
  const char* filter = "";
  if (options.format == Format::kPlain) filter = "FCurrencyID = 0";
  if (options.format == Format::kCsv) {
    filter = "FCurrencyID = 0 AND FDetail = TRUE AND (FDebit <> 0 OR FCredit <> 0)";
  }
  const std::string props = options.login.Open();
  const auto rows = CreateObject("QDSVGLBalance.BalanceInfo")
                        ->Call("GetList", props, options.year, options.from, options.to, filter,
                               "FAccountNumber, FCurrencyID")
                        .As<Recordset>();
  switch (options.format) {
    case Format::kPlain: PrintPlain(*rows, console.out); break;
    case Format::kCsv: PrintCsv(*rows, console.out); break;
    case Format::kJson: WriteRecordset(console.out, Format::kJson, rows, {}); break;
  }
  return kDone;
}

}  // namespace

void AddBalanceCommand(Program& program) {
  const auto options = std::make_shared<BalanceOptions>();
  CLI::App* command = program.AddForBooks(
      "balance", "Prints the trial balance of what is posted", options->login,
      [options, &program] { return PrintBalance(*options, program.console()); });
  AddWhole(*command, "--year", options->year, "The accounting year [everything posted]");
  AddWhole(*command, "--from", options->from, "The first period [the year's first]");
  AddWhole(*command, "--to", options->to, "The last period [the year's last]");
  AddFormat(*command, options->format);
}

}  // namespace qdclgl::cli
