#include "qdclgl/server/books/items_check.h"

#include <set>

#include "qdclgl/server/records/item_fields.h"
#include "qdclgl/server/records/item_slots.h"

namespace qdclgl::server {

namespace {

void CheckTree(Database& db, Findings& findings) {
  const auto check = [&](std::string_view problem, std::string_view condition) {
    findings.AddRows(db, "ItemTree", "Item", problem,
                     "SELECT i.FItemID, i.FNumber FROM t_Item i LEFT JOIN t_Item above"
                     " ON above.FItemID = i.FParentID AND i.FParentID <> 0 WHERE " +
                         std::string(condition) + " ORDER BY i.FItemID");
  };
  check("The item above it is none of its class, or marked deleted.",
        "i.FParentID <> 0 AND (above.FItemID IS NULL OR above.FItemClassID <> i.FItemClassID"
        " OR (above.FDeleted <> 0 AND i.FDeleted = 0))");
  check("Its level, full number or full name does not go with the item above it.",
        "i.FLevel <> COALESCE(above.FLevel, 0) + 1"
        " OR i.FFullNumber <> COALESCE(above.FFullNumber || '.', '') || i.FNumber"
        " OR i.FFullName <> COALESCE(above.FFullName || '_', '') || i.FName");
  check("Its detail flag does not tell whether it has items below it.",
        "i.FDetail <> CASE WHEN i.FUNDetail <> 0 OR EXISTS (SELECT 1 FROM t_Item below"
        " WHERE below.FParentID = i.FItemID AND below.FParentID <> 0) THEN 0 ELSE 1 END");
}

// Whether each field has a slot of its own that goes with its type.
bool HaveSlots(const ItemFields& fields) {
  std::set<std::string> slots;
  for (const ItemField& field : fields.all()) {
    if (!IsSlotFor(field.type, field.is_searched, field.slot)) return false;
    if (!slots.insert(field.slot).second) return false;
  }
  return true;
}

// Why an item can't hold that for a field; "" when it can.
std::string ReasonAgainstHeld(const ItemField& field, const Variant& held) {
  const ItemField::TakenValue taken = field.TakeHeld(held);
  if (!taken.reason.empty()) return taken.reason;
  return Equals(SlotValue(field.type, taken.value), held) ? "" : "is kept in another form";
}

void CheckValues(Database& db, Findings& findings, Long item_class, const ItemFields& fields) {
  const auto report = [&](Long item, const std::string& problem) {
    const auto number =
        db.QueryValue<std::string>("SELECT FNumber FROM t_Item WHERE FItemID = ?", item);
    findings.Add("ItemField", "Item", item, number.value_or(""), problem);
  };
  std::set<std::string_view> used;
  for (const ItemField& field : fields.all()) {
    used.insert(field.slot);
    std::vector<std::pair<Long, std::string>> bad;
    field.EachHeld(db, item_class, [&](Long item, const Variant& held) {
      const std::string reason = ReasonAgainstHeld(field, held);
      if (!reason.empty()) bad.emplace_back(item, reason);
    });
    for (const auto& [item, reason] : bad) {
      report(item, "Field \"" + field.name + "\" (" + field.column + ") " + reason + ".");
    }
  }
  std::string holds;
  for (const Column& slot : ItemSlots()) {
    if (used.contains(slot.name)) continue;
    holds += (holds.empty() ? "" : " OR ") + HoldsSomething(slot);
  }
  for (const auto& [item] : db.Query<Long>(
           "SELECT FItemID FROM t_Item WHERE FItemClassID = ? AND (" + holds + ")", item_class)) {
    report(item, "It has a value of a field that its class does not have.");
  }
}

}  // namespace

void CheckItems(Database& db, Findings& findings) {
  CheckTree(db, findings);
  for (const auto& [id, number] : db.Query<Long, std::string>(
           "SELECT FItemClassID, FNumber FROM t_ItemClass ORDER BY FItemClassID")) {
    const ItemFields fields(db, id);
    if (!HaveSlots(fields)) {
      findings.Add("ItemClassFields", "ItemClass", id, number,
                   "Items have no column for one of its fields.");
    } else {
      CheckValues(db, findings, id, fields);
    }
  }
}

}  // namespace qdclgl::server
