// `copy FROM TO`: whole books carried to another database.
#pragma once

#include <string>

#include "qdclgl/cli/program.h"

namespace qdclgl::cli {

// `login` is to the books that are copied.
int CopyBooks(const Login& login, const std::string& to, const std::string& program_role,
              const Console& console);

}  // namespace qdclgl::cli
