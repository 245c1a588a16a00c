#include <gtest/gtest.h>

#include <sstream>

#include "qdclgl/api/api_table.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/db/database.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class Commands : public CliTest {
 protected:
  // Books with the vouchers 1 and 2, of January and February.
  void InitWithVouchers() const {
    Init();
    ASSERT_EQ(ImportRows("v1,2024-01-05,1000,10.5,\nv1,2024-01-05,2000.01,,10.5\n"
                         "v2,2024-02-05,1001,3,\nv2,2024-02-05,1000,,3\n")
                  .code,
              0);
  }
};

TEST_P(Commands, InitMakesBooksOnce) {
  EXPECT_EQ(
      Run({"init", "--no-password", "--currency", "usd", "--year", "2023", "--periods", "4",
           "--start-month", "04"})
          .out,
      "The books are made, in usd. The current period is 2023/1.\n"
      "User administrator has no password: whoever reaches the books can do everything in them.\n");
  const RunResult again = Run({"init", "--no-password"});
  EXPECT_EQ(again.code, 1);
  EXPECT_TRUE(again.err.starts_with("qdclgl: 80044205: ")) << again.err;
}

TEST_P(Commands, AnAdministratorWithoutAPasswordIsAskedForExpressly) {
  const RunResult silent = Run({"init"});
  EXPECT_EQ(silent.code, 2);
  EXPECT_NE(silent.err.find("--no-password"), std::string::npos) << silent.err;
  SetVariable("QDCLGL_PASSWORD", "sesame");
  EXPECT_EQ(Run({"init", "--no-password"}).code, 2) << "one or the other";
  EXPECT_EQ(Run({"init", "--year", "2024"}).out,
            "The books are made, in EUR. The current period is 2024/1.\n");
  SetVariable("QDCLGL_NEW_PASSWORD", "open");
  EXPECT_EQ(Run({"user", "administrator", "--set-password"}).code, 0) << "the old one is known";
  EXPECT_EQ(Run({"users"}).code, 5);
  SetVariable("QDCLGL_PASSWORD", "open");
  EXPECT_EQ(Run({"users"}).code, 0);
  UnsetVariable("QDCLGL_PASSWORD");
  UnsetVariable("QDCLGL_NEW_PASSWORD");
}

TEST_P(Commands, ListsAreTablesCsvOrJson) {
  InitWithVouchers();
  EXPECT_EQ(Run({"groups"}).out, "Group ID  Name\n       1  General\n");
  EXPECT_EQ(Run({"accounts", "--filter", "FNumber < '1002'", "--sort", "FNumber DESC"}).out,
            "Account ID  Number  Name  Side   Detail\n"
            "         2  1001    Bank  debit  yes\n"
            "         1  1000    Cash  debit  yes\n");
  const std::string csv = Run({"currencies", "--csv"}).out;
  EXPECT_TRUE(csv.starts_with("FCurrencyID,FVersion,")) << csv;
  const auto vouchers = ParseJson(Run({"vouchers", "--json"}).out);
  ASSERT_EQ(vouchers.size(), 2u);
  EXPECT_EQ(vouchers[0]["FDebitTotal"], "10.5000");
  EXPECT_EQ(vouchers[0]["FPosted"], false);
}

TEST_P(Commands, AListComesInPagesThatFollowEachOther) {
  Init();
  const auto page = [&](std::vector<std::string> more) {
    more.insert(more.begin(), {"accounts", "--sort", "FDetail, FName DESC", "--csv"});
    std::string ids;
    std::istringstream rows(Run(more).out);
    std::string row;
    std::getline(rows, row);
    while (std::getline(rows, row)) ids += row.substr(0, row.find(',')) + " ";
    return ids;
  };
  const std::string all = page({});
  EXPECT_EQ(all.size(), 10u) << all;
  std::string pages, behind = page({"--limit", "2"});
  for (int most = 0; most < 5 && !behind.empty(); ++most) {
    pages += behind;
    behind = page({"--limit", "2", "--after", behind.substr(behind.size() - 2, 1)});
  }
  EXPECT_EQ(pages, all);
  EXPECT_EQ(page({"--after", all.substr(4, 1)}), all.substr(6)) << "without a limit";
  EXPECT_EQ(Run({"accounts", "--limit", "2"}).out,
            "Account ID  Number  Name  Side   Detail\n"
            "         1  1000    Cash  debit  yes\n"
            "         2  1001    Bank  debit  yes\n"
            "There may be more rows; they go on with --after 2\n");
  EXPECT_EQ(Run({"list", "groups", "--limit", "2"}).out, Run({"groups"}).out);
  EXPECT_EQ(Said({"accounts", "--after", "99"}),
            "1 qdclgl: 80044213: The list accounts has no row with the id 99.\n");
  EXPECT_EQ(Run({"accounts", "--limit", "0"}).code, 2);
  EXPECT_EQ(Run({"accounts", "--limit", "many"}).code, 2);
}

TEST_P(Commands, ABadFilterIsOneLineWithItsNumber) {
  Init();
  const RunResult result = Run({"vouchers", "--filter", "FNothing = 1"});
  EXPECT_EQ(result.code, 1);
  EXPECT_TRUE(result.err.starts_with("qdclgl: 80044210: ")) << result.err;
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
}

TEST_P(Commands, AVoucherShowsItsLines) {
  InitWithVouchers();
  EXPECT_EQ(Run({"voucher", "1"}).out, "Voucher    1\n"
                                       "Number     2024/1 General 1\n"
                                       "Date       2024-01-05\n"
                                       "Reference  v1\n"
                                       "Prepared   administrator\n"
                                       "State      open\n"
                                       "\n"
                                       "Line  Account  Name     Debit  Credit\n"
                                       "   1  1000     Cash     10.50\n"
                                       "   2  2000.01  Capital          10.50\n");
  const RunResult none = Run({"voucher", "99"});
  EXPECT_EQ(none.code, 1);
  EXPECT_EQ(none.err, "qdclgl: 80044213: There is no voucher with the id 99.\n");
  EXPECT_EQ(Run({"voucher", "x"}).code, 2);
  EXPECT_EQ(Run({"voucher"}).code, 2);
}

TEST_P(Commands, StepsGoForthAndBack) {
  InitWithVouchers();
  const auto state = [&] {
    const std::string text = Run({"voucher", "1"}).out;
    const std::size_t at = text.find("State      ") + 11;
    return text.substr(at, text.find('\n', at) - at);
  };
  const std::pair<const char*, const char*> steps[] = {
      {"check", "checked by administrator"},
      {"approve", "checked by administrator, approved by administrator"},
      {"cash", "checked by administrator, approved by administrator, cashed by administrator"},
      {"post", "checked by administrator, approved by administrator, cashed by administrator, "
               "posted by administrator"},
      {"unpost", "checked by administrator, approved by administrator, cashed by administrator"},
      {"uncash", "checked by administrator, approved by administrator"},
      {"unapprove", "checked by administrator"},
      {"uncheck", "open"},
  };
  for (const auto& [step, after] : steps) {
    EXPECT_EQ(Run({step, "1"}).code, 0) << step;
    EXPECT_EQ(state(), after) << step;
  }
  EXPECT_EQ(Run({"remove", "1"}).out, "1 voucher removed.\n");
  EXPECT_EQ(Run({"voucher", "1"}).code, 1);
}

TEST_P(Commands, AStepThatTheStateDoesNotAllowIsRefused) {
  InitWithVouchers();
  for (const char* step : {"uncheck", "approve", "unapprove", "uncash", "unpost"}) {
    const RunResult result = Run({step, "1"});
    EXPECT_EQ(result.code, 1) << step;
    EXPECT_TRUE(result.err.starts_with("qdclgl: 8004422B: ")) << step << result.err;
  }
  ASSERT_EQ(Run({"check", "1"}).code, 0);
  ASSERT_EQ(Run({"approve", "1"}).code, 0);
  EXPECT_EQ(Run({"check", "1"}).code, 1);
  EXPECT_EQ(Run({"approve", "1"}).code, 1);
}

TEST_P(Commands, OfManyVouchersTheRefusedOnesLeaveTheOthersAlone) {
  InitWithVouchers();
  const RunResult result = Run({"post", "1", "99", "2"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.out, "2 vouchers posted.\n");
  EXPECT_EQ(result.err, "qdclgl: 80044213: There is no voucher with the id 99.\n");
}

TEST_P(Commands, AllMeansThoseThatAreReady) {
  InitWithVouchers();
  ASSERT_EQ(Run({"check", "1"}).code, 0);
  EXPECT_EQ(Run({"check", "--all"}).out, "1 voucher checked.\n");
  EXPECT_EQ(Run({"approve", "--all"}).out, "2 vouchers approved.\n");
  EXPECT_EQ(Run({"cash", "--all"}).out, "2 vouchers cashed.\n");
  EXPECT_EQ(Run({"post", "--all"}).out, "2 vouchers posted.\n");
  EXPECT_EQ(Run({"post", "--all"}).out, "0 vouchers posted.\n");
  EXPECT_EQ(Run({"post", "--all"}).code, 0);
  EXPECT_EQ(Run({"unpost", "--all"}).out, "2 vouchers unposted.\n");
  EXPECT_EQ(Run({"uncash", "--all"}).out, "2 vouchers uncashed.\n");
  EXPECT_EQ(Run({"unapprove", "--all"}).out, "2 vouchers unapproved.\n");
  EXPECT_EQ(Run({"uncheck", "--all"}).out, "2 vouchers unchecked.\n");
  EXPECT_EQ(Run({"remove", "--all"}).out, "2 vouchers removed.\n");
  EXPECT_EQ(Run({"post"}).code, 2);
  EXPECT_EQ(Run({"post", "1", "--all"}).code, 2);
}

TEST_P(Commands, BalancesCoverWhatIsAskedFor) {
  InitWithVouchers();
  ASSERT_EQ(Run({"post", "--all"}).code, 0);
  EXPECT_EQ(Run({"balance", "--csv"}).out, "account,debit,credit,balance\n"
                                           "1000,10.5000,3.0000,7.5000\n"
                                           "1001,3.0000,0.0000,3.0000\n"
                                           "2000.01,0.0000,10.5000,-10.5000\n");
  EXPECT_EQ(Run({"balance", "--year", "2024", "--from", "2", "--to", "02", "--csv"}).out,
            "account,debit,credit,balance\n"
            "1000,0.0000,3.0000,7.5000\n"
            "1001,3.0000,0.0000,3.0000\n");
  EXPECT_EQ(Run({"balance", "--year", "2024", "--from", "2"}).out,
            "Account  Name        Begin  Debit  Credit     End\n"
            "1000     Cash        10.50           3.00    7.50\n"
            "1001     Bank         0.00   3.00            3.00\n"
            "2000     Equity     -10.50                 -10.50\n"
            "2000.01    Capital  -10.50                 -10.50\n"
            "         Total        0.00   3.00    3.00    0.00\n");
  const auto rows = ParseJson(Run({"balance", "--json"}).out);
  EXPECT_EQ(rows.at(0)["FEndBalance"], "7.5000");
  EXPECT_EQ(Run({"balance", "--from", "2"}).code, 2);
  EXPECT_EQ(Run({"balance", "--year", "2024", "--from", "13"}).code, 1);
}

TEST_P(Commands, PeriodsCloseAndReopen) {
  InitWithVouchers();
  const std::string first =
      "This closes period 2024/1, 2024-01-01 to 2024-01-31: none of its vouchers can be unposted "
      "any more, and none is added to it.\n";
  const RunResult early = Run({"close", "--yes"});
  EXPECT_EQ(early.code, 1);
  EXPECT_TRUE(early.err.starts_with("qdclgl: 80044250: ")) << early.err;
  EXPECT_EQ(early.out, first + "1 voucher of the period must be posted first.\n");
  ASSERT_EQ(Run({"post", "1"}).code, 0);
  EXPECT_EQ(Run({"close", "--yes"}).out, first + "The current period is 2024/2.\n");
  EXPECT_EQ(Run({"unpost", "1"}).code, 1);
  EXPECT_EQ(Run({"reopen"}).out, "The current period is 2024/1.\n");
  EXPECT_EQ(Run({"reopen"}).code, 1);
}

TEST_P(Commands, CloseTellsWhatItWillDoAndAsks) {
  InitWithVouchers();
  ASSERT_EQ(Run({"post", "1"}).code, 0);
  const auto answered = [&](const std::string& answer) {
    std::istringstream answers(answer);
    std::ostringstream out, err;
    const int code = cli::Run({"close", book}, {out, err, false, &answers});
    return std::to_string(code) + " " + out.str().substr(out.str().find('\n') + 1);
  };
  const RunResult nobody = Run({"close"});
  EXPECT_EQ(nobody.code, 2);
  EXPECT_NE(nobody.err.find("--yes"), std::string::npos) << nobody.err;
  for (const char* no : {"n\n", "\n", "", "never\n"}) {
    EXPECT_EQ(answered(no), "1 Close it? [y/N] Nothing is closed.\n");
  }
  EXPECT_EQ(answered("y\n"), "0 Close it? [y/N] The current period is 2024/2.\n");
}

TEST_P(Commands, APrematureCloseIsTakenBackBehindLaterPostings) {
  InitWithVouchers();
  ASSERT_EQ(Run({"post", "1", "2"}).code, 0);
  for (int i = 0; i < 2; ++i) ASSERT_EQ(Run({"close", "--yes"}).code, 0);
  ASSERT_EQ(Run({"reopen"}).out, "The current period is 2024/2.\n");
  EXPECT_TRUE(Run({"reopen"}).err.starts_with("qdclgl: 80044251: "));
  EXPECT_EQ(Run({"reopen", "--to", "2024/1"}).out, "The current period is 2024/1.\n");
  EXPECT_EQ(Run({"unpost", "1"}).code, 0);
  for (const char* wrong : {"2024", "2024-1", "a/b", "2024/"}) {
    EXPECT_EQ(Run({"reopen", "--to", wrong}).code, 2) << wrong;
  }
  EXPECT_EQ(Run({"reopen", "--to", "2024/1"}).code, 1) << "it is open";
}

TEST_P(Commands, TheAuditTrailTellsOfOneVoucher) {
  InitWithVouchers();
  ASSERT_EQ(Run({"check", "2"}).code, 0);
  const auto deeds = ParseJson(Run({"audit", "--voucher", "2", "--json"}).out);
  ASSERT_EQ(deeds.size(), 2u);
  EXPECT_EQ(deeds[0]["FAction"], "Create");
  EXPECT_EQ(deeds[1]["FAction"], "Check");
  EXPECT_EQ(ParseJson(Run({"audit", "--voucher", "2", "--filter",
                           "FAction = 'Check' OR FAction = 'Post'", "--json"})
                          .out)
                .size(),
            1u);
}

TEST_P(Commands, TheAuditTrailTellsChangesInShortOrWhole) {
  InitWithVouchers();
  ASSERT_EQ(Run({"check", "2"}).code, 0);
  const std::string in_short = Run({"audit", "--voucher", "2"}).out;
  EXPECT_NE(in_short.find("FVersion: 1 -> 2; FChecked: false -> true; FCheckerID: -1 -> 1;"
                          " FChecker:  -> administrator"),
            std::string::npos)
      << in_short;
  EXPECT_EQ(in_short.find('{'), std::string::npos) << in_short;
  const std::string changes = R"({"FVersion":[1,2],"FChecked":[false,true],"FCheckerID":[-1,1],)"
                              R"("FChecker":["","administrator"]})";
  EXPECT_NE(Run({"audit", "--voucher", "2", "--whole"}).out.find(changes), std::string::npos);
  const auto deeds = ParseJson(Run({"audit", "--voucher", "2", "--json"}).out);
  EXPECT_EQ(deeds[1]["FChanges"], changes);
}

TEST_P(Commands, TheDoctorExpectsTheHeadThatAuditPrinted) {
  InitWithVouchers();
  const std::string line = Run({"audit", "--head"}).out;
  ASSERT_TRUE(line.ends_with('\n'));
  const std::string head = line.substr(0, line.size() - 1);
  EXPECT_EQ(head.substr(0, 2), "2-");
  ASSERT_EQ(Run({"check", "2"}).code, 0);
  EXPECT_EQ(Run({"doctor", "--expect-head", head}).out, "The books are in order.\n");
  const RunResult other = Run({"doctor", "--expect-head", "3-" + head.substr(2), "--json"});
  EXPECT_EQ(other.code, 4);
  const auto findings = ParseJson(other.out);
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0]["FRule"], "Head");
  EXPECT_EQ(findings[0]["FRecord"], "3-" + head.substr(2));
}

TEST_P(Commands, TheDoctorTellsWhatIsWrongAndWhere) {
  InitWithVouchers();
  ASSERT_EQ(Run({"post", "1"}).code, 0);
  EXPECT_EQ(Run({"doctor"}).out, "The books are in order.\n");
  EXPECT_EQ(Run({"doctor", "--json"}).out, "[]\n");
  {
    server::Database db(server::ConnectionText::Parse(book));
    db.ExecuteScript("UPDATE t_VoucherEntry SET FAmount = FAmount + 1 WHERE FVoucherID = 1"
                     " AND FEntryID = 1;");
  }
  const RunResult sick = Run({"doctor"});
  EXPECT_EQ(sick.code, 4);
  EXPECT_NE(sick.out.find("2024/1 General 1"), std::string::npos) << sick.out;
}

TEST_P(Commands, UpgradeOfNewBooksChangesNothing) {
  Init();
  const RunResult result = Run({"upgrade"});
  EXPECT_EQ(result.code, 0);
  EXPECT_TRUE(result.out.starts_with("The books were of version ")) << result.out;
}

TEST_P(Commands, LoginsAreToldApart) {
  Init();
  const RunResult stranger = Run({"vouchers", "--user", "nobody"});
  EXPECT_EQ(stranger.code, 5);
  EXPECT_TRUE(stranger.err.starts_with("qdclgl: 80044201: ")) << stranger.err;
  SetVariable("QDCLGL_PASSWORD", "wrong");
  EXPECT_EQ(Run({"vouchers"}).code, 5);
  UnsetVariable("QDCLGL_PASSWORD");
  EXPECT_EQ(Run({"vouchers"}).code, 0);
}

TEST_P(Commands, TheBooksCanComeFromTheEnvironment) {
  InitWithVouchers();
  SetVariable("QDCLGL_BOOK", book);
  EXPECT_EQ(RunInProcess({"groups"}).code, 0);
  EXPECT_EQ(RunInProcess({"check", "1", "2"}).out, "2 vouchers checked.\n");
  EXPECT_EQ(RunInProcess({"voucher", "2"}).code, 0);
  UnsetVariable("QDCLGL_BOOK");
  const RunResult none = RunInProcess({"check", "1"});
  EXPECT_EQ(none.code, 2);
  EXPECT_EQ(none.err,
            "qdclgl: no BOOK is given, and QDCLGL_BOOK is not set; see qdclgl help check\n");
}

QDCLGL_CLI_TEST(Commands);

TEST(Api, TheReferenceComesFromTheRows) {
  EXPECT_EQ(RunInProcess({"api", "--tsv"}).out, ApiTable());
  EXPECT_EQ(RunInProcess({"api", "--tsv"}).out, ReadFile(QDCLGL_SOURCE_DIR "/docs/api.tsv"));
  const std::string part = RunInProcess({"api", "--tsv", "vouchergroup"}).out;
  EXPECT_TRUE(part.starts_with("class\tordinal\t"));
  EXPECT_NE(part.find("\nVoucherGroup\t9\tName\tget\tString"), part.npos) << part;
  EXPECT_EQ(part.find("VoucherGroupSet"), part.npos);

  const auto classes = ParseJson(RunInProcess({"api", "--json"}).out);
  std::size_t members = 0;
  for (const auto& one : classes) members += one["members"].size();
  EXPECT_EQ(members, ApiRows().size());
  const std::string markdown = RunInProcess({"api", "--markdown", "Currencyx"}).out;
  EXPECT_TRUE(markdown.starts_with("## Currencyx\n")) << markdown;
  EXPECT_NE(
      RunInProcess({"api", "Voucher"}).out.find("\n  method Approve()\n      Approves a checked"),
      std::string::npos);
  EXPECT_EQ(RunInProcess({"api", "Nothing"}).code, 2);
  EXPECT_EQ(RunInProcess({"api", "--tsv", "--json"}).code, 2);
}

}  // namespace
}  // namespace qdclgl::cli::testing
