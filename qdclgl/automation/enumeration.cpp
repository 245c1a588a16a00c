#include "qdclgl/automation/enumeration.h"

#include "qdclgl/automation/errors.h"
#include "qdclgl/automation/module.h"
#include "qdclgl/automation/values.h"

namespace qdclgl::automation {

namespace {

class Enumeration final : public OneInterface<IEnumVARIANT, IID_IEnumVARIANT>, private Counted {
 public:
  Enumeration(Ref<Enumerator> enumerator, Ref<Object> owner, const ClassMember& member)
      : enumerator_(std::move(enumerator)), owner_(std::move(owner)), member_(member) {}

  HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* items, ULONG* fetched) override {
    if (fetched != nullptr) *fetched = 0;
    if (items == nullptr) return E_POINTER;
    for (ULONG i = 0; i < count; ++i) VariantInit(&items[i]);
    ULONG done = 0;
    const HRESULT code = OnItsThread([&] {
      for (Variant item; done < count && enumerator_->Next(item); ++done) {
        ++position_;
        ToVariant(item, &items[done]);
      }
      return done == count ? S_OK : S_FALSE;
    });
    if (FAILED(code)) {
      for (ULONG i = 0; i < count; ++i) VariantClear(&items[i]);
      return code;
    }
    if (fetched != nullptr) *fetched = done;
    return code;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    return OnItsThread([&] { return Advance(count) ? S_OK : S_FALSE; });
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    return OnItsThread([&] {
      enumerator_->Reset();
      position_ = 0;
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** clone) override {
    if (clone == nullptr) return E_POINTER;
    *clone = nullptr;
    return OnItsThread([&] {
      const Variant again = owner_->Call(member_.row.name);
      Com<Enumeration> made(new Enumeration(again.As<Enumerator>(), owner_, member_));
      made->Advance(position_);
      *clone = made.Detach();
      return S_OK;
    });
  }

 private:
  template <class Body>
  HRESULT OnItsThread(Body body) {
    const Com<IEnumVARIANT> self(this);  // what is called may let go of the caller's reference
    return Guarded([&] {
      owner_->CheckThread();
      return body();
    });
  }

  bool Advance(ULONG count) {
    constexpr ULONG kMost = 0x7FFFFFFF;
    position_ += count;
    return enumerator_->Skip(static_cast<Long>(count < kMost ? count : kMost));
  }

  Ref<Enumerator> enumerator_;
  Ref<Object> owner_;
  const ClassMember& member_;
  ULONG position_ = 0;
};

}  // namespace

void PutEnumeration(const Ref<Enumerator>& enumerator, const Ref<Object>& owner,
                    const ClassMember& member, VARIANT* destination) {
  destination->punkVal = Com<IUnknown>(new Enumeration(enumerator, owner, member)).Detach();
  destination->vt = VT_UNKNOWN;
}

}  // namespace qdclgl::automation
