// What tests ask of the machine that they run on, POSIX or Windows: environment and processes.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace qdclgl::testing {

int ProcessId();

// Of this process, and of those that it starts from then on.
void SetVariable(const std::string& name, const std::string& value);
void UnsetVariable(const std::string& name);

// A program at work in a process of its own, with nothing to read. Who starts it waits for its end.
class Process {
 public:
  // Words that begin with the program's path, and the files that take what it prints: both may be
  // the same one. Without a file for its errors they go where this process's go.
  Process(const std::vector<std::string>& words, const std::string& out_file,
          const std::string& err_file = "");
  Process(Process&&) noexcept;
  ~Process();

  int Id() const;
  void Kill();
  bool IsRunning();
  // The code that it ended with, or kKilled.
  int Wait();

  static constexpr int kKilled = -9;

 private:
  struct Handle;
  std::unique_ptr<Handle> handle_;
};

}  // namespace qdclgl::testing
