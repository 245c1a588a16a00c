#include "qdclgl/server/db/driver.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/sqlite_functions.h"

namespace qdclgl::server {

namespace {

std::function<void(std::string_view)>& Hook() {
  static std::function<void(std::string_view)> hook;
  return hook;
}

// What the database says, on one line. The statement and its values, which may hold secrets, are
// left out.
std::string MessageOf(const soci::soci_error& error) {
  std::string message = error.get_error_message();
  std::ranges::replace(message, '\n', ' ');
  return message.substr(0, message.find_last_not_of(' ') + 1);
}

// A file's name as SQLite takes it, whatever is in it.
std::string UriOf(const BooksFile& file) {
  constexpr std::string_view kPlain =
      "/-._~0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string uri = "file:";
  for (const char c : file.path()) {
    if (kPlain.find(c) != kPlain.npos) {
      uri += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      uri.append(1, '%').append(1, kDigits[byte / 16]).append(1, kDigits[byte % 16]);
    }
  }
  return file.access() == BooksFile::Access::kFrozen ? uri + "?immutable=1" : uri;
}

// Several hosts are a server and those that can take its place.
bool HasStandby(const ConnectionText& text) {
  return text[connection_key::kHost].find(',') != std::string_view::npos;
}

std::string PostgreSQLOptions(const ConnectionText& text) {
  std::string options;
  const auto add = [&](std::string_view word, std::string_view value) {
    if (value.empty()) return;
    options.append(word).append("='");
    for (const char c : value) {
      if (c == '\'' || c == '\\') options += '\\';
      options += c;
    }
    options += "' ";
  };
  add("host", text[connection_key::kHost]);
  add("port", text[connection_key::kPort]);
  add("dbname", text[connection_key::kCatalog]);
  add("user", text[connection_key::kUser]);
  add("password", text[connection_key::kPassword]);
  add("sslmode", text[connection_key::kSslMode]);
  add("sslrootcert", text[connection_key::kSslRootCert]);
  add("sslcert", text[connection_key::kSslCert]);
  add("sslkey", text[connection_key::kSslKey]);
  add("connect_timeout", "10");
  const auto add_number = [&](std::string_view word, std::string_view key) {
    add(word, std::to_string(text.Number(key)));
  };
  add_number("keepalives_idle", connection_key::kKeepalivesIdle);
  add_number("keepalives_interval", connection_key::kKeepalivesInterval);
  add_number("keepalives_count", connection_key::kKeepalivesCount);
  add_number("tcp_user_timeout", connection_key::kTcpUserTimeout);
  if (HasStandby(text)) add("target_session_attrs", "read-write");
  return options;
}

}  // namespace

Driver::Driver(const ConnectionText& text, OnBusy on_busy) : on_busy_(std::move(on_busy)) {
  if (text.IsSQLite()) {
    OpenSQLite(text);
  } else {
    OpenPostgreSQL(text);
  }
}

// The library would make a missing file, and knows no file that nobody writes to; so the file is
// opened here and takes the place of a database in memory.
void Driver::OpenSQLite(const ConnectionText& text) {
  file_.emplace(std::string(text[connection_key::kDataSource]));
  Do([&] { session_.open(soci::sqlite3, "dbname=:memory:"); });
  sqlite_ = static_cast<soci::sqlite3_session_backend*>(session_.get_backend());
  sqlite_api::sqlite3* opened = nullptr;
  const int result = sqlite_api::sqlite3_open_v2(
      UriOf(*file_).c_str(), &opened,
      SQLITE_OPEN_URI | (IsReadOnly() ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE), nullptr);
  std::swap(sqlite_->conn_, opened);
  sqlite_api::sqlite3_close(opened);
  if (result != SQLITE_OK) {
    Refuse(refusal::kDatabaseFailed,
           "SQLite: " + std::string(sqlite_api::sqlite3_errmsg(sqlite_->conn_)));
  }
  constexpr int kSecond = 1000;  // milliseconds
  sqlite_api::sqlite3_busy_timeout(sqlite_->conn_,
                                   text.Number(connection_key::kLockTimeout) * kSecond);
  DefineSQLiteFunctions(session_);
}

void Driver::OpenPostgreSQL(const ConnectionText& text) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::seconds kPromotion(60);
  constexpr std::chrono::milliseconds kPause(100);
  const auto end = Clock::now() + kPromotion;
  while (session_.get_backend() == nullptr) {
    try {
      session_.open(soci::postgresql, PostgreSQLOptions(text));
    } catch (const soci::soci_error& error) {
      // It carries no state that would tell what is wrong; its text does. No answer, or one of a
      // server that only reads, changes when another server takes the place of the first.
      const std::string message = error.what();
      const bool waits = HasStandby(text) && message.find("FATAL") == message.npos;
      if (!waits || Clock::now() >= end) {
        Refuse(refusal::kConnectionLost, "PostgreSQL: " + message);
      }
      std::this_thread::sleep_for(kPause);
    }
  }
  postgresql_ = static_cast<soci::postgresql_session_backend*>(session_.get_backend());
}

bool Driver::IsInTransaction() const {
  if (is_sqlite()) return sqlite_api::sqlite3_get_autocommit(sqlite_->conn_) == 0;
  return PQtransactionStatus(postgresql_->conn_) != PQTRANS_IDLE;
}

bool Driver::IsTransactionSound() const {
  if (is_sqlite()) return IsInTransaction();
  return PQtransactionStatus(postgresql_->conn_) == PQTRANS_INTRANS;
}

bool Driver::FailedInWriting() const {
  return last_failure_ == SQLITE_FULL || last_failure_ == SQLITE_IOERR_WRITE;
}

void Driver::RaiseTranslated() {
  try {
    throw;
  } catch (const soci::sqlite3_soci_error& error) {
    last_failure_ = sqlite_api::sqlite3_extended_errcode(sqlite_->conn_);
    if (error.result() == SQLITE_BUSY || error.result() == SQLITE_LOCKED) {
      Refuse(refusal::kDatabaseBusy, on_busy_(0));
    }
    Refuse(refusal::kDatabaseFailed, "SQLite: " + MessageOf(error));
  } catch (const soci::postgresql_soci_error& error) {
    const std::string state = error.sqlstate();
    // Some ends of a connection are told under a state of their own.
    is_lost_ =
        is_lost_ || (postgresql_ != nullptr && PQstatus(postgresql_->conn_) != CONNECTION_OK);
    if (is_lost_ || state.starts_with("08") || state.starts_with("57P")) {
      is_lost_ = true;
      Refuse(refusal::kConnectionLost, "PostgreSQL: " + MessageOf(error));
    }
    if (state == "55P03")
      Refuse(refusal::kDatabaseBusy, on_busy_(PQbackendPID(postgresql_->conn_)));
    if (state == "40001" || state == "40P01") {
      Refuse(refusal::kDatabaseBusy, "Other programs are writing to the same records; try again.");
    }
    Refuse(refusal::kDatabaseFailed, "PostgreSQL: " + MessageOf(error));
  } catch (const soci::soci_error& error) {
    Refuse(refusal::kDatabaseFailed, MessageOf(error));
  }
}

void Driver::NoteFailure(const Error& error) {
  // Who waited too long has lost nothing but the time.
  if (error.number() == refusal::kDatabaseBusy && IsInTransaction()) return;
  work_.has_failed = true;
}

void Driver::RequireSound() const {
  if (!work_.has_failed) return;
  if (work_.in_batch) {
    Refuse(refusal::kBatchFailed,
           "The database has failed in the batch; nothing of it is saved. Roll it back first.");
  }
  Refuse(refusal::kDatabaseFailed, "The transaction has failed; nothing of it is saved.");
}

void Driver::SetHook(std::function<void(std::string_view sql)> hook) { Hook() = std::move(hook); }

void Driver::CallHook(std::string_view sql) {
  if (Hook()) Hook()(sql);
}

std::string Driver::Run(std::string_view sql) {
  return Do([&] { return is_sqlite() ? RunSQLite(sql) : RunPostgreSQL(sql); });
}

std::string Driver::RunSQLite(std::string_view sql) {
  std::string value;
  const auto take = [](void* into, int count, char** values, char**) {
    auto& text = *static_cast<std::string*>(into);
    if (text.empty() && count > 0 && values[0] != nullptr) text = values[0];
    return 0;
  };
  const int result =
      sqlite_api::sqlite3_exec(sqlite_->conn_, std::string(sql).c_str(), take, &value, nullptr);
  if (result != SQLITE_OK) {
    throw soci::sqlite3_soci_error(sqlite_api::sqlite3_errmsg(sqlite_->conn_), result);
  }
  return value;
}

std::string Driver::RunPostgreSQL(std::string_view sql) {
  const std::unique_ptr<PGresult, void (*)(PGresult*)> result(
      PQexec(postgresql_->conn_, std::string(sql).c_str()), PQclear);
  const ExecStatusType status = PQresultStatus(result.get());
  if (status == PGRES_TUPLES_OK && PQntuples(result.get()) > 0 && PQnfields(result.get()) > 0) {
    return PQgetvalue(result.get(), 0, 0);
  }
  if (status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK) return "";
  const char* state = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
  throw soci::postgresql_soci_error(PQerrorMessage(postgresql_->conn_),
                                    state != nullptr ? state : "     ");
}

void Driver::Reset(soci::statement& statement) noexcept {
  // PostgreSQL has sent all rows and holds nothing.
  if (!is_sqlite()) return;
  const auto* backend = static_cast<soci::sqlite3_statement_backend*>(statement.get_backend());
  // What it gives is the failure that was told already.
  sqlite_api::sqlite3_reset(backend->stmt_);
}

void Driver::RequireFileAsBefore() {
  if (!file_ || file_->access() != BooksFile::Access::kFrozen || file_->IsAsBefore()) return;
  GiveUp();
  Refuse(refusal::kDatabaseBusy, "The books were written to while they were read; try again.");
}

}  // namespace qdclgl::server
