// Keys of a row that have no column of their own: kept together as one JSON text, so that whatever
// a program puts into a row comes back with it.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "qdclgl/frame/containers/dictionary.h"

namespace qdclgl::server {

// The column of headers and lines that holds the text.
inline constexpr std::string_view kExtraColumn = "FExtra";

// Of one row: the most bytes of the text, the most values with those of nested rows and lists, and
// the most levels of these.
inline constexpr std::size_t kLongestExtras = 1'000'000;
inline constexpr std::size_t kMostExtras = 10'000;
inline constexpr int kDeepestExtras = 50;

// The JSON text of all keys of `row` for which `is_known` is false; "" when there are none. Values
// that are Empty or Nothing are left out. BadValue for an object that is neither Dictionary nor
// Vector, for a byte array, for text that is no UTF-8, for a Double that is no finite number, and
// beyond the bounds above.
std::string ExtrasText(const Dictionary& row,
                       const std::function<bool(std::string_view key)>& is_known);

// Puts the keys of such a text into a row. BadValue, and the row as it was, for any other text.
void PutExtras(std::string_view text, Dictionary& row);

}  // namespace qdclgl::server
