#include "python/core/gil.h"

namespace qdclgl::python {

namespace {

// What a thread gets the lock back by; null while it holds it.
thread_local PyThreadState* given_away = nullptr;

}  // namespace

WithoutLock::WithoutLock() : is_outermost_(given_away == nullptr) {
  if (is_outermost_) given_away = PyEval_SaveThread();
}

WithoutLock::~WithoutLock() {
  if (is_outermost_) PyEval_RestoreThread(std::exchange(given_away, nullptr));
}

WithLock::WithLock() : was_away_(given_away != nullptr) {
  if (was_away_) PyEval_RestoreThread(std::exchange(given_away, nullptr));
}

WithLock::~WithLock() {
  if (was_away_) given_away = PyEval_SaveThread();
}

}  // namespace qdclgl::python
