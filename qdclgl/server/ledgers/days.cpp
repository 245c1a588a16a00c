#include "qdclgl/server/ledgers/days.h"

#include <cmath>

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/settings.h"

namespace qdclgl::server {

Days Days::Of(Database& db, DateTime from, DateTime to) {
  const LedgerRules rules = LedgerRules::Of(db);
  const Calendar& calendar = rules.calendar;
  const auto year_of = [&](Long year) {
    return Calendar::Span{calendar.SpanOf({year, 1}).start,
                          calendar.SpanOf({year, calendar.period_count()}).end};
  };
  from = DateTime(std::floor(from.days));
  to = DateTime(std::floor(to.days));
  if (from == DateTime()) from = year_of(rules.current.year).start;
  const Long year = calendar.PeriodOf(from).year;
  if (to == DateTime()) to = year_of(year).end;
  if (to < from) {
    Refuse(refusal::kBadValue,
           "Days go forward, not from " + from.ToText() + " to " + to.ToText() + ".");
  }
  return {calendar, from, to, year, calendar.PeriodOf(to), year_of(year).start};
}

}  // namespace qdclgl::server
