// What a command line's last word could be, as the program tells it.
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "qdclgl/cli/program.h"
#include "tests/cli/completion_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class Completion : public CompletionTest {
 protected:
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
  SetVariable("QDCLGL_BOOK", book);
  EXPECT_EQ(RunInProcess({"complete", "set", "accounts", "1001"}).out, "1001\tBank\n");
  EXPECT_EQ(Told({"set", "accounts", "1001", "FNumb"}), "FNumber=");
  UnsetVariable("QDCLGL_BOOK");
  EXPECT_EQ(Told({"show", "accounts", ""}), "") << "no books are told";
  EXPECT_NE(RunInProcess({"complete", "show", folder.Path("a.csv"), "accounts", ""}).code, 0)
      << "shells offer nothing of what can't be opened";
}

}  // namespace
}  // namespace qdclgl::cli::testing
