#include "qdclgl/server/access/kept_session.h"

#include "qdclgl/server/access/clock.h"
#include "qdclgl/server/db/sha256.h"

namespace qdclgl::server {

std::string TicketOf(const Session& session) {
  return std::string(ConnectionText::Parse(session.props)[connection_key::kSession]);
}

void KeepSessionUntil(Database& db, const Session& session, std::int64_t end) {
  db.Execute("DELETE FROM t_KeptSession WHERE FEndTime <= ?", SecondsNow());
  EndKeptSession(db, session);
  db.Execute("INSERT INTO t_KeptSession (FTicketHash, FUserID, FMachineName, FEndTime)"
             " VALUES (?, ?, ?, ?)",
             Sha256Of(TicketOf(session)), session.user_id, session.machine_name, end);
}

std::optional<KeptSession> KeptSessionBehind(Database& db, std::string_view ticket,
                                             std::string_view machine_name) {
  const auto row = db.QueryRow<Long, std::string, unsigned>(
      "SELECT u.FUserID, u.FName, u.FRoles FROM t_KeptSession k"
      " JOIN t_User u ON u.FUserID = k.FUserID WHERE k.FTicketHash = ? AND k.FMachineName = ?"
      " AND k.FEndTime > ? AND u.FDisabled = 0",
      Sha256Of(ticket), machine_name, SecondsNow());
  if (!row) return {};
  const auto& [id, name, roles] = *row;
  return KeptSession{id, name, roles};
}

void EndKeptSession(Database& db, const Session& session) {
  db.Execute("DELETE FROM t_KeptSession WHERE FTicketHash = ?", Sha256Of(TicketOf(session)));
}

void EndKeptSessionsOf(Database& db, Long user_id) {
  db.Execute("DELETE FROM t_KeptSession WHERE FUserID = ?", user_id);
}

}  // namespace qdclgl::server
