// Units of measure: each in a group, with a coefficient to the group's default unit. The components
// that clients know serve units and groups, under method names of their own.
#include "qdclgl/server/records/measure_unit.h"

#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/coefficient.h"

namespace qdclgl::server {

namespace {

Long DefaultUnitOf(Database& db, Long group) {
  return db.QueryValue<Long>("SELECT FDefaultUnitID FROM t_UnitGroup WHERE FUnitGroupID = ?", group)
      .value_or(0);
}

void PutDefaultUnit(const Caller& caller, Long group, Long unit) {
  RecordSave save(caller, UnitGroups(), group, Make<Dictionary>());
  save.record().Put("FDefaultUnitID", unit);
  save.Run();
}

// ---- Saving ----

void Check(RecordSave& save) {
  CheckKey(save);
  save.RequireText("FName");
  save.RequireReferences();
  const auto coefficient = save.record().Value("FCoefficient").As<Double>();
  if (!IsCoefficient(coefficient)) {
    save.Refuse(refusal::kBadValue,
                "FCoefficient is positive and has up to 15 significant digits, between 1E-15 and"
                " 1E+15.");
  }
  if (!save.is_new() && save.Changes("FUnitGroupID")) {
    save.Refuse(refusal::kBadValue, "a unit stays in its group.");
  }
  const Long base = DefaultUnitOf(save.db(), save.Number("FUnitGroupID"));
  const bool is_base = base == 0 || (!save.is_new() && base == save.id());
  if (is_base && coefficient != 1) {
    save.Refuse(refusal::kBadValue, "the default unit of a group, which is its first one unless"
                                    " another is made it, has coefficient 1.");
  }
}

void Follow(RecordSave& save) {
  const Long group = save.Number("FUnitGroupID");
  if (DefaultUnitOf(save.db(), group) == 0) PutDefaultUnit(save.caller(), group, save.id());
}

bool IsInLines(Database& db, Long id) {
  return db
      .QueryValue<int>("SELECT 1 FROM t_VoucherEntry WHERE FMeasureUnitID = ?"
                       " AND FMeasureUnitID <> 0 LIMIT 1",
                       id)
      .has_value();
}

// ---- Removing ----

// The last unit of a group that nothing uses gives up being the default one.
void GiveUpDefault(RecordRemoval& removal) {
  const auto group = removal.stored().Value("FUnitGroupID").As<Long>();
  if (DefaultUnitOf(removal.db(), group) != removal.id()) return;
  const bool has_others = removal.db()
                              .QueryValue<int>("SELECT 1 FROM t_MeasureUnit WHERE FUnitGroupID = ?"
                                               " AND FMeasureUnitID <> ? LIMIT 1",
                                               group, removal.id())
                              .has_value();
  if (has_others || IsInLines(removal.db(), removal.id())) {
    removal.Refuse(refusal::kInUse, "it is the default unit of its group.");
  }
  RequireNothingCounted(removal.db(), group);
  PutDefaultUnit(removal.caller(), group, 0);
  if (const auto referrer = removal.Referrer()) {
    removal.Refuse(refusal::kInUse, *referrer + " refers to it.");
  }
}

void Remove(RecordRemoval& removal) {
  GiveUpDefault(removal);
  if (!IsInLines(removal.db(), removal.id()) && !removal.Referrer()) {
    removal.Remove();
  } else if (removal.stored().Value("FDeleted").As<Boolean>()) {
    removal.Refuse(refusal::kInUse, "it is marked deleted already; accounts or vouchers use it.");
  } else {
    removal.Mark();
  }
}

// ---- The components ----

constexpr Right kReadUnits{Role::kReader, "read units of measure"};
constexpr Right kWriteUnits{Role::kAdministrator, "change units of measure"};
constexpr Right kReadGroups{Role::kReader, "read unit groups"};
constexpr Right kWriteGroups{Role::kAdministrator, "change unit groups"};

class MeasureUnitInfo final : public Object {
  QD_MEMBERS(MeasureUnitInfo, Object, Creatable, "Reads units of measure and their groups.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLUnit.MeasureUnitInfo";
  static constexpr MethodRight kRights[] = {
      {"GetUnitDetail", kReadUnits},      {"GetUnitList", kReadUnits},
      {"UnitExistenceCheck", kReadUnits}, {"GetUnitGroupDetail", kReadGroups},
      {"GetUnitGroupList", kReadGroups},  {"GetUnitGroupID", kReadGroups}};

  QD_METHOD(Ref<Dictionary>, GetUnitDetail, (std::string_view PropsString, const Long& UnitID),
            "A unit of measure, Nothing when there is none.")
  QD_METHOD(Ref<Recordset>, GetUnitList,
            (std::string_view PropsString, const Long& UnitGroupID, const String& Filter = {}),
            "The units of a group, or all with 0; those marked deleted too where the component's "
            "ShowDeleted is True. BadFilter.")
  QD_METHOD(Long, UnitExistenceCheck,
            (std::string_view PropsString, const Variant& UnitID = Missing,
             const Variant& UnitName = Missing),
            "The id of the unit with that id, or otherwise of the first one with that name; 0 when "
            "there is none.")
  QD_METHOD(Ref<Dictionary>, GetUnitGroupDetail, (std::string_view PropsString, const Variant& Key),
            "The unit group of an id (a number) or a name (a text). NotFound.")
  QD_METHOD(Ref<Recordset>, GetUnitGroupList,
            (std::string_view PropsString, const Long& UnitGroupID = {}),
            "The unit groups; with an id that one alone.")
  QD_METHOD(Long, GetUnitGroupID, (std::string_view PropsString, const Variant& Key),
            "The id of the unit group with that name, 0 when there is none.")
  QD_VARIABLE(Boolean, ShowDeleted, false, "Whether GetUnitList brings units marked deleted too.")
};

class MeasureUnitUpdate final : public Object {
  QD_MEMBERS(MeasureUnitUpdate, Object, Creatable, "Writes units of measure and their groups.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLUnit.MeasureUnitUpdate";
  static constexpr MethodRight kRights[] = {
      {"CreateUnit", kWriteUnits},        {"UpdateUnit", kWriteUnits},
      {"DeleteUnit", kWriteUnits},        {"UnitExistenceCheck", kReadUnits},
      {"CreateUnitGroup", kWriteGroups},  {"RenameUnitGroup", kWriteGroups},
      {"DeleteUnitGroup", kWriteGroups},  {"SetDefaultMeasureUnit", kWriteGroups},
      {"AdjustCoefficient", kWriteGroups}};

  QD_METHOD(Long, CreateUnit,
            (std::string_view PropsString, Long UnitGroupID, const Ref<Dictionary>& dict),
            "Saves a new unit and gives its id; a row that names no group is of the group given. "
            "Required, NumberTaken, BadReference, BadValue.")
  QD_METHOD(void, UpdateUnit,
            (std::string_view PropsString, const Long& UnitID, const Ref<Dictionary>& dict),
            "Saves a unit. NotFound, NoVersion, Changed, and those of CreateUnit.")
  QD_METHOD(void, DeleteUnit,
            (std::string_view PropsString, Long UnitID, std::string_view MachineName = "",
             std::string_view IPAddress = ""),
            "Removes a unit; one that accounts or vouchers use is marked deleted instead. "
            "NotFound; InUse for the default unit of a group with others, and for one that is used "
            "and marked already.")
  QD_METHOD(Variant, UnitExistenceCheck, (std::string_view PropsString, const Long& UnitID),
            "The id of the unit with that id, 0 when there is none.")
  QD_METHOD(Long, CreateUnitGroup,
            (std::string_view PropsString, const String& Name, std::string_view MachineName = "",
             std::string_view IPAddress = ""),
            "Saves a new unit group and gives its id. Required, NameTaken, BadValue.")
  QD_METHOD(void, RenameUnitGroup,
            (std::string_view PropsString, const Long& GroupID, const String& Name,
             std::string_view MachineName = "", std::string_view IPAddress = ""),
            "Gives a unit group another name, whoever saved it since. NotFound, Required, "
            "NameTaken, BadValue.")
  QD_METHOD(void, DeleteUnitGroup,
            (std::string_view PropsString, const Long& GroupID, std::string_view MachineName = "",
             std::string_view IPAddress = ""),
            "Removes a unit group without units. NotFound, InUse.")
  QD_METHOD(void, SetDefaultMeasureUnit,
            (std::string_view PropsString, const Long& GroupID, const Long& UnitID),
            "Makes a unit the default one of its group; the coefficients of all units of the group "
            "are divided by its own, which so becomes 1. NotFound, BadReference, BadValue; InUse "
            "while vouchers count in the one that there is.")
  QD_METHOD(void, AdjustCoefficient,
            (std::string_view PropsString, const Long& GroupID, const Double& Factor,
             const Boolean& bDivision = false),
            "Multiplies the coefficients of all units of a group by a factor, or divides them by "
            "it; the unit that comes to 1 becomes the default one. BadValue when none does. "
            "NotFound; InUse while vouchers count in the default one that there is.")
};

QD_DEFINE_MEMBERS(MeasureUnitInfo)
QD_DEFINE_MEMBERS(MeasureUnitUpdate)

Long IdIfThere(Database& db, Long id) { return MeasureUnits().Read(db, id) ? id : 0; }

Ref<Dictionary> MeasureUnitInfo::GetUnitDetail(std::string_view PropsString, const Long& UnitID) {
  const Caller caller = Enter(PropsString, kReadUnits);
  return MeasureUnits().Read(caller.db, UnitID);
}

Ref<Recordset> MeasureUnitInfo::GetUnitList(std::string_view PropsString, const Long& UnitGroupID,
                                            const String& Filter) {
  const Caller caller = Enter(PropsString, kReadUnits);
  const MasterData::Description& units = MeasureUnits().description();
  const std::string query =
      std::string(units.query) + " WHERE (FUnitGroupID = ? OR ? = 0) AND (FDeleted = 0 OR ? = 1)";
  const BoundValue values[] = {std::int64_t{UnitGroupID}, std::int64_t{UnitGroupID},
                               std::int64_t{ShowDeleted() ? 1 : 0}};
  return FetchList(caller.db, {query, MeasureUnits().Columns(), units.order}, Filter, "", values);
}

Long MeasureUnitInfo::UnitExistenceCheck(std::string_view PropsString, const Variant& UnitID,
                                         const Variant& UnitName) {
  const Caller caller = Enter(PropsString, kReadUnits);
  if (!UnitID.IsMissing()) return IdIfThere(caller.db, UnitID.As<Long>());
  return UnitName.IsMissing() ? 0
                              : MeasureUnits().IdWith(caller.db, "FName", UnitName.As<String>());
}

Ref<Dictionary> MeasureUnitInfo::GetUnitGroupDetail(std::string_view PropsString,
                                                    const Variant& Key) {
  const Caller caller = Enter(PropsString, kReadGroups);
  return UnitGroups().RequireByKey(caller.db, Key);
}

Ref<Recordset> MeasureUnitInfo::GetUnitGroupList(std::string_view PropsString,
                                                 const Long& UnitGroupID) {
  const Caller caller = Enter(PropsString, kReadGroups);
  const std::string filter =
      UnitGroupID == 0 ? std::string() : "FUnitGroupID = " + std::to_string(UnitGroupID);
  return UnitGroups().List(caller.db, 0, filter, "");
}

Long MeasureUnitInfo::GetUnitGroupID(std::string_view PropsString, const Variant& Key) {
  const Caller caller = Enter(PropsString, kReadGroups);
  return UnitGroups().IdWithKey(caller.db, Key.As<String>());
}

Long MeasureUnitUpdate::CreateUnit(std::string_view PropsString, Long UnitGroupID,
                                   const Ref<Dictionary>& dict) {
  const Caller caller = EnterUnconfirmed(PropsString, kWriteUnits);
  RecordSave save(caller, MeasureUnits(), dict);
  save.PutOwner("FUnitGroupID", UnitGroupID);
  save.Run();
  return save.id();
}

void MeasureUnitUpdate::UpdateUnit(std::string_view PropsString, const Long& UnitID,
                                   const Ref<Dictionary>& dict) {
  const Caller caller = EnterUnconfirmed(PropsString, kWriteUnits);
  RecordSave(caller, MeasureUnits(), dict, UnitID).Run();
}

void MeasureUnitUpdate::DeleteUnit(std::string_view PropsString, Long UnitID,
                                   std::string_view MachineName, std::string_view IPAddress) {
  DeleteRecord(MeasureUnits(), PropsString, UnitID, MachineName, IPAddress);
}

Variant MeasureUnitUpdate::UnitExistenceCheck(std::string_view PropsString, const Long& UnitID) {
  const Caller caller = Enter(PropsString, kReadUnits);
  return Variant(IdIfThere(caller.db, UnitID));
}

Long MeasureUnitUpdate::CreateUnitGroup(std::string_view PropsString, const String& Name,
                                        std::string_view MachineName, std::string_view IPAddress) {
  return CreateNamed(UnitGroups(), PropsString, Name, MachineName, IPAddress);
}

void MeasureUnitUpdate::RenameUnitGroup(std::string_view PropsString, const Long& GroupID,
                                        const String& Name, std::string_view MachineName,
                                        std::string_view IPAddress) {
  RenameRecord(UnitGroups(), PropsString, GroupID, Name, MachineName, IPAddress);
}

void MeasureUnitUpdate::DeleteUnitGroup(std::string_view PropsString, const Long& GroupID,
                                        std::string_view MachineName, std::string_view IPAddress) {
  DeleteRecord(UnitGroups(), PropsString, GroupID, MachineName, IPAddress);
}

void MeasureUnitUpdate::SetDefaultMeasureUnit(std::string_view PropsString, const Long& GroupID,
                                              const Long& UnitID) {
  SetDefaultUnit(EnterUnconfirmed(PropsString, kWriteGroups), GroupID, UnitID);
}

void MeasureUnitUpdate::AdjustCoefficient(std::string_view PropsString, const Long& GroupID,
                                          const Double& Factor, const Boolean& bDivision) {
  AdjustCoefficients(EnterUnconfirmed(PropsString, kWriteGroups), GroupID, Factor, bDivision);
}

}  // namespace

const MasterData& MeasureUnits() {
  using enum ColumnType;
  static const MasterData kKind({
      .component = "QDSVGLUnit.Unit",
      .noun = "unit of measure",
      .nouns = "units of measure",
      .brief = "unit",
      .list = {"units", "Lists the units of measure",
               "FMeasureUnitID FUnitGroupID FNumber FName FCoefficient"},
      .table = "t_MeasureUnit",
      .id = "FMeasureUnitID",
      .key = {.column = "FNumber"},
      .deleted = "FDeleted",
      .is_marked_when_used = true,
      .columns = {{.column = {"FUnitGroupID", kLong},
                   .refers = {.kind = UnitGroups, .is_required = true}},
                  {{"FNumber", kText}},
                  {{"FName", kText}},
                  {{"FCoefficient", kDouble}, Keeper::kCaller, 1.0},
                  {{"FConversation", kLong}, Keeper::kCaller, Long{1}},
                  {{"FPrecision", kLong}},
                  {{"FStandard", kLong}},
                  {{"FAuxClass", kText}},
                  {{"FDeleted", kBoolean}, Keeper::kServer},
                  {{"UUID", kText}}},
      .check = Check,
      .follow = Follow,
      .remove = Remove,
      .errors = "Required, NumberTaken, BadReference, BadValue",
      .helps = {{"Delete",
                 "Removes a unit; one that accounts or vouchers use is marked deleted instead. "
                 "NotFound; InUse for the default unit of a group with others, and for one that is "
                 "used and marked already."}},
      .components = {ComponentOf<MeasureUnitInfo>(), ComponentOf<MeasureUnitUpdate>()},
  });
  return kKind;
}

}  // namespace qdclgl::server
