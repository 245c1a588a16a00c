#include "qdclgl/server/db/postgresql_driver.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>
#include <thread>
#include <utility>

#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/server/db/postgresql.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/statement.h"

namespace qdclgl::server {

namespace {

// Several hosts are a server and those that can take its place.
bool HasStandby(const ConnectionText& text) {
  return text[connection_key::kHost].find(',') != std::string_view::npos;
}

std::string OptionsOf(const ConnectionText& text) {
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
  add("service", text[connection_key::kService]);
  add("host", text[connection_key::kHost]);
  add("port", text[connection_key::kPort]);
  add("dbname", text[connection_key::kCatalog]);
  add("user", text[connection_key::kUser]);
  add("password", text[connection_key::kPassword]);
  add("sslmode", text[connection_key::kSslMode]);
  add("sslrootcert", text[connection_key::kSslRootCert]);
  add("sslcert", text[connection_key::kSslCert]);
  add("sslkey", text[connection_key::kSslKey]);
  add("client_encoding", "UTF8");
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

// By this others are told who is in their way.
std::string OwnName() {
  return "QDCLGL on " + GetMachineName() + ", process " +
         std::to_string(CurrentPlatform().ProcessId());
}

// Past a blank behind the backend's number.
constexpr std::string_view kBackendAndServerRun =
    "concat_ws(' ', pg_backend_pid(), extract(epoch FROM pg_postmaster_start_time()),"
    " (SELECT extract(epoch FROM stats_reset) FROM pg_stat_bgwriter))";

bool Begins(std::string_view script) { return script.starts_with("BEGIN"); }

// PostgreSQL's placeholders are numbered.
std::string WithNumberedPlaceholders(std::string_view sql) {
  std::string result;
  int count = 0;
  bool in_text = false;
  for (const char c : sql) {
    if (c == '\'') in_text = !in_text;
    if (c == '?' && !in_text) {
      result += "$" + std::to_string(++count);
    } else {
      result += c;
    }
  }
  return result;
}

// What the database says, on one line.
std::string OnOneLine(std::string message) {
  std::ranges::replace(message, '\n', ' ');
  return message.substr(0, message.find_last_not_of(' ') + 1);
}

template <class Number>
std::string TextOf(Number value) {
  char text[32];
  const auto end = std::to_chars(std::begin(text), std::end(text), value).ptr;
  return {text, end};
}

template <class Number>
Number NumberFrom(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    Refuse(refusal::kDatabaseFailed, "PostgreSQL: a value is no number.");
  }
  return number;
}

}  // namespace

class PostgreSQLStatement final : public Statement {
 public:
  // Without a name the server forgets it behind the next one.
  PostgreSQLStatement(PostgreSQLDriver& driver, std::string_view sql, std::string name)
      : Statement(driver, sql),
        driver_(driver),
        name_(std::move(name)),
        text_(WithNumberedPlaceholders(sql)) {}
  ~PostgreSQLStatement() override { driver_.Forget(*this); }

  const std::string& name() const { return name_; }
  const std::string& text() const { return text_; }
  const std::vector<std::string>& values() const { return values_; }
  bool IsPrepared() const { return is_prepared_; }

  void NotePrepared(bool is_prepared) { is_prepared_ = is_prepared && !name_.empty(); }
  void Take(PostgreSQLDriver::Result result) { result_ = std::move(result); }

  bool IsNull(std::size_t position) const override {
    return PQgetisnull(result_.get(), row_, static_cast<int>(position)) != 0;
  }
  std::int64_t Whole(std::size_t position) const override {
    return IsNull(position) ? 0 : NumberFrom<std::int64_t>(Text(position));
  }
  double Real(std::size_t position) const override {
    return IsNull(position) ? 0 : NumberFrom<double>(Text(position));
  }
  std::string_view Text(std::size_t position) const override {
    const int column = static_cast<int>(position);
    return {PQgetvalue(result_.get(), row_, column),
            static_cast<std::size_t>(PQgetlength(result_.get(), row_, column))};
  }

 private:
  void SetWhole(std::size_t position, std::int64_t value) override {
    Value(position) = TextOf(value);
  }
  void SetReal(std::size_t position, double value) override { Value(position) = TextOf(value); }
  void SetText(std::size_t position, std::string_view value) override {
    Value(position).assign(value);
  }
  std::string& Value(std::size_t position) {
    if (position >= values_.size()) values_.resize(position + 1);
    return values_[position];
  }

  std::int64_t RunToEnd() override {
    driver_.Queue(*this);
    driver_.Settle();
    const std::string_view count = PQcmdTuples(result_.get());
    return count.empty() ? 0 : NumberFrom<std::int64_t>(count);
  }
  void RunSometime() override { driver_.Queue(*this); }
  void Begin() override {
    End();
    driver_.Queue(*this);
    row_ = -1;
  }
  bool Step() override {
    if (!result_) driver_.Settle();
    if (!result_) Refuse(refusal::kDatabaseFailed, "PostgreSQL: a query failed before.");
    return ++row_ < PQntuples(result_.get());
  }
  void End() noexcept override {
    driver_.Disown(*this);
    result_.reset();
  }

  PostgreSQLDriver& driver_;
  std::string name_, text_;
  std::vector<std::string> values_;
  bool is_prepared_ = false;
  PostgreSQLDriver::Result result_;
  int row_ = -1;
};

// ---- The connection ----

PostgreSQLDriver::PostgreSQLDriver(const ConnectionText& text, OnBusy on_busy)
    : Driver(std::move(on_busy)) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::seconds kPromotion(60);
  constexpr std::chrono::milliseconds kPause(100);
  const std::string options = OptionsOf(text);
  for (const auto end = Clock::now() + kPromotion;; std::this_thread::sleep_for(kPause)) {
    connection_.reset(PQconnectdb(options.c_str()));
    if (PQstatus(connection_.get()) == CONNECTION_OK) break;
    // It carries no state that would tell what is wrong; its text does. No answer, or one of a
    // server that only reads, changes when another server takes the place of the first.
    const std::string message = PQerrorMessage(connection_.get());
    const bool waits = HasStandby(text) && message.find("FATAL") == message.npos;
    if (!waits || Clock::now() >= end) {
      Refuse(refusal::kConnectionLost, "PostgreSQL: " + OnOneLine(message));
    }
  }
  // A library says nothing on a program's error output.
  PQsetNoticeReceiver(
      connection_.get(), [](void*, const PGresult*) {}, nullptr);
  PQenterPipelineMode(connection_.get());

  const std::string settings = Settings(kBackendAndServerRun, text);
  CallHook(settings);
  server_run_ = Run(settings);
  const std::size_t blank = server_run_.find(' ');
  backend_ = NumberFrom<int>(std::string_view(server_run_).substr(0, blank));
  server_run_.erase(0, blank + 1);
  // A pooler gives each client a number of its own.
  if (backend_ != PQbackendPID(connection_.get())) {
    settings_ =
        std::make_unique<PostgreSQLStatement>(*this, Settings("pg_backend_pid()", text), "");
  }
}

PostgreSQLDriver::~PostgreSQLDriver() = default;

std::string PostgreSQLDriver::Settings(std::string_view first_column,
                                       const ConnectionText& text) const {
  PGconn* const connection = connection_.get();
  const auto quoted = [connection](auto escape, std::string_view value) {
    const std::unique_ptr<char, decltype(&PQfreemem)> made(
        escape(connection, value.data(), value.size()), &PQfreemem);
    if (!made)
      Refuse(refusal::kDatabaseFailed, "PostgreSQL: " + OnOneLine(PQerrorMessage(connection)));
    return std::string(made.get());
  };
  std::string query = "SELECT " + std::string(first_column);
  const auto set = [&](const char* name, std::string_view value) {
    query.append(", set_config('").append(name).append("', ");
    query.append(quoted(PQescapeLiteral, value)).append(", pg_backend_pid() <> ");
    query.append(std::to_string(PQbackendPID(connection))).append(")");
  };
  set("client_min_messages", "warning");
  set("extra_float_digits", "3");  // numbers come with all of their digits
  set("jit", "off");               // compiling a query takes longer than any query here
  set("lock_timeout", std::to_string(text.Number(connection_key::kLockTimeout)) + "s");
  set("application_name", OwnName());
  const std::string_view schema = text[connection_key::kSchema];
  if (!schema.empty()) set("search_path", quoted(PQescapeIdentifier, schema));
  return query;
}

bool PostgreSQLDriver::NeedsSettings() const {
  return settings_ && expected_.empty() && !IsInTransaction();
}

bool PostgreSQLDriver::IsInTransaction() const {
  return PQtransactionStatus(connection_.get()) != PQTRANS_IDLE;
}

bool PostgreSQLDriver::IsTransactionSound() const {
  // In a transaction that is over, what waits would fail, and the commit behind it.
  return !expected_.empty() || PQtransactionStatus(connection_.get()) == PQTRANS_INTRANS;
}

std::unique_ptr<Statement> PostgreSQLDriver::Prepare(std::string_view sql, Use use) {
  const bool has_name = use == Use::kKept && !settings_;
  std::string name = has_name ? "s" + std::to_string(++statement_count_) : "";
  return std::make_unique<PostgreSQLStatement>(*this, sql, std::move(name));
}

// ---- The pipeline ----

void PostgreSQLDriver::Queue(PostgreSQLStatement& statement) {
  constexpr std::size_t kMostExpected = 256;
  if (expected_.size() >= kMostExpected) Settle();
  const bool needs_settings = NeedsSettings();
  // How a transaction sees others' work is said before its first query.
  const bool begins = Begins(statement.text());
  if (needs_settings && !begins) Send(*settings_);
  Send(statement);
  if (needs_settings && begins) Send(*settings_);
}

void PostgreSQLDriver::Send(PostgreSQLStatement& statement) {
  PGconn* const connection = connection_.get();
  if (!statement.IsPrepared()) {
    RequireSent(
        PQsendPrepare(connection, statement.name().c_str(), statement.text().c_str(), 0, nullptr));
    expected_.push_back({&statement, true});
    statement.NotePrepared(true);
  }
  std::vector<const char*> values;
  for (const std::string& value : statement.values()) values.push_back(value.c_str());
  RequireSent(PQsendQueryPrepared(connection, statement.name().c_str(),
                                  static_cast<int>(values.size()), values.data(), nullptr, nullptr,
                                  0));
  expected_.push_back({&statement, false});
}

void PostgreSQLDriver::RequireSent(int is_sent) {
  if (is_sent == 0) Raise({"", PQerrorMessage(connection_.get())});
}

PostgreSQLDriver::Result PostgreSQLDriver::NextResult() {
  Result result(PQgetResult(connection_.get()));
  // An answer ends with none; a connection that is lost has no end of failures.
  while (PQstatus(connection_.get()) == CONNECTION_OK && Result(PQgetResult(connection_.get()))) {
  }
  return result;
}

void PostgreSQLDriver::Settle() {
  if (expected_.empty()) return;
  const std::vector<Expected> expected = std::exchange(expected_, {});
  PGconn* const connection = connection_.get();
  RequireSent(PQpipelineSync(connection));
  std::optional<Failure> failure;
  std::size_t done = 0;
  for (const auto& [statement, is_preparation] : expected) {
    Result result = NextResult();
    const ExecStatusType status = PQresultStatus(result.get());
    const bool is_done = status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK;
    if (is_done) ++done;
    if (!is_done && status != PGRES_PIPELINE_ABORTED && !failure) failure = FailureIn(result.get());
    if (PQstatus(connection) != CONNECTION_OK) break;
    if (statement == nullptr) continue;
    if (is_preparation) {
      statement->NotePrepared(is_done);
    } else if (is_done) {
      if (statement == settings_.get()) {
        backend_ = NumberFrom<int>(PQgetvalue(result.get(), 0, 0));
      } else {
        statement->Take(std::move(result));
      }
    }
  }
  // Nothing counts as done for which no answer came.
  if (done < expected.size() && !failure) failure = FailureIn(nullptr);
  if (PQstatus(connection) == CONNECTION_OK) Result(PQgetResult(connection));  // the pipeline's end
  if (failure) Raise(*failure);
}

void PostgreSQLDriver::Discard() noexcept {
  try {
    Settle();
  } catch (const std::exception&) {
    return;
  }
}

void PostgreSQLDriver::Disown(const PostgreSQLStatement& statement) noexcept {
  for (Expected& expected : expected_) {
    if (expected.statement == &statement && !expected.is_preparation) expected.statement = nullptr;
  }
}

void PostgreSQLDriver::Forget(const PostgreSQLStatement& statement) noexcept {
  for (Expected& expected : expected_) {
    if (expected.statement == &statement) expected.statement = nullptr;
  }
}

std::string PostgreSQLDriver::Run(std::string_view script) {
  Settle();
  PGconn* const connection = connection_.get();
  std::string message(script);
  if (NeedsSettings()) {
    message =
        Begins(script) ? message + "; " + settings_->text() : settings_->text() + "; " + message;
  }
  // Only one statement at a time goes through the pipeline.
  PQexitPipelineMode(connection);
  const Result result(PQexec(connection, message.c_str()));
  PQenterPipelineMode(connection);
  const ExecStatusType status = PQresultStatus(result.get());
  if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK) Raise(FailureIn(result.get()));
  const bool has_value = PQntuples(result.get()) > 0 && PQnfields(result.get()) > 0;
  return has_value ? PQgetvalue(result.get(), 0, 0) : "";
}

// ---- Failures ----

PostgreSQLDriver::Failure PostgreSQLDriver::FailureIn(const PGresult* result) const {
  const char* state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  // The statement and its values, which may hold secrets, are left out.
  const char* message = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
  return {state != nullptr ? state : "",
          message != nullptr ? message : PQerrorMessage(connection_.get())};
}

void PostgreSQLDriver::Raise(const Failure& failure) {
  const auto& [state, message] = failure;
  // Some ends of a connection are told under a state of their own.
  if (PQstatus(connection_.get()) != CONNECTION_OK || state.starts_with("08") ||
      state.starts_with("57P")) {
    GiveUp();
  }
  if (IsLost()) Refuse(refusal::kConnectionLost, "PostgreSQL: " + OnOneLine(message));
  if (state == "55P03") RaiseBusy(backend_);
  if (state == "40001" || state == "40P01") {
    Refuse(refusal::kDatabaseBusy, "Other programs are writing to the same records; try again.");
  }
  Refuse(refusal::kDatabaseFailed, "PostgreSQL: " + OnOneLine(message));
}

std::unique_ptr<Driver> ConnectToPostgreSQL(const ConnectionText& text, Driver::OnBusy on_busy) {
  return std::make_unique<PostgreSQLDriver>(text, std::move(on_busy));
}

std::string PostgreSQLBuiltIn() {
  const int version = PQlibVersion();  // 150014
  return "PostgreSQL (libpq " + std::to_string(version / 10000) + "." +
         std::to_string(version % 10000) + ")";
}

}  // namespace qdclgl::server
