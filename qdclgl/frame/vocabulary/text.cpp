#include "qdclgl/frame/vocabulary/text.h"

#include <algorithm>

namespace qdclgl {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

struct Decoded {
  char32_t character = kReplacement;
  std::size_t length = 1;
  bool valid = false;
};

Decoded DecodeUtf8(std::string_view text, std::size_t position) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(position);
  if (lead < 0x80) return {lead, 1, true};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || position + length > text.size()) return {};
  char32_t character = lead & (0x7Fu >> length);
  for (std::size_t i = position + 1; i < position + length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {};
    character = character << 6 | (byte(i) & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (character < kSmallest[length] || character > 0x10FFFF) return {};
  return {character, length, true};
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto append = [&](char32_t byte) { text += static_cast<char>(byte); };
  if (character < 0x80) {
    append(character);
  } else if (character < 0x800) {
    append(0xC0 | character >> 6);
    append(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    append(0xE0 | character >> 12);
    append(0x80 | (character >> 6 & 0x3F));
    append(0x80 | (character & 0x3F));
  } else {
    append(0xF0 | character >> 18);
    append(0x80 | (character >> 12 & 0x3F));
    append(0x80 | (character >> 6 & 0x3F));
    append(0x80 | (character & 0x3F));
  }
}

constexpr char AsciiToUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

char32_t UpperCase(char32_t c) {
  const auto in = [c](char32_t first, char32_t last) { return c >= first && c <= last; };
  if (in('a', 'z') || (in(0xE0, 0xFE) && c != 0xF7)) return c - 0x20;  // Latin, Latin-1
  if (c == 0xFF) return 0x178;
  if (in(0x100, 0x137) && c != 0x131) return c & ~char32_t{1};  // Latin Extended-A, in pairs
  if (in(0x139, 0x148) || in(0x179, 0x17E)) return c % 2 == 0 ? c - 1 : c;
  if (in(0x14A, 0x177)) return c & ~char32_t{1};
  if (c == 0x3AC) return 0x386;  // Greek
  if (in(0x3AD, 0x3AF)) return c - 0x25;
  if (in(0x3B1, 0x3CB) && c != 0x3C2) return c - 0x20;
  if (c == 0x3C2) return 0x3A3;
  if (c == 0x3CC) return 0x38C;
  if (in(0x3CD, 0x3CE)) return c - 0x3F;
  if (in(0x430, 0x44F)) return c - 0x20;  // Cyrillic
  if (in(0x450, 0x45F)) return c - 0x50;
  if (in(0x460, 0x481) || in(0x48A, 0x4BF)) return c & ~char32_t{1};
  if (in(0x561, 0x586)) return c - 0x30;    // Armenian
  if (in(0xFF41, 0xFF5A)) return c - 0x20;  // full-width Latin
  return c;
}

}  // namespace

std::size_t Utf16Length(std::string_view text) {
  std::size_t units = 0;
  for (std::size_t i = 0; i < text.size();) {
    const Decoded decoded = DecodeUtf8(text, i);
    units += decoded.character >= 0x10000 ? 2 : 1;
    i += decoded.length;
  }
  return units;
}

std::u16string ToUtf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const Decoded decoded = DecodeUtf8(text, i);
    if (decoded.character >= 0x10000) {
      units += static_cast<char16_t>(0xD7C0 + (decoded.character >> 10));
      units += static_cast<char16_t>(0xDC00 + (decoded.character & 0x3FF));
    } else {
      units += static_cast<char16_t>(decoded.character);
    }
    i += decoded.length;
  }
  return units;
}

std::string FromUtf16(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    if (IsHighSurrogate(character) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10) + (text[++i] - 0xDC00u);
    }
    AppendUtf8(result, character);
  }
  return result;
}

bool IsUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    if (static_cast<unsigned char>(text[i]) < 0x80) {
      ++i;
      continue;
    }
    const Decoded decoded = DecodeUtf8(text, i);
    const char32_t character = decoded.character;
    if (!decoded.valid || IsHighSurrogate(character) || IsLowSurrogate(character)) return false;
    i += decoded.length;
  }
  return true;
}

std::string ToUpper(std::string_view text) {
  std::string result(text);
  std::size_t ascii = 0;  // how much of the text is, as keys are as a whole
  while (ascii < text.size() && static_cast<unsigned char>(text[ascii]) < 0x80) {
    result[ascii] = AsciiToUpper(text[ascii]);
    ++ascii;
  }
  result.resize(ascii);
  for (std::size_t i = ascii; i < text.size();) {
    const Decoded decoded = DecodeUtf8(text, i);
    if (decoded.valid) {
      AppendUtf8(result, UpperCase(decoded.character));
    } else {
      result += text[i];
    }
    i += decoded.length;
  }
  return result;
}

std::string_view TrimBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool EqualsIgnoringAsciiCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return AsciiToLower(a) == AsciiToLower(b); });
}

std::string FoldAsciiCase(std::string_view text) {
  std::string folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), AsciiToLower);
  return folded;
}

}  // namespace qdclgl
