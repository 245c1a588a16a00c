// Texts fit for one line of a terminal.
#pragma once

#include <string>
#include <string_view>

namespace qdclgl::cli {

// Control characters become blanks.
std::string OneLine(std::string_view text);

}  // namespace qdclgl::cli
