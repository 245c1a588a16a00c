// Late-bound calls: by name, at run time, in both directions.
//
//   auto info = ServerGateway().CreateInstance("QDSVGLVoucherGroup.VoucherGroupInfo");
//   rs = info->Call("GetList", props, ByRef(options), ByRef(filter), ByRef(sort)).As<Recordset>();
//   id = info->Call("ExistenceCheck", props, Named("Name", ByRef(name))).As<Long>();
//
// An argument goes by value, or by reference to a typed variable of the caller: what the called
// side writes comes back into that variable. `Missing` leaves a position out.
#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

#include "qdclgl/frame/objects/conversions.h"

namespace qdclgl {

// The variable behind a by-reference argument, of one of the automation types.
class Reference {
 public:
  template <class T>
  explicit Reference(T* variable) : variable_(variable), access_(&kAccess<T>) {}

  // The type that the reference is of; for a Variant variable no type (see IsVariant).
  VariantType type() const { return access_->type; }
  bool IsVariant() const { return access_->is_variant; }

  Variant Get() const { return access_->get(variable_); }
  // Error 13 or 6 when `value` does not convert to the variable's type.
  void Put(const Variant& value) const { access_->put(variable_, value); }

  // The variable itself when it is of type T, otherwise null.
  template <class T>
  T* VariableOf() const {
    return access_ == &kAccess<T> ? static_cast<T*>(variable_) : nullptr;
  }

 private:
  struct Access {
    VariantType type;
    bool is_variant;
    Variant (*get)(const void*);
    void (*put)(void*, const Variant&);
  };

  template <class T>
  static consteval VariantType TypeOf() {
    if constexpr (std::is_same_v<T, Boolean>) return VariantType::kBoolean;
    else if constexpr (std::is_same_v<T, Byte>) return VariantType::kByte;
    else if constexpr (std::is_same_v<T, Integer>) return VariantType::kInteger;
    else if constexpr (std::is_same_v<T, Long>) return VariantType::kLong;
    else if constexpr (std::is_same_v<T, Single>) return VariantType::kSingle;
    else if constexpr (std::is_same_v<T, Double>) return VariantType::kDouble;
    else if constexpr (std::is_same_v<T, Currency>) return VariantType::kCurrency;
    else if constexpr (std::is_same_v<T, DateTime>) return VariantType::kDate;
    else if constexpr (std::is_same_v<T, Decimal>) return VariantType::kDecimal;
    else if constexpr (std::is_same_v<T, String>) return VariantType::kString;
    else if constexpr (detail::IsRef<T>::value) return VariantType::kObject;
    else return VariantType::kEmpty;
  }

  template <class T>
  static constexpr Access kAccess = {
      TypeOf<T>(), std::is_same_v<T, Variant>,
      [](const void* variable) { return Variant(*static_cast<const T*>(variable)); },
      [](void* variable, const Variant& value) {
        *static_cast<T*>(variable) = ConvertTo<T>(value);
      }};

  void* variable_;
  const Access* access_;
};

// A by-reference argument as a caller writes it.
template <class T>
struct ByReference {
  T* variable;
};

template <class T>
ByReference<T> ByRef(T& variable) {
  static_assert(!std::is_const_v<T>, "what the called side writes must have a place to go");
  return {&variable};
}

// A named argument as a caller writes it.
template <class T>
struct NamedArgument {
  std::string_view name;
  T value;
};

template <class T>
NamedArgument<T> Named(std::string_view name, T value) {
  return {name, std::move(value)};
}

// One argument of a call under way.
class Argument {
 public:
  Argument() : value_(Missing) {}
  template <class T>
  requires std::is_constructible_v<Variant, T&&> Argument(T&& value)
      : value_(std::forward<T>(value)) {}
  template <class T>
  Argument(ByReference<T> reference) : reference_(std::in_place, reference.variable) {}
  template <class T>
  Argument(NamedArgument<T> named) : Argument(std::move(named.value)) {
    name_ = named.name;
  }
  explicit Argument(Reference reference) : reference_(reference) {}

  // Empty for a positional argument.
  std::string_view name() const { return name_; }
  bool IsByRef() const { return reference_.has_value(); }
  // For a by-reference argument.
  const Reference& reference() const { return *reference_; }

  bool IsMissing() const {
    if (!reference_) return value_.IsMissing();
    const auto* variable = reference_->VariableOf<Variant>();
    return variable != nullptr && variable->IsMissing();
  }
  Variant Value() const { return reference_ ? reference_->Get() : value_; }
  template <class T>
  T ConvertedTo() const {
    return reference_ ? ConvertTo<T>(reference_->Get()) : ConvertTo<T>(value_);
  }
  template <class T>
  auto As() const {
    return reference_ ? reference_->Get().template As<T>() : value_.template As<T>();
  }
  // Hands a result back to the caller; without effect on an argument given by value.
  void Put(const Variant& value) const {
    if (reference_) reference_->Put(value);
  }

 private:
  Variant value_;
  std::optional<Reference> reference_;
  std::string_view name_;
};

namespace detail {

template <class... Args>
Variant InvokeWith(Object& object, std::string_view name, CallKind kind, Args&&... args) {
  if constexpr (sizeof...(Args) == 0) {
    return object.Invoke(name, kind, {});
  } else {
    Argument arguments[] = {Argument(std::forward<Args>(args))...};
    return object.Invoke(name, kind, arguments);
  }
}

}  // namespace detail

template <class... Args>
Variant Object::Call(std::string_view name, Args&&... args) {
  return detail::InvokeWith(*this, name, CallKind::kMethod, std::forward<Args>(args)...);
}
template <class... Args>
Variant Object::Get(std::string_view name, Args&&... args) {
  return detail::InvokeWith(*this, name, CallKind::kGet, std::forward<Args>(args)...);
}
template <class... Args>
void Object::Let(std::string_view name, Args&&... args) {
  detail::InvokeWith(*this, name, CallKind::kLet, std::forward<Args>(args)...);
}
template <class... Args>
void Object::Set(std::string_view name, Args&&... args) {
  detail::InvokeWith(*this, name, CallKind::kSet, std::forward<Args>(args)...);
}

}  // namespace qdclgl
