// Books as files and back.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "qdclgl/cli/csv_reader.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

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

  std::vector<std::string> Files(const std::string& name) const {
    return {"export", "--accounts", folder.Path(name + "_accounts.csv"), "--journal",
            folder.Path(name + "_journal.csv")};
  }

  // All vouchers with lines and details, without ids.
  static Json VouchersOf(const std::function<RunResult(std::vector<std::string>)>& run) {
    std::map<std::string, Json> vouchers;
    for (const Json& row : ParseJson(run({"vouchers", "--json"}).out)) {
      const std::string id = std::to_string(row["FVoucherID"].get<long>());
      Json whole = WithoutIds(ParseJson(run({"voucher", id, "--json"}).out));
      vouchers[row["FDate"].get<std::string>() + row["FGroup"].get<std::string>() +
               std::to_string(row["FNumber"].get<long>())] = whole;
    }
    return vouchers;
  }

  const std::string other;
};

TEST_P(Export, AndImportGiveTheSameBooks) {
  KeepOddSample();
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
  EXPECT_EQ(WithoutIds(ParseJson(RunOther({"balance", "--json"}).out)),
            WithoutIds(ParseJson(Run({"balance", "--json"}).out)));
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

QDCLGL_CLI_TEST(Export);

}  // namespace
}  // namespace qdclgl::cli::testing
