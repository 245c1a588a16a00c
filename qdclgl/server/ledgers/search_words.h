// What lines are looked for by: words, each of which a line must have somewhere.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/server/db/database.h"
#include "qdclgl/server/db/filter.h"

namespace qdclgl::server {

// "tea 119 \"green tea\"": words between blanks, and what stands in quotes as a whole; a quote
// inside is doubled.
std::vector<std::string> SearchWords(std::string_view text);

// A condition that one of the texts of the database has the word in it, whatever its case, with the
// word's value behind `values`. PostgreSQL knows the case of letters as its version and locale do;
// so those beyond ASCII that the word has are folded one by one in the text, as ToUpper does it,
// and both databases find the same.
std::string HasWord(const Database& db, std::span<const std::string> texts, std::string_view word,
                    std::vector<BoundValue>& values);

}  // namespace qdclgl::server
