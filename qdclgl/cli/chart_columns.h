// The columns of a chart of accounts as a file, as it is read and written.
#pragma once

#include <vector>

#include "qdclgl/cli/record_kinds.h"
#include "qdclgl/cli/sheet.h"

namespace qdclgl::cli {

namespace chart_column {

enum Place : std::size_t {
  kNumber,
  kName,
  kSide,
  kCurrency,
  kUnit,
  kQuantities,
  kItems,
  kFirstFurther,
};

}  // namespace chart_column

// What else a caller can say of an account, each under its key. Ids of other records are not among
// it: they are others in other books.
const std::vector<WrittenColumn>& FurtherChartColumns();

inline constexpr std::string_view kKindKey = "FKind";
// What a file calls such a column: its key, but for the kind, which people write by hand.
std::string_view ChartHeadingOf(const WrittenColumn& further);

// All columns, those of FurtherChartColumns behind the others.
const std::vector<SheetColumn>& ChartColumns();

}  // namespace qdclgl::cli
