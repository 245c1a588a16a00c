#include "qdclgl/server/access/trail_row.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

#include "qdclgl/frame/objects/conversions.h"

namespace qdclgl::server {

void TrailRow::Add(std::span<const Column> columns, std::span<const Variant> values) {
  cells.reserve(cells.size() + columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    cells.push_back({std::string(columns[i].name), columns[i].type, values[i]});
  }
}

void TrailRow::AddText(std::string_view key, std::string_view text) {
  cells.push_back({std::string(key), ColumnType::kText, Variant(text)});
}

namespace {

// ---- Writing ----

constexpr std::size_t kUsualLength = 1024;

void AppendText(std::string& out, std::string_view text) {
  static constexpr char kDigits[] = "0123456789abcdef";
  out += '"';
  const auto is_plain = [](char c) {
    return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\';
  };
  for (auto at = text.begin(); at != text.end();) {
    const auto end = std::find_if_not(at, text.end(), is_plain);
    out.append(at, end);
    at = end;
    if (at == text.end()) break;
    const char c = *at++;
    if (c == '"' || c == '\\') out.append(1, '\\').append(1, c);
    else out.append("\\u00").append(1, kDigits[c >> 4]).append(1, kDigits[c & 15]);
  }
  out += '"';
}

template <class Number>
void AppendNumber(std::string& out, Number number) {
  char text[32];
  out.append(text, std::to_chars(text, std::end(text), number).ptr);
}

void AppendValue(std::string& out, const TrailCell& cell) {
  const Variant& value = cell.value;
  switch (cell.type) {
    case ColumnType::kLong: return AppendNumber(out, value.Held<Long>());
    case ColumnType::kInteger: return AppendNumber(out, value.Held<Integer>());
    case ColumnType::kBoolean: out += value.Held<Boolean>() ? "true" : "false"; return;
    case ColumnType::kCurrency:
      // No amount is a number like others, so that its zero is not taken for the text "0".
      if (value.Held<Currency>() == Currency()) return AppendNumber(out, 0);
      return AppendText(out, value.Held<Currency>().ToText());
    case ColumnType::kDouble: return AppendNumber(out, value.Held<Double>());
    case ColumnType::kSingle: return AppendNumber(out, value.Held<Single>());
    case ColumnType::kDecimal: return AppendText(out, value.Held<Decimal>().ToText());
    case ColumnType::kDate: return AppendText(out, DateText(value.Held<DateTime>()));
    case ColumnType::kText: return AppendText(out, value.TextView());
  }
}

bool IsZero(const TrailCell& cell) {
  const Variant& value = cell.value;
  switch (cell.type) {
    case ColumnType::kLong: return value.Held<Long>() == 0;
    case ColumnType::kInteger: return value.Held<Integer>() == 0;
    case ColumnType::kBoolean: return !value.Held<Boolean>();
    case ColumnType::kCurrency: return value.Held<Currency>() == Currency();
    case ColumnType::kDouble: return value.Held<Double>() == 0;
    case ColumnType::kSingle: return value.Held<Single>() == 0;
    case ColumnType::kDecimal: return value.Held<Decimal>() == Decimal();
    case ColumnType::kDate: return value.Held<DateTime>().days == 0;
    case ColumnType::kText: return value.TextView().empty();
  }
  return false;
}

// The members of a JSON object as they are written one behind the other.
class Members {
 public:
  explicit Members(std::string& out) : out_(out), start_(out.size()) { out_ += '{'; }
  void Begin(std::string_view key) {
    if (out_.size() > start_ + 1) out_ += ',';
    AppendText(out_, key);
    out_ += ':';
  }
  // Nothing at all for an object without members.
  void EndOrDrop() {
    if (out_.size() == start_ + 1) out_.resize(start_);
    else End();
  }
  void End() { out_ += '}'; }

 private:
  std::string& out_;
  std::size_t start_;
};

void AppendCell(std::string& out, Members& members, const TrailCell& cell) {
  if (IsZero(cell)) return;
  members.Begin(cell.key);
  AppendValue(out, cell);
}

void AppendWhole(std::string& out, const TrailRow& row);

void AppendLists(std::string& out, Members& members, const TrailRow& row) {
  for (const TrailList& list : row.lists) {
    if (list.rows.empty()) continue;
    members.Begin(list.key);
    for (const TrailRow& element : list.rows) {
      out += &element == list.rows.data() ? '[' : ',';
      AppendWhole(out, element);
    }
    out += ']';
  }
}

void AppendWhole(std::string& out, const TrailRow& row) {
  Members members(out);
  for (const TrailCell& cell : row.cells) AppendCell(out, members, cell);
  AppendLists(out, members, row);
  members.End();
}

void AppendChanges(std::string& out, const TrailRow* before, const TrailRow* after);

void AppendListChanges(std::string& out, const TrailList& before, const TrailList& after) {
  Members members(out);
  const auto row_of = [](const TrailList& list, std::size_t i) {
    return i < list.rows.size() ? &list.rows[i] : nullptr;
  };
  for (std::size_t i = 0; i < std::max(before.rows.size(), after.rows.size()); ++i) {
    std::string changes;
    AppendChanges(changes, row_of(before, i), row_of(after, i));
    if (changes.empty()) continue;
    members.Begin(std::to_string(i + 1));
    out += changes;
  }
  members.EndOrDrop();
}

void AppendChanges(std::string& out, const TrailRow* before, const TrailRow* after) {
  Members members(out);
  if (before == nullptr || after == nullptr) {
    members.Begin(before == nullptr ? "new" : "old");
    AppendWhole(out, before == nullptr ? *after : *before);
    return members.End();
  }
  for (std::size_t i = 0; i < after->cells.size(); ++i) {
    const TrailCell &old_cell = before->cells[i], &cell = after->cells[i];
    if (Equals(old_cell.value, cell.value)) continue;
    members.Begin(cell.key);
    out += '[';
    AppendValue(out, old_cell);
    out += ',';
    AppendValue(out, cell);
    out += ']';
  }
  for (std::size_t i = 0; i < after->lists.size(); ++i) {
    std::string changes;
    AppendListChanges(changes, before->lists[i], after->lists[i]);
    if (changes.empty()) continue;
    members.Begin(after->lists[i].key);
    out += changes;
  }
  members.EndOrDrop();
}

}  // namespace

std::string WholeText(const TrailRow& row) {
  std::string text;
  text.reserve(kUsualLength);
  AppendWhole(text, row);
  return text;
}

std::string ChangesText(const TrailRow* before, const TrailRow* after) {
  std::string text;
  text.reserve(kUsualLength);
  AppendChanges(text, before, after);
  return text;
}

// ---- Reading ----

namespace {

// Goes through a text of ChangesText; what is not written as that writes it ends in a failure.
class ChangesReader {
 public:
  explicit ChangesReader(std::string_view text) : rest_(text) {}

  bool Take(std::string_view text) {
    if (!rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }
  // A text with its quotes, or a number or truth value; "" for anything else.
  std::string_view TakeValue() {
    std::size_t size = 0;
    if (rest_.starts_with('"')) {
      for (size = 1; size < rest_.size() && rest_[size] != '"';)
        size += rest_[size] == '\\' ? 2 : 1;
      if (size >= rest_.size()) return "";
      ++size;
    } else {
      size = rest_.find_first_of(",]{[\"");
      if (size == rest_.npos) return "";
    }
    const std::string_view value = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return value;
  }
  bool IsAtEnd() const { return rest_.empty(); }

 private:
  std::string_view rest_;
};

bool IsZero(std::string_view value) { return value == "0" || value == "false" || value == "\"\""; }

}  // namespace

std::optional<std::vector<ValueChange>> ValueChanges(std::string_view changes) {
  std::vector<ValueChange> values;
  ChangesReader reader(changes);
  if (!reader.Take("{")) return {};
  do {
    const std::string_view key = reader.TakeValue();
    if (key.size() < 2 || !key.starts_with('"') || !reader.Take(":[")) return {};
    const std::string_view before = reader.TakeValue();
    if (before.empty() || !reader.Take(",")) return {};
    const std::string_view after = reader.TakeValue();
    if (after.empty() || !reader.Take("]")) return {};
    values.push_back({key.substr(1, key.size() - 2), before, after});
  } while (reader.Take(","));
  if (!reader.Take("}") || !reader.IsAtEnd()) return {};
  return values;
}

std::optional<std::string> WholeTextBefore(const TrailRow& row,
                                           std::span<const ValueChange> changes) {
  std::string text, now;
  text.reserve(kUsualLength);
  Members members(text);
  std::size_t met = 0;
  for (const TrailCell& cell : row.cells) {
    const auto change = std::ranges::find(changes, cell.key, &ValueChange::key);
    if (change == changes.end()) {
      AppendCell(text, members, cell);
      continue;
    }
    ++met;
    now.clear();
    AppendValue(now, cell);
    if (now != change->after) return {};
    if (IsZero(change->before)) continue;
    members.Begin(cell.key);
    text += change->before;
  }
  if (met != changes.size()) return {};
  AppendLists(text, members, row);
  members.End();
  return text;
}

// ---- For people ----

std::string_view NounOf(std::string_view list) {
  if (list == "_Entries") return "line";
  if (list == "_Details") return "detail";
  if (list == "_Columns") return "column";
  if (list == "_SubColumns") return "sub-column";
  return "item";
}

namespace {

using Json = nlohmann::ordered_json;

std::string ValueText(const Json& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

// An exception of the library for what is no object.
const Json::object_t& MembersOf(const Json& json) { return json.get_ref<const Json::object_t&>(); }

void AddShort(std::string& text, const std::string& where, const Json& changes) {
  const auto add = [&](const std::string& change) {
    text += (text.empty() ? "" : "; ") + where + change;
  };
  for (const auto& [key, change] : MembersOf(changes)) {
    if (change.is_array()) {
      add(key + ": " + ValueText(change.at(0)) + " -> " + ValueText(change.at(1)));
      continue;
    }
    for (const auto& [number, row] : MembersOf(change)) {
      const std::string name = std::string(NounOf(key)) + " " + number;
      if (row.contains("new")) add(name + " added");
      else if (row.contains("old")) add(name + " removed");
      else AddShort(text, where + name + " ", row);
    }
  }
}

// "FNumber 1, FReference R, lines 2"
std::string ShortWhole(const Json& row) {
  std::string text;
  for (const auto& [key, value] : MembersOf(row)) {
    if (!text.empty()) text += ", ";
    text += value.is_array() ? std::string(NounOf(key)) + "s " + std::to_string(value.size())
                             : key + " " + ValueText(value);
  }
  return text;
}

}  // namespace

std::string ShortChanges(std::string_view changes) {
  const Json json = Json::parse(changes, nullptr, false);
  if (!json.is_object()) return std::string(changes);
  try {
    for (const char* whole : {"new", "old"}) {
      if (json.contains(whole)) return ShortWhole(json[whole]);
    }
    std::string text;
    AddShort(text, "", json);
    return text;
  } catch (const Json::exception&) {
    return std::string(changes);
  }
}

}  // namespace qdclgl::server
