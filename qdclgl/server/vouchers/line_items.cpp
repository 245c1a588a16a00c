#include "qdclgl/server/vouchers/line_items.h"

namespace qdclgl::server {

std::string TextOf(const LineItems& items) {
  std::string text;
  for (const auto& [item_class, item] : items) {
    if (!text.empty()) text += ',';
    text += std::to_string(item_class) + ":" + std::to_string(item);
  }
  return text;
}

std::string LineItemsQuery(std::string_view condition) {
  return "SELECT d.FVoucherID, d.FEntryID, d.FItemClassID, MIN(d.FItemID) AS FItemID"
         " FROM t_VoucherEntry e"
         " JOIN t_VoucherDetail d ON d.FVoucherID = e.FVoucherID AND d.FEntryID = e.FEntryID"
         " JOIN t_AccountItem a ON a.FAccountID = e.FAccountID AND a.FItemClassID = d.FItemClassID"
         " JOIN t_Item i ON i.FItemID = d.FItemID AND i.FItemClassID = d.FItemClassID WHERE " +
         std::string(condition) +
         " GROUP BY d.FVoucherID, d.FEntryID, d.FItemClassID"
         " ORDER BY d.FVoucherID, d.FEntryID, d.FItemClassID";
}

std::map<Long, LineItems> ItemsOfLines(Database& db, Long voucher_id) {
  static const std::string kQuery = LineItemsQuery("e.FVoucherID = ?");
  std::map<Long, LineItems> items;
  for (const auto& [voucher, line, item_class, item] :
       db.Query<Long, Long, Long, Long>(kQuery, voucher_id)) {
    items[line][item_class] = item;
  }
  return items;
}

Long CombinationOf(Database& db, const LineItems& items) {
  const std::string text = TextOf(items);
  const auto known =
      db.QueryValue<Long>("SELECT FCombinationID FROM t_ItemCombination WHERE FItems = ?", text);
  if (known) return *known;
  const Long id = *db.QueryValue<Long>(
      "INSERT INTO t_ItemCombination (FItems) VALUES (?) RETURNING FCombinationID", text);
  for (const auto& [item_class, item] : items) {
    db.Execute("INSERT INTO t_ItemCombinationItem (FCombinationID, FItemClassID, FItemID)"
               " VALUES (?, ?, ?)",
               id, item_class, item);
  }
  return id;
}

}  // namespace qdclgl::server
