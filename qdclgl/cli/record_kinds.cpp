#include "qdclgl/cli/record_kinds.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/console.h"
#include "qdclgl/cli/nearest.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/path_text.h"
#include "qdclgl/server/records/kinds.h"
#include "qdclgl/server/records/note_data.h"

namespace qdclgl::cli {

using server::Column;
using server::ColumnType;
using server::MasterData;

// ---- Kinds ----

std::string_view KindName(const MasterData& kind) { return kind.description().list.name; }

std::span<const MasterData* const> RecordKinds() {
  static const std::vector<const MasterData*> kKinds = [] {
    const auto kinds = server::MasterDataKinds();
    std::vector<const MasterData*> sorted(kinds.begin(), kinds.end());
    std::ranges::sort(sorted, {}, [](const MasterData* kind) { return KindName(*kind); });
    return sorted;
  }();
  return kKinds;
}

const MasterData* FindKind(std::string_view name) {
  for (const MasterData* kind : RecordKinds()) {
    if (EqualsIgnoringAsciiCase(KindName(*kind), name)) return kind;
  }
  return nullptr;
}

namespace {

std::vector<std::string_view> KindNames() {
  std::vector<std::string_view> names;
  for (const MasterData* kind : RecordKinds()) names.push_back(KindName(*kind));
  return names;
}

}  // namespace

bool IsNearKind(std::string_view name) { return !Nearest(name, KindNames()).empty(); }

const MasterData& KindNamed(std::string_view name) {
  if (const MasterData* kind = FindKind(name)) return *kind;
  throw UsageError(NoSuch("kind", name, KindNames()));
}

// ---- Columns ----

std::string_view WordFor(ColumnType type) {
  switch (type) {
    case ColumnType::kLong:
    case ColumnType::kInteger: return "whole number";
    case ColumnType::kBoolean: return "yes or no";
    case ColumnType::kCurrency: return "amount";
    case ColumnType::kDouble:
    case ColumnType::kSingle:
    case ColumnType::kDecimal: return "number";
    case ColumnType::kDate: return "date";
    case ColumnType::kText: return "text";
  }
  return "";
}

std::string ValueOf(const MasterData& kind, const Column& column) {
  for (const server::RecordColumn& described : kind.description().columns) {
    if (described.column.name == column.name && !described.words.empty()) {
      return server::WordsText(described.words);
    }
  }
  return std::string(WordFor(column.type));
}

bool IsFilled(const Dictionary& row, const Column& column) {
  const auto text = [&](const Variant& value) {
    return CellText(server::Normalized(column, value));
  };
  return text(row.Value(column.name)) != text(Variant());
}

std::vector<WrittenColumn> WrittenColumns(const MasterData& kind) {
  std::vector<WrittenColumn> columns;
  for (const server::RecordColumn& column : kind.description().columns) {
    if (column.keeper != server::Keeper::kCaller) continue;
    columns.push_back({column.column.name, column.sent.value_or(column.column.type)});
  }
  for (const server::RecordList& list : kind.description().lists) {
    if (!list.is_within_list) columns.push_back({.name = list.key, .list = &list});
  }
  return columns;
}

namespace {

WrittenColumn ColumnNamed(const MasterData& kind, std::string_view name) {
  const std::vector<WrittenColumn> columns = WrittenColumns(kind);
  std::vector<std::string_view> names;
  for (const WrittenColumn& column : columns) {
    if (EqualsIgnoringAsciiCase(column.name, name)) return column;
    names.push_back(column.name);
  }
  // The server knows which of them there are, and takes a text for any value.
  const auto is_further_key = kind.description().is_further_key;
  if (is_further_key != nullptr && is_further_key(name)) return {name, ColumnType::kText};
  if (const Column* kept = FindColumn(kind.CallersColumns(), name)) {
    throw UsageError(std::string(kept->name) + " can't be set, the server keeps it");
  }
  throw UsageError(NoSuch("column", name, names));
}

// ---- Values ----

template <class Whole>
Whole ReadWithin(std::string_view text) {
  return static_cast<Whole>(
      ReadInteger(text, std::numeric_limits<Whole>::min(), std::numeric_limits<Whole>::max()));
}

}  // namespace

Variant ReadTyped(ColumnType type, const std::string& text) {
  switch (type) {
    case ColumnType::kLong: return ReadWithin<Long>(text);
    case ColumnType::kInteger: return ReadWithin<Integer>(text);
    case ColumnType::kBoolean: return ReadTruth(text);
    case ColumnType::kCurrency: return ReadAmount(text);
    case ColumnType::kDouble: return ReadNumber(text);
    case ColumnType::kSingle: return static_cast<Single>(ReadNumber(text));
    case ColumnType::kDecimal: return ReadDecimal(text);
    case ColumnType::kDate: return ReadTime(text);
    case ColumnType::kText: return text;
  }
  return {};
}

namespace {

Variant ReadValue(const Column& column, const std::string& text) {
  if (text.empty()) return {};
  try {
    return ReadTyped(column.type, text);
  } catch (const BadCell& bad) {
    throw UsageError(std::string(column.name) + ": " + bad.what());
  }
}

// A cell of a JSON row as a command line would have it.
std::string TextOf(const nlohmann::json& cell) {
  if (cell.is_null()) return "";
  return cell.is_string() ? cell.get<std::string>() : cell.dump();
}

Variant ReadRows(const server::RecordList& list, const std::string& text) {
  auto rows = Make<Vector>();
  if (text.empty()) return Variant(rows);
  const std::string key(list.key);
  const auto json = nlohmann::json::parse(text, nullptr, false);
  if (!json.is_array())
    throw UsageError(key + ": " + Quoted(text) + " is not a JSON array of rows");
  const std::vector<Column>& columns = !list.sent.empty()    ? list.sent
                                       : !list.shown.empty() ? list.shown
                                                             : list.table.columns;
  std::vector<std::string_view> names;
  for (const Column& column : columns) names.push_back(column.name);
  for (const auto& element : json) {
    if (!element.is_object()) {
      throw UsageError(key + ": " + Quoted(element.dump()) + " is not a JSON object");
    }
    auto row = Make<Dictionary>();
    for (const auto& [name, cell] : element.items()) {
      const Column* column = FindColumn(columns, name);
      if (column == nullptr) throw UsageError(key + ": " + NoSuch("column", name, names));
      row->Put(column->name, ReadValue(*column, TextOf(cell)));
    }
    rows->Append(Variant(row));
  }
  return Variant(rows);
}

// The first bytes of a file, no more than `most`.
std::string BytesOfFile(const std::string& path, std::size_t most) {
  std::ifstream file(server::PathOf(path), std::ios::binary);
  std::string bytes(most, '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (file.bad() || (file.gcount() == 0 && !file.eof())) throw FileError(path + " can't be read");
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}

// What stands in a file, without its last line end. No column takes more than is read here.
std::string TextOfFile(const std::string& path) {
  std::string text = BytesOfFile(path, server::kLongestStoredText + 3);
  if (text.ends_with('\n')) text.pop_back();
  if (text.ends_with('\r')) text.pop_back();
  return text;
}

// A value of a key that no column has: a text, or the bytes of a file, one more than are kept at
// most, so that it is the server which refuses what is too large.
Variant ReadData(const std::string& text) {
  if (!text.starts_with('@')) return text.empty() ? Variant() : Variant(text);
  if (text.starts_with("@@")) return Variant(text.substr(1));
  const std::string bytes = BytesOfFile(text.substr(1), server::kLargestNoteData + 1);
  return Bytes{{reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, 0};
}

}  // namespace

Assignment ReadAssignment(const MasterData& kind, std::string_view word) {
  const std::size_t sign = word.find('=');
  if (sign == word.npos) throw UsageError(Quoted(word) + " is not of the form column=value");
  std::string text(word.substr(sign + 1));
  for (const std::string_view key : kind.description().keys) {
    if (EqualsIgnoringAsciiCase(key, word.substr(0, sign))) return {key, ReadData(text)};
  }
  const WrittenColumn column = ColumnNamed(kind, word.substr(0, sign));
  if (text.starts_with("@@")) text.erase(0, 1);
  else if (text.starts_with('@')) text = TextOfFile(text.substr(1));
  return {column.name, column.list != nullptr ? ReadRows(*column.list, text)
                                              : ReadValue({column.name, column.type}, text)};
}

}  // namespace qdclgl::cli
