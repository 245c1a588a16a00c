// Files each row of which is stored by itself: what is wrong is reported where it stands, and the
// others are stored.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "qdclgl/cli/sheet.h"

namespace qdclgl::cli {

// The cells of a row, which remember the last one that was read: what is wrong stands there.
class RowCells {
 public:
  RowCells(const Sheet& sheet, const CsvRow& row) : sheet_(sheet), row_(row), at_(row.at) {}

  // "" where there is none.
  const std::string& Text(std::size_t column);
  Position at() const { return at_; }
  // What is wrong from here on is the row's as a whole.
  void Leave() { at_ = row_.at; }

 private:
  const Sheet& sheet_;
  const CsvRow& row_;
  Position at_;
};

// Stores the rows of a file, in one batch; `store` raises BadCell for a value and Error for a
// record that can't be. Tells how many `things` are stored and left out.
int ImportSheet(const std::string& file, std::span<const SheetColumn> columns, const char* things,
                const std::string& props, const Console& console,
                const std::function<void(RowCells& cells)>& store);

}  // namespace qdclgl::cli
