// Items of a class from a file.
#pragma once

#include <string>

#include "qdclgl/cli/console.h"

namespace qdclgl::cli {

// What happens to items that the class has already.
enum class KnownItems { kLeft, kUpdated };

struct ItemImportResult {
  long stored = 0;
  long changed = 0;
  long passed = 0;  // in the books already, and as the file has them where they are updated
  long left_out = 0;
  bool is_whole = true;  // nothing was reported
};

// Stores the items of a file in the class that is called so. UsageError for a class that the books
// don't have; FileError.
ItemImportResult ImportItems(const std::string& path, const std::string& item_class,
                             KnownItems known, const std::string& props, const Console& console);

}  // namespace qdclgl::cli
