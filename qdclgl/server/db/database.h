// One connection to the books: statements with bound values, transactions, batches.
//
// SQL is written once for both databases, with "?" for every value. Statements are prepared once
// for each connection and kept. A connection belongs to one thread.
#pragma once

#include <any>
#include <array>
#include <concepts>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <typeindex>
#include <utility>
#include <vector>

#include "qdclgl/frame/values/values.h"
#include "qdclgl/server/db/connection_text.h"

namespace qdclgl::server {

// Whether a text is UTF-8 without zero bytes: what every database holds alike.
bool IsStorable(std::string_view text);

// How the database holds a value: whole numbers (amounts are counted in ten-thousandths, truth
// values are 0 and 1), real numbers, texts.
enum class Storage : std::uint8_t { kWhole, kReal, kText };

namespace detail {

template <class T>
struct StorageOf;
template <std::integral T>
struct StorageOf<T> {
  static constexpr Storage kStorage = Storage::kWhole;
  static std::int64_t Out(T value) { return static_cast<std::int64_t>(value); }
  static T In(std::int64_t value) { return static_cast<T>(value); }
};
template <>
struct StorageOf<Currency> {
  static constexpr Storage kStorage = Storage::kWhole;
  static std::int64_t Out(Currency value) { return value.units(); }
  static Currency In(std::int64_t value) { return Currency::FromUnits(value); }
};
template <>
struct StorageOf<double> {
  static constexpr Storage kStorage = Storage::kReal;
  static double Out(double value) { return value; }
  static double In(double value) { return value; }
};
template <>
struct StorageOf<std::string> {
  static constexpr Storage kStorage = Storage::kText;
  static std::string_view Out(const std::string& value) { return value; }
  static std::string In(const std::string& value) { return value; }
};
template <>
struct StorageOf<std::string_view> : StorageOf<std::string> {
  static std::string_view Out(std::string_view value) { return value; }
};
template <>
struct StorageOf<const char*> : StorageOf<std::string> {
  static std::string_view Out(const char* value) { return value; }
};

}  // namespace detail

class Database;

// A prepared statement. Its parameters are set in order, then it is executed; rows are fetched to
// the end (or the statement is reset), which frees what the database holds for it.
class Statement {
 public:
  Statement(Database& database, std::string_view sql, std::span<const Storage> parameters,
            std::span<const Storage> results);
  ~Statement();

  void Set(std::size_t position, std::int64_t value);
  void Set(std::size_t position, double value);
  void Set(std::size_t position, std::string_view value);
  void SetNull(std::size_t position);

  // Runs a statement without rows; the number of rows it changed.
  std::int64_t Execute();
  // The same past the hook.
  std::int64_t Run();
  // Runs a query; Fetch then steps through its rows and is false behind the last one.
  void Open();
  bool Fetch();
  void Reset();

  // The columns of the current row. A Null reads as 0 or "".
  bool IsNull(std::size_t position) const;
  std::int64_t Whole(std::size_t position) const;
  double Real(std::size_t position) const;
  const std::string& Text(std::size_t position) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

class Database {
 public:
  // The connection of this thread to the books of a text as ConnectionText::ToText has it, without
  // a session; made on first use and kept. Errors: NoBooks, ConnectionLost, DatabaseFailed.
  static Database& Of(const std::string& connection);
  // Closes this thread's connections, before a file is moved, say.
  static void CloseAll();

  enum class Opening { kExisting, kCreate };
  Database(const ConnectionText& text, Opening opening);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  bool IsSQLite() const { return is_sqlite_; }
  // The text that this database understands: the first for SQLite, the second for PostgreSQL.
  std::string_view Dialect(std::string_view sqlite, std::string_view postgresql) const {
    return is_sqlite_ ? sqlite : postgresql;
  }

  // The prepared statement for this text and these types.
  Statement& Prepared(std::string_view sql, std::span<const Storage> parameters,
                      std::span<const Storage> results);

  // Runs a statement with these values; the number of rows it changed.
  template <class... Values>
  std::int64_t Execute(std::string_view sql, const Values&... values) {
    return Bound<>(sql, values...).Execute();
  }

  // The rows of a query: `db.Query<Long, Currency>("SELECT ... WHERE FVoucherID = ?", id)`.
  template <class... Columns, class... Values>
  std::vector<std::tuple<Columns...>> Query(std::string_view sql, const Values&... values) {
    Statement& statement = Bound<Columns...>(sql, values...);
    std::vector<std::tuple<Columns...>> rows;
    for (statement.Open(); statement.Fetch();) {
      rows.push_back(Row<Columns...>(statement, std::index_sequence_for<Columns...>()));
    }
    return rows;
  }

  // The first row, nothing when there is none.
  template <class... Columns, class... Values>
  std::optional<std::tuple<Columns...>> QueryRow(std::string_view sql, const Values&... values) {
    Statement& statement = Bound<Columns...>(sql, values...);
    statement.Open();
    if (!statement.Fetch()) return std::nullopt;
    auto row = Row<Columns...>(statement, std::index_sequence_for<Columns...>());
    statement.Reset();
    return row;
  }

  // The first column of the first row.
  template <class Column, class... Values>
  std::optional<Column> QueryValue(std::string_view sql, const Values&... values) {
    const auto row = QueryRow<Column>(sql, values...);
    return row ? std::optional<Column>(std::get<0>(*row)) : std::nullopt;
  }

  // Several statements without values, as the schema's migrations are.
  void ExecuteScript(std::string_view script);

  // A batch: many saves in one transaction, each a savepoint in it. BadBatch when one is under way
  // or none is.
  void BeginBatch();
  void CommitBatch();
  void RollBackBatch();

  // What somebody keeps with the connection, a value of a type of his own.
  template <class T>
  T& Kept() {
    std::any& value = kept_[typeid(T)];
    if (!value.has_value()) value = T();
    return *std::any_cast<T>(&value);
  }

  // Called with the text of each statement before it runs; a test makes it raise. Null: nothing.
  static void SetStatementHook(std::function<void(std::string_view sql)> hook);

 private:
  friend class Statement;
  friend class Transaction;
  struct State;

  template <class... Columns, class... Values>
  Statement& Bound(std::string_view sql, const Values&... values) {
    static constexpr std::array<Storage, sizeof...(Values)> kParameters = {
        detail::StorageOf<std::decay_t<Values>>::kStorage...};
    static constexpr std::array<Storage, sizeof...(Columns)> kResults = {
        detail::StorageOf<Columns>::kStorage...};
    Statement& statement = Prepared(sql, kParameters, kResults);
    std::size_t position = 0;
    (statement.Set(position++, detail::StorageOf<std::decay_t<const Values>>::Out(values)), ...);
    return statement;
  }

  template <class... Columns, std::size_t... I>
  static std::tuple<Columns...> Row(const Statement& statement, std::index_sequence<I...>) {
    return {Cell<Columns>(statement, I)...};
  }
  template <class Column>
  static Column Cell(const Statement& statement, std::size_t position) {
    using Storage_ = detail::StorageOf<Column>;
    if constexpr (Storage_::kStorage == Storage::kWhole)
      return Storage_::In(statement.Whole(position));
    else if constexpr (Storage_::kStorage == Storage::kReal)
      return Storage_::In(statement.Real(position));
    else return Storage_::In(statement.Text(position));
  }

  // Runs a statement once.
  void Command(std::string_view sql);
  // Runs a word of the transaction language, the second past the hook.
  void Transact(std::string_view sql);
  void Run(std::string_view sql);
  // Takes back what is under way, to the savepoint of a level above 0. A connection that can't is
  // given up: the next caller gets a new one.
  void RollBack(int level) noexcept;

  bool is_sqlite_;
  bool broken_ = false;
  std::unique_ptr<State> state_;
  std::map<std::type_index, std::any> kept_;
  bool in_batch_ = false;
  int depth_ = 0;  // transactions and savepoints under way
};

// A transaction, or a savepoint inside a batch or another transaction. Without a Commit it is
// rolled back.
class Transaction {
 public:
  // kRead gives one unchanging view of the books to several queries. kSave is for vouchers, and for
  // whatever else goes by the rules of the books as they stand: accounts, currencies, groups,
  // settings, the current period. kChangeRules is for what changes those: it waits until no save is
  // under way, and saves wait for it.
  enum class Kind { kRead, kSave, kChangeRules };
  Transaction(Database& database, Kind kind);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void Commit();

 private:
  Database& database_;
  int level_;
  bool open_ = true;
};

}  // namespace qdclgl::server
