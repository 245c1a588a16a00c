#include "qdclgl/vouchers/voucher_group.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/variant_kind.h"
#include "qdclgl/frame/platform/machine.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(VoucherGroup)
QD_DEFINE_MEMBERS(VoucherGroupSet)

namespace {

constexpr RowKey kLimitMulti("FLimitMulti");

}  // namespace

// ---- VoucherGroup ----

const EntityProtocol& VoucherGroup::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLVoucherGroup.VoucherGroupInfo",
      .update_component = "QDSVGLVoucherGroup.VoucherGroupUpdate",
      .id_key = "FGroupID",
  };
  return kProtocol;
}

Integer VoucherGroup::LimitMulti() const {
  return ReadField<Boolean>(kLimitMulti, RowOptions()) ? 1 : 0;
}

void VoucherGroup::LimitMulti(Integer value) { Bag().SetValue(kLimitMulti, Variant(value)); }

Long VoucherGroup::VoucherGroupID() const { return m_ID; }

// ---- VoucherGroupSet ----

const SetProtocol& VoucherGroupSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLVoucherGroup.VoucherGroupInfo",
      .update_component = "QDSVGLVoucherGroup.VoucherGroupUpdate",
      .text_key_method = "GetDetailByNumber",
  };
  return kProtocol;
}

Ref<VoucherGroup> VoucherGroupSet::CreateNew(Variant Name) {
  Ref<VoucherGroup> group = MakeEntity(Nothing);
  if (!Name.IsMissing()) group->Name(CStr(Name));
  return group;
}

Long VoucherGroupSet::ExistenceCheck(Variant VoucherGroupID, Variant Name) {
  return CheckExistence(
      {Named("VoucherGroupID", ByRef(VoucherGroupID)), Named("Name", ByRef(Name))});
}

void VoucherGroupSet::Remove(Variant Key, Long lngDelSign) {
  const CallingOut out(this);
  const bool by_id = IsVariantKind(Key, variant_kind::kNumber);
  const Long id = by_id ? CLng(Key) : ExistenceCheck(Missing, Key);
  DeleteRow(id, GetMachineName(), GetIPAddress(), ByRef(lngDelSign));
}

}  // namespace qdclgl
