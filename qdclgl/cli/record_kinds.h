// The kinds of records (accounts, currencies, ...) as the server describes them: found by the name
// of their list, with their columns as people write and read them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/server/records/master_data.h"

namespace qdclgl::cli {

// By the names of their lists: "accounts".
std::span<const server::MasterData* const> RecordKinds();
std::string_view KindName(const server::MasterData& kind);
// Null when there is none; case is ignored.
const server::MasterData* FindKind(std::string_view name);
// Whether a word is a kind, or may be meant as one.
bool IsNearKind(std::string_view name);
// UsageError with the kinds there are and the one that was meant.
const server::MasterData& KindNamed(std::string_view name);

// What a value of a column is in words, "whole number".
std::string_view WordFor(server::ColumnType type);
// The same for a column of a kind, or the words that it takes.
std::string ValueOf(const server::MasterData& kind, const server::Column& column);
// The value of a column as a text tells it. BadCell.
Variant ReadTyped(server::ColumnType type, const std::string& text);

// Whether a row has more in a column than the zero of its type.
bool IsFilled(const Dictionary& row, const server::Column& column);

// A column that callers write, or a list of rows that they do.
struct WrittenColumn {
  std::string_view name;
  server::ColumnType type = server::ColumnType::kText;
  const server::RecordList* list = nullptr;
};
std::vector<WrittenColumn> WrittenColumns(const server::MasterData& kind);

// "FName=Till": a column gets a value.
struct Assignment {
  std::string_view column;
  Variant value;
};

// Reads "column=value": a value in the column's type, nothing for one that shall be cleared, with
// "@FILE" what stands in the file but for its last line end, with "@@" a text that begins with "@".
// A key that no column has, as a note's FData, gets a text, or with "@FILE" all bytes of the file.
// A list of rows is a JSON array, as --json prints it. UsageError, naming column and value, for
// what can't be read; FileError.
Assignment ReadAssignment(const server::MasterData& kind, std::string_view word);

}  // namespace qdclgl::cli
