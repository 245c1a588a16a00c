// What stands on accounts at the end of a period, by currency and by items.
#pragma once

#include <functional>
#include <vector>

#include "qdclgl/server/periods/calendar.h"
#include "qdclgl/server/reports/balancing_vouchers.h"
#include "qdclgl/server/reports/kind_sums.h"

namespace qdclgl::server {

struct StandingPlace {
  std::size_t account;  // its place in the chart
  Long currency, combination;
  BalancingVouchers::Standing standing;
};

// Whether what stands on an account of a kind in a currency is wanted.
using IsWanted = std::function<bool(std::string_view kind, Long currency)>;

// Out of the stored balances, in the order of the chart; what is zero altogether is left out.
std::vector<StandingPlace> StandingsOf(Database& db, const KindChart& chart, AccountingPeriod until,
                                       const IsWanted& is_wanted);

}  // namespace qdclgl::server
