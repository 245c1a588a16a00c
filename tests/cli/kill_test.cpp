// Imports that are killed: what they leave, and that they go on where they were.
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <thread>

#include "tests/cli/cli_fixture.h"
#include "tests/support/random_seed.h"

namespace qdclgl::cli::testing {
namespace {

constexpr int kVouchers = 3000;

std::string Journal() {
  std::string text = "voucher,date,group,account,debit,credit\n";
  for (int i = 1; i <= kVouchers; ++i) {
    const std::string head = std::to_string(i) + ",2024-" + (i % 3 == 0 ? "02" : "01") + "-1" +
                             std::to_string(i % 10) + "," + (i % 2 == 0 ? "Even" : "Odd");
    const std::string amount = std::to_string(i) + ".25";
    text += head + ",1000," + amount + ",\n" + head + ",2000.01,," + amount + "\n";
  }
  return text;
}

class Kill : public CliTest {
 protected:
  // The vouchers without the ids, which a database may skip some of when a transaction is lost.
  static std::string VouchersOf(const std::string& books) {
    auto rows = ParseJson(
        RunInProcess({"vouchers", books, "--sort", "FPeriod, FGroup, FNumber", "--json"}).out);
    std::string text;
    for (auto& row : rows) {
      row.erase("FVoucherID");
      row.erase("FGroupID");
      text += row.dump() + "\n";
    }
    return text;
  }
};

TEST_P(Kill, AKilledImportContinuesAndEndsInTheSameBooks) {
  const std::string journal = folder.Write("many.csv", Journal());
  Init();
  const std::vector<std::string> resume = {"import", book, "--journal", journal, "--resume"};

  std::mt19937 random(qdclgl::testing::RandomSeed());
  int killed_on_the_way = 0;
  // The moments come later and later, so that a slow machine too gets to store something, and
  // never so much later that all of it is stored from one to the next.
  for (unsigned latest = 100; killed_on_the_way < 4 && latest < 20000; latest += latest / 4) {
    Process child = Start(resume, folder.Path("out"), folder.Path("err"));
    std::this_thread::sleep_for(std::chrono::milliseconds(latest - random() % (latest / 4)));
    child.Kill();
    const bool was_killed = child.Wait() == Process::kKilled;
    ASSERT_EQ(Run({"doctor"}).out, "The books are in order.\n");
    const auto stored = ParseJson(Run({"vouchers", "--json"}).out).size();
    ASSERT_EQ(stored % 500, 0u);
    if (was_killed && stored > 0 && stored < kVouchers) ++killed_on_the_way;
    if (stored == kVouchers) break;
  }
  EXPECT_GT(killed_on_the_way, 0);
  const RunResult last = RunInProcess(resume);
  EXPECT_EQ(last.code, 0) << last.err;

  const std::string other = server::testing::NewConnectionText(GetParam());
  ASSERT_EQ(RunInProcess({"init", other, "--no-password", "--year", "2024"}).code, 0);
  ASSERT_EQ(RunInProcess(
                {"import", other, "--accounts", folder.Path("accounts.csv"), "--journal", journal})
                .code,
            0);
  EXPECT_TRUE(VouchersOf(book) == VouchersOf(other));
  for (const std::string& books : {book, other}) {
    EXPECT_EQ(RunInProcess({"post", books, "--all"}).out,
              std::to_string(kVouchers) + " vouchers posted.\n");
  }
  EXPECT_EQ(RunInProcess({"balance", book, "--csv"}).out,
            RunInProcess({"balance", other, "--csv"}).out);
  server::testing::RemoveBooks(other);
}

QDCLGL_CLI_TEST(Kill);

}  // namespace
}  // namespace qdclgl::cli::testing
