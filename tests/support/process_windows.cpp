#include <windows.h>

#include <cstdlib>
#include <stdexcept>

#include "qdclgl/frame/platform/wide_text.h"
#include "tests/support/process.h"

namespace qdclgl::testing {

int ProcessId() { return static_cast<int>(GetCurrentProcessId()); }

// An empty value would take the variable out of the environment of the runtime library, which is
// what programs are started with and what this one reads.
void SetVariable(const std::string& name, const std::string& value) {
  if (value.empty()) throw std::logic_error("no variable is empty here: " + name);
  _wputenv((ToWide(name) + L"=" + ToWide(value)).c_str());
}

void UnsetVariable(const std::string& name) { _wputenv((ToWide(name) + L"=").c_str()); }

namespace {

// What the process ends with when it is killed; no program here ends with that itself.
constexpr UINT kKilledCode = 0x4B494C4C;

// As programs take a command line apart again.
std::wstring CommandLine(const std::vector<std::string>& words) {
  std::wstring line;
  for (const std::string& word : words) {
    if (!line.empty()) line += L' ';
    line += L'"';
    std::size_t backslashes = 0;
    for (const wchar_t c : ToWide(word)) {
      // Those before a quotation mark stand for half of them.
      if (c == L'"') line.append(backslashes + 1, L'\\');
      backslashes = c == L'\\' ? backslashes + 1 : 0;
      line += c;
    }
    line.append(backslashes, L'\\');
    line += L'"';
  }
  return line;
}

HANDLE Opened(const std::string& file) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE opened =
      CreateFileW(ToWide(file).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (opened == INVALID_HANDLE_VALUE) throw std::runtime_error("can't be written: " + file);
  return opened;
}

}  // namespace

struct Process::Handle {
  PROCESS_INFORMATION process{};

  ~Handle() {
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
};

Process::Process(const std::vector<std::string>& words, const std::string& out_file,
                 const std::string& err_file)
    : handle_(std::make_unique<Handle>()) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = INVALID_HANDLE_VALUE;
  startup.hStdOutput = Opened(out_file);
  const HANDLE errors = err_file.empty() ? nullptr : Opened(err_file);
  startup.hStdError = errors != nullptr ? errors : GetStdHandle(STD_ERROR_HANDLE);
  std::wstring line = CommandLine(words);
  const BOOL started = CreateProcessW(ToWide(words.front()).c_str(), line.data(), nullptr, nullptr,
                                      TRUE, 0, nullptr, nullptr, &startup, &handle_->process);
  CloseHandle(startup.hStdOutput);
  if (errors != nullptr) CloseHandle(errors);
  if (!started) throw std::runtime_error("can't be started: " + words.front());
}

Process::Process(Process&&) noexcept = default;
Process::~Process() = default;

int Process::Id() const { return static_cast<int>(handle_->process.dwProcessId); }

void Process::Kill() { TerminateProcess(handle_->process.hProcess, kKilledCode); }

bool Process::IsRunning() {
  return WaitForSingleObject(handle_->process.hProcess, 0) == WAIT_TIMEOUT;
}

int Process::Wait() {
  WaitForSingleObject(handle_->process.hProcess, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(handle_->process.hProcess, &code);
  return code == kKilledCode ? kKilled : static_cast<int>(code);
}

}  // namespace qdclgl::testing
