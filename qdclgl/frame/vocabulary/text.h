// Text helpers. Text is UTF-8 inside the library; the lengths that rules speak of count UTF-16
// units, as automation counts them.
//
// A text of automation may hold half a character, a surrogate without its other half. Inside it is
// the three bytes that UTF-8 would have for its number (generalised UTF-8), so that it goes back as
// it came. Two halves that come to stand beside each other, each from a text of its own, are the
// whole character outside. Such texts are no UTF-8; a database refuses them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qdclgl {

// A malformed byte counts as one unit and is kept as it is by every function here.
std::size_t Utf16Length(std::string_view text);

// Malformed bytes become U+FFFD. Surrogates go through in both directions.
std::u16string ToUtf16(std::string_view text);
std::string FromUtf16(std::u16string_view text);

// Whether a text is UTF-8 in the strict sense: nothing malformed, no surrogate.
bool IsUtf8(std::string_view text);

// Upper case, character by character: Latin, Greek, Cyrillic, Armenian and full-width letters.
// No character changes its number of UTF-16 units.
std::string ToUpper(std::string_view text);

std::string_view TrimBlanks(std::string_view text);

constexpr char AsciiToLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// Names of members, components and files are ASCII and match without regard to case.
bool EqualsIgnoringAsciiCase(std::string_view left, std::string_view right);

// Folds ASCII case for use as a look-up key.
std::string FoldAsciiCase(std::string_view text);

}  // namespace qdclgl
