// Items as clients call them: every call that makes or lists items names their class. Sub-messages
// are served beside them.
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/item.h"
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

  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& ItemID),
            "An item, Nothing when there is none.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, const Long& ItemClassID, const String& Number),
            "The item of a class with that number, case ignored; Nothing when there is none.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ItemClassID = {},
             const Long& ListOptions = {}, const String& Filter = {}, const String& Sort = {}),
            "The items of a class, or of all with 0; bit 1 of ListOptions includes those marked "
            "deleted. BadFilter, BadSort.")
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

Ref<Dictionary> ItemInfo::GetDetail(std::string_view PropsString, const Long& ItemID) {
  const Caller caller = Enter(PropsString, kReadItems);
  return Items().Read(caller.db, ItemID);
}

Ref<Dictionary> ItemInfo::GetDetailByNumber(std::string_view PropsString, const Long& ItemClassID,
                                            const String& Number) {
  const Caller caller = Enter(PropsString, kReadItems);
  return Items().Read(caller.db, IdIn(caller.db, ItemClassID, Number));
}

Ref<Recordset> ItemInfo::GetList(std::string_view PropsString, const Long& ItemClassID,
                                 const Long& ListOptions, const String& Filter,
                                 const String& Sort) {
  const Caller caller = Enter(PropsString, kReadItems);
  const std::int64_t item_class = ItemClassID;
  const BoundValue values[] = {item_class, item_class};
  std::string query = "SELECT * FROM t_Item WHERE (FItemClassID = ? OR ? = 0)";
  if ((ListOptions & kWithDeleted) == 0) query += " AND FDeleted = 0";
  return FetchList(caller.db, {query, Items().Columns(), Items().description().order}, Filter, Sort,
                   values);
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

}  // namespace

std::vector<ServerComponent> ItemComponents() {
  return {ComponentOf<ItemInfo>(), ComponentOf<ItemUpdate>()};
}

}  // namespace qdclgl::server
