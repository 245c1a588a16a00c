// The columns of the books' tables and lists, and how their values travel between rows and the
// database. A column is declared once; what inserts, reads, filters and sorts walks these lists.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

enum class ColumnType : std::uint8_t {
  kLong,
  kInteger,
  kBoolean,
  kCurrency,
  kDouble,
  kSingle,
  kDecimal,  // kept as a text whose order is that of the numbers
  kDate,     // kept as "2024-01-31", with the time behind it where there is one
  kText,
};

// The longest text of a column, in bytes.
inline constexpr std::size_t kLongestStoredText = 1'000'000;

struct Column {
  std::string_view name;
  ColumnType type;
};

// A table of the database and all of its columns.
struct StoredTable {
  std::string_view name;
  std::vector<Column> columns;
};

constexpr Storage StorageOf(ColumnType type) {
  switch (type) {
    case ColumnType::kDouble:
    case ColumnType::kSingle: return Storage::kReal;
    case ColumnType::kDecimal:
    case ColumnType::kDate:
    case ColumnType::kText: return Storage::kText;
    default: return Storage::kWhole;
  }
}

namespace detail {

template <ColumnType type>
struct TypeOfColumn;
template <>
struct TypeOfColumn<ColumnType::kLong> {
  using Type = Long;
};
template <>
struct TypeOfColumn<ColumnType::kInteger> {
  using Type = Integer;
};
template <>
struct TypeOfColumn<ColumnType::kBoolean> {
  using Type = Boolean;
};
template <>
struct TypeOfColumn<ColumnType::kCurrency> {
  using Type = Currency;
};
template <>
struct TypeOfColumn<ColumnType::kDouble> {
  using Type = Double;
};
template <>
struct TypeOfColumn<ColumnType::kSingle> {
  using Type = Single;
};
template <>
struct TypeOfColumn<ColumnType::kDecimal> {
  using Type = Decimal;
};
template <>
struct TypeOfColumn<ColumnType::kDate> {
  using Type = DateTime;
};
template <>
struct TypeOfColumn<ColumnType::kText> {
  using Type = String;
};

}  // namespace detail

// The automation type of a column's values.
template <ColumnType type>
using TypeOf = typename detail::TypeOfColumn<type>::Type;

// The column `name`, case ignored, null when there is none.
const Column* FindColumn(std::span<const Column> columns, std::string_view name);

// The value of a fetched row's column in its automation type. The empty date is day 0.
Variant ReadCell(const Statement& statement, std::size_t position, ColumnType type);

// Gives a parameter a value that is of the column's type already.
void BindHeld(Statement& statement, std::size_t position, ColumnType type, const Variant& value);

// Gives a parameter the value, converted to the column's type; Empty, Null, Missing and Nothing are
// the type's zero. BadValue, naming the column, when it does not convert.
void BindCell(Statement& statement, std::size_t position, const Column& column,
              const Variant& value);

// A row's value under the column's name in the column's type: what BindCell would store.
Variant Normalized(const Column& column, const Variant& value);

// The place of a column in its list; a name that is not there doesn't compile.
consteval std::size_t PlaceOf(std::span<const Column> columns, std::string_view name) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].name == name) return i;
  }
  throw "no such column";
}

// The values of a fetched row's columns from `first` on.
std::vector<Variant> ReadCells(const Statement& statement, std::span<const Column> columns,
                               std::size_t first = 0);

// What a caller's row has under the columns' names, in the columns' types.
std::vector<Variant> NormalizedCells(std::span<const Column> columns, const Dictionary& row);

// The insertion of rows into a table, as few statements as their number allows; they run with the
// next one that is waited for.
class RowInsertion {
 public:
  RowInsertion(std::string_view table, std::span<const Column> columns);

  // `bind(statement, first, row)` gives the parameters of one row, from `first` on, their values.
  template <class Bind>
  void Run(Database& db, std::size_t count, Bind bind) const {
    for (std::size_t row = 0; row < count;) {
      std::size_t power = kPowers - 1;
      while ((std::size_t{1} << power) > count - row) --power;
      Statement& statement = db.Prepared(sql_[power]);
      for (std::size_t i = 0; i < std::size_t{1} << power; ++i) {
        bind(statement, i * column_count_, row++);
      }
      statement.ExecuteLater();
    }
  }

 private:
  // For 1, 2, 4, ... rows, so that few statements are ever prepared.
  static constexpr std::size_t kPowers = 5;

  std::size_t column_count_;
  std::array<std::string, kPowers> sql_;
};

// The row of a fetched statement as a new Dictionary over `keys`, one key for each column.
Ref<KeyList> KeysOf(std::span<const Column> columns);
Ref<Dictionary> ReadRow(const Statement& statement, std::span<const Column> columns,
                        const Ref<KeyList>& keys);

// "FName, FNumber", with `prefix` before each name.
std::string NamesOf(std::span<const Column> columns, std::string_view prefix = {});

// Dates as the database holds them, and back. Error 6 or 13 as the conversions raise them.
std::string DateText(DateTime date);
DateTime DateFrom(std::string_view text);

// Decimals likewise: "652125 12.5" for 12.5. What goes before the blank orders the texts, what
// stands behind it is the number as people write it. An empty text is 0 too.
std::string DecimalText(const Decimal& value);
Decimal DecimalFrom(std::string_view text);

}  // namespace qdclgl::server
