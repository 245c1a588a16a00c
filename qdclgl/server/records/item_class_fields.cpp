#include "qdclgl/server/records/item_class_fields.h"

#include <algorithm>
#include <set>

#include "qdclgl/frame/vocabulary/strings.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/field_slots.h"

namespace qdclgl::server {

namespace {

constexpr std::string_view kTable = "t_ItemClassField";
constexpr std::string_view kNewName = "FNewName";         // of a sent field: the name to be
constexpr std::string_view kComCallOfWrites = "ComCall";  // as clients write FComCall
constexpr Integer kUnsavedField = 32767;
constexpr std::size_t kLongestName = 255;

constexpr Column kColumns[] = {
    {"FItemClassID", ColumnType::kLong},    {"FPropID", ColumnType::kInteger},
    {"FName", ColumnType::kText},           {"FDataType", ColumnType::kLong},
    {"FPrecision", ColumnType::kLong},      {"FScale", ColumnType::kInteger},
    {"FActualType", ColumnType::kInteger},  {"FActualSize", ColumnType::kLong},
    {"FSQLColumnName", ColumnType::kText},  {"FBehavior", ColumnType::kText},
    {"FComCall", ColumnType::kText},        {"FDefaultValue", ColumnType::kText},
    {"FDisplayField", ColumnType::kText},   {"FFilterField", ColumnType::kText},
    {"FIsDisplay", ColumnType::kBoolean},   {"FIsInput", ColumnType::kBoolean},
    {"FIsShownList", ColumnType::kBoolean}, {"FPageName", ColumnType::kText},
    {"FSaveRule", ColumnType::kText},       {"FSearch", ColumnType::kLong},
    {"FSrcField", ColumnType::kText},       {"FSrcTable", ColumnType::kText},
    {"FViewMask", ColumnType::kLong},       {"FSlot", ColumnType::kText},
};
constexpr auto kFieldColumns = std::span(kColumns).subspan(1);
// Where items hold a field is the server's affair.
constexpr auto kShownColumns = kFieldColumns.first(kFieldColumns.size() - 1);

// What the server keeps of a field, whatever is sent.
constexpr std::string_view kKept[] = {"FPropID",     "FName",          "FActualType",
                                      "FActualSize", "FSQLColumnName", "FSlot"};
// What stays as it is in a field of the system.
constexpr std::string_view kFixed[] = {"FName",     "FDataType", "FPrecision", "FScale",
                                       "FSaveRule", "FSrcField", "FSrcTable",  "FDisplayField"};

// A type of the recordset library that a database can hold.
struct FieldType {
  Long type;
  Integer actual_type;
  Long actual_size;  // 0: the precision, or the most where there is none
  Long most_precision;
  Integer most_scale;
};
constexpr FieldType kFieldTypes[] = {
    {200, 202, 0, 255, 0},                 // a text
    {202, 202, 0, 255, 0},                 // likewise
    {201, 203, kLongestStoredText, 0, 0},  // a long text
    {203, 203, kLongestStoredText, 0, 0},  // likewise
    {3, 3, 4, 10, 0},                      // a whole number
    {5, 5, 8, 15, 15},                     // a number
    {131, 131, 19, 28, 28},                // a decimal number
    {6, 6, 8, 19, 4},                      // money
    {7, 7, 8, 0, 0},                       // a date
    {11, 11, 2, 0, 0},                     // yes or no
};

const FieldType* TypeOf(Long type) {
  const auto found = std::ranges::find(kFieldTypes, type, &FieldType::type);
  return found == std::end(kFieldTypes) ? nullptr : &*found;
}

Variant AbsentOf(std::string_view column) {
  if (column == "FDataType") return Long{200};
  if (column == "FIsDisplay" || column == "FIsInput") return true;
  if (column == "FPageName") return strings::BasicDataPage;
  return {};
}

bool IsGiven(const Variant* value) {
  return value != nullptr && !value->IsEmpty() && !value->IsNull() && !value->IsMissing();
}

// One sent field on its way into the class.
class SentField {
 public:
  SentField(const RecordSave& save, const Dictionary& sent) : save_(save), sent_(sent) {
    RefuseUnknownKeys();
  }

  // The id that it has, 0 for a new one.
  Integer Id() const {
    const auto id = Cell("FPropID").As<Integer>();
    return id == kUnsavedField ? Integer{0} : id;
  }

  // The field as it will be stored, `stored` being null for a new one.
  Ref<Dictionary> Taken(Integer id, const Dictionary* stored) const {
    auto field = Make<Dictionary>();
    for (const Column& column : kFieldColumns) field->Put(column.name, Cell(column.name));
    for (const std::string_view column : kKept) {
      if (stored != nullptr) field->Put(column, stored->Value(column));
    }
    if (stored == nullptr) {
      field->Put("FPropID", id);
      // No other field has or had it, whatever becomes of the tables of items.
      field->Put("FSQLColumnName", "F" + std::to_string(save_.id()) + "_" + std::to_string(id));
    }
    if (const Variant* name = sent_.Find(kNewName); IsGiven(name) || stored == nullptr) {
      field->Put("FName",
                 Normalized({kNewName, ColumnType::kText}, name != nullptr ? *name : Variant()));
    }
    if (const Variant* call = sent_.Find(kComCallOfWrites)) {
      field->Put("FComCall", Normalized({kComCallOfWrites, ColumnType::kText}, *call));
    }
    Check(*field, stored);
    return field;
  }

 private:
  Variant Cell(std::string_view name) const {
    const Column& column = *FindColumn(kFieldColumns, name);
    const Variant* given = sent_.Find(name);
    return Normalized(column, IsGiven(given) ? *given : AbsentOf(name));
  }

  void RefuseUnknownKeys() const {
    for (std::uint32_t i = 0; i < sent_.size(); ++i) {
      const std::string_view key = sent_.key_at(i);
      if (key == kNewName || key == kComCallOfWrites || key == kColumns[0].name ||
          std::ranges::find(kShownColumns, key, &Column::name) != kShownColumns.end()) {
        continue;
      }
      save_.Refuse(refusal::kBadValue,
                   "there is no column \"" + std::string(key) + "\" in a field.");
    }
  }

  [[noreturn]] void Refuse(const Dictionary& field, std::int32_t number,
                           const std::string& reason) const {
    save_.Refuse(number, "field \"" + field.Value("FName").As<String>() + "\": " + reason);
  }

  void Check(Dictionary& field, const Dictionary* stored) const {
    const auto name = field.Value("FName").As<String>();
    if (name.empty()) save_.Refuse(refusal::kRequired, "a field has no name.");
    if (Utf16Length(name) > kLongestName) {
      save_.Refuse(refusal::kBadValue, "the name of a field is longer than " +
                                           std::to_string(kLongestName) + " characters.");
    }
    if (stored != nullptr && stored->Value("FPropID").As<Integer>() < kFirstOwnField) {
      for (const std::string_view column : kFixed) {
        if (Equals(field.Value(column), stored->Value(column))) continue;
        Refuse(*stored, refusal::kBadValue,
               std::string(column) + " of a field of the system stays.");
      }
      return;  // its size is the system's too
    }
    if (stored != nullptr && !Equals(field.Value("FDataType"), stored->Value("FDataType"))) {
      Refuse(field, refusal::kBadValue, "its data type stays once it is saved.");
    }
    TakeType(field);
  }

  // Type and size of the column, from type, precision and scale of the description.
  void TakeType(Dictionary& field) const {
    const auto data_type = field.Value("FDataType").As<Long>();
    const FieldType* type = TypeOf(data_type);
    if (type == nullptr) {
      Refuse(field, refusal::kBadValue,
             "a database holds no data type " + std::to_string(data_type) + ".");
    }
    const auto precision = field.Value("FPrecision").As<Long>();
    if (precision < 0 || precision > type->most_precision) {
      Refuse(field, refusal::kBadValue,
             "FPrecision is from 0 to " + std::to_string(type->most_precision) + ".");
    }
    const auto scale = field.Value("FScale").As<Integer>();
    const Long most_scale =
        precision == 0 ? type->most_scale : std::min<Long>(type->most_scale, precision);
    if (scale < 0 || scale > most_scale) {
      Refuse(field, refusal::kBadValue, "FScale is from 0 to " + std::to_string(most_scale) + ".");
    }
    field.Put("FActualType", type->actual_type);
    field.Put("FActualSize", type->actual_size != 0 ? type->actual_size
                             : precision != 0       ? precision
                                                    : type->most_precision);
  }

  const RecordSave& save_;
  const Dictionary& sent_;
};

Ref<Recordset> FieldList(Database& db, Long item_class, std::span<const Column> columns,
                         std::string_view condition = {}) {
  const BoundValue id = std::int64_t{item_class};
  return FetchList(
      db,
      {"SELECT * FROM t_ItemClassField WHERE FItemClassID = ?" + std::string(condition), columns,
       "FPropID"},
      "", "", std::span(&id, 1));
}

FieldsById StoredFields(Database& db, Long item_class) {
  FieldsById fields;
  const Ref<Recordset> list = FieldList(db, item_class, kFieldColumns);
  for (; !list->Eof(); list->MoveNext()) {
    const Ref<Dictionary> field = list->Row();
    fields[field->Value("FPropID").As<Integer>()] = field;
  }
  return fields;
}

// The fields that the sent list makes of the stored ones; `last_id` counts the ids that were ever
// given.
FieldsById TakenFields(const RecordSave& save, const Vector& sent, const FieldsById& stored,
                       Integer& last_id) {
  FieldsById taken;
  std::map<std::string, Integer> ids_by_name;
  for (std::size_t i = 0; i < sent.size(); ++i) {
    const Variant& element = sent.at(i);
    const auto* row =
        element.IsObject() ? dynamic_cast<const Dictionary*>(element.ObjectPointer()) : nullptr;
    if (row == nullptr) {
      save.Refuse(refusal::kBadValue, "an element of _PropDesc is no Dictionary.");
    }
    const SentField field(save, *row);
    Integer id = field.Id();
    const auto former = stored.find(id);
    if (id == 0) {
      if (last_id == kUnsavedField - 1) {
        save.Refuse(refusal::kBadValue, "it has had too many fields to get another one.");
      }
      id = ++last_id;
    } else if (former == stored.end()) {
      save.Refuse(refusal::kBadValue, "there is no field " + std::to_string(id) + ".");
    }
    const Ref<Dictionary> becomes =
        field.Taken(id, former != stored.end() ? former->second.get() : nullptr);
    const auto name = becomes->Value("FName").As<String>();
    if (!ids_by_name.emplace(ToUpper(name), id).second) {
      save.Refuse(refusal::kNameTaken, "two fields have the name \"" + name + "\".");
    }
    if (!taken.emplace(id, becomes).second) {
      save.Refuse(refusal::kBadValue,
                  "field " + std::to_string(id) + " stands twice in _PropDesc.");
    }
  }
  return taken;
}

void RequireFieldsOfTheSystem(const RecordSave& save, const FieldsById& stored,
                              const FieldsById& taken) {
  for (const auto& [id, field] : stored) {
    if (id >= kFirstOwnField || taken.contains(id)) continue;
    save.Refuse(refusal::kInUse, "field \"" + field->Value("FName").As<String>() +
                                     "\" is the system's and can't be removed.");
  }
}

void WriteFields(Database& db, Long item_class, const FieldsById& fields) {
  static const RowInsertion kInsertion(kTable, kColumns);
  RemoveItemClassFields(db, item_class);
  auto field = fields.begin();
  kInsertion.Run(db, fields.size(), [&](Statement& statement, std::size_t first, std::size_t) {
    BindCell(statement, first, kColumns[0], item_class);
    for (const Column& column : kFieldColumns) {
      BindCell(statement, ++first, column, field->second->Value(column.name));
    }
    ++field;
  });
}

}  // namespace

StoredTable ItemClassFieldTable() { return {kTable, {std::begin(kColumns), std::end(kColumns)}}; }

std::vector<Column> SentItemClassField() {
  std::vector<Column> columns(kShownColumns.begin(), kShownColumns.end());
  columns.push_back({kNewName, ColumnType::kText});
  return columns;
}

Ref<Vector> ItemClassFieldsOf(Database& db, Long item_class) {
  auto fields = Make<Vector>();
  const Ref<Recordset> list = FieldList(db, item_class, kShownColumns);
  for (; !list->Eof(); list->MoveNext()) fields->Append(Variant(list->Row()));
  return fields;
}

Ref<Recordset> ShownItemClassFields(Database& db, Long item_class) {
  return FieldList(db, item_class, kShownColumns, " AND FIsShownList = 1");
}

void SaveItemClassFields(RecordSave& save) {
  constexpr Long kEveryClass = 0;  // whose rows are the fields that each begins with
  Database& db = save.db();
  const Variant* sent = save.sent().Find(kItemClassFields);
  if (!save.is_new() && !IsGiven(sent)) return;
  const FieldsById stored = StoredFields(db, save.is_new() ? kEveryClass : save.id());
  FieldsById taken = stored;
  if (IsGiven(sent)) {
    const auto* list =
        sent->IsObject() ? dynamic_cast<const Vector*>(sent->ObjectPointer()) : nullptr;
    if (list == nullptr) save.Refuse(refusal::kBadValue, "_PropDesc is no Vector.");
    auto last_id = static_cast<Integer>(save.Number("FLastPropID"));
    taken = TakenFields(save, *list, stored, last_id);
    if (save.is_new()) taken.insert(stored.begin(), stored.end());
    db.Execute("UPDATE t_ItemClass SET FLastPropID = ? WHERE FItemClassID = ?", Long{last_id},
               save.id());
  }
  RequireFieldsOfTheSystem(save, stored, taken);
  SettleSlots(save, stored, taken);
  WriteFields(db, save.id(), taken);
}

void RemoveItemClassFields(Database& db, Long item_class) {
  db.Execute("DELETE FROM t_ItemClassField WHERE FItemClassID = ?", item_class);
}

}  // namespace qdclgl::server
