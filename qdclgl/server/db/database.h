// One connection to the books: statements with bound values, transactions, batches.
//
// SQL is written once for both databases, with "?" for every value. Statements are prepared once
// for each connection and kept. A connection belongs to one thread.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <typeindex>
#include <unordered_map>
#include <utility>
#include <vector>

#include "qdclgl/frame/vocabulary/errors.h"
#include "qdclgl/server/db/connection_text.h"
#include "qdclgl/server/db/statement.h"

namespace qdclgl::server {

class Driver;

class Database {
 public:
  // Errors: NoBooks, ConnectionLost, DatabaseFailed.
  explicit Database(const ConnectionText& text);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // Whether this connection is no more of use: it is lost, or would be another one if it were made
  // now. Nothing is lost with it but a batch.
  bool IsStale() const;

  bool IsSQLite() const { return is_sqlite_; }
  // The text that this database understands: the first for SQLite, the second for PostgreSQL.
  std::string_view Dialect(std::string_view sqlite, std::string_view postgresql) const {
    return is_sqlite_ ? sqlite : postgresql;
  }

  // The prepared statement for this text.
  Statement& Prepared(std::string_view sql);

  // Runs a statement with these values; the number of rows it changed.
  template <class... Values>
  std::int64_t Execute(std::string_view sql, const Values&... values) {
    return Bound(sql, values...).Execute();
  }

  // Runs it, on PostgreSQL in one message with the next statement that is waited for.
  template <class... Values>
  void ExecuteLater(std::string_view sql, const Values&... values) {
    Bound(sql, values...).ExecuteLater();
  }

  // The rows of a query: `db.Query<Long, Currency>("SELECT ... WHERE FVoucherID = ?", id)`.
  template <class... Columns, class... Values>
  std::vector<std::tuple<Columns...>> Query(std::string_view sql, const Values&... values) {
    Statement& statement = Bound(sql, values...);
    std::vector<std::tuple<Columns...>> rows;
    for (statement.Open(); statement.Fetch();) {
      rows.push_back(Row<Columns...>(statement, std::index_sequence_for<Columns...>()));
    }
    return rows;
  }

  // The first row, nothing when there is none.
  template <class... Columns, class... Values>
  std::optional<std::tuple<Columns...>> QueryRow(std::string_view sql, const Values&... values) {
    Statement& statement = Bound(sql, values...);
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

  // A statement that is not kept.
  std::unique_ptr<Statement> MakeStatement(std::string_view sql);

  // Several statements without values, as the schema's migrations are.
  void ExecuteScript(std::string_view script);
  // Makes the schema that the connection text names, where it is missing.
  void MakeSchema();

  // Waits, in a transaction, until no other one writes of sessions. They have no record that a
  // writer would have locked.
  void LockSessions();

  // A batch: many saves in one transaction, each a savepoint in it. It belongs to its owner and
  // is over with it. Once the database has failed in it, it does nothing more and waits for its
  // RollBackBatch. `alone` waits until no other such batch is under way. BadBatch when a batch is
  // under way or none is.
  using BatchOwner = std::shared_ptr<const void>;
  void BeginBatch(const BatchOwner& owner, bool alone);
  void CommitBatch();
  void RollBackBatch();
  // Takes back the owner's batch, if there is one here and no transaction is at work inside it.
  void EndBatchOf(const BatchOwner& owner);
  bool InBatch() const;
  bool InBatchOf(const BatchOwner& owner) const {
    return InBatch() && batch_owner_.lock() == owner;
  }
  bool IsBatchOrphaned() const { return InBatch() && batch_owner_.expired(); }
  // BatchFailed when the database has failed in the batch under way.
  void RequireSound() const;
  // Drawn at random when the connection was opened: no two connections have the same.
  const std::string& id() const { return id_; }
  // Tells of a query that finds a row once the transaction under way is in the books and none
  // otherwise, whatever others write. It settles a commit whose answer was lost when the server has
  // started again, or another one is in its place.
  void ProveCommitBy(std::string query) { proof_ = std::move(query); }
  // Whether the books can only be read here: their file, or its folder, can't be written to.
  bool IsReadOnly() const;
  // ReadOnly; DatabaseBusy beside another session's batch.
  void RequireWritable() const;
  // Whether another session's batch is under way in this thread: it would wait for itself if
  // anything were written beside it.
  void SetBesideBatch(bool beside) { is_beside_batch_ = beside; }

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
  friend class Transaction;

  template <class... Values>
  Statement& Bound(std::string_view sql, const Values&... values) {
    Statement& statement = Prepared(sql);
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

  // What is told to who waited for others too long.
  static std::string BusySentence(const ConnectionText& text, int backend);
  // Runs a statement once.
  void Command(std::string_view sql);
  // The same past the hook and for the words of the transaction language.
  void Run(std::string_view sql) { Prepared(sql).Run(); }
  // Ends the outermost transaction. When it raises anything but DatabaseBusy, or OutcomeUnknown,
  // nothing of the transaction is there or will ever be.
  void Commit();
  // Behind a commit that failed: whether the transaction is in the books after all.
  bool IsCommittedAfterAll();
  bool IsCommittedInPostgreSQL() const;
  // Takes back what is under way, to the savepoint of a level above 0; after a failure, all of it.
  // A connection that can't is given up: the next caller gets a new one.
  void RollBack(int level) noexcept;

  // Looks a text up without a copy of it.
  struct TextHash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  ConnectionText text_;
  bool is_sqlite_;
  std::string id_;
  std::unique_ptr<Driver> driver_;
  std::unordered_map<std::string, std::unique_ptr<Statement>, TextHash, std::equal_to<>>
      statements_;
  std::map<std::type_index, std::any> kept_;
  std::weak_ptr<const void> batch_owner_;
  bool is_beside_batch_ = false;
  bool writes_ = false;  // the transaction under way
  // PostgreSQL, of the transaction under way: by what the database can be asked for it later. Ids
  // count on as long as the server runs without a crash.
  std::string transaction_id_;
  std::string proof_;
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
  // `question` is a query of one text without values, for who writes. It is asked once no rule can
  // change any more, and costs no message of its own. No more do the queries that `along` opens.
  using Along = std::function<void()>;
  Transaction(
      Database& database, Kind kind, std::string_view question = {}, const Along& along = [] {});
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void Commit();

  // The first row's answer to the question, nothing without a row.
  const std::optional<std::string>& answer() const { return answer_; }

 private:
  void Begin(const std::string& begin, const std::string& lock, std::string_view question,
             const Along& along);

  Database& database_;
  int level_;
  std::string proof_before_;
  bool open_ = true;
  std::optional<std::string> answer_;
};

}  // namespace qdclgl::server
