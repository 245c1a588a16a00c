#include "qdclgl/server/db/database.h"

// The parts of SOCI that need Boost's headers are not used here.
#include <soci/soci-config.h>
#undef SOCI_HAVE_BOOST
#include <soci/postgresql/soci-postgresql.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <unordered_map>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

bool IsStorable(std::string_view text) {
  return text.find('\0') == std::string_view::npos && IsUtf8(text);
}

namespace {

std::function<void(std::string_view)>& StatementHook() {
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

// The one place where a failure of the database becomes an error of ours. `broken` becomes true
// when the connection is lost.
template <class Operation>
auto Translated(bool& broken, Operation operation) -> decltype(operation()) {
  try {
    return operation();
  } catch (const soci::sqlite3_soci_error& error) {
    constexpr int kBusy = 5, kLocked = 6;
    if (error.result() == kBusy || error.result() == kLocked) {
      Refuse(refusal::kDatabaseBusy, "Other programs are writing to the books; try again.");
    }
    Refuse(refusal::kDatabaseFailed, "SQLite: " + MessageOf(error));
  } catch (const soci::postgresql_soci_error& error) {
    const std::string state = error.sqlstate();
    if (state.starts_with("08") || state.starts_with("57P") || state == "     ") {
      broken = true;
      Refuse(refusal::kConnectionLost, "PostgreSQL: " + MessageOf(error));
    }
    if (state == "40001" || state == "40P01" || state == "55P03") {
      Refuse(refusal::kDatabaseBusy, "Other programs are writing to the same records; try again.");
    }
    Refuse(refusal::kDatabaseFailed, "PostgreSQL: " + MessageOf(error));
  } catch (const soci::soci_error& error) {
    Refuse(refusal::kDatabaseFailed, MessageOf(error));
  }
}

std::string SQLiteOptions(const ConnectionText& text) {
  // The connection option is a word in double quotes; a file name may hold anything else.
  const std::string_view file = text[connection_key::kDataSource];
  if (file.find('"') != file.npos) {
    Refuse(refusal::kBadConnectionText, "The name of a SQLite file can't hold a double quote.");
  }
  return "timeout=60 dbname=\"" + std::string(file) + "\"";
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
  add("connect_timeout", "10");
  return options;
}

// An identifier in double quotes.
std::string Quoted(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

// SOCI's placeholders have names.
std::string WithNamedPlaceholders(std::string_view sql) {
  std::string result;
  int count = 0;
  bool in_text = false;
  for (const char c : sql) {
    if (c == '\'') in_text = !in_text;
    if (c == '?' && !in_text) {
      result += ":p" + std::to_string(++count);
    } else {
      result += c;
    }
  }
  return result;
}

}  // namespace

// ---- Statement ----

namespace {

// A place that SOCI binds to: one of the three values is used.
struct Slot {
  Storage storage = Storage::kWhole;
  soci::indicator indicator = soci::i_ok;
  long long whole = 0;
  double real = 0;
  std::string text;

  void BindTo(soci::statement& statement, bool result) {
    switch (storage) {
      case Storage::kWhole: return Bind(statement, whole, result);
      case Storage::kReal: return Bind(statement, real, result);
      case Storage::kText: return Bind(statement, text, result);
    }
  }

 private:
  template <class T>
  void Bind(soci::statement& statement, T& variable, bool result) {
    if (result) {
      statement.exchange(soci::into(variable, indicator));
    } else {
      statement.exchange(soci::use(variable, indicator));
    }
  }
};

std::vector<Slot> Slots(std::span<const Storage> types) {
  std::vector<Slot> slots(types.size());
  for (std::size_t i = 0; i < types.size(); ++i) slots[i].storage = types[i];
  return slots;
}

}  // namespace

struct Statement::State {
  bool& broken;  // the connection's
  std::string sql;
  soci::statement statement;
  std::vector<Slot> parameters;
  std::vector<Slot> results;
  bool open = false;
};

struct Database::State {
  soci::session session;
  std::unordered_map<std::string, std::unique_ptr<Statement>> statements;
};

Statement::Statement(Database& database, std::string_view sql, std::span<const Storage> parameters,
                     std::span<const Storage> results)
    : state_(new State{database.broken_, std::string(sql),
                       soci::statement(database.state_->session), Slots(parameters),
                       Slots(results)}) {
  Translated(state_->broken, [&] {
    soci::statement& statement = state_->statement;
    statement.alloc();
    for (Slot& slot : state_->results) slot.BindTo(statement, true);
    for (Slot& slot : state_->parameters) slot.BindTo(statement, false);
    statement.prepare(WithNamedPlaceholders(sql));
    statement.define_and_bind();
  });
}

Statement::~Statement() = default;

void Statement::Set(std::size_t position, std::int64_t value) {
  state_->parameters[position].indicator = soci::i_ok;
  state_->parameters[position].whole = value;
}

void Statement::Set(std::size_t position, double value) {
  state_->parameters[position].indicator = soci::i_ok;
  state_->parameters[position].real = value;
}

void Statement::Set(std::size_t position, std::string_view value) {
  // One database would cut the text at the zero byte, the other keep it.
  if (!IsStorable(value)) {
    Refuse(refusal::kBadValue, "A text holds a zero byte or is not UTF-8.");
  }
  state_->parameters[position].indicator = soci::i_ok;
  state_->parameters[position].text.assign(value);
}

void Statement::SetNull(std::size_t position) {
  state_->parameters[position].indicator = soci::i_null;
}

std::int64_t Statement::Execute() {
  if (StatementHook()) StatementHook()(state_->sql);
  return Run();
}

std::int64_t Statement::Run() {
  return Translated(state_->broken, [&] {
    state_->statement.execute(true);
    return static_cast<std::int64_t>(state_->statement.get_affected_rows());
  });
}

void Statement::Open() {
  if (StatementHook()) StatementHook()(state_->sql);
  Reset();
  Translated(state_->broken, [&] { state_->statement.execute(false); });
  state_->open = true;
}

bool Statement::Fetch() {
  if (!state_->open) return false;
  state_->open = Translated(state_->broken, [&] { return state_->statement.fetch(); });
  return state_->open;
}

void Statement::Reset() {
  while (state_->open) Fetch();
}

bool Statement::IsNull(std::size_t position) const {
  return state_->results[position].indicator == soci::i_null;
}

std::int64_t Statement::Whole(std::size_t position) const {
  return IsNull(position) ? 0 : state_->results[position].whole;
}

double Statement::Real(std::size_t position) const {
  return IsNull(position) ? 0 : state_->results[position].real;
}

const std::string& Statement::Text(std::size_t position) const {
  static const std::string kEmpty;
  return IsNull(position) ? kEmpty : state_->results[position].text;
}

// ---- Database ----

Database::Database(const ConnectionText& text, Opening opening)
    : is_sqlite_(text.IsSQLite()), state_(std::make_unique<State>()) {
  if (is_sqlite_ && opening == Opening::kExisting) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(text[connection_key::kDataSource], ignored)) {
      Refuse(refusal::kNoBooks,
             "There is no file " + std::string(text[connection_key::kDataSource]) + ".");
    }
  }
  Translated(broken_, [&] {
    if (is_sqlite_) {
      state_->session.open(soci::sqlite3, SQLiteOptions(text));
    } else {
      try {
        state_->session.open(soci::postgresql, PostgreSQLOptions(text));
      } catch (const soci::soci_error& error) {
        // It carries no state that would tell what is wrong; its text does.
        Refuse(refusal::kConnectionLost, std::string("PostgreSQL: ") + error.what());
      }
    }
  });
  if (is_sqlite_) {
    const bool normal = EqualsIgnoringAsciiCase(text[connection_key::kSynchronous], "Normal");
    Command(normal ? "PRAGMA synchronous = NORMAL" : "PRAGMA synchronous = FULL");
    Command("PRAGMA foreign_keys = ON");
    Command("PRAGMA case_sensitive_like = ON");
    if (opening == Opening::kCreate) Command("PRAGMA journal_mode = WAL");
  } else {
    Command("SET client_min_messages = warning");
    const std::string_view schema = text[connection_key::kSchema];
    if (!schema.empty()) {
      if (opening == Opening::kCreate) {
        Command("CREATE SCHEMA IF NOT EXISTS " + Quoted(schema));
      }
      Command("SET search_path TO " + Quoted(schema));
    }
  }
}

Database::~Database() = default;

namespace {

std::map<std::string, std::unique_ptr<Database>>& Connections() {
  thread_local std::map<std::string, std::unique_ptr<Database>> connections;
  return connections;
}

}  // namespace

Database& Database::Of(const std::string& connection) {
  std::unique_ptr<Database>& database = Connections()[connection];
  if (!database || database->broken_) {
    database = std::make_unique<Database>(ConnectionText::Parse(connection), Opening::kExisting);
  }
  return *database;
}

void Database::CloseAll() { Connections().clear(); }

Statement& Database::Prepared(std::string_view sql, std::span<const Storage> parameters,
                              std::span<const Storage> results) {
  std::string key;
  key.reserve(sql.size() + parameters.size() + results.size() + 1);
  for (const Storage type : parameters) key += static_cast<char>('a' + static_cast<int>(type));
  key += ' ';
  for (const Storage type : results) key += static_cast<char>('a' + static_cast<int>(type));
  key += sql;
  auto found = state_->statements.find(key);
  if (found == state_->statements.end()) {
    auto statement = std::make_unique<Statement>(*this, sql, parameters, results);
    found = state_->statements.emplace(std::move(key), std::move(statement)).first;
  }
  return *found->second;
}

void Database::Command(std::string_view sql) {
  if (StatementHook()) StatementHook()(sql);
  Translated(broken_, [&] { state_->session << sql; });
}

void Database::Transact(std::string_view sql) {
  if (StatementHook()) StatementHook()(sql);
  Run(sql);
}

void Database::Run(std::string_view sql) {
  if (is_sqlite_) {
    // Preparing costs SQLite more than running.
    Prepared(sql, {}, {}).Run();
  } else {
    Translated(broken_, [&] { state_->session << sql; });
  }
}

void Database::ExecuteScript(std::string_view script) {
  while (true) {
    const auto end = script.find(';');
    const auto first = script.find_first_not_of(" \n");
    if (end == script.npos || first == script.npos) return;
    Command(script.substr(first, end - first));
    script.remove_prefix(end + 1);
  }
}

void Database::BeginBatch() {
  if (in_batch_) Refuse(refusal::kBadBatch, "A batch is under way in these books already.");
  Transact(is_sqlite_ ? "BEGIN IMMEDIATE" : "BEGIN");
  in_batch_ = true;
  depth_ = 1;
}

void Database::CommitBatch() {
  if (!in_batch_) Refuse(refusal::kBadBatch, "No batch is under way in these books.");
  Transact("COMMIT");
  in_batch_ = false;
  depth_ = 0;
}

void Database::RollBackBatch() {
  if (!in_batch_) Refuse(refusal::kBadBatch, "No batch is under way in these books.");
  in_batch_ = false;
  depth_ = 0;
  RollBack(0);
}

void Database::RollBack(int level) noexcept {
  try {
    // A query that an exception cut short still holds its rows.
    for (const auto& [key, statement] : state_->statements) statement->Reset();
    if (level > 0) {
      const std::string name = "SAVEPOINT level" + std::to_string(level);
      Run("ROLLBACK TO " + name);
      Run("RELEASE " + name);
    } else {
      Run("ROLLBACK");
    }
  } catch (const std::exception&) {
    broken_ = true;
  }
}

void Database::SetStatementHook(std::function<void(std::string_view sql)> hook) {
  StatementHook() = std::move(hook);
}

// ---- Transaction ----

namespace {

// SQLite lets in one writer at a time. PostgreSQL is told with a lock of our own, which costs less
// than locking the rows of accounts and settings that each save reads.
constexpr std::string_view kSharedLock =
    "SELECT pg_advisory_xact_lock_shared(hashtext(current_schema()), 0)";
constexpr std::string_view kExclusiveLock =
    "SELECT pg_advisory_xact_lock(hashtext(current_schema()), 0)";

}  // namespace

Transaction::Transaction(Database& database, Kind kind)
    : database_(database), level_(database.depth_) {
  std::string begin = level_ > 0 ? "SAVEPOINT level" + std::to_string(level_) : "BEGIN";
  if (kind == Kind::kRead) {
    if (level_ == 0) begin += database.Dialect("", " ISOLATION LEVEL REPEATABLE READ READ ONLY");
  } else if (database.is_sqlite_) {
    if (level_ == 0) begin += " IMMEDIATE";
  } else {
    // One message to the server for both.
    begin.append("; ").append(kind == Kind::kSave ? kSharedLock : kExclusiveLock);
  }
  if (StatementHook()) StatementHook()(begin);
  try {
    database.Run(begin);
  } catch (const Error&) {
    // The lock may have failed behind the beginning.
    if (!database.is_sqlite_) database.RollBack(level_);
    throw;
  }
  ++database.depth_;
}

void Transaction::Commit() {
  if (level_ > 0) {
    database_.Transact("RELEASE SAVEPOINT level" + std::to_string(level_));
  } else {
    database_.Transact("COMMIT");
  }
  open_ = false;
  database_.depth_ = level_;
}

Transaction::~Transaction() {
  if (!open_) return;
  database_.depth_ = level_;
  database_.RollBack(level_);
}

}  // namespace qdclgl::server
