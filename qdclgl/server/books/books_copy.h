// The whole of books, copied into new books: what a backup is, and what brings one back. Row by
// row, so that either side may be on either database, and what stands in the new books has passed
// their check.
#pragma once

#include <string_view>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// Makes the new books where `to` says, from the books of `from` as they are at one moment; others
// work on meanwhile. All or nothing. `program_role` as for new books. BooksExist; WrongSchema
// unless the books are of this program's version; Damaged when the copy does not pass the check.
void CopyBooks(Database& from, const ConnectionText& to, std::string_view program_role);

// What tells people which books they have before them: FVersion, FVouchers (how many), FVoucher and
// FDate of the last one, FHead of the audit trail.
Ref<Dictionary> AccountOfBooks(Database& db);

}  // namespace qdclgl::server
