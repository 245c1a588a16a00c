// Man pages: written from what the help tells, whole, and in roff that obeys nothing by accident.
#include "qdclgl/cli/man_page.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <set>
#include <sstream>

#include "qdclgl/cli/manual.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/version.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

TEST(ManPage, OfACommandHasItsTextItsArgumentsAndItsOptions) {
  CLI::App app("The command line.", "qdclgl");
  CLI::App* command = app.add_subcommand("logout", "Ends what login has begun");
  std::string book, user;
  bool all = false;
  command->add_option("BOOK", book, "The books: a file, or a 'text'");
  command->add_option("--user", user, "Who works with \\ on -them-")->type_name("NAME");
  command->add_flag("--all", all, "Of `everybody`");
  EXPECT_EQ(ManPageOf(app, *command),
            ".TH QDCLGL\\-LOGOUT 1 \"\" \"qdclgl " + std::string(Version()) +
                "\" \"User Commands\"\n"
                ".SH NAME\n"
                "qdclgl\\-logout \\- Ends what login has begun\n"
                ".SH SYNOPSIS\n"
                "\\fBqdclgl logout\\fR [OPTIONS] [BOOK]\n"
                ".SH DESCRIPTION\n"
                ".PP\n"
                "Ends what \\fBlogin\\fR has begun: the commands that follow need a password "
                "again.\n"
                ".SH ARGUMENTS\n"
                ".TP\n\\fBBOOK\\fR TEXT\nThe books: a file, or a \\(aqtext\\(aq\n"
                ".SH OPTIONS\n"
                ".TP\n\\fB\\-h,\\-\\-help\\fR\nPrint this help message and exit\n"
                ".TP\n\\fB\\-\\-user\\fR NAME\nWho works with \\e on \\-them\\-\n"
                ".TP\n\\fB\\-\\-all\\fR\nOf \\fBeverybody\\fR\n"
                ".SH SEE ALSO\n\\fBqdclgl\\fR(1)\n");
}

TEST(ManPage, OfTheProgramNamesEveryCommandOnceAndHasEveryTopic) {
  const RunResult page = RunInProcess({"help", "--man"});
  EXPECT_EQ(page.code, 0);
  const Console nowhere{std::cout, std::cerr};
  const Program program(nowhere);
  for (const CLI::App* command : program.app().get_subcommands({})) {
    std::string name = command->get_name();
    for (std::size_t at = 0; (at = name.find('-', at)) != name.npos; at += 2) name.insert(at, "\\");
    const std::string entry = "\n.TP\n\\fB" + name + "\\fR\n";
    const std::size_t at = page.out.find(entry);
    EXPECT_NE(at, page.out.npos) << entry;
    EXPECT_EQ(page.out.find(entry, at + 1), page.out.npos) << entry;
  }
  for (const char* section : {"NAME", "SYNOPSIS", "DESCRIPTION", "COMMANDS", "OPTIONS", "OUTPUT",
                              "FILES", "ENVIRONMENT", "EXIT STATUS"}) {
    EXPECT_NE(page.out.find("\n.SH " + std::string(section) + "\n"), page.out.npos) << section;
  }
}

TEST(ManPage, LinesThatBeginWithAPointAreRequestsOfManOnly) {
  const Console nowhere{std::cout, std::cerr};
  const Program program(nowhere);
  const std::set<std::string> requests = {".TH", ".SH", ".SS", ".PP", ".TP",
                                          ".RS", ".RE", ".nf", ".fi"};
  std::string pages = ManPage(program.app());
  for (const CLI::App* command : program.app().get_subcommands({})) {
    pages += ManPageOf(program.app(), *command);
  }
  std::istringstream lines(pages);
  int verbatim = 0;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_NE(line, "");
    EXPECT_FALSE(line.starts_with('\''));
    if (!line.starts_with('.')) continue;
    EXPECT_TRUE(requests.contains(line.substr(0, 3))) << line;
    verbatim += line == ".nf" ? 1 : line == ".fi" ? -1 : 0;
    EXPECT_TRUE(verbatim == 0 || verbatim == 1) << line;
  }
  EXPECT_EQ(verbatim, 0);
}

TEST(ManPage, EveryCommandHasAFileOfItsOwnInTheFolder) {
  const Folder folder;
  const std::string pages = folder.Path("new/man");
  const RunResult written = RunInProcess({"help", "--man-pages", pages});
  EXPECT_EQ(written.code, 0) << written.err;
  EXPECT_EQ(written.out, "");
  const Console nowhere{std::cout, std::cerr};
  const Program program(nowhere);
  std::set<std::string> expected = {"qdclgl.1"}, found;
  EXPECT_EQ(ReadFile(pages + "/qdclgl.1"), RunInProcess({"help", "--man"}).out);
  for (const CLI::App* command : program.app().get_subcommands({})) {
    const std::string file = "qdclgl-" + command->get_name() + ".1";
    expected.insert(file);
    EXPECT_EQ(ReadFile(pages + "/" + file),
              RunInProcess({"help", command->get_name(), "--man"}).out);
  }
  for (const auto& entry : std::filesystem::directory_iterator(pages)) {
    found.insert(entry.path().filename().string());
  }
  EXPECT_EQ(found, expected);
}

TEST(ManPage, AFolderThatCanNotBeMadeIsTold) {
  const Folder folder;
  folder.Write("file", "");
  const RunResult result = RunInProcess({"help", "--man-pages", folder.Path("file/man")});
  EXPECT_EQ(result.code, 6);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "qdclgl: " + folder.Path("file/man") + " can't be made: Not a directory\n");
}

}  // namespace
}  // namespace qdclgl::cli::testing
