// Whether there is PostgreSQL in this build.
#pragma once

#include <memory>
#include <string>

#include "qdclgl/server/db/connection_text.h"
#include "qdclgl/server/db/driver.h"

namespace qdclgl::server {

// A connection of its own. BadConnectionText in a build without it, ConnectionLost, DatabaseFailed.
std::unique_ptr<Driver> ConnectToPostgreSQL(const ConnectionText& text, Driver::OnBusy on_busy);

// "PostgreSQL (libpq 15.14)"; "no PostgreSQL" in a build without it.
std::string PostgreSQLBuiltIn();

}  // namespace qdclgl::server
