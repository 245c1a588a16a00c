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
  };
  static constexpr Fault kFaults[] = {Fault::kFullOnce, Fault::kFullForGood, Fault::kBrokenOnce,
                                      Fault::kBrokenForGood, Fault::kStop};
  static constexpr int kStopStatus = 86;

  // While there is one, SQLite opens its files on it.
  FailingDisk();
  ~FailingDisk();
  FailingDisk(const FailingDisk&) = delete;
  FailingDisk& operator=(const FailingDisk&) = delete;

  // The n-th open, write, sync or truncation from here on fails, counted from 1.
  void FailAt(int n, Fault fault);
  // The disk works again. Whether it has failed.
  bool Heal();
};

}  // namespace qdclgl::server::testing
