#include "qdclgl/masterdata/check_type.h"

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(CheckType)
QD_DEFINE_MEMBERS(CheckTypeSet)

const EntityProtocol& CheckType::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLCheckType.CheckTypeInfo",
      .update_component = "QDSVGLCheckType.CheckTypeUpdate",
      .id_key = kIdKey,
  };
  return kProtocol;
}

const SetProtocol& CheckTypeSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLCheckType.CheckTypeInfo",
      .update_component = "QDSVGLCheckType.CheckTypeUpdate",
      .text_key_method = "GetDetailByNumber",
  };
  return kProtocol;
}

// ---- The accounts ----

namespace {

constexpr RowOptions kPlain;

constexpr RowKey kAdjustID("FAdjustAcctID"), kAdjustNumber("AdjustAcctNumber");
constexpr RowKey kCheckID("FCheckAcctID"), kCheckNumber("CheckAcctNumber");
constexpr RowKey kCostID("FCostAcctID"), kCostNumber("CostAcctNumber");
constexpr RowKey kIncomID("FIncomAcctID"), kIncomNumber("IncomAcctNumber");
constexpr RowKey kSellID("FSellAcctID"), kSellNumber("SellAcctNumber");
constexpr RowKey kZZCXID("FZZCXAcctID"), kZZCXNumber("ZZCXAcctNumber");

}  // namespace

void CheckType::SetAccountByNumber(const RowKey& id_key, const RowKey& number_key,
                                   const String& number) {
  const CallingOut out(this);
  Bag();  // error 91, before anything is looked up, for an object that was never constructed
  const Long id = AccountOf<AccountSet>(number);
  Bag().SetValue(id_key, Variant(id));
  Bag().SetValue(number_key, Variant(number));
}

String CheckType::AdjustAcctNumber() const { return ReadField<String>(kAdjustNumber, kPlain); }
void CheckType::AdjustAcctNumber(String value) {
  SetAccountByNumber(kAdjustID, kAdjustNumber, value);
}

String CheckType::CheckAcctNumber() const { return ReadField<String>(kCheckNumber, kPlain); }
void CheckType::CheckAcctNumber(String value) { SetAccountByNumber(kCheckID, kCheckNumber, value); }

String CheckType::CostAcctNumber() const { return ReadField<String>(kCostNumber, kPlain); }
void CheckType::CostAcctNumber(String value) { SetAccountByNumber(kCostID, kCostNumber, value); }

String CheckType::IncomAcctNumber() const { return ReadField<String>(kIncomNumber, kPlain); }
void CheckType::IncomAcctNumber(String value) { SetAccountByNumber(kIncomID, kIncomNumber, value); }

String CheckType::SellAcctNumber() const { return ReadField<String>(kSellNumber, kPlain); }
void CheckType::SellAcctNumber(String value) { SetAccountByNumber(kSellID, kSellNumber, value); }

String CheckType::ZZCXAcctNumber() const { return ReadField<String>(kZZCXNumber, kPlain); }
void CheckType::ZZCXAcctNumber(String value) { SetAccountByNumber(kZZCXID, kZZCXNumber, value); }

}  // namespace qdclgl
