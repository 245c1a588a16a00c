#include "qdclgl/server/vouchers/item_rules.h"

#include <algorithm>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::server {

namespace {

// "item class CUSTOMER (Customers)"
std::string Called(const AskedClass& item_class) {
  return "item class " + item_class.number + " (" + item_class.name + ")";
}

std::string IdOrNumber(Long id, const std::string& number) {
  return id != 0 ? "with the id " + std::to_string(id) : number;
}

}  // namespace

ItemRules::ItemRules(Database& db, const std::vector<VoucherLine>& stored) : db_(db) {
  for (const VoucherLine& line : stored) {
    for (const std::vector<Variant>& detail : line.details) {
      kept_.insert(DetailCells(detail).Get<"FItemID">());
    }
  }
}

const std::optional<ItemRules::Item>& ItemRules::Find(const ItemKey& key) {
  const auto [place, is_new] = known_.try_emplace(key);
  if (!is_new) return place->second;
  const auto& [item_class, id, number] = key;
  const std::string query =
      "SELECT FItemID, FNumber, FName, FFullName, FDetail, FDeleted FROM t_Item"
      " WHERE FItemClassID = ? AND ";
  using std::string;
  const auto row = id != 0 ? db_.QueryRow<Long, string, string, string, bool, bool>(
                                 query + "FItemID = ?", item_class, id)
                           : db_.QueryRow<Long, string, string, string, bool, bool>(
                                 query + "FNumber = ?", item_class, number);
  if (row) {
    const auto& [item, item_number, name, full_name, is_detail, is_deleted] = *row;
    place->second = {item, item_number, name, full_name, is_detail, is_deleted};
  }
  return place->second;
}

std::optional<std::string> ItemRules::SettleItem(const AskedClass& item_class, DetailCells& cells) {
  const Long id = cells.Get<"FItemID">();
  const std::string number = id != 0 ? "" : ToUpper(cells.Get<"FItemNumber">());
  if (id == 0 && number.empty()) {
    return " asks for an item of " + Called(item_class) + ", and the line names none.";
  }
  const std::optional<Item>& item = Find({item_class.id, id, number});
  if (!item) {
    return " asks for an item of " + Called(item_class) + ", which has none " +
           IdOrNumber(id, number) + ".";
  }
  if (!kept_.contains(item->id) && (item->is_deleted || !item->is_detail)) {
    return " asks for an item of " + Called(item_class) + ", whose item " + item->number + " (" +
           item->name + ")" + (item->is_deleted ? " is out of use." : " has items below it.");
  }
  cells.Put<"FItemClassID">(item_class.id);
  cells.Put<"FItemClassNumber">(item_class.number);
  cells.Put<"FItemClassName">(item_class.name);
  cells.Put<"FItemID">(item->id);
  cells.Put<"FItemNumber">(item->number);
  cells.Put<"FItemName">(item->name);
  cells.Put<"FItemFullName">(item->full_name);
  return std::nullopt;
}

std::optional<std::string> ItemRules::Settle(const std::vector<AskedClass>& classes,
                                             VoucherLine& line) {
  std::set<Long> named;
  for (std::vector<Variant>& detail : line.details) {
    DetailCells cells(detail);
    const Long id = cells.Get<"FItemClassID">();
    const std::string number = ToUpper(cells.Get<"FItemClassNumber">());
    const auto item_class = std::ranges::find_if(classes, [&](const AskedClass& asked) {
      return id != 0 ? asked.id == id : asked.number == number;
    });
    if (id == 0 && number.empty()) return " asks for items, and a detail names no item class.";
    if (item_class == classes.end()) {
      return " asks for no item of an item class " + IdOrNumber(id, number) +
             ", and the line names one.";
    }
    if (!named.insert(item_class->id).second) {
      return " asks for one item of " + Called(*item_class) + ", and the line names two.";
    }
    if (auto reason = SettleItem(*item_class, cells)) return reason;
    detail = cells.values();
  }
  for (const AskedClass& asked : classes) {
    if (!named.contains(asked.id)) {
      return " asks for an item of " + Called(asked) + ", and the line names none.";
    }
  }
  return std::nullopt;
}

}  // namespace qdclgl::server
