// A text converted to every type, and back.
#include "qdclgl/frame/objects/conversions.h"

#include <charconv>
#include <cmath>

#include "tests/fuzz/targets/target.h"

namespace {

using namespace qdclgl;
using fuzz::NumberOf;
using fuzz::Require;

// The text as a T, and that T as a text and as a T again.
template <class T>
bool Returns(const Variant& value) {
  T first{};
  const std::int32_t raised = NumberOf([&] { first = ConvertTo<T>(value); });
  Require(raised == 0 || raised == error_number::kTypeMismatch || raised == error_number::kOverflow,
          "a conversion raises 13 or 6");
  if (raised != 0) return false;
  const std::string text = CStr(Variant(first));
  const T again = ConvertTo<T>(Variant(text));
  Require(CStr(Variant(again)) == text, "a value's text is the text of what it reads as");
  return true;
}

// Digits, a point, digits: what the standard library reads likewise.
bool IsPlainNumber(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  const std::size_t point = text.find('.');
  const auto are_digits = [](std::string_view part) {
    return !part.empty() && part.find_first_not_of("0123456789") == std::string_view::npos;
  };
  return point == std::string_view::npos
             ? are_digits(text)
             : are_digits(text.substr(0, point)) && are_digits(text.substr(point + 1));
}

void LookAtWholeNumbers(const Variant& value) {
  Long as_long = 0;
  Integer as_integer = 0;
  Byte as_byte = 0;
  const bool fits_long = NumberOf([&] { as_long = CLng(value); }) == 0;
  const bool fits_integer = NumberOf([&] { as_integer = CInt(value); }) == 0;
  const bool fits_byte = NumberOf([&] { as_byte = CByte(value); }) == 0;
  Require(!fits_integer || (fits_long && as_integer == as_long), "an Integer is a Long");
  Require(!fits_byte || (fits_integer && as_byte == as_integer) || as_byte == 255,
          "a Byte is an Integer, or True");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(fuzz::TextOf(data, size));
  const Variant value(text);
  Returns<Boolean>(value);
  Returns<Byte>(value);
  Returns<Integer>(value);
  Returns<Long>(value);
  Returns<Single>(value);
  Returns<Double>(value);
  Returns<DateTime>(value);
  if (Returns<Currency>(value)) {
    const Currency amount = CCur(value);
    Require(CCur(Variant(CStr(Variant(amount)))) == amount, "an amount is its text");
  }
  if (Returns<Decimal>(value)) {
    const Decimal number = CDec(value);
    Require(CDec(Variant(CStr(Variant(number)))) == number, "a Decimal is its text");
    Require(Compare(Variant(number), Variant(number)) == 0, "a Decimal equals itself");
  }
  LookAtWholeNumbers(value);
  if (IsPlainNumber(text)) {
    double plain = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), plain);
    const std::int32_t raised = NumberOf([&] { CDbl(value); });
    Require(
        (raised == error_number::kOverflow) == (read.ec != std::errc() && std::abs(plain) != 0) ||
            raised == 0,
        "a number too large is refused");
    if (raised == 0 && read.ec == std::errc()) {
      Require(CDbl(value) == plain, "a plain number is what the standard library reads");
      Require(Val(text) == plain, "and what Val reads");
    }
  }
  Require(CStr(value) == text, "a text is itself");
  NumberOf([&] { Val(text); });
  return 0;
}
