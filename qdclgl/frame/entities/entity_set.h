// A list of the server's rows: a recordset fetched on first use and kept until Refresh, and the
// operations that make entities of its rows or of a key. A class adds its own operations and says
// in a SetProtocol what is its own.
#pragma once

#include "qdclgl/frame/entities/walkers.h"
#include "qdclgl/frame/objects/nesting.h"
#include "qdclgl/frame/objects/variant_kind.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/frame/session/transaction_context.h"

namespace qdclgl {

// What differs between the sets of the family.
struct SetProtocol {
  const char* info_component;     // reads
  const char* update_component;   // writes
  const char* text_key_method;    // reads one row by its number or name
  bool asks_for_nothing = false;  // ExistenceCheck calls the server without a key too
};

// A recordset that is fetched on first use, and the context that its objects get.
class RowListBase : public Object, public ISetXactContext, private ApartmentMember {
  QD_BASE_MEMBERS(Object)

 public:
  QD_METHOD(void, Refresh, (), "Drops the list and fetches it again. Calls GetList.")
  QD_PROPERTY(Get, Long, Count, "The number of rows. Fetches the list on first use.")
  QD_PROPERTY(GetSet, Ref<Recordset>, RecordSet,
              "The list as it stands, Nothing before the first use; a recordset put here takes its "
              "place.")

  void SetTransactionContext(const Ref<Object>& xa) override { m_Xa = xa; }

 protected:
  // The component that lists, and what it answers.
  virtual const char* InfoComponent() const = 0;
  virtual Ref<Recordset> AskForList(Object& info) const = 0;

  // Drops the list and takes the one that `ask` gets of the component that lists.
  template <class Ask>
  void FetchBy(Ask ask) const {
    const CallingOut out(this);
    m_Rs = nullptr;  // first, so that a list that can't be fetched is not mistaken for the old one
    const Ref<Object> info = ServerGateway().CreateInstance(InfoComponent());
    m_Rs = ask(*info);
  }
  void Fetch() const;

  // The list, fetched unless there is one: what a reader sees does not change by it.
  Ref<Recordset> List() const;
  // The row under the cursor of a list. Error 5 behind the last one.
  static Ref<Dictionary> CurrentRow(const Ref<Recordset>& list);

  // The id of a key: a number as it is, a text looked up by `find`; 0 for a key of any other kind.
  template <class Find>
  static Long IdOf(const Variant& key, Find find) {
    if (IsVariantKind(key, variant_kind::kNumber)) return CLng(key);
    return IsVariantKind(key, variant_kind::kText) ? find() : 0;
  }

  Ref<Object> m_Xa;

 private:
  // A reader fetches the list on first use: what callers see of the object does not change by it.
  mutable Ref<Recordset> m_Rs;
};

// One that is asked for by options, a filter and an order.
class QueriedListBase : public RowListBase {
  QD_BASE_MEMBERS(RowListBase)

 public:
  QD_PROPERTY(GetLet, Long, ListOptions, "Options for the next Refresh.")
  QD_PROPERTY(GetLet, String, Filter, "Filter for the next Refresh.")
  QD_PROPERTY(GetLet, String, Sort, "Sort order for the next Refresh.")

 protected:
  // What a list is asked for; a server may write it, also when a reader asks.
  struct Query {
    Long list_options = 0;
    String filter;
    String sort;
  };
  Query& ListQuery() const { return m_Query; }
  virtual Ref<Recordset> FetchList(Object& info, Query& query) const = 0;
  Ref<Recordset> AskForList(Object& info) const final { return FetchList(info, m_Query); }

 private:
  mutable Query m_Query;
};

// What does not depend on the kind of entity.
class EntityListBase : public QueriedListBase {
  QD_BASE_MEMBERS(QueriedListBase)

 protected:
  virtual const SetProtocol& Protocol() const = 0;

  const char* InfoComponent() const final { return Protocol().info_component; }
  // GetList(PropsString, ListOptions, Filter, Sort), the three by reference.
  Ref<Recordset> FetchList(Object& info, Query& query) const override;
  // GetDetail(PropsString, id) for a number, the text key method (PropsString, Key by reference)
  // for a text; error 5 for any other key.
  virtual Ref<Dictionary> FetchRow(Variant Key) const;

  // ExistenceCheck(PropsString, key) with the first of `keys` that is given, each as it is to be
  // passed. When none is, it goes with the last one, left out, if the set asks for nothing;
  // otherwise 0 without a call. The component is made in any case.
  Long CheckExistence(std::initializer_list<Argument> keys);

  // Delete(PropsString, id by reference, and what follows it). Error 5 for id 0, which is no row.
  template <class... Args>
  void DeleteRow(Long id, Args&&... args) {
    if (id == 0) RaiseError(error_number::kInvalidCall);
    CallUpdate("Delete", id, std::forward<Args>(args)...);
  }
  // method(PropsString, id by reference, and what follows it) on the writing component.
  template <class... Args>
  void CallUpdate(const char* method, Long id, Args&&... args) {
    const CallingOut out(this);
    const Ref<Object> update = ServerGateway().CreateInstance(Protocol().update_component);
    update->Call(method, GetPropsString(), ByRef(id), std::forward<Args>(args)...);
  }
};

// The rows of a list as objects.
template <class Entity, class Base>
class RowList : public Base {
  QD_BASE_MEMBERS(Base)

 public:
  QD_METHOD(Ref<Entity>, GetCurrent, (),
            "The entity of the row under the cursor. Error 5 behind the last row.")
  QD_METHOD(Ref<Entity>, GetNext, (),
            "The entity of the row under the cursor; then the cursor moves on. Error 5 behind the "
            "last row.")
  QD_METHOD(Ref<Enumerator>, NewEnum, (), "The entities of all rows; the set's cursor stays.")

  // The entities in order, for C++ callers: `for (auto& entity : set)`.
  typename EnumeratorRange<Entity>::Iterator begin() {
    return typename EnumeratorRange<Entity>::Iterator(NewEnum());
  }
  std::default_sentinel_t end() const { return {}; }

 protected:
  Ref<Entity> MakeEntity(const Ref<Dictionary>& row) const {
    return MakeOfRow<Entity>(row, this->m_Xa);
  }
};

template <class Entity>
class EntitySet : public RowList<Entity, EntityListBase> {
  using Rows = RowList<Entity, EntityListBase>;
  QD_BASE_MEMBERS(Rows)

 public:
  QD_INDEXED(Get, Ref<Entity>, Item, (Variant Key),
             "The entity of an id (a number) or of a number or name (a text), read from the "
             "server; an empty one when the server knows no such row. Error 5 for any other key. "
             "Calls GetDetail or the text key's method.",
             DefaultMember)
};

template <class Entity, class Base>
Ref<Entity> RowList<Entity, Base>::GetCurrent() {
  const CallingOut out(this);
  return MakeEntity(Base::CurrentRow(this->List()));
}

template <class Entity, class Base>
Ref<Entity> RowList<Entity, Base>::GetNext() {
  const CallingOut out(this);
  const Ref<Recordset> list = this->List();  // the one that is read is the one that moves on
  Ref<Entity> entity = MakeEntity(Base::CurrentRow(list));
  list->MoveNext();
  return entity;
}

template <class Entity, class Base>
Ref<Enumerator> RowList<Entity, Base>::NewEnum() {
  const CallingOut out(this);
  auto walker = Make<EntityWalker<Entity>>();
  walker->Attach(this->List(), this->m_Xa);
  return EnumFactory().CreateEnum(walker);
}

template <class Entity>
Ref<Entity> EntitySet<Entity>::Item(Variant Key) const {
  const CallingOut out(this);
  return this->MakeEntity(this->FetchRow(std::move(Key)));
}

}  // namespace qdclgl
