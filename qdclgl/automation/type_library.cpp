#include "qdclgl/automation/type_library.h"

#include <deque>
#include <mutex>
#include <vector>

#include "qdclgl/automation/errors.h"
#include "qdclgl/automation/identity.h"
#include "qdclgl/automation/member_ids.h"
#include "qdclgl/automation/module.h"
#include "qdclgl/automation/values.h"

namespace qdclgl::automation {

namespace {

constexpr SYSKIND kSystem = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;

// The strings and descriptions that one call of the platform points into.
class Scratch {
 public:
  LPOLESTR Text(std::string_view text) { return texts_.emplace_back(ToWide(text)).data(); }
  TYPEDESC* Type(const TYPEDESC& type) { return &types_.emplace_back(type); }
  PARAMDESCEX* Default(const Variant& value) {
    PARAMDESCEX& made = defaults_.emplace_back();
    made.cBytes = sizeof made;
    VariantInit(&made.varDefaultValue);
    ToVariant(value, &made.varDefaultValue);
    return &made;
  }
  ~Scratch() {
    for (PARAMDESCEX& made : defaults_) VariantClear(&made.varDefaultValue);
  }

 private:
  std::deque<std::wstring> texts_;
  std::deque<TYPEDESC> types_;
  std::deque<PARAMDESCEX> defaults_;
};

class Builder {
 public:
  explicit Builder(const std::wstring& path) {
    Check(CreateTypeLib2(kSystem, path.c_str(), library_.Put()));
    Check(library_->SetGuid(LibraryId()));
    Check(library_->SetVersion(kLibraryMajor, kLibraryMinor));
    Check(library_->SetLcid(LOCALE_NEUTRAL));
    Check(library_->SetName(scratch_.Text("QDCLGL")));
    Check(
        library_->SetDocString(scratch_.Text("Client-side business objects of a general ledger")));

    Com<ITypeLib> standard;
    Check(LoadTypeLibEx(L"stdole2.tlb", REGKIND_NONE, standard.Put()));
    Check(standard->GetTypeInfoOfGuid(IID_IUnknown, unknown_.Put()));
    Check(standard->GetTypeInfoOfGuid(IID_IDispatch, dispatch_.Put()));

    // All interfaces first: any of them may be named by a member of another.
    AddContextInterface();
    for (const ServedClass& served : ServedClasses()) {
      interfaces_.push_back(Create("_" + std::string(served.table->name()), TKIND_DISPATCH,
                                   served.interface_id, served.table->help(), 0));
    }
    for (std::size_t i = 0; i < interfaces_.size(); ++i) {
      Implement(interfaces_[i], dispatch_, 0);
      UINT next = 0;
      for (const ClassMember& member : ServedClasses()[i].table->members()) {
        Add(interfaces_[i], member, next);
      }
      Check(interfaces_[i]->LayOut());
    }
    for (std::size_t i = 0; i < interfaces_.size(); ++i) AddCoclass(i);
  }

  const Com<ICreateTypeLib2>& library() const { return library_; }

 private:
  using Info = Com<ICreateTypeInfo>;

  Info Create(const std::string& name, TYPEKIND kind, const GUID& id, std::string_view help,
              UINT flags) {
    Info info;
    Check(library_->CreateTypeInfo(scratch_.Text(name), kind, info.Put()));
    Check(info->SetGuid(id));
    Check(info->SetDocString(scratch_.Text(help)));
    Check(info->SetVersion(kLibraryMajor, kLibraryMinor));
    Check(info->SetTypeFlags(flags));
    return info;
  }

  HREFTYPE Reference(const Info& from, const Com<ITypeInfo>& to) {
    HREFTYPE reference = 0;
    Check(from->AddRefTypeInfo(to.get(), &reference));
    return reference;
  }
  static Com<ITypeInfo> Described(const Info& info) {
    return Query<ITypeInfo>(info.get(), IID_ITypeInfo);
  }
  void Implement(const Info& info, const Com<ITypeInfo>& base, UINT index) {
    Check(info->AddImplType(index, Reference(info, base)));
  }

  TYPEDESC PointerTo(const TYPEDESC& type) {
    TYPEDESC pointer{};
    pointer.vt = VT_PTR;
    pointer.lptdesc = scratch_.Type(type);
    return pointer;
  }

  TYPEDESC TypeOf(const Info& info, std::string_view word) {
    TYPEDESC type{};
    type.vt = TypeOfWord(word);
    const ServedClass* served = type.vt == VT_DISPATCH ? FindClassNamed(word) : nullptr;
    if (served == nullptr) return type;
    const auto place = static_cast<std::size_t>(served - ServedClasses().data());
    type.vt = VT_USERDEFINED;
    type.hreftype = Reference(info, Described(interfaces_[place]));
    return PointerTo(type);
  }

  ELEMDESC DescriptionOf(const Info& info, const MemberParameter& parameter) {
    ELEMDESC element{};
    element.tdesc = TypeOf(info, parameter.type);
    USHORT flags = PARAMFLAG_FIN;
    if (parameter.by_ref) {
      element.tdesc = PointerTo(element.tdesc);
      flags |= PARAMFLAG_FOUT;
    }
    if (parameter.optional) flags |= PARAMFLAG_FOPT;
    if (!parameter.default_value.IsMissing()) {
      flags |= PARAMFLAG_FHASDEFAULT;
      element.paramdesc.pparamdescex = scratch_.Default(parameter.default_value);
    }
    element.paramdesc.wParamFlags = flags;
    return element;
  }

  // A function for each way in which the member is used.
  void Add(const Info& info, const ClassMember& member, UINT& next) {
    const auto add = [&](Invoker invoker, INVOKEKIND kind) {
      if (invoker != nullptr) AddFunction(info, next++, member, kind);
    };
    add(member.row.method, INVOKE_FUNC);
    add(member.row.get, INVOKE_PROPERTYGET);
    add(member.row.let, INVOKE_PROPERTYPUT);
    add(member.row.set, INVOKE_PROPERTYPUTREF);
  }

  void AddFunction(const Info& info, UINT index, const ClassMember& member, INVOKEKIND kind) {
    const bool puts = kind == INVOKE_PROPERTYPUT || kind == INVOKE_PROPERTYPUTREF;
    std::vector<ELEMDESC> elements;
    std::vector<LPOLESTR> names = {scratch_.Text(member.row.name)};
    for (const MemberParameter& parameter : member.parameters) {
      elements.push_back(DescriptionOf(info, parameter));
      names.push_back(scratch_.Text(parameter.name));
    }
    FUNCDESC function{};
    function.memid = IdOfMember(member);
    function.funckind = FUNC_DISPATCH;
    function.invkind = kind;
    function.callconv = CC_STDCALL;
    function.elemdescFunc.tdesc.vt = VT_VOID;
    if (puts) {
      ELEMDESC value{};  // the one argument without a name
      value.tdesc = TypeOf(info, member.row.PutType());
      value.paramdesc.wParamFlags = PARAMFLAG_FIN;
      elements.push_back(value);
    } else if (AnswersArray(member)) {
      function.elemdescFunc.tdesc.vt = VT_VARIANT;
    } else {
      function.elemdescFunc.tdesc = TypeOf(info, member.row.type);
    }
    if (member.row.options.is_hidden) function.wFuncFlags = FUNCFLAG_FHIDDEN;
    function.cParams = static_cast<SHORT>(elements.size());
    function.lprgelemdescParam = elements.data();

    Check(info->AddFuncDesc(index, &function));
    Check(info->SetFuncAndParamNames(index, names.data(), static_cast<UINT>(names.size())));
    Check(info->SetFuncDocString(index, scratch_.Text(member.row.help)));
  }

  void AddContextInterface() {
    context_ = Create("ISetXactContext", TKIND_INTERFACE, ContextInterfaceId(),
                      "Implemented by the classes that take a transaction context.",
                      TYPEFLAG_FOLEAUTOMATION);
    Implement(context_, unknown_, 0);
    ELEMDESC xa{};
    xa.tdesc.vt = VT_DISPATCH;
    xa.paramdesc.wParamFlags = PARAMFLAG_FIN;
    FUNCDESC function{};
    function.memid = 1;
    function.funckind = FUNC_PUREVIRTUAL;
    function.invkind = INVOKE_FUNC;
    function.callconv = CC_STDCALL;
    function.elemdescFunc.tdesc.vt = VT_HRESULT;
    function.cParams = 1;
    function.lprgelemdescParam = &xa;
    LPOLESTR names[] = {scratch_.Text("SetTransactionContext"), scratch_.Text("xa")};
    Check(context_->AddFuncDesc(0, &function));
    Check(context_->SetFuncAndParamNames(0, names, 2));
    Check(context_->SetFuncDocString(
        0, scratch_.Text("Keeps the transaction context in place of the former one.")));
    Check(context_->LayOut());
  }

  void AddCoclass(std::size_t place) {
    const ServedClass& served = ServedClasses()[place];
    const Info coclass =
        Create(std::string(served.table->name()), TKIND_COCLASS, served.class_id,
               served.table->help(), served.table->creatable() ? TYPEFLAG_FCANCREATE : 0);
    Implement(coclass, Described(interfaces_[place]), 0);
    Check(coclass->SetImplTypeFlags(0, IMPLTYPEFLAG_FDEFAULT));
    if (served.table->takes_context()) Implement(coclass, Described(context_), 1);
    Check(coclass->LayOut());
  }

  Scratch scratch_;
  Com<ICreateTypeLib2> library_;
  Com<ITypeInfo> unknown_;
  Com<ITypeInfo> dispatch_;
  Info context_;
  std::vector<Info> interfaces_;  // in the order of ServedClasses
};

std::mutex library_mutex;
Com<ITypeLib> library;

Com<ITypeLib> Library() {
  const std::lock_guard lock(library_mutex);
  if (!library) {
    const std::wstring path = TypeLibraryPath();
    if (FAILED(LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Put()))) {
      const Builder builder(path);
      library = Query<ITypeLib>(builder.library().get(), IID_ITypeLib);
    }
  }
  return library;
}

Com<ITypeInfo> InfoOf(const GUID& id) {
  Com<ITypeInfo> info;
  Check(Library()->GetTypeInfoOfGuid(id, info.Put()));
  return info;
}

}  // namespace

std::wstring TypeLibraryPath() {
  const std::wstring path = ServerPath();
  return path.substr(0, path.find_last_of(L'.')) + L".tlb";
}

void WriteTypeLibrary(const std::wstring& path) {
  Check(Builder(path).library()->SaveAllChanges());
}

Com<ITypeInfo> InterfaceInfo(const ServedClass& served) { return InfoOf(served.interface_id); }

Com<ITypeInfo> ClassInfo(const ServedClass& served) { return InfoOf(served.class_id); }

void ReleaseTypeLibrary() {
  const std::lock_guard lock(library_mutex);
  library = {};
}

}  // namespace qdclgl::automation
