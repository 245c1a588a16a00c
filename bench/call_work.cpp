// Methods called by name.
#include <functional>

#include "bench/sample.h"
#include "bench/work.h"
#include "qdclgl/frame/objects/class_table.h"

namespace bench {

namespace {

using namespace qdclgl;

class Calculator final : public Object {
  QD_MEMBERS(Calculator, Object, Internal, "Methods of two numbers.")

 public:
  QD_METHOD(Long, Add, (Long left, Long right), "A sum.")
  QD_METHOD(Long, Subtract, (Long left, Long right), "A difference.")
  QD_METHOD(Long, Larger, (Long left, Long right), "The larger number.")
  QD_METHOD(Long, Smaller, (Long left, Long right), "The smaller number.")
  QD_METHOD(Long, ExistenceCheck, (Long left, Long right), "Whether the numbers are equal.")
  QD_METHOD(Long, GetDetail, (Long left, Long right), "The first number.")
  QD_METHOD(Long, GetList, (Long left, Long right), "The second number.")
  QD_METHOD(Long, Refresh, (Long left, Long right), "0.")
};

QD_DEFINE_MEMBERS(Calculator)

Long Calculator::Add(Long left, Long right) { return left + right; }
Long Calculator::Subtract(Long left, Long right) { return left - right; }
Long Calculator::Larger(Long left, Long right) { return left > right ? left : right; }
Long Calculator::Smaller(Long left, Long right) { return left < right ? left : right; }
Long Calculator::ExistenceCheck(Long left, Long right) { return left == right ? 1 : 0; }
Long Calculator::GetDetail(Long left, Long) { return left; }
Long Calculator::GetList(Long, Long right) { return right; }
Long Calculator::Refresh(Long, Long) { return 0; }

using PeerMethod = std::function<PeerValue(std::vector<PeerValue>&)>;

std::map<std::string, PeerMethod> PeerMethods(Calculator& target) {
  const auto method = [&target](Long (Calculator::*member)(Long, Long)) -> PeerMethod {
    return [&target, member](std::vector<PeerValue>& arguments) -> PeerValue {
      return (target.*member)(std::get<std::int32_t>(arguments.at(0)),
                              std::get<std::int32_t>(arguments.at(1)));
    };
  };
  return {
      {"Add", method(&Calculator::Add)},
      {"Subtract", method(&Calculator::Subtract)},
      {"Larger", method(&Calculator::Larger)},
      {"Smaller", method(&Calculator::Smaller)},
      {"ExistenceCheck", method(&Calculator::ExistenceCheck)},
      {"GetDetail", method(&Calculator::GetDetail)},
      {"GetList", method(&Calculator::GetList)},
      {"Refresh", method(&Calculator::Refresh)},
  };
}

PeerValue CallPeer(const std::map<std::string, PeerMethod>& methods, std::string_view name,
                   std::int32_t left, std::int32_t right) {
  std::vector<PeerValue> arguments;
  arguments.reserve(2);
  arguments.emplace_back(left);
  arguments.emplace_back(right);
  return methods.find(std::string(name))->second(arguments);
}

constexpr std::string_view kCalled[] = {"Add", "GetDetail", "ExistenceCheck", "Smaller"};
constexpr int kCalls = std::size(kCalled);

}  // namespace

std::vector<Work> CallWorks() {
  return {{"late-bound call by name", 1.0, kCalls, 200000,
           [](benchmark::State& state) {
             const Ref<Object> target = Make<Calculator>();
             Long value = 0;
             for (auto _ : state) {
               ++value;
               for (std::string_view name : kCalled) {
                 benchmark::DoNotOptimize(name);
                 benchmark::DoNotOptimize(target->Call(name, value, 7).As<Long>());
               }
             }
           },
           [](benchmark::State& state) {
             const auto target = Make<Calculator>();
             const auto methods = PeerMethods(*target);
             std::int32_t value = 0;
             for (auto _ : state) {
               ++value;
               for (std::string_view name : kCalled) {
                 benchmark::DoNotOptimize(name);
                 benchmark::DoNotOptimize(
                     std::get<std::int32_t>(CallPeer(methods, name, value, 7)));
               }
             }
           }}};
}

}  // namespace bench
