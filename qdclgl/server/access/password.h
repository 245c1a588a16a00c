// Passwords as the books keep them: salted hashes that cost memory and time to try.
#pragma once

#include <string>
#include <string_view>

namespace qdclgl::server {

// Whoever has this in place of a hash has no password yet, and nobody logs in as them.
inline constexpr std::string_view kNoHash;
// Whoever has this logs in without a password, and nothing is hashed for them.
inline constexpr std::string_view kHashOfNone = "none";

std::string HashedPassword(std::string_view password);
// Whether the hash is one of this password. A wrong one costs as much time whatever the hash is.
bool FitsPassword(const std::string& hash, std::string_view password);

// Required for an empty password, unless somebody has said that there shall be none.
void RequirePassword(std::string_view password, bool may_be_empty);

// What new hashes cost those who make and try them: some 60 MB and a tenth of a second, or next to
// nothing, for tests that log in hundreds of times. A stored hash knows its own cost.
enum class PasswordCost { kInteractive, kLeast };
void SetPasswordCost(PasswordCost cost);

// A text that nobody guesses.
std::string NewToken();

}  // namespace qdclgl::server
