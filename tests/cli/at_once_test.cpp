// Two who do the same at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "qdclgl/server/db/connections.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class AtOnce : public CliTest {
 protected:
  // A journal of so many vouchers whose references begin alike.
  std::string Journal(int vouchers, const std::string& references) const {
    std::string text = "voucher,date,group,account,debit,credit\n";
    for (int i = 1; i <= vouchers; ++i) {
      const std::string head = references + std::to_string(i) + ",2024-01-05,Sales,";
      text += head + "1000,1.00,\n" + head + "2000.01,,1.00\n";
    }
    return folder.Write("journal.csv", text);
  }
  // Starts the program twice with the same words; the two exit codes, the lesser one first.
  std::vector<int> RunTwiceAtOnce(const std::vector<std::string>& arguments) const {
    std::vector<Process> children;
    for (const char* file : {"first", "second"}) {
      children.push_back(Start(arguments, folder.Path(file), folder.Path(file)));
    }
    std::vector<int> codes;
    for (Process& child : children) codes.push_back(child.Wait());
    std::ranges::sort(codes);
    return codes;
  }
};
QDCLGL_CLI_TEST(AtOnce);

TEST_P(AtOnce, OfTwoImportsAtOnceEachVoucherIsStoredOnce) {
  constexpr int kRounds = 4, kVouchers = 60;
  ASSERT_EQ(Run({"init", "--no-password", "--year", "2024"}).code, 0);
  server::Connections::OfThisThread().CloseAll();
  const std::string chart =
      folder.Write("accounts.csv", "number,name,dc\n1000,Cash,1\n2000,Equity,-1\n2000.01,Own,-1\n");
  for (int round = 0; round < kRounds; ++round) {
    // Both find out at the same time what is new to the books, the first time chart and group too.
    const std::string journal = Journal(kVouchers, "round" + std::to_string(round));
    EXPECT_EQ(
        RunTwiceAtOnce({"import", book, "--accounts", chart, "--journal", journal, "--resume"}),
        (std::vector<int>{0, 0}))
        << ReadFile(folder.Path("first")) << ReadFile(folder.Path("second"));
  }
  std::map<std::string, int> stored;
  for (const auto& row : ParseJson(Run({"vouchers", "--json"}).out)) {
    ++stored[row["FReference"].get<std::string>()];
  }
  EXPECT_EQ(stored.size(), std::size_t{kRounds * kVouchers});
  for (const auto& [reference, count] : stored) EXPECT_EQ(count, 1) << reference;
  EXPECT_EQ(Run({"doctor"}).out, "The books are in order.\n");
}

TEST_P(AtOnce, OfTwoWhoMakeTheSameBooksAtOnceOneDoes) {
  constexpr int kRounds = 8;
  for (int round = 0; round < kRounds; ++round) {
    EXPECT_EQ(RunTwiceAtOnce({"init", "--no-password", book, "--year", "2024"}),
              (std::vector<int>{0, 1}));
    const std::string answers = ReadFile(folder.Path("first")) + ReadFile(folder.Path("second"));
    EXPECT_NE(answers.find("80044205"), answers.npos) << answers;
    EXPECT_EQ(Run({"doctor"}).out, "The books are in order.\n");
    server::testing::RemoveBooks(book);
  }
}

}  // namespace
}  // namespace qdclgl::cli::testing
