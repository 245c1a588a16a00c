// The audit trail tested: that it is whole, and that the books are as it tells.
#pragma once

#include <string_view>

#include "qdclgl/server/books/findings.h"
#include "qdclgl/server/books/work_progress.h"

namespace qdclgl::server {

// Rules: "Trail", a row is missing or changed; "Record", a record is not what its trail makes of
// it; "Seal", a sealed block is not what it was; "Head", the trail does not lead to the head that
// was kept elsewhere ("" for none).
void CheckTrail(Database& db, std::string_view kept_head, Findings& findings,
                const WorkProgress& progress);

}  // namespace qdclgl::server
