// The transaction context: an opaque object that callers hand in, kept and passed on from object
// to object. It has no effect on any call of this library.
#pragma once

#include "qdclgl/frame/objects/object.h"

namespace qdclgl {

// Implemented by the classes that take a transaction context.
class ISetXactContext {
 public:
  // Keeps `xa` in place of the former one; Nothing is accepted.
  virtual void SetTransactionContext(const Ref<Object>& xa) = 0;

 protected:
  ~ISetXactContext() = default;
};

}  // namespace qdclgl
