#include "qdclgl/automation/values.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/objects/enumeration.h"
#include "qdclgl/frame/objects/nesting.h"

namespace qdclgl::automation {

namespace {

struct TypeWord {
  std::string_view word;
  VARTYPE type;
};
constexpr TypeWord kTypeWords[] = {
    {"none", VT_VOID},       {"Boolean", VT_BOOL},    {"Integer", VT_I2},
    {"Long", VT_I4},         {"Single", VT_R4},       {"Double", VT_R8},
    {"Currency", VT_CY},     {"Date", VT_DATE},       {"String", VT_BSTR},
    {"Variant", VT_VARIANT}, {"Object", VT_DISPATCH}, {Enumerator::kClassName, VT_UNKNOWN},
};

[[noreturn]] void Mismatch() { RaiseError(error_number::kTypeMismatch); }
[[noreturn]] void Refuse(const char* why) {
  throw Error(error_number::kTypeMismatch, "QDCLGL", why);
}

// The place at the end of references to places. Raises 13 for those that lead nowhere or in a
// circle.
const VARIANT& Dereferenced(const VARIANT& reference) {
  const VARIANT* place = &reference;
  for (int steps = 0; place->vt == (VT_BYREF | VT_VARIANT); ++steps) {
    if (place->pvarVal == nullptr || steps == kDeepestNesting) Mismatch();
    place = place->pvarVal;
  }
  if ((place->vt & VT_BYREF) != 0 && place->byref == nullptr) Mismatch();
  return *place;
}

Variant FromWhole(std::int64_t number) {
  if (number >= INT16_MIN && number <= INT16_MAX) return static_cast<Integer>(number);
  if (number >= INT32_MIN && number <= INT32_MAX) return static_cast<Long>(number);
  return Decimal::FromInteger(number);
}

Variant FromUnsigned(std::uint64_t number) {
  if (number <= INT64_MAX) return FromWhole(static_cast<std::int64_t>(number));
  return Decimal(0, number, 0, false);
}

Variant FromText(BSTR text) {
  const UINT bytes = SysStringByteLen(text);
  if (bytes % sizeof(wchar_t) != 0) Refuse("A text of an odd number of bytes holds half a unit.");
  const std::wstring_view units(text != nullptr ? text : L"", bytes / sizeof(wchar_t));
  constexpr std::size_t kShort = 64;
  char narrow[kShort];
  if (units.size() <= kShort &&
      std::all_of(units.begin(), units.end(), [](wchar_t unit) { return unit < 0x80; })) {
    std::transform(units.begin(), units.end(), narrow,
                   [](wchar_t unit) { return static_cast<char>(unit); });
    return std::string_view(narrow, units.size());
  }
  return FromWide(units);
}

Decimal FromDecimal(const DECIMAL& value) {
  return Decimal(value.Hi32, value.Lo64, value.scale, (value.sign & DECIMAL_NEG) != 0);
}

// The elements of an array for as long as they are looked at; it stays where it is meanwhile.
class OpenArray {
 public:
  explicit OpenArray(SAFEARRAY* array) : array_(array) {
    if (FAILED(SafeArrayAccessData(array, &data_))) Mismatch();
  }
  ~OpenArray() { SafeArrayUnaccessData(array_); }
  OpenArray(const OpenArray&) = delete;
  OpenArray& operator=(const OpenArray&) = delete;

  std::uint8_t* data() const { return static_cast<std::uint8_t*>(data_); }

 private:
  SAFEARRAY* array_;
  void* data_ = nullptr;
};

// Null for a value that is no array, and for an array that was never given its bounds.
SAFEARRAY* ArrayIn(const VARIANT& value) {
  if ((value.vt & VT_ARRAY) == 0) return nullptr;
  return (value.vt & VT_BYREF) != 0 ? *value.pparray : value.parray;
}

Variant FromArray(SAFEARRAY* array) {
  if (array == nullptr) Refuse("The array was never given its bounds.");
  if (SafeArrayGetDim(array) != 1) Refuse("Of arrays, those of one dimension are taken.");
  VARTYPE element = VT_EMPTY;
  if (FAILED(SafeArrayGetVartype(array, &element)) || element != VT_UI1) {
    Refuse("Of arrays, those of bytes are taken; a list of values is a Vector.");
  }
  const SAFEARRAYBOUND bound = array->rgsabound[0];
  const OpenArray open(array);
  return Variant(Bytes{{open.data(), bound.cElements}, bound.lLbound});
}

Variant FromCode(SCODE code) {
  if (code == DISP_E_PARAMNOTFOUND) return Missing;
  return ErrorValue{code};
}

// Reads a value of a plain type at an address.
Variant FromPlain(VARTYPE type, const void* address, Taking taking) {
  const auto read = [address]<class T>(std::type_identity<T>) {
    return *static_cast<const T*>(address);
  };
  switch (type) {
    case VT_BOOL: return read(std::type_identity<VARIANT_BOOL>()) != VARIANT_FALSE;
    case VT_I1: return static_cast<Integer>(read(std::type_identity<signed char>()));
    case VT_UI1: return read(std::type_identity<Byte>());
    case VT_I2: return read(std::type_identity<Integer>());
    case VT_UI2: return FromUnsigned(read(std::type_identity<std::uint16_t>()));
    case VT_I4:
    case VT_INT: return read(std::type_identity<Long>());
    case VT_UI4:
    case VT_UINT: return FromUnsigned(read(std::type_identity<std::uint32_t>()));
    case VT_I8: return FromWhole(read(std::type_identity<std::int64_t>()));
    case VT_UI8: return FromUnsigned(read(std::type_identity<std::uint64_t>()));
    case VT_R4: return read(std::type_identity<Single>());
    case VT_R8: return read(std::type_identity<Double>());
    case VT_CY: return Currency::FromUnits(read(std::type_identity<CY>()).int64);
    case VT_DATE: return DateTime(read(std::type_identity<double>()));
    case VT_DECIMAL: return FromDecimal(*static_cast<const DECIMAL*>(address));
    case VT_BSTR: return FromText(read(std::type_identity<BSTR>()));
    case VT_ERROR: return FromCode(read(std::type_identity<SCODE>()));
    case VT_UNKNOWN:
    case VT_DISPATCH: return Variant(TakeIn(read(std::type_identity<IUnknown*>()), taking));
    default: Mismatch();
  }
}

void PutBytes(const Variant& value, VARIANT* destination) {
  const std::span<const std::uint8_t> bytes = value.BytesView();
  SAFEARRAY* array =
      SafeArrayCreateVector(VT_UI1, value.BytesLowerBound(), static_cast<ULONG>(bytes.size()));
  if (array == nullptr) throw std::bad_alloc();
  {
    const OpenArray open(array);
    std::copy(bytes.begin(), bytes.end(), open.data());
  }
  destination->vt = VT_ARRAY | VT_UI1;
  destination->parray = array;
}

void PutDecimal(const Decimal& value, VARIANT* destination) {
  destination->decVal.scale = static_cast<BYTE>(value.scale());
  destination->decVal.sign = value.negative() ? DECIMAL_NEG : 0;
  destination->decVal.Hi32 = value.high();
  destination->decVal.Lo64 = value.low();
  destination->vt = VT_DECIMAL;  // last: it shares its bytes with the decimal's reserved word
}

// Writes a whole number of a type that the library doesn't have. Errors 13 and 6.
template <class Whole>
void PutWhole(const Variant& value, Whole* variable) {
  const auto number = CDec(value).ToScaledInteger(0);
  if (!number || !std::in_range<Whole>(*number)) RaiseError(error_number::kOverflow);
  *variable = static_cast<Whole>(*number);
}

}  // namespace

VARTYPE TypeOfWord(std::string_view word) {
  for (const TypeWord& entry : kTypeWords) {
    if (entry.word == word) return entry.type;
  }
  return VT_DISPATCH;
}

Variant FromVariant(const VARIANT& source, Taking taking) {
  const VARIANT& value = Dereferenced(source);
  switch (value.vt) {
    case VT_EMPTY: return {};
    case VT_NULL: return Null;
    case VT_DECIMAL: return FromDecimal(value.decVal);
    default: break;
  }
  if ((value.vt & VT_ARRAY) != 0) return FromArray(ArrayIn(value));
  if ((value.vt & VT_BYREF) != 0) {
    return FromPlain(static_cast<VARTYPE>(value.vt & ~VT_BYREF), value.byref, taking);
  }
  return FromPlain(value.vt, &value.bVal, taking);
}

Variant ListFromVariant(const VARIANT& source, Taking taking) {
  const VARIANT& value = Dereferenced(source);
  SAFEARRAY* array = ArrayIn(value);
  VARTYPE element = VT_UI1;
  if (array == nullptr || SafeArrayGetDim(array) != 1 ||
      FAILED(SafeArrayGetVartype(array, &element)) || element == VT_UI1) {
    return FromVariant(source, taking);
  }
  auto list = Make<Vector>();
  list->LowerBound(array->rgsabound[0].lLbound);
  const OpenArray open(array);
  for (ULONG i = 0; i < array->rgsabound[0].cElements; ++i) {
    const void* place = open.data() + std::size_t{i} * array->cbElements;
    list->Append(element == VT_VARIANT ? FromVariant(*static_cast<const VARIANT*>(place), taking)
                                       : FromPlain(element, place, taking));
  }
  return Variant(list);
}

void ToArray(const Vector& list, int dimensions, VARIANT* destination) {
  const auto length = [](std::size_t size) { return static_cast<ULONG>(size); };
  std::vector<const Vector*> columns;
  if (dimensions == 2) {
    for (std::size_t i = 0; i < list.size(); ++i) {
      columns.push_back(static_cast<const Vector*>(list.at(i).ObjectPointer()));
    }
  }
  SAFEARRAYBOUND bounds[] = {{length(list.size()), list.LowerBound()},
                             {columns.empty() ? 0 : length(columns[0]->size()), 0}};
  OwnedVariant made;
  made->parray = SafeArrayCreate(VT_VARIANT, static_cast<UINT>(dimensions), bounds);
  if (made->parray == nullptr) throw std::bad_alloc();
  made->vt = VT_ARRAY | VT_VARIANT;
  {
    const OpenArray open(made->parray);
    auto* place = reinterpret_cast<VARIANT*>(open.data());
    if (dimensions == 1) {
      for (std::size_t i = 0; i < list.size(); ++i) ToVariant(list.at(i), place++);
    } else {
      // The first index runs fastest.
      for (std::size_t j = 0; j < bounds[1].cElements; ++j) {
        for (const Vector* column : columns) ToVariant(column->at(j), place++);
      }
    }
  }
  std::swap(*destination, *made.get());
}

void ToVariant(const Variant& value, VARIANT* destination) {
  const auto set = [destination](VARTYPE type) { destination->vt = type; };
  switch (value.Type()) {
    case VariantType::kEmpty: return set(VT_EMPTY);
    case VariantType::kNull: return set(VT_NULL);
    case VariantType::kMissing: destination->scode = DISP_E_PARAMNOTFOUND; return set(VT_ERROR);
    case VariantType::kBoolean:
      destination->boolVal = value.Held<bool>() ? VARIANT_TRUE : VARIANT_FALSE;
      return set(VT_BOOL);
    case VariantType::kByte: destination->bVal = value.Held<Byte>(); return set(VT_UI1);
    case VariantType::kInteger: destination->iVal = value.Held<Integer>(); return set(VT_I2);
    case VariantType::kLong: destination->lVal = value.Held<Long>(); return set(VT_I4);
    case VariantType::kSingle: destination->fltVal = value.Held<Single>(); return set(VT_R4);
    case VariantType::kDouble: destination->dblVal = value.Held<Double>(); return set(VT_R8);
    case VariantType::kCurrency:
      destination->cyVal.int64 = value.Held<Currency>().units();
      return set(VT_CY);
    case VariantType::kDate: destination->date = value.Held<DateTime>().days; return set(VT_DATE);
    case VariantType::kDecimal: return PutDecimal(value.Held<Decimal>(), destination);
    case VariantType::kString:
      destination->bstrVal = NewText(value.TextView());
      return set(VT_BSTR);
    case VariantType::kObject: return HandOut(value.ObjectPointer(), destination);
    case VariantType::kByteArray: return PutBytes(value, destination);
    case VariantType::kError: destination->scode = value.ErrorCode(); return set(VT_ERROR);
  }
}

Variant ConvertedTo(const Variant& value, std::string_view word) {
  switch (TypeOfWord(word)) {
    case VT_BOOL: return CBool(value);
    case VT_I2: return CInt(value);
    case VT_I4: return CLng(value);
    case VT_R4: return CSng(value);
    case VT_R8: return CDbl(value);
    case VT_CY: return CCur(value);
    case VT_DATE: return CDate(value);
    case VT_BSTR: return CStr(value);
    case VT_VARIANT: return value;
    default: break;
  }
  if (!value.IsObject()) Mismatch();
  const bool fits =
      word == "Object" || value.IsNothing() || value.ObjectPointer()->ClassName() == word;
  if (!fits) Mismatch();
  return value;
}

void WriteThrough(const VARIANT& reference, const Variant& value) {
  VARIANT* place = const_cast<VARIANT*>(&Dereferenced(reference));
  if ((place->vt & VT_BYREF) == 0) {
    if (place == &reference) return;  // a value, which no one reads again
    OwnedVariant made;
    ToVariant(value, made.get());
    std::swap(*place, *made.get());
    return;
  }

  // All plain contents begin at one address. What the variable held goes into the owner in
  // exchange, and is released with it.
  const auto put = [](const Variant& converted, auto* variable) {
    OwnedVariant made;
    ToVariant(converted, made.get());
    std::swap(*reinterpret_cast<decltype(variable)>(&made->bVal), *variable);
  };
  switch (place->vt & ~VT_BYREF) {
    case VT_BOOL: return put(CBool(value), place->pboolVal);
    case VT_UI1: return put(CByte(value), place->pbVal);
    case VT_I2: return put(CInt(value), place->piVal);
    case VT_I4:
    case VT_INT: return put(CLng(value), place->plVal);
    case VT_I1: return PutWhole(value, static_cast<signed char*>(place->byref));
    case VT_UI2: return PutWhole(value, place->puiVal);
    case VT_UI4:
    case VT_UINT: return PutWhole(value, place->pulVal);
    case VT_I8: return PutWhole(value, place->pllVal);
    case VT_UI8: return PutWhole(value, place->pullVal);
    case VT_R4: return put(CSng(value), place->pfltVal);
    case VT_R8: return put(CDbl(value), place->pdblVal);
    case VT_CY: return put(CCur(value), place->pcyVal);
    case VT_DATE: return put(CDate(value), place->pdate);
    case VT_BSTR: return put(CStr(value), place->pbstrVal);
    case VT_DECIMAL: {
      OwnedVariant made;
      ToVariant(CDec(value), made.get());
      *place->pdecVal = made->decVal;
      return;
    }
    case VT_DISPATCH:
    case VT_UNKNOWN:
      if (!value.IsObject()) Mismatch();
      return put(value, place->ppunkVal);
    case VT_ARRAY | VT_UI1:
      if (!value.Is(VariantType::kByteArray)) Mismatch();
      return put(value, place->pparray);
    default: Mismatch();
  }
}

BSTR NewText(std::string_view text) {
  const bool ascii = std::all_of(text.begin(), text.end(),
                                 [](char c) { return static_cast<signed char>(c) >= 0; });
  const std::u16string units = ascii ? std::u16string() : ToUtf16(text);
  const std::size_t length = ascii ? text.size() : units.size();
  BSTR made = SysAllocStringLen(nullptr, static_cast<UINT>(length));
  if (made == nullptr) throw std::bad_alloc();
  if (ascii) {
    std::copy(text.begin(), text.end(), made);
  } else {
    std::copy(units.begin(), units.end(), made);
  }
  return made;
}

}  // namespace qdclgl::automation
