#include "qdclgl/server/periods/calendar.h"

#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr Long kFirstYear = 100, kLastYear = 9998;

}  // namespace

Calendar::Calendar(Long period_count, bool by_month, Long start_month)
    : period_count_(period_count), by_month_(by_month), start_month_(start_month) {
  if (start_month < 1 || start_month > 12) {
    Refuse(refusal::kBadSetting, "A year begins in a month from 1 to 12.");
  }
  if (by_month ? period_count < 1 || 12 % period_count != 0
               : period_count < 1 || period_count > 52) {
    Refuse(refusal::kBadSetting, by_month ? "A year of months has 1, 2, 3, 4, 6 or 12 periods."
                                          : "A year of weeks has from 1 to 52 periods.");
  }
}

DateTime Calendar::YearStart(Long year) const { return DateTime::FromYmd(year, start_month_, 1); }

AccountingPeriod Calendar::PeriodOf(DateTime date) const {
  DateTime::Parts parts;
  try {
    parts = date.ToParts();
  } catch (const Error&) {
    parts.year = 0;
  }
  const Long year = parts.month < start_month_ ? parts.year - 1 : parts.year;
  if (year < kFirstYear || year > kLastYear) {
    Refuse(refusal::kBadValue, "The calendar goes from year 100 to year 9998.");
  }
  if (by_month_) {
    const Long month = (parts.month - start_month_ + 12) % 12;  // from 0
    return {year, month / (12 / period_count_) + 1};
  }
  const auto day = static_cast<Long>(DateTime::FromYmd(parts.year, parts.month, parts.day).days -
                                     YearStart(year).days);
  const Long length = 7 * (52 / period_count_);
  return {year, std::min(day / length + 1, period_count_)};
}

Calendar::Span Calendar::SpanOf(AccountingPeriod period) const {
  if (period.period < 1 || period.period > period_count_ || period.year < kFirstYear ||
      period.year > kLastYear) {
    Refuse(refusal::kBadValue, "There is no period " + period.ToText() + "; a year has " +
                                   std::to_string(period_count_) + ".");
  }
  const auto start = [&](Long year, Long number) {
    if (!by_month_) {
      const Long days = 7 * (52 / period_count_);  // of a period: whole weeks
      return DateTime(YearStart(year).days + (number - 1) * days);
    }
    const Long month = start_month_ - 1 + (number - 1) * (12 / period_count_);
    return DateTime::FromYmd(year + month / 12, month % 12 + 1, 1);
  };
  const AccountingPeriod next = After(period);
  return {start(period.year, period.period), DateTime(start(next.year, next.period).days - 1)};
}

AccountingPeriod Calendar::After(AccountingPeriod period) const {
  if (period.period < period_count_) return {period.year, period.period + 1};
  return {period.year + 1, 1};
}

AccountingPeriod Calendar::Before(AccountingPeriod period) const {
  if (period.period > 1) return {period.year, period.period - 1};
  return {period.year - 1, period_count_};
}

}  // namespace qdclgl::server
