// What the command line asks of the operating system; one source for each system. Texts are UTF-8,
// whatever the machine's code page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace qdclgl::cli {

inline constexpr int kStandardInput = 0, kStandardOutput = 1, kStandardError = 2;

// What a program does first: from now on a reader that goes away ends no process. Returns the
// arguments that `main` was called with, without the program's name.
std::vector<std::string> BeginProgram(int count, char** arguments);

// Nothing for a variable that is not set.
std::optional<std::string> Environment(const char* variable);

// A number that no other process of the machine has now.
std::string ProcessMark();

bool IsTerminal(int descriptor);

struct Terminal {
  std::size_t width = 80;
  std::size_t height = 24;
  bool has_unicode = false;
  bool obeys_escapes = false;  // sequences for colours and the like
};

// Nothing when the descriptor is no terminal.
std::optional<Terminal> TerminalOf(int descriptor);

enum class Writing { kDone, kNobodyReads, kFailed };

// Writes a text of whole characters to its end.
Writing Write(int descriptor, std::string_view text);

// Whether the first word of a command is a program.
bool CanRun(const std::string& command);

// A line that is typed at the terminal behind a question, and not shown there.
std::string ReadHidden(std::ostream& out, std::string_view question);

// Takes a file or folder from everybody but the person it belongs to. On Windows a person's own
// folder is theirs by the rights that it inherits, and nothing is done.
void MakePrivate(const std::filesystem::path& path, std::error_code& error);
// Whether nobody else can get at it.
bool IsPrivate(const std::filesystem::path& path);

// A program that shows by the page what is written to its descriptor.
class Pager {
 public:
  explicit Pager(const std::string& command);
  // Waits until its reader is done; an interrupt is the pager's meanwhile, which decides what ends.
  ~Pager();
  Pager(const Pager&) = delete;
  Pager& operator=(const Pager&) = delete;

  // None when it can't be started.
  std::optional<int> descriptor() const { return descriptor_; }

 private:
  std::optional<int> descriptor_;
  std::intptr_t process_ = 0;
};

// The editor that every machine has.
extern const char* const kUsualEditor;

// Whether the command went well with the file as its last argument.
bool RunWithFile(const std::string& command, const std::string& path);

}  // namespace qdclgl::cli
