// A piece of work that the library and its peer both do.
//
// The peer is what a program would hold its rows in without the library:
// `std::map<std::string, std::variant<...>>` with the default comparator. The transparent
// comparator std::less<> would spare a look-up by a text that is no std::string the making of one.
// But the columns' names fit into a std::string's own 15 bytes, so that making one allocates
// nothing, and the peer is meant to be the container that one finds in programs.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

inline constexpr double kNoGoal = 0;

struct Work {
  using Body = std::function<void(benchmark::State&)>;

  std::string name;
  double goal;      // ours divided by theirs, to be reached; kNoGoal where none is set
  int repetitions;  // how often one iteration of the bodies does the work
  int iterations;   // in a round; fixed, so that a disturbed first try can't pass for a measurement
  Body ours;
  Body theirs;
};

// One function for each file of works.
std::vector<Work> FieldWorks();
std::vector<Work> TreeWorks();
std::vector<Work> RecordsetWorks();
std::vector<Work> CallWorks();
std::vector<Work> VoucherWorks();

// What the library and its peer hold the same data in, in bytes.
struct Memory {
  std::string name;
  double goal;
  int repetitions;  // over how many lines the bytes are spread
  std::size_t ours;
  std::size_t theirs;
};

std::vector<Memory> MemoryOfVouchers();

}  // namespace bench
