// Amounts as people read them.
#pragma once

#include <map>
#include <string>

#include "qdclgl/frame/values/values.h"

namespace qdclgl::cli {

inline constexpr Long kBaseCurrencyID = 1;

enum class Negatives : bool { kMinus, kParentheses };

// "1,234.50" with as many decimals as told, and more where the amount has more: nothing of it is
// hidden. A negative one is "-1,234.50", or "(1,234.50)" where others end in a blank, so that the
// digits stand below each other.
std::string MoneyText(Currency amount, int decimals, Negatives negatives = Negatives::kMinus);

// How many decimals the books give to a currency.
class CurrencyScales {
 public:
  // Asks the books at the first question; the library's session must be there.
  int Of(Long currency);

 private:
  std::map<Long, int> scales_;
};

}  // namespace qdclgl::cli
