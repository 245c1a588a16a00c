// The programs of examples/ that make books of their own, run as a reader would.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

namespace fs = std::filesystem;

const std::string kOutput = QDCLGL_SOURCE_DIR "/examples/output";

// What is kept of them tells which they are.
std::set<std::string> Programs() {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(kOutput)) {
    names.insert(entry.path().stem().string());
  }
  return names;
}

class Example : public ::testing::TestWithParam<std::string> {
 protected:
  static RunResult Run(const std::vector<std::string>& arguments) {
    RunResult result = RunProgram(arguments, QDCLGL_EXAMPLES + GetParam() + QDCLGL_PROGRAM_ENDING);
    // Lines end as they do on the system.
    std::erase(result.out, '\r');
    return result;
  }
};

TEST_P(Example, PrintsWhatIsKeptOfItAndLeavesBooksInOrder) {
  const Folder folder;
  const std::string book = folder.Path("books.db");
  SetVariable("QDCLGL_REGISTRY", folder.Path("registry"));
  const RunResult result = Run({book});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, ReadFile(kOutput + "/" + GetParam() + ".txt"));
  EXPECT_EQ(RunProgram({"doctor", book}).out, "The books are in order.\n");
}

TEST_P(Example, TellsHowItIsCalledAndNeverTouchesBooksThatAreThere) {
  const RunResult usage = Run({});
  EXPECT_EQ(usage.code, 2);
  EXPECT_TRUE(usage.err.starts_with("usage: ")) << usage.err;
  const Folder folder;
  const std::string there = folder.Write("books.db", "a letter");
  const RunResult result = Run({there});
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.err, "");
  EXPECT_EQ(ReadFile(there), "a letter");
}

INSTANTIATE_TEST_SUITE_P(Examples, Example, ::testing::ValuesIn(Programs()),
                         [](const auto& each) { return each.param; });

}  // namespace
}  // namespace qdclgl::cli::testing
