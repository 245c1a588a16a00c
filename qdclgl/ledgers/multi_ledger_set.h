// The list of multi-column ledgers.
//
// Server components: QDSVGLMCLedger.MultiColumnLedgerInfo reads, .MColLedgerUpdate writes.
#pragma once

#include "qdclgl/accounts/currency.h"
#include "qdclgl/frame/entities/entity_set.h"
#include "qdclgl/ledgers/multi_ledger.h"

namespace qdclgl {

class MultiLedgerSet final : public EntitySet<MultiLedger> {
  QD_MEMBERS(MultiLedgerSet, EntitySet<MultiLedger>, Creatable, "The list of multi-column ledgers.")

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_PROPERTY(GetLet, Boolean, m_ViewDisable,
              "Whether Item gives ledgers whose account is deleted too; True at first.")
  QD_METHOD(Ref<MultiLedger>, CreateNew, (Variant Name = Missing),
            "A new ledger, with that name where given; it is not saved.")
  QD_METHOD(Long, ExistenceCheck, (Variant LedgerID = Missing),
            "The id of the ledger with that id, 0 when there is none. Error 5 without an id. Calls "
            "ExistenceCheck.")
  QD_INHERITED(GetCurrent)
  QD_METHOD(Ref<Currencyx>, GetNext, (),
            "Error 13 at any row, since a ledger is no currency, and error 5 behind the last one; "
            "the cursor stays. Walk the list by NewEnum, or by GetCurrent and the recordset's "
            "MoveNext.")
  QD_INHERITED(NewEnum)
  QD_INHERITED(Refresh)
  QD_METHOD(void, Remove, (Variant Key),
            "Deletes the ledger of an id (a number); the list keeps showing it until Refresh. "
            "Error 5 for any other key and for 0. Calls Delete.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<MultiLedger>, Item, (Variant Key),
             "The ledger of an id (a number), read from the server with m_ViewDisable and Filter; "
             "an empty one when the server gives none. Error 5 for any other key. Calls GetDetail.",
             DefaultMember)
  QD_INHERITED(RecordSet)

 protected:
  const SetProtocol& Protocol() const override;
  // GetDetail(PropsString, id, m_ViewDisable, Filter) for a number, the last two by reference.
  Ref<Dictionary> FetchRow(Variant Key) const override;

 private:
  mutable Boolean m_Disabled = true;  // m_ViewDisable; a server may write it when a reader asks
};

using WalkMultiLedgerSet = EntityWalker<MultiLedger>;

}  // namespace qdclgl
