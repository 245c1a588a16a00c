#include "qdclgl/server/books/each_row.h"

namespace qdclgl::server {

// PostgreSQL would hand over all rows of a query at once, so they are fetched by a cursor.
void EachRow(Database& db, const std::string& query,
             const std::function<void(const Statement&)>& take) {
  const bool has_cursor = db.Dialect("", "cursor") == "cursor";
  if (has_cursor) db.ExecuteScript("DECLARE copied NO SCROLL CURSOR FOR " + query);
  const auto rows = db.MakeStatement(has_cursor ? "FETCH 1000 FROM copied" : query);
  for (bool is_more = true; is_more;) {
    bool is_any = false;
    for (rows->Open(); rows->Fetch(); is_any = true) take(*rows);
    is_more = has_cursor && is_any;
  }
  if (has_cursor) db.ExecuteScript("CLOSE copied");
}

}  // namespace qdclgl::server
