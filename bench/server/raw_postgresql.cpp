#include <libpq-fe.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/server/books.h"

namespace bench {

namespace {

class Writer final : public RawWriter {
 public:
  Writer(const std::string& options, const std::string& schema)
      : connection_(PQconnectdb(options.c_str())) {
    Run("SET search_path TO " + schema);
    Prepare("counter", kCounterSql);
    Prepare("header", kHeaderSql);
    Prepare("line", kLineSql);
    Prepare("audit", kAuditSql);
  }
  ~Writer() override { PQfinish(connection_); }

  void SaveVouchers(int count) override {
    for (int i = 0; i < count; ++i) {
      Run("BEGIN");
      const std::string id = Value("header", {Value("counter", {})});
      for (int line = 0; line < 4; ++line) {
        Value("line", {id, std::to_string(line + 1), std::to_string(2 + (i * 7 + line) % 200),
                       line % 2 == 0 ? "1" : "0"});
      }
      Value("audit", {id});
      Run("COMMIT");
    }
  }

 private:
  void Check(PGresult* result) {
    const ExecStatusType status = PQresultStatus(result);
    if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK) return;
    std::fprintf(stderr, "PostgreSQL: %s\n", PQerrorMessage(connection_));
    std::exit(1);
  }
  void Run(const std::string& sql) {
    PGresult* result = PQexec(connection_, sql.c_str());
    Check(result);
    PQclear(result);
  }
  // libpq's placeholders are numbered.
  void Prepare(const char* name, const std::string& sql) {
    std::string numbered;
    int count = 0;
    for (const char c : sql) {
      if (c == '?') numbered += "$" + std::to_string(++count);
      else numbered += c;
    }
    PGresult* result = PQprepare(connection_, name, numbered.c_str(), 0, nullptr);
    Check(result);
    PQclear(result);
  }
  std::string Value(const char* name, const std::vector<std::string>& values) {
    std::vector<const char*> texts;
    for (const std::string& value : values) texts.push_back(value.c_str());
    PGresult* result = PQexecPrepared(connection_, name, static_cast<int>(texts.size()),
                                      texts.data(), nullptr, nullptr, 0);
    Check(result);
    std::string value = PQntuples(result) > 0 ? PQgetvalue(result, 0, 0) : "";
    PQclear(result);
    return value;
  }

  PGconn* connection_;
};

}  // namespace

std::unique_ptr<RawWriter> RawPostgreSQL(const std::string& options, const std::string& schema) {
  return std::make_unique<Writer>(options, schema);
}

}  // namespace bench
