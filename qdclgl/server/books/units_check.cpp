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
  findings.AddRows(db, "AccountUnit", "Account",
                   "Its unit of measure is of another unit group, or its group has another name.",
                   // Of books from before there were units, accounts may have a unit and no group.
                   "SELECT a.FAccountID, a.FNumber FROM t_Account a"
                   " LEFT JOIN t_MeasureUnit u ON u.FMeasureUnitID = a.FMeasureUnitID"
                   " LEFT JOIN t_UnitGroup g ON g.FUnitGroupID = a.FUnitGroupID"
                   " WHERE a.FUnitGroupID <> 0 AND (u.FUnitGroupID <> a.FUnitGroupID"
                   " OR COALESCE(g.FName, '') <> a.FUnitGroup)"
                   " ORDER BY a.FAccountID");
  const auto check_lines = [&](std::string_view rule, std::string_view problem,
                               std::string_view condition) {
    findings.AddRows(db, rule, "Voucher", problem,
                     "SELECT v.FVoucherID, " + std::string(kVoucherName) +
                         " || ', line ' || CAST(e.FEntryID AS TEXT)" + std::string(kFromVouchers) +
                         " JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID"
                         " LEFT JOIN t_Account a ON a.FAccountID = e.FAccountID"
                         " LEFT JOIN t_MeasureUnit u ON u.FMeasureUnitID = e.FMeasureUnitID"
                         " WHERE " +
                         std::string(condition) + " ORDER BY v.FVoucherID, e.FEntryID");
  };
  check_lines("LineUnit", "Its unit of measure is none of its account's unit group.",
              "e.FMeasureUnitID <> 0 AND (u.FUnitGroupID IS NULL"
              " OR (a.FUnitGroupID <> 0 AND u.FUnitGroupID <> a.FUnitGroupID))");
  check_lines(
      "LineQuantity",
      "It has another quantity in its account's unit, and that is its own unit, or it has none.",
      "e.FBaseQuantity <> 0"
      " AND (e.FQuantity = 0 OR e.FMeasureUnitID IN (0, a.FMeasureUnitID))");
}

}  // namespace qdclgl::server
