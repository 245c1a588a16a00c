// Rows of a CSV file, one after the other, each cell with its place in the file.
//
// Rows end with LF, CRLF or CR; a byte-order mark and blank lines are skipped; blanks around a cell
// without quotes don't count. A row that can't be read, or that no spreadsheet would have (zero
// bytes, more than 1000 cells), is handed out with its problem, and reading
// goes on with the line behind the one where the troubled cell begins.
#pragma once

#include <csv.h>

#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace qdclgl::cli {

// Line and column from 1; columns count characters.
struct Position {
  long line = 1;
  long column = 1;
};

struct CsvCell {
  std::string text;
  Position at;
};

struct CsvRow {
  Position at;
  std::vector<CsvCell> cells;  // with bad quoting those before the bad place

  struct Problem {
    Position at;
    std::string reason;
  };
  std::optional<Problem> problem;
};

class CsvReader {
 public:
  explicit CsvReader(std::istream& in, char separator = ',');
  ~CsvReader();
  CsvReader(const CsvReader&) = delete;
  CsvReader& operator=(const CsvReader&) = delete;

  // False behind the last row.
  bool Next(CsvRow& row);

  // How much of the file was read.
  long long bytes() const { return bytes_; }

 private:
  // More of the file behind what is in the buffer; false at its end.
  bool ReadMore();
  void StartParser();
  // The place behind the character at next_ + count - 1.
  void Advance(std::size_t count);
  void Begin(std::size_t offset);
  void TakeCell(std::string_view text);
  // Ends the row with a problem, a quote that is still open or one that stands where none may, and
  // moves behind the line where the cell begins.
  void GiveUp(CsvRow& row, bool is_open);

  std::istream& in_;
  char separator_;
  csv_parser parser_;
  std::string buffer_;
  std::size_t next_ = 0;  // what the parser takes next
  Position position_;     // its place
  bool behind_cr_ = false;
  long long bytes_ = 0;

  CsvRow* row_ = nullptr;  // the row under way
  bool row_ended_ = false;
  std::size_t cell_count_ = 0;   // of the row, with those that it is too long for
  std::size_t cell_offset_ = 0;  // where the cell under way begins
  Position cell_at_;
};

}  // namespace qdclgl::cli
