// The users of the books: making them, and changing what they may do.
#include <optional>

#include "qdclgl/cli/batch.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/system_calls.h"
#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kNewPasswordVariable = "QDCLGL_NEW_PASSWORD";

struct UserOptions {
  Login login;
  std::vector<std::string> names;
  std::string roles;
  bool set_password = false;
  bool no_password = false;
  bool disable = false;
  bool enable = false;
  bool remove = false;
};

// The user's row, Nothing when the books have no such user.
Ref<Dictionary> Find(const std::string& props, const std::string& name) {
  const auto users = CreateObject("QDSVGLUser.UserInfo")
                         ->Call("GetList", props, "FName = " + FilterText(name))
                         .As<Recordset>();
  return users->Eof() ? nullptr : RowToDictionary(users);
}

std::string NewPassword() {
  const auto password = Environment(kNewPasswordVariable);
  if (!password) {
    throw UsageError(std::string("the password is taken from ") + kNewPasswordVariable +
                     ", which is not set");
  }
  return *password;
}

int ChangeUser(const UserOptions& options, const Console& console) {
  if (options.names.size() != 1) throw UsageError("user takes one NAME");
  const std::string& name = options.names[0];
  const std::string password = options.set_password ? NewPassword() : "";
  const std::string props = options.login.Open();
  const auto update = CreateObject("QDSVGLUser.UserUpdate");
  Ref<Dictionary> user = Find(props, name);
  if (options.remove) {
    Long id = user ? user->Value("FUserID").As<Long>() : 0;
    update->Call("Delete", props, ByRef(id));
    console.out << "User " << name << " is removed.\n";
    return kDone;
  }
  const bool is_new = !user;
  if (is_new) {
    user = Make<Dictionary>();
    user->Value("FName", name);
  }
  if (!options.roles.empty()) user->Value("FRoles", options.roles);
  if (options.disable || options.enable) user->Value("FDisabled", options.disable);
  if (is_new) {
    if (options.set_password || options.no_password) user->Value("FPassword", password);
    update->Call("Create", props, user);
  } else {
    Long id = user->Value("FUserID").As<Long>();
    const bool changes_row = !options.roles.empty() || options.disable || options.enable;
    const bool changes_password = options.set_password || options.no_password;
    // Both or neither.
    std::optional<Batch> batch;
    if (changes_row && changes_password) batch.emplace(props);
    if (changes_row) update->Call("Update", props, ByRef(id), user);
    if (changes_password) {
      update->Call("SetPassword", props, ByRef(id), password, Login::Password(),
                   options.no_password);
    }
    if (batch) batch->Commit();
  }
  console.out << "User " << name << (is_new ? " is made.\n" : " is changed.\n");
  return kDone;
}

}  // namespace

void AddUserCommand(Program& program) {
  const auto options = std::make_shared<UserOptions>();
  // With books from the environment a lone word is the user.
  const auto is_name = [](const std::string&, const std::vector<std::string>& rest) {
    return rest.empty() && !BookFromEnvironment().empty();
  };
  const Command command =
      program.AddForWords("user", "Makes or changes a user of the books", options->login,
                          options->names, {"NAME", "The user", is_name},
                          [options, &program] { return ChangeUser(*options, program.console()); });
  command.Text("--roles", options->roles, "ROLES",
               "What the user may do: reader, preparer, checker, cashier, poster, administrator");
  const Option set_password = command.Flag("--set-password", options->set_password,
                                           "Gives the password in QDCLGL_NEW_PASSWORD");
  const Option no_password =
      command.Flag("--no-password", options->no_password, "Lets the user in without one");
  const Option remove = command.Flag("--remove", options->remove, "Removes the user");
  const Option disable =
      command.Flag("--disable", options->disable, "Keeps the user from logging in");
  const Option enable = command.Flag("--enable", options->enable, "Lets the user log in again");
  disable.Excludes(enable);
  no_password.Excludes(set_password);
  remove.Excludes(disable).Excludes(enable);
}

}  // namespace qdclgl::cli
