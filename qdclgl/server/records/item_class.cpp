// Item classes: kinds of auxiliary items, with the fields that their items have. Classes 1 to 5
// are in all books, those of a user's own begin with the id 1000.
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/item_class_fields.h"

namespace qdclgl::server {

namespace {

// Clients take those between for classes of a user's own.
constexpr Long kFirstOwnClass = 1000;
constexpr Long kLastOwnClass = 1999;

void Check(RecordSave& save) {
  CheckKey(save);
  save.RequireText("FName");
}

void Follow(RecordSave& save) {
  if (save.is_new() && save.id() > kLastOwnClass) {
    save.Refuse(refusal::kTooLarge, "the ids of classes of one's own, up to " +
                                        std::to_string(kLastOwnClass) + ", are used up.");
  }
  SaveItemClassFields(save);
}

void Remove(RecordRemoval& removal) {
  const Long id = removal.id();
  if (id < kFirstOwnClass) removal.Refuse(refusal::kInUse, "all books have it.");
  for (const char* table : {"t_AccountItem", "t_VoucherDetail"}) {
    if (removal.db().QueryValue<int>(
            "SELECT 1 FROM " + std::string(table) + " WHERE FItemClassID = ? LIMIT 1", id)) {
      removal.Refuse(refusal::kInUse, "accounts or vouchers use it.");
    }
  }
  RemoveItemClassFields(removal.db(), id);
  removal.Remove();
}

class ItemClassInfo final : public RecordInfo {
  QD_BASE_MEMBERS(RecordInfo)

 public:
  using RecordInfo::RecordInfo;

  QD_METHOD(Ref<Dictionary>, GetDetail,
            (std::string_view PropsString, const Long& ItemClassID, const String& sFilter = {},
             const Boolean& bBatchUpdate = false),
            "{A record} with its fields under the key _PropDesc, Nothing when there is none. "
            "Filter and mark are not looked at.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, std::string_view RecordKey),
            "{A record} by its {key,} with its fields, Nothing when there is none.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ListOptions = {}, const String& Filter = {},
             const String& Sort = {}, const Variant& Reserved = Missing, const Long& Sign = {},
             const Variant& Page = Missing),
            "The {records}, without their fields; options and sign are not looked at. {page} "
            "BadFilter, BadSort, BadValue.")
  QD_INHERITED(ExistenceCheck)
  QD_METHOD(Ref<Recordset>, GetShownF7Fields,
            (std::string_view PropsString, const Long& ItemClassID),
            "The fields of {a record} that the list shows which items are chosen from: those that "
            "every class begins with for the id 0, none for a class that there is not.")

 private:
  // A record with its fields; Nothing when there is none.
  Ref<Dictionary> Read(Database& db, Long id) const;
};

Ref<Dictionary> ItemClassInfo::Read(Database& db, Long id) const {
  Ref<Dictionary> record = kind().Read(db, id);
  if (record) record->Put(kItemClassFields, Variant(ItemClassFieldsOf(db, id)));
  return record;
}

Ref<Dictionary> ItemClassInfo::GetDetail(std::string_view PropsString, const Long& ItemClassID,
                                         const String&, const Boolean&) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction transaction(caller.db, Transaction::Kind::kRead);
  return Read(caller.db, ItemClassID);
}

Ref<Dictionary> ItemClassInfo::GetDetailByNumber(std::string_view PropsString,
                                                 std::string_view RecordKey) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction transaction(caller.db, Transaction::Kind::kRead);
  return Read(caller.db, kind().IdWithKey(caller.db, RecordKey));
}

Ref<Recordset> ItemClassInfo::GetList(std::string_view PropsString, const Long& ListOptions,
                                      const String& Filter, const String& Sort, const Variant&,
                                      const Long&, const Variant& Page) {
  return RecordInfo::GetList(PropsString, ListOptions, Filter, Sort, Page);
}

Ref<Recordset> ItemClassInfo::GetShownF7Fields(std::string_view PropsString,
                                               const Long& ItemClassID) {
  const Caller caller = Enter(PropsString, kind().reading());
  return ShownItemClassFields(caller.db, ItemClassID);
}

}  // namespace

const MasterData& ItemClasses() {
  using enum ColumnType;
  using enum Keeper;
  static const MasterData kKind({
      .component = "QDSVGLItemClass.ItemClass",
      .noun = "item class",
      .nouns = "item classes",
      .list = {"item-classes", "Lists the item classes", "FItemClassID FNumber FName FName_en"},
      .table = "t_ItemClass",
      .id = "FItemClassID",
      .key = {.column = "FNumber", .ignores_case = true},
      .columns = {{{"FNumber", kText}},
                  {{"FName", kText}},
                  {{"FName_Cht", kText}},
                  {{"FName_en", kText}},
                  {{"FType", kInteger}, kCaller, Integer{1}},
                  {{"FImport", kLong}, kServer},
                  {{"FRemark", kText}},
                  {{"FLastPropID", kInteger}, kServer, Integer{100}}},
      .lists = {{.key = kItemClassFields,
                 .table = ItemClassFieldTable(),
                 .order = "FItemClassID, FPropID",
                 .sent = SentItemClassField()}},
      .check = Check,
      .follow = Follow,
      .remove = Remove,
      .info = RecordClassOf<ItemClassInfo>(),
      .errors = "Required, NumberTaken, NameTaken, InUse, BadValue, TooLarge",
      .helps = {{"Create",
                 "Saves a new item class; its id and version come back in the row too. It begins "
                 "with the fields that all classes have; a key _PropDesc adds others. Errors: "
                 "{errors}."},
                {"Update",
                 "Saves an item class; the new version comes back in the row. A key _PropDesc "
                 "replaces its fields: FPropID tells which is which, FNewName its new name; those "
                 "of the system stay (InUse), and so does the data type of a saved one (BadValue). "
                 "Further errors: NotFound, NoVersion, Changed, and those of Create."},
                {"Delete",
                 "Removes an item class. NotFound; InUse for one that all books have, and for one "
                 "that accounts or vouchers use."}},
  });
  return kKind;
}

}  // namespace qdclgl::server
