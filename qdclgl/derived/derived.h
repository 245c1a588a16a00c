// The parts of committed files that follow from other files or from the program itself: lists of
// classes and kinds, the tables of the documentation. `scripts/update-derived` writes them, and a
// test compares them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "qdclgl/derived/part.h"

namespace qdclgl::derived {

std::vector<Part> DerivedParts(const std::filesystem::path& root);

// The committed text of a part. Raises std::runtime_error when file or marks are missing.
std::string CommittedText(const std::filesystem::path& root, const Part& part);
// Writes a part into its file, which is made where the part is the whole of it.
void Write(const std::filesystem::path& root, const Part& part);

}  // namespace qdclgl::derived
