// Small objects and helpers that many tests need.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "qdclgl/frame/containers/dictionary.h"

namespace qdclgl::testing {

// A row with these keys and values, unmodified.
inline Ref<Dictionary> Row(std::initializer_list<std::pair<std::string_view, Variant>> cells) {
  auto row = Make<Dictionary>();
  for (const auto& [key, value] : cells) row->Put(key, value);
  row->SetTrackState(0);
  return row;
}

// What an operation raises, as Error::what() has it; "no error" when it raises nothing.
template <class Operation>
std::string ErrorOf(Operation operation) {
  try {
    operation();
    return "no error";
  } catch (const Error& error) {
    return error.what();
  }
}

// An object that nobody can call, and that knows how many references to it are held.
class Opaque final : public Object {
 public:
  std::string_view ClassName() const override { return "Opaque"; }
  int holders() const { return static_cast<int>(references()); }
};

}  // namespace qdclgl::testing
