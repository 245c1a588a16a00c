#include "qdclgl/cli/output_file.h"

#include <filesystem>

#include "qdclgl/server/db/path_text.h"

namespace qdclgl::cli {

namespace fs = std::filesystem;
using server::PathOf;

namespace {

[[noreturn]] void RefuseToOverwrite(const std::string& path) {
  throw FileError(path + " is there already; --force writes over it");
}

}  // namespace

void RequireFree(const std::string& path, Overwriting overwriting) {
  std::error_code unknown;
  if (overwriting == Overwriting::kRefused && fs::exists(PathOf(path), unknown))
    RefuseToOverwrite(path);
}

void MoveInto(const std::string& path, const std::string& from, Overwriting overwriting) {
  std::error_code error;
  if (overwriting == Overwriting::kRefused) {
    // A second name for the file is refused where there is one already; a move would not be.
    fs::create_hard_link(PathOf(from), PathOf(path), error);
    if (error == std::errc::file_exists) RefuseToOverwrite(path);
    if (!error) fs::remove(PathOf(from), error);
    else fs::rename(PathOf(from), PathOf(path), error);
  } else {
    fs::rename(PathOf(from), PathOf(path), error);
  }
  if (error) throw FileError(path + " can't be written: " + error.message());
}

OutputFile::OutputFile(std::string path, Overwriting overwriting, const Console& console)
    : path_(std::move(path)),
      part_(path_ + ".part"),
      overwriting_(overwriting),
      out_(IsOwnOutput() ? console.out : file_) {
  if (IsOwnOutput()) return;
  RequireFree(path_, overwriting_);
  file_.open(PathOf(part_), std::ios::binary | std::ios::trunc);
  if (!file_) throw FileError(path_ + " can't be written");
}

OutputFile::~OutputFile() {
  if (!file_.is_open()) return;
  file_.close();
  std::error_code ignored;
  fs::remove(PathOf(part_), ignored);
}

void OutputFile::Finish() {
  if (IsOwnOutput()) return;
  file_.flush();
  if (!file_) throw FileError(path_ + " can't be written to its end");
  file_.close();
  MoveInto(path_, part_, overwriting_);
}

}  // namespace qdclgl::cli
