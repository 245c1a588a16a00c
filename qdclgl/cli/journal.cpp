#include "qdclgl/cli/journal.h"

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/journal_columns.h"
#include "qdclgl/cli/record_kinds.h"

namespace qdclgl::cli {

using namespace journal_column;

namespace {

// What the rows of a voucher agree in.
constexpr std::size_t kShared[] = {kDate, kGroup, kNumber, kVoucherReference, kVoucherExplanation};

std::vector<SheetColumn> ColumnsWith(std::span<const SheetColumn> item_columns) {
  std::vector<SheetColumn> columns(kJournalColumns.begin(), kJournalColumns.end());
  for (const FurtherColumn& further : kFurtherColumns)
    columns.push_back({.heading = further.column.name, .is_rare = true});
  columns.insert(columns.end(), item_columns.begin(), item_columns.end());
  return columns;
}

}  // namespace

JournalReader::JournalReader(const std::string& path, std::span<const SheetColumn> item_columns,
                             Reports& reports, const NamedFormat* format)
    : reports_(reports),
      class_count_(item_columns.size()),
      sheet_(path, ColumnsWith(item_columns), reports, format) {}

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
  for (const std::size_t column : kShared) shared_.push_back(TextOf(column));
  voucher.date = Value(voucher, kDate, ReadDate, DateTime());
  if (TextOf(kDate).empty()) Report(voucher, CellOf(kDate).at, "the row has no date");
  voucher.group = TextOf(kGroup);
  voucher.number = Value(voucher, kNumber, ReadWhole, Long{0});
  voucher.reference = TextIfThere(kVoucherReference);
  voucher.explanation = TextIfThere(kVoucherExplanation);
  voucher.further = FurtherOf(voucher, false);
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
  if (TextOf(kRate) == kNoRate) line.rate = 0;
  else if (!TextOf(kRate).empty()) line.rate = Value(voucher, kRate, ReadRate, Double{0});
  line.quantity = Value(voucher, kQuantity, ReadQuantity, Double{0});
  line.unit = TextOf(kUnit);
  line.unit_price = Value(voucher, kUnitPrice, ReadPrice, Double{0});
  line.explanation = TextOf(kExplanation);
  line.reference = TextOf(kReference);
  line.settlement = CellOf(kSettlement);
  line.further = FurtherOf(voucher, true);
  for (std::size_t i = 0; i < class_count_; ++i) line.items.push_back(CellOf(kFirstItemColumn + i));
  voucher.lines.push_back(std::move(line));
}

std::optional<std::string> JournalReader::TextIfThere(std::size_t column) const {
  const CsvCell* cell = sheet_.Cell(row_, column);
  return cell != nullptr ? std::optional(cell->text) : std::nullopt;
}

Further JournalReader::FurtherOf(JournalVoucher& voucher, bool is_of_line) {
  Further further;
  for (std::size_t i = 0; i < std::size(kFurtherColumns); ++i) {
    const auto& [column, is_lines] = kFurtherColumns[i];
    const CsvCell& cell = CellOf(kFirstFurther + i);
    if (is_lines != is_of_line || cell.text.empty()) continue;
    try {
      further.emplace_back(column.name, ReadTyped(column.type, cell.text));
    } catch (const BadCell& bad) {
      Report(voucher, cell.at, bad.what());
    }
  }
  return further;
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
