#include "qdclgl/cli/day_words.h"

#include <algorithm>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/console.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

namespace {

struct Span {
  DateTime start, end;
};

Span SpanOf(const std::string& props, Long year, Long period) {
  Span span;
  CreateObject("QDCPeriodDate.clsPeriodDate")
      ->Call("GetPeriodStartEnd", props, ByRef(period), ByRef(year), ByRef(span.start),
             ByRef(span.end));
  return span;
}

}  // namespace

DateTime DayFrom(const std::string& props, const char* option, const std::string& text,
                 DayEnd end) {
  if (text.empty()) return DateTime();
  const bool is_last = end == DayEnd::kLast;
  try {
    if (std::ranges::count(text, '-') == 2) return ReadDate(text);
    const std::size_t mark = text.find_first_of("/-");
    const Long year = ReadWhole(text.substr(0, mark));
    if (mark == text.npos) {
      const DateTime next_year = SpanOf(props, year + 1, 1).start;
      return is_last ? DateTime(next_year.days - 1) : SpanOf(props, year, 1).start;
    }
    const Span span = SpanOf(props, year, ReadWhole(text.substr(mark + 1)));
    return is_last ? span.end : span.start;
  } catch (const BadCell&) {
    throw UsageError(std::string(option) +
                     " takes a day such as 2024-01-31, a period such as 2024-01 or 2024/1, or a "
                     "year, not " +
                     Quoted(text));
  }
}

}  // namespace qdclgl::cli
