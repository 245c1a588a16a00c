// What a power failure may take from a file: everything that was written since it was last synced,
// and any part of it.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace qdclgl::server::testing {

// Which of the unsynced writes are on the disk when the power is back.
enum class Survivors {
  kNone,
  kAllAndHalfOfTheLast,
  kAny,  // and half of some, in whatever order the disk took them
};

class UnsyncedWrites {
 public:
  // Of a file that is there. Its descriptor stays open, as the end of one would end all locks that
  // this process has on the file.
  explicit UnsyncedWrites(const std::string& path);
  bool IsOf(const std::string& path) const;

  // Called before the file changes.
  void NoteWrite(std::int64_t at, const void* bytes, std::size_t count);
  void NoteTruncation(std::int64_t size);
  void NoteSync() { synced_.reset(); }

  // Gives the file the content that it has once the power is back.
  void LosePower(Survivors survivors, std::mt19937& random);

 private:
  struct Change {
    std::size_t at;
    std::optional<std::string> bytes;  // nothing: the file ends there
  };

  void Note(Change change);
  std::string Content() const;

  int descriptor_;
  struct stat identity_ {};
  std::optional<std::string> synced_;  // the content when it was last synced; nothing: as it is
  std::vector<Change> changes_;        // since then
};

}  // namespace qdclgl::server::testing
