// By what a voucher's FInternalInd tells that the server has proposed it.
#pragma once

#include <string_view>

namespace qdclgl::server {

// It carries a year's result. An index of the same condition finds such vouchers.
inline constexpr std::string_view kCarriesResult = "TransferPL";
inline constexpr std::string_view kWhereCarriesResult = "FInternalInd = 'TransferPL'";

// It brings balances in other currencies to the rate of a period's end. So for these.
inline constexpr std::string_view kRevalues = "Revaluation";
inline constexpr std::string_view kWhereRevalues = "FInternalInd = 'Revaluation'";

}  // namespace qdclgl::server
