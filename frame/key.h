// The key of a row: a column name with its hash. For a name that stands in the code the hash is
// made by the compiler.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace qdclgl {

class Key {
 public:
  template <std::size_t N>
  constexpr Key(const char (&literal)[N]) : Key(std::string_view(literal, N - 1)) {}
  constexpr Key(std::string_view text) : text_(text), hash_(Hash(text)) {}
  Key(const std::string& text) : Key(std::string_view(text)) {}

  constexpr std::string_view text() const { return text_; }
  constexpr std::uint32_t hash() const { return hash_; }

 private:
  static constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15u;

  // Eight bytes at a time; a shorter rest is read as if zeros stood behind it.
  static constexpr std::uint64_t Load(const char* from, std::size_t size) {
    std::uint64_t word = 0;
    if (std::is_constant_evaluated() || std::endian::native != std::endian::little) {
      for (std::size_t i = 0; i < size; ++i) {
        word |= static_cast<std::uint64_t>(static_cast<unsigned char>(from[i])) << (8 * i);
      }
    } else if (size == 8) {
      std::memcpy(&word, from, 8);
    } else {
      std::memcpy(&word, from, size);
    }
    return word;
  }

  static constexpr std::uint32_t Hash(std::string_view text) {
    std::uint64_t hash = text.size() * kMultiplier;
    const char* from = text.data();
    std::size_t left = text.size();
    for (; left >= 8; left -= 8, from += 8) hash = Mix(hash ^ Load(from, 8));
    if (left > 0) hash = Mix(hash ^ Load(from, left));
    return static_cast<std::uint32_t>(hash >> 32);
  }
  static constexpr std::uint64_t Mix(std::uint64_t word) {
    word *= kMultiplier;
    return word ^ word >> 29;
  }

  std::string_view text_;
  std::uint32_t hash_;
};

}  // namespace qdclgl
