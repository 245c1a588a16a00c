#include "tests/server/client.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace qdclgl::server::testing {

Client::Client(const std::string& connection, std::uint_fast32_t seed, double seconds,
               const char* stays) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  pid_ = fork();
  if (pid_ == 0) {
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
    execl(QDCLGL_SERVER_WORKER, QDCLGL_SERVER_WORKER, connection.c_str(),
          std::to_string(seed).c_str(), std::to_string(seconds).c_str(), stays, nullptr);
    _exit(127);
  }
  close(ends[1]);
  output_ = fdopen(ends[0], "r");
}

Client::~Client() { std::fclose(output_); }

std::string Client::NextLine() {
  char line[1000] = "";
  return std::fgets(line, sizeof line, output_) != nullptr ? line : "";
}

void Client::Kill() const { kill(pid_, SIGKILL); }

int Client::Wait() const {
  int status = 0;
  waitpid(pid_, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace qdclgl::server::testing
