#include "qdclgl/server/db/sqlite_functions.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::server {

namespace {

std::string_view TextOf(sqlite3_value* value) {
  const unsigned char* text = sqlite3_value_text(value);
  if (text == nullptr) return {};
  return {reinterpret_cast<const char*>(text),
          static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

bool IsAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Millions of texts are looked at and few of them have the word, so no copies are made of them.
bool HasAsciiWord(std::string_view text, std::string_view word) {
  const auto is_same = [](char c, char upper) {
    return (c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c) == upper;
  };
  return std::search(text.begin(), text.end(), word.begin(), word.end(), is_same) != text.end();
}

void HasWord(sqlite3_context* context, int count, sqlite3_value** values) {
  try {
    const std::string_view word = TextOf(values[0]);
    const bool is_ascii = IsAscii(word);
    const bool has = std::any_of(values + 1, values + count, [&](sqlite3_value* value) {
      const std::string_view text = TextOf(value);
      return is_ascii ? HasAsciiWord(text, word) : ToUpper(text).find(word) != std::string::npos;
    });
    sqlite3_result_int(context, has ? 1 : 0);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

}  // namespace

int AddFunctions(sqlite3* connection) {
  return sqlite3_create_function_v2(connection, "HAS_WORD", -1,
                                    SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr,
                                    HasWord, nullptr, nullptr, nullptr);
}

}  // namespace qdclgl::server
