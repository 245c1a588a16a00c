#include "qdclgl/frame/values/value_rules.h"

#include <algorithm>
#include <charconv>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

namespace {

constexpr std::string_view kPlainLanguage = "chs";

// The look-up of the session's language; there is one language.
std::string_view SessionLanguage() { return kPlainLanguage; }

bool IsCodeCharacter(char16_t unit) {
  return (unit >= 'A' && unit <= 'Z') || (unit >= 'a' && unit <= 'z') ||
         (unit >= '0' && unit <= '9') || unit == '_';
}

// Half a character (a surrogate) and a broken one have no place in any code page.
bool IsWide(char16_t unit) {
  return unit >= 0x80 && !(unit >= 0xD800 && unit <= 0xDFFF) && unit != 0xFFFD;
}

}  // namespace

Boolean IsValidCode(std::string_view text, Integer max_len, Boolean allow_wide) {
  const std::u16string units = ToUtf16(text);
  if (max_len > 0 && units.size() > static_cast<std::size_t>(max_len)) return false;
  return std::all_of(units.begin(), units.end(), [allow_wide](char16_t unit) {
    return IsCodeCharacter(unit) || (allow_wide && IsWide(unit));
  });
}

Boolean DoubleLosesPrecision(Double value) {
  const std::string text = RealText(value, 15);
  double back = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), back);
  return read.ec != std::errc() || read.ptr != text.data() + text.size() || back != value;
}

String LocalizedFieldName(const String& name) {
  const std::string_view language = SessionLanguage();
  if (language == kPlainLanguage) return name;
  return String(TrimBlanks(name)) + "_" + String(language);
}

}  // namespace qdclgl
