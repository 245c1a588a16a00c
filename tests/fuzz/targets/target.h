// What the fuzz targets share. A target is one function that the fuzzer calls with noise that it
// makes of the target's corpus; besides crashes it looks for what doesn't hold.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "qdclgl/frame/vocabulary/errors.h"

namespace qdclgl::fuzz {

// Ends the program, so that the fuzzer keeps the input.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "BREACH: %s\n", what);
  std::abort();
}

// The number of the Error that an operation raises, 0 when it raises none.
template <class Operation>
std::int32_t NumberOf(Operation operation) {
  try {
    operation();
    return 0;
  } catch (const Error& error) {
    return error.number();
  }
}

// A file that a target reads through the library, in memory where there is a folder for that.
class TargetFile {
 public:
  explicit TargetFile(std::string_view name) {
    namespace fs = std::filesystem;
    const fs::path memory = "/dev/shm";
    path_ = (fs::is_directory(memory) ? memory : fs::temp_directory_path()) /
            ("qdclgl-fuzz-" + std::string(name) + "-" + std::to_string(getpid()));
  }
  ~TargetFile() { std::filesystem::remove(path_); }
  TargetFile(const TargetFile&) = delete;
  TargetFile& operator=(const TargetFile&) = delete;

  std::string path() const { return path_.string(); }
  void Write(std::string_view text) const { std::ofstream(path_, std::ios::binary) << text; }
  std::string Read() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path path_;
};

inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace qdclgl::fuzz
