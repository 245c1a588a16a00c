// Sessions: who is logged in to which books, and what they may do.
//
// A login makes a session of this process. Its connection text, with the key Session in it, is the
// PropsString that callers hand to every server method; the two session-store components
// (QDCMtsCacheService.CacheFacade and QDCPropsMgr.ShareProps) answer from it.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "qdclgl/frame/objects/members.h"
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

struct Session {
  std::string props;       // the PropsString
  std::string connection;  // the same without the session
  std::string books;       // what that means
  Long user_id = 0;
  std::string user_name;
  unsigned roles = 0;
  bool outer = false;
  std::string machine_name;
  std::string address;

  bool May(Role role) const {
    return (roles & (static_cast<unsigned>(role) | static_cast<unsigned>(Role::kAdministrator))) !=
           0;
  }
};

// A call of a server method: who calls, and the books that are meant.
struct Caller {
  std::shared_ptr<const Session> session;
  std::shared_ptr<Database> connection;
  Database& db;
  bool marked;  // the connection text stood behind the mark "<>1" of an automatic save
};

// What a method asks of its caller: one of these roles, and what it does for them, as a refusal
// tells it ("User ann (reader) may not save vouchers").
struct Right {
  Role role;
  std::string_view what;
};

// The caller behind a PropsString. NotLoggedIn without a session, NotPermitted without the right,
// BatchFailed until a batch in which the database has failed is rolled back.
Caller Enter(std::string_view props, const Right& right);
// The same for who ends that batch.
Caller EnterBatch(std::string_view props, const Right& right);

// A salted, memory-hard hash of a password.
std::string HashedPassword(std::string_view password);

// What new hashes cost those who make and try them: some 60 MB and a tenth of a second, or next to
// nothing, for tests that log in hundreds of times. A stored hash knows its own cost.
enum class PasswordCost { kInteractive, kLeast };
void SetPasswordCost(PasswordCost cost);

class SessionUpdate final : public Object {
  QD_MEMBERS(SessionUpdate, Object, Creatable, "Logs users in and out.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLSession.SessionUpdate";

  QD_METHOD(String, Login,
            (std::string_view ConnectionText, std::string_view UserName, std::string_view Password,
             Boolean Outer = false),
            "Makes a session of this process, in place of the one before, and returns its "
            "PropsString. With Outer the session store answers as at an outer login. Errors: "
            "LoginRefused, NoBooks, WrongSchema, BadConnectionText.")
  QD_METHOD(void, Logout, (std::string_view PropsString),
            "Ends the session, and rolls back its batch. NotLoggedIn when there is none.")
};

class CacheFacade final : public Object {
  QD_MEMBERS(CacheFacade, Object, Creatable, "The session store's front.")

 public:
  static constexpr std::string_view kProgID = "QDCMtsCacheService.CacheFacade";

  QD_METHOD(Variant, GetItem, (Long ProcessID, std::string_view Key),
            "A session value of a process; IsOuterLogin is 1 for an outer login and 0 otherwise. "
            "Empty when there is none.")
};

class ShareProps final : public Object {
  QD_MEMBERS(ShareProps, Object, Creatable, "The session store of ordinary logins.")

 public:
  static constexpr std::string_view kProgID = "QDCPropsMgr.ShareProps";

  QD_METHOD(Variant, GetProperty, (Long ProcessID, std::string_view Key),
            "A session value of a process; Empty when there is none.")
};

}  // namespace qdclgl::server
