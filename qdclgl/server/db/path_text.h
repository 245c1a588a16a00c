// Paths between UTF-8, as all texts are here, and what the standard library makes of them, which
// for a plain string is the system's code page on Windows.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace qdclgl::server {

inline std::filesystem::path PathOf(std::string_view text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

inline std::string TextOf(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return std::string(text.begin(), text.end());
}

}  // namespace qdclgl::server
