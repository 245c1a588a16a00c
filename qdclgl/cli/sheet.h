// A CSV file whose columns are known by their headings, in whatever order they stand.
#pragma once

#include <fstream>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "qdclgl/cli/file_format.h"
#include "qdclgl/cli/progress.h"
#include "qdclgl/cli/row_source.h"
#include "qdclgl/cli/sheet_column.h"

namespace qdclgl::cli {

class Sheet {
 public:
  // FileError when the file can't be read. Unknown, missing and repeated headings are reported.
  // `format` is that of a file of another program (format_sniffer.h).
  Sheet(const std::string& path, std::span<const SheetColumn> columns, Reports& reports,
        const NamedFormat* format = nullptr);

  // False when the headings make the file useless.
  bool IsUsable() const { return is_usable_; }

  // The next row; one with another number of cells than there are headings has that as its problem,
  // and its first cell only. False behind the last row.
  bool Next(CsvRow& row);

  // The cell of a column, null when the row or the whole file has none.
  const CsvCell* Cell(const CsvRow& row, std::size_t column) const;

  // How much of the file is read, 0 to 1.
  double Share() const;

 private:
  void ReadHeadings(std::span<const SheetColumn> columns, Reports& reports);

  std::string path_;
  std::ifstream file_;
  double size_ = 0;
  std::unique_ptr<RowSource> rows_;
  std::size_t width_ = 0;
  std::vector<std::optional<std::size_t>> places_;  // by column
  bool is_usable_ = true;
};

}  // namespace qdclgl::cli
