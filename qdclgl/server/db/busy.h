// What is told to somebody who waited for others and gave up.
#pragma once

#include <string>

#include "qdclgl/server/db/connection_text.h"

namespace qdclgl::server {

// The sentence of DatabaseBusy: how long was waited, and, where the database tells, who has held
// something all that time. `backend` is PostgreSQL's number of the connection that waited. Raises
// nothing.
std::string SentenceOfBusyBooks(const ConnectionText& text, int backend) noexcept;

}  // namespace qdclgl::server
