// A client in a process of its own, for tests that kill clients or let many of them work at once.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <cstdio>
#include <string>

namespace qdclgl::server::testing {

class Client {
 public:
  // Works for so many seconds; worker.cpp tells what it does, and what a "stays" means.
  Client(const std::string& connection, std::uint_fast32_t seed, double seconds,
         const char* stays = nullptr);
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  // What it prints, "" at the end.
  std::string NextLine();
  void Kill() const;
  // Its exit status, or the signal that ended it as a negative number.
  int Wait() const;

 private:
  pid_t pid_;
  std::FILE* output_;
};

}  // namespace qdclgl::server::testing
