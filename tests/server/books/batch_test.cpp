#include "qdclgl/server/books/batch.h"

#include <thread>

#include "qdclgl/frame/session/startup.h"
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
      Database::CloseAll();
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
  Database::CloseAll();
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

}  // namespace
}  // namespace qdclgl::server::testing
