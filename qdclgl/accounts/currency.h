// Currencies: a rate, the operator that applies it, and a scale.
//
// Server components: QDSVGLCurrency.CurrencyInfo reads, .CurrencyUpdate writes.
#pragma once

#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/frame/entities/entity_set.h"

namespace qdclgl {

class Currencyx final : public Entity {
  QD_MEMBERS(Currencyx, Entity, Creatable, "A currency with its exchange rate.")

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_INHERITED(Refresh)
  QD_INHERITED(SaveChanges)
  QD_PROPERTY(Get, Long, CurrencyID, "The id of the currency; 0 while it is not saved.")
  QD_FIELD(Get, Boolean, Deleted, "FDeleted", "Whether the currency is deleted.")
  QD_PROPERTY(GetLet, Double, ExchangeRate,
              "The rate. A stored 0 reads as 1 and is mended in the row, which makes the currency "
              "modified. Error 380 for a write of 0. Key FExchangeRate.")
  QD_FIELD(GetLet, Integer, FixRate, "FFixRate", "Carried for the server.")
  QD_PROPERTY(Get, Double, MulExchangeRate,
              "The factor to multiply an amount by, whichever operator is set.")
  QD_FIELD(GetLet, String, Name, "FName", "The currency's name.")
  QD_PROPERTY(GetLet, String, Number,
              "The currency's number, stored in upper case: up to 8 letters, digits and "
              "underscores. Error 380 otherwise. Key FNumber.")
  QD_PROPERTY(GetLet, String, Operator,
              "\"*\" when an amount is multiplied by the rate, \"/\" when it is divided. Error 380 "
              "for any other text. Key FOperator.")
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, Integer, Scalex, "FScale", "The number of decimals.", Default(2))
  QD_FIELD(GetLet, String, UUID, "UUID", "The currency's global identifier.")

 protected:
  const EntityProtocol& Protocol() const override;
};

class CurrencySet final : public EntitySet<Currencyx> {
  QD_MEMBERS(CurrencySet, EntitySet<Currencyx>, Creatable, "The list of currencies.")

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_METHOD(Ref<Currencyx>, CreateNew, (Variant Number = Missing, Variant Name = Missing),
            "A new currency, with that number and name where given; it is not saved. Error 380 for "
            "a number that can't be one.")
  QD_METHOD(Long, ExistenceCheck, (Variant CurrencyID = Missing, Variant Number = Missing),
            "The id of the currency with that id or number, 0 when there is none or neither is "
            "given; the id goes first. Calls ExistenceCheck.")
  QD_INHERITED(GetCurrent)
  QD_INHERITED(GetNext)
  QD_INHERITED(NewEnum)
  QD_INHERITED(Refresh)
  QD_METHOD(void, Remove, (Variant Key),
            "Deletes the currency of an id (a number) or a number (a text); the list keeps showing "
            "it until Refresh. Error 5 when there is none. Calls Delete.")
  QD_INHERITED(Count)
  QD_INHERITED(Item)
  QD_INHERITED(RecordSet)

 protected:
  const SetProtocol& Protocol() const override;
};

using WalkCurrencySet = EntityWalker<Currencyx>;

}  // namespace qdclgl
