// The interpreter's lock. A thread gives it away while a server component works, and takes it back
// for what is called meanwhile: components written in Python, and the release of their objects.
#pragma once

#include "python/core/interpreter.h"

namespace qdclgl::python {

// Others run Python while this lives. Within another one it does nothing.
class WithoutLock {
 public:
  WithoutLock();
  ~WithoutLock();
  WithoutLock(const WithoutLock&) = delete;
  WithoutLock& operator=(const WithoutLock&) = delete;

 private:
  bool is_outermost_;
};

// This thread may run Python while this lives, whether or not it has given the lock away.
class WithLock {
 public:
  WithLock();
  ~WithLock();
  WithLock(const WithLock&) = delete;
  WithLock& operator=(const WithLock&) = delete;

 private:
  bool was_away_;
};

}  // namespace qdclgl::python
