#include "qdclgl/server/vouchers/line_size.h"

#include <algorithm>
#include <cmath>

#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr double kQuantityScale = 1e6;

}  // namespace

std::int64_t Millionths(double quantity) { return std::llround(quantity * kQuantityScale); }

std::string MillionthsSql(const Database& db, const std::string& quantity) {
  // The databases' own functions round halves in ways of their own.
  const std::string scaled = "(" + quantity + " * 1000000)";
  const std::string whole = "CAST(" + std::string(db.Dialect("", "TRUNC")) + scaled + " AS BIGINT)";
  const std::string rest = "(" + scaled + " - " + whole + ")";
  return "(" + whole + " + CASE WHEN " + rest + " >= 0.5 THEN 1 WHEN " + rest +
         " <= -0.5 THEN -1 ELSE 0 END)";
}

bool IsAmountInRange(std::int64_t amount) {
  return amount <= kLargestAmount && amount >= -kLargestAmount;
}

bool IsQuantityInRange(double quantity) { return std::abs(quantity) <= kLargestQuantity; }

bool AddLine(std::int64_t& total, std::int64_t amount, std::int64_t amount_for, double quantity) {
  if (!IsAmountInRange(amount) || !IsAmountInRange(amount_for) || !IsQuantityInRange(quantity)) {
    return false;
  }
  const std::int64_t size =
      std::max({std::abs(amount), std::abs(amount_for), std::abs(Millionths(quantity))});
  if (size > INT64_MAX - total) return false;
  total += size;
  return true;
}

void AddChecked(std::int64_t& sum, std::int64_t more, std::string_view nouns) {
  if (__builtin_add_overflow(sum, more, &sum)) {
    Refuse(refusal::kTooLarge, "The " + std::string(nouns) + " are too large to add up.");
  }
}

}  // namespace qdclgl::server
