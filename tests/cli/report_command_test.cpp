// Reports: what their pages say, where their links lead, and what a run leaves behind.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <thread>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/server/db/database.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

namespace fs = std::filesystem;

// Elements that have no end.
bool IsVoid(const std::string& element) {
  return std::set<std::string>{"meta", "line", "br"}.contains(element);
}

// Whether each element ends within the one that it begins in, and what is no element is escaped.
void ExpectWellFormed(const std::string& name, const std::string& page) {
  std::vector<std::string> open;
  const std::regex tag("<(/?)([a-z0-9]+)((?: [A-Za-z0-9-]+(?:=\"[^\"<>]*\")?)*)(/?)>");
  std::size_t at = page.find('\n');  // behind the doctype
  const std::size_t style = page.find("<style>"), style_end = page.find("</style>");
  for (std::smatch match; (at = page.find('<', at)) != page.npos;) {
    if (at > style && at < style_end) {
      at = style_end;
      continue;
    }
    const std::string rest = page.substr(at, page.find('>', at) - at + 1);
    ASSERT_TRUE(std::regex_match(rest, match, tag)) << name << ": " << rest;
    if (match[1] == "/") {
      ASSERT_FALSE(open.empty()) << name << ": " << rest;
      ASSERT_EQ(open.back(), match[2]) << name;
      open.pop_back();
    } else if (match[4] != "/" && !IsVoid(match[2])) {
      open.push_back(match[2]);
    }
    at += rest.size();
  }
  EXPECT_TRUE(open.empty()) << name;
}

std::string Plain(std::string text) {
  text = std::regex_replace(text, std::regex("<[^>]*>"), "");
  for (const auto& [entity, character] : std::map<std::string, std::string>{
           {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}}) {
    text = std::regex_replace(text, std::regex(entity), character);
  }
  return std::regex_replace(text, std::regex("&amp;"), "&");
}

// The rows of a page's tables, as texts.
std::vector<std::vector<std::string>> RowsOf(const std::string& page) {
  std::vector<std::vector<std::string>> rows;
  for (std::size_t at = 0; (at = page.find("<tr", at)) != page.npos; ++at) {
    std::string row = page.substr(at, page.find("</tr>", at) - at);
    std::vector<std::string> cells;
    for (std::size_t cell = 0; (cell = row.find("<td", cell)) != row.npos; ++cell) {
      const std::size_t text = row.find('>', cell) + 1;
      cells.push_back(Plain(row.substr(text, row.find("</td>", text) - text)));
    }
    if (!cells.empty()) rows.push_back(cells);
  }
  return rows;
}

// "1,234.50" as CSV has it.
std::string Exact(std::string text) {
  std::erase(text, ',');
  return AmountText(ReadAmount(text.empty() ? "0" : text));
}

class Report : public CliTest {
 protected:
  void InitWithPostings() const {
    Init();
    ASSERT_EQ(ImportRows("v1,2024-01-05,1000,1234.5,\nv1,2024-01-05,2000.01,,1234.5\n"
                         "v2,2024-02-05,1001,3,\nv2,2024-02-05,1000,,3\n"
                         "v3,2025-01-05,1001,4,\nv3,2025-01-05,1001,,4\n"
                         "v4,2027-01-05,1001,5,\nv4,2027-01-05,1000,,5\n",
                         {"--post-all"})
                  .code,
              0);
  }

  std::string Place() const { return folder.Path("report"); }
  std::string Page(const std::string& name) const { return ReadFile(Place() + "/" + name); }

  // All pages by their names.
  std::map<std::string, std::string> Pages() const {
    std::map<std::string, std::string> pages;
    for (const auto& file : fs::directory_iterator(Place())) {
      if (file.path().extension() == ".html") {
        pages[file.path().filename().string()] = ReadFile(file.path().string());
      }
    }
    return pages;
  }

  // Every link leads to a page or a place in one, and none out of the report.
  void ExpectLinksLeadSomewhere() const {
    const auto pages = Pages();
    std::set<std::string> places;
    std::size_t links = 0;
    for (const auto& [name, page] : pages) {
      places.insert(name);
      for (std::size_t at = 0; (at = page.find(" id=\"", at)) != page.npos; ++at) {
        const std::string id = page.substr(at + 5, page.find('"', at + 5) - at - 5);
        EXPECT_TRUE(places.insert(name + "#" + id).second) << name << " has two of " << id;
      }
      ExpectWellFormed(name, page);
    }
    for (const auto& [name, page] : pages) {
      for (std::size_t at = 0; (at = page.find(" href=\"", at)) != page.npos; ++at, ++links) {
        std::string to = page.substr(at + 7, page.find('"', at + 7) - at - 7);
        if (to.starts_with('#')) to = name + to;
        EXPECT_TRUE(places.contains(to)) << name << " -> " << to;
      }
      for (const char* outside : {"=\"http", "url(", "@import", "<link", "<img", "<script"}) {
        EXPECT_EQ(page.find(outside), page.npos) << name << " needs something from outside";
      }
    }
    EXPECT_GT(links, 5 * pages.size());
  }

  // The figures of a statement's page are those of its command with the years of the page.
  void ExpectStatement(const std::string& page, const char* command) const {
    std::vector<std::string> years;
    for (std::smatch match; years.empty();) {
      std::string text = Page(page);
      const std::regex heading("<th scope=\"col\" class=\"figure\">([0-9]+)</th>");
      while (std::regex_search(text, match, heading)) {
        years.push_back(match[1]);
        text = match.suffix();
      }
      ASSERT_FALSE(years.empty()) << page;
    }
    std::map<std::string, std::vector<std::string>> by_account;
    for (const std::string& year : years) {
      const RunResult result = Run({command, "--json", "--year", year});
      for (const auto& row : ParseJson(result.out)) {
        if (row["FRow"] != "Account") continue;
        auto& amounts = by_account[row["FAccountNumber"]];
        amounts.resize(years.size(), "0.0000");
        amounts[static_cast<std::size_t>(std::ranges::find(years, year) - years.begin())] =
            row["FAmount"];
      }
    }
    // An account's own lines stand under the number of the account.
    std::multimap<std::string, std::vector<std::string>> wanted, shown;
    for (const auto& [number, amounts] : by_account) {
      wanted.emplace(number.ends_with("._") ? number.substr(0, number.size() - 2) : number,
                     amounts);
    }
    for (const auto& cells : RowsOf(Page(page))) {
      if (cells[0].empty()) continue;
      std::vector<std::string> amounts;
      for (std::size_t i = 2; i < cells.size(); ++i) amounts.push_back(Exact(cells[i]));
      shown.emplace(cells[0], amounts);
    }
    EXPECT_EQ(shown, wanted) << page;
  }

  // What the trial balance and the statements say is what `balance` says.
  void ExpectFiguresOfTheCommands() const {
    std::map<std::string, Json> balances;
    for (const auto& row : ParseJson(Run({"balance", "--json"}).out)) {
      if (row["FCurrencyID"] == 0) balances[row["FAccountNumber"]] = row;
    }
    auto rows = RowsOf(Page("balance.html"));
    EXPECT_EQ(rows.back()[1], "Total");
    rows.pop_back();
    EXPECT_EQ(rows.size(), balances.size());
    for (const auto& cells : rows) {
      const Json& row = balances.at(cells[0]);
      EXPECT_EQ(Exact(cells[2]), row["FDebit"]) << cells[0];
      EXPECT_EQ(Exact(cells[3]), row["FCredit"]) << cells[0];
      EXPECT_EQ(Exact(cells[4]), row["FEndBalance"]) << cells[0];
      const fs::path account =
          fs::path(Place()) / ("account-" + row["FAccountID"].dump() + ".html");
      if (!fs::exists(account)) continue;
      EXPECT_EQ(Exact(RowsOf(ReadFile(account.string())).back()[4]), row["FEndBalance"])
          << cells[0];
    }
  }
};

TEST_P(Report, HasStatementsThatLeadToVouchersAndBack) {
  InitWithPostings();
  EXPECT_EQ(Run({"report", Place()}).out,
            "The report of 4 posted vouchers begins at " + Place() + "/index.html.\n");
  ExpectLinksLeadSomewhere();
  ExpectFiguresOfTheCommands();
  const std::string cash = Page("account-1-2024.html");
  EXPECT_EQ(RowsOf(cash), (std::vector<std::vector<std::string>>{
                              {"", "", "Brought forward", "", "", "0.00"},
                              {"2024-01-05", "2024/1 General 1", "", "1,234.50", "", "1,234.50"},
                              {"2024-02-05", "2024/2 General 1", "", "", "3.00", "1,231.50"},
                              {"", "", "Carried forward", "1,234.50", "3.00", "1,231.50"}}));
  EXPECT_NE(cash.find("<a href=\"vouchers-2024-1.html#v1\">"), cash.npos);
  EXPECT_NE(Page("vouchers-2024-1.html").find("<a href=\"account-1-2024.html#v1-1\">"), cash.npos);
  EXPECT_EQ(RowsOf(Page("account-1.html")).size(), 2u) << "years without movement are left out";
}

TEST_P(Report, OfEmptyBooksIsOneToo) {
  Init();
  EXPECT_EQ(Run({"report", Place()}).code, 0);
  ExpectLinksLeadSomewhere();
  ExpectFiguresOfTheCommands();
}

TEST_P(Report, ShowsCashAndTheLargestCustomers) {
  InitWithPostings();
  ASSERT_EQ(Run({"report", Place()}).code, 0);
  EXPECT_EQ(Page("index.html").find("Cash and banks"), std::string::npos);
  ASSERT_EQ(Run({"set", "accounts", "1000", "FIsCash=yes"}).code, 0);
  ASSERT_EQ(Run({"add", "items", "C1", "FName=Ann", "FItemClassID=3"}).code, 0);
  ASSERT_EQ(
      Run({"add", "accounts", "1100", "FName=Debtors", "FDC=1", R"(_Items=[{"FItemClassID": 3}])"})
          .code,
      0);
  const std::string journal =
      folder.Write("items.csv", "voucher,date,account,debit,credit,customer\n"
                                "v9,2024-03-01,1100,70,,C1\nv9,2024-03-01,2000.01,,70,\n");
  ASSERT_EQ(Run({"import", "--journal", journal, "--post-all"}).err, "");
  ASSERT_EQ(Run({"report", Place()}).code, 0);
  const auto rows = RowsOf(Page("index.html"));
  const auto has = [&](const std::vector<std::string>& row) {
    return std::ranges::find(rows, row) != rows.end();
  };
  EXPECT_TRUE(has({"2024/1", "1,234.50"}));
  EXPECT_TRUE(has({"2024/3", "1,231.50"})) << "the cash is what it was";
  EXPECT_TRUE(has({"2027/1", "1,226.50"}));
  EXPECT_TRUE(has({"C1 Ann", "70.00"}));
}

TEST_P(Report, HasIncomeStatementAndBalanceSheetOfAllYearsAndDrawsThem) {
  Keep("2023",
       "1000,Cash,1,asset\n3000,Capital,-1,equity\n4000,Sales,-1,income\n5000,Costs,1,expense\n"
       "5000.01,Rent & light,1,\n5000.02,Paper,1,\n",
       "a,2023-03-05,1000,1000,\na,2023-03-05,3000,,1000\n"
       "b,2023-04-05,1000,80.5,\nb,2023-04-05,4000,,80.5\n"
       "c,2024-02-05,5000.01,30,\nc,2024-02-05,1000,,30\n"
       "d,2024-03-05,5000.02,45,\nd,2024-03-05,1000,,45\n");
  ASSERT_EQ(Run({"report", Place()}).code, 0);
  ExpectLinksLeadSomewhere();
  ExpectStatement("income.html", "income");
  ExpectStatement("position.html", "position");
  const auto has = [&](const char* page, const std::vector<std::string>& row) {
    const auto rows = RowsOf(Page(page));
    return std::ranges::find(rows, row) != rows.end();
  };
  EXPECT_TRUE(has("income.html", {"", "Result", "80.50", "-75.00"}));
  EXPECT_TRUE(has("position.html", {"", "Total assets", "1,080.50", "1,005.50"}));
  EXPECT_NE(Page("position.html").find("<p>Assets are equal to liabilities and equity.</p>"),
            std::string::npos);
  EXPECT_TRUE(has("index.html", {"2023/4", "80.50"}));
  EXPECT_TRUE(has("index.html", {"2024/2", "-30.00"}));
  const std::string overview = Page("index.html");
  EXPECT_TRUE(has("index.html", {"5000.01 Rent & light", "30.00"}));
  EXPECT_LT(overview.find("<title>5000.02 Paper: 45.00"), overview.find("<title>5000.01 Rent"));
  EXPECT_NE(overview.find(">5000.02</text>"), std::string::npos);
}

TEST_P(Report, EscapesWhateverNamesAre) {
  const std::string hostile = "</title><script>alert(\"1\")</script>'& \u202E\u05D0\u05D1";
  Init();
  ASSERT_EQ(Run({"set", "accounts", "1000", "FName=" + hostile}).err, "");
  ASSERT_EQ(Run({"set", "accounts", "1001", "FName=" + std::string(200, 'x')}).err, "");
  ASSERT_EQ(Run({"add", "groups", "<i>"}).err, "");
  ASSERT_EQ(Run({"new", "--line", "1000 debit 5 <b onclick=\"x\">", "--line", "1001 credit",
                 "--group", "<i>", "--reference", "\"><img src=x>", "--date", "2024-01-05"})
                .err,
            "");
  ASSERT_EQ(Run({"post", "1"}).code, 0);
  ASSERT_EQ(Run({"report", Place()}).code, 0);
  ExpectLinksLeadSomewhere();
  EXPECT_EQ(RowsOf(Page("balance.html"))[0][1], hostile);
  for (const auto& [name, page] : Pages()) {
    for (const char* element : {"<script", "<b ", "<i>", "<img"}) {
      EXPECT_EQ(page.find(element), page.npos) << name;
    }
  }
  EXPECT_NE(Page("vouchers-2024-1.html").find("reference &quot;&gt;&lt;img src=x&gt;"),
            std::string::npos);
}

TEST_P(Report, ReplacesAReportAndNothingElse) {
  InitWithPostings();
  fs::create_directory(Place());
  EXPECT_EQ(Run({"report", Place()}).code, 0) << "an empty folder is as good as none";
  std::ofstream(Place() + "/mine.txt") << "mine";
  EXPECT_EQ(Run({"report", Place() + "/"}).code, 0);
  EXPECT_FALSE(fs::exists(Place() + "/mine.txt")) << "the former report went as a whole";
  const std::string other = folder.Path("other");
  fs::create_directory(other);
  std::ofstream(other + "/mine.txt") << "mine";
  const std::string file = folder.Write("file", "mine");
  for (const std::string& place : {other, file}) {
    const RunResult refused = Run({"report", place});
    EXPECT_EQ(refused.code, 6);
    EXPECT_EQ(refused.err, "qdclgl: " + place +
                               " is there and is no report; name a folder that is not there yet\n");
  }
  EXPECT_EQ(Run({"report", folder.Path("no/such/place")}).code, 6);
  EXPECT_EQ(ReadFile(other + "/mine.txt"), "mine");
  EXPECT_EQ(ReadFile(file), "mine");
  for (const auto& entry : fs::directory_iterator(folder.Path(""))) {
    EXPECT_EQ(entry.path().filename().string().find("unfinished"), std::string::npos);
  }
}

TEST_P(Report, ThatIsKilledLeavesTheFormerOne) {
  Init();
  std::string rows;
  for (int i = 0; i < 600; ++i) {
    const std::string head = std::to_string(i) + ",2024-01-05,";
    rows += head + "1000,1,\n" + head + "1001,,1\n";
  }
  ASSERT_EQ(ImportRows(rows, {"--post-all"}).code, 0);
  ASSERT_EQ(Run({"report", Place()}).code, 0);
  const auto before = Pages();
  ASSERT_EQ(
      Run({"new", "--line", "1000 debit 5", "--line", "1001 credit", "--date", "2024-02-05"}).code,
      0);
  ASSERT_EQ(Run({"post", "--all"}).code, 0);
  Process child = Start({"report", book, Place()}, folder.Path("out"), folder.Path("err"));
  // It is at work as soon as its folder is there.
  const std::string unfinished = folder.Path(".report.unfinished-" + std::to_string(child.Id()));
  for (int i = 0; i < 5000 && !fs::exists(unfinished + "/vouchers-2024-1.html"); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  child.Kill();
  EXPECT_EQ(child.Wait(), Process::kKilled) << "it was done before";
  EXPECT_TRUE(Pages() == before);
}

TEST_P(Report, IsRefusedWhereLinesDoNotAddUpToTheBalances) {
  InitWithPostings();
  {
    server::Database db(server::ConnectionText::Parse(book));
    for (const char* const table : {"t_Balance", "t_YearBalance"}) {
      db.ExecuteScript("UPDATE " + std::string(table) +
                       " SET FDebit = FDebit + 10000 WHERE FAccountID = 1 AND FYear = 2024;");
    }
  }
  const RunResult refused = Run({"report", Place()});
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(refused.err, "qdclgl: 80044214: The books were changed while the report was written; "
                         "please write it again.\n");
  EXPECT_FALSE(fs::exists(Place()));
}

TEST_P(Report, TakesOneFolder) {
  Init();
  EXPECT_EQ(Run({"report"}).code, 2);
  EXPECT_EQ(Run({"report", "a", "b"}).code, 2);
  SetVariable("QDCLGL_BOOK", book);
  EXPECT_EQ(RunInProcess({"report", Place()}).code, 0);
  UnsetVariable("QDCLGL_BOOK");
}

TEST_P(Report, OfRealBooksAgreesWithTheirBalances) {
  const char* given = std::getenv("QDCLGL_TEST_DATA");
  const std::string data =
      (given != nullptr ? std::string(given) : QDCLGL_SOURCE_DIR "/../shared/data") + "/household";
  if (!fs::exists(data)) GTEST_SKIP() << "there is no folder " << data;
  ASSERT_EQ(Run({"init", "--no-password", "--year", "2021", "--currency", "USD"}).code, 0);
  ASSERT_EQ(Run({"import", "--accounts", data + "/accounts.csv", "--journal", data + "/journal.csv",
                 "--new-currencies", "--post-all"})
                .code,
            0);
  ASSERT_EQ(Run({"report", Place()}).code, 0);
  ExpectLinksLeadSomewhere();
  ExpectFiguresOfTheCommands();
  ExpectStatement("income.html", "income");
  ExpectStatement("position.html", "position");
}

TEST_P(Report, IsFreeOfErrorsInABrowser) {
  constexpr const char* kBrowser = "/usr/bin/chromium";
  if (!fs::exists(kBrowser)) GTEST_SKIP() << "scripts/install-tools browser brings one";
  InitWithPostings();
  ASSERT_EQ(Run({"set", "accounts", "1000", "FName=<script>document.title='x'</script>"}).code, 0);
  ASSERT_EQ(Run({"report", Place()}).code, 0);
  for (const char* page :
       {"index.html", "income.html", "position.html", "balance.html", "account-1-2024.html",
        "account-1.html", "vouchers-2024-1.html", "vouchers.html", "trail-1.html"}) {
    const RunResult shown = RunProgram(
        {"--headless", "--no-sandbox", "--disable-gpu", "--user-data-dir=" + folder.Path("browser"),
         "--enable-logging=stderr", "--dump-dom", "file://" + Place() + "/" + page},
        kBrowser);
    EXPECT_EQ(shown.code, 0) << shown.err;
    EXPECT_EQ(shown.err.find("CONSOLE"), std::string::npos) << page << ": " << shown.err;
    EXPECT_NE(shown.out.find("<main id=\"main\">"), std::string::npos) << shown.out;
    EXPECT_EQ(shown.out.find("<script"), std::string::npos) << page;
    EXPECT_EQ(shown.out.find("<title>x"), std::string::npos) << page;
  }
}

QDCLGL_CLI_TEST(Report);

}  // namespace
}  // namespace qdclgl::cli::testing
