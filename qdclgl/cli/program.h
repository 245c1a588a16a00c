// The program's command line: its commands, what they share, and a run.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/cli/command.h"
#include "qdclgl/cli/console.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/frame/objects/variant.h"

namespace qdclgl::cli {

// One run, `arguments` without the program's name. Everything that can go wrong ends in one line on
// console.err and an exit code.
int Run(const std::vector<std::string>& arguments, const Console& console);

// Which books, and who works on them.
struct Login {
  std::string book;
  std::string user;  // "" for whoever is logged in to them, or else the usual one

  // Makes the server's components known and goes on with what `login` has begun, or else logs in
  // for this run. Returns the PropsString.
  std::string Open() const;
  std::string OpenAnew(const std::string& password) const;
  std::string UserName() const;
  // Without the login, for what is done to the books as a whole.
  void StartServer() const;
  static std::string Password();
};

// What a command of any family is made with.
class Program {
 public:
  // With the command that is wanted, where it is known already, and those beside it in its family;
  // with all commands otherwise. All of them have more than 500 options, which take longer to make
  // than most commands to run.
  explicit Program(const Console& console, std::string_view wanted = "");
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  const Console& console() const { return console_; }
  CLI::App& app() { return *app_; }
  const CLI::App& app() const { return *app_; }

  // A command. `run` gives the exit code; it runs once the whole command line is understood.
  Command Add(const std::string& name, const std::string& help, std::function<int()> run);
  // A command that works on books: with BOOK and --user, which come into `login`.
  Command AddForBooks(const std::string& name, const std::string& help, Login& login,
                      std::function<int()> run);
  // A command that is told by words what to do with books: with them behind BOOK as well. A first
  // word for which `is_word` is true, asked along with those behind it, is one of them already, and
  // the books are those that QDCLGL_BOOK names.
  struct Words {
    const char* name;
    const char* help;
    std::function<bool(const std::string& first, const std::vector<std::string>& rest)> is_word;
  };
  Command AddForWords(const std::string& name, const std::string& help, Login& login,
                      std::vector<std::string>& words, Words description, std::function<int()> run);
  // A command that works on vouchers of books: with ID... as well. A first word that is a whole
  // number is an id.
  Command AddForVouchers(const std::string& name, const std::string& help, Login& login,
                         std::vector<Long>& ids, std::function<int()> run);

  // The command that the command line asks for. UsageError when BOOK is missing.
  int RunChosen();

 private:
  void AddCommands(std::string_view wanted);
  // How the output of a command that prints tables looks.
  void AddLook(const Command& command);
  void TakeLook();

  Console console_;
  std::unique_ptr<CLI::App> app_;
  std::string colour_ = "auto";
  bool no_pager_ = false;
  std::function<int()> chosen_;
};

// The books that QDCLGL_BOOK names, "" for none; who works on them by QDCLGL_USER.
std::string BookFromEnvironment();
std::string UserFromEnvironment();

// What a run without a command prints: what one would do next with these books.
int PrintStartPage(const Console& console);

// A text as a filter holds it: in quotes, a quote inside doubled.
std::string FilterText(std::string_view text);
// A day likewise.
std::string FilterDay(DateTime day);

// Whether a word is an id of a voucher, and words as ids.
bool IsID(std::string_view word);
std::vector<Long> IDsOf(const std::vector<std::string>& words);

// BOOK, which is what QDCLGL_BOOK names where none is given.
void AddBook(const Command& command, Login& login);
// --csv and --json.
void AddFormat(const Command& command, Format& format);

// The families of commands, each in the file of that name.
void AddBooksCommands(Program& program);
void AddBackupCommands(Program& program);
void AddLoginCommands(Program& program);
void AddImportCommand(Program& program);
void AddFormatsCommand(Program& program);
void AddExportCommand(Program& program);
void AddListCommands(Program& program);
// `list`, or the short form of one list alone, if there is one of this name.
bool AddListCommand(Program& program, std::string_view name);
void AddRecordCommands(Program& program);
void AddVoucherCommands(Program& program);
void AddEntryCommands(Program& program);
void AddEditCommand(Program& program);
void AddBalanceCommand(Program& program);
void AddLedgerCommand(Program& program);
void AddStatementCommand(Program& program);
void AddFindCommand(Program& program);
void AddOpenCommand(Program& program);
void AddCashFlowCommand(Program& program);
void AddResultCommands(Program& program);
void AddBudgetCommand(Program& program);
void AddRatesCommand(Program& program);
void AddRevalueCommand(Program& program);
void AddReportCommand(Program& program);
void AddSettingsCommand(Program& program);
void AddUserCommand(Program& program);
void AddApiCommand(Program& program);
void AddCompleteCommand(Program& program);
void AddHelpCommand(Program& program);

}  // namespace qdclgl::cli
