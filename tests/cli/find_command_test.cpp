#include <gtest/gtest.h>

#include <algorithm>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class Find : public CliTest {
 protected:
  void InitWithLines() const {
    Init();
    const std::string path = folder.Write(
        "journal.csv", "voucher,date,account,debit,credit,explanation,reference\n"
                       "a,2024-01-05,2000.01,119,,Green Tea,R-1\na,2024-01-05,1000,,119,,\n"
                       "b,2024-02-05,2000.01,12,,KÄSE,\nb,2024-02-05,1001,,12,,\n");
    ASSERT_EQ(Run({"import", "--journal", path}).err, "");
    ASSERT_EQ(Run({"post", "1"}).err, "");
  }
};

TEST_P(Find, ShowsTheLinesThatHaveAllWords) {
  InitWithLines();
  EXPECT_EQ(Run({"find", "tea", "119", "capital"}).out,
            "ID  Date        Voucher    Account  Name     Explanation  Reference   Debit\n"
            " 1  2024-01-05  General 1  2000.01  Capital  Green Tea    R-1        119.00\n");
  EXPECT_EQ(Run({"find", "--from", "2024-02", "käse"}).out,
            "ID  Date        Voucher    State       Account  Name     Explanation  Reference  "
            "Debit  Credit\n"
            " 2  2024-02-05  General 1  not posted  2000.01  Capital  KÄSE         b          "
            "12.00\n"
            " 2  2024-02-05  General 1  not posted  1001     Bank     KÄSE         b          "
            "        12.00\n")
      << "a line without a text has its voucher's";
  EXPECT_EQ(Run({"find", "green tea", "r-1", "--amount", "100..", "--csv"}).out,
            "FVoucherID,FEntryID,FDate,FYear,FPeriod,FGroup,FNumber,FPosted,FPreparer,FReference,"
            "FAccountNumber,FAccountName,FExplanation,FTransNo,FAmount,FDebit,FCredit,"
            "FCurrencyNumber,FAmountFor\n"
            "1,1,2024-01-05,2024,1,General,1,true,administrator,a,2000.01,Capital,Green Tea,R-1,"
            "119.0000,119.0000,0.0000,EUR,119.0000\n");
}

TEST_P(Find, OptionsNarrowAndPagesGoOn) {
  InitWithLines();
  const auto count = [&](std::vector<std::string> words) {
    words.insert(words.begin(), "find");
    words.emplace_back("--csv");
    const std::string out = Run(words).out;
    return std::count(out.begin(), out.end(), '\n') - 1;
  };
  EXPECT_EQ(count({}), 4);
  EXPECT_EQ(count({"--account", "1000"}), 1);
  EXPECT_EQ(count({"--posted"}), 2);
  EXPECT_EQ(count({"--unposted"}), 2);
  EXPECT_EQ(count({"--amount", "..12"}), 2);
  EXPECT_EQ(count({"--amount", "119"}), 2);
  EXPECT_EQ(count({"--group", "General", "--preparer", "administrator"}), 4);
  EXPECT_EQ(count({"--preparer", "ann"}), 0);
  EXPECT_EQ(count({"--first", "2", "--count", "2"}), 2);
  const std::string page = Run({"find", "--count", "3"}).out;
  EXPECT_TRUE(page.ends_with("There may be more lines; they go on with --first 4\n")) << page;
  EXPECT_EQ(Run({"find", "coffee"}).out, "No line has all that.\n");
}

TEST_P(Find, WithBooksFromTheEnvironmentAllWordsAreLookedFor) {
  InitWithLines();
  const std::string found = Run({"find", "green tea", "--csv"}).out;
  SetVariable("QDCLGL_BOOK", book);
  EXPECT_EQ(RunInProcess({"find", "green", "tea", "--csv"}).out, found);
  EXPECT_EQ(RunInProcess({"find", "--csv", "Green"}).out, found);
  UnsetVariable("QDCLGL_BOOK");
}

QDCLGL_CLI_TEST(Find);

}  // namespace
}  // namespace qdclgl::cli::testing
