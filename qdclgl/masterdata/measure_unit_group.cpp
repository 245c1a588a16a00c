#include "qdclgl/masterdata/measure_unit_group.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/values/value_rules.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(MeasureUnitGroup)
QD_DEFINE_MEMBERS(MeasureUnitGroupSet)

namespace {

constexpr const char* kInfo = "QDSVGLUnit.MeasureUnitInfo";
constexpr const char* kUpdate = "QDSVGLUnit.MeasureUnitUpdate";
constexpr const char* kGetDetail = "GetUnitGroupDetail";

}  // namespace

// ---- MeasureUnitGroup ----

const NamedRowProtocol& MeasureUnitGroup::Protocol() const {
  static constexpr NamedRowProtocol kProtocol = {
      .info_component = kInfo,
      .update_component = kUpdate,
      .detail_method = kGetDetail,
      .create_method = "CreateUnitGroup",
      .rename_method = "RenameUnitGroup",
  };
  return kProtocol;
}

void MeasureUnitGroup::Construct(const Ref<Object>& xa, Long GroupID, String GroupName,
                                 Long DefaultUnitID, Variant DefaultUnit) {
  const CallingOut out(this);
  m_DefaultUnit = CStr(EnumFactory().NullToDefault(DefaultUnit, Variant("")));
  m_DefaultUnitID = DefaultUnitID;
  Reset(xa, GroupID, std::move(GroupName));
}

void MeasureUnitGroup::TakeRow(const Ref<Dictionary>& row, const Ref<Object>& xa) {
  Construct(xa, row->Value("FUnitGroupID").As<Long>(), row->Value("FName").As<String>(),
            row->Value("FDefaultUnitID").As<Long>(), row->Value("FDefaultUnit"));
}

void MeasureUnitGroup::TakeDetail(const Dictionary& row) {
  Construct(m_Xa, m_ID, row.Value("FName").As<String>(), row.Value("FDefaultUnitID").As<Long>(),
            row.Value("FDefaultUnit"));
}

void MeasureUnitGroup::Refresh() { NamedRow::Refresh(); }
void MeasureUnitGroup::SaveChanges() { NamedRow::SaveChanges(); }

void MeasureUnitGroup::AdjustCoefficient(Double Factor, Boolean bDivision) {
  if (Factor == 0 || DoubleLosesPrecision(Factor)) {
    RaiseError(error_number::kCoefficientRejected);
  }
  if (Factor == 1) return;
  const CallingOut out(this);
  const Ref<Object> update = ServerGateway().CreateInstance(kUpdate);
  update->Call("AdjustCoefficient", GetPropsString(), ByRef(m_ID), ByRef(Factor), ByRef(bDivision));
}

Long MeasureUnitGroup::ExistenceCheck(Variant UnitID, Variant Name) {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(kInfo);
  if (!UnitID.IsMissing()) {
    return info->Call("UnitExistenceCheck", GetPropsString(), ByRef(UnitID)).As<Long>();
  }
  if (Name.IsMissing()) return 0;
  return info->Call("UnitExistenceCheck", GetPropsString(), Named("UnitName", ByRef(Name)))
      .As<Long>();
}

Ref<MeasureUnit> MeasureUnitGroup::GetDefaultUnit() {
  const CallingOut out(this);
  if (ExistenceCheck(Variant(m_DefaultUnitID)) == 0) return Nothing;
  const Ref<Object> info = ServerGateway().CreateInstance(kInfo);
  return MakeOfRow<MeasureUnit>(
      info->Call("GetUnitDetail", GetPropsString(), ByRef(m_DefaultUnitID)).As<Dictionary>(), m_Xa);
}

void MeasureUnitGroup::SetDefaultUnit(Long UnitID) {
  const CallingOut out(this);
  const Ref<Object> update = ServerGateway().CreateInstance(kUpdate);
  update->Call("SetDefaultMeasureUnit", GetPropsString(), ByRef(m_ID), ByRef(UnitID));
  m_DefaultUnitID = UnitID;
}

String MeasureUnitGroup::DefaultUnit() const { return m_DefaultUnit; }
Long MeasureUnitGroup::DefaultUnitID() const { return m_DefaultUnitID; }
Long MeasureUnitGroup::GroupID() const { return m_ID; }

// ---- MeasureUnitGroupSet ----

const char* MeasureUnitGroupSet::InfoComponent() const { return kInfo; }

Ref<Recordset> MeasureUnitGroupSet::AskForList(Object& info) const {
  return info.Call("GetUnitGroupList", GetPropsString(), ByRef(m_UnitGroupID)).As<Recordset>();
}

void MeasureUnitGroupSet::Refresh() { Fetch(); }

Long MeasureUnitGroupSet::UnitGroupID() const { return m_UnitGroupID; }
void MeasureUnitGroupSet::UnitGroupID(Long value) { m_UnitGroupID = value; }

Ref<MeasureUnitGroup> MeasureUnitGroupSet::CreateNew() {
  const auto group = Make<MeasureUnitGroup>();
  group->Construct(m_Xa);
  return group;
}

Long MeasureUnitGroupSet::ExistenceCheck(Variant GroupID, Variant Name) {
  return IdOfRow("FUnitGroupID", GroupID, Name);
}

Ref<MeasureUnitGroup> MeasureUnitGroupSet::Item(Variant Key) const {
  const CallingOut out(this);
  return MakeEntity(DetailOf(kGetDetail, std::move(Key)));
}

void MeasureUnitGroupSet::Remove(Variant Key) {
  const CallingOut out(this);
  const Long id = IdOf(Key, [&] {
    const Ref<Object> info = ServerGateway().CreateInstance(kInfo);
    return info->Call("GetUnitGroupID", GetPropsString(), ByRef(Key)).As<Long>();
  });
  if (id == 0) RaiseError(error_number::kInvalidCall);
  DeleteRow(kUpdate, "DeleteUnitGroup", id);
}

}  // namespace qdclgl
