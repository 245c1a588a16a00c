// Foreign objects that don't keep to their contract, each with the error that it comes to.
#include <stdexcept>

#include "qdclgl/automation/crossing.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/vouchers/voucher_group.h"
#include "tests/automation/client.h"
#include "tests/automation/yes.h"

using namespace qdclgl::automation;
using namespace qdclgl::automation::testing;

namespace {

using Answer = Peer::Answer;

Answer Gives(const Value& value) {
  return [value](const Received& call) { return Return(call, value); };
}
Value Nothing() { return Value(static_cast<IDispatch*>(nullptr)); }

Com<IDispatch> NewDictionary(const Answer& count, const Answer& name, const Answer& value) {
  return NewPeer({{L"Lookup", Gives(true)}, {L"Count", count}, {L"Name", name}, {L"Value", value}});
}
Com<IDispatch> NewVector(const Answer& first, const Answer& last, const Answer& item) {
  return NewPeer(
      {{L"Append", Gives(0)}, {L"LowerBound", first}, {L"UpperBound", last}, {L"Item", item}});
}

// What it comes to that an object is put into a Dictionary.
std::string TakenIn(const Com<IDispatch>& object) {
  const auto row = Create(L"QDL.Dictionary");
  const std::string text = Text(Put(row, L"Value", {L"x", object}, DISPATCH_PROPERTYPUTREF));
  Check(Text(Get(row, L"Count")), text == "Empty" ? "I4 1" : "I4 0");
  TakeLog();
  return text;
}

std::string Said(const std::string& code, const std::string& words) {
  return code + " [QDCLGL] " + words;
}

void Containers() {
  const Answer no_name = Gives(L"k");
  const auto of_count = [&](const Value& count) {
    return TakenIn(NewDictionary(Gives(count), no_name, Gives(1)));
  };
  const auto not_so = [](const char* number) {
    return Said("800A0006",
                std::string("Count of a foreign object is ") + number + ", not from 0 to 1000000.");
  };
  TestCase("a foreign Dictionary's count is one that there may be");
  Check(of_count(-1), not_so("-1"));
  Check(of_count(0x10000001), not_so("268435457"));
  Check(of_count(INT32_MAX), not_so("2147483647"));
  Check(of_count(INT32_MIN), not_so("-2147483648"));
  Check(of_count(1000001), not_so("1000001"));
  Check(of_count(0), "Empty");
  Check(of_count(L"2"), "Empty");

  TestCase("a foreign Dictionary's count is a number");
  const std::string unfit = "Count of a foreign object is of a type that doesn't fit.";
  Check(of_count(L"many"), Said("800A000D", unfit));
  Check(of_count(Nothing()), Said("800A000D", unfit));
  Check(of_count(1e300), Said("800A0006", unfit));

  TestCase("a foreign Dictionary's keys are texts");
  Check(TakenIn(NewDictionary(Gives(1), Gives(Nothing()), Gives(1))),
        Said("800A000D", "Name of a foreign object is of a type that doesn't fit."));

  const auto of_bounds = [](int first, int last) {
    return TakenIn(NewVector(Gives(first), Gives(last), Gives(7)));
  };
  const auto no_end = [](const std::string& last, const std::string& least,
                         const std::string& most) {
    return Said("800A0006", "UpperBound of a foreign object is " + last + ", not from " + least +
                                " to " + most + ".");
  };
  TestCase("a foreign Vector's bounds are ones that there may be");
  Check(of_bounds(1, INT32_MAX), no_end("2147483647", "0", "1000000"));
  Check(of_bounds(1, -1), no_end("-1", "0", "1000000"));
  Check(of_bounds(-5, INT32_MAX), no_end("2147483647", "-6", "999994"));
  Check(of_bounds(INT32_MIN + 1, INT32_MAX), no_end("2147483647", "-2147483648", "-2146483648"));
  Check(of_bounds(INT32_MIN, INT32_MIN),
        Said("800A0006",
             "LowerBound of a foreign object is -2147483648, not from -2147483647 to 2147483647."));
  Check(of_bounds(INT32_MAX, INT32_MAX), "Empty");
  Check(of_bounds(1, 0), "Empty");
}

// A list of a million elements, in which there are lists again to a depth.
class LongList final : public OneInterface<IDispatch, IID_IDispatch> {
 public:
  explicit LongList(int depth) : depth_(depth) {}
  static inline int items = 0;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID,
                                          DISPID* ids) override {
    *ids = names[0][0];
    return *ids == L'M' || names[0] == std::wstring_view(L"Lookup") ? DISP_E_UNKNOWNNAME : S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                   EXCEPINFO*, UINT*) override {
    if (id == L'I') {
      ++items;
      if (depth_ > 0) {
        result->vt = VT_DISPATCH;
        result->pdispVal = Com<IDispatch>(new LongList(depth_ - 1)).Detach();
        return S_OK;
      }
    }
    result->vt = VT_I4;
    result->lVal = id == L'U' ? 1000000 : 1;
    return S_OK;
  }

 private:
  int depth_;
};

void Lengths() {
  TestCase("lists that hold lists without end are an error behind 4,000,000 elements");
  Check(TakenIn(Com<IDispatch>(new LongList(1))),
        Said("800A0007", "A copy has more than 4000000 objects."));
  Check(LongList::items < 4000000, "no more elements are asked for");
}

// A recordset that answers rightly but for `wrong`.
Com<IDispatch> NewRecordset(std::map<std::wstring, Answer> wrong) {
  const auto field = NewPeer({{L"Name", Gives(L"FGroupID")}, {L"Value", Gives(5)}});
  const auto fields = NewPeer({{L"Count", Gives(1)}, {L"Item", Gives(field)}});
  wrong.insert({{L"EOF", Gives(false)},
                {L"BOF", Gives(false)},
                {L"MoveFirst", Gives(0)},
                {L"MoveNext", Gives(0)},
                {L"Fields", Gives(fields)},
                {L"RecordCount", Gives(1)},
                {L"State", Gives(1)}});
  return NewPeer(std::move(wrong));
}

std::string Read(const wchar_t* member, std::map<std::wstring, Answer> wrong) {
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");
  Put(groups, L"RecordSet", {NewRecordset(std::move(wrong))}, DISPATCH_PROPERTYPUTREF);
  const std::string text = Text(Get(groups, member));
  Check(Text(Get(groups, L"ListOptions")), "I4 0");
  TakeLog();
  return text;
}

void Recordsets() {
  const auto unfit = [](const char* member) {
    return Said("800A000D",
                std::string(member) + " of a foreign object is of a type that doesn't fit.");
  };
  const auto nothing = [](const char* member) {
    return Said("800A005B", std::string(member) + " of a foreign object is Nothing.");
  };
  TestCase("a foreign recordset that answers with Nothing is an error");
  Check(Read(L"GetCurrent", {}), "DISPATCH");
  Check(Read(L"GetCurrent", {{L"Fields", Gives(Nothing())}}), nothing("Fields"));
  const auto no_item = NewPeer({{L"Count", Gives(1)}, {L"Item", Gives(Nothing())}});
  Check(Read(L"GetCurrent", {{L"Fields", Gives(no_item)}}), nothing("Item"));
  Check(Read(L"NewEnum", {{L"Clone", Gives(Nothing())}}), nothing("Clone"));

  TestCase("a foreign recordset that answers with what doesn't fit is an error");
  Check(Read(L"GetCurrent", {{L"Fields", Gives(L"FGroupID")}}), unfit("Fields"));
  Check(Read(L"NewEnum", {{L"Clone", Gives(no_item)}}), unfit("Clone"));
  Check(Read(L"GetCurrent", {{L"EOF", Gives(L"maybe")}}), unfit("EOF"));
  Check(Read(L"Count", {{L"RecordCount", Gives(L"many")}}), unfit("RecordCount"));
  Check(Read(L"Count", {{L"RecordCount", Gives(-1)}}), "I4 -1");
  Check(
      Read(L"Count", {{L"RecordCount", Gives(INT32_MAX)}}),
      Said("800A0006", "RecordCount of a foreign object is 2147483647, not from -1 to 10000000."));
  const auto columns = NewPeer({{L"Count", Gives(-1)}, {L"Item", Gives(5)}});
  Check(Read(L"GetCurrent", {{L"Fields", Gives(columns)}}),
        Said("800A0006", "Count of a foreign object is -1, not from 0 to 1000000."));

  TestCase("a recordset without end is an error behind the rows that it may have");
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");
  Put(groups, L"RecordSet", {NewRecordset({{L"Clone", Gives(NewRecordset({}))}})},
      DISPATCH_PROPERTYPUTREF);
  const auto made = Get(groups, L"NewEnum");
  const auto walk = Query<IEnumVARIANT>((*made.result).punkVal, IID_IEnumVARIANT);
  Check(CodeText(walk->Skip(1000000)), "00000000");
  Check(CodeText(walk->Skip(1)), "800A0006");
  TakeLog();
}

void Yessers() {
  TestCase("an object that says yes to every interface is not taken for one of ours");
  for (const bool with_object : {true, false}) {
    const Com<IDispatch> yes(new Yes(with_object));
    const auto row = Create(L"QDL.Dictionary");
    Check(Text(Put(row, L"Value", {L"x", yes}, DISPATCH_PROPERTYPUTREF)), "Empty");
    Check(Get(row, L"Value", {L"x"}).object().get() == yes.get(), "it comes back as itself");
  }

  TestCase("an object that says yes to every name is a recordset that answers what doesn't fit");
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");
  Put(groups, L"RecordSet", {Com<IDispatch>(new Yes(true))}, DISPATCH_PROPERTYPUTREF);
  Check(Text(Get(groups, L"GetCurrent")),
        Said("800A000D", "Fields of a foreign object is of a type that doesn't fit."));
}

// What a component's failure comes to.
std::string Failure(const Answer& answer) {
  const Impersonated server(L"QDSVGLVoucherGroup.VoucherGroupInfo",
                            NewPeer({{L"GetList", answer}}));
  const std::string text = Text(Get(Create(L"QDCLGL.VoucherGroupSet"), L"Count"));
  TakeLog();
  return text;
}

Answer Raises(HRESULT code, const wchar_t* words) {
  return [code, words](const Received& call) {
    *call.exception = {};
    call.exception->scode = code;
    if (words != nullptr) call.exception->bstrDescription = SysAllocString(words);
    return DISP_E_EXCEPTION;
  };
}

void LeaveWords() {
  Com<ICreateErrorInfo> creator;
  CreateErrorInfo(creator.Put());
  creator->SetDescription(const_cast<LPOLESTR>(L"an earlier failure"));
  SetErrorInfo(0, Query<IErrorInfo>(creator.get(), IID_IErrorInfo).get());
}

void Errors() {
  TestCase("the words of an earlier failure are not those of a later one");
  LeaveWords();
  Check(Failure([](const Received&) { return E_ACCESSDENIED; }), "80070005 [] ");
  Check(Failure([](const Received&) {
          LeaveWords();
          return E_ACCESSDENIED;
        }),
        "80070005 [] an earlier failure");

  TestCase("a failure without a number is error 440");
  Check(Failure(Raises(0, L"No.")), "800A01B8 [] No.");
  Check(Failure(Raises(static_cast<HRESULT>(0x800A0000), nullptr)), "800A01B8 [] ");
  Check(Failure([](const Received&) { return DISP_E_EXCEPTION; }), "800A01B8 [] ");
  Check(Failure([](const Received&) { return static_cast<HRESULT>(0x800A0000); }), "800A01B8 [] ");
}

// An object that throws at one of its methods.
enum class Throws { kQuery, kNames, kInvoke, kRelease };
class Thrower final : public IDispatch {
 public:
  explicit Thrower(Throws where, bool offers_all = false)
      : where_(where), offers_all_(offers_all) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid == IID_IDispatch) At(Throws::kQuery);
    if (iid != IID_IUnknown && iid != IID_IDispatch) return E_NOINTERFACE;
    *object = this;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    --references_;
    At(Throws::kRelease);
    return references_;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID,
                                          DISPID* ids) override {
    At(Throws::kNames);
    *ids = 1;
    return offers_all_ || names[0] == std::wstring_view(L"Go") ? S_OK : DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    At(Throws::kInvoke);
    return S_OK;
  }
  ULONG references() const { return references_; }

 private:
  void At(Throws where) const {
    if (where == where_) throw std::runtime_error("Thrower");
  }
  Throws where_;
  bool offers_all_;
  ULONG references_ = 1;
};

// With the server's own objects in this program: exceptions cross no other runtime there.
void Exceptions() {
  TestCase("a C++ exception that a foreign object lets out is a failure of its call");
  const auto call = [](Throws where) {
    Thrower thrower(where);
    std::string text = "no error";
    try {
      TakeIn(&thrower, Taking::kCopy)->Call("Go");
    } catch (const qdclgl::Error& error) {
      text = error.what();
    }
    Check(std::to_string(thrower.references()), "1");
    return text;
  };
  Check(call(Throws::kQuery), "error 438");
  Check(call(Throws::kNames), "error 0x8000FFFF");
  Check(call(Throws::kInvoke), "error 0x8000FFFF");
  Check(call(Throws::kRelease), "no error");

  TestCase("a C++ exception that comes to the edge is a code");
  Thrower thrower(Throws::kInvoke, true);
  const auto groups = qdclgl::Make<qdclgl::VoucherGroupSet>();
  groups->RecordSet(qdclgl::Variant(TakeIn(&thrower, Taking::kCopy)).As<qdclgl::Recordset>());
  Value wrapped;
  HandOut(groups.get(), wrapped.get());
  // What a property reads as is called with the arguments that the property has none of.
  Check(Text(Get((*wrapped).pdispVal, L"RecordSet", {1})), "8000FFFF");
  Check(Text(Get((*wrapped).pdispVal, L"Count")), "8000FFFF [] ");
  Check(Text(Get((*wrapped).pdispVal, L"ListOptions")), "I4 0");
}

// A count that asks for itself: the tightest circle through a foreign object that there is.
DWORD WINAPI Recurse(void*) {
  CoInitialize(nullptr);
  {
    const auto groups = Create(L"QDCLGL.VoucherGroupSet");
    int depth = 0;
    std::string innermost;
    const Answer count = [&](const Received& call) {
      ++depth;
      const Outcome inner = Get(groups, L"Count");
      if (innermost.empty()) innermost = Text(inner);
      return Return(call, 1);
    };
    Put(groups, L"RecordSet", {NewRecordset({{L"RecordCount", count}})}, DISPATCH_PROPERTYPUTREF);
    Check(Text(Get(groups, L"Count")), "I4 1");
    Check(innermost, "800A001C [] ");
    Check(std::to_string(depth), "100");
    TakeLog();
  }
  CoUninitialize();
  return 0;
}

void Recursion() {
  TestCase("calls out of each other without end are error 28, on a stack of 1 MB too");
  const HANDLE thread =
      CreateThread(nullptr, 1 << 20, Recurse, nullptr, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  // Components of the machine may live in this apartment: it goes on answering.
  while (MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
  }
  CloseHandle(thread);
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  Containers();
  Lengths();
  Recordsets();
  Yessers();
  Errors();
  Exceptions();
  Recursion();
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
