// A connection as the database library has it. Here alone is known which library that is, what it
// does when something fails, and how failures of the two databases become errors of ours.
#pragma once

// The parts of SOCI that need Boost's headers are not used here.
#include <soci/soci-config.h>
#undef SOCI_HAVE_BOOST
#include <soci/postgresql/soci-postgresql.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "qdclgl/frame/vocabulary/errors.h"
#include "qdclgl/server/db/books_file.h"
#include "qdclgl/server/db/connection_text.h"

namespace qdclgl::server {

class Driver {
 public:
  // What is told of those for whom something was waited too long; PostgreSQL knows the waiting one
  // by a number.
  using OnBusy = std::function<std::string(int backend)>;

  // Errors: NoBooks, ConnectionLost, DatabaseFailed.
  Driver(const ConnectionText& text, OnBusy on_busy);
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;

  soci::session& session() { return session_; }
  bool is_sqlite() const { return sqlite_ != nullptr; }

  // The connection is gone for good.
  bool IsLost() const { return is_lost_; }
  void GiveUp() { is_lost_ = true; }
  bool IsReadOnly() const { return file_ && file_->access() != BooksFile::Access::kWrite; }
  // Whether a new connection would be another one: who could only read may do more by now, or less.
  bool IsStale() const { return is_lost_ || (IsReadOnly() && !file_->IsAsBefore()); }

  // What the database itself knows of a transaction: SQLite ends one by itself at some failures.
  bool IsInTransaction() const;
  bool IsTransactionSound() const;

  // SQLite: whether the last failure was one of writing. Behind that nothing more was written, and
  // the end of a transaction is written last.
  bool FailedInWriting() const;

  // Runs an operation of the library. Errors: DatabaseBusy, ConnectionLost, DatabaseFailed.
  template <class Operation>
  auto Do(Operation operation) -> decltype(operation()) {
    try {
      return operation();
    } catch (const soci::soci_error&) {
      RaiseTranslated();
    }
  }

  // What is under way on the connection.
  struct Work {
    int depth = 0;            // transactions and savepoints
    bool in_batch = false;    // the outermost is a batch
    bool has_failed = false;  // nothing more happens in it
  };
  Work& work() { return work_; }
  const Work& work() const { return work_; }
  // Runs an operation of the work under way. What fails in a transaction takes all of it.
  template <class Operation>
  auto Watched(Operation operation) -> decltype(operation()) {
    try {
      return Do(operation);
    } catch (const Error& error) {
      if (work_.depth > 0) NoteFailure(error);
      throw;
    }
  }
  void NoteFailure(const Error& error);
  // BatchFailed when the database has failed in the batch under way, DatabaseFailed in another
  // transaction.
  void RequireSound() const;

  // Called with the text of each statement before it runs; a test makes it raise.
  static void SetHook(std::function<void(std::string_view sql)> hook);
  static void CallHook(std::string_view sql);

  // Runs statements without values; the first value of the last one's rows, "" without any.
  std::string Run(std::string_view sql);

  // Frees what the database holds for a statement, which ran to its end or didn't, or failed. It
  // is not run again for that.
  void Reset(soci::statement& statement) noexcept;

  // Refuses what was read from a file that has changed since.
  void RequireFileAsBefore();

 private:
  void OpenSQLite(const ConnectionText& text);
  void OpenPostgreSQL(const ConnectionText& text);
  std::string RunSQLite(std::string_view sql);
  std::string RunPostgreSQL(std::string_view sql);
  [[noreturn]] void RaiseTranslated();

  std::optional<BooksFile> file_;  // SQLite
  soci::session session_;
  // The session's own half, one of the two.
  soci::sqlite3_session_backend* sqlite_ = nullptr;
  soci::postgresql_session_backend* postgresql_ = nullptr;
  OnBusy on_busy_;
  Work work_;
  bool is_lost_ = false;
  int last_failure_ = 0;  // SQLite's extended code
};

}  // namespace qdclgl::server
