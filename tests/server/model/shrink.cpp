#include "tests/server/model/run.h"

namespace qdclgl::server::testing::model {

namespace {

// Leaves out of a list, larger parts first, what `fails` does not need.
template <class Element>
void LeaveOut(std::vector<Element>& list,
              const std::function<bool(const std::vector<Element>&)>& fails) {
  for (std::size_t part = list.size(); part > 0; part /= 2) {
    for (std::size_t from = 0; from < list.size();) {
      const std::size_t count = std::min(part, list.size() - from);
      const auto first = list.begin() + static_cast<std::ptrdiff_t>(from);
      std::vector<Element> shorter(list.begin(), first);
      shorter.insert(shorter.end(), first + static_cast<std::ptrdiff_t>(count), list.end());
      if (fails(shorter)) {
        list = std::move(shorter);
      } else {
        from += count;
      }
    }
  }
}

// Lets each operation work on one of the first vouchers where that will do, so that none is needed
// only for their count.
void LowerVouchers(std::vector<Operation>& work,
                   const std::function<bool(const std::vector<Operation>&)>& fails) {
  constexpr std::size_t kFirst = 3;
  for (Operation& operation : work) {
    const std::size_t before = operation.voucher;
    for (operation.voucher = 0; operation.voucher < kFirst && !fails(work);) ++operation.voucher;
    if (operation.voucher == kFirst) operation.voucher = before;
  }
}

}  // namespace

std::vector<Operation> Shrunk(std::vector<Operation> work,
                              const std::function<bool(const std::vector<Operation>&)>& fails) {
  LeaveOut(work, fails);
  // What goes at the end may make something before it needless.
  for (std::size_t size = work.size() + 1; work.size() < size;) {
    size = work.size();
    LowerVouchers(work, fails);
    LeaveOut(work, fails);
  }
  for (std::size_t i = 0; i < work.size(); ++i) {
    std::vector<Line> lines = work[i].content.lines;
    LeaveOut<Line>(lines, [&](const std::vector<Line>& fewer) {
      std::vector<Operation> shorter = work;
      shorter[i].content.lines = fewer;
      return fails(shorter);
    });
    work[i].content.lines = lines;
  }
  return work;
}

}  // namespace qdclgl::server::testing::model
