#include "qdclgl/cli/one_line.h"

namespace qdclgl::cli {

std::string OneLine(std::string_view text) {
  std::string line(text);
  for (std::size_t i = 0; i < line.size(); ++i) {
    const auto byte = static_cast<unsigned char>(line[i]);
    // U+0080 to U+009F are control characters as well.
    const bool is_c1 =
        byte == 0xC2 && i + 1 < line.size() && static_cast<unsigned char>(line[i + 1]) < 0xA0;
    if (is_c1) line.replace(i, 2, " ");
    else if (byte < 0x20 || byte == 0x7F) line[i] = ' ';
  }
  return line;
}

}  // namespace qdclgl::cli
