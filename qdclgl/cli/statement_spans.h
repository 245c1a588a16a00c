// The columns of a statement: which periods they have, as options say it and as people read it.
#pragma once

#include <string>
#include <vector>

#include "qdclgl/cli/command.h"
#include "qdclgl/frame/values/values.h"

namespace qdclgl::cli {

struct SpanOptions {
  Long year = 0;  // 0: the books' current one
  Long from = 0;  // 0: the year's first period
  Long to = 0;    // 0: the year's last period
  bool monthly = false;
  bool quarterly = false;
  bool compare = false;
};

// --year, --from, --to, --monthly, --quarterly and --compare.
void AddSpanOptions(const Command& command, SpanOptions& options);

struct StatementSpan {
  Long year, first, last;
  bool is_year;  // all periods of the year

  std::string ToText() const;   // as the server takes it, "2024/1-2024/3"
  std::string Heading() const;  // as people read it: "2024", "2024/3" or "2024/1-3"
};

// Those of the options: one for all periods, for each, or for each quarter of a year; where the
// year before is to be beside it, each is followed by that year's. The library's session must be
// there. UsageError for what the books' calendar can't be split into.
std::vector<StatementSpan> SpansOf(const SpanOptions& options);
// "2024/1-2024/3,2024/4-2024/6"
std::string SpansText(const std::vector<StatementSpan>& spans);

}  // namespace qdclgl::cli
