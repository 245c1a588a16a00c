#include "qdclgl/vouchers/voucher_set.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/variant_kind.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/vouchers/voucher_number.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(VoucherSet)

const SetProtocol& VoucherSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLVoucher.VoucherInfo",
      .update_component = "QDSVGLVoucher.VoucherUpdate",
      .text_key_method = "GetDetailByNumber",
  };
  return kProtocol;
}

void VoucherSet::Cash(Long VoucherID, Boolean Cashed) {
  if (VoucherID != 0) CallUpdate("Cash", VoucherID, ByRef(Cashed));
}

void VoucherSet::Check(Long VoucherID, Boolean Checked) {
  if (VoucherID != 0) CallUpdate("Check", VoucherID, ByRef(Checked));
}

void VoucherSet::Post(Long VoucherID) { CallUpdate("Post", VoucherID); }

void VoucherSet::UnPost(Long VoucherID) { CallUpdate("UnPost", VoucherID); }

void VoucherSet::PostAll() {}

void VoucherSet::UnPostAll() {}

Variant VoucherSet::GetLastVchDateThisPeriod() { return {}; }

Ref<Voucher> VoucherSet::CreateNew(Long nYear, Variant Period, Variant Group, Variant Number) {
  Ref<Voucher> voucher = MakeEntity(Nothing);
  voucher->Year(nYear);
  PutNumber(*voucher, Period, Group, Number);
  return voucher;
}

Long VoucherSet::ExistenceCheck(Variant VoucherID, Variant nYear, Variant Period, Variant Group,
                                Variant Number) {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  if (!VoucherID.IsMissing()) {
    return info->Call("ExistenceCheck", GetPropsString(), ByRef(VoucherID)).As<Long>();
  }
  if (!IsNumberGiven(Period, Group, Number)) return 0;
  return info
      ->Call("ExistenceCheck", GetPropsString(), Named("nYear", ByRef(nYear)),
             Named("Period", ByRef(Period)), Named("Group", ByRef(Group)),
             Named("Number", ByRef(Number)))
      .As<Long>();
}

void VoucherSet::Remove(Variant Key, Variant nYear, Variant Period, Variant Group, Variant Number) {
  const CallingOut out(this);
  Long id = 0;
  if (!Key.IsMissing()) {
    id = IdOf(Key, [] { return 0; });  // a text is not looked up here
  } else if (IsNumberGiven(Period, Group, Number)) {
    id = ExistenceCheck(Missing, nYear, Period, Group, Number);
  }
  DeleteRow(id, false, GetMachineName(), GetIPAddress());
}

Ref<Voucher> VoucherSet::Item(Variant Key, Long nYear, Long Period, String Group, Long Number,
                              Boolean ShowDeleted) const {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  const String props = GetPropsString();
  const Variant answer = IsVariantKind(Key, variant_kind::kNumber)
                             ? info->Call("GetDetail", props, CLng(Key), ByRef(ShowDeleted))
                             : info->Call("GetDetailByNumber", props, ByRef(nYear), ByRef(Period),
                                          ByRef(Group), ByRef(Number), ByRef(ShowDeleted));
  auto voucher = Make<Voucher>();
  voucher->ShowDeleted(ShowDeleted ? 1 : 0);
  voucher->ConstructEx(answer.As<Dictionary>(), m_Xa);
  return voucher;
}

}  // namespace qdclgl
