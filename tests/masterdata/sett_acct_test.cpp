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

}  // namespace
}  // namespace qdclgl
