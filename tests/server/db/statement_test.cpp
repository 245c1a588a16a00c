// Statements that are waited for and statements that are not, on both databases.
#include "qdclgl/server/db/database.h"
#include "qdclgl/server/db/refusals.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

class StatementTest : public RecordsTest {
 protected:
  StatementTest() : db_(ConnectionText::Parse(connection)) {
    db_.Execute("CREATE TEMPORARY TABLE tried (FWhole BIGINT PRIMARY KEY, FText TEXT)");
  }

  std::string Rows() {
    std::string rows;
    for (const auto& [whole, text] :
         db_.Query<std::int64_t, std::string>("SELECT FWhole, FText FROM tried ORDER BY FWhole")) {
      rows += std::to_string(whole) + text + " ";
    }
    return rows;
  }
  void InsertLater(std::int64_t whole, const char* text) {
    db_.ExecuteLater("INSERT INTO tried (FWhole, FText) VALUES (?, ?)", whole, text);
  }
  Statement& TextOf(std::int64_t whole) {
    Statement& statement = db_.Prepared("SELECT FText FROM tried WHERE FWhole = ?");
    statement.Set(0, whole);
    statement.Open();
    return statement;
  }

  Database db_;
};

QDCLGL_BOOKS_TEST(StatementTest);

TEST_P(StatementTest, WhatIsExecutedLaterIsThereForWhoeverAsksNext) {
  InsertLater(1, "a");
  InsertLater(2, "b");  // the same statement, which nobody has waited for yet
  EXPECT_EQ(Rows(), "1a 2b ");
}

TEST_P(StatementTest, MoreThanAnyMessageTakesIsExecutedLaterAlike) {
  for (int i = 0; i < 1000; ++i) InsertLater(i, "");
  EXPECT_EQ(db_.QueryValue<int>("SELECT COUNT(*) FROM tried"), 1000);
}

TEST_P(StatementTest, AFailureAmongWhatIsExecutedLaterTakesTheTransaction) {
  InsertLater(1, "a");
  EXPECT_EQ(RefusalOf([&] {
              Transaction transaction(db_, Transaction::Kind::kSave);
              InsertLater(2, "b");
              InsertLater(1, "again");
              InsertLater(3, "c");
              db_.ExecuteLater("DELETE FROM tried WHERE FWhole = ?", 1);  // never prepared before
              transaction.Commit();
            }),
            "DatabaseFailed");
  EXPECT_EQ(Rows(), "1a ");
  db_.ExecuteLater("DELETE FROM tried WHERE FWhole = ?", 1);
  EXPECT_EQ(Rows(), "") << "the statement behind the failure works";
}

TEST_P(StatementTest, ARefusalTakesBackWhatWasExecutedLater) {
  EXPECT_EQ(RefusalOf([&] {
              const Transaction transaction(db_, Transaction::Kind::kSave);
              InsertLater(1, "a");
              InsertLater(1, "again, which nobody comes to know");
              Refuse(refusal::kInUse, "no");
            }),
            db_.IsSQLite() ? "DatabaseFailed" : "InUse");
  EXPECT_EQ(Rows(), "");
}

TEST_P(StatementTest, ARefusedSavepointLeavesWhatStandsBeforeIt) {
  Transaction outer(db_, Transaction::Kind::kSave);
  InsertLater(1, "a");
  EXPECT_EQ(RefusalOf([&] {
              const Transaction inner(db_, Transaction::Kind::kSave);
              InsertLater(2, "b");
              Refuse(refusal::kInUse, "no");
            }),
            "InUse");
  InsertLater(3, "c");
  outer.Commit();
  EXPECT_EQ(Rows(), "1a 3c ");
}

TEST_P(StatementTest, QueriesOpenTogetherKeepTheirRowsApart) {
  InsertLater(1, "a");
  Statement& all = db_.Prepared("SELECT FWhole FROM tried ORDER BY FWhole");
  Statement& one = TextOf(1);
  all.Open();
  ASSERT_TRUE(all.Fetch());
  ASSERT_TRUE(one.Fetch());
  EXPECT_EQ(all.Whole(0), 1);
  EXPECT_EQ(one.Text(0), "a");
  EXPECT_FALSE(all.Fetch());
  EXPECT_FALSE(all.Fetch()) << "behind the last row nothing begins anew";
}

TEST_P(StatementTest, AQueryThatNobodyFetchedFromIsOver) {
  InsertLater(1, "a");
  InsertLater(2, "b");
  TextOf(1);
  EXPECT_EQ(Rows(), "1a 2b ");
  Statement& statement = TextOf(2);
  ASSERT_TRUE(statement.Fetch());
  EXPECT_EQ(statement.Text(0), "b");
  TextOf(1);
  TextOf(2);
  ASSERT_TRUE(statement.Fetch());
  EXPECT_EQ(statement.Text(0), "b");
}

TEST_P(StatementTest, AStatementThatIsNotKeptIsForgottenWithItsResult) {
  InsertLater(1, "a");
  {
    const std::unique_ptr<Statement> once = db_.MakeStatement("SELECT FText FROM tried");
    once->Open();
  }
  EXPECT_EQ(Rows(), "1a ");
}

TEST_P(StatementTest, NumbersAndTextsComeBackAsTheyWere) {
  const double reals[] = {0.1, -1e300, 5e-324, 1.0 / 3};
  for (const double real : reals) {
    EXPECT_EQ(db_.QueryValue<double>("SELECT CAST(? AS DOUBLE PRECISION)", real), real);
  }
  for (const std::int64_t whole : {INT64_MIN, std::int64_t{0}, INT64_MAX}) {
    EXPECT_EQ(db_.QueryValue<std::int64_t>("SELECT CAST(? AS BIGINT)", whole), whole);
  }
  const std::string text = "what? 'this', \\ and \xC3\xA4";
  EXPECT_EQ(db_.QueryValue<std::string>("SELECT CAST(? AS TEXT) || '?'", text), text + "?");
  EXPECT_EQ(db_.QueryValue<std::string>("SELECT CAST(? AS TEXT)", ""), "");
}

}  // namespace
}  // namespace qdclgl::server::testing
