// Objects belong to the thread that made them, and their counts are plain numbers. The interpreter
// may end a wrapper on any thread, as its collector does; the object behind it then waits for its
// own thread.
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "qdclgl/frame/objects/object.h"

namespace qdclgl::python {

// A thread that has wrappers, and what waits for it. All under the interpreter's lock, but for
// `ended`.
struct Owner {
  std::atomic<bool> ended = false;
  std::vector<Object*> waiting;
};

const std::shared_ptr<Owner>& ThisOwner();

// Releases a reference that a wrapper had: at once on the object's own thread, or when that has
// ended, otherwise as soon as that thread comes by.
void ReleaseOf(const std::shared_ptr<Owner>& owner, Object* object);

// Releases what waits for this thread, and for threads that have ended.
void ReleaseWaiting();

}  // namespace qdclgl::python
