// The periods that a statement has beside each other.
#pragma once

#include <string_view>
#include <vector>

#include "qdclgl/server/periods/calendar.h"

namespace qdclgl::server {

struct PeriodSpan {
  AccountingPeriod first, last;
};

// Spans with commas between them: "2024" is a year, "2024/3" a period, "2024/1-2024/3" goes from
// one to another. BadValue for what is none, for periods that a year does not have, and for none or
// too many of them.
std::vector<PeriodSpan> SpansFrom(std::string_view text, const Calendar& calendar);

}  // namespace qdclgl::server
