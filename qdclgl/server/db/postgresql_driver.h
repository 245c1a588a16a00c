// A connection to a PostgreSQL server.
//
// Statements go to it through a pipeline: what need not be waited for goes along with the next one
// that is, in one message. A failure among them comes out there, and of what stands behind it in
// the message nothing happens.
//
// A pooler between may give each transaction to another backend, where someone else's settings
// stand, or his prepared statements under our names. So where there is one, each transaction brings
// its settings along, and no statement has a name.
#pragma once

#include <libpq-fe.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/server/db/connection_text.h"
#include "qdclgl/server/db/driver.h"

namespace qdclgl::server {

class PostgreSQLStatement;

class PostgreSQLDriver final : public Driver {
 public:
  // Errors: ConnectionLost.
  PostgreSQLDriver(const ConnectionText& text, OnBusy on_busy);
  ~PostgreSQLDriver() override;

  std::unique_ptr<Statement> Prepare(std::string_view sql, Use use) override;
  std::string Run(std::string_view script) override;

  void Settle() override;
  void Discard() noexcept override;

  bool IsInTransaction() const override;
  bool IsTransactionSound() const override;
  std::string ServerRun() const override { return server_run_; }

  struct Clear {
    void operator()(PGresult* result) const noexcept { PQclear(result); }
  };
  using Result = std::unique_ptr<PGresult, Clear>;

  // Puts the statement with its values into the pipeline, with the settings where they are due.
  void Queue(PostgreSQLStatement& statement);
  // Nobody wants to know what the statement gives any more; or there is no such statement any more.
  void Disown(const PostgreSQLStatement& statement) noexcept;
  void Forget(const PostgreSQLStatement& statement) noexcept;

 private:
  struct Finish {
    void operator()(PGconn* connection) const noexcept { PQfinish(connection); }
  };
  // What the server will answer to.
  struct Expected {
    PostgreSQLStatement* statement;  // null: nobody wants it
    bool is_preparation;
  };
  // What a failed statement told.
  struct Failure {
    std::string state, message;
  };

  // Settles what the backend does with our statements, for the transaction alone where a pooler is
  // between; the result begins with a column of the caller's.
  std::string Settings(std::string_view first_column, const ConnectionText& text) const;
  // A pooler is between, and what is sent next begins a transaction.
  bool NeedsSettings() const;

  void Send(PostgreSQLStatement& statement);
  void RequireSent(int is_sent);
  // The answer to one, and the end of it.
  Result NextResult();
  [[noreturn]] void Raise(const Failure& failure);
  Failure FailureIn(const PGresult* result) const;

  std::unique_ptr<PGconn, Finish> connection_;
  std::vector<Expected> expected_;
  int statement_count_ = 0;  // names of statements
  std::string server_run_;
  std::unique_ptr<PostgreSQLStatement> settings_;  // where a pooler is between; gives the backend
  int backend_ = 0;
};

}  // namespace qdclgl::server
