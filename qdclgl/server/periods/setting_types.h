// The settings that are known: what they mean, what their texts may be, and what holds without one.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace qdclgl::server {

enum class SettingType {
  kAnyText,
  kKept,          // by closing and reopening, and by nobody else
  kSwitch,        // 0 or 1
  kSwitchOrName,  // the same, or the name of a computer
  kWhole,         // a whole number from `least` to `most`
  kNumber,
  kDate,  // 2024-01-31 or 2024/01/31
};

struct KnownSetting {
  std::string_view category, key;
  SettingType type;
  std::int64_t least, most;
  std::string_view otherwise;  // what holds while it is not set; "" where that is nothing
  std::string_view meaning;
};

std::span<const KnownSetting> KnownSettings();
// "a whole number from 1 to 12"
std::string RangeOf(const KnownSetting& setting);

// BadSetting for a text that is not of the setting's type and range. An empty text, which stands
// for a setting that is not set, and settings that are not known here pass.
void CheckSettingType(std::string_view category, std::string_view key, std::string_view text);

}  // namespace qdclgl::server
