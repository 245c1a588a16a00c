// The document that the works look into, once as the library's tree and once as the peer's: a
// header of 25 keys, lines of 22 keys, at every tenth line two details of 8 keys.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/vector.h"

namespace bench {

// ---- The peer ----

// An amount in ten-thousandths, to tell it from the other numbers.
struct Amount {
  std::int64_t units = 0;
};

struct PeerRow;
using PeerList = std::vector<PeerRow>;
using PeerValue = std::variant<std::monostate, bool, std::int16_t, std::int32_t, double, Amount,
                               std::string, PeerList>;
struct PeerRow : std::map<std::string, PeerValue> {};

// ---- Both ----

// The columns of a line, in order, and `Put(name, value)` for each of them.
template <class Put>
void FillLine(std::int32_t index, Put put) {
  const std::string number = std::to_string(index);
  put("FVoucherID", std::int32_t{4711});
  put("FEntryID", index);
  put("FExplanation", "Goods " + number);
  put("FAccountID", 1000 + index % 300);
  put("FDetailID", index % 17);
  put("FCurrencyID", std::int32_t{1});
  put("FExchangeRate", 1.0);
  put("FDC", index % 2);
  put("FAmountFor", Amount{index * 12300});
  put("FAmount", Amount{index * 12300});
  put("FQuantity", index * 0.5);
  put("FMeasureUnitID", index % 5);
  put("FUnitPrice", 2.46);
  put("FInternalInd", std::string("Industry"));
  put("FAccountID2", index % 300);
  put("FSettleTypeID", index % 3);
  put("FSettleNo", "S-" + number);
  put("FTransNo", "T-" + number);
  put("FTransDate", 45000.0 + index % 365);
  put("FTaskID", std::int32_t{0});
  put("FResourceID", std::int32_t{0});
  put("FCashFlowItem", index % 40);
}

template <class Put>
void FillDetail(std::int32_t index, Put put) {
  put("FDetailID", index);
  put("FItemClassID", index % 4);
  put("FItemID", 100 + index % 50);
  put("FItemNumber", "I." + std::to_string(index % 50));
  put("FItemName", std::string("Item"));
  put("FAmount", Amount{index * 6150});
  put("FQuantity", index * 0.25);
  put("FRatio", 0.5);
}

// All but the list of lines, which makes the 25th key.
template <class Put>
void FillHeader(Put put) {
  put("FVoucherID", std::int32_t{4711});
  put("FDate", 45321.0);
  put("FYear", std::int16_t{2024});
  put("FPeriod", std::int16_t{1});
  put("FGroupID", std::int32_t{3});
  put("FNumber", std::int32_t{128});
  put("FReference", std::string("R-2024-128"));
  put("FExplanation", std::string("Goods sold"));
  put("FAttachments", std::int32_t{2});
  put("FEntryCount", std::int32_t{10});
  put("FDebitTotal", Amount{123456789});
  put("FCreditTotal", Amount{123456789});
  put("FInternalInd", std::string("Industry"));
  put("FChecked", true);
  put("FPosted", false);
  put("FPreparerID", std::int32_t{16});
  put("FCheckerID", std::int32_t{17});
  put("FPosterID", std::int32_t{0});
  put("FCashierID", std::int32_t{0});
  put("FHandler", std::string("Miller"));
  put("FSerialNum", std::int32_t{90128});
  put("FTranType", std::int32_t{0});
  put("FTransDate", 45320.0);
  put("FFrameWorkID", std::int32_t{-1});
}

// Values in the library's own form.
inline qdclgl::Variant ToVariant(Amount value) {
  return qdclgl::Variant(qdclgl::Currency::FromUnits(value.units));
}
template <class T>
qdclgl::Variant ToVariant(const T& value) {
  return qdclgl::Variant(value);
}

// Documents as programs make them: key after key.
qdclgl::Ref<qdclgl::Dictionary> OurHeader();
qdclgl::Ref<qdclgl::Dictionary> OurDocument(std::int32_t lines);
PeerRow TheirHeader();
PeerRow TheirDocument(std::int32_t lines);

}  // namespace bench
