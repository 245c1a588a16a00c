#include "qdclgl/server/access/password.h"

#include <sodium.h>

#include <atomic>

#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

std::atomic<PasswordCost> password_cost = PasswordCost::kInteractive;

void StartSodium() {
  if (sodium_init() < 0) Refuse(refusal::kDatabaseFailed, "The password library does not start.");
}

std::string NewHash(std::string_view password) {
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

}  // namespace

void SetPasswordCost(PasswordCost cost) { password_cost = cost; }

std::string HashedPassword(std::string_view password) {
  return password.empty() ? std::string(kHashOfNone) : NewHash(password);
}

bool FitsPassword(const std::string& hash, std::string_view password) {
  if (hash == kHashOfNone && password.empty()) return true;
  if (hash == kNoHash || hash == kHashOfNone) {
    NewHash(password);
    return false;
  }
  StartSodium();
  return crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0;
}

void RequirePassword(std::string_view password, bool may_be_empty) {
  if (!password.empty() || may_be_empty) return;
  Refuse(refusal::kRequired,
         "A password is missing; that there shall be none has to be said expressly.");
}

std::string NewToken() {
  StartSodium();
  unsigned char bytes[16];
  randombytes_buf(bytes, sizeof bytes);
  char text[2 * sizeof bytes + 1];
  return sodium_bin2hex(text, sizeof text, bytes, sizeof bytes);
}

}  // namespace qdclgl::server
