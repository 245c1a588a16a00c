// A row of the server that is no more than an id and a name, kept as plain values without a bag: a
// class adds what else it holds and says in a NamedRowProtocol how it is read and written. And the
// list of such rows, which is searched here and not on the server.
#pragma once

#include "qdclgl/frame/entities/entity_set.h"

namespace qdclgl {

struct NamedRowProtocol {
  const char* info_component;    // reads
  const char* update_component;  // writes
  const char* detail_method;
  const char* create_method;
  const char* rename_method;
};

class NamedRow : public Object, public ISetXactContext, private ApartmentMember {
  QD_BASE_MEMBERS(Object)

 public:
  QD_METHOD(void, CancelChanges, (),
            "Brings back the name that the last Construct gave, also behind a save. No server "
            "call.")
  QD_METHOD(void, Refresh, (), "Reads the row again; does nothing for one that is not saved.")
  QD_METHOD(void, SaveChanges, (),
            "Creates or renames the row; does nothing unless Name was written. The row is not read "
            "again.")
  QD_PROPERTY(GetLet, String, Name, "The name; any write counts as a change.")
  QD_PROPERTY(GetLet, String, UUID, "Always empty; what is written is lost.")

  void SetTransactionContext(const Ref<Object>& xa) override { m_Xa = xa; }

 protected:
  virtual const NamedRowProtocol& Protocol() const = 0;
  // Takes the values of the row that was read, with the id and the context as they are.
  virtual void TakeDetail(const Dictionary& row) = 0;

  // What all of them take from a Construct.
  void Reset(const Ref<Object>& xa, Long id, String name);

  Long m_ID = 0;
  String m_OrigName;
  String m_Name;
  Boolean m_Modified = false;
  Ref<Object> m_Xa;
};

// The id in the first row from the cursor on that meets the criterion, 0 when there is none; the
// cursor stays there.
Long IdOfFound(const Ref<Recordset>& list, const String& criterion, std::string_view id_column);

// A list of such rows.
class NamedRowListBase : public RowListBase {
  QD_BASE_MEMBERS(RowListBase)

 protected:
  // The id of the row with that id, or otherwise that name, in a list that is fetched for it; 0
  // when there is none or neither is given. The cursor stays where the search ended.
  Long IdOfRow(std::string_view id_column, const Variant& id, const Variant& name);
  // method(PropsString, Key by reference) on the reading component.
  Ref<Dictionary> DetailOf(const char* method, Variant key) const;
  // method(PropsString, id by reference, machine, address) on the writing component; then the list
  // is fetched again.
  void DeleteRow(const char* component, const char* method, Long id);
};

}  // namespace qdclgl
