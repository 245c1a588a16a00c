// The rows of a query one by one, however many there are.
#pragma once

#include <functional>
#include <string>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// `take` gets each row in turn. In a transaction.
void EachRow(Database& db, const std::string& query,
             const std::function<void(const Statement&)>& take);

}  // namespace qdclgl::server
