// How wide a text is on a terminal, and texts cut to a width.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qdclgl::cli {

// The columns of a terminal that a text takes: East Asian characters take two, marks that stand on
// the character before them none.
std::size_t WidthOf(std::string_view text);

// As much of a text as fits into `width` columns, with `mark` at its end where something is left
// out. The mark is left out too where not even that fits.
std::string CutTo(std::string_view text, std::size_t width, std::string_view mark);

}  // namespace qdclgl::cli
