#include "qdclgl/cli/program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/kept_login.h"
#include "qdclgl/cli/manual.h"
#include "qdclgl/cli/output.h"
#include "qdclgl/cli/system_calls.h"
#include "qdclgl/cli/usage.h"
#include "qdclgl/cli/version_text.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/server.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kBookVariable = "QDCLGL_BOOK";
constexpr const char* kUserVariable = "QDCLGL_USER";
constexpr const char* kPasswordVariable = "QDCLGL_PASSWORD";
constexpr const char* kNegativeVariable = "QDCLGL_NEGATIVE";
constexpr const char* kUsualUser = "administrator";
constexpr const char* kSession = "QDSVGLSession.SessionUpdate";

constexpr const char* kFooter =
    R"(BOOK is a SQLite file, or a connection text such as
"Provider=PostgreSQL;Host=ledger;Initial catalog=books;"; without it QDCLGL_BOOK
is taken. The password comes from QDCLGL_PASSWORD, or `qdclgl login` was given it
for all commands that follow.

`qdclgl help COMMAND` tells a command's options, and `qdclgl help TOPIC` of:
output, files, environment, exit-codes.)";

// A word in brackets would be taken for a list of words; with a mark in front it is one word, which
// every option then has without the mark.
constexpr char kOneWordMark = '\x1F';

std::string Marked(const std::string& word) {
  const bool is_list = word.starts_with('[') && word.ends_with(']');
  return is_list ? kOneWordMark + word : word;
}

std::string Unmarked(const std::string& word) {
  return word.starts_with(kOneWordMark) ? word.substr(1) : word;
}

void TakeUnmarkedWords(CLI::App& command) {
  for (CLI::Option* option : command.get_options({})) {
    option->transform([](const std::string& word) { return Unmarked(word); }, "");
  }
}

std::string FromEnvironment(const char* variable) { return Environment(variable).value_or(""); }

// What the help says of an option that is not given. The parser itself would read the variable in
// the machine's code page.
std::string TextFrom(const char* variable) { return "TEXT (Env:" + std::string(variable) + ")"; }

Negatives NegativesFromEnvironment() {
  const std::string wanted = FromEnvironment(kNegativeVariable);
  if (wanted == "parentheses") return Negatives::kParentheses;
  if (wanted.empty() || wanted == "minus") return Negatives::kMinus;
  throw UsageError(std::string(kNegativeVariable) + " is minus or parentheses, not " +
                   Quoted(wanted));
}

struct Family {
  void (*add)(Program&);
  std::vector<std::string_view> commands;  // none of the lists, which the server names
};

const std::vector<Family>& Families() {
  static const std::vector<Family> kFamilies = {
      {AddBooksCommands, {"init", "upgrade", "close", "reopen", "doctor"}},
      {AddBackupCommands, {"backup", "restore"}},
      {AddLoginCommands, {"login", "logout"}},
      {AddImportCommand, {"import"}},
      {AddFormatsCommand, {"formats"}},
      {AddExportCommand, {"export"}},
      {AddListCommands, {}},
      {AddRecordCommands, {"kinds", "show", "add", "set", "remove"}},
      {AddVoucherCommands,
       {"voucher", "check", "uncheck", "approve", "unapprove", "cash", "uncash", "post", "unpost"}},
      {AddEntryCommands, {"new", "copy", "reverse"}},
      {AddEditCommand, {"edit"}},
      {AddBalanceCommand, {"balance"}},
      {AddLedgerCommand, {"ledger"}},
      {AddStatementCommand, {"statement"}},
      {AddFindCommand, {"find"}},
      {AddOpenCommand, {"open"}},
      {AddCashFlowCommand, {"cashflow"}},
      {AddResultCommands, {"income", "position"}},
      {AddBudgetCommand, {"budget"}},
      {AddRatesCommand, {"rates"}},
      {AddRevalueCommand, {"revalue"}},
      {AddReportCommand, {"report"}},
      {AddSettingsCommand, {"settings"}},
      {AddUserCommand, {"user"}},
      {AddApiCommand, {"api"}},
      {AddCompleteCommand, {"complete"}},
      {AddHelpCommand, {"help"}},
  };
  return kFamilies;
}

}  // namespace

void Login::StartServer() const {
  // The program is a client of its own server, so there is nobody to ask about working offline.
  SetApartmentStarted(true);
  server::RegisterServerComponents();
}

std::string Login::Open() const {
  // Who gives a password wants it to be asked for.
  if (!Password().empty()) return OpenAnew(Password());
  const std::optional<KeptLogin> kept = KeptLoginTo(book);
  if (!kept || (!user.empty() && user != kept->user)) return OpenAnew(Password());
  StartServer();
  try {
    return CreateObject(kSession)->Call("Resume", book, kept->ticket).As<String>();
  } catch (const Error& error) {
    if (error.number() == server::refusal::kNotLoggedIn) ForgetLogin(book);
    throw;
  }
}

std::string Login::OpenAnew(const std::string& password) const {
  StartServer();
  return CreateObject(kSession)->Call("Login", book, UserName(), password).As<String>();
}

std::string Login::UserName() const { return user.empty() ? kUsualUser : user; }

std::string Login::Password() { return FromEnvironment(kPasswordVariable); }

Program::Program(const Console& console, std::string_view wanted)
    : console_(console),
      app_(std::make_unique<CLI::App>("The command line of a general ledger.", "qdclgl")) {
  app_->require_subcommand(1);
  app_->allow_windows_style_options(false);  // a word with a slash in front is a path everywhere
  app_->set_version_flag("--version", VersionText());
  app_->footer(kFooter);
  AddCommands(wanted);
  AddManual(*app_);
  for (CLI::App* command : app_->get_subcommands({})) {
    if (command->get_option_no_throw("--json") != nullptr) AddLook(Command(command));
    TakeUnmarkedWords(*command);
  }
}

Program::~Program() = default;

void Program::AddCommands(std::string_view wanted) {
  const auto has_wanted = [wanted](const Family& family) {
    return std::ranges::find(family.commands, wanted) != family.commands.end();
  };
  const auto family = std::ranges::find_if(Families(), has_wanted);
  if (family != Families().end()) return family->add(*this);
  if (AddListCommand(*this, wanted)) return;
  for (const Family& each : Families()) each.add(*this);
}

void Program::AddLook(const Command& command) {
  command.Flag("--keys", console_.look.shows_keys,
               "The columns' keys, which --filter and --sort take, above a table");
  command.Text("--color", colour_, "WHEN", "Colours: never, always, or auto, on a terminal")
      .OneOf({"never", "auto", "always"});
  command.Flag("--no-pager", no_pager_, "Shows long output without a pager");
}

void Program::TakeLook() {
  Look& look = console_.look;
  look.negatives = NegativesFromEnvironment();
  look.has_colour = colour_ == "always" ||
                    (colour_ == "auto" && look.IsTerminal() && look.obeys_escapes &&
                     FromEnvironment("NO_COLOR").empty() && FromEnvironment("TERM") != "dumb");
  look.scales = std::make_shared<CurrencyScales>();
  if (console_.screen != nullptr && look.IsTerminal() && !no_pager_) {
    console_.screen->PageBeyond(look.height - 1);
  }
}

Command Program::Add(const std::string& name, const std::string& help, std::function<int()> run) {
  CLI::App* command = app_->add_subcommand(name, help);
  command->callback([this, run = std::move(run)] { chosen_ = run; });
  return Command(command);
}

Command Program::AddForBooks(const std::string& name, const std::string& help, Login& login,
                             std::function<int()> run) {
  const Command command = Add(name, help, [&login, run = std::move(run)] {
    if (login.book.empty()) {
      throw UsageError(std::string("no BOOK is given, and ") + kBookVariable + " is not set");
    }
    return run();
  });
  AddBook(command, login);
  login.user = UserFromEnvironment();
  command.Text("--user", login.user, "TEXT", "Who works on the books")
      .ShownAs(TextFrom(kUserVariable));
  return command;
}

void AddBook(const Command& command, Login& login) {
  login.book = BookFromEnvironment();
  command.Word("BOOK", login.book, "The books: a SQLite file or a connection text")
      .ShownAs(TextFrom(kBookVariable));
}

Command Program::AddForWords(const std::string& name, const std::string& help, Login& login,
                             std::vector<std::string>& words, Words description,
                             std::function<int()> run) {
  const Command command = AddForBooks(name, help, login, std::move(run));
  command.Words(description.name, words, description.help);
  command.WhenRead([&login, &words, is_word = std::move(description.is_word)] {
    if (login.book.empty() || !is_word(login.book, words)) return;
    words.insert(words.begin(), std::exchange(login.book, BookFromEnvironment()));
  });
  return command;
}

Command Program::AddForVouchers(const std::string& name, const std::string& help, Login& login,
                                std::vector<Long>& ids, std::function<int()> run) {
  const auto words = std::make_shared<std::vector<std::string>>();
  return AddForWords(
      name, help, login, *words,
      {"ID", "Ids of vouchers", [](const std::string& first, const auto&) { return IsID(first); }},
      [&ids, words, run = std::move(run)] {
        ids = IDsOf(*words);
        return run();
      });
}

std::string BookFromEnvironment() { return FromEnvironment(kBookVariable); }

std::string UserFromEnvironment() { return FromEnvironment(kUserVariable); }

std::string FilterText(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted.append(c == '\'' ? 2 : 1, c);
  return quoted + "'";
}

std::string FilterDay(DateTime day) { return "#" + day.ToText() + "#"; }

bool IsID(std::string_view word) {
  return std::ranges::all_of(word, [](char c) { return c >= '0' && c <= '9'; });
}

std::vector<Long> IDsOf(const std::vector<std::string>& words) {
  std::vector<Long> ids;
  for (const std::string& word : words) ids.push_back(WholeOption("ID", word));
  return ids;
}

int Program::RunChosen() {
  TakeLook();
  return chosen_();
}

void AddFormat(const Command& command, Format& format) {
  const Option csv = command.Flag(
      "--csv", [&] { format = Format::kCsv; }, "Prints CSV");
  command
      .Flag(
          "--json", [&] { format = Format::kJson; }, "Prints JSON")
      .Excludes(csv);
}

int Run(const std::vector<std::string>& arguments, const Console& console) {
  const auto fail = [&](const std::string& reason, ExitCode code) {
    console.err << "qdclgl: " << reason << '\n';
    return code;
  };
  Program program(console, arguments.empty() ? "" : arguments.front());
  const auto misused = [&](std::string reason) {
    reason += reason.ends_with('?') ? " See" : "; see";
    const auto commands = program.app().get_subcommands();
    const std::string name = commands.empty() ? "help" : commands.front()->get_name();
    return fail(reason + " qdclgl help" + (name == "help" ? "" : " " + name), kWrongUsage);
  };
  try {
    if (arguments.empty()) return PrintStartPage(console);
    CheckCommandWord(program.app(), arguments);
    std::vector<std::string> words;  // the last one first
    std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(words), Marked);
    program.app().parse(std::move(words));
    const int code = program.RunChosen();
    console.out.flush();
    if (!console.out) throw FileError("the output can't be written");
    return code;
  } catch (const CLI::Success& wanted) {  // --help and --version
    return program.app().exit(wanted, console.out, console.err);
  } catch (const CLI::ParseError& error) {
    return misused(UsageSentence(program.app(), error));
  } catch (const UsageError& error) {
    return misused(error.what());
  } catch (const Error& error) {
    return fail(ErrorText(error), ExitCodeOf(error));
  } catch (const FileError& error) {
    return fail(OneLine(error.what()), kBadFile);
  } catch (const std::exception& error) {
    return fail(OneLine(error.what()), kRefused);
  }
}

}  // namespace qdclgl::cli
