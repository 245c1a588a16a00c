#include "qdclgl/server/db/sqlite_driver.h"

#include <vector>

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/sqlite_functions.h"
#include "qdclgl/server/db/statement.h"

namespace qdclgl::server {

namespace {

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

class SQLiteStatement final : public Statement {
 public:
  SQLiteStatement(SQLiteDriver& driver, std::string_view sql, Driver::Use use)
      : Statement(driver, sql), driver_(driver) {
    sqlite3_stmt* made = nullptr;
    const int result = sqlite3_prepare_v3(
        driver.connection(), sql.data(), static_cast<int>(sql.size()),
        use == Driver::Use::kKept ? SQLITE_PREPARE_PERSISTENT : 0, &made, nullptr);
    handle_.reset(made);
    driver.Require(result);
    texts_.resize(static_cast<std::size_t>(sqlite3_bind_parameter_count(made)));
  }

  bool IsNull(std::size_t position) const override {
    return sqlite3_column_type(handle_.get(), Place(position)) == SQLITE_NULL;
  }
  std::int64_t Whole(std::size_t position) const override {
    return sqlite3_column_int64(handle_.get(), Place(position));
  }
  double Real(std::size_t position) const override {
    return sqlite3_column_double(handle_.get(), Place(position));
  }
  std::string_view Text(std::size_t position) const override {
    const unsigned char* text = sqlite3_column_text(handle_.get(), Place(position));
    if (text == nullptr) return {};
    const int size = sqlite3_column_bytes(handle_.get(), Place(position));
    return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(size)};
  }

 private:
  static int Place(std::size_t position) { return static_cast<int>(position); }
  // Parameters are counted from 1.
  static int Parameter(std::size_t position) { return static_cast<int>(position) + 1; }

  void SetWhole(std::size_t position, std::int64_t value) override {
    End();
    driver_.Require(sqlite3_bind_int64(handle_.get(), Parameter(position), value));
  }
  void SetReal(std::size_t position, double value) override {
    End();
    driver_.Require(sqlite3_bind_double(handle_.get(), Parameter(position), value));
  }
  void SetText(std::size_t position, std::string_view value) override {
    End();
    std::string& text = texts_[position];
    text.assign(value);
    driver_.Require(sqlite3_bind_text(handle_.get(), Parameter(position), text.data(),
                                      static_cast<int>(text.size()), SQLITE_STATIC));
  }

  std::int64_t RunToEnd() override {
    End();
    while (Step()) {
    }
    return sqlite3_changes64(driver_.connection());
  }
  void RunSometime() override { RunToEnd(); }
  void Begin() override { End(); }
  bool Step() override {
    is_under_way_ = true;
    const int result = sqlite3_step(handle_.get());
    if (result == SQLITE_ROW) return true;
    if (result == SQLITE_DONE) {
      End();
      return false;
    }
    try {
      driver_.RaiseFailure();
    } catch (const Error&) {
      End();
      throw;
    }
  }
  void End() noexcept override {
    // What it gives is the failure that was told already.
    if (is_under_way_) sqlite3_reset(handle_.get());
    is_under_way_ = false;
  }

  struct Finalize {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
  };

  SQLiteDriver& driver_;
  std::vector<std::string> texts_;  // what texts are bound to
  std::unique_ptr<sqlite3_stmt, Finalize> handle_;
  bool is_under_way_ = false;
};

}  // namespace

SQLiteDriver::SQLiteDriver(const ConnectionText& text, OnBusy on_busy)
    : Driver(std::move(on_busy)), file_(std::string(text[connection_key::kDataSource])) {
  sqlite3* opened = nullptr;
  // A connection belongs to one thread.
  const int result =
      sqlite3_open_v2(UriOf(file_).c_str(), &opened,
                      SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX |
                          (IsReadOnly() ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE),
                      nullptr);
  connection_.reset(opened);
  Require(result);
  Require(AddFunctions(connection()));
  constexpr int kSecond = 1000;  // milliseconds
  sqlite3_busy_timeout(connection(), text.Number(connection_key::kLockTimeout) * kSecond);
}

std::unique_ptr<Statement> SQLiteDriver::Prepare(std::string_view sql, Use use) {
  return std::make_unique<SQLiteStatement>(*this, sql, use);
}

std::string SQLiteDriver::Run(std::string_view script) {
  std::string value;
  const auto take = [](void* into, int count, char** values, char**) {
    auto& text = *static_cast<std::string*>(into);
    if (text.empty() && count > 0 && values[0] != nullptr) text = values[0];
    return 0;
  };
  Require(sqlite3_exec(connection(), std::string(script).c_str(), take, &value, nullptr));
  return value;
}

bool SQLiteDriver::IsStale() const { return IsLost() || (IsReadOnly() && !file_.IsAsBefore()); }

void SQLiteDriver::RequireFileAsBefore() {
  if (file_.access() != BooksFile::Access::kFrozen || file_.IsAsBefore()) return;
  GiveUp();
  Refuse(refusal::kDatabaseBusy, "The books were written to while they were read; try again.");
}

bool SQLiteDriver::FailedInWriting() const {
  return last_failure_ == SQLITE_FULL || last_failure_ == SQLITE_IOERR_WRITE;
}

void SQLiteDriver::RaiseFailure() {
  last_failure_ = sqlite3_extended_errcode(connection());
  constexpr int kPrimaryCode = 0xff;
  const int code = last_failure_ & kPrimaryCode;
  if (code == SQLITE_BUSY || code == SQLITE_LOCKED) RaiseBusy();
  if (code == SQLITE_NOTADB) {
    Refuse(refusal::kNoBooks, "The file " + file_.path() + " holds no books.");
  }
  const std::string reason = sqlite3_errmsg(connection());
  if (code == SQLITE_CORRUPT) {
    Refuse(refusal::kDamaged, "The file " + file_.path() + " is damaged: " + reason + ".");
  }
  Refuse(refusal::kDatabaseFailed, "SQLite: " + reason);
}

}  // namespace qdclgl::server
