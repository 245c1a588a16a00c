#include "qdclgl/cli/journal_writer.h"

#include <algorithm>
#include <charconv>

#include "qdclgl/cli/chart.h"
#include "qdclgl/cli/record_kinds.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/vocabulary/strings.h"
#include "qdclgl/server/vouchers/voucher_tree.h"

namespace qdclgl::cli {

namespace {

// The keys that rows of vouchers have by themselves; any other one is a caller's own.
template <class... Lists>
std::set<std::string_view> KeysOf(const Lists&... lists) {
  std::set<std::string_view> keys;
  const auto add = [&](const auto& columns) {
    for (const server::Column& column : columns) keys.insert(column.name);
  };
  (add(lists), ...);
  return keys;
}

const std::set<std::string_view>& HeaderKeys() {
  static const std::set<std::string_view> kKeys = [] {
    auto keys = KeysOf(server::kHeaderColumns, server::kStateColumns);
    keys.insert({"FGroup", strings::lists::Entries});
    return keys;
  }();
  return kKeys;
}

const std::set<std::string_view>& LineKeys() {
  static const std::set<std::string_view> kKeys = [] {
    auto keys = KeysOf(server::kLineColumns, server::kLineNames);
    keys.insert(strings::lists::Details);
    return keys;
  }();
  return kKeys;
}

std::string UnitOf(const Dictionary& line) {
  const auto number = line.Value("FMeasureUnitNumber").As<String>();
  const bool has_unit = line.Value("FMeasureUnitID").As<Long>() != 0;
  return has_unit && !number.empty() ? number : line.Value("FMeasureUnit").As<String>();
}

}  // namespace

std::string VoucherName(const Dictionary& voucher) {
  return CellText(voucher.Value("FYear")) + "/" + CellText(voucher.Value("FPeriod")) + " " +
         CellText(voucher.Value("FGroup")) + " " + CellText(voucher.Value("FNumber"));
}

std::string DigitsOf(Double value) {
  if (value == 0) return "";
  char digits[400];  // more than the longest double without an exponent has
  const auto end =
      std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed).ptr;
  return {digits, end};
}

JournalWriter::JournalWriter(std::ostream& out, JournalWidth width, const std::set<Long>& asked)
    : width_(width),
      classes_([&] {
        const ItemColumns known;
        std::vector<Class> classes;
        for (std::size_t i = 0; i < known.classes().size(); ++i) {
          const NamedItemClass& item_class = known.classes()[i];
          const std::string heading(known.columns()[i].heading);
          const bool is_usual = heading != item_class.number;
          if (width == JournalWidth::kWhole || is_usual || asked.contains(item_class.id)) {
            classes.push_back({item_class.id, item_class.number, heading});
          }
        }
        return classes;
      }()),
      console_{out, out},
      table_(console_, Format::kCsv, Headings()) {}

std::vector<std::string> JournalWriter::Headings() const {
  std::vector<std::string> headings;
  for (const SheetColumn& column : kJournalColumns) headings.emplace_back(column.heading);
  if (width_ == JournalWidth::kWhole) {
    for (const FurtherColumn& further : kFurtherColumns) {
      headings.emplace_back(further.column.name);
    }
  }
  for (const Class& item_class : classes_) headings.push_back(item_class.heading);
  return headings;
}

void JournalWriter::Write(const Dictionary& voucher) {
  NoteOwnKeys(voucher, HeaderKeys());
  std::vector<Variant> further;
  AddFurther(voucher, false, further);
  const auto entries = voucher.Value(strings::lists::Entries).As<Vector>();
  for (std::size_t i = 0; i < entries->size(); ++i) {
    const auto line = entries->at(i).As<Dictionary>();
    NoteOwnKeys(*line, LineKeys());
    std::vector<Variant> cells = LineCells(voucher, *line);
    cells.insert(cells.end(), further.begin(), further.end());
    AddFurther(*line, true, cells);
    AddItems(*line, cells);
    table_.Row(cells);
  }
}

std::vector<Variant> JournalWriter::LineCells(const Dictionary& voucher, const Dictionary& line) {
  const bool is_debit = line.Value("FDC").As<Long>() == 1;
  const bool is_in_base = line.Value("FCurrencyID").As<Long>() == Names::kBaseCurrency;
  const Variant amount = line.Value("FAmount");
  const Double rate = line.Value("FExchangeRate").As<Double>();
  return {VoucherName(voucher),
          voucher.Value("FDate"),
          WithoutOwnLines(line.Value("FAccountNumber").As<String>()),
          is_debit ? amount : Variant(""),
          is_debit ? Variant("") : amount,
          voucher.Value("FGroup"),
          voucher.Value("FNumber"),
          line.Value("FExplanation"),
          is_in_base ? Variant("") : line.Value("FCurrencyNumber"),
          is_in_base ? Variant("") : line.Value("FAmountFor"),
          is_in_base  ? ""
          : rate == 0 ? std::string(kNoRate)
                      : DigitsOf(rate),
          DigitsOf(line.Value("FQuantity").As<Double>()),
          UnitOf(line),
          DigitsOf(line.Value("FUnitPrice").As<Double>()),
          line.Value("FTransNo"),
          voucher.Value("FReference"),
          voucher.Value("FExplanation"),
          line.Value("FSettleType")};
}

void JournalWriter::AddFurther(const Dictionary& row, bool is_of_line,
                               std::vector<Variant>& cells) {
  for (const auto& [column, is_lines] : kFurtherColumns) {
    if (is_lines != is_of_line) continue;
    const bool has_value = IsFilled(row, column);
    if (width_ == JournalWidth::kWhole) {
      cells.push_back(has_value ? row.Value(column.name) : Variant(""));
    } else if (has_value) {
      ++left_out_[std::string(column.name)];
    }
  }
}

void JournalWriter::AddItems(const Dictionary& line, std::vector<Variant>& cells) {
  std::vector<std::string> numbers(classes_.size());
  const auto details = line.Value(strings::lists::Details).As<Vector>();
  for (std::size_t i = 0; i < details->size(); ++i) {
    const auto detail = details->at(i).As<Dictionary>();
    const auto number = detail->Value("FItemClassNumber").As<String>();
    const auto place = std::ranges::find(classes_, number, &Class::number);
    const auto item = detail->Value("FItemNumber").As<String>();
    const bool is_plain =
        detail->Value("FItemID").As<Long>() != 0 || detail->Value("FItemName").As<String>() == item;
    std::string* const cell = place == classes_.end()
                                  ? nullptr
                                  : &numbers[static_cast<std::size_t>(place - classes_.begin())];
    if (cell == nullptr || !cell->empty()) {
      ++left_out_["details of item class " + number];
      continue;
    }
    if (!is_plain) ++left_out_["FItemName"];
    if (!detail->Value("FValue").As<String>().empty()) ++left_out_["FValue"];
    *cell = item;
  }
  cells.insert(cells.end(), numbers.begin(), numbers.end());
}

void JournalWriter::NoteOwnKeys(const Dictionary& row, const std::set<std::string_view>& known) {
  for (std::uint32_t i = 0; i < row.size(); ++i) {
    if (!known.contains(row.key_at(i))) ++left_out_[row.key_at(i)];
  }
}

}  // namespace qdclgl::cli
