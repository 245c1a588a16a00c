// A text that somebody changes in an editor, until it is taken or given up.
#pragma once

#include <string>
#include <vector>

#include "qdclgl/cli/progress.h"

namespace qdclgl::cli {

class EditedText {
 public:
  // Lines that begin with "#" tell what the others are; whoever reads the text finds them empty.
  explicit EditedText(const std::string& text);
  // The file goes away with it, unless it is kept.
  ~EditedText();
  EditedText(const EditedText&) = delete;
  EditedText& operator=(const EditedText&) = delete;

  // Opens the editor that VISUAL or EDITOR names. False when it was left with the text as it had
  // been shown. Error when the editor fails.
  bool Edit();
  // Writes what is wrong below the lines where it is.
  void Show(const std::vector<Report>& reports);
  // A file with the text as others read it, comments empty.
  std::string FileToRead() const;
  // Leaves the file where it is, and says where.
  std::string Keep();

 private:
  std::string Path() const { return folder_ + "/voucher.csv"; }
  std::string Read() const;
  void Write(const std::string& text);

  std::string folder_;
  std::string shown_;
  bool is_kept_ = false;
};

}  // namespace qdclgl::cli
