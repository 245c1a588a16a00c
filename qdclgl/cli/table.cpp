#include "qdclgl/cli/table.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/headings.h"
#include "qdclgl/cli/text_width.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/conversions.h"

namespace qdclgl::cli {

namespace {

bool IsNumber(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kByte:
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kSingle:
    case VariantType::kDouble:
    case VariantType::kCurrency:
    case VariantType::kDecimal: return true;
    default: return false;
  }
}

constexpr std::size_t kGap = 2;  // blanks between columns

// An amount without its sign; the least one has none, and gets the one beside it.
Currency SizeOf(Currency amount) {
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  return Currency::FromUnits(std::abs(std::max(amount.units(), kLeast + 1)));
}

// A bar of at most `width` columns, in eighths of one. A negative amount is hatched, so that it is
// told without colours too.
std::string BarText(Currency amount, Currency longest, std::size_t width) {
  if (longest == Currency()) return "";
  const double share =
      static_cast<double>(SizeOf(amount).units()) / static_cast<double>(longest.units());
  const auto eighths =
      static_cast<std::size_t>(std::lround(share * 8 * static_cast<double>(width)));
  static constexpr const char* kParts[] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
  const bool is_negative = amount < Currency();
  std::string bar;
  for (std::size_t i = 0; i < eighths / 8; ++i) bar += is_negative ? "▒" : "█";
  return bar + (is_negative && eighths > 0 && eighths < 8 ? "▒"
                : is_negative                             ? ""
                                                          : kParts[eighths % 8]);
}

}  // namespace

std::string CellText(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kCurrency: return AmountText(value.Held<Currency>());
    case VariantType::kBoolean: return value.Held<Boolean>() ? "true" : "false";
    // Day 0 is the books' word for no date.
    case VariantType::kDate:
      return value.Held<DateTime>() == DateTime() ? "" : value.Held<DateTime>().ToText();
    case VariantType::kEmpty:
    case VariantType::kNull:
    case VariantType::kMissing: return "";
    case VariantType::kObject: return "";
    default: return CStr(value);
  }
}

nlohmann::ordered_json ToJson(const Variant& value) {
  using Json = nlohmann::ordered_json;
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
    case VariantType::kMissing: return nullptr;
    case VariantType::kBoolean: return value.Held<Boolean>();
    case VariantType::kByte:
    case VariantType::kInteger:
    case VariantType::kLong: return CLng(value);
    case VariantType::kSingle:
    case VariantType::kDouble: return CDbl(value);
    case VariantType::kObject: {
      const Object* object = value.ObjectPointer();
      if (object == nullptr) return nullptr;
      if (object->container() == Object::Container::kDictionary) {
        const auto row = value.As<Dictionary>();
        Json json = Json::object();
        for (std::uint32_t i = 0; i < row->size(); ++i) {
          json[row->key_at(i)] = ToJson(row->value_at(i));
        }
        return json;
      }
      if (object->container() == Object::Container::kVector) {
        const auto list = value.As<Vector>();
        Json json = Json::array();
        for (std::size_t i = 0; i < list->size(); ++i) json.push_back(ToJson(list->at(i)));
        return json;
      }
      return nullptr;
    }
    default: return CellText(value);
  }
}

namespace {

std::string Dump(const nlohmann::ordered_json& json, int indent = -1) {
  return json.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

std::string JsonText(const Variant& value, int indent) { return Dump(ToJson(value), indent); }

TableWriter::TableWriter(const Console& console, Format format, std::vector<std::string> keys)
    : console_(console), format_(format), columns_(keys.size()), bars_(keys.size()) {
  const std::vector<std::string> headings =
      console.look.shows_keys || format != Format::kPlain ? keys : HeadingsOf(keys);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    columns_[i].heading = OneLine(headings[i]);
    columns_[i].currency = IsInRowsCurrency(keys[i]) ? 0 : kBaseCurrencyID;
    columns_[i].key = keys[i];
  }
  if (format_ == Format::kCsv) WriteCsv(keys);
}

void TableWriter::AlignRight(std::size_t from) {
  for (std::size_t i = from; i < columns_.size(); ++i) columns_[i].is_number = true;
}

void TableWriter::InCurrency(std::size_t column, Long currency) {
  columns_[column].currency = currency;
}

void TableWriter::Bars(std::string_view key) {
  bars_ =
      static_cast<std::size_t>(std::ranges::find(columns_, key, &Column::key) - columns_.begin());
}

void TableWriter::IfEmpty(std::string sentence) { if_empty_ = std::move(sentence); }

void TableWriter::Row(const std::vector<Variant>& cells, Long currency) {
  if (format_ == Format::kJson) return WriteJson(cells);
  if (format_ == Format::kPlain) return AddPlain(cells, currency, false);
  std::vector<std::string> texts;
  std::ranges::transform(cells, std::back_inserter(texts), CellText);
  WriteCsv(texts);
}

void TableWriter::Total(const std::vector<Variant>& cells, Long currency) {
  if (format_ == Format::kPlain) AddPlain(cells, currency, true);
  else Row(cells, currency);
}

void TableWriter::Finish() {
  if (format_ == Format::kJson) console_.out << (is_first_ ? "[]\n" : "\n]\n");
  if (format_ != Format::kPlain) return;
  if (lines_.empty() && !if_empty_.empty()) console_.out << if_empty_ << '\n';
  else WritePlain();
}

// ---- JSON and CSV ----

void TableWriter::WriteJson(const std::vector<Variant>& cells) {
  nlohmann::ordered_json row;
  for (std::size_t i = 0; i < cells.size(); ++i) row[columns_[i].key] = ToJson(cells[i]);
  console_.out << (is_first_ ? "[\n " : ",\n ") << Dump(row);
  is_first_ = false;
}

void TableWriter::WriteCsv(const std::vector<std::string>& cells) {
  std::string text;
  for (const std::string& cell : cells) {
    if (&cell != &cells.front()) text += ',';
    const bool has_blank_end = !cell.empty() && (cell.front() == ' ' || cell.back() == ' ');
    if (cell.find_first_of(",\"\r\n\t") == cell.npos && !has_blank_end) {
      text += cell;
      continue;
    }
    text += '"';
    for (const char c : cell) text.append(c == '"' ? 2 : 1, c);
    text += '"';
  }
  console_.out << text << '\n';
}

// ---- Plain tables ----

namespace {

// The side of an account's balance.
const char* SideText(Long side) { return side > 0 ? "debit" : side < 0 ? "credit" : "either"; }

}  // namespace

TableWriter::Cell TableWriter::PlainCell(const Variant& value, const Column& column,
                                         Long currency) const {
  if (value.Type() == VariantType::kBoolean) return {value.Held<Boolean>() ? "yes" : "no"};
  if (column.key == "FDC" && IsNumber(value)) return {SideText(CLng(value))};
  if (value.Type() != VariantType::kCurrency) return {OneLine(CellText(value))};
  const auto amount = value.Held<Currency>();
  if (amount == Currency() && IsSideOfAccount(column.key)) return {};
  const Look& look = console_.look;
  const int decimals = look.DecimalsOf(column.currency != 0 ? column.currency : currency);
  return {MoneyText(amount, decimals, look.negatives), amount < Currency()};
}

void TableWriter::AddPlain(const std::vector<Variant>& cells, Long currency, bool is_total) {
  Line line{{}, is_total, {}};
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (IsNumber(cells[i]) && columns_[i].key != "FDC") columns_[i].is_number = true;
    line.cells.push_back(PlainCell(cells[i], columns_[i], currency));
  }
  if (bars_ < cells.size() && !is_total) line.bar = cells[bars_].As<Currency>();
  lines_.push_back(std::move(line));
}

std::size_t TableWriter::WidthOfTable() const {
  std::size_t width = kGap * (columns_.size() - 1);
  for (const Column& column : columns_) width += column.width;
  return width;
}

void TableWriter::Fit() {
  constexpr std::size_t kNarrowest = 6;
  const auto cuttable = [](const Column& column) {
    return column.is_number || column.width <= kNarrowest ? 0 : column.width;
  };
  for (std::size_t width = WidthOfTable(); width > console_.look.width; --width) {
    const auto widest = std::ranges::max_element(columns_, {}, cuttable);
    if (cuttable(*widest) == 0) return;
    --widest->width;
  }
}

std::size_t TableWriter::WidthForBars() const {
  constexpr std::size_t kLeast = 8, kMost = 30;
  const Look& look = console_.look;
  if (!look.has_unicode || bars_ == columns_.size()) return 0;
  const std::size_t taken = WidthOfTable() + kGap;
  return look.width < taken + kLeast ? 0 : std::min(look.width - taken, kMost);
}

void TableWriter::WritePlain() {
  Line headings;
  for (Column& column : columns_) {
    headings.cells.push_back({column.heading});
    column.width = WidthOf(column.heading);
  }
  headings.is_total = true;  // they are as bold
  Currency longest;
  for (const Line& line : lines_) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      columns_[i].width = std::max(columns_[i].width, WidthOf(line.cells[i].text));
    }
    longest = std::max(longest, SizeOf(line.bar));
  }
  if (console_.look.IsTerminal()) Fit();
  const std::size_t bars = WidthForBars();
  WriteLine(headings, bars, longest);
  for (const Line& line : lines_) WriteLine(line, bars, longest);
}

void TableWriter::WriteLine(const Line& line, std::size_t bars, Currency longest) {
  const Look& look = console_.look;
  std::string text;
  std::size_t blanks = 0;  // that stand before the next text, if there is one
  const auto put = [&](const std::string& cell, bool is_bold, bool is_red) {
    if (cell.empty()) return;
    text.append(std::exchange(blanks, 0), ' ');
    const bool is_marked = look.has_colour && (is_bold || is_red);
    if (is_marked) text += is_bold ? (is_red ? "\033[1;31m" : "\033[1m") : "\033[31m";
    text += cell;
    if (is_marked) text += "\033[0m";
  };
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const Column& column = columns_[i];
    const Cell& cell = line.cells[i];
    const std::string shown = CutTo(cell.text, column.width, look.has_unicode ? "…" : "...");
    const std::size_t left = column.width - WidthOf(shown);
    if (i > 0) blanks += kGap;
    if (column.is_number) blanks += left;
    put(shown, line.is_total, cell.is_negative);
    if (!column.is_number) blanks += left;
  }
  blanks += kGap;
  if (bars > 0) put(BarText(line.bar, longest, bars), false, line.bar < Currency());
  text.erase(text.find_last_not_of(' ') + 1);
  console_.out << text << '\n';
}

void WriteRecordset(const Console& console, Format format, const Ref<Recordset>& rows,
                    std::span<const std::string_view> plain_columns, const std::string& if_empty) {
  std::vector<std::string> keys;
  std::vector<Long> positions;
  Long currency_at = -1;
  for (Long i = 0; i < rows->FieldCount(); ++i) {
    if (format != Format::kPlain) positions.push_back(i);
    if (rows->FieldName(i) == "FCurrencyID") currency_at = i;
  }
  if (format == Format::kPlain) {
    for (const std::string_view column : plain_columns) {
      positions.push_back(rows->FieldPosition(column));
    }
  }
  for (const Long position : positions) keys.push_back(rows->FieldName(position));

  TableWriter table(console, format, keys);
  table.IfEmpty(if_empty);
  std::vector<Variant> cells(positions.size());
  for (; !rows->Eof(); rows->MoveNext()) {
    std::transform(positions.begin(), positions.end(), cells.begin(),
                   [&](Long position) { return rows->FieldValue(position); });
    const Long currency =
        currency_at < 0 ? kBaseCurrencyID : rows->FieldValue(currency_at).As<Long>();
    table.Row(cells, currency);
  }
  table.Finish();
}

}  // namespace qdclgl::cli
