#include "qdclgl/frame/entities/entity.h"

#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"

namespace qdclgl {

void Entity::Construct(const Ref<Dictionary>& dict, const Ref<Object>& xa) {
  const CallingOut out(this);
  Ref<Object> context = xa;
  Ref<Dictionary> row = dict;
  qdclgl::Bag bag;
  bag.Attach(row, false, Nothing, Protocol().construct_track_state);
  std::swap(m_DictOrig, row);
  const Ref<qdclgl::Properties> former = PutBag(bag);
  if (const Ref<Dictionary> taken = m_DictOrig) m_ID = IdIn(*taken);
  std::swap(m_Xa, context);
}

void Entity::CancelChanges() {
  const CallingOut out(this);
  Reload(m_DictOrig);
}

void Entity::Refresh() {
  if (m_ID == 0) return;
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  TakeRow(FetchRow(*info));
}

void Entity::Reload(Ref<Dictionary> row) {
  Bag();  // error 91, before anything is copied, for an object that was never constructed
  qdclgl::Bag bag;
  bag.Attach(row, false, Nothing, Protocol().reload_track_state);
  std::swap(m_DictOrig, row);
  PutSharedBag(bag);
}

void Entity::SaveChanges() {
  if (!HasChanges()) return;
  const CallingOut out(this);
  WriteRow();
  Refresh();
}

void Entity::WriteRow() {
  if (Protocol().stamps_first) StampMachine();
  const Ref<Object> update = ServerGateway().CreateInstance(Protocol().update_component);
  if (!Protocol().stamps_first) StampMachine();
  const Ref<Dictionary> dict = Bag().Dictionary();
  if (m_ID != 0) {
    UpdateRow(*update, dict);
  } else {
    m_ID = CreateRow(*update, dict);
  }
}

Long Entity::CreateRow(Object& update, const Ref<Dictionary>& row) {
  return update.Call("Create", GetPropsString(), row).As<Long>();
}

void Entity::UpdateRow(Object& update, const Ref<Dictionary>& row) {
  update.Call("Update", GetPropsString(), ByRef(m_ID), row);
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
