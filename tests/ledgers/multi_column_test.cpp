#include "qdclgl/ledgers/multi_column.h"

#include <gtest/gtest.h>

#include "tests/support/columns.h"
#include "tests/support/recording_server.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::ErrorOf;
using testing::Foreign;
using testing::Row;
using testing::State;
using testing::StateText;
using testing::ViewOn;
using testing::WithoutDefault;
using enum testing::Zero;

#define COLUMN(Type, Name, key) \
  testing::WritableColumn<Type>(#Name, key, &MultiColumn::Name, &MultiColumn::Name, kIsStored)

// The members that are one key.
std::vector<Column<MultiColumn>> Columns() {
  return {
      WithoutDefault(COLUMN(Long, AccountID, "FAccountID")),
      testing::ReadOnlyColumn<String>("AccountNumber", "FAccountNumber",
                                      &MultiColumn::AccountNumber),
      WithoutDefault(COLUMN(Long, ColumnID, "FColumnID")),
      COLUMN(String, ColumnName, "FColumnName"),
      WithoutDefault(COLUMN(Long, DC, "FDC")),
  };
}

#undef COLUMN

// ---- One column ----

TEST(MultiColumn, HasItsMembersInInterfaceOrderAndIsMadeByItsLedgerAlone) {
  EXPECT_EQ(testing::MemberNames<MultiColumn>(),
            "AccountID AccountNumber ColumnID ColumnName DC DCText Modified Properties");
  EXPECT_FALSE(MultiColumn::Table().creatable());
}

TEST(MultiColumn, ReadsEmptyTextsAndRaisesThirteenForNumbersWhereTheRowHasNoValue) {
  testing::ExpectDefaults(Columns());
}

TEST(MultiColumn, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST(MultiColumn, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST(MultiColumn, StoresZerosAndEmptyTexts) { testing::ExpectWritesOfZero(Columns()); }

TEST(MultiColumn, RefusesALetOfAnotherType) { testing::ExpectRefusedLets(Columns()); }

TEST(MultiColumn, RaisesNinetyOneUntilItIsAttached) { testing::ExpectUnusable(Columns()); }

TEST(MultiColumn, ReadsANumberThroughItsText) {
  const std::pair<Variant, const char*> cases[] = {
      {"12", "12"}, {2.5, "2"}, {Currency(3.5), "4"}, {DateTime(1), "error 13"}, {3e9, "error 6"},
  };
  for (const auto& [stored, read] : cases) {
    const auto column = ViewOn<MultiColumn>(Row({{"FAccountID", stored}}));
    EXPECT_EQ(testing::TextRead(Columns()[0], *column), read) << StateText(stored);
  }
}

TEST(MultiColumn, AWriteOfTheAccountLeavesItsNumber) {
  const auto column = ViewOn<MultiColumn>(Row({{"FAccountID", Long{5}}, {"FAccountNumber", "1"}}));
  column->AccountID(6);
  EXPECT_EQ(State(*column), "{FAccountID: 6, FAccountNumber: \"1\"} modified flagged");
}

TEST(MultiColumn, TheSideIsDebitForOneAloneAndRaisesThirteenWithoutOne) {
  const std::pair<Long, const char*> cases[] = {
      {1, "借"}, {0, "贷"}, {-1, "贷"}, {2, "贷"}, {101, "贷"}};
  for (const auto& [side, word] : cases) {
    const auto column = ViewOn<MultiColumn>(Row({}));
    column->DC(side);
    EXPECT_EQ(column->DCText(), word);
    EXPECT_EQ(StateText(column->Get("DCText")), "\"" + std::string(word) + "\"");
  }
  const auto column = ViewOn<MultiColumn>(Row({}));
  EXPECT_EQ(ErrorOf([&] { column->DCText(); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { column->Let("DCText", "借"); }),
            "error 438 (MultiColumn): The member DCText can't be used this way.");
}

// ---- The sorts ----

class MultiColumnSetTest : public ::testing::Test {
 protected:
  MultiColumnSetTest() { columns->Attach(rows, flag); }

  // Rows with these values under a key, told apart by their N.
  void Fill(std::string_view key, std::initializer_list<Variant> values) {
    rows->Remove(1, rows->Count());
    Long number = 0;
    for (const Variant& value : values) {
      auto row = Row({{"N", ++number}});
      if (!value.IsMissing()) row->Put(key, value);
      rows->Append(Variant(row));
    }
    rows->ClearTouched();
  }
  // The rows' N in their order.
  std::string Order() const {
    std::string text;
    for (Long i = 1; i <= rows->Count(); ++i) {
      text += CStr(rows->Item(i).As<Dictionary>()->Value("N"));
    }
    return text;
  }
  std::string ByNumber(std::initializer_list<Variant> numbers) {
    Fill("FAccountNumber", numbers);
    columns->SortByAccountNumber();
    return Order();
  }
  std::string BySide(std::initializer_list<Variant> sides) {
    Fill("FDC", sides);
    columns->SortByDC();
    return Order();
  }

  testing::RecordingServer server;
  Ref<Vector> rows = Make<Vector>();
  Ref<ChangeFlag> flag = Make<ChangeFlag>();
  Ref<MultiColumnSet> columns = Make<MultiColumnSet>();
};

TEST_F(MultiColumnSetTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<MultiColumnSet>(),
            "Add NewEnum Remove SortByAccountNumber SortByDC Count Item Modified");
}

TEST_F(MultiColumnSetTest, SortByAccountNumberComparesTextsByteByByte) {
  EXPECT_EQ(ByNumber({"101", "1001", "1011", "1001.01", "b", "B", "a"}), "2413675");
  EXPECT_EQ(ByNumber({"3", "2", "1"}), "321");
  EXPECT_EQ(ByNumber({"1", "2"}), "12");
}

TEST_F(MultiColumnSetTest, SortByAccountNumberTakesARowOverItsEquals) {
  EXPECT_EQ(ByNumber({"b", "b", "a"}), "321");
  EXPECT_EQ(ByNumber({"a", "a", "a"}), "123");
}

TEST_F(MultiColumnSetTest, SortByAccountNumberPutsARowWithoutANumberFirstAndNumbersBeforeTexts) {
  EXPECT_EQ(ByNumber({"1", Missing, ""}), "231");
  EXPECT_EQ(ByNumber({"1", Long{2}, Long{1}}), "321");
  EXPECT_EQ(ByNumber({"2", Null, "1"}), "321") << "nothing is greater or less than Null";
}

TEST_F(MultiColumnSetTest, SortByDCBringsDebitsBeforeCreditsByExchanges) {
  EXPECT_EQ(BySide({0, 0, 1, 1}), "3412");
  EXPECT_EQ(BySide({0, 1, 0, 1}), "2431");
  EXPECT_EQ(BySide({1, 1, 1}), "123");
  EXPECT_EQ(BySide({0, 0, 0}), "123");
  EXPECT_EQ(BySide({0, 1}), "21");
  EXPECT_EQ(BySide({1, 0, 0, 1, 0}), "14325");
}

TEST_F(MultiColumnSetTest, SortByDCEndsWithAnExchangeWithTheLastRow) {
  // The exchange of the first and the last leaves a credit before a debit.
  EXPECT_EQ(BySide({0, 0, 1}), "321");
  EXPECT_EQ(BySide({0, 2, 0, 1}), "4231");
  int reads = 0;
  const auto side = [&](Long value) {
    return Variant(Make<Foreign>([&reads, value]() -> Variant {
      ++reads;
      return value;
    }));
  };
  EXPECT_EQ(BySide({side(0), side(0), side(1)}), "321");
  EXPECT_EQ(reads, 3) << "nothing is read behind it";
}

TEST_F(MultiColumnSetTest, SortByDCLeavesOtherSidesWhereTheyAreAndTakesNoneForCredit) {
  EXPECT_EQ(BySide({2, 0, -1, 1, 0}), "14325");
  EXPECT_EQ(BySide({"0", 1}), "12") << "a text is no number";
  EXPECT_EQ(BySide({Missing, 1}), "21") << "an empty value is 0";
}

TEST_F(MultiColumnSetTest, TheSortsLeaveFlagsAndViewsWhereTheyAre) {
  Fill("FAccountNumber", {"2", "1"});
  const auto held = columns->Item(1);
  held->ColumnName("x");
  EXPECT_EQ(testing::FlagText(*flag), "+[*]");
  columns->SortByAccountNumber();
  EXPECT_EQ(Order(), "21");
  EXPECT_EQ(testing::FlagText(*flag), "+[*]");
  held->ColumnName("y");
  EXPECT_EQ(columns->Item(2)->ColumnName(), "y");
  EXPECT_FALSE(columns->Item(2)->Modified()) << "flags belong to positions";
  EXPECT_TRUE(columns->Item(1)->Modified());
}

TEST_F(MultiColumnSetTest, ASortThatMovesNothingIsNoEdit) {
  for (const auto sort : {&MultiColumnSet::SortByAccountNumber, &MultiColumnSet::SortByDC}) {
    Fill("FAccountNumber", {"1", "2"});
    (*columns.*sort)();
    EXPECT_FALSE(rows->TouchedWithin());
    EXPECT_FALSE(columns->Modified());
  }
  Fill("FAccountNumber", {"2", "1"});
  columns->SortByAccountNumber();
  EXPECT_TRUE(rows->TouchedWithin());
  EXPECT_FALSE(columns->Modified());
}

TEST_F(MultiColumnSetTest, AListOfNoneOrOneIsNotRead) {
  for (const Long count : {0, 1}) {
    rows->Remove(1, rows->Count());
    if (count == 1) rows->Append(Variant("no row"));
    columns->SortByAccountNumber();
    columns->Call("SortByDC");
    EXPECT_EQ(columns->Count(), count);
  }
}

TEST_F(MultiColumnSetTest, AHoleOrAnElementThatIsNoRowEndsASort) {
  Fill("FAccountNumber", {"2", "1"});
  rows->Append(Nothing);
  EXPECT_EQ(ErrorOf([&] { columns->SortByAccountNumber(); }), "error 91");
  rows->Item(3, Variant("text"));
  EXPECT_EQ(ErrorOf([&] { columns->SortByAccountNumber(); }), "error 13");
  rows->Item(1, Nothing);
  EXPECT_EQ(ErrorOf([&] { columns->SortByDC(); }), "error 91");
}

TEST_F(MultiColumnSetTest, ANumberOfOthersMayEmptyTheListOrLetGoOfItInTheMiddle) {
  Fill("FAccountNumber", {"2", "1", "3"});
  rows->Item(2).As<Dictionary>()->Put("FAccountNumber", Variant(Make<Foreign>([&]() -> Variant {
                                        rows->Remove(1, rows->Count());
                                        columns = nullptr;
                                        return "1";
                                      })));
  const auto called = columns.get();
  EXPECT_EQ(ErrorOf([&] { called->SortByAccountNumber(); }), "error 9");
  EXPECT_EQ(State(rows, flag), "[] -");
}

TEST_F(MultiColumnSetTest, TheSortsRaiseNinetyOneUntilALedgerHasBoundTheList) {
  const auto set = Make<MultiColumnSet>();
  EXPECT_EQ(ErrorOf([&] { set->SortByAccountNumber(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->SortByDC(); }), "error 91");
}

}  // namespace
}  // namespace qdclgl
