#include "qdclgl/ledgers/multi_ledger.h"

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(MultiLedger)

namespace {

constexpr RowKey kColumns("_Columns");
constexpr RowKey kSubColumns("_SubColumns");
constexpr RowOptions kPlain;

}  // namespace

const EntityProtocol& MultiLedger::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLMCLedger.MultiColumnLedgerInfo",
      .update_component = "QDSVGLMCLedger.MColLedgerUpdate",
      .id_key = "FLedgerID",
      .construct_track_state = 1,  // a column that is edited is a ledger to save
  };
  return kProtocol;
}

Long MultiLedger::LedgerID() const { return m_ID; }

Ref<Properties> MultiLedger::Properties() const { return Entity::Properties(); }

template <class List>
Ref<List> MultiLedger::ListUnder(const RowKey& key) const {
  const Ref self(this);
  if (!ReadField<Ref<Vector>>(key, kPlain)) {
    Bag().Dictionary()->Put(key, Variant(Make<Vector>()));  // past the bag: no flag is set
  }
  auto list = Make<List>();
  list->Attach(ReadField<Ref<Vector>>(key, kPlain), Bag().ChangeFlag()->Item(key.text()));
  return list;
}

Ref<MultiColumnSet> MultiLedger::Columns() const { return ListUnder<MultiColumnSet>(kColumns); }

Ref<MultiSubColumnSet> MultiLedger::SubColumns() const {
  return ListUnder<MultiSubColumnSet>(kSubColumns);
}

}  // namespace qdclgl
