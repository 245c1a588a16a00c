#include "qdclgl/automation/module.h"

#include <atomic>

namespace qdclgl::automation {

namespace {

std::atomic<long> uses = 0;
std::atomic<long> client_locks = 0;

}  // namespace

void LockServer() { ++uses; }
void UnlockServer() { --uses; }

void AddClientLock() { ++client_locks; }
bool RemoveClientLock() {
  long locks = client_locks;
  while (locks > 0) {
    if (client_locks.compare_exchange_weak(locks, locks - 1)) return true;
  }
  return false;
}

bool IsServerInUse() { return uses != 0 || client_locks != 0; }

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
