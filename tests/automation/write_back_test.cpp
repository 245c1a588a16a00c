// What a compiled component of others writes through the references of a call: every call of every
// class that passes some, with a component that writes over all of them, and what the client sees.
#include <map>

#include "tests/automation/client.h"

using namespace qdclgl::automation;
using namespace qdclgl::automation::testing;

namespace {

const std::string kProps = "BSTR Initial catalog=ACC1;";
const Value kNothing(static_cast<IDispatch*>(nullptr));
constexpr double kWrittenDay = 36925;  // 2001-02-03

constexpr const wchar_t* kVoucherInfo = L"QDSVGLVoucher.VoucherInfo";
constexpr const wchar_t* kVoucherUpdate = L"QDSVGLVoucher.VoucherUpdate";
constexpr const wchar_t* kAccountInfo = L"QDSVGLAccount.AccountInfo";
constexpr const wchar_t* kAccountUpdate = L"QDSVGLAccount.AccountUpdate";
constexpr const wchar_t* kGroupInfo = L"QDSVGLVoucherGroup.VoucherGroupInfo";
constexpr const wchar_t* kGroupUpdate = L"QDSVGLVoucherGroup.VoucherGroupUpdate";

// Writes another value of its type over a referred variable.
void WriteOver(VARIANT& reference) {
  switch (reference.vt) {
    case VT_BYREF | VT_I4: *reference.plVal = 77; break;
    case VT_BYREF | VT_BOOL:
      *reference.pboolVal = static_cast<VARIANT_BOOL>(~*reference.pboolVal);
      break;
    case VT_BYREF | VT_DATE: *reference.pdate = kWrittenDay; break;
    case VT_BYREF | VT_BSTR:
      SysFreeString(*reference.pbstrVal);
      *reference.pbstrVal = SysAllocString(L"written");
      break;
    case VT_BYREF | VT_VARIANT: VariantCopy(reference.pvarVal, Value(L"written").get()); break;
    default: break;
  }
}

using Answers = std::map<std::wstring, Value>;

// A component whose methods write over all of their references and answer.
Com<IDispatch> NewWriter(const Answers& answers) {
  std::map<std::wstring, Peer::Answer> members;
  for (const auto& [name, answer] : answers) {
    members[name] = [answer](const Received& call) {
      for (UINT i = 0; i < call.params->cArgs; ++i) WriteOver(call.params->rgvarg[i]);
      return Return(call, answer);
    };
  }
  return NewPeer(std::move(members));
}
// The same without the writing.
Com<IDispatch> NewReader(const Answers& answers) {
  std::map<std::wstring, Peer::Answer> members;
  for (const auto& [name, answer] : answers) {
    members[name] = [answer](const Received& call) { return Return(call, answer); };
  }
  return NewPeer(std::move(members));
}

Com<IDispatch> Row(const std::vector<std::pair<const wchar_t*, Value>>& cells) {
  const auto row = Create(L"QDL.Dictionary");
  for (const auto& [key, value] : cells) Put(row, L"Value", {key, value});
  return row;
}
Com<IDispatch> Constructed(const wchar_t* prog_id, const Com<IDispatch>& row) {
  const auto entity = Create(prog_id);
  Get(entity, L"Construct", {row, kNothing});
  return entity;
}
Com<IDispatch> EmptyList() {
  const auto rows = Create(L"QDL.Recordset");
  Get(Get(rows, L"Fields").object(), L"Append", {L"FName"});
  Get(rows, L"Open");
  return rows;
}

// Variables of a script, given by reference.
class Variables {
 public:
  explicit Variables(std::vector<Value> values) : values_(std::move(values)) {}
  std::vector<VARIANT> references() {
    std::vector<VARIANT> references;
    for (Value& value : values_) references.push_back(Value::To(VT_VARIANT, value.get()));
    return references;
  }
  std::string text() const {
    std::string text;
    for (const Value& value : values_) text += Text(*value) + ";";
    return text;
  }

 private:
  std::vector<Value> values_;
};

std::string Call(const Com<IDispatch>& object, const wchar_t* name, Variables& variables) {
  return Text(Invoke(object.get(), IdOf(object.get(), name), kRead, variables.references()));
}

// A call as the log shows it.
std::string Line(const std::string& method, const std::string& arguments) {
  return method + "(" + kProps + arguments + ") flags 3\n";
}

void Entities() {
  struct {
    const wchar_t* prog_id;
    const wchar_t* info;
    const wchar_t* update;
    const wchar_t* key;
    const wchar_t* id;
  } const classes[] = {
      {L"QDCLGL.Account", kAccountInfo, kAccountUpdate, L"FAccountID", L"AccountID"},
      {L"QDCLGL.Currencyx", L"QDSVGLCurrency.CurrencyInfo", L"QDSVGLCurrency.CurrencyUpdate",
       L"FCurrencyID", L"CurrencyID"},
      {L"QDCLGL.VoucherGroup", kGroupInfo, kGroupUpdate, L"FGroupID", L"VoucherGroupID"},
  };

  TestCase("the id that a component writes is the entity's");
  for (const auto& [prog_id, info, update, key, id] : classes) {
    const auto row = Row({{key, 5}});
    const auto entity = Constructed(prog_id, row);
    {
      const Impersonated reads(info, NewWriter({{L"GetDetail", row}}));
      Check(Text(Get(entity, L"Refresh")), "Empty");
    }
    Check(Text(Get(entity, id)), "I4 77");
    Check(TakeLog(), Line("GetDetail", ", &I4 5"));

    const auto saved = Constructed(prog_id, row);
    Put(saved, L"Name", {L"New"});
    const Impersonated reads(info, NewReader({{L"GetDetail", row}}));
    const Impersonated writes(update, NewWriter({{L"Update", Value()}}));
    Check(Text(Get(saved, L"SaveChanges")), "Empty");
    Check(Text(Get(saved, id)), "I4 77");
    Check(TakeLog(), Line("Update", ", &I4 5, DISPATCH") + Line("GetDetail", ", &I4 77"));
  }

  TestCase("an account takes the id of its questions and leaves the separator");
  const Impersonated info(kAccountInfo, NewWriter({{L"CheckAccountInVoucher", true},
                                                   {L"ExistsSpecialChild", true},
                                                   {L"GetFullName", L"A-B"}}));
  for (const wchar_t* method : {L"CheckAccountInVoucher", L"ExistsSpecialChild"}) {
    const auto account = Constructed(L"QDCLGL.Account", Row({{L"FAccountID", 5}}));
    Check(Text(Get(account, method)), "BOOL True");
    Check(Text(Get(account, L"AccountID")), "I4 77");
  }
  const auto account = Constructed(L"QDCLGL.Account", Row({{L"FAccountID", 5}}));
  Variables separator({L"-"});
  Check(Call(account, L"GetFullName", separator), "BSTR A-B");
  Check(Text(Get(account, L"AccountID")) + separator.text(), "I4 77BSTR -;");
  Check(TakeLog(), Line("CheckAccountInVoucher", ", &I4 5") +
                       Line("ExistsSpecialChild", ", &I4 5") +
                       Line("GetFullName", ", &I4 5, &BSTR -"));
}

void Vouchers() {
  const auto row = Row({{L"FVoucherID", 5}});

  TestCase("a voucher takes its id and whether it shows deleted ones");
  {
    const Impersonated info(kVoucherInfo, NewWriter({{L"GetDetail", kNothing}}));
    const auto voucher = Constructed(L"QDCLGL.Voucher", row);
    Get(voucher, L"Refresh");
    Check(Text(Get(voucher, L"VoucherID")), "I4 77");
    Get(voucher, L"Refresh");
    Check(TakeLog(),
          Line("GetDetail", ", &I4 5, &BOOL False") + Line("GetDetail", ", &I4 77, &BOOL True"));
  }

  TestCase("every call of a voucher's save takes its id and none its connection text");
  {
    const Impersonated info(kVoucherInfo, NewWriter({{L"CheckExistCashProfit", 3}}));
    const Impersonated update(kVoucherUpdate,
                              NewReader({{L"ClearCashFlow", Value()}, {L"Update", Value()}}));
    const auto voucher = Constructed(L"QDCLGL.Voucher", row);
    Put(voucher, L"Number", {7});
    Get(voucher, L"SaveChanges1");
    Check(Text(Get(voucher, L"VoucherID")), "I4 77");
    Check(TakeLog(), Line("CheckExistCashProfit", ", &I4 5") + Line("ClearCashFlow", ", &I4 77") +
                         Line("Update", ", &I4 77, DISPATCH"));
  }
  {
    const Impersonated info(kVoucherInfo, NewReader({{L"CheckExistCashProfit", 3}}));
    const Impersonated update(kVoucherUpdate,
                              NewWriter({{L"ClearCashFlow", Value()}, {L"Update", Value()}}));
    const auto voucher = Constructed(L"QDCLGL.Voucher", row);
    Put(voucher, L"Number", {7});
    Get(voucher, L"SaveChanges1");
    Check(Text(Get(voucher, L"VoucherID")), "I4 77");
    Check(TakeLog(), Line("CheckExistCashProfit", ", &I4 5") + Line("ClearCashFlow", ", &I4 5") +
                         Line("Update", ", &I4 77, DISPATCH"));
    const auto accepted = Constructed(L"QDCLGL.Voucher", row);
    Put(accepted, L"Number", {7});
    Get(accepted, L"SaveChanges2");
    Check(Text(Get(accepted, L"VoucherID")), "I4 5");
    Check(TakeLog(), Line("CheckExistCashProfit", ", &I4 5") + Line("ClearCashFlow", ", &I4 5") +
                         "Update(&BSTR <>1" + kProps.substr(5) + ", &I4 77, DISPATCH) flags 3\n");
  }

  TestCase("every step of a voucher's workflow takes its id");
  const auto checked = Row({{L"FVoucherID", 5}, {L"FChecked", true}});
  const auto approved = Row({{L"FVoucherID", 5}, {L"FChecked", true}, {L"FApproveID", 2}});
  struct {
    const wchar_t* member;
    const char* method;
    Com<IDispatch> row;
    const char* arguments;
  } const steps[] = {
      {L"Check", "Check", row, ", &I4 5, BOOL True"},
      {L"UnCheck", "Check", checked, ", &I4 5, BOOL False"},
      {L"Approve", "Approve", checked, ", &I4 5, BOOL True"},
      {L"UnApprove", "Approve", approved, ", &I4 5, BOOL False"},
      {L"Cash", "Cash", row, ", &I4 5, BOOL True, DISPATCH"},
      {L"UnCash", "Cash", row, ", &I4 5, BOOL False, DISPATCH"},
  };
  const Impersonated info(kVoucherInfo, NewReader({{L"GetDetail", kNothing}}));
  const Impersonated update(
      kVoucherUpdate, NewWriter({{L"Check", Value()}, {L"Approve", Value()}, {L"Cash", Value()}}));
  for (const auto& step : steps) {
    const auto voucher = Constructed(L"QDCLGL.Voucher", step.row);
    Get(voucher, step.member);
    Check(Text(Get(voucher, L"VoucherID")), "I4 77");
    Check(TakeLog(),
          Line(step.method, step.arguments) + Line("GetDetail", ", &I4 77, &BOOL False"));
  }
}

// The query, the reads by key, the question for existence and the removal of a set.
void Set(const wchar_t* prog_id, const wchar_t* info, const wchar_t* update,
         const std::string& list_extra) {
  const Impersonated reads(info, NewWriter({{L"GetList", EmptyList()},
                                            {L"GetDetail", Row({})},
                                            {L"GetDetailByNumber", Row({})},
                                            {L"ExistenceCheck", 8}}));
  const Impersonated items(L"QDSVGLAccount.AccountItemInfo",
                           NewReader({{L"GetListByAccount", EmptyList()}}));
  const Impersonated writes(update, NewWriter({{L"Delete", Value()}}));
  const auto set = Create(prog_id);
  Check(Text(Get(set, L"Refresh")), "Empty");
  Check(Text(Get(set, L"ListOptions")) + Text(Get(set, L"Filter")) + Text(Get(set, L"Sort")),
        "I4 77BSTR writtenBSTR written");
  TakeLog();
  Get(set, L"Refresh");
  Check(TakeLog(), Line("GetList", ", &I4 77, &BSTR written, &BSTR written" + list_extra));
  for (const Value& given : {Value(5), Value(L"text")}) {
    Variables key({given});
    Check(Call(set, L"ExistenceCheck", key), "I4 8");
    Check(Call(set, L"Item", key), "DISPATCH");
    Call(set, L"Remove", key);
    Check(key.text(), Text(*given) + ";");
  }
  TakeLog();
}

void Sets() {
  TestCase("a set takes its query and leaves the caller's keys");
  Set(L"QDCLGL.AccountSet", kAccountInfo, kAccountUpdate, ", ERROR 80020004, &I4 77");
  Set(L"QDCLGL.CurrencySet", L"QDSVGLCurrency.CurrencyInfo", L"QDSVGLCurrency.CurrencyUpdate", "");
  Set(L"QDCLGL.VoucherGroupSet", kGroupInfo, kGroupUpdate, "");
  Set(L"QDCLGL.VoucherSet", kVoucherInfo, kVoucherUpdate, "");

  TestCase("a search for an account leaves the caller's words");
  {
    const Impersonated info(kAccountInfo, NewWriter({{L"ExistenceCheck", 8}}));
    const auto accounts = Create(L"QDCLGL.AccountSet");
    const DISPID search = IdOf(accounts.get(), L"ExistenceCheck");
    Variables words({L"1001", L"cash"});
    const std::vector<VARIANT> given = words.references();
    Invoke(accounts.get(), search, kRead, {given[0]}, {1});
    Invoke(accounts.get(), search, kRead, {given[1]}, {2});
    Check(words.text(), "BSTR 1001;BSTR cash;");
    Check(TakeLog(), Line("ExistenceCheck", ", Number:=&VARIANT BSTR 1001") +
                         Line("ExistenceCheck", ", HelperCode:=&VARIANT BSTR cash"));
  }

  TestCase("the removal of a group leaves the caller's sign");
  {
    const Impersonated update(kGroupUpdate, NewWriter({{L"Delete", Value()}}));
    Variables arguments({5, 1});
    Call(Create(L"QDCLGL.VoucherGroupSet"), L"Remove", arguments);
    Check(arguments.text(), "I4 5;I4 1;");
    const std::string log = TakeLog();
    Check(log.substr(0, 40), Line("Delete", ", &I4 5").substr(0, 40));
    Check(log.substr(log.size() - 17), ", &I4 1) flags 3\n");
  }

  TestCase("a set of vouchers leaves what its operations and its searches are given");
  const Impersonated info(kVoucherInfo,
                          NewWriter({{L"ExistenceCheck", 8},
                                     {L"GetDetail", Row({{L"FVoucherID", 5}})},
                                     {L"GetDetailByNumber", Row({{L"FVoucherID", 5}})}}));
  const auto vouchers = Create(L"QDCLGL.VoucherSet");
  {
    const Impersonated update(
        kVoucherUpdate,
        NewWriter(
            {{L"Cash", Value()}, {L"Check", Value()}, {L"Post", Value()}, {L"UnPost", Value()}}));
    Variables state({5, true}), id({5});
    Call(vouchers, L"Cash", state);
    Call(vouchers, L"Check", state);
    Call(vouchers, L"Post", id);
    Call(vouchers, L"UnPost", id);
    Check(state.text() + id.text(), "I4 5;BOOL True;I4 5;");
    Check(TakeLog(), Line("Cash", ", &I4 5, &BOOL True") + Line("Check", ", &I4 5, &BOOL True") +
                         Line("Post", ", &I4 5") + Line("UnPost", ", &I4 5"));
  }
  Variables number({2024, 3, 1, 9});
  Invoke(vouchers.get(), IdOf(vouchers.get(), L"ExistenceCheck"), kRead, number.references(),
         {1, 2, 3, 4});
  Check(number.text(), "I4 2024;I4 3;I4 1;I4 9;");
  Check(TakeLog(), Line("ExistenceCheck", ", nYear:=&VARIANT I4 2024, Period:=&VARIANT I4 3, "
                                          "Group:=&VARIANT I4 1, Number:=&VARIANT I4 9"));

  TestCase("a voucher from a set takes whether it shows deleted ones");
  const DISPID item = IdOf(vouchers.get(), L"Item");
  Variables by_id({5, false}), by_number({2024, 3, L"1", 9, false});
  const auto first = Invoke(vouchers.get(), item, kRead, by_id.references(), {0, 5}).object();
  const auto second =
      Invoke(vouchers.get(), item, kRead, by_number.references(), {1, 2, 3, 4, 5}).object();
  Check(by_id.text() + by_number.text(), "I4 5;BOOL False;I4 2024;I4 3;BSTR 1;I4 9;BOOL False;");
  Get(first, L"Refresh");
  Get(second, L"Refresh");
  Check(TakeLog(), Line("GetDetail", ", I4 5, &BOOL False") +
                       Line("GetDetailByNumber", ", &I4 2024, &I4 3, &BSTR 1, &I4 9, &BOOL False") +
                       Line("GetDetail", ", &I4 5, &BOOL True") +
                       Line("GetDetail", ", &I4 5, &BOOL True"));
}

void Settings() {
  TestCase("a setting is remembered as the server wrote it back, and the caller's words stay");
  {
    // One list serves all categories; the writer makes of the category one that there is not.
    const auto write = [](const Received& call) {
      const auto set = [&call](UINT at, const wchar_t* text) {
        VARIANT& reference = call.argument(at);
        SysFreeString(*reference.pbstrVal);
        *reference.pbstrVal = SysAllocString(text);
      };
      set(1, L"SC");
      set(2, L"written");
      set(3, L"written too");
      return S_OK;
    };
    const Impersonated server(
        L"QDSVBase.SystemProfile",
        NewPeer({{L"ListProfiles",
                  [](const Received& call) { return Return(call, Create(L"QDL.Dictionary")); }},
                 {L"SetProfile", write}}));
    const auto profile = Create(L"QDCLGL.SystemProfile");
    Get(profile, L"Refresh");
    TakeLog();
    Variables words({L"GL", L"K", L"v"});
    Check(Text(Invoke(profile.get(), IdOf(profile.get(), L"Item"), DISPATCH_PROPERTYPUT,
                      words.references(), {DISPID_PROPERTYPUT})),
          "Empty");
    Check(words.text(), "BSTR GL;BSTR K;BSTR v;");
    Check(TakeLog(), Line("SetProfile", ", &BSTR GL, &BSTR K, &BSTR v"));
    Check(Text(Get(profile, L"Item", {L"SC", L"written"})) +
              Text(Get(profile, L"Item", {L"GL", L"K"})),
          "BSTR written tooBSTR ");
  }

  TestCase("a period of a date is what the server wrote, and the date stays");
  const Impersonated calendar(L"QDCPeriodDate.clsPeriodDate",
                              NewWriter({{L"GetPeriod", 2006}, {L"GetPeriodStartEnd", Value()}}));
  const auto profile = Create(L"QDCLGL.SystemProfile");
  Value day(0.0), year(1);
  day->vt = VT_DATE;
  day->date = 45351;
  Check(Text(Invoke(profile.get(), IdOf(profile.get(), L"GLGetPeriodByDate"), kRead,
                    {Value::To(VT_VARIANT, day.get()), Value::To(VT_VARIANT, year.get())})),
        "I4 77");
  Check(Text(*day) + " " + Text(*year), "DATE 45351.000000 I4 2006");
  Check(TakeLog(), Line("GetPeriod", ", &DATE 45351.000000, &I4 0"));

  TestCase("the date of a period is what the server wrote, and the period stays");
  const auto settings =
      Row({{L"PeriodCount", L"12"}, {L"CurrentYear", L"2024"}, {L"CurrentPeriod", L"3"}});
  const Impersonated server(L"QDSVBase.SystemProfile", NewReader({{L"ListProfiles", settings}}));
  Get(profile, L"Refresh");
  TakeLog();
  Variables period({2024, 3});
  Check(Call(profile, L"GLGetPeriodDate", period), "DATE 36925.000000");
  Check(period.text(), "I4 2024;I4 3;");
  Check(TakeLog(), Line("GetPeriodStartEnd", ", &I4 3, &I4 2024, &DATE 0.000000, &DATE 0.000000"));

  TestCase("the computer's name is dropped");
  const Impersonated base(L"QDSVBase.BaseInfo", NewWriter({{L"IsNeedOffline", true}}));
  Check(Text(Get(profile, L"IsNeedOffline")), "BOOL True");
  const std::string first = TakeLog();
  Check(Text(Get(profile, L"IsNeedOffline")), "BOOL True");
  Check(TakeLog(), first);
  Check(first.starts_with("IsNeedOffline(" + kProps + ", I2 -1, &BSTR "), "it was given");
  Check(first.find("written") == std::string::npos, "and not kept");
}

void Session() {
  TestCase("a process id that a store writes is good for the rest of the question");
  const Impersonated store(L"QDCMtsCacheService.CacheFacade",
                           NewPeer({{L"GetItem", [](const Received& call) {
                                       ++*call.argument(0).plVal;
                                       const std::wstring_view key = call.argument(1).bstrVal;
                                       return Return(
                                           call, key == L"IsOuterLogin" ? Value(1) : Value(L"P"));
                                     }}}));
  const Impersonated info(kVoucherInfo, NewReader({{L"GetDetail", kNothing}}));
  Get(Constructed(L"QDCLGL.Voucher", Row({{L"FVoucherID", 5}})), L"Refresh");
  const auto line = [](DWORD id, const std::string& key) {
    return "GetItem(&I4 " + std::to_string(id) + ", BSTR " + key + ") flags 3\n";
  };
  const DWORD own = GetCurrentProcessId();
  Check(TakeLog(), line(own, "IsOuterLogin") + line(own + 1, "PropsString") +
                       line(own + 2, "PropsString") +
                       "GetDetail(BSTR P, &I4 5, &BOOL False) flags 3\n");
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  Entities();
  Vouchers();
  Sets();
  Settings();
  Session();
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
