#include "qdclgl/server/db/schema.h"

#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/new_books.h"
#include "qdclgl/server/db/refusals.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

class SchemaTest : public RecordsTest {
 protected:
  Long Version(const std::string& text) {
    return Call("QDSVGLBooks.BooksInfo", "Version", text).As<Long>();
  }
  Long Upgrade(const std::string& text) {
    return Call("QDSVGLBooks.BooksUpdate", "Upgrade", text).As<Long>();
  }
  // Books as an older program made them, with some rows in them.
  std::string OldBooks(int version) {
    const std::string text = NewConnectionText(GetParam());
    MakeBooks(ConnectionText::Parse(text), [&](Database& db) {
      Migrate(db, version);
      db.Execute("INSERT INTO t_VoucherGroup (FVersion, FName, FStandard, FLimitMulti, FDRange,"
                 " FCRange, FDCRange, FNDRange, FNCRange, FNDCRange, FDeleted, UUID)"
                 " VALUES (1, 'Receipts', 0, 0, '', '', '', '', '', '', 0, '')");
    });
    return text;
  }
};

TEST_P(SchemaTest, NewBooksAreOfTheCurrentVersion) {
  EXPECT_EQ(Version(connection), CurrentSchemaVersion());
  EXPECT_EQ(Upgrade(connection), CurrentSchemaVersion());
  const auto titles =
      Books().Query<int, std::string>("SELECT FVersion, FTitle FROM t_Schema ORDER BY FVersion");
  ASSERT_EQ(titles.size(), Migrations().size());
  for (std::size_t i = 0; i < titles.size(); ++i) {
    EXPECT_EQ(std::get<0>(titles[i]), static_cast<int>(i) + 1);
    EXPECT_EQ(std::get<1>(titles[i]), Migrations()[i].title);
  }
}

TEST_P(SchemaTest, OldBooksAreUpgradedWithWhatIsInThem) {
  for (int version = 1; version < CurrentSchemaVersion(); ++version) {
    const std::string old = OldBooks(version);
    EXPECT_EQ(Version(old), version);
    EXPECT_EQ(RefusalOf([&] { Call("QDSVGLSession.SessionUpdate", "Login", old, "x", ""); }),
              "WrongSchema");
    Connections::OfThisThread().CloseAll();
    EXPECT_EQ(Upgrade(old), version);
    EXPECT_EQ(Version(old), CurrentSchemaVersion());
    Database db(ConnectionText::Parse(old));
    EXPECT_EQ(db.QueryValue<std::string>("SELECT FName FROM t_VoucherGroup"), "Receipts");
    RemoveBooks(old);
  }
}

TEST_P(SchemaTest, TheSizeOfWhatIsPostedIsAddedUpWhateverItIs) {
  const auto size_of = [&](const std::vector<std::string>& lines) {
    const std::string old = OldBooks(2);
    {
      Database db(ConnectionText::Parse(old));
      db.ExecuteScript(std::string(
          db.Dialect("PRAGMA foreign_keys = OFF;", "SET session_replication_role = replica;")));
      const std::string rest = "'', '', 0, 0, '', '', '')";
      std::string voucher = "INSERT INTO t_Voucher VALUES (1";
      for (const auto& column : ColumnsOf("t_Voucher")) {
        if (column == "FVoucherID" || column == "fvoucherid") continue;
        const bool is_posted = column == "FPosted" || column == "fposted";
        voucher += is_posted ? ", 1" : ", 0";
      }
      db.ExecuteScript(voucher + ");");
      int number = 0;
      for (const std::string& amounts : lines) {
        db.ExecuteScript("INSERT INTO t_VoucherEntry (FVoucherID, FEntryID, FAccountID, FDC,"
                         " FAmount, FAmountFor, FQuantity, FCurrencyID, FExchangeRate, FUnitPrice,"
                         " FMeasureUnitID, FMeasureUnit, FMeasureUnitNumber, FExplanation,"
                         " FCashFlowItem, FSettleTypeID, FSettleNo, FTransNo, FExtra) VALUES (1, " +
                         std::to_string(++number) + ", 1, 1, " + amounts + ", 1, 0, 0, 0, '', " +
                         rest + ";");
      }
      db.ExecuteScript("INSERT INTO t_Counter VALUES (0, 0, 0, 2147483648);");
    }
    EXPECT_EQ(Upgrade(old), 2);
    Database db(ConnectionText::Parse(old));
    const auto size = db.QueryValue<std::int64_t>("SELECT FSize FROM t_Posted");
    EXPECT_EQ(db.QueryValue<std::int64_t>("SELECT FNext FROM t_Counter"), 1);
    RemoveBooks(old);
    return size.value_or(-1);
  };
  EXPECT_EQ(size_of({}), 0);
  EXPECT_EQ(size_of({"5, -7, 0.0000025", "-3, 0, -0.0000045", "1, 1, 0.0000014"}), 7 + 5 + 1);
  EXPECT_EQ(size_of({"4611686018427387903, 0, 0", "-4611686018427387903, 0, 0", "1, 0, 0"}),
            INT64_MAX);
  EXPECT_EQ(size_of({"4611686018427387903, 0, 0", "4611686018427387903, 0, 1e12",
                     "4611686018427387903, 0, 0"}),
            INT64_MAX);
}

TEST_P(SchemaTest, AnUpgradeThatFailsLeavesTheBooksAsTheyWere) {
  const std::string old = OldBooks(1);
  int statements = 1;
  for (;; ++statements) {
    int count = 0;
    Database::SetStatementHook([&](std::string_view) {
      if (++count == statements) throw Error(4711, "test", "this statement fails");
    });
    const std::string refusal = RefusalOf([&] { Upgrade(old); });
    Database::SetStatementHook(nullptr);
    if (refusal == "none") break;
    ASSERT_EQ(refusal, "error 4711");
    ASSERT_EQ(Version(old), 1) << statements;
  }
  EXPECT_GT(statements, 5);
  EXPECT_EQ(Version(old), CurrentSchemaVersion());
  RemoveBooks(old);
}

TEST_P(SchemaTest, BooksOfANewerProgramAreLeftAlone) {
  Books().Execute("INSERT INTO t_Schema (FVersion, FTitle) VALUES (?, 'The future')",
                  CurrentSchemaVersion() + 1);
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Upgrade(connection); }), "WrongSchema");
  EXPECT_EQ(RefusalOf([&] { Login("administrator"); }), "WrongSchema");
  EXPECT_EQ(State(), before);
}

TEST_P(SchemaTest, WhereThereAreNoBooksNoneAreUpgraded) {
  const std::string nowhere = NewConnectionText(GetParam());
  EXPECT_EQ(RefusalOf([&] { Upgrade(nowhere); }), "NoBooks");
  EXPECT_EQ(RefusalOf([&] { Login("administrator", "x"); }), "LoginRefused");
}

TEST_P(SchemaTest, NoColumnTakesANull) {
  const auto columns =
      Books().IsSQLite()
          ? Books().Query<std::string>(
                "SELECT m.name || '.' || c.name FROM sqlite_master m,"
                " pragma_table_info(m.name) c WHERE m.type = 'table' AND m.name LIKE 't\\_%'"
                " ESCAPE '\\' AND c.\"notnull\" = 0 AND c.pk = 0")
          : Books().Query<std::string>(
                "SELECT table_name || '.' || column_name FROM information_schema.columns"
                " WHERE table_schema = current_schema() AND is_nullable = 'YES'");
  for (const auto& [column] : columns) ADD_FAILURE() << column;
}

QDCLGL_BOOKS_TEST(SchemaTest);

}  // namespace
}  // namespace qdclgl::server::testing
