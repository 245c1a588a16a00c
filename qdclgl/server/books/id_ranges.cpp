#include "qdclgl/server/books/id_ranges.h"

namespace qdclgl::server {

std::optional<Long> NextId(Database& db, std::string_view table, std::string_view id, Long from) {
  const std::string column(id);
  return db.QueryValue<Long>("SELECT " + column + " FROM " + std::string(table) + " WHERE " +
                                 column + " >= ? ORDER BY " + column + " LIMIT 1",
                             from);
}

Long LastId(Database& db, std::string_view table, std::string_view id) {
  return db
      .QueryValue<Long>("SELECT COALESCE(MAX(" + std::string(id) + "), 0) FROM " +
                        std::string(table))
      .value_or(0);
}

}  // namespace qdclgl::server
