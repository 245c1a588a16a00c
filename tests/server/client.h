// A client in a process of its own, for tests that kill clients or let many of them work at once.
#pragma once

#include <cstdint>
#include <string>

#include "tests/support/process.h"

namespace qdclgl::server::testing {

class Client {
 public:
  // Works for so many seconds; worker.cpp tells what it does, and what a "stays" means.
  Client(const std::string& connection, std::uint_fast32_t seed, double seconds,
         const std::string& stays = "");
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  // What it prints, "" at the end.
  std::string NextLine();
  void Kill() { process_.Kill(); }
  int Wait() { return process_.Wait(); }

 private:
  std::string output_;  // the file of what it prints
  int lines_read_ = 0;
  qdclgl::testing::Process process_;
};

}  // namespace qdclgl::server::testing
