// The manual: what `help` and the man pages tell of a command beyond its options. Paragraphs are
// parted by empty lines; lines that begin with a blank stand as they are, and words between
// backticks are to be typed.
#pragma once

#include <CLI/CLI.hpp>
#include <span>
#include <string>
#include <string_view>

namespace qdclgl::cli {

struct Chapter {
  std::string_view name;  // of the command or the topic
  std::string_view text;
};

// Commands that the help shows together.
struct ManualGroup {
  std::string title;
  std::span<const Chapter> chapters;
};

std::span<const ManualGroup> ManualGroups();
// The group of the commands without a chapter: a short form for each list of the books.
std::string ListsTitle();

// What is told once for all commands: `help NAME`, and a section of the program's man page. The
// first line of a topic's text is its title.
std::span<const Chapter> Topics();
const Chapter* TopicNamed(std::string_view name);

// A command's text. It has one.
std::string ManualText(std::string_view command);

// Names the options that exclude one by their names: the library has them in the order of their
// addresses, which is another one in every run.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override;
};

// Puts the commands into their groups, and their texts into their helps.
void AddManual(CLI::App& app);

}  // namespace qdclgl::cli
