// By libsodium, where there is no libcrypto.
#include <sodium.h>

#include "qdclgl/server/db/sha256.h"

namespace qdclgl::server {

struct Sha256::State {
  crypto_hash_sha256_state sum;
};

Sha256::Sha256() : state_(std::make_unique<State>()) { crypto_hash_sha256_init(&state_->sum); }
Sha256::~Sha256() = default;

void Sha256::Add(std::string_view text) {
  crypto_hash_sha256_update(&state_->sum, reinterpret_cast<const unsigned char*>(text.data()),
                            text.size());
}

std::array<unsigned char, 32> Sha256::Sum() {
  std::array<unsigned char, crypto_hash_sha256_BYTES> hash;
  crypto_hash_sha256_final(&state_->sum, hash.data());
  return hash;
}

}  // namespace qdclgl::server
