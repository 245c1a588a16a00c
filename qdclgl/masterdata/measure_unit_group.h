// Groups of units of measure, each with a default unit. A group holds plain values and no bag.
//
// Server components: QDSVGLUnit.MeasureUnitInfo reads, .MeasureUnitUpdate writes.
#pragma once

#include "qdclgl/masterdata/measure_unit.h"
#include "qdclgl/masterdata/named_row.h"

namespace qdclgl {

class MeasureUnitGroup final : public NamedRow {
  QD_MEMBERS(MeasureUnitGroup, NamedRow, Creatable, "A group of units of measure.")

 public:
  QD_METHOD(void, AdjustCoefficient, (Double Factor, Boolean bDivision = false),
            "Has the server multiply the coefficients of all units of the group by a factor, or "
            "divide them by it; a factor of 1 makes no call. Units that callers hold stay as they "
            "are until their Refresh. Error 0x80044150 for 0 and for a factor of more than 15 "
            "significant digits.")
  QD_INHERITED(CancelChanges)
  QD_METHOD(void, Construct,
            (const Ref<Object>& xa, Long GroupID = 0, String GroupName = "", Long DefaultUnitID = 0,
             Variant DefaultUnit = ""),
            "Makes the object of values; a default unit of Null has an empty name. No server call.")
  QD_METHOD(Long, ExistenceCheck, (Variant UnitID = Missing, Variant Name = Missing),
            "The id of the unit, of whatever group, with that id, or otherwise that name; 0 when "
            "there is none or neither is given. Calls UnitExistenceCheck.")
  QD_METHOD(Ref<MeasureUnit>, GetDefaultUnit, (),
            "The default unit, read from the server; Nothing when there is none. Calls "
            "UnitExistenceCheck and GetUnitDetail.")
  QD_METHOD(void, Refresh, (),
            "Reads the group again; does nothing for one that is not saved. Calls "
            "GetUnitGroupDetail.")
  QD_METHOD(void, SaveChanges, (),
            "Creates or renames the group; does nothing unless Name was written. The group is not "
            "read again. Calls CreateUnitGroup or RenameUnitGroup.")
  QD_METHOD(void, SetDefaultUnit, (Long UnitID),
            "Makes a unit the default one. DefaultUnit keeps the former name until Refresh. Calls "
            "SetDefaultMeasureUnit.")
  QD_PROPERTY(Get, String, DefaultUnit, "The name of the default unit, as it last came.")
  QD_PROPERTY(Get, Long, DefaultUnitID, "The id of the default unit; 0 for none.")
  QD_PROPERTY(Get, Long, GroupID, "The id of the group; 0 while it is not saved.")
  QD_INHERITED(Name)
  QD_INHERITED(UUID)

  // Construct of the values in a row of the server's.
  void TakeRow(const Ref<Dictionary>& row, const Ref<Object>& xa);

 protected:
  const NamedRowProtocol& Protocol() const override;
  void TakeDetail(const Dictionary& row) override;

 private:
  Long m_DefaultUnitID = 0;
  String m_DefaultUnit;
};

class MeasureUnitGroupSet final : public RowList<MeasureUnitGroup, NamedRowListBase> {
  using Rows = RowList<MeasureUnitGroup, NamedRowListBase>;
  QD_MEMBERS(MeasureUnitGroupSet, Rows, Creatable, "The list of unit groups.")

 public:
  QD_METHOD(Ref<MeasureUnitGroup>, CreateNew, (), "A new group; it is not saved.")
  QD_METHOD(Long, ExistenceCheck, (Variant GroupID = Missing, Variant Name = Missing),
            "The id of the group with that id, or otherwise that name, in a list that is fetched "
            "for it and stands on the row found; 0 when there is none or neither is given. Error "
            "3001 for a name with a quote. Calls GetUnitGroupList.")
  QD_INHERITED(GetCurrent)
  QD_INHERITED(GetNext)
  QD_INHERITED(NewEnum)
  QD_METHOD(void, Refresh, (), "Drops the list and fetches it again. Calls GetUnitGroupList.")
  QD_METHOD(void, Remove, (Variant Key),
            "Deletes the group of an id (a number) or a name (a text) and fetches the list again. "
            "Error 5 when there is none. Calls DeleteUnitGroup, behind GetUnitGroupID for a name.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<MeasureUnitGroup>, Item, (Variant Key),
             "The group of a key, read from the server, which decides what the key is. Error 91 "
             "when the server knows no such group. Calls GetUnitGroupDetail.",
             DefaultMember)
  QD_INHERITED(RecordSet)
  QD_PROPERTY(GetLet, Long, UnitGroupID, "The group to list; 0 lists all.")

 protected:
  const char* InfoComponent() const override;
  Ref<Recordset> AskForList(Object& info) const override;

 private:
  mutable Long m_UnitGroupID = 0;  // a server may write it when a reader fetches the list
};

}  // namespace qdclgl
