// One declaration per member.
//
// A public class declares each of its members once, in interface order, by a row in its body:
//
//   class VoucherGroup final : public Entity {
//     QD_MEMBERS(VoucherGroup, Entity, Creatable, "A word that vouchers are filed under.")
//    public:
//     QD_INHERITED(Refresh)
//     QD_FIELD(GetLet, String, Name, "FName", "The group's name.")
//     QD_PROPERTY(Get, Long, VoucherGroupID, "The id; 0 while the group is not saved.")
//     ...
//
// From the row come the C++ member itself (`Name()` reads, `Name(value)` writes), its dispatch for
// late-bound callers, and its line in docs/api.tsv. A row's place among the rows is its place in
// the interface; the row knows it by its line number, so one line holds one row. The class's .cpp
// file collects them with QD_DEFINE_MEMBERS(VoucherGroup). A base class that holds rows only for
// its heirs to inherit begins with QD_BASE_MEMBERS(its own base).
//
//   QD_FIELD(access, Type, Name, "key", help, ...)      a value under a key of the row's Dictionary
//   QD_PROPERTY(access, Type, Name, help, ...)          a value that the class computes
//   QD_INDEXED(access, Type, Name, (params), help, ...) a value with arguments
//   QD_VARIABLE(Type, Name, initial, help)              a plain variable of the object
//   QD_METHOD(Result, Name, (params), help, ...)        a method
//   QD_OVERRIDE(Result, Name, (params), help, ...)      the same over a virtual one of the base
//   QD_INHERITED(Name)                                  the row of that name of a base class
//   QD_INHERITED_AS(Name, help)                         the same with a help text of its own
//
// `access` is Get, Let, Set, GetLet, GetSet or GetLetSet; or GetLetVariant, for a value that is
// written as a Variant, whatever it reads as. A parameter written `T name` goes by value,
// `const T& name` or `T& name` by reference; `= default` makes it optional, `= Missing` optional
// without a default, `= {}` optional with the zero of its type where the omission can't be told
// from it. Behind the help text may stand Default(x), the value that an absent, Null or empty key
// reads as (otherwise zero, empty text or Nothing); NoDefault, for a member that reads the text of
// its key's value, so that an absent, Null or empty key is no number (error 13); Clear(x), the
// value whose writing removes the key; DefaultMember, for the member that stands for the object;
// ArrayOf(n), for a member whose Vectors are arrays to callers that know such: what it returns is
// one of n dimensions (two: a Vector of Vectors of one length), what it is given has one; Hidden,
// for a member that a list of members leaves out.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/values/row_key.h"

namespace qdclgl {

class ClassTable;

// ---- What may stand behind the help text of a row ----

// A value written into a row: a number, a text or a truth value.
class RowLiteral {
 public:
  enum class Kind { kNone, kNumber, kText, kBoolean };

  constexpr RowLiteral() = default;
  constexpr RowLiteral(int number) : kind_(Kind::kNumber), number_(number) {}
  constexpr RowLiteral(bool value) : kind_(Kind::kBoolean), number_(value ? 1 : 0) {}
  constexpr RowLiteral(const char* text) : kind_(Kind::kText), text_(text) {}

  constexpr bool given() const { return kind_ != Kind::kNone; }
  // As a row would write it, "" when none is given.
  std::string ToText() const {
    switch (kind_) {
      case Kind::kNone: return "";
      case Kind::kNumber: return std::to_string(number_);
      case Kind::kText: return '"' + std::string(text_) + '"';
      case Kind::kBoolean: return number_ != 0 ? "true" : "false";
    }
    return "";
  }

  // The value in a member's own type; none reads as that type's zero. A literal that doesn't fit
  // the type is no constant expression, and so a compile error on the row's line.
  template <class T>
  constexpr T To() const {
    if constexpr (detail::IsRef<T>::value) {
      return given() ? throw "an object has no literal" : T();
    } else if constexpr (std::is_same_v<T, String>) {
      return kind_ == Kind::kText || !given() ? T(text_) : throw "no text";
    } else if constexpr (std::is_same_v<T, Boolean>) {
      return kind_ == Kind::kText ? throw "no truth value" : number_ != 0;
    } else if constexpr (std::is_same_v<T, DateTime>) {
      return kind_ == Kind::kText ? throw "no date" : DateTime(number_);
    } else {
      return kind_ == Kind::kText || kind_ == Kind::kBoolean ? throw "no number"
                                                             : static_cast<T>(number_);
    }
  }

 private:
  Kind kind_ = Kind::kNone;
  int number_ = 0;
  std::string_view text_;
};

// Rows name these without a prefix.
namespace row_options {

struct Default {
  RowLiteral value;
  constexpr explicit Default(RowLiteral literal) : value(literal) {}
};
struct Clear {
  RowLiteral value;
  constexpr explicit Clear(RowLiteral literal) : value(literal) {}
};
struct NoDefaultTag {};
inline constexpr NoDefaultTag NoDefault;
struct DefaultMemberTag {};
inline constexpr DefaultMemberTag DefaultMember;
struct ArrayOf {
  int dimensions;
  constexpr explicit ArrayOf(int count) : dimensions(count) {}
};
struct HiddenTag {};
inline constexpr HiddenTag Hidden;

}  // namespace row_options

struct RowOptions {
  RowLiteral default_value;
  RowLiteral clear_value;
  bool has_default = true;
  bool is_default_member = false;
  int array_dimensions = 0;
  bool is_hidden = false;

  constexpr RowOptions() = default;
  template <class... Options>
  explicit constexpr RowOptions(Options... options) {
    (Apply(options), ...);
  }

 private:
  constexpr void Apply(row_options::Default option) { default_value = option.value; }
  constexpr void Apply(row_options::Clear option) { clear_value = option.value; }
  constexpr void Apply(row_options::NoDefaultTag) { has_default = false; }
  constexpr void Apply(row_options::DefaultMemberTag) { is_default_member = true; }
  constexpr void Apply(row_options::ArrayOf option) { array_dimensions = option.dimensions; }
  constexpr void Apply(row_options::HiddenTag) { is_hidden = true; }
};

// ---- The row itself ----

// The word for a C++ type in the API table. `Context` only delays the answer until the row is
// collected, so that a row may name a class that is declared further down.
template <class T, class Context = void>
consteval std::string_view TypeWord() {
  if constexpr (std::is_void_v<T>) return "none";
  else if constexpr (std::is_same_v<T, Boolean>) return "Boolean";
  else if constexpr (std::is_same_v<T, Integer>) return "Integer";
  else if constexpr (std::is_same_v<T, Long>) return "Long";
  else if constexpr (std::is_same_v<T, Single>) return "Single";
  else if constexpr (std::is_same_v<T, Double>) return "Double";
  else if constexpr (std::is_same_v<T, Currency>) return "Currency";
  else if constexpr (std::is_same_v<T, DateTime>) return "Date";
  else if constexpr (std::is_same_v<T, String>) return "String";
  else if constexpr (std::is_same_v<T, std::string_view>) return "String";
  else if constexpr (std::is_same_v<T, Variant>) return "Variant";
  else if constexpr (std::is_same_v<T, Ref<Object>>) return "Object";
  else return detail::IsRef<T>::Class::kClassName;
}

struct ParameterType {
  std::string_view type;
  bool by_ref = false;
};

// Calls a member of `self` with one argument for each parameter, in order.
using Invoker = Variant (*)(Object& self, Argument* arguments);

struct MemberRow {
  std::string_view name = {};  // empty: no row on this line
  std::string_view help = {};
  std::string_view type = {};
  std::string_view key = {};         // FIELD only
  std::string_view parameters = {};  // as written, with the parentheses
  std::span<const ParameterType> parameter_types = {};
  RowOptions options = {};
  std::string_view put_type = {};  // what a put takes; empty: `type`
  Invoker method = nullptr;
  Invoker get = nullptr;
  Invoker let = nullptr;
  Invoker set = nullptr;

  constexpr std::string_view PutType() const { return put_type.empty() ? type : put_type; }
};

namespace detail {

// The line of a row, counted in its file; any line, for those that hold no row.
struct AnyLine {};
template <int N>
struct RowLine : AnyLine {};

// One argument on its way into a parameter of type P.
template <class P>
class Incoming {
 public:
  explicit Incoming(Argument& argument) : value_(argument.ConvertedTo<P>()) {}
  P&& get() { return std::move(value_); }
  void WriteBack() {}

 private:
  P value_;
};

// A text that the member only looks at: by value to the caller, without a copy to the member.
template <>
class Incoming<std::string_view> {
 public:
  explicit Incoming(Argument& argument) : value_(argument.ConvertedTo<String>()) {}
  std::string_view get() const { return value_; }
  void WriteBack() {}

 private:
  String value_;
};

template <class P>
class Incoming<const P&> {
 public:
  explicit Incoming(Argument& argument) : value_(argument.ConvertedTo<P>()) {}
  const P& get() { return value_; }
  void WriteBack() {}

 private:
  P value_;
};

// A reference that the member may write through: bound to the caller's variable where the types
// agree, otherwise to a converted copy that is written back behind the call.
template <class P>
class Incoming<P&> {
 public:
  explicit Incoming(Argument& argument)
      : argument_(argument),
        variable_(argument.IsByRef() ? argument.reference().VariableOf<P>() : nullptr) {
    if (variable_ == nullptr) copy_ = argument.ConvertedTo<P>();
  }
  P& get() { return variable_ != nullptr ? *variable_ : copy_; }
  void WriteBack() {
    if (variable_ == nullptr) argument_.Put(Variant(copy_));
  }

 private:
  Argument& argument_;
  P* variable_;
  P copy_{};
};

template <class M>
struct MemberTraits;
template <class C, class R, class... P>
struct MemberTraits<R (C::*)(P...)> {
  using Class = C;
  using Result = R;
  using Parameters = std::tuple<P...>;
  static constexpr std::array<ParameterType, sizeof...(P)> kTypes = {
      ParameterType{TypeWord<std::remove_cvref_t<P>>(), std::is_reference_v<P>}...};
};
template <class C, class R, class... P>
struct MemberTraits<R (C::*)(P...) const> : MemberTraits<R (C::*)(P...)> {};

// The two halves of a property, out of the overloads of its name: the reading one is const.
template <class C, class R, class... P>
consteval auto Getter(R (C::*member)(P...) const) {
  return member;
}
template <class C, class... P>
consteval auto Putter(void (C::*member)(P...)) {
  return member;
}

// The index arguments of a property: all that a read takes, all but the value that a write takes.
template <class C, class R, class... P>
consteval std::span<const ParameterType> IndexTypes(R (C::*)(P...) const) {
  return MemberTraits<R (C::*)(P...)>::kTypes;
}
template <class C, class... P>
consteval std::span<const ParameterType> IndexTypes(void (C::*)(P...)) {
  return std::span(MemberTraits<void (C::*)(P...)>::kTypes).first(sizeof...(P) - 1);
}

template <auto Member>
Variant InvokeMember(Object& self, [[maybe_unused]] Argument* arguments) {
  using Traits = MemberTraits<decltype(Member)>;
  auto& object = static_cast<typename Traits::Class&>(self);
  return [&]<class... P, std::size_t... I>(std::type_identity<std::tuple<P...>>,
                                           std::index_sequence<I...>)
             -> Variant {
    [[maybe_unused]] std::tuple<Incoming<P>...> incoming{Incoming<P>(arguments[I])...};
    Variant result;
    if constexpr (std::is_void_v<typename Traits::Result>) {
      (object.*Member)(std::get<I>(incoming).get()...);
    } else {
      result = Variant((object.*Member)(std::get<I>(incoming).get()...));
    }
    (std::get<I>(incoming).WriteBack(), ...);
    return result;
  }(std::type_identity<typename Traits::Parameters>{},
             std::make_index_sequence<std::tuple_size_v<typename Traits::Parameters>>{});
}

// A plain variable of the object.
template <auto Variable>
struct VariableInvokers;
template <class C, class T, T C::*Variable>
struct VariableInvokers<Variable> {
  static Variant Get(Object& self, Argument*) { return static_cast<C&>(self).*Variable; }
  static Variant Let(Object& self, Argument* arguments) {
    static_cast<C&>(self).*Variable = arguments[0].ConvertedTo<T>();
    return {};
  }
};

template <auto Member>
constexpr MemberRow WithSignature(MemberRow row) {
  row.parameter_types = MemberTraits<decltype(Member)>::kTypes;
  return row;
}

inline constexpr int kMemberLines = 512;

template <class T>
consteval auto AllLines() {
  return []<int... N>(std::integer_sequence<int, N...>) {
    return std::array<MemberRow, sizeof...(N)>{
        T::template MemberRowAt<T>(RowLine<T::kFirstMemberLine + N>{})...};
  }
  (std::make_integer_sequence<int, kMemberLines>{});
}

template <class T>
consteval auto CollectRows() {
  constexpr auto kLines = AllLines<T>();
  constexpr std::size_t kCount = [&] {
    std::size_t count = 0;
    for (const MemberRow& row : kLines) count += row.name.empty() ? 0 : 1;
    return count;
  }();
  std::array<MemberRow, kCount> rows;
  std::size_t i = 0;
  for (const MemberRow& row : kLines) {
    if (!row.name.empty()) rows[i++] = row;
  }
  return rows;
}

template <class T>
inline constexpr auto kRows = CollectRows<T>();

// The row of that name in the class T's own list or, where it has none, in that of the next base
// that has; no row when there is none.
template <class T>
consteval MemberRow RowNamed(std::string_view name) {
  if constexpr (requires { T::kFirstMemberLine; }) {
    for (const MemberRow& row : kRows<T>) {
      if (row.name == name) return row;
    }
    return RowNamed<typename T::MemberBase>(name);
  } else {
    return {};
  }
}

template <class T>
consteval bool HasRow(std::string_view name) {
  return !RowNamed<T>(name).name.empty();
}

}  // namespace detail

// The rows of a class in interface order.
template <class T>
constexpr std::span<const MemberRow> RowsOf() {
  return detail::kRows<T>;
}

// What a class table is made from.
struct ClassDescription {
  std::string_view name;
  std::string_view help;
  std::span<const MemberRow> rows;
  bool takes_context = false;         // callers reach ISetXactContext
  Ref<Object> (*create)() = nullptr;  // null: callers can't create it
};

class ISetXactContext;
enum class Creation { Creatable, Internal };

template <class T>
ClassDescription Describe() {
  ClassDescription description{T::kClassName, T::kClassHelp, detail::kRows<T>};
  // Whoever makes an object gives it its context; callers don't make those of internal classes.
  if constexpr (T::kCreation == Creation::Creatable) {
    description.takes_context = std::is_base_of_v<ISetXactContext, T>;
    description.create = [] { return Ref<Object>(Make<T>()); };
  }
  return description;
}

}  // namespace qdclgl

// ---- The row macros ----

#define QD_MEMBERS(Class, Base, creation, help_text)                            \
  QD_BASE_MEMBERS(Base)                                                         \
  static constexpr std::string_view kClassName = #Class;                        \
  static constexpr std::string_view kClassHelp = help_text;                     \
  static constexpr ::qdclgl::Creation kCreation = ::qdclgl::Creation::creation; \
  static const ::qdclgl::ClassTable& Table();                                   \
  std::string_view ClassName() const override { return kClassName; }            \
  const ::qdclgl::ClassTable* Members() const override { return &Table(); }

#define QD_BASE_MEMBERS(Base)                                                   \
 public:                                                                        \
  static constexpr int kFirstMemberLine = __LINE__;                             \
  using MemberBase = Base;                                                      \
  template <class Self>                                                         \
  static constexpr ::qdclgl::MemberRow MemberRowAt(::qdclgl::detail::AnyLine) { \
    return {};                                                                  \
  }

#define QD_DEFINE_MEMBERS(Class)                                          \
  const ::qdclgl::ClassTable& Class::Table() {                            \
    static const ::qdclgl::ClassTable table(::qdclgl::Describe<Class>()); \
    return table;                                                         \
  }

#define QD_METHOD(Result, Name, params, help_text, ...) \
  Result Name params;                                   \
  QD_IMPL_METHOD_ROW(Result, Name, params, help_text, __VA_ARGS__)

#define QD_OVERRIDE(Result, Name, params, help_text, ...) \
  Result Name params override;                            \
  QD_IMPL_METHOD_ROW(Result, Name, params, help_text, __VA_ARGS__)

#define QD_FIELD(access, Type, Name, row_key, help_text, ...)                                   \
  QD_IMPL_IF(QD_IMPL_IS_FIELD_##access, #access " is no access word; a field is Get or GetLet", \
             QD_IMPL_FIELD_##access(Type, Name, row_key, __VA_ARGS__)                           \
                 QD_IMPL_ROW({.name = #Name,                                                    \
                              .help = help_text,                                                \
                              .type = ::qdclgl::TypeWord<Type, Self>(),                         \
                              .key = row_key,                                                   \
                              .options = ::qdclgl::RowOptions(__VA_ARGS__),                     \
                              QD_IMPL_INVOKERS_##access(Name)}))

#define QD_PROPERTY(access, Type, Name, help_text, ...)                                    \
  QD_IMPL_IF_ACCESS(access, QD_IMPL_DECLARE_##access(Type, Name, ())                       \
                                QD_IMPL_ROW({.name = #Name,                                \
                                             .help = help_text,                            \
                                             .type = ::qdclgl::TypeWord<Type, Self>(),     \
                                             .options = ::qdclgl::RowOptions(__VA_ARGS__), \
                                             QD_IMPL_INVOKERS_##access(Name)}))

#define QD_INDEXED(access, Type, Name, params, help_text, ...)                          \
  QD_IMPL_IF_ACCESS(access, QD_IMPL_DECLARE_##access(Type, Name, params) QD_IMPL_ROW(   \
                                {.name = #Name,                                         \
                                 .help = help_text,                                     \
                                 .type = ::qdclgl::TypeWord<Type, Self>(),              \
                                 .parameters = #params,                                 \
                                 .parameter_types = QD_IMPL_INDEX_TYPES_##access(Name), \
                                 .options = ::qdclgl::RowOptions(__VA_ARGS__),          \
                                 QD_IMPL_INVOKERS_##access(Name)}))

#define QD_VARIABLE(Type, Name, initial, help_text)                             \
  const Type& Name() const { return m_##Name; }                                 \
  void Name(Type value) { m_##Name = std::move(value); }                        \
  Type m_##Name = initial;                                                      \
  QD_IMPL_ROW({.name = #Name,                                                   \
               .help = help_text,                                               \
               .type = ::qdclgl::TypeWord<Type, Self>(),                        \
               .get = ::qdclgl::detail::VariableInvokers<&Self::m_##Name>::Get, \
               .let = ::qdclgl::detail::VariableInvokers<&Self::m_##Name>::Let})

#define QD_INHERITED(Name) QD_IMPL_INHERITED(Name, )
#define QD_INHERITED_AS(Name, help_text) QD_IMPL_INHERITED(Name, row.help = help_text;)

// ---- Behind the row macros ----

#define QD_IMPL_THIS_LINE ::qdclgl::detail::RowLine<__LINE__>
// A row further down would not be found, and its member would be missing for late-bound callers.
#define QD_IMPL_WITHIN_REACH                                                  \
  static_assert(__LINE__ - kFirstMemberLine < ::qdclgl::detail::kMemberLines, \
                "this row stands more than 512 lines below the head of its class's rows");

#define QD_IMPL_METHOD_ROW(Result, Name, params, help_text, ...) \
  QD_IMPL_ROW(::qdclgl::detail::WithSignature<&Self::Name>(      \
      {.name = #Name,                                            \
       .help = help_text,                                        \
       .type = ::qdclgl::TypeWord<Result, Self>(),               \
       .parameters = #params,                                    \
       .options = ::qdclgl::RowOptions(__VA_ARGS__),             \
       .method = ::qdclgl::detail::InvokeMember<&Self::Name>}))

#define QD_IMPL_INHERITED(Name, change)                                                     \
  template <class Self>                                                                     \
  static constexpr ::qdclgl::MemberRow MemberRowAt(QD_IMPL_THIS_LINE) {                     \
    static_assert(::qdclgl::detail::HasRow<typename Self::MemberBase>(#Name),               \
                  "the base class has no row " #Name " that could be inherited");           \
    ::qdclgl::MemberRow row = ::qdclgl::detail::RowNamed<typename Self::MemberBase>(#Name); \
    change return row;                                                                      \
  }                                                                                         \
  QD_IMPL_WITHIN_REACH

#define QD_IMPL_ROW(...)                                                \
  template <class Self>                                                 \
  static constexpr ::qdclgl::MemberRow MemberRowAt(QD_IMPL_THIS_LINE) { \
    using namespace ::qdclgl::row_options;                              \
    return __VA_ARGS__;                                                 \
  }                                                                     \
  QD_IMPL_WITHIN_REACH

// The rest of the arguments where `probe` expands to the mark of a known word, and otherwise one
// sentence in place of what undefined macros would leave to the compiler.
#define QD_IMPL_IF(probe, sentence, ...) \
  QD_IMPL_PICK(probe, QD_IMPL_KEEP, QD_IMPL_REFUSE, )(sentence, __VA_ARGS__)
#define QD_IMPL_PICK(...) QD_IMPL_THIRD(__VA_ARGS__)
#define QD_IMPL_THIRD(first, second, third, ...) third
#define QD_IMPL_KEEP(sentence, ...) __VA_ARGS__
#define QD_IMPL_REFUSE(sentence, ...) static_assert(false, sentence);

#define QD_IMPL_IF_ACCESS(access, ...)                                                           \
  QD_IMPL_IF(                                                                                    \
      QD_IMPL_IS_ACCESS_##access,                                                                \
      #access                                                                                    \
      " is no access word; they are Get, Let, Set, GetLet, GetSet, GetLetSet and GetLetVariant", \
      __VA_ARGS__)

#define QD_IMPL_IS_FIELD_Get ~, ~
#define QD_IMPL_IS_FIELD_GetLet ~, ~
#define QD_IMPL_IS_ACCESS_Get ~, ~
#define QD_IMPL_IS_ACCESS_Let ~, ~
#define QD_IMPL_IS_ACCESS_Set ~, ~
#define QD_IMPL_IS_ACCESS_GetLet ~, ~
#define QD_IMPL_IS_ACCESS_GetSet ~, ~
#define QD_IMPL_IS_ACCESS_GetLetSet ~, ~
#define QD_IMPL_IS_ACCESS_GetLetVariant ~, ~

#define QD_IMPL_STRIP(...) __VA_ARGS__
#define QD_IMPL_PUT_PARAMS(Type, ...) (__VA_ARGS__ __VA_OPT__(, ) Type value)

#define QD_IMPL_DECLARE_Get(Type, Name, params) Type Name params const;
#define QD_IMPL_DECLARE_Let(Type, Name, params) \
  void Name QD_IMPL_PUT_PARAMS(Type, QD_IMPL_STRIP params);
#define QD_IMPL_DECLARE_GetLet(Type, Name, params) \
  QD_IMPL_DECLARE_Get(Type, Name, params) QD_IMPL_DECLARE_Let(Type, Name, params)
#define QD_IMPL_DECLARE_Set QD_IMPL_DECLARE_Let
#define QD_IMPL_DECLARE_GetSet QD_IMPL_DECLARE_GetLet
#define QD_IMPL_DECLARE_GetLetSet QD_IMPL_DECLARE_GetLet
#define QD_IMPL_DECLARE_GetLetVariant(Type, Name, params) \
  QD_IMPL_DECLARE_Get(Type, Name, params) QD_IMPL_DECLARE_Let(::qdclgl::Variant, Name, params)

#define QD_IMPL_GETTER(Name) ::qdclgl::detail::InvokeMember<::qdclgl::detail::Getter(&Self::Name)>
#define QD_IMPL_PUTTER(Name) ::qdclgl::detail::InvokeMember<::qdclgl::detail::Putter(&Self::Name)>
#define QD_IMPL_INVOKERS_Get(Name) .get = QD_IMPL_GETTER(Name)
#define QD_IMPL_INVOKERS_Let(Name) .let = QD_IMPL_PUTTER(Name)
#define QD_IMPL_INVOKERS_Set(Name) .set = QD_IMPL_PUTTER(Name)
#define QD_IMPL_INVOKERS_GetLet(Name) .get = QD_IMPL_GETTER(Name), .let = QD_IMPL_PUTTER(Name)
#define QD_IMPL_INVOKERS_GetSet(Name) .get = QD_IMPL_GETTER(Name), .set = QD_IMPL_PUTTER(Name)
#define QD_IMPL_INVOKERS_GetLetSet(Name) \
  .get = QD_IMPL_GETTER(Name), .let = QD_IMPL_PUTTER(Name), .set = QD_IMPL_PUTTER(Name)
#define QD_IMPL_INVOKERS_GetLetVariant(Name) \
  .put_type = ::qdclgl::TypeWord<::qdclgl::Variant>(), QD_IMPL_INVOKERS_GetLet(Name)

#define QD_IMPL_INDEX_TYPES_Get(Name) \
  ::qdclgl::detail::IndexTypes(::qdclgl::detail::Getter(&Self::Name))
#define QD_IMPL_INDEX_TYPES_GetLet QD_IMPL_INDEX_TYPES_Get
#define QD_IMPL_INDEX_TYPES_GetSet QD_IMPL_INDEX_TYPES_Get
#define QD_IMPL_INDEX_TYPES_GetLetSet QD_IMPL_INDEX_TYPES_Get
#define QD_IMPL_INDEX_TYPES_GetLetVariant QD_IMPL_INDEX_TYPES_Get
#define QD_IMPL_INDEX_TYPES_Let(Name) \
  ::qdclgl::detail::IndexTypes(::qdclgl::detail::Putter(&Self::Name))
#define QD_IMPL_INDEX_TYPES_Set QD_IMPL_INDEX_TYPES_Let

#define QD_IMPL_FIELD_Get(Type, Name, row_key, ...)              \
  Type Name() const {                                            \
    using namespace ::qdclgl::row_options;                       \
    static constexpr ::qdclgl::RowKey kKey(row_key);             \
    static constexpr ::qdclgl::RowOptions kOptions{__VA_ARGS__}; \
    return this->template ReadField<Type>(kKey, kOptions);       \
  }
#define QD_IMPL_FIELD_GetLet(Type, Name, row_key, ...)                        \
  QD_IMPL_FIELD_Get(Type, Name, row_key, __VA_ARGS__) void Name(Type value) { \
    using namespace ::qdclgl::row_options;                                    \
    static constexpr ::qdclgl::RowKey kKey(row_key);                          \
    static constexpr ::qdclgl::RowOptions kOptions{__VA_ARGS__};              \
    this->template WriteField<Type>(kKey, std::move(value), kOptions);        \
  }
