#include "qdclgl/server/db/sha256.h"

#include <sodium.h>

namespace qdclgl::server {

namespace {

std::string DigitsOf(const unsigned char (&hash)[crypto_hash_sha256_BYTES]) {
  char digits[2 * sizeof hash + 1];
  return sodium_bin2hex(digits, sizeof digits, hash, sizeof hash);
}

const unsigned char* BytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

}  // namespace

struct Sha256::State {
  crypto_hash_sha256_state sum;
};

Sha256::Sha256() : state_(std::make_unique<State>()) { crypto_hash_sha256_init(&state_->sum); }
Sha256::~Sha256() = default;

void Sha256::Add(std::string_view text) {
  crypto_hash_sha256_update(&state_->sum, BytesOf(text), text.size());
}

std::string Sha256::Digits() {
  unsigned char hash[crypto_hash_sha256_BYTES];
  crypto_hash_sha256_final(&state_->sum, hash);
  return DigitsOf(hash);
}

std::string Sha256Of(std::string_view text) {
  unsigned char hash[crypto_hash_sha256_BYTES];
  crypto_hash_sha256(hash, BytesOf(text), text.size());
  return DigitsOf(hash);
}

}  // namespace qdclgl::server
