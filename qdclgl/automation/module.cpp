#include "qdclgl/automation/module.h"

#include <atomic>

namespace qdclgl::automation {

namespace {

std::atomic<long> uses = 0;

}  // namespace

void LockServer() { ++uses; }
void UnlockServer() { --uses; }
bool IsServerInUse() { return uses != 0; }

std::wstring ServerPath() {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&ServerPath), &module);
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(2 * path.size());
  }
}

}  // namespace qdclgl::automation
