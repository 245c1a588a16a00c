// Imports on the server: which vouchers came together, and that they go together.
#include <regex>

#include "qdclgl/frame/objects/conversions.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

constexpr std::string_view kInfo = "QDSVGLImport.ImportInfo";
constexpr std::string_view kUpdate = "QDSVGLImport.ImportUpdate";

class ImportServer : public LedgerTest {
 protected:
  Long Create(const std::string& file, Cells more = {}) {
    auto row = Make<Dictionary>();
    row->Put("FName", file);
    for (const auto& [key, value] : more) row->Put(key, value);
    return Call(kUpdate, "Create", props, row).As<Long>();
  }
  void Add(Long import, const std::vector<Long>& vouchers) {
    auto ids = Make<Vector>();
    for (const Long id : vouchers) ids->Append(id);
    Call(kUpdate, "AddVouchers", props, ByRef(import), ids);
  }
  Long TakeOut(Long import) { return Call(kUpdate, "TakeOut", props, ByRef(import)).As<Long>(); }
  // Import 1 with the vouchers 1 to 3, beside voucher 4, which is of none.
  Long Three() {
    for (int i = 0; i < 4; ++i) Save(Sale(Currency(100 + i)));
    const Long id = Create("journal.csv");
    Add(id, {1, 2, 3});
    return id;
  }
  std::string List() {
    return TextOf(Call(kInfo, "GetList", props).As<Recordset>(),
                  {"FNumber", "FName", "FUserName", "FVoucherCount", "FLeft", "FTakenOut"});
  }
  std::string Vouchers(Long import) {
    return TextOf(Call(kInfo, "GetVouchers", props, ByRef(import)).As<Recordset>(),
                  {"FVoucherID", "FVoucher", "FDebitTotal", "FDeleted"});
  }
  // The vouchers of the books, marked deleted or not.
  std::string Headers() {
    std::string text;
    for (const auto& [id, deleted] : Books().Query<Long, bool>(
             "SELECT FVoucherID, FDeleted FROM t_Voucher ORDER BY FVoucherID")) {
      text += std::to_string(id) + (deleted ? "- " : " ");
    }
    return text;
  }
  void Change(Long voucher) {
    const Ref<Dictionary> row = Read(voucher);
    row->Put("FReference", "changed");
    Update(voucher, row);
  }
};

TEST_P(ImportServer, ItsVouchersGoTogetherAndOthersStay) {
  const Long import = Three();
  EXPECT_EQ(List(), "1 journal.csv administrator 3 3 False\n");
  EXPECT_EQ(Vouchers(import), "1 2024/1 Receipts 1 100 False\n2 2024/1 Receipts 2 101 False\n"
                              "3 2024/1 Receipts 3 102 False\n");
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, Long{2});
  EXPECT_EQ(List(), "1 journal.csv administrator 3 2 False\n");
  EXPECT_EQ(TakeOut(import), 3) << "what is marked deleted goes for good";
  EXPECT_EQ(List(), "1 journal.csv administrator 3 0 True\n");
  EXPECT_EQ(Headers(), "4 ");
  EXPECT_EQ(Vouchers(import), "");
  EXPECT_EQ(ErrorText([&] { TakeOut(import); }),
            "80044213: Import 1 (journal.csv): none of its vouchers is left.");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ImportServer, ItIsOnTheTrailWithWhatBecameOfIt) {
  const Long import = Three();
  const Long fifth = Save(Sale(Currency(7)));
  Add(import, {fifth});
  TakeOut(import);
  EXPECT_EQ(Trail("FSubject = 'Import'", {"FRecord", "FAction", "FChanges"}).substr(0, 36),
            "1 (journal.csv) Create {\"new\":{\"FVer");
  static const std::regex kHash("\\[\"[0-9a-f]*\",\"[0-9a-f]{64}\"\\]");
  EXPECT_EQ(std::regex_replace(
                Trail("FSubject = 'Import' AND FAction <> 'Create'", {"FAction", "FChanges"}),
                kHash, "HASH"),
            "AddVouchers {\"FVersion\":[1,2],\"FVoucherCount\":[0,3],\"FVoucherHash\":HASH}\n"
            "AddVouchers {\"FVersion\":[2,3],\"FVoucherCount\":[3,4],\"FVoucherHash\":HASH}\n"
            "Update {\"FVersion\":[3,4],\"FTakenOut\":[false,true]}\n");
  EXPECT_EQ(Trail("FAction = 'Purge'", {"FRecordID"}), "1\n2\n3\n5\n");
}

TEST_P(ImportServer, WhatCannotGoIsNamedAndKeepsAllOfThem) {
  const Long import = Three();
  const auto expect_refused = [&](const std::string& error) {
    const std::string state = State();
    EXPECT_EQ(ErrorText([&] { TakeOut(import); }).substr(0, error.size()), error);
    EXPECT_EQ(State(), state);
  };
  Step("Check", 2);
  expect_refused("80044228: Voucher 2024/1 Receipts 2: ");
  Step("Approve", 2);
  expect_refused("80044228: Voucher 2024/1 Receipts 2: ");
  Step("Approve", 2, false);
  Step("Post", 2);
  expect_refused("80044229: Voucher 2024/1 Receipts 2: ");
  Step("UnPost", 2);
  Step("Check", 2, false);
  Step("Cash", 3);
  expect_refused("8004422E: Voucher 2024/1 Receipts 3: ");
  Step("Cash", 3, false);
  Change(2);
  expect_refused("80044214: Voucher 2024/1 Receipts 2: it was changed since the import; ");
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, Long{2});
  EXPECT_EQ(TakeOut(import), 3) << "steps that were taken back change nothing";
}

TEST_P(ImportServer, VouchersOfAClosedPeriodStay) {
  const Long import = Three();
  for (const Long id : {1, 2, 3, 4}) Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, id);
  Call("QDSVGLPeriod.PeriodUpdate", "Close", props);
  EXPECT_EQ(RefusalOf([&] { TakeOut(import); }), "PeriodClosed");
  EXPECT_EQ(Headers(), "1- 2- 3- 4- ");
}

TEST_P(ImportServer, OnlyVouchersOfNoImportCanBeAdded) {
  const Long import = Three();
  const std::string state = State();
  const auto refusal = [&](const std::vector<Long>& ids) {
    return ErrorText([&] { Add(import, ids); });
  };
  EXPECT_EQ(refusal({4, 99}), "8004421A: The voucher with the id 99 is not there.");
  EXPECT_EQ(refusal({4, 2}), "8004421A: The voucher with the id 2 came with an import before.");
  EXPECT_EQ(refusal({4, 4}), "8004421A: The voucher with the id 4 is told twice.");
  EXPECT_EQ(RefusalOf([&] { Add(77, {4}); }), "NotFound");
  EXPECT_EQ(State(), state);
  Add(import, {});
  EXPECT_EQ(List(), "1 journal.csv administrator 3 3 False\n");
}

TEST_P(ImportServer, ItsVouchersAreToldInTheirOrder) {
  const Long import = Three();
  Add(import, {Save(Sale(Currency(7)))});
  EXPECT_EQ(ErrorText([&] { Add(import, {4}); }),
            "8004421A: The voucher with the id 4 is older than the import's last one.");
}

TEST_P(ImportServer, ItsNumberIsTheNextOneThatIsFree) {
  EXPECT_EQ(Create("a.csv", {{"FNumber", "2"}}), 1);
  Create("b.csv");
  EXPECT_EQ(List(), "2 a.csv administrator 0 0 False\n3 b.csv administrator 0 0 False\n");
  EXPECT_EQ(RefusalOf([&] { Create("c.csv", {{"FNumber", "3"}}); }), "NumberTaken");
}

TEST_P(ImportServer, AForgottenOneLeavesItsVouchers) {
  const Long import = Three();
  Call(kUpdate, "Delete", props, import);
  EXPECT_EQ(List(), "");
  EXPECT_EQ(Headers(), "1 2 3 4 ");
  Add(Create("again.csv"), {1, 2});
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ImportServer, TheCheckFindsOneThatHasNotTheVouchersThatItTells) {
  Three();
  Break("UPDATE t_ImportVoucher SET FVoucherID = 4 WHERE FVoucherID = 3");
  EXPECT_EQ(Breaches(), "ImportVouchers Import 1 1\n") << "as many, and others";
  Break("DELETE FROM t_ImportVoucher WHERE FVoucherID = 4");
  EXPECT_EQ(Breaches(), "ImportVouchers Import 1 1\n");
}

TEST_P(ImportServer, AFailureOfAnyStatementLeavesTheBooksAsTheyWere) {
  const Long import = Three();
  FailEachStatement([&] { Add(import, {4}); });
  FailEachStatement([&] { TakeOut(import); });
}

QDCLGL_BOOKS_TEST(ImportServer);

}  // namespace
}  // namespace qdclgl::server::testing
