// Imports in whose way the database fails.
#include <gtest/gtest.h>

#include <memory>

#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/refusals.h"
#include "tests/cli/cli_fixture.h"
#include "tests/server/faults/cutting_proxy.h"
#include "tests/server/faults/fault_sweep.h"

namespace qdclgl::cli::testing {
namespace {

using server::ConnectionText;
using server::testing::CuttingProxy;
using server::testing::SweptOperation;
namespace connection_key = server::connection_key;

// The refusal that a run ended with, by name; "none" for one that is done.
std::string RefusalOf(const RunResult& result) {
  if (result.code == 0) return "none";
  for (const server::RefusalRow& row : server::kRefusals) {
    char number[sizeof "80044200"];
    std::snprintf(number, sizeof number, "%08X", static_cast<unsigned>(row.number));
    if (result.err.starts_with("qdclgl: " + std::string(number))) return std::string(row.name);
  }
  return result.err;
}

class Faults : public CliTest {
 protected:
  std::string JournalOfTwo() const {
    return folder.Write("journal.csv", "voucher,date,group,account,debit,credit\n"
                                       "1,2024-01-05,Sales,1000,1.00,\n"
                                       "1,2024-01-05,Sales,2000.01,,1.00\n"
                                       "2,2024-01-05,Sales,1000,1.00,\n"
                                       "2,2024-01-05,Sales,2000.01,,1.00\n");
  }
};
QDCLGL_CLI_TEST(Faults);

TEST_P(Faults, ImportsAreWholeOrRefused) {
  Init();
  const std::string journal = JournalOfTwo();
  const std::string place = server::testing::NewConnectionText(GetParam());
  std::unique_ptr<CuttingProxy> proxy;
  const ConnectionText text = ConnectionText::Parse(place);
  std::string reached = text.With(connection_key::kSynchronous, "Full").ToText();
  if (!text.IsSQLite()) {
    proxy = std::make_unique<CuttingProxy>(std::string(text[connection_key::kHost]),
                                           std::string(text[connection_key::kPort]));
    reached = text.With(connection_key::kPort, proxy->port()).ToText();
    ASSERT_EQ(RunInProcess({"init", "--no-password", place, "--year", "2024"}).code, 0);
  }
  const SweptOperation import{
      .name = "Import",
      .restore = [&] { server::testing::CopyBooks(book, place); },
      .act =
          [&] {
            return RefusalOf(RunInProcess({"import", reached, "--journal", journal}));
          },
      .state =
          [&] {
            return RunInProcess({"vouchers", reached, "--json"}).out +
                   RunInProcess({"groups", reached, "--json"}).out;
          },
      .check =
          [&] {
            return RunInProcess({"doctor", reached}).out;
          }};
  RecordProperty("Import", proxy ? SweepConnection(*proxy, import) : SweepDisk(import));
  server::testing::RemoveBooks(place);
}

}  // namespace
}  // namespace qdclgl::cli::testing
