#include "qdclgl/cli/ledger_page.h"

#include <utility>

#include "qdclgl/cli/html.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/server/ledgers/ledger_sheet.h"

namespace qdclgl::cli {

namespace {

using namespace server;

// A column of the printed sheet: its heading, and where its values stand.
struct Heading {
  std::string text;
  std::string field;
  Long currency = kBaseCurrencyID;  // of amounts
};

String Text(const Dictionary& row, std::string_view key) { return row.Value(key).As<String>(); }

// The name that a list's row was given, or that of what it shows.
String NameOf(const Dictionary& row, std::string_view given, std::string_view otherwise) {
  String name = Text(row, given);
  return name.empty() ? Text(row, otherwise) : name;
}

// The figures of a sheet, in the order of their fields.
std::vector<Heading> Figures(const Dictionary& ledger) {
  std::vector<Heading> headings = {{"Debit", "FDebit"}, {"Credit", "FCredit"}};
  std::vector<std::pair<String, Long>> currencies;
  for (const auto& sub : RowsUnder(ledger, "_SubColumns")) {
    const String name = NameOf(*sub, "FSubColumnName", "FCurrencyNumber");
    const auto currency = sub->Value("FCurrencyID").As<Long>();
    currencies.emplace_back(name, currency);
    const std::string field = "FSub" + std::to_string(currencies.size());
    headings.push_back({name + " debit", field + "Debit", currency});
    headings.push_back({name + " credit", field + "Credit", currency});
    headings.push_back({name + " rate", field + "Rate"});
  }
  headings.push_back({"Side", ""});
  headings.push_back({"Balance", "FBalance"});
  std::size_t number = 0;
  for (const auto& column : RowsUnder(ledger, "_Columns")) {
    const String name = NameOf(*column, "FColumnName", "FAccountNumber");
    const std::string field = "FColumn" + std::to_string(++number);
    headings.push_back({name, field});
    for (std::size_t i = 0; i < currencies.size(); ++i) {
      headings.push_back({name + " " + currencies[i].first, field + "Sub" + std::to_string(i + 1),
                          currencies[i].second});
    }
  }
  return headings;
}

// What stands in front of a row's figures: day, voucher, account and words.
std::vector<std::string> LeadOf(const Dictionary& row) {
  const String kind = Text(row, "FRow");
  const std::string day = CellText(row.Value("FDate"));
  if (kind == sheet_row::kLine) {
    return {day, Text(row, "FGroup") + " " + Text(row, "FNumber"), Text(row, "FAccountNumber"),
            Text(row, "FExplanation")};
  }
  const std::string words = kind == sheet_row::kOpening ? "Brought forward"
                            : kind == sheet_row::kPeriod
                                ? "Period " + Text(row, "FYear") + "/" + Text(row, "FPeriod")
                            : kind == sheet_row::kYear ? "Year " + Text(row, "FYear") + " to date"
                                                       : "Carried forward";
  return {day, "", "", words};
}

// A figure as it is printed; what is nothing is left out, but for the balance.
Variant FigureOf(const Dictionary& row, const Heading& heading) {
  if (heading.text == "Side" && heading.field.empty()) {
    const auto side = row.Value("FDC").As<Long>();
    return side > 0 ? "debit" : side < 0 ? "credit" : "";
  }
  const Variant value = row.Value(heading.field);
  const bool is_shown = heading.field == "FBalance" || (!value.IsEmpty() && CDbl(value) != 0);
  return is_shown ? value : Variant("");
}

std::string FigureText(const Dictionary& row, const Heading& heading, const Look& look) {
  const Variant figure = FigureOf(row, heading);
  return figure.Type() == VariantType::kCurrency
             ? MoneyText(figure.Held<Currency>(), look.DecimalsOf(heading.currency))
             : CellText(figure);
}

constexpr const char* kLead[] = {"Date", "Voucher", "Account", "Explanation"};

}  // namespace

void WriteLedgerTable(const Console& console, const Dictionary& ledger, Recordset& sheet) {
  const std::vector<Heading> figures = Figures(ledger);
  std::vector<std::string> headings(std::begin(kLead), std::end(kLead));
  for (const Heading& heading : figures) {
    const bool shows_key = console.look.shows_keys && !heading.field.empty();
    headings.push_back(shows_key ? heading.field : heading.text);
  }
  TableWriter table(console, Format::kPlain, headings);
  table.AlignRight(std::size(kLead));
  for (std::size_t i = 0; i < figures.size(); ++i) {
    table.InCurrency(std::size(kLead) + i, figures[i].currency);
  }
  for (; !sheet.Eof(); sheet.MoveNext()) {
    const Ref<Dictionary> row = sheet.Row();
    std::vector<Variant> cells;
    for (std::string& text : LeadOf(*row)) cells.emplace_back(std::move(text));
    for (const Heading& heading : figures) cells.push_back(FigureOf(*row, heading));
    if (Text(*row, "FRow") == sheet_row::kLine) table.Row(cells);
    else table.Total(cells);
  }
  table.Finish();
}

void WriteLedgerPage(const Console& console, const Dictionary& ledger, Recordset& sheet) {
  const std::vector<Heading> figures = Figures(ledger);
  std::vector<HtmlColumn> columns;
  for (const char* heading : kLead) columns.push_back({heading});
  for (const Heading& heading : figures) columns.push_back({heading.text, true});
  BeginPage(console.out, {Text(ledger, "FLedgerName") + ": " + Text(ledger, "FAccountNumber") +
                              " " + Text(ledger, "FAccountName"),
                          CompanyOfBooks()});
  HtmlTable table(console.out, "Multi-column ledger", columns);
  for (; !sheet.Eof(); sheet.MoveNext()) {
    const Ref<Dictionary> row = sheet.Row();
    std::vector<HtmlCell> cells;
    for (std::string& text : LeadOf(*row)) cells.push_back({std::move(text)});
    for (const Heading& heading : figures) {
      cells.push_back({FigureText(*row, heading, console.look)});
    }
    table.Row(cells, Text(*row, "FRow") == sheet_row::kLine ? HtmlRow::kPlain : HtmlRow::kSum);
  }
  table.End();
  EndPage(console.out);
}

}  // namespace qdclgl::cli
