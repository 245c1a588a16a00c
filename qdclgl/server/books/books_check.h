// The rules that books must keep, tested over everything in them.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// A row for each breach: FRule, FSubject, FRecordID, FRecord, FProblem.
Ref<Recordset> CheckBooks(Database& db);

}  // namespace qdclgl::server
