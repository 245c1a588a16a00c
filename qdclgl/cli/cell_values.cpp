#include "qdclgl/cli/cell_values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "qdclgl/cli/one_line.h"
#include "qdclgl/frame/vocabulary/errors.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

[[noreturn]] void Refuse(std::string_view text, const std::string& reason) {
  throw BadCell(Quoted(text) + " " + reason);
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool AreDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

// The parts of a plain number: "-12.50" is {true, "12", "50"}.
struct Number {
  bool negative = false;
  std::string_view whole;
  std::string_view decimals;
};

Number Split(std::string_view text, const char* kind) {
  Number number;
  std::string_view rest = text;
  if (rest.starts_with('-')) {
    number.negative = true;
    rest.remove_prefix(1);
  }
  const std::size_t point = rest.find('.');
  number.whole = rest.substr(0, point);
  if (point != rest.npos) number.decimals = rest.substr(point + 1);
  if (!AreDigits(number.whole) || (point != rest.npos && !AreDigits(number.decimals))) {
    const bool has_comma = text.find(',') != text.npos;
    Refuse(text,
           std::string("is not ") + kind + (has_comma ? "; decimals stand behind a point" : ""));
  }
  return number;
}

void LimitDecimals(std::string_view text, const Number& number, std::size_t most) {
  if (number.decimals.size() > most) {
    Refuse(text, "has more than " + std::to_string(most) + " decimals");
  }
}

// Whether a text has the form, in which "d" stands for a digit.
bool HasForm(std::string_view text, std::string_view form) {
  return std::ranges::equal(
      text, form, [](char c, char place) { return place == 'd' ? IsDigit(c) : c == place; });
}

int Digits(std::string_view text, std::size_t first, std::size_t count) {
  return ReadWhole(text.substr(first, count));
}

DateTime FromParts(std::string_view text, const DateTime::Parts& parts, const char* otherwise) {
  try {
    return DateTime::FromParts(parts);
  } catch (const Error&) {
    Refuse(text, otherwise);
  }
}

Double ReadDouble(std::string_view text) {
  Double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc()) Refuse(text, "is too large");
  return value;
}

}  // namespace

Currency ReadAmount(std::string_view text) {
  constexpr std::size_t kDecimals = 4;
  const Number number = Split(text, "an amount");
  LimitDecimals(text, number, kDecimals);
  std::string digits(number.negative ? "-" : "");
  digits.append(number.whole).append(number.decimals);
  digits.append(kDecimals - number.decimals.size(), '0');
  std::int64_t units = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), units);
  if (result.ec != std::errc()) Refuse(text, "is too large");
  return Currency::FromUnits(units);
}

Decimal ReadDecimal(std::string_view text) {
  LimitDecimals(text, Split(text, "a number"), Decimal::kMaxScale);
  try {
    const Decimal value = Decimal::FromText(text);
    if (value.scale() == static_cast<int>(Split(text, "a number").decimals.size())) return value;
  } catch (const Error&) {
    Refuse(text, "is too large");
  }
  Refuse(text, "has too many digits");
}

Double ReadQuantity(std::string_view text) {
  LimitDecimals(text, Split(text, "a quantity"), 6);
  return ReadDouble(text);
}

Double ReadPrice(std::string_view text) {
  Split(text, "a price");
  return ReadDouble(text);
}

Double ReadRate(std::string_view text) {
  Split(text, "a rate");
  const Double rate = ReadDouble(text);
  if (!(rate > 0)) Refuse(text, "is not a rate above 0");
  return rate;
}

DateTime ReadDate(std::string_view text) {
  if (!HasForm(text, "dddd-dd-dd")) {
    Refuse(text, "is not a date; dates are written as yyyy-mm-dd");
  }
  return FromParts(text, {Digits(text, 0, 4), Digits(text, 5, 2), Digits(text, 8, 2)},
                   "is not a day of the calendar");
}

DateTime ReadTime(std::string_view text) {
  if (!HasForm(text, "dddd-dd-dd dd:dd:dd")) return ReadDate(text);
  DateTime::Parts parts = ReadDate(text.substr(0, 10)).ToParts();
  parts.hour = Digits(text, 11, 2);
  parts.minute = Digits(text, 14, 2);
  parts.second = Digits(text, 17, 2);
  return FromParts(text, parts, "is not a time of the day");
}

Long ReadWhole(std::string_view text) {
  Long value = 0;
  if (!AreDigits(text)) Refuse(text, "is not a whole number");
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc()) Refuse(text, "is too large");
  return value;
}

Long ReadInteger(std::string_view text, Long least, Long most) {
  const std::string_view digits = text.starts_with('-') ? text.substr(1) : text;
  if (!AreDigits(digits)) Refuse(text, "is not a whole number");
  Long value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || value < least || value > most) {
    Refuse(text, "is not between " + std::to_string(least) + " and " + std::to_string(most));
  }
  return value;
}

Double ReadNumber(std::string_view text) {
  Double value = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ptr != end || result.ec == std::errc::invalid_argument)
    Refuse(text, "is not a number");
  if (result.ec != std::errc() || !std::isfinite(value)) Refuse(text, "is too large");
  return value;
}

Boolean ReadTruth(std::string_view text) {
  for (const std::string_view word : {"1", "yes", "true"}) {
    if (EqualsIgnoringAsciiCase(text, word)) return true;
  }
  for (const std::string_view word : {"0", "no", "false"}) {
    if (EqualsIgnoringAsciiCase(text, word)) return false;
  }
  Refuse(text, "is neither yes nor no");
}

std::string AmountText(Currency amount) {
  const std::int64_t units = amount.units();
  // Digits of the unsigned value, so that the least amount has a text as well.
  const auto size =
      units < 0 ? 0 - static_cast<std::uint64_t>(units) : static_cast<std::uint64_t>(units);
  std::string digits = std::to_string(size);
  if (digits.size() < 5) digits.insert(0, 5 - digits.size(), '0');
  digits.insert(digits.size() - 4, ".");
  return (units < 0 ? "-" : "") + digits;
}

std::string Quoted(std::string_view text) { return "\"" + OneLine(text) + "\""; }

}  // namespace qdclgl::cli
