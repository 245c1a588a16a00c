// Real books of three years, with the balances that another program gives them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/csv_reader.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

std::string DataFolder() {
  const char* given = std::getenv("QDCLGL_TEST_DATA");
  return (given != nullptr ? std::string(given) : QDCLGL_SOURCE_DIR "/../shared/data") +
         "/household";
}

// The rows with their amounts in one form.
std::vector<std::string> BalancesIn(const std::string& text) {
  std::istringstream in(text);
  CsvReader reader(in);
  std::vector<std::string> rows;
  CsvRow row;
  reader.Next(row);
  while (reader.Next(row)) {
    EXPECT_EQ(row.cells.size(), 4u);
    std::string line = row.cells[0].text;
    for (std::size_t i = 1; i < row.cells.size(); ++i) {
      line += "," + AmountText(ReadAmount(row.cells[i].text));
    }
    rows.push_back(line);
  }
  return rows;
}

class Household : public CliTest {
 protected:
  // A ledger of each account that has others below it, with a column for each of these and side:
  // all it carries forward is what the balances say.
  void ExpectLedgersAgreeWithTheBalances() const {
    std::map<std::string, Json> balances;
    for (const Json& row : ParseJson(Run({"balance", "--json"}).out)) {
      if (row["FCurrencyID"] == 0) balances[row["FAccountNumber"]] = row;
    }
    std::size_t columns = 0;
    for (const auto& [number, balance] : balances) {
      if (balance["FDetail"] == true) continue;
      for (const std::string side : {"debit", "credit"}) {
        SCOPED_TRACE(number + " " + side);
        const std::string name = number + " " + side;
        ASSERT_EQ(Run({"ledger", "add", name, "--account", number, "--columns", "children",
                       "--side", side})
                      .err,
                  "");
        const Json rows = ParseJson(
            Run({"ledger", name, "--from", "2021/1", "--to", "2023-12-31", "--json"}).out);
        const Json& closing = rows.back();
        EXPECT_EQ(closing["FDebit"], balance["FDebit"]);
        EXPECT_EQ(closing["FCredit"], balance["FCredit"]);
        const Json ledger =
            ParseJson(Run({"ledgers", "--filter", "FLedgerName = '" + name + "'", "--json"}).out);
        std::size_t i = 0;
        for (const Json& column : ledger[0]["_Columns"]) {
          const auto of = balances.find(column["FAccountNumber"]);
          EXPECT_EQ(closing["FColumn" + std::to_string(++i)],
                    of == balances.end() ? Json("0.0000")
                                         : of->second[side == "debit" ? "FDebit" : "FCredit"])
              << column;
        }
        columns += i;
      }
    }
    EXPECT_GT(columns, 100u);
    EXPECT_EQ(Run({"doctor"}).out, "The books are in order.\n");
  }

  // Opening cash and the flows of each quarter are the closing cash, which is what the accounts'
  // balances say and what the next quarter begins with.
  void ExpectCashFlowsAddUp() const {
    const auto amount = [](const Json& row, const char* key) {
      return ReadAmount(row[key].get<std::string>());
    };
    Currency balance;
    for (const Json& row : ParseJson(Run({"balance", "--json"}).out)) {
      const std::string number = row["FAccountNumber"];
      if (row["FCurrencyID"] != 0 || row["FDetail"] == false || !number.starts_with("1000.01.01")) {
        continue;
      }
      ASSERT_EQ(Run({"set", "accounts", number, "FIsBank=yes"}).err, "");
      balance += amount(row, "FEndBalance");
    }
    Currency cash;
    std::size_t flows_told = 0;
    for (int quarter = 0; quarter < 12; ++quarter) {
      const std::string year = std::to_string(2021 + quarter / 4) + "/";
      const int first = quarter % 4 * 3 + 1;
      const Json rows = ParseJson(Run({"cashflow", "--json", "--from", year + std::to_string(first),
                                       "--to", year + std::to_string(first + 2)})
                                      .out);
      EXPECT_EQ(amount(rows.front(), "FNet"), cash) << quarter;
      for (const Json& row : rows) {
        if (row["FRow"] == "Item" || row["FRow"] == "Account") cash += amount(row, "FNet");
      }
      flows_told += rows.size() - 2;
      EXPECT_EQ(amount(rows.back(), "FNet"), cash) << quarter;
    }
    EXPECT_EQ(cash, balance);
    EXPECT_GT(flows_told, 50u);
  }

  // A statement of each account, line by line and period by period, ends where the balances do.
  void ExpectStatementsAgreeWithTheBalances() const {
    for (const Json& balance : ParseJson(Run({"balance", "--json"}).out)) {
      if (balance["FCurrencyID"] != 0) continue;
      for (const char* form : {"--unposted", "--monthly"}) {
        const Json rows = ParseJson(Run({"statement", balance["FAccountNumber"], "--from", "2021",
                                         "--to", "2023", "--json", form})
                                        .out);
        SCOPED_TRACE(balance["FAccountNumber"].get<std::string>() + " " + form);
        EXPECT_EQ(rows.back()["FDebit"], balance["FDebit"]);
        EXPECT_EQ(rows.back()["FCredit"], balance["FCredit"]);
        EXPECT_EQ(rows.back()["FBalance"], balance["FEndBalance"]);
      }
    }
  }

  // The amounts of a balance list by account, credits positive where that is how the kind is read.
  std::map<std::string, std::string> SumsOf(const std::vector<std::string>& command,
                                            const std::string& numbers, bool ends) const {
    std::map<std::string, std::string> sums;
    for (const Json& row : ParseJson(Run(command).out)) {
      const std::string number = row["FAccountNumber"];
      if (row["FCurrencyID"] != 0 || numbers.find(number[0]) == numbers.npos) continue;
      const auto amount = [&](const char* key) { return ReadAmount(row[key].get<std::string>()); };
      const Currency debit = ends ? amount("FEndBalance") : amount("FDebit") - amount("FCredit");
      const bool is_debit = number[0] == '1' || number[0] == '5';
      if (debit != Currency()) sums[number] = AmountText(is_debit ? debit : -debit);
    }
    return sums;
  }
  std::map<std::string, std::string> AccountsOf(const std::vector<std::string>& command) const {
    std::map<std::string, std::string> accounts;
    for (const Json& row : ParseJson(Run(command).out)) {
      if (row["FRow"] == "Account") accounts[row["FAccountNumber"]] = row["FAmount"];
      if (row["FRow"] == "Difference") {
        EXPECT_EQ(row["FAmount"], "0.0000");
      }
    }
    return accounts;
  }
  // Year by year, of each account at whatever level.
  void ExpectResultsAgreeWithTheBalances() const {
    std::size_t accounts = 0;
    for (const auto& [number, kind] : std::map<std::string, std::string>{{"1000", "asset"},
                                                                         {"2000", "liability"},
                                                                         {"3000", "equity"},
                                                                         {"4000", "income"},
                                                                         {"5000", "expense"}}) {
      ASSERT_EQ(Run({"set", "accounts", number, "FKind=" + kind}).err, "");
    }
    for (const std::string year : {"2021", "2022", "2023"}) {
      SCOPED_TRACE(year);
      const auto of_year = [&](const char* command) {
        return std::vector<std::string>{command, "--year", year, "--json"};
      };
      const auto income = AccountsOf(of_year("income")), position = AccountsOf(of_year("position"));
      EXPECT_EQ(income, SumsOf(of_year("balance"), "45", false));
      EXPECT_EQ(position, SumsOf(of_year("balance"), "123", true));
      accounts += income.size() + position.size();
    }
    EXPECT_GT(accounts, 200u);
  }
};

TEST_P(Household, TheImportReproducesTheBalances) {
  const std::string data = DataFolder();
  if (!std::filesystem::exists(data)) GTEST_SKIP() << "there is no folder " << data;
  ASSERT_EQ(Run({"init", "--no-password", "--year", "2021", "--currency", "USD"}).code, 0);
  const RunResult result =
      Run({"import", "--accounts", data + "/accounts.csv", "--journal", data + "/journal.csv",
           "--new-currencies", "--check-all", "--post-all"});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "accounts: 98 stored, 0 there already, 0 left out\n"
                        "vouchers: 1142 stored as import 1, 0 passed over, 0 left out\n"
                        "1142 vouchers checked.\n"
                        "1142 vouchers posted.\n");
  ASSERT_EQ(result.code, 0);
  const std::vector<std::string> expected = BalancesIn(ReadFile(data + "/balances.csv"));
  EXPECT_EQ(expected.size(), 61u);
  EXPECT_EQ(BalancesIn(Run({"balance", "--csv"}).out), expected);
  EXPECT_EQ(Run({"doctor"}).out, "The books are in order.\n");
  ExpectLedgersAgreeWithTheBalances();
  ExpectStatementsAgreeWithTheBalances();
  ExpectCashFlowsAddUp();
  ExpectResultsAgreeWithTheBalances();
}

QDCLGL_CLI_TEST(Household);

}  // namespace
}  // namespace qdclgl::cli::testing
