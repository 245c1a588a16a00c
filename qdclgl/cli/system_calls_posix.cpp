#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include "qdclgl/cli/system_calls.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

// Whether the terminal's texts are UTF-8, as the first of these says that says anything.
bool IsUtf8() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const auto value = Environment(name);
    if (!value || value->empty()) continue;
    const std::string locale = FoldAsciiCase(*value);
    return locale.find("utf-8") != locale.npos || locale.find("utf8") != locale.npos;
  }
  return false;
}

bool IsProgram(const std::string& path) { return access(path.c_str(), X_OK) == 0; }

}  // namespace

std::vector<std::string> BeginProgram(int count, char** arguments) {
  signal(SIGPIPE, SIG_IGN);
  return {arguments + 1, arguments + count};
}

std::optional<std::string> Environment(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr) return std::nullopt;
  return value;
}

std::string ProcessMark() { return std::to_string(getpid()); }

bool IsTerminal(int descriptor) { return isatty(descriptor) != 0; }

std::optional<Terminal> TerminalOf(int descriptor) {
  if (!IsTerminal(descriptor)) return std::nullopt;
  Terminal terminal;
  winsize size{};
  if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
    terminal.width = size.ws_col;
    if (size.ws_row > 0) terminal.height = size.ws_row;
  }
  terminal.has_unicode = IsUtf8();
  terminal.obeys_escapes = true;
  return terminal;
}

Writing Write(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(descriptor, text.data(), text.size());
    if (count >= 0) text.remove_prefix(static_cast<std::size_t>(count));
    else if (errno == EPIPE) return Writing::kNobodyReads;
    else if (errno != EINTR) return Writing::kFailed;
  }
  return Writing::kDone;
}

std::string ReadHidden(std::ostream& out, std::string_view question) {
  termios before{};
  const bool can_hide = tcgetattr(kStandardInput, &before) == 0;
  if (can_hide) {
    termios hidden = before;
    // An interrupt would leave the terminal blind.
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
    tcsetattr(kStandardInput, TCSADRAIN, &hidden);
  }
  out << question << std::flush;
  std::string line;
  std::getline(std::cin, line);
  out << '\n';
  if (can_hide) tcsetattr(kStandardInput, TCSADRAIN, &before);
  return line;
}

namespace {

constexpr auto kOthers = std::filesystem::perms::group_all | std::filesystem::perms::others_all;

}  // namespace

void MakePrivate(const std::filesystem::path& path, std::error_code& error) {
  std::filesystem::permissions(path, kOthers, std::filesystem::perm_options::remove, error);
}

bool IsPrivate(const std::filesystem::path& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  return !error && (status.permissions() & kOthers) == std::filesystem::perms::none;
}

bool CanRun(const std::string& command) {
  const std::string word = command.substr(0, command.find(' '));
  if (word.find('/') != word.npos) return IsProgram(word);
  std::istringstream folders(Environment("PATH").value_or(""));
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (!word.empty() && IsProgram(folder + "/" + word)) return true;
  }
  return false;
}

Pager::Pager(const std::string& command) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return;
  const pid_t process = fork();
  if (process == 0) {
    dup2(ends[0], STDIN_FILENO);
    signal(SIGPIPE, SIG_DFL);
    // Ends by itself on one screen, shows colours, and leaves what was shown.
    setenv("LESS", "FRX", 0);
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    _exit(127);
  }
  close(ends[0]);
  if (process > 0) {
    process_ = process;
    descriptor_ = ends[1];
  } else {
    close(ends[1]);
  }
}

Pager::~Pager() {
  if (!descriptor_) return;
  close(*descriptor_);
  signal(SIGINT, SIG_IGN);
  while (waitpid(static_cast<pid_t>(process_), nullptr, 0) < 0 && errno == EINTR) {
  }
}

const char* const kUsualEditor = "vi";

bool RunWithFile(const std::string& command, const std::string& path) {
  return std::system((command + " '" + path + "'").c_str()) == 0;
}

}  // namespace qdclgl::cli
