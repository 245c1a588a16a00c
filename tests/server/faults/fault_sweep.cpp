#include "tests/server/faults/fault_sweep.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>

#include "qdclgl/server/db/connections.h"
#include "tests/server/faults/cutting_proxy.h"
#include "tests/server/faults/failing_disk.h"

namespace qdclgl::server::testing {

namespace {

constexpr const char* kDone = "none";
constexpr const char* kUnknown = "OutcomeUnknown";
constexpr const char* kStopped = "stopped";
constexpr int kMostPlaces = 2000;

class Sweep {
 public:
  explicit Sweep(const SweptOperation& operation) : operation_(operation) {
    operation_.restore();
    before_ = operation_.state();
    operation_.restore();
    EXPECT_EQ(operation_.act(), kDone);
    after_ = operation_.state();
    sound_ = operation_.check();
    EXPECT_NE(before_, after_) << operation_.name << " does nothing";
  }

  // One fault: `arm` prepares it behind the restoring, `act` does the operation with it and tells
  // what came of it, `heal` ends the fault and tells whether it was met. False when it was not.
  bool Meets(const std::function<void()>& arm, const std::function<std::string()>& act,
             const std::function<bool()>& heal) {
    operation_.restore();
    arm();
    const std::string outcome = act();
    if (!heal() && outcome != kStopped) {
      EXPECT_EQ(outcome, kDone);
      EXPECT_EQ(operation_.state(), after_);
      return false;
    }
    ++places_;
    Judge(outcome);
    EXPECT_EQ(operation_.check(), sound_);
    return !::testing::Test::HasFailure();
  }

  // How many faults there were; what came of them goes to the output.
  int Report(const char* what) const {
    std::printf("%s: %d faults of the %s:", operation_.name.c_str(), places_, what);
    for (const auto& [outcome, count] : outcomes_) std::printf(" %d %s", count, outcome.c_str());
    std::printf("\n");
    operation_.restore();
    Connections::OfThisThread().CloseAll();
    return places_;
  }

 private:
  static std::ptrdiff_t Rows(const std::string& state) { return std::ranges::count(state, '\n'); }

  void Judge(const std::string& outcome) {
    ++outcomes_[outcome];
    const std::string now = operation_.state();
    if (outcome == kDone) {
      EXPECT_EQ(now, after_) << "reported as done";
      return;
    }
    if (outcome == kUnknown || outcome == kStopped) {
      EXPECT_TRUE(now == before_ || now == after_) << outcome << ", and by half there:\n" << now;
      if (now == after_) return;
    } else {
      EXPECT_TRUE(outcome == "DatabaseFailed" || outcome == "ConnectionLost") << outcome;
      EXPECT_EQ(now, before_) << "refused: " << outcome;
    }
    // Ids may be skipped where a transaction is lost, so the second time rows are counted.
    EXPECT_EQ(operation_.act(), kDone) << "again, behind " << outcome;
    EXPECT_EQ(Rows(operation_.state()), Rows(after_)) << "again, behind " << outcome;
  }

  const SweptOperation& operation_;
  std::string before_, after_, sound_;
  int places_ = 0;
  std::map<std::string, int> outcomes_;
};

// Has the operation in a process of its own, which may end in its middle.
std::string ActInChild(const SweptOperation& operation) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    constexpr int kOther = 1;
    const std::string outcome = operation.act();
    Connections::OfThisThread().CloseAll();
    _exit(outcome == kDone ? 0 : kOther);
  }
  int status = 0;
  waitpid(child, &status, 0);
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  if (code == 0) return kDone;
  return code == FailingDisk::kStopStatus ? kStopped : "status " + std::to_string(code);
}

}  // namespace

int SweepDisk(const SweptOperation& operation) {
  Connections::OfThisThread().CloseAll();
  FailingDisk disk;
  Sweep sweep(operation);
  for (const FailingDisk::Fault fault : FailingDisk::kFaults) {
    const bool stops = fault == FailingDisk::Fault::kStop;
    for (int n = 1;; ++n) {
      SCOPED_TRACE(operation.name + ", fault " + std::to_string(static_cast<int>(fault)) +
                   " at place " + std::to_string(n));
      EXPECT_LT(n, kMostPlaces);
      if (!sweep.Meets([&] { disk.FailAt(n, fault); },
                       [&] {
                         const std::string outcome =
                             stops ? ActInChild(operation) : operation.act();
                         // The program ends while the disk still fails.
                         Connections::OfThisThread().CloseAll();
                         return outcome;
                       },
                       [&] { return disk.Heal(); })) {
        break;
      }
    }
  }
  return sweep.Report("disk");
}

int SweepConnection(CuttingProxy& proxy, const SweptOperation& operation) {
  Sweep sweep(operation);
  for (const CuttingProxy::Cut cut : CuttingProxy::kCuts) {
    for (int n = 1;; ++n) {
      SCOPED_TRACE(operation.name + ", cut " +
                   (cut == CuttingProxy::Cut::kBefore ? "before" : "behind") + " request " +
                   std::to_string(n));
      EXPECT_LT(n, kMostPlaces);
      const auto arm = [&] {
        // One of the cuts meets the beginning of a connection too, and statements that are new.
        if (cut == CuttingProxy::Cut::kBefore) Connections::OfThisThread().CloseAll();
        proxy.CutAt(n, cut);
      };
      if (!sweep.Meets(arm, operation.act, [&] { return proxy.Mend(); })) {
        break;
      }
    }
  }
  return sweep.Report("connection");
}

}  // namespace qdclgl::server::testing
