#include "qdclgl/masterdata/payment.h"

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

INSTANTIATE_TEST_SUITE_P(Payment, EntitySuite, TypedAndByName(SettlementCase<Payment>()),
                         NameOfUse());
INSTANTIATE_TEST_SUITE_P(PaymentSet, SetSuite,
                         TypedAndByName(testing::SettlementSetCase<PaymentSet, Payment>()),
                         NameOfUse());

#define COLUMN(Type, Name, key) \
  testing::SettlementColumn<Payment, Type>(#Name, key, &Payment::Name, &Payment::Name)

// The members that read and write one key.
std::vector<Column<Payment>> Columns() {
  return {
      COLUMN(Integer, BeforeDays, "FBeforeDays"),
      COLUMN(Integer, Deleted, "FDeleted"),
      COLUMN(Integer, MonthPayDay, "FMonthPayDay"),
      COLUMN(String, Name, "FName"),
      WithDefault(COLUMN(String, Number, "FNumber"), "", "NET_30"),
      WithDefault(COLUMN(String, PaymentType, "FType"), "1", "2"),
      COLUMN(Integer, StandDays, "FStandDays"),
  };
}

#undef COLUMN

class PaymentTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

TEST_F(PaymentTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(
      testing::MemberNames<Payment>(),
      "CancelChanges Construct Refresh SaveChanges BeforeDays Deleted ItemID MonthPayDay Name "
      "Number PaymentType Properties StandDays");
}

TEST_F(PaymentTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(PaymentTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(PaymentTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST_F(PaymentTest, StoresTheDefaultSinceNoMemberHasAClearValue) {
  testing::ExpectWritesOfZero(Columns());
}

TEST_F(PaymentTest, RefusesALetOfAnotherType) { testing::ExpectRefusedLets(Columns()); }

TEST_F(PaymentTest, OneThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(PaymentTest, DaysAreStoredAsTheyAre) {
  const auto payment = ViewOn<Payment>(Nothing);
  payment->MonthPayDay(99);
  payment->BeforeDays(-32768);
  payment->StandDays(32767);
  EXPECT_EQ(StateOf(*payment),
            "id 0 {FMonthPayDay: 99%, FBeforeDays: -32768%, FStandDays: 32767%} modified flagged");
}

TEST_F(PaymentTest, TheTypeOfANewTermIsTheTextOne) {
  const auto payment = ViewOn<Payment>(Nothing);
  EXPECT_EQ(payment->PaymentType(), "1");
  EXPECT_EQ(testing::StateText(payment->Get("PaymentType")), "\"1\"");
  EXPECT_EQ(StateOf(*payment), "id 0 {}");
}

}  // namespace
}  // namespace qdclgl
