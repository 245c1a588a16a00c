#include "qdclgl/server/books/batch.h"

#include <atomic>
#include <chrono>
#include <thread>

#include "qdclgl/frame/session/startup.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/refusals.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kBatch = "QDSVGLBatch.BatchUpdate";

class BatchTest : public RecordsTest {
 protected:
  void Begin() { Call(kBatch, "Begin", props); }
  void Commit() { Call(kBatch, "Commit", props); }
  void RollBack() { Call(kBatch, "RollBack", props); }
  // What another thread, with a connection of its own, sees of the groups.
  std::string GroupsForOthers() {
    std::string groups;
    std::thread([&] {
      SetApartmentStarted(true);
      groups = TextOf(Call("QDSVGLVoucherGroup.VoucherGroupInfo", "GetList", props).As<Recordset>(),
                      {"FName"});
      Connections::OfThisThread().CloseAll();
    }).join();
    return groups;
  }
};

TEST_P(BatchTest, TheSavesOfABatchBecomeVisibleTogether) {
  Begin();
  AddGroup("Receipts");
  AddGroup("Payments");
  EXPECT_EQ(GroupsForOthers(), "");
  Commit();
  EXPECT_EQ(GroupsForOthers(), "Receipts\nPayments\n");
}

TEST_P(BatchTest, ARolledBackBatchLeavesNothing) {
  const std::string before = State();
  Begin();
  const Long group = AddGroup("Receipts");
  AddVoucher(group, AddAccount("1000"), AddAccount("2000"), Currency(5));
  EXPECT_NE(State(), before);
  RollBack();
  EXPECT_EQ(State(), before);
  AddGroup("Receipts");
}

TEST_P(BatchTest, ASaveThatIsRefusedInABatchIsUndoneByItself) {
  Begin();
  AddGroup("Receipts");
  EXPECT_EQ(RefusalOf([&] { AddGroup("Receipts"); }), "NameTaken");
  EXPECT_EQ(RefusalOf([&] { AddAccount("1.1"); }), "NoParent");
  AddGroup("Payments");
  Commit();
  EXPECT_EQ(GroupsForOthers(), "Receipts\nPayments\n");
}

TEST_P(BatchTest, AFailureAtAnyStatementOfASaveInABatchLeavesTheOthers) {
  Begin();
  AddGroup("Receipts");
  FailEachStatement([&] { AddGroup("Payments"); });
  Commit();
  EXPECT_EQ(GroupsForOthers(), "Receipts\nPayments\n");
}

TEST_P(BatchTest, BatchesDoNotNestAndEndOnce) {
  EXPECT_EQ(RefusalOf([&] { Commit(); }), "BadBatch");
  EXPECT_EQ(RefusalOf([&] { RollBack(); }), "BadBatch");
  Begin();
  EXPECT_EQ(RefusalOf([&] { Begin(); }), "BadBatch");
  AddGroup("Receipts");
  Commit();
  EXPECT_EQ(RefusalOf([&] { Commit(); }), "BadBatch");
  EXPECT_EQ(RefusalOf([&] { RollBack(); }), "BadBatch");
  Begin();
  RollBack();
  EXPECT_EQ(RefusalOf([&] { RollBack(); }), "BadBatch");
  EXPECT_EQ(GroupsForOthers(), "Receipts\n");
}

TEST_P(BatchTest, AConnectionThatIsClosedInABatchRollsItBack) {
  Begin();
  AddGroup("Receipts");
  Connections::OfThisThread().CloseAll();
  EXPECT_EQ(RefusalOf([&] { Commit(); }), "BadBatch");
  EXPECT_EQ(GroupsForOthers(), "");
}

TEST_P(BatchTest, ACommitThatFailsCanBeRepeated) {
  Begin();
  AddGroup("Receipts");
  Database::SetStatementHook([](std::string_view sql) {
    if (sql == "COMMIT") throw Error(4711, "test", "this statement fails");
  });
  EXPECT_EQ(RefusalOf([&] { Commit(); }), "error 4711");
  Database::SetStatementHook(nullptr);
  Commit();
  EXPECT_EQ(GroupsForOthers(), "Receipts\n");
}

TEST_P(BatchTest, ABatchBelongsToItsSession) {
  AddUser("ann", "administrator");
  const std::string mine = props, hers = Login("ann");
  props = mine;
  Begin();
  AddGroup("Mine");
  const std::string within = State();
  props = hers;
  EXPECT_NE(State(), within) << "what is in the batch is for its session alone";
  EXPECT_EQ(RefusalOf([&] { AddGroup("Hers"); }), "DatabaseBusy") << "it would wait for the batch";
  EXPECT_EQ(RefusalOf([&] { Begin(); }), "DatabaseBusy");
  EXPECT_EQ(RefusalOf([&] { Commit(); }), "BadBatch");
  EXPECT_EQ(RefusalOf([&] { RollBack(); }), "BadBatch");
  props = mine;
  EXPECT_EQ(State(), within);
  RollBack();
  props = hers;
  AddGroup("Hers");
  props = mine;
  Begin();
  AddGroup("Mine");
  Commit();
  EXPECT_EQ(GroupsForOthers(), "Hers\nMine\n");
}

TEST_P(BatchTest, AnUpgradeInItsThreadDoesNotWaitForIt) {
  Begin();
  AddGroup("Receipts");
  // By another way to the same books, too: an upgrade is often another database user's.
  const std::string text =
      ConnectionText::Parse(connection).With(connection_key::kLockTimeout, "5").ToText();
  for (const std::string& way : {connection, text}) {
    EXPECT_EQ(SentenceOf([&] { Call("QDSVGLBooks.BooksUpdate", "Upgrade", way); }),
              "A batch is under way in this thread, and this would wait for it; end it first.");
  }
  Commit();
  EXPECT_EQ(RefusalOf([&] { Call("QDSVGLBooks.BooksUpdate", "Upgrade", connection); }), "none");
  EXPECT_EQ(GroupsForOthers(), "Receipts\n");
}

TEST_P(BatchTest, ABatchIsOverWithItsSession) {
  Begin();
  AddGroup("Receipts");
  Call("QDSVGLSession.SessionUpdate", "Logout", props);
  Login("administrator");
  EXPECT_EQ(GroupsForOthers(), "");
  Begin();
  AddGroup("Payments");
  std::thread([&] { EndSession(props); }).join();
  Login("administrator");
  EXPECT_EQ(GroupsForOthers(), "") << "the thread of the batch did not hear of the logout";
  Begin();
  Commit();
}

TEST_P(BatchTest, ABatchThatIsAloneWaitsForTheOtherOne) {
  std::atomic<bool> has_begun{false};
  std::string groups_for_the_second;
  Call(kBatch, "Begin", props, true);
  AddGroup("Receipts");
  std::thread second([&] {
    SetApartmentStarted(true);
    Call(kBatch, "Begin", props, true);
    has_begun = true;
    groups_for_the_second = GroupsForOthers();
    Call(kBatch, "RollBack", props);
    Connections::OfThisThread().CloseAll();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  EXPECT_FALSE(has_begun);
  Commit();
  second.join();
  EXPECT_EQ(groups_for_the_second, "Receipts\n");
}

TEST_P(BatchTest, WhoCanSaveNothingBeginsNoBatch) {
  AddUser("anna", "reader");
  for (const char* role : {"preparer", "checker", "cashier", "poster"}) AddUser(role, role);
  Login("anna");
  for (const char* method : {"Begin", "Commit", "RollBack"}) {
    EXPECT_EQ(RefusalOf([&] { Call(kBatch, method, props); }), "NotPermitted");
    EXPECT_EQ(RefusalOf([&] { Call(kBatch, method, connection); }), "NotLoggedIn");
  }
  for (const char* role : {"preparer", "checker", "cashier", "poster"}) {
    Login(role);
    Begin();
    Commit();
  }
}

QDCLGL_BOOKS_TEST(BatchTest);

// A file that can grow by so many pages and no further, as on a disk that is full.
class FullDiskTest : public BatchTest {
 protected:
  void AllowPages(Long more) {
    Database& db = Books();
    const Long pages = *db.QueryValue<Long>("PRAGMA page_count");
    db.QueryValue<Long>("PRAGMA max_page_count = " + std::to_string(pages + more));
  }
};

TEST_P(FullDiskTest, ADiskThatFillsUpInABatchTakesAllOfItAndNoMore) {
  const Long group = AddGroup("Receipts"), from = AddAccount("1000"), to = AddAccount("2000");
  const std::string before = State();
  for (const Long pages : {0, 1, 2, 3, 5, 8}) {
    AllowPages(pages);
    Begin();
    std::string refusal;
    for (int i = 0; i < 2000 && (i == 0 || refusal == "none"); ++i) {
      refusal = RefusalOf([&] { AddVoucher(group, from, to, Currency(5)); });
    }
    EXPECT_EQ(refusal, "DatabaseFailed");
    EXPECT_EQ(RefusalOf([&] { AddVoucher(group, from, to, Currency(5)); }), "BatchFailed");
    EXPECT_EQ(RefusalOf([&] { State(); }), "BatchFailed");
    EXPECT_EQ(RefusalOf([&] { Begin(); }), "BatchFailed");
    EXPECT_EQ(RefusalOf([&] { Commit(); }), "BatchFailed");
    EXPECT_EQ(RefusalOf([&] { Commit(); }), "BatchFailed") << "until it is rolled back";
    RollBack();
    ASSERT_EQ(State(), before) << pages;
  }
  AllowPages(1000);
  Begin();
  AddVoucher(group, from, to, Currency(5));
  Commit();
  EXPECT_EQ(Breaches(), "");
}

QDCLGL_BOOKS_TEST_OF(FullDiskTest, kSQLite);

}  // namespace
}  // namespace qdclgl::server::testing
