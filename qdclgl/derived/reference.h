// The pages of docs/reference/: one for each class and each server component, one for the errors,
// and an index.
#pragma once

#include <filesystem>
#include <vector>

#include "qdclgl/derived/part.h"

namespace qdclgl::derived {

std::vector<Part> ReferencePages(const std::filesystem::path& root);

}  // namespace qdclgl::derived
