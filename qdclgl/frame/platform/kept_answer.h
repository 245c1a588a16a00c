// An answer of the system that takes long: it is asked for anew only once it has become old.
#pragma once

#include <chrono>
#include <mutex>
#include <optional>

namespace qdclgl {

template <class T>
class KeptAnswer {
 public:
  using Clock = std::chrono::steady_clock;

  explicit KeptAnswer(Clock::duration lasts) : lasts_(lasts) {}

  template <class Ask>
  T Get(Clock::time_point now, Ask ask) {
    const std::lock_guard lock(mutex_);
    if (!answer_ || now - asked_ >= lasts_) {
      answer_.emplace(ask());
      asked_ = now;
    }
    return *answer_;
  }

 private:
  const Clock::duration lasts_;
  std::mutex mutex_;
  std::optional<T> answer_;
  Clock::time_point asked_;
};

}  // namespace qdclgl
