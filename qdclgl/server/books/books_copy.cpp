#include "qdclgl/server/books/books_copy.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "qdclgl/server/access/trail_seal.h"
#include "qdclgl/server/books/books_check.h"
#include "qdclgl/server/books/each_row.h"
#include "qdclgl/server/db/new_books.h"
#include "qdclgl/server/db/program_role.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/schema.h"

namespace qdclgl::server {

namespace {

struct CopiedColumn {
  std::string name;
  Storage storage;
};
struct CopiedTable {
  std::string name;
  std::vector<CopiedColumn> columns;
};

Storage StorageNamed(const std::string& type) {
  if (type == "REAL" || type == "double precision") return Storage::kReal;
  return type == "TEXT" || type == "text" ? Storage::kText : Storage::kWhole;
}

// The tables in the order in which they were made: what others refer to comes first.
std::vector<CopiedTable> TablesOf(Database& db) {
  std::vector<CopiedTable> tables;
  for (const auto& [name] : db.Query<std::string>(
           db.Dialect("SELECT name FROM sqlite_master WHERE type = 'table'"
                      " AND name NOT LIKE 'sqlite%' ORDER BY rowid",
                      "SELECT CAST(relname AS TEXT) FROM pg_class WHERE relkind = 'r'"
                      " AND relnamespace = CAST(current_schema() AS regnamespace)"
                      " ORDER BY oid"))) {
    CopiedTable& table = tables.emplace_back(CopiedTable{name, {}});
    for (const auto& [column, type] : db.Query<std::string, std::string>(
             db.Dialect("SELECT name, type FROM pragma_table_info(?)",
                        "SELECT CAST(column_name AS TEXT), CAST(data_type AS TEXT)"
                        " FROM information_schema.columns WHERE table_schema = current_schema()"
                        " AND table_name = ? ORDER BY ordinal_position"),
             name)) {
      table.columns.push_back({column, StorageNamed(type)});
    }
  }
  return tables;
}

std::string ColumnNames(const CopiedTable& table) {
  std::string names;
  for (const CopiedColumn& column : table.columns) {
    names += (names.empty() ? "" : ", ") + column.name;
  }
  return names;
}

// How many rows a table has.
double CountRows(Database& db, const CopiedTable& table) {
  const auto count = db.QueryValue<std::int64_t>("SELECT COUNT(*) FROM " + table.name);
  return static_cast<double>(count.value_or(0));
}

void CopyRows(Database& from, Database& to, const CopiedTable& table, double rows,
              const WorkProgress& progress) {
  std::string places;
  for (std::size_t i = 0; i < table.columns.size(); ++i) places += i == 0 ? "?" : ", ?";
  const std::string names = ColumnNames(table);
  const auto insert =
      to.MakeStatement("INSERT INTO " + table.name + " (" + names + ") VALUES (" + places + ")");
  // So many go to PostgreSQL before it is waited for.
  constexpr int kTogether = 500;
  std::int64_t count = 0;
  EachRow(from, "SELECT " + names + " FROM " + table.name, [&](const Statement& row) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      switch (table.columns[i].storage) {
        case Storage::kWhole: insert->Set(i, row.Whole(i)); break;
        case Storage::kReal: insert->Set(i, row.Real(i)); break;
        case Storage::kText: insert->Set(i, row.Text(i)); break;
      }
    }
    if (++count % kTogether != 0) return insert->ExecuteLater();
    insert->Execute();
    progress.Tell("Copying", std::min(1.0, static_cast<double>(count) / rows));
  });
}

void CopyAllRows(Database& from, Database& to, const std::vector<CopiedTable>& tables,
                 const WorkProgress& progress) {
  std::vector<double> counts;
  for (const CopiedTable& table : tables) counts.push_back(CountRows(from, table));
  const double all = std::max(1.0, std::accumulate(counts.begin(), counts.end(), 0.0));
  double done = 0;
  for (std::size_t i = 0; i < tables.size(); ++i) {
    CopyRows(from, to, tables[i], counts[i], progress.Part(done / all, (done + counts[i]) / all));
    done += counts[i];
  }
}

// The last ids that tables gave, those of records that are gone included: no new one gets them.
void CopyLastIds(Database& from, Database& to) {
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

void RequireSound(Database& db, const WorkProgress& progress) {
  const Ref<Recordset> problems = CheckBooks(db, "", progress);
  if (problems->Eof()) return;
  const Ref<Dictionary> first = problems->Row();
  Refuse(refusal::kDamaged, "The books do not pass their check, so nothing is copied: " +
                                first->Value("FSubject").As<String>() + " " +
                                first->Value("FRecord").As<String>() + ": " +
                                first->Value("FProblem").As<String>());
}

}  // namespace

void CopyBooks(Database& from, const ConnectionText& to, std::string_view program_role) {
  const WorkProgress progress;
  constexpr double kAfterCopy = 0.6;  // of the time, about
  Transaction view(from, Transaction::Kind::kRead);
  RequireCurrentSchema(from);
  MakeBooks(to, [&](Database& db) {
    Migrate(db, CurrentSchemaVersion());
    const std::vector<CopiedTable> tables = TablesOf(db);
    db.ExecuteScript(db.Dialect("PRAGMA defer_foreign_keys = ON", "SELECT 1"));
    // What migrations have put there comes with the rows of the books.
    for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
      db.Execute("DELETE FROM " + table->name);
    }
    CopyAllRows(from, db, tables, progress.Part(0, kAfterCopy));
    // Tickets are of the books that gave them.
    db.Execute("DELETE FROM t_KeptSession");
    // Who was writing as the end of a block was marked is not at work in the copy.
    db.Execute("DELETE FROM t_AuditSeal WHERE FHash = ''");
    CopyLastIds(from, db);
    RequireSound(db, progress.Part(kAfterCopy, 1));
    if (!program_role.empty()) GrantToProgramRole(db, program_role);
  });
  view.Commit();
}

Ref<Dictionary> AccountOfBooks(Database& db) {
  const Transaction view(db, Transaction::Kind::kRead);
  auto account = Make<Dictionary>();
  account->Put("FVersion", Long{SchemaVersion(db)});
  account->Put(
      "FVouchers",
      db.QueryValue<Long>("SELECT COUNT(*) FROM t_Voucher WHERE FDeleted = 0").value_or(0));
  const auto last = db.QueryRow<std::string, std::string>(
      "SELECT v.FYear || '/' || v.FPeriod || ' ' || g.FName || ' ' || v.FNumber, v.FDate"
      " FROM t_Voucher v JOIN t_VoucherGroup g ON g.FGroupID = v.FGroupID WHERE v.FDeleted = 0"
      " ORDER BY v.FDate DESC, v.FVoucherID DESC LIMIT 1");
  account->Put("FVoucher", last ? std::get<0>(*last) : std::string());
  account->Put("FDate", last ? std::get<1>(*last) : std::string());
  account->Put("FHead", HeadOf(LastSeal(db)));
  return account;
}

}  // namespace qdclgl::server
