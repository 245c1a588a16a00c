#include "qdclgl/server/access/login_attempt.h"

#include <algorithm>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/clock.h"
#include "qdclgl/server/access/password.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr std::int64_t kFailuresWithoutDelay = 3;
constexpr std::int64_t kFailuresToLock = 10;
constexpr std::int64_t kLockSeconds = 15 * 60;
constexpr std::int64_t kLastAdministratorSeconds = 60;
constexpr std::int64_t kForgottenAfter = 24 * 60 * 60;

// No user has a longer name, and no more of it is kept.
constexpr std::size_t kLongestName = 255;

bool IsLastAdministrator(Database& db, std::string_view user_name) {
  const auto administrators = db.Query<std::string>(
      "SELECT FName FROM t_User WHERE FDisabled = 0 AND (FRoles & ?) <> 0 LIMIT 2",
      static_cast<Long>(Role::kAdministrator));
  return administrators.size() == 1 && std::get<0>(administrators.front()) == user_name;
}

}  // namespace

std::int64_t SecondsToWait(std::int64_t failures, bool is_last_administrator) {
  if (failures <= kFailuresWithoutDelay) return 0;
  const std::int64_t seconds = failures >= kFailuresToLock
                                   ? kLockSeconds
                                   : std::int64_t{1} << (failures - kFailuresWithoutDelay - 1);
  return is_last_administrator ? std::min(seconds, kLastAdministratorSeconds) : seconds;
}

LoginAttempt::LoginAttempt(Database& db, std::string_view user_name)
    : user_name_(Utf16Length(user_name) <= kLongestName ? user_name : "(a long name)") {
  if (db.InBatch()) {
    Refuse(refusal::kBadBatch,
           "No password can be tried while a batch is under way; end it first.");
  }
  const auto row = db.QueryRow<std::int64_t, std::int64_t>(
      "SELECT FCount, FLastTime FROM t_LoginFailure WHERE FUserName = ?", user_name_);
  if (!row) return;
  const auto [failures, last] = *row;
  const std::int64_t passed = SecondsNow() - last;
  if (passed > kForgottenAfter) return;
  const std::int64_t wait = SecondsToWait(failures, IsLastAdministrator(db, user_name_)) - passed;
  if (wait <= 0) return;
  Refuse(refusal::kLoginDelayed, "There were " + std::to_string(failures) +
                                     " failed logins in a row; the next one can be tried in " +
                                     std::to_string(wait) + " seconds.");
}

void LoginAttempt::Require(const Caller& caller, const std::string& hash, std::string_view password,
                           bool may_pass, const char* sentence) {
  if (FitsPassword(hash, password) && may_pass) return;
  if (!caller.db.IsReadOnly()) CountFailure(caller);
  Refuse(refusal::kLoginRefused, sentence);
}

void LoginAttempt::CountFailure(const Caller& caller) {
  Database& db = caller.db;
  Transaction transaction(db, Transaction::Kind::kSave);
  const std::int64_t now = SecondsNow();
  db.Execute("DELETE FROM t_LoginFailure WHERE FLastTime < ?", now - kForgottenAfter);
  const auto failures = db.QueryValue<std::int64_t>(
      "INSERT INTO t_LoginFailure (FUserName, FCount, FLastTime) VALUES (?, 1, ?)"
      " ON CONFLICT (FUserName) DO UPDATE SET FCount = t_LoginFailure.FCount + 1,"
      " FLastTime = excluded.FLastTime RETURNING FCount",
      user_name_, now);
  const std::int64_t wait = SecondsToWait(*failures, IsLastAdministrator(db, user_name_));
  const std::string changes =
      std::to_string(*failures) + " in a row" +
      (wait == 0 ? "" : ", the next one waits " + std::to_string(wait) + " seconds");
  db.LockSessions();
  WriteAudit(caller, {.subject = "Session",
                      .record_id = caller.session->user_id,
                      .record = user_name_,
                      .action = "LoginFailed",
                      .changes = changes});
  transaction.Commit();
}

void LoginAttempt::Forget(Database& db, std::string_view user_name) {
  db.Execute("DELETE FROM t_LoginFailure WHERE FUserName = ?", user_name);
}

}  // namespace qdclgl::server
