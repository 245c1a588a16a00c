// The rows of another program's file as those of a journal.
#pragma once

#include <deque>
#include <istream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "qdclgl/cli/file_format.h"
#include "qdclgl/cli/row_source.h"

namespace qdclgl::cli {

// "-1234.5" for "-1.234,5" with a comma as the decimal mark, nothing for what is no such amount.
// Thousands may be set apart, and a minus stands in front, behind, or as parentheses.
std::optional<std::string> TranslatedAmount(std::string_view text, char decimal);

// Cells keep the places that they have in the file. A row that is a voucher becomes two, under a
// key of the format's name, the day and a number within it, by which the voucher is known again.
class ForeignRows final : public RowSource {
 public:
  // `format` is complete (format_sniffer.h).
  ForeignRows(std::istream& in, std::string name, FileFormat format);

  bool Next(CsvRow& row) override;
  long long bytes() const override { return reader_.bytes(); }

 private:
  CsvRow Headings();
  void Translate(const CsvRow& row);
  // What the row has for a column of the format; amounts and dates in the journal's form.
  CsvCell CellOf(const CsvRow& row, const std::string& column, CsvRow& translated) const;
  std::string KeyOf(const std::string& date);

  CsvReader reader_;
  std::string name_;
  FileFormat format_;
  bool is_begun_ = false;
  std::size_t width_ = 0;
  std::map<std::string, std::size_t> places_;  // of the format's columns in the file
  std::vector<std::string> columns_;           // of the rows that are handed out
  std::deque<CsvRow> rows_;                    // handed out next
  std::map<std::string, long> vouchers_;       // of each day so far
};

}  // namespace qdclgl::cli
