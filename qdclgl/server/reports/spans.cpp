#include "qdclgl/server/reports/spans.h"

#include <charconv>
#include <string>

#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr std::size_t kMostSpans = 1000;

[[noreturn]] void RefuseText(std::string_view text) {
  Refuse(refusal::kBadValue, "\"" + std::string(text) +
                                 "\" is no span of periods; 2024, 2024/3 and 2024/1-2024/3 are.");
}

Long NumberFrom(std::string_view text, std::string_view whole) {
  Long number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) RefuseText(whole);
  return number;
}

// A year is its first or its last period.
AccountingPeriod PeriodFrom(std::string_view text, Long of_year, std::string_view whole) {
  const std::size_t slash = text.find('/');
  if (slash == text.npos) return {NumberFrom(text, whole), of_year};
  return {NumberFrom(text.substr(0, slash), whole), NumberFrom(text.substr(slash + 1), whole)};
}

PeriodSpan SpanFrom(std::string_view text, const Calendar& calendar) {
  const std::size_t dash = text.find('-');
  const std::string_view first = text.substr(0, dash);
  const std::string_view last = dash == text.npos ? text : text.substr(dash + 1);
  const PeriodSpan span{PeriodFrom(first, 1, text),
                        PeriodFrom(last, calendar.period_count(), text)};
  calendar.SpanOf(span.first);
  calendar.SpanOf(span.last);
  if (span.last < span.first) {
    Refuse(refusal::kBadValue, "Periods go forward, not from " + span.first.ToText() + " to " +
                                   span.last.ToText() + ".");
  }
  return span;
}

}  // namespace

std::vector<PeriodSpan> SpansFrom(std::string_view text, const Calendar& calendar) {
  std::vector<PeriodSpan> spans;
  for (std::size_t first = 0; first <= text.size();) {
    const std::size_t end = std::min(text.find(',', first), text.size());
    spans.push_back(SpanFrom(text.substr(first, end - first), calendar));
    if (spans.size() > kMostSpans) {
      Refuse(refusal::kBadValue,
             "A statement has at most " + std::to_string(kMostSpans) + " spans of periods.");
    }
    first = end + 1;
  }
  return spans;
}

}  // namespace qdclgl::server
