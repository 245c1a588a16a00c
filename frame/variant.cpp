#include "frame/variant.h"

#include <array>
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
  constexpr std::array<std::string_view, 15> kNames = {
      "Empty",  "Null",   "Missing",  "Boolean", "Byte",    "Integer", "Long",  "Single",
      "Double", "Currency", "Date", "Decimal", "String",  "Object",  "Byte array"};
  return kNames[static_cast<std::size_t>(type)];
}

Variant::Variant(const Decimal& value) : Variant(Tag::kDecimal) {
  raw_[1] = static_cast<unsigned char>(value.scale());
  raw_[2] = value.negative() ? 1 : 0;
  Store(value.high(), 4);
  Store(value.low());
}

Variant::Variant(std::string_view text) : Variant(Tag::kShortText) {
  if (text.size() <= kShortTextMax) {
    raw_[1] = static_cast<unsigned char>(text.size());
    if (!text.empty()) std::memcpy(raw_ + kTextOffset, text.data(), text.size());
  } else {
    Store(Blob::Create(text.data(), text.size()));
    raw_[0] = static_cast<unsigned char>(Tag::kLongText);
  }
}

Variant::Variant(Bytes bytes) : Variant(Tag::kEmpty) {
  Store(Blob::Create(bytes.data.data(), bytes.data.size()));
  raw_[0] = static_cast<unsigned char>(Tag::kByteArray);
}

VariantType Variant::Type() const {
  switch (tag()) {
    case Tag::kShortText:
    case Tag::kLongText: return VariantType::kString;
    case Tag::kNothing:
    case Tag::kObject: return VariantType::kObject;
    case Tag::kByteArray: return VariantType::kByteArray;
    default: return static_cast<VariantType>(tag());
  }
}

std::string_view Variant::TextView() const {
  if (tag() == Tag::kShortText) {
    return {reinterpret_cast<const char*>(raw_) + kTextOffset, raw_[1]};
  }
  auto* blob = Load<Blob*>();
  return {reinterpret_cast<const char*>(blob->data()), blob->size};
}

std::span<const std::uint8_t> Variant::BytesView() const {
  auto* blob = Load<Blob*>();
  return {blob->data(), blob->size};
}

void Variant::AddRef() const {
  if (tag() == Tag::kObject) {
    Load<Object*>()->AddRef();
  } else {
    ++Load<Blob*>()->references;
  }
}

void Variant::Release() const {
  if (tag() == Tag::kObject) {
    Load<Object*>()->Release();
  } else if (Blob* blob = Load<Blob*>(); --blob->references == 0) {
    ::operator delete(blob);
  }
}

}  // namespace qdclgl
