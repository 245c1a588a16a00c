#include "qdclgl/server/books/carried_rows.h"

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/books/books_check.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

Storage StorageNamed(const std::string& type) {
  if (type == "REAL" || type == "double precision") return Storage::kReal;
  return type == "TEXT" || type == "text" ? Storage::kText : Storage::kWhole;
}

std::string Listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
  return list;
}

std::vector<std::string> NamesOf(const std::vector<CarriedColumn>& columns) {
  std::vector<std::string> names;
  for (const CarriedColumn& column : columns) names.push_back(column.name);
  return names;
}

// The columns of the primary key, all where there is none.
std::string OrderOf(Database& db, const CarriedTable& table) {
  std::vector<std::string> names;
  for (const auto& [name] : db.Query<std::string>(
           db.Dialect("SELECT name FROM pragma_table_info(?) WHERE pk > 0 ORDER BY pk",
                      "SELECT CAST(a.attname AS TEXT) FROM pg_class c"
                      " JOIN pg_index i ON i.indrelid = c.oid AND i.indisprimary"
                      " JOIN pg_attribute a ON a.attrelid = c.oid AND a.attnum = ANY(i.indkey)"
                      " WHERE c.relnamespace = CAST(current_schema() AS regnamespace)"
                      " AND c.relname = ?"
                      " ORDER BY array_position(CAST(i.indkey AS SMALLINT[]), a.attnum)"),
           table.name)) {
    names.push_back(name);
  }
  return Listed(names.empty() ? NamesOf(table.columns) : names);
}

// Which rows of a table are of the books and not of programs that are at work in them.
std::string_view ConditionOf(std::string_view table) {
  // Tickets are of the books that gave them.
  if (EqualsIgnoringAsciiCase(table, "t_KeptSession")) return "1 = 0";
  // Who was writing as the end of a block was marked is not at work in other books.
  if (EqualsIgnoringAsciiCase(table, "t_AuditSeal")) return "FHash <> ''";
  return "1 = 1";
}

}  // namespace

std::vector<CarriedTable> CarriedTables(Database& db) {
  std::vector<CarriedTable> tables;
  for (const auto& [name] : db.Query<std::string>(
           db.Dialect("SELECT name FROM sqlite_master WHERE type = 'table'"
                      " AND name NOT LIKE 'sqlite%' ORDER BY rowid",
                      "SELECT CAST(relname AS TEXT) FROM pg_class WHERE relkind = 'r'"
                      " AND relnamespace = CAST(current_schema() AS regnamespace)"
                      " ORDER BY oid"))) {
    CarriedTable& table = tables.emplace_back(CarriedTable{name, {}, ""});
    for (const auto& [column, type] : db.Query<std::string, std::string>(
             db.Dialect("SELECT name, type FROM pragma_table_info(?)",
                        "SELECT CAST(column_name AS TEXT), CAST(data_type AS TEXT)"
                        " FROM information_schema.columns WHERE table_schema = current_schema()"
                        " AND table_name = ? ORDER BY ordinal_position"),
             name)) {
      table.columns.push_back({column, StorageNamed(type)});
    }
    table.order = OrderOf(db, table);
  }
  return tables;
}

std::string RowsOf(const CarriedTable& table) {
  return "SELECT " + Listed(NamesOf(table.columns)) + " FROM " + table.name + " WHERE " +
         std::string(ConditionOf(table.name));
}

double CountRows(Database& db, const CarriedTable& table) {
  const auto count =
      db.QueryValue<std::int64_t>("SELECT COUNT(*) FROM (" + RowsOf(table) + ") AS carried");
  return static_cast<double>(count.value_or(0));
}

std::string InsertInto(const CarriedTable& table) {
  const std::vector<std::string> places(table.columns.size(), "?");
  return "INSERT INTO " + table.name + " (" + Listed(NamesOf(table.columns)) + ") VALUES (" +
         Listed(places) + ")";
}

void SetRow(Statement& insert, const CarriedTable& table, const Statement& row) {
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    switch (table.columns[i].storage) {
      case Storage::kWhole: insert.Set(i, row.Whole(i)); break;
      case Storage::kReal: insert.Set(i, row.Real(i)); break;
      case Storage::kText: insert.Set(i, row.Text(i)); break;
    }
  }
}

void EmptyTables(Database& db, const std::vector<CarriedTable>& tables) {
  for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
    db.Execute("DELETE FROM " + table->name);
  }
}

void CarryLastIds(Database& from, Database& to) {
  for (const auto& [table, column, id] : from.Query<std::string, std::string, std::int64_t>(
           from.Dialect("SELECT s.name, c.name, s.seq FROM sqlite_sequence s"
                        " JOIN pragma_table_info(s.name) c ON c.pk = 1",
                        "SELECT CAST(table_name AS TEXT), CAST(column_name AS TEXT),"
                        " COALESCE(pg_sequence_last_value(CAST(pg_get_serial_sequence("
                        "quote_ident(table_name), column_name) AS regclass)), 0)"
                        " FROM information_schema.columns"
                        " WHERE table_schema = current_schema() AND is_identity = 'YES'"))) {
    if (id == 0) continue;
    if (to.Dialect("SQLite", "") == "SQLite") {
      to.Execute("DELETE FROM sqlite_sequence WHERE LOWER(name) = LOWER(?)", table);
      to.Execute("INSERT INTO sqlite_sequence (name, seq) SELECT name, ? FROM sqlite_master"
                 " WHERE type = 'table' AND LOWER(name) = LOWER(?)",
                 id, table);
    } else {
      to.QueryValue<std::int64_t>(
          "SELECT setval(CAST(pg_get_serial_sequence(LOWER(?), LOWER(?)) AS regclass),"
          " CAST(? AS BIGINT), true)",
          table, column, id);
    }
  }
}

void RequireToCarry(Database& db, const WorkProgress& progress) {
  const Ref<Recordset> problems = CheckBooks(db, "", progress);
  if (problems->Eof()) return;
  const Ref<Dictionary> first = problems->Row();
  Refuse(refusal::kDamaged, "The books do not pass their check, so nothing is copied: " +
                                first->Value("FSubject").As<String>() + " " +
                                first->Value("FRecord").As<String>() + ": " +
                                first->Value("FProblem").As<String>());
}

}  // namespace qdclgl::server
