// The check of items: their tree, and what they hold against the fields that their class describes.
#pragma once

#include "qdclgl/server/books/findings.h"

namespace qdclgl::server {

void CheckItems(Database& db, Findings& findings);

}  // namespace qdclgl::server
