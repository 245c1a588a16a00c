// Sub-messages: the entries of the small dictionaries that sub-message types name. Every call says
// which type is meant.
//
// Server components: QDSVGLItem.ItemInfo reads, .ItemUpdate writes.
#pragma once

#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/frame/entities/entity_set.h"

namespace qdclgl {

class SubMes final : public Entity {
  QD_MEMBERS(SubMes, Entity, Creatable, "An entry of a sub-message dictionary.")

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_METHOD(void, Refresh, (),
            "Reads the row again; does nothing for one that is not saved. Calls GetSubMesDetail.")
  QD_METHOD(void, SaveChanges, (),
            "Writes a changed row to the server and reads it again; does nothing without a change. "
            "Calls CreateSubMes or UpdateSubMes, then GetSubMesDetail.")
  QD_FIELD(GetLet, Double, AgioRatio, "FAgioRatio", "Carried for the server.")
  QD_FIELD(GetLet, Double, Coefficient, "FCoefficient", "Carried for the server.")
  QD_PROPERTY(Get, Long, ItemID, "The id of the entry; 0 while it is not saved.")
  QD_PROPERTY(Get, Boolean, Modified, "Whether the row was edited since it last came.")
  QD_FIELD(GetLet, String, Name, "FName", "The entry's name.")
  QD_FIELD(GetLet, String, FullName, "FFullName", "The entry's full name.")
  QD_FIELD(GetLet, String, Number, "FNumber", "The entry's number.")
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, Long, sDay, "FDay", "A count of days, carried for the server.")
  QD_FIELD(GetLet, String, Spec, "FSpec", "Text for the server.")
  QD_FIELD(GetLet, Long, TypeID, "FTypeID", "The id of the entry's type.")
  QD_FIELD(GetLet, String, UUID, "UUID", "The entry's global identifier.")

 protected:
  const EntityProtocol& Protocol() const override;
  Ref<Dictionary> FetchRow(Object& info) override;
  Long CreateRow(Object& update, const Ref<Dictionary>& row) override;
  void UpdateRow(Object& update, const Ref<Dictionary>& row) override;
};

class SubMesSet final : public RowList<SubMes, QueriedListBase> {
  using Rows = RowList<SubMes, QueriedListBase>;
  QD_MEMBERS(SubMesSet, Rows, Creatable, "The entries of a sub-message dictionary.")

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_PROPERTY(GetLet, Long, TypeID, "The id of the type whose entries are listed.")
  QD_METHOD(Ref<Object>, CreateNew, (Long TypeID, Variant Number = Missing, Variant Name = Missing),
            "A new SubMes of a type, with that number and name where given, which CancelChanges "
            "brings back; it is not saved. Error 0x80044104 for type 0.")
  QD_METHOD(Long, ExistenceCheck, (Variant TypeID, Variant Number),
            "The id of the entry of a type with that number, 0 when there is none. The set's own "
            "list stays. Error 3001 for a number with a quote. Calls GetSubMesList.")
  QD_METHOD(Ref<Object>, GetCurrent, (),
            "The SubMes of the row under the cursor. Error 5 behind the last row.")
  QD_INHERITED(GetNext)
  QD_INHERITED(NewEnum)
  QD_METHOD(void, Refresh, (), "Drops the list and fetches it again. Calls GetSubMesList.")
  QD_METHOD(void, Remove, (Long ItemID, Long TypeID = {}),
            "Deletes an entry; the list keeps showing it until Refresh. Calls DeleteSubMes.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<Object>, Item, (Long ItemID = {}, Long TypeID = {}, String Number = {}),
             "The SubMes of an id, or of a number in a type, read from the server; without a type "
             "the set's own is meant. Error 0x80044104 without id and type, 5 without id and "
             "number. Calls GetSubMesDetail or GetSubMesDetailByNumber.")
  QD_PROPERTY(GetSet, Ref<Recordset>, RecordSet,
              "The list as it stands, fetched again where it was closed, Nothing before the first "
              "use; a recordset put here takes its place.")

 protected:
  const char* InfoComponent() const override;
  Ref<Recordset> FetchList(Object& info, Query& query) const override;

 private:
  Ref<Dictionary> FetchRow(Long id, Long type, String number) const;

  mutable Long m_TypeID = 0;  // a server may write it when a reader fetches the list
};

}  // namespace qdclgl
