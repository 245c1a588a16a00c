// The accounting calendar for callers.
#pragma once

#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

class PeriodDate final : public Object {
  QD_MEMBERS(PeriodDate, Object, Creatable, "The accounting calendar of the books.")

 public:
  static constexpr std::string_view kProgID = "QDCPeriodDate.clsPeriodDate";
  static constexpr Right kRead{Role::kReader, "read the calendar"};
  static constexpr MethodRight kRights[] = {{"GetPeriod", kRead}, {"GetPeriodStartEnd", kRead}};

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
