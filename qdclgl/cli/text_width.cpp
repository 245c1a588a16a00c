#include "qdclgl/cli/text_width.h"

#include <algorithm>

namespace qdclgl::cli {

namespace {

struct Range {
  char32_t first, last;
  std::size_t width;
};

// In order; all others take one column.
constexpr Range kRanges[] = {
    {0x0300, 0x036F, 0},   {0x0483, 0x0489, 0},   {0x0591, 0x05BD, 0},   {0x0610, 0x061A, 0},
    {0x064B, 0x065F, 0},   {0x06D6, 0x06DC, 0},   {0x0900, 0x0902, 0},   {0x0941, 0x0948, 0},
    {0x094D, 0x094D, 0},   {0x0E31, 0x0E31, 0},   {0x0E34, 0x0E3A, 0},   {0x0E47, 0x0E4E, 0},
    {0x1100, 0x115F, 2},   {0x1160, 0x11FF, 0},   {0x1AB0, 0x1AFF, 0},   {0x1DC0, 0x1DFF, 0},
    {0x200B, 0x200F, 0},   {0x202A, 0x202E, 0},   {0x2060, 0x2069, 0},   {0x20D0, 0x20F0, 0},
    {0x2E80, 0x3029, 2},   {0x302A, 0x302D, 0},   {0x302E, 0x303E, 2},   {0x3041, 0x3098, 2},
    {0x3099, 0x309A, 0},   {0x309B, 0xA4CF, 2},   {0xA960, 0xA97C, 2},   {0xAC00, 0xD7A3, 2},
    {0xF900, 0xFAFF, 2},   {0xFE00, 0xFE0F, 0},   {0xFE20, 0xFE2F, 0},   {0xFE30, 0xFE6F, 2},
    {0xFEFF, 0xFEFF, 0},   {0xFF00, 0xFF60, 2},   {0xFFE0, 0xFFE6, 2},   {0x1F300, 0x1F64F, 2},
    {0x1F680, 0x1F6FF, 2}, {0x1F900, 0x1FAFF, 2}, {0x20000, 0x3FFFD, 2}, {0xE0100, 0xE01EF, 0},
};

// The character that begins at `i`, which moves behind it.
char32_t TakeCharacter(std::string_view text, std::size_t& i) {
  const auto first = static_cast<unsigned char>(text[i++]);
  char32_t character = first < 0x80 ? first
                                    : first & (first < 0xE0   ? 0x1F
                                               : first < 0xF0 ? 0x0F
                                                              : 7);
  while (i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80) {
    character = character << 6 | (static_cast<unsigned char>(text[i++]) & 0x3F);
  }
  return character;
}

std::size_t WidthOfCharacter(char32_t character) {
  const auto* range = std::ranges::lower_bound(kRanges, character, {}, &Range::last);
  return range == std::end(kRanges) || character < range->first ? 1 : range->width;
}

// How many bytes of a text fit into `width` columns.
std::size_t Fitting(std::string_view text, std::size_t width) {
  std::size_t taken = 0;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t begin = i;
    taken += WidthOfCharacter(TakeCharacter(text, i));
    if (taken > width) return begin;
  }
  return text.size();
}

}  // namespace

std::size_t WidthOf(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size();) width += WidthOfCharacter(TakeCharacter(text, i));
  return width;
}

std::string CutTo(std::string_view text, std::size_t width, std::string_view mark) {
  if (Fitting(text, width) == text.size()) return std::string(text);
  if (WidthOf(mark) > width) mark = {};
  return std::string(text.substr(0, Fitting(text, width - WidthOf(mark)))).append(mark);
}

}  // namespace qdclgl::cli
