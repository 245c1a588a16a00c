#include "qdclgl/frame/values/values.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

#include "qdclgl/frame/vocabulary/errors.h"

namespace qdclgl {

namespace {

[[noreturn]] void RaiseOverflow() { RaiseError(error_number::kOverflow); }

// Two digits of a date or time part.
void AppendTwoDigits(std::string& text, int value) {
  text += static_cast<char>('0' + value / 10);
  text += static_cast<char>('0' + value % 10);
}

// An unsigned whole number wide enough to hold any 96-bit number times 10^28, and then some.
class WideInteger {
 public:
  WideInteger() = default;
  explicit WideInteger(const Decimal& value)
      : limbs_{static_cast<std::uint32_t>(value.low()),
               static_cast<std::uint32_t>(value.low() >> 32), value.high()} {}

  void MultiplyAdd(std::uint32_t factor, std::uint32_t addend) {
    std::uint64_t carry = addend;
    for (auto& limb : limbs_) {
      carry += std::uint64_t{limb} * factor;
      limb = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }

  std::uint32_t DivideByTen() {
    std::uint64_t remainder = 0;
    for (auto limb = limbs_.rbegin(); limb != limbs_.rend(); ++limb) {
      remainder = remainder << 32 | *limb;
      *limb = static_cast<std::uint32_t>(remainder / 10);
      remainder %= 10;
    }
    return static_cast<std::uint32_t>(remainder);
  }

  // Drops `count` decimal digits, rounding half to even.
  void DropDigits(int count) {
    bool sticky = false;
    std::uint32_t last = 0;
    for (; count > 0; --count) {
      sticky = sticky || last != 0;
      last = DivideByTen();
    }
    if (last > 5 || (last == 5 && (sticky || limbs_[0] % 2 != 0))) MultiplyAdd(1, 1);
  }

  // The number of bits in use, leading zeros left out.
  int BitLength() const {
    for (std::size_t i = limbs_.size(); i-- > 0;) {
      if (limbs_[i] != 0) {
        return static_cast<int>(32 * i) + static_cast<int>(std::bit_width(limbs_[i]));
      }
    }
    return 0;
  }

  std::uint64_t low() const { return std::uint64_t{limbs_[1]} << 32 | limbs_[0]; }
  std::uint32_t high() const { return limbs_[2]; }

  std::string Digits() const {
    WideInteger rest = *this;
    std::string digits;
    do digits.insert(digits.begin(), static_cast<char>('0' + rest.DivideByTen()));
    while (rest.BitLength() > 0);
    return digits;
  }

  friend std::strong_ordering operator<=>(const WideInteger& left, const WideInteger& right) {
    for (std::size_t i = left.limbs_.size(); i-- > 0;) {
      if (left.limbs_[i] != right.limbs_[i]) return left.limbs_[i] <=> right.limbs_[i];
    }
    return std::strong_ordering::equal;
  }

 private:
  std::array<std::uint32_t, 7> limbs_{};  // least significant first
};

// Digits with `decimals` of them behind the point; trailing zero decimals are left out.
std::string FixedPointText(std::string digits, int decimals, bool negative) {
  const auto places = static_cast<std::size_t>(decimals);
  if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
  if (places > 0) {
    digits.insert(digits.size() - places, 1, '.');
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.pop_back();
  }
  return negative && digits != "0" ? "-" + digits : digits;
}

// Exponents beyond this one decide nothing more; it leaves room to count digits.
constexpr int kFarthestExponent = 1'000'000;

// Civil calendar <-> day numbers, proleptic Gregorian, counted from 1970-01-01.
std::int64_t DayNumber(int year, int month, int day) {
  const int y = month <= 2 ? year - 1 : year;
  const int era = (y >= 0 ? y : y - 399) / 400;
  const int year_of_era = y - era * 400;
  const int day_of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const int day_of_era = year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
  return std::int64_t{era} * 146097 + day_of_era - 719468;
}

constexpr std::int64_t kDayZero = -25569;   // 1899-12-30
constexpr double kFirstDay = -657434;       // 100-01-01
constexpr double kBehindLastDay = 2958466;  // 10000-01-01
constexpr std::int64_t kSecondsPerDay = 24 * 60 * 60;

}  // namespace

double RoundHalfEven(double value) {
  const double floor = std::floor(value);
  const double rest = value - floor;
  if (rest > 0.5 || (rest == 0.5 && std::fmod(floor, 2) != 0)) return floor + 1;
  return floor;
}

std::string RealText(double value, int digits) {
  if (value == 0) return "0";  // also for the negative zero
  if (std::isnan(value)) return value < 0 || std::signbit(value) ? "-1.#IND" : "1.#QNAN";
  if (std::isinf(value)) return value < 0 ? "-1.#INF" : "1.#INF";
  char buffer[40];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits);
  std::string text(buffer, end.ptr);
  if (const auto exponent = text.find('e'); exponent != std::string::npos) text[exponent] = 'E';
  return text;
}

// ---- Currency ----

Currency::Currency(double value) {
  // The product is not always exact; what its own rounding has lost decides at a half, and makes up
  // for whole units where the product has no digits behind the point left.
  const double product = value * static_cast<double>(kScale);
  const double whole = RoundHalfEven(product);
  if (!(whole >= -0x1p63 && whole < 0x1p63)) RaiseOverflow();
  scaled_ = static_cast<std::int64_t>(whole);
  const double lost = std::fma(value, static_cast<double>(kScale), -product);
  const double rest = product - whole;
  std::int64_t missing = 0;
  if (rest == 0.5 && lost > 0) missing = 1;
  else if (rest == -0.5 && lost < 0) missing = -1;
  else if (std::abs(lost) > 0.5) missing = static_cast<std::int64_t>(RoundHalfEven(lost));
  else if (std::abs(lost) == 0.5 && scaled_ % 2 != 0) missing = lost > 0 ? 1 : -1;
  if (__builtin_add_overflow(scaled_, missing, &scaled_)) RaiseOverflow();
}

void Currency::Overflow() { RaiseOverflow(); }

Currency Currency::operator-() const { return Currency() - *this; }

Currency operator+(Currency left, Currency right) {
  std::int64_t sum;
  if (__builtin_add_overflow(left.scaled_, right.scaled_, &sum)) RaiseOverflow();
  return Currency::FromUnits(sum);
}

Currency operator-(Currency left, Currency right) {
  std::int64_t difference;
  if (__builtin_sub_overflow(left.scaled_, right.scaled_, &difference)) RaiseOverflow();
  return Currency::FromUnits(difference);
}

std::string Currency::ToText() const { return Decimal::FromCurrency(*this).ToText(); }

// ---- Date ----

DateTime DateTime::FromParts(const Parts& parts) {
  constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = parts.year % 4 == 0 && (parts.year % 100 != 0 || parts.year % 400 == 0);
  const auto in_range = [](int value, int low, int high) { return value >= low && value <= high; };
  if (!in_range(parts.year, 100, 9999) || !in_range(parts.month, 1, 12) ||
      !in_range(
          parts.day, 1,
          kDays[static_cast<std::size_t>(parts.month - 1)] + (leap && parts.month == 2 ? 1 : 0)) ||
      !in_range(parts.hour, 0, 23) || !in_range(parts.minute, 0, 59) ||
      !in_range(parts.second, 0, 59)) {
    RaiseError(error_number::kInvalidCall);
  }
  const auto day = static_cast<double>(DayNumber(parts.year, parts.month, parts.day) - kDayZero);
  const double time =
      static_cast<double>((parts.hour * 60 + parts.minute) * 60 + parts.second) / kSecondsPerDay;
  return DateTime(day < 0 ? day - time : day + time);
}

DateTime::Parts DateTime::ToParts() const {
  if (!(days > kFirstDay - 1 && days < kBehindLastDay)) RaiseOverflow();
  const double whole = std::trunc(days);
  auto day = static_cast<std::int64_t>(whole);
  auto seconds =
      static_cast<std::int64_t>(std::floor(std::fabs(days - whole) * kSecondsPerDay + 0.5));
  if (seconds == kSecondsPerDay) {
    seconds = 0;
    if (++day >= static_cast<std::int64_t>(kBehindLastDay)) RaiseOverflow();
  }

  const std::int64_t shifted = day + kDayZero + 719468;
  const std::int64_t era = (shifted >= 0 ? shifted : shifted - 146096) / 146097;
  const auto day_of_era = static_cast<int>(shifted - era * 146097);
  const int year_of_era =
      (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const int day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const int month_from_march = (5 * day_of_year + 2) / 153;

  Parts parts;
  parts.day = day_of_year - (153 * month_from_march + 2) / 5 + 1;
  parts.month = month_from_march < 10 ? month_from_march + 3 : month_from_march - 9;
  parts.year = year_of_era + static_cast<int>(era) * 400 + (parts.month <= 2 ? 1 : 0);
  parts.hour = static_cast<int>(seconds / 3600);
  parts.minute = static_cast<int>(seconds / 60 % 60);
  parts.second = static_cast<int>(seconds % 60);
  return parts;
}

std::string DateTime::ToText() const {
  const Parts parts = ToParts();
  const bool has_time = parts.hour != 0 || parts.minute != 0 || parts.second != 0;
  const bool has_day = parts.year != 1899 || parts.month != 12 || parts.day != 30;
  std::string text;
  if (has_day || !has_time) {
    text = std::to_string(parts.year);
    text.insert(0, 4 - text.size(), '0');
    text += '-';
    AppendTwoDigits(text, parts.month);
    text += '-';
    AppendTwoDigits(text, parts.day);
    if (has_time) text += ' ';
  }
  if (has_time) {
    AppendTwoDigits(text, parts.hour);
    text += ':';
    AppendTwoDigits(text, parts.minute);
    text += ':';
    AppendTwoDigits(text, parts.second);
  }
  return text;
}

// ---- Decimal ----

Decimal Decimal::FromInteger(std::int64_t value) {
  const auto magnitude = static_cast<std::uint64_t>(value);
  return Decimal(0, value < 0 ? 0 - magnitude : magnitude, 0, value < 0);
}

Decimal Decimal::FromCurrency(Currency value) {
  Decimal result = FromInteger(value.units());
  result.scale_ = 4;
  return result;
}

Decimal Decimal::FromDouble(double value, int digits) {
  if (!std::isfinite(value)) RaiseOverflow();
  return FromText(RealText(value, digits));
}

Decimal Decimal::FromText(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  int exponent = 0;
  if (const auto mark = text.find_first_of("eE"); mark != std::string_view::npos) {
    auto digits = text.substr(mark + 1);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (read.ec == std::errc::result_out_of_range) {
      exponent = digits.starts_with('-') ? -kFarthestExponent : kFarthestExponent;
    }
    exponent = std::clamp(exponent, -kFarthestExponent, kFarthestExponent);
    text = text.substr(0, mark);
  }

  // Digits are taken up to a width that leaves room for exact rounding; what is dropped behind it
  // only says whether anything was there.
  WideInteger number;
  int scale = -exponent;
  bool point = false, dropped = false;
  for (const char c : text) {
    if (c == '.') {
      point = true;
      continue;
    }
    if (number.BitLength() > 190) {
      dropped = dropped || c != '0';
      scale -= point ? 0 : 1;
      continue;
    }
    number.MultiplyAdd(10, static_cast<std::uint32_t>(c - '0'));
    scale += point ? 1 : 0;
  }
  if (dropped) {
    number.MultiplyAdd(10, 1);  // a digit behind a tie decides it
    ++scale;
  }

  if (number.BitLength() == 0) return Decimal();
  while (scale < 0) {
    if (number.BitLength() > 96) RaiseOverflow();
    number.MultiplyAdd(10, 0);
    ++scale;
  }
  for (int drop = std::max(0, scale - kMaxScale);; ++drop) {
    if (drop > scale) RaiseOverflow();
    WideInteger rounded = number;
    rounded.DropDigits(std::min(drop, 70));
    if (rounded.BitLength() <= 96) {
      const int kept = scale - drop;
      return Decimal(rounded.high(), rounded.low(), kept, negative && rounded.BitLength() > 0);
    }
  }
}

double Decimal::ToDouble() const {
  const std::string text = ToText();
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

std::optional<std::int64_t> Decimal::ToScaledInteger(int decimals) const {
  WideInteger number(*this);
  if (scale_ > decimals) number.DropDigits(scale_ - decimals);
  for (int i = scale_; i < decimals; ++i) number.MultiplyAdd(10, 0);
  const std::uint64_t limit = std::uint64_t{INT64_MAX} + (negative_ ? 1 : 0);
  if (number.BitLength() > 64 || number.low() > limit) return std::nullopt;
  return static_cast<std::int64_t>(negative_ ? 0 - number.low() : number.low());
}

std::string Decimal::ToText() const {
  return FixedPointText(WideInteger(*this).Digits(), scale_, negative_);
}

std::strong_ordering operator<=>(const Decimal& left, const Decimal& right) {
  WideInteger a(left), b(right);
  for (int i = left.scale_; i < right.scale_; ++i) a.MultiplyAdd(10, 0);
  for (int i = right.scale_; i < left.scale_; ++i) b.MultiplyAdd(10, 0);
  const bool left_negative = left.negative_ && a.BitLength() > 0;
  const bool right_negative = right.negative_ && b.BitLength() > 0;
  if (left_negative != right_negative) return right_negative <=> left_negative;
  return left_negative ? b <=> a : a <=> b;
}

}  // namespace qdclgl
