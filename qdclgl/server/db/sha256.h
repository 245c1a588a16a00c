// SHA-256, by which the rows of the audit trail hold each other, as 64 hexadecimal digits.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace qdclgl::server {

// The hash of texts that are added one behind the other.
class Sha256 {
 public:
  Sha256();
  ~Sha256();
  void Add(std::string_view text);
  // Of all that was added; nothing is added behind it.
  std::string Digits();

 private:
  std::array<unsigned char, 32> Sum();

  struct State;  // of the library that adds up
  std::unique_ptr<State> state_;
};

std::string Sha256Of(std::string_view text);

}  // namespace qdclgl::server
