// A connection to a SQLite file.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>

#include "qdclgl/server/db/books_file.h"
#include "qdclgl/server/db/connection_text.h"
#include "qdclgl/server/db/driver.h"

namespace qdclgl::server {

class SQLiteDriver final : public Driver {
 public:
  // Errors: NoBooks, DatabaseFailed.
  SQLiteDriver(const ConnectionText& text, OnBusy on_busy);

  std::unique_ptr<Statement> Prepare(std::string_view sql, Use use) override;
  std::string Run(std::string_view script) override;

  bool IsStale() const override;
  bool IsReadOnly() const override { return file_.access() != BooksFile::Access::kWrite; }
  void RequireFileAsBefore() override;

  bool IsInTransaction() const override { return sqlite3_get_autocommit(connection_.get()) == 0; }
  bool IsTransactionSound() const override { return IsInTransaction(); }
  bool FailedInWriting() const override;

  sqlite3* connection() const { return connection_.get(); }
  // DatabaseBusy, DatabaseFailed.
  void Require(int result) {
    if (result != SQLITE_OK) RaiseFailure();
  }
  [[noreturn]] void RaiseFailure();

 private:
  struct Close {
    void operator()(sqlite3* connection) const noexcept { sqlite3_close_v2(connection); }
  };

  BooksFile file_;
  std::unique_ptr<sqlite3, Close> connection_;
  int last_failure_ = SQLITE_OK;  // the extended code
};

}  // namespace qdclgl::server
