// The four entry points of the server, and its class factory.
#include "automation/server.h"

#include <atomic>

#include "automation/errors.h"
#include "automation/foreign.h"
#include "automation/registration.h"
#include "automation/served_classes.h"
#include "automation/type_library.h"
#include "automation/wrapper.h"
#include "frame/server_gateway.h"

namespace qdclgl::automation {

namespace {

std::atomic<long> uses = 0;

class Factory final : public OneInterface<IClassFactory, IID_IClassFactory>, private Counted {
 public:
  explicit Factory(const ServedClass& served) : served_(served) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return Guarded([&] {
      const Ref<Object> made = served_.table->Create();
      return Wrap(made.get())->QueryInterface(iid, object);
    });
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock) {
      automation::LockServer();
    } else {
      UnlockServer();
    }
    return S_OK;
  }

 private:
  const ServedClass& served_;
};

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

using namespace qdclgl;
using namespace qdclgl::automation;

// The runtime's reserve for exceptions without memory is the one block that it doesn't free by
// itself when the server is unloaded.
namespace __gnu_cxx {
void __freeres();
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID process_ends) {
  if (reason == DLL_PROCESS_DETACH && process_ends == nullptr) __gnu_cxx::__freeres();
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID class_id, REFIID iid, LPVOID* object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  return Guarded([&] {
    const ServedClass* served = FindClassById(class_id);
    if (served == nullptr || !served->table->creatable()) return CLASS_E_CLASSNOTAVAILABLE;
    // From here on the library's own calls reach the machine's components.
    static const bool connected = (SetForeignComponentCreator(CreateForeign), true);
    static_cast<void>(connected);
    return Com<IClassFactory>(new Factory(*served))->QueryInterface(iid, object);
  });
}

STDAPI DllCanUnloadNow() {
  if (IsServerInUse()) return S_FALSE;
  ReleaseTypeLibrary();
  return S_OK;
}

STDAPI DllRegisterServer() {
  return Guarded([] {
    Register();
    return S_OK;
  });
}

STDAPI DllUnregisterServer() {
  return Guarded([] {
    Unregister();
    return S_OK;
  });
}
