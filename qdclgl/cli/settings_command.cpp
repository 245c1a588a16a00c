// The settings of the books: listed with what they mean, set and reset.
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/nearest.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kProfile = "QDSVBase.SystemProfile";
constexpr const char *kSet = "set", *kReset = "reset";

struct SettingsOptions {
  Login login;
  Format format = Format::kPlain;
  std::vector<std::string> words;  // behind BOOK: nothing, a category, set KEY VALUE or reset KEY
};

std::string Text(const Dictionary& row, std::string_view key) {
  return row.Value(key).As<String>();
}

std::string FullName(const Dictionary& row) {
  return Text(row, "FCategory") + "." + Text(row, "FKey");
}

std::vector<Ref<Dictionary>> Settings(const std::string& props) {
  std::vector<Ref<Dictionary>> settings;
  const auto rows = CreateObject(kProfile)->Call("ListSettings", props).As<Recordset>();
  for (; !rows->Eof(); rows->MoveNext()) settings.push_back(rows->Row());
  return settings;
}

// By its name with the category or without, case ignored. A misspelt one would be kept and do
// nothing, so what is neither known nor set is refused.
Ref<Dictionary> SettingNamed(const std::string& props, const std::string& name) {
  const std::vector<Ref<Dictionary>> settings = Settings(props);
  std::vector<std::string> names;
  for (const Ref<Dictionary>& row : settings) {
    if (EqualsIgnoringAsciiCase(FullName(*row), name)) return row;
  }
  for (const Ref<Dictionary>& row : settings) {
    if (EqualsIgnoringAsciiCase(Text(*row, "FKey"), name)) return row;
    names.push_back(name.find('.') == name.npos ? Text(*row, "FKey") : FullName(*row));
  }
  const std::vector<std::string_view> words(names.begin(), names.end());
  throw UsageError("there is no setting " + Quoted(name) + DidYouMean(name, words));
}

int Put(const std::string& props, const Dictionary& row, const std::string& value,
        const Console& console) {
  CreateObject(kProfile)->Call("SetProfile", props, Text(row, "FCategory"), Text(row, "FKey"),
                               value);
  console.out << FullName(row) << (value.empty() ? " is not set" : " is " + OneLine(value))
              << (value.ends_with('.') ? "\n" : ".\n");
  return kDone;
}

int List(const std::string& props, const SettingsOptions& options, const Console& console) {
  const std::string category = options.words.empty() ? "" : options.words.front();
  TableWriter table(console, options.format,
                    {"FCategory", "FKey", "FValue", "FDefault", "FRange", "FMeaning"});
  bool has_rows = false;
  for (const Ref<Dictionary>& row : Settings(props)) {
    if (!category.empty() && !EqualsIgnoringAsciiCase(category, Text(*row, "FCategory"))) continue;
    std::vector<Variant> cells;
    for (const char* key : {"FCategory", "FKey", "FValue", "FDefault", "FRange", "FMeaning"}) {
      cells.push_back(row->Value(key));
    }
    table.Row(cells);
    has_rows = true;
  }
  if (!has_rows) throw UsageError("there are no settings of category " + Quoted(category));
  table.Finish();
  return kDone;
}

int RunSettings(const SettingsOptions& options, const Console& console) {
  const std::vector<std::string>& words = options.words;
  const std::string deed = words.empty() ? "" : words.front();
  if (deed == kSet ? words.size() != 3 : deed == kReset ? words.size() != 2 : words.size() > 1) {
    throw UsageError("settings takes set KEY VALUE, reset KEY, or a category");
  }
  const std::string props = options.login.Open();
  if (deed != kSet && deed != kReset) return List(props, options, console);
  const Ref<Dictionary> row = SettingNamed(props, words[1]);
  return Put(props, *row, deed == kSet ? words[2] : Text(*row, "FDefault"), console);
}

// "set" and "reset" are never books; another lone word is a category where the books are told.
bool IsDeed(const std::string& first, const std::vector<std::string>& rest) {
  return first == kSet || first == kReset || (rest.empty() && !BookFromEnvironment().empty());
}

}  // namespace

void AddSettingsCommand(Program& program) {
  const auto options = std::make_shared<SettingsOptions>();
  const Command command = program.AddForWords(
      "settings", "Lists, sets or resets the settings of the books", options->login, options->words,
      {"CATEGORY | set KEY VALUE | reset KEY",
       "The settings of one category; a new value; what holds without one", IsDeed},
      [options, &program] { return RunSettings(*options, program.console()); });
  AddFormat(command, options->format);
}

}  // namespace qdclgl::cli
