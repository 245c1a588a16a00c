// The program's manifest makes UTF-8 its code page, so that arguments, environment and names of
// files are UTF-8 without a word here.
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdlib>

#include "qdclgl/cli/system.h"

namespace qdclgl::cli {

void PrepareStandardStreams() {
  // Lines end as they do everywhere, so that a table is the same byte for byte.
  for (const int descriptor : {1, 2}) _setmode(descriptor, _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
}

bool IsTerminal(int descriptor) { return _isatty(descriptor) != 0; }

ScreenSize ScreenSizeOf(int descriptor) {
  const auto console = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!GetConsoleScreenBufferInfo(console, &info)) return {};
  return {info.srWindow.Right - info.srWindow.Left + 1,
          info.srWindow.Bottom - info.srWindow.Top + 1};
}

bool HasUnicode() { return GetConsoleOutputCP() == CP_UTF8; }

const std::string_view kUsualEditor = "notepad";

// The command interpreter takes off the outermost quotes.
bool RunEditor(const std::string& editor, const std::string& path) {
  return std::system(("\"" + editor + " \"" + path + "\"\"").c_str()) == 0;
}

// A console is read by scrolling back.
std::optional<std::string> Pager::Command() { return std::nullopt; }
std::optional<int> Pager::Start(const std::string&) { return std::nullopt; }
void Pager::Wait() { process_ = 0; }

}  // namespace qdclgl::cli
