// The folder of a report while it is written: a new one beside the place, which takes the place at
// the end as a whole.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace qdclgl::cli {

class ReportFolder {
 public:
  // FileError when something stands at the place that is neither a report nor an empty folder, or
  // when nothing can be written there.
  explicit ReportFolder(const std::string& place);
  // Takes an unfinished report away.
  ~ReportFolder();
  ReportFolder(const ReportFolder&) = delete;
  ReportFolder& operator=(const ReportFolder&) = delete;

  // A file of the report, to be written from its beginning, and its end: FileError when it can't
  // be.
  std::ofstream Begin(const std::string& name) const;
  void End(std::ofstream& file, const std::string& name) const;
  // Puts the report into its place.
  void Finish();

 private:
  std::filesystem::path place_;
  std::filesystem::path unfinished_;
};

}  // namespace qdclgl::cli
