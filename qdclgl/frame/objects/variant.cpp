#include "qdclgl/frame/objects/variant.h"

#include <array>
#include <cstring>
#include <limits>
#include <new>

namespace qdclgl {

namespace {

// A long text or a byte array: immutable, shared by every value that was copied from the first.
struct Blob {
  std::uint32_t references;
  std::uint32_t size;

  unsigned char* data() { return reinterpret_cast<unsigned char*>(this + 1); }

  static Blob* Create(const void* content, std::size_t size) {
    if (size > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
    void* memory = ::operator new(sizeof(Blob) + size);
    Blob* blob = new (memory) Blob{1, static_cast<std::uint32_t>(size)};
    if (size > 0) std::memcpy(blob->data(), content, size);
    return blob;
  }
};

}  // namespace

std::string_view TypeName(VariantType type) {
  constexpr std::array<std::string_view, 16> kNames = {
      "Empty",  "Null",     "Missing", "Boolean", "Byte",   "Integer", "Long",       "Single",
      "Double", "Currency", "Date",    "Decimal", "String", "Object",  "Byte array", "Error"};
  return kNames[static_cast<std::size_t>(type)];
}

Variant::Variant(const Decimal& value) : Variant(Tag::kDecimal, WordOf(value.low())) {
  head_ |= InByte(1, static_cast<unsigned char>(value.scale())) |
           InByte(2, value.negative() ? 1 : 0) | std::uint64_t{value.high()} << kHighPartShift;
}

Variant::Variant(std::string_view text) : Variant(Tag::kShortText) {
  if (text.size() > kShortTextMax) {
    *this = Variant(Tag::kLongText, WordOf(Blob::Create(text.data(), text.size())));
    return;
  }
  head_ |= InByte(1, static_cast<unsigned char>(text.size()));
  auto* bytes = reinterpret_cast<unsigned char*>(this) + kTextOffset;
  if (!text.empty()) std::memcpy(bytes, text.data(), text.size());
}

Variant::Variant(Bytes bytes)
    : Variant(Tag::kByteArray, WordOf(Blob::Create(bytes.data.data(), bytes.data.size()))) {
  head_ |= std::uint64_t{static_cast<std::uint32_t>(bytes.lower_bound)} << kHighPartShift;
}

VariantType Variant::Type() const {
  switch (tag()) {
    case Tag::kShortText:
    case Tag::kLongText: return VariantType::kString;
    case Tag::kNothing:
    case Tag::kObject: return VariantType::kObject;
    case Tag::kByteArray: return VariantType::kByteArray;
    case Tag::kError: return VariantType::kError;
    default: return static_cast<VariantType>(tag());
  }
}

std::string_view Variant::TextView() const {
  if (tag() == Tag::kShortText) {
    return {reinterpret_cast<const char*>(this) + kTextOffset, ByteOf(head_, 1)};
  }
  auto* blob = Content<Blob*>();
  return {reinterpret_cast<const char*>(blob->data()), blob->size};
}

std::span<const std::uint8_t> Variant::BytesView() const {
  auto* blob = Content<Blob*>();
  return {blob->data(), blob->size};
}

void Variant::AddRef() const {
  if (tag() == Tag::kObject) {
    Content<Object*>()->AddRef();
  } else {
    ++Content<Blob*>()->references;
  }
}

void Variant::Release() const {
  if (tag() == Tag::kObject) {
    Content<Object*>()->Release();
  } else if (Blob* blob = Content<Blob*>(); --blob->references == 0) {
    ::operator delete(blob);
  }
}

}  // namespace qdclgl
