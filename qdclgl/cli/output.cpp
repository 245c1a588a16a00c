#include "qdclgl/cli/output.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sstream>

namespace qdclgl::cli {

namespace {

constexpr std::size_t kMostKept = 64 * 1024;

bool IsProgram(const std::string& path) { return access(path.c_str(), X_OK) == 0; }

// Whether the first word of a command is a program.
bool CanRun(const std::string& command) {
  const std::string word = command.substr(0, command.find(' '));
  if (word.find('/') != word.npos) return IsProgram(word);
  const char* path = std::getenv("PATH");
  std::istringstream folders(path == nullptr ? "" : path);
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (!word.empty() && IsProgram(folder + "/" + word)) return true;
  }
  return false;
}

// The reader's own pager, or the usual one; "" for none. One that isn't there is none.
std::string PagerCommand() {
  const char* own = std::getenv("PAGER");
  const std::string command = own == nullptr ? "less" : own;
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
  std::size_t written = 0;
  while (!is_left_ && written < kept_.size()) {
    const ssize_t count = write(descriptor_, kept_.data() + written, kept_.size() - written);
    if (count >= 0) written += static_cast<std::size_t>(count);
    else if (errno == EPIPE) is_left_ = true;
    else if (errno != EINTR) return false;
  }
  kept_.clear();
  return true;
}

void Output::StartPager() {
  most_lines_ = 0;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return;
  pager_process_ = fork();
  if (pager_process_ == 0) {
    dup2(ends[0], STDIN_FILENO);
    signal(SIGPIPE, SIG_DFL);
    // Ends by itself on one screen, shows colours, and leaves what was shown.
    setenv("LESS", "FRX", 0);
    execl("/bin/sh", "sh", "-c", pager_.c_str(), nullptr);
    _exit(127);
  }
  close(ends[0]);
  if (pager_process_ > 0) {
    descriptor_ = ends[1];
  } else {
    close(ends[1]);
    pager_process_ = 0;
  }
}

bool Output::Finish() {
  const bool is_whole = sync() == 0;
  if (pager_process_ > 0) {
    close(descriptor_);
    // An interrupt is the pager's; it decides what ends.
    signal(SIGINT, SIG_IGN);
    while (waitpid(pager_process_, nullptr, 0) < 0 && errno == EINTR) {
    }
    pager_process_ = 0;
    is_left_ = true;
  }
  return is_whole;
}

}  // namespace qdclgl::cli
