#include "qdclgl/server/records/coefficient.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "qdclgl/frame/values/value_rules.h"
#include "tests/support/random_seed.h"

namespace qdclgl::server {
namespace {

TEST(Coefficient, IsPositiveInRangeAndWhatItsTextOfFifteenDigitsSays) {
  for (const double value : {1.0, 12.0, 0.5, 1e-15, 1e15, 0.333333333333333, 2204.62262184878}) {
    EXPECT_TRUE(IsCoefficient(value)) << value;
  }
  for (const double value : {0.0, -0.0, -1.0, 1.0 / 3, 9e-16, 1.1e15, HUGE_VAL, std::nan("")}) {
    EXPECT_FALSE(IsCoefficient(value)) << value;
  }
}

TEST(Coefficient, IsScaledAsADecimal) {
  EXPECT_EQ(Scaled(0.1, 3, false), 0.3) << "not 0.30000000000000004";
  EXPECT_EQ(Scaled(1.1, 1.1, false), 1.21);
  EXPECT_EQ(Scaled(1000, 1000, true), 1.0);
  EXPECT_EQ(Scaled(0.3, 0.1, true), 3.0);
  EXPECT_EQ(Scaled(1, 12, true), 0.0833333333333333);
  EXPECT_EQ(Scaled(2, 3, true), 0.666666666666667);
  EXPECT_EQ(Scaled(123456789012345.0, 1e-15, false), 0.123456789012345);
  EXPECT_EQ(Scaled(999999999999999.0, 999999999999999.0, false), 9.99999999999998e29);
  EXPECT_EQ(Scaled(1, 1e-15, true), 1e15);
  EXPECT_EQ(Scaled(1e15, 1e-15, true), 1e30);
}

TEST(Coefficient, IsRoundedOnceHalfToEven) {
  EXPECT_EQ(Scaled(100000000000001.0, 1.5, false), 150000000000002.0) << "...1.5, to even";
  EXPECT_EQ(Scaled(100000000000003.0, 1.5, false), 150000000000004.0) << "...4.5, to even";
  EXPECT_EQ(Scaled(100000000000001.0, 1.50000000000001, false), 150000000000003.0)
      << "...2.50000000000001, above the half";
  EXPECT_EQ(Scaled(999999999999999.0, 1.00000000000001, false), 1.00000000000001e15)
      << "1000000000000008.99999999999999, which is not rounded by way of a sixteenth digit";
}

TEST(Coefficient, ComesBackFromAFactorThatLeavesNoRest) {
  std::mt19937_64 random(testing::RandomSeed());
  for (int i = 0; i < 20000; ++i) {
    const auto left = static_cast<double>(random() % 10'000'000 + 1);
    const auto right = static_cast<double>(random() % 10'000'000 + 1);
    const double product = Scaled(left, right, false);
    EXPECT_EQ(product, left * right);
    EXPECT_EQ(Scaled(product, right, true), left);
    EXPECT_FALSE(DoubleLosesPrecision(Scaled(left, right, true)));
  }
}

TEST(ConversionTest, AQuantityBecomesAnotherUnitsExactlyAndIsRoundedOnce) {
  EXPECT_EQ(Converted(2.5, 1e6, 1000), 2500);
  EXPECT_EQ(Converted(-500, 1, 1000), -0.5);
  EXPECT_EQ(Converted(0, 1e6, 1000), 0);
  EXPECT_EQ(Converted(7, 1, 12), 0.583333333333333);
  EXPECT_EQ(Converted(8, 1, 12), 0.666666666666667);
  EXPECT_EQ(Converted(12e11, 1, 12), 1e11);
  // Rounded in between, 3 thirds would not be 1.
  EXPECT_EQ(Converted(3, 1.23456789012345, 3.70370367037035), 1);
  EXPECT_EQ(Converted(999999999999999, 999999999999999, 999999999999998), 1e15);
  // Halves to even: 1.5 and 2.5 in the 15th digit.
  EXPECT_EQ(Converted(100000000000003, 1, 2), 50000000000001.5);
  EXPECT_EQ(Converted(1.00000000000001, 1.5, 1), 1.50000000000002) << "...015 exactly";
  EXPECT_EQ(Converted(1.00000000000003, 1.5, 1), 1.50000000000004) << "...045 exactly";
  EXPECT_EQ(Converted(1e12, 1e15, 1e-15), 1e42);
  EXPECT_EQ(Converted(1e-6, 1e-15, 1e15), 1e-36);
}

}  // namespace
}  // namespace qdclgl::server
