// A file that is there as a whole or not at all: it is written beside its place and moved there at
// the end. "-" is the program's own output.
#pragma once

#include <fstream>
#include <string>

#include "qdclgl/cli/console.h"

namespace qdclgl::cli {

// What may happen to a file that stands in the place of a new one.
enum class Overwriting : bool { kRefused, kAllowed };

inline constexpr std::string_view kOwnOutput = "-";

// FileError, with the option that allows it, when there is such a file and it has to stay.
void RequireFree(const std::string& path, Overwriting overwriting);
// Moves a file into its place; one that came there meanwhile stays where it has to. FileError.
void MoveInto(const std::string& path, const std::string& from, Overwriting overwriting);

class OutputFile {
 public:
  OutputFile(std::string path, Overwriting overwriting, const Console& console);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::ostream& out() { return out_; }
  // FileError when something could not be written.
  void Finish();

 private:
  bool IsOwnOutput() const { return path_ == kOwnOutput; }

  std::string path_, part_;
  Overwriting overwriting_;
  std::ofstream file_;
  std::ostream& out_;
};

}  // namespace qdclgl::cli
