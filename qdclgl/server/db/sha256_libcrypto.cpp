// By libcrypto, which knows what the processor has for it.
#include <openssl/evp.h>

#include <new>

#include "qdclgl/server/db/sha256.h"

namespace qdclgl::server {

namespace {

// Looked up once: the library looks for it by name, which takes longer than most hashes.
const EVP_MD* Algorithm() {
  static const EVP_MD* const kAlgorithm = EVP_MD_fetch(nullptr, "SHA256", nullptr);
  return kAlgorithm;
}

void Require(bool done) {
  if (!done) throw std::bad_alloc();  // nothing else can fail
}

}  // namespace

struct Sha256::State {
  ~State() { EVP_MD_CTX_free(sum); }
  EVP_MD_CTX* sum = EVP_MD_CTX_new();
};

Sha256::Sha256() : state_(std::make_unique<State>()) {
  Require(state_->sum != nullptr && EVP_DigestInit_ex(state_->sum, Algorithm(), nullptr) == 1);
}
Sha256::~Sha256() = default;

void Sha256::Add(std::string_view text) {
  Require(EVP_DigestUpdate(state_->sum, text.data(), text.size()) == 1);
}

std::array<unsigned char, 32> Sha256::Sum() {
  std::array<unsigned char, 32> hash;
  Require(EVP_DigestFinal_ex(state_->sum, hash.data(), nullptr) == 1);
  return hash;
}

}  // namespace qdclgl::server
