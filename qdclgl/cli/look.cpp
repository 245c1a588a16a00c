#include "qdclgl/cli/look.h"

#include "qdclgl/cli/system_calls.h"

namespace qdclgl::cli {

Look LookAt(int descriptor) {
  Look look;
  if (const auto terminal = TerminalOf(descriptor)) {
    look.width = terminal->width;
    look.height = terminal->height;
    look.has_unicode = terminal->has_unicode;
    look.obeys_escapes = terminal->obeys_escapes;
  }
  return look;
}

}  // namespace qdclgl::cli
