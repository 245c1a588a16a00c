#include <array>
#include <bit>
#include <optional>

#include "python/core/crossing.h"
#include "python/core/errors.h"
#include "python/core/foreign.h"
#include "python/core/known.h"
#include "qdclgl/frame/objects/conversions.h"

namespace qdclgl::python {

namespace {

PyRef DecimalOf(const std::string& text) {
  return PyRef::Take(
      PyObject_CallFunctionObjArgs(TheKnown().decimal.get(), ToText(text).get(), nullptr));
}

// Amounts come again and again, the 0 on the other side of each line above all, and a Decimal takes
// longer to make than all else of a read. They are values, so one may stand at many places.
PyRef AmountOf(Currency amount) {
  struct Made {
    std::int64_t units = 0;
    PyRef decimal;
  };
  constexpr std::size_t kKept = 1024;
  static auto& made = *new std::array<Made, kKept>;
  auto& [units, decimal] = made[static_cast<std::uint64_t>(amount.units()) * 0x9E3779B97F4A7C15u >>
                                (64 - std::bit_width(kKept - 1))];
  if (!decimal || units != amount.units()) {
    decimal = DecimalOf(amount.ToText());
    units = amount.units();
  }
  return decimal;
}

PyRef DateOf(DateTime date) {
  const DateTime::Parts parts = date.ToParts();
  return PyRef::Take(PyObject_CallFunction(TheKnown().datetime.get(), "iiiiii", parts.year,
                                           parts.month, parts.day, parts.hour, parts.minute,
                                           parts.second));
}

PyRef BytesOf(const Variant& value) {
  const std::span<const std::uint8_t> bytes = value.BytesView();
  return PyRef::Take(PyBytes_FromStringAndSize(reinterpret_cast<const char*>(bytes.data()),
                                               static_cast<Py_ssize_t>(bytes.size())));
}

// A text that the interpreter has as UTF-8, which it keeps with it; nothing for one with half a
// character.
std::optional<std::string_view> WholeCharacters(PyObject* text) {
  Py_ssize_t length = 0;
  if (const char* bytes = PyUnicode_AsUTF8AndSize(text, &length)) {
    return std::string_view(bytes, static_cast<std::size_t>(length));
  }
  PyErr_Clear();
  return std::nullopt;
}

Variant TextFrom(PyObject* text) {
  const auto whole = WholeCharacters(text);
  return whole ? Variant(*whole) : Variant(FromText(text));
}

// A whole number in 32 bits where it fits, otherwise a Decimal.
Variant WholeFrom(PyObject* number) {
  int overflow = 0;
  const long long value = PyLong_AsLongLongAndOverflow(number, &overflow);
  if (value == -1 && PyErr_Occurred() != nullptr) throw Raised();
  if (overflow != 0) {
    return Variant(Decimal::FromText(FromText(PyRef::Take(PyObject_Str(number)).get())));
  }
  if (value >= INT32_MIN && value <= INT32_MAX) return Variant(static_cast<Long>(value));
  return Variant(Decimal::FromInteger(value));
}

Variant DecimalFrom(PyObject* number) {
  const std::string text = FromText(PyRef::Take(PyObject_Str(number)).get());
  // Others read as "NaN", "sNaN" or "Infinity".
  const char first = text[text.starts_with('-') ? 1 : 0];
  if (first < '0' || first > '9') RaiseValueError("a decimal that is no finite number");
  return Variant(Decimal::FromText(text));
}

int Part(PyObject* date, const char* name) {
  const long part = PyLong_AsLong(Attribute(date, name).get());
  if (part == -1 && PyErr_Occurred() != nullptr) throw Raised();
  return static_cast<int>(part);
}

Variant DateFrom(PyObject* date) {
  DateTime::Parts parts{Part(date, "year"), Part(date, "month"), Part(date, "day")};
  if (!IsOf(date, TheKnown().datetime)) return Variant(DateTime::FromParts(parts));
  if (Attribute(date, "tzinfo").get() != Py_None) {
    RaiseValueError("a date with a time zone; the books' dates have none");
  }
  parts.hour = Part(date, "hour");
  parts.minute = Part(date, "minute");
  parts.second = Part(date, "second");
  constexpr double kMicrosecondsOfADay = 86'400e6;
  const double fraction = Part(date, "microsecond") / kMicrosecondsOfADay;
  const DateTime whole = DateTime::FromParts(parts);
  // Before day 0 the time of day still counts away from 0.
  return Variant(DateTime(whole.days + (whole.days < 0 ? -fraction : fraction)));
}

Variant BytesFrom(PyObject* object) {
  const PyRef bytes = PyRef::Take(PyBytes_FromObject(object));
  char* data = nullptr;
  Py_ssize_t size = 0;
  Checked(PyBytes_AsStringAndSize(bytes.get(), &data, &size));
  return Variant(
      Bytes{{reinterpret_cast<const std::uint8_t*>(data), static_cast<std::size_t>(size)}});
}

// Containers of Python's own would come as copies, and what the called side writes would be lost.
void RefuseContainers(PyObject* value) {
  if (PyDict_Check(value)) {
    RaiseTypeError("a dict is no value of the library; make a qdclgl.Dictionary of it");
  }
  if (PyList_Check(value) || PyTuple_Check(value) || PyAnySet_Check(value)) {
    RaiseTypeError("a list is no value of the library; make a qdclgl.Vector of it");
  }
  if (PyComplex_Check(value)) RaiseTypeError("a complex number is no value of the library");
}

}  // namespace

PyRef ToText(std::string_view text) {
  return PyRef::Take(
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogatepass"));
}

std::string FromText(PyObject* text) {
  if (const auto whole = WholeCharacters(text)) return std::string(*whole);
  const PyRef bytes = PyRef::Take(PyUnicode_AsEncodedString(text, "utf-8", "surrogatepass"));
  char* data = nullptr;
  Py_ssize_t size = 0;
  Checked(PyBytes_AsStringAndSize(bytes.get(), &data, &size));
  return {data, static_cast<std::size_t>(size)};
}

PyRef ToPython(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kEmpty: return PyRef::Share(Py_None);
    case VariantType::kNull: return TheKnown().null;
    case VariantType::kMissing: return PyRef::Share(Py_Ellipsis);
    case VariantType::kBoolean: return PyRef::Take(PyBool_FromLong(CBool(value) ? 1 : 0));
    case VariantType::kByte:
    case VariantType::kInteger:
    case VariantType::kLong: return PyRef::Take(PyLong_FromLong(CLng(value)));
    case VariantType::kSingle:
    case VariantType::kDouble: return PyRef::Take(PyFloat_FromDouble(CDbl(value)));
    case VariantType::kCurrency: return AmountOf(value.Held<Currency>());
    case VariantType::kDecimal: return DecimalOf(value.Held<Decimal>().ToText());
    case VariantType::kDate: return DateOf(value.Held<DateTime>());
    case VariantType::kString: return ToText(value.TextView());
    case VariantType::kByteArray: return BytesOf(value);
    case VariantType::kError:
      return PyRef::Take(
          PyObject_CallFunction(TheKnown().error_code.get(), "i", value.ErrorCode()));
    case VariantType::kObject: break;
  }
  return value.IsNothing() ? PyRef::Share(Py_None) : Wrap(value.ObjectPointer());
}

Variant FromPython(PyObject* value, bool wants_object) {
  // What comes most is of these very types.
  const PyTypeObject* type = Py_TYPE(value);
  if (type == &PyUnicode_Type) return TextFrom(value);
  if (type == &PyLong_Type) return WholeFrom(value);
  if (value == Py_None) return wants_object ? Variant(Nothing) : Variant();
  if (value == Py_Ellipsis) return Missing;
  if (value == TheKnown().null.get()) return Null;
  if (PyUnicode_Check(value)) return TextFrom(value);
  if (PyBool_Check(value)) return Variant(value == Py_True);
  if (Object* object = Unwrap(value)) return Variant(object);
  if (PyLong_Check(value)) {
    if (!IsOf(value, TheKnown().error_code)) return WholeFrom(value);
    return Variant(ErrorValue{static_cast<std::int32_t>(PyLong_AsLong(value))});
  }
  if (PyFloat_Check(value)) return Variant(PyFloat_AsDouble(value));
  if (IsOf(value, TheKnown().decimal)) return DecimalFrom(value);
  if (IsOf(value, TheKnown().date)) return DateFrom(value);
  if (PyBytes_Check(value) || PyByteArray_Check(value) || PyMemoryView_Check(value)) {
    return BytesFrom(value);
  }
  RefuseContainers(value);
  if (IsOf(value, TheKnown().ref)) {
    RaiseTypeError("a qdclgl.Ref stands for an argument only, not for a value");
  }
  if (PyIndex_Check(value) != 0) return WholeFrom(PyRef::Take(PyNumber_Index(value)).get());
  return Variant(Make<ForeignObject>(PyRef::Share(value)));
}

}  // namespace qdclgl::python
