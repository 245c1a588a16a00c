// What an account is in the statements of a year.
#pragma once

#include <array>
#include <string_view>

namespace qdclgl::server {

// The words that column FKind of an account has, "" for the kind of the account above.
namespace account_kind {
inline constexpr std::string_view kAsset = "asset";
inline constexpr std::string_view kLiability = "liability";
inline constexpr std::string_view kEquity = "equity";
inline constexpr std::string_view kIncome = "income";
inline constexpr std::string_view kExpense = "expense";
inline constexpr std::array kAll = {kAsset, kLiability, kEquity, kIncome, kExpense};
}  // namespace account_kind

}  // namespace qdclgl::server
