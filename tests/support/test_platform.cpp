#include "tests/support/test_platform.h"

namespace qdclgl {

namespace {

std::optional<std::string> Answer(bool fail, const std::string& text, std::size_t buffer_size) {
  if (fail || text.size() >= buffer_size) return std::nullopt;
  return text;
}

}  // namespace

TestPlatform::TestPlatform()
    : former_(CurrentPlatform()),
      open_keys_{{registry_root::kClassesRoot, "HKEY_CLASSES_ROOT"},
                 {registry_root::kCurrentUser, "HKEY_CURRENT_USER"},
                 {registry_root::kLocalMachine, "HKEY_LOCAL_MACHINE"},
                 {registry_root::kUsers, "HKEY_USERS"}} {
  SetPlatform(this);
}

TestPlatform::~TestPlatform() { SetPlatform(&former_); }

void TestPlatform::SetProfileInt(const std::string& file, const std::string& section,
                                 const std::string& key, Long value) {
  profile_numbers_[{ToUpper(file), ToUpper(section), ToUpper(key)}] = value;
}

std::optional<std::string> TestPlatform::ComputerName(std::size_t buffer_size) {
  return Answer(fail_computer_name, computer_name, buffer_size);
}

std::optional<std::string> TestPlatform::SystemDirectory(std::size_t buffer_size) {
  return Answer(fail_system_directory, system_directory, buffer_size);
}

std::optional<std::string> TestPlatform::AddressText(std::size_t buffer_size) {
  return Answer(fail_address_text, address, buffer_size);
}

Long TestPlatform::PrivateProfileInt(const std::string& section, const std::string& key,
                                     Long default_value, const std::string& file) {
  const auto number = profile_numbers_.find({ToUpper(file), ToUpper(section), ToUpper(key)});
  return fail_private_profile || number == profile_numbers_.end() ? default_value : number->second;
}

std::optional<std::uint32_t> TestPlatform::FileAttributes(const std::string& path) {
  const auto attributes = file_attributes.find(path);
  if (fail_file_attributes || attributes == file_attributes.end()) return std::nullopt;
  return attributes->second;
}

Long TestPlatform::RegistryCreateKey(Long parent, const std::string& name, bool /*persistent*/,
                                     Long& key) {
  if (registry_create_code != system_code::kSuccess) return registry_create_code;
  const std::string* parent_path = PathOf(parent);
  if (parent_path == nullptr) return system_code::kInvalidHandle;
  if (name.starts_with('\\')) return system_code::kBadPathName;
  if (name.empty()) {
    key = parent;
    return system_code::kSuccess;
  }
  const std::string path = *parent_path + '\\' + name;
  registry.try_emplace(path);
  key = static_cast<Long>(open_keys_.size());
  open_keys_.emplace(key, path);
  return system_code::kSuccess;
}

Long TestPlatform::RegistryQueryValue(Long key, const std::string& name, std::size_t buffer_size,
                                      RegistryValue& value) {
  if (registry_query_code != system_code::kSuccess) return registry_query_code;
  const std::string* path = PathOf(key);
  if (path == nullptr) return system_code::kInvalidHandle;
  const auto values = registry.find(*path);
  if (values == registry.end()) return system_code::kFileNotFound;
  const auto found = values->second.find(name);
  if (found == values->second.end()) return system_code::kFileNotFound;
  const std::size_t size = found->second.data.size() + (found->second.IsText() ? 1 : 0);
  if (size > buffer_size) return system_code::kMoreData;
  value = found->second;
  return system_code::kSuccess;
}

Long TestPlatform::RegistrySetValue(Long key, const std::string& name, const RegistryValue& value) {
  if (registry_set_code != system_code::kSuccess) return registry_set_code;
  const std::string* path = PathOf(key);
  if (path == nullptr) return system_code::kInvalidHandle;
  registry[*path][name] = value;
  return system_code::kSuccess;
}

const std::string* TestPlatform::PathOf(Long key) const {
  const auto entry = open_keys_.find(key);
  return entry == open_keys_.end() ? nullptr : &entry->second;
}

}  // namespace qdclgl
