// Objects: counted by reference, called by name.
//
// An object belongs to the thread that made it (its apartment), so its count is a plain number. A
// late-bound call on any other thread is refused. `Ref<T>` is the one owner; a null Ref is
// automation's Nothing, and using it is error 91 in every build.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "qdclgl/frame/vocabulary/errors.h"

namespace qdclgl {

class Argument;
class ClassTable;
class Variant;

template <class T>
class Ref {
 public:
  constexpr Ref() = default;
  constexpr Ref(std::nullptr_t) {}
  explicit Ref(T* object) : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  Ref(const Ref& other) : Ref(other.object_) {}
  Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class U>
  requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& other) : Ref(other.get()) {}
  template <class U>
  requires std::is_convertible_v<U*, T*> Ref(Ref<U>&& other)
  noexcept : object_(other.Detach()) {}
  ~Ref() {
    if (object_ != nullptr) object_->Release();
  }
  Ref& operator=(Ref other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  T* get() const { return object_; }
  T* operator->() const {
    if (object_ == nullptr) RaiseError(error_number::kObjectNotSet);
    return object_;
  }
  T& operator*() const { return *operator->(); }
  explicit operator bool() const { return object_ != nullptr; }
  friend bool operator==(const Ref& left, const Ref& right) = default;
  friend bool operator==(const Ref& left, std::nullptr_t) { return left.object_ == nullptr; }

  // Gives the reference away without releasing it.
  T* Detach() { return std::exchange(object_, nullptr); }
  // Takes over a reference that someone gave away.
  static Ref Adopt(T* object) {
    Ref result;
    result.object_ = object;
    return result;
  }

 private:
  T* object_ = nullptr;
};

template <class T, class... Args>
Ref<T> Make(Args&&... args) {
  return Ref<T>(new T(std::forward<Args>(args)...));
}

// A reference to an object with elements is walked as the object is, and keeps it alive meanwhile:
// `for (auto& line : voucher->Entries())`. Error 91 for Nothing.
template <class T>
auto begin(const Ref<T>& object) -> decltype(object->begin()) {
  return object->begin();
}
template <class T>
auto end(const Ref<T>& object) -> decltype(object->end()) {
  return object->end();
}

// How a member is used in a late-bound call. A caller that can't tell a method from a property
// read asks for both (`kMethod | kGet`).
enum class CallKind : std::uint8_t { kMethod = 1, kGet = 2, kLet = 4, kSet = 8 };
constexpr CallKind operator|(CallKind left, CallKind right) {
  return static_cast<CallKind>(static_cast<unsigned>(left) | static_cast<unsigned>(right));
}
constexpr bool Includes(CallKind kinds, CallKind kind) {
  return (static_cast<unsigned>(kinds) & static_cast<unsigned>(kind)) != 0;
}

namespace detail {

// A number for each thread, never 0. It has 16 bits: the 65,536th thread behind another passes for
// it, which lets a wrong call through and never refuses a right one.
inline constinit thread_local std::uint16_t thread_number = 0;
std::uint16_t NumberThisThread() noexcept;
inline std::uint16_t ThisThread() noexcept {
  return thread_number != 0 ? thread_number : NumberThisThread();
}

}  // namespace detail

class Object {
 public:
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  void AddRef() const { ++references_; }
  void Release() const {
    if (--references_ == 0) Free();
  }

  bool IsShared() const { return references_ > 1; }

  // Whether the object was made by the thread that asks.
  bool IsOfThisThread() const { return thread_ == detail::ThisThread(); }
  // Raises kWrongThread, with words, on any other thread.
  void CheckThread() const {
    if (!IsOfThisThread()) [[unlikely]] {
      RaiseWrongThread();
    }
  }

  // The class name as callers know it.
  virtual std::string_view ClassName() const = 0;

  // The members that late-bound callers reach, null for an object that dispatches on its own.
  virtual const ClassTable* Members() const { return nullptr; }

  // Calls the member `name` (case is ignored; the body stands with the class table). Positional
  // arguments come first, named ones behind; the value of a let or set is the last positional one.
  // Errors: 438 no such member or not usable this way, 448 no such named argument, 449 a needed
  // argument is left out, 450 wrong count, 13 an argument of the wrong type, kWrongThread on
  // another thread than the object's, and what the member raises.
  virtual Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments);

  // The value of the default member, which stands for the object where a plain value is needed.
  // Error 438 for a class without one.
  virtual Variant PlainValue();

  // Late-bound calls as one writes them (bodies in late_bound.h):
  //   info->Call("GetList", props, ByRef(options), Named("Name", ByRef(name)), Missing)
  template <class... Args>
  Variant Call(std::string_view name, Args&&... args);
  template <class... Args>
  Variant Get(std::string_view name, Args&&... args);
  template <class... Args>
  void Let(std::string_view name, Args&&... args);
  template <class... Args>
  void Set(std::string_view name, Args&&... args);

  // The containers that deep copies look into; asked at every value of every row, so it is not a
  // cast.
  enum class Container : std::uint8_t { kNone, kDictionary, kVector };
  Container container() const { return container_; }

 protected:
  explicit Object(Container container = Container::kNone)
      : thread_(detail::ThisThread()), container_(container) {}
  virtual ~Object() = default;

  // How many references are held.
  std::uint32_t references() const { return references_; }

 private:
  // Ends the object. What it holds ends with it, however deep that is nested: beyond a bound an
  // object waits until those above it are gone.
  void Free() const;
  [[noreturn]] [[gnu::cold]] void RaiseWrongThread() const;

  mutable std::uint32_t references_ = 0;
  const std::uint16_t thread_;
  const Container container_;
};

}  // namespace qdclgl
