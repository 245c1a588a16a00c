// A line on the terminal that tells how far a long job is, and the reports that pass it by.
#pragma once

#include <chrono>
#include <string>

#include "qdclgl/cli/console.h"
#include "qdclgl/cli/csv_reader.h"

namespace qdclgl::cli {

class Progress {
 public:
  explicit Progress(const Console& console) : console_(console) {}
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Shows a count of `what`, as often as an eye can follow; `share` is what is done, 0 to 1.
  void Show(const std::string& what, long count, double share);
  // Takes the line away, for something that stays.
  void Clear();

 private:
  const Console& console_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point shown_at_ = start_;
  bool is_shown_ = false;
};

// What is wrong in a file: "journal.csv:12:7: reason", one line each.
class Reports {
 public:
  Reports(std::string file, const Console& console, Progress& progress)
      : file_(std::move(file)), console_(console), progress_(progress) {}

  void Add(Position at, const std::string& reason);
  bool IsEmpty() const { return is_empty_; }

 private:
  std::string file_;
  const Console& console_;
  Progress& progress_;
  bool is_empty_ = true;
};

}  // namespace qdclgl::cli
