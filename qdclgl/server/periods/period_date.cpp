#include "qdclgl/server/periods/period_date.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/periods/settings.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(PeriodDate)

Long PeriodDate::GetPeriod(std::string_view PropsString, const DateTime& d, Long& Period) {
  const Caller caller = Enter(PropsString, kRead);
  const AccountingPeriod period = LedgerRules::Of(caller.db).calendar.PeriodOf(d);
  Period = period.period;
  return period.year;
}

void PeriodDate::GetPeriodStartEnd(std::string_view PropsString, const Long& Period,
                                   const Long& nYear, DateTime& StartDate, DateTime& EndDate) {
  const Caller caller = Enter(PropsString, kRead);
  const Calendar::Span span = LedgerRules::Of(caller.db).calendar.SpanOf({nYear, Period});
  StartDate = span.start;
  EndDate = span.end;
}

}  // namespace qdclgl::server
