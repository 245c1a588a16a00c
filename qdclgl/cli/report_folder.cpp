#include "qdclgl/cli/report_folder.h"

#include <system_error>

#include "qdclgl/cli/console.h"
#include "qdclgl/cli/system_calls.h"
#include "qdclgl/server/db/path_text.h"

namespace qdclgl::cli {

namespace {

namespace fs = std::filesystem;

// By this file a folder is known as a report, which a new one may replace.
constexpr const char* kMark = ".qdclgl-report";

fs::path Beside(const fs::path& place, const std::string& what) {
  return place.parent_path() /
         server::PathOf("." + server::TextOf(place.filename()) + "." + what + "-" + ProcessMark());
}

bool MayBeReplaced(const fs::path& place) {
  return fs::is_directory(place) && (fs::exists(place / kMark) || fs::is_empty(place));
}

}  // namespace

ReportFolder::ReportFolder(const std::string& place)
    : place_(fs::absolute(server::PathOf(place)).lexically_normal()) {
  if (!place_.has_filename()) place_ = place_.parent_path();
  unfinished_ = Beside(place_, "unfinished");
  std::error_code failed;
  if (fs::exists(place_) && !MayBeReplaced(place_)) {
    throw FileError(place + " is there and is no report; name a folder that is not there yet");
  }
  fs::create_directory(unfinished_, failed);
  if (failed) throw FileError(place + " can't be made: " + failed.message());
  std::ofstream mark = Begin(kMark);
  End(mark, kMark);
}

ReportFolder::~ReportFolder() {
  std::error_code ignored;
  fs::remove_all(unfinished_, ignored);
}

std::ofstream ReportFolder::Begin(const std::string& name) const {
  return std::ofstream(unfinished_ / server::PathOf(name), std::ios::binary);
}

void ReportFolder::End(std::ofstream& file, const std::string& name) const {
  file.close();
  if (!file) throw FileError(server::TextOf(place_ / server::PathOf(name)) + " can't be written");
}

void ReportFolder::Finish() {
  const fs::path former = Beside(place_, "former");
  std::error_code failed;
  if (fs::exists(place_)) fs::rename(place_, former, failed);
  if (!failed) fs::rename(unfinished_, place_, failed);
  if (failed) throw FileError(server::TextOf(place_) + " can't be replaced: " + failed.message());
  fs::remove_all(former, failed);
}

}  // namespace qdclgl::cli
