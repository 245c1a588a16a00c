// Outgoing calls and foreign objects: the library calls components that live in this program.
#include "tests/automation/client.h"

using namespace qdclgl::automation;
using namespace qdclgl::automation::testing;

namespace {

constexpr const char* kProps = "BSTR Initial catalog=ACC1;";

// Writes through a reference as a server does.
void Write(VARIANT& reference, const Value& value) {
  VARIANT* place = &reference;
  if (place->vt == (VT_BYREF | VT_VARIANT)) {
    VariantCopy(place->pvarVal, const_cast<VARIANT*>(&*value));
  } else if (place->vt == (VT_BYREF | VT_I4)) {
    *place->plVal = (*value).lVal;
  } else if (place->vt == (VT_BYREF | VT_BSTR)) {
    SysFreeString(*place->pbstrVal);
    *place->pbstrVal = SysAllocString((*value).bstrVal);
  }
}

HRESULT STDMETHODCALLTYPE FillIn(EXCEPINFO* exception) {
  exception->bstrSource = SysAllocString(L"Books");
  exception->bstrDescription = SysAllocString(L"Gesperrt f\x00FCr M\x00FCller \x5e74");
  return S_OK;
}

HRESULT Fail(const Received& call, HRESULT code, WORD plain, bool deferred) {
  *call.exception = {};
  call.exception->scode = code;
  call.exception->wCode = plain;
  if (deferred) {
    call.exception->pfnDeferredFillIn = FillIn;
  } else {
    FillIn(call.exception);
  }
  return DISP_E_EXCEPTION;
}

// A recordset of another library: one column, `rows` rows, a cursor, and a mark on its clones.
Com<IDispatch> NewForeignRecordset(int rows, const wchar_t* prefix) {
  struct State {
    int rows;
    int at = 0;
    std::wstring prefix;
  };
  auto state = std::make_shared<State>(State{rows, 0, prefix});
  const auto field = [state] {
    return NewPeer({{L"Name", [](const Received& call) { return Return(call, L"FName"); }},
                    {L"Value", [state](const Received& call) {
                       const std::wstring text = state->prefix + std::to_wstring(state->at + 1);
                       return Return(call, text.c_str());
                     }}});
  };
  const auto fields = [field] {
    return NewPeer({{L"Count", [](const Received& call) { return Return(call, 1); }},
                    {L"Item", [field](const Received& call) { return Return(call, field()); }}});
  };
  return NewPeer({
      {L"EOF", [state](const Received& call) { return Return(call, state->at >= state->rows); }},
      {L"BOF", [state](const Received& call) { return Return(call, state->rows == 0); }},
      {L"MoveFirst",
       [state](const Received&) {
         state->at = 0;
         return S_OK;
       }},
      {L"MoveNext",
       [state](const Received&) {
         ++state->at;
         return S_OK;
       }},
      {L"Fields", [fields](const Received& call) { return Return(call, fields()); }},
      {L"RecordCount", [state](const Received& call) { return Return(call, state->rows); }},
      {L"State", [](const Received& call) { return Return(call, 1); }},
      {L"Clone",
       [state](const Received& call) {
         return Return(call, NewForeignRecordset(state->rows, L"clone "));
       }},
  });
}

// A Dictionary of another library, of two keys.
Com<IDispatch> NewForeignDictionary(const Com<IDispatch>& nested) {
  return NewPeer({
      {L"Count", [](const Received& call) { return Return(call, 2); }},
      {L"Lookup", [](const Received& call) { return Return(call, true); }},
      {L"Name",
       [](const Received& call) {
         return Return(call, call.argument(0).lVal == 1 ? L"FGroupID" : L"nested");
       }},
      {L"Value",
       [nested](const Received& call) {
         const bool is_id = std::wstring_view(call.argument(0).bstrVal) == L"FGroupID";
         return Return(call, is_id ? Value(7) : Value(nested));
       }},
  });
}

// A Vector of another library, from 5 to 6.
Com<IDispatch> NewForeignVector() {
  return NewPeer({
      {L"LowerBound", [](const Received& call) { return Return(call, 5); }},
      {L"UpperBound", [](const Received& call) { return Return(call, 6); }},
      {L"Count", [](const Received& call) { return Return(call, 2); }},
      {L"Append", [](const Received&) { return E_NOTIMPL; }},
      {L"Item",
       [](const Received& call) {
         return Return(call, static_cast<int>(10 * call.argument(0).lVal));
       }},
  });
}

void OutgoingCalls() {
  const auto rows = NewForeignRecordset(2, L"row ");
  HRESULT failure = S_OK;
  WORD plain_number = 0;
  bool deferred = false;
  const auto info = NewPeer({
      {L"GetList",
       [&](const Received& call) {
         Write(call.argument(1), 9);
         Write(call.argument(2), L"new filter");
         Write(call.argument(3), L"new sort");
         return Return(call, rows);
       }},
      {L"GetDetail",
       [&](const Received& call) { return Fail(call, failure, plain_number, deferred); }},
      {L"GetDetailByNumber", [](const Received&) { return E_ACCESSDENIED; }},
      {L"ExistenceCheck", [](const Received& call) { return Return(call, 12); }},
  });
  const Impersonated server(L"QDSVGLVoucherGroup.VoucherGroupInfo", info);
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");

  TestCase("arguments by reference go out as references of their own type and come back");
  Put(groups, L"Filter", {L"old"});
  Check(Text(Get(groups, L"Count")), "I4 2");
  const std::string log = TakeLog();
  Check(log.substr(0, log.find('\n')),
        "GetList(" + std::string(kProps) + ", &I4 0, &BSTR old, &BSTR ) flags 3");
  Check(
      Text(Get(groups, L"ListOptions")) + Text(Get(groups, L"Filter")) + Text(Get(groups, L"Sort")),
      "I4 9BSTR new filterBSTR new sort");

  TestCase("a foreign recordset is worked through calls and handed back as itself");
  Check(Get(groups, L"RecordSet").object().get() == rows.get(), "the same object");
  const auto group = Get(groups, L"GetNext").object();
  Check(Text(Get(group, L"Name")), "BSTR row 1");
  Check(Text(Get(Get(groups, L"GetNext").object(), L"Name")), "BSTR row 2");
  Check(Text(Get(groups, L"GetNext")), "800A0005 [] ");
  TakeLog();

  TestCase("a foreign recordset is walked by its clone");
  const Outcome made = Invoke(groups.get(), DISPID_NEWENUM, kRead, {});
  const auto walk = Query<IEnumVARIANT>((*made.result).punkVal, IID_IEnumVARIANT);
  std::string names;
  for (Value item; walk->Next(1, item.get(), nullptr) == S_OK; item = Value()) {
    names += Text(Get(Com<IDispatch>((*item).pdispVal), L"Name")) + ";";
  }
  Check(names, "BSTR clone 1;BSTR clone 2;");
  TakeLog();

  TestCase("a named argument goes out by the name of its parameter");
  Value name(L"two");
  const DISPID existence = IdOf(groups.get(), L"ExistenceCheck");
  Check(Text(Invoke(groups.get(), existence, kRead, {*name}, {1})), "I4 12");
  Check(TakeLog(),
        "ExistenceCheck(" + std::string(kProps) + ", Name:=&VARIANT BSTR two) flags 3\n");

  TestCase("an error of the server keeps its code, source and description");
  failure = static_cast<HRESULT>(0x80040123);
  Check(Text(Get(groups, L"Item", {1})),
        "80040123 [Books] Gesperrt f\xC3\xBCr M\xC3\xBCller \xE5\xB9\xB4");
  deferred = true;
  Check(Text(Get(groups, L"Item", {1})),
        "80040123 [Books] Gesperrt f\xC3\xBCr M\xC3\xBCller \xE5\xB9\xB4");

  TestCase("a plain number of the server comes back as that number");
  failure = static_cast<HRESULT>(0x800A04D2);
  Check(Text(Get(groups, L"Item", {1})).substr(0, 16), "800A04D2 [Books]");
  failure = 0;
  plain_number = 1234;
  Check(Text(Get(groups, L"Item", {1})).substr(0, 16), "800A04D2 [Books]");

  TestCase("a code that a server returns without words is the error's code");
  SetErrorInfo(0, nullptr);
  Check(Text(Get(groups, L"Item", {L"x"})), "80070005 [] ");
  TakeLog();
}

void LeftOutArguments() {
  const auto info = NewPeer({
      {L"ExistenceCheck", [](const Received& call) { return Return(call, 3); }},
  });
  const Impersonated server(L"QDSVGLVoucher.VoucherInfo", info);
  const auto vouchers = Create(L"QDCLGL.VoucherSet");

  TestCase("a left-out argument goes out as one");
  Value period(3), group(1), number(5);
  const DISPID existence = IdOf(vouchers.get(), L"ExistenceCheck");
  Check(Text(Invoke(vouchers.get(), existence, kRead, {*period, *group, *number}, {2, 3, 4})),
        "I4 3");
  Check(TakeLog(),
        "ExistenceCheck(" + std::string(kProps) +
            ", nYear:=&VARIANT ERROR 80020004, Period:=&VARIANT I4 3, Group:=&VARIANT I4 1, "
            "Number:=&VARIANT I4 5) flags 3\n");
}

// A ProgID leads to another class as long as one lives.
class ClassElsewhere {
 public:
  ClassElsewhere(const std::wstring& prog_id, const wchar_t* class_id)
      : key_(prog_id + L"\\CLSID") {
    DWORD size = sizeof former_;
    RegGetValueW(HKEY_CLASSES_ROOT, key_.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, former_, &size);
    Write(class_id);
  }
  ~ClassElsewhere() { Write(former_); }
  ClassElsewhere(const ClassElsewhere&) = delete;
  ClassElsewhere& operator=(const ClassElsewhere&) = delete;

 private:
  void Write(const wchar_t* class_id) {
    const auto size = static_cast<DWORD>((wcslen(class_id) + 1) * sizeof(wchar_t));
    RegSetKeyValueW(HKEY_CLASSES_ROOT, key_.c_str(), nullptr, REG_SZ, class_id, size);
  }

  const std::wstring key_;
  wchar_t former_[64] = L"";
};

void MissingMembers() {
  const Impersonated server(L"QDSVGLVoucherGroup.VoucherGroupInfo", NewPeer({}));
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");

  TestCase("a component without the member is error 438");
  Check(Text(Get(groups, L"Count")), "800A01B6 [] ");

  TestCase("a component that the machine doesn't know is error 429");
  const ClassElsewhere nowhere(L"QDSVGLCurrency.CurrencyInfo",
                               L"{11111111-2222-3333-4444-555555555555}");
  const auto currencies = Create(L"QDCLGL.CurrencySet");
  Check(Text(Get(currencies, L"Count")),
        "800A01AD [QDCLGL] No component is registered as QDSVGLCurrency.CurrencyInfo.");
}

void ForeignObjects() {
  const auto row = Create(L"QDL.Dictionary");

  TestCase("a foreign Dictionary is taken in by copy, with what it holds");
  const auto foreign = NewForeignDictionary(NewForeignVector());
  const auto group = Create(L"QDCLGL.VoucherGroup");
  Check(Text(Get(group, L"Construct", {foreign, Value(static_cast<IDispatch*>(nullptr))})),
        "Empty");
  Check(Text(Get(group, L"VoucherGroupID")), "I4 7");
  const auto bag = Get(group, L"Properties").object();
  const auto dictionary = Get(bag, L"Dictionary").object();
  const auto nested = Get(dictionary, L"Value", {L"nested"}).object();
  Check(static_cast<bool>(nested), "the nested list came along");
  if (nested) {
    Check(Text(Get(nested, L"LowerBound")) + Text(Get(nested, L"Count")) +
              Text(Get(nested, L"Item", {6})),
          "I4 5I4 2I4 60");
  }
  Check(Text(Get(dictionary, L"Modified")), "BOOL False");

  TestCase("an object that can't be called by name is held as it is");
  Com<IMalloc> memory;
  CoGetMalloc(1, memory.Put());
  VARIANT opaque;
  VariantInit(&opaque);
  opaque.vt = VT_UNKNOWN;
  opaque.punkVal = memory.get();
  Value key(L"opaque");
  Invoke(row.get(), DISPID_VALUE, DISPATCH_PROPERTYPUT, {*key, opaque}, {DISPID_PROPERTYPUT});
  const Outcome held = Get(row, L"Value", {L"opaque"});
  Check(Text(held), "UNKNOWN");
  Check((*held.result).punkVal == memory.get(), "the same object");

  TestCase("a foreign Dictionary that holds itself is an error and no crash");
  Com<IDispatch> circle;
  circle = NewPeer({
      {L"Count", [](const Received& call) { return Return(call, 1); }},
      {L"Lookup", [](const Received& call) { return Return(call, true); }},
      {L"Name", [](const Received& call) { return Return(call, L"self"); }},
      {L"Value", [&](const Received& call) { return Return(call, circle); }},
  });
  Check(Text(Put(row, L"Value", {L"c", circle})), "80020005 at 0");

  TestCase("an object of the server's own is itself when it comes back");
  const auto rows = Create(L"QDL.Recordset");
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");
  Put(groups, L"RecordSet", {rows}, DISPATCH_PROPERTYPUTREF);
  Check(Get(groups, L"RecordSet").object().get() == rows.get(), "the same object");
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  OutgoingCalls();
  LeftOutArguments();
  MissingMembers();
  ForeignObjects();
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
