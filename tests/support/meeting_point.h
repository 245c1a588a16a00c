// Where threads wait for each other.
#pragma once

#include <condition_variable>
#include <mutex>

namespace qdclgl::testing {

// Lets so many threads go on once all of them have come, as often as they do. The standard
// library's barrier leaves one of them waiting at times where the system has no futex: on Windows
// within hundreds of meetings.
class MeetingPoint {
 public:
  explicit MeetingPoint(int count) : count_(count) {}

  void ArriveAndWait() {
    std::unique_lock lock(mutex_);
    const int meeting = meeting_;
    if (++arrived_ == count_) {
      arrived_ = 0;
      ++meeting_;
      all_are_here_.notify_all();
    } else {
      all_are_here_.wait(lock, [&] { return meeting_ != meeting; });
    }
  }

 private:
  const int count_;
  int arrived_ = 0;
  int meeting_ = 0;
  std::mutex mutex_;
  std::condition_variable all_are_here_;
};

}  // namespace qdclgl::testing
