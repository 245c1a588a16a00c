// Imports in whose way the database fails, and imports at once.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/refusals.h"
#include "tests/cli/cli_fixture.h"
#include "tests/server/faults/cutting_proxy.h"
#include "tests/server/faults/fault_sweep.h"

namespace qdclgl::cli::testing {
namespace {

using server::ConnectionText;
using server::testing::CuttingProxy;
using server::testing::SweptOperation;
namespace connection_key = server::connection_key;

// The refusal that a run ended with, by name; "none" for one that is done.
std::string RefusalOf(const RunResult& result) {
  if (result.code == 0) return "none";
  for (const server::RefusalRow& row : server::kRefusals) {
    char number[sizeof "80044200"];
    std::snprintf(number, sizeof number, "%08X", static_cast<unsigned>(row.number));
    if (result.err.starts_with("qdclgl: " + std::string(number))) return std::string(row.name);
  }
  return result.err;
}

class Faults : public CliTest {
 protected:
  // A journal of so many vouchers whose references begin alike.
  std::string Journal(int vouchers, const std::string& references = "") const {
    std::string text = "voucher,date,group,account,debit,credit\n";
    for (int i = 1; i <= vouchers; ++i) {
      const std::string head = references + std::to_string(i) + ",2024-01-05,Sales,";
      text += head + "1000,1.00,\n" + head + "2000.01,,1.00\n";
    }
    return folder.Write("journal.csv", text);
  }
  // Starts the program twice with the same words; the two exit codes, the lesser one first.
  std::vector<int> RunTwiceAtOnce(const std::vector<std::string>& arguments) const {
    std::vector<int> codes;
    std::vector<pid_t> children;
    for (const char* file : {"first", "second"}) {
      children.push_back(Start(arguments, folder.Path(file), folder.Path(file)));
    }
    for (const pid_t child : children) {
      int status = 0;
      waitpid(child, &status, 0);
      codes.push_back(WIFEXITED(status) ? WEXITSTATUS(status) : -1);
    }
    std::ranges::sort(codes);
    return codes;
  }
};
QDCLGL_CLI_TEST(Faults);

TEST_P(Faults, ImportsAreWholeOrRefused) {
  Init();
  const std::string journal = Journal(2);
  const std::string place = server::testing::NewConnectionText(GetParam());
  std::unique_ptr<CuttingProxy> proxy;
  const ConnectionText text = ConnectionText::Parse(place);
  std::string reached = text.With(connection_key::kSynchronous, "Full").ToText();
  if (!text.IsSQLite()) {
    proxy = std::make_unique<CuttingProxy>(std::string(text[connection_key::kHost]),
                                           std::string(text[connection_key::kPort]));
    reached = text.With(connection_key::kPort, proxy->port()).ToText();
    ASSERT_EQ(RunInProcess({"init", "--no-password", place, "--year", "2024"}).code, 0);
  }
  const SweptOperation import{
      .name = "Import",
      .restore = [&] { server::testing::CopyBooks(book, place); },
      .act =
          [&] {
            return RefusalOf(RunInProcess({"import", reached, "--journal", journal}));
          },
      .state =
          [&] {
            return RunInProcess({"vouchers", reached, "--json"}).out +
                   RunInProcess({"groups", reached, "--json"}).out;
          },
      .check =
          [&] {
            return RunInProcess({"doctor", reached}).out;
          }};
  RecordProperty("Import", proxy ? SweepConnection(*proxy, import) : SweepDisk(import));
  server::testing::RemoveBooks(place);
}

TEST_P(Faults, OfTwoImportsAtOnceEachVoucherIsStoredOnce) {
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
  for (const auto& row : nlohmann::json::parse(Run({"vouchers", "--json"}).out)) {
    ++stored[row["FReference"].get<std::string>()];
  }
  EXPECT_EQ(stored.size(), std::size_t{kRounds * kVouchers});
  for (const auto& [reference, count] : stored) EXPECT_EQ(count, 1) << reference;
  EXPECT_EQ(Run({"doctor"}).out, "The books are in order.\n");
}

TEST_P(Faults, OfTwoWhoMakeTheSameBooksAtOnceOneDoes) {
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
