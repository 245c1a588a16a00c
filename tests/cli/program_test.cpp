// The built program: what it prints and how it ends; its completion.
#include "qdclgl/cli/program.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <regex>
#include <set>
#include <sstream>

#include "qdclgl/cli/version_text.h"
#include "qdclgl/server/server.h"
#include "qdclgl/version.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

std::set<std::string> CommandNames() {
  std::set<std::string> names;
  const Console nowhere{std::cout, std::cerr};
  Program program(nowhere);
  for (const CLI::App* command : program.app().get_subcommands({}))
    names.insert(command->get_name());
  return names;
}

TEST(Program, MadeForOneCommandHasItAsTheWholeProgramHas) {
  const Console nowhere{std::cout, std::cerr};
  Program whole(nowhere);
  for (const std::string& name : CommandNames()) {
    Program own(nowhere, name);
    EXPECT_LT(own.app().get_subcommands({}).size(), 10u) << name << " has a family";
    const CLI::App* command = own.app().get_subcommand(name);
    EXPECT_EQ(command->help(), whole.app().get_subcommand(name)->help());
    EXPECT_EQ(command->get_group(), whole.app().get_subcommand(name)->get_group());
  }
  for (const char* other : {"", "balanc", "--help", "-h"}) {
    Program unknown(nowhere, other);
    EXPECT_EQ(unknown.app().get_subcommands({}).size(), whole.app().get_subcommands({}).size());
  }
}

TEST(Program, HelpAndVersionGoToTheOutput) {
  const RunResult help = RunProgram({"--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_EQ(help.err, "");
  for (const std::string& name : CommandNames()) {
    EXPECT_NE(help.out.find("\n  " + name + " "), std::string::npos) << name;
    EXPECT_EQ(RunProgram({name, "--help"}).code, 0) << name;
  }
}

TEST(Program, TheVersionComesWithItsCommitAndTheDatabasesBuiltIn) {
  const RunResult version = RunProgram({"--version"});
  EXPECT_EQ(version.code, 0);
  EXPECT_EQ(version.err, "");
  EXPECT_EQ(version.out, VersionText() + "\n");

  const std::string text = VersionText("0123456789ab");
  const std::string head = "qdclgl " + std::string(qdclgl::Version());
  static const std::regex kRest("\ncommit 0123456789ab\ndatabases: SQLite 3\\.\\d+\\.\\d+, "
#ifdef _WIN32
                                "no PostgreSQL");
#else
                                "PostgreSQL \\(libpq \\d+\\.\\d+\\)");
#endif
  EXPECT_TRUE(text.starts_with(head)) << text;
  EXPECT_TRUE(std::regex_match(text.substr(head.size()), kRest)) << text;
  EXPECT_EQ(VersionText("").find("commit"), std::string::npos) << "not built from git";
}

TEST(Program, EachListOfTheServerIsACommand) {
  const Folder folder;
  const std::string book = folder.Path("books.db");
  ASSERT_EQ(RunProgram({"init", book, "--no-password", "--year", "2024"}).code, 0);
  int shown = 0;
  for (const server::ServerComponent& component : server::ServerComponents()) {
    if (component.list == nullptr) continue;
    const RunResult plain = RunProgram({std::string(component.list->name), book, "--keys"});
    EXPECT_EQ(plain.code, 0) << component.list->name << ": " << plain.err;
    if (plain.out.starts_with("There are no ")) continue;
    ++shown;
    // The keys are the list's columns in their order.
    std::istringstream keys(plain.out.substr(0, plain.out.find('\n')));
    std::istringstream columns{std::string(component.list->columns)};
    EXPECT_TRUE(std::equal(std::istream_iterator<std::string>(keys), {},
                           std::istream_iterator<std::string>(columns), {}))
        << plain.out;
  }
  EXPECT_EQ(shown, 4) << "new books have a currency, a user, classes of items, and a trail";
}

TEST(Program, WithoutACommandItTellsWhatOneWouldDoNext) {
  const Folder folder;
  const std::string book = folder.Path("books.db");
  UnsetVariable("QDCLGL_BOOK");
  const RunResult first = RunInProcess({});
  EXPECT_EQ(first.code, 0);
  EXPECT_NE(first.out.find("qdclgl init books.db"), std::string::npos) << first.out;
  SetVariable("QDCLGL_BOOK", book);
  EXPECT_EQ(RunInProcess({}).code, 5) << "the books that it should tell of are not there";
  const auto advised = [] {
    const RunResult page = RunInProcess({});
    EXPECT_EQ(page.code, 0) << page.err;
    std::string commands;
    std::istringstream lines(page.out);
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("  qdclgl ")) continue;
      line.erase(0, 9);
      commands += line.substr(0, line.find("  ")) + "\n";
    }
    return commands;
  };
  const std::string always = "import --journal journal.csv\nbalance\ndoctor\n";
  ASSERT_EQ(RunInProcess({"init", "--no-password", "--year", "2024"}).code, 0);
  EXPECT_EQ(advised(), "import --accounts accounts.csv\nadd accounts 1000 FName=Cash FDC=1\n");
  const std::string chart = folder.Write("a.csv", "number,name,dc\n1,Cash,1\n2,Capital,-1\n");
  ASSERT_EQ(RunInProcess({"import", "--accounts", chart}).code, 0);
  EXPECT_EQ(advised(), "close\n" + always) << "January 2024 is over";
  const std::string journal =
      folder.Write("j.csv", "voucher,date,account,debit,credit\nx,2024-01-05,1,10,\n"
                            "x,2024-01-05,2,,10\ny,2024-01-05,1,10,\ny,2024-01-05,2,,10\n");
  ASSERT_EQ(RunInProcess({"import", "--journal", journal}).code, 0);
  EXPECT_EQ(advised(), "vouchers --filter \"FChecked = FALSE\"\ncheck --all\n" + always);
  ASSERT_EQ(RunInProcess({"check", "1"}).code, 0);
  EXPECT_EQ(advised(),
            "vouchers --filter \"FChecked = FALSE\"\ncheck --all\npost --all\n" + always);
  ASSERT_EQ(RunInProcess({"check", "--all"}).code, 0);
  ASSERT_EQ(RunInProcess({"post", "--all"}).code, 0);
  EXPECT_EQ(advised(), "close\n" + always);
  UnsetVariable("QDCLGL_BOOK");
}

TEST(Program, HelpOfACommandIsThatOfItsOption) {
  EXPECT_EQ(RunInProcess({"help", "balance"}).out, RunInProcess({"balance", "--help"}).out);
  EXPECT_EQ(RunInProcess({"help"}).out, RunInProcess({"--help"}).out);
}

TEST(Program, WrongUsageIsOneLineAndTwo) {
  const std::vector<std::vector<std::string>> lines = {{"nothing"},
                                                       {"balance", "x.db", "--year", "x"},
                                                       {"balance", "x.db", "--csv", "--json"},
                                                       {"post", "x.db"},
                                                       {"post", "x.db", "y"},
                                                       {"vouchers", "x.db", "--nothing"},
                                                       {"vouchers", "x.db", "y"}};
  for (const auto& line : lines) {
    const RunResult result = RunProgram(line);
    EXPECT_EQ(result.code, 2) << (line.empty() ? "" : line[0]) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.err.starts_with("qdclgl: ")) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  }
}

TEST(Program, BooksThatAreNotThereAreFive) {
  const Folder folder;
  const RunResult result = RunProgram({"vouchers", folder.Path("none.db")});
  EXPECT_EQ(result.code, 5);
  EXPECT_TRUE(result.err.starts_with("qdclgl: 80044204: ")) << result.err;
  EXPECT_FALSE(std::filesystem::exists(folder.Path("none.db")));
  EXPECT_EQ(RunProgram({"vouchers", "Provider=Abacus;"}).code, 5);
}

TEST(Program, UsersAreMadeChangedAndRemoved) {
  const Folder folder;
  const std::string book = folder.Path("books.db");
  ASSERT_EQ(RunProgram({"init", book, "--no-password", "--year", "2024"}).code, 0);
  EXPECT_EQ(RunProgram({"user", book, "o'hara", "--roles", "checker", "--no-password"}).out,
            "User o'hara is made.\n");
  EXPECT_EQ(RunProgram({"users", book, "--csv", "--user", "o'hara"}).out,
            "FUserID,FVersion,FName,FRoles,FDisabled\n1,1,administrator,administrator,false\n"
            "2,1,o'hara,checker,false\n");
  EXPECT_EQ(RunProgram({"user", book, "x", "--user", "o'hara"}).code, 1) << "not an administrator";
  EXPECT_EQ(RunProgram({"user", book, "o'hara", "--disable"}).code, 0);
  EXPECT_EQ(RunProgram({"users", book, "--user", "o'hara"}).code, 5);
  EXPECT_EQ(RunProgram({"user", book, "o'hara", "--enable", "--roles", "reader, poster"}).code, 0);
  EXPECT_EQ(RunProgram({"user", book, "o'hara", "--set-password"}).code, 2) << "no password";
  EXPECT_EQ(RunProgram({"user", book, "o'hara", "--remove"}).out, "User o'hara is removed.\n");
  EXPECT_EQ(RunProgram({"user", book, "o'hara", "--remove"}).code, 1);
  EXPECT_EQ(RunProgram({"user", book}).code, 2);
  EXPECT_EQ(RunProgram({"user", book, "y", "--remove", "--disable"}).code, 2);
}

TEST(Program, BooksMayBeCalledAsACommandIs) {
  const Folder folder;
  EXPECT_EQ(RunProgram({"init", folder.Path("check"), "--no-password", "--year", "2024"}).code, 0);
  EXPECT_EQ(RunProgram({"vouchers", folder.Path("check")}).code, 0);
}

TEST(Program, AnOutputThatCanNotBeWrittenIsSix) {
  EXPECT_EQ(Start({"api"}, "/dev/full", "/dev/null").Wait(), 6);
}

TEST(Program, TheExampleBooksComeInWhole) {
  const Folder folder;
  const std::string book = folder.Path("books.db");
  const std::string examples = QDCLGL_SOURCE_DIR "/examples/books/";
  ASSERT_EQ(RunProgram({"init", book, "--no-password", "--year", "2024"}).code, 0);
  const RunResult result =
      RunProgram({"import", book, "--accounts", examples + "accounts.csv", "--journal",
                  examples + "journal.csv", "--new-currencies", "--check-all", "--post-all"});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "accounts: 36 stored, 0 there already, 0 left out\n"
                        "vouchers: 75 stored as import 1, 0 passed over, 0 left out\n"
                        "75 vouchers checked.\n"
                        "75 vouchers posted.\n");
  EXPECT_EQ(RunProgram({"doctor", book}).out, "The books are in order.\n");
  const std::string balances = RunProgram({"balance", book, "--csv"}).out;
  EXPECT_NE(balances.find("\n1000.02,104950.8700,47830.4500,57120.4200\n"), std::string::npos);
}

TEST(Program, TheExampleOpensEditsAndSaves) {
  const Folder folder;
  const std::string book = folder.Path("books.db");
  SetVariable("QDCLGL_REGISTRY", folder.Path("registry"));
  ASSERT_EQ(RunProgram({"init", book, "--no-password", "--year", "2024"}).code, 0);
  const std::string chart = folder.Write("a.csv", "number,name,dc\n1,Cash,1\n2,Capital,-1\n");
  const std::string journal =
      folder.Write("j.csv", "voucher,date,account,debit,credit,explanation\n"
                            "x,2024-01-05,1,10,,Tea\nx,2024-01-05,2,,10,Tea\n");
  ASSERT_EQ(RunProgram({"import", book, "--accounts", chart, "--journal", journal}).code, 0);
  RunResult result = RunProgram({book, "1"}, QDCLGL_EXAMPLE);
  std::erase(result.out, '\r');
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "opened      line 1: 1, debit 10, \"Tea\"; modified: no\n"
                        "changed     line 1: 1, debit 10, \"Tea, counted again\"; modified: yes\n"
                        "saved       line 1: 1, debit 10, \"Tea, counted again\"; modified: no\n"
                        "read again  line 1: 1, debit 10, \"Tea, counted again\"; modified: no\n");
}

TEST(Program, TheExampleIsShort) {
  const std::string text = ReadFile(QDCLGL_SOURCE_DIR "/examples/open_edit_save.cpp");
  EXPECT_LT(std::count(text.begin(), text.end(), '\n'), 40);
}

}  // namespace
}  // namespace qdclgl::cli::testing
