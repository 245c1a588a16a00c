// The seed of a randomised test: the environment variable QDCLGL_SEED, otherwise a new one each
// run.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <random>

namespace qdclgl::testing {

inline std::uint32_t RandomSeed() {
  if (const char* seed = std::getenv("QDCLGL_SEED")) {
    return static_cast<std::uint32_t>(std::strtoul(seed, nullptr, 10));
  }
  return std::random_device{}();
}

}  // namespace qdclgl::testing
