#include "tests/fuzz/shortest.h"

#include <gtest/gtest.h>

#include <numeric>

namespace qdclgl::fuzz {
namespace {

std::vector<int> Numbers(int count) {
  std::vector<int> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}

bool Has(const std::vector<int>& steps, int step) { return std::ranges::count(steps, step) > 0; }

TEST(Shortest, IsWhatTheFailureNeedsInItsOrder) {
  EXPECT_EQ(
      Shortest(Numbers(100),
               [](const auto& steps) { return Has(steps, 3) && Has(steps, 50) && Has(steps, 99); }),
      (std::vector<int>{3, 50, 99}));
}

TEST(Shortest, LosesStepsThatOnlyGoTogether) {
  const auto fails = [](const std::vector<int>& steps) {
    return Has(steps, 7) && Has(steps, 20) == Has(steps, 21);
  };
  EXPECT_EQ(Shortest(Numbers(64), fails), (std::vector<int>{7}));
}

TEST(Shortest, IsNothingForWhatFailsWithoutAnyStep) {
  EXPECT_EQ(Shortest(Numbers(9), [](const auto&) { return true; }), std::vector<int>());
}

TEST(Shortest, IsTheWholeWhereEachStepIsNeeded) {
  EXPECT_EQ(Shortest(Numbers(9), [](const auto& steps) { return steps.size() == 9; }), Numbers(9));
}

TEST(Shortest, EndsWithItsTrialsAndStillFails) {
  int asked = 0;
  const auto fails = [&](const std::vector<int>& steps) {
    ++asked;
    return Has(steps, 1) && Has(steps, 98);
  };
  const std::vector<int> found = Shortest(Numbers(100), fails, 5);
  EXPECT_EQ(asked, 5);
  EXPECT_TRUE(fails(found));
}

}  // namespace
}  // namespace qdclgl::fuzz
