// The databases that this program can keep books in.
#pragma once

#include <string>

namespace qdclgl::server {

// "SQLite 3.40.1, PostgreSQL (libpq 15.14)": the libraries that the program runs with.
std::string DatabasesBuiltIn();

}  // namespace qdclgl::server
