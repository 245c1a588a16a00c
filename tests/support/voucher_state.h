// Vouchers as text, and the lists that a voucher's row is made of.
#pragma once

#include <initializer_list>
#include <string>

#include "qdclgl/vouchers/voucher.h"
#include "tests/support/test_objects.h"
#include "tests/support/view_state.h"

namespace qdclgl::testing {

// A list with these elements, from index 1.
inline Ref<Vector> List(std::initializer_list<Variant> elements) {
  auto list = Make<Vector>();
  for (const Variant& element : elements) list->Append(element);
  return list;
}

inline Ref<Voucher> VoucherOf(const Ref<Dictionary>& row) {
  auto voucher = Make<Voucher>();
  voucher->Construct(row, Nothing);
  return voucher;
}

// The two records of change: " modified" is the Dictionary's own, " flagged" the change flags'.
inline std::string Records(const Voucher& voucher) {
  const Ref<Properties> bag = voucher.Properties();
  return std::string(bag->Modified() ? " modified" : "") +
         (bag->ChangeFlag()->Modified() ? " flagged" : "");
}

// The id, the working data and the two records.
inline std::string State(const Voucher& voucher) {
  return "id " + std::to_string(voucher.VoucherID()) + " " +
         State(static_cast<const RowView&>(voucher));
}

// The same with the baseline behind it.
inline std::string WholeState(const Voucher& voucher) {
  return State(voucher) + " from " + StateText(Variant(voucher.DictOrig()));
}

}  // namespace qdclgl::testing
