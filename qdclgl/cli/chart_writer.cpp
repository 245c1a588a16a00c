#include "qdclgl/cli/chart_writer.h"

#include <algorithm>

#include "qdclgl/cli/chart.h"
#include "qdclgl/cli/chart_columns.h"
#include "qdclgl/cli/listing.h"
#include "qdclgl/cli/records.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/vocabulary/strings.h"

namespace qdclgl::cli {

namespace {

// The numbers of the item classes that an account asks for.
std::string ItemsOf(const Dictionary& account, const std::vector<NamedItemClass>& classes) {
  std::string numbers;
  for (const Long id : AskedClasses(account)) {
    const auto asked = std::ranges::find(classes, id, &NamedItemClass::id);
    if (asked != classes.end()) numbers += (numbers.empty() ? "" : " ") + asked->number;
  }
  return numbers;
}

std::vector<Variant> Cells(const Dictionary& account, const std::vector<NamedItemClass>& classes,
                           const std::vector<WrittenColumn>& further) {
  const bool is_in_base = account.Value("FCurrencyID").As<Long>() == Names::kBaseCurrency;
  std::vector<Variant> cells = {
      account.Value("FNumber"),      account.Value("FName"),
      account.Value("FDC"),          is_in_base ? Variant("") : account.Value("FCurrencyNumber"),
      account.Value("FMeasureUnit"), account.Value("FQuantities").As<Boolean>() ? "yes" : "",
      ItemsOf(account, classes)};
  for (const WrittenColumn& column : further) {
    cells.push_back(IsFilled(account, {column.name, column.type}) ? account.Value(column.name)
                                                                  : Variant(""));
  }
  return cells;
}

}  // namespace

std::vector<Ref<Dictionary>> AccountsOfBooks(const std::string& props) {
  const Ref<Recordset> rows =
      FetchList(*FindList("accounts"), props, {.sort = "FNumber", .with_deleted = true});
  const Records records(KindNamed("accounts"), props);
  std::vector<Ref<Dictionary>> accounts;
  for (; !rows->Eof(); rows->MoveNext()) {
    records.AddLists(*accounts.emplace_back(RowToDictionary(rows)));
  }
  return accounts;
}

std::vector<Long> AskedClasses(const Dictionary& account) {
  std::vector<Long> ids;
  const auto items = account.Value(strings::lists::Items).As<Vector>();
  for (std::size_t i = 0; i < items->size(); ++i) {
    ids.push_back(items->at(i).As<Dictionary>()->Value("FItemClassID").As<Long>());
  }
  return ids;
}

long WriteChart(const std::vector<Ref<Dictionary>>& accounts, std::ostream& out) {
  std::vector<WrittenColumn> further = FurtherChartColumns();
  std::erase_if(further, [&](const WrittenColumn& column) {
    return std::ranges::none_of(accounts, [&](const auto& row) {
      return IsFilled(*row, {column.name, column.type});
    });
  });
  std::vector<std::string> headings;
  for (std::size_t i = 0; i < chart_column::kFirstFurther; ++i) {
    headings.emplace_back(ChartColumns()[i].heading);
  }
  for (const WrittenColumn& column : further) headings.emplace_back(ChartHeadingOf(column));
  const Console console{out, out};
  TableWriter table(console, Format::kCsv, std::move(headings));
  const std::vector<NamedItemClass> classes = ItemClassesOfBooks();
  long count = 0;
  for (const Ref<Dictionary>& account : accounts) {
    const auto number = account->Value("FNumber").As<String>();
    if (WithoutOwnLines(number) != number) continue;
    table.Row(Cells(*account, classes, further));
    ++count;
  }
  table.Finish();
  return count;
}

}  // namespace qdclgl::cli
