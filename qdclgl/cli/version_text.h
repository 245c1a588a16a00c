// What `qdclgl --version` tells.
#pragma once

#include <string>
#include <string_view>

namespace qdclgl::cli {

// The commit that the program was built from, with "+" behind it when files had been changed since;
// empty where it was not built from a git repository of its own. The build writes its definition.
std::string_view BuiltFrom();

// Version, commit and the databases that books can be kept in, a line each.
std::string VersionText(std::string_view commit = BuiltFrom());

}  // namespace qdclgl::cli
