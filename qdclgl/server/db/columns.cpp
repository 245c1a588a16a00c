#include "qdclgl/server/db/columns.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

const Column* FindColumn(std::span<const Column> columns, std::string_view name) {
  for (const Column& column : columns) {
    if (EqualsIgnoringAsciiCase(column.name, name)) return &column;
  }
  return nullptr;
}

std::string DateText(DateTime date) { return date.days == 0 ? std::string() : date.ToText(); }

DateTime DateFrom(std::string_view text) {
  if (text.empty()) return DateTime();
  const auto number = [&](std::size_t from, std::size_t count) {
    int value = 0;
    std::from_chars(text.data() + from, text.data() + from + count, value);
    return value;
  };
  if (text.size() == 10 && text[4] == '-' && text[7] == '-') {
    return DateTime::FromYmd(number(0, 4), number(5, 2), number(8, 2));
  }
  return CDate(Variant(text));
}

namespace {

// One digit for the sign, two for the place of the first digit before the point, then the digits.
// All of that is turned around for what is less than 0, where a longer number is a smaller one.
std::string DecimalOrder(bool is_negative, int place, std::string digits) {
  constexpr int kMiddle = 50;  // between places: those of a Decimal are from -27 to 29
  if (!is_negative) return "6" + std::to_string(kMiddle + place) + digits;
  for (char& digit : digits) digit = static_cast<char>('0' + '9' - digit);
  return "4" + std::to_string(kMiddle - 1 - place) + digits + "~";
}

}  // namespace

std::string DecimalText(const Decimal& value) {
  std::string text = value.ToText();
  if (text.find('.') != text.npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
  }
  const bool is_negative = text.starts_with('-');
  const std::string plain = text.substr(is_negative ? 1 : 0);
  const std::size_t point = std::min(plain.find('.'), plain.size());
  std::string digits = plain.substr(0, point);
  if (point < plain.size()) digits += plain.substr(point + 1);
  const std::size_t first = digits.find_first_not_of('0');
  if (first == digits.npos) return "5 0";
  const int place = static_cast<int>(point) - static_cast<int>(first);
  digits.erase(0, first);
  digits.erase(digits.find_last_not_of('0') + 1);
  return DecimalOrder(is_negative, place, std::move(digits)) + " " + text;
}

Decimal DecimalFrom(std::string_view text) {
  return text.empty() ? Decimal() : Decimal::FromText(text.substr(text.find(' ') + 1));
}

Variant ReadCell(const Statement& statement, std::size_t position, ColumnType type) {
  switch (type) {
    case ColumnType::kLong: return static_cast<Long>(statement.Whole(position));
    case ColumnType::kInteger: return static_cast<Integer>(statement.Whole(position));
    case ColumnType::kBoolean: return statement.Whole(position) != 0;
    case ColumnType::kCurrency: return Currency::FromUnits(statement.Whole(position));
    case ColumnType::kDouble: return statement.Real(position);
    case ColumnType::kSingle: return static_cast<Single>(statement.Real(position));
    case ColumnType::kDecimal: return DecimalFrom(statement.Text(position));
    case ColumnType::kDate: return DateFrom(statement.Text(position));
    case ColumnType::kText: return statement.Text(position);
  }
  return {};
}

namespace {

// One database keeps what is no number, the other makes Null of it.
template <class T>
T Finite(T value) {
  if (!std::isfinite(value)) RaiseError(error_number::kOverflow);
  return value;
}

}  // namespace

Variant Normalized(const Column& column, const Variant& value) {
  const bool absent = value.IsEmpty() || value.IsNull() || value.IsMissing() || value.IsNothing() ||
                      (value.IsString() && column.type != ColumnType::kText && HasEmptyText(value));
  const Variant given = absent ? Variant() : value;
  try {
    switch (column.type) {
      case ColumnType::kLong: return CLng(given);
      case ColumnType::kInteger: return CInt(given);
      case ColumnType::kBoolean: return CBool(given);
      case ColumnType::kCurrency: return CCur(given);
      case ColumnType::kDouble: return Finite(CDbl(given));
      case ColumnType::kSingle: return Finite(CSng(given));
      case ColumnType::kDecimal: return CDec(given);
      case ColumnType::kDate: {
        const DateTime date = CDate(given);
        DateText(date);  // error 6 for a date that no calendar has
        return date;
      }
      case ColumnType::kText: {
        String text = CStr(given);
        if (!IsStorable(text)) RaiseError(error_number::kTypeMismatch);
        if (text.size() <= kLongestStoredText) return text;
        break;
      }
    }
  } catch (const Error&) {
    Refuse(refusal::kBadValue,
           "The value of " + std::string(column.name) + " does not fit its column.");
  }
  Refuse(refusal::kBadValue, "The value of " + std::string(column.name) + " has more than " +
                                 std::to_string(kLongestStoredText) + " bytes.");
}

void BindHeld(Statement& statement, std::size_t position, ColumnType type, const Variant& value) {
  switch (type) {
    case ColumnType::kLong: return statement.Set(position, std::int64_t{value.Held<Long>()});
    case ColumnType::kInteger: return statement.Set(position, std::int64_t{value.Held<Integer>()});
    case ColumnType::kBoolean: return statement.Set(position, std::int64_t{value.Held<Boolean>()});
    case ColumnType::kCurrency: return statement.Set(position, value.Held<Currency>().units());
    case ColumnType::kDouble: return statement.Set(position, value.Held<Double>());
    case ColumnType::kSingle: return statement.Set(position, Double{value.Held<Single>()});
    case ColumnType::kDecimal:
      return statement.Set(position, std::string_view(DecimalText(value.Held<Decimal>())));
    case ColumnType::kDate:
      return statement.Set(position, std::string_view(DateText(value.Held<DateTime>())));
    case ColumnType::kText: return statement.Set(position, value.TextView());
  }
}

void BindCell(Statement& statement, std::size_t position, const Column& column,
              const Variant& value) {
  BindHeld(statement, position, column.type, Normalized(column, value));
}

Ref<KeyList> KeysOf(std::span<const Column> columns) {
  Ref<KeyList> keys;
  for (const Column& column : columns) {
    keys = KeyList::Appended(std::move(keys), RowKey(column.name));
  }
  return keys;
}

std::vector<Variant> ReadCells(const Statement& statement, std::span<const Column> columns,
                               std::size_t first) {
  std::vector<Variant> cells;
  cells.reserve(columns.size());
  for (const Column& column : columns) cells.push_back(ReadCell(statement, first++, column.type));
  return cells;
}

Ref<Dictionary> ReadRow(const Statement& statement, std::span<const Column> columns,
                        const Ref<KeyList>& keys) {
  return Dictionary::FromRow(keys, ReadCells(statement, columns).data());
}

std::vector<Variant> NormalizedCells(std::span<const Column> columns, const Dictionary& row) {
  std::vector<Variant> cells;
  cells.reserve(columns.size());
  for (const Column& column : columns) {
    const Variant* value = row.Find(RowKey(column.name));
    cells.push_back(Normalized(column, value != nullptr ? *value : Variant()));
  }
  return cells;
}

RowInsertion::RowInsertion(std::string_view table, std::span<const Column> columns)
    : column_count_(columns.size()) {
  std::string row = "(";
  for (std::size_t i = 0; i < columns.size(); ++i) row += i == 0 ? "?" : ", ?";
  row += ")";
  for (std::size_t power = 0; power < kPowers; ++power) {
    sql_[power] = "INSERT INTO " + std::string(table) + " (" + NamesOf(columns) + ") VALUES ";
    for (std::size_t i = 0; i < std::size_t{1} << power; ++i) {
      sql_[power] += i == 0 ? row : ", " + row;
    }
  }
}

std::string NamesOf(std::span<const Column> columns, std::string_view prefix) {
  std::string names;
  for (const Column& column : columns) {
    if (!names.empty()) names += ", ";
    names.append(prefix).append(column.name);
  }
  return names;
}

}  // namespace qdclgl::server
