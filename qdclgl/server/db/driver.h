// A connection as a database's own library has it: what the two databases do alike, whichever it
// is. What is known of SQLite alone, or of PostgreSQL alone, stands in their own drivers.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "qdclgl/frame/vocabulary/errors.h"

namespace qdclgl::server {

class Statement;

class Driver {
 public:
  // What is told of those for whom something was waited too long; PostgreSQL knows the waiting one
  // by a number.
  using OnBusy = std::function<std::string(int backend)>;

  explicit Driver(OnBusy on_busy) : on_busy_(std::move(on_busy)) {}
  virtual ~Driver() = default;
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;

  // A statement that is kept as long as the connection, or one that is run now and not again.
  enum class Use { kKept, kOnce };
  virtual std::unique_ptr<Statement> Prepare(std::string_view sql, Use use) = 0;
  // Waits for all that has not been waited for. DatabaseBusy, ConnectionLost, DatabaseFailed for
  // the first that fails.
  virtual void Settle() {}
  // The same when what fails is to be taken back anyhow.
  virtual void Discard() noexcept {}
  // Runs statements without values; the first value of the last one's rows, "" without any.
  virtual std::string Run(std::string_view script) = 0;

  // The connection is gone for good.
  bool IsLost() const { return is_lost_; }
  void GiveUp() { is_lost_ = true; }
  // Whether a new connection would be another one: who could only read may do more by now, or less.
  virtual bool IsStale() const { return is_lost_; }
  virtual bool IsReadOnly() const { return false; }
  // What changes when the server of the database starts again, or loses its memory in a crash.
  virtual std::string ServerRun() const { return {}; }
  // Refuses what was read from a file that has changed since.
  virtual void RequireFileAsBefore() {}

  // What the database itself knows of a transaction: SQLite ends one by itself at some failures.
  virtual bool IsInTransaction() const = 0;
  virtual bool IsTransactionSound() const = 0;
  // SQLite: whether the last failure was one of writing. Behind that nothing more was written, and
  // the end of a transaction is written last.
  virtual bool FailedInWriting() const { return false; }

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
      return operation();
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

 protected:
  // DatabaseBusy with the sentence of that.
  [[noreturn]] void RaiseBusy(int backend = 0) const;

 private:
  OnBusy on_busy_;
  Work work_;
  bool is_lost_ = false;
};

}  // namespace qdclgl::server
