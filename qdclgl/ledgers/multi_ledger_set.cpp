#include "qdclgl/ledgers/multi_ledger_set.h"

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(MultiLedgerSet)

const SetProtocol& MultiLedgerSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLMCLedger.MultiColumnLedgerInfo",
      .update_component = "QDSVGLMCLedger.MColLedgerUpdate",
      .text_key_method = nullptr,  // ledgers are found by their ids alone
  };
  return kProtocol;
}

Boolean MultiLedgerSet::m_ViewDisable() const { return m_Disabled; }
void MultiLedgerSet::m_ViewDisable(Boolean value) { m_Disabled = value; }

Ref<MultiLedger> MultiLedgerSet::CreateNew(Variant Name) {
  Ref<MultiLedger> ledger = MakeEntity(Nothing);
  if (!Name.IsMissing()) ledger->LedgerName(CStr(Name));
  return ledger;
}

Long MultiLedgerSet::ExistenceCheck(Variant LedgerID) {
  const bool asked = !LedgerID.IsMissing();
  const Long id = CheckExistence({ByRef(LedgerID)});
  if (!asked) RaiseError(error_number::kInvalidCall);
  return id;
}

Ref<Currencyx> MultiLedgerSet::GetNext() {
  // The interface promises a currency, which no ledger is.
  return Variant(GetCurrent()).As<Currencyx>();
}

void MultiLedgerSet::Remove(Variant Key) {
  DeleteRow(IdOf(Key, [] { return Long{0}; }));
}

Ref<MultiLedger> MultiLedgerSet::Item(Variant Key) const { return EntitySet::Item(std::move(Key)); }

Ref<Dictionary> MultiLedgerSet::FetchRow(Variant Key) const {
  if (!IsVariantKind(Key, variant_kind::kNumber)) RaiseError(error_number::kInvalidCall);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  const String props = GetPropsString();
  return info->Call("GetDetail", props, CLng(Key), ByRef(m_Disabled), ByRef(ListQuery().filter))
      .As<Dictionary>();
}

}  // namespace qdclgl
