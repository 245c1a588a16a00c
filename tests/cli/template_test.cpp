#include <gtest/gtest.h>

#include "qdclgl/accounts/currency.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/settings/system_profile.h"
#include "qdclgl/vouchers/voucher_temp.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class Templates : public CliTest {
 protected:
  struct Line {
    const char* account;
    bool is_debit;
    Currency amount = {};
    const char* currency = "";
    const char* explanation = "";
  };

  // Books with a template of these lines, in the group General unless told otherwise.
  void InitWith(const std::string& name, const std::vector<Line>& lines, Long group = 1) const {
    Init();
    ASSERT_EQ(ImportRows("v1,2024-01-05,1000,10,\nv1,2024-01-05,2000.01,,10\n").code, 0);
    Add(name, lines, group);
  }
  void Add(const std::string& name, const std::vector<Line>& lines, Long group = 1) const {
    cli::Login{book, "administrator"}.Open();
    auto temp = Make<VoucherTemp>();
    temp->Construct(Nothing, Nothing);
    temp->Name(name);
    temp->GroupID(group);
    temp->Reference("T-1");
    for (const Line& line : lines) {
      temp->Entries()->Add();
      const Ref<VoucherEntry> entry = temp->Entries()->Item(temp->Entries()->Count());
      entry->AccountNumber(line.account);
      entry->DC(line.is_debit ? 1 : 0);
      entry->Amount(line.amount);
      entry->CurrencyNumber(line.currency);
      entry->Explanation(line.explanation);
    }
    temp->SaveChanges();
  }
};

TEST_P(Templates, AVoucherIsMadeOfATemplateWithTheAmountsThatAreGiven) {
  InitWith("Rent", {{"1001", true, {}, "", "Rent of the shop"}, {"1000", false, Currency(7)}});
  const RunResult made = Run({"voucher", "--from-template", "Rent", "--amount", "1=850.5",
                              "--amount", "2=850.5", "--date", "2024-01-20"});
  EXPECT_EQ(made.err, "");
  EXPECT_EQ(made.out, "Voucher 2 is made: 2024/1 General 2, 2024-01-20, 850.50.\n");
  EXPECT_EQ(Run({"voucher", "2"}).out, "Voucher    2\n"
                                       "Number     2024/1 General 2\n"
                                       "Date       2024-01-20\n"
                                       "Reference  T-1\n"
                                       "Prepared   administrator\n"
                                       "State      open\n"
                                       "\n"
                                       "Line  Account  Name  Explanation        Debit  Credit\n"
                                       "   1  1001     Bank  Rent of the shop  850.50\n"
                                       "   2  1000     Cash                            850.50\n");
  // The template is as it was.
  EXPECT_EQ(Run({"voucher", "--from-template", "1", "--date", "2024-01-21"}).out,
            "Voucher 3 is made: 2024/1 General 3, 2024-01-21, 7.00.\n");
  EXPECT_EQ(Run({"doctor"}).code, 0);
}

TEST_P(Templates, OneLineWithoutAnAmountBalancesTheVoucher) {
  InitWith("Rent", {{"1001", true}, {"1002", true, Currency(2)}, {"1000", false}});
  EXPECT_EQ(Run({"voucher", "--from-template", "Rent", "--amount", "1=3", "--date", "2024-01-20",
                 "--reference", "R", "--group", "General"})
                .out,
            "Voucher 2 is made: 2024/1 General 2, 2024-01-20, 5.00.\n");
  EXPECT_NE(Run({"voucher", "2"}).out.find("Reference  R\n"), std::string::npos);
  const RunResult open = Run({"voucher", "--from-template", "Rent", "--date", "2024-01-20"});
  EXPECT_EQ(open.code, 1);
  EXPECT_EQ(open.err, "qdclgl: 80044221: More than one line has no amount; give amounts to all but "
                      "one.\n");
  const RunResult unbalanced = Run({"voucher", "--from-template", "Rent", "--amount", "1=3",
                                    "--amount", "3=4", "--date", "2024-01-20"});
  EXPECT_EQ(unbalanced.code, 1);
  EXPECT_TRUE(unbalanced.err.starts_with("qdclgl: 80044221: ")) << unbalanced.err;
  EXPECT_NE(unbalanced.err.find("differ by 1"), std::string::npos) << unbalanced.err;
}

TEST_P(Templates, AnAmountOfALineInAnotherCurrencyIsTakenAtTheCurrencysRate) {
  Init();
  ASSERT_EQ(ImportRows("v1,2024-01-05,1000,10,\nv1,2024-01-05,2000.01,,10\n").code, 0);
  cli::Login{book, "administrator"}.Open();
  const Ref<Currencyx> dollar = Make<CurrencySet>()->CreateNew("USD", "Dollar");
  dollar->ExchangeRate(3);
  dollar->Operator("/");
  dollar->SaveChanges();
  Add("Abroad", {{"1001", true, {}, "USD"}, {"1000", false}});
  EXPECT_EQ(
      Run({"voucher", "--from-template", "Abroad", "--amount", "1=100", "--date", "2024-01-20"})
          .out,
      "Voucher 2 is made: 2024/1 General 2, 2024-01-20, 33.33.\n");
  EXPECT_EQ(Lines("2"), "Line  Account  Name  Debit  Credit  Currency  Amount  Rate\n"
                        "   1  1001     Bank  33.33          USD       100.00     3\n"
                        "   2  1000     Cash          33.33\n");
}

TEST_P(Templates, WithoutADateTheVoucherIsOfTheCurrentPeriod) {
  InitWith("Rent", {{"1001", true, Currency(1)}, {"1000", false}});
  // The books stand at January 2024, which is over.
  EXPECT_EQ(Run({"voucher", "--from-template", "Rent"}).out,
            "Voucher 2 is made: 2024/1 General 2, 2024-01-31, 1.00.\n");
  EXPECT_EQ(Run({"voucher", "--from-template", "Rent", "--date", "2023-12-31"}).code, 1);
}

TEST_P(Templates, ANameThatIsNoneOrSeveralIsTold) {
  InitWith("Rent", {{"1001", true, Currency(1)}, {"1000", false}});
  const auto refused = [&](const std::string& name) {
    const RunResult result = Run({"voucher", "--from-template", name});
    EXPECT_EQ(result.code, 1);
    return result.err;
  };
  EXPECT_EQ(refused("rent"), "qdclgl: 80044213: There is no template \"rent\".\n");
  EXPECT_EQ(refused("99"), "qdclgl: 80044213: There is no template \"99\".\n");
  Add("Rent", {{"1001", true}});
  EXPECT_EQ(refused("Rent"),
            "qdclgl: 80044217: Several templates are called \"Rent\"; name one by its id.\n");
  EXPECT_EQ(Run({"voucher", "--from-template", "1", "--amount", "9=1"}).err,
            "qdclgl: 80044220: The template \"1\" has no line 9.\n");
  Add("Open", {{"1001", true, Currency(1)}, {"1000", false}}, 0);
  EXPECT_TRUE(refused("Open").starts_with("qdclgl: 80044225: "));
  EXPECT_EQ(Run({"voucher", "--from-template", "Open", "--group", "General"}).code, 0);
}

TEST_P(Templates, AWrongCommandLineIsTold) {
  Init();
  for (const std::vector<std::string>& options :
       {std::vector<std::string>{"--from-template", "Rent", "--amount", "5"},
        {"--from-template", "Rent", "--amount", "1=many"},
        {"--from-template", "Rent", "--amount", "one=5"},
        {"--from-template", "Rent", "--date", "today"},
        {"--amount", "1=5"},
        {"1", "--from-template", "Rent"},
        {"--from-template"}}) {
    std::vector<std::string> arguments = {"voucher"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const RunResult result = Run(arguments);
    EXPECT_EQ(result.code, 2) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
  }
}

QDCLGL_CLI_TEST(Templates);

}  // namespace
}  // namespace qdclgl::cli::testing
