// Sessions: who is logged in to which books, and what they may do.
//
// A login makes a session of this process. Its connection text, with the key Session in it, is the
// PropsString that callers hand to every server method. The session tells who calls; what they may
// do is what the books say of the user at that moment.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "qdclgl/frame/values/values.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// What a user may do; a user can have several roles. Every role may read.
enum class Role : unsigned {
  kReader = 1,
  kPreparer = 2,        // saves and deletes vouchers
  kChecker = 4,         // checks and approves
  kCashier = 8,         // cashes
  kPoster = 16,         // posts, closes and reopens periods
  kAdministrator = 32,  // all of it, and what the books go by: settings, users, master data
};

constexpr Role operator|(Role left, Role right) {
  return static_cast<Role>(static_cast<unsigned>(left) | static_cast<unsigned>(right));
}

// "reader, checker" from and to the bits of Role. BadValue for an unknown word.
std::string RolesText(unsigned roles);
unsigned RolesFrom(std::string_view text);

// The most that the setting SessionMinutes can be.
inline constexpr Long kMinutesOfAWeek = 7 * 24 * 60;

struct Session {
  std::string props;       // the PropsString
  std::string connection;  // the same without the session
  std::string books;       // what that means
  Long user_id = 0;
  std::string user_name;
  bool outer = false;
  std::string machine_name;
  std::string address;
  std::int64_t idle_seconds = 0;  // how long it lasts without a call, 0 without an end

  // As the last call found them.
  mutable std::atomic<unsigned> roles = 0;
  mutable std::atomic<std::int64_t> last_call = 0;
};

// The sessions of this process, and the one that began last, null when it has ended.
void KeepSession(const std::shared_ptr<const Session>& session);
std::shared_ptr<const Session> CurrentSession();
// Whether one has not been ended yet.
bool HasSessions();
// Takes a session away. Null when there is none.
std::shared_ptr<const Session> EndSession(std::string_view props);

// What a method asks of its caller: one of these roles, and what it does for them, as a refusal
// tells it ("User ann (reader) may not save vouchers").
struct Right {
  Role role;
  std::string_view what;
};

// A call of a server method: who calls, and the books that are meant.
struct Caller {
  std::shared_ptr<const Session> session;
  std::shared_ptr<Database> connection;
  Database& db;
  bool marked;  // the connection text stood behind the mark "<>1" of an automatic save
  Right right;

  // What the books say of the user now, as the answer to StandingQuery; nothing where there is no
  // such user. NotLoggedIn, and the session is over, when the user is gone, disabled or has another
  // name; NotPermitted without the right.
  void Confirm(const std::optional<std::string>& standing) const;
  // The same with a query of its own.
  void Confirm() const;
};

// The query that Confirm wants the answer of: a text for the user's id, which is a number or "?".
std::string StandingQuery(std::string_view user_id);

// The caller behind a PropsString, confirmed. NotLoggedIn without a session, or when it has not
// been used for too long; NotPermitted without the right; BatchFailed until a batch in which the
// database has failed is rolled back.
Caller Enter(std::string_view props, const Right& right);

// The same for who takes a batch back, also one in which the database has failed; it goes by the
// roles as the last call found them.
Caller EnterBatch(std::string_view props, const Right& right);

// The same for a method that confirms its caller by a query that it makes anyhow, as a
// CallersTransaction does, which saves a message to the database.
Caller EnterUnconfirmed(std::string_view props, const Right& right);

// The transaction of a caller's change. It confirms the caller when it begins; from then on until
// it ends nobody's rights can change.
class CallersTransaction : public Transaction {
 public:
  CallersTransaction(
      const Caller& caller, Kind kind, const Along& along = [] {});
};

}  // namespace qdclgl::server
