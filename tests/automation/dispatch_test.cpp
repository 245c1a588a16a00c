// Incoming calls: names, arguments, results and errors, seen as closely as a client can look.
#include <array>

#include "tests/automation/client.h"

using namespace qdclgl::automation;
using qdclgl::FromWide;
using namespace qdclgl::automation::testing;

namespace {

std::string IdsText(IDispatch* object, std::vector<const wchar_t*> names) {
  std::vector<DISPID> ids(names.size(), 77);
  const HRESULT code =
      object->GetIDsOfNames(IID_NULL, const_cast<LPOLESTR*>(names.data()),
                            static_cast<UINT>(names.size()), LOCALE_USER_DEFAULT, ids.data());
  std::string text = CodeText(code);
  for (const DISPID id : ids) text += " " + std::to_string(id);
  return text;
}

void Names(const Com<IDispatch>& groups) {
  TestCase("names are found without regard to case");
  const DISPID remove = IdOf(groups.get(), L"Remove");
  Check(IdsText(groups.get(), {L"rEMOVE"}), "00000000 " + std::to_string(remove));

  TestCase("parameters are found behind their member");
  Check(IdsText(groups.get(), {L"remove", L"KEY", L"lngdelsign"}),
        "00000000 " + std::to_string(remove) + " 0 1");

  TestCase("unknown names are told, the known ones still filled");
  Check(IdsText(groups.get(), {L"Remove", L"nonsense", L"lngDelSign"}),
        "80020006 " + std::to_string(remove) + " -1 1");
  Check(IdsText(groups.get(), {L"nonsense", L"Key"}), "80020006 -1 -1");
  Check(IdsText(groups.get(), {L"\x5e74"}), "80020006 -1");
  Check(IdsText(groups.get(),
                {L"ANameThatIsFarLongerThanAnyNameThatAMemberOfAnyClassOfTheLibraryHasHad"}),
        "80020006 -1");

  TestCase("a reserved interface id is refused");
  LPOLESTR name = const_cast<LPOLESTR>(L"Remove");
  DISPID id;
  Check(CodeText(groups->GetIDsOfNames(IID_IUnknown, &name, 1, 0, &id)), "80020001");
  DISPPARAMS none{};
  Check(CodeText(groups->Invoke(remove, IID_IDispatch, 0, kRead, &none, nullptr, nullptr, nullptr)),
        "80020001");

  TestCase("a call with more names than arguments is refused");
  DISPID one_name = 0;
  DISPPARAMS odd{nullptr, &one_name, 0, 1};
  Check(CodeText(groups->Invoke(remove, IID_NULL, 0, kRead, &odd, nullptr, nullptr, nullptr)),
        "80070057");

  TestCase("the default member has the id 0 and the enumeration -4");
  Check(IdsText(groups.get(), {L"Item"}), "00000000 0");
  Check(IdsText(groups.get(), {L"NewEnum"}), "00000000 -4");
}

void Arguments() {
  const Value peer_of_nothing(static_cast<IDispatch*>(nullptr));  // converts to no text
  const auto row = Create(L"QDL.Dictionary");
  const auto list = Create(L"QDL.Vector");
  Put(row, L"Value", {L"FName", L"Receipts"});
  const DISPID lookup = IdOf(row.get(), L"ValueOrDefault");

  TestCase("a named argument stands in any order and beside positional ones");
  Value key(L"absent"), fallback(5);
  Check(Text(Invoke(row.get(), lookup, kRead, {*key, *fallback}, {0, 1})), "I4 5");
  Check(Text(Invoke(row.get(), lookup, kRead, {*fallback, *key}, {1, 0})), "I4 5");
  Check(Text(Invoke(row.get(), lookup, kRead, {*key, *fallback}, {1})), "I4 5");

  TestCase("an unknown named argument is refused");
  Check(Text(Invoke(row.get(), lookup, kRead, {*key, *fallback}, {7})), "80020004");
  Check(Text(Invoke(row.get(), lookup, kRead, {*key, *fallback}, {-9})), "80020004");

  TestCase("a left-out argument takes its default, at the end and as a hole");
  Check(Text(Invoke(row.get(), lookup, kRead, {*key})), "Empty");
  Check(Text(Invoke(row.get(), lookup, kRead, {*key, Value::Missing()})), "Empty");
  Get(list, L"Append", {1});
  Get(list, L"Append", {2});
  Value first(1);
  Check(Text(Invoke(list.get(), IdOf(list.get(), L"Remove"), kRead, {*first, Value::Missing()})),
        "Empty");
  Check(Text(Get(list, L"Count")), "I4 1");

  TestCase("too few and too many arguments are told by the count");
  Check(Text(Get(row, L"ValueOrDefault")), "8002000E");
  Check(Text(Get(row, L"ValueOrDefault", {1, 2, 3})), "8002000E");
  Check(Text(Get(row, L"Clone", {1})), "8002000E");
  Check(Text(Put(row, L"Value", {1})), "8002000E");

  TestCase("a needed argument that is left out expressly is told so");
  Check(Text(Invoke(row.get(), lookup, kRead, {Value::Missing(), *fallback})), "8002000F");
  Check(Text(Invoke(list.get(), IdOf(list.get(), L"Insert"), kRead, {Value::Missing(), *first})),
        "8002000F");

  TestCase("an argument of the wrong type is told with its place");
  Check(Text(Get(list, L"Insert", {L"no number", 5})), "80020005 at 1");
  Check(Text(Get(list, L"Remove", {1, L"no number"})), "80020005 at 0");
  Value bad(L"x");
  Check(Text(Invoke(list.get(), IdOf(list.get(), L"Remove"), kRead, {*bad, *first}, {1, 0})),
        "80020005 at 1");
  Check(Text(Get(list, L"Item", {1e10})), "8002000A at 0");
  VARIANT record;
  VariantInit(&record);
  record.vt = VT_RECORD;
  Check(Text(Invoke(list.get(), IdOf(list.get(), L"Append"), kRead, {record})), "80020005 at 0");

  TestCase("a value put of the wrong type is told with its place");
  Check(Text(Put(list, L"LowerBound", {L"no number"})), "80020005 at 0");
  const auto group = Create(L"QDCLGL.VoucherGroup");
  Check(Text(Get(group, L"Construct", {list, Value(static_cast<IDispatch*>(nullptr))})),
        "80020005 at 1");

  TestCase("a wrong argument before those that go on to the result is told with its place");
  const auto entries = Create(L"QDCLGL.SystemProfile");
  Check(Text(Get(entries, L"ProfileList", {peer_of_nothing, L"k"})), "80020005 at 1");

  TestCase("every width of number is taken");
  const auto put = [&](VARTYPE type, auto fill) {
    VARIANT value;
    VariantInit(&value);
    value.vt = type;
    fill(value);
    Value name(L"n");
    Invoke(row.get(), DISPID_VALUE, DISPATCH_PROPERTYPUT, {*name, value}, {DISPID_PROPERTYPUT});
    return Text(Get(row, L"Value", {L"n"}));
  };
  Check(put(VT_I1, [](VARIANT& v) { v.cVal = -5; }), "I2 -5");
  Check(put(VT_UI2, [](VARIANT& v) { v.uiVal = 60000; }), "I4 60000");
  Check(put(VT_UI4, [](VARIANT& v) { v.ulVal = 7; }), "I2 7");
  Check(put(VT_UI4, [](VARIANT& v) { v.ulVal = 4000000000u; }), "DECIMAL 4000000000/0");
  Check(put(VT_INT, [](VARIANT& v) { v.intVal = -70000; }), "I4 -70000");
  Check(put(VT_I8, [](VARIANT& v) { v.llVal = -8; }), "I2 -8");
  Check(put(VT_UI8, [](VARIANT& v) { v.ullVal = 18000000000000000000u; }),
        "DECIMAL 18000000000000000000/0");
  Check(put(VT_R4, [](VARIANT& v) { v.fltVal = 0.5f; }), "R4 0.500000");
  Check(put(VT_CY, [](VARIANT& v) { v.cyVal.int64 = -15000; }), "CY -15000");
  Check(put(VT_DATE, [](VARIANT& v) { v.date = 45351.5; }), "DATE 45351.500000");
  Check(put(VT_BOOL, [](VARIANT& v) { v.boolVal = VARIANT_TRUE; }), "BOOL True");

  TestCase("text of any script crosses intact");
  Put(row, L"Value", {L"\x5e74\x6708", L"\xD83D\xDE00 \x0416 \x5e74"});
  const Outcome text = Get(row, L"Value", {L"\x5e74\x6708"});
  Check(Text(text), "BSTR \xF0\x9F\x98\x80 \xD0\x96 \xE5\xB9\xB4");
  const std::wstring with_nul(L"a\0b", 3);
  OwnedText held(with_nul);
  VARIANT nul_text;
  VariantInit(&nul_text);
  nul_text.vt = VT_BSTR;
  nul_text.bstrVal = held.get();
  Value name(L"nul");
  Invoke(row.get(), DISPID_VALUE, DISPATCH_PROPERTYPUT, {*name, nul_text}, {DISPID_PROPERTYPUT});
  const Outcome nul = Get(row, L"Value", {L"nul"});
  Check(std::to_string(SysStringLen((*nul.result).bstrVal)), "3");

  TestCase("a byte array crosses, by value and by reference");
  SAFEARRAY* bytes = SafeArrayCreateVector(VT_UI1, 0, 3);
  for (BYTE i = 0; i < 3; ++i) static_cast<BYTE*>(bytes->pvData)[i] = static_cast<BYTE>(7 * i);
  VARIANT array;
  VariantInit(&array);
  array.vt = VT_ARRAY | VT_UI1;
  array.parray = bytes;
  Value bytes_key(L"bytes");
  Invoke(row.get(), DISPID_VALUE, DISPATCH_PROPERTYPUT, {*bytes_key, array}, {DISPID_PROPERTYPUT});
  Check(Text(Get(row, L"Value", {L"bytes"})), "BYTES 0 7 14");
  Check(Text(Invoke(row.get(), DISPID_VALUE, DISPATCH_PROPERTYPUT,
                    {*bytes_key, Value::To(VT_ARRAY | VT_UI1, &bytes)}, {DISPID_PROPERTYPUT})),
        "Empty");
  Check(Text(Get(row, L"Value", {L"bytes"})), "BYTES 0 7 14");
  SafeArrayDestroy(bytes);

  TestCase("references to references are followed to the value");
  Value inner(L"deep");
  VARIANT middle = Value::To(VT_VARIANT, inner.get());
  Check(Text(Invoke(row.get(), DISPID_VALUE, DISPATCH_PROPERTYPUT,
                    {*bytes_key, Value::To(VT_VARIANT, &middle)}, {DISPID_PROPERTYPUT})),
        "Empty");
  Check(Text(Get(row, L"Value", {L"bytes"})), "BSTR deep");
}

void References() {
  const auto profile = Create(L"QDCLGL.SystemProfile");
  const DISPID period = IdOf(profile.get(), L"GLGetPeriodByDate");
  VARIANT day;
  VariantInit(&day);
  day.vt = VT_DATE;
  day.date = 45351;  // 2024-02-29

  TestCase("a result comes back in a variable of its own type, whatever it is");
  LONG year = 0;
  Check(Text(Invoke(profile.get(), period, kRead, {day, Value::To(VT_I4, &year)})), "I4 2");
  Check(std::to_string(year), "2024");
  double real = 0;
  Invoke(profile.get(), period, kRead, {day, Value::To(VT_R8, &real)});
  Check(std::to_string(real), "2024.000000");
  CY amount{};
  Invoke(profile.get(), period, kRead, {day, Value::To(VT_CY, &amount)});
  Check(std::to_string(amount.int64), "20240000");
  BSTR text = SysAllocString(L"1");
  Invoke(profile.get(), period, kRead, {day, Value::To(VT_BSTR, &text)});
  Check(FromWide(text), "2024");
  SysFreeString(text);
  Value variable(1);
  Invoke(profile.get(), period, kRead, {day, Value::To(VT_VARIANT, variable.get())});
  Check(Text(*variable), "I4 2024");

  const auto year_in = [&]<class Whole>(VARTYPE type, Whole whole) {
    whole = 1;
    const std::string outcome =
        Text(Invoke(profile.get(), period, kRead, {day, Value::To(type, &whole)}));
    return outcome == "I4 2" ? std::to_string(whole) : outcome;
  };
  Check(year_in(VT_I2, SHORT{}), "2024");
  Check(year_in(VT_UI2, USHORT{}), "2024");
  Check(year_in(VT_UI4, ULONG{}), "2024");
  Check(year_in(VT_INT, INT{}), "2024");
  Check(year_in(VT_UINT, UINT{}), "2024");
  Check(year_in(VT_I8, LONGLONG{}), "2024");
  Check(year_in(VT_UI8, ULONGLONG{}), "2024");

  TestCase("a result that doesn't fit its variable is told with its place");
  Check(year_in(VT_I1, static_cast<signed char>(0)), "8002000A at 0");
  BYTE narrow = 1;
  Check(Text(Invoke(profile.get(), period, kRead, {day, Value::To(VT_UI1, &narrow)})),
        "8002000A at 0");
  Check(std::to_string(narrow), "1");

  TestCase("a variable that the member leaves alone is left alone");
  const auto row = Create(L"QDL.Dictionary");
  Value key(L"k");
  SHORT small = 5;
  Invoke(row.get(), IdOf(row.get(), L"ValueOrDefault"), kRead, {*key, Value::To(VT_I2, &small)});
  Check(std::to_string(small), "5");
}

void Uses() {
  const auto row = Create(L"QDL.Dictionary");
  const auto other = Create(L"QDL.Dictionary");
  Put(row, L"Value", {L"a", 1});

  TestCase("a property is read by flags 1, 2 and 3");
  const DISPID count = IdOf(row.get(), L"Count");
  Check(Text(Invoke(row.get(), count, DISPATCH_PROPERTYGET, {})), "I4 1");
  Check(Text(Invoke(row.get(), count, DISPATCH_METHOD, {})), "I4 1");
  Check(Text(Invoke(row.get(), count, kRead, {})), "I4 1");
  constexpr WORD kReads[] = {DISPATCH_METHOD, DISPATCH_PROPERTYGET, kRead};
  Value of_a(L"a");
  for (const WORD flags : kReads) {
    Check(Text(Invoke(row.get(), DISPID_VALUE, flags, {*of_a})), "I4 1");
  }
  const auto table = Create(L"QDL.Recordset");
  Get(Get(table, L"Fields").object(), L"Append", {L"FName"});
  Value column(L"FName");
  for (const WORD flags : kReads) {
    Check(Text(Invoke(table.get(), IdOf(table.get(), L"Fields"), flags, {*column})), "DISPATCH");
  }

  TestCase("a method is called by flags 1 and 3");
  Check(Text(Invoke(row.get(), IdOf(row.get(), L"Clone"), DISPATCH_METHOD, {})), "DISPATCH");
  Check(Text(Invoke(row.get(), IdOf(row.get(), L"Clone"), kRead, {})), "DISPATCH");
  Check(Text(Invoke(row.get(), IdOf(row.get(), L"Clone"), DISPATCH_PROPERTYGET, {})), "80020003");

  TestCase("an indexed put has its index arguments before the value");
  Check(Text(Put(row, L"Value", {L"b", L"second"})), "Empty");
  Check(Text(Get(row, L"Value", {L"b"})), "BSTR second");

  TestCase("an object is put by flags 4 and 8");
  Check(Text(Put(row, L"Value", {L"o", other}, DISPATCH_PROPERTYPUTREF)), "Empty");
  Check(Text(Get(row, L"Value", {L"o"})), "DISPATCH");
  Check(Text(Put(row, L"Value", {L"p", other}, DISPATCH_PROPERTYPUT)), "Empty");
  const auto rows = Create(L"QDL.Recordset");
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");
  Check(Text(Put(groups, L"RecordSet", {rows}, DISPATCH_PROPERTYPUT)), "Empty");
  Check(Get(groups, L"RecordSet").object().get() == rows.get(), "the recordset is the one put");
  Check(Text(Put(groups, L"RecordSet", {rows}, DISPATCH_PROPERTYPUTREF)), "Empty");

  TestCase("a put of a read-only member is refused as unknown");
  Check(Text(Put(row, L"Count", {5})), "80020003");
  Check(Text(Put(groups, L"Count", {5})), "80020003");
  Check(Text(Put(groups, L"Item", {1, 5})), "80020003");
  Check(Text(Put(groups, L"Refresh", {5})), "80020003");

  TestCase("a read of a member that is only written is refused as unknown");
  const auto account = Create(L"QDCLGL.Account");
  Check(Text(Get(account, L"SetProps", {L"x"})), "80020003");
  Check(Text(Invoke(row.get(), 99, kRead, {})), "80020003");

  TestCase("the default member is called by id 0");
  Value key(L"a");
  Check(Text(Invoke(row.get(), DISPID_VALUE, kRead, {*key})), "I4 1");
  Check(Text(Invoke(account.get(), DISPID_VALUE, kRead, {})), "80020003");
}

void Errors() {
  const auto rows = Create(L"QDL.Recordset");

  TestCase("an error fills the exception at once, with number, source and description");
  Check(Text(Get(rows, L"MoveFirst")), "800A0E78 [Recordset] The recordset is closed.");
  Check(Text(Get(rows, L"Fields", {L"FNone"})), "800A0CC1 [Recordset] No field FNone.");

  TestCase("an error without words has none");
  const auto list = Create(L"QDL.Vector");
  Check(Text(Get(list, L"Item", {5})), "800A0009 [] ");

  TestCase("a null exception and a null bad-argument place are tolerated");
  DISPPARAMS none{};
  SetErrorInfo(0, nullptr);
  const HRESULT code = rows->Invoke(IdOf(rows.get(), L"MoveFirst"), IID_NULL, 0, kRead, &none,
                                    nullptr, nullptr, nullptr);
  Check(CodeText(code), "80020009");
  Value text(L"no number");
  VARIANT argument = *text;
  DISPPARAMS one{&argument, nullptr, 1, 0};
  Check(CodeText(list->Invoke(DISPID_VALUE, IID_NULL, 0, kRead, &one, nullptr, nullptr, nullptr)),
        "80020005");

  TestCase("the thread's error information has the same words");
  SetErrorInfo(0, nullptr);
  rows->Invoke(IdOf(rows.get(), L"MoveFirst"), IID_NULL, 0, kRead, &none, nullptr, nullptr,
               nullptr);
  Com<IErrorInfo> info;
  Check(GetErrorInfo(0, info.Put()) == S_OK, "there is error information");
  OwnedText source, description;
  info->GetSource(source.Put());
  info->GetDescription(description.Put());
  Check(source.ToText() + ": " + description.ToText(), "Recordset: The recordset is closed.");

  TestCase("error information is promised for the own interfaces and no other");
  const auto support = Query<ISupportErrorInfo>(rows.get(), IID_ISupportErrorInfo);
  Com<ITypeInfo> type;
  rows->GetTypeInfo(0, 0, type.Put());
  TYPEATTR* attributes = nullptr;
  type->GetTypeAttr(&attributes);
  Check(support->InterfaceSupportsErrorInfo(IID_IDispatch) == S_OK, "IDispatch");
  Check(support->InterfaceSupportsErrorInfo(attributes->guid) == S_OK, "the dispinterface");
  Check(support->InterfaceSupportsErrorInfo(IID_IPersist) == S_FALSE, "not IPersist");
  type->ReleaseTypeAttr(attributes);
}

void Identity() {
  const auto row = Create(L"QDL.Dictionary");

  TestCase("an object has one identity through all of its interfaces");
  const auto unknown = Query<IUnknown>(row.get(), IID_IUnknown);
  const auto support = Query<ISupportErrorInfo>(row.get(), IID_ISupportErrorInfo);
  Check(Query<IUnknown>(support.get(), IID_IUnknown).get() == unknown.get(), "the same IUnknown");
  Check(Query<IDispatch>(support.get(), IID_IDispatch).get() == row.get(), "the same IDispatch");
  void* none = row.get();
  Check(CodeText(row->QueryInterface(IID_IPersist, &none)), "80004002");
  Check(none == nullptr, "a refused interface is null");

  TestCase("a proper object is the same one each time it is handed out");
  const auto inner = Create(L"QDL.Dictionary");
  Put(row, L"Value", {L"inner", inner});
  Check(Get(row, L"Value", {L"inner"}).object().get() == inner.get(), "the same");

  TestCase("a foreign object comes out as itself");
  const auto peer = NewPeer({});
  Put(row, L"Value", {L"foreign", peer}, DISPATCH_PROPERTYPUTREF);
  Check(Get(row, L"Value", {L"foreign"}).object().get() == peer.get(), "the same");
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  Names(Create(L"QDCLGL.VoucherGroupSet"));
  Arguments();
  References();
  Uses();
  Errors();
  Identity();
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
