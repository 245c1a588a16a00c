// What vouchers and templates are numbered by within a year: period, group and number, each of
// which a caller may leave out.
#pragma once

#include "qdclgl/vouchers/voucher.h"

namespace qdclgl {

// A number means something only within its period and group.
inline bool IsNumberGiven(const Variant& period, const Variant& group, const Variant& number) {
  return !period.IsMissing() && !group.IsMissing() && !number.IsMissing();
}

// Writes what is given into a voucher.
inline void PutNumber(Voucher& voucher, const Variant& period, const Variant& group,
                      const Variant& number) {
  if (!period.IsMissing()) voucher.Period(CLng(period));
  if (!group.IsMissing()) voucher.GroupID(CLng(group));
  if (!number.IsMissing()) voucher.Number(CLng(number));
}

}  // namespace qdclgl
