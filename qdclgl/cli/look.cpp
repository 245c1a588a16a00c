#include "qdclgl/cli/look.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

// Whether the terminal's texts are UTF-8, as the first of these says that says anything.
bool IsUtf8() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == 0) continue;
    const std::string locale = FoldAsciiCase(value);
    return locale.find("utf-8") != locale.npos || locale.find("utf8") != locale.npos;
  }
  return false;
}

}  // namespace

Look LookAt(int descriptor) {
  Look look;
  if (isatty(descriptor) == 0) return look;
  winsize size{};
  const bool has_size = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  look.width = has_size ? size.ws_col : 80;
  look.height = has_size && size.ws_row > 0 ? size.ws_row : 24;
  look.has_unicode = IsUtf8();
  return look;
}

}  // namespace qdclgl::cli
