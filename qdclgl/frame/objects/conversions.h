// Conversions between automation values, their comparison and their text forms.
//
// Conversions raise 13 (type mismatch) for a value that has no form of the wanted type: text that
// is no number, Null, Missing, Nothing, a byte array. They raise 6 (overflow) for a number outside
// the wanted range. Empty converts to 0, False, "" or day 0. An object stands for the value of its
// default member. True is -1, as a Byte 255. Conversions to whole numbers and to Currency round
// halves to even.
#pragma once

#include <compare>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>

#include "qdclgl/frame/objects/variant.h"

namespace qdclgl {

Boolean CBool(const Variant& value);
Byte CByte(const Variant& value);
Integer CInt(const Variant& value);
Long CLng(const Variant& value);
Single CSng(const Variant& value);
Double CDbl(const Variant& value);
Currency CCur(const Variant& value);
DateTime CDate(const Variant& value);
Decimal CDec(const Variant& value);

// Numbers with at most 15 significant digits (Single: 7), Booleans as "True" and "False", dates as
// DateTime::ToText has them. A byte array reads as the UTF-16 text that its bytes are.
String CStr(const Variant& value);

// The text of a value that is put behind another text: as CStr, and "" for Null.
String ConcatenatedText(const Variant& value);

// True when ConcatenatedText would give "", without making the text.
bool HasEmptyText(const Variant& value);

// The number at the beginning of `text`, blanks skipped; 0 when there is none. Error 6 for a number
// beyond the range of Double.
Double Val(std::string_view text);

// The one rule of comparison:
//  - Null makes any comparison unordered, so that it is neither equal nor less nor greater.
//  - Two numbers (Booleans and dates included) compare by value: exactly, or as Doubles as soon as
//    a Single, a Double or a Date takes part.
//  - Two texts compare byte by byte, case respected.
//  - A number is less than any text.
//  - Empty is 0 beside a number and "" beside a text; two Empty are equal.
//  - An object stands for its default member. Missing, Nothing and byte arrays raise 13.
std::partial_ordering Compare(const Variant& left, const Variant& right);
bool Equals(const Variant& left, const Variant& right);

namespace detail {

template <class T>
struct IsRef : std::false_type {};
template <class T>
struct IsRef<Ref<T>> : std::true_type {
  using Class = T;
};

// The object in `value`, null for Nothing. Error 13 for a plain value.
inline Object* ObjectIn(const Variant& value) {
  if (!value.IsObject()) RaiseError(error_number::kTypeMismatch);
  return value.ObjectPointer();
}

// A container is told by its mark, a class without heirs by its type alone; both cost a fraction of
// a cast.
template <class Class>
bool IsOfClass(Object& object) {
  if constexpr (std::is_same_v<Class, Object>) {
    return true;
  } else if constexpr (requires { Class::kContainer; }) {
    return object.container() == Class::kContainer;
  } else if constexpr (std::is_final_v<Class>) {
    return typeid(object) == typeid(Class);
  } else {
    return dynamic_cast<Class*>(&object) != nullptr;
  }
}

}  // namespace detail

// `value` as a variable of type T takes it. A Ref takes an object of its class, or Nothing; error
// 13 for anything else.
template <class T>
T ConvertTo(const Variant& value) {
  if constexpr (detail::IsRef<T>::value) {
    using Class = typename detail::IsRef<T>::Class;
    Object* object = detail::ObjectIn(value);
    if (object != nullptr && !detail::IsOfClass<Class>(*object)) {
      RaiseError(error_number::kTypeMismatch);
    }
    return T(static_cast<Class*>(object));
  } else if constexpr (std::is_same_v<T, Variant>) {
    return value;
  } else {
    if (value.Holds<T>()) return value.Held<T>();
    if constexpr (std::is_same_v<T, Boolean>) return CBool(value);
    else if constexpr (std::is_same_v<T, Byte>) return CByte(value);
    else if constexpr (std::is_same_v<T, Integer>) return CInt(value);
    else if constexpr (std::is_same_v<T, Long>) return CLng(value);
    else if constexpr (std::is_same_v<T, Single>) return CSng(value);
    else if constexpr (std::is_same_v<T, Double>) return CDbl(value);
    else if constexpr (std::is_same_v<T, Currency>) return CCur(value);
    else if constexpr (std::is_same_v<T, DateTime>) return CDate(value);
    else if constexpr (std::is_same_v<T, Decimal>) return CDec(value);
    else if constexpr (std::is_same_v<T, String>) return CStr(value);
    else static_assert(!sizeof(T), "no automation type");
  }
}

template <class T>
auto Variant::As() const {
  if constexpr (std::is_base_of_v<Object, T>) {
    return ConvertTo<Ref<T>>(*this);
  } else {
    return ConvertTo<T>(*this);
  }
}

}  // namespace qdclgl
