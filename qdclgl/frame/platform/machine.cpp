#include "qdclgl/frame/platform/machine.h"

#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

namespace {

// The sizes of the buffers that the system is handed; a longer answer is a failure.
constexpr std::size_t kMachineNameBuffer = 128;
constexpr std::size_t kComputerNameBuffer = 40;
constexpr std::size_t kAddressBuffer = 64;
constexpr std::size_t kDirectoryBuffer = 128;

}  // namespace

String GetMachineName() {
  return ToUpper(CurrentPlatform().ComputerName(kMachineNameBuffer).value_or(""));
}

String GetComputerNameOrNoName() {
  const auto name = CurrentPlatform().ComputerName(kComputerNameBuffer);
  if (!name) return "NoName";
  return name->substr(std::min(name->find_first_not_of(' '), name->size()));
}

String GetIPAddress() { return CurrentPlatform().AddressText(kAddressBuffer).value_or(""); }

String GetSystemDirectoryPath() {
  String path = CurrentPlatform().SystemDirectory(kDirectoryBuffer).value_or("");
  if (!path.empty()) AppendBackslash(path);
  return path;
}

void AppendBackslash(String& Path) {
  if (!Path.ends_with('\\')) Path += '\\';
}

}  // namespace qdclgl
