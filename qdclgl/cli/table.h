// The one writer of everything that comes as rows: an aligned table, CSV or JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

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

class TableWriter {
 public:
  TableWriter(std::ostream& out, Format format, std::vector<std::string> headings);

  // In a plain table all columns from this one on stand to the right, as numbers do by themselves.
  void AlignRight(std::size_t from);
  // In a plain table columns that no row fills are left out.
  void LeaveOutEmpty() { leaves_out_empty_ = true; }
  void Row(const std::vector<Variant>& cells);
  // What stands behind the last row. A plain table, which must know its widest cells, is written
  // here as a whole.
  void Finish();

 private:
  using Line = std::vector<std::string>;

  void RemoveEmptyColumns();
  void WritePlain(const Line& line, const std::vector<std::size_t>& widths);
  void WriteCsv(const Line& cells);

  std::ostream& out_;
  Format format_;
  Line headings_;
  // Of a plain table: its rows, and which columns hold numbers and so stand to the right.
  std::vector<Line> lines_;
  std::vector<bool> is_number_;
  bool leaves_out_empty_ = false;
  bool is_first_ = true;
};

// The rows of a recordset. A plain table shows `plain_columns` of them, the other forms all.
void WriteRecordset(std::ostream& out, Format format, const Ref<Recordset>& rows,
                    std::span<const std::string_view> plain_columns);

}  // namespace qdclgl::cli
