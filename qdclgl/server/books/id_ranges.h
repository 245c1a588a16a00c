// Tables gone through some ids at a time, so that large books take no more memory than small ones.
#pragma once

#include <limits>
#include <optional>
#include <string_view>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// `next(from)` tells the first id from `from` on, nothing behind the last; `take(first, last)` gets
// the ranges.
template <class Next, class Take>
void InRanges(Next next, Take take) {
  constexpr Long kAtOnce = 1000;
  constexpr Long kLast = std::numeric_limits<Long>::max();
  for (std::optional<Long> first = next(std::numeric_limits<Long>::min()); first;) {
    const Long last = *first > kLast - kAtOnce ? kLast : *first + kAtOnce - 1;
    take(*first, last);
    if (last == kLast) return;
    first = next(last + 1);
  }
}

// The first id from `from` on in a table, nothing behind the last.
std::optional<Long> NextId(Database& db, std::string_view table, std::string_view id, Long from);

// The last id in a table, 0 when it is empty.
Long LastId(Database& db, std::string_view table, std::string_view id);

}  // namespace qdclgl::server
