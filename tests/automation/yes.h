// An object that lies about what it is.
#pragma once

#include "qdclgl/automation/com.h"

namespace qdclgl::automation::testing {

// Says yes to whatever it is asked, and answers nothing.
class Yes final : public IDispatch {
 public:
  // Without an object it says yes to unknown interfaces and gives null.
  explicit Yes(bool with_object = true) : with_object_(with_object) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
    *object = with_object_ || known ? this : nullptr;
    if (*object != nullptr) AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return S_OK;
  }

 private:
  ~Yes() = default;

  bool with_object_;
  ULONG references_ = 0;
};

}  // namespace qdclgl::automation::testing
