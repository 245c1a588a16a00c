// An object of others, called by name, and what its answers are held to.
//
// Nothing that such an object answers is taken on trust: what is needed of it is asked for by
// AnswerAs and CountOf, which raise an error in words for what can't be.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qdclgl/automation/com.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/objects/nesting.h"

namespace qdclgl::automation {

// What stands for an object of others.
class Foreign {
 public:
  // Null when it stands for it no more.
  virtual IUnknown* object() const = 0;

 protected:
  ~Foreign() = default;
};

class ForeignObject final : public Object, public Foreign {
 public:
  explicit ForeignObject(IUnknown* object)
      : object_(object), dispatch_(Query<IDispatch>(object, IID_IDispatch)) {}

  std::string_view ClassName() const override { return "Object"; }
  IUnknown* object() const override { return object_.get(); }

  // Whether it answers to all of these names.
  bool Offers(std::initializer_list<const wchar_t*> names) const;

  Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) override;
  Variant PlainValue() override;

 private:
  std::vector<DISPID> Resolve(std::vector<std::wstring>& names) const;
  Variant InvokeId(std::vector<DISPID> ids, CallKind kind, std::span<Argument> arguments);

  Com<IUnknown> object_;
  Com<IDispatch> dispatch_;  // empty for an object that can't be called by name
};

namespace detail {

// Raises an error of what a foreign object answered: "Count of a foreign object is -1."
[[noreturn]] void RaiseUnfit(std::int32_t number, std::string_view member, const std::string& what);

}  // namespace detail

// A member of a foreign object as T. Error 13 for an answer that is no T; where T is a class, error
// 91 for Nothing.
template <class T, class... Args>
auto AnswerAs(Object& foreign, std::string_view member, Args&&... args) {
  const Variant answer = foreign.Get(member, std::forward<Args>(args)...);
  constexpr bool kIsClass = std::is_base_of_v<Object, T>;
  const bool of_kind = answer.IsObject() || !kIsClass;
  if (of_kind && kIsClass && answer.IsNothing()) {
    detail::RaiseUnfit(error_number::kObjectNotSet, member, "Nothing");
  }
  try {
    return answer.As<T>();
  } catch (const Error& error) {
    if (!error.description().empty()) throw;  // words of its own: those of a default value
    detail::RaiseUnfit(error.number(), member, "of a type that doesn't fit");
  }
}

// A number of things that a foreign object tells. Errors: 13 for an answer that is no number, 6 for
// one outside the bounds.
Long NumberOf(Object& foreign, std::string_view member, std::int64_t least, std::int64_t most);
inline Long CountOf(Object& foreign, std::string_view member = "Count") {
  return NumberOf(foreign, member, 0, kMostElements);
}

}  // namespace qdclgl::automation
