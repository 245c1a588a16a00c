#include "qdclgl/server/db/sqlite_functions.h"

#include <string>

#include "qdclgl/server/db/sha256.h"

namespace qdclgl::server {

namespace {

void Sha256Digits(sqlite3_context* context, int, sqlite3_value** arguments) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(arguments[0]));
  if (text == nullptr) return;  // Null of Null
  const auto size = static_cast<std::size_t>(sqlite3_value_bytes(arguments[0]));
  const std::string digits = Sha256Of({text, size});
  sqlite3_result_text(context, digits.data(), static_cast<int>(digits.size()), SQLITE_TRANSIENT);
}

}  // namespace

void DefineSQLiteFunctions(sqlite3* connection) {
  sqlite3_create_function(connection, "sha256_digits", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                          nullptr, Sha256Digits, nullptr, nullptr);
}

}  // namespace qdclgl::server
