// The language of filter and sort texts.
//
//   FDate >= #2024-01-01# AND (FPosted = FALSE OR FPreparer IN ('Ann', 'Bob'))
//   FReference LIKE 'INV-%' AND NOT FDebitTotal < 1000.50
//   FYear DESC, FPeriod, FNumber
//
// A filter is made of comparisons (= <> < > <= >= LIKE IN, NOT LIKE, NOT IN) of a column with a
// value or with another column of its kind, joined by AND, OR, NOT and parentheses; a column of
// truth values stands alone too. Values are numbers, texts in single quotes (a quote inside is
// doubled), dates between # signs or as text, TRUE and FALSE. LIKE knows % (any run of characters),
// _ (one character) and \ (the next character itself). Texts compare byte by byte. Words of the
// language and column names are told without regard to case. Values are bound, never pasted.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "qdclgl/server/db/columns.h"

namespace qdclgl::server {

using BoundValue = std::variant<std::int64_t, double, std::string>;

struct Filter {
  std::string sql;  // "" for an empty filter text
  std::vector<BoundValue> values;
  std::vector<std::string_view> columns;  // that it names
};

// BadFilter, telling the position and what is wrong there, for anything that is not the language.
Filter ParseFilter(std::string_view text, std::span<const Column> columns);

struct SortTerm {
  std::string_view column;
  bool is_descending = false;
};

// "FYear DESC, FPeriod"; nothing for an empty text. BadSort likewise.
std::vector<SortTerm> SortTerms(std::string_view text, std::span<const Column> columns);
// The same as SQL has it.
std::string SortText(std::span<const SortTerm> terms);

}  // namespace qdclgl::server
