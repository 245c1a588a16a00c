#include "qdclgl/cli/item_import.h"

#include <algorithm>
#include <unordered_map>

#include "qdclgl/cli/batch.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/item_classes.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/record_kinds.h"
#include "qdclgl/cli/sheet.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/masterdata/item_class.h"
#include "qdclgl/server/records/item_fields.h"

namespace qdclgl::cli {

namespace {

using server::ItemField;

enum Column : std::size_t { kNumber, kName, kParent, kFirstOwn };

// What any item can have besides, under its key.
std::vector<WrittenColumn> OwnColumns() {
  constexpr std::string_view kTold[] = {"FItemClassID", "FParentID", "FNumber", "FName",
                                        "FDeleted"};
  std::vector<WrittenColumn> columns = WrittenColumns(KindNamed("items"));
  std::erase_if(columns, [&](const WrittenColumn& column) {
    return std::ranges::count(kTold, column.name) != 0;
  });
  return columns;
}

// The columns of a file: number, name, parent, what any item has, and the fields of the class under
// their names or columns.
struct ItemSheet {
  std::vector<WrittenColumn> own = OwnColumns();
  std::vector<ItemField> fields;
  std::vector<SheetColumn> columns = {{"number", true}, {"name", true}, {"parent"}};

  explicit ItemSheet(Long item_class) {
    const auto properties = Make<ItemClassSet>()->Item(item_class)->CustomProperties();
    for (Long i = 1; i <= properties->Count(); ++i) {
      const Ref<Dictionary> row = properties->Item(i)->Properties()->Dictionary();
      if (!row->Value("FSQLColumnName").As<String>().empty() &&
          server::IsFieldKey(row->Value("FSQLColumnName").As<String>())) {
        fields.push_back(ItemField::From(*row, ""));
      }
    }
    for (const WrittenColumn& column : own) columns.push_back({column.name});
    for (const ItemField& field : fields) {
      columns.push_back({field.name, false, {&field.column, 1}});
    }
  }
  ItemSheet(const ItemSheet&) = delete;
  ItemSheet& operator=(const ItemSheet&) = delete;

  std::size_t FirstField() const { return kFirstOwn + own.size(); }
};

// A row of the file: what the item gets under which key, and where its parts stand.
struct ItemRow {
  Position at;
  std::string number;
  CsvCell parent;
  std::vector<std::pair<std::string_view, Variant>> values;
};

class ItemImport {
 public:
  ItemImport(const std::string& path, const NamedItemClass& item_class, KnownItems known,
             std::string props, const Console& console)
      : item_class_(item_class),
        known_(known),
        props_(std::move(props)),
        progress_(console),
        reports_(path, console, progress_),
        layout_(item_class.id),
        sheet_(path, layout_.columns, reports_) {}

  ItemImportResult Run() {
    if (!sheet_.IsUsable()) ++result_.left_out;
    std::vector<ItemRow> rows;
    for (CsvRow row; sheet_.IsUsable() && sheet_.Next(row);) {
      if (std::optional<ItemRow> item = Read(row)) rows.push_back(*std::move(item));
      else ++result_.left_out;
      if (rows.size() == Batch::kSize) StoreAll(rows);
    }
    StoreAll(rows);
    result_.is_whole = reports_.IsEmpty();
    return result_;
  }

 private:
  const CsvCell& CellOf(const CsvRow& row, std::size_t column) const {
    static const CsvCell kNone;
    const CsvCell* cell = sheet_.Cell(row, column);
    return cell != nullptr ? *cell : kNone;
  }

  // Nothing when something was reported.
  std::optional<ItemRow> Read(const CsvRow& row) {
    bool is_right = true;
    const auto report = [&](Position at, const std::string& reason) {
      reports_.Add(at, reason);
      is_right = false;
    };
    if (row.problem) {
      report(row.problem->at, row.problem->reason);
      return {};
    }
    ItemRow item{row.at, ToUpper(CellOf(row, kNumber).text), CellOf(row, kParent), {}};
    if (item.number.empty()) report(CellOf(row, kNumber).at, "the item has no number");
    const std::string& name = CellOf(row, kName).text;
    if (name.empty()) report(CellOf(row, kName).at, "the item has no name");
    item.values = {{"FNumber", item.number}, {"FName", name}};
    for (std::size_t i = 0; i < layout_.own.size(); ++i) {
      const WrittenColumn& column = layout_.own[i];
      const CsvCell* cell = sheet_.Cell(row, kFirstOwn + i);
      if (cell == nullptr) continue;
      try {
        item.values.emplace_back(
            column.name, cell->text.empty() ? Variant() : ReadTyped(column.type, cell->text));
      } catch (const BadCell& bad) {
        report(cell->at, bad.what());
      }
    }
    for (std::size_t i = 0; i < layout_.fields.size(); ++i) {
      const ItemField& field = layout_.fields[i];
      const CsvCell* cell = sheet_.Cell(row, layout_.FirstField() + i);
      if (cell == nullptr) continue;
      try {
        item.values.emplace_back(field.column, FieldValue(field, cell->text));
      } catch (const BadCell& bad) {
        report(cell->at, bad.what());
      }
    }
    return is_right ? std::optional(std::move(item)) : std::nullopt;
  }

  // BadCell for what the field can't have.
  static Variant FieldValue(const ItemField& field, const std::string& text) {
    if (text.empty()) {
      if (field.is_required) throw BadCell("field " + Quoted(field.name) + " is missing");
      return {};
    }
    const auto [value, reason] = field.Take(ReadTyped(field.type, text));
    if (reason.empty()) return value;
    throw BadCell(Quoted(text) + " " + reason);
  }

  void StoreAll(std::vector<ItemRow>& rows) {
    if (rows.empty()) return;
    Batch batch(props_);
    ReadKnown(rows);
    for (const ItemRow& row : rows) {
      Store(row);
      progress_.Show("items", result_.stored + result_.changed, sheet_.Share());
    }
    batch.Commit();
    rows.clear();
  }

  // The items of the books that the rows name.
  void ReadKnown(const std::vector<ItemRow>& rows) {
    items_.clear();
    std::string filter;
    const auto ask = [&](const std::string& number) {
      filter += (filter.empty() ? "FNumber IN (" : ", ") + FilterText(number);
    };
    for (const ItemRow& row : rows) {
      ask(row.number);
      if (!row.parent.text.empty()) ask(ToUpper(row.parent.text));
    }
    const auto list = CreateObject("QDSVGLItem.ItemInfo")
                          ->Call("GetList", props_, item_class_.id, Long{1}, filter + ")")
                          .As<Recordset>();
    for (; !list->Eof(); list->MoveNext()) {
      Ref<Dictionary> item = RowToDictionary(list);
      items_[item->Value("FNumber").As<String>()] = item;
    }
  }

  void Store(const ItemRow& row) {
    Ref<Dictionary>& known = items_[row.number];
    if (known && known_ == KnownItems::kLeft) {
      ++result_.passed;
      return;
    }
    const bool is_new = !known;
    const Ref<Dictionary> item = is_new ? Make<Dictionary>() : known->Clone();
    if (!Fill(row, *item)) {
      ++result_.left_out;
      return;
    }
    if (!is_new && IsSame(*known, *item)) {
      ++result_.passed;
      return;
    }
    try {
      Save(item, is_new);
    } catch (const Error& error) {
      if (!IsAboutRecord(error)) throw;
      reports_.Add(row.at, ErrorText(error));
      ++result_.left_out;
      return;
    }
    known = item;
    ++(is_new ? result_.stored : result_.changed);
  }

  // False when the item above is missing, which is reported.
  bool Fill(const ItemRow& row, Dictionary& item) {
    item.Put("FItemClassID", item_class_.id);
    for (const auto& [key, value] : row.values) item.Put(key, value);
    if (row.parent.text.empty()) return true;
    const auto above = items_.find(ToUpper(row.parent.text));
    if (above == items_.end() || !above->second) {
      reports_.Add(row.parent.at, NoSuchItem(item_class_, row.parent.text) +
                                      "; an item stands behind the one above it");
      return false;
    }
    item.Put("FParentID", above->second->Value("FItemID"));
    return true;
  }

  static bool IsSame(const Dictionary& stored, const Dictionary& item) {
    for (std::uint32_t i = 0; i < item.size(); ++i) {
      if (CellText(stored.Value(item.key_at(i))) != CellText(item.value_at(i))) return false;
    }
    return true;
  }

  void Save(const Ref<Dictionary>& item, bool is_new) {
    item->Put("MachineName", machine_name_);
    item->Put("IPAddress", address_);
    const auto update = CreateObject("QDSVGLItem.ItemUpdate");
    if (is_new) {
      update->Call("Create", props_, item_class_.id, item);
    } else {
      Long id = item->Value("FItemID").As<Long>();
      update->Call("Update", props_, ByRef(id), item);
    }
  }

  const NamedItemClass& item_class_;
  KnownItems known_;
  std::string props_;
  Progress progress_;
  Reports reports_;
  const ItemSheet layout_;
  Sheet sheet_;
  ItemImportResult result_;
  std::unordered_map<std::string, Ref<Dictionary>> items_;  // of the batch, by number
  const String machine_name_ = GetMachineName(), address_ = GetIPAddress();
};

}  // namespace

ItemImportResult ImportItems(const std::string& path, const std::string& item_class,
                             KnownItems known, const std::string& props, const Console& console) {
  const std::vector<NamedItemClass> classes = ItemClassesOfBooks();
  return ItemImport(path, ItemClassNamed(classes, item_class), known, props, console).Run();
}

}  // namespace qdclgl::cli
