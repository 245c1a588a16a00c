// Days as people write them on a command line.
#pragma once

#include <string>

#include "qdclgl/frame/values/values.h"

namespace qdclgl::cli {

enum class DayEnd { kFirst, kLast };

// "2024-01-31" is a day, "2024-02" and "2024/2" are periods and "2024" is a year: their first or
// their last day. Day 0 for an empty text. UsageError, naming the option, for anything else;
// BadValue for a period that the year does not have.
DateTime DayFrom(const std::string& props, const char* option, const std::string& text, DayEnd end);

}  // namespace qdclgl::cli
