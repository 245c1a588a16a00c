// Units of measure and their groups. A group has a default unit as long as it has units, and the
// default unit's coefficient is 1.
#pragma once

#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

const MasterData& MeasureUnits();
const MasterData& UnitGroups();

// Refuses to make another unit the default one while lines of vouchers are counted in it: those of
// accounts that are of the group and have no unit of their own. InUse.
void RequireNothingCounted(Database& db, Long group);

// Makes a unit of the group the default one; the coefficients of all units of the group are divided
// by the one that it had. BadReference for a unit of another group or one out of use; InUse.
void SetDefaultUnit(const Caller& caller, Long group, Long unit);

// Multiplies or divides the coefficients of all units of a group; the unit that comes to 1 is the
// default one then. BadValue when none does, or where a coefficient would be out of range; InUse.
void AdjustCoefficients(const Caller& caller, Long group, Double factor, bool divides);

}  // namespace qdclgl::server
