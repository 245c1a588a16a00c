// The check of notes: their data are what their columns, and so the trail, tell of them.
#pragma once

#include "qdclgl/server/books/findings.h"

namespace qdclgl::server {

void CheckNotes(Database& db, Findings& findings);

}  // namespace qdclgl::server
