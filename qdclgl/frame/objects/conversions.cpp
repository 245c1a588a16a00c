#include "qdclgl/frame/objects/conversions.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "qdclgl/frame/objects/nesting.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

namespace {

[[noreturn]] void Mismatch() { RaiseError(error_number::kTypeMismatch); }
[[noreturn]] void Overflow() { RaiseError(error_number::kOverflow); }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view TrimWhiteSpace(std::string_view text) {
  while (!text.empty() && IsWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

// "&HFF" and "&O17": up to 32 bits, the highest one being the sign.
std::optional<Long> ReadRadixNumber(std::string_view text) {
  if (text.size() < 3 || text[0] != '&') return std::nullopt;
  const char mark = AsciiToLower(text[1]);
  if (mark != 'h' && mark != 'o') return std::nullopt;
  std::uint32_t bits = 0;
  const char* end = text.data() + text.size();
  const auto read = std::from_chars(text.data() + 2, end, bits, mark == 'h' ? 16 : 8);
  if (read.ec == std::errc::result_out_of_range) Overflow();
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return static_cast<Long>(bits);
}

// A text that is a number, in plain form: "-1234.5E-3". Accepts blanks around it, a sign on either
// side, parentheses for a negative number, a comma between digits of the whole part.
std::optional<std::string> ReadDecimalNumber(std::string_view text) {
  text = TrimWhiteSpace(text);
  bool negative = false;
  if (text.size() > 2 && text.front() == '(' && text.back() == ')') {
    negative = true;
    text = TrimWhiteSpace(text.substr(1, text.size() - 2));
  } else if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text = TrimWhiteSpace(text.substr(1));
  } else if (!text.empty() && (text.back() == '-' || text.back() == '+')) {
    negative = text.back() == '-';
    text = TrimWhiteSpace(text.substr(0, text.size() - 1));
  }

  std::string plain = negative ? "-" : "";
  std::size_t i = 0;
  bool digits = false;
  for (; i < text.size() && (IsDigit(text[i]) || (text[i] == ',' && digits)); ++i) {
    if (text[i] == ',') continue;
    plain += text[i];
    digits = true;
  }
  if (!digits) plain += '0';
  if (i < text.size() && text[i] == '.') {
    plain += text[i++];
    for (; i < text.size() && IsDigit(text[i]); ++i) {
      plain += text[i];
      digits = true;
    }
    if (plain.back() == '.') plain += '0';
  }
  if (!digits) return std::nullopt;
  if (i < text.size() && AsciiToLower(text[i]) == 'e') {
    plain += 'E';
    ++i;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
      if (text[i] == '-') plain += '-';
      ++i;
    }
    const std::size_t first = i;
    for (; i < text.size() && IsDigit(text[i]); ++i) plain += text[i];
    if (i == first) return std::nullopt;
  }
  if (i != text.size()) return std::nullopt;
  return plain;
}

// Whether a number in plain form lies below 1: whether its first digit stands behind the point, the
// exponent counted.
bool IsBelowOne(const std::string& plain) {
  const std::size_t mark = std::min(plain.find('E'), plain.size());
  const auto point = static_cast<std::int64_t>(std::min(plain.find('.'), mark));
  const auto first = static_cast<std::int64_t>(plain.find_first_of("123456789"));
  std::int64_t exponent = 0;
  if (mark < plain.size()) {
    const char* digits = plain.data() + mark + 1;
    const auto read = std::from_chars(digits, plain.data() + plain.size(), exponent);
    if (read.ec == std::errc::result_out_of_range) return *digits == '-';
  }
  return exponent <= first - point - (first > point ? 1 : 0);
}

// Reads a number in the plain form of ReadDecimalNumber. What is too small becomes 0.
double ToDouble(const std::string& plain) {
  double value = 0;
  const auto read = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (read.ec == std::errc::result_out_of_range) {
    // The library call does not tell too large from too small.
    if (IsBelowOne(plain)) return 0;
    Overflow();
  }
  return value;
}

double DoubleFromText(std::string_view text) {
  if (const auto radix = ReadRadixNumber(TrimWhiteSpace(text))) return *radix;
  const auto plain = ReadDecimalNumber(text);
  if (!plain) Mismatch();
  return ToDouble(*plain);
}

Decimal DecimalFromText(std::string_view text) {
  if (const auto radix = ReadRadixNumber(TrimWhiteSpace(text))) return Decimal::FromInteger(*radix);
  const auto plain = ReadDecimalNumber(text);
  if (!plain) Mismatch();
  return Decimal::FromText(*plain);
}

// "2024-01-31", "2024/1/31", either with " 13:05" or " 13:05:09" behind it, or a time alone. The
// letter T may stand in place of the blank.
std::optional<DateTime> ReadDate(std::string_view text) {
  text = TrimWhiteSpace(text);
  const auto number = [&](std::size_t most) -> std::optional<int> {
    std::size_t length = 0;
    while (length < text.size() && length < most && IsDigit(text[length])) ++length;
    if (length == 0) return std::nullopt;
    int value = 0;
    std::from_chars(text.data(), text.data() + length, value);
    text.remove_prefix(length);
    return value;
  };
  const auto skip = [&](char c) {
    if (text.empty() || text.front() != c) return false;
    text.remove_prefix(1);
    return true;
  };

  DateTime::Parts parts;
  const auto read_time = [&](int hour) {
    parts.hour = hour;
    const auto minute = number(2);
    if (!minute) return false;
    parts.minute = *minute;
    if (skip(':')) {
      const auto second = number(2);
      if (!second) return false;
      parts.second = *second;
    }
    return text.empty();
  };

  const auto first = number(4);
  if (!first) return std::nullopt;
  if (skip(':')) {
    if (!read_time(*first)) return std::nullopt;
  } else {
    const char separator = text.empty() ? '\0' : text.front();
    if (separator != '-' && separator != '/') return std::nullopt;
    skip(separator);
    const auto month = number(2);
    if (!month || !skip(separator)) return std::nullopt;
    const auto day = number(2);
    if (!day) return std::nullopt;
    parts.year = *first;
    parts.month = *month;
    parts.day = *day;
    if (!text.empty()) {
      if (!skip(' ') && !skip('T')) return std::nullopt;
      const auto hour = number(2);
      if (!hour || !skip(':') || !read_time(*hour)) return std::nullopt;
    }
  }
  try {
    return DateTime::FromParts(parts);
  } catch (const Error&) {
    return std::nullopt;  // digits in the right places that name no date
  }
}

std::string TextOfBytes(std::span<const std::uint8_t> bytes) {
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
  }
  return FromUtf16(units);
}

// The plain value that an object stands for, through objects that stand for others. What is asked
// may release `object` and the place it stands in.
Variant DefaultValueOf(const Variant& object) {
  const NestingLevel level;
  Variant value = object;
  for (int steps = 0; value.IsObject(); ++steps) {
    if (value.IsNothing()) Mismatch();
    if (steps == kDeepestNesting) RaiseError(error_number::kOutOfStackSpace);
    value = value.ObjectPointer()->PlainValue();
  }
  return value;
}

double NumberIn(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kEmpty: return 0;
    case VariantType::kBoolean: return value.Held<bool>() ? -1 : 0;
    case VariantType::kByte: return value.Held<Byte>();
    case VariantType::kInteger: return value.Held<Integer>();
    case VariantType::kLong: return value.Held<Long>();
    case VariantType::kSingle: return static_cast<double>(value.Held<Single>());
    case VariantType::kDouble: return value.Held<Double>();
    case VariantType::kCurrency: return value.Held<Currency>().ToDouble();
    case VariantType::kDate: return value.Held<DateTime>().days;
    case VariantType::kDecimal: return value.Held<Decimal>().ToDouble();
    case VariantType::kString: return DoubleFromText(value.TextView());
    case VariantType::kObject: return NumberIn(DefaultValueOf(value));
    case VariantType::kNull:
    case VariantType::kMissing:
    case VariantType::kByteArray:
    case VariantType::kError: break;
  }
  Mismatch();
}

// `value` times 10 to the power of `decimals` as a whole number. Fixed-point values and texts go
// the exact way, so that a large amount is not bent by a Double.
std::int64_t ScaledInteger(const Variant& value, int decimals) {
  std::optional<std::int64_t> exact;
  switch (value.Type()) {
    case VariantType::kCurrency:
      exact = Decimal::FromCurrency(value.Held<Currency>()).ToScaledInteger(decimals);
      break;
    case VariantType::kDecimal: exact = value.Held<Decimal>().ToScaledInteger(decimals); break;
    case VariantType::kString:
      exact = DecimalFromText(value.TextView()).ToScaledInteger(decimals);
      break;
    case VariantType::kObject: return ScaledInteger(DefaultValueOf(value), decimals);
    default: {
      if (decimals == 4) return Currency(NumberIn(value)).units();
      const double scaled = RoundHalfEven(NumberIn(value));
      if (!(scaled >= -0x1p63 && scaled < 0x1p63)) Overflow();
      return static_cast<std::int64_t>(scaled);
    }
  }
  if (!exact) Overflow();
  return *exact;
}

template <class T>
T WholeNumber(const Variant& value) {
  const std::int64_t number = ScaledInteger(value, 0);
  if (number < std::numeric_limits<T>::min() || number > std::numeric_limits<T>::max()) Overflow();
  return static_cast<T>(number);
}

}  // namespace

Boolean CBool(const Variant& value) {
  if (value.IsString()) {
    const std::string_view text = value.TextView();
    if (EqualsIgnoringAsciiCase(text, "True")) return true;
    if (EqualsIgnoringAsciiCase(text, "False")) return false;
  }
  if (value.Is(VariantType::kObject)) return CBool(DefaultValueOf(value));
  return NumberIn(value) != 0;
}

Byte CByte(const Variant& value) {
  constexpr Byte kTrue = 255;  // True has all bits set
  if (value.Is(VariantType::kBoolean)) return value.Held<bool>() ? kTrue : Byte{0};
  if (value.Is(VariantType::kObject)) return CByte(DefaultValueOf(value));
  return WholeNumber<Byte>(value);
}
Integer CInt(const Variant& value) { return WholeNumber<Integer>(value); }
Long CLng(const Variant& value) { return WholeNumber<Long>(value); }

Single CSng(const Variant& value) {
  const double number = NumberIn(value);
  const auto result = static_cast<float>(number);
  if (std::isinf(result) && !std::isinf(number)) Overflow();
  return result;
}

Double CDbl(const Variant& value) { return NumberIn(value); }

Currency CCur(const Variant& value) { return Currency::FromUnits(ScaledInteger(value, 4)); }

DateTime CDate(const Variant& value) {
  if (value.Is(VariantType::kObject)) return CDate(DefaultValueOf(value));
  DateTime date;
  if (value.IsString()) {
    if (const auto read = ReadDate(value.TextView())) return *read;
  }
  date.days = NumberIn(value);
  date.ToParts();  // raises 6 for a day that no calendar names
  return date;
}

Decimal CDec(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kDecimal: return value.Held<Decimal>();
    case VariantType::kCurrency: return Decimal::FromCurrency(value.Held<Currency>());
    case VariantType::kString: return DecimalFromText(value.TextView());
    case VariantType::kSingle:
      return Decimal::FromDouble(static_cast<double>(value.Held<Single>()), 7);
    case VariantType::kObject: return CDec(DefaultValueOf(value));
    default: return Decimal::FromDouble(NumberIn(value));
  }
}

String CStr(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kEmpty: return {};
    case VariantType::kBoolean: return value.Held<bool>() ? "True" : "False";
    case VariantType::kByte:
    case VariantType::kInteger:
    case VariantType::kLong: return std::to_string(CLng(value));
    case VariantType::kSingle: return RealText(static_cast<double>(value.Held<Single>()), 7);
    case VariantType::kDouble: return RealText(value.Held<Double>(), 15);
    case VariantType::kCurrency: return value.Held<Currency>().ToText();
    case VariantType::kDate: return value.Held<DateTime>().ToText();
    case VariantType::kDecimal: return value.Held<Decimal>().ToText();
    case VariantType::kString: return String(value.TextView());
    case VariantType::kByteArray: return TextOfBytes(value.BytesView());
    case VariantType::kObject: return CStr(DefaultValueOf(value));
    case VariantType::kNull:
    case VariantType::kMissing:
    case VariantType::kError: break;
  }
  Mismatch();
}

String ConcatenatedText(const Variant& value) {
  if (value.IsNull()) return {};
  if (value.IsObject()) return ConcatenatedText(DefaultValueOf(value));
  return CStr(value);
}

bool HasEmptyText(const Variant& value) {
  if (value.IsString()) return value.TextView().empty();
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kNull: return true;
    case VariantType::kMissing:
    case VariantType::kError: Mismatch();
    case VariantType::kByteArray: return value.BytesView().size() < 2;
    case VariantType::kObject: return HasEmptyText(DefaultValueOf(value));
    default: return false;
  }
}

Double Val(std::string_view text) {
  std::string compact;
  std::copy_if(text.begin(), text.end(), std::back_inserter(compact),
               [](char c) { return !IsWhiteSpace(c); });
  if (compact.size() > 2 && compact[0] == '&') {
    const bool hexadecimal = AsciiToLower(compact[1]) == 'h';
    const auto is_digit = [&](char c) {
      return hexadecimal ? std::isxdigit(static_cast<unsigned char>(c)) != 0 : c >= '0' && c <= '7';
    };
    std::size_t end = 2;
    while (end < compact.size() && end < 10 && is_digit(compact[end])) ++end;
    return ReadRadixNumber(std::string_view(compact).substr(0, end)).value_or(0);
  }
  // The longest beginning that is a number decides.
  std::size_t end = 0;
  bool point = false, exponent = false;
  for (; end < compact.size(); ++end) {
    const char c = AsciiToLower(compact[end]);
    if (IsDigit(c)) continue;
    if ((c == '+' || c == '-') && (end == 0 || AsciiToLower(compact[end - 1]) == 'e')) continue;
    if (c == '.' && !point && !exponent) {
      point = true;
    } else if (c == 'e' && !exponent && end > 0) {
      exponent = true;
    } else {
      break;
    }
  }
  for (; end > 0; --end) {
    if (!IsDigit(compact[end - 1]) && compact[end - 1] != '.') continue;
    if (const auto plain = ReadDecimalNumber(std::string_view(compact).substr(0, end))) {
      return ToDouble(*plain);
    }
  }
  return 0;
}

std::partial_ordering Compare(const Variant& left, const Variant& right) {
  if (left.IsObject() || right.IsObject()) {
    // Copies, since what is asked for its value may write over either.
    const Variant first = left, second = right;
    const Variant first_value = first.IsObject() ? DefaultValueOf(first) : first;
    return Compare(first_value, second.IsObject() ? DefaultValueOf(second) : second);
  }
  const auto refuse = [](const Variant& value) {
    if (value.IsMissing() || value.Is(VariantType::kByteArray) || value.Is(VariantType::kError)) {
      Mismatch();
    }
  };
  refuse(left);
  refuse(right);
  if (left.IsNull() || right.IsNull()) return std::partial_ordering::unordered;

  if (left.IsString() && right.IsString()) return left.TextView() <=> right.TextView();
  if (left.IsString()) {
    return right.IsEmpty() ? left.TextView() <=> std::string_view()
                           : std::partial_ordering::greater;
  }
  if (right.IsString()) {
    return left.IsEmpty() ? std::string_view() <=> right.TextView() : std::partial_ordering::less;
  }

  const auto is_real = [](const Variant& value) {
    return value.Is(VariantType::kSingle) || value.Is(VariantType::kDouble) ||
           value.Is(VariantType::kDate);
  };
  if (is_real(left) || is_real(right)) return NumberIn(left) <=> NumberIn(right);
  if (left.Is(VariantType::kDecimal) || right.Is(VariantType::kDecimal)) {
    return CDec(left) <=> CDec(right);
  }
  return ScaledInteger(left, 4) <=> ScaledInteger(right, 4);
}

bool Equals(const Variant& left, const Variant& right) {
  return Compare(left, right) == std::partial_ordering::equivalent;
}

}  // namespace qdclgl
