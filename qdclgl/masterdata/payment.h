// Payment terms: when something is to be paid.
//
// Server components: QDSVGLPayment.PaymentInfo reads, .PaymentUpdate writes.
#pragma once

#include "qdclgl/masterdata/settlement.h"

namespace qdclgl {

class Payment final : public SettlementEntity {
  QD_MEMBERS(Payment, SettlementEntity, Creatable, "A payment term.")

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_INHERITED(Refresh)
  QD_INHERITED(SaveChanges)
  QD_FIELD(GetLet, Integer, BeforeDays, "FBeforeDays", "Days before, any number.")
  QD_INHERITED(Deleted)
  QD_INHERITED(ItemID)
  QD_FIELD(GetLet, Integer, MonthPayDay, "FMonthPayDay", "The day of the month, any number.")
  QD_INHERITED(Name)
  QD_INHERITED(Number)
  QD_FIELD(GetLet, String, PaymentType, "FType", "The type of the term.", Default("1"))
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, Integer, StandDays, "FStandDays", "Days of the term, any number.")

 protected:
  const EntityProtocol& Protocol() const override;
};

class PaymentSet final : public SettlementSet<Payment> {
  QD_MEMBERS(PaymentSet, SettlementSet<Payment>, Creatable, "The payment terms.")

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
