#include "qdclgl/ledgers/multi_sub_column.h"

#include <gtest/gtest.h>

#include "tests/support/columns.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::Row;
using testing::State;
using testing::ViewOn;
using testing::WithoutDefault;
using enum testing::Zero;

#define COLUMN(Type, Name, key) \
  testing::WritableColumn<Type>(#Name, key, &MultiSubColumn::Name, &MultiSubColumn::Name, kIsStored)
#define READ_ONLY(Type, Name, key) testing::ReadOnlyColumn<Type>(#Name, key, &MultiSubColumn::Name)

std::vector<Column<MultiSubColumn>> Columns() {
  return {
      WithoutDefault(COLUMN(Long, CurrencyID, "FCurrencyID")),
      READ_ONLY(String, CurrencyNumber, "FCurrencyNumber"),
      WithoutDefault(READ_ONLY(Double, ExchangeRate, "FExchangeRate")),
      WithoutDefault(COLUMN(Long, SerialNo, "FSerialNo")),
      COLUMN(String, SubColumnName, "FSubColumnName"),
  };
}

#undef COLUMN
#undef READ_ONLY

TEST(MultiSubColumn, HasItsMembersInInterfaceOrderAndIsMadeByItsLedgerAlone) {
  EXPECT_EQ(testing::MemberNames<MultiSubColumn>(),
            "CurrencyID CurrencyNumber ExchangeRate Modified Properties SerialNo SubColumnName");
  EXPECT_FALSE(MultiSubColumn::Table().creatable());
}

TEST(MultiSubColumn, ReadsEmptyTextsAndRaisesThirteenForNumbersWhereTheRowHasNoValue) {
  testing::ExpectDefaults(Columns());
}

TEST(MultiSubColumn, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST(MultiSubColumn, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST(MultiSubColumn, StoresZerosAndEmptyTexts) { testing::ExpectWritesOfZero(Columns()); }

TEST(MultiSubColumn, RefusesALetOfAnotherTypeAndAnyOfTheRate) {
  testing::ExpectRefusedLets(Columns());
}

TEST(MultiSubColumn, RaisesNinetyOneUntilItIsAttached) { testing::ExpectUnusable(Columns()); }

TEST(MultiSubColumn, TheRateHasTheDigitsOfItsText) {
  const auto column = ViewOn<MultiSubColumn>(Row({{"FExchangeRate", 0.1 + 0.2}}));
  EXPECT_EQ(column->ExchangeRate(), 0.3);
}

TEST(MultiSubColumn, AWriteOfTheCurrencyLeavesItsNumberAndRate) {
  const auto column = ViewOn<MultiSubColumn>(
      Row({{"FCurrencyID", Long{2}}, {"FCurrencyNumber", "USD"}, {"FExchangeRate", 7.5}}));
  column->CurrencyID(3);
  EXPECT_EQ(State(*column),
            "{FCurrencyID: 3, FCurrencyNumber: \"USD\", FExchangeRate: 7.5#} modified flagged");
}

TEST(MultiSubColumnSet, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<MultiSubColumnSet>(), "Add NewEnum Remove Count Item Modified");
}

}  // namespace
}  // namespace qdclgl
