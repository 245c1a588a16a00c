#include "qdclgl/cli/sheet.h"

#include <algorithm>
#include <filesystem>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/foreign_rows.h"
#include "qdclgl/cli/nearest.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/path_text.h"

namespace qdclgl::cli {

namespace {

bool IsCalled(const SheetColumn& column, std::string_view heading) {
  const auto equals = [&](std::string_view name) { return EqualsIgnoringAsciiCase(name, heading); };
  return equals(column.heading) || std::ranges::any_of(column.others, equals);
}

std::ifstream Opened(const std::string& path) {
  std::ifstream file(server::PathOf(path), std::ios::binary);
  if (!file) throw FileError(path + " can't be read");
  return file;
}

// What stands between the headings where it is no comma; "" when there is one heading, or commas.
std::string_view OtherSeparator(const CsvRow& row) {
  if (row.cells.size() != 1) return {};
  const std::string& text = row.cells.front().text;
  if (text.find(';') != text.npos) return "semicolons";
  if (text.find('\t') != text.npos) return "tabs";
  return {};
}

}  // namespace

Sheet::Sheet(const std::string& path, std::span<const SheetColumn> columns, Reports& reports,
             const NamedFormat* format)
    : path_(path), file_(Opened(path)), places_(columns.size()) {
  if (format == nullptr) rows_ = std::make_unique<PlainRows>(file_);
  else rows_ = std::make_unique<ForeignRows>(file_, format->name, format->format);
  std::error_code no_size;  // of a pipe, say; then the share stays unknown
  const auto size = std::filesystem::file_size(server::PathOf(path), no_size);
  if (!no_size) size_ = static_cast<double>(size);
  ReadHeadings(columns, reports);
}

void Sheet::ReadHeadings(std::span<const SheetColumn> columns, Reports& reports) {
  const auto fail = [&](Position at, const std::string& reason) {
    reports.Add(at, reason);
    is_usable_ = false;
  };
  CsvRow row;
  if (!rows_->Next(row)) row.cells.clear();
  if (file_.bad()) throw FileError(path_ + " can't be read");
  if (row.problem) return fail(row.problem->at, row.problem->reason);
  width_ = row.cells.size();
  if (const std::string_view separator = OtherSeparator(row); !separator.empty()) {
    return fail({}, "the columns are separated by " + std::string(separator) +
                        ", where commas are expected");
  }
  std::vector<std::string_view> headings;
  for (const SheetColumn& column : columns) {
    if (!column.is_rare) headings.push_back(column.heading);
  }
  for (std::size_t i = 0; i < width_; ++i) {
    const CsvCell& cell = row.cells[i];
    const auto known = std::find_if(columns.begin(), columns.end(), [&](const SheetColumn& column) {
      return IsCalled(column, cell.text);
    });
    if (known == columns.end()) {
      fail(cell.at, NoSuch("column", cell.text, headings));
      continue;
    }
    auto& place = places_[static_cast<std::size_t>(known - columns.begin())];
    if (place) fail(cell.at, "the column " + Quoted(cell.text) + " stands here a second time");
    place = i;
  }
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].is_needed && !places_[i]) {
      fail({}, "the column " + Quoted(columns[i].heading) + " is missing");
    }
  }
}

bool Sheet::Next(CsvRow& row) {
  const bool is_there = rows_->Next(row);
  if (file_.bad()) throw FileError(path_ + " can't be read to its end");
  if (is_there && !row.problem && row.cells.size() != width_) {
    row.problem = {row.at, "the row has " + std::to_string(row.cells.size()) + " cells under " +
                               std::to_string(width_) + " headings"};
    // Where it is amiss nobody knows; only the first cell stands where it stands in any case.
    row.cells.resize(1);
  }
  return is_there;
}

const CsvCell* Sheet::Cell(const CsvRow& row, std::size_t column) const {
  const auto place = places_[column];
  return place && *place < row.cells.size() ? &row.cells[*place] : nullptr;
}

double Sheet::Share() const { return size_ > 0 ? static_cast<double>(rows_->bytes()) / size_ : 0; }

}  // namespace qdclgl::cli
