// Small rules about values that several classes share.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/frame/values/values.h"

namespace qdclgl {

// Whether `text` may stand as a code: letters A to Z in either case, digits and underscores, and
// with `allow_wide` any character outside ASCII that a double-byte code page can hold. A `max_len`
// above 0 limits the length in UTF-16 units. Empty text is valid.
Boolean IsValidCode(std::string_view text, Integer max_len, Boolean allow_wide);

// True when `value` does not survive a trip through its text form of 15 significant digits.
Boolean DoubleLosesPrecision(Double value);

// The name of a field in the session's language. The language is always "chs", whose fields carry
// their plain names.
String LocalizedFieldName(const String& name);

}  // namespace qdclgl
