#include "qdclgl/cli/look.h"

#include "qdclgl/cli/system.h"

namespace qdclgl::cli {

Look LookAt(int descriptor) {
  Look look;
  if (!IsTerminal(descriptor)) return look;
  const ScreenSize size = ScreenSizeOf(descriptor);
  look.width = size.width;
  look.height = size.height;
  look.has_unicode = HasUnicode();
  return look;
}

}  // namespace qdclgl::cli
