// Functions of our own that statements on SQLite may call.
#pragma once

#include <sqlite3.h>

namespace qdclgl::server {

// HAS_WORD(word, text, ...): 1 when one of the texts has the word in it, otherwise 0. The word is
// in upper case as ToUpper gives it; the texts may be in any. SQLITE_OK or the failure.
int AddFunctions(sqlite3* connection);

}  // namespace qdclgl::server
