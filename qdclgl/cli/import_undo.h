// An import that is taken back.
#pragma once

#include <string>

#include "qdclgl/cli/console.h"

namespace qdclgl::cli {

struct ImportUndo {
  std::string import;  // its number; "" for none
  bool dry_run = false;
  bool yes = false;
};

// Tells which vouchers go, asks, and removes them, all or none.
int UndoImport(const ImportUndo& wanted, const std::string& props, const Console& console);

}  // namespace qdclgl::cli
