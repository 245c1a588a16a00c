// A client in the multithreaded apartment, which reaches the objects through proxies; and clients
// on several threads, each with objects of its own.
#include <functional>
#include <thread>

#include "qdclgl/automation/context_interface.h"
#include "qdclgl/automation/identity.h"
#include "tests/automation/client.h"

using namespace qdclgl::automation;
using namespace qdclgl::automation::testing;

namespace {

void MultithreadedClient() {
  TestCase("a client of the multithreaded apartment gets a proxy");
  const auto rows = Create(L"QDL.Recordset");
  Check(static_cast<bool>(rows), "the object was made");
  if (!rows) return;
  const auto own = Query<IUnknown>(rows.get(), IdOfName("QDCLGL.Wrapper"));
  Check(!own, "what the client holds is not the object itself");

  TestCase("calls and results cross to the object's apartment intact");
  const auto fields = Get(rows, L"Fields").object();
  Check(Text(Get(fields, L"Append", {L"FName"})), "Empty");
  Check(Text(Get(rows, L"Open")), "Empty");
  Check(Text(Get(rows, L"AddNew")), "Empty");
  const auto field = Get(fields, L"Item", {L"FName"}).object();
  Check(Text(Put(field, L"Value", {L"\x5e74"})), "Empty");
  Check(Text(Get(field, L"Value")), "BSTR \xE5\xB9\xB4");
  Check(Text(Get(rows, L"RecordCount")), "I4 1");

  TestCase("errors cross to the client's apartment intact");
  Check(Text(Get(fields, L"Item", {L"FNone"})), "800A0CC1 [Recordset] No field FNone.");
  Check(CodeText(Get(rows, L"MoveFirst", {1}).code), "8002000E");
  Check(CodeText(Put(rows, L"RecordCount", {1}).code), "80020003");

  TestCase("a result by reference crosses to the client's apartment");
  const auto profile = Create(L"QDCLGL.SystemProfile");
  VARIANT day;
  VariantInit(&day);
  day.vt = VT_DATE;
  day.date = 45351;
  LONG year = 0;
  Check(Text(Invoke(profile.get(), IdOf(profile.get(), L"GLGetPeriodByDate"), kRead,
                    {day, Value::To(VT_I4, &year)})),
        "I4 2");
  Check(std::to_string(year), "2024");

  TestCase("an enumerator crosses to the client's apartment");
  const Outcome made = Invoke(fields.get(), DISPID_NEWENUM, kRead, {});
  const auto walk = Query<IEnumVARIANT>((*made.result).punkVal, IID_IEnumVARIANT);
  Check(static_cast<bool>(walk), "there is one");
  if (walk) {
    Value item;
    ULONG fetched = 0;
    Check(CodeText(walk->Next(1, item.get(), &fetched)), "00000000");
    Check(Text(Get(Com<IDispatch>((*item).pdispVal), L"Name")), "BSTR FName");
  }

  TestCase("the transaction context crosses by its own interface");
  const auto groups = Create(L"QDCLGL.VoucherGroupSet");
  const auto context = Query<ContextInterface>(groups.get(), ContextInterfaceId());
  Check(static_cast<bool>(context), "there is one");
  if (context) Check(CodeText(context->SetTransactionContext(nullptr)), "00000000");
}

void Apartment(int& sum) {
  CoInitialize(nullptr);
  {
    const auto row = Create(L"QDL.Dictionary");
    for (int i = 0; i < 2000; ++i) {
      const auto list = Create(L"QDL.Vector");
      Get(list, L"Append", {i});
      Put(row, L"Value", {(L"key " + std::to_wstring(i % 50)).c_str(), list});
      sum += (*Get(list, L"Item", {1}).result).lVal;
    }
  }
  CoUninitialize();
}

void SeveralApartments() {
  TestCase("apartments work beside each other, each with objects of its own");
  constexpr int kThreads = 4;
  int sums[kThreads] = {};
  std::vector<std::thread> threads;
  for (int& sum : sums) threads.emplace_back(Apartment, std::ref(sum));
  for (std::thread& thread : threads) thread.join();
  for (const int sum : sums) Check(std::to_string(sum), "1999000");
}

}  // namespace

int main() {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  MultithreadedClient();
  SeveralApartments();
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
