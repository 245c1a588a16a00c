#include "tests/server/own_cluster.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace qdclgl::server::testing {

void ExpectToPassBeside(const std::string& option, const std::string& filter, int count) {
  const auto output = std::filesystem::temp_directory_path() /
                      ("qdclgl" + option + "_" + std::to_string(getpid()) + ".txt");
  const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
  // All of its tests, whatever share of them this process has.
  const std::string command = "env -u GTEST_TOTAL_SHARDS -u GTEST_SHARD_INDEX '" QDCLGL_SOURCE_DIR
                              "/scripts/with-postgresql' " +
                              option + " '" + self + "' --gtest_filter='" + filter + "' >'" +
                              output.string() + "' 2>&1";
  const int status = std::system(command.c_str());
  std::ifstream file(output);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  std::filesystem::remove(output);
  EXPECT_EQ(status, 0) << text;
  const std::string passed =
      "[  PASSED  ] " + std::to_string(count) + (count == 1 ? " test." : " tests.");
  EXPECT_NE(text.find(passed), text.npos) << text;
}

}  // namespace qdclgl::server::testing
