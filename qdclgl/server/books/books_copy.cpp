#include "qdclgl/server/books/books_copy.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "qdclgl/server/access/trail_seal.h"
#include "qdclgl/server/books/carried_rows.h"
#include "qdclgl/server/books/each_row.h"
#include "qdclgl/server/db/new_books.h"
#include "qdclgl/server/db/program_role.h"
#include "qdclgl/server/db/schema.h"

namespace qdclgl::server {

namespace {

void CopyRows(Database& from, Database& to, const CarriedTable& table, double rows,
              const WorkProgress& progress) {
  const auto insert = to.MakeStatement(InsertInto(table));
  // So many go to PostgreSQL before it is waited for.
  constexpr int kTogether = 500;
  std::int64_t count = 0;
  EachRow(from, RowsOf(table), [&](const Statement& row) {
    SetRow(*insert, table, row);
    if (++count % kTogether != 0) return insert->ExecuteLater();
    insert->Execute();
    progress.Tell("Copying", std::min(1.0, static_cast<double>(count) / rows));
  });
}

void CopyAllRows(Database& from, Database& to, const std::vector<CarriedTable>& tables,
                 const WorkProgress& progress) {
  std::vector<double> counts;
  for (const CarriedTable& table : tables) counts.push_back(CountRows(from, table));
  const double all = std::max(1.0, std::accumulate(counts.begin(), counts.end(), 0.0));
  double done = 0;
  for (std::size_t i = 0; i < tables.size(); ++i) {
    CopyRows(from, to, tables[i], counts[i], progress.Part(done / all, (done + counts[i]) / all));
    done += counts[i];
  }
}

}  // namespace

void CopyBooks(Database& from, const ConnectionText& to, std::string_view program_role) {
  const WorkProgress progress;
  constexpr double kAfterCopy = 0.6;  // of the time, about
  Transaction view(from, Transaction::Kind::kRead);
  RequireCurrentSchema(from);
  MakeBooks(to, [&](Database& db) {
    Migrate(db, CurrentSchemaVersion());
    const std::vector<CarriedTable> tables = CarriedTables(db);
    // What migrations have put there comes with the rows of the books.
    EmptyTables(db, tables);
    CopyAllRows(from, db, tables, progress.Part(0, kAfterCopy));
    CarryLastIds(from, db);
    RequireToCarry(db, progress.Part(kAfterCopy, 1));
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
