#include "qdclgl/derived/reference.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>

#include "qdclgl/api/class_list.h"
#include "qdclgl/api/reference.h"
#include "qdclgl/derived/core_errors.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/server.h"

namespace qdclgl::derived {

namespace fs = std::filesystem;

namespace {

constexpr const char* kFolder = "docs/reference/";

// An example, and what it is called among the pages.
struct Example {
  std::string file;  // "examples/receivables.cpp"
  std::string text;
};

// The programs that tests build and run.
std::vector<Example> Examples(const fs::path& root) {
  std::vector<Example> examples;
  for (const auto& entry : fs::directory_iterator(root / "examples")) {
    if (entry.path().extension() != ".cpp") continue;
    std::ifstream file(entry.path(), std::ios::binary);
    examples.push_back({"examples/" + entry.path().filename().string(),
                        {std::istreambuf_iterator<char>(file), {}}});
  }
  std::ranges::sort(examples, {}, &Example::file);
  return examples;
}

// Splits at empty lines.
std::vector<std::string> Paragraphs(const std::string& text) {
  std::vector<std::string> paragraphs;
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = std::min(text.find("\n\n", begin), text.size());
    paragraphs.push_back(text.substr(begin, end - begin));
    if (paragraphs.back().ends_with('\n')) paragraphs.back().pop_back();
    begin = text.find_first_not_of('\n', end);
  }
  return paragraphs;
}

// Classes that programs never name, and what they write instead.
const std::map<std::string_view, std::string_view> kUnnamed = {
    {"WalkCustomPropertySet",
     "Programs don't make one: a `for` over a [CustomPropertySet](CustomPropertySet.md) walks by "
     "it."}};

const std::string kHeading = "\n## Example\n\n";

// The first paragraph of an example that a pattern is found in, and where the whole of it stands.
std::string ExampleText(const std::vector<Example>& examples, const std::string& pattern) {
  const std::regex wanted(pattern);
  for (const Example& example : examples) {
    for (const std::string& paragraph : Paragraphs(example.text)) {
      if (!std::regex_search(paragraph, wanted)) continue;
      return kHeading + "From [" + example.file + "](../../" + example.file + "):\n\n```cpp\n" +
             paragraph + "\n```\n";
    }
  }
  return "";
}

// An example of a class.
std::string ExampleOf(const std::vector<Example>& examples, const ClassTable& table) {
  const std::string name(table.name());
  const auto unnamed = kUnnamed.find(name);
  if (unnamed != kUnnamed.end()) return kHeading + std::string(unnamed->second) + "\n";
  return ExampleText(examples, "(Make|Ref|As)<" + name + ">");
}

// Who may call a method of a component.
std::string Callers(const server::ServerComponent& component, std::string_view method) {
  const auto right = std::ranges::find(component.rights, method, &server::MethodRight::method);
  return right == component.rights.end()
             ? "everybody"
             : server::RolesText(static_cast<unsigned>(right->right.role));
}

std::string ComponentText(const server::ServerComponent& component) {
  std::string text =
      ReferenceText(*component.table, component.prog_id,
                    [&](std::string_view method) { return Callers(component, method); });
  if (component.list != nullptr) {
    text += "\n`GetList` gives what `qdclgl " + std::string(component.list->name) +
            "` prints: " + std::string(component.list->help) + ".\n";
  }
  return text;
}

std::string ErrorLine(std::string_view number, std::string_view name, std::string_view meaning,
                      std::string_view advice) {
  return "| " + std::string(number) + " | " + std::string(name) + " | " + MarkdownCell(meaning) +
         " | " + MarkdownCell(advice) + " |\n";
}

std::string HexNumber(std::int32_t number) {
  char text[sizeof "0x80044200"];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<std::uint32_t>(number));
  return text;
}

std::string ErrorsText() {
  constexpr const char* kHead =
      "| Number | Name | Meaning | What to do |\n| --- | --- | --- | --- |\n";
  std::string text =
      "# Errors\n\nEvery failure is an error with a number, a source and a description. Numbers "
      "below 65536 are those that automation's clients know.\n\n## Raised by the library\n\n"
      "`error_number::k...` in C++. A setter raises before it stores.\n\n";
  text += kHead;
  for (const CoreError& error : CoreErrors()) {
    text += ErrorLine(error.number > 0 ? std::to_string(error.number) : HexNumber(error.number),
                      error.name, error.meaning, error.advice);
  }
  text +=
      "\n## Refused by the server\n\nThe source is `QDSVGL`, and the sentence names the record and "
      "the reason. A refused call has changed nothing, neither in the books nor in the row that "
      "was sent. In Python each name is an exception.\n\n";
  text += kHead;
  for (const server::RefusalRow& row : server::kRefusals) {
    text += ErrorLine(HexNumber(row.number), row.name, row.meaning, row.advice);
  }
  return text;
}

// "- [Account](Account.md): An account."
std::string IndexLine(std::string_view name, std::string_view help) {
  return "- [" + std::string(name) + "](" + std::string(name) + ".md): " + std::string(help) + "\n";
}

}  // namespace

std::vector<Part> ReferencePages(const fs::path& root) {
  const std::vector<Example> examples = Examples(root);
  std::vector<Part> pages;
  const auto add = [&](std::string_view name, std::string text) {
    pages.push_back({kFolder + std::string(name) + ".md", "", std::move(text)});
  };
  std::string index =
      "# Reference\n\nMade from the rows of classes and components by `scripts/update-derived`; "
      "`qdclgl api CLASS --markdown` prints a class's own. A member with a key reads and writes "
      "the "
      "value under it in the object's row. Where no default is named, an absent, Null or empty key "
      "reads as the zero of the member's type: 0, an empty text, Nothing. A value that is written "
      "and equal to what clears the member removes the key. What a member raises and which methods "
      "of which components it calls stand in its last column; the components themselves are below. "
      "Examples are pieces of the programs in [examples/](../../examples), which the tests build "
      "and run; what they print is kept in [examples/output/](../../examples/output). `props` is "
      "what a login gives, `Row` and `Print` are in [story.h](../../examples/story.h).\n\n"
      "- [errors](errors.md): all numbers, what they mean and what to do\n\n## Classes\n\n";
  for (const ClassTable* table : PublicClasses()) {
    index += IndexLine(table->name(), table->help());
    add(table->name(), ReferenceText(*table) + ExampleOf(examples, *table));
  }
  index += "\n## Server components\n\n";
  for (const server::ServerComponent& component : server::ServerComponents()) {
    index += IndexLine(component.prog_id, component.table->help());
    add(component.prog_id, ComponentText(component) +
                               ExampleText(examples, "\"" + std::string(component.prog_id) + "\""));
  }
  add("errors", ErrorsText());
  add("README", std::move(index));
  return pages;
}

}  // namespace qdclgl::derived
