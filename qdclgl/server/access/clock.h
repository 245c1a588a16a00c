// The time of day by which sessions end and logins wait.
#pragma once

#include <cstdint>
#include <functional>

namespace qdclgl::server {

// Seconds since 1970.
std::int64_t SecondsNow();

// Another clock for tests; null: the machine's.
void SetClock(std::function<std::int64_t()> clock);

}  // namespace qdclgl::server
