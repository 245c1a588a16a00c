// Registry files: whatever stands in one, values that are written are read, and nothing else goes.
#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <vector>

#include "qdclgl/frame/platform/platform.h"
#include "tests/fuzz/targets/target.h"

namespace {

using namespace qdclgl;
using fuzz::Require;

// The lines in order, no matter how they end.
std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream rest(text);
  for (std::string line; std::getline(rest, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (!line.empty()) lines.push_back(line);
  }
  std::ranges::sort(lines);
  return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::TargetFile file("registry");
  setenv("QDCLGL_REGISTRY", file.path().c_str(), 1);
  FuzzedDataProvider input(data, size);
  RegistryValue value{input.PickValueInArray<Long>({1, 2, 3, 4, 0, -1}),
                      input.ConsumeRandomLengthString(40)};
  while (value.IsText() && value.data.ends_with('\0')) value.data.pop_back();
  const std::string name = input.ConsumeRandomLengthString(20);
  const std::string before = input.ConsumeRemainingBytesAsString();
  file.Write(before);

  Platform& platform = MachinePlatform();
  Long key = 0;
  if (platform.RegistryCreateKey(registry_root::kCurrentUser, "Software\\Fuzz", true, key) != 0 ||
      platform.RegistrySetValue(key, name, value) != 0) {
    Require(file.Read() == before, "a refused write leaves the file alone");
    return 0;
  }
  RegistryValue read;
  Require(platform.RegistryQueryValue(key, name, 1 << 20, read) == 0, "what was written is there");
  Require(read == value, "and is what was written");

  const std::string written = file.Read();
  Require(platform.RegistrySetValue(key, name, value) == 0, "it can be written again");
  Require(file.Read() == written, "which changes nothing");
  // One that stands in the file already would be replaced, and its line with it.
  std::string other = name + "x";
  for (RegistryValue there; platform.RegistryQueryValue(key, other, 1 << 20, there) == 0;) {
    other += 'x';
  }
  Require(platform.RegistrySetValue(key, other, value) == 0, "another can be written");
  Require(platform.RegistryQueryValue(key, name, 1 << 20, read) == 0 && read == value,
          "which leaves the first alone");
  // A file that the library wrote comes through a write unchanged, but for what is written.
  std::vector<std::string> gone;
  const std::vector<std::string> old_lines = Lines(written), new_lines = Lines(file.Read());
  std::ranges::set_difference(old_lines, new_lines, std::back_inserter(gone));
  Require(gone.empty(), "no line is lost");
  return 0;
}
