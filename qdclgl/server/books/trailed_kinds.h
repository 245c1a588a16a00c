// Everything in the books whose whole life is on the trail, read alike: vouchers and the kinds of
// master data. (Settings are one record of their own, see periods/settings.h.)
#pragma once

#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "qdclgl/server/records/master_data.h"

namespace qdclgl::server {

struct TrailedKind {
  std::string_view subject;
  std::string_view table, id;
  // The records with ids from `first` to `last`.
  std::function<std::map<Long, TrailedRecord>(Database& db, Long first, Long last)> read;
};

const std::vector<TrailedKind>& TrailedKinds();

// Goes through ids some at a time, so that large books take no more memory than small ones.
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

}  // namespace qdclgl::server
