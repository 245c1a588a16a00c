// The formats of other programs' files that the books keep, each under a name.
#pragma once

#include <map>
#include <string>

#include "qdclgl/cli/file_format.h"

namespace qdclgl::cli {

// The format that is found in the file, and is no name of a kept one.
inline constexpr const char* kFoundFormat = "auto";

std::map<std::string, FileFormat> KeptFormats(const std::string& props);
// UsageError when there is none of that name.
FileFormat KeptFormat(const std::string& props, const std::string& name);

// Takes the place of one of that name.
void KeepFormat(const std::string& props, const NamedFormat& format);
void RemoveFormat(const std::string& props, const std::string& name);

}  // namespace qdclgl::cli
