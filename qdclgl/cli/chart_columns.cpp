#include "qdclgl/cli/chart_columns.h"

#include <algorithm>
#include <array>

namespace qdclgl::cli {

namespace {

constexpr std::array kColumns = {
    SheetColumn{"number", true}, SheetColumn{"name", true}, SheetColumn{"dc", true},
    SheetColumn{"currency"},     SheetColumn{"unit"},       SheetColumn{"quantities"},
    SheetColumn{"items"},
};
static_assert(kColumns.size() == chart_column::kFirstFurther);

// Those that have columns of their own, ids, and the mark of a deleted account: a new one is in
// use.
constexpr std::string_view kNotFurther[] = {
    "FNumber",        "FName",        "FDC",          "FCurrencyID",
    "FQuantities",    "FMeasureUnit", "FUnitGroupID", "FMeasureUnitID",
    "FEarnAccountID", "FDelete",
};

}  // namespace

const std::vector<WrittenColumn>& FurtherChartColumns() {
  static const std::vector<WrittenColumn> kFurther = [] {
    std::vector<WrittenColumn> columns = WrittenColumns(KindNamed("accounts"));
    std::erase_if(columns, [](const WrittenColumn& column) {
      return column.list != nullptr || std::ranges::count(kNotFurther, column.name) != 0;
    });
    return columns;
  }();
  return kFurther;
}

std::string_view ChartHeadingOf(const WrittenColumn& further) {
  return further.name == kKindKey ? "kind" : further.name;
}

const std::vector<SheetColumn>& ChartColumns() {
  static const std::vector<SheetColumn> kAll = [] {
    std::vector<SheetColumn> columns(kColumns.begin(), kColumns.end());
    for (const WrittenColumn& further : FurtherChartColumns())
      columns.push_back({.heading = ChartHeadingOf(further), .is_rare = true});
    return columns;
  }();
  return kAll;
}

}  // namespace qdclgl::cli
