#include "tests/server/faults/fault_sweep.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "qdclgl/server/db/connections.h"
#include "tests/server/faults/cutting_proxy.h"
#include "tests/server/faults/failing_disk.h"

namespace qdclgl::server::testing {

namespace {

constexpr const char* kDone = "none";
constexpr const char* kUnknown = "OutcomeUnknown";
constexpr const char* kStopped = "stopped";
constexpr const char* kStoppedBehind = "done and stopped";
constexpr int kMostPlaces = 2000;

// Which of about so many places are met. In the middle of long operations, where one place is much
// like the next, it is every k-th, another one with each kind of fault. QDCLGL_EVERY_PLACE has all
// of them met.
class Places {
 public:
  Places(int about, int kind) : about_(about), kind_(kind) {
    const bool every = std::getenv("QDCLGL_EVERY_PLACE") != nullptr;
    if (!every) step_ = std::max(1, (about - 2 * kEnd + kMiddle - 1) / kMiddle);
  }
  bool IsMet(int place) const {
    const bool is_at_an_end = place <= kEnd || place > about_ - kEnd;
    return is_at_an_end || place % step_ == kind_ % step_;
  }
  // Whether the last places were all met although there were not as many as was thought.
  bool IsEndMet(int places) const { return step_ == 1 || places > about_ - kEnd / 2; }

 private:
  static constexpr int kEnd = 4, kMiddle = 4;
  int about_, kind_;
  int step_ = 1;
};

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
    if (!heal() && outcome != kStopped && outcome != kStoppedBehind) {
      EXPECT_EQ(outcome, kDone);
      EXPECT_EQ(operation_.state(), after_);
      return false;
    }
    ++places_;
    Judge(outcome);
    EXPECT_EQ(operation_.check(), sound_);
    return !::testing::Test::HasFailure();
  }

  // The places of one kind of fault, from the first one on until the operation is through before
  // the next. `meets` has it at place n; `count` tells, of a run without a fault, how many there
  // were.
  void Walk(int kind, const std::string& name, const std::function<bool(int n)>& meets,
            const std::function<int()>& count) {
    constexpr int kNever = 0;
    SCOPED_TRACE(operation_.name + ", " + name);
    EXPECT_FALSE(meets(kNever));
    const Places places(count(), kind);
    int n = 1;
    for (bool is_met = true; is_met; ++n) {
      SCOPED_TRACE("place " + std::to_string(n));
      ASSERT_LT(n, kMostPlaces);
      if (places.IsMet(n)) is_met = meets(n);
    }
    all_places_ += n - 2;
    EXPECT_TRUE(places.IsEndMet(n - 2));
  }

  // How many faults there were; what came of them goes to the output.
  int Report(const char* what) const {
    std::printf("%s: %d faults of the %s at %d places:", operation_.name.c_str(), places_, what,
                all_places_);
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
    if (outcome == kDone || outcome == kStoppedBehind) {
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
  int places_ = 0;      // that were met
  int all_places_ = 0;  // that there are
  std::map<std::string, int> outcomes_;
};

// Has the operation in a process of its own, which may end in its middle.
std::string ActInChild(const SweptOperation& operation, FailingDisk& disk) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    constexpr int kOther = 1;
    const std::string outcome = operation.act();
    if (outcome == kDone) disk.NoteDone();
    Connections::OfThisThread().CloseAll();
    _exit(outcome == kDone ? 0 : kOther);
  }
  int status = 0;
  waitpid(child, &status, 0);
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  if (code == 0) return kDone;
  if (code == FailingDisk::kStopBehindStatus) return kStoppedBehind;
  return code == FailingDisk::kStopStatus ? kStopped : "status " + std::to_string(code);
}

}  // namespace

int SweepDisk(const SweptOperation& operation) {
  Connections::OfThisThread().CloseAll();
  FailingDisk disk;
  Sweep sweep(operation);
  for (const FailingDisk::Fault fault : FailingDisk::kFaults) {
    const int kind = static_cast<int>(fault);
    const auto meets = [&](int n) {
      const auto act = [&] {
        const std::string outcome =
            n > 0 && FailingDisk::IsEnd(fault) ? ActInChild(operation, disk) : operation.act();
        // The program ends while the disk still fails.
        Connections::OfThisThread().CloseAll();
        return outcome;
      };
      return sweep.Meets([&] { disk.FailAt(n, fault); }, act, [&] { return disk.Heal(); });
    };
    sweep.Walk(kind, "fault " + std::to_string(kind), meets, [&] { return disk.Operations(); });
  }
  return sweep.Report("disk");
}

int SweepConnection(CuttingProxy& proxy, const SweptOperation& operation) {
  Sweep sweep(operation);
  for (const CuttingProxy::Cut cut : CuttingProxy::kCuts) {
    const bool before = cut == CuttingProxy::Cut::kBefore;
    const auto meets = [&](int n) {
      const auto arm = [&] {
        // One of the cuts meets the beginning of a connection too, and statements that are new.
        if (before) Connections::OfThisThread().CloseAll();
        proxy.CutAt(n, cut);
      };
      return sweep.Meets(arm, operation.act, [&] { return proxy.Mend(); });
    };
    sweep.Walk(static_cast<int>(cut), before ? "cut before a request" : "cut behind a request",
               meets, [&] { return proxy.Requests(); });
  }
  return sweep.Report("connection");
}

}  // namespace qdclgl::server::testing
