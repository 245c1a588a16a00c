// The journal file: rows that name a voucher each, read as vouchers one after the other.
#pragma once

#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "qdclgl/cli/sheet.h"
#include "qdclgl/frame/objects/variant.h"

namespace qdclgl::cli {

// Values of kFurtherColumns, by their keys.
using Further = std::vector<std::pair<std::string_view, Variant>>;

struct JournalLine {
  CsvCell account;
  bool is_debit = false;
  Currency amount;
  CsvCell currency;  // an empty text: the base currency
  CsvCell amount_for_cell;
  Currency amount_for;
  std::optional<Double> rate;  // nothing: what the two amounts give; 0: the line has none
  Double quantity = 0;
  std::string unit;
  Double unit_price = 0;
  std::string explanation;
  std::string reference;
  CsvCell settlement;  // number of a settlement type
  Further further;
  std::vector<CsvCell> items;  // of the classes that the file is read with
};

struct JournalVoucher {
  std::string key;  // what its rows share
  Position at;      // its first row
  DateTime date;
  std::string group;
  Long number = 0;  // 0: the next one
  // Where they are told apart from the key and the first line.
  std::optional<std::string> reference, explanation;
  Further further;
  std::vector<JournalLine> lines;
  bool is_whole = true;  // false once something of it was reported
};

class JournalReader {
 public:
  // `item_columns` are those of items, one for each class; `format` that of another program's file.
  // FileError as Sheet raises it.
  JournalReader(const std::string& path, std::span<const SheetColumn> item_columns,
                Reports& reports, const NamedFormat* format = nullptr);

  bool IsUsable() const { return sheet_.IsUsable(); }
  double Share() const { return sheet_.Share(); }

  // The next voucher with all its rows; what is wrong in them is reported. False behind the last.
  // A row whose voucher can't be told makes the vouchers on both its sides incomplete: it may
  // belong to either.
  bool Next(JournalVoucher& voucher);

 private:
  // The voucher that the current row names, null when that can't be told.
  const CsvCell* KeyCell() const;
  void BeginVoucher(JournalVoucher& voucher, const CsvCell& key);
  void AddRow(JournalVoucher& voucher);
  void AddLine(JournalVoucher& voucher);
  void Report(JournalVoucher& voucher, Position at, const std::string& reason);
  // The value of a cell, reported when it is none; `fallback` for an empty cell.
  template <class T>
  T Value(JournalVoucher& voucher, std::size_t column, T (*read)(std::string_view), T fallback);
  // The text of a column that the file has.
  std::optional<std::string> TextIfThere(std::size_t column) const;
  // What the row tells in further columns, of the line or of the voucher.
  Further FurtherOf(JournalVoucher& voucher, bool is_of_line);
  const CsvCell& CellOf(std::size_t column) const;
  const std::string& TextOf(std::size_t column) const { return CellOf(column).text; }

  Reports& reports_;
  std::size_t class_count_;
  Sheet sheet_;
  CsvRow row_;
  bool has_row_ = false;
  bool is_row_used_ = true;          // row_ belongs to a voucher that is out already
  bool spoils_next_ = false;         // the row before could have been the next voucher's
  std::vector<std::string> shared_;  // what the rows of the voucher agree in, as the first has it
  std::unordered_set<std::string> keys_;  // of the vouchers so far
};

}  // namespace qdclgl::cli
