#include "qdclgl/server/records/coefficient.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

#include "qdclgl/frame/values/value_rules.h"

namespace qdclgl::server {

namespace {

constexpr std::uint64_t kTen8 = 100'000'000;
constexpr std::uint64_t kTen15 = 1'000'000'000'000'000;
constexpr std::uint64_t kTen16 = 10 * kTen15;

// digits * 10^exponent, the digits below 10^15.
struct Decimal15 {
  std::uint64_t digits;
  int exponent;
};

Decimal15 DecimalOf(Double value) {
  char text[32];
  const auto end = std::to_chars(text, std::end(text), value, std::chars_format::scientific, 14);
  Decimal15 decimal{0, 0};
  const char* at = text;
  for (; *at != 'e'; ++at) {
    if (*at != '.') decimal.digits = decimal.digits * 10 + static_cast<std::uint64_t>(*at - '0');
  }
  const char* exponent = at + (at[1] == '+' ? 2 : 1);
  std::from_chars(exponent, end.ptr, decimal.exponent);
  decimal.exponent -= 14;
  return decimal;
}

Double ToDouble(const Decimal15& decimal) {
  const std::string text = std::to_string(decimal.digits) + "e" + std::to_string(decimal.exponent);
  Double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

// `digits`, 16 at most, to 15; `more` tells that something not 0 stands behind them.
Decimal15 Rounded(std::uint64_t digits, int exponent, bool more) {
  if (digits < kTen15) return {digits, exponent};
  const std::uint64_t last = digits % 10;
  digits /= 10;
  if (last > 5 || (last == 5 && (more || digits % 2 == 1))) ++digits;
  return {digits, exponent + 1};
}

// (high * 10^16 + low) * 10^exponent, low below 10^16.
struct Decimal30 {
  std::uint64_t high, low;
  int exponent;
};

Decimal30 Product(const Decimal15& left, const Decimal15& right) {
  const std::uint64_t left_high = left.digits / kTen8, left_low = left.digits % kTen8;
  const std::uint64_t right_high = right.digits / kTen8, right_low = right.digits % kTen8;
  const std::uint64_t middle = left_high * right_low + left_low * right_high;
  const std::uint64_t low = left_low * right_low + middle % kTen8 * kTen8;
  return {left_high * right_high + middle / kTen8 + low / kTen16, low % kTen16,
          left.exponent + right.exponent};
}

// Digit by digit, as on paper, until 16 are known and whether anything stands behind them.
Decimal15 Quotient(const Decimal30& left, const Decimal15& right) {
  std::uint64_t digits = 0, rest = 0;
  int exponent = left.exponent - right.exponent;
  bool more = false;
  const auto divide = [&](std::uint64_t part) {
    for (std::uint64_t place = kTen15; place != 0; place /= 10) {
      rest = rest * 10 + part / place % 10;
      const std::uint64_t digit = rest / right.digits;
      rest %= right.digits;
      if (digits < kTen15) {
        digits = digits * 10 + digit;
      } else {
        more = more || digit != 0;
        ++exponent;
      }
    }
  };
  divide(left.high);
  divide(left.low);
  for (; digits < kTen15 && rest != 0; --exponent) {
    digits = digits * 10 + rest * 10 / right.digits;
    rest = rest * 10 % right.digits;
  }
  return Rounded(digits, exponent, more || rest != 0);
}

}  // namespace

bool IsCoefficient(Double value) {
  return value >= kSmallestCoefficient && value <= kLargestCoefficient &&
         !DoubleLosesPrecision(value);
}

Double Scaled(Double coefficient, Double factor, bool divides) {
  return divides ? Converted(coefficient, 1, factor) : Converted(coefficient, factor, 1);
}

Double Converted(Double quantity, Double from, Double to) {
  const Decimal30 product = Product(DecimalOf(std::abs(quantity)), DecimalOf(from));
  return std::copysign(ToDouble(Quotient(product, DecimalOf(to))), quantity);
}

}  // namespace qdclgl::server
