// What the dictionaries of settlement share: settlement types, settlement accounts, check types and
// payment terms are numbers with names, and some of them name accounts, which are looked up by
// number when one is written.
#pragma once

#include <algorithm>

#include "qdclgl/accounts/currency.h"
#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/frame/entities/entity_set.h"
#include "qdclgl/frame/platform/machine.h"

namespace qdclgl {

class SettlementEntity : public Entity {
  QD_BASE_MEMBERS(Entity)

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_INHERITED(Refresh)
  QD_INHERITED(SaveChanges)
  QD_FIELD(GetLet, Integer, Deleted, "FDeleted",
           "Whether it is marked deleted, 0 or 1; a write removes nothing.")
  QD_PROPERTY(Get, Long, ItemID, "Its id; 0 while it is not saved.")
  QD_FIELD(GetLet, String, Name, "FName", "Its name.")
  QD_PROPERTY(GetLet, String, Number,
              "Its number, stored in upper case: up to 80 letters, digits and underscores. Error "
              "380 otherwise. Key FNumber.")
  QD_INHERITED(Properties)

 protected:
  static constexpr std::string_view kIdKey = "FItemID";

  // The id of the account of a number in a new set of class Accounts, 0 when there is none. Calls
  // ExistenceCheck.
  template <class Accounts>
  static Long AccountOf(const String& number) {
    return std::max(Make<Accounts>()->ExistenceCheck(Missing, Variant(number)), Long{0});
  }
};

// One that names an account, which is one of the set Accounts.
template <class Accounts>
class SettlementOfAccount : public SettlementEntity {
  QD_BASE_MEMBERS(SettlementEntity)

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_INHERITED(Refresh)
  QD_INHERITED(SaveChanges)
  QD_FIELD(GetLet, Long, AccountID, "FAcctID", "The id of the account that it names; 0 for none.")
  QD_PROPERTY(GetLet, String, AccountNumber,
              "The account's number as the server told it, key AcctNumber. A write looks up the id "
              "of that number, 0 for an unknown one, and stores it under FAcctID; the number reads "
              "as before until the next Refresh. A write calls ExistenceCheck.")
  QD_FIELD(GetLet, String, BrNo, "FBrNo", "Carried for the server.", Default("0"))
  QD_INHERITED(Deleted)
  QD_INHERITED(ItemID)
  QD_INHERITED(Name)
  QD_INHERITED(Number)
  QD_INHERITED(Properties)
};

template <class Accounts>
String SettlementOfAccount<Accounts>::AccountNumber() const {
  static constexpr RowKey kShown("AcctNumber");
  static constexpr RowOptions kPlain;
  return ReadField<String>(kShown, kPlain);
}

template <class Accounts>
void SettlementOfAccount<Accounts>::AccountNumber(String value) {
  static constexpr RowKey kAccount("FAcctID");
  const CallingOut out(this);
  Bag();  // error 91, before anything is looked up, for an object that was never constructed
  const Long id = AccountOf<Accounts>(value);
  Bag().SetValue(kAccount, Variant(id));
}

// A list of such entities. Its walks yield currencies of the rows; GetNext gives its own entities.
template <class Entity>
class SettlementSet : public EntitySet<Entity> {
  QD_BASE_MEMBERS(EntitySet<Entity>)

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_METHOD(Ref<Entity>, CreateNew, (Variant Number = Missing, Variant Name = Missing),
            "A new entity, with that number and name where given; it is not saved. Error 380 for a "
            "number that can't be one.")
  QD_METHOD(Long, ExistenceCheck,
            (Variant ItemID = Missing, Variant Number = Missing, Variant Name = Missing),
            "The id of the row with that id, number or name, the first one given; 0 when there is "
            "none. Calls ExistenceCheck.")
  QD_INHERITED(GetCurrent)
  QD_INHERITED(GetNext)
  QD_METHOD(Ref<Enumerator>, NewEnum, (),
            "Currencies (Currencyx) of all rows; the set's cursor stays. GetNext gives the set's "
            "own entities.")
  QD_INHERITED(Refresh)
  QD_METHOD(void, Remove, (Variant Key),
            "Deletes the row of an id (a number) or a number (a text); the list keeps showing it "
            "until Refresh. Error 5 when there is none. Calls Delete.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<Entity>, Item, (Variant Key),
             "The entity of an id (a number) or of a number (a text), read from the server; an "
             "empty one when the server knows no such row. Error 5 for any other key. Calls "
             "GetDetail or GetDetailByNumber.")
  QD_INHERITED(RecordSet)

  // What NewEnum gives, for C++ callers.
  EnumeratorRange<Currencyx>::Iterator begin() {
    return EnumeratorRange<Currencyx>::Iterator(NewEnum());
  }
};

template <class Entity>
Ref<Entity> SettlementSet<Entity>::CreateNew(Variant Number, Variant Name) {
  Ref<Entity> entity = this->MakeEntity(Nothing);
  if (!Number.IsMissing()) entity->Number(CStr(Number));
  if (!Name.IsMissing()) entity->Name(CStr(Name));
  return entity;
}

template <class Entity>
Long SettlementSet<Entity>::ExistenceCheck(Variant ItemID, Variant Number, Variant Name) {
  return this->CheckExistence(
      {ByRef(ItemID), Named("Number", ByRef(Number)), Named("Name", ByRef(Name))});
}

template <class Entity>
Ref<Enumerator> SettlementSet<Entity>::NewEnum() {
  const CallingOut out(this);
  auto walker = Make<WalkCurrencySet>();
  walker->Attach(this->List(), this->m_Xa);
  return EnumFactory().CreateEnum(walker);
}

template <class Entity>
void SettlementSet<Entity>::Remove(Variant Key) {
  const CallingOut out(this);
  const Long id = this->IdOf(Key, [&] { return ExistenceCheck(Missing, Key); });
  this->DeleteRow(id, GetMachineName(), GetIPAddress());
}

template <class Entity>
Ref<Entity> SettlementSet<Entity>::Item(Variant Key) const {
  return EntitySet<Entity>::Item(std::move(Key));
}

}  // namespace qdclgl
