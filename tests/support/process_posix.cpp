#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>

#include "tests/support/process.h"

namespace qdclgl::testing {

int ProcessId() { return getpid(); }

void SetVariable(const std::string& name, const std::string& value) {
  setenv(name.c_str(), value.c_str(), 1);
}

void UnsetVariable(const std::string& name) { unsetenv(name.c_str()); }

struct Process::Handle {
  pid_t id;
  std::optional<int> code = std::nullopt;  // nothing while it runs

  void Look(int options) {
    int status = 0;
    if (code || waitpid(id, &status, options) != id) return;
    code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
};

static_assert(Process::kKilled == -SIGKILL);

Process::Process(const std::vector<std::string>& words, const std::string& out_file,
                 const std::string& err_file) {
  std::vector<std::string> copies = words;
  std::vector<char*> pointers;
  for (std::string& word : copies) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const pid_t child = fork();
  if (child != 0) {
    handle_ = std::make_unique<Handle>(Handle{child});
    return;
  }
  const auto redirect = [](const std::string& file, int descriptor) {
    const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (opened < 0 || dup2(opened, descriptor) < 0) _exit(126);
  };
  redirect(out_file, STDOUT_FILENO);
  if (!err_file.empty()) redirect(err_file, STDERR_FILENO);
  execv(pointers.front(), pointers.data());
  _exit(127);
}

Process::Process(Process&&) noexcept = default;
Process::~Process() = default;

int Process::Id() const { return handle_->id; }

void Process::Kill() {
  if (IsRunning()) kill(handle_->id, SIGKILL);
}

bool Process::IsRunning() {
  handle_->Look(WNOHANG);
  return !handle_->code;
}

int Process::Wait() {
  handle_->Look(0);
  return handle_->code.value_or(-1);
}

}  // namespace qdclgl::testing
