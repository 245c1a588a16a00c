// The one interface to the machine. Code elsewhere asks `CurrentPlatform()` and makes no
// operating-system call of its own, so a test can put a machine of its own making underneath.
//
// No operation throws because of the machine: a failure shows in the result. Operations that fill a
// fixed buffer on Windows take its size and fail where the call with that buffer would fail.
#pragma once

#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "qdclgl/frame/values/values.h"

namespace qdclgl {

// The system's result codes that this code base tells apart. Any other may come back too.
namespace system_code {

inline constexpr Long kSuccess = 0;
inline constexpr Long kFileNotFound = 2;
inline constexpr Long kPathNotFound = 3;
inline constexpr Long kTooManyOpenFiles = 4;
inline constexpr Long kAccessDenied = 5;
inline constexpr Long kInvalidHandle = 6;
inline constexpr Long kDiskFull = 112;
inline constexpr Long kBadPathName = 161;
inline constexpr Long kMoreData = 234;
inline constexpr Long kRegistryIoFailed = 1016;
inline constexpr Long kChildMustBeVolatile = 1021;

}  // namespace system_code

namespace file_attribute {

inline constexpr std::uint32_t kReadOnly = 0x01;
inline constexpr std::uint32_t kDirectory = 0x10;
inline constexpr std::uint32_t kNormal = 0x80;  // only ever alone

}  // namespace file_attribute

// The keys that are always there; every other key is made or opened under one of them.
namespace registry_root {

inline constexpr Long kClassesRoot = static_cast<Long>(0x80000000u);
inline constexpr Long kCurrentUser = static_cast<Long>(0x80000001u);
inline constexpr Long kLocalMachine = static_cast<Long>(0x80000002u);
inline constexpr Long kUsers = static_cast<Long>(0x80000003u);

}  // namespace registry_root

namespace registry_type {

inline constexpr Long kText = 1;
inline constexpr Long kExpandableText = 2;
inline constexpr Long kBinary = 3;
inline constexpr Long kNumber = 4;  // 4 bytes, the lowest first

}  // namespace registry_type

// `data` is UTF-8 for the two text types, without closing NULs, and plain bytes for every other.
struct RegistryValue {
  Long type = registry_type::kText;
  std::string data;

  bool IsText() const {
    return type == registry_type::kText || type == registry_type::kExpandableText;
  }
  friend bool operator==(const RegistryValue&, const RegistryValue&) = default;
};

class Platform {
 public:
  Platform() = default;
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;
  virtual ~Platform() = default;

  // The computer's name as the system gives it. Nothing when the system gives none or the name and
  // its closing NUL do not fit into `buffer_size` bytes.
  virtual std::optional<std::string> ComputerName(std::size_t buffer_size) = 0;

  virtual Long ProcessId() = 0;

  // The day and the time it is here, in whole seconds.
  virtual DateTime Now() = 0;
  // The day alone.
  DateTime Today() { return DateTime(std::floor(Now().days)); }

  // The folder of system-wide settings, without a separator at its end. Nothing when the system
  // gives none or the path and its closing NUL do not fit into `buffer_size` bytes.
  virtual std::optional<std::string> SystemDirectory(std::size_t buffer_size) = 0;

  // This machine's IPv4 address, "10.0.0.1": the first one that is up and not a loopback. Nothing
  // when there is none (the loopback address is every machine's, so it would identify nobody) or
  // when the text and its closing NUL do not fit into `buffer_size` bytes.
  virtual std::optional<std::string> AddressText(std::size_t buffer_size) = 0;

  // The number of `key` in the section `section` of the profile `file` (an .ini file). Names match
  // without regard to case or to blanks around them; the first section and the first key of a name
  // count. `default_value` when the file, the section or the key is missing or the file cannot be
  // read.
  //
  // The number is what the text of the key begins with, behind blanks and inside one pair of
  // quotes: a sign, one of the prefixes 0x, 0o, 0b, digits. What follows is ignored, so "102abc" is
  // 102. A text that begins with no number is 0, whatever the default. A number beyond 32 bits
  // wraps around: "4294967297" is 1.
  virtual Long PrivateProfileInt(const std::string& section, const std::string& key,
                                 Long default_value, const std::string& file) = 0;

  // The attributes of a file or folder as bits of `file_attribute` (on Windows others as well).
  // Nothing when it does not exist or cannot be asked.
  virtual std::optional<std::uint32_t> FileAttributes(const std::string& path) = 0;

  // Opens the key `name` under `parent` for reading and writing and puts its handle into `key`; a
  // missing key is made first. `name` may be a path with "\" between its elements; an empty one
  // opens `parent` itself. A key that is not persistent is not kept on disk, and no persistent key
  // can be made under it. Returns the system's code; unless that is 0, `key` is left unchanged.
  //
  // Key and value names match without regard to case and keep the spelling they were made with.
  // Handles stay valid to the end of the process.
  virtual Long RegistryCreateKey(Long parent, const std::string& name, bool persistent,
                                 Long& key) = 0;

  // Reads the value `name` of `key`; the empty name is the key's default value. Returns the
  // system's code: 2 when there is no such value, 234 when it does not fit into `buffer_size` bytes
  // (a text counts with its closing NUL). Unless the code is 0, `value` is left unchanged.
  virtual Long RegistryQueryValue(Long key, const std::string& name, std::size_t buffer_size,
                                  RegistryValue& value) = 0;

  // Writes the value `name` of `key`, over a present one of any type. Returns the system's code;
  // unless that is 0, nothing has changed.
  virtual Long RegistrySetValue(Long key, const std::string& name, const RegistryValue& value) = 0;

  // Shows `prompt` to the user and returns when it has been seen (on POSIX: written to the standard
  // error).
  virtual void ShowMessage(const std::string& prompt) = 0;
};

// The machine itself. It has one definition per operating system.
Platform& MachinePlatform();

namespace detail {

inline std::atomic<Platform*> replacement_platform{nullptr};

}  // namespace detail

inline Platform& CurrentPlatform() {
  Platform* replacement = detail::replacement_platform.load(std::memory_order_acquire);
  return replacement != nullptr ? *replacement : MachinePlatform();
}

// Replaces the platform of the whole process; nullptr gives the machine itself again. The caller
// keeps the ownership.
inline void SetPlatform(Platform* platform) {
  detail::replacement_platform.store(platform, std::memory_order_release);
}

}  // namespace qdclgl
