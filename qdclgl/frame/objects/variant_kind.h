// The test by which every set tells an id from a number or name.
#pragma once

#include "qdclgl/frame/objects/variant.h"

namespace qdclgl {

namespace variant_kind {
inline constexpr Long kNumber = 0;       // Integer, Long, Single, Double, Decimal or Byte
inline constexpr Long kText = 1;         // String
inline constexpr Long kWholeNumber = 2;  // Integer, Long or Decimal
}  // namespace variant_kind

// Decides by the type that the caller passed, never by what a text says. Currency and Date are no
// numbers here. False for any other kind.
Boolean IsVariantKind(const Variant& value, Long kind);

}  // namespace qdclgl
