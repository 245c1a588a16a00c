#include "qdclgl/masterdata/sub_mes.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/masterdata/named_row.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(SubMes)
QD_DEFINE_MEMBERS(SubMesSet)

namespace {

constexpr const char* kInfo = "QDSVGLItem.ItemInfo";
constexpr const char* kUpdate = "QDSVGLItem.ItemUpdate";

}  // namespace

// ---- SubMes ----

const EntityProtocol& SubMes::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = kInfo,
      .update_component = kUpdate,
      .id_key = "FItemID",
  };
  return kProtocol;
}

void SubMes::Refresh() { Entity::Refresh(); }
void SubMes::SaveChanges() { Entity::SaveChanges(); }

Ref<Dictionary> SubMes::FetchRow(Object& info) {
  const String props = GetPropsString();
  return info.Call("GetSubMesDetail", props, ByRef(m_ID), TypeID()).As<Dictionary>();
}

Long SubMes::CreateRow(Object& update, const Ref<Dictionary>& row) {
  const String props = GetPropsString();
  return update.Call("CreateSubMes", props, TypeID(), row).As<Long>();
}

void SubMes::UpdateRow(Object& update, const Ref<Dictionary>& row) {
  const String props = GetPropsString();
  update.Call("UpdateSubMes", props, ByRef(m_ID), row, TypeID());
}

Long SubMes::ItemID() const { return m_ID; }

Boolean SubMes::Modified() const { return Bag().Modified(); }

// ---- SubMesSet ----

const char* SubMesSet::InfoComponent() const { return kInfo; }

Ref<Recordset> SubMesSet::FetchList(Object& info, Query& query) const {
  return info
      .Call("GetSubMesList", GetPropsString(), ByRef(m_TypeID), ByRef(query.list_options),
            ByRef(query.filter), ByRef(query.sort))
      .As<Recordset>();
}

void SubMesSet::Refresh() { Fetch(); }

Long SubMesSet::TypeID() const { return m_TypeID; }
void SubMesSet::TypeID(Long value) { m_TypeID = value; }

Ref<Object> SubMesSet::CreateNew(Long TypeID, Variant Number, Variant Name) {
  const CallingOut out(this);
  if (TypeID == 0) RaiseError(error_number::kNoClassOrType);
  const auto row = Make<Dictionary>();
  row->Put("FTypeID", Variant(TypeID));
  if (!Number.IsMissing()) row->Put("FNumber", Variant(CStr(Number)));
  if (!Name.IsMissing()) row->Put("FName", Variant(CStr(Name)));
  return MakeEntity(row);
}

Long SubMesSet::ExistenceCheck(Variant TypeID, Variant Number) {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(kInfo);
  const auto list = info->Call("GetSubMesList", GetPropsString(), ByRef(TypeID)).As<Recordset>();
  if (list->RecordCount() == 0) return 0;
  return IdOfFound(list, " FNumber = '" + CStr(Number) + "'", "FItemID");
}

Ref<Object> SubMesSet::GetCurrent() { return Rows::GetCurrent(); }

void SubMesSet::Remove(Long ItemID, Long TypeID) {
  const CallingOut out(this);
  const Ref<Object> update = ServerGateway().CreateInstance(kUpdate);
  update->Call("DeleteSubMes", GetPropsString(), ByRef(ItemID), ByRef(TypeID), GetMachineName(),
               GetIPAddress());
}

Ref<Dictionary> SubMesSet::FetchRow(Long id, Long type, String number) const {
  if (id == 0) {
    if (type == 0) type = m_TypeID;
    if (type == 0) RaiseError(error_number::kNoClassOrType);
    if (number.empty()) RaiseError(error_number::kInvalidCall);
  }
  const Ref<Object> info = ServerGateway().CreateInstance(kInfo);
  const String props = GetPropsString();
  const Variant row =
      id != 0 ? info->Call("GetSubMesDetail", props, ByRef(id), ByRef(type))
              : info->Call("GetSubMesDetailByNumber", props, ByRef(type), ByRef(number));
  return row.As<Dictionary>();
}

Ref<Object> SubMesSet::Item(Long ItemID, Long TypeID, String Number) const {
  const CallingOut out(this);
  return MakeEntity(FetchRow(ItemID, TypeID, std::move(Number)));
}

Ref<Recordset> SubMesSet::RecordSet() const {
  const CallingOut out(this);
  const Ref<Recordset> list = Rows::RecordSet();
  constexpr Long kClosed = 0;
  if (list && list->State() == kClosed) Fetch();
  return Rows::RecordSet();
}

void SubMesSet::RecordSet(Ref<Recordset> value) { Rows::RecordSet(std::move(value)); }

}  // namespace qdclgl
