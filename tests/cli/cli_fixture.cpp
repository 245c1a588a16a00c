#include "tests/cli/cli_fixture.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "qdclgl/cli/program.h"
#include "qdclgl/server/access/password.h"

namespace qdclgl::cli::testing {

RunResult RunInProcess(const std::vector<std::string>& arguments) {
  std::ostringstream out, err;
  RunResult result;
  result.code = Run(arguments, {out, err});
  result.out = out.str();
  result.err = err.str();
  return result;
}

Process Start(std::vector<std::string> arguments, const std::string& out_file,
              const std::string& err_file, const std::string& program) {
  arguments.insert(arguments.begin(), program);
  return Process(arguments, out_file, err_file);
}

RunResult RunProgram(const std::vector<std::string>& arguments, const std::string& program) {
  const Folder folder;
  const int code = Start(arguments, folder.Path("out"), folder.Path("err"), program).Wait();
  return {code, ReadFile(folder.Path("out")), ReadFile(folder.Path("err"))};
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.good()) << path;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

Folder::Folder() {
  static std::atomic<int> count{0};
  const auto path = std::filesystem::temp_directory_path() /
                    ("qdclgl_cli_" + std::to_string(qdclgl::testing::ProcessId()) + "_" +
                     std::to_string(++count));
  std::filesystem::create_directories(path);
  path_ = path.string();
}

Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string Folder::Path(const std::string& name) const {
  return (std::filesystem::path(path_) / name).make_preferred().string();
}

std::string Folder::Write(const std::string& name, const std::string& text) const {
  std::ofstream(Path(name), std::ios::binary) << text;
  return Path(name);
}

CliTest::CliTest() : book(server::testing::NewConnectionText(GetParam())) {
  // Books made in this process cost little to log in to, for the built program as well.
  server::SetPasswordCost(server::PasswordCost::kLeast);
  SetVariable("QDCLGL_REGISTRY", folder.Path("registry"));
  SetVariable("QDCLGL_SESSIONS", folder.Path("sessions"));
}

CliTest::~CliTest() { server::testing::RemoveBooks(book); }

RunResult CliTest::Run(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin() + 1, book);
  return RunInProcess(arguments);
}

void CliTest::Init(const std::string& year) const {
  ASSERT_EQ(Run({"init", "--no-password", "--year", year}).code, 0);
  const std::string chart = folder.Write("accounts.csv", "number,name,dc\n"
                                                         "1000,Cash,1\n1001,Bank,1\n1002,Goods,1\n"
                                                         "2000,Equity,-1\n2000.01,Capital,-1\n");
  ASSERT_EQ(Run({"import", "--accounts", chart}).code, 0);
}

void CliTest::Keep(const std::string& year, const std::string& accounts,
                   const std::string& journal) const {
  ASSERT_EQ(Run({"init", "--no-password", "--year", year}).code, 0);
  const std::string chart = folder.Write("accounts.csv", "number,name,dc,kind\n" + accounts);
  const std::string lines =
      folder.Write("journal.csv", "voucher,date,account,debit,credit\n" + journal);
  ASSERT_EQ(Run({"import", "--accounts", chart, "--journal", lines, "--post-all"}).err, "");
}

void CliTest::KeepSample() const {
  const std::string sample = QDCLGL_SOURCE_DIR "/examples/books";
  ASSERT_EQ(Run({"init", "--no-password", "--year", "2024"}).code, 0);
  ASSERT_EQ(Run({"import", "--accounts", sample + "/accounts.csv", "--journal",
                 sample + "/journal.csv", "--new-currencies", "--check-all", "--post-all"})
                .err,
            "");
}

void CliTest::KeepOddSample() const {
  KeepSample();
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

std::string CliTest::Said(std::vector<std::string> arguments) const {
  const RunResult result = Run(std::move(arguments));
  return std::to_string(result.code) + " " + result.out + result.err;
}

std::string CliTest::Lines(const std::string& id) const {
  const std::string text = Run({"voucher", id}).out;
  return text.substr(text.find("\n\n") + 2);
}

RunResult CliTest::ImportRows(const std::string& rows,
                              const std::vector<std::string>& options) const {
  std::vector<std::string> arguments = {
      "import", "--journal",
      folder.Write("journal.csv", "voucher,date,account,debit,credit\n" + rows)};
  arguments.insert(arguments.end(), options.begin(), options.end());
  RunResult result = Run(arguments);
  // Reports name the file as the command line does.
  const std::string path = folder.Path("journal.csv");
  for (std::size_t at; (at = result.err.find(path)) != result.err.npos;) {
    result.err.replace(at, path.size(), "journal.csv");
  }
  return result;
}

}  // namespace qdclgl::cli::testing
