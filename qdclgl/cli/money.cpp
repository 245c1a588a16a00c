#include "qdclgl/cli/money.h"

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/listing.h"
#include "qdclgl/frame/session/session.h"

namespace qdclgl::cli {

std::string MoneyText(Currency amount, int decimals, Negatives negatives) {
  std::string text = AmountText(amount);
  const bool is_negative = text.starts_with('-');
  if (is_negative) text.erase(0, 1);
  const std::size_t point = text.find('.');
  const std::size_t shown = point + 1 + static_cast<std::size_t>(decimals);
  while (text.size() > shown && text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  for (std::size_t i = point; i > 3; i -= 3) text.insert(i - 3, ",");
  if (negatives == Negatives::kParentheses) return is_negative ? "(" + text + ")" : text + " ";
  return is_negative ? "-" + text : text;
}

int CurrencyScales::Of(Long currency) {
  if (scales_.empty()) {
    const Ref<Recordset> rows =
        FetchList(*FindList("currencies"), GetPropsString(), {.with_deleted = true});
    const Long id = rows->FieldPosition("FCurrencyID"), scale = rows->FieldPosition("FScale");
    for (; !rows->Eof(); rows->MoveNext()) {
      scales_[rows->FieldValue(id).As<Long>()] = rows->FieldValue(scale).As<Long>();
    }
  }
  const auto found = scales_.find(currency);
  return found == scales_.end() ? scales_[kBaseCurrencyID] : found->second;
}

}  // namespace qdclgl::cli
