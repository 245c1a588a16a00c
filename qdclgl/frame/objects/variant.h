// The tagged value of automation, in 16 bytes.
//
// Texts of up to 14 bytes, numbers, dates and decimals lie inside the value; longer texts and byte
// arrays are immutable and shared; objects are counted references.
#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "qdclgl/frame/objects/object.h"
#include "qdclgl/frame/values/values.h"

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
  kError,  // a result code as a value
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

// A byte array's content, to tell it from text. The bound is the index of the first byte, which
// callers may have chosen.
struct Bytes {
  std::span<const std::uint8_t> data;
  Long lower_bound = 0;
};
// A result code as a value. It converts to nothing and compares with nothing (error 13).
struct ErrorValue {
  std::int32_t code;
};

class Variant {
 public:
  Variant() : Variant(Tag::kEmpty) {}
  Variant(NullValue) : Variant(Tag::kNull) {}
  Variant(MissingValue) : Variant(Tag::kMissing) {}
  Variant(NothingValue) : Variant(Tag::kNothing) {}
  template <std::same_as<bool> T>  // and nothing that merely converts to it, as pointers do
  Variant(T value) : Variant(Tag::kBoolean, WordOf(value)) {}
  Variant(Byte value) : Variant(Tag::kByte, WordOf(value)) {}
  Variant(Integer value) : Variant(Tag::kInteger, WordOf(value)) {}
  Variant(Long value) : Variant(Tag::kLong, WordOf(value)) {}
  Variant(Single value) : Variant(Tag::kSingle, WordOf(value)) {}
  Variant(Double value) : Variant(Tag::kDouble, WordOf(value)) {}
  Variant(Currency value) : Variant(Tag::kCurrency, WordOf(value.units())) {}
  Variant(DateTime value) : Variant(Tag::kDate, WordOf(value.days)) {}
  Variant(const Decimal& value);
  Variant(std::string_view text);
  Variant(const std::string& text) : Variant(std::string_view(text)) {}
  Variant(const char* text) : Variant(std::string_view(text)) {}
  Variant(Bytes bytes);
  Variant(ErrorValue error) : Variant(Tag::kError, WordOf(error.code)) {}
  Variant(Object* object)
      : Variant(object != nullptr ? Tag::kObject : Tag::kNothing, WordOf(object)) {
    if (object != nullptr) object->AddRef();
  }
  template <class T>
  Variant(const Ref<T>& object) : Variant(static_cast<Object*>(object.get())) {}
  // No automation type stands behind these; a conversion must be chosen.
  Variant(std::int64_t) = delete;
  Variant(std::uint32_t) = delete;
  Variant(std::uint64_t) = delete;
  Variant(std::nullptr_t) = delete;

  Variant(const Variant& other) : head_(other.head_), content_(other.content_) {
    if (IsCounted()) AddRef();
  }
  Variant(Variant&& other) noexcept
      : head_(std::exchange(other.head_, 0)), content_(other.content_) {}
  ~Variant() {
    if (IsCounted()) Release();
  }
  Variant& operator=(const Variant& other) { return *this = Variant(other); }
  Variant& operator=(Variant&& other) noexcept {
    std::swap(head_, other.head_);
    std::swap(content_, other.content_);
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
  // A byte array's content and its bound, likewise.
  std::span<const std::uint8_t> BytesView() const;
  Long BytesLowerBound() const { return static_cast<Long>(head_ >> kHighPartShift); }
  // For a value of type kError.
  std::int32_t ErrorCode() const { return Content<std::int32_t>(); }
  // The object, null for Nothing; for a value that IsObject().
  Object* ObjectPointer() const { return tag() == Tag::kObject ? Content<Object*>() : nullptr; }

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
    kError,
    kLongText,
    kByteArray,
    kObject,
  };
  static constexpr std::size_t kShortTextMax = 14;
  static constexpr std::size_t kTextOffset = 2;
  static constexpr unsigned kHighPartShift = std::endian::native == std::endian::little ? 32 : 0;

  explicit Variant(Tag tag, std::int64_t content = 0)
      : head_(InByte(0, static_cast<unsigned char>(tag))), content_(content) {}

  Tag tag() const { return static_cast<Tag>(ByteOf(head_, 0)); }
  bool IsCounted() const { return tag() >= Tag::kLongText; }

  // The byte at an offset in memory, of a word.
  static constexpr unsigned ShiftOf(unsigned offset) {
    return 8 * (std::endian::native == std::endian::little ? offset : 7 - offset);
  }
  static constexpr std::uint64_t InByte(unsigned offset, unsigned char value) {
    return std::uint64_t{value} << ShiftOf(offset);
  }
  static constexpr unsigned char ByteOf(std::uint64_t word, unsigned offset) {
    return static_cast<unsigned char>(word >> ShiftOf(offset));
  }

  template <class T>
  static std::int64_t WordOf(T value) {
    if constexpr (std::is_pointer_v<T>) {
      return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(value));
    } else if constexpr (std::is_same_v<T, float>) {
      return std::bit_cast<std::int32_t>(value);
    } else if constexpr (std::is_same_v<T, double>) {
      return std::bit_cast<std::int64_t>(value);
    } else {
      return static_cast<std::int64_t>(value);
    }
  }
  template <class T>
  T Content() const {
    if constexpr (std::is_pointer_v<T>) {
      return reinterpret_cast<T>(static_cast<std::uintptr_t>(content_));
    } else if constexpr (std::is_same_v<T, float>) {
      return std::bit_cast<float>(static_cast<std::int32_t>(content_));
    } else if constexpr (std::is_same_v<T, double>) {
      return std::bit_cast<double>(content_);
    } else {
      return static_cast<T>(content_);
    }
  }

  void AddRef() const;
  void Release() const;

  // Two words, which travel in registers. In memory: [0] the tag; a short text's length at [1] and
  // its bytes from [2] through both words; a decimal's scale and sign at [1] and [2] and its high
  // part from [4], where a byte array has its lower bound. What else there is lies in the second
  // word.
  // The words differ in type: of two of one type g++ makes one read of 16 bytes, which has to wait
  // for the two writes when the value was only just made.
  std::uint64_t head_;
  std::int64_t content_;
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
  else if constexpr (std::is_same_v<T, DateTime>) return tag() == Tag::kDate;
  else if constexpr (std::is_same_v<T, Decimal>) return tag() == Tag::kDecimal;
  else if constexpr (std::is_same_v<T, String>) return IsString();
  else static_assert(!sizeof(T), "no automation type");
}

template <class T>
T Variant::Held() const {
  if constexpr (std::is_same_v<T, Currency>) {
    return Currency::FromUnits(Content<std::int64_t>());
  } else if constexpr (std::is_same_v<T, DateTime>) {
    return DateTime(Content<double>());
  } else if constexpr (std::is_same_v<T, Decimal>) {
    return Decimal(static_cast<std::uint32_t>(head_ >> kHighPartShift), Content<std::uint64_t>(),
                   ByteOf(head_, 1), ByteOf(head_, 2) != 0);
  } else if constexpr (std::is_same_v<T, String>) {
    return String(TextView());
  } else {
    return Content<T>();
  }
}

}  // namespace qdclgl
