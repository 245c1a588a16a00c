#include "qdclgl/server/books/books_transfer.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "qdclgl/server/books/books_copy.h"
#include "qdclgl/server/books/carried_rows.h"
#include "qdclgl/server/books/each_row.h"
#include "qdclgl/server/books/row_sum.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/file_calls.h"
#include "qdclgl/server/db/new_books.h"
#include "qdclgl/server/db/program_role.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/schema.h"

namespace qdclgl::server {

namespace {

// ---- The rows of a table as a sum ----

void Append(std::string& bytes, std::int64_t value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// A row's values one behind the other, alike on both databases.
std::string BytesOf(const CarriedTable& table, const Statement& row) {
  std::string bytes;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    switch (table.columns[i].storage) {
      case Storage::kWhole: Append(bytes, row.Whole(i)); break;
      // SQLite keeps no sign of a zero.
      case Storage::kReal: Append(bytes, std::bit_cast<std::int64_t>(row.Real(i) + 0.0)); break;
      case Storage::kText:
        Append(bytes, static_cast<std::int64_t>(row.Text(i).size()));
        bytes += row.Text(i);
        break;
    }
  }
  return bytes;
}

// In a transaction.
RowSum SumOf(Database& db, const CarriedTable& table) {
  RowSum sum;
  EachRow(db, RowsOf(table), [&](const Statement& row) { sum.Add({}, BytesOf(table, row)); });
  return sum;
}

// ---- The place of the copy ----

// Whether a copy has been begun there. BooksExist for anything else.
bool IsBegunAt(const ConnectionText& to) {
  if (to.IsSQLite() && !MarkOf(std::string(to[connection_key::kDataSource]))) return false;
  const auto db = Connections::OfThisThread().Apart(to);
  if (HoldsHalfCopy(*db)) return true;
  if (SchemaVersion(*db) != 0) Refuse(refusal::kBooksExist, "There are books already.");
  if (to.IsSQLite() || HasTables(*db)) {
    Refuse(refusal::kBooksExist, "There is something else than books already.");
  }
  return false;
}

// The tables without a row, and the mark.
void BeginCopy(Database& db) {
  Migrate(db, CurrentSchemaVersion());
  EmptyTables(db, CarriedTables(db));
  const std::string mark(kHalfCopyTable);
  db.ExecuteScript("CREATE TABLE " + mark + " (FRun TEXT NOT NULL);");
  db.Execute("INSERT INTO " + mark + " (FRun) VALUES ('')");
}

// A copy that this run goes on with, from now on it alone.
class HalfCopy {
 public:
  explicit HalfCopy(Database& db) : db_(db) {
    Transaction transaction(db, Transaction::Kind::kChangeRules);
    db.Execute("UPDATE " + std::string(kHalfCopyTable) + " SET FRun = ?", db.id());
    tables_ = CarriedTables(db);
    transaction.Commit();
    std::erase_if(tables_, [](const CarriedTable& table) { return table.name == kHalfCopyTable; });
    // The versions, whose rows make books of the copy, come last.
    std::rotate(tables_.begin(), tables_.begin() + 1, tables_.end());
  }

  Database& db() const { return db_; }
  // Those whose rows are copied in steps, and the one with the versions.
  std::span<const CarriedTable> tables() const {
    return std::span(tables_).first(tables_.size() - 1);
  }
  const CarriedTable& versions() const { return tables_.back(); }

  // In a transaction, which others who go on with the copy then wait for.
  void RequireOwn() const {
    if (db_.Execute("UPDATE " + std::string(kHalfCopyTable) + " SET FRun = ? WHERE FRun = ?",
                    db_.id(), db_.id()) == 0) {
      Refuse(refusal::kDatabaseBusy, "Another program goes on with this copy.");
    }
  }

  void Empty() const {
    Transaction transaction(db_, Transaction::Kind::kChangeRules);
    RequireOwn();
    EmptyTables(db_, tables_);
    transaction.Commit();
  }

 private:
  Database& db_;
  std::vector<CarriedTable> tables_;
};

// ---- The rows ----

RowSum SumThere(const HalfCopy& copy, const CarriedTable& table) {
  const Transaction view(copy.db(), Transaction::Kind::kRead);
  return SumOf(copy.db(), table);
}

// Writes the rows of a table behind those that are there already. Their sum; nothing when those
// are not the first ones of the books.
std::optional<RowSum> CarryTable(Database& from, const HalfCopy& copy, const CarriedTable& table,
                                 const WorkProgress& progress) {
  constexpr std::uint64_t kTogether = 500, kTransaction = 5000;
  const double all = std::max(1.0, CountRows(from, table));
  const RowSum there = SumThere(copy, table);
  RowSum sum;
  bool is_other = false;
  std::optional<Transaction> step;
  const auto commit = [&] {
    if (step) step->Commit();
    step.reset();
  };
  EachRow(from, RowsOf(table) + " ORDER BY " + table.order, [&](const Statement& row) {
    is_other = is_other || (sum.rows() == there.rows() && !(sum == there));
    if (is_other) return;
    sum.Add({}, BytesOf(table, row));
    if (sum.rows() % kTogether == 0) {
      progress.Tell("Copying", std::min(1.0, static_cast<double>(sum.rows()) / all));
    }
    if (sum.rows() <= there.rows()) return;
    if (!step) {
      step.emplace(copy.db(), Transaction::Kind::kChangeRules);
      copy.RequireOwn();
    }
    Statement& insert = copy.db().Prepared(InsertInto(table));
    SetRow(insert, table, row);
    insert.ExecuteLater();
    if (sum.rows() % kTransaction == 0) commit();
  });
  commit();
  const bool is_all_there = sum.rows() > there.rows() || sum == there;
  return is_other || !is_all_there ? std::nullopt : std::optional(sum);
}

// The sums of all tables.
std::optional<std::vector<RowSum>> CarryTables(Database& from, const HalfCopy& copy,
                                               const WorkProgress& progress) {
  std::vector<double> counts;
  double all = 1;
  for (const CarriedTable& table : copy.tables()) {
    counts.push_back(CountRows(from, table));
    all += counts.back();
  }
  std::vector<RowSum> sums;
  double done = 0;
  for (const CarriedTable& table : copy.tables()) {
    const double count = counts[sums.size()];
    const std::optional<RowSum> sum =
        CarryTable(from, copy, table, progress.Part(done / all, (done + count) / all));
    if (!sum) return std::nullopt;
    sums.push_back(*sum);
    done += count;
  }
  return sums;
}

// Makes books of the copy, and tells which, as nothing can fail behind that any more.
Ref<Dictionary> Finish(Database& from, const HalfCopy& copy, const std::vector<RowSum>& sums,
                       std::string_view program_role, const WorkProgress& progress) {
  Database& db = copy.db();
  Transaction transaction(db, Transaction::Kind::kChangeRules);
  copy.RequireOwn();
  std::size_t number = 0;
  for (const CarriedTable& table : copy.tables()) {
    if (SumOf(db, table) == sums[number++]) continue;
    Refuse(refusal::kDamaged, "The rows of " + table.name + " are not those of the books.");
  }
  CarryLastIds(from, db);
  EachRow(from, RowsOf(copy.versions()), [&](const Statement& row) {
    Statement& insert = db.Prepared(InsertInto(copy.versions()));
    SetRow(insert, copy.versions(), row);
    insert.ExecuteLater();
  });
  db.ExecuteScript("DROP TABLE " + std::string(kHalfCopyTable) + ";");
  RequireToCarry(db, progress);
  if (!program_role.empty()) GrantToProgramRole(db, program_role);
  Ref<Dictionary> account = AccountOfBooks(db);
  transaction.Commit();
  return account;
}

}  // namespace

Transfer TransferBooks(Database& from, const ConnectionText& to, std::string_view program_role) {
  // Of the time, about.
  constexpr double kAfterCheck = 0.2, kAfterRows = 0.75;
  const WorkProgress progress;
  const Transaction view(from, Transaction::Kind::kRead);
  RequireCurrentSchema(from);
  Transfer transfer;
  transfer.went_on = IsBegunAt(to);
  RequireToCarry(from, progress.Part(0, kAfterCheck));
  if (!transfer.went_on) MakeBooks(to, BeginCopy);
  const auto db = Connections::OfThisThread().Apart(to);
  const HalfCopy copy(*db);
  const WorkProgress rows = progress.Part(kAfterCheck, kAfterRows);
  std::optional<std::vector<RowSum>> sums = CarryTables(from, copy, rows);
  if (!sums) {
    transfer.began_anew = true;
    copy.Empty();
    sums = CarryTables(from, copy, rows);
  }
  if (!sums) Refuse(refusal::kDatabaseBusy, "Another program goes on with this copy.");
  transfer.account = Finish(from, copy, *sums, program_role, progress.Part(kAfterRows, 1));
  return transfer;
}

}  // namespace qdclgl::server
