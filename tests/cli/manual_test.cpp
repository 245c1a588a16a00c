// The manual: a chapter for every command, texts that name what there is, examples that are
// understood.
#include "qdclgl/cli/manual.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <regex>
#include <set>
#include <sstream>

#include "qdclgl/cli/program.h"
#include "qdclgl/server/server.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

std::vector<std::string> Matches(const std::string& text, const std::string& pattern) {
  std::vector<std::string> found;
  const std::regex expression(pattern);
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
       ++match) {
    found.push_back((*match)[1]);
  }
  return found;
}

// The words of a shell's command line behind the program's name.
std::vector<std::string> Words(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream text(line.substr(line.find("qdclgl ") + 7));
  for (std::string word; text >> word && word != "|";) {
    const std::size_t quote = word.find('"');
    if (quote != word.npos) {
      word.erase(quote, 1);
      std::string rest;
      if (!word.ends_with('"')) {
        std::getline(text, rest, '"');
      } else {
        word.pop_back();
      }
      word += rest;
    }
    words.push_back(word);
  }
  return words;
}

class Manual : public ::testing::Test {
 protected:
  std::set<std::string> Commands() const {
    std::set<std::string> names;
    for (const CLI::App* command : program_.app().get_subcommands({})) {
      names.insert(command->get_name());
    }
    return names;
  }
  const CLI::App& Command(const std::string& name) const {
    return *program_.app().get_subcommand(name);
  }

  const Folder folder_;
  const Console nowhere_{std::cout, std::cerr};
  const Program program_{nowhere_};
};

TEST_F(Manual, HasAChapterForEveryCommandButTheListsAndForNothingElse) {
  std::set<std::string> chapters, expected = Commands();
  for (const ManualGroup& group : ManualGroups()) {
    for (const Chapter& chapter : group.chapters) {
      EXPECT_TRUE(chapters.emplace(chapter.name).second) << chapter.name << " twice";
      EXPECT_NE(chapter.text, "");
    }
  }
  for (const server::ServerComponent& component : server::ServerComponents()) {
    if (component.list == nullptr) continue;
    const std::string name(component.list->name);
    if (Command(name).get_group() == ListsTitle()) expected.erase(name);
  }
  EXPECT_EQ(chapters, expected);
}

TEST_F(Manual, HasEveryCommandInTheGuideToTheCommandLineToo) {
  const std::string guide = ReadFile(QDCLGL_SOURCE_DIR "/docs/cli.md");
  for (const std::string& command : Commands()) {
    EXPECT_TRUE(std::regex_search(guide, std::regex("(`|qdclgl )" + command + "[` \n]")))
        << command;
  }
}

TEST_F(Manual, NamesNoOptionAndNoCommandThatIsNotThere) {
  for (const std::string& command : Commands()) {
    for (const std::string& code : Matches(ManualText(command), "`([^`]*)`")) {
      const std::string first = code.substr(0, code.find(' '));
      // An option is the command's own, or stands behind the name of another one.
      const std::string owner = Commands().contains(first) ? first : command;
      for (const std::string& option : Matches(code, "(--[a-z-]+)")) {
        EXPECT_NE(Command(owner).get_option_no_throw(option), nullptr) << command << ": " << code;
      }
    }
  }
}

TEST_F(Manual, LinesFitAScreenOfEightyColumns) {
  const auto expect_narrow = [](const Chapter& chapter) {
    std::istringstream lines{std::string(chapter.text)};
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(line.size(), 84u) << chapter.name << ": " << line;
      EXPECT_EQ(std::ranges::count(line, '`') % 2, 0) << chapter.name << ": " << line;
    }
  };
  for (const ManualGroup& group : ManualGroups()) {
    for (const Chapter& chapter : group.chapters) expect_narrow(chapter);
  }
  for (const Chapter& topic : Topics()) expect_narrow(topic);
}

TEST_F(Manual, ExamplesAreCommandLinesThatAreUnderstood) {
  int count = 0;
  for (const std::string& command : Commands()) {
    const std::string text = ManualText(command);
    const std::size_t begin = text.find("\nExamples:\n");
    if (begin == text.npos) continue;
    for (const std::string& line : Matches(text.substr(begin), "\n  ([^\n]*)")) {
      ++count;
      Program fresh(nowhere_);
      std::vector<std::string> words = Words(line);
      EXPECT_TRUE(Commands().contains(words.front())) << line;
      std::reverse(words.begin(), words.end());
      EXPECT_NO_THROW(fresh.app().parse(std::move(words))) << line;
    }
  }
  EXPECT_GT(count, 40);
}

TEST_F(Manual, TopicsAreNoCommandsAndTellEveryExitCodeAndVariable) {
  for (const Chapter& topic : Topics()) {
    EXPECT_FALSE(Commands().contains(std::string(topic.name)));
    EXPECT_EQ(RunInProcess({"help", std::string(topic.name)}).out, std::string(topic.text) + "\n");
    EXPECT_NE(program_.app().get_footer().find(topic.name), std::string::npos) << topic.name;
  }
  const std::string codes(TopicNamed("exit-codes")->text);
  for (int code = 0; code <= kBadFile; ++code) {
    EXPECT_NE(codes.find("`" + std::to_string(code) + "`: "), std::string::npos) << code;
  }
  const std::string variables(TopicNamed("environment")->text);
  for (const char* name : {"QDCLGL_BOOK", "QDCLGL_USER", "QDCLGL_PASSWORD", "QDCLGL_NEW_PASSWORD",
                           "QDCLGL_NEGATIVE", "NO_COLOR", "PAGER", "VISUAL", "EDITOR"}) {
    EXPECT_NE(variables.find("`" + std::string(name) + "`"), std::string::npos) << name;
  }
  EXPECT_EQ(TopicNamed("balance"), nullptr);
}

TEST_F(Manual, HelpShowsCommandsByGroupsAndTextsBeforeOptions) {
  const std::string help = RunInProcess({"help"}).out;
  std::size_t at = 0;
  for (const ManualGroup& group : ManualGroups()) {
    EXPECT_NE(help.find("\n" + group.title + ":\n"), help.npos) << group.title;
  }
  EXPECT_NE(help.find("\n" + ListsTitle() + ":\n"), help.npos);
  EXPECT_EQ(help.find("Subcommands"), help.npos);

  const std::string close = RunInProcess({"help", "close"}).out;
  for (const std::string& part :
       {std::string("Usage: qdclgl close "), ManualText("close"), std::string("Options:")}) {
    at = close.find(part, at);
    ASSERT_NE(at, close.npos) << part << close;
  }
  EXPECT_NE(RunInProcess({"help", "groups"}).out.find("A short form of `list`"), std::string::npos);
}

}  // namespace
}  // namespace qdclgl::cli::testing
