#include "qdclgl/masterdata/sett_type.h"

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

INSTANTIATE_TEST_SUITE_P(SettType, EntitySuite, TypedAndByName(SettlementCase<SettType>()),
                         NameOfUse());
INSTANTIATE_TEST_SUITE_P(SettTypeSet, SetSuite,
                         TypedAndByName(testing::SettlementSetCase<SettTypeSet, SettType>()),
                         NameOfUse());

#define COLUMN(Type, Name, key) \
  testing::SettlementColumn<SettType, Type>(#Name, key, &SettType::Name, &SettType::Name)

// The members that read and write one key.
std::vector<Column<SettType>> Columns() {
  return {
      COLUMN(Long, AccountID, "FAcctID"),
      WithDefault(COLUMN(String, BrNo, "FBrNo"), "0", "7"),
      COLUMN(Integer, Deleted, "FDeleted"),
      COLUMN(String, Name, "FName"),
      WithDefault(COLUMN(String, Number, "FNumber"), "", "CHQ_1"),
  };
}

#undef COLUMN

class SettTypeTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

TEST_F(SettTypeTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<SettType>(),
            "CancelChanges Construct Refresh SaveChanges AccountID AccountNumber BrNo Deleted "
            "ItemID Name Number Properties");
}

TEST_F(SettTypeTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(SettTypeTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(SettTypeTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST_F(SettTypeTest, StoresTheDefaultSinceNoMemberHasAClearValue) {
  testing::ExpectWritesOfZero(Columns());
}

TEST_F(SettTypeTest, RefusesALetOfAnotherType) { testing::ExpectRefusedLets(Columns()); }

TEST_F(SettTypeTest, OneThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  EXPECT_EQ(ErrorOf([&] { Make<SettType>()->AccountNumber(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { Make<SettType>()->AccountNumber("1"); }), "error 91");
  EXPECT_EQ(server.TakeLog(), "");
}

// ---- The account ----

TEST_F(SettTypeTest, AnAccountNumberIsLookedUpWhenItIsWrittenAndTheOldOneReadsOn) {
  const std::string row = "AcctNumber: \"OLD\"";
  testing::ExpectEvents(
      server,
      [&] {
        server.Answer("QDSVGLSettAcct.SettAcctInfo", "ExistenceCheck", Long{31});
        return ViewOn<SettType>(Row({{"AcctNumber", "OLD"}}));
      },
      [](SettType& entity) { entity.AccountNumber("a1"); },
      {{"create QDSVGLSettAcct.SettAcctInfo", "", "id 0 {" + row + "}"},
       {"call ExistenceCheck(\"props\", Number:=ref Variant \"a1\")", " -> 31",
        "id 0 {" + row + "}"}},
      "id 0 {" + row + ", FAcctID: 31} modified flagged",
      [](const SettType& entity) { return StateOf(entity); });
}

TEST_F(SettTypeTest, AnUnknownAccountNumberClearsTheLinkAndRaisesNothing) {
  for (const Long unknown : {0, -1}) {
    server.Answer("QDSVGLSettAcct.SettAcctInfo", "ExistenceCheck", unknown);
    const auto entity = ViewOn<SettType>(Row({{"FAcctID", Long{5}}, {"AcctNumber", "OLD"}}));
    entity->AccountNumber("none");
    EXPECT_EQ(entity->AccountID(), 0);
    EXPECT_EQ(entity->AccountNumber(), "OLD");
    EXPECT_EQ(StateOf(*entity), "id 0 {FAcctID: 0, AcctNumber: \"OLD\"} modified flagged");
  }
}

TEST_F(SettTypeTest, AnEmptyAccountNumberIsLookedUpToo) {
  ViewOn<SettType>(Nothing)->Let("AccountNumber", "");
  EXPECT_EQ(server.TakeLog(), "create QDSVGLSettAcct.SettAcctInfo\n"
                              "call ExistenceCheck(\"props\", Number:=ref Variant \"\")\n");
}

TEST_F(SettTypeTest, TheIdAndTheNumberOfTheAccountAreNotTiedTogether) {
  const auto entity = ViewOn<SettType>(Row({{"FAcctID", Long{5}}, {"AcctNumber", "OLD"}}));
  entity->AccountID(9);
  EXPECT_EQ(entity->AccountNumber(), "OLD");
  EXPECT_EQ(StateOf(*entity), "id 0 {FAcctID: 9, AcctNumber: \"OLD\"} modified flagged");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(SettTypeTest, AnAccountNumberReadsAsTextAndEmptyWhereThereIsNone) {
  EXPECT_EQ(ViewOn<SettType>(Nothing)->AccountNumber(), "");
  EXPECT_EQ(ViewOn<SettType>(Row({{"AcctNumber", Null}}))->AccountNumber(), "");
  EXPECT_EQ(ViewOn<SettType>(Row({{"AcctNumber", Long{12}}}))->AccountNumber(), "12");
}

}  // namespace
}  // namespace qdclgl
