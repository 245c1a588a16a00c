// The parts of committed files that follow from others, and what else has to name a component.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "qdclgl/derived/core_errors.h"
#include "qdclgl/derived/derived.h"
#include "qdclgl/server/server.h"

namespace qdclgl::derived::testing {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// The lines of one text that the other one lacks, each on a line of its own.
std::string Missing(const std::string& text, const std::string& other) {
  const std::vector<std::string> there = LinesOf(other);
  const std::set<std::string> known(there.begin(), there.end());
  std::string missing;
  for (const std::string& line : LinesOf(text)) {
    if (!known.contains(line)) missing += "\n    " + line;
  }
  return missing;
}

TEST(DerivedParts, AreWhatTheyFollowFrom) {
  for (const Part& part : DerivedParts(QDCLGL_SOURCE_DIR)) {
    const std::string committed = CommittedText(QDCLGL_SOURCE_DIR, part);
    if (committed == part.text) continue;
    const std::string lacking = Missing(part.text, committed);
    const std::string superfluous = Missing(committed, part.text);
    ADD_FAILURE() << part.Called() << ", is not what it follows from"
                  << (lacking.empty() ? "" : "; it lacks" + lacking)
                  << (superfluous.empty() ? "" : "; it has too much" + superfluous)
                  << "\nRun scripts/update-derived and review the difference.";
  }
}

// What nobody makes any more: a class that is gone leaves its page behind.
TEST(DerivedParts, AreAllThatStandsInTheReference) {
  std::set<std::string> made, committed;
  for (const Part& part : DerivedParts(QDCLGL_SOURCE_DIR)) {
    if (part.file.starts_with("docs/reference/")) made.insert(part.file);
  }
  for (const auto& entry : fs::directory_iterator(QDCLGL_SOURCE_DIR "/docs/reference")) {
    committed.insert("docs/reference/" + entry.path().filename().string());
  }
  EXPECT_EQ(committed, made);
  EXPECT_GT(made.size(), 90u);
}

TEST(DerivedParts, ShowAnExampleOfEveryClassAndComponent) {
  for (const Part& part : DerivedParts(QDCLGL_SOURCE_DIR)) {
    if (!part.file.starts_with("docs/reference/") || part.file.ends_with("/README.md") ||
        part.file.ends_with("/errors.md")) {
      continue;
    }
    EXPECT_NE(part.text.find("\n## Example\n"), std::string::npos)
        << part.file << ": write a paragraph into a program of examples/ that uses it";
  }
}

TEST(CoreErrors, HoldEveryNumberOfTheLibrary) {
  std::ifstream file(QDCLGL_SOURCE_DIR "/qdclgl/frame/vocabulary/errors.h");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  static const std::regex kConstant("inline constexpr \\S+ k(\\w+) =");
  std::vector<std::string> declared, explained;
  for (std::sregex_iterator match(text.begin(), text.end(), kConstant), end; match != end;
       ++match) {
    declared.push_back((*match)[1]);
  }
  for (const CoreError& error : CoreErrors()) {
    explained.emplace_back(error.name);
    EXPECT_TRUE(error.meaning.ends_with(".") && error.advice.ends_with(".")) << error.name;
  }
  EXPECT_EQ(explained, declared);
  EXPECT_GT(declared.size(), 20u);
}

class Scratch : public ::testing::Test {
 protected:
  Scratch() { fs::create_directories(root); }
  ~Scratch() override { fs::remove_all(root); }
  std::string Text() const {
    std::ifstream file(root / "page.md");
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void Put(const std::string& text) const { std::ofstream(root / "page.md") << text; }

  const fs::path root =
      fs::temp_directory_path() /
      ("qdclgl_derived_" +
       std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(Scratch, APartIsWrittenBetweenItsMarksAlone) {
  Put("a\n<!-- BEGIN one (x) -->\nold\n<!-- END one -->\n<!-- BEGIN two (x) -->\n<!-- END two "
      "-->\nz\n");
  const Part one{"page.md", "one", "1\n2\n"}, two{"page.md", "two", "3\n"};
  EXPECT_EQ(CommittedText(root, one), "old\n");
  EXPECT_EQ(CommittedText(root, two), "");
  Write(root, one);
  Write(root, two);
  EXPECT_EQ(Text(), "a\n<!-- BEGIN one (x) -->\n1\n2\n<!-- END one -->\n<!-- BEGIN two (x) -->\n3\n"
                    "<!-- END two -->\nz\n");
  EXPECT_EQ(CommittedText(root, one), one.text);
  Write(root, {"page.md", "", "all\n"});
  EXPECT_EQ(Text(), "all\n");
  EXPECT_THROW(CommittedText(root, one), std::runtime_error) << "the marks are gone";
  EXPECT_THROW(CommittedText(root, {"none.md", "", ""}), std::runtime_error);
  EXPECT_THROW(Write(root, {"none.md", "one", ""}), std::runtime_error);
  Write(root, {"new/page.md", "", "new\n"});
  EXPECT_EQ(CommittedText(root, {"new/page.md", "", ""}), "new\n");
}

// Kinds of master data are found by the derived list; every other component has a class that states
// its ProgID, in the sources as `kProgID = "..."`.
TEST(ServerComponents, HoldEveryClassWithAProgID) {
  static const std::regex kProgID("kProgID = \"([^\"]+)\"");
  std::set<std::string> offered;
  for (const server::ServerComponent& component : server::ServerComponents()) {
    EXPECT_TRUE(offered.emplace(component.prog_id).second) << component.prog_id << " stands twice";
  }
  int found = 0;
  for (const auto& entry :
       fs::recursive_directory_iterator(fs::path(QDCLGL_SOURCE_DIR) / "qdclgl/server")) {
    if (!entry.is_regular_file()) continue;
    std::ifstream file(entry.path());
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    for (std::sregex_iterator match(text.begin(), text.end(), kProgID), end; match != end;
         ++match) {
      ++found;
      EXPECT_TRUE(offered.contains((*match)[1]))
          << (*match)[1] << " of " << entry.path().filename()
          << " is not offered: add ComponentOf<its class>() to qdclgl/server/server.cpp, or to "
             ".components of the kind it belongs to";
    }
  }
  EXPECT_GT(found, 10);
}

}  // namespace
}  // namespace qdclgl::derived::testing
