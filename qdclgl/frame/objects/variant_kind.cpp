#include "qdclgl/frame/objects/variant_kind.h"

namespace qdclgl {

Boolean IsVariantKind(const Variant& value, Long kind) {
  switch (value.Type()) {
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kDecimal:
      return kind == variant_kind::kNumber || kind == variant_kind::kWholeNumber;
    case VariantType::kSingle:
    case VariantType::kDouble:
    case VariantType::kByte: return kind == variant_kind::kNumber;
    case VariantType::kString: return kind == variant_kind::kText;
    default: return false;
  }
}

}  // namespace qdclgl
