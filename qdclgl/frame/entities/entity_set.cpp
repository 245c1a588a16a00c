#include "qdclgl/frame/entities/entity_set.h"

#include <algorithm>

#include "qdclgl/frame/objects/variant_kind.h"

namespace qdclgl {

// ---- The recordset ----

void RowListBase::Refresh() { Fetch(); }

void RowListBase::Fetch() const {
  FetchBy([this](Object& info) { return AskForList(info); });
}

Long RowListBase::Count() const {
  const Ref<Recordset> list = List();
  return list->RecordCount();
}

Ref<Recordset> RowListBase::RecordSet() const { return m_Rs; }

void RowListBase::RecordSet(Ref<Recordset> value) { m_Rs = std::move(value); }

Ref<Recordset> RowListBase::List() const {
  const Ref self(this);
  if (!m_Rs) Fetch();
  if (!m_Rs) RaiseError(error_number::kObjectNotSet);  // the server answered with Nothing
  return m_Rs;
}

Ref<Dictionary> RowListBase::CurrentRow(const Ref<Recordset>& list) {
  if (list->Eof()) RaiseError(error_number::kInvalidCall);
  return RowToDictionary(list);
}

// ---- The fields ----

Long QueriedListBase::ListOptions() const { return m_Query.list_options; }
void QueriedListBase::ListOptions(Long value) { m_Query.list_options = value; }

String QueriedListBase::Filter() const { return m_Query.filter; }
void QueriedListBase::Filter(String value) { m_Query.filter = std::move(value); }

String QueriedListBase::Sort() const { return m_Query.sort; }
void QueriedListBase::Sort(String value) { m_Query.sort = std::move(value); }

// ---- The keys ----

Ref<Recordset> EntityListBase::FetchList(Object& info, Query& query) const {
  return info
      .Call("GetList", GetPropsString(), ByRef(query.list_options), ByRef(query.filter),
            ByRef(query.sort))
      .As<Recordset>();
}

Ref<Dictionary> EntityListBase::FetchRow(Variant Key) const {
  const bool by_id = IsVariantKind(Key, variant_kind::kNumber);
  if (!by_id && !IsVariantKind(Key, variant_kind::kText)) RaiseError(error_number::kInvalidCall);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  const String props = GetPropsString();
  const Variant row = by_id ? info->Call("GetDetail", props, CLng(Key))
                            : info->Call(Protocol().text_key_method, props, ByRef(Key));
  return row.As<Dictionary>();
}

Long EntityListBase::CheckExistence(std::initializer_list<Argument> keys) {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  const auto given = std::ranges::find_if_not(keys, &Argument::IsMissing);
  if (given == keys.end() && !Protocol().asks_for_nothing) return 0;
  const Argument& key = given == keys.end() ? *(given - 1) : *given;
  return info->Call("ExistenceCheck", GetPropsString(), Argument(key)).As<Long>();
}

}  // namespace qdclgl
