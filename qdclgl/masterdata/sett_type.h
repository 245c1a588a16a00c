// Settlement types: how something is settled, each with a settlement account.
//
// Server components: QDSVGLSettType.SettTypeInfo reads, .SettTypeUpdate writes.
#pragma once

#include "qdclgl/masterdata/sett_acct.h"

namespace qdclgl {

class SettType final : public SettlementOfAccount<SettAcctSet> {
  QD_MEMBERS(SettType, SettlementOfAccount<SettAcctSet>, Creatable, "A settlement type.")

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_INHERITED(Refresh)
  QD_INHERITED(SaveChanges)
  QD_INHERITED(AccountID)
  QD_INHERITED(AccountNumber)
  QD_INHERITED(BrNo)
  QD_INHERITED(Deleted)
  QD_INHERITED(ItemID)
  QD_INHERITED(Name)
  QD_INHERITED(Number)
  QD_INHERITED(Properties)

 protected:
  const EntityProtocol& Protocol() const override;
};

class SettTypeSet final : public SettlementSet<SettType> {
  QD_MEMBERS(SettTypeSet, SettlementSet<SettType>, Creatable, "The settlement types.")

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_INHERITED(CreateNew)
  QD_INHERITED(ExistenceCheck)
  QD_INHERITED(GetCurrent)
  QD_INHERITED(GetNext)
  QD_INHERITED(NewEnum)
  QD_INHERITED(Refresh)
  QD_INHERITED(Remove)
  QD_INHERITED(Count)
  QD_INHERITED(Item)
  QD_INHERITED(RecordSet)

 protected:
  const SetProtocol& Protocol() const override;
};

}  // namespace qdclgl
