// Types of sub-messages: the names of the small dictionaries whose entries are SubMes rows. A type
// holds plain values and no bag.
//
// Server components: QDSVGLItem.ItemInfo reads, .ItemUpdate writes.
#pragma once

#include "qdclgl/masterdata/named_row.h"

namespace qdclgl {

class SubMesType final : public NamedRow {
  QD_MEMBERS(SubMesType, NamedRow, Creatable, "A type of sub-messages.")

 public:
  QD_INHERITED(CancelChanges)
  QD_METHOD(void, Construct, (const Ref<Object>& xa, Long TypeID = 0, String Name = ""),
            "Makes the object of values. No server call.")
  QD_METHOD(void, Refresh, (),
            "Reads the type again; does nothing for one that is not saved. Calls "
            "GetSubMesTypeDetail.")
  QD_METHOD(void, SaveChanges, (),
            "Creates or renames the type; does nothing unless Name was written. The type is not "
            "read again. Calls CreateSubMesType or RenameSubMesType.")
  QD_INHERITED(Name)
  QD_PROPERTY(Get, Long, TypeID, "The id of the type; 0 while it is not saved.")
  QD_INHERITED(UUID)

  // Construct of the values in a row of the server's.
  void TakeRow(const Ref<Dictionary>& row, const Ref<Object>& xa);

 protected:
  const NamedRowProtocol& Protocol() const override;
  void TakeDetail(const Dictionary& row) override;
};

class SubMesTypeSet final : public RowList<SubMesType, NamedRowListBase> {
  using Rows = RowList<SubMesType, NamedRowListBase>;
  QD_MEMBERS(SubMesTypeSet, Rows, Creatable, "The list of types of sub-messages.")

 public:
  QD_PROPERTY(GetLet, String, Filter, "Filter for the next Refresh.")
  QD_METHOD(Ref<SubMesType>, CreateNew, (), "A new type; it is not saved.")
  QD_METHOD(Long, ExistenceCheck, (Variant ClassID = Missing, Variant Name = Missing),
            "The id of the type with that id, or otherwise that name, in a list that is fetched "
            "for it and stands on the row found; 0 when there is none or neither is given. Error "
            "3001 for a name with a quote. Calls GetSubMesTypeList.")
  QD_INHERITED(GetCurrent)
  QD_INHERITED(GetNext)
  QD_INHERITED(NewEnum)
  QD_METHOD(void, Refresh, (), "Drops the list and fetches it again. Calls GetSubMesTypeList.")
  QD_METHOD(void, Remove, (Variant Key),
            "Deletes the type of an id (a number) and fetches the list again; a key of any other "
            "kind goes to the server as id 0. Error 5 with words for the types that the system "
            "comes with, 21 to 499 and 601 to 999. Calls DeleteSubMesType.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<SubMesType>, Item, (Variant Key),
             "The type of a key, read from the server, which decides what the key is. Error 91 "
             "when the server knows no such type. Calls GetSubMesTypeDetail.")
  QD_INHERITED(RecordSet)

 protected:
  const char* InfoComponent() const override;
  Ref<Recordset> AskForList(Object& info) const override;

 private:
  mutable String m_Filter;  // a server may write it when a reader fetches the list
};

}  // namespace qdclgl
