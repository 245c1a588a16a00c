// The file of SQLite books: how this process can get at it, and how a new one comes to be.
#pragma once

#include <string>

#include "qdclgl/server/db/file_calls.h"

namespace qdclgl::server {

class BooksFile {
 public:
  // kWrite asks for what writing needs: the file, and the two files beside it that all who have the
  // books open share. Who lacks that reads: with the others when they are at work (kRead), or, when
  // nobody is, the file as it stands (kFrozen), and makes sure that it does stand.
  enum class Access { kWrite, kRead, kFrozen };

  // NoBooks when there is no file. DatabaseFailed when saves wait beside it that can't be read
  // without writing.
  explicit BooksFile(std::string path);

  const std::string& path() const { return path_; }
  Access access() const { return access_; }
  // Whether another look would find the same; of a file that can be written nobody asks.
  bool IsAsBefore() const;

 private:
  std::string path_;
  FileMark mark_;
  Access access_;
};

// A new file under a name of its own, beside the place where books are to be. It goes away unless
// it is put in that place; nothing that stands there is ever touched.
class NewBooksFile {
 public:
  // DatabaseFailed where no file can be made.
  explicit NewBooksFile(const std::string& place);
  ~NewBooksFile();
  NewBooksFile(const NewBooksFile&) = delete;
  NewBooksFile& operator=(const NewBooksFile&) = delete;

  const std::string& path() const { return path_; }
  // BooksExist when something stands there by now.
  void PutInPlace();

 private:
  std::string place_;
  std::string path_;
};

}  // namespace qdclgl::server
