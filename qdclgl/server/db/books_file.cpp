#include "qdclgl/server/db/books_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr const char* kLog = "-wal";
constexpr const char* kLogIndex = "-shm";

// Nothing when there is no such file.
std::optional<FileMark> MarkOf(const std::string& path) {
  struct stat state {};
  if (::stat(path.c_str(), &state) != 0 || !S_ISREG(state.st_mode)) return std::nullopt;
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return FileMark{state.st_dev, state.st_ino, static_cast<std::uint64_t>(state.st_size),
                  state.st_mtim.tv_sec * kNanoseconds + state.st_mtim.tv_nsec};
}

bool CanWrite(const std::string& path) { return ::access(path.c_str(), W_OK) == 0; }

std::string FolderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

bool HasSavesBeside(const std::string& path) {
  const std::optional<FileMark> log = MarkOf(path + kLog);
  return log && log->size > 0;
}

BooksFile::Access AccessTo(const std::string& path) {
  using enum BooksFile::Access;
  const bool others_are_at_work = CanWrite(path + kLog) && CanWrite(path + kLogIndex);
  if (CanWrite(path) && (CanWrite(FolderOf(path)) || others_are_at_work)) return kWrite;
  if (!HasSavesBeside(path)) return kFrozen;
  if (MarkOf(path + kLogIndex)) return kRead;
  Refuse(refusal::kDatabaseFailed, "Saves of " + path + " stand in " + path + kLog +
                                       "; only who may write there can open the books.");
}

FileMark RequiredMark(const std::string& path) {
  const std::optional<FileMark> mark = MarkOf(path);
  if (!mark) {
    const bool is_folder = std::filesystem::is_directory(path);
    Refuse(refusal::kNoBooks, is_folder ? path + " is a folder and no file of books."
                                        : "There is no file " + path + ".");
  }
  return *mark;
}

[[noreturn]] void RefuseToMake(const std::string& place) {
  const std::string reason = std::strerror(errno);
  if (errno == ENOENT) {
    Refuse(refusal::kNoBooks, "There is no folder " + FolderOf(place) + " for the books.");
  }
  if (errno == EEXIST) Refuse(refusal::kBooksExist, "There is a file " + place + " already.");
  Refuse(refusal::kDatabaseFailed, "The file " + place + " can't be made: " + reason + ".");
}

// A name that has become another one lasts once its folder is written.
void Flush(const std::string& folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

BooksFile::BooksFile(std::string path)
    : path_(std::move(path)), mark_(RequiredMark(path_)), access_(AccessTo(path_)) {}

bool BooksFile::IsAsBefore() const { return MarkOf(path_) == mark_ && AccessTo(path_) == access_; }

NewBooksFile::NewBooksFile(const std::string& place) : place_(place), path_(place + ".new-XXXXXX") {
  // Made under no other's name, and nobody else's to read from its first byte on.
  const int descriptor = ::mkostemp(path_.data(), O_CLOEXEC);
  if (descriptor < 0) RefuseToMake(place_);
  ::close(descriptor);
}

NewBooksFile::~NewBooksFile() {
  if (path_.empty()) return;
  for (const char* ending : {"", "-journal", kLog, kLogIndex}) {
    ::unlink((path_ + ending).c_str());
  }
}

void NewBooksFile::PutInPlace() {
  if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, place_.c_str(), RENAME_NOREPLACE) == 0) {
    path_.clear();
  } else if (errno == EEXIST || ::link(path_.c_str(), place_.c_str()) != 0) {
    // Not every file system knows the first way; the second leaves a name to be taken away.
    RefuseToMake(place_);
  }
  Flush(FolderOf(place_));
}

}  // namespace qdclgl::server
