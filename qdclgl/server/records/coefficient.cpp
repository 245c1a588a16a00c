#include "qdclgl/server/records/coefficient.h"

#include <charconv>
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

Decimal15 Product(const Decimal15& left, const Decimal15& right) {
  const std::uint64_t left_high = left.digits / kTen8, left_low = left.digits % kTen8;
  const std::uint64_t right_high = right.digits / kTen8, right_low = right.digits % kTen8;
  const std::uint64_t middle = left_high * right_low + left_low * right_high;
  std::uint64_t low = left_low * right_low + middle % kTen8 * kTen8;
  std::uint64_t high = left_high * right_high + middle / kTen8 + low / kTen16;
  low %= kTen16;
  // high * 10^16 + low; digits go over until high has 16 of them or low has none.
  int exponent = left.exponent + right.exponent + 16;
  for (; high < kTen15 && low != 0; --exponent) {
    high = high * 10 + low / kTen15;
    low = low % kTen15 * 10;
  }
  return Rounded(high, exponent, low != 0);
}

Decimal15 Quotient(const Decimal15& left, const Decimal15& right) {
  std::uint64_t digits = left.digits / right.digits;
  std::uint64_t rest = left.digits % right.digits;
  int exponent = left.exponent - right.exponent;
  for (; digits < kTen15 && rest != 0; --exponent) {
    digits = digits * 10 + rest * 10 / right.digits;
    rest = rest * 10 % right.digits;
  }
  return Rounded(digits, exponent, rest != 0);
}

}  // namespace

bool IsCoefficient(Double value) {
  return value >= kSmallestCoefficient && value <= kLargestCoefficient &&
         !DoubleLosesPrecision(value);
}

Double Scaled(Double coefficient, Double factor, bool divides) {
  const Decimal15 left = DecimalOf(coefficient), right = DecimalOf(factor);
  return ToDouble(divides ? Quotient(left, right) : Product(left, right));
}

}  // namespace qdclgl::server
