#include "qdclgl/masterdata/measure_unit.h"

#include "qdclgl/frame/entities/walkers.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(MeasureUnit)
QD_DEFINE_MEMBERS(MeasureUnitSet)

namespace {

constexpr const char* kInfo = "QDSVGLUnit.MeasureUnitInfo";
constexpr const char* kUpdate = "QDSVGLUnit.MeasureUnitUpdate";

constexpr RowKey kAuxClass("FAuxClass");
constexpr RowKey kCoefficient("FCoefficient");

// The key of a unit in the collection, which no position can be mistaken for.
Variant UnitKey(Long id) { return Variant("K" + std::to_string(id)); }

}  // namespace

// ---- MeasureUnit ----

const EntityProtocol& MeasureUnit::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = kInfo,
      .update_component = kUpdate,
      .id_key = "FMeasureUnitID",
      .stamps_first = true,
  };
  return kProtocol;
}

void MeasureUnit::Refresh() { Entity::Refresh(); }
void MeasureUnit::SaveChanges() { Entity::SaveChanges(); }

Ref<Dictionary> MeasureUnit::FetchRow(Object& info) {
  return info.Call("GetUnitDetail", GetPropsString(), ByRef(m_ID)).As<Dictionary>();
}

Long MeasureUnit::CreateRow(Object& update, const Ref<Dictionary>& row) {
  const String props = GetPropsString();
  return update.Call("CreateUnit", props, UnitGroupID(), row).As<Long>();
}

void MeasureUnit::UpdateRow(Object& update, const Ref<Dictionary>& row) {
  update.Call("UpdateUnit", GetPropsString(), ByRef(m_ID), row);
}

String MeasureUnit::AuxClass() const {
  static constexpr RowOptions kPlain;
  return String(TrimBlanks(ReadField<String>(kAuxClass, kPlain)));
}

void MeasureUnit::AuxClass(String value) {
  Bag().SetValue(kAuxClass, Variant(String(TrimBlanks(value))));
}

Double MeasureUnit::Coefficient() const {
  static constexpr RowOptions kOne(row_options::Default(1));
  return ReadField<Double>(kCoefficient, kOne);
}

void MeasureUnit::Coefficient(Double value) {
  if (DoubleLosesPrecision(value)) RaiseError(error_number::kCoefficientRejected);
  Bag().SetValue(kCoefficient, Variant(value));
}

Long MeasureUnit::MeasureUnitID() const { return m_ID; }

Boolean MeasureUnit::Modified() const { return Bag().Modified(); }

// ---- MeasureUnitSet ----

Ref<MeasureUnit> MeasureUnitSet::MakeUnit(const Ref<Dictionary>& row) const {
  return MakeOfRow<MeasureUnit>(row, m_Xa);
}

void MeasureUnitSet::Append(Ref<qdclgl::MeasureUnit>& MeasureUnit) {
  const CallingOut out(this);
  const Ref<qdclgl::MeasureUnit> unit = MeasureUnit;
  if (unit->UnitGroupID() != UnitGroupID()) RaiseError(error_number::kTypeMismatch);
  if (unit->MeasureUnitID() == 0) unit->SaveChanges();
  const Ref<Collection> units = m_Units;
  units->Add(Variant(unit), UnitKey(unit->MeasureUnitID()));
  MeasureUnit = unit;
}

Ref<MeasureUnit> MeasureUnitSet::CreateNew() {
  const CallingOut out(this);
  Ref<MeasureUnit> unit = MakeUnit(Nothing);
  unit->UnitGroupID(UnitGroupID());
  return unit;
}

Variant MeasureUnitSet::ExistenceCheck(Long UnitID) {
  const CallingOut out(this);
  const Ref<Object> update = ServerGateway().CreateInstance(kUpdate);
  return update->Call("UnitExistenceCheck", GetPropsString(), ByRef(UnitID));
}

Ref<MeasureUnit> MeasureUnitSet::Find(String UnitNumber, String UnitName) {
  const CallingOut out(this);
  for (auto& unit : *this) {
    if (unit.Number() == UnitNumber || unit.Name() == UnitName) return Ref<MeasureUnit>(&unit);
  }
  return Nothing;
}

Ref<MeasureUnit> MeasureUnitSet::GetUnit(Long UnitID) {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(kInfo);
  return MakeUnit(info->Call("GetUnitDetail", GetPropsString(), ByRef(UnitID)).As<Dictionary>());
}

Ref<Enumerator> MeasureUnitSet::NewEnum() { return m_Units->NewEnum(); }

void MeasureUnitSet::Refresh() {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(kInfo);
  info->Let("ShowDeleted", ShowDeleted());
  const auto list =
      info->Call("GetUnitList", GetPropsString(), ByRef(m_UnitGroupID), ByRef(m_Filter))
          .As<Recordset>();
  const Ref<Vector> rows = RecordsetToVector(list);
  const auto units = Make<Collection>();
  const Ref<Collection> former = std::exchange(m_Units, units);
  for (Long i = 1; i <= rows->Count(); ++i) {
    const Ref<MeasureUnit> unit = MakeUnit(rows->Item(i).As<Dictionary>());
    units->Add(Variant(unit), UnitKey(unit->MeasureUnitID()));
  }
}

void MeasureUnitSet::Remove(Long index, Long MeasureUnitID) {
  const CallingOut out(this);
  const Ref<MeasureUnit> unit = Item(index, MeasureUnitID);
  const Ref<Object> update = ServerGateway().CreateInstance(kUpdate);
  const String props = GetPropsString();
  const Long id = unit->MeasureUnitID();
  update->Call("DeleteUnit", props, id, GetMachineName(), GetIPAddress());
  const Ref<Collection> units = m_Units;
  units->Remove(UnitKey(id));
}

Long MeasureUnitSet::Count() const { return m_Units->Count(); }

Ref<MeasureUnit> MeasureUnitSet::Item(Long index, Long MeasureUnitID) const {
  try {
    return m_Units->Item(index != 0 ? Variant(index) : UnitKey(MeasureUnitID)).As<MeasureUnit>();
  } catch (const Error&) {
    return Nothing;
  }
}

}  // namespace qdclgl
