// The check of units of measure: their groups, and the accounts and lines that name them.
#pragma once

#include "qdclgl/server/books/findings.h"

namespace qdclgl::server {

void CheckUnits(Database& db, Findings& findings);

}  // namespace qdclgl::server
