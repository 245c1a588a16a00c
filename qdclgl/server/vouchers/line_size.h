// How large lines may be, so that whatever is added up of them fits into 64 bits.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// The largest amount of a line in ten-thousandths, whatever its sign, and the largest quantity.
inline constexpr std::int64_t kLargestAmount = INT64_MAX / 2;
inline constexpr double kLargestQuantity = 1e12;

// The quantity of a line that counts on its account: the one that was converted, where there is
// one.
inline constexpr double CountedQuantity(double entered, double base) {
  return base != 0 ? base : entered;
}
// The same of the lines "e".
inline constexpr const char* kCountedQuantity =
    "CASE WHEN e.FBaseQuantity <> 0 THEN e.FBaseQuantity ELSE e.FQuantity END";

// Balances count quantities in millionths, halves away from zero.
std::int64_t Millionths(double quantity);
// The same as SQL that gives exactly that.
std::string MillionthsSql(const Database& db, const std::string& quantity);

bool IsAmountInRange(std::int64_t amount);
bool IsQuantityInRange(double quantity);

// Adds the size of a line to a total of sizes: the largest of its amount, its amount in its
// currency and its quantity in millionths, without their signs. No sum over lines is further from
// zero than their sizes together, and those of everything posted stay within 64 bits: so every
// balance, over whatever accounts, currencies and periods, has a number. False, and nothing is
// added, for values out of range and where the total would not fit.
bool AddLine(std::int64_t& total, std::int64_t amount, std::int64_t amount_for, double quantity);

// Adds to a sum. TooLarge where that does not fit: "The budgets are too large to add up."
void AddChecked(std::int64_t& sum, std::int64_t more, std::string_view nouns);

}  // namespace qdclgl::server
