#include "qdclgl/server/access/login.h"

#include <charconv>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/clock.h"
#include "qdclgl/server/access/kept_session.h"
#include "qdclgl/server/access/login_attempt.h"
#include "qdclgl/server/access/password.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/path_text.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/schema.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(SessionUpdate)
QD_DEFINE_MEMBERS(CacheFacade)
QD_DEFINE_MEMBERS(ShareProps)

namespace {

constexpr Right kAnything{Role::kReader, "log in"};
constexpr Long kMinutesWithoutUse = 8 * 60;  // unless the books have a setting

// The values that the session stores know, by key; case matters.
Variant SessionValue(const Session& session, std::string_view key) {
  if (key == "UserName") return session.user_name;
  if (key == "UserID") return session.user_id;
  if (key == "PropsString") return session.props;
  if (key == "LogStatus" || key == "QDCLogin") return Long{1};
  if (key == "AcctName" || key == "AcctID") {
    return ConnectionText::Parse(session.connection)[connection_key::kCatalog];
  }
  if (key == "AcctType") {
    return ConnectionText::Parse(session.connection)[connection_key::kProvider];
  }
  if (key == "AcctClosed") return Long{0};
  if (key == "MachineName") return session.machine_name;
  if (key == "IP") return session.address;
  if (key == "IsOuterLogin") return Long{session.outer ? 1 : 0};
  return {};
}

Variant StoredValue(Long process_id, std::string_view key) {
  const std::shared_ptr<const Session> session = CurrentSession();
  if (!session || process_id != CurrentPlatform().ProcessId()) return {};
  return SessionValue(*session, key);
}

// The books' setting, 0 for no end.
std::int64_t MinutesOfSessions(Database& db) {
  std::int64_t minutes = kMinutesWithoutUse;
  const auto setting = db.QueryValue<std::string>(
      "SELECT FValue FROM t_SystemProfile WHERE FCategory = 'Base' AND FKey = 'SessionMinutes'");
  if (setting) std::from_chars(setting->data(), setting->data() + setting->size(), minutes);
  return minutes;
}

// For how many minutes a session is kept, of which callers may want less than the books allow.
Long MinutesToKeep(Database& db, Long wanted) {
  const auto setting = static_cast<Long>(MinutesOfSessions(db));
  const Long most = setting == 0 ? kMinutesOfAWeek : setting;
  if (wanted < 0 || wanted > most) {
    Refuse(refusal::kBadValue, "A session can be kept for 1 to " + std::to_string(most) +
                                   " minutes, not " + std::to_string(wanted) + ".");
  }
  if (wanted != 0) return wanted;
  return setting == 0 ? kMinutesWithoutUse : setting;
}

// A session of the books that a connection text means, before it is known whose.
struct NewSession {
  explicit NewSession(std::string_view connection)
      : text(ConnectionText::Parse(connection).Without(connection_key::kSession)),
        session(std::make_shared<Session>()) {
    if (text[connection_key::kCatalog].empty()) {
      // The library finds the books' name in its session's connection text.
      const std::filesystem::path file = PathOf(text[connection_key::kDataSource]);
      text = text.With(connection_key::kCatalog, TextOf(file.stem()));
    }
    session->connection = text.ToText();
    session->books = text.Canonical().ToText();
    session->machine_name = GetMachineName();
    session->address = GetIPAddress();
  }

  // It is known: from now on it is the session of this process. Returns its PropsString.
  std::string Begin(const std::string& token) const {
    session->props = text.With(connection_key::kSession, token).ToText();
    session->last_call = SecondsNow();
    KeepSession(session);
    return session->props;
  }

  ConnectionText text;
  std::shared_ptr<Session> session;
};

// Who logs in or out, with the connection of the session's batch where it has one.
Caller CallerOf(const std::shared_ptr<const Session>& session) {
  std::shared_ptr<Database> connection = Connections::OfThisThread().To(session->books, session);
  Database& db = *connection;
  return {session, std::move(connection), db, false, kAnything};
}

void AuditSession(const Caller& caller, std::string_view action, std::string_view changes = "") {
  const Session& session = *caller.session;
  caller.db.LockSessions();
  WriteAudit(caller, {.subject = "Session",
                      .record_id = session.user_id,
                      .record = session.user_name,
                      .action = action,
                      .changes = changes});
}

}  // namespace

String SessionUpdate::Login(std::string_view connection, std::string_view UserName,
                            std::string_view Password, Boolean Outer) {
  const NewSession begun(connection);
  const std::shared_ptr<Session>& session = begun.session;
  session->user_name = UserName;
  session->outer = Outer;
  const Caller caller = CallerOf(session);
  Database& db = caller.db;
  RequireCurrentSchema(db);
  // A login is noted down, but where the books can only be read.
  if (!db.IsReadOnly()) db.RequireWritable();

  LoginAttempt attempt(db, UserName);
  const auto user = db.QueryRow<Long, std::string, unsigned, bool>(
      "SELECT FUserID, FPassword, FRoles, FDisabled FROM t_User WHERE FName = ?", UserName);
  const auto [id, hash, roles, is_disabled] =
      user.value_or(std::tuple(Long{0}, std::string(kNoHash), 0u, true));
  session->user_id = id;
  // An unknown user costs as much time as a wrong password, and is told the same.
  attempt.Require(caller, hash, Password, !is_disabled,
                  "The user or the password is wrong, or the user is disabled.");
  session->roles = roles;
  session->idle_seconds = MinutesOfSessions(db) * 60;
  const std::string token = NewToken();

  // What the trail tells of has happened: nothing can fail behind it.
  if (!db.IsReadOnly()) {
    Transaction transaction(db, Transaction::Kind::kSave);
    LoginAttempt::Forget(db, UserName);
    AuditSession(caller, "Login");
    transaction.Commit();
  }
  return begun.Begin(token);
}

String SessionUpdate::Keep(std::string_view PropsString, Long& Minutes) {
  const Caller caller = EnterUnconfirmed(PropsString, RightTo<SessionUpdate>("Keep"));
  caller.db.RequireWritable();
  CallersTransaction transaction(caller, Transaction::Kind::kSave);
  const Long minutes = MinutesToKeep(caller.db, Minutes);
  KeepSessionUntil(caller.db, *caller.session, SecondsNow() + std::int64_t{minutes} * 60);
  AuditSession(caller, "Keep", std::to_string(minutes) + " minutes");
  transaction.Commit();
  Minutes = minutes;
  return TicketOf(*caller.session);
}

String SessionUpdate::Resume(std::string_view connection, std::string_view Ticket) {
  const NewSession begun(connection);
  const std::shared_ptr<Session>& session = begun.session;
  const Caller caller = CallerOf(session);
  RequireCurrentSchema(caller.db);
  const std::optional<KeptSession> kept =
      KeptSessionBehind(caller.db, Ticket, session->machine_name);
  if (!kept) {
    Refuse(refusal::kNotLoggedIn, "The session that was kept has ended; log in again.");
  }
  session->user_id = kept->user_id;
  session->user_name = kept->user_name;
  session->roles = kept->roles;
  session->idle_seconds = MinutesOfSessions(caller.db) * 60;
  return begun.Begin(std::string(Ticket));
}

void SessionUpdate::Logout(std::string_view PropsString) {
  const std::shared_ptr<const Session> session = EndSession(PropsString);
  if (!session) Refuse(refusal::kNotLoggedIn, "There is no session to end.");
  const Caller caller = CallerOf(session);
  caller.db.EndBatchOf(session);
  if (caller.db.IsReadOnly()) return;
  Transaction transaction(caller.db, Transaction::Kind::kSave);
  EndKeptSession(caller.db, *session);
  AuditSession(caller, "Logout");
  transaction.Commit();
}

Variant CacheFacade::GetItem(Long ProcessID, std::string_view Key) {
  return StoredValue(ProcessID, Key);
}

Variant ShareProps::GetProperty(Long ProcessID, std::string_view Key) {
  return StoredValue(ProcessID, Key);
}

}  // namespace qdclgl::server
