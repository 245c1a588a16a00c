#include "qdclgl/masterdata/named_row.h"

#include "qdclgl/frame/platform/machine.h"

namespace qdclgl {

// ---- The row ----

void NamedRow::Reset(const Ref<Object>& xa, Long id, String name) {
  Ref<Object> context = xa;  // which may be the object's own
  m_ID = id;
  m_OrigName = name;
  m_Name = std::move(name);
  m_Modified = false;
  std::swap(m_Xa, context);
}

void NamedRow::CancelChanges() {
  m_Name = m_OrigName;
  m_Modified = false;
}

void NamedRow::Refresh() {
  if (m_ID == 0) return;
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  const auto row =
      info->Call(Protocol().detail_method, GetPropsString(), ByRef(m_ID)).As<Dictionary>();
  TakeDetail(*row);
}

void NamedRow::SaveChanges() {
  if (!m_Modified) return;
  const CallingOut out(this);
  const Ref<Object> update = ServerGateway().CreateInstance(Protocol().update_component);
  const String props = GetPropsString();
  const String machine = GetMachineName(), address = GetIPAddress();
  if (m_ID != 0) {
    update->Call(Protocol().rename_method, props, ByRef(m_ID), ByRef(m_Name), machine, address);
  } else {
    m_ID =
        update->Call(Protocol().create_method, props, ByRef(m_Name), machine, address).As<Long>();
  }
  m_Modified = false;
}

String NamedRow::Name() const { return m_Name; }

void NamedRow::Name(String value) {
  m_Name = std::move(value);
  m_Modified = true;
}

String NamedRow::UUID() const { return {}; }
void NamedRow::UUID(String) {}

// ---- The list ----

Long IdOfFound(const Ref<Recordset>& list, const String& criterion, std::string_view id_column) {
  list->Find(criterion);
  if (list->Eof()) return 0;
  return CLng(list->FieldValue(list->FieldPosition(id_column)));
}

Long NamedRowListBase::IdOfRow(std::string_view id_column, const Variant& id, const Variant& name) {
  const CallingOut out(this);
  Fetch();
  const Ref<Recordset> list = RecordSet();
  if (list->RecordCount() == 0) return 0;
  if (!id.IsMissing()) {
    return IdOfFound(list, String(id_column) + " = " + std::to_string(CLng(id)), id_column);
  }
  if (name.IsMissing()) return 0;
  return IdOfFound(list, "FName = '" + CStr(name) + "'", id_column);
}

Ref<Dictionary> NamedRowListBase::DetailOf(const char* method, Variant key) const {
  const Ref<Object> info = ServerGateway().CreateInstance(InfoComponent());
  return info->Call(method, GetPropsString(), ByRef(key)).As<Dictionary>();
}

void NamedRowListBase::DeleteRow(const char* component, const char* method, Long id) {
  const CallingOut out(this);
  const Ref<Object> update = ServerGateway().CreateInstance(component);
  update->Call(method, GetPropsString(), ByRef(id), GetMachineName(), GetIPAddress());
  Fetch();
}

}  // namespace qdclgl
