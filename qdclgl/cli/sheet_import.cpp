#include "qdclgl/cli/sheet_import.h"

#include "qdclgl/cli/batch.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/progress.h"

namespace qdclgl::cli {

const std::string& RowCells::Text(std::size_t column) {
  static const std::string kNone;
  const CsvCell* found = sheet_.Cell(row_, column);
  if (found == nullptr) return kNone;
  at_ = found->at;
  return found->text;
}

int ImportSheet(const std::string& file, std::span<const SheetColumn> columns, const char* things,
                const std::string& props, const Console& console,
                const std::function<void(RowCells& cells)>& store) {
  Progress progress(console);
  Reports reports(file, console, progress);
  Sheet sheet(file, columns, reports);
  long stored = 0, left_out = sheet.IsUsable() ? 0 : 1;
  Batch batch(props);
  for (CsvRow row; sheet.IsUsable() && sheet.Next(row);) {
    RowCells cells(sheet, row);
    const auto leave_out = [&](Position at, const std::string& reason) {
      reports.Add(at, reason);
      ++left_out;
    };
    if (row.problem) {
      leave_out(row.problem->at, row.problem->reason);
      continue;
    }
    try {
      store(cells);
      ++stored;
    } catch (const BadCell& bad) {
      leave_out(cells.at(), bad.what());
    } catch (const Error& error) {
      if (!IsAboutRecord(error)) throw;
      leave_out(cells.at(), ErrorText(error));
    }
    progress.Show(things, stored, sheet.Share());
  }
  batch.Commit();
  progress.Clear();
  console.out << things << ": " << stored << " stored, " << left_out << " left out\n";
  return left_out == 0 ? kDone : kLeftOut;
}

}  // namespace qdclgl::cli
