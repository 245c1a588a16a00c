#include "qdclgl/frame/session/registry.h"

#include <algorithm>
#include <span>
#include <vector>

#include "qdclgl/frame/objects/conversions.h"

namespace qdclgl {

namespace {

constexpr std::size_t kKeyTextRoom = 2048;
constexpr std::size_t kTextRoom = 255;
constexpr std::size_t kNumberSize = 4;

// Splits the first element off a path.
std::string TakeElement(std::string& path) {
  const auto end = path.find('\\');
  const std::string element = path.substr(0, end);
  path.erase(0, end == std::string::npos ? path.size() : end + 1);
  return element;
}

// What stands before the first NUL.
std::string_view UpToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

Variant NumberFrom(const std::string& data) {
  std::uint32_t number = 0;
  for (std::size_t i = std::min(data.size(), kNumberSize); i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(data[i]);
  }
  return Variant(static_cast<Long>(number));
}

RegistryValue NumberValue(Long number) {
  RegistryValue value{registry_type::kNumber, {}};
  for (std::size_t i = 0; i < kNumberSize; ++i) {
    value.data += static_cast<char>(static_cast<std::uint32_t>(number) >> (8 * i) & 0xFF);
  }
  return value;
}

// The bytes that were read, over the first ones of `room`.
Variant BytesFrom(const std::string& data, std::span<const std::uint8_t> room) {
  std::vector<std::uint8_t> bytes(room.begin(), room.end());
  std::copy_n(data.begin(), std::min(data.size(), bytes.size()), bytes.begin());
  return Variant(Bytes{bytes});
}

}  // namespace

Long Reg::Create(Long hKey, const String& SubKey, bool Persistent) const {
  Long key = hKey;
  for (String path = SubKey; !path.empty();) {
    const String element = TakeElement(path);
    if (element.empty()) continue;
    const Long code = CurrentPlatform().RegistryCreateKey(key, element, Persistent, key);
    if (code != system_code::kSuccess) RaiseError(code);
  }
  return key;
}

Boolean Reg::GetKeyValue(Long hKey, const String& SubKey, const String& ValueName, Variant& Value,
                         Long Type) const {
  return Query(hKey, SubKey, ValueName, Value, Type, kKeyTextRoom);
}

Boolean Reg::GetValue(Long hKey, const String& SubKey, const String& ValueName, Variant& Value,
                      Long Type) const {
  return Query(hKey, SubKey, ValueName, Value, Type, kTextRoom);
}

Boolean Reg::Query(Long hKey, const String& SubKey, const String& ValueName, Variant& Value,
                   Long Type, std::size_t text_room) const {
  try {
    const Long key = Create(hKey, SubKey);
    RegistryValue stored;
    const auto read = [&](std::size_t room) {
      return CurrentPlatform().RegistryQueryValue(key, ValueName, room, stored) ==
             system_code::kSuccess;
    };
    if (Type == registry_type::kText && read(text_room)) {
      Value = Variant(UpToNul(stored.data));
      return true;
    }
    if (Type == registry_type::kBinary && Value.Is(VariantType::kByteArray)) {
      if (!read(Value.BytesView().size())) return false;
      Value = BytesFrom(stored.data, Value.BytesView());
      return true;
    }
    if (Type == registry_type::kNumber && read(kNumberSize)) {
      Value = NumberFrom(stored.data);
      return true;
    }
    return false;
  } catch (const Error&) {
    return false;
  }
}

Boolean Reg::SetValue(Long hKey, const String& SubKey, const String& ValueName,
                      const Variant& Value, Long Type) const {
  const Long key = Create(hKey, SubKey);
  RegistryValue value{Type, {}};
  switch (Value.Type()) {
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kByte: value = NumberValue(CLng(Value)); break;
    case VariantType::kString: value.data = Value.TextView(); break;
    case VariantType::kByteArray:
      value.data.assign(Value.BytesView().begin(), Value.BytesView().end());
      break;
    default: return false;
  }
  return CurrentPlatform().RegistrySetValue(key, ValueName, value) == system_code::kSuccess;
}

}  // namespace qdclgl
