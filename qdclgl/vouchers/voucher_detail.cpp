#include "qdclgl/vouchers/voucher_detail.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/variant_kind.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(VoucherDetail)
QD_DEFINE_MEMBERS(VoucherDetailSet)

// The node alone: a detail from Item reports to the list's flag, and what was written through a
// walk below it is another detail's business.
Boolean VoucherDetail::Modified() const { return Bag().ChangeFlag()->PrivateModified(); }

Ref<VoucherDetail> VoucherDetailSet::FindItem(Variant ItemClassKey) {
  const bool by_number = ItemClassKey.IsString();
  const bool by_id = IsVariantKind(ItemClassKey, variant_kind::kNumber);
  if (!by_number && !by_id) return Nothing;
  for (auto& detail : *this) {
    const bool hit = by_id ? detail.ItemClassID() == CLng(ItemClassKey)
                           : detail.ItemClassNumber() == ItemClassKey.TextView();
    if (hit) return Ref<VoucherDetail>(&detail);
  }
  return Nothing;
}

Ref<VoucherDetail> VoucherDetailSet::Item(Long index) const {
  return ViewOf<VoucherDetail>(RowAt(Lines(), index), m_Flag);
}

}  // namespace qdclgl
