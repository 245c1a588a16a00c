#include "qdclgl/frame/vocabulary/errors.h"

#include <cstdio>

namespace qdclgl {

namespace {

std::string NumberText(std::int32_t number) {
  if (number >= 0) return std::to_string(number);
  char text[11];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(number));
  return text;
}

}  // namespace

Error::Error(std::int32_t number, std::string source, std::string description)
    : number_(number), source_(std::move(source)), description_(std::move(description)) {
  line_ = "error " + NumberText(number_);
  if (!source_.empty()) line_ += " (" + source_ + ")";
  if (!description_.empty()) line_ += ": " + description_;
}

void RaiseError(std::int32_t number) { throw Error(number); }

}  // namespace qdclgl
