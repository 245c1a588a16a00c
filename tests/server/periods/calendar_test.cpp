#include "qdclgl/server/periods/calendar.h"

#include <limits>

#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

std::string PeriodText(const Calendar& calendar, int year, int month, int day) {
  return calendar.PeriodOf(DateTime::FromYmd(year, month, day)).ToText();
}

std::string SpanText(const Calendar& calendar, Long year, Long period) {
  const Calendar::Span span = calendar.SpanOf({year, period});
  return span.start.ToText() + " to " + span.end.ToText();
}

TEST(CalendarTest, CalendarMonthsAreThePeriods) {
  const Calendar calendar(12, true, 1);
  EXPECT_EQ(PeriodText(calendar, 2024, 2, 29), "2024/2");
  EXPECT_EQ(PeriodText(calendar, 2024, 12, 31), "2024/12");
  EXPECT_EQ(SpanText(calendar, 2024, 2), "2024-02-01 to 2024-02-29");
  EXPECT_EQ(SpanText(calendar, 2023, 12), "2023-12-01 to 2023-12-31");
}

TEST(CalendarTest, AShiftedYearIsCalledAfterItsFirstDay) {
  const Calendar calendar(4, true, 7);
  EXPECT_EQ(PeriodText(calendar, 2024, 6, 30), "2023/4");
  EXPECT_EQ(PeriodText(calendar, 2024, 7, 1), "2024/1");
  EXPECT_EQ(SpanText(calendar, 2024, 2), "2024-10-01 to 2024-12-31");
  EXPECT_EQ(SpanText(calendar, 2024, 4), "2025-04-01 to 2025-06-30");
}

TEST(CalendarTest, ThirteenPeriodsHaveFourWeeksAndTheLastTheRest) {
  const Calendar calendar(13, false, 1);
  EXPECT_EQ(SpanText(calendar, 2024, 1), "2024-01-01 to 2024-01-28");
  EXPECT_EQ(SpanText(calendar, 2024, 13), "2024-12-02 to 2024-12-31");
  EXPECT_EQ(PeriodText(calendar, 2024, 12, 31), "2024/13");
}

// Every calendar that can be: each day is in the period whose span it is in, and the spans of
// periods follow each other without a gap.
TEST(CalendarTest, PeriodsCoverEveryDayOnce) {
  const auto check = [](const Calendar& calendar) {
    AccountingPeriod period = calendar.PeriodOf(DateTime::FromYmd(2023, 1, 1));
    DateTime day = calendar.SpanOf(period).start;
    while (day < DateTime::FromYmd(2025, 3, 1)) {
      const Calendar::Span span = calendar.SpanOf(period);
      ASSERT_EQ(span.start, day) << period.ToText();
      for (; day <= span.end; day = DateTime(day.days + 1)) {
        ASSERT_EQ(calendar.PeriodOf(day).ToText(), period.ToText()) << day.ToText();
      }
      const AccountingPeriod next = calendar.After(period);
      ASSERT_TRUE(calendar.Before(next) == period);
      ASSERT_LT(period, next);
      period = next;
    }
  };
  for (const Long start : {1, 4, 12}) {
    for (const Long count : {1, 2, 3, 4, 6, 12}) check(Calendar(count, true, start));
    for (Long count = 1; count <= 52; ++count) check(Calendar(count, false, start));
  }
}

TEST(CalendarTest, TheTimeOfDayDoesNotCount) {
  const Calendar calendar(13, false, 1);
  const DateTime evening = DateTime::FromParts({2024, 1, 28, 23, 59, 59});
  EXPECT_EQ(calendar.PeriodOf(evening).ToText(), "2024/1");
  EXPECT_EQ(Calendar(12, true, 1).PeriodOf(DateTime::FromParts({2024, 1, 31, 23, 59, 59})).ToText(),
            "2024/1");
}

TEST(CalendarTest, CalendarsThatCantBeAreRefused) {
  for (const Long count : {-1, 0, 5, 7, 13, 24}) {
    EXPECT_EQ(RefusalOf([&] { Calendar(count, true, 1); }), "BadSetting") << count;
  }
  for (const Long count : {-1, 0, 53, std::numeric_limits<Long>::max()}) {
    EXPECT_EQ(RefusalOf([&] { Calendar(count, false, 1); }), "BadSetting") << count;
  }
  for (const Long month : {-1, 0, 13}) {
    EXPECT_EQ(RefusalOf([&] { Calendar(12, true, month); }), "BadSetting") << month;
  }
}

TEST(CalendarTest, PeriodsAndDatesBeyondTheCalendarAreRefused) {
  const Calendar calendar(12, true, 4);
  for (const AccountingPeriod period : std::initializer_list<AccountingPeriod>{
           {2024, 0}, {2024, 13}, {2024, -1}, {99, 1}, {9999, 1}, {0, 1}, {-2024, 1}}) {
    EXPECT_EQ(RefusalOf([&] { calendar.SpanOf(period); }), "BadValue") << period.ToText();
  }
  EXPECT_EQ(SpanText(calendar, 9998, 12), "9999-03-01 to 9999-03-31");
  EXPECT_EQ(SpanText(calendar, 100, 1), "0100-04-01 to 0100-04-30");
  for (const DateTime date :
       {DateTime::FromYmd(100, 3, 31), DateTime::FromYmd(9999, 4, 1), DateTime(1e10),
        DateTime(-1e10), DateTime(std::numeric_limits<double>::quiet_NaN())}) {
    EXPECT_EQ(RefusalOf([&] { calendar.PeriodOf(date); }), "BadValue");
  }
}

}  // namespace
}  // namespace qdclgl::server::testing
