// Counts the blocks of memory that the program asks for, by the operators of C++.
#pragma once

#include <cstddef>

namespace qdclgl::testing {

// How many blocks the calling thread has asked for so far.
std::size_t Allocations();

// The blocks that an operation asks for.
template <class Operation>
std::size_t AllocationsOf(Operation operation) {
  const std::size_t before = Allocations();
  operation();
  return Allocations() - before;
}

}  // namespace qdclgl::testing
