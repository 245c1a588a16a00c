#include "tests/cli/screen.h"

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace qdclgl::cli::testing {

RunResult RunOnScreen(const Screen& screen, const std::vector<std::string>& arguments,
                      const std::string& program) {
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  winsize size{screen.rows, screen.columns, 0, 0};
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
  if (child == 0) {
    unsetenv("NO_COLOR");
    setenv("TERM", "xterm", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("PAGER", "cat", 1);
    for (const auto& [name, value] : screen.environment) setenv(name.c_str(), value.c_str(), 1);
    execv(program.c_str(), pointers.data());
    _exit(127);
  }
  const auto type = [&] {
    EXPECT_EQ(write(terminal, screen.typed.data(), screen.typed.size()),
              static_cast<ssize_t>(screen.typed.size()));
  };
  bool is_typed = screen.question.empty();
  if (is_typed) type();
  RunResult result;
  char text[4096];
  for (ssize_t count; (count = read(terminal, text, sizeof text)) > 0;) {
    result.out.append(text, static_cast<std::size_t>(count));
    if (is_typed || result.out.find(screen.question) == std::string::npos) continue;
    is_typed = true;
    type();
  }
  close(terminal);
  std::erase(result.out, '\r');
  int status = 0;
  waitpid(child, &status, 0);
  result.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

}  // namespace qdclgl::cli::testing
