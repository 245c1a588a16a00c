// What people read above a column in place of its key.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qdclgl::cli {

// "Date" for FDate, "Account" for FAccountNumber, "Debit total" for FDebitTotal. What is no key, as
// a word of a command's own, stays as it is.
std::string HeadingOf(std::string_view key);

// Those of a table's columns. Where two would be the same, the longer words of their keys.
std::vector<std::string> HeadingsOf(const std::vector<std::string>& keys);

// Whether a column holds what an account is debited or credited, in whatever currency.
bool IsSideOfAccount(std::string_view key);
// Whether its amounts are in the currency of the row.
bool IsInRowsCurrency(std::string_view key);

}  // namespace qdclgl::cli
