#include "qdclgl/cli/statement_table.h"

#include <algorithm>
#include <cstdio>
#include <map>

#include "qdclgl/cli/chart.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/records/account_kind.h"
#include "qdclgl/server/records/master_data.h"
#include "qdclgl/server/reports/report.h"

namespace qdclgl::cli {

namespace {

using server::account_kind::kAsset;
using server::account_kind::kEquity;
using server::account_kind::kExpense;
using server::account_kind::kIncome;
using server::account_kind::kLiability;
namespace report_row = server::report_row;

// A row with all of its columns.
struct StatementRow {
  std::string row, kind, number, name;
  Long level = 0;
  std::vector<Currency> amounts;
  std::vector<double> percents;
  std::vector<Currency> budgets = {};
  std::vector<double> of_budgets = {};
};

bool TakeRow(Recordset& rows, const StatementLayout& layout, StatementRow& taken) {
  if (rows.Eof()) return false;
  const Ref<Dictionary> first = rows.Row();
  const auto text = [&](const char* column) { return first->Value(column).As<String>(); };
  taken = {text("FRow"),
           text("FKind"),
           WithoutOwnLines(text("FAccountNumber")),
           text("FAccountName"),
           first->Value("FLevel").As<Long>(),
           {},
           {}};
  for (std::size_t i = 0; i < layout.columns.size(); ++i, rows.MoveNext()) {
    const Ref<Dictionary> row = rows.Row();
    taken.amounts.push_back(row->Value("FAmount").As<Currency>());
    taken.percents.push_back(row->Value("FPercent").As<Double>());
    if (!layout.has_budget) continue;
    taken.budgets.push_back(row->Value("FBudget").As<Currency>());
    taken.of_budgets.push_back(row->Value("FBudgetPercent").As<Double>());
  }
  return true;
}

std::string SectionOf(const std::string& kind) {
  static const std::map<std::string_view, std::string> kSections = {
      {kAsset, "Assets"},  {kLiability, "Liabilities"}, {kEquity, "Equity"},
      {kIncome, "Income"}, {kExpense, "Expense"},       {"", "Accounts without a kind"}};
  return kSections.at(kind);
}

// What a row is called that is no account.
std::string CaptionOf(const StatementRow& row) {
  if (row.row == report_row::kTotal) return "Total " + FoldAsciiCase(SectionOf(row.kind));
  if (row.row == report_row::kEarlier) return "  Results of earlier years";
  if (row.row == report_row::kSources) return "Liabilities and equity";
  if (row.row == report_row::kDifference) return "Difference";
  return row.kind == kEquity ? "  Result of the year" : "Result";
}

std::string PercentText(double percent) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f%%", percent);
  return text;
}

// A statement's lines under the headings of their sections.
class StatementLines {
 public:
  explicit StatementLines(const StatementLayout& layout) : layout_(layout) {}

  void Put(const StatementRow& row) {
    if (row.row == report_row::kAccount) {
      if (layout_.depth != 0 && row.level > layout_.depth) return;
      Open(row.kind);
      const std::string indent(static_cast<std::size_t>(2 * row.level), ' ');
      return PutCells(row.number, indent + row.name, row);
    }
    // A result of nothing, in the midst of the equity, says nothing.
    const bool is_part = row.kind == kEquity && row.row != report_row::kTotal;
    if (is_part && std::ranges::all_of(row.amounts, [](Currency c) { return c == Currency(); })) {
      return;
    }
    if (!row.kind.empty()) Open(row.kind);
    PutCells("", CaptionOf(row), row);
  }
  std::vector<StatementLine> Take() { return std::move(lines_); }

  static std::vector<std::string> HeadingsOf(const StatementLayout& layout) {
    std::vector<std::string> headings = {"FAccountNumber", "FAccountName"};
    for (const std::string& column : layout.columns) {
      headings.push_back(column);
      if (layout.has_percent) headings.emplace_back("%");
      if (layout.has_budget) headings.insert(headings.end(), {"Budget", "Difference", "%"});
    }
    if (layout.has_change) headings.emplace_back("Change");
    return headings;
  }

 private:
  // The heading of a section, before its first row.
  void Open(const std::string& kind) {
    if (is_open_ && kind == section_) return;
    is_open_ = true;
    section_ = kind;
    std::vector<Variant> cells = {"", SectionOf(kind)};
    cells.resize(HeadingsOf(layout_).size(), "");
    lines_.push_back({std::move(cells)});
  }

  void PutCells(const std::string& number, const std::string& name, const StatementRow& row) {
    std::vector<Variant> cells = {number, name};
    for (std::size_t i = 0; i < row.amounts.size(); ++i) {
      cells.emplace_back(row.amounts[i]);
      if (layout_.has_percent) cells.emplace_back(PercentText(row.percents[i]));
      if (layout_.has_budget) PutBudget(row, i, cells);
    }
    if (layout_.has_change) cells.emplace_back(row.amounts[0] - row.amounts[1]);
    lines_.push_back({std::move(cells), row.row != report_row::kAccount});
  }

  // Of nothing there is no share.
  static void PutBudget(const StatementRow& row, std::size_t column, std::vector<Variant>& cells) {
    const Currency budget = row.budgets[column];
    cells.emplace_back(budget);
    cells.emplace_back(row.amounts[column] - budget);
    cells.emplace_back(budget == Currency() ? "" : PercentText(row.of_budgets[column]));
  }

  const StatementLayout& layout_;
  std::vector<StatementLine> lines_;
  bool is_open_ = false;
  std::string section_;
};

// What assets and their sources differ by is told in words too: no reader has to look for it.
void TellOutcome(const StatementRow& difference, const StatementLayout& layout, const Look& look,
                 std::vector<std::string>& remarks) {
  const std::size_t before = remarks.size();
  for (std::size_t i = 0; i < layout.columns.size(); ++i) {
    const Currency amount = difference.amounts[i];
    if (amount == Currency()) continue;
    remarks.push_back(layout.columns[i] + ": assets differ from liabilities and equity by " +
                      MoneyText(amount, look.DecimalsOf(kBaseCurrencyID)) +
                      ", as accounts without a kind have balances.");
  }
  if (remarks.size() == before) remarks.emplace_back("Assets are equal to liabilities and equity.");
}

void TellAccountsWithoutKind(const std::vector<StatementRow>& accounts,
                             std::vector<std::string>& remarks) {
  if (accounts.empty()) return;
  std::string text = accounts.size() == 1 ? "An account has no kind and is in no sum:"
                                          : std::to_string(accounts.size()) +
                                                " accounts have no kind and are in no sum:";
  for (const StatementRow& account : accounts) {
    text +=
        (&account == &accounts.front() ? " " : ", ") + account.number + " " + OneLine(account.name);
  }
  remarks.push_back(text + ".");
  remarks.push_back("Tell it with qdclgl set accounts " + accounts.front().number +
                    " FKind=..., which is " + server::WordsText(server::account_kind::kAll) +
                    "; it holds for those below as well.");
}

}  // namespace

StatementText Arranged(Recordset& rows, const StatementLayout& layout, const Look& look) {
  std::vector<StatementRow> statement;
  for (StatementRow row; TakeRow(rows, layout, row);) statement.push_back(row);
  StatementText text{.headings = StatementLines::HeadingsOf(layout), .lines = {}, .remarks = {}};
  if (std::ranges::count(statement, report_row::kAccount, &StatementRow::row) == 0) {
    text.remarks.push_back(layout.nothing);
    return text;
  }
  StatementLines lines(layout);
  for (const StatementRow& row : statement) lines.Put(row);
  text.lines = lines.Take();
  const StatementRow& last = statement.back();
  if (last.row == report_row::kDifference) TellOutcome(last, layout, look, text.remarks);
  std::erase_if(statement, [](const StatementRow& row) {
    return row.row != report_row::kAccount || !row.kind.empty() || row.level != 1;
  });
  TellAccountsWithoutKind(statement, text.remarks);
  return text;
}

void WriteStatement(const Console& console, Recordset& rows, const StatementLayout& layout) {
  const StatementText text = Arranged(rows, layout, console.look);
  if (!text.lines.empty()) {
    TableWriter table(console, Format::kPlain, text.headings);
    table.AlignRight(2);
    for (const StatementLine& line : text.lines) {
      if (line.is_total) table.Total(line.cells);
      else table.Row(line.cells);
    }
    table.Finish();
  }
  for (const std::string& remark : text.remarks) console.out << remark << '\n';
}

}  // namespace qdclgl::cli
