// Runs of the command line for tests: in process, and as the built program.
#pragma once

#include <string>
#include <vector>

#include "tests/server/books_fixture.h"
#include "tests/support/json.h"
#include "tests/support/process.h"

namespace qdclgl::cli::testing {

using qdclgl::testing::Json;
using qdclgl::testing::ParseJson;
using qdclgl::testing::Process;
using qdclgl::testing::SetVariable;
using qdclgl::testing::UnsetVariable;
using server::testing::DatabaseKind;
using server::testing::NameOf;

struct RunResult {
  int code = 0;
  std::string out;
  std::string err;
};

RunResult RunInProcess(const std::vector<std::string>& arguments);

// The built program, or another one.
Process Start(std::vector<std::string> arguments, const std::string& out_file,
              const std::string& err_file, const std::string& program = QDCLGL_PROGRAM);
RunResult RunProgram(const std::vector<std::string>& arguments,
                     const std::string& program = QDCLGL_PROGRAM);

std::string ReadFile(const std::string& path);

// A folder of one test, removed behind it.
class Folder {
 public:
  Folder();
  ~Folder();
  // Writes a file and returns its path.
  std::string Write(const std::string& name, const std::string& text) const;
  // As the system writes it.
  std::string Path(const std::string& name) const;

 private:
  std::string path_;
};

// Books for one test, on each database; not made yet.
class CliTest : public ::testing::TestWithParam<DatabaseKind> {
 protected:
  CliTest();
  ~CliTest() override;

  // A command on the books: Run({"balance", "--csv"}) with BOOK behind the command's name.
  RunResult Run(std::vector<std::string> arguments) const;
  // Books of 2024 in EUR with the accounts 1000 to 1002 and 2000, 2000.01.
  void Init(const std::string& year = "2024") const;
  // Books of that first year with an administrator who has no password, of the rows of a chart
  // (number, name, dc, kind) and of a journal, all of it posted.
  void Keep(const std::string& year, const std::string& accounts, const std::string& journal) const;
  // The sample books, all of them posted, likewise.
  void KeepSample() const;
  // The sample books, with what they don't have by themselves: lines of an account with others
  // below it, vouchers without a reference or with the same one, red ink, a difference of rates, an
  // account that asks for items, and texts that a spreadsheet would take for something else.
  void KeepOddSample() const;
  // A command's exit code and all that it says: "0 Done.\n".
  std::string Said(std::vector<std::string> arguments) const;
  // What `voucher` prints of its lines.
  std::string Lines(const std::string& id) const;
  // Imports a journal under a heading that has voucher, date, account, debit and credit.
  RunResult ImportRows(const std::string& rows, const std::vector<std::string>& options = {}) const;

  Folder folder;
  std::string book;
};

#define QDCLGL_CLI_TEST(Suite) \
  INSTANTIATE_TEST_SUITE_P(, Suite, ::testing::ValuesIn(server::testing::Databases()), NameOf)

}  // namespace qdclgl::cli::testing
