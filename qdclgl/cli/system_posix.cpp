#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sstream>

#include "qdclgl/cli/system.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

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

}  // namespace

void PrepareStandardStreams() { signal(SIGPIPE, SIG_IGN); }

bool IsTerminal(int descriptor) { return isatty(descriptor) != 0; }

ScreenSize ScreenSizeOf(int descriptor) {
  winsize size{};
  ScreenSize screen;
  if (ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return screen;
  screen.width = size.ws_col;
  if (size.ws_row > 0) screen.height = size.ws_row;
  return screen;
}

// As the first of these says that says anything.
bool HasUnicode() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == 0) continue;
    const std::string locale = FoldAsciiCase(value);
    return locale.find("utf-8") != locale.npos || locale.find("utf8") != locale.npos;
  }
  return false;
}

const std::string_view kUsualEditor = "vi";

bool RunEditor(const std::string& editor, const std::string& path) {
  return std::system((editor + " '" + path + "'").c_str()) == 0;
}

// One that isn't there is none.
std::optional<std::string> Pager::Command() {
  const char* own = std::getenv("PAGER");
  const std::string command = own == nullptr ? "less" : own;
  if (command == "cat" || !CanRun(command)) return std::nullopt;
  return command;
}

std::optional<int> Pager::Start(const std::string& command) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
  process_ = fork();
  if (process_ == 0) {
    dup2(ends[0], STDIN_FILENO);
    signal(SIGPIPE, SIG_DFL);
    // Ends by itself on one screen, shows colours, and leaves what was shown.
    setenv("LESS", "FRX", 0);
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    _exit(127);
  }
  close(ends[0]);
  if (process_ > 0) return descriptor_ = ends[1];
  close(ends[1]);
  process_ = 0;
  return std::nullopt;
}

void Pager::Wait() {
  close(descriptor_);
  // An interrupt is the pager's; it decides what ends.
  signal(SIGINT, SIG_IGN);
  while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
  }
  process_ = 0;
}

}  // namespace qdclgl::cli
