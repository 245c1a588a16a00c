// The tutorial: each of its commands is run, and what it prints is what the page shows.
#include <sstream>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

struct Step {
  std::string command;
  std::string output;
};

// The commands of the page and what stands below them.
std::vector<Step> Steps(const std::string& page) {
  std::vector<Step> steps;
  std::istringstream lines(page);
  bool is_code = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("```")) is_code = !is_code;
    else if (is_code && line.starts_with("$ ")) steps.push_back({line.substr(2), ""});
    else if (is_code && !steps.empty()) steps.back().output += line + "\n";
  }
  return steps;
}

TEST(Tutorial, PrintsWhatItShows) {
  const std::vector<Step> steps = Steps(ReadFile(QDCLGL_SOURCE_DIR "/docs/tutorial.md"));
  ASSERT_GT(steps.size(), 25u);
  constexpr char kMark = '\x01';  // in front of each command's output
  const Folder folder;
  const std::string program = QDCLGL_PROGRAM;
  // One shell for all of them, as somebody has who types along.
  std::string script = "cd '" + folder.Path("") +
                       "' && ln -s '" QDCLGL_SOURCE_DIR
                       "/examples' examples && unset QDCLGL_PASSWORD QDCLGL_USER\n"
                       "export LC_ALL=C PATH='" +
                       program.substr(0, program.rfind('/')) + "':\"$PATH\"\n";
  for (const Step& step : steps) script += "printf '\\001'\n{ " + step.command + "\n} 2>&1\n";
  const RunResult result = RunProgram({"-c", script}, "/bin/bash");
  ASSERT_EQ(result.err, "");
  std::vector<std::string> printed;
  std::istringstream parts(result.out);
  for (std::string part; std::getline(parts, part, kMark);) printed.push_back(part);
  ASSERT_EQ(printed.size(), steps.size() + 1);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    EXPECT_EQ(printed[i + 1], steps[i].output) << steps[i].command;
  }
}

}  // namespace
}  // namespace qdclgl::cli::testing
