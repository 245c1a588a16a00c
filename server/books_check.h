// The rules that books must keep, tested over everything in them.
#pragma once

#include "frame/recordset.h"
#include "server/database.h"

namespace qdclgl::server {

// A row for each breach: FRule, FSubject, FRecordID, FRecord, FProblem.
Ref<Recordset> CheckBooks(Database& db);

}  // namespace qdclgl::server
