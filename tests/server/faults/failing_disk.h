// A disk under SQLite that fails when a test wants it to.
#pragma once

namespace qdclgl::server::testing {

class FailingDisk {
 public:
  enum class Fault {
    kFullOnce,     // one operation finds no room; what it writes is there by half
    kFullForGood,  // and so do all behind it
    kBrokenOnce,   // one operation fails
    kBrokenForGood,
    kStop,  // the process ends, in the middle of what it writes
    // The power fails, and with it what was written and not synced: all of it; half of the last
    // write; any of it. A file that was made or taken away stays so.
    kPowerTakesAll,
    kPowerTakesHalf,
    kPowerTakesAny,
  };
  static constexpr Fault kFaults[] = {
      Fault::kFullOnce, Fault::kFullForGood,   Fault::kBrokenOnce,     Fault::kBrokenForGood,
      Fault::kStop,     Fault::kPowerTakesAll, Fault::kPowerTakesHalf, Fault::kPowerTakesAny};
  // Whether the process ends with it, with which status before and behind NoteDone.
  static bool IsEnd(Fault fault) { return fault >= Fault::kStop; }
  static constexpr int kStopStatus = 86, kStopBehindStatus = 87;

  // While there is one, SQLite opens its files on it.
  FailingDisk();
  ~FailingDisk();
  FailingDisk(const FailingDisk&) = delete;
  FailingDisk& operator=(const FailingDisk&) = delete;

  // The n-th open, write, sync or truncation from here on fails, counted from 1.
  void FailAt(int n, Fault fault);
  // What is done has been reported as done.
  void NoteDone();
  // The disk works again. Whether it has failed.
  bool Heal();
  // How many of them there were between the last FailAt and Heal.
  int Operations() const;
};

}  // namespace qdclgl::server::testing
