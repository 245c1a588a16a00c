#include <windows.h>

#include <random>

#include "qdclgl/server/db/file_calls.h"
#include "qdclgl/server/db/path_text.h"

namespace qdclgl::server {

namespace {

std::wstring Wide(const std::string& path) { return PathOf(path).wstring(); }

class File {
 public:
  // Others go on with the file as if nobody looked at it.
  File(const std::string& path, DWORD access, DWORD manner)
      : handle_(CreateFileW(Wide(path).c_str(), access,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, manner,
                            FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {}
  ~File() {
    if (IsOpen()) CloseHandle(handle_);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE handle() const { return handle_; }

 private:
  HANDLE handle_;
};

constexpr std::uint64_t Joined(DWORD high, DWORD low) { return (std::uint64_t{high} << 32) | low; }

std::error_code LastFailure() {
  const DWORD code = GetLastError();
  switch (code) {
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS: return std::make_error_code(std::errc::file_exists);
    case ERROR_PATH_NOT_FOUND: return std::make_error_code(std::errc::no_such_file_or_directory);
    default: return {static_cast<int>(code), std::system_category()};
  }
}

}  // namespace

std::optional<FileMark> MarkOf(const std::string& path) {
  const File file(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING);
  BY_HANDLE_FILE_INFORMATION state{};
  if (!file.IsOpen() || !GetFileInformationByHandle(file.handle(), &state) ||
      (state.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return std::nullopt;
  }
  const FILETIME& changed = state.ftLastWriteTime;
  return FileMark{state.dwVolumeSerialNumber, Joined(state.nFileIndexHigh, state.nFileIndexLow),
                  Joined(state.nFileSizeHigh, state.nFileSizeLow),
                  static_cast<std::int64_t>(Joined(changed.dwHighDateTime, changed.dwLowDateTime))};
}

// Only an attempt tells what the lists of rights come to.
bool CanWrite(const std::string& path) {
  static_assert(FILE_WRITE_DATA == FILE_ADD_FILE);  // a file's and a folder's word for it
  return File(path, FILE_WRITE_DATA, OPEN_EXISTING).IsOpen();
}

// Who may read it is what the folder hands down to its files.
std::string MakeFileBeside(const std::string& beginning, std::error_code& failure) {
  std::random_device random;
  while (true) {
    const std::string path = beginning + std::to_string(random());
    const File file(path, GENERIC_WRITE, CREATE_NEW);
    if (file.IsOpen()) return path;
    failure = LastFailure();
    if (failure != std::errc::file_exists) return path;
    failure.clear();
  }
}

void RemoveFile(const std::string& path) { DeleteFileW(Wide(path).c_str()); }

std::error_code MoveToFreeName(const std::string& from, const std::string& to) {
  const bool moved =
      MoveFileExW(Wide(from).c_str(), Wide(to).c_str(), MOVEFILE_WRITE_THROUGH) != FALSE;
  return moved ? std::error_code() : LastFailure();
}

// The move itself was written through; a folder can't be.
void FlushFolder(const std::string&) {}

}  // namespace qdclgl::server
