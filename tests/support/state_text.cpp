#include "tests/support/state_text.h"

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"

namespace qdclgl::testing {

namespace {

std::string Text(const Dictionary& dictionary) {
  std::string text = "{";
  for (std::uint32_t i = 0; i < dictionary.size(); ++i) {
    if (i > 0) text += ", ";
    text += dictionary.key_at(i) + ": " + StateText(dictionary.value_at(i));
  }
  return text + "}";
}

std::string Text(const Vector& vector) {
  std::string text = "[";
  if (vector.LowerBound() != 1) text += std::to_string(vector.LowerBound()) + ": ";
  for (std::size_t i = 0; i < vector.size(); ++i) {
    if (i > 0) text += ", ";
    text += StateText(vector.at(i));
  }
  return text + "]";
}

std::string Text(Recordset& recordset) {
  if (recordset.State() == 0) return "recordset(closed)";
  std::string text = "recordset{";
  for (Long i = 0; i < recordset.FieldCount(); ++i) {
    if (i > 0) text += ", ";
    text += recordset.FieldName(i);
  }
  const Ref<Recordset> rows = recordset.Clone();
  for (; !rows->Eof(); rows->MoveNext()) {
    text += " |";
    for (Long i = 0; i < rows->FieldCount(); ++i) {
      text += (i > 0 ? ", " : " ") + StateText(rows->FieldValue(i));
    }
  }
  return text + "}";
}

std::string Text(Object* object) {
  if (auto* dictionary = dynamic_cast<Dictionary*>(object)) return Text(*dictionary);
  if (auto* vector = dynamic_cast<Vector*>(object)) return Text(*vector);
  if (auto* recordset = dynamic_cast<Recordset*>(object)) return Text(*recordset);
  return "<" + std::string(object->ClassName()) + ">";
}

// A date that is none is told by its days.
std::string Text(DateTime date) {
  try {
    return date.ToText();
  } catch (const Error&) {
    return RealText(date.days, 17);
  }
}

std::string Hex(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

}  // namespace

std::string StateText(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
    case VariantType::kMissing: return std::string(TypeName(value.Type()));
    case VariantType::kBoolean:
    case VariantType::kLong: return CStr(value);
    case VariantType::kByte: return CStr(value) + "b";
    case VariantType::kInteger: return CStr(value) + "%";
    case VariantType::kSingle: return CStr(value) + "!";
    case VariantType::kDouble: return CStr(value) + "#";
    case VariantType::kCurrency: return CStr(value) + "@";
    case VariantType::kDecimal: return CStr(value) + "d";
    case VariantType::kDate: return "#" + Text(value.Held<DateTime>()) + "#";
    case VariantType::kString: return "\"" + CStr(value) + "\"";
    case VariantType::kByteArray: {
      const Long bound = value.BytesLowerBound();
      return "bytes(" + (bound != 0 ? std::to_string(bound) + ": " : "") + Hex(value.BytesView()) +
             ")";
    }
    case VariantType::kError: return "Error " + std::to_string(value.ErrorCode());
    case VariantType::kObject: return value.IsNothing() ? "Nothing" : Text(value.ObjectPointer());
  }
  return "?";
}

std::string StateText(const Argument& argument) {
  std::string text;
  if (!argument.name().empty()) text = std::string(argument.name()) + ":=";
  if (argument.IsByRef()) text += argument.reference().IsVariant() ? "ref Variant " : "ref ";
  return text + StateText(argument.Value());
}

std::string StateText(std::span<const Argument> arguments) {
  std::string text;
  for (const Argument& argument : arguments) {
    if (!text.empty()) text += ", ";
    text += StateText(argument);
  }
  return text;
}

}  // namespace qdclgl::testing
