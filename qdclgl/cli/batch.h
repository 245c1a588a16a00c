// Many saves in one transaction of the database: as fast as one, as lasting as each. A save that is
// refused leaves the others alone; what is not committed is taken back. Where a save goes by what
// was looked up, the look belongs into the batch as well: batches come one after the other.
#pragma once

#include <string>

namespace qdclgl::cli {

class Batch {
 public:
  // As many saves as make the end of a transaction cheap beside them.
  static constexpr std::size_t kSize = 500;

  explicit Batch(std::string props);
  ~Batch();
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  void Commit();

 private:
  std::string props_;
  bool is_open_;
};

// While there is one, all batches of the thread are parts of it, and at its end everything is taken
// back: what would happen is tried, and nothing is kept.
class Trial {
 public:
  explicit Trial(std::string props);
  ~Trial();
  Trial(const Trial&) = delete;
  Trial& operator=(const Trial&) = delete;

  static bool IsUnderWay();

 private:
  std::string props_;
};

}  // namespace qdclgl::cli
