#include "frame/key.h"

namespace qdclgl {

void Key::DigestAtRunTime() { Digest(); }

}  // namespace qdclgl
