#include "qdclgl/accounts/account.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Account)

namespace {

constexpr RowKey kAccountID("FAccountID");
constexpr RowKey kDC("FDC");
constexpr RowKey kEarnAccountID("FEarnAccountID");
constexpr RowKey kFullName("FFullName");
constexpr RowKey kMeasureUnit("FMeasureUnit");
constexpr RowKey kNumber("FNumber");
constexpr RowOptions kPlain;
constexpr RowOptions kClearEmptyText(row_options::Clear(""));

}  // namespace

const EntityProtocol& Account::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLAccount.AccountInfo",
      .update_component = "QDSVGLAccount.AccountUpdate",
      .id_key = "FAccountID",
      .construct_track_state = 0,
      .reload_track_state = 0,
  };
  return kProtocol;
}

Long Account::IdIn(const Dictionary& row) const {
  return row.Contains(kAccountID) ? Entity::IdIn(row) : m_ID;
}

// ---- Methods ----

void Account::SetProps(String Name, Variant value) { Bag().SetValue(Name, std::move(value)); }

template <class... Args>
Variant Account::Ask(const char* method, Args&&... args) {
  if (m_ID == 0) return {};
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  return info->Call(method, GetPropsString(), ByRef(m_ID), std::forward<Args>(args)...);
}

Boolean Account::CheckAccountInVoucher() { return Ask("CheckAccountInVoucher").As<Boolean>(); }

Boolean Account::ExistsSpecialChild() { return Ask("ExistsSpecialChild").As<Boolean>(); }

String Account::GetFullName(String Separator) {
  return Ask("GetFullName", ByRef(Separator)).As<String>();
}

Ref<Account> Account::Clone() {
  const CallingOut out(this);
  const Ref<Dictionary> copy = Bag().Dictionary()->Clone();
  copy->Put(kAccountID, Variant(Integer{0}));
  auto clone = Make<Account>();
  clone->Construct(copy, m_Xa);
  return clone;
}

void Account::SetAccountID(Long lngAccountID) { m_ID = lngAccountID; }

// ---- Members with a rule of their own ----

Long Account::AccountID() const { return m_ID; }

Boolean Account::Modified() const { return Bag().ChangeFlag()->Modified(); }

Long Account::DC() const { return ReadField<Long>(kDC, kPlain); }

void Account::DC(Long value) {
  if (value < -1 || value > 1) RaiseError(error_number::kInvalidPropertyValue);
  Bag().SetValue(kDC, Variant(value));
}

Long Account::EarnAccountID() const { return ReadField<Long>(kEarnAccountID, kPlain); }

void Account::EarnAccountID(Long value) {
  Bag().SetValue(kEarnAccountID, value == 0 ? Variant(Null) : Variant(value));
}

String Account::FullName() const {
  static constexpr RowOptions kBlank(row_options::Default(" "));
  return ReadField<String>(kFullName, kBlank);
}

String Account::MeasureUnit() const {
  const Ref self(this);
  return MeasureUnitID() == 0 ? String() : ReadField<String>(kMeasureUnit, kPlain);
}

void Account::MeasureUnit(String value) {
  WriteField(kMeasureUnit, std::move(value), kClearEmptyText);
}

String Account::Number() const { return ReadField<String>(kNumber, kPlain); }

void Account::Number(String value) { Bag().SetValue(kNumber, Variant(ToUpper(value))); }

}  // namespace qdclgl
