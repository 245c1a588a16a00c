#include "qdclgl/server/db/list.h"

namespace qdclgl::server {

void SetAll(Statement& statement, std::span<const BoundValue> values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::visit([&](const auto& value) { statement.Set(i, value); }, values[i]);
  }
}

Ref<Recordset> FetchList(Database& db, const ListSource& source, std::string_view filter,
                         std::string_view sort, std::span<const BoundValue> values,
                         const std::optional<Page>& page) {
  const Filter condition = ParseFilter(filter, source.columns);
  const std::string order = ParseSort(sort, source.columns);

  std::string sql =
      "SELECT " + NamesOf(source.columns) + " FROM (" + std::string(source.query) + ") AS list";
  if (!condition.sql.empty()) sql += " WHERE " + condition.sql;
  sql += " ORDER BY ";
  if (!order.empty()) sql += order + ", ";
  sql += source.order;
  if (page) {
    sql += " LIMIT " + std::to_string(page->count) + " OFFSET " + std::to_string(page->first);
  }

  std::vector<BoundValue> bound(values.begin(), values.end());
  bound.insert(bound.end(), condition.values.begin(), condition.values.end());
  // Not kept: there is no end of filters.
  const std::unique_ptr<Statement> statement = db.MakeStatement(sql);
  SetAll(*statement, bound);

  auto list = Make<Recordset>();
  for (const Column& column : source.columns) list->AppendField(column.name);
  list->Open();
  for (statement->Open(); statement->Fetch();) {
    std::vector<Variant> row;
    row.reserve(source.columns.size());
    for (std::size_t i = 0; i < source.columns.size(); ++i) {
      row.push_back(ReadCell(*statement, i, source.columns[i].type));
    }
    list->AddRow(std::move(row));
  }
  return list;
}

}  // namespace qdclgl::server
