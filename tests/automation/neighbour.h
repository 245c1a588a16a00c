// A hostile neighbour: everything that the library calls out to, each object of it answering
// rightly until, at one chosen call, it does some harm.
#pragma once

#include <algorithm>
#include <deque>

#include "tests/automation/client.h"

namespace qdclgl::automation::testing {

// What a neighbour does at the chosen call; what is left out it doesn't do there.
struct Deed {
  std::string name;
  std::function<void()> act = {};                        // at any call; the right answer follows
  std::function<HRESULT(const Received&)> answer = {};   // in place of the right answer
  std::function<HRESULT(UINT, DISPID*)> names = {};      // in place of the ids of names
  std::function<HRESULT(IUnknown*, void**)> query = {};  // in place of an interface
};

// What kind of call out it was, and of what.
enum class Step { kQuery, kNames, kInvoke, kEnd };
struct CallMade {
  Step step;
  int role;
  std::wstring name;
  friend bool operator==(const CallMade&, const CallMade&) = default;
};

// The calls out of one operation, and the deed at one of them.
class Neighbourhood {
 public:
  // The calls out that `operation` makes.
  template <class Operation>
  std::vector<CallMade> CallsOf(Operation operation) {
    calls_.clear();
    records_ = true;
    operation();
    records_ = false;
    return std::move(calls_);
  }

  // Runs it with a deed at the call of a position.
  template <class Operation>
  void Run(Operation operation, std::size_t position, const Deed& deed) {
    left_ = position + 1;
    deed_ = &deed;
    operation();
    deed_ = nullptr;
  }

  // At each call out: the deed, where it has come to that. Null when there is none to do.
  const Deed* At(Step step, int role, std::wstring_view name = {}) {
    if (records_) calls_.push_back({step, role, std::wstring(name)});
    if (deed_ == nullptr || left_ == 0 || --left_ > 0) return nullptr;
    const Deed* deed = std::exchange(deed_, nullptr);
    if (deed->act) {
      deed->act();
      ++done_;
    }
    return deed;
  }

  // An answer of the deed's, which takes the place of the right one.
  template <class Answer, class... Args>
  HRESULT Give(const Answer& answer, Args&&... args) {
    ++done_;
    return answer(std::forward<Args>(args)...);
  }
  int done() const { return done_; }

  // The only references of the client's own to what is at work.
  Com<IDispatch> subject;
  Com<IEnumVARIANT> walk;

 private:
  bool records_ = false;
  std::vector<CallMade> calls_;
  std::size_t left_ = 0;
  const Deed* deed_ = nullptr;
  int done_ = 0;
};

inline Neighbourhood home;

class Neighbour final : public IDispatch {
 public:
  // What it is taken for, by the names that it doesn't offer, and which answers are the right ones.
  enum class Role { kComponent, kRecordset, kColumns, kField, kDictionary, kList };

  static inline int alive = 0;

  explicit Neighbour(Role role, int position = 0) : role_(role), position_(position) { ++alive; }
  Neighbour(const Neighbour&) = delete;
  Neighbour& operator=(const Neighbour&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown) {
      const Deed* deed = home.At(Step::kQuery, RoleNumber());
      if (deed != nullptr && deed->query) return home.Give(deed->query, this, object);
      if (iid != IID_IDispatch) return E_NOINTERFACE;
    }
    *object = this;
    AddRef();
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
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    const Deed* deed = home.At(Step::kNames, RoleNumber(), names[0]);
    if (deed != nullptr && deed->names) return home.Give(deed->names, count, ids);
    if (!Offers(names[0])) return DISP_E_UNKNOWNNAME;
    for (UINT i = 0; i < count; ++i) ids[i] = IdOfName(names[i]);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT*) override {
    const Received call{params, result, exception};
    const bool known = id > 0 && static_cast<std::size_t>(id) <= Names().size();
    const std::wstring name = known ? Names()[static_cast<std::size_t>(id - 1)] : std::wstring();
    const Deed* deed = home.At(Step::kInvoke, RoleNumber(), name);
    if (deed != nullptr && deed->answer) return home.Give(deed->answer, call);
    return known || id == DISPID_VALUE ? Answer(name, call) : DISP_E_MEMBERNOTFOUND;
  }

 private:
  ~Neighbour() {
    home.At(Step::kEnd, RoleNumber());
    --alive;
  }

  int RoleNumber() const { return static_cast<int>(role_); }

  static std::deque<std::wstring>& Names() {
    static std::deque<std::wstring> names;
    return names;
  }
  static DISPID IdOfName(const wchar_t* name) {
    std::deque<std::wstring>& names = Names();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) {
      names.emplace_back(name);
      return static_cast<DISPID>(names.size());
    }
    return static_cast<DISPID>(found - names.begin() + 1);
  }

  bool Offers(std::wstring_view name) const {
    if (name == L"MoveNext") return role_ == Role::kRecordset;
    if (name == L"Lookup") return role_ == Role::kDictionary;
    if (name == L"LowerBound") return role_ == Role::kList;
    return true;
  }

  HRESULT Answer(std::wstring_view name, const Received& call);

  Role role_;
  int position_;
  ULONG references_ = 0;
};

// A new object of a class, by a factory that is kept: the registry is asked once.
inline Com<IDispatch> MakeNew(const std::wstring& prog_id) {
  // Left to the process: the server may be gone when its variables end.
  static auto& factories = *new std::map<std::wstring, Com<IClassFactory>>;
  Com<IClassFactory>& factory = factories[prog_id];
  CLSID class_id;
  if (!factory && SUCCEEDED(CLSIDFromProgID(prog_id.c_str(), &class_id))) {
    CoGetClassObject(class_id, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, factory.PutVoid());
  }
  Com<IDispatch> object;
  if (factory) factory->CreateInstance(nullptr, IID_IDispatch, object.PutVoid());
  return object;
}

inline Com<IDispatch> NewNeighbour(Neighbour::Role role, int position = 0) {
  return Com<IDispatch>(new Neighbour(role, position));
}

inline constexpr const wchar_t* kIds[] = {L"FGroupID", L"FAccountID", L"FCurrencyID",
                                          L"FVoucherID"};
inline constexpr int kIdCount = 4;
inline constexpr int kRowCount = 2;

// The right answers.
inline HRESULT Neighbour::Answer(std::wstring_view name, const Received& call) {
  const auto is = [name](const wchar_t* other) { return _wcsicmp(name.data(), other) == 0; };
  switch (role_) {
    case Role::kComponent:
      if (is(L"Clone")) return Return(call, NewNeighbour(Role::kComponent));
      if (is(L"GetList") || is(L"GetListByAccount")) {
        return Return(call, NewNeighbour(Role::kRecordset));
      }
      if (name.starts_with(L"GetDetail") || is(L"ListProfiles")) {
        return Return(call, NewNeighbour(Role::kDictionary));
      }
      return Return(call, 8);
    case Role::kRecordset:
      if (is(L"EOF")) return Return(call, position_ >= kRowCount);
      if (is(L"BOF")) return Return(call, false);
      if (is(L"MoveFirst")) position_ = 0;
      if (is(L"MoveNext")) ++position_;
      if (is(L"Fields")) return Return(call, NewNeighbour(Role::kColumns));
      if (is(L"Clone")) return Return(call, NewNeighbour(Role::kRecordset));
      return Return(call, kRowCount);
    case Role::kColumns:
      if (is(L"Count")) return Return(call, 2);
      if (!is(L"Item")) return S_OK;
      return Return(call, NewNeighbour(Role::kField, static_cast<int>(call.argument(0).lVal)));
    case Role::kField:
      if (is(L"Name")) return Return(call, position_ == 0 ? kIds[0] : L"Held");
      if (position_ == 0) return Return(call, 5);
      return Return(call, NewNeighbour(Role::kComponent));
    case Role::kDictionary:
      if (is(L"Count")) return Return(call, kIdCount + 2);
      if (is(L"Name")) {
        const int at = static_cast<int>(call.argument(0).lVal) - 1;
        return Return(call, at < kIdCount ? kIds[at] : at == kIdCount ? L"Held" : L"_Entries");
      }
      if (is(L"Value") && std::wstring_view(call.argument(0).bstrVal) == L"Held") {
        return Return(call, NewNeighbour(Role::kComponent));
      }
      if (is(L"Value") && std::wstring_view(call.argument(0).bstrVal) == L"_Entries") {
        return Return(call, NewNeighbour(Role::kList));
      }
      return Return(call, 5);
    case Role::kList:
      if (is(L"LowerBound") || is(L"UpperBound")) return Return(call, 1);
      return Return(call, MakeNew(L"QDL.Dictionary"));
  }
  return E_NOTIMPL;
}

// In this process and while this lives, all components are neighbours. Those that the machine
// doesn't know get an entry in its registry meanwhile.
class HostileComponents {
 public:
  explicit HostileComponents(std::initializer_list<const wchar_t*> prog_ids)
      : factory_(new Factory) {
    for (const wchar_t* prog_id : prog_ids) Add(prog_id);
  }
  ~HostileComponents() {
    for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
    for (const std::wstring& key : keys_) RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.c_str());
  }
  HostileComponents(const HostileComponents&) = delete;
  HostileComponents& operator=(const HostileComponents&) = delete;

 private:
  class Factory final : public OneInterface<IClassFactory, IID_IClassFactory> {
   public:
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
      return NewNeighbour(Neighbour::Role::kComponent)->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
  };

  void Add(const wchar_t* prog_id) {
    CLSID class_id;
    if (FAILED(CLSIDFromProgID(prog_id, &class_id))) {
      CoCreateGuid(&class_id);
      wchar_t text[40];
      StringFromGUID2(class_id, text, 40);
      keys_.push_back(std::wstring(L"Software\\Classes\\") + prog_id);
      RegSetKeyValueW(HKEY_LOCAL_MACHINE, (keys_.back() + L"\\CLSID").c_str(), nullptr, REG_SZ,
                      text, static_cast<DWORD>((wcslen(text) + 1) * sizeof *text));
    }
    DWORD cookie = 0;
    if (SUCCEEDED(CoRegisterClassObject(class_id, factory_.get(), CLSCTX_INPROC_SERVER,
                                        REGCLS_MULTIPLEUSE, &cookie))) {
      cookies_.push_back(cookie);
    }
  }

  Com<IClassFactory> factory_;
  std::vector<DWORD> cookies_;
  std::vector<std::wstring> keys_;
};

}  // namespace qdclgl::automation::testing
