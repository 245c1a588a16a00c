// Delta debugging: what is left of a failing sequence when everything that it fails without is
// taken out.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace qdclgl::fuzz {

// A part of `steps`, in their order, that still fails, and that no step can be taken out of.
// `fails` is asked at most `trials` times; what is known by then is the answer.
inline std::vector<int> Shortest(std::vector<int> steps,
                                 const std::function<bool(const std::vector<int>&)>& fails,
                                 int trials = 1000) {
  for (std::size_t chunk = steps.size(); chunk > 0;) {
    bool shorter = false;
    for (std::size_t begin = 0; begin < steps.size() && trials > 0;) {
      std::vector<int> rest = steps;
      const auto first = rest.begin() + static_cast<std::ptrdiff_t>(begin);
      const auto count = static_cast<std::ptrdiff_t>(std::min(chunk, steps.size() - begin));
      rest.erase(first, first + count);
      --trials;
      if (fails(rest)) {
        steps = std::move(rest);
        shorter = true;
      } else {
        begin += chunk;
      }
    }
    if (trials == 0) break;
    if (chunk > 1) {
      chunk = chunk - chunk / 2;
    } else if (!shorter) {
      break;
    }
  }
  return steps;
}

}  // namespace qdclgl::fuzz
