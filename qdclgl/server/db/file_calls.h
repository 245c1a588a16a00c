// What the file of books asks of the operating system; one source for each system. Paths are UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

namespace qdclgl::server {

// What tells that a file is still the one that was looked at, with the content it had.
struct FileMark {
  std::uint64_t device = 0, inode = 0, size = 0;
  std::int64_t changed = 0;  // in the system's smallest unit

  friend bool operator==(const FileMark&, const FileMark&) = default;
};

// Nothing when there is no such file.
std::optional<FileMark> MarkOf(const std::string& path);

// Whether this process may write to the file, or make files in the folder.
bool CanWrite(const std::string& path);

// Makes a file whose name begins like this and is nobody else's, and returns its path; `failure` is
// set when there can be none.
std::string MakeFileBeside(const std::string& beginning, std::error_code& failure);

void RemoveFile(const std::string& path);

// Gives a file a name that no other has; std::errc::file_exists when one has it.
std::error_code MoveToFreeName(const std::string& from, const std::string& to);

// Sees to it that a name in the folder lasts, where the system lets a program ask for that.
void FlushFolder(const std::string& folder);

}  // namespace qdclgl::server
