#include "qdclgl/server/db/busy.h"

namespace qdclgl::server {

std::string SentenceOfWaiting(int seconds) {
  return "Others were in the way for more than " + std::to_string(seconds) + " s; try again.";
}

// A wait that has ended tells nobody any more for whom it was. But who was waited for from its
// beginning to its end has a transaction that is older, holds locks in these books, and waits for
// nobody himself.
std::string QueryOfHolder(int backend) {
  return "SELECT ' A transaction has been open for '"
         " || CAST(EXTRACT(epoch FROM clock_timestamp() - xact_start) AS BIGINT)"
         " || ' s: user \"' || COALESCE(CAST(usename AS TEXT), '')"
         " || '\", \"' || COALESCE(application_name, '') || '\"'"
         " || COALESCE(' at ' || host(client_addr), '') || ', backend ' || pid || '.'"
         " FROM pg_stat_activity a WHERE pid NOT IN (pg_backend_pid(), " +
         std::to_string(backend) +
         ")"
         " AND xact_start <= clock_timestamp() - CAST(current_setting('lock_timeout') AS INTERVAL)"
         " AND wait_event_type IS DISTINCT FROM 'Lock'"
         " AND EXISTS (SELECT 1 FROM pg_locks l WHERE l.pid = a.pid AND granted"
         " AND database = (SELECT oid FROM pg_database WHERE datname = current_database())"
         " AND (classid = CAST(hashtext(current_schema()) AS OID)"
         " OR relation IN (SELECT oid FROM pg_class WHERE relnamespace ="
         " CAST(current_schema() AS REGNAMESPACE))))"
         " ORDER BY xact_start LIMIT 1";
}

}  // namespace qdclgl::server
