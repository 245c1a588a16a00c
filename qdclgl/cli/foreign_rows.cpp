#include "qdclgl/cli/foreign_rows.h"

#include <algorithm>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/nearest.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

using namespace format_place;

constexpr const char *kVoucher = "voucher", *kDate = "date", *kAccount = "account",
                     *kDebit = "debit", *kCredit = "credit";
constexpr std::string_view kAmounts[] = {kAmount, kDebit, kCredit, "amount_for"};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The digits in front of the decimal mark without what sets thousands apart; nothing when groups
// are not of three.
std::optional<std::string> WholeDigits(std::string_view text, char decimal) {
  std::string digits;
  std::size_t group = 0;
  bool is_grouped = false;
  for (const char c : text) {
    if (IsDigit(c)) {
      digits += c;
      ++group;
      continue;
    }
    const bool is_mark = c == '\'' || c == ' ' || c == (decimal == ',' ? '.' : ',');
    if (!is_mark || group == 0 || (is_grouped ? group != 3 : group > 3)) return {};
    is_grouped = true;
    group = 0;
  }
  if (digits.empty() || (is_grouped && group != 3)) return {};
  return digits;
}

CsvCell CellWith(std::string text, const CsvCell& place) { return {std::move(text), place.at}; }

}  // namespace

std::optional<std::string> TranslatedAmount(std::string_view text, char decimal) {
  bool is_negative = false;
  if (text.size() > 1 && text.front() == '(' && text.back() == ')') {
    is_negative = true;
    text = text.substr(1, text.size() - 2);
  } else if (text.starts_with('-') || text.starts_with('+')) {
    is_negative = text.front() == '-';
    text.remove_prefix(1);
  } else if (text.ends_with('-') || text.ends_with('+')) {
    is_negative = text.back() == '-';
    text.remove_suffix(1);
  }
  const std::size_t mark = text.find(decimal);
  std::string_view decimals;
  if (mark != text.npos) {
    decimals = text.substr(mark + 1);
    if (decimals.empty() || !std::ranges::all_of(decimals, IsDigit)) return {};
  }
  const std::optional<std::string> whole = WholeDigits(text.substr(0, mark), decimal);
  if (!whole) return {};
  std::string translated = (is_negative ? "-" : "") + *whole;
  if (!decimals.empty()) translated.append(".").append(decimals);
  return translated;
}

ForeignRows::ForeignRows(std::istream& in, std::string name, FileFormat format)
    : reader_(in, *format.separator), name_(std::move(name)), format_(std::move(format)) {
  if (format_.HasVoucherInRow()) {
    columns_ = {kVoucher, kDate, kAccount, kDebit, kCredit};
  } else if (format_.columns.contains(kAmount)) {
    columns_ = {kDebit, kCredit};
  }
  for (const auto& [column, heading] : format_.columns) {
    const bool is_own = column == kAmount || column == kDebitAccount || column == kCreditAccount;
    if (!is_own && std::ranges::find(columns_, column) == columns_.end()) {
      columns_.push_back(column);
    }
  }
}

CsvRow ForeignRows::Headings() {
  CsvRow row;
  if (!reader_.Next(row)) return {};
  if (row.problem) return row;
  width_ = row.cells.size();
  std::vector<std::string_view> headings;
  for (const CsvCell& cell : row.cells) headings.push_back(cell.text);
  CsvRow translated{.at = row.at, .cells = {}, .problem = {}};
  for (const auto& [column, heading] : format_.columns) {
    if (heading.starts_with('=')) continue;
    const auto found =
        std::ranges::find_if(headings, [&, &heading = heading](std::string_view one) {
          return EqualsIgnoringAsciiCase(one, heading);
        });
    if (found == headings.end()) {
      translated.problem = {row.at, NoSuch("column", heading, headings)};
      return translated;
    }
    places_[column] = static_cast<std::size_t>(found - headings.begin());
  }
  for (const std::string& column : columns_) translated.cells.push_back({column, row.at});
  if (!format_.HasVoucherInRow()) return translated;
  for (const char* needed : {kDate, kAmount, kDebitAccount, kCreditAccount}) {
    if (!format_.columns.contains(needed)) {
      translated.problem = {row.at, "the format doesn't tell where " + Quoted(needed) + " stands"};
    }
  }
  return translated;
}

CsvCell ForeignRows::CellOf(const CsvRow& row, const std::string& column,
                            CsvRow& translated) const {
  const auto told = format_.columns.find(column);
  if (told == format_.columns.end()) return {"", row.at};
  if (told->second.starts_with('=')) return {told->second.substr(1), row.at};
  CsvCell cell = row.cells[places_.at(column)];
  const bool is_amount = std::ranges::find(kAmounts, column) != std::end(kAmounts);
  if (cell.text.empty() || (column != kDate && !is_amount)) return cell;
  const std::optional<std::string> ours = is_amount ? TranslatedAmount(cell.text, *format_.decimal)
                                                    : format_.dates->Translated(cell.text);
  if (ours) {
    cell.text = *ours;
  } else if (!translated.problem) {
    translated.problem = {
        cell.at, Quoted(cell.text) +
                     (is_amount ? std::string(" is not an amount; decimals stand behind ") +
                                      (*format_.decimal == ',' ? "a comma" : "a point")
                                : " is not a date; dates are written as " + format_.dates->text)};
  }
  return cell;
}

std::string ForeignRows::KeyOf(const std::string& date) {
  return name_ + " " + date + " " + std::to_string(++vouchers_[date]);
}

void ForeignRows::Translate(const CsvRow& row) {
  CsvRow translated{.at = row.at, .cells = {}, .problem = {}};
  std::map<std::string, CsvCell> cells;
  for (const auto& [column, heading] : format_.columns) {
    cells[column] = CellOf(row, column, translated);
  }
  const auto emit = [&] {
    translated.cells.clear();
    for (const std::string& column : columns_) translated.cells.push_back(cells[column]);
    rows_.push_back(translated);
  };
  if (!format_.columns.contains(kAmount)) return emit();
  const CsvCell amount = cells[kAmount];
  const bool is_negative = amount.text.starts_with('-');
  const CsvCell size = CellWith(amount.text.substr(is_negative ? 1 : 0), amount);
  const CsvCell nothing = CellWith("", amount);
  const auto stand = [&](bool is_debit) {
    cells[kDebit] = is_debit ? size : nothing;
    cells[kCredit] = is_debit ? nothing : size;
    emit();
  };
  if (!format_.HasVoucherInRow()) return stand(!is_negative);
  if (!format_.columns.contains(kVoucher)) {
    cells[kVoucher] = CellWith(KeyOf(cells[kDate].text), cells[kDate]);
  }
  cells[kAccount] = cells[is_negative ? kCreditAccount : kDebitAccount];
  stand(true);
  translated.problem.reset();  // told once
  cells[kAccount] = cells[is_negative ? kDebitAccount : kCreditAccount];
  stand(false);
}

bool ForeignRows::Next(CsvRow& row) {
  if (!is_begun_) {
    is_begun_ = true;
    row = Headings();
    return true;
  }
  if (rows_.empty()) {
    CsvRow foreign;
    if (!reader_.Next(foreign)) return false;
    if (!foreign.problem && foreign.cells.size() != width_) {
      foreign.problem = {foreign.at, "the row has " + std::to_string(foreign.cells.size()) +
                                         " cells under " + std::to_string(width_) + " headings"};
    }
    if (foreign.problem) {
      // Where a row is a voucher, its neighbours have nothing to do with it.
      foreign.cells.clear();
      if (format_.HasVoucherInRow()) foreign.cells.push_back({KeyOf("?"), foreign.at});
      rows_.push_back(std::move(foreign));
    } else {
      Translate(foreign);
    }
  }
  row = std::move(rows_.front());
  rows_.pop_front();
  return true;
}

}  // namespace qdclgl::cli
