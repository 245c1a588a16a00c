// Budgets as statements show them.
#pragma once

#include "qdclgl/server/reports/kind_sums.h"
#include "qdclgl/server/reports/spans.h"

namespace qdclgl::server {

// What falls on the part `number` (from 1 on) of `count` parts of an amount that is spread evenly:
// in whole units of the base currency's last decimal, the first parts get one more where it does
// not divide, and what is less than such a unit the last one.
Units ShareOf(Units amount, Long count, Long number, Units unit);

// Adds the budgets of each span to the columns from `first` on, debits positive.
void AddBudgets(Database& db, const KindChart& chart, const Calendar& calendar,
                const std::vector<PeriodSpan>& spans, KindSums& sums, std::size_t first);

}  // namespace qdclgl::server
