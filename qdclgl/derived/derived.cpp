#include "qdclgl/derived/derived.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <stdexcept>

#include "python/core/stub.h"
#include "qdclgl/api/api_table.h"
#include "qdclgl/derived/reference.h"
#include "qdclgl/server/server.h"

namespace qdclgl::derived {

namespace fs = std::filesystem;

namespace {

std::string ReadText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(path.string() + " can't be read");
  return {std::istreambuf_iterator<char>(file), {}};
}

// The files below a folder with one of these endings, by their paths below the root.
std::vector<std::string> FilesBelow(const fs::path& root, const std::string& folder,
                                    const std::string& ending) {
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
    if (entry.path().extension() == ending) {
      files.push_back(fs::relative(entry.path(), root).generic_string());
    }
  }
  std::ranges::sort(files);
  return files;
}

std::vector<std::string> Found(const fs::path& root, const std::string& file,
                               const std::regex& pattern) {
  const std::string text = ReadText(root / file);
  std::vector<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match) {
    found.push_back((*match)[1]);
  }
  return found;
}

// ---- From the sources ----

// The classes of a subsystem's header, in their order.
struct ClassHeader {
  std::string file;
  std::string folder;  // "accounts"
  std::vector<std::string> classes;
};

std::vector<ClassHeader> ClassHeaders(const fs::path& root) {
  // These have no public classes of the library, but for those that the class list names by hand.
  static const std::regex kOthers("qdclgl/((api|automation|cli|frame|server)/.*|[^/]*)");
  static const std::regex kClass("\n  QD_MEMBERS\\((\\w+),");
  std::vector<ClassHeader> headers;
  for (const std::string& file : FilesBelow(root, "qdclgl", ".h")) {
    if (std::regex_match(file, kOthers)) continue;
    const std::size_t begin = file.find('/') + 1;
    ClassHeader header{file, file.substr(begin, file.find('/', begin) - begin),
                       Found(root, file, kClass)};
    if (!header.classes.empty()) headers.push_back(std::move(header));
  }
  return headers;
}

std::string Includes(const std::vector<ClassHeader>& headers) {
  std::string text;
  for (const ClassHeader& header : headers) text += "#include \"" + header.file + "\"\n";
  return text;
}

std::string ClassTables(const std::vector<ClassHeader>& headers) {
  std::string text;
  for (const ClassHeader& header : headers) {
    for (const std::string& name : header.classes) text += "      &" + name + "::Table(),\n";
  }
  return text;
}

std::string ClassesByFolder(const std::vector<ClassHeader>& headers) {
  std::map<std::string, std::string> folders;
  for (const ClassHeader& header : headers) {
    for (const std::string& name : header.classes) {
      std::string& names = folders[header.folder];
      names += (names.empty() ? "`" : ", `") + name + "`";
    }
  }
  std::string text;
  for (const auto& [folder, names] : folders) text += "- `" + folder + "/`: " + names + "\n";
  return text;
}

std::string Kinds(const fs::path& root) {
  static const std::regex kKind("\nconst MasterData& (\\w+)\\(\\) \\{");
  std::string declarations, addresses;
  for (const std::string& file : FilesBelow(root, "qdclgl/server", ".cpp")) {
    for (const std::string& kind : Found(root, file, kKind)) {
      declarations += "const MasterData& " + kind + "();\n";
      addresses += "      &" + kind + "(),\n";
    }
  }
  return declarations +
         "\nstd::span<const MasterData* const> MasterDataKinds() {\n"
         "  static const std::array kKinds = {\n" +
         addresses + "  };\n  return kKinds;\n}\n";
}

// A program as a guide shows it.
std::string Program(const fs::path& root, const std::string& file) {
  return "```cpp\n" + ReadText(root / file) + "```\n";
}

// ---- From the program ----

// "reader: `GetList`; administrator: `Create`, `Update`", without methods where all are alike.
std::string RightsText(const server::ServerComponent& component) {
  std::vector<std::pair<std::string, std::string>> groups;  // who, methods
  for (const ClassMember& member : component.table->members()) {
    const auto right =
        std::ranges::find(component.rights, member.row.name, &server::MethodRight::method);
    const std::string who = right == component.rights.end()
                                ? "everybody"
                                : server::RolesText(static_cast<unsigned>(right->right.role));
    auto group = std::ranges::find(groups, who, &std::pair<std::string, std::string>::first);
    if (group == groups.end()) group = groups.insert(groups.end(), {who, ""});
    group->second += (group->second.empty() ? "`" : ", `") + std::string(member.row.name) + "`";
  }
  if (groups.size() == 1) return groups[0].first;
  std::string text;
  for (const auto& [who, methods] : groups) {
    text += (text.empty() ? "" : "; ") + who + ": " + methods;
  }
  return text;
}

std::string ComponentTable() {
  std::string text = "| Component | | Who may call it |\n| --- | --- | --- |\n";
  for (const server::ServerComponent& component : server::ServerComponents()) {
    text += "| `" + std::string(component.prog_id) + "` | " + std::string(component.table->help()) +
            " | " + RightsText(component) + " |\n";
  }
  return text;
}

// Where a part's text begins and ends in its file.
struct Span {
  std::size_t begin, end;
};

Span SpanOf(const std::string& text, const Part& part) {
  if (part.name.empty()) return {0, text.size()};
  const std::size_t mark = text.find("BEGIN " + part.name + " ");
  const std::size_t end_mark = text.find("END " + part.name, mark);
  if (mark == text.npos || end_mark == text.npos) {
    throw std::runtime_error(part.file + " lacks the marks BEGIN " + part.name + " and END " +
                             part.name);
  }
  return {text.find('\n', mark) + 1, text.rfind('\n', end_mark) + 1};
}

}  // namespace

std::vector<Part> DerivedParts(const fs::path& root) {
  const std::vector<ClassHeader> headers = ClassHeaders(root);
  std::vector<Part> parts = {
      {"qdclgl/qdclgl.h", "headers", Includes(headers)},
      {"qdclgl/api/class_list.cpp", "classes", ClassTables(headers)},
      {"qdclgl/server/records/kinds.cpp", "kinds", Kinds(root)},
      {"README.md", "classes", ClassesByFolder(headers)},
      {"docs/api.tsv", "", ApiTable()},
      {"docs/server.md", "components", ComponentTable()},
      {"docs/guides/first-program.md", "program", Program(root, "examples/keep_books.cpp")},
      {"docs/guides/own-component.md", "program", Program(root, "examples/own_component.cpp")},
      {"python/qdclgl/_core.pyi", "", python::StubText()},
  };
  std::ranges::move(ReferencePages(root), std::back_inserter(parts));
  return parts;
}

std::string CommittedText(const fs::path& root, const Part& part) {
  const std::string text = ReadText(root / part.file);
  const Span span = SpanOf(text, part);
  return text.substr(span.begin, span.end - span.begin);
}

void Write(const fs::path& root, const Part& part) {
  std::string text = part.name.empty() ? "" : ReadText(root / part.file);
  const Span span = SpanOf(text, part);
  text.replace(span.begin, span.end - span.begin, part.text);
  if (part.name.empty()) fs::create_directories((root / part.file).parent_path());
  std::ofstream file(root / part.file, std::ios::binary);
  if (!(file << text).flush()) throw std::runtime_error(part.file + " can't be written");
}

}  // namespace qdclgl::derived
