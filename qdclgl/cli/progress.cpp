#include "qdclgl/cli/progress.h"

#include <cstdio>

namespace qdclgl::cli {

void Progress::Show(const std::string& what, long count, double share) {
  if (!console_.shows_progress) return;
  using namespace std::chrono_literals;
  const auto now = std::chrono::steady_clock::now();
  if (now - shown_at_ < 100ms) return;
  shown_at_ = now;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  char text[80];
  std::snprintf(text, sizeof text, "\r%3.0f %%  %ld %s, %.0f a second\033[K", 100 * share, count,
                what.c_str(), static_cast<double>(count) / seconds);
  console_.err << text << std::flush;
  is_shown_ = true;
}

void Progress::Clear() {
  if (is_shown_) console_.err << "\r\033[K" << std::flush;
  is_shown_ = false;
}

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
