#include "tests/server/faults/unsynced_writes.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace qdclgl::server::testing {

UnsyncedWrites::UnsyncedWrites(const std::string& path)
    : descriptor_(open(path.c_str(), O_RDWR | O_CLOEXEC)) {
  if (descriptor_ < 0 || fstat(descriptor_, &identity_) != 0) {
    throw std::runtime_error("the file can't be watched: " + path);
  }
}

bool UnsyncedWrites::IsOf(const std::string& path) const {
  struct stat other {};
  return stat(path.c_str(), &other) == 0 && other.st_dev == identity_.st_dev &&
         other.st_ino == identity_.st_ino;
}

void UnsyncedWrites::NoteWrite(std::int64_t at, const void* bytes, std::size_t count) {
  Note({static_cast<std::size_t>(at), std::string(static_cast<const char*>(bytes), count)});
}

void UnsyncedWrites::NoteTruncation(std::int64_t size) {
  Note({static_cast<std::size_t>(size), std::nullopt});
}

void UnsyncedWrites::Note(Change change) {
  if (!synced_) {
    synced_ = Content();
    changes_.clear();
  }
  changes_.push_back(std::move(change));
}

std::string UnsyncedWrites::Content() const {
  struct stat now {};
  fstat(descriptor_, &now);
  std::string content(static_cast<std::size_t>(now.st_size), '\0');
  if (pread(descriptor_, content.data(), content.size(), 0) != now.st_size) {
    throw std::runtime_error("a watched file can't be read");
  }
  return content;
}

void UnsyncedWrites::LosePower(Survivors survivors, std::mt19937& random) {
  if (!synced_) return;
  // How much of each change is there, in halves.
  std::vector<unsigned> halves(changes_.size(), 0);
  if (survivors == Survivors::kAllAndHalfOfTheLast) {
    std::ranges::fill(halves, 2u);
    halves.back() = 1;
  } else if (survivors == Survivors::kAny) {
    for (unsigned& half : halves) half = static_cast<unsigned>(random() % 3);
  }
  std::string content = *synced_;
  for (std::size_t i = 0; i < changes_.size(); ++i) {
    const auto& [at, bytes] = changes_[i];
    if (!bytes) {
      if (halves[i] == 2) content.resize(at);
      continue;
    }
    const std::size_t count = bytes->size() * halves[i] / 2;
    if (count == 0) continue;
    if (content.size() < at + count) content.resize(at + count);
    content.replace(at, count, *bytes, 0, count);
  }
  if (ftruncate(descriptor_, 0) != 0 || pwrite(descriptor_, content.data(), content.size(), 0) !=
                                            static_cast<ssize_t>(content.size())) {
    throw std::runtime_error("a watched file can't be written");
  }
}

}  // namespace qdclgl::server::testing
