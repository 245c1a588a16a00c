#include "python/core/member_text.h"

#include "python/core/known.h"
#include "python/core/values.h"
#include "qdclgl/frame/objects/conversions.h"

namespace qdclgl::python {

namespace {

// Between a signature and the text behind it.
constexpr const char* kEndOfSignature = "\n--\n\n";

// The constructor of a class: its signature has to be told, as it is none of the rows'.
constexpr const char* kNoArguments = "()";

std::string ParametersText(const ClassMember& member, std::string text) {
  for (const MemberParameter& parameter : member.parameters) {
    if (!text.empty()) text += ", ";
    text += PythonName(parameter.name);
    if (parameter.optional) text += "=" + DefaultText(parameter);
  }
  if (IsPutByCall(member)) {
    if (!text.empty()) text += ", ";
    text += kValueParameter;
    if (member.row.get != nullptr) text += "=...";
  }
  return "(" + text + ")";
}

// "Key: object, lngDelSign: int" and what comes back.
std::string TypesText(const ClassMember& member) {
  std::string text;
  for (const MemberParameter& parameter : member.parameters) {
    text +=
        (text.empty() ? "" : ", ") + PythonName(parameter.name) + ": " + PythonWord(parameter.type);
    if (parameter.by_ref) text += " (by reference)";
  }
  return "(" + text + ") -> " + PythonWord(member.row.type);
}

bool IsPut(const MemberRow& row) { return row.let != nullptr || row.set != nullptr; }

}  // namespace

std::string PythonName(std::string_view name) {
  const PyRef is_keyword = PyRef::Take(
      PyObject_CallFunctionObjArgs(TheKnown().iskeyword.get(), ToText(name).get(), nullptr));
  return std::string(name) + (is_keyword.get() == Py_True ? "_" : "");
}

std::string_view RowName(std::string_view python_name) {
  return python_name.ends_with('_') ? python_name.substr(0, python_name.size() - 1) : python_name;
}

bool IsMethod(const ClassMember& member) {
  return member.row.method != nullptr || !member.parameters.empty();
}

bool IsPutByCall(const ClassMember& member) {
  return !member.parameters.empty() && IsPut(member.row);
}

std::string DefaultText(const MemberParameter& parameter) {
  const Variant& value = parameter.default_value;
  switch (value.Type()) {
    case VariantType::kBoolean:
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kSingle:
    case VariantType::kDouble: return CStr(value);
    case VariantType::kString: return "'" + CStr(value) + "'";
    default: return "...";
  }
}

std::string SignatureOf(const ClassMember& member) {
  return PythonName(member.row.name) + ParametersText(member, "");
}

std::string MethodText(const ClassMember& member) {
  return PythonName(member.row.name) + ParametersText(member, "$self") + kEndOfSignature +
         TypesText(member) + "\n\n" + std::string(member.row.help);
}

std::string PropertyText(const ClassMember& member) {
  const bool reads = member.row.get != nullptr;
  std::string text = PythonWord(reads ? member.row.type : member.row.PutType());
  if (!reads) text += ", write only";
  if (!IsPut(member.row)) text += ", read only";
  return text + ": " + std::string(member.row.help);
}

std::string ClassText(const ClassTable& table) {
  return std::string(table.name()) + kNoArguments + kEndOfSignature + std::string(table.help());
}

}  // namespace qdclgl::python
