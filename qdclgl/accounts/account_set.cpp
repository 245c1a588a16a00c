#include "qdclgl/accounts/account_set.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/variant_kind.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(AccountSet)

namespace {

bool IsNumber(const Variant& key) { return IsVariantKind(key, variant_kind::kNumber); }
bool IsText(const Variant& key) { return IsVariantKind(key, variant_kind::kText); }

}  // namespace

const SetProtocol& AccountSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLAccount.AccountInfo",
      .update_component = "QDSVGLAccount.AccountUpdate",
      .text_key_method = "GetDetailByNumber",
  };
  return kProtocol;
}

void AccountSet::DataAuthority(Long value) {
  constexpr Long kFallback = 2;
  const bool known = (value >= 1 && value <= 3) || value == 105 || value == 1052;
  m_DataAuthority = known ? value : kFallback;
}

Ref<Recordset> AccountSet::FetchList(Object& info, Query& query) const {
  return info
      .Call("GetList", GetPropsString(), ByRef(query.list_options), ByRef(query.filter),
            ByRef(query.sort), Missing, ByRef(m_DataAuthority))
      .As<Recordset>();
}

Ref<Account> AccountSet::CreateNew(Variant Number, Variant Name) {
  Ref<Account> account = MakeEntity(Nothing);
  if (!Number.IsMissing()) account->Number(CStr(Number));
  if (!Name.IsMissing()) account->Name(CStr(Name));
  return account;
}

Long AccountSet::ExistenceCheck(Variant AccountID, Variant Number, Variant HelperCode) {
  return CheckExistence(
      {ByRef(AccountID), Named("Number", ByRef(Number)), Named("HelperCode", ByRef(HelperCode))});
}

Boolean AccountSet::IsChildAcct(Variant Acct, Variant ParentAcct) {
  const CallingOut out(this);
  const Long parent = Item(std::move(Acct))->ParentID();
  return parent == Item(std::move(ParentAcct))->AccountID();
}

Boolean AccountSet::IsSubAcct(Variant& RootAcct, Variant& SubAcct) {
  const CallingOut out(this);
  if (IsNumber(RootAcct) && IsNumber(SubAcct)) {
    RootAcct = Variant(Item(RootAcct)->Number());
    SubAcct = Variant(Item(SubAcct)->Number());
  } else if (!IsText(RootAcct) || !IsText(SubAcct)) {
    RaiseError(error_number::kInvalidCall);
  }
  RootAcct = Variant(TrimBlanks(CStr(RootAcct)));
  SubAcct = Variant(TrimBlanks(CStr(SubAcct)));
  return ToUpper(SubAcct.TextView()).starts_with(ToUpper(RootAcct.TextView()));
}

void AccountSet::Remove(Variant Key) {
  const CallingOut out(this);
  const Long id = IdOf(Key, [&] { return ExistenceCheck(Missing, Key); });
  DeleteRow(id, GetMachineName(), GetIPAddress());
}

Ref<Dictionary> AccountSet::FetchAccount(const Variant& key) const {
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  const char* method = IsNumber(key) ? "GetDetail" : Protocol().text_key_method;
  if (!IsNumber(key) && !IsText(key)) RaiseError(error_number::kInvalidCall);
  const String props = GetPropsString();
  const Variant row = IsNumber(key) ? info->Call(method, props, CLng(key))
                                    : info->Call(method, props, key.TextView());
  return row.As<Dictionary>();
}

Ref<Account> AccountSet::Item(Variant Key) const {
  const CallingOut out(this);
  const Ref<Dictionary> account = FetchAccount(Key);
  const Ref<Object> items = ServerGateway().CreateInstance("QDSVGLAccount.AccountItemInfo");
  const String props = GetPropsString();
  if (!account) RaiseError(error_number::kObjectNotSet);  // the server knows no such account
  const auto list =
      items->Call("GetListByAccount", props, account->Value("FAccountID")).As<Recordset>();
  if (!list) RaiseError(error_number::kObjectNotSet);
  account->Put("_Items", Variant(RecordsetToVector(list)));
  return MakeEntity(account);
}

Ref<Recordset> AccountSet::RecordSet() const { return EntityListBase::RecordSet(); }

void AccountSet::RecordSet(Ref<Recordset>) {
  // The list comes from the server alone: what is put here leaves the held one in place.
}

}  // namespace qdclgl
