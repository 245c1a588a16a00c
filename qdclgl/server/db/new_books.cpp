#include "qdclgl/server/db/new_books.h"

#include "qdclgl/server/db/books_file.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/schema.h"

namespace qdclgl::server {

namespace {

void Fill(Database& db, const std::function<void(Database& db)>& fill) {
  Transaction transaction(db, Transaction::Kind::kChangeRules);
  if (SchemaVersion(db) != 0) Refuse(refusal::kBooksExist, "The database holds books already.");
  RequireNoHalfCopy(db);
  db.MakeSchema();
  fill(db);
  transaction.Commit();
}

void FillFile(const ConnectionText& text, const std::function<void(Database& db)>& fill) {
  Database db(text.Without(connection_key::kSynchronous));
  try {
    Fill(db, fill);
  } catch (const Error& error) {
    if (error.number() != refusal::kOutcomeUnknown) throw;
    // Whatever the file holds now, it goes away.
    Refuse(refusal::kDatabaseFailed, "SQLite failed at the end of the new books.");
  }
  // From here on nothing waits beside the file to be taken over into it.
  if (db.QueryValue<std::string>("PRAGMA journal_mode = WAL") != "wal") {
    Refuse(refusal::kDatabaseFailed, "SQLite can't keep a log beside the file.");
  }
}

}  // namespace

void MakeBooks(const ConnectionText& text, const std::function<void(Database& db)>& fill) {
  if (!text.IsSQLite()) {
    Fill(*Connections::OfThisThread().Apart(text), fill);
    return;
  }
  NewBooksFile file{std::string(text[connection_key::kDataSource])};
  FillFile(text.With(connection_key::kDataSource, file.path()), fill);
  file.PutInPlace();
}

}  // namespace qdclgl::server
