// Imports against the vouchers that they have.
#pragma once

#include "qdclgl/server/books/findings.h"

namespace qdclgl::server {

void CheckImports(Database& db, Findings& findings);

}  // namespace qdclgl::server
