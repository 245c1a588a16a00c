#include "qdclgl/version.h"

#define QD_IMPL_TEXT(number) #number
#define QD_IMPL_VERSION_TEXT(major, minor, patch) \
  QD_IMPL_TEXT(major) "." QD_IMPL_TEXT(minor) "." QD_IMPL_TEXT(patch)

namespace qdclgl {

std::string_view Version() {
  return QD_IMPL_VERSION_TEXT(QD_VERSION_MAJOR, QD_VERSION_MINOR, QD_VERSION_PATCH);
}

}  // namespace qdclgl
