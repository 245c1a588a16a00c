// What is told to somebody who waited for others and gave up.
#pragma once

#include <string>

namespace qdclgl::server {

// How long was waited.
std::string SentenceOfWaiting(int seconds);

// PostgreSQL: a query on another connection for the sentence that follows: who has been in the way
// all that time. `backend` is the server's number of the connection that waited.
std::string QueryOfHolder(int backend);

}  // namespace qdclgl::server
