// Texts of the little languages, right ones and broken ones.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "tests/fuzz/choices.h"

namespace qdclgl::fuzz {

// A filter over the columns.
std::string AnyFilter(Choices& choices, std::span<const std::string_view> columns);
// A sort text over the columns.
std::string AnySort(Choices& choices, std::span<const std::string_view> columns);

}  // namespace qdclgl::fuzz
