#include "qdclgl/cli/progress.h"

#include <cstdio>

#include "qdclgl/server/books/work_progress.h"

namespace qdclgl::cli {

bool Progress::IsDue() {
  if (!console_.shows_progress) return false;
  using namespace std::chrono_literals;
  const auto now = std::chrono::steady_clock::now();
  if (now - shown_at_ < 100ms) return false;
  shown_at_ = now;
  return true;
}

void Progress::Write(const char* text) {
  console_.err << text << std::flush;
  is_shown_ = true;
}

void Progress::Show(const std::string& what, long count, double share) {
  if (!IsDue()) return;
  const double seconds = std::chrono::duration<double>(shown_at_ - start_).count();
  char text[80];
  std::snprintf(text, sizeof text, "\r%3.0f %%  %ld %s, %.0f a second\033[K", 100 * share, count,
                what.c_str(), static_cast<double>(count) / seconds);
  Write(text);
}

void Progress::Show(const std::string& work, double share) {
  if (!IsDue()) return;
  char text[80];
  std::snprintf(text, sizeof text, "\r%3.0f %%  %s\033[K", 100 * share, work.c_str());
  Write(text);
}

void Progress::Clear() {
  if (is_shown_) console_.err << "\r\033[K" << std::flush;
  is_shown_ = false;
}

WorkOnBooks::WorkOnBooks(const Console& console) : progress_(console) {
  server::SetWorkListener(
      [this](std::string_view work, double share) { progress_.Show(std::string(work), share); });
}

WorkOnBooks::~WorkOnBooks() { server::SetWorkListener(nullptr); }

void Reports::Add(Position at, const std::string& reason) {
  is_empty_ = false;
  Tell({at, reason});
}

void Reports::Tell(const Report& report) {
  progress_.Clear();
  console_.err << OneLine(file_) << ':' << report.at.line << ':' << report.at.column << ": "
               << OneLine(report.reason) << '\n';
}

}  // namespace qdclgl::cli
