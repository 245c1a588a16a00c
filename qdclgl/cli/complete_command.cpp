// What could stand in the place of a word of a command line: the one home of what shells complete.
#include <algorithm>
#include <filesystem>
#include <initializer_list>

#include "qdclgl/api/class_list.h"
#include "qdclgl/cli/item_classes.h"
#include "qdclgl/cli/listing.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/record_kinds.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

struct Candidate {
  std::string word;
  std::string help = {};
};
using Candidates = std::vector<Candidate>;

// The words behind the program's name; the last one is to be completed.
struct CommandLine {
  std::vector<std::string> words;

  const std::string& command() const { return words.front(); }
  const std::string& current() const { return words.back(); }
  // The word before it, where that is an option.
  std::string option() const {
    const std::string& before = words[words.size() - 2];
    return before.starts_with("--") ? before : "";
  }
  // The first word behind the command that is a kind.
  std::size_t KindPlace() const {
    const auto kind = std::find_if(words.begin() + 1, words.end() - 1, [](const std::string& word) {
      return FindKind(word) != nullptr;
    });
    return static_cast<std::size_t>(kind - words.begin());
  }
  bool HasKind() const { return KindPlace() + 1 < words.size(); }
  const server::MasterData& kind() const { return *FindKind(words[KindPlace()]); }
  // A word that is the name of a file, a connection text, or what the environment says.
  std::string Book() const {
    for (std::size_t i = 1; i + 1 < words.size(); ++i) {
      if (words[i].find('=') != std::string::npos || std::filesystem::exists(words[i])) {
        return words[i];
      }
    }
    return BookFromEnvironment();
  }
};

// ---- From the books ----

// What a list has under two of its columns; nothing where the books can't be opened.
Candidates FromBooks(const CommandLine& line, std::string_view list, std::string_view word,
                     std::string_view help) {
  Candidates candidates;
  Login login;
  login.book = line.Book();
  login.user = UserFromEnvironment();
  if (login.book.empty()) return candidates;
  const Ref<Recordset> rows = FetchList(*FindList(list), login.Open(), {});
  for (; !rows->Eof(); rows->MoveNext()) {
    const auto text = [&](std::string_view column) {
      return CellText(rows->FieldValue(rows->FieldPosition(column)));
    };
    candidates.push_back({text(word), word == help ? "" : text(help)});
  }
  return candidates;
}

Candidates ItemClasses(const CommandLine& line, const std::string& behind) {
  Candidates classes = FromBooks(line, "item-classes", "FNumber", "FName_en");
  for (Candidate& item_class : classes) item_class.word = FoldAsciiCase(item_class.word) + behind;
  return classes;
}

Candidates Records(const CommandLine& line, const server::MasterData& kind) {
  const std::string_view key = kind.description().key.column;
  const bool has_name = server::FindColumn(kind.CallersColumns(), "FName") != nullptr;
  return FromBooks(line, KindName(kind), key, has_name ? "FName" : key);
}

Candidates Accounts(const CommandLine& line) { return Records(line, KindNamed("accounts")); }

// ---- What the program knows ----

Candidates Commands(const CLI::App& app) {
  Candidates candidates;
  for (const CLI::App* command : app.get_subcommands({})) {
    candidates.push_back({command->get_name(), command->get_description()});
  }
  return candidates;
}

Candidates Options(const CLI::App& command) {
  Candidates candidates;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      candidates.push_back({"--" + name, option->get_description()});
    }
  }
  return candidates;
}

Candidates Kinds() {
  Candidates candidates;
  for (const server::MasterData* kind : RecordKinds()) {
    candidates.push_back({std::string(KindName(*kind))});
  }
  return candidates;
}

Candidates Columns(const server::MasterData& kind) {
  Candidates candidates;
  for (const WrittenColumn& column : WrittenColumns(kind)) {
    candidates.push_back({std::string(column.name) + "=", std::string(WordFor(column.type))});
  }
  return candidates;
}

Candidates ListNames() {
  Candidates candidates;
  for (const server::ServerComponent* list : Lists()) {
    candidates.push_back({std::string(list->list->name), std::string(list->list->help)});
  }
  return candidates;
}

Candidates ClassNames() {
  Candidates candidates;
  for (const ClassTable* table : PublicClasses()) {
    candidates.push_back({std::string(table->name()), std::string(table->help())});
  }
  return candidates;
}

// ---- Which of them ----

// What an option takes. Nothing where that is for the person to say.
Candidates ValuesOf(const std::string& option, const CommandLine& line) {
  if (option == "--color") return {{"never"}, {"auto"}, {"always"}};
  if (option == "--side") return {{"debit"}, {"credit"}};
  if (option == "--group") return Records(line, KindNamed("groups"));
  if (option == "--currency" || option == "--currencies") {
    return Records(line, KindNamed("currencies"));
  }
  if (option == "--from-template") return Records(line, KindNamed("templates"));
  if (option == "--class" || option == "--by") return ItemClasses(line, "");
  if (option == "--item") return ItemClasses(line, "=");
  if (option == "--account" || option == "--columns" || option == "--line") return Accounts(line);
  return {};
}

bool TakesValue(const CLI::App& command, const std::string& name) {
  const CLI::Option* option = name.empty() ? nullptr : command.get_option_no_throw(name);
  return option != nullptr && option->get_type_size() != 0;
}

bool IsOneOf(const std::string& word, std::initializer_list<std::string_view> words) {
  return std::ranges::find(words, word) != words.end();
}

// What a word is that belongs to no option.
Candidates WordsOf(const CLI::App& command, const CommandLine& line) {
  const std::string& name = line.command();
  if (name == "api") return ClassNames();
  if (name == "list") return ListNames();
  if (name == "ledger") return Records(line, KindNamed("ledgers"));
  if (command.get_option_no_throw("ACCOUNT") != nullptr) return Accounts(line);
  if (!IsOneOf(name, {"kinds", "show", "add", "set", "remove"})) return {};
  if (!line.HasKind()) return Kinds();
  const bool is_key = line.KindPlace() + 2 == line.words.size();
  if (is_key || IsOneOf(name, {"show", "remove"})) {
    return name == "add" || name == "kinds" ? Candidates() : Records(line, line.kind());
  }
  return Columns(line.kind());
}

Candidates CandidatesFor(const CLI::App& app, const CommandLine& line) {
  if (line.words.size() == 1) return Commands(app);
  const auto commands = app.get_subcommands(
      [&](const CLI::App* command) { return command->get_name() == line.command(); });
  if (commands.empty()) return {};
  if (line.command() == "help") return Commands(app);
  const CLI::App& command = *commands.front();
  if (TakesValue(command, line.option())) return ValuesOf(line.option(), line);
  return line.current().starts_with('-') ? Options(command) : WordsOf(command, line);
}

int PrintCandidates(const CommandLine& line, const Console& console) {
  const Program program(console);
  for (const Candidate& candidate : CandidatesFor(program.app(), line)) {
    if (!candidate.word.starts_with(line.current())) continue;
    console.out << OneLine(candidate.word) << '\t' << OneLine(candidate.help) << '\n';
  }
  return kDone;
}

}  // namespace

void AddCompleteCommand(Program& program) {
  const auto line = std::make_shared<CommandLine>();
  CLI::App* command =
      program.Add("complete", "Tells shells what a command line's last word could be",
                  [line, &program] { return PrintCandidates(*line, program.console()); });
  // All words are those of the command line that is to be completed, options too.
  command->prefix_command();
  command->parse_complete_callback([command, line] {
    line->words = command->remaining();
    if (line->words.empty()) line->words.emplace_back();
  });
}

}  // namespace qdclgl::cli
