#include "qdclgl/server/db/busy.h"

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

namespace {

// A wait that has ended tells nobody any more for whom it was. But who was waited for from its
// beginning to its end has a transaction that is older, holds locks in these books, and waits for
// nobody himself.
std::string Holder(const ConnectionText& text, int backend) {
  Database witness(text);
  const auto holder = witness.QueryRow<std::string, std::string, std::string, Long, Long>(
      "SELECT COALESCE(CAST(usename AS TEXT), ''), COALESCE(application_name, ''),"
      " COALESCE(host(client_addr), ''), pid,"
      " CAST(EXTRACT(epoch FROM clock_timestamp() - xact_start) AS BIGINT)"
      " FROM pg_stat_activity a WHERE pid NOT IN (pg_backend_pid(), ?)"
      " AND xact_start <= clock_timestamp() - CAST(current_setting('lock_timeout') AS INTERVAL)"
      " AND wait_event_type IS DISTINCT FROM 'Lock'"
      " AND EXISTS (SELECT 1 FROM pg_locks l WHERE l.pid = a.pid AND granted"
      " AND database = (SELECT oid FROM pg_database WHERE datname = current_database())"
      " AND (classid = CAST(hashtext(current_schema()) AS OID)"
      " OR relation IN (SELECT oid FROM pg_class WHERE relnamespace ="
      " CAST(current_schema() AS REGNAMESPACE))))"
      " ORDER BY xact_start LIMIT 1",
      Long{backend});
  if (!holder) return "";
  const auto& [user, program, address, number, age] = *holder;
  return " A transaction has been open for " + std::to_string(age) + " s: user \"" + user +
         "\", \"" + program + "\"" + (address.empty() ? "" : " at " + address) + ", backend " +
         std::to_string(number) + ".";
}

}  // namespace

std::string SentenceOfBusyBooks(const ConnectionText& text, int backend) noexcept {
  std::string sentence = "Others were in the way for more than " +
                         std::to_string(text.Number(connection_key::kLockTimeout)) +
                         " s; try again.";
  try {
    if (!text.IsSQLite()) sentence += Holder(text, backend);
  } catch (const std::exception&) {
    // Who it is can't be told now.
    return sentence;
  }
  return sentence;
}

}  // namespace qdclgl::server
