// Whole books carried to another database in steps, so that a copy which was broken off goes on
// where it was.
//
// The rows are written in transactions of some thousand, in the order of their keys. What stands
// there is the mark of how far the copy is: at a new start the rows that are there are compared
// with as many of the books, and the copy goes on behind them, or from its beginning when they are
// other ones. Until the end the version of the copy is 0 and a table marks it (HoldsHalfCopy), so
// that nobody takes it for books.
#pragma once

#include <string_view>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

struct Transfer {
  Ref<Dictionary> account;  // of the copy, as AccountOfBooks tells it
  bool went_on = false;     // there was a copy that had been broken off
  bool began_anew = false;  // it was not one of these books as they are now
};

// Copies the books of `from` as they are at one moment to where `to` says; others work on
// meanwhile. The copy becomes books when every table has the rows that it should, and both pass
// their check. `program_role` as for new books. BooksExist for a place where books or anything else
// are; WrongSchema unless the books are of this program's version; Damaged when a check finds
// something; DatabaseBusy when another program goes on with the same copy.
Transfer TransferBooks(Database& from, const ConnectionText& to, std::string_view program_role);

}  // namespace qdclgl::server
