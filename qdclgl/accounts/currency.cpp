#include "qdclgl/accounts/currency.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Currencyx)
QD_DEFINE_MEMBERS(CurrencySet)

namespace {

constexpr RowKey kExchangeRate("FExchangeRate");
constexpr RowKey kNumber("FNumber");
constexpr RowKey kOperator("FOperator");
constexpr RowOptions kPlain;

constexpr std::string_view kMultiply = "*";
constexpr std::string_view kDivide = "/";
constexpr Integer kLongestNumber = 8;

void Require(bool valid) {
  if (!valid) RaiseError(error_number::kInvalidPropertyValue);
}

}  // namespace

// ---- Currencyx ----

const EntityProtocol& Currencyx::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLCurrency.CurrencyInfo",
      .update_component = "QDSVGLCurrency.CurrencyUpdate",
      .id_key = "FCurrencyID",
  };
  return kProtocol;
}

Long Currencyx::CurrencyID() const { return m_ID; }

Double Currencyx::ExchangeRate() const {
  static constexpr RowOptions kOne(row_options::Default(1));
  const Ref self(this);
  const Double rate = ReadField<Double>(kExchangeRate, kOne);
  if (rate != 0) return rate;
  Bag().SetValue(kExchangeRate, Variant(1.0));  // a row with rate 0 heals with the next save
  return 1;
}

void Currencyx::ExchangeRate(Double value) {
  Require(value != 0);
  Bag().SetValue(kExchangeRate, Variant(value));
}

Double Currencyx::MulExchangeRate() const {
  const Ref self(this);
  return Operator() == kDivide ? 1 / ExchangeRate() : ExchangeRate();
}

String Currencyx::Number() const { return ReadField<String>(kNumber, kPlain); }

void Currencyx::Number(String value) {
  const String number = ToUpper(value);
  Require(IsValidCode(number, kLongestNumber, false));
  Bag().SetValue(kNumber, Variant(number));
}

String Currencyx::Operator() const {
  static constexpr RowOptions kMultiplied(row_options::Default("*"));
  return ReadField<String>(kOperator, kMultiplied);
}

void Currencyx::Operator(String value) {
  Require(value == kMultiply || value == kDivide);
  Bag().SetValue(kOperator, Variant(value));
}

// ---- CurrencySet ----

const SetProtocol& CurrencySet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLCurrency.CurrencyInfo",
      .update_component = "QDSVGLCurrency.CurrencyUpdate",
      .text_key_method = "GetDetailByNumber",
  };
  return kProtocol;
}

Ref<Currencyx> CurrencySet::CreateNew(Variant Number, Variant Name) {
  Ref<Currencyx> currency = MakeEntity(Nothing);
  if (!Number.IsMissing()) currency->Number(CStr(Number));
  if (!Name.IsMissing()) currency->Name(CStr(Name));
  return currency;
}

Long CurrencySet::ExistenceCheck(Variant CurrencyID, Variant Number) {
  return CheckExistence({ByRef(CurrencyID), Named("Number", ByRef(Number))});
}

void CurrencySet::Remove(Variant Key) {
  const CallingOut out(this);
  const Long id = IdOf(Key, [&] { return ExistenceCheck(Missing, Key); });
  DeleteRow(id, GetMachineName(), GetIPAddress());
}

}  // namespace qdclgl
