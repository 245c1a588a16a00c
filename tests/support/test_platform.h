// A machine in memory. It is the current platform as long as it lives; the former one follows it.
#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

// Orders names without regard to case, as the registry and profiles match them.
struct IgnoringCase {
  bool operator()(const std::string& left, const std::string& right) const {
    return ToUpper(left) < ToUpper(right);
  }
};

class TestPlatform final : public Platform {
 public:
  TestPlatform();
  ~TestPlatform() override;

  // The number of a key in a profile; it takes the place of a file.
  void SetProfileInt(const std::string& file, const std::string& section, const std::string& key,
                     Long value);

  std::string computer_name = "HOST";
  Long process_id = 4711;
  DateTime now = DateTime::FromParts({2026, 1, 31, 13, 5, 0});
  std::string system_directory = "C:\\SYS";
  std::string address = "10.0.0.1";
  // By path. Profiles need an entry here to count as existing.
  std::map<std::string, std::uint32_t, IgnoringCase> file_attributes;
  // By full path ("HKEY_LOCAL_MACHINE\Software"), each key with its values by name.
  std::map<std::string, std::map<std::string, RegistryValue, IgnoringCase>, IgnoringCase> registry;
  std::vector<std::string> messages;

  // Operations that are to fail: those with an optional result give nothing, a profile gives the
  // default, the registry gives the code unless it is 0.
  bool fail_computer_name = false;
  bool fail_system_directory = false;
  bool fail_address_text = false;
  bool fail_private_profile = false;
  bool fail_file_attributes = false;
  Long registry_create_code = system_code::kSuccess;
  Long registry_query_code = system_code::kSuccess;
  Long registry_set_code = system_code::kSuccess;

  std::optional<std::string> ComputerName(std::size_t buffer_size) override;
  Long ProcessId() override { return process_id; }
  DateTime Now() override { return now; }
  std::optional<std::string> SystemDirectory(std::size_t buffer_size) override;
  std::optional<std::string> AddressText(std::size_t buffer_size) override;
  Long PrivateProfileInt(const std::string& section, const std::string& key, Long default_value,
                         const std::string& file) override;
  std::optional<std::uint32_t> FileAttributes(const std::string& path) override;
  Long RegistryCreateKey(Long parent, const std::string& name, bool persistent, Long& key) override;
  Long RegistryQueryValue(Long key, const std::string& name, std::size_t buffer_size,
                          RegistryValue& value) override;
  Long RegistrySetValue(Long key, const std::string& name, const RegistryValue& value) override;
  void ShowMessage(const std::string& prompt) override { messages.push_back(prompt); }

 private:
  const std::string* PathOf(Long key) const;

  Platform& former_;
  std::map<std::tuple<std::string, std::string, std::string>, Long> profile_numbers_;
  std::map<Long, std::string> open_keys_;
};

}  // namespace qdclgl
