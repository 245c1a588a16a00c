// The few owners that calls of the platform need.
#pragma once

// clang-format off
#include <windows.h>
#include <oleauto.h>
#include <ocidl.h>  // IProvideClassInfo
// clang-format on

#include <atomic>
#include <string>
#include <string_view>
#include <utility>

#include "qdclgl/frame/platform/wide_text.h"

namespace qdclgl::automation {

// What a call into an object answers that may be another program's. A C++ exception that it lets
// out is a failure like others, as far as it can be caught: it can where both sides have one
// runtime.
template <class Body>
HRESULT AnswerOf(Body body) noexcept {
  try {
    return body();
  } catch (...) {
    return E_UNEXPECTED;
  }
}

// Lets an object go, which may be the end of it.
inline void LetGo(IUnknown* object) noexcept {
  if (object == nullptr) return;
  AnswerOf([&] {
    object->Release();
    return S_OK;
  });
}

// An owned interface pointer.
template <class T>
class Com {
 public:
  Com() = default;
  explicit Com(T* pointer) : pointer_(pointer) {
    if (pointer_ != nullptr) pointer_->AddRef();
  }
  Com(const Com& other) : Com(other.pointer_) {}
  Com(Com&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ~Com() { LetGo(pointer_); }
  Com& operator=(Com other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }

  T* get() const { return pointer_; }
  T* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

  // For calls that give a reference back, into an empty owner.
  T** Put() { return &pointer_; }
  void** PutVoid() { return reinterpret_cast<void**>(&pointer_); }
  T* Detach() { return std::exchange(pointer_, nullptr); }

 private:
  T* pointer_ = nullptr;
};

// The interface `iid` of an object, empty when it has none.
template <class T>
Com<T> Query(IUnknown* object, REFIID iid) {
  Com<T> result;
  if (object == nullptr) return result;
  const HRESULT code = AnswerOf([&] { return object->QueryInterface(iid, result.PutVoid()); });
  if (FAILED(code)) result.Detach();  // whatever was left there, it is no reference
  return result;
}

// An owned VARIANT.
class OwnedVariant {
 public:
  OwnedVariant() { VariantInit(&content_); }
  ~OwnedVariant() {
    AnswerOf([&] { return VariantClear(&content_); });
  }
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;

  VARIANT* get() { return &content_; }
  const VARIANT& operator*() const { return content_; }
  VARIANT* operator->() { return &content_; }

 private:
  VARIANT content_;
};

// An owned BSTR.
class OwnedText {
 public:
  OwnedText() = default;
  explicit OwnedText(std::wstring_view text)
      : content_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  ~OwnedText() { SysFreeString(content_); }
  OwnedText(const OwnedText&) = delete;
  OwnedText& operator=(const OwnedText&) = delete;

  BSTR get() const { return content_; }
  BSTR* Put() { return &content_; }
  std::string ToText() const { return FromWide({content_, SysStringLen(content_)}); }

 private:
  BSTR content_ = nullptr;
};

// An object that has one interface besides IUnknown. It may be held from any thread.
template <class Interface, const IID& kId>
class OneInterface : public Interface {
 public:
  OneInterface() = default;
  OneInterface(const OneInterface&) = delete;
  OneInterface& operator=(const OneInterface&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) final {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != kId) return E_NOINTERFACE;
    *object = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() final { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() final {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~OneInterface() = default;

 private:
  std::atomic<ULONG> references_ = 0;
};

}  // namespace qdclgl::automation
