#include "qdclgl/server/books/row_sum.h"

#include <random>

namespace qdclgl::server {

namespace {

using Key = std::array<std::uint64_t, 2>;

const Key& RunsKey() {
  static const Key kKey = [] {
    std::random_device device;
    const auto word = [&] { return (std::uint64_t{device()} << 32) | device(); };
    const std::uint64_t first = word();
    return Key{first, word()};
  }();
  return kKey;
}

// One step of the hash: each bit of the state and of the value moves half the bits of the outcome.
std::uint64_t Mixed(std::uint64_t state, std::uint64_t value) {
  state ^= value;
  state = (state ^ (state >> 33)) * 0xff51afd7ed558ccdULL;
  state = (state ^ (state >> 33)) * 0xc4ceb9fe1a85ec53ULL;
  return state ^ (state >> 33);
}

}  // namespace

void RowSum::Add(const std::array<std::int64_t, 3>& numbers, std::string_view text) {
  for (std::size_t i = 0; i < sums_.size(); ++i) {
    std::uint64_t state = RunsKey()[i];
    for (const std::int64_t number : numbers) {
      state = Mixed(state + RunsKey()[i], static_cast<std::uint64_t>(number));
    }
    for (const char c : text) state = (state ^ static_cast<unsigned char>(c)) * 0x100000001b3ULL;
    sums_[i] += Mixed(state + RunsKey()[i], text.size());
  }
  ++rows_;
}

}  // namespace qdclgl::server
