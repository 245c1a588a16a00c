// The formats of other programs' files: listed, kept and taken away.
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/kept_formats.h"
#include "qdclgl/cli/program.h"

namespace qdclgl::cli {

namespace {

constexpr const char *kAdd = "add", *kShow = "show", *kRemove = "remove";

struct FormatsOptions {
  Login login;
  Format format = Format::kPlain;
  std::vector<std::string> words;  // behind BOOK: nothing, add NAME WORD..., show or remove NAME
};

int List(const FormatsOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  TableWriter table(console, options.format, {"FName", "FFormat"});
  table.IfEmpty("No formats are kept; qdclgl import --format auto finds out what a file is like.");
  for (const auto& [name, format] : KeptFormats(props)) {
    std::string words = format.ToText();
    for (char& c : words) {
      if (c == '\n') c = ' ';
    }
    table.Row({name, words});
  }
  table.Finish();
  return kDone;
}

int Keep(const FormatsOptions& options, const Console& console) {
  const std::string& name = options.words[1];
  if (name == kFoundFormat) throw UsageError("auto is the format that is found in the file");
  const FileFormat format = FileFormat::FromWords({options.words.begin() + 2, options.words.end()});
  KeepFormat(options.login.Open(), {name, format});
  console.out << "Format " << OneLine(name) << " is kept.\n";
  return kDone;
}

int ShowOrRemove(const FormatsOptions& options, const Console& console) {
  const std::string& name = options.words[1];
  const std::string props = options.login.Open();
  const FileFormat format = KeptFormat(props, name);
  if (options.words[0] == kShow) {
    console.out << format.ToText() << '\n';
    return kDone;
  }
  RemoveFormat(props, name);
  console.out << "Format " << OneLine(name) << " is removed.\n";
  return kDone;
}

int RunFormats(const FormatsOptions& options, const Console& console) {
  const std::vector<std::string>& words = options.words;
  if (words.empty()) return List(options, console);
  if (words[0] == kAdd && words.size() > 2) return Keep(options, console);
  if ((words[0] == kShow || words[0] == kRemove) && words.size() == 2) {
    return ShowOrRemove(options, console);
  }
  throw UsageError("formats takes add NAME COLUMN=HEADING..., show NAME or remove NAME");
}

// These words are never books.
bool IsDeed(const std::string& first, const std::vector<std::string>&) {
  return first == kAdd || first == kShow || first == kRemove;
}

}  // namespace

void AddFormatsCommand(Program& program) {
  const auto options = std::make_shared<FormatsOptions>();
  const Command command = program.AddForWords(
      "formats", "Lists, keeps or removes formats of other programs' files", options->login,
      options->words,
      {"add NAME COLUMN=HEADING... | show NAME | remove NAME",
       "separator=, decimal=, dates=, and the headings of the journal's columns, of amount, "
       "debit_account and credit_account; =VALUE in place of a heading is the same in all rows",
       IsDeed},
      [options, &program] { return RunFormats(*options, program.console()); });
  AddFormat(command, options->format);
}

}  // namespace qdclgl::cli
