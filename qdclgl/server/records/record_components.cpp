#include "qdclgl/server/records/record_components.h"

#include "qdclgl/server/records/master_data.h"
#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

RecordInfo::RecordInfo(const MasterData& kind) : RecordComponent(kind, kind.info()) {}

Ref<Dictionary> RecordInfo::GetDetail(std::string_view PropsString, const Long& RecordID) {
  const Caller caller = Enter(PropsString, kind().reading());
  return kind().Read(caller.db, RecordID);
}

Ref<Dictionary> RecordInfo::GetDetailByNumber(std::string_view PropsString,
                                              std::string_view RecordKey) {
  const Caller caller = Enter(PropsString, kind().reading());
  return kind().Read(caller.db, kind().IdWithKey(caller.db, RecordKey));
}

Ref<Recordset> RecordInfo::GetList(std::string_view PropsString, const Long& ListOptions,
                                   const String& Filter, const String& Sort) {
  const Caller caller = Enter(PropsString, kind().reading());
  return kind().List(caller.db, ListOptions, Filter, Sort);
}

Long RecordInfo::ExistenceCheck(std::string_view PropsString, const Variant& RecordID,
                                const Variant& RecordKey) {
  const Caller caller = Enter(PropsString, kind().reading());
  if (!RecordID.IsMissing()) {
    const auto id = RecordID.As<Long>();
    return kind().Read(caller.db, id) ? id : 0;
  }
  return RecordKey.IsMissing() ? 0 : kind().IdWithKey(caller.db, RecordKey.As<String>());
}

RecordUpdate::RecordUpdate(const MasterData& kind) : RecordComponent(kind, kind.update()) {}

Long RecordUpdate::Create(std::string_view PropsString, const Ref<Dictionary>& dict) {
  const Caller caller = Enter(PropsString, kind().writing());
  RecordSave save(caller, kind(), dict);
  save.Run();
  return save.id();
}

void RecordUpdate::Update(std::string_view PropsString, const Long& RecordID,
                          const Ref<Dictionary>& dict) {
  const Caller caller = Enter(PropsString, kind().writing());
  RecordSave(caller, kind(), dict, RecordID).Run();
}

void RecordUpdate::Delete(std::string_view PropsString, const Long& RecordID,
                          std::string_view MachineName, std::string_view IPAddress) {
  const Caller caller = Enter(PropsString, kind().writing());
  RecordRemoval removal(caller, kind(), RecordID);
  kind().description().remove(removal);
  removal.Commit(MachineName, IPAddress);
}

}  // namespace qdclgl::server
