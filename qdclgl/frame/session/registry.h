// Values in the machine's registry. Key handles are never closed: they stay valid to the end of the
// process.
#pragma once

#include "qdclgl/frame/objects/variant.h"
#include "qdclgl/frame/platform/platform.h"

namespace qdclgl {

class Reg {
 public:
  // Opens the key at a path below `hKey`, making what is missing, and returns the deepest key. A
  // key that is not persistent is not kept on disk. Raises the system's code when it refuses.
  Long Create(Long hKey, const String& SubKey, bool Persistent = true) const;

  // Reads a value of type 1 (a text), 3 (bytes; `Value` holds a byte array whose length is the room
  // for them) or 4 (a number) into `Value`; any other type reads nothing. True when the value was
  // read; a failure is False. A missing key is made.
  Boolean GetKeyValue(Long hKey, const String& SubKey, const String& ValueName, Variant& Value,
                      Long Type) const;
  // The same with room for 255 characters of text in place of 2048.
  Boolean GetValue(Long hKey, const String& SubKey, const String& ValueName, Variant& Value,
                   Long Type) const;

  // Writes an Integer, Long or Byte as a number, a String or a byte array under `Type`. True when
  // the value was written, False for a value of any other type. Raises what Create raises.
  Boolean SetValue(Long hKey, const String& SubKey, const String& ValueName, const Variant& Value,
                   Long Type) const;

 private:
  Boolean Query(Long hKey, const String& SubKey, const String& ValueName, Variant& Value, Long Type,
                std::size_t text_room) const;
};

}  // namespace qdclgl
