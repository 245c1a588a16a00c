// A part of a committed file that follows from other files or from the program itself.
#pragma once

#include <string>

namespace qdclgl::derived {

// The lines between those that hold "BEGIN name" and "END name" in a file; the whole file where the
// name is empty.
struct Part {
  std::string file;  // below the root
  std::string name;
  std::string text;

  std::string Called() const { return name.empty() ? file : file + ", part " + name; }
};

}  // namespace qdclgl::derived
