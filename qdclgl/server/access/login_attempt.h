// What a wrong password costs the one who tries: each failure of a user's name makes the next
// attempt wait longer, on all machines and in all programs, since the books keep the count.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/server/access/session.h"

namespace qdclgl::server {

// How long an attempt has to wait behind so many failures in a row. The last administrator waits a
// minute at most: books that nobody could get into would be lost.
std::int64_t SecondsToWait(std::int64_t failures, bool is_last_administrator);

// One attempt to prove who one is by a password.
class LoginAttempt {
 public:
  // LoginDelayed when it comes too early; BadBatch in a batch, which could take the count back.
  LoginAttempt(Database& db, std::string_view user_name);

  // Holds the password against the hash; the audit trail then tells of a failure, and the next
  // attempt waits. LoginRefused with the sentence unless it fits and the user `may_pass`.
  void Require(const Caller& caller, const std::string& hash, std::string_view password,
               bool may_pass, const char* sentence);

  // Forgets the failures of a name, in the transaction under way.
  static void Forget(Database& db, std::string_view user_name);

 private:
  void CountFailure(const Caller& caller);

  std::string user_name_;
};

}  // namespace qdclgl::server
