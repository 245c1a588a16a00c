// What the audit trail tells of a record: the whole of it, or what has changed, as JSON.
//
//   {"new": {"FNumber": "1000", "FName": "Cash"}}      the whole of what was made
//   {"old": {...}}                                     the whole of what was removed
//   {"FName": ["Cash", "Bank"],                        what was changed: the old value, the new one
//    "_Entries": {"2": {"FAmount": ["100", "120"]}, "3": {"new": {...}}}}
//
// A whole row leaves out what is 0, false or empty, and has its lists of rows as arrays; a change
// names their rows by numbers from 1. Amounts are texts, so that no reader rounds them.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/objects/variant.h"
#include "qdclgl/server/db/columns.h"

namespace qdclgl::server {

struct TrailCell {
  std::string key;
  ColumnType type;
  Variant value;  // of that type
};

struct TrailList;

// A row of the books with the lists of rows that belong to it.
struct TrailRow {
  std::vector<TrailCell> cells;
  std::vector<TrailList> lists;

  void Add(std::span<const Column> columns, std::span<const Variant> values);
  void AddText(std::string_view key, std::string_view text);
};

struct TrailList {
  std::string_view key;
  std::vector<TrailRow> rows;
};

// A row of a list as people call it: "line" for those of _Entries.
std::string_view NounOf(std::string_view list);

// A whole row: {"FNumber": "1000", ...}.
std::string WholeText(const TrailRow& row);
// What became of a row; null where there is none. "" when nothing has changed. Both rows are of the
// same columns and lists.
std::string ChangesText(const TrailRow* before, const TrailRow* after);

// A value of a row's own that has changed, as the text has it: "FName", "\"Cash\"", "\"Bank\"".
struct ValueChange {
  std::string_view key, before, after;
};
// What a text of ChangesText tells, in its own words. Nothing for one that tells of more than
// values of the row itself, or that is written otherwise.
std::optional<std::vector<ValueChange>> ValueChanges(std::string_view changes);
// WholeText of the row that these changes, each key once, have made into this one. Nothing where
// they can't have.
std::optional<std::string> WholeTextBefore(const TrailRow& row,
                                           std::span<const ValueChange> changes);

// The texts of ChangesText for people, on one line: "FName: Cash -> Bank; line 2 FAmount: 100 ->
// 120; line 3 added". A text of another form, as former versions wrote it, stays as it is.
std::string ShortChanges(std::string_view changes);

}  // namespace qdclgl::server
