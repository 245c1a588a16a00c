// The accounting calendar for callers.
#pragma once

#include "qdclgl/frame/objects/members.h"

namespace qdclgl::server {

// "QDCPeriodDate.clsPeriodDate": the calendar for callers.
class PeriodDate final : public Object {
  QD_MEMBERS(PeriodDate, Object, Creatable, "The accounting calendar of the books.")

 public:
  QD_METHOD(Long, GetPeriod, (std::string_view PropsString, const DateTime& d, Long& Period),
            "The accounting year of a date; its period comes back in Period. BadValue outside the "
            "years 100 to 9998.")
  QD_METHOD(void, GetPeriodStartEnd,
            (std::string_view PropsString, const Long& Period, const Long& nYear,
             DateTime& StartDate, DateTime& EndDate),
            "The first and the last day of a period. BadValue for a period that the year does not "
            "have.")
};

}  // namespace qdclgl::server
