#include <fcntl.h>
#include <io.h>
#include <windows.h>
// The command line is split by the shell's own rules.
#include <shellapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "qdclgl/cli/system_calls.h"
#include "qdclgl/frame/platform/wide_text.h"

namespace qdclgl::cli {

namespace {

HANDLE HandleOf(int descriptor) { return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor)); }

Writing LastFailure() {
  const DWORD code = GetLastError();
  const bool is_left = code == ERROR_BROKEN_PIPE || code == ERROR_NO_DATA;
  return is_left ? Writing::kNobodyReads : Writing::kFailed;
}

// As characters, which a terminal shows whatever its code page.
Writing WriteCharacters(HANDLE terminal, std::string_view text) {
  const std::wstring characters = ToWide(text);
  constexpr std::size_t kMostAtOnce = 8192;  // older systems take no more than 64 KiB
  for (std::size_t i = 0; i < characters.size();) {
    DWORD count = 0;
    const auto size = static_cast<DWORD>(std::min(kMostAtOnce, characters.size() - i));
    if (!WriteConsoleW(terminal, characters.data() + i, size, &count, nullptr))
      return LastFailure();
    i += count;
  }
  return Writing::kDone;
}

// Older terminals show the sequences as they are.
bool ObeysEscapes(HANDLE terminal) {
  DWORD mode = 0;
  return GetConsoleMode(terminal, &mode) &&
         SetConsoleMode(terminal, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

void SetUnlessThere(const char* variable, const wchar_t* value) {
  if (!Environment(variable)) _wputenv((ToWide(variable) + L"=" + value).c_str());
}

}  // namespace

// The narrow arguments are in the machine's code page, which has not every letter.
std::vector<std::string> BeginProgram(int, char**) {
  int count = 0;
  LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> texts;
  for (int i = 1; i < count; ++i) texts.push_back(FromWide(arguments[i]));
  LocalFree(arguments);
  return texts;
}

std::optional<std::string> Environment(const char* variable) {
  const wchar_t* value = _wgetenv(ToWide(variable).c_str());
  if (value == nullptr) return std::nullopt;
  return FromWide(value);
}

std::string ProcessMark() { return std::to_string(GetCurrentProcessId()); }

bool IsTerminal(int descriptor) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(descriptor), &mode) != FALSE;
}

std::optional<Terminal> TerminalOf(int descriptor) {
  if (!IsTerminal(descriptor)) return std::nullopt;
  Terminal terminal;
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (GetConsoleScreenBufferInfo(HandleOf(descriptor), &info)) {
    const SMALL_RECT& window = info.srWindow;
    terminal.width = static_cast<std::size_t>(window.Right - window.Left + 1);
    terminal.height = static_cast<std::size_t>(window.Bottom - window.Top + 1);
  }
  terminal.has_unicode = true;
  terminal.obeys_escapes = ObeysEscapes(HandleOf(descriptor));
  return terminal;
}

Writing Write(int descriptor, std::string_view text) {
  const HANDLE file = HandleOf(descriptor);
  if (IsTerminal(descriptor)) return WriteCharacters(file, text);
  while (!text.empty()) {
    DWORD count = 0;
    if (!WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &count, nullptr)) {
      return LastFailure();
    }
    text.remove_prefix(count);
  }
  return Writing::kDone;
}

std::string ReadHidden(std::ostream& out, std::string_view question) {
  const HANDLE terminal = HandleOf(kStandardInput);
  DWORD before = 0;
  GetConsoleMode(terminal, &before);
  SetConsoleMode(terminal, ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT);
  out << question << std::flush;
  wchar_t characters[512];
  DWORD count = 0;
  const bool is_read = ReadConsoleW(terminal, characters, static_cast<DWORD>(std::size(characters)),
                                    &count, nullptr);
  SetConsoleMode(terminal, before);
  out << '\n';
  std::wstring line(characters, is_read ? count : 0);
  while (line.ends_with(L'\n') || line.ends_with(L'\r')) line.pop_back();
  return FromWide(line.c_str());
}

void MakePrivate(const std::filesystem::path&, std::error_code& error) { error.clear(); }

bool IsPrivate(const std::filesystem::path&) { return true; }

bool CanRun(const std::string& command) {
  const std::wstring word = ToWide(command.substr(0, command.find(' ')));
  return SearchPathW(nullptr, word.c_str(), L".exe", 0, nullptr, nullptr) > 0;
}

Pager::Pager(const std::string& command) {
  // Ends by itself on one screen, shows colours, and leaves what was shown.
  SetUnlessThere("LESS", L"FRX");
  SetUnlessThere("LESSCHARSET", L"utf-8");
  std::FILE* pipe = _wpopen(ToWide(command).c_str(), L"wb");
  if (pipe == nullptr) return;
  process_ = reinterpret_cast<std::intptr_t>(pipe);
  descriptor_ = _fileno(pipe);
}

Pager::~Pager() {
  if (!descriptor_) return;
  SetConsoleCtrlHandler(nullptr, TRUE);
  _pclose(reinterpret_cast<std::FILE*>(process_));
}

const char* const kUsualEditor = "notepad";

// The command interpreter takes the outermost quotes away.
bool RunWithFile(const std::string& command, const std::string& path) {
  return _wsystem(ToWide("\"" + command + " \"" + path + "\"\"").c_str()) == 0;
}

}  // namespace qdclgl::cli
