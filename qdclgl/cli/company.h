// Whose books these are.
#pragma once

#include <string>

namespace qdclgl::cli {

struct Company {
  std::string name, address;  // "" where the books don't tell
};

// As the settings say; the library's session must be there.
Company CompanyOfBooks();

}  // namespace qdclgl::cli
