// Check types, each with the accounts of six parts that checks play.
//
// Server components: QDSVGLCheckType.CheckTypeInfo reads, .CheckTypeUpdate writes.
#pragma once

#include "qdclgl/accounts/account_set.h"
#include "qdclgl/masterdata/settlement.h"

namespace qdclgl {

class CheckType final : public SettlementEntity {
  QD_MEMBERS(CheckType, SettlementEntity, Creatable, "A check type.")

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_INHERITED(Refresh)
  QD_INHERITED(SaveChanges)
  QD_FIELD(GetLet, Long, AdjustAcctID, "FAdjustAcctID", "The id of the account Adjust; 0 for none.")
  QD_PROPERTY(
      GetLet, String, AdjustAcctNumber,
      "The number of the account Adjust, key AdjustAcctNumber. A write looks up its id, 0 for "
      "an unknown one, and stores both; it calls ExistenceCheck.")
  QD_FIELD(GetLet, Long, CheckAcctID, "FCheckAcctID", "The id of the account Check; 0 for none.")
  QD_PROPERTY(
      GetLet, String, CheckAcctNumber,
      "The number of the account Check, key CheckAcctNumber. A write looks up its id, 0 for "
      "an unknown one, and stores both; it calls ExistenceCheck.")
  QD_FIELD(GetLet, Long, CostAcctID, "FCostAcctID", "The id of the account Cost; 0 for none.")
  QD_PROPERTY(GetLet, String, CostAcctNumber,
              "The number of the account Cost, key CostAcctNumber. A write looks up its id, 0 for "
              "an unknown one, and stores both; it calls ExistenceCheck.")
  QD_INHERITED(Deleted)
  QD_FIELD(GetLet, Long, IncomAcctID, "FIncomAcctID", "The id of the account Incom; 0 for none.")
  QD_PROPERTY(
      GetLet, String, IncomAcctNumber,
      "The number of the account Incom, key IncomAcctNumber. A write looks up its id, 0 for "
      "an unknown one, and stores both; it calls ExistenceCheck.")
  QD_INHERITED(ItemID)
  QD_INHERITED(Name)
  QD_INHERITED(Number)
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, Long, SellAcctID, "FSellAcctID", "The id of the account Sell; 0 for none.")
  QD_PROPERTY(GetLet, String, SellAcctNumber,
              "The number of the account Sell, key SellAcctNumber. A write looks up its id, 0 for "
              "an unknown one, and stores both; it calls ExistenceCheck.")
  QD_FIELD(GetLet, Long, ZZCXAcctID, "FZZCXAcctID", "The id of the account ZZCX; 0 for none.")
  QD_PROPERTY(GetLet, String, ZZCXAcctNumber,
              "The number of the account ZZCX, key ZZCXAcctNumber. A write looks up its id, 0 for "
              "an unknown one, and stores both; it calls ExistenceCheck.")

 protected:
  const EntityProtocol& Protocol() const override;

 private:
  // Stores the account of a number, 0 for an unknown one, and the number itself.
  void SetAccountByNumber(const RowKey& id_key, const RowKey& number_key, const String& number);
};

class CheckTypeSet final : public SettlementSet<CheckType> {
  QD_MEMBERS(CheckTypeSet, SettlementSet<CheckType>, Creatable, "The check types.")

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
