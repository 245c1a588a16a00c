// Accounts of the chart of accounts. The tree of accounts is the server's: a client reads level,
// parent and full name and never computes them.
//
// Server components: QDSVGLAccount.AccountInfo reads, .AccountUpdate writes.
#pragma once

#include "qdclgl/frame/entities/entity.h"

namespace qdclgl {

class Account final : public Entity {
  QD_MEMBERS(Account, Entity, Creatable, "An account of the chart of accounts.")

 public:
  QD_INDEXED(Let, Variant, SetProps, (String Name),
             "Writes any key, one without a member of its own included.")
  QD_INHERITED(CancelChanges)
  QD_METHOD(Boolean, CheckAccountInVoucher, (),
            "Whether a voucher uses the account; False for an account that is not saved. Calls "
            "CheckAccountInVoucher.")
  QD_METHOD(Ref<Account>, Clone, (),
            "A new unsaved account with the working values of this one, unmodified.")
  QD_INHERITED(Construct)
  QD_METHOD(Boolean, ExistsSpecialChild, (),
            "Whether the account has a special child; False for an account that is not saved. "
            "Calls ExistsSpecialChild.")
  QD_METHOD(String, GetFullName, (String Separator = "_"),
            "The full name, put together by the server with a separator; empty text for an account "
            "that is not saved. Calls GetFullName.")
  QD_INHERITED(Refresh)
  QD_INHERITED(SaveChanges)
  QD_METHOD(void, SetAccountID, (Long lngAccountID),
            "Sets the id alone; Refresh then loads that account.")
  QD_PROPERTY(Get, Long, AccountID, "The id of the account; 0 while it is not saved.")
  QD_FIELD(GetLet, Boolean, Acctint, "FAcctint", "Carried for the server.")
  QD_FIELD(GetLet, Boolean, Acnt, "FAcnt", "Carried for the server.")
  QD_FIELD(Get, Long, AcntID, "FAcntID", "Set by the server.")
  QD_FIELD(GetLet, Long, AcntType, "FAcntType", "Carried for the server.")
  QD_FIELD(GetLet, Boolean, AdjustRate, "FAdjustRate",
           "Whether the account takes part in the adjustment of rates.")
  QD_FIELD(GetLet, Boolean, Contact, "FContact", "Whether the account keeps contacts.")
  QD_FIELD(Get, Long, Control, "FControl", "Set by the server.")
  QD_FIELD(GetLet, Long, ControlSystem, "FControlSystem", "Carried for the server.", Clear(0))
  QD_FIELD(GetLet, Long, CurrencyID, "FCurrencyID", "Id of the account's currency.", Default(1))
  QD_FIELD(Get, String, CurrencyName, "FCurrencyName", "Name of the account's currency.")
  QD_FIELD(Get, String, CurrencyNumber, "FCurrencyNumber", "Number of the account's currency.")
  QD_PROPERTY(GetLet, Long, DC,
              "The side of the balance: 0, 1 or -1. Error 380 for any other value. Key FDC.")
  QD_FIELD(GetLet, Boolean, Delete, "FDelete", "Whether the account is deleted.")
  QD_FIELD(Get, Boolean, Detail, "FDetail", "Whether the account has no accounts below it.",
           Default(true))
  QD_FIELD(Get, Long, DetailID, "FDetailID", "Id of the account's set of item classes.")
  QD_PROPERTY(GetLet, Long, EarnAccountID,
              "Id of the earnings account; 0 is stored as Null. Key FEarnAccountID.")
  QD_PROPERTY(Get, String, FullName,
              "The full name as the server stored it; one blank when there is none. Key FFullName.")
  QD_FIELD(GetLet, Long, GroupID, "FGroupID", "Id of the account's group.")
  QD_FIELD(GetLet, String, HelperCode, "FHelperCode", "A short code to find the account by.")
  QD_FIELD(GetLet, Boolean, Interest, "FInterest", "Whether the account bears interest.")
  QD_FIELD(GetLet, Single, intRate, "FintRate", "Rate of interest.")
  QD_FIELD(Get, Boolean, IsAcnt, "FIsAcnt", "Set by the server.")
  QD_FIELD(GetLet, Boolean, IsBank, "FIsBank", "Whether the account is a bank account.")
  QD_FIELD(GetLet, Boolean, IsBudget, "FIsBudget", "Whether the account has a budget.")
  QD_FIELD(GetLet, Boolean, IsBusi, "FIsBusi", "Carried for the server.")
  QD_FIELD(GetLet, Boolean, IsCashFlow, "FIsCashFlow",
           "Whether the account takes part in the cash flow.")
  QD_FIELD(GetLet, Boolean, IsCash, "FIsCash", "Whether the account is a cash account.")
  QD_FIELD(GetLet, Boolean, Journal, "FJournal", "Whether a journal is kept of the account.")
  QD_FIELD(GetLet, DateTime, LastIntDate, "FLastIntDate",
           "The day up to which interest was computed.")
  QD_FIELD(Get, Integer, Level, "FLevel", "The level in the tree, set by the server.")
  QD_PROPERTY(GetLet, String, MeasureUnit,
              "Name of the unit; empty text while MeasureUnitID is 0. Key FMeasureUnit.")
  QD_FIELD(GetLet, Long, MeasureUnitID, "FMeasureUnitID", "Id of the unit.", Clear(0))
  QD_FIELD(GetLet, String, Message, "FMessage", "A text to show with the account.")
  QD_PROPERTY(Get, Boolean, Modified, "Whether a member was written since the last load.")
  QD_FIELD(GetLet, String, Name, "FName", "The account's name.")
  QD_PROPERTY(GetLet, String, Number, "The account's number, stored in upper case. Key FNumber.")
  QD_FIELD(Get, Long, ParentID, "FParentID", "Id of the account above, set by the server.")
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, Boolean, Quantities, "FQuantities", "Whether quantities are kept.")
  QD_FIELD(Get, Long, RootID, "FRootID", "Id of the topmost account, set by the server.")
  QD_FIELD(GetLet, Integer, SpecialType, "FSpecialType", "Carried for the server.")
  QD_FIELD(Get, String, UnitGroup, "FUnitGroup", "Name of the unit's group, set by the server.")
  QD_FIELD(GetLet, Long, UnitGroupID, "FUnitGroupID", "Id of the unit's group.")
  QD_FIELD(GetLet, String, UUID, "UUID", "The account's global identifier; any text.")
  QD_FIELD(GetLet, Boolean, ViewMsg, "FViewMsg", "Whether the message is shown.")

 protected:
  const EntityProtocol& Protocol() const override;
  bool HasChanges() const override { return Modified(); }
  // A row without an id leaves the object's id as it is.
  Long IdIn(const Dictionary& row) const override;

 private:
  // What the reading component answers about this account; Empty without a call while it is not
  // saved.
  template <class... Args>
  Variant Ask(const char* method, Args&&... args);
};

}  // namespace qdclgl
