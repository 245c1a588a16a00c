#include "qdclgl/server/records/item_fields.h"

#include <algorithm>

#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/item_slots.h"

namespace qdclgl::server {

namespace {

constexpr std::size_t kLongestText = 255;

ColumnType TypeOfField(Long data_type) {
  switch (data_type) {
    case 3: return ColumnType::kLong;
    case 5: return ColumnType::kDouble;
    case 6: return ColumnType::kCurrency;
    case 7: return ColumnType::kDate;
    case 11: return ColumnType::kBoolean;
    case 131: return ColumnType::kDecimal;
    default: return ColumnType::kText;
  }
}

bool IsLongText(Long data_type) { return data_type == 201 || data_type == 203; }

// No index takes texts of any length, and decimals are compared where they were never written too.
bool CanBeSearched(Long data_type) { return !IsLongText(data_type) && data_type != 131; }

// A save rule is a list of words; programs may have others of their own.
bool HasRule(std::string_view rules, std::string_view rule) {
  for (std::size_t first = 0; first < rules.size();) {
    const std::size_t end = std::min(rules.find_first_of(" ,;", first), rules.size());
    if (EqualsIgnoringAsciiCase(rules.substr(first, end - first), rule)) return true;
    first = end + 1;
  }
  return false;
}

// How many digits a number has before its point, and how many behind it.
struct Digits {
  std::size_t before = 0, behind = 0;
};
Digits DigitsOf(std::string text) {
  if (text.starts_with('-')) text.erase(0, 1);
  const std::size_t point = std::min(text.find('.'), text.size());
  const std::size_t first = std::min(text.find_first_not_of('0'), point);
  std::string decimals = point < text.size() ? text.substr(point + 1) : std::string();
  decimals.erase(decimals.find_last_not_of('0') + 1);
  return {point - first, decimals.size()};
}

// The text of a number without an exponent; nothing for one that has more than 28 digits.
std::optional<std::string> PlainText(const ItemField& field, const Variant& value) {
  if (field.type != ColumnType::kDouble) return CStr(value);
  try {
    return Decimal::FromText(RealText(value.Held<Double>(), 15)).ToText();
  } catch (const Error&) {
    return std::nullopt;
  }
}

}  // namespace

// ---- A field ----

ItemField ItemField::From(const Dictionary& description, std::string slot) {
  const auto text = [&](std::string_view key) { return description.Value(key).As<String>(); };
  const auto data_type = description.Value("FDataType").As<Long>();
  return {.name = text("FName"),
          .column = text("FSQLColumnName"),
          .slot = std::move(slot),
          .type = TypeOfField(data_type),
          .data_type = data_type,
          .precision = description.Value("FPrecision").As<Long>(),
          .scale = description.Value("FScale").As<Integer>(),
          .default_value = text("FDefaultValue"),
          .is_required = HasRule(text("FSaveRule"), "required"),
          .is_searched = description.Value("FSearch").As<Long>() != 0 && CanBeSearched(data_type)};
}

std::string ItemField::StoredValue() const {
  if (type != ColumnType::kDecimal) return slot;
  // An item that was there before the field has an empty text, which would go before negative ones.
  return "CASE WHEN " + slot + " = '' THEN '" + DecimalText(Decimal()) + "' ELSE " + slot + " END";
}

std::string ItemField::ReasonAgainst(const Variant& value) const {
  if (type == ColumnType::kText) {
    const std::size_t most = precision != 0 ? static_cast<std::size_t>(precision) : kLongestText;
    if (IsLongText(data_type) || Utf16Length(value.TextView()) <= most) return "";
    return "has more than " + std::to_string(most) + " characters";
  }
  if (type == ColumnType::kDate || type == ColumnType::kBoolean || (precision == 0 && scale == 0)) {
    return "";
  }
  const std::optional<std::string> text = PlainText(*this, value);
  const Digits digits = text ? DigitsOf(*text) : Digits{99, 99};
  const auto decimals = static_cast<std::size_t>(scale);
  if (digits.behind > decimals) return "has more than " + std::to_string(scale) + " decimals";
  if (precision != 0 && digits.before + decimals > static_cast<std::size_t>(precision)) {
    return "has more than " + std::to_string(precision - scale) + " digits before the point";
  }
  return "";
}

bool ItemField::IsZero(const Variant& value) const {
  return Equals(value, Normalized(AsColumn(), Variant()));
}

ItemField::TakenValue ItemField::Take(const Variant& value) const {
  try {
    TakenValue taken{Normalized(AsColumn(), value)};
    taken.reason = ReasonAgainst(taken.value);
    return taken;
  } catch (const Error& error) {
    if (error.number() != refusal::kBadValue) throw;
    return {.value = {}, .reason = "is no value of its type"};
  }
}

ItemField::TakenValue ItemField::TakeHeld(const Variant& held) const {
  try {
    return Take(FromSlot(type, held));
  } catch (const Error&) {
    return {.value = {}, .reason = "is no value of its type"};
  }
}

void ItemField::EachHeld(Database& db, Long item_class,
                         const std::function<void(Long item, const Variant& held)>& look) const {
  const Column columns[] = {{"FItemID", ColumnType::kLong}, *FindColumn(ItemSlots(), slot)};
  const std::unique_ptr<Statement> statement =
      db.MakeStatement("SELECT " + NamesOf(columns) + " FROM t_Item WHERE FItemClassID = ? AND " +
                       HoldsSomething(columns[1]) + " ORDER BY FItemID");
  statement->Set(0, std::int64_t{item_class});
  for (statement->Open(); statement->Fetch();) {
    const std::vector<Variant> cells = ReadCells(*statement, columns);
    look(cells[0].As<Long>(), cells[1]);
  }
}

// ---- The fields of a class ----

ItemFields::ItemFields(Database& db, Long item_class) {
  constexpr Column kColumns[] = {
      {"FName", ColumnType::kText},     {"FSQLColumnName", ColumnType::kText},
      {"FDataType", ColumnType::kLong}, {"FPrecision", ColumnType::kLong},
      {"FScale", ColumnType::kInteger}, {"FDefaultValue", ColumnType::kText},
      {"FSaveRule", ColumnType::kText}, {"FSearch", ColumnType::kLong},
      {"FSlot", ColumnType::kText}};
  Statement& statement =
      db.Prepared("SELECT " + NamesOf(kColumns) +
                  " FROM t_ItemClassField WHERE FItemClassID = ? AND FSlot <> '' ORDER BY FPropID");
  statement.Set(0, std::int64_t{item_class});
  const Ref<KeyList> keys = KeysOf(kColumns);
  for (statement.Open(); statement.Fetch();) {
    const Ref<Dictionary> row = ReadRow(statement, kColumns, keys);
    fields_.push_back(ItemField::From(*row, row->Value("FSlot").As<String>()));
  }
}

bool IsFieldKey(std::string_view key) {
  const std::size_t mark = key.find('_');
  const auto are_digits = [](std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
  };
  return key.starts_with('F') && mark != key.npos && are_digits(key.substr(1, mark - 1)) &&
         are_digits(key.substr(mark + 1));
}

// ---- What an item has of them ----

namespace {

void RefuseKeysOfOthers(const RecordSave& save, const ItemFields& fields) {
  const Dictionary& sent = save.sent();
  for (std::uint32_t i = 0; i < sent.size(); ++i) {
    const std::string_view key = sent.key_at(i);
    if (!IsFieldKey(key) ||
        std::ranges::find(fields.all(), key, &ItemField::column) != fields.all().end()) {
      continue;
    }
    save.Refuse(refusal::kBadValue,
                "there is no column \"" + std::string(key) + "\" in its class.");
  }
}

}  // namespace

void TakeFields(RecordSave& save) {
  const ItemFields fields(save.db(), save.Number("FItemClassID"));
  RefuseKeysOfOthers(save, fields);
  for (const ItemField& field : fields.all()) {
    const Variant* sent = save.sent().Find(field.column);
    const Variant given = sent != nullptr ? *sent
                          : save.is_new() ? Variant(field.default_value)
                                          : FromSlot(field.type, save.record().Value(field.slot));
    const auto [value, reason] = field.Take(given);
    const std::string called = "field \"" + field.name + "\" (" + field.column + ") ";
    if (!reason.empty()) save.Refuse(refusal::kBadValue, called + reason + ".");
    if (field.is_required && field.IsZero(value)) {
      save.Refuse(refusal::kRequired, called + "is missing.");
    }
    save.record().Put(field.slot, SlotValue(field.type, value));
  }
}

void ShowFields(Database& db, Dictionary& record) {
  const ItemFields fields(db, record.Value("FItemClassID").As<Long>());
  std::vector<Variant> values;
  for (const ItemField& field : fields.all()) {
    values.push_back(FromSlot(field.type, record.Value(field.slot)));
  }
  for (const Column& slot : ItemSlots()) record.Remove(slot.name);
  for (std::size_t i = 0; i < values.size(); ++i) record.Put(fields.all()[i].column, values[i]);
}

void NameFieldsOnTrail(Database& db, std::map<Long, TrailedRecord>& items) {
  std::map<Long, std::map<std::string, std::string>> columns;  // by class and slot
  for (auto& [id, item] : items) {
    const auto item_class = std::ranges::find(item.state.cells, "FItemClassID", &TrailCell::key);
    auto [found, is_new] = columns.try_emplace(item_class->value.As<Long>());
    if (is_new) {
      const ItemFields fields(db, found->first);
      for (const ItemField& field : fields.all()) {
        found->second.emplace(field.slot, field.column);
      }
    }
    for (TrailCell& cell : item.state.cells) {
      if (const auto column = found->second.find(cell.key); column != found->second.end()) {
        cell.key = column->second;
      }
    }
  }
}

}  // namespace qdclgl::server
