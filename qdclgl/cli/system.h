// What the command line asks of the operating system beyond the library's platform: one source for
// each system.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qdclgl::cli {

// Before anything is read or written: texts and bytes go through as they are, and a reader that
// goes away ends nothing.
void PrepareStandardStreams();

// Whether a person is at the other end of a descriptor.
bool IsTerminal(int descriptor);

struct ScreenSize {
  std::size_t width = 80, height = 24;
};
// The usual size where the terminal doesn't tell its own.
ScreenSize ScreenSizeOf(int descriptor);

// Whether the terminal's texts are UTF-8.
bool HasUnicode();

// What people edit a text with who have not chosen anything.
extern const std::string_view kUsualEditor;
// Runs an editor with a file until it is closed; false when it fails.
bool RunEditor(const std::string& editor, const std::string& path);

// A program that shows a text page by page.
class Pager {
 public:
  // The reader's own, or the usual one; nothing where there is none.
  static std::optional<std::string> Command();

  // The descriptor that the text goes to; nothing when it can't be started.
  std::optional<int> Start(const std::string& command);
  // Ends the text and waits until the reader is done with it.
  void Wait();
  bool IsRunning() const { return process_ > 0; }

 private:
  int process_ = 0, descriptor_ = -1;
};

}  // namespace qdclgl::cli
