// Server components of our own over SQLite or PostgreSQL: once registered, the library's classes
// work on real books.
//
//   server::RegisterServerComponents();
//   CreateObject("QDSVGLBooks.BooksUpdate")->Call("Create", "books.db", "EUR");
//   CreateObject("QDSVGLSession.SessionUpdate")->Call("Login", "books.db", "administrator", "");
#pragma once

#include <span>

#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

// Every component with the members that callers reach, by ProgID.
std::span<const ServerComponent> ServerComponents();

// Makes them known to this process under their ProgIDs.
void RegisterServerComponents();

}  // namespace qdclgl::server
