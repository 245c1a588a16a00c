#include "qdclgl/cli/usage.h"

#include <algorithm>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/console.h"
#include "qdclgl/cli/nearest.h"

namespace qdclgl::cli {

namespace {

bool IsOption(std::string_view word) { return word.size() > 1 && word.starts_with('-'); }

std::string Meant(std::string_view word, const std::vector<std::string>& names) {
  const std::vector<std::string_view> views(names.begin(), names.end());
  return DidYouMean(word, views);
}

std::vector<std::string> OptionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back(name);
  }
  return names;
}

// The command that was asked for, or the program itself.
const CLI::App& Chosen(const CLI::App& app) {
  const auto commands = app.get_subcommands();
  return commands.empty() ? app : *commands.front();
}

// "; did you mean --year?", or nothing: what options have in common is not compared.
std::string MeantOption(std::string_view word, const CLI::App& command) {
  word.remove_prefix(std::min(word.find_first_not_of('-'), word.size()));
  std::string meant = Meant(word, OptionNames(command));
  if (!meant.empty()) meant.insert(meant.rfind(' ') + 1, "--");
  return meant;
}

// Words that nothing takes, those behind a "--" with the program. A misspelt option takes its value
// along, so it is told first.
std::string Surplus(const CLI::App& app, const CLI::App& command) {
  const std::vector<std::string> words = app.remaining(true);
  const auto option = std::ranges::find_if(words, IsOption);
  if (option != words.end()) {
    const std::string name = option->substr(0, option->find('='));
    return command.get_name() + " has no option " + OneLine(name) + MeantOption(name, command);
  }
  return command.get_name() + " doesn't know what to do with " +
         (words.empty() ? "some of its words" : Quoted(words.front()));
}

}  // namespace

std::vector<std::string> CommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

CLI::App& CommandNamed(CLI::App& app, const std::string& name) {
  for (CLI::App* command : app.get_subcommands({})) {
    if (command->get_name() == name) return *command;
  }
  throw UsageError("there is no command " + Quoted(name) + Meant(name, CommandNames(app)));
}

void CheckCommandWord(CLI::App& app, const std::vector<std::string>& words) {
  const std::string& first = words.front();
  if (!IsOption(first)) {
    CommandNamed(app, first);
    return;
  }
  if (app.get_option_no_throw(first) != nullptr) return;
  throw UsageError("the command stands in front of its options, and " + OneLine(first) +
                   " is no option of qdclgl itself" + MeantOption(first, app));
}

std::string UsageSentence(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App& command = Chosen(app);
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) return Surplus(app, command);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string text = error.what();  // begins with the option's name
    const std::string name = text.substr(0, text.find(':'));
    if (const CLI::Option* option = command.get_option_no_throw(name)) {
      return name + " needs " + option->get_type_name() + " behind it";
    }
  }
  return OneLine(error.what());
}

}  // namespace qdclgl::cli
