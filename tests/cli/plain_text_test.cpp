// Books as text for other programs, which find the same balances in it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

#include "qdclgl/cli/cell_values.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

std::string HouseholdFolder() {
  const char* given = std::getenv("QDCLGL_TEST_DATA");
  return (given != nullptr ? std::string(given) : QDCLGL_SOURCE_DIR "/../shared/data") +
         "/household";
}

// "1000.01" for "1000 Cash and banks:01 Cash box", "Assets:1000-Cash:01-Box" likewise.
std::string NumberIn(const std::string& name) {
  std::string number;
  std::istringstream parts(name);
  for (std::string part; std::getline(parts, part, ':');) {
    if (part.empty() || part[0] < '0' || part[0] > '9') continue;
    number += (number.empty() ? "" : ".") + part.substr(0, part.find_first_of(" -"));
  }
  return number;
}

// What a program prints, a line "NAME|AMOUNT..." for each account, as amounts by number; zeros are
// left out.
std::map<std::string, std::string> Amounts(const std::string& text, char between) {
  std::map<std::string, Currency> sums;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::erase(line, '"');
    const std::size_t at = line.rfind(between);
    const std::string number = at == line.npos ? "" : NumberIn(line.substr(0, at));
    if (number.empty()) continue;
    std::string amount = line.substr(at + 1);
    std::erase(amount, '\r');
    amount = amount.substr(amount.find_first_not_of(' '));
    if (!amount.starts_with("0E")) sums[number] += ReadAmount(amount.substr(0, amount.find(' ')));
  }
  std::map<std::string, std::string> amounts;
  for (const auto& [number, sum] : sums) {
    if (sum != Currency()) amounts[number] = AmountText(sum);
  }
  return amounts;
}

class PlainText : public CliTest {
 protected:
  // Every balance of every account, as the three programs find it in what is exported with these
  // options.
  void ExpectProgramsAgree(const std::vector<std::string>& options) const {
    std::map<std::string, std::string> expected;
    for (const Json& row : ParseJson(Run({"balance", "--json"}).out)) {
      if (row["FCurrencyID"] != 0 || row["FDetail"] != true) continue;
      std::string number = row["FAccountNumber"];
      if (number.ends_with("._")) number.resize(number.size() - 2);
      if (row["FEndBalance"] != "0.0000") expected[number] = row["FEndBalance"];
    }
    EXPECT_GT(expected.size(), 10u);

    const auto write = [&](const std::string& format) {
      const std::string file = folder.Path("books." + format);
      std::vector<std::string> words = {"export", "--force", "--format", format, file};
      words.insert(words.end(), options.begin(), options.end());
      EXPECT_EQ(Run(words).err, "");
      return file;
    };
    const RunResult hledger = RunProgram(
        {"-f", write("hledger"), "balance", "-B", "-C", "--flat", "--no-total", "-O", "csv"},
        "/usr/bin/hledger");
    EXPECT_EQ(hledger.err, "");
    EXPECT_EQ(Amounts(hledger.out, ','), expected);
    const RunResult ledger =
        RunProgram({"-f", write("ledger"), "register", "-B", "--cleared", "--register-format",
                    "%(account)|%(quantity(scrub(display_amount)))\n"},
                   "/usr/bin/ledger");
    EXPECT_EQ(ledger.err, "");
    EXPECT_EQ(Amounts(ledger.out, '|'), expected);
    const RunResult beancount = RunProgram({write("beancount")}, "/usr/bin/bean-check");
    EXPECT_EQ(beancount.code, 0);
    EXPECT_EQ(beancount.out + beancount.err, "");
    const RunResult query =
        RunProgram({"-f", "csv", folder.Path("books.beancount"),
                    "SELECT account, sum(number(weight)) WHERE flag = '*' GROUP BY account"},
                   "/usr/bin/bean-query");
    EXPECT_EQ(Amounts(query.out, ','), expected) << query.err;
  }
};

TEST_P(PlainText, GivesTheSampleBooksTheSameBalances) {
  KeepOddSample();
  // One that is not posted counts nowhere.
  ASSERT_EQ(Run({"new", "--line", "1000.01 debit 3 open", "--line", "3000.01 credit", "--date",
                 "2024-12-31"})
                .err,
            "");
  ExpectProgramsAgree({});
  // What was before is told as balances.
  ExpectProgramsAgree({"--from", "2024/2"});
}

TEST_P(PlainText, GivesHouseholdBooksTheSameBalances) {
  const std::string data = HouseholdFolder();
  if (!std::filesystem::exists(data)) GTEST_SKIP() << "there is no folder " << data;
  ASSERT_EQ(Run({"init", "--no-password", "--year", "2021", "--currency", "USD"}).code, 0);
  ASSERT_EQ(Run({"import", "--accounts", data + "/accounts.csv", "--journal", data + "/journal.csv",
                 "--new-currencies", "--check-all", "--post-all"})
                .err,
            "");
  ExpectProgramsAgree({});
  ExpectProgramsAgree({"--from", "2022/1"});
}

TEST_P(PlainText, TellsStatesCurrenciesQuantitiesAndTexts) {
  Init();
  ASSERT_EQ(Run({"add", "currencies", "USD1", "FName=Dollar", "FExchangeRate=0.5"}).err, "");
  const std::string chart =
      folder.Write("tea.csv", "number,name,dc,unit,quantities\n1003,Tea: green  [fine],1,kg,yes\n");
  ASSERT_EQ(Run({"import", "--accounts", chart}).err, "");
  const std::string journal = folder.Write(
      "j.csv", "voucher,date,account,debit,credit,explanation,currency,amount_for,quantity,unit\n"
               "a,2024-01-02,1003,50,,Bought: today; [2024-99-99] | ours,,,2.5,kg\n"
               "a,2024-01-02,1000,,50,date:never,USD1,100,,\n"
               "b,2024-01-03,1000,20,,Sold,,,,\nb,2024-01-03,1003,,20,Sold,,,1,kg\n");
  ASSERT_EQ(Run({"import", "--journal", journal}).err, "");
  const std::string head = "\n2024-01-02 ! (2024/1 General 1) Bought, today, (2024-99-99), ours\n";
  EXPECT_EQ(Run({"export", "--format", "hledger", "-"}).out,
            head + "  1003 Tea, green [fine]  2.5 kg @@ 50.0000 EUR\n"
                   "  1000 Cash  -100.0000 \"USD1\" @@ 50.0000 EUR  ; date,never\n"
                   "\n2024-01-03 ! (2024/1 General 2) Sold\n"
                   "  1000 Cash  20.0000 EUR\n"
                   "  1003 Tea, green [fine]  -1 kg @@ 20.0000 EUR\n");
  const std::string beancount = Run({"export", "--format", "beancount", "-"}).out;
  EXPECT_NE(beancount.find("\n2024-01-02 ! \"Bought: today; [2024-99-99] | ours\"\n"
                           "  code: \"2024/1 General 1\"\n"
                           "  Assets:1003-Tea-green-fine  2.5 KG @@ 50.0000 EUR\n"
                           "  Assets:1000-Cash  -100.0000 USD1 @@ 50.0000 EUR  ; date,never\n"),
            std::string::npos)
      << beancount;
  for (const char* program : {"/usr/bin/hledger", "/usr/bin/ledger"}) {
    const std::string file = folder.Path("text");
    ASSERT_EQ(Run({"export", "--force", "--format", "hledger", file}).code, 0);
    EXPECT_EQ(RunProgram({"-f", file, "balance"}, program).err, "");
  }
}

QDCLGL_CLI_TEST(PlainText);

}  // namespace
}  // namespace qdclgl::cli::testing
