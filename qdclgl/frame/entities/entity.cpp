#include "qdclgl/frame/entities/entity.h"

#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"

namespace qdclgl {

void Entity::Construct(const Ref<Dictionary>& dict, const Ref<Object>& xa) {
  m_DictOrig = dict;
  Attach(dict, false, Nothing, Protocol().construct_track_state);
  if (dict) m_ID = IdIn(*dict);
  m_Xa = xa;
}

void Entity::CancelChanges() { Reattach(m_DictOrig, Protocol().reload_track_state); }

void Entity::Refresh() {
  if (m_ID == 0) return;
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  m_DictOrig = FetchRow(*info);
  Reattach(m_DictOrig, Protocol().reload_track_state);
}

void Entity::SaveChanges() {
  if (!HasChanges()) return;
  const Ref<Object> update = ServerGateway().CreateInstance(Protocol().update_component);
  StampMachine();
  const Ref<Dictionary> dict = Bag().Dictionary();
  if (m_ID != 0) {
    update->Call("Update", GetPropsString(), ByRef(m_ID), dict);
  } else {
    m_ID = update->Call("Create", GetPropsString(), dict).As<Long>();
  }
  Refresh();
}

Long Entity::IdIn(const Dictionary& row) const { return row.Value(Protocol().id_key).As<Long>(); }

Ref<Dictionary> Entity::FetchRow(Object& info) {
  return info.Call("GetDetail", GetPropsString(), ByRef(m_ID)).As<Dictionary>();
}

void Entity::StampMachine() {
  const Ref<Dictionary> dict = Bag().Dictionary();
  dict->Put("MachineName", Variant(GetMachineName()));
  dict->Put("IPAddress", Variant(GetIPAddress()));
}

}  // namespace qdclgl
