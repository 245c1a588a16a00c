// A sum of 64-bit numbers that holds whatever they are.
#pragma once

#include <cstdint>

namespace qdclgl::server {

class WideSum {
 public:
  WideSum() = default;
  explicit WideSum(std::int64_t value) { Add(value); }

  void Add(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    low_ += bits;
    high_ += (low_ < bits ? 1 : 0) - (value < 0 ? 1 : 0);
  }
  void Add(const WideSum& other) {
    low_ += other.low_;
    high_ += other.high_ + (low_ < other.low_ ? 1 : 0);
  }
  void Subtract(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    high_ -= (low_ < bits ? 1 : 0) - (value < 0 ? 1 : 0);
    low_ -= bits;
  }

  friend bool operator==(const WideSum&, const WideSum&) = default;

 private:
  // Two's complement over 128 bits.
  std::int64_t high_ = 0;
  std::uint64_t low_ = 0;
};

}  // namespace qdclgl::server
