// Small objects and helpers that many tests need.
#pragma once

#include <functional>
#include <initializer_list>
#include <span>
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

// An object that runs some code when it ends, as a script's destructor does.
class AtEnd final : public Object {
 public:
  explicit AtEnd(std::function<void()> code) : code_(std::move(code)) {}
  ~AtEnd() override { code_(); }
  std::string_view ClassName() const override { return "AtEnd"; }

 private:
  std::function<void()> code_;
};

// An object whose every member, its default value among them, runs some code and gives its result.
class Foreign final : public Object {
 public:
  explicit Foreign(std::function<Variant()> code) : code_(std::move(code)) {}
  std::string_view ClassName() const override { return "Foreign"; }
  Variant Invoke(std::string_view, CallKind, std::span<Argument>) override { return code_(); }
  Variant PlainValue() override { return code_(); }

 private:
  std::function<Variant()> code_;
};

}  // namespace qdclgl::testing
