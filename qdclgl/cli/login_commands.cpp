// Logging in once for many commands, and out again.
#include "qdclgl/cli/kept_login.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/system_calls.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kSession = "QDSVGLSession.SessionUpdate";

struct LoginOptions {
  Login login;
  Long minutes = 0;
};

// "8 hours", "90 minutes"
std::string Duration(Long minutes) {
  const auto counted = [](Long count, const char* noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
  };
  return minutes % 60 == 0 ? counted(minutes / 60, "hour") : counted(minutes, "minute");
}

// The one in the environment, or what somebody types.
std::string PasswordOf(const std::string& user, const Console& console) {
  const std::string password = Login::Password();
  if (!password.empty() || console.answers == nullptr) return password;
  return ReadHidden(console.err, "Password of " + OneLine(user) + ": ");
}

int LogIn(const LoginOptions& options, const Console& console) {
  const Login& login = options.login;
  const std::string props = login.OpenAnew(PasswordOf(login.UserName(), console));
  const auto session = CreateObject(kSession);
  Long minutes = options.minutes;
  const auto ticket = session->Call("Keep", props, ByRef(minutes)).As<String>();
  try {
    KeepLogin(login.book, {login.UserName(), ticket});
  } catch (const FileError&) {
    session->Call("Logout", props);  // a ticket that nobody has
    throw;
  }
  console.out << login.UserName() << " is logged in for " << Duration(minutes)
              << "; until then commands on these books need no password.\n";
  return kDone;
}

int LogOut(const Login& login, const Console& console) {
  if (!KeptLoginTo(login.book)) {
    console.out << "Nobody is logged in to these books.\n";
    return kDone;
  }
  try {
    const std::string props = login.Open();
    CreateObject(kSession)->Call("Logout", props);
  } catch (const Error& error) {
    // It may have ended by itself.
    if (error.number() != server::refusal::kNotLoggedIn) throw;
  }
  ForgetLogin(login.book);
  console.out << "Logged out.\n";
  return kDone;
}

}  // namespace

void AddLoginCommands(Program& program) {
  const auto options = std::make_shared<LoginOptions>();
  const Command command =
      program.AddForBooks("login", "Logs in for the commands that follow", options->login,
                          [options, &program] { return LogIn(*options, program.console()); });
  command.Whole("--minutes", options->minutes,
                "For how long [SessionMinutes of the books, which is the most]");
  const auto login = std::make_shared<Login>();
  program.AddForBooks("logout", "Ends what login has begun", *login,
                      [login, &program] { return LogOut(*login, program.console()); });
}

}  // namespace qdclgl::cli
