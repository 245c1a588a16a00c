#include "qdclgl/server/access/login.h"

#include <charconv>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/clock.h"
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
constexpr std::int64_t kMinutesWithoutUse = 8 * 60;  // unless the books have a setting

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

std::int64_t IdleSeconds(const std::string& setting) {
  std::int64_t minutes = kMinutesWithoutUse;
  std::from_chars(setting.data(), setting.data() + setting.size(), minutes);
  return minutes * 60;
}

// Who logs in or out, with the connection of the session's batch where it has one.
Caller CallerOf(const std::shared_ptr<const Session>& session) {
  std::shared_ptr<Database> connection = Connections::OfThisThread().To(session->books, session);
  Database& db = *connection;
  return {session, std::move(connection), db, false, kAnything};
}

void AuditSession(const Caller& caller, std::string_view action) {
  const Session& session = *caller.session;
  caller.db.LockSessions();
  WriteAudit(caller, {.subject = "Session",
                      .record_id = session.user_id,
                      .record = session.user_name,
                      .action = action});
}

}  // namespace

String SessionUpdate::Login(std::string_view connection, std::string_view UserName,
                            std::string_view Password, Boolean Outer) {
  ConnectionText text = ConnectionText::Parse(connection).Without(connection_key::kSession);
  if (text[connection_key::kCatalog].empty()) {
    // The library finds the books' name in its session's connection text.
    const std::filesystem::path file = PathOf(text[connection_key::kDataSource]);
    text = text.With(connection_key::kCatalog, TextOf(file.stem()));
  }
  auto session = std::make_shared<Session>();
  session->connection = text.ToText();
  session->books = text.Canonical().ToText();
  session->user_name = UserName;
  session->outer = Outer;
  session->machine_name = GetMachineName();
  session->address = GetIPAddress();
  const Caller caller = CallerOf(session);
  Database& db = caller.db;
  RequireCurrentSchema(db);
  // A login is noted down, but where the books can only be read.
  if (!db.IsReadOnly()) db.RequireWritable();

  LoginAttempt attempt(db, UserName);
  const auto user = db.QueryRow<Long, std::string, unsigned, bool, std::string>(
      "SELECT FUserID, FPassword, FRoles, FDisabled, COALESCE((SELECT FValue FROM t_SystemProfile"
      " WHERE FCategory = 'Base' AND FKey = 'SessionMinutes'), '') FROM t_User WHERE FName = ?",
      UserName);
  const auto [id, hash, roles, is_disabled, idle_minutes] =
      user.value_or(std::tuple(Long{0}, std::string(kNoHash), 0u, true, std::string()));
  session->user_id = id;
  // An unknown user costs as much time as a wrong password, and is told the same.
  attempt.Require(caller, hash, Password, !is_disabled,
                  "The user or the password is wrong, or the user is disabled.");
  session->props = text.With(connection_key::kSession, NewToken()).ToText();
  session->roles = roles;
  session->idle_seconds = IdleSeconds(idle_minutes);
  session->last_call = SecondsNow();

  if (!db.IsReadOnly()) {
    Transaction transaction(db, Transaction::Kind::kSave);
    LoginAttempt::Forget(db, UserName);
    AuditSession(caller, "Login");
    transaction.Commit();
  }
  KeepSession(session);
  return session->props;
}

void SessionUpdate::Logout(std::string_view PropsString) {
  const std::shared_ptr<const Session> session = EndSession(PropsString);
  if (!session) Refuse(refusal::kNotLoggedIn, "There is no session to end.");
  const Caller caller = CallerOf(session);
  caller.db.EndBatchOf(session);
  if (caller.db.IsReadOnly()) return;
  Transaction transaction(caller.db, Transaction::Kind::kSave);
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
