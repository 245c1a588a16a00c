// Imports as the books keep them, and one that is taken back.
#include <regex>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class ImportUndo : public CliTest {
 protected:
  static std::string Good(const std::string& key, const std::string& date = "2024-01-05") {
    return key + "," + date + ",1000,10.00,\n" + key + "," + date + ",2000.01,,10.00\n";
  }
  // What a command says, times and the folder left out.
  std::string SaidOf(std::vector<std::string> arguments) const {
    static const std::regex kTime("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d");
    std::string text = std::regex_replace(Said(std::move(arguments)), kTime, "NOW");
    const std::string place = folder.Path("");
    for (std::size_t at; (at = text.find(place)) != std::string::npos;) {
      text.erase(at, place.size());
    }
    return text;
  }
  // Number, vouchers, and what is left of them, for each import.
  std::string Imports() const {
    std::string text;
    for (const auto& row : ParseJson(Run({"imports", "--json"}).out)) {
      text += row["FNumber"].get<std::string>() + " " + row["FVoucherCount"].dump() + " " +
              row["FLeft"].dump() + "\n";
    }
    return text;
  }
};

TEST_P(ImportUndo, AnImportIsListedShownAndTakenBack) {
  Init();
  EXPECT_EQ(Said({"imports"}), "0 There are no imports.\n");
  const RunResult first = ImportRows(Good("a"));
  EXPECT_EQ(first.out, "vouchers: 1 stored as import 1, 0 passed over, 0 left out\n");
  const RunResult second = ImportRows(Good("b") + Good("c"));
  EXPECT_EQ(second.out, "vouchers: 2 stored as import 2, 0 passed over, 0 left out\n");
  EXPECT_EQ(Imports(), "1 1 1\n2 2 2\n");
  const std::string shown =
      "This removes 2 vouchers of import 2 (journal.csv, NOW, "
      "administrator):\n\n"
      "Voucher ID  Date        Voucher           Reference  Explanation  Debit total\n"
      "         2  2024-01-05  2024/1 General 2  b                             10.00\n"
      "         3  2024-01-05  2024/1 General 3  c                             10.00\n\n";
  EXPECT_EQ(SaidOf({"import", "--undo", "2", "--dry-run"}),
            "0 " + shown + "That is what it would do; nothing is removed.\n");
  EXPECT_EQ(Imports(), "1 1 1\n2 2 2\n");
  EXPECT_EQ(SaidOf({"import", "--undo", "2", "--yes"}),
            "0 " + shown + "2 vouchers of import 2 are removed.\n");
  EXPECT_EQ(Imports(), "1 1 1\n2 2 0\n");
  EXPECT_EQ(Said({"doctor"}), "0 The books are in order.\n");
  EXPECT_EQ(ImportRows(Good("b")).out,
            "vouchers: 1 stored as import 3, 0 passed over, 0 left out\n")
      << "its references are free again";
}

TEST_P(ImportUndo, OneThatCannotGoIsToldWithItsFirstVoucher) {
  Init();
  ASSERT_EQ(ImportRows(Good("a") + Good("b")).code, 0);
  ASSERT_EQ(Run({"post", "2"}).code, 0);
  for (const char* option : {"--yes", "--dry-run"}) {
    const RunResult result = Run({"import", "--undo", "1", option});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "qdclgl: 80044229: Voucher 2024/1 General 2: it is posted.\n");
    EXPECT_EQ(Imports(), "1 2 2\n");
  }
}

TEST_P(ImportUndo, AResumedImportIsTwo) {
  Init();
  ASSERT_EQ(ImportRows(Good("a")).code, 0);
  EXPECT_EQ(ImportRows(Good("a") + Good("b"), {"--resume"}).out,
            "vouchers: 1 stored as import 2, 1 passed over, 0 left out\n"
            "What was passed over was in the books before, and is no part of this import.\n");
  EXPECT_EQ(Run({"import", "--undo", "2", "--yes"}).code, 0);
  EXPECT_EQ(Imports(), "1 1 1\n2 1 0\n");
}

TEST_P(ImportUndo, WhatStoresNothingIsNoImport) {
  Init();
  EXPECT_EQ(ImportRows(Good("a"), {"--dry-run"}).out,
            "vouchers: 1 stored, 0 passed over, 0 left out\n"
            "That is what an import would do; nothing is stored.\n");
  EXPECT_EQ(ImportRows("a,2024-01-05,9999,1,\n").code, 3);
  EXPECT_EQ(Said({"imports"}), "0 There are no imports.\n");
}

TEST_P(ImportUndo, AnImportOfManyBatchesIsOne) {
  Init();
  std::string rows;
  for (int i = 0; i < 1001; ++i) rows += Good("v" + std::to_string(i));
  ASSERT_EQ(ImportRows(rows).code, 0);
  EXPECT_EQ(Imports(), "1 1001 1001\n");
  EXPECT_EQ(Run({"import", "--undo", "1", "--yes"}).code, 0);
  EXPECT_EQ(Said({"vouchers"}), "0 There are no vouchers.\n");
}

TEST_P(ImportUndo, WhatIsLeftGoesWithTheBooksToTheirCopy) {
  Init();
  ASSERT_EQ(ImportRows(Good("a")).code, 0);
  const std::string copy = folder.Path("copy.db");
  ASSERT_EQ(Run({"backup", copy}).code, 0);
  EXPECT_EQ(RunInProcess({"import", copy, "--undo", "1", "--yes"}).code, 0);
}

QDCLGL_CLI_TEST(ImportUndo);

}  // namespace
}  // namespace qdclgl::cli::testing
