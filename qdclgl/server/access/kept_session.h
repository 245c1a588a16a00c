// Sessions that outlast their process: a program whose runs are short, as a command line's are,
// proves once who works with it and goes on by a ticket, which is the word Session of its
// PropsString. The books keep the ticket's hash alone.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "qdclgl/server/access/session.h"

namespace qdclgl::server {

// What is kept of a session, and what the books say of its user now.
struct KeptSession {
  Long user_id = 0;
  std::string user_name;
  unsigned roles = 0;
};

std::string TicketOf(const Session& session);

// Keeps a session until `end`, in seconds (see clock.h), in the transaction under way.
void KeepSessionUntil(Database& db, const Session& session, std::int64_t end);
// The session behind a ticket; nothing when there is none on this machine any more, or when its
// user is gone or disabled.
std::optional<KeptSession> KeptSessionBehind(Database& db, std::string_view ticket,
                                             std::string_view machine_name);
// Ends it, or all of a user, in the transaction under way.
void EndKeptSession(Database& db, const Session& session);
void EndKeptSessionsOf(Database& db, Long user_id);

}  // namespace qdclgl::server
