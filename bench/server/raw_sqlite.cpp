#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "bench/server/books.h"

namespace bench {

namespace {

void Check(sqlite3* db, int result) {
  if (result == SQLITE_OK || result == SQLITE_DONE || result == SQLITE_ROW) return;
  std::fprintf(stderr, "SQLite: %s\n", sqlite3_errmsg(db));
  std::exit(1);
}

class Connection {
 public:
  explicit Connection(const std::string& file) {
    Check(db_, sqlite3_open(file.c_str(), &db_));
    Run("PRAGMA foreign_keys = ON");
  }
  ~Connection() { sqlite3_close(db_); }

  void Run(const char* sql) { Check(db_, sqlite3_exec(db_, sql, nullptr, nullptr, nullptr)); }
  sqlite3_stmt* Prepare(std::string_view sql) {
    sqlite3_stmt* statement = nullptr;
    Check(db_, sqlite3_prepare_v3(db_, sql.data(), static_cast<int>(sql.size()),
                                  SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
    return statement;
  }
  bool Step(sqlite3_stmt* statement) {
    const int result = sqlite3_step(statement);
    Check(db_, result);
    return result == SQLITE_ROW;
  }
  // Runs a statement and gives the first column of its first row, if it has one.
  std::int64_t Value(sqlite3_stmt* statement) {
    const std::int64_t value = Step(statement) ? sqlite3_column_int64(statement, 0) : 0;
    sqlite3_reset(statement);
    return value;
  }

 private:
  sqlite3* db_ = nullptr;
};

class Writer final : public RawWriter {
 public:
  Writer(const std::string& file, bool full) : connection_(file) {
    connection_.Run(full ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
    begin_ = connection_.Prepare("BEGIN IMMEDIATE");
    commit_ = connection_.Prepare("COMMIT");
    counter_ = connection_.Prepare(kCounterSql);
    header_ = connection_.Prepare(kHeaderSql);
    line_ = connection_.Prepare(kLineSql);
    audit_ = connection_.Prepare(kAuditSql);
  }
  ~Writer() override {
    for (sqlite3_stmt* statement : {begin_, commit_, counter_, header_, line_, audit_}) {
      sqlite3_finalize(statement);
    }
  }

  void SaveVouchers(int count) override {
    for (int i = 0; i < count; ++i) {
      connection_.Value(begin_);
      sqlite3_bind_int64(header_, 1, connection_.Value(counter_));
      const std::int64_t id = connection_.Value(header_);
      for (int line = 0; line < 4; ++line) {
        sqlite3_bind_int64(line_, 1, id);
        sqlite3_bind_int64(line_, 2, line + 1);
        sqlite3_bind_int64(line_, 3, 2 + (i * 7 + line) % 200);
        sqlite3_bind_int64(line_, 4, line % 2 == 0 ? 1 : 0);
        connection_.Value(line_);
      }
      sqlite3_bind_int64(audit_, 1, id);
      connection_.Value(audit_);
      connection_.Value(commit_);
    }
  }

 private:
  Connection connection_;
  sqlite3_stmt *begin_, *commit_, *counter_, *header_, *line_, *audit_;
};

}  // namespace

std::unique_ptr<RawWriter> RawSQLite(const std::string& file, bool full) {
  return std::make_unique<Writer>(file, full);
}

void StepThroughVouchers(const std::string& file) {
  Connection connection(file);
  sqlite3_stmt* statement =
      connection.Prepare("SELECT v.*, g.FName AS FGroup FROM t_Voucher v JOIN t_VoucherGroup g"
                         " ON g.FGroupID = v.FGroupID WHERE v.FDeleted = 0"
                         " ORDER BY FDate, FYear, FPeriod, v.FGroupID, FNumber");
  const int columns = sqlite3_column_count(statement);
  std::size_t total = 0;
  while (connection.Step(statement)) {
    for (int i = 0; i < columns; ++i) {
      if (sqlite3_column_type(statement, i) == SQLITE_TEXT) {
        sqlite3_column_text(statement, i);
        total += static_cast<std::size_t>(sqlite3_column_bytes(statement, i));
      } else {
        total += static_cast<std::size_t>(sqlite3_column_int64(statement, i));
      }
    }
  }
  sqlite3_finalize(statement);
  if (total == 0) std::exit(1);
}

void SumLines(const std::string& file) {
  Connection connection(file);
  sqlite3_stmt* statement = connection.Prepare(
      "SELECT e.FAccountID, e.FCurrencyID, SUM(e.FAmount * e.FDC), SUM(e.FAmount * (1 - e.FDC)),"
      " SUM(e.FAmountFor * e.FDC), SUM(e.FAmountFor * (1 - e.FDC)),"
      " SUM(e.FQuantity * e.FDC), SUM(e.FQuantity * (1 - e.FDC))"
      " FROM t_Voucher v JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID"
      " WHERE v.FPosted = 1 GROUP BY e.FAccountID, e.FCurrencyID");
  while (connection.Step(statement)) {
  }
  sqlite3_finalize(statement);
}

}  // namespace bench
