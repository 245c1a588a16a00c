#include "qdclgl/automation/identity.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

namespace qdclgl::automation {

namespace {

// The namespace in which names become ids. Changing it changes every id.
constexpr std::array<std::uint8_t, 16> kNamespace = {
    0x5b, 0x1d, 0x0f, 0x3a, 0x77, 0x0e, 0x4c, 0x62, 0x9c, 0x1e, 0x64, 0x0a, 0x2f, 0xd3, 0x81, 0xb5};

// SHA-1, which version 5 of UUIDs is defined by.
std::array<std::uint8_t, 20> Sha1(std::string message) {
  const std::uint64_t bits = std::uint64_t{message.size()} * 8;
  message += '\x80';
  while (message.size() % 64 != 56) message += '\0';
  for (int shift = 56; shift >= 0; shift -= 8) message += static_cast<char>(bits >> shift);

  std::array<std::uint32_t, 5> state = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
  for (std::size_t block = 0; block < message.size(); block += 64) {
    std::array<std::uint32_t, 80> words{};
    for (std::size_t i = 0; i < 64; ++i) {
      words[i / 4] = words[i / 4] << 8 | static_cast<std::uint8_t>(message[block + i]);
    }
    for (std::size_t i = 16; i < words.size(); ++i) {
      words[i] = std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
    }
    auto [a, b, c, d, e] = state;
    for (std::size_t i = 0; i < words.size(); ++i) {
      std::uint32_t mix;
      if (i < 20) mix = ((b & c) | (~b & d)) + 0x5A827999;
      else if (i < 40) mix = (b ^ c ^ d) + 0x6ED9EBA1;
      else if (i < 60) mix = ((b & c) | (b & d) | (c & d)) + 0x8F1BBCDC;
      else mix = (b ^ c ^ d) + 0xCA62C1D6;
      const std::uint32_t next = std::rotl(a, 5) + mix + e + words[i];
      e = d;
      d = c;
      c = std::rotl(b, 30);
      b = a;
      a = next;
    }
    const std::array<std::uint32_t, 5> added = {a, b, c, d, e};
    for (std::size_t i = 0; i < state.size(); ++i) state[i] += added[i];
  }

  std::array<std::uint8_t, 20> digest;
  for (std::size_t i = 0; i < digest.size(); ++i) {
    digest[i] = static_cast<std::uint8_t>(state[i / 4] >> (24 - 8 * (i % 4)));
  }
  return digest;
}

}  // namespace

GUID IdOfName(std::string_view name) {
  std::string message(reinterpret_cast<const char*>(kNamespace.data()), kNamespace.size());
  message += name;
  std::array<std::uint8_t, 20> digest = Sha1(std::move(message));
  digest[6] = static_cast<std::uint8_t>((digest[6] & 0x0F) | 0x50);
  digest[8] = static_cast<std::uint8_t>((digest[8] & 0x3F) | 0x80);

  GUID id;
  id.Data1 = std::uint32_t{digest[0]} << 24 | digest[1] << 16 | digest[2] << 8 | digest[3];
  id.Data2 = static_cast<unsigned short>(digest[4] << 8 | digest[5]);
  id.Data3 = static_cast<unsigned short>(digest[6] << 8 | digest[7]);
  std::memcpy(id.Data4, digest.data() + 8, sizeof id.Data4);
  return id;
}

const GUID& LibraryId() {
  static const GUID id = IdOfName("QDCLGL");
  return id;
}

const IID& ContextInterfaceId() {
  static const IID id = IdOfName("QDCLGL.ISetXactContext");
  return id;
}

std::wstring IdText(const GUID& id) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
  return text.data();
}

}  // namespace qdclgl::automation
