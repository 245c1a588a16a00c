// The chart of accounts: a tree by number. "1000.01" stands below "1000".
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/members.h"

namespace qdclgl::server {

// "QDSVGLAccount.AccountInfo": reads accounts.
class AccountInfo final : public Object {
  QD_MEMBERS(AccountInfo, Object, Creatable, "Reads accounts.")

 public:
  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& AccountID),
            "An account, Nothing when there is none.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, std::string_view Number),
            "An account by its number, case ignored; Nothing when there is none.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ListOptions = {}, const String& Filter = {},
             const String& Sort = {}, const Variant& Reserved = Missing,
             const Long& DataAuthority = {}),
            "The accounts; bit 1 of ListOptions includes those marked deleted. Every reader sees "
            "all accounts, whatever the DataAuthority. BadFilter, BadSort.")
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& AccountID = Missing,
             const Variant& Number = Missing, const Variant& HelperCode = Missing),
            "The id of the account with that id, or otherwise that number, or otherwise that "
            "helper code (the first one saved); 0 when there is none.")
  QD_METHOD(Boolean, CheckAccountInVoucher, (std::string_view PropsString, const Long& AccountID),
            "Whether lines of vouchers, deleted ones too, use the account.")
  QD_METHOD(Boolean, ExistsSpecialChild, (std::string_view PropsString, const Long& AccountID),
            "Whether any account below has a special type.")
  QD_METHOD(String, GetFullName,
            (std::string_view PropsString, const Long& AccountID, const String& Separator = "_"),
            "The names from the root to the account, joined by the separator. NotFound.")
};

// "QDSVGLAccount.AccountItemInfo": reads what accounts are associated with.
class AccountItemInfo final : public Object {
  QD_MEMBERS(AccountItemInfo, Object, Creatable, "Reads the item classes of accounts.")

 public:
  QD_METHOD(Ref<Recordset>, GetListByAccount, (std::string_view PropsString, const Long& AccountID),
            "The item classes of an account: FAccountID, FItemClassID, FItemClassNumber, "
            "FItemClassName.")
};

// "QDSVGLAccount.AccountUpdate": writes accounts; administrators only. The server keeps their place
// in the tree: parent, root, level, detail flag and full name.
class AccountUpdate final : public Object {
  QD_MEMBERS(AccountUpdate, Object, Creatable, "Writes accounts.")

 public:
  QD_METHOD(Long, Create, (std::string_view PropsString, const Ref<Dictionary>& dict),
            "Saves a new account; its id and version come back in the row too. A key _Items "
            "replaces its item classes. Errors: Required, BadNumber, NumberTaken, NoParent, "
            "ParentInUse, HasChildren, BadCurrency, BadValue.")
  QD_METHOD(void, Update,
            (std::string_view PropsString, const Long& AccountID, const Ref<Dictionary>& dict),
            "Saves an account; the new version comes back in the row. An account that vouchers use "
            "keeps its number (InUse), and so does one with accounts below (HasChildren). Further "
            "errors: NotFound, NoVersion, Changed, and those of Create.")
  QD_METHOD(void, Delete,
            (std::string_view PropsString, const Long& AccountID, std::string_view MachineName = "",
             std::string_view IPAddress = ""),
            "Removes an account. Errors: NotFound, InUse, HasChildren.")
};

}  // namespace qdclgl::server
