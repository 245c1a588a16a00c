#include "qdclgl/cli/table.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/console.h"
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

// The character that begins at `i`, which moves behind it.
char32_t TakeCharacter(std::string_view text, std::size_t& i) {
  const auto first = static_cast<unsigned char>(text[i++]);
  char32_t character = first < 0x80 ? first
                                    : first & (first < 0xE0   ? 0x1F
                                               : first < 0xF0 ? 0x0F
                                                              : 7);
  while (i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80) {
    character = character << 6 | (static_cast<unsigned char>(text[i++]) & 0x3F);
  }
  return character;
}

// The columns of a terminal that a text takes: East Asian characters take two.
std::size_t WidthOf(std::string_view text) {
  struct Range {
    char32_t first, last;
    std::size_t width;
  };
  static constexpr Range kRanges[] = {
      {0x0300, 0x036F, 0},   {0x1100, 0x115F, 2},  {0x2E80, 0xA4CF, 2}, {0xAC00, 0xD7A3, 2},
      {0xF900, 0xFAFF, 2},   {0xFE30, 0xFE6F, 2},  {0xFF00, 0xFF60, 2}, {0xFFE0, 0xFFE6, 2},
      {0x1F300, 0x1FAFF, 2}, {0x20000, 0x3FFFD, 2}};
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size();) {
    const char32_t character = TakeCharacter(text, i);
    const auto range = std::find_if(std::begin(kRanges), std::end(kRanges), [&](const Range& r) {
      return r.first <= character && character <= r.last;
    });
    width += range == std::end(kRanges) ? 1 : range->width;
  }
  return width;
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

TableWriter::TableWriter(std::ostream& out, Format format, std::vector<std::string> headings)
    : out_(out), format_(format), headings_(std::move(headings)), is_number_(headings_.size()) {
  if (format_ == Format::kCsv) WriteCsv(headings_);
}

void TableWriter::AlignRight(std::size_t from) {
  std::fill(is_number_.begin() + static_cast<std::ptrdiff_t>(from), is_number_.end(), true);
}

void TableWriter::Row(const std::vector<Variant>& cells) {
  if (format_ == Format::kJson) {
    nlohmann::ordered_json row;
    for (std::size_t i = 0; i < cells.size(); ++i) row[headings_[i]] = ToJson(cells[i]);
    out_ << (is_first_ ? "[\n " : ",\n ") << Dump(row);
    is_first_ = false;
    return;
  }
  Line line;
  for (const Variant& cell : cells) line.push_back(CellText(cell));
  if (format_ == Format::kCsv) return WriteCsv(line);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    line[i] = OneLine(line[i]);
    if (IsNumber(cells[i])) is_number_[i] = true;
  }
  lines_.push_back(std::move(line));
}

void TableWriter::Finish() {
  if (format_ == Format::kJson) out_ << (is_first_ ? "[]\n" : "\n]\n");
  if (format_ != Format::kPlain) return;
  if (leaves_out_empty_) RemoveEmptyColumns();
  std::vector<std::size_t> widths;
  for (const std::string& heading : headings_) widths.push_back(WidthOf(heading));
  for (const Line& line : lines_) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], WidthOf(line[i]));
    }
  }
  WritePlain(headings_, widths);
  for (const Line& line : lines_) WritePlain(line, widths);
}

void TableWriter::RemoveEmptyColumns() {
  for (std::size_t i = headings_.size(); i-- > 0;) {
    if (!std::ranges::all_of(lines_, [&](const Line& line) { return line[i].empty(); })) continue;
    const auto place = static_cast<std::ptrdiff_t>(i);
    headings_.erase(headings_.begin() + place);
    is_number_.erase(is_number_.begin() + place);
    for (Line& line : lines_) line.erase(line.begin() + place);
  }
}

void TableWriter::WritePlain(const Line& line, const std::vector<std::size_t>& widths) {
  std::string text;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const std::string blanks(widths[i] - WidthOf(line[i]), ' ');
    if (i > 0) text += "  ";
    text += is_number_[i] ? blanks + line[i] : line[i] + blanks;
  }
  text.erase(text.find_last_not_of(' ') + 1);
  out_ << text << '\n';
}

void TableWriter::WriteCsv(const Line& cells) {
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
  out_ << text << '\n';
}

void WriteRecordset(std::ostream& out, Format format, const Ref<Recordset>& rows,
                    std::span<const std::string_view> plain_columns) {
  std::vector<std::string> headings;
  std::vector<Long> positions;
  if (format == Format::kPlain) {
    for (const std::string_view column : plain_columns) {
      positions.push_back(rows->FieldPosition(column));
    }
  } else {
    for (Long i = 0; i < rows->FieldCount(); ++i) positions.push_back(i);
  }
  for (const Long position : positions) headings.push_back(rows->FieldName(position));

  TableWriter table(out, format, headings);
  std::vector<Variant> cells(positions.size());
  for (; !rows->Eof(); rows->MoveNext()) {
    std::transform(positions.begin(), positions.end(), cells.begin(),
                   [&](Long position) { return rows->FieldValue(position); });
    table.Row(cells);
  }
  table.Finish();
}

}  // namespace qdclgl::cli
