#include "qdclgl/server/access/clock.h"

#include <chrono>
#include <utility>

namespace qdclgl::server {

namespace {

std::function<std::int64_t()>& OtherClock() {
  static std::function<std::int64_t()> clock;
  return clock;
}

}  // namespace

std::int64_t SecondsNow() {
  if (OtherClock()) return OtherClock()();
  return std::chrono::duration_cast<std::chrono::seconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

void SetClock(std::function<std::int64_t()> clock) { OtherClock() = std::move(clock); }

}  // namespace qdclgl::server
