// Coefficients of units of measure: numbers of up to 15 significant digits, which a Double holds so
// that their decimal text is the number.
#pragma once

#include "qdclgl/frame/values/values.h"

namespace qdclgl::server {

inline constexpr Double kSmallestCoefficient = 1e-15;
inline constexpr Double kLargestCoefficient = 1e15;

// Positive, in range, and no more than 15 significant digits.
bool IsCoefficient(Double value);

// The product or the quotient of two such numbers as decimals: exact, then rounded once to 15
// significant digits, half to even. It may be out of range.
Double Scaled(Double coefficient, Double factor, bool divides);

// A quantity, taken with 15 significant digits, from a unit of one coefficient into a unit of
// another: exact and rounded in the same way.
Double Converted(Double quantity, Double from, Double to);

}  // namespace qdclgl::server
