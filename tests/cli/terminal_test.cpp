// The built program on a terminal of known size: width, colours, the pager.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "qdclgl/cli/text_width.h"
#include "tests/cli/screen.h"

namespace qdclgl::cli::testing {
namespace {

std::size_t LinesOf(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

class Terminal : public ::testing::Test {
 protected:
  // Books with one account of a long name, a wide name, and a negative balance.
  void SetUp() override {
    book = folder.Path("books.db");
    ASSERT_EQ(RunProgram({"init", book, "--no-password", "--year", "2024"}).code, 0);
    const std::string chart =
        folder.Write("a.csv", "number,name,dc\n1,Cash in the till of the shop at the harbour,1\n"
                              "2,客户,-1\n");
    const std::string journal =
        folder.Write("j.csv", "voucher,date,account,debit,credit\n"
                              "x,2024-01-05,1,1234567,\nx,2024-01-05,2,,1234567\n");
    ASSERT_EQ(RunProgram({"import", book, "--accounts", chart, "--journal", journal, "--check-all",
                          "--post-all"})
                  .code,
              0);
  }

  Folder folder;
  std::string book;
};

TEST_F(Terminal, ATableIsAsWideAsTheTerminal) {
  const RunResult narrow = RunOnScreen({24, 74, {{"NO_COLOR", "1"}}}, {"balance", book});
  EXPECT_EQ(narrow.code, 0);
  EXPECT_EQ(narrow.out,
            "Account  Name             Begin         Debit        Credit            End\n"
            "1        Cash in the ti…   0.00  1,234,567.00                 1,234,567.00\n"
            "2        客户              0.00                1,234,567.00  -1,234,567.00\n"
            "         Total             0.00  1,234,567.00  1,234,567.00           0.00\n");
}

TEST_F(Terminal, BarsFillWhatIsLeft) {
  const RunResult wide = RunOnScreen({24, 150, {{"NO_COLOR", "1"}}}, {"balance", book});
  EXPECT_NE(wide.out.find("  1,234,567.00  ██████████"), std::string::npos) << wide.out;
  EXPECT_NE(wide.out.find(" -1,234,567.00  ▒▒▒▒▒▒▒▒▒▒"), std::string::npos) << wide.out;
  EXPECT_EQ(RunOnScreen({24, 150, {{"LC_ALL", "C"}}}, {"balance", book}).out.find("█"),
            std::string::npos)
      << "the terminal has no such characters";
}

TEST_F(Terminal, ColoursAreForTerminalsAndForWhoWantsThem) {
  const std::string red = "\033[31m-1,234,567.00\033[0m", bold = "\033[1mAccount\033[0m";
  const std::string shown = RunOnScreen({}, {"balance", book}).out;
  EXPECT_NE(shown.find(red), std::string::npos) << shown;
  EXPECT_NE(shown.find(bold), std::string::npos) << shown;
  const auto has_colour = [](const RunResult& result) {
    return result.out.find('\033') != std::string::npos;
  };
  EXPECT_FALSE(has_colour(RunOnScreen({24, 80, {{"NO_COLOR", "1"}}}, {"balance", book})));
  EXPECT_FALSE(has_colour(RunOnScreen({24, 80, {{"TERM", "dumb"}}}, {"balance", book})));
  EXPECT_FALSE(has_colour(RunOnScreen({}, {"balance", book, "--color", "never"})));
  EXPECT_TRUE(has_colour(
      RunOnScreen({24, 80, {{"NO_COLOR", "1"}}}, {"balance", book, "--color", "always"})));
  EXPECT_FALSE(has_colour(RunProgram({"balance", book})));
  EXPECT_TRUE(has_colour(RunProgram({"balance", book, "--color", "always"})));
  EXPECT_FALSE(has_colour(RunOnScreen({}, {"balance", book, "--csv"})));
}

TEST_F(Terminal, WithoutATerminalNothingIsCut) {
  const std::string shown = RunProgram({"balance", book}).out;
  EXPECT_NE(shown.find("Cash in the till of the shop at the harbour"), std::string::npos) << shown;
  EXPECT_EQ(shown.find("█"), std::string::npos);
}

TEST_F(Terminal, NegativeAmountsAreAsTheReaderWantsThem) {
  const Screen screen{24, 80, {{"QDCLGL_NEGATIVE", "parentheses"}, {"NO_COLOR", "1"}}};
  EXPECT_NE(RunOnScreen(screen, {"balance", book}).out.find("(1,234,567.00)\n"), std::string::npos);
  const RunResult wrong = RunOnScreen({24, 80, {{"QDCLGL_NEGATIVE", "red"}}}, {"balance", book});
  EXPECT_EQ(wrong.code, 2);
  EXPECT_EQ(wrong.out, "qdclgl: QDCLGL_NEGATIVE is minus or parentheses, not \"red\"; see qdclgl "
                       "help balance\n");
}

// A pager that leaves a mark behind what it shows.
class Pager : public Terminal {
 protected:
  std::string Write(const std::string& script) const {
    const std::string path = folder.Write("pager", "#!/bin/sh\n" + script);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }
  RunResult Shown(unsigned short rows, const std::string& pager,
                  std::vector<std::string> arguments = {"balance"}) const {
    arguments.insert(arguments.begin() + 1, book);
    return RunOnScreen({rows, 90, {{"PAGER", pager}, {"NO_COLOR", "1"}}}, arguments);
  }
};

TEST_F(Pager, IsForWhatIsLongerThanTheScreen) {
  const std::string pager = Write("cat; echo paged");
  EXPECT_TRUE(Shown(4, pager).out.ends_with("\npaged\n"));
  EXPECT_EQ(LinesOf(Shown(4, pager).out), 5u);
  EXPECT_EQ(LinesOf(Shown(5, pager).out), 4u) << "four lines and the prompt fit";
  EXPECT_EQ(LinesOf(Shown(4, pager, {"balance", "--no-pager"}).out), 4u);
}

TEST_F(Pager, MayHaveOptionsAndMayBeMissing) {
  const std::string pager = Write("cat; echo \"$1\"");
  EXPECT_TRUE(Shown(4, pager + " paged").out.ends_with("\npaged\n"));
  for (const std::string missing : {"/no/such/pager", "no-such-pager -x", "", "cat"}) {
    const RunResult shown = Shown(4, missing);
    EXPECT_EQ(shown.code, 0) << missing;
    EXPECT_EQ(LinesOf(shown.out), 4u) << missing << shown.out;
  }
}

TEST_F(Pager, ThatIsLeftEarlyIsNoFailure) {
  const std::string pager = Write("exec head -n 1");
  const RunResult long_one = RunOnScreen({10, 90, {{"PAGER", pager}}}, {"api", "--markdown"});
  EXPECT_EQ(long_one.code, 0);
  EXPECT_EQ(LinesOf(long_one.out), 1u) << long_one.out;
}

TEST_F(Pager, KeepsTheExitCode) {
  ASSERT_EQ(RunProgram({"user", book, "ann", "--roles", "reader", "--no-password"}).code, 0);
  const std::string pager = Write("cat; exit 7");
  EXPECT_EQ(Shown(4, pager).code, 0);
  const RunResult left_out = Shown(4, pager, {"show", "accounts", "1", "9"});
  EXPECT_EQ(left_out.code, 3) << left_out.out;
}

TEST_F(Pager, IsNotForQuestions) {
  const RunResult closing =
      RunOnScreen({3, 90, {{"PAGER", Write("cat; echo paged")}}, "n\n"}, {"close", book});
  EXPECT_EQ(closing.code, 1);
  EXPECT_NE(closing.out.find("Close it? [y/N] Nothing is closed.\n"), std::string::npos)
      << closing.out;
  EXPECT_EQ(closing.out.find("paged"), std::string::npos);
}

TEST(Password, IsAskedForAtATerminalAndNotShown) {
  const Folder folder;
  const std::string book = folder.Path("books.db");
  SetVariable("QDCLGL_SESSIONS", folder.Path("sessions"));
  SetVariable("QDCLGL_PASSWORD", "sesame");
  EXPECT_EQ(RunProgram({"init", book, "--year", "2024"}).code, 0);
  UnsetVariable("QDCLGL_PASSWORD");
  Screen screen;
  screen.question = "Password of administrator: ";
  screen.typed = "sesame\n";
  const RunResult login = RunOnScreen(screen, {"login", book});
  EXPECT_EQ(login.code, 0);
  EXPECT_EQ(login.out, "Password of administrator: \n"
                       "administrator is logged in for 8 hours; until then commands on these books "
                       "need no password.\n");
  EXPECT_EQ(RunProgram({"settings", book}).code, 0);
  screen.typed = "wrong\n";
  EXPECT_EQ(RunOnScreen(screen, {"login", book}).code, 5);
}

TEST(Output, WhoStopsReadingStopsNothing) {
  const RunResult read = RunProgram(
      {"-c", "set -o pipefail; " QDCLGL_PROGRAM " api --markdown | head -n 1 >/dev/null"},
      "/bin/bash");
  EXPECT_EQ(read.code, 0) << read.err;
  EXPECT_EQ(read.err, "");
}

}  // namespace
}  // namespace qdclgl::cli::testing
