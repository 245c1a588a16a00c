#include "qdclgl/cli/voucher_editor.h"

#include <algorithm>
#include <sstream>

#include "qdclgl/cli/edited_text.h"
#include "qdclgl/cli/journal.h"
#include "qdclgl/cli/journal_writer.h"
#include "qdclgl/cli/voucher_filler.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kHelp =
    "# Lines that begin with # are not read. All other columns and rows may be changed, rows may "
    "be\n"
    "# added and removed, and so may columns: qdclgl's documentation of the import has them all.\n"
    "# The rows of the voucher share what stands under voucher; its number stays as it is, or is "
    "the\n"
    "# next one where there is none. An unchanged text saves nothing.\n";

// The rows of a journal without the columns that no row fills, but for the usual ones.
std::string WithoutEmptyColumns(const std::string& csv) {
  constexpr std::size_t kStay = 8;  // up to the explanation
  // Without them the voucher would take its key and its first line's explanation.
  constexpr std::string_view kStayToo[] = {"voucher_reference", "voucher_explanation"};
  std::istringstream in(csv);
  CsvReader reader(in);
  std::vector<std::vector<std::string>> rows;
  for (CsvRow row; reader.Next(row);) {
    std::vector<std::string>& cells = rows.emplace_back();
    for (const CsvCell& cell : row.cells) cells.push_back(cell.text);
  }
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < rows.front().size(); ++i) {
    bool is_filled = i < kStay || std::ranges::count(kStayToo, rows.front()[i]) != 0;
    for (std::size_t row = 1; row < rows.size(); ++row) is_filled |= !rows[row][i].empty();
    if (is_filled) places.push_back(i);
  }
  std::vector<std::string> headings;
  for (const std::size_t place : places) headings.push_back(rows.front()[place]);
  std::ostringstream out;
  const Console console{out, out};
  TableWriter table(console, Format::kCsv, headings);
  for (std::size_t row = 1; row < rows.size(); ++row) {
    std::vector<Variant> cells;
    for (const std::size_t place : places) cells.emplace_back(rows[row][place]);
    table.Row(cells);
  }
  return out.str();
}

// Puts what the file says into the voucher and saves it. What is wrong comes back; nothing once it
// is saved.
std::vector<Report> Save(const std::string& file, Voucher& voucher, const Console& console) {
  Progress progress(console);
  const ItemColumns items;
  CollectedReports reports(file, console, progress);
  JournalReader reader(file, items.columns(), reports);
  Names names(NewCurrencies::kReport);
  names.Refresh();
  JournalVoucher read, more;
  const Position top;
  if (!reader.IsUsable()) return reports.all();
  if (!reader.Next(read)) return {{top, "there is no row"}};
  if (reader.Next(more)) reports.Add(more.at, "this is the row of another voucher");
  if (!reports.IsEmpty()) return reports.all();
  try {
    voucher.Entries()->Count(0);
    if (!VoucherFiller(names, items, reports).Fill(voucher, read)) return reports.all();
    voucher.SaveChanges();
    return {};
  } catch (const Error& error) {
    if (!IsAboutRecord(error) || error.number() == server::refusal::kChanged) throw;
    return {{read.at, ErrorText(error)}};
  }
}

}  // namespace

std::string EditableText(const Dictionary& voucher) {
  std::ostringstream csv;
  JournalWriter writer(csv, JournalWidth::kWhole, {});
  writer.Write(voucher);
  if (!writer.left_out().empty()) {
    throw Error(error_number::kInvalidCall, "qdclgl",
                "Voucher " + VoucherName(voucher) +
                    " has what a text can't hold: " + writer.left_out().begin()->first + ".");
  }
  return "# Voucher " + OneLine(VoucherName(voucher)) + "\n" + kHelp +
         WithoutEmptyColumns(csv.str());
}

std::string EmptyText(DateTime day, const std::string& group) {
  std::ostringstream csv;
  const Console console{csv, csv};
  TableWriter table(console, Format::kCsv,
                    {"voucher", "date", "account", "debit", "credit", "group", "explanation",
                     "voucher_reference"});
  for (int line = 0; line < 2; ++line) table.Row({"new", day, "", "", "", group, "", ""});
  return "# A new voucher\n" + std::string(kHelp) + csv.str();
}

EditOutcome EditVoucher(Voucher& voucher, const std::string& text, const Console& console) {
  EditedText edited(text);
  const auto give_up = [&](const std::string& reason) {
    console.err << "qdclgl: " << reason << "; the text is kept in " << edited.Keep() << '\n';
    return EditOutcome::kGivenUp;
  };
  bool is_refused = false;
  try {
    while (edited.Edit()) {
      const std::vector<Report> reports = Save(edited.FileToRead(), voucher, console);
      if (reports.empty()) return EditOutcome::kSaved;
      is_refused = true;
      edited.Show(reports);
    }
  } catch (const Error& error) {
    return give_up(ErrorText(error));
  } catch (const std::runtime_error& error) {
    return give_up(error.what());
  }
  return is_refused ? give_up("the voucher is not saved") : EditOutcome::kUnchanged;
}

}  // namespace qdclgl::cli
