// The check of the books' texts: none is longer than its column takes.
#pragma once

#include "qdclgl/server/books/findings.h"

namespace qdclgl::server {

void CheckTexts(Database& db, Findings& findings);

}  // namespace qdclgl::server
