// What goes in comes back: texts, arrays, errors and objects that a caller hands over and reads
// again.
#include "tests/automation/client.h"

using namespace qdclgl::automation;
using namespace qdclgl::automation::testing;

namespace {

const Value kNothing(static_cast<IDispatch*>(nullptr));

// A text in units, as it is: halves of characters included.
std::string Units(BSTR text) {
  std::string shown;
  for (UINT i = 0; i < SysStringLen(text); ++i) {
    char unit[8];
    std::snprintf(unit, sizeof unit, "%04X ", static_cast<unsigned>(text[i]));
    shown += unit;
  }
  return shown;
}

void Texts() {
  const auto row = Create(L"QDL.Dictionary");

  TestCase("a text with half a character comes back as it went in");
  for (const wchar_t* text : {L"\xD83D", L"\xDE00", L"a\xD83Dz", L"\xDE00\xD83D", L"\xD83D\xDE00",
                              L"\xD83D\xD83D\xDE00", L"\xFFFD\xFFFF"}) {
    Put(row, L"Value", {L"k", text});
    const Outcome read = Get(row, L"Value", {L"k"});
    OwnedText given(text);
    Check(Units((*read.result).bstrVal), Units(given.get()));
  }

  TestCase("keys that differ in half a character are two keys");
  const auto keys = Create(L"QDL.Dictionary");
  Put(keys, L"Value", {L"\xD83D", 1});
  Put(keys, L"Value", {L"\xD83E", 2});
  Check(Text(Get(keys, L"Count")), "I4 2");
  Check(Text(Get(keys, L"Value", {L"\xD83D"})) + Text(Get(keys, L"Value", {L"\xD83E"})),
        "I4 1I4 2");
  Check(Units((*Get(keys, L"Name", {2}).result).bstrVal), "D83E ");

  TestCase("a member that is a text keeps half a character too");
  const auto group = Create(L"QDCLGL.VoucherGroup");
  Get(group, L"Construct", {kNothing, kNothing});
  Put(group, L"Name", {L"x\xD83D"});
  Check(Units((*Get(group, L"Name").result).bstrVal), "0078 D83D ");

  TestCase("a text of an odd number of bytes is refused with words");
  VARIANT odd;
  VariantInit(&odd);
  odd.vt = VT_BSTR;
  odd.bstrVal = SysAllocStringByteLen("abc", 3);
  Value key(L"k");
  const auto put = [&](const VARIANT& value) {
    return Text(
        Invoke(row.get(), DISPID_VALUE, DISPATCH_PROPERTYPUT, {*key, value}, {DISPID_PROPERTYPUT}));
  };
  const std::string words = "800A000D [QDCLGL] A text of an odd number of bytes holds half a unit.";
  Check(put(odd), words);
  Check(put(Value::To(VT_BSTR, &odd.bstrVal)), words);
  SysFreeString(odd.bstrVal);
  odd.bstrVal = SysAllocStringByteLen("a\0b\0", 4);
  Check(put(odd), "Empty");
  SysFreeString(odd.bstrVal);
  Check(Text(Get(row, L"Value", {L"k"})), "BSTR ab");
}

std::string PutArray(const Com<IDispatch>& row, VARTYPE element, SAFEARRAY* array) {
  Value key(L"k");
  VARIANT value;
  VariantInit(&value);
  value.vt = static_cast<VARTYPE>(VT_ARRAY | element);
  value.parray = array;
  return Text(
      Invoke(row.get(), DISPID_VALUE, DISPATCH_PROPERTYPUT, {*key, value}, {DISPID_PROPERTYPUT}));
}

void Arrays() {
  const auto row = Create(L"QDL.Dictionary");

  TestCase("a byte array keeps its bounds");
  for (const LONG bound : {0L, 1L, -3L, 1000000L}) {
    SAFEARRAY* bytes = SafeArrayCreateVector(VT_UI1, bound, 2);
    static_cast<BYTE*>(bytes->pvData)[1] = 9;
    Check(PutArray(row, VT_UI1, bytes), "Empty");
    SafeArrayDestroy(bytes);
    const Outcome read = Get(row, L"Value", {L"k"});
    Check(Text(read), "BYTES 0 9");
    Check(std::to_string((*read.result).parray->rgsabound[0].lLbound), std::to_string(bound));
  }

  TestCase("an empty byte array comes back as one");
  SAFEARRAY* empty = SafeArrayCreateVector(VT_UI1, 0, 0);
  Check(PutArray(row, VT_UI1, empty), "Empty");
  SafeArrayDestroy(empty);
  Check(Text(Get(row, L"Value", {L"k"})), "BYTES");

  TestCase("any other array is refused with words");
  SAFEARRAYBOUND bounds[] = {{2, 0}, {3, 0}};
  SAFEARRAY* table = SafeArrayCreate(VT_UI1, 2, bounds);
  Check(PutArray(row, VT_UI1, table),
        "800A000D [QDCLGL] Of arrays, those of one dimension are taken.");
  SafeArrayDestroy(table);
  SAFEARRAY* numbers = SafeArrayCreateVector(VT_I4, 0, 2);
  Check(PutArray(row, VT_I4, numbers),
        "800A000D [QDCLGL] Of arrays, those of bytes are taken; a list of values is a Vector.");
  SafeArrayDestroy(numbers);
  Check(PutArray(row, VT_UI1, nullptr), "800A000D [QDCLGL] The array was never given its bounds.");
  Check(Text(Get(row, L"Value", {L"k"})), "BYTES");
}

void Lists() {
  const auto rows = Create(L"QDL.Recordset");
  const auto fields = Get(rows, L"Fields").object();
  for (const wchar_t* name : {L"a", L"b"}) Get(fields, L"Append", {name});
  Get(rows, L"Open");
  const DISPID add = IdOf(rows.get(), L"AddNew");
  SAFEARRAY* names = SafeArrayCreateVector(VT_BSTR, 5, 2);
  static_cast<BSTR*>(names->pvData)[0] = SysAllocString(L"b");
  static_cast<BSTR*>(names->pvData)[1] = SysAllocString(L"a");
  SAFEARRAY* numbers = SafeArrayCreateVector(VT_I4, 0, 2);
  static_cast<LONG*>(numbers->pvData)[0] = 70000;
  static_cast<LONG*>(numbers->pvData)[1] = 7;
  const auto array_of = [](VARTYPE type, SAFEARRAY* array) {
    VARIANT value;
    VariantInit(&value);
    value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
    value.parray = array;
    return value;
  };

  TestCase("a member that takes lists takes arrays of any type, by value and by reference");
  Check(Text(Invoke(rows.get(), add, kRead, {array_of(VT_BSTR, names), array_of(VT_I4, numbers)})),
        "Empty");
  Check(
      Text(Invoke(rows.get(), add, kRead,
                  {Value::To(VT_ARRAY | VT_BSTR, &names), Value::To(VT_ARRAY | VT_I4, &numbers)})),
      "Empty");
  Check(Text(Get(rows, L"RecordCount")), "I4 2");
  Check(Text(Get(Get(rows, L"Fields", {L"a"}).object(), L"Value")), "I4 7");
  Check(Text(Get(Get(rows, L"Fields", {L"b"}).object(), L"Value")), "I4 70000");

  TestCase("what is no list of values is refused there with words");
  SAFEARRAYBOUND bounds[] = {{2, 0}, {3, 0}};
  SAFEARRAY* table = SafeArrayCreate(VT_VARIANT, 2, bounds);
  Check(
      Text(Invoke(rows.get(), add, kRead, {array_of(VT_VARIANT, table), array_of(VT_I4, numbers)})),
      "800A000D [QDCLGL] Of arrays, those of one dimension are taken.");
  Check(Text(Invoke(rows.get(), add, kRead,
                    {array_of(VT_VARIANT, nullptr), array_of(VT_I4, numbers)})),
        "800A000D [QDCLGL] The array was never given its bounds.");
  Check(Text(Get(rows, L"RecordCount")), "I4 2");
  for (SAFEARRAY* array : {names, numbers, table}) SafeArrayDestroy(array);

  TestCase("an array that a member answers has its own elements");
  const auto row = Create(L"QDL.Dictionary");
  Get(row, L"Add", {L"k", rows});
  rows->AddRef();
  const ULONG before = rows->Release();
  {
    const Outcome items = Get(row, L"Items");
    Check(std::to_string((*items.result).vt), std::to_string(VT_ARRAY | VT_VARIANT));
    const auto* elements = static_cast<const VARIANT*>((*items.result).parray->pvData);
    Check(elements[0].pdispVal == rows.get(), "the element is the object itself");
    rows->AddRef();
    Check(rows->Release() == before + 1, "the array holds it");
  }
  rows->AddRef();
  Check(rows->Release() == before, "and lets go of it");
}

void Errors() {
  const auto list = Create(L"QDL.Vector");
  const DISPID append = IdOf(list.get(), L"Append");

  TestCase("a result code as a value comes back as it went in");
  VARIANT code;
  VariantInit(&code);
  code.vt = VT_ERROR;
  SCODE referred = static_cast<SCODE>(0x800A07FA);
  for (const SCODE each : {E_FAIL, S_OK, static_cast<SCODE>(0x800A07FA)}) {
    code.scode = each;
    Check(Text(Invoke(list.get(), append, kRead, {code})), "Empty");
  }
  Check(Text(Invoke(list.get(), append, kRead, {Value::To(VT_ERROR, &referred)})), "Empty");
  Check(Text(Get(list, L"Item", {1})) + "," + Text(Get(list, L"Item", {2})) + "," +
            Text(Get(list, L"Item", {3})) + "," + Text(Get(list, L"Item", {4})),
        "ERROR 80004005,ERROR 00000000,ERROR 800A07FA,ERROR 800A07FA");

  TestCase("a result code converts to nothing");
  Check(Text(Invoke(list.get(), IdOf(list.get(), L"Item"), kRead, {code})), "80020005 at 0");

  TestCase("the code of a left-out argument is one by reference too");
  referred = DISP_E_PARAMNOTFOUND;
  Check(Text(Invoke(list.get(), append, kRead, {Value::To(VT_ERROR, &referred)})), "8002000F");
}

// A Dictionary of another library, whose one value its owner may change.
Com<IDispatch> NewForeignDictionary(int& number) {
  return NewPeer({
      {L"Count", [](const Received& call) { return Return(call, 1); }},
      {L"Lookup", [](const Received& call) { return Return(call, true); }},
      {L"Name", [](const Received& call) { return Return(call, L"FGroupID"); }},
      {L"Value", [&number](const Received& call) { return Return(call, number); }},
  });
}

// A Vector of another library with one element.
Com<IDispatch> NewForeignVector(const Com<IDispatch>& element) {
  return NewPeer({
      {L"LowerBound", [](const Received& call) { return Return(call, 1); }},
      {L"UpperBound", [](const Received& call) { return Return(call, 1); }},
      {L"Count", [](const Received& call) { return Return(call, 1); }},
      {L"Append", [](const Received&) { return E_NOTIMPL; }},
      {L"Item", [element](const Received& call) { return Return(call, element); }},
  });
}

std::string Same(const Com<IDispatch>& left, const Com<IDispatch>& right) {
  return left.get() == right.get() ? "same" : "other";
}

void Objects() {
  int number = 5;
  const auto foreign = NewForeignDictionary(number);
  const auto foreign_list = NewForeignVector(foreign);

  TestCase("a container gives back the very object that was put in");
  const auto row = Create(L"QDL.Dictionary");
  const auto list = Create(L"QDL.Vector");
  for (const auto& object : {foreign, foreign_list}) {
    Put(row, L"Value", {L"k", object}, DISPATCH_PROPERTYPUTREF);
    Check(Same(Get(row, L"Value", {L"k"}).object(), object), "same");
    Get(list, L"Append", {object});
    Check(Same(Get(list, L"Item", {1}).object(), object), "same");
    Put(list, L"Item", {1, object}, DISPATCH_PROPERTYPUT);
    Check(Same(Get(list, L"Item", {1}).object(), object), "same");
    Get(list, L"Remove", {1});
    Check(Same(Get(row, L"ValueOrDefault", {L"none", object}).object(), object), "same");
  }
  Check(Same(Get(Get(row, L"Clone").object(), L"Value", {L"k"}).object(), foreign_list), "same");

  TestCase("a member that only stores an object gives back that object");
  const auto voucher = Create(L"QDCLGL.Voucher");
  Get(voucher, L"Construct", {kNothing, kNothing});
  Put(voucher, L"BillInfo", {foreign});
  Check(Same(Get(voucher, L"BillInfo").object(), foreign), "same");
  const auto entries = Get(voucher, L"Entries").object();
  Get(entries, L"Add");
  const auto entry = Get(entries, L"Item", {1}).object();
  Put(entry, L"CashFlow", {foreign});
  Check(Same(Get(entry, L"CashFlow").object(), foreign), "same");
  Put(entry, L"CashFlow", {foreign_list});
  Check(Same(Get(entry, L"CashFlow").object(), foreign_list), "same");
  Put(entry, L"MGBill", {foreign}, DISPATCH_PROPERTYPUTREF);
  Check(Same(Get(entry, L"MGBill").object(), foreign), "same");
  const auto bag = Get(voucher, L"Properties").object();
  const auto property = Get(bag, L"Item", {L"own"}).object();
  Put(property, L"Value", {foreign}, DISPATCH_PROPERTYPUTREF);
  Check(Same(Get(property, L"Value").object(), foreign), "same");
  Check(Same(Get(Get(bag, L"Dictionary").object(), L"Value", {L"own"}).object(), foreign), "same");

  TestCase("a copy of what holds a foreign Dictionary has what that holds now");
  number = 6;
  const auto copy = Get(voucher, L"Clone").object();
  const auto bill = Get(copy, L"BillInfo").object();
  Check(Same(bill, foreign), "other");
  Check(Text(Get(bill, L"Value", {L"FGroupID"})), "I4 6");

  TestCase("a baseline is shared with its caller");
  number = 7;
  const auto group = Create(L"QDCLGL.VoucherGroup");
  Get(group, L"Construct", {foreign, kNothing});
  Check(Text(Get(group, L"VoucherGroupID")), "I4 7");
  const auto bag_value = [&group] {
    const auto dictionary = Get(Get(group, L"Properties").object(), L"Dictionary").object();
    return Text(Get(dictionary, L"Value", {L"FGroupID"}));
  };
  number = 8;
  Check(bag_value(), "I4 7");
  Get(group, L"CancelChanges");
  Check(bag_value(), "I4 8");
  Get(voucher, L"Construct", {foreign, kNothing});
  Check(Same(Get(voucher, L"DictOrig").object(), foreign), "same");

  TestCase("a foreign list that the library has written into is the library's own from then on");
  Get(voucher, L"Construct", {kNothing, kNothing});
  const auto working = Get(Get(voucher, L"Properties").object(), L"Dictionary").object();
  const auto lines = NewForeignVector(foreign);
  Put(working, L"Value", {L"_Entries", lines}, DISPATCH_PROPERTYPUTREF);
  Check(Same(Get(working, L"Value", {L"_Entries"}).object(), lines), "same");
  const auto line = Get(Get(voucher, L"Entries").object(), L"Item", {1}).object();
  Check(Same(Get(working, L"Value", {L"_Entries"}).object(), lines), "same");
  Put(line, L"AccountID", {1001});
  const auto written = Get(working, L"Value", {L"_Entries"}).object();
  Check(Same(written, lines), "other");
  Check(Text(Get(Get(written, L"Item", {1}).object(), L"Value", {L"FAccountID"})), "I4 1001");
  Check(Same(Get(working, L"Value", {L"_Entries"}).object(), written), "same");

  TestCase("an object of ours inside a foreign list is itself");
  const auto own = Create(L"QDL.Dictionary");
  Put(own, L"Value", {L"FGroupID", 1});
  const auto mixed = NewForeignVector(own);
  Put(row, L"Value", {L"mixed", mixed}, DISPATCH_PROPERTYPUTREF);
  Put(own, L"Value", {L"FGroupID", 2});
  Check(Same(Get(row, L"Value", {L"mixed"}).object(), mixed), "same");

  TestCase("an error of a foreign Dictionary that is taken in passes with its words");
  const auto failing = NewPeer({
      {L"Lookup", [](const Received&) { return E_NOTIMPL; }},
      {L"Name", [](const Received&) { return E_NOTIMPL; }},
      {L"Value", [](const Received&) { return E_NOTIMPL; }},
      {L"Count",
       [](const Received& call) {
         *call.exception = {};
         call.exception->scode = static_cast<HRESULT>(0x80040123);
         call.exception->bstrSource = SysAllocString(L"Rows");
         call.exception->bstrDescription = SysAllocString(L"They are gone.");
         return DISP_E_EXCEPTION;
       }},
  });
  Check(Text(Put(row, L"Value", {L"f", failing}, DISPATCH_PROPERTYPUTREF)),
        "80040123 [Rows] They are gone.");
  TakeLog();
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  Texts();
  Arrays();
  Lists();
  Errors();
  Objects();
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
