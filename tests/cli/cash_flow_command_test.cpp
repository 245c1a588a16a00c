#include <gtest/gtest.h>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class CashFlows : public CliTest {
 protected:
  void InitWithCash() const {
    Init();
    ASSERT_EQ(Run({"set", "accounts", "1000", "FIsCash=yes"}).err, "");
    ASSERT_EQ(ImportRows("v1,2024-01-05,1000,10.5,\nv1,2024-01-05,2000.01,,10.5\n"
                         "v2,2024-02-05,1002,3,\nv2,2024-02-05,1000,,3\n",
                         {"--check-all", "--post-all"})
                  .code,
              0);
  }
};

TEST_P(CashFlows, TellWhereCashComesFromAndGoesTo) {
  InitWithCash();
  EXPECT_EQ(Run({"cashflow"}).out, "Account  Name                      In   Out    Net\n"
                                   "         Cash at the beginning                0.00\n"
                                   "1002     Goods                         3.00  -3.00\n"
                                   "2000.01  Capital                10.50        10.50\n"
                                   "         Cash at the end                      7.50\n");
  EXPECT_EQ(Run({"cashflow", "--csv", "--from", "2024-02", "--to", "2024-02"}).out,
            "FRow,FCashFlowItem,FAccountNumber,FAccountName,FInflow,FOutflow,FNet,FNetBefore\n"
            "Opening,0,,,10.5000,0.0000,10.5000,0.0000\n"
            "Account,0,1002,Goods,0.0000,3.0000,-3.0000,0.0000\n"
            "Closing,0,,,7.5000,0.0000,7.5000,0.0000\n");
}

TEST_P(CashFlows, StandBesideThoseOfTheYearBefore) {
  InitWithCash();
  EXPECT_EQ(Run({"cashflow", "--from", "2025/2", "--to", "2025/2", "--compare"}).out,
            "Account  Name                    Net  Year before\n"
            "         Cash at the beginning  7.50        10.50\n"
            "1002     Goods                  0.00        -3.00\n"
            "         Cash at the end        7.50         7.50\n");
}

QDCLGL_CLI_TEST(CashFlows);

}  // namespace
}  // namespace qdclgl::cli::testing
