#include "qdclgl/vouchers/voucher_entry.h"

#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/nesting.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(VoucherEntry)
QD_DEFINE_MEMBERS(VoucherEntrySet)

namespace {

constexpr Long kCreditSide = 0;
constexpr Long kDebitSide = 1;

constexpr RowKey kAmount("FAmount");
constexpr RowKey kCashFlow("CashFlow");
constexpr RowKey kFrameWorkNum("FCussentFrameWorkNum");
constexpr RowKey kDC("FDC");
constexpr RowKey kDetails("_Details");
constexpr RowKey kMeasureUnit("FMeasureUnit");
constexpr RowKey kMeasureUnitNumber("FMeasureUnitNumber");
constexpr RowKey kMGBill("FMgBill");
constexpr RowOptions kPlain;
constexpr RowOptions kClearEmptyText(row_options::Clear(""));

}  // namespace

// ---- VoucherEntry ----

Ref<VoucherEntry> VoucherEntry::Clone() {
  const CallingOut out(this);
  return ViewOf<VoucherEntry>(CloneDictionary(Bag().Dictionary()), Make<ChangeFlag>());
}

Boolean VoucherEntry::IsEmpty() {
  const Ref self(this);
  return AccountID() == 0 && AccountNumber().empty() && CurrencyID() == 0 &&
         CurrencyNumber().empty() && Amount() == Currency() && Explanation().empty() &&
         Details()->Count() == 0;
}

Currency VoucherEntry::Amount() const { return ReadField<Currency>(kAmount, kPlain); }

void VoucherEntry::Amount(Currency value) {
  const Ref self(this);
  Bag().SetValue(kAmount, Variant(value));
  DC(DC());  // a line with an amount has a side
}

Long VoucherEntry::DC() const { return ReadField<Long>(kDC, kPlain); }

void VoucherEntry::DC(Long value) {
  if (value != kCreditSide && value != kDebitSide) {
    RaiseError(error_number::kInvalidPropertyValue);
  }
  Bag().SetValue(kDC, Variant(value));
}

Currency VoucherEntry::DebitOf(const Dictionary& row) {
  const bool is_debit = FieldOf<Long>(row.Find(kDC), kPlain) == kDebitSide;
  return is_debit ? FieldOf<Currency>(row.Find(kAmount), kPlain) : Currency();
}

Currency VoucherEntry::CreditOf(const Dictionary& row) {
  const bool is_credit = FieldOf<Long>(row.Find(kDC), kPlain) == kCreditSide;
  return is_credit ? FieldOf<Currency>(row.Find(kAmount), kPlain) : Currency();
}

Currency VoucherEntry::Debit() const { return DebitOf(*Bag().Dictionary()); }

void VoucherEntry::Debit(Currency value) {
  const Ref self(this);
  if (Credit() != Currency() && value == Currency()) return;
  DC(kDebitSide);
  Amount(value);
}

Currency VoucherEntry::Credit() const { return CreditOf(*Bag().Dictionary()); }

void VoucherEntry::Credit(Currency value) {
  const Ref self(this);
  if (Debit() != Currency() && value == Currency()) return;
  DC(kCreditSide);
  Amount(value);
}

Ref<Object> VoucherEntry::CashFlow() const { return ReadField<Ref<Object>>(kCashFlow, kPlain); }

void VoucherEntry::CashFlow(Variant value) { Bag().SetObject(kCashFlow, value.As<Object>()); }

String VoucherEntry::CussentFrameWorkNum() const {
  static constexpr RowKey kFrameWorkName("FCussentFrameWorkName");
  const Ref self(this);
  Bag().SetValue(kFrameWorkName, Variant(ReadField<String>(kFrameWorkNum, kPlain)));
  return {};
}

void VoucherEntry::CussentFrameWorkNum(String value) {
  Bag().SetValue(kFrameWorkNum, Variant(value));
}

Ref<VoucherDetailSet> VoucherEntry::Details() const {
  const Ref self(this);
  if (!ReadField<Ref<Vector>>(kDetails, kPlain)) Bag().SetObject(kDetails, Make<Vector>());
  auto details = Make<VoucherDetailSet>();
  details->Attach(ReadField<Ref<Vector>>(kDetails, kPlain),
                  Bag().ChangeFlag()->Item(kDetails.text()));
  return details;
}

String VoucherEntry::UnitText(const RowKey& key) const {
  const Ref self(this);
  return MeasureUnitID() == 0 ? String() : ReadField<String>(key, kPlain);
}

String VoucherEntry::MeasureUnit() const { return UnitText(kMeasureUnit); }

void VoucherEntry::MeasureUnit(String value) {
  WriteField(kMeasureUnit, std::move(value), kClearEmptyText);
}

String VoucherEntry::MeasureUnitNumber() const { return UnitText(kMeasureUnitNumber); }

void VoucherEntry::MeasureUnitNumber(String value) {
  WriteField(kMeasureUnitNumber, std::move(value), kClearEmptyText);
}

Ref<Dictionary> VoucherEntry::MGBill() const { return Bag().GetValue(kMGBill).As<Dictionary>(); }

void VoucherEntry::MGBill(Ref<Dictionary> value) { Bag().SetObject(kMGBill, value); }

// ---- VoucherEntrySet ----

Ref<VoucherEntry> VoucherEntrySet::CreateNewEntry() {
  return ViewOf<VoucherEntry>(Make<Dictionary>(), Make<ChangeFlag>());
}

Ref<VoucherEntry> VoucherEntrySet::Item(Long index) const {
  if (index > Count()) return Nothing;
  const Ref<Dictionary> row = RowAt(Lines(), index);
  return ViewOf<VoucherEntry>(row, m_Flag->At(index));
}

void VoucherEntrySet::Item(Long index, Ref<VoucherEntry> value) {
  const Ref<Properties> bag = value ? value->Properties() : nullptr;
  if (!bag) RaiseError(error_number::kObjectNotSet);  // no line, or one that was never bound
  const Ref self(this);
  Lines()->Item(index, Variant(bag->Dictionary()));
  m_Flag->At(index)->Modified(true);
}

}  // namespace qdclgl
