#include "qdclgl/server/db/books_file.h"

#include "qdclgl/server/db/path_text.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr const char* kLog = "-wal";
constexpr const char* kLogIndex = "-shm";

std::string FolderOf(const std::string& path) {
  const std::string folder = TextOf(PathOf(path).parent_path());
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
    std::error_code unknown;  // a name may be too long for a look
    const bool is_folder = std::filesystem::is_directory(PathOf(path), unknown);
    Refuse(refusal::kNoBooks, is_folder ? path + " is a folder and no file of books."
                                        : "There is no file " + path + ".");
  }
  return *mark;
}

[[noreturn]] void RefuseToMake(const std::string& place, const std::error_code& failure) {
  if (failure == std::errc::no_such_file_or_directory) {
    Refuse(refusal::kNoBooks, "There is no folder " + FolderOf(place) + " for the books.");
  }
  if (failure == std::errc::file_exists) {
    Refuse(refusal::kBooksExist, "There is a file " + place + " already.");
  }
  Refuse(refusal::kDatabaseFailed,
         "The file " + place + " can't be made: " + failure.message() + ".");
}

}  // namespace

BooksFile::BooksFile(std::string path)
    : path_(std::move(path)), mark_(RequiredMark(path_)), access_(AccessTo(path_)) {}

bool BooksFile::IsAsBefore() const { return MarkOf(path_) == mark_ && AccessTo(path_) == access_; }

NewBooksFile::NewBooksFile(const std::string& place) : place_(place) {
  std::error_code failure;
  std::string path = MakeFileBeside(place_ + ".new-", failure);
  if (failure) RefuseToMake(place_, failure);
  path_ = std::move(path);
}

NewBooksFile::~NewBooksFile() {
  if (path_.empty()) return;
  for (const char* ending : {"", "-journal", kLog, kLogIndex}) RemoveFile(path_ + ending);
}

void NewBooksFile::PutInPlace() {
  const std::error_code failure = MoveToFreeName(path_, place_);
  if (failure) RefuseToMake(place_, failure);
  path_.clear();
  FlushFolder(FolderOf(place_));
}

}  // namespace qdclgl::server
