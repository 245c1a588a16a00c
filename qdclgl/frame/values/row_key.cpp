#include "qdclgl/frame/values/row_key.h"

namespace qdclgl {

void RowKey::DigestAtRunTime() { Digest(); }

}  // namespace qdclgl
