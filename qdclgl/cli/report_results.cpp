#include "qdclgl/cli/report_results.h"

#include <algorithm>

#include "qdclgl/cli/headings.h"
#include "qdclgl/cli/statement_table.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/records/account_kind.h"
#include "qdclgl/server/reports/report.h"

namespace qdclgl::cli {

namespace {

std::string Text(const Dictionary& row, std::string_view key) {
  return row.Value(key).As<String>();
}

std::string Joined(const std::vector<std::string>& spans) {
  std::string text;
  for (const std::string& span : spans) text += (text.empty() ? "" : ",") + span;
  return text;
}

std::vector<std::string> Texts(const std::vector<Long>& years) {
  std::vector<std::string> texts;
  for (const Long year : years) texts.push_back(std::to_string(year));
  return texts;
}

// Blanks that a page keeps in front of a name.
std::string Indented(std::string name) {
  const std::size_t blanks = std::min(name.find_first_not_of(' '), name.size());
  std::string indent;
  for (std::size_t i = 0; i < blanks; ++i) indent += "\u00A0";
  return indent + name.substr(blanks);
}

}  // namespace

std::vector<Long> ReportResults::Years() const {
  std::vector<Long> years;
  for (const YearAndPeriod& period : periods_) years.push_back(period.first);
  years.erase(std::unique(years.begin(), years.end()), years.end());
  return years;
}

Ref<Recordset> ReportResults::Statement(const char* method, const std::string& spans) const {
  return CreateObject(server::ReportInfo::kProgID)
      ->Call(method, books_.props, spans)
      .As<Recordset>();
}

void ReportResults::WritePage(const std::string& title, const std::string& file, const char* method,
                              const std::string& nothing) const {
  const std::vector<std::string> years = Texts(Years());
  std::ofstream out = folder_.Begin(file);
  BeginPage(out, books_.Head(title, file));
  StatementText text;
  text.remarks.push_back(nothing);
  if (!years.empty()) {
    const Ref<Recordset> rows = Statement(method, Joined(years));
    text = Arranged(*rows, {.columns = years, .nothing = nothing}, books_.look);
  }
  if (!text.lines.empty()) {
    std::vector<HtmlColumn> columns;
    for (const std::string& heading : HeadingsOf(text.headings)) {
      columns.push_back({heading, columns.size() > 1});
    }
    HtmlTable table(out, title + " by years", columns);
    for (const StatementLine& line : text.lines) {
      std::vector<HtmlCell> cells;
      for (const Variant& cell : line.cells) {
        cells.push_back({cell.Type() == VariantType::kCurrency ? books_.Money(cell.Held<Currency>())
                                                               : Indented(CellText(cell))});
      }
      table.Row(cells, line.is_total ? HtmlRow::kSum : HtmlRow::kPlain);
    }
    table.End();
  }
  for (const std::string& remark : text.remarks) out << "<p>" << Escaped(remark) << "</p>\n";
  EndPage(out);
  folder_.End(out, file);
}

void ReportResults::WritePages() const {
  WritePage("Income statement", "income.html", "GetIncome",
            "Nothing is posted on accounts of income or expense.");
  WritePage("Balance sheet", "position.html", "GetPosition", "Nothing is posted yet.");
}

void ReportResults::WriteMonths(std::ostream& out) const {
  std::vector<std::string> spans;
  for (const YearAndPeriod& period : periods_) spans.push_back(PeriodText(period));
  const Ref<Recordset> rows = Statement("GetIncome", Joined(spans));
  std::vector<ChartBar> bars;
  for (; !rows->Eof(); rows->MoveNext()) {
    const Ref<Dictionary> row = rows->Row();
    if (Text(*row, "FRow") != server::report_row::kResult) continue;
    const auto amount = row->Value("FAmount").As<Currency>();
    bars.push_back({spans.at(bars.size()), amount, books_.Money(amount)});
  }
  out << "<h2>Result</h2>\n";
  WriteBarChart(out, "Income less expense by period", "Period", bars);
}

void ReportResults::WriteCosts(std::ostream& out) const {
  constexpr std::size_t kMost = 10;
  const std::string year = std::to_string(periods_.back().first);
  const Ref<Recordset> rows = Statement("GetIncome", year);
  std::vector<ChartBar> bars;
  for (; !rows->Eof(); rows->MoveNext()) {
    const Ref<Dictionary> row = rows->Row();
    const auto amount = row->Value("FAmount").As<Currency>();
    if (Text(*row, "FRow") != server::report_row::kAccount ||
        Text(*row, "FKind") != server::account_kind::kExpense ||
        !row->Value("FDetail").As<Boolean>() || amount <= Currency()) {
      continue;
    }
    const std::string number = Text(*row, "FAccountNumber");
    bars.push_back(
        {number + " " + Text(*row, "FAccountName"), amount, books_.Money(amount), number});
  }
  if (bars.empty()) return;
  std::ranges::stable_sort(bars, std::greater(), &ChartBar::amount);
  bars.resize(std::min(kMost, bars.size()));
  out << "<h2>Largest costs</h2>\n";
  WriteBarChart(out, "Largest costs of " + year, "Account", bars);
}

void ReportResults::WriteCharts(std::ostream& out) const {
  if (periods_.empty()) return;
  WriteMonths(out);
  WriteCosts(out);
}

}  // namespace qdclgl::cli
