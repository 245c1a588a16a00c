// What lines on an account that asks for items must name: one item of each class, that is there, in
// use, and has none below it. Details on other accounts are kept as callers send them.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "qdclgl/server/vouchers/voucher_tree.h"

namespace qdclgl::server {

// A class that an account asks for.
struct AskedClass {
  Long id;
  std::string number, name;
};

class ItemRules {
 public:
  // Items that lines of the voucher as it is stored name can be named again, whatever has become
  // of them.
  ItemRules(Database& db, const std::vector<VoucherLine>& stored);

  // Completes the details of a line: class and item by id or otherwise by number, with the names
  // that they have. Why its account can't have them, as a sentence ends; nothing when it can.
  std::optional<std::string> Settle(const std::vector<AskedClass>& classes, VoucherLine& line);

 private:
  struct Item {
    Long id;
    std::string number, name, full_name;
    bool is_detail, is_deleted;
  };
  // By class, and by id or otherwise by number.
  using ItemKey = std::tuple<Long, Long, std::string>;

  const std::optional<Item>& Find(const ItemKey& key);
  std::optional<std::string> SettleItem(const AskedClass& item_class, DetailCells& cells);

  Database& db_;
  std::set<Long> kept_;
  std::map<ItemKey, std::optional<Item>> known_;
};

}  // namespace qdclgl::server
