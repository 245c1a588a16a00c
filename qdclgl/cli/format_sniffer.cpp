#include "qdclgl/cli/format_sniffer.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/console.h"
#include "qdclgl/cli/csv_reader.h"
#include "qdclgl/cli/foreign_rows.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/path_text.h"

namespace qdclgl::cli {

namespace {

constexpr std::size_t kHead = 1 << 16;

// Headings that other programs give to what a journal needs.
struct KnownHeading {
  std::string_view heading;
  const char* column;
};
constexpr KnownHeading kKnownHeadings[] = {
    {"Date", "date"},
    {"Posting date", "date"},
    {"Datum", "date"},
    {"Buchungsdatum", "date"},
    {"Belegdatum", "date"},
    {"Voucher", "voucher"},
    {"Journal", "voucher"},
    {"Beleg", "voucher"},
    {"Belegnummer", "voucher"},
    {"Account", "account"},
    {"Account number", "account"},
    {"Konto", "account"},
    {"Kontonummer", "account"},
    {"Compte", "account"},
    {"Debit", "debit"},
    {"Soll", "debit"},
    {"Credit", "credit"},
    {"Haben", "credit"},
    {"Amount", format_place::kAmount},
    {"Betrag", format_place::kAmount},
    {"Montant", format_place::kAmount},
    {"Debit account", format_place::kDebitAccount},
    {"Sollkonto", format_place::kDebitAccount},
    {"Credit account", format_place::kCreditAccount},
    {"Habenkonto", format_place::kCreditAccount},
    {"Description", "explanation"},
    {"Memo", "explanation"},
    {"Text", "explanation"},
    {"Buchungstext", "explanation"},
    {"Currency", "currency"},
    {"Reference", "reference"},
};

std::string HeadOf(const std::string& path) {
  std::ifstream file(server::PathOf(path), std::ios::binary);
  if (!file) throw FileError(path + " can't be read");
  std::string head(kHead, '\0');
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(file.gcount()));
  // A row that is cut off tells nothing.
  if (head.size() == kHead) head.resize(head.find_last_of("\r\n") + 1);
  return head;
}

char SeparatorOf(const std::string& head) {
  std::map<char, int> counts = {{',', 0}};
  bool is_quoted = false;
  for (const char c : head) {
    if (c == '"') is_quoted = !is_quoted;
    if (is_quoted) continue;
    if (c == '\n' || c == '\r') break;
    if (c == ',' || c == ';' || c == '\t' || c == '|') ++counts[c];
  }
  return std::ranges::max_element(counts, {}, [](const auto& one) { return one.second; })->first;
}

struct Head {
  std::vector<std::string> headings;
  std::vector<CsvRow> rows;

  Head(const std::string& text, char separator) {
    std::istringstream in(text);
    CsvReader reader(in, separator);
    CsvRow row;
    if (reader.Next(row)) {
      for (const CsvCell& cell : row.cells) headings.push_back(cell.text);
    }
    while (reader.Next(row)) {
      if (!row.problem && row.cells.size() == headings.size()) rows.push_back(row);
    }
  }

  // What stands under the headings of these columns.
  std::vector<std::string> Texts(const FileFormat& format,
                                 std::initializer_list<const char*> columns) const {
    std::vector<std::string> texts;
    for (const char* column : columns) {
      const auto told = format.columns.find(column);
      if (told == format.columns.end()) continue;
      for (std::size_t i = 0; i < headings.size(); ++i) {
        if (!EqualsIgnoringAsciiCase(headings[i], told->second)) continue;
        for (const CsvRow& row : rows) {
          if (!row.cells[i].text.empty()) texts.push_back(row.cells[i].text);
        }
      }
    }
    return texts;
  }
};

// The mark that more of the amounts have; what the others are is told where they stand.
char DecimalOf(const std::vector<std::string>& amounts) {
  const auto fitting = [&](char mark) {
    return std::ranges::count_if(
        amounts, [&](const std::string& text) { return TranslatedAmount(text, mark).has_value(); });
  };
  return fitting(',') > fitting('.') ? ',' : '.';
}

// The form that most of the dates have, likewise.
DateForm DatesOf(const std::string& path, const std::vector<std::string>& dates) {
  std::vector<std::string> best = {"yyyy-mm-dd"};
  std::ptrdiff_t most = 0;
  for (const std::string_view form : DateForm::kTexts) {
    const std::ptrdiff_t count = std::ranges::count_if(dates, [&](const std::string& date) {
      return DateForm{std::string(form)}.Translated(date).has_value();
    });
    if (count > most) best.clear();
    if (count > most || (count == most && most > 0)) best.emplace_back(form);
    most = std::max(most, count);
  }
  if (best.size() > 1) {
    throw UsageError(path + ": dates such as " + Quoted(dates.front()) +
                     " can be read in two ways; keep a format with dates=" + best[0] +
                     " or dates=" + best[1]);
  }
  return {best.front()};
}

void TakeKnownColumns(const Head& head, FileFormat& format) {
  for (const KnownHeading& known : kKnownHeadings) {
    for (const std::string& heading : head.headings) {
      if (EqualsIgnoringAsciiCase(heading, known.heading)) {
        format.columns.try_emplace(known.column, heading);
      }
    }
  }
}

}  // namespace

FileFormat Completed(const std::string& path, const FileFormat& format) {
  FileFormat completed = format;
  const std::string text = HeadOf(path);
  if (!completed.separator) completed.separator = SeparatorOf(text);
  const Head head(text, *completed.separator);
  if (completed.columns.empty()) TakeKnownColumns(head, completed);
  if (!completed.decimal) {
    completed.decimal =
        DecimalOf(head.Texts(completed, {"debit", "credit", format_place::kAmount, "amount_for"}));
  }
  if (!completed.dates) completed.dates = DatesOf(path, head.Texts(completed, {"date"}));
  return completed;
}

std::string Described(const FileFormat& format) {
  return "columns separated by " + SeparatorName(*format.separator) + ", decimals behind " +
         (*format.decimal == ',' ? "a comma" : "a point") + ", dates " + format.dates->text;
}

}  // namespace qdclgl::cli
