#include "qdclgl/server/access/login.h"

#include <sodium.h>

#include <atomic>
#include <filesystem>
#include <map>
#include <mutex>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/schema.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(SessionUpdate)
QD_DEFINE_MEMBERS(CacheFacade)
QD_DEFINE_MEMBERS(ShareProps)

namespace {

constexpr std::pair<Role, std::string_view> kRoles[] = {
    {Role::kReader, "reader"},   {Role::kPreparer, "preparer"},
    {Role::kChecker, "checker"}, {Role::kCashier, "cashier"},
    {Role::kPoster, "poster"},   {Role::kAdministrator, "administrator"},
};

// The sessions of this process. Threads share them; each has database connections of its own.
struct Sessions {
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<const Session>, std::less<>> by_props;
  std::shared_ptr<const Session> current;  // what the session stores answer from
};

Sessions& AllSessions() {
  static Sessions sessions;
  return sessions;
}

void StartSodium() {
  if (sodium_init() < 0) Refuse(refusal::kDatabaseFailed, "The password library does not start.");
}

std::atomic<PasswordCost> password_cost = PasswordCost::kInteractive;

std::string NewToken() {
  unsigned char bytes[16];
  randombytes_buf(bytes, sizeof bytes);
  char text[2 * sizeof bytes + 1];
  return sodium_bin2hex(text, sizeof text, bytes, sizeof bytes);
}

std::shared_ptr<const Session> SessionOf(std::string_view props) {
  Sessions& sessions = AllSessions();
  const std::lock_guard lock(sessions.mutex);
  const auto found = sessions.by_props.find(props);
  return found == sessions.by_props.end() ? nullptr : found->second;
}

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
  Sessions& sessions = AllSessions();
  std::shared_ptr<const Session> session;
  {
    const std::lock_guard lock(sessions.mutex);
    session = sessions.current;
  }
  if (!session || process_id != CurrentPlatform().ProcessId()) return {};
  return SessionValue(*session, key);
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

Caller Enter(std::string_view props, const Right& right) {
  Caller caller = EnterBatch(props, right);
  caller.db.RequireSound();
  return caller;
}

Caller EnterBatch(std::string_view props, const Right& right) {
  constexpr std::string_view kMark = "<>1";
  const bool marked = props.starts_with(kMark);
  if (marked) props.remove_prefix(kMark.size());
  std::shared_ptr<const Session> session = SessionOf(props);
  if (!session) {
    Refuse(refusal::kNotLoggedIn, "There is no session behind the connection text; log in first.");
  }
  if (!session->May(right.role) && !(right.role == Role::kReader && session->roles != 0)) {
    Refuse(refusal::kNotPermitted, "User " + session->user_name + " (" + RolesText(session->roles) +
                                       ") may not " + std::string(right.what) + ".");
  }
  std::shared_ptr<Database> connection = Connections::OfThisThread().To(session->books, session);
  Database& db = *connection;
  return {std::move(session), std::move(connection), db, marked};
}

void SetPasswordCost(PasswordCost cost) { password_cost = cost; }

std::string HashedPassword(std::string_view password) {
  StartSodium();
  char hash[crypto_pwhash_STRBYTES];
  const bool least = password_cost == PasswordCost::kLeast;
  if (crypto_pwhash_str(hash, password.data(), password.size(),
                        least ? crypto_pwhash_OPSLIMIT_MIN : crypto_pwhash_OPSLIMIT_INTERACTIVE,
                        least ? crypto_pwhash_MEMLIMIT_MIN : crypto_pwhash_MEMLIMIT_INTERACTIVE) !=
      0) {
    Refuse(refusal::kDatabaseFailed, "There is not enough memory to hash a password.");
  }
  return hash;
}

String SessionUpdate::Login(std::string_view connection, std::string_view UserName,
                            std::string_view Password, Boolean Outer) {
  StartSodium();
  ConnectionText text = ConnectionText::Parse(connection).Without(connection_key::kSession);
  if (text[connection_key::kCatalog].empty()) {
    // The library finds the books' name in its session's connection text.
    const std::filesystem::path file{text[connection_key::kDataSource]};
    text = text.With(connection_key::kCatalog, file.stem().string());
  }
  const std::string books = text.Canonical().ToText();
  const std::shared_ptr<Database> kept = Connections::OfThisThread().To(books, nullptr);
  Database& db = *kept;
  RequireCurrentSchema(db);
  const auto user = db.QueryRow<Long, std::string, std::string, unsigned, bool>(
      "SELECT FUserID, FName, FPassword, FRoles, FDisabled FROM t_User WHERE FName = ?", UserName);
  // An unknown user costs as much time as a wrong password, and is told the same.
  if (!user) HashedPassword(Password);
  const bool fits = user && crypto_pwhash_str_verify(std::get<2>(*user).c_str(), Password.data(),
                                                     Password.size()) == 0;
  if (!fits || std::get<4>(*user)) {
    Refuse(refusal::kLoginRefused, "The user or the password is wrong, or the user is disabled.");
  }
  auto session = std::make_shared<Session>();
  session->connection = text.ToText();
  session->books = books;
  session->props = text.With(connection_key::kSession, NewToken()).ToText();
  session->user_id = std::get<0>(*user);
  session->user_name = std::get<1>(*user);
  session->roles = std::get<3>(*user);
  session->outer = Outer;
  session->machine_name = GetMachineName();
  session->address = GetIPAddress();
  Sessions& sessions = AllSessions();
  const std::lock_guard lock(sessions.mutex);
  sessions.by_props[session->props] = session;
  sessions.current = session;
  return session->props;
}

void SessionUpdate::Logout(std::string_view PropsString) {
  Sessions& sessions = AllSessions();
  {
    const std::lock_guard lock(sessions.mutex);
    const auto found = sessions.by_props.find(PropsString);
    if (found == sessions.by_props.end()) {
      Refuse(refusal::kNotLoggedIn, "There is no session to end.");
    }
    if (sessions.current == found->second) sessions.current = nullptr;
    sessions.by_props.erase(found);
  }
  Connections::OfThisThread().EndOrphanedBatches();
}

Variant CacheFacade::GetItem(Long ProcessID, std::string_view Key) {
  return StoredValue(ProcessID, Key);
}

Variant ShareProps::GetProperty(Long ProcessID, std::string_view Key) {
  return StoredValue(ProcessID, Key);
}

}  // namespace qdclgl::server
