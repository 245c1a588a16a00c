#include "qdclgl/cli/output.h"

#include <algorithm>

namespace qdclgl::cli {

namespace {

constexpr std::size_t kMostKept = 64 * 1024;

// The reader's own pager, or the usual one; "" for none. One that isn't there is none.
std::string PagerCommand() {
  const std::string command = Environment("PAGER").value_or("less");
  return command != "cat" && CanRun(command) ? command : "";
}

}  // namespace

void Output::PageBeyond(std::size_t lines) {
  pager_ = PagerCommand();
  most_lines_ = pager_.empty() ? 0 : lines;
}

Output::int_type Output::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof()))
    return traits_type::not_eof(character);
  const char c = traits_type::to_char_type(character);
  return xsputn(&c, 1) == 1 ? character : traits_type::eof();
}

std::streamsize Output::xsputn(const char* text, std::streamsize size) {
  kept_.append(text, static_cast<std::size_t>(size));
  if (most_lines_ > 0) {
    lines_ += static_cast<std::size_t>(std::count(text, text + size, '\n'));
    if (lines_ <= most_lines_) return size;
    StartPager();
  }
  return kept_.size() < kMostKept || WriteOut() ? size : 0;
}

int Output::sync() {
  most_lines_ = 0;
  return WriteOut() ? 0 : -1;
}

bool Output::WriteOut() {
  if (!is_left_) {
    const Writing writing = Write(descriptor_, kept_);
    if (writing == Writing::kFailed) return false;
    is_left_ = writing == Writing::kNobodyReads;
  }
  kept_.clear();
  return true;
}

void Output::StartPager() {
  most_lines_ = 0;
  running_.emplace(pager_);
  descriptor_ = running_->descriptor().value_or(descriptor_);
}

bool Output::Finish() {
  const bool is_whole = sync() == 0;
  if (running_) {
    running_.reset();
    is_left_ = true;
  }
  return is_whole;
}

}  // namespace qdclgl::cli
