#include "qdclgl/masterdata/sett_acct.h"

#include "tests/masterdata/settlement_suite.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::EntitySuite;
using testing::ErrorOf;
using testing::NameOfUse;
using testing::RecordingServer;
using testing::Row;
using testing::SetSuite;
using testing::SettlementCase;
using testing::StateOf;
using testing::TypedAndByName;
using testing::ViewOn;
using testing::WithDefault;

INSTANTIATE_TEST_SUITE_P(SettAcct, EntitySuite, TypedAndByName(SettlementCase<SettAcct>()),
                         NameOfUse());
INSTANTIATE_TEST_SUITE_P(SettAcctSet, SetSuite,
                         TypedAndByName(testing::SettlementSetCase<SettAcctSet, SettAcct>()),
                         NameOfUse());

#define COLUMN(Type, Name, key) \
  testing::SettlementColumn<SettAcct, Type>(#Name, key, &SettAcct::Name, &SettAcct::Name)

// The members that read and write one key.
std::vector<Column<SettAcct>> Columns() {
  return {
      COLUMN(Long, AccountID, "FAcctID"),
      WithDefault(COLUMN(String, BrNo, "FBrNo"), "0", "7"),
      COLUMN(Integer, Deleted, "FDeleted"),
      COLUMN(String, Name, "FName"),
      WithDefault(COLUMN(String, Number, "FNumber"), "", "CHQ_1"),
      COLUMN(Double, Balance, "FBalance"),
      COLUMN(String, StartPeriod, "FStartPeriod"),
      COLUMN(Boolean, BeforeEnable, "FBeforeEnable"),
  };
}

#undef COLUMN

class SettAcctTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

TEST_F(SettAcctTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<SettAcct>(),
            "CancelChanges Construct Refresh SaveChanges AccountID AccountNumber BrNo Deleted "
            "ItemID Name Number Properties Balance StartPeriod BeforeEnable");
}

TEST_F(SettAcctTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(SettAcctTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(SettAcctTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST_F(SettAcctTest, StoresTheDefaultSinceNoMemberHasAClearValue) {
  testing::ExpectWritesOfZero(Columns());
}

TEST_F(SettAcctTest, RefusesALetOfAnotherType) { testing::ExpectRefusedLets(Columns()); }

TEST_F(SettAcctTest, OneThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  EXPECT_EQ(ErrorOf([&] { Make<SettAcct>()->AccountNumber(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { Make<SettAcct>()->AccountNumber("1"); }), "error 91");
  EXPECT_EQ(server.TakeLog(), "");
}

// ---- The account ----

TEST_F(SettAcctTest, AnAccountNumberIsLookedUpWhenItIsWrittenAndTheOldOneReadsOn) {
  const std::string row = "AcctNumber: \"OLD\"";
  testing::ExpectEvents(
      server,
      [&] {
        server.Answer("QDSVGLAccount.AccountInfo", "ExistenceCheck", Long{31});
        return ViewOn<SettAcct>(Row({{"AcctNumber", "OLD"}}));
      },
      [](SettAcct& entity) { entity.AccountNumber("a1"); },
      {{"create QDSVGLAccount.AccountInfo", "", "id 0 {" + row + "}"},
       {"call ExistenceCheck(\"props\", Number:=ref Variant \"a1\")", " -> 31",
        "id 0 {" + row + "}"}},
      "id 0 {" + row + ", FAcctID: 31} modified flagged",
      [](const SettAcct& entity) { return StateOf(entity); });
}

TEST_F(SettAcctTest, AnUnknownAccountNumberClearsTheLinkAndRaisesNothing) {
  for (const Long unknown : {0, -1}) {
    server.Answer("QDSVGLAccount.AccountInfo", "ExistenceCheck", unknown);
    const auto entity = ViewOn<SettAcct>(Row({{"FAcctID", Long{5}}, {"AcctNumber", "OLD"}}));
    entity->AccountNumber("none");
    EXPECT_EQ(entity->AccountID(), 0);
    EXPECT_EQ(entity->AccountNumber(), "OLD");
    EXPECT_EQ(StateOf(*entity), "id 0 {FAcctID: 0, AcctNumber: \"OLD\"} modified flagged");
  }
}

TEST_F(SettAcctTest, AnEmptyAccountNumberIsLookedUpToo) {
  ViewOn<SettAcct>(Nothing)->Let("AccountNumber", "");
  EXPECT_EQ(server.TakeLog(), "create QDSVGLAccount.AccountInfo\n"
                              "call ExistenceCheck(\"props\", Number:=ref Variant \"\")\n");
}

TEST_F(SettAcctTest, TheIdAndTheNumberOfTheAccountAreNotTiedTogether) {
  const auto entity = ViewOn<SettAcct>(Row({{"FAcctID", Long{5}}, {"AcctNumber", "OLD"}}));
  entity->AccountID(9);
  EXPECT_EQ(entity->AccountNumber(), "OLD");
  EXPECT_EQ(StateOf(*entity), "id 0 {FAcctID: 9, AcctNumber: \"OLD\"} modified flagged");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(SettAcctTest, AnAccountNumberReadsAsTextAndEmptyWhereThereIsNone) {
  EXPECT_EQ(ViewOn<SettAcct>(Nothing)->AccountNumber(), "");
  EXPECT_EQ(ViewOn<SettAcct>(Row({{"AcctNumber", Null}}))->AccountNumber(), "");
  EXPECT_EQ(ViewOn<SettAcct>(Row({{"AcctNumber", Long{12}}}))->AccountNumber(), "12");
}

}  // namespace
}  // namespace qdclgl
