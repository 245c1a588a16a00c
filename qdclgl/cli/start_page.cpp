// What the program says when it is given no command, and `help`.
#include "qdclgl/cli/man_page.h"
#include "qdclgl/cli/manual.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/usage.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

namespace {

// A command line that somebody may want to type next, and what it does.
struct Advice {
  std::string command;
  std::string effect;
};

void Print(std::ostream& out, const std::vector<Advice>& advices) {
  std::size_t width = 0;
  for (const Advice& advice : advices) width = std::max(width, advice.command.size());
  for (const Advice& advice : advices) {
    out << "  qdclgl " << advice.command << std::string(width + 2 - advice.command.size(), ' ')
        << advice.effect << '\n';
  }
}

// How many rows a list has under a filter.
Long Count(std::string_view component, const std::string& props, std::string filter) {
  Long options = 0;
  std::string sort;
  return CreateObject(component)
      ->Call("GetList", props, ByRef(options), ByRef(filter), ByRef(sort))
      .As<Recordset>()
      ->RecordCount();
}

struct StateOfBooks {
  Long year = 0;
  Long period = 0;
  DateTime start;
  DateTime end;
  Long accounts = 0;
  Long to_check = 0;  // vouchers of the current period
  Long to_post = 0;
};

StateOfBooks StateIn(const std::string& props) {
  StateOfBooks state;
  const auto profile = Make<SystemProfile>();
  state.year = profile->GLGetCurrentYear();
  state.period = profile->GLGetCurrentPeriod();
  CreateObject("QDCPeriodDate.clsPeriodDate")
      ->Call("GetPeriodStartEnd", props, ByRef(state.period), ByRef(state.year), ByRef(state.start),
             ByRef(state.end));
  state.accounts = Count("QDSVGLAccount.AccountInfo", props, "");
  const std::string open = "FYear = " + std::to_string(state.year) +
                           " AND FPeriod = " + std::to_string(state.period) +
                           " AND FPosted = FALSE AND FChecked = ";
  state.to_check = Count("QDSVGLVoucher.VoucherInfo", props, open + "FALSE");
  state.to_post = Count("QDSVGLVoucher.VoucherInfo", props, open + "TRUE");
  return state;
}

std::string Vouchers(Long count) {
  return std::to_string(count) + (count == 1 ? " voucher" : " vouchers");
}

std::vector<Advice> NextSteps(const StateOfBooks& state) {
  std::vector<Advice> steps;
  if (state.accounts == 0) {
    steps.push_back({"import --accounts accounts.csv", "brings a chart of accounts in"});
    steps.push_back({"add accounts 1000 FName=Cash FDC=1", "makes an account"});
    return steps;
  }
  if (state.to_check > 0) {
    steps.push_back({"vouchers --filter \"FChecked = FALSE\"",
                     "lists what is to be checked: " + Vouchers(state.to_check)});
    steps.push_back({"check --all", "checks it"});
  }
  if (state.to_post > 0) {
    steps.push_back({"post --all", "posts what is checked: " + Vouchers(state.to_post)});
  }
  const bool is_over = CurrentPlatform().Today().days > state.end.days;
  if (is_over && state.to_check == 0 && state.to_post == 0) {
    steps.push_back({"close", "closes the period, which has ended"});
  }
  steps.push_back({"import --journal journal.csv", "brings vouchers in"});
  steps.push_back({"balance", "prints the trial balance"});
  steps.push_back({"doctor", "tests that everything agrees"});
  return steps;
}

int PrintFirstSteps(std::ostream& out) {
  out << "qdclgl keeps the books of a general ledger. What one does first:\n\n";
  Print(out, {{"init books.db --no-password --year 2024", "makes empty books"},
              {"import books.db --accounts accounts.csv", "brings a chart of accounts in"},
              {"import books.db --journal journal.csv", "brings vouchers in"},
              {"balance books.db", "prints the trial balance"}});
  out << "\nWith QDCLGL_BOOK=books.db in the environment no command needs the books' name.\n"
         "`qdclgl help` tells all commands, `qdclgl help COMMAND` one of them.\n";
  return kDone;
}

}  // namespace

int PrintStartPage(const Console& console) {
  Login login;
  login.book = BookFromEnvironment();
  if (login.book.empty()) return PrintFirstSteps(console.out);
  login.user = UserFromEnvironment();
  const StateOfBooks state = StateIn(login.Open());
  console.out << "Period " << state.year << '/' << state.period << ", " << state.start.ToText()
              << " to " << state.end.ToText() << ": " << Vouchers(state.to_check) << " to check, "
              << state.to_post << " to post. What one would do next:\n\n";
  Print(console.out, NextSteps(state));
  console.out << "\n`qdclgl help` tells all commands.\n";
  return kDone;
}

namespace {

struct HelpOptions {
  std::string name;  // of a command or a topic
  bool is_man_page = false;
  std::string folder;  // for all man pages
};

int PrintHelp(const HelpOptions& options, const Console& console) {
  // Where a command is chosen already, the library tells of that one alone.
  Program fresh(console);
  CLI::App& app = fresh.app();
  if (!options.folder.empty()) {
    WriteManPages(app, options.folder);
  } else if (const Chapter* topic = TopicNamed(options.name)) {
    console.out << topic->text << '\n';
  } else if (options.name.empty()) {
    console.out << (options.is_man_page ? ManPage(app) : app.help());
  } else {
    const CLI::App& command = CommandNamed(app, options.name);
    console.out << (options.is_man_page ? ManPageOf(app, command) : command.help(app.get_name()));
  }
  return kDone;
}

}  // namespace

void AddHelpCommand(Program& program) {
  const auto options = std::make_shared<HelpOptions>();
  const Command command = program.Add("help", "Tells all commands, or one", [options, &program] {
    return PrintHelp(*options, program.console());
  });
  command.Word("COMMAND", options->name, "The command to tell of, or a topic");
  command.Flag("--man", options->is_man_page, "Prints it as a man page");
  command.Text("--man-pages", options->folder, "DIR", "Writes all man pages into a folder");
}

}  // namespace qdclgl::cli
