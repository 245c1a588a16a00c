// Callers that break the contract: what they get is a code, and the server goes on.
#include <set>
#include <thread>

#include "qdclgl/automation/context_interface.h"
#include "qdclgl/automation/identity.h"
#include "tests/automation/client.h"

using namespace qdclgl::automation;
using namespace qdclgl::automation::testing;

namespace {

std::string CodeOfCall(const Com<IDispatch>& object, const wchar_t* name, DISPPARAMS* params) {
  Value result;
  EXCEPINFO exception{};
  UINT place = 0;
  return CodeText(object->Invoke(IdOf(object.get(), name), IID_NULL, 0, kRead, params, result.get(),
                                 &exception, &place));
}

void Arguments() {
  const auto list = Create(L"QDL.Vector");

  TestCase("arguments that are not there are refused");
  Value one(1);
  VARIANT value = *one;
  DISPID name = 0;
  DISPPARAMS no_values{nullptr, nullptr, 1, 0};
  DISPPARAMS no_names{&value, nullptr, 1, 1};
  DISPPARAMS names_alone{nullptr, &name, 0, 1};
  DISPPARAMS more_names{&value, &name, 1, 2};
  for (DISPPARAMS* params : {&no_values, &no_names, &names_alone, &more_names}) {
    Check(CodeOfCall(list, L"Append", params), "80070057");
  }
  Check(CodeOfCall(list, L"Append", nullptr), "80070057");
  Check(Text(Get(list, L"Count")), "I4 0");

  TestCase("a reference that leads nowhere is refused with its place");
  const DISPID append = IdOf(list.get(), L"Append");
  for (const VARTYPE type : {VT_VARIANT, VT_BOOL, VT_UI1, VT_I2, VT_I4, VT_R4, VT_R8, VT_CY,
                             VT_DATE, VT_DECIMAL, VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_ERROR}) {
    Check(Text(Invoke(list.get(), append, kRead, {Value::To(static_cast<VARTYPE>(type), nullptr)})),
          "80020005 at 0");
  }
  Check(Text(Invoke(list.get(), append, kRead, {Value::To(VT_ARRAY | VT_UI1, nullptr)})),
        "80020005 at 0");

  TestCase("references in a circle are refused with their place");
  VARIANT self, first, second;
  self = Value::To(VT_VARIANT, &self);
  first = Value::To(VT_VARIANT, &second);
  second = Value::To(VT_VARIANT, &first);
  Check(Text(Invoke(list.get(), append, kRead, {self})), "80020005 at 0");
  Check(Text(Invoke(list.get(), append, kRead, {first})), "80020005 at 0");
  Check(Text(Get(list, L"Count")), "I4 0");

  TestCase("a call for no use that there is is refused as unknown");
  Value item(1);
  constexpr WORD kNone[] = {0, 16, 0xFFF0};
  for (const WORD flags : kNone) {
    Check(Text(Invoke(list.get(), append, flags, {*item})), "80020003");
  }

  TestCase("of all types there are, those that a language has are taken and no other");
  std::string taken;
  std::set<std::string> refusals;
  for (unsigned type = 0; type <= 0xFFFF; ++type) {
    VARIANT odd{};
    odd.vt = static_cast<VARTYPE>(type);
    const Outcome outcome = Invoke(list.get(), append, kRead, {odd});
    if (SUCCEEDED(outcome.code)) {
      taken += std::to_string(type) + " ";
    } else {
      refusals.insert(Text(outcome));
    }
  }
  Check(taken, "0 1 2 3 4 5 6 7 8 9 10 11 13 14 16 17 18 19 20 21 22 23 ");
  std::string all;
  for (const std::string& refusal : refusals) all += refusal + ";";
  Check(all, "80020005 at 0;800A000D [QDCLGL] The array was never given its bounds.;");
}

void Names() {
  const auto list = Create(L"QDL.Vector");

  TestCase("a name that is null is unknown");
  LPOLESTR names[] = {nullptr, nullptr};
  DISPID ids[] = {77, 77};
  Check(CodeText(list->GetIDsOfNames(IID_NULL, names, 2, 0, ids)), "80020006");
  Check(std::to_string(ids[0]) + " " + std::to_string(ids[1]), "-1 -1");
  names[0] = const_cast<LPOLESTR>(L"Insert");
  Check(CodeText(list->GetIDsOfNames(IID_NULL, names, 2, 0, ids)), "80020006");
  Check(std::to_string(ids[0]) + " " + std::to_string(ids[1]),
        std::to_string(IdOf(list.get(), L"Insert")) + " -1");

  TestCase("names or ids that are not there are refused");
  Check(CodeText(list->GetIDsOfNames(IID_NULL, nullptr, 1, 0, ids)), "80070057");
  Check(CodeText(list->GetIDsOfNames(IID_NULL, names, 1, 0, nullptr)), "80070057");
  Check(CodeText(list->GetIDsOfNames(IID_NULL, names, 0, 0, ids)), "80070057");
}

template <class Function>
Function EntryPoint(const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"qdclgl.dll"), name)));
}

Com<IClassFactory> FactoryOf(const char* class_name) {
  Com<IClassFactory> factory;
  CoGetClassObject(IdOfName(class_name), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                   factory.PutVoid());
  return factory;
}

void OutPointers() {
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");
  const auto fields = Get(Create(L"QDL.Recordset"), L"Fields").object();
  const Outcome made = Invoke(fields.get(), DISPID_NEWENUM, kRead, {});
  const auto walk = Query<IEnumVARIANT>((*made.result).punkVal, IID_IEnumVARIANT);
  const auto support = Query<ISupportErrorInfo>(groups.get(), IID_ISupportErrorInfo);
  const auto provider = Query<IProvideClassInfo>(groups.get(), IID_IProvideClassInfo);
  const auto context = Query<ContextInterface>(groups.get(), ContextInterfaceId());
  const auto factory = FactoryOf("QDCLGL.VoucherGroupSet");

  TestCase("every method of every interface refuses a result that has no place to go");
  const std::vector<IUnknown*> interfaces = {groups.get(),   walk.get(),    support.get(),
                                             provider.get(), context.get(), factory.get()};
  for (IUnknown* object : interfaces) {
    Check(object != nullptr, "the interface is there");
    if (object != nullptr)
      Check(CodeText(object->QueryInterface(IID_IUnknown, nullptr)), "80004003");
  }
  Check(CodeText(groups->GetTypeInfoCount(nullptr)), "80004003");
  Check(CodeText(groups->GetTypeInfo(0, 0, nullptr)), "80004003");
  Check(CodeText(provider->GetClassInfo(nullptr)), "80004003");
  Check(CodeText(walk->Next(1, nullptr, nullptr)), "80004003");
  Check(CodeText(walk->Clone(nullptr)), "80004003");
  Check(CodeText(factory->CreateInstance(nullptr, IID_IUnknown, nullptr)), "80004003");
  using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  Check(CodeText(EntryPoint<GetClassObject>("DllGetClassObject")(IdOfName("QDCLGL.Voucher"),
                                                                 IID_IClassFactory, nullptr)),
        "80004003");

  TestCase("a call may do without its result, its exception and its place");
  DISPPARAMS none{};
  Check(CodeText(fields->Invoke(IdOf(fields.get(), L"Count"), IID_NULL, 0, kRead, &none, nullptr,
                                nullptr, nullptr)),
        "00000000");
}

void Locks() {
  TestCase("a lock that is given back too often takes nothing from the objects");
  const auto row = Create(L"QDL.Dictionary");
  const auto factory = FactoryOf("QDL.Dictionary");
  using CanUnload = HRESULT(STDAPICALLTYPE*)();
  const auto can_unload = EntryPoint<CanUnload>("DllCanUnloadNow");
  for (int i = 0; i < 10; ++i) Check(CodeText(factory->LockServer(FALSE)), "8000FFFF");
  Check(CodeText(can_unload()), "00000001");
  Check(CodeText(factory->LockServer(TRUE)), "00000000");
  Check(CodeText(factory->LockServer(FALSE)), "00000000");
  Check(CodeText(factory->LockServer(FALSE)), "8000FFFF");
  Check(CodeText(can_unload()), "00000001");
}

// A component whose `method` calls `member` of the caller's object again, and passes on its
// failure.
Com<IDispatch> NewEcho(const wchar_t* method, const Com<IDispatch>& object, const wchar_t* member,
                       int& depth) {
  return NewPeer({{method, [&object, member, &depth](const Received& call) {
                     ++depth;
                     const Outcome inner = Get(object, member);
                     if (inner.code == DISP_E_EXCEPTION) {
                       *call.exception = {};
                       call.exception->scode = static_cast<HRESULT>(
                           std::stoul(inner.exception.substr(0, 8), nullptr, 16));
                     }
                     return inner.code;
                   }}});
}

void Nesting() {
  // Of 500 levels; a call into another program counts as five, the reading itself as one.
  constexpr int kDeepest = 500 / 6;

  TestCase("a list that is read within its own reading without end is an error");
  int depth = 0;
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");
  {
    const Impersonated info(L"QDSVGLVoucherGroup.VoucherGroupInfo",
                            NewEcho(L"GetList", groups, L"Refresh", depth));
    Check(Text(Get(groups, L"Refresh")), "800A001C [] ");
  }
  Check(std::to_string(depth), std::to_string(kDeepest));
  TakeLog();

  TestCase("a row that is read within its own reading without end is an error");
  depth = 0;
  const auto row = Create(L"QDL.Dictionary");
  Put(row, L"Value", {L"FGroupID", 5});
  const auto group = Create(L"QDCLGL.VoucherGroup");
  Get(group, L"Construct", {row, Value(static_cast<IDispatch*>(nullptr))});
  {
    const Impersonated info(L"QDSVGLVoucherGroup.VoucherGroupInfo",
                            NewEcho(L"GetDetail", group, L"Refresh", depth));
    Check(Text(Get(group, L"Refresh")), "800A001C [] ");
  }
  Check(std::to_string(depth), std::to_string(kDeepest));
  Check(Text(Get(group, L"VoucherGroupID")), "I4 5");
  TakeLog();
}

// Runs an operation on a thread, and in an apartment, of its own.
template <class Operation>
void Elsewhere(Operation operation) {
  std::thread([&] {
    CoInitialize(nullptr);
    operation();
    CoUninitialize();
  }).join();
}

void Threads() {
  const auto rows = Create(L"QDL.Recordset");
  const auto fields = Get(rows, L"Fields").object();
  Get(fields, L"Append", {L"FName"});
  const DISPID count = IdOf(fields.get(), L"Count");
  const Outcome made = Invoke(fields.get(), DISPID_NEWENUM, kRead, {});
  const auto walk = Query<IEnumVARIANT>((*made.result).punkVal, IID_IEnumVARIANT);
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");
  const auto context = Query<ContextInterface>(groups.get(), ContextInterfaceId());

  TestCase("an object that is called on another thread than its own refuses the call");
  Elsewhere([&] {
    Check(Text(Invoke(fields.get(), count, kRead, {})), "8001010E");
    Value item;
    Com<IEnumVARIANT> clone;
    Check(CodeText(walk->Next(1, item.get(), nullptr)), "8001010E");
    Check(CodeText(walk->Skip(1)), "8001010E");
    Check(CodeText(walk->Reset()), "8001010E");
    Check(CodeText(walk->Clone(clone.Put())), "8001010E");
    Check(CodeText(context->SetTransactionContext(nullptr)), "8001010E");
  });
  Check(Text(Invoke(fields.get(), count, kRead, {})), "I4 1");
  Value item;
  Check(CodeText(walk->Next(1, item.get(), nullptr)), "00000000");

  TestCase("an object of another thread is refused as an argument");
  Elsewhere([&] {
    const auto list = Create(L"QDL.Vector");
    VARIANT stranger;
    VariantInit(&stranger);
    stranger.vt = VT_DISPATCH;
    stranger.pdispVal = rows.get();
    Check(Text(Invoke(list.get(), IdOf(list.get(), L"Append"), kRead, {stranger})),
          "8001010E [Recordset] The object belongs to another thread, which made it.");
    Check(Text(Get(list, L"Count")), "I4 0");
  });
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  Arguments();
  Names();
  OutPointers();
  Locks();
  Nesting();
  Threads();
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
