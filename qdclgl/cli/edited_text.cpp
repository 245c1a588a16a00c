#include "qdclgl/cli/edited_text.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "qdclgl/cli/system_calls.h"
#include "qdclgl/server/db/path_text.h"

namespace qdclgl::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kComment = "#", kReport = "#   ^ ";

std::string Editor() {
  for (const char* variable : {"VISUAL", "EDITOR"}) {
    const auto editor = Environment(variable);
    if (editor && !editor->empty()) return *editor;
  }
  return kUsualEditor;
}

// A folder that nobody else can look into.
std::string NewFolder() {
  std::random_device random;
  for (;;) {
    const fs::path folder = fs::temp_directory_path() / ("qdclgl-edit-" + std::to_string(random()));
    std::error_code error;
    if (fs::create_directory(folder, error)) {
      fs::permissions(folder, fs::perms::owner_all);
      return server::TextOf(folder);
    }
    if (error) throw FileError(server::TextOf(folder) + " can't be made: " + error.message());
  }
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

}  // namespace

EditedText::EditedText(const std::string& text) : folder_(NewFolder()) { Write(text); }

EditedText::~EditedText() {
  std::error_code ignored;
  if (!is_kept_) fs::remove_all(server::PathOf(folder_), ignored);
}

std::string EditedText::Read() const {
  std::ifstream file(server::PathOf(Path()), std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file) throw FileError(Path() + " can't be read");
  return text.str();
}

void EditedText::Write(const std::string& text) {
  std::ofstream file(server::PathOf(Path()), std::ios::binary);
  file << text << std::flush;
  if (!file) throw FileError(Path() + " can't be written");
  shown_ = text;
}

bool EditedText::Edit() {
  if (!RunWithFile(Editor(), Path())) {
    throw std::runtime_error("the editor (" + Editor() + ") failed");
  }
  return Read() != shown_;
}

void EditedText::Show(const std::vector<Report>& reports) {
  const std::vector<std::string> lines = LinesOf(Read());
  std::string text;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (!lines[i].starts_with(kReport)) text += lines[i] + "\n";
    for (const Report& report : reports) {
      if (report.at.line != static_cast<long>(i) + 1) continue;
      text.append(kReport).append("column " + std::to_string(report.at.column) + ": " +
                                  OneLine(report.reason) + "\n");
    }
  }
  Write(text);
}

std::string EditedText::FileToRead() const {
  const std::string path = folder_ + "/read.csv";
  std::ofstream file(server::PathOf(path), std::ios::binary);
  for (const std::string& line : LinesOf(Read())) {
    file << (line.starts_with(kComment) ? "" : line) << '\n';
  }
  file.flush();
  if (!file) throw FileError(path + " can't be written");
  return path;
}

std::string EditedText::Keep() {
  is_kept_ = true;
  std::error_code ignored;
  fs::remove(server::PathOf(folder_ + "/read.csv"), ignored);
  return Path();
}

}  // namespace qdclgl::cli
