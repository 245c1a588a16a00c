#include "qdclgl/server/records/item_list.h"

#include <algorithm>
#include <set>

#include "qdclgl/server/records/item_fields.h"
#include "qdclgl/server/records/master_data.h"

namespace qdclgl::server {

const MasterData& Items();

namespace {

using Names = std::set<std::string_view>;

Names Without(const Names& names, const Names& others) {
  Names rest;
  std::ranges::set_difference(names, others, std::inserter(rest, rest.end()));
  return rest;
}

class ItemList {
 public:
  ItemList(Database& db, const ItemQuery& query)
      : db_(db), query_(query), fields_(db, query.item_class) {
    const auto core = Items().CallersColumns();
    columns_.assign(core.begin(), core.end());
    for (const ItemField& field : fields_.all()) columns_.push_back(field.AsColumn());
    filter_ = ParseFilter(query.filter, columns_);
    sort_ = SortTerms(query.sort, columns_);
  }

  Ref<Recordset> Fetch() const {
    const std::string order = Order();
    return FetchList(db_, {Source(HiddenNames()), columns_, order}, query_.filter, query_.sort, {},
                     query_.page);
  }

 private:
  // The order of items that the sort leaves open. That of a class is the order of its indexes.
  std::string Order() const {
    if (query_.item_class == 0 || sort_.empty()) return std::string(Items().description().order);
    return sort_[0].is_descending ? "FItemID DESC" : "FItemID";
  }

  // A page of many items comes by an index: that of the filter where it leaves few items, and
  // otherwise that of the sort. SQLite knows too little of the values to choose between the two;
  // an index that is not to be used is hidden from it. (PostgreSQL does know.)
  Names HiddenNames() const {
    if (!query_.page || !db_.IsSQLite() || filter_.sql.empty()) return {};
    const Names filtered(filter_.columns.begin(), filter_.columns.end());
    Names sorted;
    for (const SortTerm& term : sort_) sorted.insert(term.column);
    if (sort_.empty()) sorted.insert("FNumber");
    const Names without_sort = Without(sorted, filtered);
    return LeavesFew(without_sort) ? without_sort : Without(filtered, sorted);
  }

  bool LeavesFew(const Names& hidden) const {
    constexpr int kFew = 10000;
    const std::string sql = "SELECT COUNT(*) FROM (SELECT 1 FROM (" + Source(hidden) +
                            ") AS list WHERE " + filter_.sql + " LIMIT " +
                            std::to_string(kFew + 1) + ")";
    const std::unique_ptr<Statement> statement = db_.MakeStatement(sql);
    SetAll(*statement, filter_.values);
    statement->Open();
    return statement->Fetch() && statement->Whole(0) <= kFew;
  }

  // The SELECT of the columns, some of them hidden from indexes.
  std::string Source(const Names& hidden) const {
    std::string sql = "SELECT ";
    const auto add = [&](std::string_view column, const std::string& stored) {
      if (sql.back() != ' ') sql += ", ";
      sql += (hidden.contains(column) ? "+" : "") + stored + " AS " + std::string(column);
    };
    for (const Column& column : Items().CallersColumns())
      add(column.name, std::string(column.name));
    for (const ItemField& field : fields_.all()) add(field.column, field.StoredValue());
    sql += " FROM t_Item WHERE 1 = 1";
    if (query_.item_class != 0) sql += " AND FItemClassID = " + std::to_string(query_.item_class);
    if (query_.item != 0) sql += " AND FItemID = " + std::to_string(query_.item);
    if (!query_.with_deleted) sql += " AND FDeleted = 0";
    return sql;
  }

  Database& db_;
  const ItemQuery& query_;
  ItemFields fields_;
  std::vector<Column> columns_;
  Filter filter_;
  std::vector<SortTerm> sort_;
};

}  // namespace

Ref<Recordset> ListItems(Database& db, const ItemQuery& query) {
  return ItemList(db, query).Fetch();
}

}  // namespace qdclgl::server
