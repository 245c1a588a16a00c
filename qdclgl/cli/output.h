// The standard output: straight to where it goes, or through a pager where it is longer than a
// screen.
#pragma once

#include <optional>
#include <streambuf>
#include <string>

#include "qdclgl/cli/system_calls.h"

namespace qdclgl::cli {

// A reader that goes away, as a pager that is left or `head`, is no failure: what is left is
// dropped.
class Output : public std::streambuf {
 public:
  explicit Output(int descriptor) : descriptor_(descriptor) {}
  ~Output() override { Finish(); }

  // From now on more than `lines` lines go through the reader's pager, if there is one. A flush
  // before that, as in front of a question, shows what there is and ends it.
  void PageBeyond(std::size_t lines);
  // Shows what is left and waits until the pager is done. False when it can't be written.
  bool Finish();

 protected:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  int sync() override;

 private:
  bool WriteOut();
  void StartPager();

  int descriptor_;
  std::string kept_;
  std::size_t lines_ = 0;
  std::size_t most_lines_ = 0;  // 0: nothing is paged
  std::string pager_;
  std::optional<Pager> running_;
  bool is_left_ = false;  // nobody reads any more
};

}  // namespace qdclgl::cli
