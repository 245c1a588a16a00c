// The tagged value of automation, in 16 bytes.
//
// Texts of up to 14 bytes, numbers, dates and decimals lie inside the value; longer texts and byte
// arrays are immutable and shared; objects are counted references.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

#include "frame/object.h"
#include "frame/values.h"

namespace qdclgl {

enum class VariantType : std::uint8_t {
  kEmpty,
  kNull,
  kMissing,  // an argument that was left out
  kBoolean,
  kByte,
  kInteger,
  kLong,
  kSingle,
  kDouble,
  kCurrency,
  kDate,
  kDecimal,
  kString,
  kObject,  // Nothing included
  kByteArray,
};

// "Long", "String", ... as error texts and logs name a type.
std::string_view TypeName(VariantType type);

struct NullValue {};
struct MissingValue {};
struct NothingValue {
  template <class T>
  operator Ref<T>() const {
    return {};
  }
};
inline constexpr NullValue Null;
inline constexpr MissingValue Missing;
inline constexpr NothingValue Nothing;

// A byte array's content, to tell it from text.
struct Bytes {
  std::span<const std::uint8_t> data;
};

class Variant {
 public:
  Variant() : Variant(Tag::kEmpty) {}
  Variant(NullValue) : Variant(Tag::kNull) {}
  Variant(MissingValue) : Variant(Tag::kMissing) {}
  Variant(NothingValue) : Variant(Tag::kNothing) {}
  Variant(bool value) : Variant(Tag::kBoolean) { Store(value); }
  Variant(Byte value) : Variant(Tag::kByte) { Store(value); }
  Variant(Integer value) : Variant(Tag::kInteger) { Store(value); }
  Variant(Long value) : Variant(Tag::kLong) { Store(value); }
  Variant(Single value) : Variant(Tag::kSingle) { Store(value); }
  Variant(Double value) : Variant(Tag::kDouble) { Store(value); }
  Variant(Currency value) : Variant(Tag::kCurrency) { Store(value.units()); }
  Variant(Date value) : Variant(Tag::kDate) { Store(value.days); }
  Variant(const Decimal& value);
  Variant(std::string_view text);
  Variant(const std::string& text) : Variant(std::string_view(text)) {}
  Variant(const char* text) : Variant(std::string_view(text)) {}
  Variant(Bytes bytes);
  Variant(Object* object) : Variant(object != nullptr ? Tag::kObject : Tag::kNothing) {
    Store(object);
    if (object != nullptr) object->AddRef();
  }
  template <class T>
  Variant(const Ref<T>& object) : Variant(static_cast<Object*>(object.get())) {}
  // No automation type stands behind these; a conversion must be chosen.
  Variant(std::int64_t) = delete;
  Variant(std::uint32_t) = delete;
  Variant(std::uint64_t) = delete;
  Variant(std::nullptr_t) = delete;

  Variant(const Variant& other) {
    std::memcpy(raw_, other.raw_, sizeof raw_);
    if (IsCounted()) AddRef();
  }
  Variant(Variant&& other) noexcept {
    std::memcpy(raw_, other.raw_, sizeof raw_);
    other.raw_[0] = 0;
  }
  ~Variant() {
    if (IsCounted()) Release();
  }
  Variant& operator=(const Variant& other) {
    if (!IsCounted() && !other.IsCounted()) {
      std::memcpy(raw_, other.raw_, sizeof raw_);
      return *this;
    }
    return *this = Variant(other);
  }
  Variant& operator=(Variant&& other) noexcept {
    alignas(8) unsigned char old[sizeof raw_];
    std::memcpy(old, raw_, sizeof raw_);
    std::memcpy(raw_, other.raw_, sizeof raw_);
    std::memcpy(other.raw_, old, sizeof raw_);
    return *this;
  }

  VariantType Type() const;
  bool Is(VariantType type) const { return Type() == type; }
  bool IsEmpty() const { return tag() == Tag::kEmpty; }
  bool IsNull() const { return tag() == Tag::kNull; }
  bool IsMissing() const { return tag() == Tag::kMissing; }
  bool IsString() const { return tag() == Tag::kShortText || tag() == Tag::kLongText; }
  // True for every reference, Nothing included.
  bool IsObject() const { return tag() == Tag::kObject || tag() == Tag::kNothing; }
  bool IsNothing() const { return tag() == Tag::kNothing; }

  // The content, for a value that holds just this type; the conversions are in conversions.h.
  template <class T>
  bool Holds() const;
  template <class T>
  T Held() const;

  // A String's text, valid while this value is alive and unchanged.
  std::string_view TextView() const;
  std::span<const std::uint8_t> BytesView() const;
  // The object, null for Nothing; for a value that IsObject().
  Object* ObjectPointer() const {
    return tag() == Tag::kObject ? Load<Object*>() : nullptr;
  }

  // The value converted to T, as an assignment to a variable of that type converts it. For
  // As<SomeClass>() the result is a Ref, null for Nothing; error 13 when it holds anything else.
  // (Body in conversions.h.)
  template <class T>
  auto As() const;

  // A copy that shares nothing countable can be made by copying memory.
  bool IsPlain() const { return !IsCounted(); }

 private:
  // Plain kinds first: a tag from kLongText on owns a reference.
  enum class Tag : std::uint8_t {
    kEmpty,
    kNull,
    kMissing,
    kBoolean,
    kByte,
    kInteger,
    kLong,
    kSingle,
    kDouble,
    kCurrency,
    kDate,
    kDecimal,
    kShortText,
    kNothing,
    kLongText,
    kByteArray,
    kObject,
  };
  static constexpr std::size_t kShortTextMax = 14;
  static constexpr std::size_t kTextOffset = 2;

  explicit Variant(Tag tag) {
    std::memset(raw_, 0, sizeof raw_);
    raw_[0] = static_cast<unsigned char>(tag);
  }

  Tag tag() const { return static_cast<Tag>(raw_[0]); }
  bool IsCounted() const { return raw_[0] >= static_cast<unsigned char>(Tag::kLongText); }

  template <class T>
  void Store(const T& value, std::size_t offset = 8) {
    std::memcpy(raw_ + offset, &value, sizeof value);
  }
  template <class T>
  T Load(std::size_t offset = 8) const {
    T value;
    std::memcpy(&value, raw_ + offset, sizeof value);
    return value;
  }

  void AddRef() const;
  void Release() const;

  // [0] tag; numbers and pointers at [8]; a short text's length at [1] and its bytes from [2];
  // a decimal's scale and sign at [1] and [2], its high part at [4], its low part at [8].
  alignas(8) unsigned char raw_[16];
};

static_assert(sizeof(Variant) == 16);

template <class T>
bool Variant::Holds() const {
  if constexpr (std::is_same_v<T, bool>) return tag() == Tag::kBoolean;
  else if constexpr (std::is_same_v<T, Byte>) return tag() == Tag::kByte;
  else if constexpr (std::is_same_v<T, Integer>) return tag() == Tag::kInteger;
  else if constexpr (std::is_same_v<T, Long>) return tag() == Tag::kLong;
  else if constexpr (std::is_same_v<T, Single>) return tag() == Tag::kSingle;
  else if constexpr (std::is_same_v<T, Double>) return tag() == Tag::kDouble;
  else if constexpr (std::is_same_v<T, Currency>) return tag() == Tag::kCurrency;
  else if constexpr (std::is_same_v<T, Date>) return tag() == Tag::kDate;
  else if constexpr (std::is_same_v<T, Decimal>) return tag() == Tag::kDecimal;
  else if constexpr (std::is_same_v<T, String>) return IsString();
  else static_assert(!sizeof(T), "no automation type");
}

template <class T>
T Variant::Held() const {
  if constexpr (std::is_same_v<T, Currency>) {
    return Currency::FromUnits(Load<std::int64_t>());
  } else if constexpr (std::is_same_v<T, Date>) {
    return Date(Load<double>());
  } else if constexpr (std::is_same_v<T, Decimal>) {
    return Decimal(Load<std::uint32_t>(4), Load<std::uint64_t>(), raw_[1], raw_[2] != 0);
  } else if constexpr (std::is_same_v<T, String>) {
    return String(TextView());
  } else {
    return Load<T>();
  }
}

}  // namespace qdclgl
