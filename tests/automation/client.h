// What the C++ clients share: cases, values as text, late-bound calls with everything that can be
// seen of their outcome, and objects of the client's own.
#pragma once

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/automation/com.h"

namespace qdclgl::automation::testing {

// ---- Cases ----

inline std::string case_name;
inline std::string case_problem;
inline int failed_cases = 0;

inline void EndCase() {
  if (case_name.empty()) return;
  if (case_problem.empty()) {
    std::printf("ok %s\n", case_name.c_str());
  } else {
    std::printf("FAILED %s:%s\n", case_name.c_str(), case_problem.c_str());
    ++failed_cases;
  }
  std::fflush(stdout);
}

inline void TestCase(const char* name) {
  EndCase();
  case_name = name;
  case_problem.clear();
}

inline void Check(const std::string& actual, const std::string& expected) {
  if (actual != expected) case_problem += " got <" + actual + "> instead of <" + expected + ">";
}
inline void Check(bool holds, const char* what) {
  if (!holds) case_problem += std::string(" not so: ") + what;
}

inline int Finish() {
  EndCase();
  std::printf("END\n");
  return failed_cases;
}

// ---- Values ----

inline std::string CodeText(HRESULT code) {
  char text[16];
  std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(code));
  return text;
}

// "I4 5", "BSTR text", "&VARIANT I4 5" for references.
std::string Text(const VARIANT& value);

inline std::string PlainText(VARTYPE type, const void* at) {
  const auto number = [](auto value) { return std::to_string(value); };
  switch (type) {
    case VT_BOOL:
      return *static_cast<const VARIANT_BOOL*>(at) != VARIANT_FALSE ? "BOOL True" : "BOOL False";
    case VT_UI1: return "UI1 " + number(*static_cast<const BYTE*>(at));
    case VT_I2: return "I2 " + number(*static_cast<const SHORT*>(at));
    case VT_I4: return "I4 " + number(*static_cast<const LONG*>(at));
    case VT_R4: return "R4 " + number(*static_cast<const float*>(at));
    case VT_R8: return "R8 " + number(*static_cast<const double*>(at));
    case VT_CY: return "CY " + number(static_cast<const CY*>(at)->int64);
    case VT_DATE: return "DATE " + number(*static_cast<const double*>(at));
    case VT_BSTR: {
      const BSTR text = *static_cast<const BSTR*>(at);
      return "BSTR " + FromWide({text != nullptr ? text : L"", SysStringLen(text)});
    }
    case VT_DISPATCH: return *static_cast<void* const*>(at) ? "DISPATCH" : "DISPATCH Nothing";
    case VT_UNKNOWN: return *static_cast<void* const*>(at) ? "UNKNOWN" : "UNKNOWN Nothing";
    default: return "VT " + number(type);
  }
}

inline std::string Text(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY: return "Empty";
    case VT_NULL: return "Null";
    case VT_ERROR: return "ERROR " + CodeText(value.scode);
    case VT_BYREF | VT_VARIANT: return "&VARIANT " + Text(*value.pvarVal);
    case VT_DECIMAL: {
      const DECIMAL& decimal = value.decVal;
      return "DECIMAL " + std::to_string(decimal.Lo64) + "/" + std::to_string(decimal.scale);
    }
    case VT_ARRAY | VT_UI1: {
      std::string text = "BYTES";
      for (ULONG i = 0; i < value.parray->rgsabound[0].cElements; ++i) {
        text += " " + std::to_string(static_cast<const BYTE*>(value.parray->pvData)[i]);
      }
      return text;
    }
    default: break;
  }
  if ((value.vt & VT_BYREF) != 0) {
    return "&" + PlainText(static_cast<VARTYPE>(value.vt & ~VT_BYREF), value.byref);
  }
  return PlainText(value.vt, &value.bVal);
}

// An owned VARIANT that is written as one writes a value.
class Value {
 public:
  Value() { VariantInit(&content_); }
  Value(int number) : Value() { Fill(VT_I4, content_.lVal, static_cast<LONG>(number)); }
  Value(double number) : Value() { Fill(VT_R8, content_.dblVal, number); }
  Value(bool truth) : Value() {
    Fill(VT_BOOL, content_.boolVal, truth ? VARIANT_TRUE : VARIANT_FALSE);
  }
  Value(const wchar_t* text) : Value() { Fill(VT_BSTR, content_.bstrVal, SysAllocString(text)); }
  Value(IDispatch* object) : Value() {
    if (object != nullptr) object->AddRef();
    Fill(VT_DISPATCH, content_.pdispVal, object);
  }
  Value(const Com<IDispatch>& object) : Value(object.get()) {}
  Value(const Value& other) : Value() {
    VariantCopy(&content_, const_cast<VARIANT*>(&other.content_));
  }
  Value& operator=(const Value& other) {
    VariantCopy(&content_, const_cast<VARIANT*>(&other.content_));
    return *this;
  }
  ~Value() { VariantClear(&content_); }

  VARIANT* get() { return &content_; }
  const VARIANT& operator*() const { return content_; }
  VARIANT* operator->() { return &content_; }

  // A reference to a variable.
  static VARIANT To(VARTYPE type, void* variable) {
    VARIANT reference;
    VariantInit(&reference);
    reference.vt = static_cast<VARTYPE>(VT_BYREF | type);
    reference.byref = variable;
    return reference;
  }
  static VARIANT Missing() {
    VARIANT missing;
    VariantInit(&missing);
    missing.vt = VT_ERROR;
    missing.scode = DISP_E_PARAMNOTFOUND;
    return missing;
  }

 private:
  template <class Field, class Content>
  void Fill(VARTYPE type, Field& field, Content content) {
    field = content;
    content_.vt = type;
  }
  VARIANT content_;
};

// ---- Calls ----

struct Outcome {
  HRESULT code = S_OK;
  Value result;
  UINT bad_argument = 99;
  std::string exception;  // "800A0005 [source] description" behind DISP_E_EXCEPTION

  Com<IDispatch> object() const {
    return (*result).vt == VT_DISPATCH ? Com<IDispatch>((*result).pdispVal) : Com<IDispatch>();
  }
};

inline std::string Text(const Outcome& outcome) {
  if (outcome.code == DISP_E_EXCEPTION) return outcome.exception;
  if (FAILED(outcome.code)) {
    const bool has_place = outcome.bad_argument != 99;
    return CodeText(outcome.code) +
           (has_place ? " at " + std::to_string(outcome.bad_argument) : std::string());
  }
  return Text(*outcome.result);
}

constexpr DISPID kNoSuchId = -1;

inline DISPID IdOf(IDispatch* object, const wchar_t* name) {
  auto* text = const_cast<LPOLESTR>(name);
  DISPID id = kNoSuchId;
  object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
  return id;
}

// A call with arguments in the order in which one writes them: positional ones, then those named by
// `named`.
inline Outcome Invoke(IDispatch* object, DISPID id, WORD flags, std::vector<VARIANT> arguments,
                      std::vector<DISPID> named = {}) {
  std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
  std::vector<DISPID> reversed_ids(named.rbegin(), named.rend());
  DISPPARAMS params{reversed.data(), reversed_ids.data(), static_cast<UINT>(reversed.size()),
                    static_cast<UINT>(reversed_ids.size())};
  Outcome outcome;
  EXCEPINFO exception{};
  outcome.code = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params,
                                outcome.result.get(), &exception, &outcome.bad_argument);
  if (outcome.code == DISP_E_EXCEPTION) {
    OwnedText source, description;
    *source.Put() = exception.bstrSource;
    *description.Put() = exception.bstrDescription;
    outcome.exception =
        CodeText(exception.scode) + " [" + source.ToText() + "] " + description.ToText();
  }
  return outcome;
}

constexpr WORD kRead = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

inline std::vector<VARIANT> Contents(const std::vector<Value>& values) {
  std::vector<VARIANT> contents;
  for (const Value& value : values) contents.push_back(*value);
  return contents;
}

inline Outcome Get(IDispatch* object, const wchar_t* name, const std::vector<Value>& values = {}) {
  return Invoke(object, IdOf(object, name), kRead, Contents(values));
}
inline Outcome Get(const Com<IDispatch>& object, const wchar_t* name,
                   const std::vector<Value>& values = {}) {
  return Get(object.get(), name, values);
}
// The value to put is the last one.
inline Outcome Put(const Com<IDispatch>& object, const wchar_t* name,
                   const std::vector<Value>& values, WORD flags = DISPATCH_PROPERTYPUT) {
  return Invoke(object.get(), IdOf(object.get(), name), flags, Contents(values),
                {DISPID_PROPERTYPUT});
}

inline Com<IDispatch> Create(const wchar_t* prog_id) {
  CLSID class_id;
  Com<IDispatch> object;
  if (SUCCEEDED(CLSIDFromProgID(prog_id, &class_id))) {
    CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.PutVoid());
  }
  return object;
}

// ---- Objects of the client's own ----

// A call as it reached such an object.
struct Received {
  DISPPARAMS* params;
  VARIANT* result;
  EXCEPINFO* exception;

  // The argument at a position from 0, in the order in which one writes them.
  VARIANT& argument(UINT position) const { return params->rgvarg[params->cArgs - 1 - position]; }
};

// An object that offers some names, keeps a log of its calls and answers them.
class Peer final : public OneInterface<IDispatch, IID_IDispatch> {
 public:
  using Answer = std::function<HRESULT(const Received&)>;

  explicit Peer(std::map<std::wstring, Answer> members) {
    for (auto& [name, answer] : members) {
      names_.push_back(name);
      answers_.push_back(std::move(answer));
    }
  }

  static inline std::string log;
  // Names that parameters have; their ids begin at 100.
  static inline const std::vector<std::wstring> kParameters = {
      L"Name", L"nYear", L"Period", L"Group", L"Number", L"VoucherGroupID", L"HelperCode"};

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    HRESULT code = S_OK;
    for (UINT i = 0; i < count; ++i) {
      ids[i] = Place(i == 0 ? names_ : kParameters, names[i], i == 0 ? 1 : 100);
      if (ids[i] == kNoSuchId) code = DISP_E_UNKNOWNNAME;
    }
    return code;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT*) override {
    const auto place = static_cast<std::size_t>(id - 1);
    if (place >= names_.size()) return DISP_E_MEMBERNOTFOUND;
    log += FromWide(names_[place]) + "(";
    for (UINT i = params->cArgs; i > 0; --i) {
      if (i < params->cArgs) log += ", ";
      if (i <= params->cNamedArgs) {
        const DISPID named = params->rgdispidNamedArgs[i - 1];
        log += named < 0 ? std::string("value")
                         : FromWide(kParameters[static_cast<std::size_t>(named - 100)]);
        log += ":=";
      }
      log += Text(params->rgvarg[i - 1]);
    }
    log += ") flags " + std::to_string(flags) + "\n";
    return answers_[place]({params, result, exception});
  }

 private:
  static DISPID Place(const std::vector<std::wstring>& names, const wchar_t* name, DISPID first) {
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (_wcsicmp(names[i].c_str(), name) == 0) return first + static_cast<DISPID>(i);
    }
    return kNoSuchId;
  }

  std::vector<std::wstring> names_;
  std::vector<Answer> answers_;
};

inline Com<IDispatch> NewPeer(std::map<std::wstring, Peer::Answer> members) {
  return Com<IDispatch>(new Peer(std::move(members)));
}

inline std::string TakeLog() { return std::exchange(Peer::log, {}); }

inline HRESULT Return(const Received& call, const Value& value) {
  return call.result != nullptr ? VariantCopy(call.result, const_cast<VARIANT*>(&*value)) : S_OK;
}

// In this process, objects of a ProgID are `object` while one lives. A ProgID that the machine
// doesn't know is registered for that time.
class Impersonated {
 public:
  Impersonated(const wchar_t* prog_id, Com<IDispatch> object)
      : factory_(new Factory(std::move(object))) {
    CLSID class_id;
    if (FAILED(CLSIDFromProgID(prog_id, &class_id))) class_id = Register(prog_id);
    CoRegisterClassObject(class_id, factory_.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                          &cookie_);
  }
  ~Impersonated() {
    CoRevokeClassObject(cookie_);
    if (!registered_.empty()) RegDeleteTreeW(HKEY_CLASSES_ROOT, registered_.c_str());
  }
  Impersonated(const Impersonated&) = delete;
  Impersonated& operator=(const Impersonated&) = delete;

 private:
  class Factory final : public OneInterface<IClassFactory, IID_IClassFactory> {
   public:
    explicit Factory(Com<IDispatch> object) : object_(std::move(object)) {}
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
      return object_->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

   private:
    Com<IDispatch> object_;
  };

  CLSID Register(const wchar_t* prog_id) {
    registered_ = prog_id;
    CLSID class_id;
    CoCreateGuid(&class_id);
    wchar_t text[40];
    const int length = StringFromGUID2(class_id, text, 40);
    RegSetKeyValueW(HKEY_CLASSES_ROOT, (registered_ + L"\\CLSID").c_str(), nullptr, REG_SZ, text,
                    static_cast<DWORD>(length * static_cast<int>(sizeof(wchar_t))));
    return class_id;
  }

  Com<IClassFactory> factory_;
  DWORD cookie_ = 0;
  std::wstring registered_;
};

}  // namespace qdclgl::automation::testing
