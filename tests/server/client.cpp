#include "tests/server/client.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

namespace qdclgl::server::testing {

namespace {

std::string NewOutput() {
  static std::atomic<int> count{0};
  const auto file = std::filesystem::temp_directory_path() /
                    ("qdclgl_client_" + std::to_string(qdclgl::testing::ProcessId()) + "_" +
                     std::to_string(++count));
  return file.string();
}

}  // namespace

Client::Client(const std::string& connection, std::uint_fast32_t seed, double seconds,
               const std::string& stays)
    : output_(NewOutput()),
      process_(
          {QDCLGL_SERVER_WORKER, connection, std::to_string(seed), std::to_string(seconds), stays},
          output_) {}

Client::~Client() {
  Kill();
  Wait();
  std::error_code ignored;
  std::filesystem::remove(output_, ignored);
}

std::string Client::NextLine() {
  for (;;) {
    // Asked before the file is, as it may print and end in between.
    const bool is_running = process_.IsRunning();
    std::ifstream file(output_);
    std::string line;
    for (int i = 0; i <= lines_read_; ++i) std::getline(file, line);
    if (file.good()) {
      ++lines_read_;
      return line + "\n";
    }
    if (!is_running) return "";
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace qdclgl::server::testing
