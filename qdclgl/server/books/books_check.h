// The rules that books must keep, tested over everything in them.
#pragma once

#include <string_view>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/books/work_progress.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// A row for each breach: FRule, FSubject, FRecordID, FRecord, FProblem. `kept_head` is a head of
// the audit trail that was kept elsewhere, "" for none.
Ref<Recordset> CheckBooks(Database& db, std::string_view kept_head,
                          const WorkProgress& progress = {});

}  // namespace qdclgl::server
