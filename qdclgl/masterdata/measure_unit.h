// Units of measure: each belongs to a group, with its coefficient to the group's base. The set
// holds the units of one group as live objects, which callers share with it.
//
// Server components: QDSVGLUnit.MeasureUnitInfo reads, .MeasureUnitUpdate writes.
#pragma once

#include "qdclgl/frame/containers/collection.h"
#include "qdclgl/frame/entities/entity.h"

namespace qdclgl {

class MeasureUnit final : public Entity {
  QD_MEMBERS(MeasureUnit, Entity, Creatable, "A unit of measure of a unit group.")

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_METHOD(void, Refresh, (),
            "Reads the row again; does nothing for a unit that is not saved. Calls GetUnitDetail.")
  QD_METHOD(void, SaveChanges, (),
            "Writes a changed row to the server and reads it again; does nothing without a change. "
            "Calls CreateUnit or UpdateUnit, then GetUnitDetail.")
  QD_PROPERTY(GetLet, String, AuxClass,
              "Text for the server, without blanks at its ends. Key FAuxClass.")
  QD_PROPERTY(GetLet, Double, Coefficient,
              "How many of the group's base make one of this unit; 1 where the row has none. Error "
              "0x80044150 for a value of more than 15 significant digits. Key FCoefficient.")
  QD_FIELD(GetLet, Long, Conversation, "FConversation", "Carried for the server.", Default(1))
  QD_FIELD(Get, Boolean, Deleted, "FDeleted", "Whether the unit is deleted.")
  QD_PROPERTY(Get, Long, MeasureUnitID, "The id of the unit; 0 while it is not saved.")
  QD_PROPERTY(Get, Boolean, Modified, "Whether the row was edited since it last came.")
  QD_FIELD(GetLet, String, Name, "FName", "The unit's name.")
  QD_FIELD(GetLet, String, Number, "FNumber", "The unit's number, in the case it was written in.")
  QD_FIELD(GetLet, Long, Precision, "FPrecision", "Carried for the server.")
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, Long, Standard, "FStandard", "Carried for the server.")
  QD_FIELD(GetLet, Long, UnitGroupID, "FUnitGroupID", "The id of the unit's group.")
  QD_FIELD(GetLet, String, UUID, "UUID", "The unit's global identifier.")

 protected:
  const EntityProtocol& Protocol() const override;
  Ref<Dictionary> FetchRow(Object& info) override;
  Long CreateRow(Object& update, const Ref<Dictionary>& row) override;
  void UpdateRow(Object& update, const Ref<Dictionary>& row) override;
};

// Error 91 for a use of the collection before the first Refresh.
class MeasureUnitSet final : public Object, public ISetXactContext, private ApartmentMember {
  QD_MEMBERS(MeasureUnitSet, Object, Creatable, "The units of one unit group.")

 public:
  QD_VARIABLE(Boolean, ShowDeleted, false,
              "Whether the next Refresh brings deleted units too; written to the server's property "
              "of that name.")
  QD_VARIABLE(String, Filter, "", "Filter for the next Refresh.")
  QD_METHOD(void, Append, (Ref<MeasureUnit> & MeasureUnit),
            "Adds a unit of the set's group to the collection, saved first where it is new. Error "
            "13 for a unit of another group, 457 for one that is there already.")
  QD_METHOD(Ref<MeasureUnit>, CreateNew, (),
            "A new unit of the set's group. It is not saved and not in the collection.")
  QD_METHOD(Variant, ExistenceCheck, (Long UnitID),
            "What the server's writing component answers to UnitExistenceCheck.")
  QD_METHOD(Ref<MeasureUnit>, Find, (String UnitNumber = {}, String UnitName = {}),
            "The first unit of the collection with that number or that name, both told exactly; "
            "Nothing when there is none. A text left out finds a unit that has none.")
  QD_METHOD(Ref<MeasureUnit>, GetUnit, (Long UnitID),
            "The unit of an id, of whatever group, read from the server. Calls GetUnitDetail.")
  QD_METHOD(Ref<Enumerator>, NewEnum, (), "The units of the collection in order.")
  QD_METHOD(void, Refresh, (),
            "Makes the collection anew of the server's list. A failure of the server leaves the "
            "former one; a row that can't be a unit leaves those before it. Writes ShowDeleted, "
            "calls GetUnitList.")
  QD_METHOD(void, Remove, (Long index = {}, Long MeasureUnitID = {}),
            "Deletes the unit that Item would give and takes it out of the collection. Error 91 "
            "when there is none. Calls DeleteUnit.")
  QD_PROPERTY(Get, Long, Count, "The number of units in the collection.")
  QD_INDEXED(Get, Ref<MeasureUnit>, Item, (Long index = {}, Long MeasureUnitID = {}),
             "The unit at a position from 1, or of an id where the position is 0; Nothing when "
             "there is none, or no collection yet.",
             DefaultMember)
  QD_VARIABLE(Long, UnitGroupID, 0, "The id of the group whose units the set holds.")

  void SetTransactionContext(const Ref<Object>& xa) override { m_Xa = xa; }

  // The units in order, for C++ callers: `for (auto& unit : *set)`.
  EnumeratorRange<MeasureUnit>::Iterator begin() {
    return EnumeratorRange<MeasureUnit>::Iterator(NewEnum());
  }
  std::default_sentinel_t end() const { return {}; }

 private:
  Ref<MeasureUnit> MakeUnit(const Ref<Dictionary>& row) const;

  Ref<Collection> m_Units;  // Nothing before the first Refresh
  Ref<Object> m_Xa;
};

}  // namespace qdclgl
