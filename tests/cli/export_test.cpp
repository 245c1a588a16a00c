// Books as files and back.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/csv_reader.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

using Json = nlohmann::json;

const std::string kSample = QDCLGL_SOURCE_DIR "/examples/books";

std::string HouseholdFolder() {
  const char* given = std::getenv("QDCLGL_TEST_DATA");
  return (given != nullptr ? std::string(given) : QDCLGL_SOURCE_DIR "/../shared/data") +
         "/household";
}

// Without what differs between books that say the same: ids, versions, keepers of steps.
Json WithoutIds(const Json& value) {
  if (value.is_array()) {
    Json list = Json::array();
    for (const Json& element : value) list.push_back(WithoutIds(element));
    return list;
  }
  if (!value.is_object()) return value;
  Json row = Json::object();
  for (const auto& [key, element] : value.items()) {
    if (!key.ends_with("ID") && key != "FVersion") row[key] = WithoutIds(element);
  }
  return row;
}

class Export : public CliTest {
 protected:
  Export() : other(server::testing::NewConnectionText(GetParam())) {}
  ~Export() override { server::testing::RemoveBooks(other); }

  RunResult RunOther(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin() + 1, other);
    return RunInProcess(arguments);
  }

  // The sample books, with what they don't have by themselves: lines of an account with others
  // below it, vouchers without a reference or with the same one, red ink, a difference of rates, an
  // account that asks for items, and texts that a spreadsheet would take for something else.
  void MakeBooks() const {
    ASSERT_EQ(Run({"init", "--no-password", "--year", "2024"}).code, 0);
    ASSERT_EQ(Run({"import", "--accounts", kSample + "/accounts.csv", "--journal",
                   kSample + "/journal.csv", "--new-currencies", "--check-all", "--post-all"})
                  .err,
              "");
    ASSERT_EQ(Run({"add", "items", "C1", "FItemClassID=3", "FName=Ann"}).err, "");
    const std::string chart =
        folder.Write("more.csv", "number,name,dc,items,FHelperCode,FIsCash\n"
                                 "1100.09,\"Debtors, \"\"others\"\"\",1,CUSTOMER,d9,yes\n");
    ASSERT_EQ(Run({"import", "--accounts", chart}).err, "");
    const std::string journal = folder.Write(
        "more_journal.csv",
        "voucher,date,account,debit,credit,explanation,currency,amount_for,rate,CUSTOMER,"
        "voucher_reference,group,number\n"
        "x,2024-12-30,1100.09,12.5,,\"=1+1\",,,,C1,same,Odd,7\n"
        "x,2024-12-30,3000,,12.5,\"two\nlines, \"\"quoted\"\" \",,,,,same,Odd,7\n"
        "y,2024-12-31,1000.01,-3,,Red,,,,,same,Odd,8\n"
        "y,2024-12-31,3000,,-3,Red,,,,,same,Odd,8\n"
        "z,2024-12-31,1000.03,0.25,,Difference,USD,0,0,,,Odd,9\n"
        "z,2024-12-31,3000,,0.25,Difference,,,,,,Odd,9\n");
    ASSERT_EQ(Run({"import", "--journal", journal, "--check-all", "--post-all"}).err, "");
  }

  std::vector<std::string> Files(const std::string& name) const {
    return {"export", "--accounts", folder.Path(name + "_accounts.csv"), "--journal",
            folder.Path(name + "_journal.csv")};
  }

  // All vouchers with lines and details, without ids.
  static Json VouchersOf(const std::function<RunResult(std::vector<std::string>)>& run) {
    std::map<std::string, Json> vouchers;
    for (const Json& row : Json::parse(run({"vouchers", "--json"}).out)) {
      const std::string id = std::to_string(row["FVoucherID"].get<long>());
      Json whole = WithoutIds(Json::parse(run({"voucher", id, "--json"}).out));
      vouchers[row["FDate"].get<std::string>() + row["FGroup"].get<std::string>() +
               std::to_string(row["FNumber"].get<long>())] = whole;
    }
    return vouchers;
  }

  const std::string other;
};

TEST_P(Export, AndImportGiveTheSameBooks) {
  MakeBooks();
  const RunResult written = Run(Files("first"));
  EXPECT_EQ(written.err, "");
  ASSERT_EQ(written.code, 0);

  ASSERT_EQ(RunOther({"init", "--no-password", "--year", "2024"}).code, 0);
  ASSERT_EQ(RunOther({"add", "items", "C1", "FItemClassID=3", "FName=Ann"}).err, "");
  const RunResult read =
      RunOther({"import", "--accounts", folder.Path("first_accounts.csv"), "--journal",
                folder.Path("first_journal.csv"), "--new-currencies", "--check-all", "--post-all"});
  EXPECT_EQ(read.err, "");
  ASSERT_EQ(read.code, 0);

  std::vector<std::string> again = Files("second");
  ASSERT_EQ(RunOther(again).code, 0);
  for (const std::string file : {"accounts.csv", "journal.csv"}) {
    EXPECT_EQ(ReadFile(folder.Path("second_" + file)), ReadFile(folder.Path("first_" + file)));
  }
  EXPECT_EQ(WithoutIds(Json::parse(RunOther({"balance", "--json"}).out)),
            WithoutIds(Json::parse(Run({"balance", "--json"}).out)));
  EXPECT_EQ(RunOther({"balance", "--by", "customers", "--csv"}).out,
            Run({"balance", "--by", "customers", "--csv"}).out);
  const Json vouchers = VouchersOf([&](auto words) { return Run(words); });
  EXPECT_GT(vouchers.size(), 20u);
  EXPECT_EQ(VouchersOf([&](auto words) { return RunOther(words); }), vouchers);
  EXPECT_EQ(RunOther({"doctor"}).out, "The books are in order.\n");

  // The same file once more brings nothing.
  const RunResult resumed =
      RunOther({"import", "--journal", folder.Path("first_journal.csv"), "--resume"});
  EXPECT_EQ(resumed.code, 0);
  EXPECT_NE(resumed.out.find("vouchers: 0 stored, " + std::to_string(vouchers.size()) +
                             " passed over, 0 left out"),
            std::string::npos)
      << resumed.out;
}

TEST_P(Export, WritesOwnLinesUnderTheirAccountAndTextsAsTheyAre) {
  Init();
  ASSERT_EQ(ImportRows("a,2024-01-02,1000,5,\na,2024-01-02,2000,,5\n").code, 0);
  ASSERT_EQ(Run({"new", "--line", "1000 debit 3 =HYPERLINK(1)", "--line", "1001 credit", "--date",
                 "2024-01-03"})
                .code,
            0);
  EXPECT_EQ(
      Run({"export", "--journal", "-"}).out,
      "voucher,date,account,debit,credit,group,number,explanation,currency,amount_for,rate,"
      "quantity,unit,unit_price,reference,voucher_reference,voucher_explanation,settlement,"
      "department\n"
      "2024/1 General 1,2024-01-02,1000,5.0000,,General,1,,,,,,,,,a,,,\n"
      "2024/1 General 1,2024-01-02,2000,,5.0000,General,1,,,,,,,,,a,,,\n"
      "2024/1 General 2,2024-01-03,1000,3.0000,,General,2,=HYPERLINK(1),,,,,,,,,=HYPERLINK(1),,\n"
      "2024/1 General 2,2024-01-03,1001,,3.0000,General,2,,,,,,,,,,=HYPERLINK(1),,\n");
  EXPECT_EQ(Run({"export", "--accounts", "-"}).out,
            "number,name,dc,currency,unit,quantities,items\n1000,Cash,1,,,,\n1001,Bank,1,,,,\n"
            "1002,Goods,1,,,,\n2000,Equity,-1,,,,\n2000.01,Capital,-1,,,,\n");
}

TEST_P(Export, TakesDaysPeriodsAndPostedVouchers) {
  Init();
  ASSERT_EQ(ImportRows("a,2024-01-02,1000,5,\na,2024-01-02,1001,,5\n"
                       "b,2024-02-02,1000,6,\nb,2024-02-02,1001,,6\n"
                       "c,2024-03-02,1000,7,\nc,2024-03-02,1001,,7\n")
                .code,
            0);
  ASSERT_EQ(Run({"post", "2"}).code, 0);
  const auto names = [&](std::vector<std::string> options) {
    options.insert(options.begin(), {"export", "--journal", "-"});
    std::istringstream rows(Run(options).out);
    std::string found;
    for (std::string row; std::getline(rows, row);) {
      if (row.find(",1000,") != row.npos) found += row.substr(0, row.find(',')) + ";";
    }
    return found;
  };
  EXPECT_EQ(names({}), "2024/1 General 1;2024/2 General 1;2024/3 General 1;");
  EXPECT_EQ(names({"--from", "2024/2"}), "2024/2 General 1;2024/3 General 1;");
  EXPECT_EQ(names({"--from", "2024-01-03", "--to", "2024-02"}), "2024/2 General 1;");
  EXPECT_EQ(names({"--to", "2024-01-02"}), "2024/1 General 1;");
  EXPECT_EQ(names({"--posted"}), "2024/2 General 1;");
}

TEST_P(Export, TellsWhatAJournalLacksAndWritesItWhole) {
  Init();
  const std::string journal =
      folder.Write("j.csv", "voucher,date,account,debit,credit,FAttachments,FSettleNo\n"
                            "a,2024-01-02,1000,5,,3,S-1\na,2024-01-02,1001,,5,3,\n");
  ASSERT_EQ(Run({"import", "--journal", journal}).err, "");
  const RunResult usual = Run({"export", "--journal", folder.Path("usual.csv")});
  EXPECT_EQ(usual.err, "left out: FAttachments, 1 time\nleft out: FSettleNo, 1 time\n");
  EXPECT_EQ(usual.code, 3);
  const RunResult whole = Run({"export", "--whole", "--journal", folder.Path("whole.csv")});
  EXPECT_EQ(whole.err, "");
  EXPECT_EQ(whole.code, 0);

  ASSERT_EQ(RunOther({"init", "--no-password", "--year", "2024"}).code, 0);
  ASSERT_EQ(RunOther({"import", "--accounts", folder.Path("accounts.csv"), "--journal",
                      folder.Path("whole.csv")})
                .err,
            "");
  EXPECT_EQ(RunOther({"export", "--whole", "--journal", "-"}).out,
            ReadFile(folder.Path("whole.csv")));
}

TEST_P(Export, LeavesFilesAloneUnlessItIsForced) {
  Init();
  const std::string file = folder.Write("there.csv", "precious");
  const RunResult refused = Run({"export", "--journal", file});
  EXPECT_EQ(refused.code, 6);
  EXPECT_EQ(refused.err, "qdclgl: " + file + " is there already; --force writes over it\n");
  EXPECT_EQ(ReadFile(file), "precious");
  EXPECT_EQ(Run({"export", "--journal", file, "--force"}).code, 0);
  EXPECT_TRUE(ReadFile(file).starts_with("voucher,"));
  // What is under way stands beside it, and is gone behind a failure.
  EXPECT_FALSE(std::filesystem::exists(file + ".part"));
  const RunResult failed = Run({"export", "--journal", "/dev/full/x.csv"});
  EXPECT_EQ(failed.code, 6);
}

// ---- Text for other programs ----

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

class PlainText : public Export {
 protected:
  // Every balance of every account, as the three programs find it in what is exported with these
  // options.
  void ExpectProgramsAgree(const std::vector<std::string>& options) const {
    std::map<std::string, std::string> expected;
    for (const Json& row : Json::parse(Run({"balance", "--json"}).out)) {
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
  MakeBooks();
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
               "a,2024-01-02,1000,,50,date:never,USD1,100,,\n");
  ASSERT_EQ(Run({"import", "--journal", journal}).err, "");
  const std::string head = "\n2024-01-02 ! (2024/1 General 1) Bought, today, (2024-99-99), ours\n";
  EXPECT_EQ(Run({"export", "--format", "hledger", "-"}).out,
            head + "  1003 Tea, green [fine]  2.5 kg @@ 50.0000 EUR\n"
                   "  1000 Cash  -100.0000 \"USD1\" @@ 50.0000 EUR  ; date,never\n");
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

QDCLGL_CLI_TEST(Export);
QDCLGL_CLI_TEST(PlainText);

}  // namespace
}  // namespace qdclgl::cli::testing
