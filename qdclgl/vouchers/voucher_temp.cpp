#include "qdclgl/vouchers/voucher_temp.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/vouchers/voucher_number.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(VoucherTemp)
QD_DEFINE_MEMBERS(VoucherTempSet)

// ---- VoucherTemp ----

const EntityProtocol& VoucherTemp::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLVoucherTemp.VoucherTempInfo",
      .update_component = "QDSVGLVoucherTemp.VoucherTempUpdate",
      .id_key = "FVoucherTempID",
  };
  return kProtocol;
}

void VoucherTemp::Construct(const Ref<Dictionary>& dict, const Ref<Object>& xa) {
  const CallingOut out(this);
  Entity::Construct(CloneDictionary(dict), xa);
}

Ref<VoucherTemp> VoucherTemp::Clone() { return CloneAs<VoucherTemp>(); }

Long VoucherTemp::VoucherTempID() const { return m_ID; }

// ---- VoucherTempSet ----

const SetProtocol& VoucherTempSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLVoucherTemp.VoucherTempInfo",
      .update_component = "QDSVGLVoucherTemp.VoucherTempUpdate",
      .text_key_method = "GetDetailByNumber",
  };
  return kProtocol;
}

Ref<Recordset> VoucherTempSet::FetchList(Object& info, Query& query) const {
  return info.Call("GetList", GetPropsString(), ByRef(query.filter), ByRef(query.sort))
      .As<Recordset>();
}

Ref<VoucherTemp> VoucherTempSet::CreateNew(Variant Period, Variant Group, Variant Number) {
  auto voucher = Make<Voucher>();
  voucher->Construct(Nothing, m_Xa);
  PutNumber(*voucher, Period, Group, Number);
  return Variant(voucher).As<VoucherTemp>();  // which it never is
}

Long VoucherTempSet::ExistenceCheck(Variant VoucherID, Variant Period, Variant Group,
                                    Variant Number) {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  if (!VoucherID.IsMissing()) {
    return info->Call("ExistenceCheck", GetPropsString(), ByRef(VoucherID)).As<Long>();
  }
  if (!IsNumberGiven(Period, Group, Number)) return 0;
  return info
      ->Call("ExistenceCheck", GetPropsString(), Named("Period", ByRef(Period)),
             Named("Group", ByRef(Group)), Named("Number", ByRef(Number)))
      .As<Long>();
}

Ref<Enumerator> VoucherTempSet::NewEnum() {
  const CallingOut out(this);
  auto walker = Make<EntityWalker<Voucher>>();
  walker->Attach(List(), m_Xa);
  return EnumFactory().CreateEnum(walker);
}

void VoucherTempSet::Remove(Variant Key, Variant Period, Variant Group, Variant Number) {
  const CallingOut out(this);
  Long id = 0;
  if (!Key.IsMissing()) {
    id = IdOf(Key, [] { return 0; });  // a text is not looked up here
  } else if (IsNumberGiven(Period, Group, Number)) {
    id = ExistenceCheck(Missing, Period, Group, Number);
  }
  DeleteRow(id);
}

Ref<VoucherTemp> VoucherTempSet::Item(Variant Key, Long Period, String Group, Long Number) const {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  const String props = GetPropsString();
  const Variant row =
      IsVariantKind(Key, variant_kind::kNumber)
          ? info->Call("GetDetail", props, CLng(Key))
          : info->Call("GetDetailByNumber", props, ByRef(Period), ByRef(Group), ByRef(Number));
  return MakeEntity(row.As<Dictionary>());
}

}  // namespace qdclgl
