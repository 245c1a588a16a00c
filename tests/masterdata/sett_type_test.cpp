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

}  // namespace
}  // namespace qdclgl
