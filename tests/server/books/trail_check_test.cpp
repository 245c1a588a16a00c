// What the check of the books finds of changes past the server: in the audit trail, and in the
// records that it tells of.
#include "qdclgl/server/books/trail_check.h"

#include <algorithm>

#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/trail_seal.h"
#include "qdclgl/server/books/books_check.h"
#include "qdclgl/server/records/kinds.h"
#include "qdclgl/server/vouchers/voucher_tree.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

constexpr std::string_view kBatches = "QDSVGLBatch.BatchUpdate";

// Books in which everything was made, changed and removed at least once.
class TrailCheckTest : public LedgerTest {
 protected:
  TrailCheckTest() {
    AddUser("anna", "preparer");
    Call("QDSVGLUser.UserUpdate", "SetPassword", props, Long{2}, "sesame");
    Call("QDSVGLAccount.AccountUpdate", "Create", props,
         Row({{"FNumber", "5000"},
              {"FName", "Stock"},
              {"_Items", ListOf({Row({{"FItemClassID", Long{7}}})})}}));
    const Ref<Dictionary> line = Line("1000", 0, 8, {{"FCashFlowItem", Long{3}}});
    line->Put("_Details", ListOf({Row({{"FItemClassID", Long{4}}, {"FValue", "Shop"}})}));
    Save(Voucher("2024-01-10", {Line("3000", 8, 0), line}, {{"Note", "kept besides"}}));
    for (int i = 0; i < 3; ++i) Save(Sale(Currency(100 + i)));
    for (const Long id : {1, 2}) CheckAndPost(id);
    Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, Long{3});
    Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, Long{4}, true);
    const Long edited = Save(Sale(200, "2024-02-15"));
    Login("anna", "sesame");
    Update(edited, Read(edited));
    Login("administrator");
    Call("QDSVBase.SystemProfile", "SetProfile", props, "GL", "CheckBeforePost", "1");
    Call("QDSVGLPeriod.PeriodUpdate", "Close", props);
    Call("QDSVGLPeriod.PeriodUpdate", "Reopen", props);
    Change("CheckBeforePost", "0");
    MakeRecords();
  }

  void MakeRecord(std::string_view component, const Ref<Dictionary>& row) {
    Call("QDSVGL" + std::string(component), "Create", props, row);
  }
  // One of each further kind.
  void MakeRecords() {
    for (const char* dictionary : {"SettAcct", "SettType", "CheckType", "Payment"}) {
      const std::string name(dictionary);
      MakeRecord(name + "." + name + "Update", Row({{"FNumber", "N"}, {"FName", "Name"}}));
    }
    MakeRecord("Unit.UnitGroupUpdate", Row({{"FName", "Masses"}}));
    MakeRecord("Unit.UnitUpdate",
               Row({{"FUnitGroupID", Long{1}}, {"FNumber", "KG"}, {"FName", "Kilogram"}}));
    MakeRecord("Item.SubMesTypeUpdate", Row({{"FName", "Colours"}}));
    MakeRecord("Item.SubMesUpdate",
               Row({{"FTypeID", Long{1}}, {"FNumber", "R"}, {"FName", "Red"}}));
    MakeRecord("Items.ItemUpdate",
               Row({{"FItemClassID", Long{1}}, {"FNumber", "SALES"}, {"FName", "Sales"}}));
    MakeRecord("Budget.BudgetUpdate", Row({{"FNumber", "RENT"}, {"FAccountID", Long{1}}}));
    MakeRecord("Currency.CurrencyUpdate", Row({{"FNumber", "CHF"}, {"FName", "Franc"}}));
    MakeRecord("ExchangeRate.ExchangeRateUpdate",
               Row({{"FNumber", "CHF 1"}, {"FCurrencyID", Long{3}}, {"FExchangeRate", 1.1}}));
    MakeRecord("Import.ImportUpdate", Row({{"FName", "journal.csv"}}));
    Call("QDSVGLImport.ImportUpdate", "AddVouchers", props, Long{1}, Variant(Ids({1, 2})));
    Call("QDSVGLImport.ImportUpdate", "AddVouchers", props, Long{1}, Variant(Ids({5})));
    MakeRecord("Note.NoteUpdate", Row({{"FName", "Receipt"}, {"FData", "form"}}));
    const Ref<Dictionary> line = Line("1000", 0, 8);
    line->Put("_Details", ListOf({Row({{"FItemClassID", Long{4}}, {"FValue", "Shop"}})}));
    MakeRecord("VoucherTemp.VoucherTempUpdate",
               Row({{"FName", "Rent"}, {"_Entries", ListOf({line})}}));
    MakeRecord("MCLedger.MColLedgerUpdate",
               Row({{"FLedgerName", "Costs"},
                    {"FAccountID", Long{1}},
                    {"_Columns", ListOf({Row({{"FAccountID", Long{2}}, {"FColumnName", "Bank"}})})},
                    {"_SubColumns",
                     ListOf({Row({{"FCurrencyID", Long{1}}, {"FSubColumnName", "EUR"}})})}}));
  }

  static Ref<Vector> ListOf(std::initializer_list<Ref<Dictionary>> rows) {
    auto list = Make<Vector>();
    for (const Ref<Dictionary>& row : rows) list->Append(Variant(row));
    return list;
  }
  static Ref<Vector> Ids(std::initializer_list<Long> ids) {
    auto list = Make<Vector>();
    for (const Long id : ids) list->Append(id);
    return list;
  }
  void Change(std::string_view setting, std::string_view value) {
    Call("QDSVBase.SystemProfile", "SetProfile", props, "GL", setting, value);
  }
  std::string Head() { return Call("QDSVGLAudit.AuditInfo", "GetHead", props).As<String>(); }
  std::string BreachesWithHead(const std::string& head) {
    return TextOf(Call("QDSVGLBooks.BooksInfo", "Check", props, head).As<Recordset>(),
                  {"FRule", "FSubject", "FRecordID", "FRecord"});
  }
  // What the check finds and says once these statements have run; they are taken back.
  std::string ProblemsAfter(std::string_view sql) {
    Call(kBatches, "Begin", props);
    Database& books = Books();
    if (!books.IsSQLite()) books.ExecuteScript("SET LOCAL session_replication_role = replica;");
    books.ExecuteScript(std::string(sql) + ";");
    // The caller may be among what was changed.
    const std::string problems =
        TextOf(CheckBooks(books, ""), {"FRule", "FSubject", "FRecordID", "FProblem"});
    books.RollBackBatch();
    return problems;
  }
  // SQLite's references wait until the end of the transaction, which is taken back.
  void LetReferencesWait() {
    if (Books().IsSQLite()) Books().ExecuteScript("PRAGMA foreign_keys = OFF;");
  }
  std::vector<Long> DeedIds() {
    std::vector<Long> ids;
    for (const auto& [id] : Books().Query<Long>("SELECT FAuditID FROM t_Audit ORDER BY FAuditID")) {
      ids.push_back(id);
    }
    return ids;
  }
};

TEST_P(TrailCheckTest, TheTrailOfHealthyBooksIsWhole) {
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(BreachesWithHead(Head()), "");
}

TEST_P(TrailCheckTest, EachDeedThatIsTakenOutIsMissed) {
  for (const bool sealed : {false, true}) {
    if (sealed) Head();
    for (const Long id : DeedIds()) {
      EXPECT_NE(ProblemsAfter("DELETE FROM t_Audit WHERE FAuditID = " + std::to_string(id)), "")
          << id << (sealed ? " sealed" : " not sealed yet");
    }
  }
}

TEST_P(TrailCheckTest, EachValueOfTheTrailThatIsChangedIsSeen) {
  const StoredTable trail = AuditTables().front();
  for (const bool sealed : {false, true}) {
    if (sealed) Head();
    for (const Column& column : trail.columns) {
      const std::string name(column.name);
      if (name == "FAuditID" && !sealed) continue;  // its place is what a seal holds
      for (const Long id : {DeedIds().front(), DeedIds().back()}) {
        EXPECT_NE(ProblemsAfter("UPDATE t_Audit SET " + name + " = " + name +
                                (column.type == ColumnType::kText ? " || 'x'" : " + 7000") +
                                " WHERE FAuditID = " + std::to_string(id)),
                  "")
            << name << " of " << id << (sealed ? " sealed" : " not sealed yet");
      }
    }
  }
}

TEST_P(TrailCheckTest, AChainTellsWhichRowIsWrong) {
  const std::string row =
      " FROM t_Audit WHERE FSubject = 'Voucher' AND FRecordID = 1 AND FNumber = 2";
  const Long id = *Books().QueryValue<Long>("SELECT FAuditID" + row);
  const std::vector<TrailSeal> seals = AllSeals(Books());
  const auto seal = std::ranges::find_if(seals, [&](const auto& it) { return it.last_id >= id; });
  ASSERT_NE(seal, seals.end());
  EXPECT_EQ(ProblemsAfter("DELETE" + row),
            "Trail Voucher 1 Row 2 of its trail is missing.\n"
            "Seal Audit " +
                std::to_string(seal->number) + " Its block has " + std::to_string(seal->count - 1) +
                " row(s), sealed were " + std::to_string(seal->count) + ".\n");
  EXPECT_EQ(ProblemsAfter("UPDATE t_Audit SET FUserName = 'bob' WHERE FSubject = 'User' AND"
                          " FAction = 'SetPassword'"),
            "Trail User 2 Row 2 of its trail was changed.\n");
}

// All that one can do to a row without its hash: move it to another record.
TEST_P(TrailCheckTest, ADeedCantBeGivenToAnotherRecord) {
  EXPECT_NE(ProblemsAfter("UPDATE t_Audit SET FRecordID = 77 WHERE FSubject = 'Voucher' AND"
                          " FRecordID = 4"),
            "");
}

TEST_P(TrailCheckTest, EachValueOfTheBooksThatIsChangedIsSeen) {
  LetReferencesWait();
  std::vector<StoredTable> tables = VoucherTables();
  for (const MasterData* kind : MasterDataKinds()) {
    std::ranges::move(kind->Tables(), std::back_inserter(tables));
  }
  for (const StoredTable& table : tables) {
    for (const Column& column : table.columns) {
      const std::string name(column.name), id(table.columns.front().name);
      if (name == "FIndex" || name == "FPart") continue;  // what is alone stays the first one
      EXPECT_NE(ProblemsAfter("UPDATE " + std::string(table.name) + " SET " + name + " = " + name +
                              (StorageOf(column.type) == Storage::kText ? " || '1'" : " * -1 + 1") +
                              " WHERE " + id + " = (SELECT MAX(" + id + ") FROM " +
                              std::string(table.name) + ")"),
                "")
          << table.name << "." << name;
    }
    EXPECT_NE(ProblemsAfter("DELETE FROM " + std::string(table.name)), "") << table.name;
  }
}

TEST_P(TrailCheckTest, EachSettingThatIsChangedIsSeen) {
  for (const auto& [category, key] :
       Books().Query<std::string, std::string>("SELECT FCategory, FKey FROM t_SystemProfile")) {
    const std::string which = " WHERE FCategory = '" + category + "' AND FKey = '" + key + "'";
    EXPECT_NE(ProblemsAfter("UPDATE t_SystemProfile SET FValue = FValue || '0'" + which), "")
        << key;
    EXPECT_NE(ProblemsAfter("DELETE FROM t_SystemProfile" + which), "") << key;
  }
  EXPECT_EQ(ProblemsAfter("INSERT INTO t_SystemProfile VALUES ('GL', 'CheckerNotPreparer', '1')"),
            "Record Setting 0 It was changed past the trail: GL.CheckerNotPreparer is \"1\", and "
            "its trail says nothing.\n");
}

TEST_P(TrailCheckTest, AChangedRecordIsToldWithBothValues) {
  EXPECT_EQ(ProblemsAfter("UPDATE t_VoucherEntry SET FAmount = FAmount + 5000 WHERE FVoucherID = 2;"
                          " UPDATE t_Voucher SET FDebitTotal = FDebitTotal + 5000,"
                          " FCreditTotal = FCreditTotal + 5000 WHERE FVoucherID = 2;"
                          " UPDATE t_Posted SET FSize = FSize + 10000;"
                          " UPDATE t_Balance SET FDebit = FDebit + 5000, FDebitFor = FDebitFor +"
                          " 5000 WHERE FAccountID = 1;"
                          " UPDATE t_Balance SET FCredit = FCredit + 5000, FCreditFor ="
                          " FCreditFor + 5000 WHERE FAccountID = 3"),
            "Record Voucher 2 It was changed past the trail: line 1 FAmount is \"100.5\", and its "
            "trail says \"100\".\n");
}

TEST_P(TrailCheckTest, RecordsThatComeAndGoPastTheTrailAreFound) {
  EXPECT_EQ(ProblemsAfter("INSERT INTO t_User (FVersion, FName, FPassword, FRoles, FDisabled)"
                          " SELECT 1, 'mallory', FPassword, 63, 0 FROM t_User WHERE FUserID = 1"),
            "Record User 3 It is not on the trail, or was removed there.\n");
  EXPECT_EQ(ProblemsAfter("DELETE FROM t_User WHERE FUserID = 2"),
            "Record User 2 It is gone, and its trail still has it.\n");
  // Not even a password that is put in place of another one passes.
  EXPECT_TRUE(
      ProblemsAfter("UPDATE t_User SET FPassword = (SELECT FPassword FROM t_User WHERE"
                    " FUserID = 2) WHERE FUserID = 1")
          .starts_with("Record User 1 It was changed past the trail: FPassword is \"finger"));
}

TEST_P(TrailCheckTest, ATrailThatWasCutOffDoesNotLeadToTheHeadThatWasKept) {
  const std::string before = Head();
  const auto deeds = static_cast<Long>(DeedIds().size());
  const Long id = Save(Sale(Currency(7)));
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, id, true);
  const std::string head = Head();
  EXPECT_NE(head, before);
  EXPECT_EQ(BreachesWithHead(head), "");
  EXPECT_EQ(BreachesWithHead(before), "") << "an older head is on the way";

  // The whole life of a record, the seal behind it and what counts ids are taken out: nothing in
  // the books tells any more.
  Break("DELETE FROM t_Audit WHERE FSubject = 'Voucher' AND FRecordID = " + std::to_string(id));
  EXPECT_NE(Breaches(), "");
  Break("DELETE FROM t_AuditSeal WHERE FSealID = (SELECT MAX(FSealID) FROM t_AuditSeal)");
  if (Books().IsSQLite()) {
    EXPECT_NE(Breaches(), "");
    Break("UPDATE sqlite_sequence SET seq = " + std::to_string(deeds) + " WHERE name = 't_Audit'");
  }
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(BreachesWithHead(before), "");
  EXPECT_EQ(BreachesWithHead(head), "Head Audit 0 " + head + "\n");
}

TEST_P(TrailCheckTest, EachValueOfASealThatIsChangedIsSeen) {
  Head();
  for (const char* set : {"FTime = '2024-01-01T00:00:00Z'", "FLastAuditID = FLastAuditID - 1",
                          "FCount = FCount + 1", "FHash = 'abc'", "FSealID = FSealID + 10"}) {
    for (const Long seal : {1, 2}) {
      EXPECT_NE(ProblemsAfter("UPDATE t_AuditSeal SET " + std::string(set) +
                              " WHERE FSealID = " + std::to_string(seal)),
                "")
          << set << " of " << seal;
    }
  }
  EXPECT_NE(ProblemsAfter("DELETE FROM t_AuditSeal WHERE FSealID = 1"), "");
  EXPECT_NE(ProblemsAfter("DELETE FROM t_AuditSeal"), "");
}

TEST_P(TrailCheckTest, ATrailThatMakesNoSenseIsReported) {
  // With a hash that fits, as a program with a bug would write it.
  Database& db = Books();
  AuditRow row = AuditRowsOf(db, "User", 2, 2).front();
  for (const char* changes : {R"({"new":{)", R"({"new":[]})", "{"}) {
    row.changes = changes;
    EXPECT_NE(ProblemsAfter("UPDATE t_Audit SET FChanges = '" + row.changes + "', FHash = '" +
                            row.HashBehind("") + "' WHERE FAuditID = " + std::to_string(row.id)),
              "")
        << changes;
  }
}

QDCLGL_BOOKS_TEST(TrailCheckTest);

}  // namespace
}  // namespace qdclgl::server::testing
