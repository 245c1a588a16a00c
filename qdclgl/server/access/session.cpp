#include "qdclgl/server/access/session.h"

#include <charconv>
#include <map>
#include <mutex>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/access/clock.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr std::pair<Role, std::string_view> kRoles[] = {
    {Role::kReader, "reader"},   {Role::kPreparer, "preparer"},
    {Role::kChecker, "checker"}, {Role::kCashier, "cashier"},
    {Role::kPoster, "poster"},   {Role::kAdministrator, "administrator"},
};

// Threads share them; each has database connections of its own.
struct Sessions {
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<const Session>, std::less<>> by_props;
  std::shared_ptr<const Session> current;
};

Sessions& AllSessions() {
  static Sessions sessions;
  return sessions;
}

[[noreturn]] void RefuseSession(const std::string& sentence) {
  Refuse(refusal::kNotLoggedIn, sentence + " log in first.");
}

// The session behind a PropsString, which lasts on from this call.
std::shared_ptr<const Session> UsedSession(std::string_view props) {
  Sessions& sessions = AllSessions();
  std::shared_ptr<const Session> session;
  {
    const std::lock_guard lock(sessions.mutex);
    const auto found = sessions.by_props.find(props);
    if (found != sessions.by_props.end()) session = found->second;
  }
  if (!session) {
    // The batch of a session that is over would hold up others for good.
    Connections::OfThisThread().EndOrphanedBatches();
    RefuseSession("There is no session behind the connection text;");
  }
  const std::int64_t now = SecondsNow();
  const std::int64_t before = session->last_call.exchange(now);
  if (session->idle_seconds != 0 && now - before > session->idle_seconds) {
    const std::string name = session->user_name;
    session = nullptr;
    EndSession(props);
    Connections::OfThisThread().EndOrphanedBatches();
    RefuseSession("The session of " + name + " has ended for want of use;");
  }
  return session;
}

bool Allows(unsigned roles, Role role) {
  const bool has_it =
      (roles & (static_cast<unsigned>(role) | static_cast<unsigned>(Role::kAdministrator))) != 0;
  return has_it || (role == Role::kReader && roles != 0);
}

struct Standing {
  unsigned roles;
  bool is_disabled;
  std::string_view name;
};

// From "37 0 anna".
Standing StandingFrom(std::string_view text) {
  Standing standing{};
  const std::size_t behind_roles = text.find(' ');
  std::from_chars(text.data(), text.data() + behind_roles, standing.roles);
  standing.is_disabled = text[behind_roles + 1] != '0';
  standing.name = text.substr(behind_roles + 3);
  return standing;
}

}  // namespace

std::string RolesText(unsigned roles) {
  std::string text;
  for (const auto& [role, word] : kRoles) {
    if ((roles & static_cast<unsigned>(role)) == 0) continue;
    if (!text.empty()) text += ", ";
    text += word;
  }
  return text;
}

unsigned RolesFrom(std::string_view text) {
  unsigned roles = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(','), text.size());
    const std::string_view word = TrimBlanks(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (word.empty()) continue;
    unsigned role = 0;
    for (const auto& [known, name] : kRoles) {
      if (EqualsIgnoringAsciiCase(name, word)) role = static_cast<unsigned>(known);
    }
    if (role == 0) Refuse(refusal::kBadValue, "There is no role \"" + std::string(word) + "\".");
    roles |= role;
  }
  return roles;
}

void KeepSession(const std::shared_ptr<const Session>& session) {
  Sessions& sessions = AllSessions();
  const std::lock_guard lock(sessions.mutex);
  sessions.by_props[session->props] = session;
  sessions.current = session;
}

std::shared_ptr<const Session> CurrentSession() {
  Sessions& sessions = AllSessions();
  const std::lock_guard lock(sessions.mutex);
  return sessions.current;
}

bool HasSessions() {
  Sessions& sessions = AllSessions();
  const std::lock_guard lock(sessions.mutex);
  return !sessions.by_props.empty();
}

std::shared_ptr<const Session> EndSession(std::string_view props) {
  Sessions& sessions = AllSessions();
  const std::lock_guard lock(sessions.mutex);
  const auto found = sessions.by_props.find(props);
  if (found == sessions.by_props.end()) return nullptr;
  std::shared_ptr<const Session> session = found->second;
  if (sessions.current == session) sessions.current = nullptr;
  sessions.by_props.erase(found);
  return session;
}

std::string StandingQuery(std::string_view user_id) {
  return "SELECT FRoles || ' ' || FDisabled || ' ' || FName FROM t_User WHERE FUserID = " +
         std::string(user_id);
}

void Caller::Confirm(const std::optional<std::string>& standing_text) const {
  const std::string& name = session->user_name;
  const auto end = [&](const char* reason) {
    EndSession(session->props);
    db.EndBatchOf(session);
    RefuseSession("The session of " + name + " has ended: " + reason);
  };
  if (!standing_text) end("there is no such user any more;");
  const Standing standing = StandingFrom(*standing_text);
  if (standing.is_disabled) end("the user is disabled;");
  if (standing.name != name) end("the user has another name now;");
  session->roles = standing.roles;
  if (!Allows(standing.roles, right.role)) {
    Refuse(refusal::kNotPermitted, "User " + name + " (" + RolesText(standing.roles) +
                                       ") may not " + std::string(right.what) + ".");
  }
}

void Caller::Confirm() const {
  static const std::string kQuery = StandingQuery("?");
  Confirm(db.QueryValue<std::string>(kQuery, session->user_id));
}

namespace {

// Nothing is known of the caller but the session.
Caller CallerBehind(std::string_view props, const Right& right) {
  constexpr std::string_view kMark = "<>1";
  const bool marked = props.starts_with(kMark);
  if (marked) props.remove_prefix(kMark.size());
  std::shared_ptr<const Session> session = UsedSession(props);
  std::shared_ptr<Database> connection = Connections::OfThisThread().To(session->books, session);
  Database& db = *connection;
  return {std::move(session), std::move(connection), db, marked, right};
}

}  // namespace

Caller EnterUnconfirmed(std::string_view props, const Right& right) {
  Caller caller = CallerBehind(props, right);
  caller.db.RequireSound();
  // Who has not had the right is refused before anything else, unless they were given it since.
  if (!Allows(caller.session->roles, right.role)) caller.Confirm();
  return caller;
}

Caller Enter(std::string_view props, const Right& right) {
  Caller caller = EnterUnconfirmed(props, right);
  caller.Confirm();
  return caller;
}

Caller EnterBatch(std::string_view props, const Right& right) {
  Caller caller = CallerBehind(props, right);
  // A batch in which the database has failed answers no question.
  if (!Allows(caller.session->roles, right.role)) caller.Confirm();
  return caller;
}

CallersTransaction::CallersTransaction(const Caller& caller, Kind kind, const Along& along) try
    : Transaction(caller.db, kind, StandingQuery(std::to_string(caller.session->user_id)), along) {
  caller.Confirm(answer());
} catch (const Error& error) {
  // The transaction is over by now, and a batch around it goes with the session.
  if (error.number() == refusal::kNotLoggedIn) caller.db.EndBatchOf(caller.session);
}

}  // namespace qdclgl::server
