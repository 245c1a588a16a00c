#include "qdclgl/cli/journal.h"

#include <array>

#include "qdclgl/cli/cell_values.h"

namespace qdclgl::cli {

namespace {

enum Column : std::size_t {
  kVoucher,
  kDate,
  kAccount,
  kDebit,
  kCredit,
  kGroup,
  kNumber,
  kExplanation,
  kCurrency,
  kAmountFor,
  kRate,
  kQuantity,
  kUnit,
  kUnitPrice,
  kReference,
  kFirstItem,
};

constexpr std::array kColumns = {
    SheetColumn{"voucher", true}, SheetColumn{"date", true},   SheetColumn{"account", true},
    SheetColumn{"debit", true},   SheetColumn{"credit", true}, SheetColumn{"group"},
    SheetColumn{"number"},        SheetColumn{"explanation"},  SheetColumn{"currency"},
    SheetColumn{"amount_for"},    SheetColumn{"rate"},         SheetColumn{"quantity"},
    SheetColumn{"unit"},          SheetColumn{"unit_price"},   SheetColumn{"reference"},
};

// What the rows of a voucher agree in.
constexpr Column kShared[] = {kDate, kGroup, kNumber};

std::vector<SheetColumn> ColumnsWith(std::span<const SheetColumn> item_columns) {
  std::vector<SheetColumn> columns(kColumns.begin(), kColumns.end());
  columns.insert(columns.end(), item_columns.begin(), item_columns.end());
  return columns;
}

}  // namespace

JournalReader::JournalReader(const std::string& path, std::span<const SheetColumn> item_columns,
                             Reports& reports)
    : reports_(reports),
      class_count_(item_columns.size()),
      sheet_(path, ColumnsWith(item_columns), reports) {}

bool JournalReader::Next(JournalVoucher& voucher) {
  voucher = {};
  bool is_begun = false;
  for (;;) {
    if (is_row_used_) {
      has_row_ = sheet_.Next(row_);
      is_row_used_ = false;
    }
    if (!has_row_) return is_begun;
    const CsvCell* key = KeyCell();
    if (key == nullptr) {
      if (is_begun) voucher.is_whole = false;
      reports_.Add(row_.problem ? row_.problem->at : row_.at,
                   (row_.problem ? row_.problem->reason : "the row names no voucher") +
                       "; the vouchers before and behind it are left out");
      spoils_next_ = true;
    } else if (!is_begun) {
      BeginVoucher(voucher, *key);
      is_begun = true;
      AddRow(voucher);
    } else if (key->text == voucher.key) {
      spoils_next_ = false;
      AddRow(voucher);
    } else {
      return true;
    }
    is_row_used_ = true;
  }
}

const CsvCell* JournalReader::KeyCell() const {
  const CsvCell* key = sheet_.Cell(row_, kVoucher);
  return key != nullptr && !key->text.empty() ? key : nullptr;
}

void JournalReader::BeginVoucher(JournalVoucher& voucher, const CsvCell& key) {
  voucher.key = key.text;
  voucher.at = row_.at;
  voucher.is_whole = !spoils_next_;
  spoils_next_ = false;
  shared_.clear();
  if (!keys_.insert(key.text).second) {
    Report(voucher, key.at,
           "voucher " + Quoted(key.text) +
               " stands further up already; the rows of a voucher stand together");
  }
  if (row_.problem) return;
  for (const Column column : kShared) shared_.push_back(TextOf(column));
  voucher.date = Value(voucher, kDate, ReadDate, DateTime());
  if (TextOf(kDate).empty()) Report(voucher, CellOf(kDate).at, "the row has no date");
  voucher.group = TextOf(kGroup);
  voucher.number = Value(voucher, kNumber, ReadWhole, Long{0});
}

void JournalReader::AddRow(JournalVoucher& voucher) {
  if (row_.problem) return Report(voucher, row_.problem->at, row_.problem->reason);
  for (std::size_t i = 0; i < shared_.size(); ++i) {
    const CsvCell& cell = CellOf(kShared[i]);
    if (cell.text != shared_[i]) {
      Report(voucher, cell.at,
             Quoted(cell.text) + " differs from " + Quoted(shared_[i]) +
                 " in the first row of voucher " + Quoted(voucher.key));
    }
  }
  AddLine(voucher);
}

void JournalReader::AddLine(JournalVoucher& voucher) {
  JournalLine line;
  line.account = CellOf(kAccount);
  if (line.account.text.empty()) Report(voucher, line.account.at, "the row has no account");

  const CsvCell& debit_cell = CellOf(kDebit);
  const CsvCell& credit_cell = CellOf(kCredit);
  const Currency debit = Value(voucher, kDebit, ReadAmount, Currency());
  const Currency credit = Value(voucher, kCredit, ReadAmount, Currency());
  // A 0 beside an amount stands for an empty cell, as many programs write it.
  const bool has_debit =
      !debit_cell.text.empty() && (debit != Currency() || credit_cell.text.empty());
  const bool has_credit =
      !credit_cell.text.empty() && (credit != Currency() || debit_cell.text.empty());
  if (has_debit && has_credit) {
    Report(voucher, credit_cell.at, "the row has both a debit and a credit");
  } else if (!has_debit && !has_credit) {
    Report(voucher, debit_cell.at, "the row has neither a debit nor a credit");
  }
  line.is_debit = has_debit;
  line.amount = has_debit ? debit : credit;

  line.currency = CellOf(kCurrency);
  line.amount_for_cell = CellOf(kAmountFor);
  line.amount_for = Value(voucher, kAmountFor, ReadAmount, Currency());
  line.rate = Value(voucher, kRate, ReadRate, Double{0});
  line.quantity = Value(voucher, kQuantity, ReadQuantity, Double{0});
  line.unit = TextOf(kUnit);
  line.unit_price = Value(voucher, kUnitPrice, ReadPrice, Double{0});
  line.explanation = TextOf(kExplanation);
  line.reference = TextOf(kReference);
  for (std::size_t i = 0; i < class_count_; ++i) line.items.push_back(CellOf(kFirstItem + i));
  voucher.lines.push_back(std::move(line));
}

void JournalReader::Report(JournalVoucher& voucher, Position at, const std::string& reason) {
  voucher.is_whole = false;
  reports_.Add(at, reason);
}

template <class T>
T JournalReader::Value(JournalVoucher& voucher, std::size_t column, T (*read)(std::string_view),
                       T fallback) {
  const CsvCell& cell = CellOf(column);
  if (cell.text.empty()) return fallback;
  try {
    return read(cell.text);
  } catch (const BadCell& bad) {
    Report(voucher, cell.at, bad.what());
    return fallback;
  }
}

const CsvCell& JournalReader::CellOf(std::size_t column) const {
  static const CsvCell kNone;
  const CsvCell* cell = sheet_.Cell(row_, column);
  return cell != nullptr ? *cell : kNone;
}

}  // namespace qdclgl::cli
