// What a fuzz chooses: numbers that a seed settles, the same on every machine.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qdclgl::fuzz {

class Choices {
 public:
  explicit Choices(std::uint64_t seed) : state_(seed) {}
  // The choices of one part of a whole; they don't depend on what other parts choose.
  Choices(std::uint64_t seed, std::uint64_t part) : Choices(seed) {
    state_ ^= Choices(part).Next();
  }

  std::uint64_t Next() {
    state_ += 0x9e3779b97f4a7c15;
    std::uint64_t word = state_;
    word = (word ^ (word >> 30)) * 0xbf58476d1ce4e5b9;
    word = (word ^ (word >> 27)) * 0x94d049bb133111eb;
    return word ^ (word >> 31);
  }
  // A number from 0 to below `end`.
  std::size_t Below(std::size_t end) { return static_cast<std::size_t>(Next() % end); }
  // True one time in `times`.
  bool OneIn(std::size_t times) { return Below(times) == 0; }
  // One of the elements of a list that is not empty.
  template <class List>
  const auto& Of(const List& list) {
    return list[Below(std::size(list))];
  }

 private:
  std::uint64_t state_;
};

}  // namespace qdclgl::fuzz
