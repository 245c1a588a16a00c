#include "qdclgl/server/periods/period_date.h"

#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

class PeriodDateTest : public RecordsTest {};

TEST_P(PeriodDateTest, CallersAskForPeriodsAndTheirDays) {
  Long period = 0, year = 2024;
  DateTime day = DateTime::FromYmd(2024, 5, 17), start, end;
  EXPECT_EQ(
      Call("QDCPeriodDate.clsPeriodDate", "GetPeriod", props, ByRef(day), ByRef(period)).As<Long>(),
      2024);
  EXPECT_EQ(period, 5);
  Call("QDCPeriodDate.clsPeriodDate", "GetPeriodStartEnd", props, ByRef(period), ByRef(year),
       ByRef(start), ByRef(end));
  EXPECT_EQ(start.ToText(), "2024-05-01");
  EXPECT_EQ(end.ToText(), "2024-05-31");
  period = 13;
  EXPECT_EQ(RefusalOf([&] {
              Call("QDCPeriodDate.clsPeriodDate", "GetPeriodStartEnd", props, ByRef(period),
                   ByRef(year), ByRef(start), ByRef(end));
            }),
            "BadValue");
  EXPECT_EQ(start.ToText(), "2024-05-01") << "nothing comes back from a refused call";
}

TEST_P(PeriodDateTest, TheBooksSettingsMakeTheCalendar) {
  for (const auto& [key, value] : std::initializer_list<std::pair<const char*, const char*>>{
           {"PeriodByMonth", "0"}, {"PeriodCount", "13"}, {"YearStartMonth", "4"}}) {
    Call("QDSVBase.SystemProfile", "SetProfile", props, "GL", key, value);
  }
  Long period = 0;
  EXPECT_EQ(Call("QDCPeriodDate.clsPeriodDate", "GetPeriod", props, DateTime::FromYmd(2025, 3, 31),
                 ByRef(period))
                .As<Long>(),
            2024);
  EXPECT_EQ(period, 13);
}

QDCLGL_BOOKS_TEST(PeriodDateTest);

}  // namespace
}  // namespace qdclgl::server::testing
