// The one writer of everything that comes as rows: an aligned table, CSV or JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/cli/console.h"
#include "qdclgl/frame/containers/recordset.h"

namespace qdclgl::cli {

enum class Format { kPlain, kCsv, kJson };

// Amounts with 4 decimals, dates as yyyy-mm-dd, truth values as true and false; no value is "".
std::string CellText(const Variant& value);
// Amounts as texts with 4 decimals, so that no reader rounds them; rows and lists with all that
// hangs below them.
nlohmann::ordered_json ToJson(const Variant& value);
// The same as a text; what is not UTF-8 can't stand in it.
std::string JsonText(const Variant& value, int indent = -1);

// Columns are told by their keys: CSV and JSON have these, a plain table has headings made of them
// (headings.h), and amounts as people read them. On a terminal it is as wide as the terminal, and
// figures are never cut.
class TableWriter {
 public:
  TableWriter(const Console& console, Format format, std::vector<std::string> keys);

  // ---- Of a plain table alone; the other forms are the same with and without ----

  // All columns from this one on stand to the right, as numbers do by themselves.
  void AlignRight(std::size_t from);
  // The currency of a column's amounts, the base currency otherwise. Those of a column whose key
  // ends in "For" are in the currency of their row.
  void InCurrency(std::size_t column, Long currency);
  // Shows the amounts of a column as bars too, where there is room for them.
  void Bars(std::string_view key);
  // The sentence in place of a table that has no rows.
  void IfEmpty(std::string sentence);

  void Row(const std::vector<Variant>& cells, Long currency = kBaseCurrencyID);
  // A row of sums, which is set off from the others.
  void Total(const std::vector<Variant>& cells, Long currency = kBaseCurrencyID);

  // What stands behind the last row. A plain table, which must know its widest cells, is written
  // here as a whole.
  void Finish();

 private:
  struct Cell {
    std::string text;
    bool is_negative = false;
  };
  struct Line {
    std::vector<Cell> cells;
    bool is_total = false;
    Currency bar = {};
  };
  struct Column {
    std::string key;
    std::string heading;
    bool is_number = false;
    Long currency = 0;  // 0: that of the row
    std::size_t width = 0;
  };

  Cell PlainCell(const Variant& value, const Column& column, Long currency) const;
  void AddPlain(const std::vector<Variant>& cells, Long currency, bool is_total);
  void WriteJson(const std::vector<Variant>& cells);
  void WriteCsv(const std::vector<std::string>& cells);
  void WritePlain();
  // What the columns take with the blanks between them.
  std::size_t WidthOfTable() const;
  // Makes columns of texts narrower until the table fits the terminal, the widest first.
  void Fit();
  std::size_t WidthForBars() const;
  void WriteLine(const Line& line, std::size_t bars, Currency longest);

  const Console& console_;
  Format format_;
  std::vector<Column> columns_;
  std::vector<Line> lines_;  // of a plain table
  std::size_t bars_;         // whose amounts are shown as bars; behind the last: none
  std::string if_empty_;
  bool is_first_ = true;
};

// The rows of a recordset. A plain table shows `plain_columns` of them, or tells a sentence where
// there are none; the other forms show all.
void WriteRecordset(const Console& console, Format format, const Ref<Recordset>& rows,
                    std::span<const std::string_view> plain_columns,
                    const std::string& if_empty = "");

}  // namespace qdclgl::cli
