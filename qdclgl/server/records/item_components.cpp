// Items as clients call them: every call that makes or lists items names their class. Sub-messages
// are served beside them.
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/item.h"
#include "qdclgl/server/records/item_fields.h"
#include "qdclgl/server/records/item_list.h"
#include "qdclgl/server/records/sub_mes.h"

namespace qdclgl::server {

namespace {

constexpr Right kReadItems{Role::kReader, "read items"};
constexpr Right kWriteItems{Role::kAdministrator, "change items"};

class ItemInfo final : public SubMesReader {
  QD_MEMBERS(ItemInfo, SubMesReader, Creatable, "Reads items, and sub-messages with their types.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLItem.ItemInfo";
  static constexpr MethodRight kRights[] = {{"GetDetail", kReadItems},
                                            {"GetDetailByNumber", kReadItems},
                                            {"GetList", kReadItems},
                                            {"ExistenceCheck", kReadItems},
                                            {"GetSubMesTypeDetail", SubMesReader::kReads},
                                            {"GetSubMesTypeList", SubMesReader::kReads},
                                            {"GetSubMesDetail", SubMesReader::kReads},
                                            {"GetSubMesDetailByNumber", SubMesReader::kReads},
                                            {"GetSubMesList", SubMesReader::kReads}};

  QD_METHOD(Ref<Dictionary>, GetDetail,
            (std::string_view PropsString, const Long& ItemID, const Boolean& blNoCheck = false,
             const String& strFilter = {}),
            "An item with the fields of its class; Nothing when there is none, and for one that "
            "the filter leaves out, unless blNoCheck is True. BadFilter.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, const Long& ItemClassID, const String& Number,
             const String& strFilter = {}),
            "The same for the item of a class with that number, case ignored.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ItemClassID = {},
             const Long& ListOptions = {}, const String& Filter = {}, const String& Sort = {},
             const Variant& Parameters = Missing, const Boolean& IgnoreRight = false),
            "The items of a class with its fields, or of all without them with 0; bit 1 of "
            "ListOptions includes those marked deleted. Every reader sees all items, whatever "
            "IgnoreRight. Parameters tell a page: " QDCLGL_PAGE_KEYS
            " BadFilter, BadSort, BadValue.")
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& ItemID = Missing,
             const Long& ItemClassID = {}, const Variant& Number = Missing),
            "The id of the item with that id, or otherwise with that number in the class; 0 when "
            "there is none.")
  QD_INHERITED(GetSubMesTypeDetail)
  QD_INHERITED(GetSubMesTypeList)
  QD_INHERITED(GetSubMesDetail)
  QD_INHERITED(GetSubMesDetailByNumber)
  QD_INHERITED(GetSubMesList)
};

class ItemUpdate final : public SubMesWriter {
  QD_MEMBERS(ItemUpdate, SubMesWriter, Creatable,
             "Writes items, and sub-messages with their types.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLItem.ItemUpdate";
  static constexpr MethodRight kRights[] = {{"Create", kWriteItems},
                                            {"Update", kWriteItems},
                                            {"Delete", kWriteItems},
                                            {"UpdateDefineField", kWriteItems},
                                            {"CreateSubMesType", SubMesWriter::kWrites},
                                            {"RenameSubMesType", SubMesWriter::kWrites},
                                            {"DeleteSubMesType", SubMesWriter::kWrites},
                                            {"CreateSubMes", SubMesWriter::kWrites},
                                            {"UpdateSubMes", SubMesWriter::kWrites},
                                            {"DeleteSubMes", SubMesWriter::kWrites}};

  QD_METHOD(Long, Create,
            (std::string_view PropsString, const Long& ItemClassID, const Ref<Dictionary>& dict),
            "Saves a new item; a row that names no class is of the class given. Its id and version "
            "come back in the row too. Required, NumberTaken, NoParent, ParentInUse, "
            "BadReference, BadValue.")
  QD_METHOD(void, Update,
            (std::string_view PropsString, const Long& ItemID, const Ref<Dictionary>& dict),
            "Saves an item, which stays in its class; the new version comes back in the row. "
            "NotFound, NoVersion, Changed, HasChildren, and those of Create.")
  QD_METHOD(void, Delete,
            (std::string_view PropsString, const Long& ItemID, std::string_view MachineName = "",
             std::string_view IPAddress = ""),
            "Removes an item. NotFound, InUse, HasChildren.")
  QD_METHOD(Boolean, UpdateDefineField,
            (std::string_view PropsString, const Long& ItemClassID, const Ref<Dictionary>& dict),
            "Gives fields of an item of the class other values, whoever saved it since: FItemID "
            "tells which item, the other keys are columns of fields, and fields without a key stay "
            "as they are. True when it is done, False without a Dictionary or with an empty one. "
            "NotFound, Required, BadValue.")
  QD_INHERITED(CreateSubMesType)
  QD_INHERITED(RenameSubMesType)
  QD_INHERITED(DeleteSubMesType)
  QD_INHERITED(CreateSubMes)
  QD_INHERITED(UpdateSubMes)
  QD_INHERITED(DeleteSubMes)
};

QD_DEFINE_MEMBERS(ItemInfo)
QD_DEFINE_MEMBERS(ItemUpdate)

// The id of the item with that number in a class, case ignored; 0 when there is none.
Long IdIn(Database& db, Long item_class, std::string_view number) {
  return Items().IdWith(db, "FNumber", ToUpper(number), "FItemClassID", item_class);
}

// Nothing when there is none, or the filter leaves it out.
Ref<Dictionary> ItemThatMeets(Database& db, Long id, std::string_view filter) {
  Ref<Dictionary> item = ReadItem(db, id);
  if (!item || filter.empty()) return item;
  const Ref<Recordset> found = ListItems(db, {.item_class = item->Value("FItemClassID").As<Long>(),
                                              .with_deleted = true,
                                              .filter = filter,
                                              .item = id});
  return found->Eof() ? nullptr : item;
}

Ref<Dictionary> ItemInfo::GetDetail(std::string_view PropsString, const Long& ItemID,
                                    const Boolean& blNoCheck, const String& strFilter) {
  const Caller caller = Enter(PropsString, kReadItems);
  const Transaction view(caller.db, Transaction::Kind::kRead);
  return ItemThatMeets(caller.db, ItemID, blNoCheck ? String() : strFilter);
}

Ref<Dictionary> ItemInfo::GetDetailByNumber(std::string_view PropsString, const Long& ItemClassID,
                                            const String& Number, const String& strFilter) {
  const Caller caller = Enter(PropsString, kReadItems);
  const Transaction view(caller.db, Transaction::Kind::kRead);
  return ItemThatMeets(caller.db, IdIn(caller.db, ItemClassID, Number), strFilter);
}

Ref<Recordset> ItemInfo::GetList(std::string_view PropsString, const Long& ItemClassID,
                                 const Long& ListOptions, const String& Filter, const String& Sort,
                                 const Variant& Parameters, const Boolean&) {
  const Caller caller = Enter(PropsString, kReadItems);
  const Transaction view(caller.db, Transaction::Kind::kRead);
  return ListItems(caller.db, {.item_class = ItemClassID,
                               .with_deleted = (ListOptions & kWithDeleted) != 0,
                               .filter = Filter,
                               .sort = Sort,
                               .page = PageIn(Parameters)});
}

Long ItemInfo::ExistenceCheck(std::string_view PropsString, const Variant& ItemID,
                              const Long& ItemClassID, const Variant& Number) {
  const Caller caller = Enter(PropsString, kReadItems);
  if (!ItemID.IsMissing()) {
    const auto id = ItemID.As<Long>();
    return Items().Read(caller.db, id) ? id : 0;
  }
  return Number.IsMissing() ? 0 : IdIn(caller.db, ItemClassID, Number.As<String>());
}

Long ItemUpdate::Create(std::string_view PropsString, const Long& ItemClassID,
                        const Ref<Dictionary>& dict) {
  const Caller caller = EnterUnconfirmed(PropsString, kWriteItems);
  RecordSave save(caller, Items(), dict);
  save.PutOwner("FItemClassID", ItemClassID);
  save.Run();
  return save.id();
}

void ItemUpdate::Update(std::string_view PropsString, const Long& ItemID,
                        const Ref<Dictionary>& dict) {
  const Caller caller = EnterUnconfirmed(PropsString, kWriteItems);
  RecordSave(caller, Items(), dict, ItemID).Run();
}

void ItemUpdate::Delete(std::string_view PropsString, const Long& ItemID,
                        std::string_view MachineName, std::string_view IPAddress) {
  DeleteRecord(Items(), PropsString, ItemID, MachineName, IPAddress);
}

// BadValue for a key that is none of a field; others are changed by Update.
void RequireFieldKeys(const Dictionary& row) {
  for (std::uint32_t i = 0; i < row.size(); ++i) {
    const std::string_view key = row.key_at(i);
    if (key == "FItemID" || key == record_column::kVersion.name ||
        key == record_column::kMachineName.name || key == record_column::kAddress.name ||
        IsFieldKey(key)) {
      continue;
    }
    Refuse(refusal::kBadValue, "\"" + std::string(key) + "\" is no column of a field.");
  }
}

Boolean ItemUpdate::UpdateDefineField(std::string_view PropsString, const Long& ItemClassID,
                                      const Ref<Dictionary>& dict) {
  const Caller caller = EnterUnconfirmed(PropsString, kWriteItems);
  if (!dict || dict->size() == 0) return false;
  RequireFieldKeys(*dict);
  const Long id = Normalized({"FItemID", ColumnType::kLong}, dict->Value("FItemID")).As<Long>();
  if (id == 0) Refuse(refusal::kRequired, "The row names no item: FItemID is missing.");
  RecordSave save(caller, Items(), id, dict);
  if (save.Number("FItemClassID") != ItemClassID) {
    save.Refuse(refusal::kNotFound, "it is no item of class " + std::to_string(ItemClassID) + ".");
  }
  save.Run();
  return true;
}

}  // namespace

std::vector<ServerComponent> ItemComponents() {
  return {ComponentOf<ItemInfo>(), ComponentOf<ItemUpdate>()};
}

}  // namespace qdclgl::server
