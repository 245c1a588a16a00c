// The library's version, for programs that must tell.
#pragma once

#include <string_view>

#include "qdclgl/language.h"

#define QD_VERSION_MAJOR 0
#define QD_VERSION_MINOR 2
#define QD_VERSION_PATCH 0
// One number that grows with every version: 10203 is 1.2.3.
#define QD_VERSION (QD_VERSION_MAJOR * 10000 + QD_VERSION_MINOR * 100 + QD_VERSION_PATCH)

namespace qdclgl {

// The version of the library that the program is linked with: "0.2.0".
std::string_view Version();

}  // namespace qdclgl
