#include "vouchers/voucher_detail.h"

#include "frame/class_table.h"
#include "frame/variant_kind.h"

namespace qdclgl {

DEFINE_MEMBERS(VoucherDetail)
DEFINE_MEMBERS(VoucherDetailSet)

Ref<VoucherDetail> VoucherDetailSet::FindItem(Variant ItemClassKey) {
  const bool by_number = ItemClassKey.IsString();
  const bool by_id = IsVariantKind(ItemClassKey, variant_kind::kNumber);
  if (!by_number && !by_id) return Nothing;
  const Long id = by_id ? CLng(ItemClassKey) : 0;
  for (auto& detail : *this) {
    const bool hit = by_id ? detail.ItemClassID() == id
                           : detail.ItemClassNumber() == ItemClassKey.TextView();
    if (hit) return Ref<VoucherDetail>(&detail);
  }
  return Nothing;
}

Ref<VoucherDetail> VoucherDetailSet::Item(Long index) const {
  return ViewOf<VoucherDetail>(RowAt(Lines(), index), m_Flag);
}

}  // namespace qdclgl
