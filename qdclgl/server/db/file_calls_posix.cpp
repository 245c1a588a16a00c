#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "qdclgl/server/db/file_calls.h"

namespace qdclgl::server {

namespace {

std::error_code LastFailure() { return {errno, std::generic_category()}; }

}  // namespace

std::optional<FileMark> MarkOf(const std::string& path) {
  struct stat state {};
  if (::stat(path.c_str(), &state) != 0 || !S_ISREG(state.st_mode)) return std::nullopt;
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return FileMark{state.st_dev, state.st_ino, static_cast<std::uint64_t>(state.st_size),
                  state.st_mtim.tv_sec * kNanoseconds + state.st_mtim.tv_nsec};
}

bool CanWrite(const std::string& path) { return ::access(path.c_str(), W_OK) == 0; }

std::string MakeFileBeside(const std::string& beginning, std::error_code& failure) {
  std::string path = beginning + "XXXXXX";
  // Nobody else's to read from its first byte on.
  const int descriptor = ::mkostemp(path.data(), O_CLOEXEC);
  if (descriptor < 0) failure = LastFailure();
  else ::close(descriptor);
  return path;
}

void RemoveFile(const std::string& path) { ::unlink(path.c_str()); }

std::error_code MoveToFreeName(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
  if (errno == EEXIST) return LastFailure();
  // Not every file system knows that way; this one leaves a name to be taken away.
  if (::link(from.c_str(), to.c_str()) != 0) return LastFailure();
  RemoveFile(from);
  return {};
}

void FlushFolder(const std::string& folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace qdclgl::server
