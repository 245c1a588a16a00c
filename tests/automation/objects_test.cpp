// What an object tells of itself: the type library against the API table, class information,
// enumerators, the transaction context, the class factory.
//
//   objects-test API_TABLE     the path of the printed API table
#include <algorithm>
#include <fstream>
#include <set>

#include "qdclgl/automation/context_interface.h"
#include "qdclgl/automation/identity.h"
#include "tests/automation/client.h"

using namespace qdclgl::automation;
using qdclgl::FromWide;
using qdclgl::ToWide;
using namespace qdclgl::automation::testing;

namespace {

std::string NameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
  OwnedText name;
  info->GetDocumentation(member, name.Put(), nullptr, nullptr, nullptr);
  return name.ToText();
}

std::string HelpOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
  OwnedText help;
  info->GetDocumentation(member, nullptr, help.Put(), nullptr, nullptr);
  return help.ToText();
}

// The word of the API table for a type.
std::string Word(ITypeInfo* info, const TYPEDESC& type) {
  switch (type.vt) {
    case VT_VOID: return "none";
    case VT_BOOL: return "Boolean";
    case VT_I2: return "Integer";
    case VT_I4: return "Long";
    case VT_R4: return "Single";
    case VT_R8: return "Double";
    case VT_CY: return "Currency";
    case VT_DATE: return "Date";
    case VT_BSTR: return "String";
    case VT_VARIANT: return "Variant";
    case VT_DISPATCH: return "Object";
    case VT_UNKNOWN: return "IEnumVARIANT";
    case VT_PTR: return Word(info, *type.lptdesc);
    case VT_USERDEFINED: {
      Com<ITypeInfo> referred;
      info->GetRefTypeInfo(type.hreftype, referred.Put());
      return NameOf(referred.get()).substr(1);  // the dispinterface of a class, without the _
    }
    default: return "type " + std::to_string(type.vt);
  }
}

// Whether a parameter is a pointer beyond the one that every object is.
bool IsByRef(const TYPEDESC& type) {
  return type.vt == VT_PTR && type.lptdesc->vt != VT_USERDEFINED;
}

// The lines of the API table for one class, without the values of defaults.
void AppendClass(ITypeInfo* coclass, std::vector<std::string>& lines, std::string& without_help) {
  const std::string name = NameOf(coclass);
  TYPEATTR* class_attributes = nullptr;
  coclass->GetTypeAttr(&class_attributes);
  const UINT interfaces = class_attributes->cImplTypes;
  coclass->ReleaseTypeAttr(class_attributes);

  HREFTYPE reference = 0;
  Com<ITypeInfo> info;
  coclass->GetRefTypeOfImplType(0, &reference);
  coclass->GetRefTypeInfo(reference, info.Put());
  if (interfaces == 2) {
    Com<ITypeInfo> context;
    coclass->GetRefTypeOfImplType(1, &reference);
    coclass->GetRefTypeInfo(reference, context.Put());
    FUNCDESC* function = nullptr;
    context->GetFuncDesc(0, &function);
    lines.push_back(name + "\t0\t" + NameOf(context.get()) + "." +
                    NameOf(context.get(), function->memid) + "\tinterface\tnone\txa:" +
                    Word(context.get(), function->lprgelemdescParam[0].tdesc) + "\t");
    context->ReleaseFuncDesc(function);
  }

  TYPEATTR* attributes = nullptr;
  info->GetTypeAttr(&attributes);
  constexpr DISPID kFirstOfTheBase = 0x60000000;  // the functions of IDispatch itself
  int ordinal = 0;
  DISPID former = -99;
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    info->GetFuncDesc(i, &function);
    if (function->memid >= kFirstOfTheBase) {
      info->ReleaseFuncDesc(function);
      continue;
    }
    if (function->memid != former) ++ordinal;
    former = function->memid;
    if (function->memid > 0 && function->memid != ordinal) without_help += " id of " + name;

    BSTR names[16] = {};
    UINT count = 0;
    info->GetNames(function->memid, names, 16, &count);
    std::string arguments;
    const bool puts =
        function->invkind == INVOKE_PROPERTYPUT || function->invkind == INVOKE_PROPERTYPUTREF;
    const int parameters = function->cParams - (puts ? 1 : 0);
    for (int p = 0; p < parameters; ++p) {
      const ELEMDESC& element = function->lprgelemdescParam[p];
      if (p > 0) arguments += ",";
      if (IsByRef(element.tdesc)) arguments += "ref ";
      arguments += static_cast<UINT>(p) + 1 < count ? FromWide(names[p + 1]) : "?";
      if ((element.paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0) arguments += "?";
      arguments += ":" + Word(info.get(), element.tdesc);
    }
    const char* kind = function->invkind == INVOKE_FUNC          ? "method"
                       : function->invkind == INVOKE_PROPERTYGET ? "get"
                       : function->invkind == INVOKE_PROPERTYPUT ? "let"
                                                                 : "set";
    const TYPEDESC& type =
        puts ? function->lprgelemdescParam[parameters].tdesc : function->elemdescFunc.tdesc;
    lines.push_back(name + "\t" + std::to_string(ordinal) + "\t" + FromWide(names[0]) + "\t" +
                    kind + "\t" + Word(info.get(), type) + "\t" + arguments + "\t" +
                    (function->memid == DISPID_VALUE ? "default" : ""));
    if (HelpOf(info.get(), function->memid).empty())
      without_help += " " + name + "." + FromWide(names[0]);
    for (BSTR& text : names) SysFreeString(text);
    info->ReleaseFuncDesc(function);
  }
  info->ReleaseTypeAttr(attributes);
  if (HelpOf(coclass).empty() || HelpOf(info.get()).empty()) without_help += " " + name;
}

// The API table's lines without the values of defaults and without what a type library doesn't tell
// (keys and clear values), and with "Object" for a class that it doesn't hold.
std::vector<std::string> PrintedLines(const char* path, const std::set<std::string>& classes) {
  static const std::set<std::string> kWords = {"none",   "Boolean", "Integer",  "Long",
                                               "Single", "Double",  "Currency", "Date",
                                               "String", "Variant", "Object",   "IEnumVARIANT"};
  const auto known = [&](const std::string& word) {
    return kWords.contains(word) || classes.contains(word) ? word : std::string("Object");
  };
  std::ifstream file(path);
  std::vector<std::string> lines;
  std::string line;
  std::getline(file, line);
  constexpr int kTold = 7;  // columns
  while (std::getline(file, line)) {
    std::size_t end = 0;
    for (int i = 0; i < kTold; ++i) end = line.find('\t', end == 0 ? 0 : end + 1);
    line.resize(std::min(end, line.size()));
    std::string plain, word;
    int column = 0;
    enum { kText, kType, kDefault } part = kText;
    for (const char c : line + '\n') {
      if (c == ',' || c == '\t' || c == '\n' || c == '=') {
        plain += part == kType ? known(word) : part == kText ? word : std::string();
        word.clear();
        if (c == '\t') ++column;
        part = c == '=' ? kDefault : c == '\t' && column == 4 ? kType : kText;
        if (c == ',' || c == '\t') plain += c;
      } else {
        word += c;
        if (c == ':') {
          plain += word;
          word.clear();
          part = kType;
        }
      }
    }
    lines.push_back(plain);
  }
  return lines;
}

void TypeLibrary(const char* api_table) {
  TestCase("the type library loads by its id and version");
  Com<ITypeLib> library;
  Check(CodeText(LoadRegTypeLib(LibraryId(), kLibraryMajor, kLibraryMinor, LOCALE_NEUTRAL,
                                library.Put())),
        "00000000");
  if (!library) return;
  OwnedText name, help;
  library->GetDocumentation(-1, name.Put(), help.Put(), nullptr, nullptr);
  Check(name.ToText() + ": " + help.ToText(),
        "QDCLGL: Client-side business objects of a general ledger");

  TestCase("the type library holds every line of the API table and no other");
  std::vector<std::string> lines;
  std::string faults;
  const std::set<std::string> containers = {"Dictionary", "Vector", "Recordset", "Fields", "Field"};
  std::set<std::string> classes;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    TYPEKIND kind;
    Com<ITypeInfo> info;
    library->GetTypeInfoType(i, &kind);
    library->GetTypeInfo(i, info.Put());
    if (kind == TKIND_COCLASS) classes.insert(NameOf(info.get()));
    if (kind == TKIND_COCLASS && !containers.contains(NameOf(info.get()))) {
      AppendClass(info.get(), lines, faults);
    }
  }
  const std::vector<std::string> printed = PrintedLines(api_table, classes);
  Check(printed.size() > 200, "the API table was read");
  Check(std::to_string(lines.size()), std::to_string(printed.size()));
  for (std::size_t i = 0; i < std::min(lines.size(), printed.size()); ++i) {
    if (lines[i] == printed[i]) continue;
    Check(lines[i], printed[i]);
    break;
  }

  TestCase("every class, interface and member of the type library has a help text");
  Check(faults, "");

  TestCase("a default value stands in the type library");
  Com<ITypeInfo> groups;
  library->GetTypeInfoOfGuid(IdOfName("QDCLGL._VoucherGroupSet"), groups.Put());
  TYPEATTR* attributes = nullptr;
  groups->GetTypeAttr(&attributes);
  std::string found;
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    groups->GetFuncDesc(i, &function);
    if (NameOf(groups.get(), function->memid) == "Remove") {
      const PARAMDESC& parameter = function->lprgelemdescParam[1].paramdesc;
      if ((parameter.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0) {
        found = Text(parameter.pparamdescex->varDefaultValue);
      }
    }
    groups->ReleaseFuncDesc(function);
  }
  groups->ReleaseTypeAttr(attributes);
  Check(found, "I4 0");

  TestCase("a Dictionary's enumerator is hidden, and its Keys are any value");
  Com<ITypeInfo> row;
  library->GetTypeInfoOfGuid(IdOfName("QDL._Dictionary"), row.Put());
  row->GetTypeAttr(&attributes);
  found.clear();
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    row->GetFuncDesc(i, &function);
    const std::string member = NameOf(row.get(), function->memid);
    if (member == "NewEnum" || member == "Keys" || member == "Exists") {
      found += member + " " + std::to_string(function->memid) + " " +
               std::to_string(function->wFuncFlags) + " " +
               std::to_string(function->elemdescFunc.tdesc.vt) + ";";
    }
    row->ReleaseFuncDesc(function);
  }
  row->ReleaseTypeAttr(attributes);
  Check(found, "Exists 12 0 11;Keys 14 0 12;NewEnum -4 64 13;");
}

// Creates an object of a class by its ProgID and asks it for every name of its interface. Returns
// what is not as the type library tells.
std::string FaultsOf(ITypeInfo* coclass) {
  const std::string name = NameOf(coclass);
  const auto object = Create(ToWide("QDCLGL." + name).c_str());
  if (!object) return " " + name + " is not created";
  Com<ITypeInfo> info;
  if (FAILED(object->GetTypeInfo(0, 0, info.Put()))) return " " + name + " has no information";
  std::string faults;
  if (NameOf(info.get()) != "_" + name) faults += " " + name + " is " + NameOf(info.get());
  TYPEATTR* attributes = nullptr;
  info->GetTypeAttr(&attributes);
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    info->GetFuncDesc(i, &function);
    const std::string member = NameOf(info.get(), function->memid);
    const bool own = function->memid < 0x60000000;
    if (own && IdOf(object.get(), ToWide(member).c_str()) != function->memid) {
      faults += " " + name + "." + member;
    }
    info->ReleaseFuncDesc(function);
  }
  info->ReleaseTypeAttr(attributes);
  return faults;
}

void EveryClass() {
  TestCase("every creatable class is created by its ProgID and knows all of its members");
  Com<ITypeLib> library;
  LoadRegTypeLib(LibraryId(), kLibraryMajor, kLibraryMinor, LOCALE_NEUTRAL, library.Put());
  if (!library) return Check(false, "the type library loads");
  const std::set<std::string> containers = {"Dictionary", "Vector", "Recordset"};
  int created = 0;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    Com<ITypeInfo> info;
    library->GetTypeInfo(i, info.Put());
    TYPEATTR* attributes = nullptr;
    info->GetTypeAttr(&attributes);
    const bool creatable = attributes->typekind == TKIND_COCLASS &&
                           (attributes->wTypeFlags & TYPEFLAG_FCANCREATE) != 0;
    info->ReleaseTypeAttr(attributes);
    if (!creatable || containers.contains(NameOf(info.get()))) continue;
    ++created;
    Check(FaultsOf(info.get()), "");
  }
  Check(created >= 9, "the classes were found");
}

std::string GuidOf(ITypeInfo* info) {
  TYPEATTR* attributes = nullptr;
  info->GetTypeAttr(&attributes);
  const std::string text = FromWide(IdText(attributes->guid));
  info->ReleaseTypeAttr(attributes);
  return text;
}

void ClassInformation() {
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");

  TestCase("an object has one type information, from which the library is reached");
  UINT count = 0;
  groups->GetTypeInfoCount(&count);
  Check(std::to_string(count), "1");
  Com<ITypeInfo> info, none;
  Check(CodeText(groups->GetTypeInfo(0, 0, info.Put())), "00000000");
  Check(CodeText(groups->GetTypeInfo(1, 0, none.Put())), "8002000B");
  Check(NameOf(info.get()), "_VoucherGroupSet");
  Com<ITypeLib> library;
  UINT index = 0;
  info->GetContainingTypeLib(library.Put(), &index);
  TLIBATTR* attributes = nullptr;
  library->GetLibAttr(&attributes);
  Check(attributes->guid == LibraryId(), "it is in the library");
  library->ReleaseTLibAttr(attributes);

  TestCase("an object answers to its own dispinterface");
  const auto own = Query<IDispatch>(groups.get(), IdOfName("QDCLGL._VoucherGroupSet"));
  Check(own.get() == groups.get(), "the same object");

  TestCase("class information is the coclass, its default interface flagged");
  Com<ITypeInfo> coclass;
  const auto provider = Query<IProvideClassInfo>(groups.get(), IID_IProvideClassInfo);
  Check(CodeText(provider->GetClassInfo(coclass.Put())), "00000000");
  Check(NameOf(coclass.get()), "VoucherGroupSet");
  Check(GuidOf(coclass.get()), FromWide(IdText(IdOfName("QDCLGL.VoucherGroupSet"))));
  int flags = 0;
  HREFTYPE reference = 0;
  Com<ITypeInfo> main;
  coclass->GetImplTypeFlags(0, &flags);
  coclass->GetRefTypeOfImplType(0, &reference);
  coclass->GetRefTypeInfo(reference, main.Put());
  Check(std::to_string(flags) + " " + NameOf(main.get()), "1 _VoucherGroupSet");
}

void Context() {
  TestCase("a class with a transaction context takes one by an interface of its own");
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");
  const auto context = Query<ContextInterface>(groups.get(), ContextInterfaceId());
  Check(static_cast<bool>(context), "the interface is there");
  if (!context) return;
  auto peer = NewPeer({});
  Check(CodeText(context->SetTransactionContext(peer.get())), "00000000");
  peer->AddRef();
  Check(std::to_string(peer->Release()), "3");  // the set holds on to it by both of its interfaces
  Check(CodeText(context->SetTransactionContext(nullptr)), "00000000");
  peer->AddRef();
  Check(std::to_string(peer->Release()), "1");

  TestCase("a class without a transaction context has no such interface");
  const auto row = Create(L"QDL.Dictionary");
  Check(!Query<ContextInterface>(row.get(), ContextInterfaceId()), "no interface");
}

std::string Element(const VARIANT& value) {
  const Com<IDispatch> field(value.vt == VT_DISPATCH ? value.pdispVal : nullptr);
  return field ? Text(Get(field, L"Name")) : Text(value);
}

void Enumeration() {
  const auto rows = Create(L"QDL.Recordset");
  const auto fields = Get(rows, L"Fields").object();
  for (const wchar_t* name : {L"a", L"b", L"c"}) Get(fields, L"Append", {name});
  Get(rows, L"Open");
  Get(rows, L"AddNew");

  TestCase("an enumerator comes by the id -4");
  const Outcome made = Invoke(fields.get(), DISPID_NEWENUM, kRead, {});
  Check(Text(made), "UNKNOWN");
  const auto walk = Query<IEnumVARIANT>((*made.result).punkVal, IID_IEnumVARIANT);
  if (!walk) return;

  TestCase("Next takes one element with a null count");
  Value one;
  Check(CodeText(walk->Next(1, one.get(), nullptr)), "00000000");
  Check(Element(*one), "BSTR a");

  TestCase("Next at the end gives what there is and says so");
  VARIANT many[5];
  ULONG fetched = 99;
  Check(CodeText(walk->Next(5, many, &fetched)), "00000001");
  Check(std::to_string(fetched) + Element(many[0]) + Element(many[1]) + Element(many[2]),
        "2BSTR bBSTR cEmpty");
  for (VARIANT& value : many) VariantClear(&value);
  Check(CodeText(walk->Next(1, many, &fetched)), "00000001");
  Check(std::to_string(fetched), "0");

  TestCase("Reset begins again");
  Check(CodeText(walk->Reset()), "00000000");
  Value first;
  walk->Next(1, first.get(), nullptr);
  Check(Element(*first), "BSTR a");

  TestCase("Clone stands at the same place and goes its own way");
  Com<IEnumVARIANT> clone;
  Check(CodeText(walk->Clone(clone.Put())), "00000000");
  Value from_clone, from_walk;
  clone->Next(1, from_clone.get(), nullptr);
  Check(Element(*from_clone), "BSTR b");
  Check(CodeText(clone->Skip(1)), "00000000");
  walk->Next(1, from_walk.get(), nullptr);
  Check(Element(*from_walk), "BSTR b");

  TestCase("Skip passes elements and tells when there were fewer");
  walk->Reset();
  Check(CodeText(walk->Skip(2)), "00000000");
  Value third;
  walk->Next(1, third.get(), nullptr);
  Check(Element(*third), "BSTR c");
  Check(CodeText(walk->Skip(1)), "00000001");
}

HRESULT FactoryOf(const char* class_name, Com<IClassFactory>& factory) {
  return CoGetClassObject(IdOfName(class_name), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                          factory.PutVoid());
}

void Factory() {
  TestCase("a factory makes objects and refuses aggregation");
  Com<IClassFactory> factory;
  Check(CodeText(FactoryOf("QDCLGL.VoucherGroupSet", factory)), "00000000");
  if (!factory) return;
  Com<IUnknown> made;
  Check(CodeText(factory->CreateInstance(nullptr, IID_IUnknown, made.PutVoid())), "00000000");
  Com<IUnknown> inner;
  Check(CodeText(factory->CreateInstance(made.get(), IID_IUnknown, inner.PutVoid())), "80040110");
  Check(!inner, "nothing was made");
  Com<IUnknown> odd;
  Check(CodeText(factory->CreateInstance(nullptr, IID_IPersist, odd.PutVoid())), "80004002");

  TestCase("a class that callers can't create has no factory");
  const HMODULE server = GetModuleHandleW(L"qdclgl.dll");
  using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  const auto get = reinterpret_cast<GetClassObject>(
      reinterpret_cast<void*>(GetProcAddress(server, "DllGetClassObject")));
  void* none = nullptr;
  Check(CodeText(get(IdOfName("QDCLGL.VoucherEntry"), IID_IClassFactory, &none)), "80040111");
  Check(CodeText(get(IdOfName("QDCLGL.Nonsense"), IID_IClassFactory, &none)), "80040111");
  Com<IClassFactory> known;
  Check(CodeText(get(IdOfName("QDCLGL.Voucher"), IID_IClassFactory, known.PutVoid())), "00000000");
}

}  // namespace

int main(int, char** arguments) {
  CoInitialize(nullptr);
  TypeLibrary(arguments[1]);
  EveryClass();
  ClassInformation();
  Context();
  Enumeration();
  Factory();
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
