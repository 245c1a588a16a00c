// Bounds for what foreign objects can make endless, and the hold that an operation keeps while it
// calls out.
#pragma once

#include "qdclgl/frame/objects/object.h"

namespace qdclgl {

// How many levels of containers, copies, default values, frees and calls out stand in each other at
// most: more than any document has, and few enough for the stack.
inline constexpr int kDeepestNesting = 500;

// Counts the levels of a walk down a tree, or of calls out of each other, and raises error 28 when
// there are more than kDeepestNesting, so that what holds itself ends in an error and not in a
// crash.
class NestingLevel {
 public:
  NestingLevel();
  ~NestingLevel();
  NestingLevel(const NestingLevel&) = delete;
  NestingLevel& operator=(const NestingLevel&) = delete;
};

// Stands first in every operation that calls out: the object outlives the operation, whatever the
// called side releases, operations that call themselves without end raise error 28, and those on
// another thread than the object's kWrongThread.
class CallingOut {
 public:
  explicit CallingOut(const Object* self) : self_((self->CheckThread(), self)) {}

 private:
  NestingLevel level_;
  Ref<const Object> self_;
};

}  // namespace qdclgl
