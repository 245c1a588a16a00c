// What could stand in the place of a word of a command line: the one home of what shells complete.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <initializer_list>

#include "qdclgl/api/class_list.h"
#include "qdclgl/cli/item_classes.h"
#include "qdclgl/cli/kept_formats.h"
#include "qdclgl/cli/listing.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/record_kinds.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/path_text.h"

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
      if (words[i].find('=') != std::string::npos ||
          std::filesystem::exists(server::PathOf(words[i]))) {
        return words[i];
      }
    }
    return BookFromEnvironment();
  }
};

// ---- From the books ----

// The PropsString of the books that the command line names; "" where it names none.
std::string PropsOf(const CommandLine& line) {
  Login login;
  login.book = line.Book();
  login.user = UserFromEnvironment();
  return login.book.empty() ? "" : login.Open();
}

// What a list has under two of its columns; nothing where the books can't be opened.
Candidates FromBooks(const CommandLine& line, std::string_view list, std::string_view word,
                     std::string_view help) {
  Candidates candidates;
  const std::string props = PropsOf(line);
  if (props.empty()) return candidates;
  const Ref<Recordset> rows = FetchList(*FindList(list), props, {});
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

Candidates Formats(const CommandLine& line) {
  Candidates candidates;
  const std::string props = PropsOf(line);
  if (props.empty()) return candidates;
  for (const auto& [name, format] : KeptFormats(props)) candidates.push_back({name});
  return candidates;
}

// Their keys alone, or their categories.
Candidates Settings(const CommandLine& line, std::string_view column, std::string_view help) {
  Candidates candidates;
  const std::string props = PropsOf(line);
  if (props.empty()) return candidates;
  const auto rows =
      CreateObject("QDSVBase.SystemProfile")->Call("ListSettings", props).As<Recordset>();
  for (; !rows->Eof(); rows->MoveNext()) {
    const Ref<Dictionary> row = rows->Row();
    Candidate setting{row->Value(column).As<String>(),
                      help.empty() ? "" : row->Value(help).As<String>()};
    if (candidates.empty() || candidates.back().word != setting.word) {
      candidates.push_back(std::move(setting));
    }
  }
  return candidates;
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
  if (option == "--undo") return FromBooks(line, "imports", "FNumber", "FName");
  if (option == "--class" || option == "--by") return ItemClasses(line, "");
  if (option == "--item") return ItemClasses(line, "=");
  if (option == "--account" || option == "--columns" || option == "--line") return Accounts(line);
  return {};
}

bool IsOneOf(const std::string& word, std::initializer_list<std::string_view> words) {
  return std::ranges::find(words, word) != words.end();
}

// The word before the last one.
const std::string& Before(const CommandLine& line) { return line.words[line.words.size() - 2]; }

// What follows one of a command's deeds, or otherwise comes before it.
template <class Behind, class Otherwise>
Candidates OfDeeds(const CommandLine& line, std::initializer_list<std::string_view> deeds,
                   Behind behind, Otherwise otherwise) {
  if (IsOneOf(Before(line), deeds)) return behind();
  const bool is_told = std::any_of(line.words.begin() + 1, line.words.end() - 1,
                                   [&](const std::string& word) { return IsOneOf(word, deeds); });
  return is_told ? Candidates() : otherwise();
}

bool TakesValue(const CLI::App& command, const std::string& name) {
  const CLI::Option* option = name.empty() ? nullptr : command.get_option_no_throw(name);
  return option != nullptr && option->get_type_size() != 0;
}

// What a word is that belongs to no option.
Candidates WordsOf(const CLI::App& command, const CommandLine& line) {
  const std::string& name = line.command();
  if (name == "api") return ClassNames();
  if (name == "list") return ListNames();
  if (name == "formats") {
    if (Before(line) == "add") return {};
    return OfDeeds(
        line, {"show", "remove"}, [&] { return Formats(line); },
        [] {
          return Candidates{{"add"}, {"show"}, {"remove"}};
        });
  }
  if (name == "settings") {
    return OfDeeds(
        line, {"set", "reset"}, [&] { return Settings(line, "FKey", "FMeaning"); },
        [&] {
          Candidates words = Settings(line, "FCategory", "");
          words.insert(words.begin(), {{"set"}, {"reset"}});
          return words;
        });
  }
  if (name == "rates") return Records(line, KindNamed("currencies"));
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
  if (line.command() == "import" && line.option() == "--format") {
    Candidates formats = Formats(line);
    formats.insert(formats.begin(), {std::string(kFoundFormat), "found in the file"});
    return formats;
  }
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
      &program
           .Add("complete", "Tells shells what a command line's last word could be",
                [line, &program] { return PrintCandidates(*line, program.console()); })
           .parser();
  // All words are those of the command line that is to be completed, options too.
  command->prefix_command();
  command->parse_complete_callback([command, line] {
    line->words = command->remaining();
    if (line->words.empty()) line->words.emplace_back();
  });
}

}  // namespace qdclgl::cli
