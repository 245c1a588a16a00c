// Settlement accounts: what settlements go through, each with an account of the chart, a balance
// and the period that it begins in.
//
// Server components: QDSVGLSettAcct.SettAcctInfo reads, .SettAcctUpdate writes.
#pragma once

#include "qdclgl/accounts/account_set.h"
#include "qdclgl/masterdata/settlement.h"

namespace qdclgl {

class SettAcct final : public SettlementOfAccount<AccountSet> {
  QD_MEMBERS(SettAcct, SettlementOfAccount<AccountSet>, Creatable, "A settlement account.")

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
  QD_FIELD(GetLet, Double, Balance, "FBalance", "The balance, carried for the server.")
  QD_FIELD(GetLet, String, StartPeriod, "FStartPeriod", "The period it begins in, any text.")
  QD_FIELD(GetLet, Boolean, BeforeEnable, "FBeforeEnable", "Carried for the server.")

 protected:
  const EntityProtocol& Protocol() const override;
};

class SettAcctSet final : public SettlementSet<SettAcct> {
  QD_MEMBERS(SettAcctSet, SettlementSet<SettAcct>, Creatable, "The settlement accounts.")

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
