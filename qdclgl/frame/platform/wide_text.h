// Texts as Windows takes them: UTF-16 in wide characters, which are of that size there alone.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

inline std::wstring ToWide(std::string_view text) {
  const std::u16string units = ToUtf16(text);
  return std::wstring(units.begin(), units.end());
}

inline std::string FromWide(std::wstring_view text) {
  return FromUtf16({reinterpret_cast<const char16_t*>(text.data()), text.size()});
}

}  // namespace qdclgl
