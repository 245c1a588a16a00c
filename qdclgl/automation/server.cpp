// The four entry points of the server, and its class factory.
#include "qdclgl/automation/creatable_classes.h"
#include "qdclgl/automation/errors.h"
#include "qdclgl/automation/foreign.h"
#include "qdclgl/automation/module.h"
#include "qdclgl/automation/registration.h"
#include "qdclgl/automation/type_library.h"
#include "qdclgl/automation/wrapper.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/access/session.h"

namespace qdclgl::automation {

namespace {

class Factory final : public OneInterface<IClassFactory, IID_IClassFactory>, private Counted {
 public:
  explicit Factory(const CreatableClass& creatable) : creatable_(creatable) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return Guarded([&] {
      const Ref<Object> made = creatable_.make();
      return Wrap(made.get())->QueryInterface(iid, object);
    });
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock) {
      AddClientLock();
      return S_OK;
    }
    return RemoveClientLock() ? S_OK : E_UNEXPECTED;
  }

 private:
  const CreatableClass& creatable_;
};

}  // namespace

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
    const CreatableClass* creatable = FindCreatableById(class_id);
    if (creatable == nullptr) return CLASS_E_CLASSNOTAVAILABLE;
    // From here on the library's own calls reach the machine's components.
    static const bool connected = (SetForeignComponentCreator(CreateForeign), true);
    static_cast<void>(connected);
    return Com<IClassFactory>(new Factory(*creatable))->QueryInterface(iid, object);
  });
}

STDAPI DllCanUnloadNow() {
  // What is logged in stays so, whether or not the client holds an object at the moment.
  if (IsServerInUse() || server::HasSessions()) return S_FALSE;
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
