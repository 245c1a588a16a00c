// A crowd of the server's objects that a client calls with anything, and the client's own objects
// that lie to them. Pointers that lead nowhere are not tried, as nobody can survive those; null
// pointers are, wherever a pointer is given.
#pragma once

#include <array>
#include <deque>

#include "qdclgl/api/class_list.h"
#include "tests/automation/client.h"
#include "tests/fuzz/choices.h"

namespace qdclgl::automation::testing {

using fuzz::Choices;

class Crowd {
 public:
  Crowd();
  ~Crowd();

  // Makes the call that `choices` choose, telling it before.
  void Step(Choices& choices, bool telling);

  // What the client's objects answer; see Liar.
  HRESULT Answer(DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception);
  HRESULT AnyCode();
  int succeeded() const { return succeeded_; }

 private:
  // Where the content of by-reference values lives, until the run ends: what is called may keep the
  // values, but not the places.
  struct Places {
    std::deque<VARIANT> variants;
    std::deque<std::array<std::byte, 16>> plain;
    std::deque<BSTR> texts;
    std::deque<IDispatch*> objects;
    std::deque<SAFEARRAY*> arrays;
    ~Places();
  };

  VARIANT AnyVariant(Choices& choices, Places& places, int depth = 0);
  VARIANT AnyReference(Choices& choices, Places& places, int depth);
  SAFEARRAY* AnyArray(Choices& choices);
  BSTR AnyText(Choices& choices);
  Com<IDispatch> AnyObject(Choices& choices);
  Com<IDispatch> NewObject(Choices& choices);
  void Keep(const VARIANT& value);
  // Whether it is one of the server's, which alone are called.
  bool IsOurs(const Com<IDispatch>& object) const { return object && object.get() != liar_.get(); }

  // A member, how it is used, and how many arguments that takes.
  struct Use {
    DISPID id;
    WORD flags;
    std::size_t parameters;
  };
  Use AnyUse(Choices& choices, IDispatch* object);
  VARIANT TameVariant(Choices& choices);
  void Call(Choices& choices, IDispatch* object, bool telling);
  void AskForNames(Choices& choices, IDispatch* object);
  void AskForInterfaces(Choices& choices, IDispatch* object);
  void WalkElements(Choices& choices, IUnknown* object);

  static constexpr std::size_t kSlots = 10;
  std::array<Com<IDispatch>, kSlots> slots_;
  Com<IDispatch> liar_;
  std::vector<std::unique_ptr<Impersonated>> components_;
  Choices* choices_ = nullptr;
  int nesting_ = 0;
  int succeeded_ = 0;
};

// An object of the client's that answers whatever the crowd's choices make it answer.
class Liar final : public OneInterface<IDispatch, IID_IDispatch> {
 public:
  explicit Liar(Crowd& crowd) : crowd_(crowd) {}
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count != nullptr) *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (info != nullptr) *info = nullptr;
    return crowd_.AnyCode();
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID,
                                          DISPID* ids) override {
    for (UINT i = 0; i < count; ++i) ids[i] = static_cast<DISPID>(i);
    return crowd_.AnyCode();
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT* result,
                                   EXCEPINFO* exception, UINT*) override {
    return crowd_.Answer(params, result, exception);
  }

 private:
  Crowd& crowd_;
};

// ---- Values ----

inline Crowd::Places::~Places() {
  for (VARIANT& variant : variants) VariantClear(&variant);
  for (BSTR text : texts) SysFreeString(text);
  for (IDispatch* object : objects) {
    if (object != nullptr) object->Release();
  }
  for (SAFEARRAY* array : arrays) {
    if (array != nullptr) SafeArrayDestroy(array);
  }
}

inline BSTR Crowd::AnyText(Choices& choices) {
  constexpr const wchar_t* kTexts[] = {L"",
                                       L" ",
                                       L"0",
                                       L"1",
                                       L"-1.5",
                                       L"1e400",
                                       L"2024-01-31",
                                       L"True",
                                       L"Name",
                                       L"GL",
                                       L"FName",
                                       L"FGroupID",
                                       L"FName = 'x'",
                                       L"FName like '*'",
                                       L"\xD800",
                                       L"\xDC00\xD800",
                                       L"\xFFFF",
                                       L"{a;b}",
                                       L"Initial catalog=ACC1",
                                       L"79228162514264337593543950336"};
  switch (choices.Below(8)) {
    case 0: return nullptr;
    case 1: return SysAllocStringLen(L"a\0b", 3);
    case 2: return SysAllocStringByteLen("odd", 3);
    case 3: return SysAllocString(std::wstring(choices.OneIn(10) ? 70000 : 300, L'x').c_str());
    default: return SysAllocString(choices.Of(kTexts));
  }
}

inline SAFEARRAY* Crowd::AnyArray(Choices& choices) {
  SAFEARRAYBOUND bounds[2] = {
      {static_cast<ULONG>(choices.Below(4)), static_cast<LONG>(choices.Below(5)) - 2},
      {static_cast<ULONG>(choices.Below(3)), 0}};
  constexpr VARTYPE kTypes[] = {VT_UI1, VT_UI1, VT_I4, VT_VARIANT, VT_BSTR, VT_DISPATCH};
  if (choices.OneIn(4)) return nullptr;
  return SafeArrayCreate(choices.Of(kTypes), choices.OneIn(4) ? 2 : 1, bounds);
}

inline VARIANT Crowd::AnyReference(Choices& choices, Places& places, int depth) {
  VARIANT reference;
  VariantInit(&reference);
  VARIANT content = AnyVariant(choices, places, depth + 1);
  if (choices.OneIn(8)) {
    reference.vt = static_cast<VARTYPE>(content.vt | VT_BYREF);  // a null pointer
    if (content.vt == VT_EMPTY || content.vt == VT_NULL) reference.vt = VT_BYREF | VT_VARIANT;
    VariantClear(&content);
    return reference;
  }
  if (choices.OneIn(2) || (content.vt & VT_BYREF) != 0 || content.vt <= VT_NULL) {
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &places.variants.emplace_back(content);
    return reference;
  }
  reference.vt = static_cast<VARTYPE>(content.vt | VT_BYREF);
  if ((content.vt & VT_ARRAY) != 0) {
    reference.pparray = &places.arrays.emplace_back(content.parray);
  } else if (content.vt == VT_BSTR) {
    reference.pbstrVal = &places.texts.emplace_back(content.bstrVal);
  } else if (content.vt == VT_DISPATCH || content.vt == VT_UNKNOWN) {
    reference.vt = VT_BYREF | VT_DISPATCH;
    reference.ppdispVal = &places.objects.emplace_back(content.pdispVal);
  } else if (content.vt == VT_DECIMAL) {
    reference.pvarVal = &places.variants.emplace_back(content);
  } else {
    auto& plain = places.plain.emplace_back();
    std::memcpy(plain.data(), &content.llVal, sizeof content.llVal);
    reference.byref = plain.data();
  }
  return reference;
}

// The caller clears it.
inline VARIANT Crowd::AnyVariant(Choices& choices, Places& places, int depth) {
  VARIANT value;
  VariantInit(&value);
  constexpr VARTYPE kPlain[] = {VT_EMPTY, VT_NULL, VT_I2,   VT_I4,  VT_R4,   VT_R8,
                                VT_CY,    VT_DATE, VT_BOOL, VT_I1,  VT_UI1,  VT_UI2,
                                VT_UI4,   VT_I8,   VT_UI8,  VT_INT, VT_UINT, VT_ERROR};
  constexpr LONGLONG kNumbers[] = {
      0, 1, 2, 5, -1, 32768, 255, 2147483647, -2147483648LL, 2024, 99, INT64_MAX, INT64_MIN};
  constexpr double kReals[] = {0.5, -1.5, 1e300, 45000.25, 1e18, -657435, 3e6};
  switch (choices.Below(depth < 3 ? 12 : 9)) {
    case 0:
    case 1:
      value.llVal = choices.Of(kNumbers);
      value.vt = VT_I4;
      break;
    case 2:
    case 3:
      value.vt = choices.Of(kPlain);
      value.llVal = choices.Of(kNumbers);
      if (value.vt == VT_R8 || value.vt == VT_DATE) value.dblVal = choices.Of(kReals);
      if (value.vt == VT_ERROR && choices.OneIn(2)) value.scode = DISP_E_PARAMNOTFOUND;
      break;
    case 4: {
      DECIMAL decimal{};
      decimal.Lo64 = choices.Next();
      decimal.Hi32 = static_cast<ULONG>(choices.Next());
      decimal.scale = static_cast<BYTE>(choices.OneIn(5) ? 255 : choices.Below(29));
      decimal.sign = choices.OneIn(2) ? DECIMAL_NEG : 0;
      value.decVal = decimal;
      value.vt = VT_DECIMAL;
      break;
    }
    case 5:
    case 6:
      value.vt = VT_BSTR;
      value.bstrVal = AnyText(choices);
      break;
    case 7:
    case 8:
      value.vt = choices.OneIn(5) ? VT_UNKNOWN : VT_DISPATCH;
      value.pdispVal = AnyObject(choices).Detach();
      break;
    case 9:
      value.parray = AnyArray(choices);
      value.vt = VT_ARRAY | VT_UI1;
      if (value.parray != nullptr) {
        VARTYPE type = VT_EMPTY;
        SafeArrayGetVartype(value.parray, &type);
        value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
      }
      break;
    case 10: return AnyReference(choices, places, depth);
    default:
      if (choices.OneIn(6)) value.vt = static_cast<VARTYPE>(choices.OneIn(2) ? 99 : VT_LPWSTR);
  }
  return value;
}

// ---- Objects ----

inline Com<IDispatch> Crowd::NewObject(Choices& choices) {
  if (choices.OneIn(5)) return liar_;
  const auto classes = PublicClasses();
  switch (choices.Below(8)) {
    case 0: return Create(L"QDL.Dictionary");
    case 1: return Create(L"QDL.Vector");
    case 2: return Create(L"QDL.Recordset");
    default: return Create(ToWide("QDCLGL." + std::string(choices.Of(classes)->name())).c_str());
  }
}

inline Com<IDispatch> Crowd::AnyObject(Choices& choices) {
  if (choices.OneIn(8)) return {};
  return choices.OneIn(2) ? choices.Of(slots_) : NewObject(choices);
}

inline void Crowd::Keep(const VARIANT& value) {
  if (value.vt != VT_DISPATCH && value.vt != VT_UNKNOWN) return;
  if (value.punkVal == nullptr || choices_->OneIn(3)) return;
  if (auto object = Query<IDispatch>(value.punkVal, IID_IDispatch)) {
    slots_[choices_->Below(kSlots)] = object;
  } else {
    WalkElements(*choices_, value.punkVal);
  }
}

inline Crowd::Crowd() : liar_(new Liar(*this)) {
  constexpr const wchar_t* kComponents[] = {L"QDSVBase.BaseInfo",
                                            L"QDSVGLVoucherGroup.VoucherGroupInfo",
                                            L"QDSVGLVoucherGroup.VoucherGroupUpdate",
                                            L"QDCMtsCacheService.CacheFacade",
                                            L"QDSVGLVoucher.VoucherInfo",
                                            L"QDSVGLVoucher.VoucherUpdate"};
  for (const wchar_t* component : kComponents) {
    components_.push_back(std::make_unique<Impersonated>(component, liar_));
  }
}

inline Crowd::~Crowd() {
  choices_ = nullptr;
  slots_ = {};
}

inline HRESULT Crowd::AnyCode() {
  constexpr HRESULT kCodes[] = {S_OK,
                                S_OK,
                                S_OK,
                                S_OK,
                                S_OK,
                                S_FALSE,
                                E_FAIL,
                                E_NOTIMPL,
                                E_OUTOFMEMORY,
                                DISP_E_MEMBERNOTFOUND,
                                DISP_E_EXCEPTION,
                                DISP_E_TYPEMISMATCH,
                                DISP_E_UNKNOWNNAME,
                                E_POINTER};
  return choices_ == nullptr ? E_FAIL : choices_->Of(kCodes);
}

inline HRESULT Crowd::Answer(DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception) {
  constexpr int kDeepest = 4;
  if (choices_ == nullptr || nesting_ >= kDeepest) return E_FAIL;
  ++nesting_;
  Choices& choices = *choices_;
  if (choices.OneIn(8)) {
    const Com<IDispatch> object = choices.Of(slots_);
    if (IsOurs(object)) Call(choices, object.get(), false);
  }
  for (UINT i = 0; i < params->cArgs; ++i) {
    const VARIANT& argument = params->rgvarg[i];
    if (argument.vt == (VT_BYREF | VT_I4) && choices.OneIn(2)) *argument.plVal = 7;
    if (argument.vt == (VT_BYREF | VT_VARIANT) && choices.OneIn(2)) VariantClear(argument.pvarVal);
  }
  const HRESULT code = AnyCode();
  if (code == DISP_E_EXCEPTION && exception != nullptr) {
    *exception = {};
    exception->scode = static_cast<SCODE>(choices.Next());
    if (choices.OneIn(2)) exception->bstrDescription = AnyText(choices);
    if (choices.OneIn(2)) exception->bstrSource = AnyText(choices);
  }
  if (result != nullptr && (SUCCEEDED(code) || choices.OneIn(9))) {
    Places places;
    VARIANT answer = AnyVariant(choices, places);
    // A reference would outlive what it refers to.
    if ((answer.vt & VT_BYREF) == 0) *result = answer;
  }
  --nesting_;
  return code;
}

// ---- Calls ----

// A member as the type library tells it, most of the time; otherwise anything.
inline Crowd::Use Crowd::AnyUse(Choices& choices, IDispatch* object) {
  Com<ITypeInfo> info;
  TYPEATTR* attributes = nullptr;
  if (!choices.OneIn(6) && SUCCEEDED(object->GetTypeInfo(0, 0, info.Put())) &&
      SUCCEEDED(info->GetTypeAttr(&attributes))) {
    const UINT count = attributes->cFuncs;
    info->ReleaseTypeAttr(attributes);
    FUNCDESC* function = nullptr;
    if (count > 0 &&
        SUCCEEDED(info->GetFuncDesc(static_cast<UINT>(choices.Below(count)), &function))) {
      const Use use{function->memid, static_cast<WORD>(function->invkind),
                    static_cast<std::size_t>(function->cParams)};
      info->ReleaseFuncDesc(function);
      return use;
    }
  }
  constexpr WORD kFlags[] = {1, 2, 3, 3, 3, 4, 4, 8, 12, 0, 15, 0xFFFF};
  return {static_cast<DISPID>(choices.Below(100)) - 6, choices.Of(kFlags),
          choices.OneIn(10) ? 70 : choices.Below(5)};
}

// A number or a text that suits many members.
inline VARIANT Crowd::TameVariant(Choices& choices) {
  VARIANT value;
  VariantInit(&value);
  value.vt = choices.OneIn(3) ? VT_BSTR : VT_I4;
  value.lVal = static_cast<LONG>(choices.Below(4));
  if (value.vt == VT_BSTR) value.bstrVal = SysAllocString(choices.OneIn(2) ? L"1" : L"FName");
  return value;
}

inline void Crowd::Call(Choices& choices, IDispatch* object, bool telling) {
  const auto [id, flags, parameters] = AnyUse(choices, object);
  const bool puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  Places places;
  std::vector<VARIANT> arguments(choices.OneIn(8) ? choices.Below(parameters + 2) : parameters);
  for (VARIANT& argument : arguments) {
    argument = choices.OneIn(2) ? TameVariant(choices) : AnyVariant(choices, places);
  }
  std::vector<DISPID> named;
  if (puts && !choices.OneIn(8)) named.push_back(DISPID_PROPERTYPUT);
  while (named.size() < arguments.size() && choices.OneIn(8)) {
    named.push_back(static_cast<DISPID>(choices.Below(6)) - (choices.OneIn(9) ? 9 : 0));
  }
  DISPPARAMS params{arguments.data(), named.data(), static_cast<UINT>(arguments.size()),
                    static_cast<UINT>(named.size())};
  if (choices.OneIn(60)) params.rgvarg = nullptr;
  if (choices.OneIn(60)) params.rgdispidNamedArgs = nullptr;
  if (choices.OneIn(60)) params.cNamedArgs = params.cArgs + 1, params.rgdispidNamedArgs = nullptr;
  if (telling) {
    std::string words;
    for (const VARIANT& argument : arguments) words += " " + std::to_string(argument.vt);
    std::printf("  id %ld flags %d, %zu named, types in their order:%s\n", id, flags, named.size(),
                words.c_str());
    std::fflush(stdout);
  }
  VARIANT result;
  VariantInit(&result);
  EXCEPINFO exception{};
  UINT place = 0;
  const HRESULT code =
      object->Invoke(id, IID_NULL, 0, flags, choices.OneIn(60) ? nullptr : &params,
                     choices.OneIn(9) ? nullptr : &result, choices.OneIn(9) ? nullptr : &exception,
                     choices.OneIn(9) ? nullptr : &place);
  if (SUCCEEDED(code)) ++succeeded_;
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  Keep(result);
  VariantClear(&result);
  for (VARIANT& argument : arguments) VariantClear(&argument);
}

inline void Crowd::AskForNames(Choices& choices, IDispatch* object) {
  wchar_t name[] = L"Count", other[] = L"\xD800";
  LPOLESTR names[] = {choices.OneIn(5) ? nullptr : name, choices.OneIn(3) ? nullptr : other, name};
  DISPID ids[3] = {};
  object->GetIDsOfNames(IID_NULL, choices.OneIn(9) ? nullptr : names,
                        static_cast<UINT>(choices.Below(4)), 0, choices.OneIn(9) ? nullptr : ids);
  Com<ITypeInfo> info;
  object->GetTypeInfo(static_cast<UINT>(choices.Below(3)), 0,
                      choices.OneIn(4) ? nullptr : info.Put());
  UINT count = 0;
  object->GetTypeInfoCount(choices.OneIn(4) ? nullptr : &count);
}

inline void Crowd::AskForInterfaces(Choices& choices, IDispatch* object) {
  const IID kIds[] = {IID_IUnknown,     IID_IDispatch,         IID_IProvideClassInfo,
                      IID_IEnumVARIANT, IID_ISupportErrorInfo, IID_IClassFactory,
                      IID_NULL};
  Com<IUnknown> found;
  const IID& id = choices.Of(kIds);
  object->QueryInterface(id, choices.OneIn(9) ? nullptr : found.PutVoid());
  if (const auto provider = Query<IProvideClassInfo>(object, IID_IProvideClassInfo)) {
    Com<ITypeInfo> info;
    provider->GetClassInfo(choices.OneIn(3) ? nullptr : info.Put());
  }
}

inline void Crowd::WalkElements(Choices& choices, IUnknown* object) {
  const auto elements = Query<IEnumVARIANT>(object, IID_IEnumVARIANT);
  for (int left = 6; elements && left > 0; --left) {
    VARIANT items[4] = {};
    ULONG fetched = 0;
    switch (choices.Below(6)) {
      case 0: elements->Reset(); break;
      case 1: elements->Skip(choices.OneIn(3) ? 0xFFFFFFFF : 2); break;
      case 2: {
        Com<IEnumVARIANT> clone;
        elements->Clone(choices.OneIn(3) ? nullptr : clone.Put());
        break;
      }
      case 3: elements->Next(choices.OneIn(2) ? 0 : 1, nullptr, nullptr); break;
      default:
        elements->Next(static_cast<ULONG>(choices.Below(5)), items,
                       choices.OneIn(3) ? nullptr : &fetched);
    }
    for (VARIANT& item : items) {
      if (item.vt == VT_DISPATCH && item.pdispVal != nullptr && choices.OneIn(2)) {
        slots_[choices.Below(kSlots)] = Com<IDispatch>(item.pdispVal);
      }
      VariantClear(&item);
    }
  }
}

inline void Crowd::Step(Choices& choices, bool telling) {
  choices_ = &choices;
  const std::size_t slot = choices.Below(kSlots);
  const Com<IDispatch> object = slots_[slot];
  if (!IsOurs(object) || choices.OneIn(20)) {
    if (telling) std::printf("  a new object\n");
    slots_[slot] = NewObject(choices);
  } else if (choices.OneIn(20)) {
    if (telling) std::printf("  names of the object in %zu\n", slot);
    AskForNames(choices, object.get());
  } else if (choices.OneIn(20)) {
    if (telling) std::printf("  interfaces of the object in %zu\n", slot);
    AskForInterfaces(choices, object.get());
  } else {
    if (telling) {
      Com<IProvideClassInfo> provider =
          Query<IProvideClassInfo>(object.get(), IID_IProvideClassInfo);
      Com<ITypeInfo> info;
      OwnedText name;
      if (provider && SUCCEEDED(provider->GetClassInfo(info.Put()))) {
        info->GetDocumentation(MEMBERID_NIL, name.Put(), nullptr, nullptr, nullptr);
      }
      std::printf("  object %s in %zu:\n", name.ToText().c_str(), slot);
    }
    Call(choices, object.get(), telling);
  }
  choices_ = nullptr;
}

}  // namespace qdclgl::automation::testing
