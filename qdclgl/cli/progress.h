// A line on the terminal that tells how far a long job is, and the reports that pass it by.
#pragma once

#include <chrono>
#include <string>
#include <vector>

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
  // The same of a work that counts nothing.
  void Show(const std::string& work, double share);
  // Takes the line away, for something that stays.
  void Clear();

 private:
  void Write(const char* text);
  // Whether somebody watches, and the last line has been there for long enough.
  bool IsDue();

  const Console& console_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point shown_at_ = start_;
  bool is_shown_ = false;
};

// Shows how far the server is with a work on the whole of the books, as long as it lives.
class WorkOnBooks {
 public:
  explicit WorkOnBooks(const Console& console);
  ~WorkOnBooks();
  WorkOnBooks(const WorkOnBooks&) = delete;
  WorkOnBooks& operator=(const WorkOnBooks&) = delete;

 private:
  Progress progress_;
};

template <class Work>
auto Watched(const Console& console, const Work& work) {
  const WorkOnBooks on_books(console);
  return work();
}

struct Report {
  Position at;
  std::string reason;
};

// What is wrong in a file: "journal.csv:12:7: reason", one line each.
class Reports {
 public:
  Reports(std::string file, const Console& console, Progress& progress)
      : file_(std::move(file)), console_(console), progress_(progress) {}

  virtual ~Reports() = default;

  void Add(Position at, const std::string& reason);
  bool IsEmpty() const { return is_empty_; }

 private:
  virtual void Tell(const Report& report);

  std::string file_;
  const Console& console_;
  Progress& progress_;
  bool is_empty_ = true;
};

// Reports that are kept, for who shows them in another way.
class CollectedReports final : public Reports {
 public:
  using Reports::Reports;

  const std::vector<Report>& all() const { return all_; }

 private:
  void Tell(const Report& report) override { all_.push_back(report); }

  std::vector<Report> all_;
};

}  // namespace qdclgl::cli
