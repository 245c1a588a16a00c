#include "qdclgl/cli/output.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace qdclgl::cli {

namespace {

constexpr std::size_t kMostKept = 64 * 1024;

}  // namespace

void Output::PageBeyond(std::size_t lines) {
  pager_command_ = Pager::Command();
  most_lines_ = pager_command_ ? lines : 0;
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
  std::size_t written = 0;
  while (!is_left_ && written < kept_.size()) {
    const auto count = write(descriptor_, kept_.data() + written, kept_.size() - written);
    if (count >= 0) written += static_cast<std::size_t>(count);
    else if (errno == EPIPE) is_left_ = true;
    else if (errno != EINTR) return false;
  }
  kept_.clear();
  return true;
}

void Output::StartPager() {
  most_lines_ = 0;
  descriptor_ = pager_.Start(*pager_command_).value_or(descriptor_);
}

bool Output::Finish() {
  const bool is_whole = sync() == 0;
  if (pager_.IsRunning()) {
    pager_.Wait();
    is_left_ = true;
  }
  return is_whole;
}

}  // namespace qdclgl::cli
