// Logging in once for the commands that follow: what is kept where, and when it is over.
#include <filesystem>

#include "qdclgl/cli/system_calls.h"
#include "qdclgl/server/access/password.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

namespace fs = std::filesystem;

class LoginCommandsTest : public CliTest {
 protected:
  LoginCommandsTest() {
    UnsetVariable("QDCLGL_PASSWORD");
    UnsetVariable("QDCLGL_USER");
    WithPassword("sesame", {"init", "--year", "2024"});
  }

  // A command with a password in the environment, as Said has it.
  std::string WithPassword(const char* password, std::vector<std::string> arguments) const {
    SetVariable("QDCLGL_PASSWORD", password);
    const std::string said = Said(std::move(arguments));
    UnsetVariable("QDCLGL_PASSWORD");
    return said;
  }
  std::vector<fs::path> KeptFiles() const {
    std::vector<fs::path> files;
    const std::string sessions = folder.Path("sessions");
    if (!fs::exists(sessions)) return files;
    for (const auto& entry : fs::directory_iterator(sessions)) files.push_back(entry.path());
    return files;
  }
  std::string Logins() const {
    return Run({"list", "audit", "--filter", "FSubject = 'Session'", "--csv", "--sort", "FAuditID"})
        .out;
  }
};
QDCLGL_CLI_TEST(LoginCommandsTest);

constexpr const char* kWrong =
    "5 qdclgl: 80044201: The user or the password is wrong, or the user is disabled.\n";
constexpr const char* kEnded =
    "5 qdclgl: 80044200: The session that was kept has ended; log in again.\n";
constexpr const char* kLoggedIn =
    "0 administrator is logged in for 8 hours; until then commands on "
    "these books need no password.\n";

TEST_P(LoginCommandsTest, CommandsBehindALoginNeedNoPasswordUntilTheLogout) {
  EXPECT_EQ(Said({"settings", "--csv"}).substr(0, 1), "5");
  EXPECT_EQ(WithPassword("sesame", {"login"}), kLoggedIn);
  EXPECT_EQ(Run({"settings"}).code, 0);
  EXPECT_EQ(RunProgram({"settings", book}).code, 0) << "in a process of its own, too";
  EXPECT_EQ(Said({"logout"}), "0 Logged out.\n");
  EXPECT_EQ(Said({"settings"}), kWrong);
  EXPECT_EQ(Said({"logout"}), "0 Nobody is logged in to these books.\n");
}

TEST_P(LoginCommandsTest, NothingIsKeptForWhoDoesNotLogIn) {
  EXPECT_EQ(WithPassword("sesame", {"settings"}).substr(0, 1), "0");
  EXPECT_EQ(KeptFiles(), std::vector<fs::path>());
}

TEST_P(LoginCommandsTest, AWrongPasswordKeepsNothing) {
  EXPECT_EQ(WithPassword("wrong", {"login"}), kWrong);
  EXPECT_EQ(KeptFiles(), std::vector<fs::path>());
}

TEST_P(LoginCommandsTest, APasswordThatIsGivenIsAskedFor) {
  WithPassword("sesame", {"login"});
  EXPECT_EQ(WithPassword("wrong", {"settings"}), kWrong);
  EXPECT_EQ(Run({"settings"}).code, 0) << "the login stays";
}

TEST_P(LoginCommandsTest, CommandsAreOfWhoeverIsLoggedIn) {
  SetVariable("QDCLGL_NEW_PASSWORD", "rose");
  WithPassword("sesame", {"user", "ann", "--roles", "reader", "--set-password"});
  UnsetVariable("QDCLGL_NEW_PASSWORD");
  EXPECT_EQ(WithPassword("rose", {"login", "--user", "ann", "--minutes", "90"}),
            "0 ann is logged in for 90 minutes; until then commands on these books need no "
            "password.\n");
  const std::string refused = "1 qdclgl: 80044202: User ann (reader) may not change settings.\n";
  EXPECT_EQ(Said({"settings", "set", "SessionMinutes", "60"}), refused);
  EXPECT_EQ(Said({"settings", "set", "SessionMinutes", "60", "--user", "ann"}), refused);
  EXPECT_EQ(Said({"settings", "--user", "administrator"}), kWrong) << "somebody else is not";
  EXPECT_EQ(WithPassword("sesame", {"login", "--user", "administrator"}), kLoggedIn);
  EXPECT_EQ(KeptFiles().size(), 1u) << "one login for the books, the last one";
  EXPECT_EQ(Said({"settings", "set", "SessionMinutes", "60"}).substr(0, 1), "0");
}

TEST_P(LoginCommandsTest, TheTrailTellsOfTheLoginAndOfNoCommandBehindIt) {
  WithPassword("sesame", {"login"});
  const std::string before = Logins();
  Run({"settings"});
  Run({"balance"});
  EXPECT_EQ(Logins(), before);
}

TEST_P(LoginCommandsTest, TheFileIsThePersonsAloneAndHoldsNoPassword) {
  WithPassword("sesame", {"login"});
  ASSERT_EQ(KeptFiles().size(), 1u);
  const fs::path file = KeptFiles().front();
  EXPECT_TRUE(IsPrivate(file));
  EXPECT_TRUE(IsPrivate(file.parent_path()));
  EXPECT_EQ(ReadFile(file.string()).find("sesame"), std::string::npos);
}

TEST_P(LoginCommandsTest, AFileThatIsNoLoginIsToldAndNotGoneBy) {
  WithPassword("sesame", {"login"});
  const std::string file = KeptFiles().front().string();
  for (const char* text : {"", "{", "[]", "{\"ticket\": 5}", "{\"user\": \"administrator\"}"}) {
    folder.Write("sessions/" + fs::path(file).filename().string(), text);
    EXPECT_EQ(Said({"settings"}),
              "6 qdclgl: " + file + " is no kept login; remove it, and log in again\n")
        << text;
  }
}

TEST_P(LoginCommandsTest, ALoginThatTheBooksHaveEndedIsToldOnce) {
  WithPassword("sesame", {"login"});
  SetVariable("QDCLGL_NEW_PASSWORD", "rose");
  EXPECT_EQ(WithPassword("sesame", {"user", "administrator", "--set-password"}).substr(0, 1), "0");
  UnsetVariable("QDCLGL_NEW_PASSWORD");
  EXPECT_EQ(Said({"settings"}), kEnded);
  EXPECT_EQ(KeptFiles(), std::vector<fs::path>());
  EXPECT_EQ(Said({"settings"}), kWrong);
  EXPECT_EQ(WithPassword("rose", {"login"}), kLoggedIn);
}

TEST_P(LoginCommandsTest, ALogoutBehindTheEndIsNoFailure) {
  WithPassword("sesame", {"login"});
  SetVariable("QDCLGL_NEW_PASSWORD", "rose");
  WithPassword("sesame", {"user", "administrator", "--set-password"});
  UnsetVariable("QDCLGL_NEW_PASSWORD");
  EXPECT_EQ(Said({"logout"}), "0 Logged out.\n");
  EXPECT_EQ(KeptFiles(), std::vector<fs::path>());
}

TEST_P(LoginCommandsTest, WhatCanNotBeKeptIsNotBegun) {
  folder.Write("sessions", "a file in the place of the folder");
  const std::string said = WithPassword("sesame", {"login"});
  EXPECT_EQ(said.substr(0, 12), "6 qdclgl: " + folder.Path("").substr(0, 2)) << said;
  const std::string trail = WithPassword(
      "sesame", {"list", "audit", "--filter", "FSubject = 'Session' AND FAction = 'Logout'"});
  EXPECT_NE(trail.find("Logout"), std::string::npos) << "the ticket that nobody has is over";
}

TEST_P(LoginCommandsTest, ALongerTimeThanTheBooksAllowIsRefused) {
  EXPECT_EQ(WithPassword("sesame", {"login", "--minutes", "481"}),
            "1 qdclgl: 80044212: A session can be kept for 1 to 480 minutes, not 481.\n");
  EXPECT_EQ(WithPassword("sesame", {"login", "--minutes", "x"}).substr(0, 1), "2");
  EXPECT_EQ(KeptFiles(), std::vector<fs::path>());
}

TEST(KeptLoginTest, BooksAreKnownByTheirPlaceHoweverTheyAreCalled) {
  const Folder folder;
  server::SetPasswordCost(server::PasswordCost::kLeast);
  SetVariable("QDCLGL_SESSIONS", folder.Path("sessions"));
  SetVariable("QDCLGL_PASSWORD", "sesame");
  EXPECT_EQ(RunInProcess({"init", folder.Path("books.db"), "--year", "2024"}).code, 0);
  EXPECT_EQ(RunInProcess({"init", folder.Path("others.db"), "--year", "2024"}).code, 0);
  EXPECT_EQ(RunInProcess({"login", folder.Path("books.db")}).code, 0);
  UnsetVariable("QDCLGL_PASSWORD");
  const fs::path here = fs::current_path();
  fs::current_path(folder.Path(""));
  for (const char* name : {"books.db", "./books.db", "Provider=SQLite;Data Source=books.db;"}) {
    EXPECT_EQ(RunInProcess({"settings", name}).code, 0) << name;
  }
  EXPECT_EQ(RunInProcess({"settings", "others.db"}).code, 5);
  fs::current_path(here);
}

// The built program, as books made by this one have another cost of passwords.
TEST(KeptLoginTest, NewBooksInThePlaceOfOldOnesAreNotTakenForThem) {
  const Folder folder;
  const std::string book = folder.Path("books.db");
  SetVariable("QDCLGL_SESSIONS", folder.Path("sessions"));
  SetVariable("QDCLGL_PASSWORD", "sesame");
  EXPECT_EQ(RunProgram({"init", book, "--year", "2024"}).code, 0);
  EXPECT_EQ(RunProgram({"login", book}).code, 0);
  UnsetVariable("QDCLGL_PASSWORD");
  fs::remove(book);
  EXPECT_EQ(RunProgram({"init", book, "--year", "2024", "--no-password"}).err, "");
  EXPECT_EQ(RunProgram({"settings", book}).err, "");
}

}  // namespace
}  // namespace qdclgl::cli::testing
