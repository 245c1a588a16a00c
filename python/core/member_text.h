// What Python shows of a member: its name there, its signature and its help text.
#pragma once

#include <string>

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl::python {

// A name as Python has it: one that is a word of the language has an underscore behind it.
std::string PythonName(std::string_view name);
// The name in the row that such a name stands for.
std::string_view RowName(std::string_view python_name);

// Whether a member is a method in Python: a method, or a value with arguments.
bool IsMethod(const ClassMember& member);
// Whether a value with arguments can be put by one more argument.
bool IsPutByCall(const ClassMember& member);
inline constexpr const char* kValueParameter = "value";

// A default as Python writes it, "..." for one that can't be told.
std::string DefaultText(const MemberParameter& parameter);

// "Remove(Key, lngDelSign=0)"
std::string SignatureOf(const ClassMember& member);

// With the signature in front, in the form in which the interpreter finds it.
std::string MethodText(const ClassMember& member);
std::string PropertyText(const ClassMember& member);
std::string ClassText(const ClassTable& table);

}  // namespace qdclgl::python
