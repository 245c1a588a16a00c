// Containers of other libraries, taken in by copy.
#pragma once

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/vector.h"

namespace qdclgl::automation {

// The copies are unmodified. Errors: what the foreign object raises; 13 and 6 for a count, a bound
// or a key that can't be, 28 for one that holds itself, 7 for more elements in all than
// kMostCopies.
Ref<Dictionary> CopyOfDictionary(Object& foreign);
Ref<Vector> CopyOfVector(Object& foreign);

}  // namespace qdclgl::automation
