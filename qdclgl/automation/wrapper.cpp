#include "qdclgl/automation/wrapper.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "qdclgl/automation/context_interface.h"
#include "qdclgl/automation/crossing.h"
#include "qdclgl/automation/enumeration.h"
#include "qdclgl/automation/errors.h"
#include "qdclgl/automation/identity.h"
#include "qdclgl/automation/member_ids.h"
#include "qdclgl/automation/module.h"
#include "qdclgl/automation/type_library.h"
#include "qdclgl/automation/values.h"
#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/session/transaction_context.h"

namespace qdclgl::automation {

namespace {

// A name as the rows have it: ASCII. Empty for any other, and for null.
class MemberName {
 public:
  explicit MemberName(const wchar_t* name) {
    for (; name != nullptr && name[length_] != 0; ++length_) {
      if (length_ == text_.size() || name[length_] >= 0x80) {
        length_ = 0;
        return;
      }
      text_[length_] = static_cast<char>(name[length_]);
    }
  }
  std::string_view text() const { return {text_.data(), length_}; }

 private:
  std::array<char, 64> text_;
  std::size_t length_ = 0;
};

// The arguments of an incoming call, in our order: positional ones, then the value of a put, then
// named ones.
class Incoming {
 public:
  explicit Incoming(const DISPPARAMS& params) : params_(params) {}

  // Errors: 13 for a value that has no counterpart.
  void Take(const ClassMember& member) {
    const UINT count = params_.cArgs;
    if (count == 0) return;
    const UINT named = params_.cNamedArgs;
    const UINT values = named > 0 && params_.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT ? 1 : 0;
    arguments_.reserve(count);
    takes_lists_ = member.row.options.array_dimensions > 0;
    const auto type_at = [&](std::size_t id) {
      return id < member.parameters.size() ? member.parameters[id].type : member.row.PutType();
    };
    for (UINT i = count; i > named; --i) Add(i - 1, {}, type_at(count - i));
    if (values > 0) Add(0, {}, member.row.PutType());
    for (UINT i = named; i > values; --i) {
      const auto id = static_cast<std::size_t>(params_.rgdispidNamedArgs[i - 1]);
      const bool is_there = id < member.parameters.size();
      Add(i - 1, is_there ? std::string_view(member.parameters[id].name) : kNoParameter,
          type_at(id));
    }
  }

  // The place in DISPPARAMS of the argument that was under way when an error came.
  UINT place() const { return place_; }

  std::span<Argument> arguments() { return arguments_; }

  // Hands back what the member has written into the variables of the caller.
  void WriteBack() {
    for (const Value& value : values_) {
      place_ = value.place;
      if (!IsSame(value.given, value.variable)) {
        WriteThrough(params_.rgvarg[place_], value.variable);
      }
    }
  }

 private:
  struct Value {
    UINT place;
    Variant given;
    Variant variable;
  };

  static constexpr std::string_view kNoParameter = "?";

  void Add(UINT at, std::string_view name, std::string_view type) {
    place_ = at;
    const VARIANT& source = params_.rgvarg[at];
    Variant given = takes_lists_ ? ListFromVariant(source, Taking::kStandIn)
                                 : FromVariant(source, Taking::kStandIn);
    // Not every language has a Nothing.
    if ((given.IsEmpty() || given.IsNull()) && TypeOfWord(type) == VT_DISPATCH) given = Nothing;
    const bool by_ref = (source.vt & VT_BYREF) != 0;
    Argument argument = given;
    if (by_ref) {
      values_.reserve(params_.cArgs);
      Value& value = values_.emplace_back(Value{at, given, given});
      argument = Argument(Reference(&value.variable));
    }
    arguments_.push_back(name.empty() ? std::move(argument)
                                      : Argument(Named(name, std::move(argument))));
  }

  // Whether two values are one: the same plain content, or the same object.
  static bool IsSame(const Variant& left, const Variant& right) {
    return std::memcmp(static_cast<const void*>(&left), &right, sizeof left) == 0;
  }

  const DISPPARAMS& params_;
  UINT place_ = 0;
  bool takes_lists_ = false;
  std::vector<Value> values_;  // of the references; never grows beyond its first capacity
  std::vector<Argument> arguments_;
};

// Whether what a call's arguments say of themselves is there.
bool AreSound(const DISPPARAMS* params) {
  return params != nullptr && params->cNamedArgs <= params->cArgs &&
         (params->cArgs == 0 || params->rgvarg != nullptr) &&
         (params->cNamedArgs == 0 || params->rgdispidNamedArgs != nullptr);
}

class Wrapper final : public IDispatch,
                      public ISupportErrorInfo,
                      public IProvideClassInfo,
                      public ContextInterface,
                      private Counted {
 public:
  explicit Wrapper(Object* object)
      : object_(object), table_(object->Members()), served_(FindClassOf(table_)) {}

  const Ref<Object>& object() const { return object_; }

  // ---- IUnknown ----

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IDispatch || IsOwnInterface(iid)) {
      *object = static_cast<IDispatch*>(this);
    } else if (iid == IID_ISupportErrorInfo) {
      *object = static_cast<ISupportErrorInfo*>(this);
    } else if (iid == IID_IProvideClassInfo && served_ != nullptr) {
      *object = static_cast<IProvideClassInfo*>(this);
    } else if (iid == ContextInterfaceId() && Context() != nullptr) {
      *object = static_cast<ContextInterface*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;

  // ---- IDispatch ----

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = served_ != nullptr ? 1 : 0;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (index != 0 || served_ == nullptr) return DISP_E_BADINDEX;
    return Guarded([&] {
      *info = InterfaceInfo(*served_).Detach();
      return S_OK;
    });
  }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    const ClassMember* member =
        table_ != nullptr ? table_->Find(MemberName(names[0]).text()) : nullptr;
    ids[0] = member != nullptr ? IdOfMember(*member) : DISPID_UNKNOWN;
    HRESULT code = member != nullptr ? S_OK : DISP_E_UNKNOWNNAME;
    for (UINT i = 1; i < count; ++i) {
      ids[i] =
          member != nullptr ? IdOfParameter(*member, MemberName(names[i]).text()) : DISPID_UNKNOWN;
      if (ids[i] == DISPID_UNKNOWN) code = DISP_E_UNKNOWNNAME;
    }
    return code;
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   UINT* bad_argument) override {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!AreSound(params)) return E_INVALIDARG;
    if (!object_->IsOfThisThread()) return RPC_E_WRONG_THREAD;
    if (result != nullptr) VariantInit(result);
    const Com<IDispatch> self(this);  // what is called may let go of the caller's reference
    try {
      return Call(id, locale, flags, *params, result, exception, bad_argument);
    } catch (...) {
      return ReportInvokeException(exception);
    }
  }

  // ---- The others ----

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override {
    const bool own = iid == IID_IDispatch || IsOwnInterface(iid) || iid == ContextInterfaceId();
    return own ? S_OK : S_FALSE;
  }

  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return Guarded([&] {
      *info = ClassInfo(*served_).Detach();
      return S_OK;
    });
  }

  HRESULT STDMETHODCALLTYPE SetTransactionContext(IDispatch* xa) override {
    const Com<IDispatch> self(this);
    return Guarded([&] {
      object_->CheckThread();
      Context()->SetTransactionContext(TakeIn(xa, Taking::kStandIn));
      return S_OK;
    });
  }

 private:
  ~Wrapper() = default;

  bool IsOwnInterface(REFIID iid) const {
    return served_ != nullptr && iid == served_->interface_id;
  }
  ISetXactContext* Context() const {
    const bool reached = table_ != nullptr && table_->takes_context();
    return reached ? dynamic_cast<ISetXactContext*>(object_.get()) : nullptr;
  }

  static DISPID IdOfParameter(const ClassMember& member, std::string_view name) {
    const auto& parameters = member.parameters;
    const auto found =
        std::find_if(parameters.begin(), parameters.end(), [&](const MemberParameter& parameter) {
          return EqualsIgnoringAsciiCase(parameter.name, name);
        });
    return found != parameters.end() ? static_cast<DISPID>(found - parameters.begin())
                                     : DISPID_UNKNOWN;
  }

  HRESULT Call(DISPID id, LCID locale, WORD flags, DISPPARAMS& params, VARIANT* result,
               EXCEPINFO* exception, UINT* bad_argument);
  std::optional<DISPPARAMS> RestForResult(const ClassMember& member, CallKind kind,
                                          const DISPPARAMS& params) const;

  ULONG references_ = 0;
  Ref<Object> object_;
  const ClassTable* table_;    // null for an object without members
  const ServedClass* served_;  // null for a class that the type library doesn't tell of
};

// The wrappers in use, of all apartments. An entry is only ever looked for on its object's thread.
// Whether an object is one of them is told by its address alone: an object of others may answer to
// any interface id, and another copy of this server answers to all of ours.
std::mutex wrappers_mutex;
std::unordered_map<Object*, Wrapper*>& Wrappers() {
  static std::unordered_map<Object*, Wrapper*> wrappers;
  return wrappers;
}
std::unordered_set<const void*>& Addresses() {
  static std::unordered_set<const void*> addresses;
  return addresses;
}

bool IsWrapper(const void* address) {
  const std::lock_guard lock(wrappers_mutex);
  return Addresses().contains(address);
}

ULONG Wrapper::Release() {
  const ULONG left = --references_;
  if (left == 0) {
    {
      const std::lock_guard lock(wrappers_mutex);
      Wrappers().erase(object_.get());
      Addresses().erase(this);
    }
    delete this;
  }
  return left;
}

bool Puts(CallKind kind) { return Includes(kind, CallKind::kLet | CallKind::kSet); }

// The code for a call that doesn't fit its member.
HRESULT CodeOfMisfit(std::int32_t number, const ClassMember& member, CallKind kind,
                     const DISPPARAMS& params) {
  switch (number) {
    case error_number::kMemberNotFound: return DISP_E_MEMBERNOTFOUND;
    case error_number::kNamedArgumentNotFound: return DISP_E_PARAMNOTFOUND;
    case error_number::kWrongArgumentCount: return DISP_E_BADPARAMCOUNT;
    default: break;
  }
  // An argument is missing: there were too few of them, or a needed one was left out expressly.
  const auto needed =
      std::count_if(member.parameters.begin(), member.parameters.end(),
                    [](const MemberParameter& parameter) { return !parameter.optional; });
  const std::ptrdiff_t given = params.cArgs - (Puts(kind) ? 1 : 0);
  return given < needed ? DISP_E_BADPARAMCOUNT : DISP_E_PARAMNOTOPTIONAL;
}

HRESULT CodeOfUnfit(std::int32_t number) {
  return number == error_number::kOverflow ? DISP_E_OVERFLOW : DISP_E_TYPEMISMATCH;
}

// The place in DISPPARAMS of the argument for the parameter at `index`.
UINT PlaceOf(std::size_t index, const DISPPARAMS& params) {
  const UINT positional = params.cArgs - params.cNamedArgs;
  if (index < positional) return params.cArgs - 1 - static_cast<UINT>(index);
  for (UINT i = 0; i < params.cNamedArgs; ++i) {
    if (params.rgdispidNamedArgs[i] == static_cast<DISPID>(index)) return i;
  }
  return 0;
}

// When a member has raised 13 or 6: the index of the argument that doesn't convert to its
// parameter, nothing when they all do and the error is the member's own.
std::optional<std::size_t> FindUnfit(const ClassMember& member, std::span<Argument> arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const bool is_value = i == member.parameters.size();
    if (arguments[i].IsMissing()) continue;
    try {
      ConvertedTo(arguments[i].Value(),
                  is_value ? member.row.PutType() : member.parameters[i].type);
    } catch (const Error&) {
      return i;
    }
  }
  return std::nullopt;
}

// `rs.Fields("FName")` names a property without arguments: those given go to the default member of
// what the property reads as. The same holds for what is put so, `rs.Fields("FName") = 1`. Returns
// what is left of the arguments; nothing for a call that is the member's own.
std::optional<DISPPARAMS> Wrapper::RestForResult(const ClassMember& member, CallKind kind,
                                                 const DISPPARAMS& params) const {
  const bool puts = Puts(kind);
  const UINT own = static_cast<UINT>(member.parameters.size());
  const UINT positional = params.cArgs - params.cNamedArgs;
  const bool only_value = params.cNamedArgs == 1 && puts;
  if (member.row.get == nullptr || positional < own || !(params.cNamedArgs == 0 || only_value)) {
    return std::nullopt;
  }
  if (puts) {
    const ServedClass* read = FindClassNamed(member.row.type);
    const bool has_default = read != nullptr && read->table->default_member() != nullptr;
    const bool read_only = member.row.let == nullptr && member.row.set == nullptr;
    if (positional == 0 || !read_only || !has_default) return std::nullopt;
  } else if (positional == own || TypeOfWord(member.row.type) != VT_DISPATCH) {
    return std::nullopt;
  }
  DISPPARAMS rest = params;
  rest.cArgs -= own;
  return rest;
}

HRESULT Wrapper::Call(DISPID id, LCID locale, WORD flags, DISPPARAMS& params, VARIANT* result,
                      EXCEPINFO* exception, UINT* bad_argument) {
  const ClassMember* member = table_ != nullptr ? MemberOfId(*table_, id) : nullptr;
  if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
  auto kind = static_cast<CallKind>(flags & 0x0F);
  // A statement that names a property calls it; the value goes nowhere.
  if (Includes(kind, CallKind::kMethod)) kind = kind | CallKind::kGet;

  std::optional<DISPPARAMS> rest = RestForResult(*member, kind, params);
  DISPPARAMS own = params;
  if (rest) {
    own = {params.rgvarg + rest->cArgs, nullptr, params.cArgs - rest->cArgs, 0};
    kind = CallKind::kGet;
  }

  const auto refuse = [&](HRESULT code, UINT place) {
    if (bad_argument != nullptr) *bad_argument = place + (rest ? rest->cArgs : 0);
    return code;
  };
  Incoming incoming(own);
  try {
    incoming.Take(*member);
  } catch (const Error& error) {
    const HRESULT code = refuse(CodeOfUnfit(error.number()), incoming.place());
    if (!error.description().empty()) throw;  // no code would carry the words
    return code;
  }
  std::optional<BoundCall> call;
  try {
    call.emplace(table_->Bind(*member, kind, incoming.arguments()));
  } catch (const Error& error) {
    return CodeOfMisfit(error.number(), *member, kind, own);
  }
  Variant value;
  try {
    value = call->Invoke(*object_);
  } catch (const Error& error) {
    if (error.number() != error_number::kTypeMismatch &&
        error.number() != error_number::kOverflow) {
      throw;
    }
    const auto unfit = FindUnfit(*member, call->arguments());
    if (!unfit) throw;
    return refuse(CodeOfUnfit(error.number()), PlaceOf(*unfit, own));
  }
  try {
    incoming.WriteBack();
  } catch (const Error& error) {
    return refuse(CodeOfUnfit(error.number()), incoming.place());
  }

  if (rest) {
    OwnedVariant target;
    ToVariant(value, target.get());
    if (target->vt != VT_DISPATCH || target->pdispVal == nullptr) return DISP_E_BADPARAMCOUNT;
    return target->pdispVal->Invoke(DISPID_VALUE, IID_NULL, locale, flags, &*rest, result,
                                    exception, bad_argument);
  }
  if (result == nullptr) return S_OK;
  if (IsEnumeration(*member)) {
    PutEnumeration(value.As<Enumerator>(), object_, *member, result);
  } else if (AnswersArray(*member)) {
    ToArray(*value.As<Vector>(), member->row.options.array_dimensions, result);
  } else {
    ToVariant(value, result);
  }
  return S_OK;
}

}  // namespace

Com<IDispatch> Wrap(Object* object) {
  if (object == nullptr) return {};
  const std::lock_guard lock(wrappers_mutex);
  Wrapper*& wrapper = Wrappers()[object];
  if (wrapper == nullptr) {
    wrapper = new Wrapper(object);
    Addresses().insert(wrapper);
  }
  return Com<IDispatch>(wrapper);
}

Ref<Object> Unwrap(IUnknown* object) {
  // A wrapper's IUnknown is the wrapper's own address.
  const auto identity = Query<IUnknown>(object, IID_IUnknown);
  if (!IsWrapper(identity.get())) return nullptr;
  const auto* wrapper = static_cast<Wrapper*>(static_cast<IDispatch*>(identity.get()));
  wrapper->object()->CheckThread();
  return wrapper->object();
}

void HandOut(Object* object, VARIANT* destination) {
  if (IUnknown* foreign = ForeignBehind(object)) {
    auto dispatch = Query<IDispatch>(foreign, IID_IDispatch);
    destination->vt = dispatch ? VT_DISPATCH : VT_UNKNOWN;
    destination->punkVal = dispatch ? dispatch.Detach() : Com<IUnknown>(foreign).Detach();
    return;
  }
  destination->pdispVal = Wrap(object).Detach();
  destination->vt = VT_DISPATCH;
}

}  // namespace qdclgl::automation
