#include "qdclgl/server/books/units_check.h"

#include "qdclgl/server/records/coefficient.h"

namespace qdclgl::server {

namespace {

void CheckCoefficients(Database& db, Findings& findings) {
  for (const auto& [id, number, name, coefficient] :
       db.Query<Long, std::string, std::string, double>(
           "SELECT FMeasureUnitID, FNumber, FName, FCoefficient FROM t_MeasureUnit"
           " ORDER BY FMeasureUnitID")) {
    if (IsCoefficient(coefficient)) continue;
    findings.Add("UnitCoefficient", "Unit", id, number + " (" + name + ")",
                 "Its coefficient can't be one.");
  }
}

}  // namespace

void CheckUnits(Database& db, Findings& findings) {
  CheckCoefficients(db, findings);
  findings.AddRows(db, "DefaultUnit", "UnitGroup",
                   "It has units, and its default unit is none of them, is marked deleted, or has"
                   " another coefficient than 1.",
                   "SELECT g.FUnitGroupID, g.FName FROM t_UnitGroup g WHERE EXISTS"
                   " (SELECT 1 FROM t_MeasureUnit u WHERE u.FUnitGroupID = g.FUnitGroupID)"
                   " AND NOT EXISTS (SELECT 1 FROM t_MeasureUnit d WHERE"
                   " d.FMeasureUnitID = g.FDefaultUnitID AND d.FUnitGroupID = g.FUnitGroupID"
                   " AND d.FDeleted = 0 AND d.FCoefficient = 1) ORDER BY g.FUnitGroupID");
  findings.AddRows(
      db, "AccountUnit", "Account",
      "Its unit of measure is of another unit group, or its group has another name.",
      "SELECT a.FAccountID, a.FNumber FROM t_Account a"
      " LEFT JOIN t_MeasureUnit u ON u.FMeasureUnitID = a.FMeasureUnitID"
      " LEFT JOIN t_UnitGroup g ON g.FUnitGroupID = a.FUnitGroupID"
      " WHERE u.FUnitGroupID <> a.FUnitGroupID OR COALESCE(g.FName, '') <> a.FUnitGroup"
      " ORDER BY a.FAccountID");
  findings.AddRows(db, "LineUnit", "Voucher",
                   "Its unit of measure is none of its account's unit group.",
                   "SELECT v.FVoucherID, " + std::string(kVoucherName) +
                       " || ', line ' || CAST(e.FEntryID AS TEXT)" + std::string(kFromVouchers) +
                       " JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID"
                       " LEFT JOIN t_Account a ON a.FAccountID = e.FAccountID"
                       " LEFT JOIN t_MeasureUnit u ON u.FMeasureUnitID = e.FMeasureUnitID"
                       " WHERE e.FMeasureUnitID <> 0"
                       " AND (u.FUnitGroupID IS NULL OR u.FUnitGroupID <> a.FUnitGroupID)"
                       " ORDER BY v.FVoucherID, e.FEntryID");
}

}  // namespace qdclgl::server
