// The check of vouchers' lines: their sums, what they may be, and the balances that posting keeps
// of them.
#pragma once

#include "qdclgl/server/books/findings.h"
#include "qdclgl/server/books/work_progress.h"

namespace qdclgl::server {

void CheckLines(Database& db, Findings& findings, const WorkProgress& progress);

}  // namespace qdclgl::server
