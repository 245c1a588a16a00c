// The key of a row: a column name with its hash. For a name that stands in the code the hash is
// made by the compiler.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "qdclgl/language.h"

namespace qdclgl {

class RowKey {
 public:
  template <std::size_t N>
  consteval RowKey(const char (&literal)[N]) : RowKey(std::string_view(literal, N - 1)) {}
  constexpr RowKey(std::string_view text) : text_(text) {
    if (std::is_constant_evaluated()) {
      Digest();
    } else {
      DigestAtRunTime();
    }
  }
  RowKey(const std::string& text) : RowKey(std::string_view(text)) {}

  // The first and the last bytes of a text, up to eight of each; they overlap in a short text.
  // Texts of one size of up to 16 bytes are told apart by their ends.
  struct Ends {
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    friend constexpr bool operator==(const Ends&, const Ends&) = default;
  };

  constexpr std::string_view text() const { return text_; }
  constexpr const Ends& ends() const { return ends_; }
  constexpr std::uint32_t hash() const { return hash_; }

  // Whether the key is `text`, the ends of which are known.
  bool Is(std::string_view text, const Ends& ends) const {
    return text.size() == text_.size() && ends == ends_ && (text.size() <= 16 || text == text_);
  }

 private:
  static constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15u;

  // A number out of bytes, the first one lowest.
  template <class Word>
  static constexpr Word Load(const char* from) {
    Word word = 0;
    if (std::is_constant_evaluated() || std::endian::native != std::endian::little) {
      for (std::size_t i = 0; i < sizeof word; ++i) {
        word |= static_cast<Word>(Word{static_cast<unsigned char>(from[i])} << (8 * i));
      }
    } else {
      std::memcpy(&word, from, sizeof word);
    }
    return word;
  }

  static constexpr std::uint64_t Mix(std::uint64_t word) {
    word *= kMultiplier;
    return word ^ word >> 29;
  }

  static constexpr Ends EndsOf(std::string_view text) {
    const char* from = text.data();
    const std::size_t size = text.size();
    if (size >= 8) return {Load<std::uint64_t>(from), Load<std::uint64_t>(from + size - 8)};
    if (size >= 4) return {Load<std::uint32_t>(from), Load<std::uint32_t>(from + size - 4)};
    if (size == 0) return {};
    // Three bytes, some of them the same, are all there is.
    return {Load<std::uint8_t>(from) + 256u * Load<std::uint8_t>(from + size / 2),
            Load<std::uint8_t>(from + size - 1)};
  }

  constexpr void Digest() {
    ends_ = EndsOf(text_);
    std::uint64_t hash = Mix(Mix(text_.size() * kMultiplier ^ ends_.first) ^ ends_.last);
    for (std::size_t i = 8; i + 8 < text_.size(); i += 8) {
      hash = Mix(hash ^ Load<std::uint64_t>(text_.data() + i));
    }
    hash_ = static_cast<std::uint32_t>(hash >> 32);
  }
  void DigestAtRunTime();

  std::string_view text_;
  Ends ends_;
  std::uint32_t hash_ = 0;
};

}  // namespace qdclgl
