#include "qdclgl/ledgers/multi_column.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/objects/nesting.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(MultiColumn)
QD_DEFINE_MEMBERS(MultiColumnSet)

namespace {

constexpr RowKey kAccountNumber("FAccountNumber");
constexpr RowKey kSide("FDC");

constexpr Long kDebit = 1;
constexpr Long kCredit = 0;

}  // namespace

String MultiColumn::DCText() const { return DC() == kDebit ? "借" : "贷"; }

Variant MultiColumnSet::Cell(Long index, const RowKey& key) const {
  const auto row = Lines()->Item(index).As<Dictionary>();
  if (!row) RaiseError(error_number::kObjectNotSet);  // a hole
  const Variant* value = row->Find(key);
  return value == nullptr ? Variant() : *value;
}

void MultiColumnSet::Exchange(Long index, Long other) const {
  const Variant kept = Lines()->Item(index);
  Lines()->Item(index, Lines()->Item(other));
  Lines()->Item(other, kept);
}

// The lists are short; what is compared is looked up anew each time, since a value that is an
// object of others answers by code that may change the list.
void MultiColumnSet::SortByAccountNumber() {
  const CallingOut out(this);
  const Long last = Count();
  for (Long i = 1; i < last; ++i) {
    for (Long j = i + 1, end = Count(); j <= end; ++j) {
      if (Compare(Cell(i, kAccountNumber), Cell(j, kAccountNumber)) > 0) Exchange(i, j);
    }
  }
}

void MultiColumnSet::SortByDC() {
  const CallingOut out(this);
  const Long last = Count();
  for (Long i = 1; i < last; ++i) {
    if (!Equals(Cell(i, kSide), Variant(kCredit))) continue;
    Long j = i + 1;
    for (const Long end = Count(); j <= end; ++j) {
      if (!Equals(Cell(j, kSide), Variant(kDebit))) continue;
      Exchange(i, j);
      break;
    }
    if (j == Count()) return;  // what stands behind the last debit is credit
  }
}

}  // namespace qdclgl
