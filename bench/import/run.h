// Runs of the built program and what they cost, as the system tells it.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Measured {
  double seconds = 0;
  double processor_seconds = 0;
  double megabytes = 0;
};

// What it prints is thrown away. A run that fails ends the benchmark.
Measured Run(std::vector<std::string> arguments);

}  // namespace bench
