#include "qdclgl/server/vouchers/exchange.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "qdclgl/frame/vocabulary/errors.h"
#include "qdclgl/server/records/coefficient.h"

namespace qdclgl::server {

namespace {

constexpr Long kDecimals = 4;  // of the books' amounts

}  // namespace

bool IsAtRate(Currency amount, Currency amount_for, Double rate, const Exchange& exchange) {
  if (rate == 0 || amount_for == Currency()) return true;
  const auto units_for = static_cast<double>(amount_for.units());
  const double expected = exchange.divides ? units_for / rate : units_for * rate;
  const double last_decimal = std::pow(
      10.0, static_cast<double>(kDecimals - std::clamp(exchange.scale, Long{0}, kDecimals)));
  // Rates are binary fractions, which shows in amounts of some sixteen digits.
  const double blur = 4 * std::numeric_limits<double>::epsilon() * std::abs(expected);
  return std::abs(static_cast<double>(amount.units()) - expected) <= last_decimal + blur;
}

Currency WorthOf(Currency amount_for, Double rate, const Exchange& exchange) {
  const auto scale = static_cast<int>(std::clamp(exchange.scale, Long{0}, kDecimals));
  const Double worth = Scaled(amount_for.ToDouble(), rate, exchange.divides);
  const auto whole = Decimal::FromDouble(worth).ToScaledInteger(scale);
  std::int64_t unit = 1;
  for (int i = scale; i < kDecimals; ++i) unit *= 10;
  if (!whole || std::abs(*whole) > std::numeric_limits<std::int64_t>::max() / unit) {
    RaiseError(error_number::kOverflow);
  }
  return Currency::FromUnits(*whole * unit);
}

}  // namespace qdclgl::server
