#include "qdclgl/vouchers/voucher.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Voucher)

namespace {

// The saves ask for their reading component under this name.
constexpr const char* kCashProfitComponent = "QDSVGLVoucher.Voucherinfo";

constexpr Integer kNobody = -1;

constexpr RowKey kBillInfo("BillInfo");
constexpr RowKey kBlankOutFlag("FBlankOutFlag");
constexpr RowKey kExplanation("FExplanation");
constexpr RowKey kObjectName("FObjectName");
constexpr RowKey kParameter("FParameter");
constexpr RowKey kTransDate("FTransDate");
constexpr RowOptions kPlain;

}  // namespace

const EntityProtocol& Voucher::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLVoucher.VoucherInfo",
      .update_component = "QDSVGLVoucher.VoucherUpdate",
      .id_key = "FVoucherID",
  };
  return kProtocol;
}

// ---- Making, reading, copying ----

void Voucher::ShowDeleted(Long value) { m_ShowDeleted = value != 0; }

void Voucher::ConstructEx(Ref<Dictionary> dict, const Ref<Object>& xa) { Construct(dict, xa); }

Ref<Dictionary> Voucher::FetchRow(Object& info) {
  return info.Call("GetDetail", GetPropsString(), ByRef(m_ID), ByRef(m_ShowDeleted))
      .As<Dictionary>();
}

void Voucher::Refresh1() { Construct(Bag().Dictionary(), m_Xa); }

Ref<Voucher> Voucher::Clone() { return CloneAs<Voucher>(); }

// ---- Saving ----

// In what the three saves differ.
struct Voucher::SaveRule {
  bool blank_foot_note;  // an empty foot note is saved as one blank
  bool marked;           // Update and Create are told that this is the second kind of save
  bool reload;           // the voucher is clean behind the save
};

void Voucher::SaveChanges() { Save({.blank_foot_note = true, .marked = false, .reload = true}); }

void Voucher::SaveChanges1() { Save({.blank_foot_note = false, .marked = false, .reload = false}); }

void Voucher::SaveChanges2() { Save({.blank_foot_note = true, .marked = true, .reload = true}); }

void Voucher::Save(const SaveRule& rule) {
  const CallingOut out(this);
  StampMachine();
  if (!HasChanges()) return;
  const Ref<Object> update = ServerGateway().CreateInstance(Protocol().update_component);
  if (rule.blank_foot_note && FootNote().empty()) FootNote(" ");
  if (m_ID != 0) {
    SaveExisting(*update, rule);
  } else {
    SaveNew(*update, rule);
  }
}

void Voucher::SaveExisting(Object& update, const SaveRule& rule) {
  constexpr Long kCashFlowIsStale = 3;
  const Ref<Object> info = ServerGateway().CreateInstance(kCashProfitComponent);
  const Long cash_profit =
      info->Call("CheckExistCashProfit", GetPropsString(), ByRef(m_ID)).As<Long>();
  if (cash_profit == kCashFlowIsStale) update.Call("ClearCashFlow", GetPropsString(), ByRef(m_ID));
  if (rule.marked) {
    String props = "<>1" + GetPropsString();
    update.Call("Update", ByRef(props), ByRef(m_ID), Bag().Dictionary());
  } else {
    update.Call("Update", GetPropsString(), ByRef(m_ID), Bag().Dictionary());
  }
  if (rule.reload) Refresh1();
}

void Voucher::SaveNew(Object& update, const SaveRule& rule) {
  constexpr Integer kSecondKind = 2;
  const Variant id = rule.marked
                         ? update.Call("Create", GetPropsString(), Bag().Dictionary(), kSecondKind)
                         : update.Call("Create", GetPropsString(), Bag().Dictionary());
  m_ID = id.As<Long>();
  if (rule.reload) Refresh();
}

// ---- Workflow ----

void Voucher::Check() {
  const Ref self(this);
  if (CanChangeState() && !Checked()) ChangeState("Check", true);
}

void Voucher::UnCheck() {
  const Ref self(this);
  if (CanChangeState() && Checked()) ChangeState("Check", false);
}

void Voucher::Approve() {
  const Ref self(this);
  if (CanChangeState() && Checked()) ChangeState("Approve", true);
}

void Voucher::UnApprove() {
  const Ref self(this);
  if (CanChangeState() && Checked() && ApproveID() > 0) ChangeState("Approve", false);
}

void Voucher::Cash() { ChangeCash(true); }

void Voucher::UnCash() { ChangeCash(false); }

void Voucher::ChangeState(const char* method, Boolean state) {
  const CallingOut out(this);
  const Ref<Object> update = ServerGateway().CreateInstance(Protocol().update_component);
  update->Call(method, GetPropsString(), ByRef(m_ID), state);
  Refresh();
}

void Voucher::ChangeCash(Boolean state) {
  if (m_ID == 0) return;
  const CallingOut out(this);
  const Ref<Object> update = ServerGateway().CreateInstance(Protocol().update_component);
  update->Call("Cash", GetPropsString(), ByRef(m_ID), state, Bag().Dictionary());
  Refresh();
}

// ---- Comparison ----

Boolean Voucher::ValueChanged() {
  const Ref self(this);
  return ValueDifferent(Clone());
}

Boolean Voucher::ValueDifferent(const Ref<Voucher>& vch) {
  const Ref self(this);
  const Ref<Voucher> other = vch;
  VisitDifferences(*other);
  return true;  // what the visit finds has no say in the answer
}

void Voucher::VisitDifferences(Voucher& other) {
  if (VoucherID() != other.VoucherID() || VoucherDate().days != other.VoucherDate().days ||
      Number() != other.Number() || GroupID() != other.GroupID() ||
      Attachments() != other.Attachments() || Reference() != other.Reference()) {
    return;
  }
  const Ref<VoucherEntrySet> lines = Entries();
  const Ref<VoucherEntrySet> other_lines = other.Entries();
  if (lines->Count() != other_lines->Count()) return;

  for (Long i = 1; i <= lines->Count(); ++i) {
    const Ref<VoucherEntry> line = lines->Item(i);
    const Ref<VoucherEntry> other_line = other_lines->Item(i);
    if (line->AccountID() != other_line->AccountID() ||
        line->CurrencyID() != other_line->CurrencyID() ||
        line->Explanation() != other_line->Explanation() ||
        line->ExchangeRate() != other_line->ExchangeRate() ||
        line->Amount() != other_line->Amount() || line->AmountFor() != other_line->AmountFor() ||
        line->DC() != other_line->DC() || line->MeasureUnitID() != other_line->MeasureUnitID() ||
        line->UnitPrice() != other_line->UnitPrice() ||
        line->Quantity() != other_line->Quantity()) {
      return;
    }
    const Ref<VoucherDetailSet> details = line->Details();
    const Ref<VoucherDetailSet> other_details = other_line->Details();
    if (details->Count() != other_details->Count()) return;

    for (Long j = 1; j <= details->Count(); ++j) {
      const Ref<VoucherDetail> detail = details->Item(j);
      Ref<VoucherDetail> match;
      for (Long k = 1; k <= other_details->Count() && !match; ++k) {
        Ref<VoucherDetail> candidate = other_details->Item(k);
        if (candidate->ItemClassID() == detail->ItemClassID()) match = candidate;
      }
      if (!match || detail->ItemID() != match->ItemID() || detail->Value() != match->Value()) {
        return;
      }
    }
  }
}

// ---- Members with a rule of their own ----

Long Voucher::VoucherID() const { return m_ID; }

void Voucher::VoucherID(Long value) { m_ID = value; }

Long Voucher::AmortizeSchemeID() const {
  static constexpr RowKey kIsAmortize("FIsAmortize");
  return ReadField<Long>(kIsAmortize, kPlain);
}

void Voucher::AmortizeSchemeID(Long value) {
  static constexpr RowKey kAmortizeSchemeID("FAmortizeSchemeID");
  Bag().SetValue(kAmortizeSchemeID, Variant(value));
}

String Voucher::NameOf(const RowKey& name, Integer (Voucher::*person)() const) const {
  const Ref self(this);
  return (this->*person)() == kNobody ? String() : ReadField<String>(name, kPlain);
}

// The approver's name shows with the checker: an approval without a check is none.
String Voucher::Approver() const { return NameOf("FApprover", &Voucher::CheckerID); }

String Voucher::Cashier() const { return NameOf("FCashier", &Voucher::CashierID); }

String Voucher::Checker() const { return NameOf("FChecker", &Voucher::CheckerID); }

String Voucher::Poster() const { return NameOf("FPoster", &Voucher::PosterID); }

Ref<Dictionary> Voucher::BillInfo() const {
  if (Bag().Find(kBillInfo) == nullptr) return Nothing;
  return Bag().GetValue(kBillInfo).As<Dictionary>();
}

void Voucher::BillInfo(Ref<Dictionary> value) { Bag().SetObject(kBillInfo, value); }

Boolean Voucher::BlankOutFlag() const {
  return Equals(Bag().GetValue(kBlankOutFlag, Variant(0)), Variant(1));
}

void Voucher::BlankOutFlag(Boolean value) {
  Bag().SetValue(kBlankOutFlag, Variant(static_cast<Integer>(value ? 1 : 0)));
}

Currency Voucher::Total(Currency (*side)(const Dictionary& row)) const {
  const Ref<Vector> lines = Lines();
  Currency total;
  for (Long i = 1; i <= lines->Count(); ++i) total += side(*RowAt(lines, i));
  return total;
}

Currency Voucher::CreditTotal() const { return Total(VoucherEntry::CreditOf); }

Currency Voucher::DebitTotal() const { return Total(VoucherEntry::DebitOf); }

String Voucher::Explanation() const {
  const Ref<VoucherEntrySet> entries = Entries();
  for (Long i = 1; i <= entries->Count(); ++i) {
    String explanation = entries->Item(i)->Explanation();
    if (!explanation.empty()) return explanation;
  }
  return {};
}

void Voucher::Explanation(String value) { Bag().SetValue(kExplanation, Variant(value)); }

Boolean Voucher::HasForCyOrUnit() const {
  constexpr Long kBaseCurrency = 1;
  for (auto& line : Entries()) {
    if (line.CurrencyID() != kBaseCurrency || line.MeasureUnitID() != 0) return true;
  }
  return false;
}

void Voucher::StoreTextOrNull(const RowKey& key, const String& text) {
  Bag().SetValue(key, text.empty() ? Variant(Null) : Variant(text));
}

String Voucher::ObjectName() const { return ReadField<String>(kObjectName, kPlain); }

void Voucher::ObjectName(String value) { StoreTextOrNull(kObjectName, value); }

String Voucher::Parameter() const { return ReadField<String>(kParameter, kPlain); }

void Voucher::Parameter(String value) { StoreTextOrNull(kParameter, value); }

DateTime Voucher::TransDate() const {
  const Ref self(this);
  const Variant stored = Bag().GetValue(kTransDate, Variant(0));
  const Variant voucher_date(VoucherDate());
  return EnumFactory().NullToDefault(stored, voucher_date).As<DateTime>();
}

void Voucher::TransDate(DateTime value) { Bag().SetValue(kTransDate, Variant(value)); }

}  // namespace qdclgl
