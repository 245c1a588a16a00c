// The tutorial and the guides of the command line: each of their commands is run, and what it
// prints is what the page shows.
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

// Runs the commands of a page in one shell, as somebody has who types along; `settings` are
// commands that nobody sees.
void ExpectItPrintsWhatItShows(const std::string& page, std::size_t least,
                               const std::string& settings = "") {
  const std::vector<Step> steps = Steps(ReadFile(QDCLGL_SOURCE_DIR "/docs/" + page));
  ASSERT_GE(steps.size(), least);
  constexpr char kMark = '\x01';  // in front of each command's output
  const Folder folder;
  const std::string program = QDCLGL_PROGRAM;
  std::string script = "cd '" + folder.Path("") +
                       "' && ln -s '" QDCLGL_SOURCE_DIR
                       "/examples' examples && unset QDCLGL_PASSWORD QDCLGL_USER\n"
                       "export LC_ALL=C PATH='" +
                       program.substr(0, program.rfind('/')) + "':\"$PATH\"\n" + settings + "\n";
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

TEST(Tutorial, PrintsWhatItShows) { ExpectItPrintsWhatItShows("tutorial.md", 26); }

// Guides whose books are on either database.
class Guides : public ::testing::TestWithParam<DatabaseKind> {
 protected:
  ~Guides() override { server::testing::RemoveBooks(there); }
  void ExpectItGoesAsShown(const std::string& page, std::size_t least) const {
    ExpectItPrintsWhatItShows("guides/" + page, least, "LEDGER='" + there + "'");
  }

  const std::string there = server::testing::NewConnectionText(GetParam());
};
QDCLGL_CLI_TEST(Guides);

TEST_P(Guides, BooksMoveAsTheGuideShows) { ExpectItGoesAsShown("moving-books.md", 12); }

TEST_P(Guides, AnOfficeWorksAsTheGuideShows) { ExpectItGoesAsShown("office.md", 18); }

}  // namespace
}  // namespace qdclgl::cli::testing
