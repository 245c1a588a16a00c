// Every operation of every class that calls out, with a neighbour that does some harm at each of
// its calls in turn: it answers what it shouldn't, fails in odd ways, calls back into what is at
// work, takes it away. Passed is what leaves the process alive, the object readable, and no
// reference of the neighbour's held or lost.
#include <algorithm>
#include <limits>

#include "qdclgl/automation/member_ids.h"
#include "qdclgl/automation/served_classes.h"
#include "tests/automation/neighbour.h"
#include "tests/automation/yes.h"

using namespace qdclgl::automation;
using qdclgl::ToWide;
using namespace qdclgl::automation::testing;
using qdclgl::ClassMember;

namespace {

using Role = Neighbour::Role;

Value Nothing() { return Value(static_cast<IDispatch*>(nullptr)); }

// ---- What neighbours do ----

HRESULT Raise(const Received& call, HRESULT code, const wchar_t* words) {
  *call.exception = {};
  call.exception->scode = code;
  call.exception->bstrDescription = words != nullptr ? SysAllocString(words) : nullptr;
  return DISP_E_EXCEPTION;
}

HRESULT STDMETHODCALLTYPE TellNothing(EXCEPINFO*) { return E_FAIL; }

void CallBack(const wchar_t* name, const std::vector<Value>& values = {}) {
  if (home.subject) Get(home.subject.get(), name, values);
}
void PutBack(const wchar_t* name, const Value& value, WORD flags) {
  if (home.subject) Put(Com<IDispatch>(home.subject), name, {value}, flags);
}

// Answers with what `fill` puts into the result.
Deed Answers(const char* what, std::function<void(VARIANT&)> fill) {
  return {.name = std::string("answers with ") + what, .answer = [fill](const Received& call) {
            if (call.result != nullptr) fill(*call.result);
            return S_OK;
          }};
}
Deed Answers(const char* what, const Value& value) {
  return Answers(what,
                 [value](VARIANT& result) { VariantCopy(&result, const_cast<VARIANT*>(&*value)); });
}
Deed AnswersEmptied(const char* what, VARTYPE type) {
  return Answers(what, [type](VARIANT& result) {
    std::fill_n(reinterpret_cast<char*>(&result), sizeof result, '\0');
    result.vt = type;
  });
}
Deed Fails(const char* how, HRESULT code) {
  return {.name = std::string("fails ") + how, .answer = [code](const Received&) { return code; }};
}

std::vector<Deed> Deeds() {
  const Value row = MakeNew(L"QDL.Dictionary");
  std::vector<Deed> deeds = {
      {.name = "raises with words",
       .answer = [](const Received& call) { return Raise(call, 0x80040123, L"No."); }},
      {.name = "raises without words",
       .answer = [](const Received& call) { return Raise(call, 0x800A0005, nullptr); }},
      {.name = "raises with both codes 0",
       .answer = [](const Received& call) { return Raise(call, 0, nullptr); }},
      {.name = "raises and tells nothing",
       .answer = [](const Received&) { return DISP_E_EXCEPTION; }},
      {.name = "raises and will not tell later",
       .answer =
           [](const Received& call) {
             call.exception->pfnDeferredFillIn = TellNothing;
             return DISP_E_EXCEPTION;
           }},
      Fails("with a code", E_ACCESSDENIED),
      Fails("for want of memory", E_OUTOFMEMORY),
      Fails("for the member", DISP_E_MEMBERNOTFOUND),
      Fails("for a type", DISP_E_TYPEMISMATCH),
      {.name = "knows no names", .names = [](UINT, DISPID*) { return DISP_E_UNKNOWNNAME; }},
      {.name = "knows names without ids", .names = [](UINT, DISPID*) { return S_OK; }},
      {.name = "gives all names one id",
       .names =
           [](UINT count, DISPID* ids) {
             std::fill_n(ids, count, DISPID_NEWENUM);
             return S_OK;
           }},
      {.name = "has no interface", .query = [](IUnknown*, void**) { return E_NOINTERFACE; }},
      {.name = "says yes without an interface", .query = [](IUnknown*, void**) { return S_OK; }},
      {.name = "says no and leaves an interface",
       .query =
           [](IUnknown* self, void** object) {
             *object = self;
             return E_NOINTERFACE;
           }},
      {.name = "says yes to any interface",
       .query =
           [](IUnknown* self, void** object) {
             *object = self;
             self->AddRef();
             return S_OK;
           }},
      {.name = "releases the caller's last references",
       .act =
           [] {
             home.subject = {};
             home.walk = {};
           }},
      {.name = "cancels the changes", .act = [] { CallBack(L"CancelChanges"); }},
      {.name = "constructs",
       .act =
           [row] {
             CallBack(L"Construct", {row, Nothing()});
           }},
      {.name = "constructs of nothing",
       .act =
           [] {
             CallBack(L"Construct", {Nothing(), Nothing()});
           }},
      {.name = "refreshes", .act = [] { CallBack(L"Refresh"); }},
      {.name = "saves", .act = [] { CallBack(L"SaveChanges"); }},
      {.name = "takes the recordset away",
       .act = [] { PutBack(L"RecordSet", Nothing(), DISPATCH_PROPERTYPUTREF); }},
      {.name = "puts another recordset",
       .act =
           [] { PutBack(L"RecordSet", NewNeighbour(Role::kRecordset), DISPATCH_PROPERTYPUTREF); }},
      {.name = "takes all lines away", .act = [] { PutBack(L"Count", 0, DISPATCH_PROPERTYPUT); }},
      {.name = "adds a line", .act = [] { CallBack(L"Add", {1}); }},
      {.name = "closes it", .act = [] { CallBack(L"Close"); }},
      {.name = "empties it", .act = [] { CallBack(L"Remove", {1}); }},
  };
  const std::pair<const char*, Value> values[] = {
      {"Empty", Value()},
      {"Nothing", Nothing()},
      {"a text", L"seven"},
      {"True", true},
      {"-1", -1},
      {"0x10000001", 0x10000001},
      {"the greatest number", INT32_MAX},
      {"the least number", INT32_MIN},
      {"a number beyond all", 1e300},
      {"an empty Dictionary", row},
      {"an empty Vector", MakeNew(L"QDL.Vector")},
      {"a closed recordset", MakeNew(L"QDL.Recordset")},
      {"a voucher", MakeNew(L"QDCLGL.Voucher")},
      {"an object that says yes to all", Com<IDispatch>(new Yes)},
  };
  for (const auto& [what, value] : values) deeds.push_back(Answers(what, value));
  const std::pair<const char*, Role> roles[] = {{"an object", Role::kComponent},
                                                {"a recordset", Role::kRecordset},
                                                {"a Dictionary", Role::kDictionary},
                                                {"a list", Role::kList}};
  for (const auto& [what, role] : roles) {
    deeds.push_back(Answers(what, [role](VARIANT& result) {
      result.vt = VT_DISPATCH;
      result.pdispVal = NewNeighbour(role).Detach();
    }));
  }
  deeds.push_back(Answers("itself by reference", [](VARIANT& result) {
    result.vt = VT_BYREF | VT_VARIANT;
    result.pvarVal = &result;
  }));
  deeds.push_back(Answers("a decimal of too many decimals", [](VARIANT& result) {
    result.decVal = {};
    result.decVal.Lo64 = 1;
    result.decVal.scale = 200;
    result.vt = VT_DECIMAL;
  }));
  for (const VARTYPE type : {VT_R8, VT_DATE}) {
    deeds.push_back(Answers("no number as one", [type](VARIANT& result) {
      result.dblVal = std::numeric_limits<double>::quiet_NaN();
      result.vt = type;
    }));
  }
  deeds.push_back(AnswersEmptied("Null", VT_NULL));
  deeds.push_back(AnswersEmptied("an error code", VT_ERROR));
  deeds.push_back(AnswersEmptied("no object", VT_UNKNOWN));
  deeds.push_back(AnswersEmptied("no text", VT_BSTR));
  deeds.push_back(AnswersEmptied("no bytes", VT_ARRAY | VT_UI1));
  deeds.push_back(AnswersEmptied("a decimal", VT_DECIMAL));
  deeds.push_back(AnswersEmptied("a record", VT_RECORD));
  deeds.push_back(AnswersEmptied("a type that there is not", 0x0FF0));
  deeds.push_back(AnswersEmptied("a reference to nowhere", VT_BYREF | VT_I4));
  deeds.push_back(AnswersEmptied("a reference to no variable", VT_BYREF | VT_VARIANT));
  return deeds;
}

// ---- What they are done to ----

// A row that holds neighbours: under the key that a member has, or under all keys with rules.
Com<IDispatch> HostileRow(const std::string& key_of_member) {
  const auto row = MakeNew(L"QDL.Dictionary");
  const auto hold = [&](const wchar_t* key) {
    Put(row, L"Value", {key, NewNeighbour(Role::kComponent)}, DISPATCH_PROPERTYPUTREF);
  };
  for (const wchar_t* id : kIds) Put(row, L"Value", {id, 5});
  hold(L"Held");
  if (!key_of_member.empty()) {
    hold(ToWide(key_of_member).c_str());
  } else {
    for (const wchar_t* key : {L"FDC", L"FAmount", L"FMeasureUnit", L"CashFlow", L"FTransDate",
                               L"FApprover", L"FExchangeRate", L"FOperator", L"FNumber"}) {
      hold(key);
    }
  }
  return row;
}

// A document of a line with a detail, which all hold neighbours.
Com<IDispatch> HostileDocument(const std::string& key_of_member) {
  const auto details = MakeNew(L"QDL.Vector");
  Get(details, L"Append", {HostileRow("Held")});
  const auto line = HostileRow(key_of_member);
  Put(line, L"Value", {L"_Details", details}, DISPATCH_PROPERTYPUTREF);
  const auto lines = MakeNew(L"QDL.Vector");
  Get(lines, L"Append", {line});
  const auto row = HostileRow(key_of_member);
  for (const wchar_t* list : {L"_Entries", L"_Columns", L"_SubColumns", L"_PropDesc"}) {
    Put(row, L"Value", {list, lines}, DISPATCH_PROPERTYPUTREF);
  }
  return row;
}

Com<IDispatch> NewRecordset() {
  const auto rows = MakeNew(L"QDL.Recordset");
  const auto fields = Get(rows, L"Fields").object();
  Get(fields, L"Append", {L"FGroupID"});
  Get(fields, L"Append", {L"Held"});
  Get(rows, L"Open");
  for (int i = 0; i < 2; ++i) {
    Get(rows, L"AddNew");
    Put(Get(fields, L"Item", {0}).object(), L"Value", {5});
    Put(Get(fields, L"Item", {1}).object(), L"Value", {NewNeighbour(Role::kComponent)},
        DISPATCH_PROPERTYPUTREF);
  }
  Get(rows, L"MoveFirst");
  return rows;
}

// A new object of a class with neighbours in it; null for a class that there is no way to.
Com<IDispatch> NewSubject(const std::string& name, const Com<IDispatch>& document) {
  const auto voucher = [&] { return NewSubject("Voucher", document); };
  const auto from = [](const Com<IDispatch>& owner, const wchar_t* member,
                       const std::vector<Value>& values = {}) {
    return Get(owner, member, values).object();
  };
  if (name == "Dictionary") return Get(document, L"Clone").object();
  if (name == "Vector") {
    const auto list = MakeNew(L"QDL.Vector");
    for (int i = 0; i < 3; ++i) Get(list, L"Append", {NewNeighbour(Role::kComponent)});
    return list;
  }
  if (name == "Recordset") return NewRecordset();
  if (name == "Fields") return from(NewRecordset(), L"Fields");
  if (name == "Field") return from(from(NewRecordset(), L"Fields"), L"Item", {1});
  if (name == "VoucherEntrySet") return from(voucher(), L"Entries");
  if (name == "VoucherEntry") return from(from(voucher(), L"Entries"), L"Item", {1});
  if (name == "VoucherDetailSet") {
    return from(from(from(voucher(), L"Entries"), L"Item", {1}), L"Details");
  }
  if (name == "VoucherDetail") {
    return from(from(from(from(voucher(), L"Entries"), L"Item", {1}), L"Details"), L"Item", {1});
  }
  const auto ledger = [&] { return NewSubject("MultiLedger", document); };
  if (name == "MultiLedger") {
    const auto made = from(MakeNew(L"QDCLGL.MultiLedgerSet"), L"CreateNew", {});
    const auto row = from(from(made, L"Properties"), L"Dictionary");
    // The lists of a copy that is nobody else's.
    const auto copy = from(from(voucher(), L"Properties"), L"Dictionary");
    for (const wchar_t* list : {L"_Columns", L"_SubColumns"}) {
      const std::vector<Value> key = {Value(list)};
      Put(row, L"Value", {list, Get(copy, L"Value", key).object()}, DISPATCH_PROPERTYPUTREF);
    }
    return made;
  }
  if (name == "MultiColumnSet") return from(ledger(), L"Columns");
  if (name == "MultiColumn") return from(from(ledger(), L"Columns"), L"Item", {1});
  if (name == "MultiSubColumnSet") return from(ledger(), L"SubColumns");
  if (name == "MultiSubColumn") return from(from(ledger(), L"SubColumns"), L"Item", {1});
  const auto fields = [&] { return from(NewSubject("ItemClass", document), L"CustomProperties"); };
  if (name == "CustomPropertySet") return fields();
  if (name == "CustomProperty") return from(fields(), L"Item", {1});
  if (name == "Properties") return from(voucher(), L"Properties");
  if (name == "Property") return from(from(voucher(), L"Properties"), L"Item", {L"Held"});
  const auto object = MakeNew(L"QDCLGL." + ToWide(name));
  if (object && IdOf(object.get(), L"Construct") != kNoSuchId) {
    if (IdOf(object.get(), L"Properties") == kNoSuchId) {
      Get(object, L"Construct", {Nothing(), 5, L"Old"});
      Put(object, L"Name", {Value(L"Edited")});
    } else {
      Get(object, L"Construct", {document, Nothing()});
      Put(from(from(object, L"Properties"), L"Dictionary"), L"Value", {L"Edited", 1});
    }
  }
  return object;
}

enum class Style { kNumbers, kTexts, kObjects };

Value ValueOf(std::string_view type, Style style, const Com<IDispatch>& document) {
  if (type == "Dictionary") return NewNeighbour(Role::kDictionary);
  if (type == "Recordset") return NewNeighbour(Role::kRecordset);
  if (type == "Voucher" || type == "VoucherEntry") return NewSubject(std::string(type), document);
  if (type == "Object") return NewNeighbour(Role::kComponent);
  if (style == Style::kObjects && type == "Variant") return NewNeighbour(Role::kComponent);
  if (type == "String") return style == Style::kTexts ? L"GL" : L"A = 1";
  if (style == Style::kTexts) return L"1";
  return 1;
}

// ---- The operations ----

struct Operation {
  const ClassMember* member;
  WORD flags;
  bool puts;
};

std::vector<Operation> OperationsOf(const ClassMember& member) {
  std::vector<Operation> operations;
  const auto add = [&](const void* invoker, WORD flags, bool puts) {
    if (invoker != nullptr) operations.push_back({&member, flags, puts});
  };
  const auto any = [](auto invoker) { return reinterpret_cast<const void*>(invoker); };
  add(any(member.row.method), DISPATCH_METHOD, false);
  add(any(member.row.get), DISPATCH_PROPERTYGET, false);
  add(any(member.row.let), DISPATCH_PROPERTYPUT, true);
  add(any(member.row.set), DISPATCH_PROPERTYPUTREF, true);
  return operations;
}

void WalkAll(const Outcome& made) {
  home.walk = Query<IEnumVARIANT>((*made.result).punkVal, IID_IEnumVARIANT);
  const auto step = [](auto call) { return home.walk && call(home.walk.get()) == S_OK; };
  const auto next = [](IEnumVARIANT* walk) {
    Value item;
    return walk->Next(1, item.get(), nullptr);
  };
  for (int i = 0; i < 10 && step(next); ++i) {
  }
  step([](IEnumVARIANT* walk) { return walk->Reset(); });
  step([](IEnumVARIANT* walk) { return walk->Skip(2); });
  step([](IEnumVARIANT* walk) {
    Com<IEnumVARIANT> clone;
    return walk->Clone(clone.Put());
  });
  step([](IEnumVARIANT* walk) { return walk->Skip(100); });
  home.walk = {};
}

constexpr std::size_t kStride = 16;

struct Counts {
  int operations = 0;
  int calling_out = 0;
  int calls = 0;
};
Counts counts;

class ClassWalk {
 public:
  ClassWalk(const ServedClass& served, const std::vector<Deed>& deeds)
      : served_(served), name_(served.table->name()), deeds_(deeds) {}

  void Run() {
    FindPlainMember();
    for (const ClassMember& member : served_.table->members()) {
      const std::string key(member.row.key);
      if (key != key_ || !document_) document_ = HostileDocument(key);
      key_ = key;
      for (const Operation& operation : OperationsOf(member)) RunInStyles(operation);
    }
  }

  // What is under way, for the one who looks for a crash.
  static inline std::string place;

 private:
  // A property that can be read of a new object without a call out.
  void FindPlainMember() {
    const auto document = HostileDocument({});
    for (const ClassMember& member : served_.table->members()) {
      if (member.row.get == nullptr || !member.parameters.empty()) continue;
      const auto object = NewSubject(name_, document);
      plain_ = IdOfMember(member);
      Outcome read;
      const auto calls = home.CallsOf([&] { read = Invoke(object.get(), plain_, kRead, {}); });
      if (calls.empty() && SUCCEEDED(read.code)) return;
    }
    plain_ = kNoSuchId;
  }

  void RunInStyles(const Operation& operation) {
    int calls = 0;
    tried_.clear();
    const bool takes_any = operation.puts || !operation.member->parameters.empty();
    for (const Style style : {Style::kNumbers, Style::kTexts, Style::kObjects}) {
      if (style != Style::kNumbers && !takes_any) continue;
      calls = std::max(calls, RunDeeds(operation, style));
    }
    ++counts.operations;
    if (calls > 0) ++counts.calling_out;
  }

  // How many calls out the operation makes.
  int RunDeeds(const Operation& operation, Style style) {
    std::vector<CallMade> calls;
    place_of_ = name_ + "." + std::string(operation.member->row.name) + " flags " +
                std::to_string(operation.flags) + " style " +
                std::to_string(static_cast<int>(style)) + ", call ";
    place = place_of_ + "0";
    RunOne(operation, style, [&](auto make) { calls = home.CallsOf(make); });
    // Operations that make the same calls, as settings do, stand for each other.
    const auto alike = std::count(sequences_.begin(), sequences_.end(), calls);
    sequences_.push_back(calls);
    if (alike >= 2) return static_cast<int>(calls.size());
    for (std::size_t position = 0; position < calls.size(); ++position) {
      if (!IsChosen(calls, position)) continue;
      ++counts.calls;
      // All deeds at all calls take too long: each call meets every sixth, another one first each
      // time.
      for (std::size_t i = static_cast<std::size_t>(counts.calls) % kStride; i < deeds_.size();
           i += kStride) {
        const Deed& deed = deeds_[i];
        if (!Fits(deed, calls[position].step)) continue;
        place = place_of_ + std::to_string(position + 1) + " " + deed.name;
        RunOne(operation, style, [&](auto make) { home.Run(make, position, deed); });
      }
    }
    return static_cast<int>(calls.size());
  }

  // Of calls of an operation that are alike, the first and the last.
  bool IsChosen(const std::vector<CallMade>& calls, std::size_t position) {
    const auto at = calls.begin() + static_cast<std::ptrdiff_t>(position);
    const bool is_first = std::find(calls.begin(), at, *at) == at;
    const bool is_last = std::find(at + 1, calls.end(), *at) == calls.end();
    if (!is_first && !is_last) return false;
    if (std::count(tried_.begin(), tried_.end(), *at) == 2) return false;
    tried_.push_back(*at);
    return true;
  }

  static bool Fits(const Deed& deed, Step step) {
    if (deed.act && (step == Step::kInvoke || step == Step::kEnd)) return true;
    switch (step) {
      case Step::kQuery: return static_cast<bool>(deed.query);
      case Step::kNames: return static_cast<bool>(deed.names);
      case Step::kInvoke: return static_cast<bool>(deed.answer);
      case Step::kEnd: return false;
    }
    return false;
  }

  template <class Run>
  void RunOne(const Operation& operation, Style style, Run run) {
    const ClassMember& member = *operation.member;
    const int alive = Neighbour::alive;
    home.subject = NewSubject(name_, document_);
    {
      std::vector<Value> values;
      for (const auto& parameter : member.parameters) {
        values.push_back(ValueOf(parameter.type, style, document_));
      }
      if (operation.puts) values.push_back(ValueOf(member.row.PutType(), style, document_));
      run([&] { Make(operation, values); });
    }
    if (home.subject) {
      const Outcome read = Invoke(home.subject.get(), plain_, kRead, {});
      // A recordset may have been closed meanwhile, error 3704.
      const bool is_closed = Text(read).starts_with("800A0E78");
      // Settings have nothing that is read without a call out.
      const bool has_plain = plain_ != kNoSuchId;
      if (has_plain && FAILED(read.code) && !is_closed)
        Check(Text(read) + " read at " + place, "a value");
      home.subject = {};
    }
    if (Neighbour::alive != alive) {
      Check(std::to_string(Neighbour::alive - alive) + " held at " + place, "0 held");
    }
  }

  static void Make(const Operation& operation, const std::vector<Value>& values) {
    std::vector<DISPID> named;
    if (operation.puts) named.push_back(DISPID_PROPERTYPUT);
    std::vector<VARIANT> arguments = Contents(values);
    // As a script passes a variable.
    if (!operation.puts) {
      for (std::size_t i = 0; i < arguments.size(); ++i) {
        arguments[i] = Value::To(VT_VARIANT, const_cast<VARIANT*>(&*values[i]));
      }
    }
    const Outcome outcome = Invoke(home.subject.get(), IdOfMember(*operation.member),
                                   operation.flags, arguments, named);
    if (SUCCEEDED(outcome.code) && IsEnumeration(*operation.member)) WalkAll(outcome);
  }

  const ServedClass& served_;
  std::string name_;
  const std::vector<Deed>& deeds_;
  DISPID plain_ = kNoSuchId;
  std::vector<CallMade> tried_;
  std::vector<std::vector<CallMade>> sequences_;
  std::string place_of_;
  std::string key_;
  Com<IDispatch> document_;
};

LONG WINAPI TellWhere(EXCEPTION_POINTERS* pointers) {
  std::printf("# %08lX at %s\n", pointers->ExceptionRecord->ExceptionCode,
              ClassWalk::place.c_str());
  std::fflush(stdout);
  return EXCEPTION_EXECUTE_HANDLER;
}

void AllOperations(const std::vector<Deed>& deeds) {
  for (const ServedClass& served : ServedClasses()) {
    const std::string name = "nothing but errors comes of what is done to the operations of " +
                             std::string(served.table->name());
    TestCase(name.c_str());
    ClassWalk(served, deeds).Run();
  }
  TestCase("the hostile answers were given");
  std::printf("# %d operations, %d of them call out, by %d calls; %d hostile answers of %d kinds\n",
              counts.operations, counts.calling_out, counts.calls, home.done(),
              static_cast<int>(deeds.size()));
  Check(counts.calling_out > 100, "operations call out");
  Check(home.done() > 2000, "answers were given");
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  SetUnhandledExceptionFilter(TellWhere);
  {
    const HostileComponents components{
        L"QDSVBase.BaseInfo",
        L"QDSVBase.SystemProfile",
        L"QDSVGLAccount.AccountInfo",
        L"QDSVGLAccount.AccountItemInfo",
        L"QDSVGLAccount.AccountUpdate",
        L"QDSVGLCurrency.CurrencyInfo",
        L"QDSVGLCurrency.CurrencyUpdate",
        L"QDSVGLVoucher.VoucherInfo",
        L"QDSVGLVoucher.VoucherUpdate",
        L"QDSVGLVoucherGroup.VoucherGroupInfo",
        L"QDSVGLVoucherGroup.VoucherGroupUpdate",
    };
    AllOperations(Deeds());
  }
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
