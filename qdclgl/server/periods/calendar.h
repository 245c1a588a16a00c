// The accounting calendar: which year and period a date falls into.
#pragma once

#include "qdclgl/server/access/component.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

struct AccountingPeriod {
  Long year = 0;
  Long period = 0;

  // Periods in the order of time.
  friend auto operator<=>(const AccountingPeriod&, const AccountingPeriod&) = default;
  std::string ToText() const { return std::to_string(year) + "/" + std::to_string(period); }
};

// A year begins on the first day of its start month and is called after the calendar year of that
// day. By months, each of its periods is 12 / count months long. Otherwise each is as many whole
// weeks long as go into the year (13 periods: 4 weeks), and the last takes the days that are left.
class Calendar {
 public:
  // BadSetting for a start month outside 1 to 12, and for a count of periods that is not 1, 2, 3,
  // 4, 6 or 12 (by months) or between 1 and 52 (by weeks).
  Calendar(Long period_count, bool by_month, Long start_month);

  // As the books' settings have it.
  static Calendar Of(Database& db);

  Long period_count() const { return period_count_; }

  // BadValue for a date outside the years 100 to 9998.
  AccountingPeriod PeriodOf(DateTime date) const;

  struct Span {
    DateTime start, end;  // both days belong to the period
  };
  // BadValue for a period that the year does not have.
  Span SpanOf(AccountingPeriod period) const;

  AccountingPeriod After(AccountingPeriod period) const;
  AccountingPeriod Before(AccountingPeriod period) const;

 private:
  DateTime YearStart(Long year) const;

  Long period_count_;
  bool by_month_;
  Long start_month_;
};

// The calendar for callers.
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
