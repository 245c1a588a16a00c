#include "qdclgl/cli/statement_spans.h"

#include <algorithm>

#include "qdclgl/cli/program.h"
#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

namespace {

constexpr Long kQuarters = 4;

// How many periods a column has.
Long LengthOf(const SpanOptions& options, Long periods, Long whole) {
  if (options.monthly) return 1;
  if (!options.quarterly) return whole;
  if (periods % kQuarters != 0) {
    throw UsageError("a year of " + std::to_string(periods) +
                     " periods has no quarters; --monthly shows each period");
  }
  return periods / kQuarters;
}

}  // namespace

void AddSpanOptions(const Command& command, SpanOptions& options) {
  command.Whole("--year", options.year, "The accounting year [the books' current one]");
  command.Whole("--from", options.from, "The first period [the year's first]");
  command.Whole("--to", options.to, "The last period [the year's last]");
  const Option monthly =
      command.Flag("--monthly", options.monthly, "A column for each period of the year");
  command.Flag("--quarterly", options.quarterly, "A column for each quarter of the year")
      .Excludes(monthly);
  command.Flag("--compare", options.compare, "The same periods of the year before beside them");
}

std::string StatementSpan::ToText() const {
  const std::string of_year = std::to_string(year) + "/";
  return of_year + std::to_string(first) + "-" + of_year + std::to_string(last);
}

std::string StatementSpan::Heading() const {
  std::string heading = std::to_string(year);
  if (is_year) return heading;
  heading += "/" + std::to_string(first);
  return first == last ? heading : heading + "-" + std::to_string(last);
}

std::vector<StatementSpan> SpansOf(const SpanOptions& options) {
  const auto profile = Make<SystemProfile>();
  const Long periods = profile->GLGetPeriodCount();
  const Long year = options.year != 0 ? options.year : profile->GLGetCurrentYear();
  const Long from = options.from != 0 ? options.from : 1;
  const Long to = options.to != 0 ? options.to : periods;
  if (to < from) {
    throw UsageError("periods go forward, not from " + std::to_string(from) + " to " +
                     std::to_string(to));
  }
  const Long length = LengthOf(options, periods, to - from + 1);
  std::vector<StatementSpan> spans;
  for (Long first = from; first <= to;) {
    // A quarter that the first period stands within ends where all quarters end.
    const Long end =
        options.quarterly ? (first - 1) / length * length + length : first + length - 1;
    const Long last = std::min(end, to);
    const StatementSpan span{year, first, last, first == 1 && last == periods};
    spans.push_back(span);
    if (options.compare) spans.push_back({year - 1, first, last, span.is_year});
    first = last + 1;
  }
  return spans;
}

std::string SpansText(const std::vector<StatementSpan>& spans) {
  std::string text;
  for (const StatementSpan& span : spans) text += (text.empty() ? "" : ",") + span.ToText();
  return text;
}

}  // namespace qdclgl::cli
