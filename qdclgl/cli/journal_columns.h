// The columns of a journal file, as it is read and written.
#pragma once

#include <array>
#include <span>

#include "qdclgl/cli/item_classes.h"
#include "qdclgl/cli/sheet_column.h"
#include "qdclgl/server/db/columns.h"

namespace qdclgl::cli {

namespace journal_column {

enum Place : std::size_t {
  kVoucher,
  kDate,
  kAccount,
  kDebit,
  kCredit,
  kGroup,
  kNumber,
  kExplanation,
  kCurrency,
  kAmountFor,
  kRate,
  kQuantity,
  kUnit,
  kUnitPrice,
  kReference,
  kVoucherReference,
  kVoucherExplanation,
  kSettlement,
  kFirstFurther,
};

}  // namespace journal_column

inline constexpr std::array kJournalColumns = {
    SheetColumn{"voucher", true},
    SheetColumn{"date", true},
    SheetColumn{"account", true},
    SheetColumn{"debit", true},
    SheetColumn{"credit", true},
    SheetColumn{"group"},
    SheetColumn{"number"},
    SheetColumn{"explanation"},
    SheetColumn{"currency"},
    SheetColumn{"amount_for"},
    SheetColumn{"rate"},
    SheetColumn{"quantity"},
    SheetColumn{"unit"},
    SheetColumn{"unit_price"},
    SheetColumn{"reference"},
    SheetColumn{"voucher_reference"},
    SheetColumn{"voucher_explanation"},
    SheetColumn{"settlement"},
};
static_assert(kJournalColumns.size() == journal_column::kFirstFurther);

// What stands under rate on a line that has none, though its amounts would give one.
inline constexpr std::string_view kNoRate = "0";

// What else a voucher or a line can have, each under its key in their rows.
struct FurtherColumn {
  server::Column column;
  bool is_of_line = false;
};
inline constexpr FurtherColumn kFurtherColumns[] = {
    {{"FAttachments", server::ColumnType::kLong}},
    {{"FTransDate", server::ColumnType::kDate}},
    {{"FTranType", server::ColumnType::kLong}},
    {{"FSerialNum", server::ColumnType::kLong}},
    {{"FInternalInd", server::ColumnType::kText}},
    {{"FHandler", server::ColumnType::kText}},
    {{"FObjectName", server::ColumnType::kText}},
    {{"FParameter", server::ColumnType::kText}},
    {{"FFootNote", server::ColumnType::kText}},
    {{"FLockDate", server::ColumnType::kBoolean}},
    {{"FIsAmortize", server::ColumnType::kLong}},
    {{"FAmortizeSchemeID", server::ColumnType::kLong}},
    {{"FBlankOutFlag", server::ColumnType::kInteger}},
    {{"FCashFlowItem", server::ColumnType::kLong}, true},
    {{"FSettleNo", server::ColumnType::kText}, true},
};
// Behind them stand those of items.
inline constexpr std::size_t kFirstItemColumn =
    journal_column::kFirstFurther + std::size(kFurtherColumns);

// The item classes by which a journal can have columns, and these columns.
class ItemColumns {
 public:
  // Those of the books. The library's session must be there.
  ItemColumns();
  ItemColumns(const ItemColumns&) = delete;
  ItemColumns& operator=(const ItemColumns&) = delete;

  const std::vector<NamedItemClass>& classes() const { return classes_; }
  const std::vector<SheetColumn>& columns() const { return columns_; }

 private:
  std::vector<NamedItemClass> classes_;
  std::vector<SheetColumn> columns_;
};

}  // namespace qdclgl::cli
