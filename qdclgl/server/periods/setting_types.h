// What the texts of settings may be.
#pragma once

#include <string_view>

namespace qdclgl::server {

// BadSetting for a text that is not of the setting's type and range. An empty text, which stands
// for a setting that is not set, and settings that are not known here pass.
void CheckSettingType(std::string_view category, std::string_view key, std::string_view text);

}  // namespace qdclgl::server
