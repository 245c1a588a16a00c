// What a file itself tells of its format.
#pragma once

#include <string>

#include "qdclgl/cli/file_format.h"

namespace qdclgl::cli {

// The format with what it leaves open as the head of the file has it: separator, decimal mark, form
// of dates, and, where no column is told, those whose headings are known. FileError when the file
// can't be read; UsageError for dates that can be read in two ways.
FileFormat Completed(const std::string& path, const FileFormat& format);

// "columns separated by a semicolon, decimals behind a comma, dates dd.mm.yyyy"
std::string Described(const FileFormat& format);

}  // namespace qdclgl::cli
