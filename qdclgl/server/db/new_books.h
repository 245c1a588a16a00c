// Making the database of new books, all or nothing.
#pragma once

#include <functional>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// Gives an empty database to `fill`, in a transaction. Where the connection text says there are the
// filled books afterwards, or, when something fails, what was there before. BooksExist when there
// are books, or a file, by the time that the new ones are ready; NoBooks beside half a copy.
void MakeBooks(const ConnectionText& text, const std::function<void(Database& db)>& fill);

}  // namespace qdclgl::server
