// What a command line's last word could be, as the program tells it and as shells offer it.
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "qdclgl/cli/program.h"
#include "tests/cli/screen.h"

namespace qdclgl::cli::testing {
namespace {

class Completion : public ::testing::Test {
 protected:
  void SetUp() override {
    unsetenv("QDCLGL_BOOK");
    setenv("QDCLGL_REGISTRY", folder.Path("registry").c_str(), 1);
    book = folder.Path("books.db");
    ASSERT_EQ(RunProgram({"init", book, "--no-password", "--year", "2024"}).code, 0);
    const std::string chart = folder.Write("a.csv", "number,name,dc\n1000,Cash,1\n1001,Bank,1\n");
    ASSERT_EQ(RunProgram({"import", book, "--accounts", chart}).code, 0);
    ASSERT_EQ(RunProgram({"add", book, "groups", "Cash book"}).code, 0);
  }

  // The words that are told, with blanks between them.
  static std::string Told(std::vector<std::string> words) {
    words.insert(words.begin(), "complete");
    const RunResult result = RunInProcess(words);
    EXPECT_EQ(result.code, 0) << result.err;
    std::string told;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);) {
      told += (told.empty() ? "" : "|") + line.substr(0, line.find('\t'));
    }
    return told;
  }

  Folder folder;
  std::string book;
};

TEST_F(Completion, KnowsCommandsOptionsKindsColumnsAndClasses) {
  EXPECT_EQ(Told({"bal"}), "balance");
  EXPECT_EQ(RunInProcess({"complete", "balanc"}).out,
            "balance\tPrints the trial balance of what is posted\n");
  const Console nowhere{std::cout, std::cerr};
  Program program(nowhere);
  std::string all;
  for (const CLI::App* command : program.app().get_subcommands({})) {
    all += (all.empty() ? "" : "|") + command->get_name();
  }
  EXPECT_EQ(Told({}), all);
  EXPECT_EQ(Told({"help", "bal"}), "balance");
  EXPECT_EQ(Told({"balance", "--cs"}), "--csv");
  EXPECT_EQ(Told({"balance", "--color", ""}), "never|auto|always");
  EXPECT_EQ(Told({"api", "Currencyx"}), "Currencyx");
  EXPECT_EQ(Told({"list", "vou"}), "vouchers");
  EXPECT_EQ(Told({"show", "acc"}), "accounts");
  EXPECT_EQ(Told({"remove", "books.db", "curr"}), "currencies");
  EXPECT_EQ(Told({"set", "users", "ann", "FR"}), "FRoles=");
  EXPECT_EQ(Told({"add", "books.db", "users", "ann", "FV"}), "") << "nobody sets the version";
  EXPECT_EQ(Told({"nothing", "x"}), "");
}

TEST_F(Completion, KnowsWhatTheBooksHold) {
  EXPECT_EQ(Told({"show", book, "accounts", ""}), "1000|1001");
  EXPECT_EQ(Told({"new", book, "--group", ""}), "Cash book");
  EXPECT_EQ(Told({"new", book, "--line", "1001"}), "1001");
  EXPECT_EQ(Told({"balance", book, "--by", "cust"}), "customer");
  EXPECT_EQ(Told({"settings", book, "set", "CheckB"}), "CheckBeforePost");
  EXPECT_EQ(Told({"settings", book, "reset", "Company"}),
            "CompanyAddress|CompanyName|CompanyPhone");
  EXPECT_EQ(Told({"settings", book, "set", "CheckBeforePost", ""}), "");
  EXPECT_EQ(Told({"settings", book, ""}), "set|reset|Base|General|GL|SC");
  ASSERT_EQ(RunProgram({"formats", book, "add", "bank", "date=Day"}).code, 0);
  EXPECT_EQ(Told({"formats", book, ""}), "add|show|remove");
  EXPECT_EQ(Told({"formats", book, "show", ""}), "bank");
  EXPECT_EQ(Told({"formats", book, "add", ""}), "");
  EXPECT_EQ(Told({"import", book, "--format", ""}), "auto|bank");
  EXPECT_EQ(Told({"import", book, "--undo", ""}), "");
  EXPECT_EQ(Told({"rates", book, "add", "E"}), "EUR");
  EXPECT_EQ(Told({"balance", book, "--item", "cust"}), "customer=");
  setenv("QDCLGL_BOOK", book.c_str(), 1);
  EXPECT_EQ(RunInProcess({"complete", "set", "accounts", "1001"}).out, "1001\tBank\n");
  EXPECT_EQ(Told({"set", "accounts", "1001", "FNumb"}), "FNumber=");
  unsetenv("QDCLGL_BOOK");
  EXPECT_EQ(Told({"show", "accounts", ""}), "") << "no books are told";
  EXPECT_NE(RunInProcess({"complete", "show", folder.Path("a.csv"), "accounts", ""}).code, 0)
      << "shells offer nothing of what can't be opened";
}

// A shell that knows the completion, in which `probe` is completed as qdclgl is, and prints what it
// became.
class ShellCompletion : public Completion {
 protected:
  static constexpr const char* kFiles = QDCLGL_SOURCE_DIR "/qdclgl/cli/completion/";

  // What `probe` was given when somebody typed that, with a tab in place of each "<tab>".
  std::string Became(const std::string& shell, const std::vector<std::string>& options,
                     const std::string& typed) const {
    std::string keys = "probe " + typed;
    for (std::size_t at; (at = keys.find("<tab>")) != keys.npos;) keys.replace(at, 5, "\t");
    Screen screen;
    screen.columns = 200;
    screen.typed = keys + "\rexit\r";
    screen.environment = {{"QDCLGL_BOOK", book},
                          {"HOME", folder.Path("")},
                          {"ZDOTDIR", folder.Path("")},
                          {"PATH", std::filesystem::path(QDCLGL_PROGRAM).parent_path().string() +
                                       ":" + std::getenv("PATH")}};
    const std::string shown = RunOnScreen(screen, options, shell).out;
    const std::size_t first = shown.rfind("<<"), last = shown.find(">>", first);
    return first == shown.npos ? shown : shown.substr(first + 2, last - first - 2);
  }

  void ExpectAllCompleted(const std::string& shell, const std::vector<std::string>& options) const {
    ASSERT_TRUE(std::filesystem::exists(shell)) << "scripts/install-tools test brings it";
    EXPECT_EQ(Became(shell, options, "bala<tab>--cs<tab>"), "balance --csv");
    EXPECT_EQ(Became(shell, options, "show accounts 1001<tab>"), "show accounts 1001");
    EXPECT_EQ(Became(shell, options, "show acc<tab>1001"), "show accounts 1001");
    EXPECT_EQ(Became(shell, options, "set users ann FRol<tab>reader"),
              "set users ann FRoles=reader");
    EXPECT_EQ(Became(shell, options, "new --group Cas<tab>"), "new --group Cash book");
    EXPECT_EQ(Became(shell, options, "new --group <tab>--red"), "new --group Cash book --red");
  }
};

TEST_F(ShellCompletion, OfBash) {
  folder.Write("rc", std::string("source ") + kFiles + "qdclgl.bash\n" +
                         "probe() { echo \"<<$*>>\"; }\n"
                         "_probe() { COMP_WORDS[0]=qdclgl; _qdclgl; }\n"
                         "complete -o default -F _probe probe\n");
  ExpectAllCompleted("/bin/bash", {"--noprofile", "--rcfile", folder.Path("rc"), "-i"});
}

TEST_F(ShellCompletion, OfZsh) {
  folder.Write(".zshrc", std::string("fpath=(") + kFiles + " $fpath)\n" +
                             "autoload -Uz compinit; compinit -u -D\n"
                             "probe() { print -r -- \"<<$*>>\"; }\ncompdef _qdclgl probe\n");
  ExpectAllCompleted("/usr/bin/zsh", {"-d", "-i"});
}

TEST_F(ShellCompletion, OfFish) {
  const std::string start = std::string("source ") + kFiles + "qdclgl.fish; " +
                            "function probe; echo \"<<$argv>>\"; end; complete -c probe -w qdclgl; "
                            "function fish_prompt; end; set -U fish_greeting";
  ExpectAllCompleted("/usr/bin/fish", {"--no-config", "-i", "-C", start});
}

}  // namespace
}  // namespace qdclgl::cli::testing
