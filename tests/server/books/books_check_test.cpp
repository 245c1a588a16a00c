#include "qdclgl/server/books/books_check.h"

#include <sstream>

#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/server/db/connections.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

// Books with three vouchers in January 2024: 1 is new, 2 is checked and approved, 3 is posted.
class BooksCheckTest : public LedgerTest {
 protected:
  BooksCheckTest() {
    for (int i = 0; i < 3; ++i) Save(Sale(Currency(100 + i)));
    for (const Long id : {2, 3}) Step("Check", id);
    Step("Approve", 2);
    Step("Post", 3);
  }

  std::string AfterBreaking(std::string_view sql) {
    Break(sql);
    return Breaches();
  }

  // What else breaks a rule: that the records are not as their trail has them is told besides,
  // whatever has become of them.
  std::string Breaches() const {
    std::istringstream lines(LedgerTest::Breaches());
    std::string others;
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("Record ")) others += line + "\n";
    }
    return others;
  }
};

TEST_P(BooksCheckTest, HealthyBooksHaveNoBreach) {
  EXPECT_EQ(LedgerTest::Breaches(), "");
  Step("UnPost", 3);
  EXPECT_EQ(LedgerTest::Breaches(), "") << "balances of nothing remain";
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, Long{1});
  EXPECT_EQ(LedgerTest::Breaches(), "");
}

TEST_P(BooksCheckTest, TotalsAreThoseOfTheLines) {
  EXPECT_EQ(
      AfterBreaking("UPDATE t_Voucher SET FDebitTotal = FDebitTotal + 1 WHERE FVoucherID = 1"),
      "VoucherTotals Voucher 1 2024/1 Receipts 1\n");
}

TEST_P(BooksCheckTest, TheNumberOfLinesIsThatOfTheLines) {
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FEntryCount = 3 WHERE FVoucherID = 3"),
            "VoucherTotals Voucher 3 2024/1 Receipts 3\n");
}

TEST_P(BooksCheckTest, VouchersBalance) {
  Break("UPDATE t_VoucherEntry SET FAmount = FAmount + 1 WHERE FVoucherID = 1 AND FDC = 1");
  EXPECT_EQ(
      AfterBreaking("UPDATE t_Voucher SET FDebitTotal = FDebitTotal + 1 WHERE FVoucherID = 1"),
      "VoucherBalance Voucher 1 2024/1 Receipts 1\n");
}

TEST_P(BooksCheckTest, VouchersHaveLines) {
  Break("DELETE FROM t_VoucherEntry WHERE FVoucherID = 1");
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FEntryCount = 0, FDebitTotal = 0, FCreditTotal = 0"
                          " WHERE FVoucherID = 1"),
            "VoucherLines Voucher 1 2024/1 Receipts 1\n");
}

TEST_P(BooksCheckTest, DatesAreInTheirPeriods) {
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FDate = '2024-02-01' WHERE FVoucherID = 1"),
            "VoucherPeriod Voucher 1 2024/1 Receipts 1\n");
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FDate = '2024-02-31' WHERE FVoucherID = 1"),
            "VoucherPeriod Voucher 1 2024/1 Receipts 1\n");
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FDate = 'soon' WHERE FVoucherID = 1"),
            "VoucherPeriod Voucher 1 2024/1 Receipts 1\n");
}

TEST_P(BooksCheckTest, CountersAreAboveTheNumbers) {
  EXPECT_EQ(AfterBreaking("UPDATE t_Counter SET FNext = 3"),
            "VoucherNumber Voucher 3 2024/1 Receipts 3\n");
  EXPECT_EQ(AfterBreaking("DELETE FROM t_Counter"), "VoucherNumber Voucher 1 2024/1 Receipts 1\n"
                                                    "VoucherNumber Voucher 2 2024/1 Receipts 2\n"
                                                    "VoucherNumber Voucher 3 2024/1 Receipts 3\n");
}

TEST_P(BooksCheckTest, PostedVouchersHaveAPosterAndAreNotDeleted) {
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FPosterID = -1 WHERE FVoucherID = 3"),
            "VoucherFlags Voucher 3 2024/1 Receipts 3\n");
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FPosterID = 1, FDeleted = 1 WHERE FVoucherID = 3"),
            "VoucherFlags Voucher 3 2024/1 Receipts 3\n");
}

TEST_P(BooksCheckTest, OthersHaveNoPoster) {
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FPosterID = 1 WHERE FVoucherID = 1"),
            "VoucherFlags Voucher 1 2024/1 Receipts 1\n");
}

TEST_P(BooksCheckTest, ApprovedVouchersAreChecked) {
  EXPECT_EQ(
      AfterBreaking("UPDATE t_Voucher SET FChecked = 0, FCheckerID = -1 WHERE FVoucherID = 2"),
      "VoucherFlags Voucher 2 2024/1 Receipts 2\n");
}

TEST_P(BooksCheckTest, CheckedVouchersAndNoOthersHaveAChecker) {
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FCheckerID = -1 WHERE FVoucherID = 2"),
            "VoucherFlags Voucher 2 2024/1 Receipts 2\n");
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FCheckerID = 1 WHERE FVoucherID IN (1, 2)"),
            "VoucherFlags Voucher 1 2024/1 Receipts 1\n");
}

TEST_P(BooksCheckTest, VouchersOfClosedPeriodsArePosted) {
  EXPECT_EQ(AfterBreaking("UPDATE t_SystemProfile SET FValue = '2' WHERE FKey = 'CurrentPeriod'"),
            "ClosedPeriod Voucher 1 2024/1 Receipts 1\nClosedPeriod Voucher 2 2024/1 Receipts 2\n");
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FDeleted = 1 WHERE FVoucherID = 1"),
            "ClosedPeriod Voucher 2 2024/1 Receipts 2\n");
}

TEST_P(BooksCheckTest, LinesHaveADetailAccount) {
  // 4000 has accounts below.
  EXPECT_EQ(AfterBreaking("UPDATE t_VoucherEntry SET FAccountID ="
                          " (SELECT FAccountID FROM t_Account WHERE FNumber = '4000')"
                          " WHERE FVoucherID = 1 AND FDC = 1"),
            "LineAccount Voucher 1 2024/1 Receipts 1, line 1\n");
}

TEST_P(BooksCheckTest, LinesHaveAnAccount) {
  const std::string breaches =
      AfterBreaking("UPDATE t_VoucherEntry SET FAccountID = 99 WHERE FVoucherID = 1 AND FDC = 1");
  const std::string line = "LineAccount Voucher 1 2024/1 Receipts 1, line 1\n";
  // SQLite's own check sees it as well; PostgreSQL has none that can be asked. The lines have no
  // row number there.
  EXPECT_EQ(breaches, line + (Books().IsSQLite() ? "ForeignKeys Database 0 t_VoucherEntry\n" : ""));
}

TEST_P(BooksCheckTest, LinesHaveASide) {
  EXPECT_EQ(AfterBreaking("UPDATE t_VoucherEntry SET FDC = 2 WHERE FVoucherID = 1 AND FDC = 0"),
            "LineSide Voucher 1 2024/1 Receipts 1, line 2\n");
}

TEST_P(BooksCheckTest, BalancesAreTheSumsOfPostedLines) {
  const std::string cash = "Balance Account 1 1000\n";
  for (const char* column :
       {"FDebit", "FCredit", "FDebitFor", "FCreditFor", "FDebitQty", "FCreditQty"}) {
    const std::string name(column);
    EXPECT_EQ(
        AfterBreaking("UPDATE t_Balance SET " + name + " = " + name + " + 1 WHERE FAccountID = 1"),
        cash)
        << name;
    Break("UPDATE t_Balance SET " + name + " = " + name + " - 1 WHERE FAccountID = 1");
  }
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(AfterBreaking("DELETE FROM t_Balance WHERE FAccountID = 1"), cash);
}

TEST_P(BooksCheckTest, SumsOfYearsAreThoseOfThePostedLines) {
  Step("Post", Save(Sale(5, "2025-01-01")));
  EXPECT_EQ(Breaches(), "");
  const std::string cash = "YearBalance Account 1 1000\n", sales = "YearBalance Account 3 3000\n";
  for (const char* column :
       {"FDebit", "FCredit", "FDebitFor", "FCreditFor", "FDebitQty", "FCreditQty"}) {
    const std::string name(column), set = "UPDATE t_YearBalance SET " + name + " = " + name;
    EXPECT_EQ(AfterBreaking(set + " + 1 WHERE FAccountID = 1"), cash) << name;
    Break(set + " - 1 WHERE FAccountID = 1");
  }
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(AfterBreaking("UPDATE t_Posted SET FSummedYear = 2025"), cash + sales)
      << "the sums of a year are missing";
  EXPECT_EQ(AfterBreaking("UPDATE t_Posted SET FSummedYear = 2023"), cash + sales)
      << "the year is not summed yet";
  EXPECT_EQ(AfterBreaking("UPDATE t_Posted SET FSummedYear = 2024"), "");
  EXPECT_EQ(AfterBreaking("UPDATE t_YearBalance SET FYear = 2022 WHERE FAccountID = 1"),
            cash + cash);
}

TEST_P(BooksCheckTest, SumsThatAgreeModuloAPowerOfTwoAreNoSums) {
  // Two lines of 2^63 and two more units in the balance are what is there in 64 bits.
  for (int i = 0; i < 2; ++i) {
    Break("INSERT INTO t_VoucherEntry SELECT FVoucherID, FEntryID + 10, FAccountID, FDC,"
          " -9223372036854775807 - 1, FCurrencyID, 0, 0, 0, 0, 0, '', '', '', 0, 0, '', '', '', 0"
          " FROM t_VoucherEntry WHERE FVoucherID = 3 AND FEntryID > " +
          std::to_string(10 * i));
  }
  Break("UPDATE t_Voucher SET FEntryCount = (SELECT COUNT(*) FROM t_VoucherEntry e"
        " WHERE e.FVoucherID = 3) WHERE FVoucherID = 3");
  const std::string breaches = Breaches();
  EXPECT_NE(breaches.find("VoucherTotals Voucher 3"), std::string::npos) << breaches;
  EXPECT_NE(breaches.find("LineSize Voucher 3 2024/1 Receipts 3, line 11\n"), std::string::npos)
      << breaches;
  EXPECT_NE(breaches.find("Balance Account 1 1000\n"), std::string::npos) << breaches;
}

TEST_P(BooksCheckTest, LinesAreNotTooLarge) {
  const std::string line = "LineSize Voucher 1 2024/1 Receipts 1, line 1\n";
  const auto breaches = [&](const std::string& set) {
    return AfterBreaking("UPDATE t_VoucherEntry SET " + set +
                         " WHERE FVoucherID = 1 AND FEntryID = 1");
  };
  EXPECT_EQ(breaches("FQuantity = 1.1e12"), line);
  EXPECT_EQ(breaches("FQuantity = 1e300"), line);
  EXPECT_EQ(breaches("FQuantity = -1.1e12"), line);
  EXPECT_EQ(breaches("FQuantity = 0, FAmountFor = 4611686018427387904"), line);
  EXPECT_EQ(breaches("FAmountFor = 4611686018427387903"), "");
}

TEST_P(BooksCheckTest, TheLinesOfAVoucherAddUp) {
  EXPECT_EQ(AfterBreaking("UPDATE t_VoucherEntry SET FAmountFor = 4611686018427387903"
                          " WHERE FVoucherID = 1"),
            "");
  Break(
      "INSERT INTO t_VoucherEntry SELECT FVoucherID, 3, FAccountID, FDC, 0, FCurrencyID,"
      " 4611686018427387903, 0, 0, 0, 0, '', '', '', 0, 0, '', '', '', 0 FROM t_VoucherEntry WHERE"
      " FVoucherID = 1 AND FEntryID = 1");
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FEntryCount = 3 WHERE FVoucherID = 1"),
            "VoucherSize Voucher 1 2024/1 Receipts 1\n");
}

TEST_P(BooksCheckTest, TheSizeOfWhatIsPostedIsThatOfThePostedLines) {
  EXPECT_EQ(AfterBreaking("UPDATE t_Posted SET FSize = FSize + 1"), "Posted Books 0 \n");
  EXPECT_EQ(AfterBreaking("UPDATE t_Posted SET FSize = FSize - 1"), "");
  EXPECT_EQ(AfterBreaking("INSERT INTO t_Posted (FSize) VALUES (0)"), "Posted Books 0 \n");
  EXPECT_EQ(AfterBreaking("DELETE FROM t_Posted"), "Posted Books 0 \n");
}

TEST_P(BooksCheckTest, TheLinesOfAccountsByDayAreThePostedOnes) {
  const std::string first = "PostedLine Voucher 1 2024/1 Receipts 1\n";
  EXPECT_EQ(AfterBreaking("INSERT INTO t_PostedLine SELECT FAccountID, '2024-01-31', FVoucherID,"
                          " FEntryID FROM t_VoucherEntry WHERE FVoucherID = 1"),
            first);
  Break("DELETE FROM t_PostedLine WHERE FVoucherID = 1");
  CheckAndPost(1);
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(AfterBreaking("DELETE FROM t_PostedLine WHERE FVoucherID = 1 AND FEntryID = 2"), first);
  EXPECT_EQ(AfterBreaking("UPDATE t_PostedLine SET FDate = '2024-02-01' WHERE FVoucherID = 1"),
            first + first);
}

TEST_P(BooksCheckTest, ForeignAmountsGoWithTheirRates) {
  const std::string line = "LineRate Voucher 1 2024/1 Receipts 1, line 1\n";
  const auto breaches = [&](const std::string& set) {
    return AfterBreaking("UPDATE t_VoucherEntry SET FCurrencyID = 2, " + set +
                         " WHERE FVoucherID = 1 AND FEntryID = 1");
  };
  EXPECT_EQ(breaches("FAmountFor = 1000000, FExchangeRate = 0.8"), line);
  EXPECT_EQ(breaches("FAmountFor = 1250000, FExchangeRate = 0.8"), "");
  EXPECT_EQ(AfterBreaking("UPDATE t_Currency SET FOperator = '/' WHERE FCurrencyID = 2"), line);
  EXPECT_EQ(breaches("FAmountFor = 800000, FExchangeRate = 0.8"), "");
  EXPECT_EQ(breaches("FAmountFor = 1250100, FExchangeRate = 0"), "");
}

TEST_P(BooksCheckTest, TextsAreNotTooLong) {
  const std::string text =
      std::string(Books().Dialect("CAST(zeroblob(1000001) AS TEXT)", "repeat('x', 1000001)"));
  EXPECT_EQ(AfterBreaking("UPDATE t_Voucher SET FExplanation = " + text + " WHERE FVoucherID = 2"),
            "TextLength Database 2 t_Voucher\n");
  Break("UPDATE t_Voucher SET FExplanation = ''");
  EXPECT_EQ(AfterBreaking("UPDATE t_VoucherEntry SET FExtra = " + text + " WHERE FVoucherID = 1"),
            "TextLength Database 1 t_VoucherEntry\n");
  Break("UPDATE t_VoucherEntry SET FExtra = ''");
  EXPECT_EQ(AfterBreaking("UPDATE t_Account SET FMessage = " + text + " WHERE FAccountID = 3"),
            "TextLength Database 3 t_Account\n");
}

TEST_P(BooksCheckTest, AKindOfAnAccountIsOneOfItsWords) {
  EXPECT_EQ(AfterBreaking("UPDATE t_Account SET FKind = 'cash' WHERE FAccountID = 3"),
            "Word Account 3 3000\n");
}

TEST_P(BooksCheckTest, NothingElseIsInTheBalances) {
  EXPECT_EQ(AfterBreaking("INSERT INTO t_Balance (FAccountID, FCurrencyID, FYear, FPeriod, FDebit,"
                          " FCredit, FDebitFor, FCreditFor, FDebitQty, FCreditQty)"
                          " VALUES (2, 1, 2024, 2, 5, 0, 5, 0, 0, 0)"),
            "Balance Account 2 2000\n");
}

TEST_P(BooksCheckTest, ForeignAmountsAndQuantitiesAreInTheBalances) {
  const Ref<Dictionary> debit =
      Line("1000", Currency(10), Currency(0),
           {{"FCurrencyID", Long{2}}, {"FAmountFor", Currency(9)}, {"FQuantity", 0.3333333}});
  const Long id = Save(Voucher("2024-01-20", {debit, Line("3000", Currency(0), Currency(10))}));
  Step("Check", id);
  Step("Post", id);
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(AfterBreaking("UPDATE t_VoucherEntry SET FAmountFor = FAmountFor + 1 WHERE FVoucherID ="
                          " 4 AND FCurrencyID = 2"),
            "Balance Account 1 1000\n");
}

TEST_P(BooksCheckTest, TheTreeOfAccountsIsWhole) {
  const auto breaches = [&](const std::string& set) {
    return AfterBreaking("UPDATE t_Account SET " + set);
  };
  const std::string rent = "AccountTree Account 5 4000.01\n", cash = "AccountTree Account 1 1000\n";
  EXPECT_EQ(breaches("FDetail = 0 WHERE FAccountID = 5"), rent);
  EXPECT_EQ(breaches("FDetail = 1, FLevel = 1 WHERE FAccountID = 5"), rent);
  EXPECT_EQ(breaches("FLevel = 2, FRootID = 5 WHERE FAccountID = 5"), rent);
  EXPECT_EQ(breaches("FRootID = 4, FFullName = 'Rent' WHERE FAccountID = 5"), rent);
  EXPECT_EQ(breaches("FFullName = 'Costs_Rent', FParentID = 0 WHERE FAccountID = 5"), rent);
  EXPECT_EQ(breaches("FParentID = 99 WHERE FAccountID = 5"), rent);
  EXPECT_EQ(breaches("FParentID = 4 WHERE FAccountID = 5"), "");
  EXPECT_EQ(breaches("FRootID = 2 WHERE FAccountID = 1"), cash);
  EXPECT_EQ(breaches("FRootID = 1, FLevel = 2 WHERE FAccountID = 1"), cash);
  EXPECT_EQ(breaches("FLevel = 1, FFullName = '' WHERE FAccountID = 1"), cash);
  EXPECT_EQ(breaches("FFullName = FName, FDetail = 0 WHERE FAccountID = 1"), cash);
}

TEST_P(BooksCheckTest, TheBaseCurrencyHasRateOne) {
  EXPECT_EQ(AfterBreaking("UPDATE t_Currency SET FExchangeRate = 1.5 WHERE FCurrencyID = 1"),
            "BaseCurrency Currency 1 \n");
  EXPECT_EQ(
      AfterBreaking("UPDATE t_Currency SET FExchangeRate = 1, FDeleted = 1 WHERE FCurrencyID = 1"),
      "BaseCurrency Currency 1 \n");
}

TEST_P(BooksCheckTest, SomeAdministratorCanLogIn) {
  AddUser("anna", "reader");
  Login("anna");
  const std::string others = " WHERE FName <> 'anna'";
  EXPECT_EQ(AfterBreaking("UPDATE t_User SET FRoles = 31" + others), "Administrator User 0 \n");
  EXPECT_EQ(AfterBreaking("UPDATE t_User SET FRoles = 63, FDisabled = 1" + others),
            "Administrator User 0 \n");
}

TEST_P(BooksCheckTest, SettingsMakeSense) {
  const auto breaches = [&](const std::string& key, const std::string& value) {
    return AfterBreaking("UPDATE t_SystemProfile SET FValue = '" + value + "' WHERE FKey = '" +
                         key + "'");
  };
  EXPECT_EQ(breaches("PeriodCount", "5"), "Settings Setting 0 GL\n");
  EXPECT_EQ(breaches("PeriodCount", "12"), "");
  EXPECT_EQ(breaches("StartYear", "2025"), "Settings Setting 0 GL.CurrentPeriod\n");
  EXPECT_EQ(breaches("StartYear", "2024"), "");
  EXPECT_EQ(breaches("CurrentPeriod", "13"), "Settings Setting 0 GL\n");
  EXPECT_EQ(breaches("CurrentPeriod", "1e300"), "Settings Setting 0 GL\n");
  EXPECT_EQ(AfterBreaking("DELETE FROM t_SystemProfile WHERE FKey = 'CurrentYear'"),
            "Settings Setting 0 GL\n");
}

TEST_P(BooksCheckTest, FieldsThatAnItemClassCannotHaveAreFound) {
  const std::string lacks = "ItemClassFields ItemClass 1 DEP\n";
  EXPECT_EQ(AfterBreaking("DELETE FROM t_ItemClassField WHERE FItemClassID = 1 AND FPropID = 3"),
            lacks);
  const std::string twice = "ItemClassFields ItemClass 2 STAFF\n";
  EXPECT_EQ(AfterBreaking("UPDATE t_ItemClassField SET FName = '代码'"
                          " WHERE FItemClassID = 2 AND FPropID = 2"),
            lacks + twice);
  const std::string column = "ItemClassFields ItemClass 3 CUSTOMER\n";
  EXPECT_EQ(AfterBreaking("UPDATE t_ItemClassField SET FSQLColumnName = 'FName'"
                          " WHERE FItemClassID = 3 AND FPropID = 1"),
            lacks + twice + column);
  EXPECT_EQ(AfterBreaking("UPDATE t_ItemClass SET FLastPropID = 3 WHERE FItemClassID = 4"),
            lacks + twice + column + "ItemClassFields ItemClass 4 SUPPLIER\n");
}

TEST_P(BooksCheckTest, EveryBreachSaysWhatIsWrong) {
  Break("UPDATE t_Voucher SET FDebitTotal = 0, FPosterID = 1, FDate = '' WHERE FVoucherID = 1");
  const auto list = Call("QDSVGLBooks.BooksInfo", "Check", props).As<Recordset>();
  EXPECT_EQ(TextOf(list, {"FRule", "FProblem"}),
            "VoucherTotals Its totals or its number of lines are not those of its lines.\n"
            "VoucherFlags It has a poster and is not posted.\n"
            "VoucherPeriod Its date  is not in its year and period.\n"
            "Record It was changed past the trail: FDate is nothing, and its trail says "
            "\"2024-01-15\".\n");
}

TEST_P(BooksCheckTest, EveryReaderChecks) {
  AddUser("anna", "reader");
  Login("anna");
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(RefusalOf([&] { Call("QDSVGLBooks.BooksInfo", "Check", connection); }), "NotLoggedIn");
}

// PostgreSQL has no such checks to ask.
class BooksCheckOfSQLiteTest : public BooksCheckTest {};

TEST_P(BooksCheckOfSQLiteTest, BrokenReferencesAreFound) {
  EXPECT_EQ(AfterBreaking("INSERT INTO t_AccountItem VALUES (99, 1, '', '')"),
            "ForeignKeys Database 1 t_AccountItem\n");
}

TEST_P(BooksCheckOfSQLiteTest, DamageIsFound) {
  // An index whose definition says something else than its content.
  Break("PRAGMA writable_schema = ON");
  Break("UPDATE sqlite_master SET sql = 'CREATE INDEX t_Account_Parent ON t_Account (FLevel)'"
        " WHERE name = 't_Account_Parent'");
  Connections::OfThisThread().CloseAll();
  const auto list = Call("QDSVGLBooks.BooksInfo", "Check", props).As<Recordset>();
  ASSERT_FALSE(list->Eof());
  for (; !list->Eof(); list->MoveNext()) {
    EXPECT_EQ(list->Row()->Value("FRule").As<String>(), "Integrity");
  }
}

QDCLGL_BOOKS_TEST(BooksCheckTest);
QDCLGL_BOOKS_TEST_OF(BooksCheckOfSQLiteTest, kSQLite);

}  // namespace
}  // namespace qdclgl::server::testing
