// A column of a CSV file, known by its heading.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace qdclgl::cli {

struct SheetColumn {
  std::string_view heading;
  bool is_needed = false;
  std::span<const std::string> others = {};  // headings that mean the same
  bool is_rare = false;                      // not told to who looks for another one
};

}  // namespace qdclgl::cli
