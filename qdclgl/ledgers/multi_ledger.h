// Multi-column ledgers: an account, and the columns under which its lines are shown. A ledger holds
// no figures.
//
// Server components: QDSVGLMCLedger.MultiColumnLedgerInfo reads, .MColLedgerUpdate writes.
#pragma once

#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/ledgers/multi_column.h"
#include "qdclgl/ledgers/multi_sub_column.h"

namespace qdclgl {

class MultiLedger final : public Entity {
  QD_MEMBERS(MultiLedger, Entity, Internal, "The layout of a multi-column ledger.")

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Refresh)
  QD_INHERITED(SaveChanges)
  QD_FIELD(GetLet, Long, AccountID, "FAccountID",
           "Id of the ledger's account; a write leaves its name and number as they are until "
           "Refresh.")
  QD_FIELD(Get, String, AccountName, "FAccountName",
           "Name of the ledger's account, as the server filled it in.")
  QD_FIELD(Get, String, AccountNumber, "FAccountNumber",
           "Number of the ledger's account, as the server filled it in.")
  QD_PROPERTY(Get, Ref<MultiColumnSet>, Columns,
              "The ledger's columns, a new view of them with each read. A ledger without any gets "
              "an empty list, which makes it one to save; the change flag stays.")
  QD_PROPERTY(Get, Long, LedgerID, "The id of the ledger; 0 while it is not saved.")
  QD_FIELD(GetLet, String, LedgerName, "FLedgerName", "The ledger's name.")
  QD_PROPERTY(Get, Ref<qdclgl::Properties>, Properties,
              "All keys and values of the ledger, those without a member of their own included.",
              DefaultMember)
  QD_PROPERTY(Get, Ref<MultiSubColumnSet>, SubColumns,
              "The ledger's sub-columns, as Columns has the columns.")

 protected:
  const EntityProtocol& Protocol() const override;
  void StampMachine() override {}  // ledgers tell nobody where they were changed

 private:
  template <class List>
  Ref<List> ListUnder(const RowKey& key) const;
};

}  // namespace qdclgl
