// The errors that the library itself raises, beside the server's refusals, for the page of errors.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace qdclgl::derived {

struct CoreError {
  std::int32_t number;
  std::string_view name;  // as `error_number` has it, without its k
  std::string_view meaning;
  std::string_view advice;
};

std::span<const CoreError> CoreErrors();

}  // namespace qdclgl::derived
