// The books as a whole: making and upgrading them, their periods, their health.
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/objects/late_bound.h"
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
};

int Init(const InitOptions& options, const Console& console) {
  const Login& login = options.login;
  login.StartServer();
  CreateObject("QDSVGLBooks.BooksUpdate")
      ->Call("Create", login.book, options.currency, options.year, options.periods,
             options.start_month, login.user, Login::Password());
  login.Open();
  console.out << "The books are made, in " << options.currency << ". ";
  PrintCurrentPeriod(console);
  return kDone;
}

void AddInit(Program& program) {
  const auto options = std::make_shared<InitOptions>();
  CLI::App* command =
      program.AddForBooks("init", "Makes empty books", options->login,
                          [options, &program] { return Init(*options, program.console()); });
  command->add_option("--currency", options->currency, "The base currency")
      ->type_name("CODE")
      ->capture_default_str();
  AddWhole(*command, "--year", options->year, "The year that the books begin in [this year]");
  AddWhole(*command, "--periods", options->periods, "Periods in a year [12]");
  AddWhole(*command, "--start-month", options->start_month, "The month a year begins with [1]");
}

void AddUpgrade(Program& program) {
  const auto login = std::make_shared<Login>();
  program.AddForBooks(
      "upgrade", "Brings books of an older version to this one", *login, [login, &program] {
        login->StartServer();
        const auto former =
            CreateObject("QDSVGLBooks.BooksUpdate")->Call("Upgrade", login->book).As<Long>();
        const auto now =
            CreateObject("QDSVGLBooks.BooksInfo")->Call("Version", login->book).As<Long>();
        program.console().out << "The books were of version " << former << " and are of version "
                              << now << ".\n";
        return kDone;
      });
}

void AddPeriodStep(Program& program, const char* name, const char* help, const char* method) {
  const auto login = std::make_shared<Login>();
  program.AddForBooks(name, help, *login, [login, &program, method] {
    const std::string props = login->Open();
    CreateObject("QDSVGLPeriod.PeriodUpdate")->Call(method, props);
    PrintCurrentPeriod(program.console());
    return kDone;
  });
}

struct DoctorOptions {
  Login login;
  std::string head;
  Format format = Format::kPlain;
};

int Examine(const DoctorOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  const auto problems =
      CreateObject("QDSVGLBooks.BooksInfo")->Call("Check", props, options.head).As<Recordset>();
  if (problems->Eof() && options.format == Format::kPlain) {
    console.out << "The books are in order.\n";
    return kDone;
  }
  static constexpr std::string_view kColumns[] = {"FRule", "FSubject", "FRecordID", "FRecord",
                                                  "FProblem"};
  const Long count = problems->RecordCount();
  WriteRecordset(console.out, options.format, problems, kColumns);
  return count == 0 ? kDone : kDamaged;
}

void AddDoctor(Program& program) {
  const auto options = std::make_shared<DoctorOptions>();
  CLI::App* command =
      program.AddForBooks("doctor", "Tests every rule that the books must keep", options->login,
                          [options, &program] { return Examine(*options, program.console()); });
  command
      ->add_option("--expect-head", options->head,
                   "A head of the audit trail that was kept elsewhere (audit --head)")
      ->type_name("HEAD");
  AddFormat(*command, options->format);
}

}  // namespace

void AddBooksCommands(Program& program) {
  AddInit(program);
  AddUpgrade(program);
  AddPeriodStep(program, "close", "Closes the current period", "Close");
  AddPeriodStep(program, "reopen", "Reopens the period that was closed last", "Reopen");
  AddDoctor(program);
}

}  // namespace qdclgl::cli
