// The plain value types of automation, under their automation names.
//
// Arithmetic that leaves a type's range raises error 6 (overflow). Nothing here wraps around.
#pragma once

#include <array>
#include <compare>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "qdclgl/language.h"

namespace qdclgl {

using Boolean = bool;
using Byte = std::uint8_t;
using Integer = std::int16_t;
using Long = std::int32_t;
using Single = float;
using Double = double;
using String = std::string;  // UTF-8

// Rounds to a whole number, halves to the even one, as every automation conversion does.
double RoundHalfEven(double value);

// An amount of money: 64-bit fixed point with four decimals.
class Currency {
 public:
  constexpr Currency() = default;

  template <std::signed_integral T>
  constexpr Currency(T whole) : scaled_(ScaleWhole(whole)) {}

  // Rounded to four decimals, halves to even. Error 6 outside the range.
  Currency(double value);

  // `units` are ten-thousandths: FromUnits(15000) is 1.5.
  static constexpr Currency FromUnits(std::int64_t units) {
    Currency result;
    result.scaled_ = units;
    return result;
  }

  constexpr std::int64_t units() const { return scaled_; }
  double ToDouble() const { return static_cast<double>(scaled_) / kScale; }
  std::string ToText() const;

  Currency operator-() const;
  friend Currency operator+(Currency left, Currency right);
  friend Currency operator-(Currency left, Currency right);
  Currency& operator+=(Currency other) { return *this = *this + other; }
  Currency& operator-=(Currency other) { return *this = *this - other; }

  friend constexpr auto operator<=>(Currency, Currency) = default;

  static constexpr std::int64_t kScale = 10000;

 private:
  static constexpr std::int64_t ScaleWhole(std::int64_t whole) {
    if (whole > INT64_MAX / kScale || whole < INT64_MIN / kScale) Overflow();
    return whole * kScale;
  }
  [[noreturn]] static void Overflow();

  std::int64_t scaled_ = 0;
};

// A point in time as automation counts it: days since 1899-12-30, the time of day as a fraction.
// Before that day the whole part counts down and the fraction still runs forward.
struct DateTime {
  double days = 0;

  constexpr DateTime() = default;
  constexpr explicit DateTime(double serial) : days(serial) {}

  struct Parts {
    int year = 1899, month = 12, day = 30, hour = 0, minute = 0, second = 0;
    friend bool operator==(const Parts&, const Parts&) = default;
  };

  // Error 5 when the parts name no date between the years 100 and 9999.
  static DateTime FromParts(const Parts& parts);
  static DateTime FromYmd(int year, int month, int day) { return FromParts({year, month, day}); }

  // Rounded to the nearest second. Error 6 outside the years 100 to 9999.
  Parts ToParts() const;

  // "2024-01-31", "2024-01-31 13:05:00", or the time alone ("13:05:00") on day 0. One form on
  // every machine: a ledger must not read differently under another locale.
  std::string ToText() const;

  friend constexpr auto operator<=>(DateTime, DateTime) = default;
};

// A decimal number of up to 96 bits with 0 to 28 decimals.
class Decimal {
 public:
  static constexpr int kMaxScale = 28;

  constexpr Decimal() = default;
  constexpr Decimal(std::uint32_t high, std::uint64_t low, int scale, bool negative)
      : high_(high), low_(low), scale_(static_cast<std::uint8_t>(scale)), negative_(negative) {}

  static Decimal FromInteger(std::int64_t value);
  static Decimal FromCurrency(Currency value);
  // At most `digits` significant digits of `value` are taken over, as in its text. Error 6 outside.
  static Decimal FromDouble(double value, int digits = 15);
  // `text` is a plain number: sign, digits, point, digits, exponent. Decimals that don't fit are
  // rounded half to even. Error 6 when the whole part does not fit.
  static Decimal FromText(std::string_view text);

  std::uint32_t high() const { return high_; }
  std::uint64_t low() const { return low_; }
  int scale() const { return scale_; }
  bool negative() const { return negative_; }

  double ToDouble() const;
  // Ten-thousandths or whole units, rounded half to even; nothing when outside 64 bits.
  std::optional<std::int64_t> ToScaledInteger(int decimals) const;
  std::string ToText() const;

  friend std::strong_ordering operator<=>(const Decimal& left, const Decimal& right);
  friend bool operator==(const Decimal& left, const Decimal& right) {
    return (left <=> right) == std::strong_ordering::equal;
  }

 private:
  std::uint32_t high_ = 0;
  std::uint64_t low_ = 0;
  std::uint8_t scale_ = 0;
  bool negative_ = false;
};

// The text of a number with at most `digits` significant digits: "0.1", "1E+15", "-2.5E-07".
std::string RealText(double value, int digits);

}  // namespace qdclgl
