// The chart of accounts of the books, and as a file that the import reads.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"

namespace qdclgl::cli {

// The accounts by number, those marked deleted too: lines may stand on them.
std::vector<Ref<Dictionary>> AccountsOfBooks(const std::string& props);

// The ids of the item classes that an account asks for.
std::vector<Long> AskedClasses(const Dictionary& account);

// Writes a row for each account but those that the import makes by itself (OwnLinesOf), and says
// how many. Further columns are there where an account has something in them.
long WriteChart(const std::vector<Ref<Dictionary>>& accounts, std::ostream& out);

}  // namespace qdclgl::cli
