// The books as a whole: making and upgrading them, their periods, their health.
#include <optional>
#include <utility>

#include "qdclgl/cli/kept_login.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/progress.h"
#include "qdclgl/cli/year_end.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

namespace {

void PrintCurrentPeriod(const Console& console) {
  const auto profile = Make<SystemProfile>();
  console.out << "The current period is " << profile->GLGetCurrentYear() << "/"
              << profile->GLGetCurrentPeriod() << ".\n";
}

struct InitOptions {
  Login login;
  std::string currency = "EUR";
  Long year = 0;
  Long periods = 12;
  Long start_month = 1;
  bool no_password = false;
  std::string program_role;
};

int Init(const InitOptions& options, const Console& console) {
  const Login& login = options.login;
  if (options.no_password == !Login::Password().empty()) {
    throw UsageError("init takes the administrator's password from QDCLGL_PASSWORD, or "
                     "--no-password");
  }
  login.StartServer();
  CreateObject("QDSVGLBooks.BooksUpdate")
      ->Call("Create", login.book, options.currency, options.year, options.periods,
             options.start_month, login.UserName(), Login::Password(), options.no_password,
             options.program_role);
  ForgetLogin(login.book);  // to books that stood there before
  login.Open();
  console.out << "The books are made, in " << options.currency << ". ";
  PrintCurrentPeriod(console);
  if (options.no_password) {
    console.out << "User " << login.UserName()
                << " has no password: whoever reaches the books can do everything in them.\n";
  }
  return kDone;
}

void AddInit(Program& program) {
  const auto options = std::make_shared<InitOptions>();
  const Command command =
      program.AddForBooks("init", "Makes empty books", options->login,
                          [options, &program] { return Init(*options, program.console()); });
  command.Text("--currency", options->currency, "CODE", "The base currency").ShowsUsual();
  command.Whole("--year", options->year, "The year that the books begin in [this year]");
  command.Whole("--periods", options->periods, "Periods in a year [12]");
  command.Whole("--start-month", options->start_month, "The month a year begins with [1]");
  command.Flag("--no-password", options->no_password, "Makes the administrator without a password");
  command.Text("--program-role", options->program_role, "ROLE",
               "The PostgreSQL role that programs log in with, another one than the owner");
}

void AddUpgrade(Program& program) {
  const auto login = std::make_shared<Login>();
  program.AddForBooks(
      "upgrade", "Brings books of an older version to this one", *login, [login, &program] {
        login->StartServer();
        const auto former = Watched(program.console(), [&] {
          return CreateObject("QDSVGLBooks.BooksUpdate")->Call("Upgrade", login->book).As<Long>();
        });
        const auto now =
            CreateObject("QDSVGLBooks.BooksInfo")->Call("Version", login->book).As<Long>();
        program.console().out << "The books were of version " << former << " and are of version "
                              << now << ".\n";
        return kDone;
      });
}

// ---- Periods ----

// The vouchers of a period that are not posted.
Long CountOpen(const std::string& props, Long year, Long period) {
  Long options = 0;
  std::string filter = "FPosted = FALSE AND FYear = " + std::to_string(year) +
                       " AND FPeriod = " + std::to_string(period);
  std::string sort;
  return CreateObject("QDSVGLVoucher.VoucherInfo")
      ->Call("GetList", props, ByRef(options), ByRef(filter), ByRef(sort))
      .As<Recordset>()
      ->RecordCount();
}

// Tells what a closing will do.
void AnnounceClosing(const std::string& props, const Console& console) {
  const auto profile = Make<SystemProfile>();
  Long year = profile->GLGetCurrentYear(), period = profile->GLGetCurrentPeriod();
  DateTime start, end;
  CreateObject("QDCPeriodDate.clsPeriodDate")
      ->Call("GetPeriodStartEnd", props, ByRef(period), ByRef(year), ByRef(start), ByRef(end));
  console.out << "This closes period " << year << "/" << period << ", " << start.ToText() << " to "
              << end.ToText()
              << ": none of its vouchers can be unposted any more, and none is added to it.\n";
  if (CurrentPlatform().Today().days <= end.days) {
    console.out << "The period has not ended yet.\n";
  }
  if (const Long open = CountOpen(props, year, period); open > 0) {
    console.out << open << (open == 1 ? " voucher" : " vouchers")
                << " of the period must be posted first.\n";
  }
}

struct CloseOptions {
  Login login;
  std::optional<std::string> year;  // "" for the current one
  YearEnd year_end;
  bool undo = false;
};

// What `close --year` does.
int CloseYear(CloseOptions& options, const Console& console) {
  if (!options.year->empty()) options.year_end.year = WholeOption("--year", *options.year);
  const std::string props = options.login.Open();
  return options.undo ? TakeResultBack(options.year_end, props, console)
                      : CarryResult(options.year_end, props, console);
}

int Close(CloseOptions& options, const Console& console) {
  if (options.year) return CloseYear(options, console);
  const std::string props = options.login.Open();
  AnnounceClosing(props, console);
  if (!options.year_end.yes && !IsAgreed(console, "Close it?")) {
    console.out << "Nothing is closed.\n";
    return kRefused;
  }
  CreateObject("QDSVGLPeriod.PeriodUpdate")->Call("Close", props);
  PrintCurrentPeriod(console);
  return kDone;
}

void AddClose(Program& program) {
  const auto options = std::make_shared<CloseOptions>();
  YearEnd& year_end = options->year_end;
  const Command command = program.AddForBooks(
      "close", "Closes the current period, or carries a year's result to the equity",
      options->login, [options, &program] { return Close(*options, program.console()); });
  command.Flag("--yes", year_end.yes, "Closes without a question");
  const Option year =
      command
          .Read(
              "--year", [options](const std::string& text) { options->year = text; }, "NUMBER",
              "Carries the result of this year [the books' current one]")
          .MayLackValue();
  // What follows --year may be BOOK instead.
  command.WhenRead([options] {
    if (!options->year || IsID(*options->year)) return;
    options->login.book = std::exchange(*options->year, "");
  });
  const Option to = command
                        .Text("--to", year_end.account, "ACCOUNT",
                              "The account of equity that it is carried to [the one of last time]")
                        .Needs(year);
  command.Flag("--dry-run", year_end.dry_run, "Shows the vouchers and makes none").Needs(year);
  command.Flag("--undo", options->undo, "Takes the vouchers of that year back")
      .Needs(year)
      .Excludes(to);
}

struct ReopenOptions {
  Login login;
  std::string to;
};

// "2024/3" as year and period.
std::pair<Long, Long> PeriodFrom(const std::string& text) {
  const std::size_t slash = text.find('/');
  if (slash == text.npos) throw UsageError("--to takes a period such as 2024/3");
  return {WholeOption("--to", text.substr(0, slash)), WholeOption("--to", text.substr(slash + 1))};
}

int Reopen(const ReopenOptions& options, const Console& console) {
  const auto period = options.to.empty() ? std::pair<Long, Long>() : PeriodFrom(options.to);
  const std::string props = options.login.Open();
  const auto update = CreateObject("QDSVGLPeriod.PeriodUpdate");
  if (options.to.empty()) {
    update->Call("Reopen", props);
  } else {
    update->Call("ReopenTo", props, period.first, period.second);
  }
  PrintCurrentPeriod(console);
  return kDone;
}

void AddReopen(Program& program) {
  const auto options = std::make_shared<ReopenOptions>();
  const Command command =
      program.AddForBooks("reopen", "Reopens the period that was closed last", options->login,
                          [options, &program] { return Reopen(*options, program.console()); });
  command.Text("--to", options->to, "YEAR/PERIOD",
               "Reopens all periods back to this one, whatever is posted behind it; for "
               "administrators");
}

struct DoctorOptions {
  Login login;
  std::string head;
  Format format = Format::kPlain;
};

int Examine(const DoctorOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  const auto problems = Watched(console, [&] {
    return CreateObject("QDSVGLBooks.BooksInfo")
        ->Call("Check", props, options.head)
        .As<Recordset>();
  });
  if (problems->Eof() && options.format == Format::kPlain) {
    console.out << "The books are in order.\n";
    return kDone;
  }
  static constexpr std::string_view kColumns[] = {"FRule", "FSubject", "FRecordID", "FRecord",
                                                  "FProblem"};
  const Long count = problems->RecordCount();
  WriteRecordset(console, options.format, problems, kColumns);
  return count == 0 ? kDone : kDamaged;
}

void AddDoctor(Program& program) {
  const auto options = std::make_shared<DoctorOptions>();
  const Command command =
      program.AddForBooks("doctor", "Tests every rule that the books must keep", options->login,
                          [options, &program] { return Examine(*options, program.console()); });
  command.Text("--expect-head", options->head, "HEAD",
               "A head of the audit trail that was kept elsewhere (audit --head)");
  AddFormat(command, options->format);
}

}  // namespace

void AddBooksCommands(Program& program) {
  AddInit(program);
  AddUpgrade(program);
  AddClose(program);
  AddReopen(program);
  AddDoctor(program);
}

}  // namespace qdclgl::cli
