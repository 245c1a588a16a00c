// The chart of accounts as a list, with its two tests of who stands below whom.
//
// Server components: QDSVGLAccount.AccountInfo and .AccountItemInfo read, .AccountUpdate writes.
#pragma once

#include "qdclgl/accounts/account.h"
#include "qdclgl/frame/entities/entity_set.h"

namespace qdclgl {

class AccountSet final : public EntitySet<Account> {
  QD_MEMBERS(AccountSet, EntitySet<Account>, Creatable, "The chart of accounts.")

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_PROPERTY(Let, Long, DataAuthority,
              "The level of data authority for the next Refresh: 1 to 3, 105 or 1052; any other "
              "value becomes 2.")
  QD_METHOD(Ref<Account>, CreateNew, (Variant Number = Missing, Variant Name = Missing),
            "A new account, with that number (in upper case) and name where given; it is not "
            "saved.")
  QD_METHOD(Long, ExistenceCheck,
            (Variant AccountID = Missing, Variant Number = Missing, Variant HelperCode = Missing),
            "The id of the account with that id, number or helper code, the first one given; 0 "
            "when there is none. Calls ExistenceCheck.")
  QD_INHERITED(GetCurrent)
  QD_INHERITED(GetNext)
  QD_METHOD(Boolean, IsChildAcct, (Variant Acct, Variant ParentAcct),
            "Whether the second account is the direct parent of the first; each is an id or a "
            "number, read as by Item.")
  QD_METHOD(Boolean, IsSubAcct, (Variant & RootAcct, Variant& SubAcct),
            "Whether the number of the first account begins the number of the second. Both are "
            "numbers (texts) or both ids; the caller's variables then hold the trimmed numbers. "
            "Error 5 for anything else.")
  QD_INHERITED(NewEnum)
  QD_INHERITED(Refresh)
  QD_METHOD(void, Remove, (Variant Key),
            "Deletes the account of an id (a number) or a number (a text); the list keeps showing "
            "it until Refresh. Error 5 when there is none. Calls Delete.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<Account>, Item, (Variant Key),
             "The account of an id (a number) or a number (a text), read from the server, with its "
             "item classes under the key _Items. Error 5 for any other key. Calls GetDetail or "
             "GetDetailByNumber, and GetListByAccount.",
             DefaultMember)
  QD_PROPERTY(GetSet, Ref<Recordset>, RecordSet,
              "The list as it stands, Nothing before the first use; a recordset put here is "
              "dropped.")

 protected:
  const SetProtocol& Protocol() const override;
  // GetList with a left-out argument and the level of data authority behind the usual ones.
  Ref<Recordset> FetchList(Object& info, Query& query) const override;

 private:
  Ref<Dictionary> FetchAccount(const Variant& key) const;

  mutable Long m_DataAuthority = 3;  // a server may write it when a reader fetches the list
};

using WalkAccountSet = EntityWalker<Account>;

}  // namespace qdclgl
