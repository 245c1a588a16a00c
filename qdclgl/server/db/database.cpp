#include "qdclgl/server/db/database.h"

#include <chrono>
#include <iomanip>
#include <random>
#include <sstream>
#include <thread>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/busy.h"
#include "qdclgl/server/db/postgresql.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/sqlite_driver.h"

namespace qdclgl::server {

namespace {

// `text` between quotes of a kind, doubled inside.
std::string Quoted(std::string_view text, char quote) {
  std::string quoted(1, quote);
  for (const char c : text) quoted.append(c == quote ? 2 : 1, c);
  return quoted + quote;
}

std::string DrawId() {
  std::random_device device;
  std::ostringstream digits;
  digits << std::hex << std::setfill('0');
  for (int i = 0; i < 2; ++i) digits << std::setw(8) << device();
  return digits.str();
}

// SQLite lets in one writer at a time. PostgreSQL is told with locks of our own, which cost less
// than locking the rows of accounts and settings that each save reads. They count for one schema,
// which may be about to be made.
std::string Lock(std::string_view function, std::string_view schema, int what) {
  std::string place = "current_schema()";
  if (!schema.empty()) place = "COALESCE(" + place + ", " + Quoted(schema, '\'') + "::name)";
  return std::string(function) + "(hashtext(" + place + "), " + std::to_string(what) + ")";
}

std::unique_ptr<Driver> DriverFor(const ConnectionText& text, Driver::OnBusy on_busy) {
  if (text.IsSQLite()) return std::make_unique<SQLiteDriver>(text, std::move(on_busy));
  return ConnectToPostgreSQL(text, std::move(on_busy));
}

// 2 is that of the trail's seals.
constexpr int kRules = 0, kBatchAlone = 1, kSessions = 3;

}  // namespace

// ---- The connection ----

Database::Database(const ConnectionText& text)
    : text_(text),
      is_sqlite_(text.IsSQLite()),
      id_(DrawId()),
      driver_(DriverFor(text, [text](int backend) { return BusySentence(text, backend); })) {
  if (is_sqlite_) {
    const bool normal = EqualsIgnoringAsciiCase(text[connection_key::kSynchronous], "Normal");
    Command(normal ? "PRAGMA synchronous = NORMAL" : "PRAGMA synchronous = FULL");
    Command("PRAGMA foreign_keys = ON");
    Command("PRAGMA case_sensitive_like = ON");
  }
}

Database::~Database() = default;

std::string Database::BusySentence(const ConnectionText& text, int backend) {
  std::string sentence = SentenceOfWaiting(text.Number(connection_key::kLockTimeout));
  if (text.IsSQLite()) return sentence;
  try {
    return sentence + Database(text).driver_->Run(QueryOfHolder(backend));
  } catch (const Error&) {
    return sentence;  // who it is can't be told now
  }
}

bool Database::IsStale() const { return driver_->IsStale(); }

void Database::SetStatementHook(std::function<void(std::string_view sql)> hook) {
  Driver::SetHook(std::move(hook));
}

// ---- Statements ----

Statement& Database::Prepared(std::string_view sql) {
  auto found = statements_.find(sql);
  if (found == statements_.end()) {
    found = statements_.emplace(sql, driver_->Prepare(sql, Driver::Use::kKept)).first;
  }
  return *found->second;
}

std::unique_ptr<Statement> Database::MakeStatement(std::string_view sql) {
  return driver_->Prepare(sql, Driver::Use::kOnce);
}

void Database::Command(std::string_view sql) {
  Driver::CallHook(sql);
  RequireSound();
  driver_->Watched([&] { driver_->Run(sql); });
}

void Database::ExecuteScript(std::string_view script) {
  if (!is_sqlite_) return Command(script);  // one message
  while (true) {
    const auto end = script.find(';');
    const auto first = script.find_first_not_of(" \n");
    if (end == script.npos || first == script.npos) return;
    Command(script.substr(first, end - first));
    script.remove_prefix(end + 1);
  }
}

void Database::MakeSchema() {
  const std::string_view schema = text_[connection_key::kSchema];
  if (!schema.empty()) Command("CREATE SCHEMA IF NOT EXISTS " + Quoted(schema, '"'));
}

// ---- Failures ----

void Database::RequireSound() const { driver_->RequireSound(); }

bool Database::IsReadOnly() const { return driver_->IsReadOnly(); }

void Database::RequireWritable() const {
  if (IsReadOnly()) {
    Refuse(refusal::kReadOnly, "The file of the books, or its folder, can't be written to.");
  }
  if (is_beside_batch_) {
    Refuse(refusal::kDatabaseBusy,
           "A batch is under way in this thread, and this would wait for it; end it first.");
  }
}

void Database::RollBack(int level) noexcept {
  Driver::Work& work = driver_->work();
  work.depth = level;
  // A query that an exception cut short still holds its rows.
  for (const auto& [sql, statement] : statements_) statement->Reset();
  driver_->Discard();
  try {
    if (level > 0 && !work.has_failed) {
      const std::string name = "SAVEPOINT level" + std::to_string(level);
      Run("ROLLBACK TO " + name);
      Run("RELEASE " + name);
      return;
    }
  } catch (const std::exception&) {
    work.has_failed = true;
  }
  try {
    if (!driver_->IsLost() && driver_->IsInTransaction()) Run("ROLLBACK");
  } catch (const std::exception&) {
    driver_->GiveUp();
  }
  if (level == 0 && !work.in_batch) work.has_failed = false;
}

// ---- Commits ----

void Database::Commit() {
  Driver::Work& work = driver_->work();
  Driver::CallHook("COMMIT");
  RequireSound();
  try {
    // Committing a transaction that the database has given up would look like success.
    if (!driver_->IsTransactionSound()) {
      Refuse(refusal::kDatabaseFailed, "The transaction was over before its end.");
    }
    Run("COMMIT");
  } catch (const Error& error) {
    driver_->NoteFailure(error);
    if (!work.has_failed || !IsCommittedAfterAll()) throw;
    work.has_failed = false;
  }
}

bool Database::IsCommittedAfterAll() {
  if (!writes_) return false;
  if (!is_sqlite_) return driver_->IsLost() && IsCommittedInPostgreSQL();
  if (driver_->FailedInWriting()) return false;
  // Nobody sees it now. But what reached the log before the failure would count when the log is
  // next recovered, so it is written over.
  try {
    if (driver_->IsInTransaction()) driver_->Run("ROLLBACK");
    driver_->Run("PRAGMA user_version = " + driver_->Run("PRAGMA user_version"));
  } catch (const Error& error) {
    Refuse(refusal::kOutcomeUnknown,
           "The database failed at the very end of a change, and whether it is saved shows only "
           "when the books are next opened. " +
               error.description());
  }
  return false;
}

bool Database::IsCommittedInPostgreSQL() const {
  if (transaction_id_.empty()) return false;
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::seconds kPatience(10);
  constexpr std::chrono::milliseconds kPause(50);
  for (const auto end = Clock::now() + kPatience; Clock::now() < end;
       std::this_thread::sleep_for(kPause)) {
    try {
      Database witness(text_);
      if (witness.driver_->ServerRun() != driver_->ServerRun()) {
        // The ids are of another run, or of a server that took this one's place. Nothing that was
        // under way there goes on.
        if (proof_.empty()) break;
        return witness.QueryValue<int>(proof_).has_value();
      }
      const std::string answer =
          witness.driver_->Run("SELECT pg_xact_status('" + transaction_id_ + "')");
      if (answer == "committed") return true;
      if (answer == "aborted") return false;
    } catch (const Error&) {
      continue;  // the server may come back
    }
  }
  Refuse(refusal::kOutcomeUnknown,
         "The connection was lost at the very end of a change, and the server can't be asked "
         "whether it is saved.");
}

void Database::LockSessions() {
  if (is_sqlite_) return;
  Command("SELECT " + Lock("pg_advisory_xact_lock", text_[connection_key::kSchema], kSessions));
}

// ---- Batches ----

bool Database::InBatch() const { return driver_->work().in_batch; }

void Database::BeginBatch(const BatchOwner& owner, bool alone) {
  if (InBatch()) Refuse(refusal::kBadBatch, "A batch is under way in these books already.");
  RequireWritable();
  const std::string begin(Dialect("BEGIN IMMEDIATE", "BEGIN"));
  std::string lock;
  if (alone && !is_sqlite_) {
    lock = "SELECT " + Lock("pg_advisory_xact_lock", text_[connection_key::kSchema], kBatchAlone);
  }
  Driver::CallHook(begin);
  try {
    Run(begin);
    if (!lock.empty()) Run(lock);
  } catch (const Error&) {
    RollBack(0);
    throw;
  }
  batch_owner_ = owner;
  driver_->work() = {.depth = 1, .in_batch = true};
  writes_ = true;
  transaction_id_.clear();
  proof_.clear();
}

void Database::CommitBatch() {
  if (!InBatch()) Refuse(refusal::kBadBatch, "No batch is under way in these books.");
  Commit();
  driver_->work() = {};
}

void Database::RollBackBatch() {
  if (!InBatch()) Refuse(refusal::kBadBatch, "No batch is under way in these books.");
  driver_->work().in_batch = false;
  RollBack(0);
}

void Database::EndBatchOf(const BatchOwner& owner) {
  if (InBatchOf(owner) && driver_->work().depth == 1) RollBackBatch();
}

// ---- Transaction ----

Transaction::Transaction(Database& database, Kind kind, std::string_view question,
                         const Along& along)
    : database_(database), level_(database.driver_->work().depth), proof_before_(database.proof_) {
  const bool writes = kind != Kind::kRead;
  database.RequireSound();
  if (writes) database.RequireWritable();
  // What stands before the beginning is no part of the transaction.
  if (level_ == 0) database.driver_->Settle();
  std::string begin = level_ > 0 ? "SAVEPOINT level" + std::to_string(level_) : "BEGIN";
  std::string lock;
  if (!writes) {
    if (level_ == 0) begin += database.Dialect("", " ISOLATION LEVEL REPEATABLE READ READ ONLY");
  } else if (database.is_sqlite_) {
    if (level_ == 0) begin += " IMMEDIATE";
  } else {
    lock = "SELECT " +
           Lock(kind == Kind::kSave ? "pg_advisory_xact_lock_shared" : "pg_advisory_xact_lock",
                database.text_[connection_key::kSchema], kRules);
  }
  Driver::CallHook(begin);
  try {
    Begin(begin, lock, question, along);
  } catch (const Error&) {
    // The lock or the question may have failed behind the beginning.
    database.RollBack(level_);
    throw;
  }
  if (level_ == 0) {
    database.writes_ = writes;
    database.proof_.clear();
  }
  ++database.driver_->work().depth;
}

void Transaction::Begin(const std::string& begin, const std::string& lock,
                        std::string_view question, const Along& along) {
  database_.Prepared(begin).RunLater();
  if (lock.empty()) {
    if (!question.empty()) answer_ = database_.QueryValue<std::string>(question);
    along();
    return;
  }
  database_.Prepared(lock).RunLater();
  // The id of the transaction comes back, and behind a blank the answer.
  std::string told = "SELECT CAST(pg_current_xact_id() AS TEXT)";
  if (!question.empty()) told.append(" || COALESCE(' ' || (").append(question).append("), '')");
  Statement& asked = database_.Prepared(told);
  asked.Ask();
  along();
  asked.Fetch();
  const std::string_view text = asked.Text(0);
  const std::size_t blank = text.find(' ');
  database_.transaction_id_ = text.substr(0, blank);
  if (blank != text.npos) answer_ = text.substr(blank + 1);
  asked.Reset();
}

void Transaction::Commit() {
  if (level_ == 0) {
    database_.Commit();
  } else {
    const std::string release = "RELEASE SAVEPOINT level" + std::to_string(level_);
    Driver::CallHook(release);
    database_.RequireSound();
    database_.Run(release);
  }
  open_ = false;
  database_.driver_->work().depth = level_;
}

Transaction::~Transaction() {
  if (!open_) return;
  database_.RollBack(level_);
  database_.proof_ = std::move(proof_before_);
}

}  // namespace qdclgl::server
