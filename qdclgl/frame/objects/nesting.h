// Bounds for what foreign objects can make endless, and the hold that an operation keeps while it
// calls out.
#pragma once

#include "qdclgl/frame/objects/object.h"
#include "qdclgl/frame/values/values.h"

namespace qdclgl {

// How many levels of containers, copies, default values, frees and calls out stand in each other at
// most: more than any document has, and few enough for the stack.
inline constexpr int kDeepestNesting = 500;

// How many containers and objects one copy makes at most: more than a document of kMostElements
// lines has. What is held in two places is copied twice, so that a small tree can have a copy
// without end.
inline constexpr int kMostCopies = 4'000'000;

// How many lines, elements, columns or rows one list has at most, where only a foreign object says
// where it ends: more than any document has, and fewer than fill the memory.
inline constexpr Long kMostElements = 1'000'000;

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

// A level of a copy, with one container or object more that it makes. Raises error 28 as above, and
// error 7 beyond kMostCopies, counted from the outermost level on.
class CopyLevel {
 public:
  CopyLevel();
  ~CopyLevel();
  CopyLevel(const CopyLevel&) = delete;
  CopyLevel& operator=(const CopyLevel&) = delete;

  // Counts one element more, where each is fetched by calls of its own.
  static void CountElement();

 private:
  NestingLevel level_;
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
