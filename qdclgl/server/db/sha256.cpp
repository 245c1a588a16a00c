#include "qdclgl/server/db/sha256.h"

namespace qdclgl::server {

std::string Sha256::Digits() {
  static constexpr char kDigits[] = "0123456789abcdef";
  const std::array<unsigned char, 32> hash = Sum();
  std::string digits;
  digits.reserve(2 * hash.size());
  for (const unsigned char byte : hash) digits.append({kDigits[byte / 16], kDigits[byte % 16]});
  return digits;
}

std::string Sha256Of(std::string_view text) {
  Sha256 sum;
  sum.Add(text);
  return sum.Digits();
}

}  // namespace qdclgl::server
