// What a late-bound call costs: by the server's objects (ours) and by the platform's own dictionary
// object (theirs), in one run. To be run under Windows or Wine where the server is registered.
//
//   automation-calls [rounds]
#include <algorithm>
#include <cstdlib>
#include <functional>

#include "tests/automation/client.h"

using namespace qdclgl::automation;
using namespace qdclgl::automation::testing;

namespace {

constexpr int kCalls = 2000;

double NanosecondsOf(const std::function<void()>& call) {
  LARGE_INTEGER frequency, start, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&start);
  for (int i = 0; i < kCalls; ++i) call();
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - start.QuadPart) * 1e9 /
         static_cast<double>(frequency.QuadPart) / kCalls;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

struct Work {
  const char* name;
  std::function<void()> ours;
  std::function<void()> theirs;  // empty: there is nothing alike
};

// Asks for the name and calls, as a script does.
void Call(IDispatch* object, const wchar_t* name, WORD flags, DISPPARAMS params) {
  auto* text = const_cast<LPOLESTR>(name);
  DISPID id = 0;
  object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
  VARIANT result;
  VariantInit(&result);
  object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params,
                 (flags & kRead) != 0 ? &result : nullptr, nullptr, nullptr);
  VariantClear(&result);
}

}  // namespace

int main(int count, char** arguments) {
  CoInitialize(nullptr);
  const int rounds = count > 1 ? std::max(1, std::atoi(arguments[1])) : 9;
  {
    const auto ours = Create(L"QDL.Dictionary");
    const auto theirs = Create(L"Scripting.Dictionary");
    if (!ours || !theirs) {
      std::printf("the server is not registered\n");
      return 1;
    }
    Value key(L"FName"), value(L"Receipts");
    VARIANT get[] = {*key};
    VARIANT put[] = {*value, *key};
    DISPID put_id = DISPID_PROPERTYPUT;
    const DISPPARAMS none{};
    const DISPPARAMS by_key{get, nullptr, 1, 0};
    const DISPPARAMS key_and_value{put, &put_id, 2, 1};
    Call(ours.get(), L"Value", DISPATCH_PROPERTYPUT, key_and_value);
    Call(theirs.get(), L"Item", DISPATCH_PROPERTYPUT, key_and_value);

    CLSID our_class, their_class;
    CLSIDFromProgID(L"QDL.Dictionary", &our_class);
    CLSIDFromProgID(L"Scripting.Dictionary", &their_class);
    const auto create = [](const CLSID& class_id) {
      Com<IDispatch> made;
      CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, made.PutVoid());
    };
    const auto group = Create(L"QDCLGL.VoucherGroup");
    Get(group, L"Construct", {ours, Value(static_cast<IDispatch*>(nullptr))});

    const Work works[] = {
        {"name and get of a number", [&] { Call(ours.get(), L"Count", kRead, none); },
         [&] { Call(theirs.get(), L"Count", kRead, none); }},
        {"name and get of a text by key", [&] { Call(ours.get(), L"Value", kRead, by_key); },
         [&] { Call(theirs.get(), L"Item", kRead, by_key); }},
        {"name and put of a text by key",
         [&] { Call(ours.get(), L"Value", DISPATCH_PROPERTYPUT, key_and_value); },
         [&] { Call(theirs.get(), L"Item", DISPATCH_PROPERTYPUT, key_and_value); }},
        {"creation and release", [&] { create(our_class); }, [&] { create(their_class); }},
        {"name and get of a text of an entity", [&] { Call(group.get(), L"Name", kRead, none); },
         nullptr},
        {"name and get of an object of an entity",
         [&] { Call(group.get(), L"Properties", kRead, none); }, nullptr},
    };
    std::printf("| Work | ours ns | theirs ns | ratio |\n|---|---:|---:|---:|\n");
    for (const Work& work : works) {
      std::vector<double> our_times, their_times, ratios;
      for (int i = 0; i < rounds; ++i) {
        our_times.push_back(NanosecondsOf(work.ours));
        if (work.theirs == nullptr) continue;
        their_times.push_back(NanosecondsOf(work.theirs));
        ratios.push_back(our_times.back() / their_times.back());
      }
      if (work.theirs == nullptr) {
        std::printf("| %s | %.0f | - | - |\n", work.name, Median(our_times));
      } else {
        std::printf("| %s | %.0f | %.0f | %.3f |\n", work.name, Median(our_times),
                    Median(their_times), Median(ratios));
      }
    }
  }
  CoUninitialize();
  return 0;
}
