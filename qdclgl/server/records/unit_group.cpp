// Groups of units of measure.
#include <algorithm>

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/coefficient.h"
#include "qdclgl/server/records/measure_unit.h"

namespace qdclgl::server {

namespace {

struct Unit {
  Long id;
  Double coefficient;
  bool is_deleted;
};

std::vector<Unit> UnitsOf(Database& db, Long group) {
  std::vector<Unit> units;
  for (const auto& [id, coefficient, is_deleted] : db.Query<Long, double, bool>(
           "SELECT FMeasureUnitID, FCoefficient, FDeleted FROM t_MeasureUnit"
           " WHERE FUnitGroupID = ? ORDER BY FMeasureUnitID",
           group)) {
    units.push_back({id, coefficient, is_deleted});
  }
  return units;
}

// Gives the group its default unit and all its units their coefficients, each with a row of the
// trail. The default unit goes first: until then the former one is held to 1.
void Write(const Caller& caller, Long group, Long default_unit, const std::vector<Unit>& units) {
  RecordSave save(caller, UnitGroups(), group, Make<Dictionary>());
  save.record().Put("FDefaultUnitID", default_unit);
  if (save.Changes("FDefaultUnitID")) save.Run();
  for (const Unit& unit : units) {
    const auto changed = Make<Dictionary>();
    changed->Put("FCoefficient", Variant(unit.coefficient));
    RecordSave(caller, MeasureUnits(), unit.id, changed).Run();
  }
}

void Scale(std::vector<Unit>& units, Double factor, bool divides) {
  for (Unit& unit : units) unit.coefficient = Scaled(unit.coefficient, factor, divides);
}

// The name stands beside the group's accounts too.
void Follow(RecordSave& save) {
  if (save.is_new() || !save.Changes("FName")) return;
  save.db().Execute("UPDATE t_Account SET FUnitGroup = ? WHERE FUnitGroupID = ?"
                    " AND FUnitGroupID <> 0",
                    save.Text("FName"), save.id());
}

}  // namespace

void RequireNothingCounted(Database& db, Long group) {
  const auto account = db.QueryValue<std::string>(
      "SELECT a.FNumber FROM t_Account a WHERE a.FUnitGroupID = ? AND a.FUnitGroupID <> 0"
      " AND a.FMeasureUnitID = 0 AND EXISTS (SELECT 1 FROM t_VoucherEntry e"
      " WHERE e.FAccountID = a.FAccountID AND e.FQuantity <> 0) ORDER BY a.FNumber LIMIT 1",
      group);
  if (!account) return;
  Refuse(refusal::kInUse, UnitGroups().Called(*UnitGroups().Require(db, group)) +
                              ": vouchers count the quantities of account " + *account +
                              " in its default unit; give the account that unit first.");
}

void SetDefaultUnit(const Caller& caller, Long group, Long unit) {
  CallersTransaction transaction(caller, Transaction::Kind::kChangeRules);
  const Ref<Dictionary> stored = UnitGroups().Require(caller.db, group);
  std::vector<Unit> units = UnitsOf(caller.db, group);
  const auto chosen = std::ranges::find(units, unit, &Unit::id);
  if (chosen == units.end() || chosen->is_deleted) {
    Refuse(refusal::kBadReference,
           UnitGroups().Called(*stored) + ": it has no unit " + std::to_string(unit) + " in use.");
  }
  if (stored->Value("FDefaultUnitID").As<Long>() != unit) RequireNothingCounted(caller.db, group);
  const Double former = chosen->coefficient;
  if (former == 1) units.clear();  // they stay as they are
  Scale(units, former, true);
  Write(caller, group, unit, units);
  transaction.Commit();
}

void AdjustCoefficients(const Caller& caller, Long group, Double factor, bool divides) {
  CallersTransaction transaction(caller, Transaction::Kind::kChangeRules);
  const Ref<Dictionary> stored = UnitGroups().Require(caller.db, group);
  const auto refuse = [&](const std::string& reason) {
    Refuse(refusal::kBadValue, UnitGroups().Called(*stored) + ": " + reason);
  };
  if (!IsCoefficient(factor)) {
    refuse("a factor is positive and has up to 15 significant digits.");
  }
  std::vector<Unit> units = UnitsOf(caller.db, group);
  if (units.empty() || factor == 1) return;
  Scale(units, factor, divides);
  const auto base = std::ranges::find_if(
      units, [](const Unit& unit) { return unit.coefficient == 1 && !unit.is_deleted; });
  if (base == units.end()) refuse("then no unit of it in use would have coefficient 1.");
  RequireNothingCounted(caller.db, group);
  Write(caller, group, base->id, units);
  transaction.Commit();
}

const MasterData& UnitGroups() {
  using enum ColumnType;
  static const MasterData kKind({
      .component = "QDSVGLUnit.UnitGroup",
      .noun = "unit group",
      .nouns = "unit groups",
      .list = {"unit-groups", "Lists the groups of units of measure",
               "FUnitGroupID FName FDefaultUnit"},
      .table = "t_UnitGroup",
      .id = "FUnitGroupID",
      .key = {"FName"},
      .columns = {{{"FName", kText}},
                  {{"FDefaultUnitID", kLong}, Keeper::kServer},
                  {{"FDefaultUnit", kText}, Keeper::kJoined}},
      .query = "SELECT g.*, COALESCE(u.FName, '') AS FDefaultUnit FROM t_UnitGroup g"
               " LEFT JOIN t_MeasureUnit u ON u.FMeasureUnitID = g.FDefaultUnitID",
      .follow = Follow,
      .helps = {{"Delete", "Removes a group without units. NotFound, InUse."}},
  });
  return kKind;
}

}  // namespace qdclgl::server
