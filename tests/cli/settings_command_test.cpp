// The settings of the books at the command line, and whose books pages and exports say they are.

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

using SettingsCommand = CliTest;

TEST_P(SettingsCommand, EachIsListedWithItsDefaultItsRangeAndItsMeaning) {
  Init();
  EXPECT_EQ(
      Said({"settings", "general"}),
      "0 Category  Key             Value  Default  Range     Meaning\n"
      "General   CompanyAddress                  any text  the company's address, at the head "
      "of pages and exports\n"
      "General   CompanyName                     any text  the company's name, at the head of "
      "pages and exports\n"
      "General   CompanyPhone                    any text  the company's telephone number\n");
  const auto rows = ParseJson(Run({"settings", "--json"}).out);
  std::string count_of_periods, session;
  for (const auto& row : rows) {
    EXPECT_NE(row["FMeaning"], "") << row;
    EXPECT_NE(row["FRange"], "") << row;
    if (row["FKey"] == "PeriodCount") count_of_periods = row.dump();
    if (row["FKey"] == "SessionMinutes") session = row.dump();
  }
  EXPECT_EQ(count_of_periods,
            R"({"FCategory":"GL","FKey":"PeriodCount","FValue":"12","FDefault":"12",)"
            R"("FRange":"a whole number from 1 to 52",)"
            R"("FMeaning":"how many periods a year has"})");
  EXPECT_EQ(session, R"({"FCategory":"Base","FKey":"SessionMinutes","FValue":"","FDefault":"480",)"
                     R"("FRange":"a whole number from 0 to 10,080",)"
                     R"("FMeaning":"how long an unused session lasts; 0 without an end"})");
}

TEST_P(SettingsCommand, OneIsSetAndResetByItsNameWithTheCategoryOrWithout) {
  Init();
  EXPECT_EQ(Said({"settings", "set", "checkbeforepost", "1"}), "0 GL.CheckBeforePost is 1.\n");
  EXPECT_EQ(Run({"settings", "GL", "--csv"}).out.substr(0, 45),
            "FCategory,FKey,FValue,FDefault,FRange,FMeanin");
  EXPECT_NE(Run({"settings", "--csv"}).out.find("GL,CheckBeforePost,1,0,0 or 1,"),
            std::string::npos);
  EXPECT_EQ(Said({"settings", "reset", "GL.CheckBeforePost"}), "0 GL.CheckBeforePost is 0.\n");
  EXPECT_EQ(Said({"settings", "set", "CompanyName", "Anna & Co."}),
            "0 General.CompanyName is Anna & Co.\n");
  EXPECT_EQ(Said({"settings", "reset", "CompanyName"}), "0 General.CompanyName is not set.\n");
  EXPECT_EQ(
      Said({"settings", "set", "SessionMinutes", "20000"}),
      "1 qdclgl: 80044242: Setting SessionMinutes of Base is a whole number from 0 to 10,080, "
      "not \"20000\".\n");
  EXPECT_EQ(Said({"settings", "set", "CurrentYear", "2030"}),
            "1 qdclgl: 80044241: Setting CurrentYear of GL is kept by closing and reopening.\n");
  EXPECT_EQ(Said({"settings", "reset", "PeriodCount"}), "0 GL.PeriodCount is 12.\n");
  EXPECT_EQ(Said({"doctor"}), "0 The books are in order.\n");
}

TEST_P(SettingsCommand, BooksFromTheEnvironmentLeaveRoomForTheWords) {
  Init();
  SetVariable("QDCLGL_BOOK", book);
  EXPECT_EQ(RunInProcess({"settings", "set", "CompanyName", "Anna"}).out,
            "General.CompanyName is Anna.\n");
  EXPECT_EQ(RunInProcess({"settings", "reset", "CompanyName"}).out,
            "General.CompanyName is not set.\n");
  EXPECT_EQ(RunInProcess({"settings", "PA"}).code, 2);
  EXPECT_EQ(RunInProcess({"settings", "Base", "--csv"}).code, 0);
  UnsetVariable("QDCLGL_BOOK");
}

TEST_P(SettingsCommand, WhoseBooksTheyAreStandsAtTheHeadOfPagesAndExports) {
  Init();
  ASSERT_EQ(Run({"settings", "set", "CompanyName", "<Tea> & Co"}).code, 0);
  ASSERT_EQ(Run({"settings", "set", "CompanyAddress", "1 High\nStreet"}).code, 0);
  const std::string place = folder.Path("report");
  ASSERT_EQ(Run({"report", place}).code, 0);
  const std::string head =
      "<header><strong>&lt;Tea&gt; &amp; Co</strong> 1 High Street</header>\n<main";
  for (const char* page : {"index.html", "balance.html", "vouchers.html", "trail.html"}) {
    EXPECT_NE(ReadFile(place + "/" + page).find(head), std::string::npos) << page;
  }
  ASSERT_EQ(Run({"ledger", "add", "Cash", "--account", "2000", "--columns", "children"}).err, "");
  EXPECT_NE(Run({"ledger", "Cash", "--html"}).out.find(head), std::string::npos);
  EXPECT_EQ(Run({"export", "--format", "hledger", "-"}).out, "; <Tea> & Co\n; 1 High Street\n");
}

QDCLGL_CLI_TEST(SettingsCommand);

}  // namespace
}  // namespace qdclgl::cli::testing
