// The parts of committed files that follow from other files or from the program itself: lists of
// classes and kinds, the tables of the documentation. `scripts/update-derived` writes them, and a
// test compares them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace qdclgl::derived {

// The lines between those that hold "BEGIN name" and "END name" in a file; the whole file where the
// name is empty.
struct Part {
  std::string file;  // below the root
  std::string name;
  std::string text;

  std::string Called() const { return name.empty() ? file : file + ", part " + name; }
};

std::vector<Part> DerivedParts(const std::filesystem::path& root);

// The committed text of a part. Raises std::runtime_error when file or marks are missing.
std::string CommittedText(const std::filesystem::path& root, const Part& part);
// Writes a part into its file.
void Write(const std::filesystem::path& root, const Part& part);

}  // namespace qdclgl::derived
