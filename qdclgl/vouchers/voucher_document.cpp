#include "qdclgl/vouchers/voucher_document.h"

namespace qdclgl {

namespace {

constexpr RowKey kEntries("_Entries");
constexpr RowOptions kPlain;

}  // namespace

void VoucherDocument::ResetModified() { Bag().ChangeFlag()->Reset(); }

Boolean VoucherDocument::Modified() const { return Bag().ChangeFlag()->Modified(); }

Ref<Dictionary> VoucherDocument::DictOrig() const { return m_DictOrig; }

Ref<Vector> VoucherDocument::Lines() const {
  Ref<Vector> lines = ReadField<Ref<Vector>>(kEntries, kPlain);
  if (!lines) {
    lines = Make<Vector>();
    lines->LowerBound(1);
    // Past the bag: looking at the lines of a new object is no edit.
    Bag().Dictionary()->Put(kEntries, Variant(lines));
  }
  return lines;
}

Ref<VoucherEntrySet> VoucherDocument::Entries() const {
  auto entries = Make<VoucherEntrySet>();
  entries->Attach(Lines(), Bag().ChangeFlag()->Item(kEntries.text()));
  return entries;
}

}  // namespace qdclgl
