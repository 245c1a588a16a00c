// Items on the command line: imports that name them, and balances by them.
#include <gtest/gtest.h>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

// Account 1100 asks for customers, 1200 for customers and departments.
class ItemBalances : public CliTest {
 protected:
  void InitWithItems() const {
    Init();
    for (const auto& words : std::initializer_list<std::vector<std::string>>{
             {"add", "accounts", "1100", "FName=Receivables", R"(_Items=[{"FItemClassID":3}])"},
             {"add", "accounts", "1200", "FName=Projects",
              R"(_Items=[{"FItemClassID":3},{"FItemClassID":1}])"},
             {"add", "items", "C001", "FItemClassID=3", "FName=Anna"},
             {"add", "items", "C002", "FItemClassID=3", "FName=Bert"},
             {"add", "items", "SHOP", "FItemClassID=1", "FName=Shop"}}) {
      const RunResult result = Run(words);
      ASSERT_EQ(result.code, 0) << result.err;
    }
  }
  // Rows under a heading that has columns of items too.
  RunResult ImportWithItems(const std::string& rows,
                            const std::string& item_headings = "Customer,department") const {
    const std::string path = folder.Write(
        "journal.csv", "voucher,date,account,debit,credit," + item_headings + "\n" + rows);
    RunResult result = Run({"import", "--journal", path});
    // Reports name the file as the command line does.
    for (std::size_t at; (at = result.err.find(path)) != result.err.npos;) {
      result.err.replace(at, path.size(), "journal.csv");
    }
    return result;
  }
  void Post(const std::string& rows) const {
    const RunResult result = ImportWithItems(rows);
    ASSERT_EQ(result.code, 0) << result.err;
    ASSERT_EQ(Run({"post", "--all"}).code, 0);
  }
  // What is reported of a voucher with this first row; it is not stored.
  std::string ReportOf(const std::string& row) const {
    const RunResult result = ImportWithItems("a,2024-01-05," + row + "\na,2024-01-05,1000,,10,,\n");
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.out, "vouchers: 0 stored, 0 passed over, 1 left out\n");
    return result.err;
  }

  static constexpr const char* kJournal =
      "a,2024-01-05,1100,10,,c001,\na,2024-01-05,1000,,10,,\n"
      "b,2024-02-05,1100,5,,C002,\nb,2024-02-05,1000,,5,,\n"
      "c,2024-02-06,1200,7,,C001,shop\nc,2024-02-06,1100,,2,C001,\nc,2024-02-06,1000,,5,,\n";
};

TEST_P(ItemBalances, AreSplitByClassesUnderAnyOfTheirNames) {
  InitWithItems();
  Post(kJournal);
  const std::string by_customers = "account,customer,debit,credit,balance\n"
                                   "1100,C001,10.0000,2.0000,8.0000\n"
                                   "1100,C002,5.0000,0.0000,5.0000\n"
                                   "1200,C001,7.0000,0.0000,7.0000\n";
  for (const char* word : {"customers", "CUSTOMER", "Customer", "客户", "客戶"}) {
    EXPECT_EQ(Run({"balance", "--csv", "--by", word}).out, by_customers) << word;
  }
  EXPECT_EQ(Run({"balance", "--by", "customers,departments", "--csv"}).out,
            "account,customer,dep,debit,credit,balance\n1200,C001,SHOP,7.0000,0.0000,7.0000\n");
  EXPECT_EQ(Run({"balance", "--by", "customers", "--year", "2024", "--from", "2"}).out,
            "Account  Name         Customer   Begin  Debit  Credit    End\n"
            "1100     Receivables  C001 Anna  10.00           2.00   8.00\n"
            "1100     Receivables  C002 Bert   0.00   5.00           5.00\n"
            "1200     Projects     C001 Anna   0.00   7.00           7.00\n"
            "         Total                   10.00  12.00    2.00  20.00\n");
}

TEST_P(ItemBalances, AreThoseOfOneItem) {
  InitWithItems();
  Post(kJournal);
  EXPECT_EQ(Run({"balance", "--item", "customers=c001", "--csv"}).out,
            "account,customer,debit,credit,balance\n1100,C001,10.0000,2.0000,8.0000\n"
            "1200,C001,7.0000,0.0000,7.0000\n");
  EXPECT_EQ(Run({"balance", "--by", "dep", "--item", "customers=C001", "--csv"}).out,
            "account,dep,customer,debit,credit,balance\n1200,SHOP,C001,7.0000,0.0000,7.0000\n");
  EXPECT_EQ(Run({"balance", "--by", "customers", "--item", "customers=C002", "--item", "dep=SHOP",
                 "--csv"})
                .out,
            "account,customer,dep,debit,credit,balance\n");
}

TEST_P(ItemBalances, WhatIsMisspeltIsToldWithTheNearest) {
  InitWithItems();
  const auto refused = [&](const std::string& option, const std::string& value) {
    const RunResult result = Run({"balance", option, value});
    EXPECT_EQ(result.code, 2);
    return result.err.substr(0, result.err.find(" There are"));
  };
  EXPECT_EQ(refused("--by", "custmers"),
            "qdclgl: there is no item class \"custmers\"; did you mean CUSTOMER?");
  EXPECT_EQ(refused("--by", "customers,departmnt"),
            "qdclgl: there is no item class \"departmnt\"; did you mean Department?");
  EXPECT_EQ(refused("--item", "customers"),
            "qdclgl: \"customers\" is not of the form class=number; see qdclgl help balance\n");
  EXPECT_EQ(refused("--item", "customers=C003"),
            "qdclgl: there is no item \"C003\" of item class CUSTOMER; see qdclgl help balance\n");
}

TEST_P(ItemBalances, ImportsReportItemsAtTheirCells) {
  InitWithItems();
  EXPECT_EQ(ReportOf("1100,10,,C009,"),
            "journal.csv:2:23: there is no item \"C009\" of item class CUSTOMER\n");
  EXPECT_EQ(ReportOf("1100,10,,C001,SHOP"),
            "journal.csv:2:28: the account asks for no item of item class DEP\n");
  EXPECT_EQ(ReportOf("1100,10,,,"),
            "journal.csv:2:1: 8004422F: The new voucher of 2024-01-05 (a): line 1: account 1100 "
            "asks for an item of item class CUSTOMER (客户), and the line names none.\n");
  EXPECT_EQ(ImportWithItems("", "custmer").err,
            "journal.csv:1:35: there is no column \"custmer\"; did you mean CUSTOMER? There are "
            "voucher, date, account, debit, credit, group, number, explanation, currency, "
            "amount_for, rate, quantity, unit, unit_price, reference, voucher_reference, "
            "voucher_explanation, settlement, CUSTOMER, department, GOODS, "
            "STAFF, SUPPLIER\n");
  EXPECT_EQ(ImportWithItems("", "dep,department").err,
            "journal.csv:1:39: the column \"department\" stands here a second time\n");
}

TEST_P(ItemBalances, AccountsThatAskForNothingTakeWhateverTheFileSays) {
  InitWithItems();
  Post("a,2024-01-05,1000,10,,nobody,nowhere\na,2024-01-05,2000.01,,10,,\n");
  EXPECT_NE(Run({"voucher", "1", "--json"}).out.find("\"FItemNumber\": \"nowhere\""),
            std::string::npos);
  EXPECT_EQ(Run({"balance", "--by", "customers", "--csv"}).out,
            "account,customer,debit,credit,balance\n");
  EXPECT_EQ(Run({"doctor"}).code, 0);
}

QDCLGL_CLI_TEST(ItemBalances);

}  // namespace
}  // namespace qdclgl::cli::testing
