#include "qdclgl/server/db/sha256.h"

#include <gtest/gtest.h>
#include <sodium.h>

namespace qdclgl::server {
namespace {

// By the library that stands in where there is no libcrypto.
std::string DigitsBySodium(const std::string& text) {
  unsigned char hash[crypto_hash_sha256_BYTES];
  crypto_hash_sha256(hash, reinterpret_cast<const unsigned char*>(text.data()), text.size());
  char digits[2 * sizeof hash + 1];
  return sodium_bin2hex(digits, sizeof digits, hash, sizeof hash);
}

TEST(Sha256, IsThatOfTheStandard) {
  EXPECT_EQ(Sha256Of(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(Sha256Of("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Sha256, TheLibrariesOfAllSystemsGiveTheSame) {
  std::string text;
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(Sha256Of(text), DigitsBySodium(text)) << text.size();
    text += static_cast<char>(i * 37);
  }
}

TEST(Sha256, TextsThatAreAddedAreOneText) {
  Sha256 sum;
  for (const char* part : {"a", "", "b", "c"}) sum.Add(part);
  EXPECT_EQ(sum.Digits(), Sha256Of("abc"));
}

}  // namespace
}  // namespace qdclgl::server
