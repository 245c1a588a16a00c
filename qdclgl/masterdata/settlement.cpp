#include "qdclgl/masterdata/settlement.h"

#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

namespace {

constexpr RowKey kNumber("FNumber");
constexpr RowOptions kPlain;
constexpr Integer kLongestNumber = 80;

}  // namespace

Long SettlementEntity::ItemID() const { return m_ID; }

String SettlementEntity::Number() const { return ReadField<String>(kNumber, kPlain); }

void SettlementEntity::Number(String value) {
  const String number = ToUpper(value);
  if (!IsValidCode(number, kLongestNumber, false)) {
    RaiseError(error_number::kInvalidPropertyValue);
  }
  Bag().SetValue(kNumber, Variant(number));
}

}  // namespace qdclgl
