// One row of the server as an object: its working copy, the row it came from, and the way there
// and back. A class adds its members and says in an EntityProtocol what is its own.
#pragma once

#include "qdclgl/frame/entities/row_view.h"
#include "qdclgl/frame/objects/nesting.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/frame/session/transaction_context.h"

namespace qdclgl {

// What differs between the entities of the family.
struct EntityProtocol {
  const char* info_component;    // reads
  const char* update_component;  // writes
  std::string_view id_key;       // the key that holds the id in a row
  // How the working copy's Dictionary tracks changes (Dictionary::SetTrackState).
  Long construct_track_state = 0;
  Long reload_track_state = 1;
  bool stamps_first = false;  // a save stamps the row before it makes the component
};

class Entity : public RowView, public ISetXactContext, private ApartmentMember {
  QD_BASE_MEMBERS(RowView)

 public:
  QD_METHOD(void, CancelChanges, (),
            "Throws the working copy away and takes a new copy of the row as it last came. No "
            "server call.")
  QD_METHOD(void, Construct, (const Ref<Dictionary>& dict, const Ref<Object>& xa),
            "Makes the object of a row, or an empty one of Nothing; a row that can't be copied "
            "leaves the object as it was. No server call.")
  QD_METHOD(void, Refresh, (),
            "Reads the row again; does nothing for an object that is not saved. Calls GetDetail.")
  QD_METHOD(void, SaveChanges, (),
            "Writes a changed row to the server and reads it again; does nothing without a change. "
            "Calls Create or Update, then GetDetail.")
  QD_INHERITED(Properties)

  void SetTransactionContext(const Ref<Object>& xa) override { m_Xa = xa; }

 protected:
  virtual const EntityProtocol& Protocol() const = 0;

  // Whether there is anything to save; the Dictionary's own record unless a class overrides it.
  virtual bool HasChanges() const { return Bag().Modified(); }
  // The id that a row gives the object.
  virtual Long IdIn(const Dictionary& row) const;
  // GetDetail(PropsString, id by reference).
  virtual Ref<Dictionary> FetchRow(Object& info);
  // Create(PropsString, row): the new id.
  virtual Long CreateRow(Object& update, const Ref<Dictionary>& row);
  // Update(PropsString, id by reference, row).
  virtual void UpdateRow(Object& update, const Ref<Dictionary>& row);
  // Stamps the row and hands it to the server: a save without its question and its reading back.
  void WriteRow();
  // Makes what Refresh has read the object's row; Reload, unless a class makes the object anew.
  virtual void TakeRow(Ref<Dictionary> row) { Reload(std::move(row)); }
  // Writes "MachineName" and "IPAddress" into the working Dictionary; no change flag is set.
  virtual void StampMachine();

  // Makes `row` the baseline and the object's row a copy of it. A copy that fails leaves the object
  // as it was.
  void Reload(Ref<Dictionary> row);

  Long m_ID = 0;               // 0 for a row that is not on the server yet
  Ref<Dictionary> m_DictOrig;  // the row as it last came
  Ref<Object> m_Xa;
};

}  // namespace qdclgl
