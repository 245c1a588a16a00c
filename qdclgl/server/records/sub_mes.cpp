// Sub-messages: small dictionaries of two levels, types and their entries. Both are served by the
// components of items, under method names of their own.
#include "qdclgl/server/records/sub_mes.h"

#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

const MasterData& SubMessages();
const MasterData& SubMessageTypes();

namespace {

// ---- Entries ----

void CheckEntry(RecordSave& save) {
  CheckKey(save);
  save.RequireReferences();
  if (!save.is_new() && save.Changes("FTypeID")) {
    save.Refuse(refusal::kBadValue, "an entry stays with its type.");
  }
}

// The entry of an id; with a type of 0 of any, otherwise Nothing for one of another type.
Ref<Dictionary> EntryOf(Database& db, Long id, Long type) {
  Ref<Dictionary> entry = SubMessages().Read(db, id);
  if (entry && type != 0 && entry->Value("FTypeID").As<Long>() != type) return nullptr;
  return entry;
}

// NotFound unless the entry is one of the type.
void RequireEntry(Database& db, Long id, Long type) {
  if (EntryOf(db, id, type)) return;
  Refuse(refusal::kNotFound, "Sub-message with id " + std::to_string(id) + " of type " +
                                 std::to_string(type) + ": there is none.");
}

}  // namespace

// ---- What the components of items do with them ----

Ref<Dictionary> SubMesReader::GetSubMesTypeDetail(std::string_view PropsString,
                                                  const Variant& Key) {
  const Caller caller = Enter(PropsString, kReads);
  return SubMessageTypes().RequireByKey(caller.db, Key);
}

Ref<Recordset> SubMesReader::GetSubMesTypeList(std::string_view PropsString, const Variant&,
                                               const String& Filter) {
  const Caller caller = Enter(PropsString, kReads);
  return SubMessageTypes().List(caller.db, 0, Filter, "");
}

Ref<Dictionary> SubMesReader::GetSubMesDetail(std::string_view PropsString, const Long& ItemID,
                                              const Long& TypeID) {
  const Caller caller = Enter(PropsString, kReads);
  return EntryOf(caller.db, ItemID, TypeID);
}

Ref<Dictionary> SubMesReader::GetSubMesDetailByNumber(std::string_view PropsString,
                                                      const Long& TypeID, const String& Number) {
  const Caller caller = Enter(PropsString, kReads);
  return SubMessages().Read(caller.db,
                            SubMessages().IdWith(caller.db, "FNumber", Number, "FTypeID", TypeID));
}

Ref<Recordset> SubMesReader::GetSubMesList(std::string_view PropsString, const Variant& TypeID,
                                           const Long&, const String& Filter, const String& Sort) {
  const Caller caller = Enter(PropsString, kReads);
  const MasterData::Description& entries = SubMessages().description();
  const std::int64_t type = TypeID.As<Long>();
  const BoundValue values[] = {type, type};
  const std::string query = std::string(entries.query) + " WHERE (FTypeID = ? OR ? = 0)";
  return FetchList(caller.db, {query, SubMessages().Columns(), entries.order}, Filter, Sort,
                   values);
}

Long SubMesWriter::CreateSubMesType(std::string_view PropsString, const String& Name,
                                    std::string_view MachineName, std::string_view IPAddress) {
  return CreateNamed(SubMessageTypes(), PropsString, Name, MachineName, IPAddress);
}

void SubMesWriter::RenameSubMesType(std::string_view PropsString, const Long& TypeID,
                                    const String& Name, std::string_view MachineName,
                                    std::string_view IPAddress) {
  RenameRecord(SubMessageTypes(), PropsString, TypeID, Name, MachineName, IPAddress);
}

void SubMesWriter::DeleteSubMesType(std::string_view PropsString, const Long& TypeID,
                                    std::string_view MachineName, std::string_view IPAddress) {
  DeleteRecord(SubMessageTypes(), PropsString, TypeID, MachineName, IPAddress);
}

Long SubMesWriter::CreateSubMes(std::string_view PropsString, Long TypeID,
                                const Ref<Dictionary>& dict) {
  const Caller caller = EnterUnconfirmed(PropsString, kWrites);
  RecordSave save(caller, SubMessages(), dict);
  save.PutOwner("FTypeID", TypeID);
  save.Run();
  return save.id();
}

void SubMesWriter::UpdateSubMes(std::string_view PropsString, const Long& ItemID,
                                const Ref<Dictionary>& dict, const Long& TypeID) {
  const Caller caller = EnterUnconfirmed(PropsString, kWrites);
  CallersTransaction transaction(caller, Transaction::Kind::kChangeRules);
  RequireEntry(caller.db, ItemID, TypeID);
  RecordSave(caller, SubMessages(), dict, ItemID).Run();
  transaction.Commit();
}

void SubMesWriter::DeleteSubMes(std::string_view PropsString, const Long& ItemID,
                                const Long& TypeID, std::string_view MachineName,
                                std::string_view IPAddress) {
  const Caller caller = EnterUnconfirmed(PropsString, kWrites);
  RecordRemoval removal(caller, SubMessages(), ItemID);
  RequireEntry(caller.db, ItemID, TypeID);
  removal.Remove();
  removal.Commit(MachineName, IPAddress);
}

const MasterData& SubMessages() {
  using enum ColumnType;
  static const MasterData kKind({
      .component = "QDSVGLItem.SubMes",
      .noun = "sub-message",
      .nouns = "sub-messages",
      .list = {"sub-messages", "Lists the entries of the sub-message dictionaries",
               "FItemID FTypeID FNumber FName"},
      .table = "t_SubMes",
      .id = "FItemID",
      .key = {.column = "FNumber", .within = "FTypeID"},
      .columns = {{.column = {"FTypeID", kLong},
                   .refers = {.kind = SubMessageTypes, .is_required = true}},
                  {{"FNumber", kText}},
                  {{"FName", kText}},
                  {{"FFullName", kText}},
                  {{"FSpec", kText}},
                  {{"FAgioRatio", kDouble}},
                  {{"FCoefficient", kDouble}},
                  {{"FDay", kLong}},
                  {{"UUID", kText}}},
      .order = "FTypeID, FNumber",
      .check = CheckEntry,
      .errors = "Required, BadReference, NumberTaken, BadValue",
  });
  return kKind;
}

const MasterData& SubMessageTypes() {
  using enum ColumnType;
  static const MasterData kKind({
      .component = "QDSVGLItem.SubMesType",
      .noun = "sub-message type",
      .nouns = "sub-message types",
      .brief = "type",
      .list = {"sub-message-types", "Lists the sub-message dictionaries", "FTypeID FName"},
      .table = "t_SubMesType",
      .id = "FTypeID",
      .key = {"FName"},
      .columns = {{{"FName", kText}}},
      .helps = {{"Delete", "Removes a type without entries. NotFound, InUse."}},
  });
  return kKind;
}

}  // namespace qdclgl::server
