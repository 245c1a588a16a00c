#include <gtest/gtest.h>

#include "qdclgl/cli/cell_values.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class OpenItems : public CliTest {
 protected:
  void InitWithInvoices() const {
    Init();
    for (const auto& words : std::initializer_list<std::vector<std::string>>{
             {"add", "accounts", "1100", "FName=Receivables", R"(_Items=[{"FItemClassID":3}])"},
             {"add", "items", "C001", "FItemClassID=3", "FName=Anna"},
             {"add", "items", "C002", "FItemClassID=3", "FName=Bert"}}) {
      ASSERT_EQ(Run(words).err, "");
    }
    const std::string path =
        folder.Write("journal.csv", "voucher,date,account,debit,credit,reference,customer\n"
                                    "a,2024-01-05,1100,100,,A-1,C001\na,2024-01-05,2000.01,,100,,\n"
                                    "b,2024-02-05,1100,50,,A-2,C001\nb,2024-02-05,2000.01,,50,,\n"
                                    "c,2024-02-20,1100,7,,A-1,C002\nc,2024-02-20,2000.01,,7,,\n"
                                    "d,2024-03-01,1100,,60,A-1,C001\nd,2024-03-01,1000,60,,,\n");
    ASSERT_EQ(Run({"import", "--journal", path, "--check-all", "--post-all"}).err, "");
  }
};

TEST_P(OpenItems, StandUnderTheirAgeWithSums) {
  InitWithInvoices();
  EXPECT_EQ(Run({"open", "--by", "customers", "--date", "2024-03-10", "--ageing", "30,60"}).out,
            "Item                Account  Reference  Date        Days   Open  to 30  31-60  over "
            "60\n"
            "C001 Anna           1100     A-1        2024-01-05    65  40.00                  "
            "40.00\n"
            "C001 Anna           1100     A-2        2024-02-05    34  50.00         50.00\n"
            "C001 Anna together                                        90.00   0.00  50.00    "
            "40.00\n"
            "C002 Bert           1100     A-1        2024-02-20    19   7.00   7.00\n"
            "Total                                                     97.00   7.00  50.00    "
            "40.00\n");
  EXPECT_EQ(Run({"open", "--date", "2024-01-04", "--by", "customer"}).out,
            "Nothing is open on 2024-01-04.\n");
}

TEST_P(OpenItems, AddUpToTheBalancesByTheSameClass) {
  InitWithInvoices();
  Currency open, balance;
  for (const Json& row :
       ParseJson(Run({"open", "--by", "customers", "--date", "2024-12-31", "--json"}).out)) {
    open += ReadAmount(row["FOpen"].get<std::string>());
  }
  for (const Json& row : ParseJson(Run({"balance", "--by", "customers", "--json"}).out)) {
    if (row["FCurrencyID"] == 0 && row["FDetail"] == true) {
      balance += ReadAmount(row["FEndBalance"].get<std::string>());
    }
  }
  EXPECT_EQ(open, balance);
  EXPECT_EQ(open, Currency(97));
}

TEST_P(OpenItems, CsvHasAllThatTheServerTells) {
  InitWithInvoices();
  EXPECT_EQ(Run({"open", "--by", "customers", "--date", "2024-03-10", "--ageing", "30", "--account",
                 "1100", "--csv"})
                .out,
            "FAccountNumber,FItemNumber,FItemName,FTransNo,FDate,FVoucherID,FDays,FDebit,FCredit,"
            "FOpen,FAge1,FAge2\n"
            "1100,C001,Anna,A-1,2024-01-05,1,65,100.0000,60.0000,40.0000,0.0000,40.0000\n"
            "1100,C001,Anna,A-2,2024-02-05,2,34,50.0000,0.0000,50.0000,0.0000,50.0000\n"
            "1100,C002,Bert,A-1,2024-02-20,3,19,7.0000,0.0000,7.0000,7.0000,0.0000\n");
}

QDCLGL_CLI_TEST(OpenItems);

}  // namespace
}  // namespace qdclgl::cli::testing
