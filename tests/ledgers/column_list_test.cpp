#include "qdclgl/ledgers/column_list.h"

#include <gtest/gtest.h>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/ledgers/multi_column.h"
#include "qdclgl/ledgers/multi_sub_column.h"
#include "tests/support/columns.h"
#include "tests/support/recording_server.h"
#include "tests/support/test_objects.h"
#include "tests/support/view_state.h"

namespace qdclgl {
namespace {

using testing::AtEnd;
using testing::ErrorOf;
using testing::FlagText;
using testing::Opaque;
using testing::Row;
using testing::State;
using testing::StateText;

// What both lists of columns share.
template <class Set>
class ColumnListTest : public ::testing::Test {
 protected:
  ColumnListTest() { columns->Attach(rows, flag); }

  void Fill(std::initializer_list<Long> numbers) {
    for (const Long number : numbers) rows->Append(Variant(Row({{"N", number}})));
  }
  std::string ListState() const { return State(rows, flag); }

  testing::RecordingServer server;
  Ref<Vector> rows = Make<Vector>();
  Ref<ChangeFlag> flag = Make<ChangeFlag>();
  Ref<Set> columns = Make<Set>();
};

using Sets = ::testing::Types<MultiColumnSet, MultiSubColumnSet>;
TYPED_TEST_SUITE(ColumnListTest, Sets);

TYPED_TEST(ColumnListTest, CanBeCreatedAndHasNoDefaultMember) {
  EXPECT_TRUE(TypeParam::Table().creatable());
  EXPECT_EQ(TypeParam::Table().default_member(), nullptr);
}

TYPED_TEST(ColumnListTest, AddAppendsAnEmptyColumnAndSetsTheListsFlag) {
  this->columns->Add();
  EXPECT_EQ(this->ListState(), "[{}] *");
  this->columns->Call("Add");
  EXPECT_EQ(this->ListState(), "[{}, {}] *");
  EXPECT_EQ(this->columns->Count(), 2);
}

TYPED_TEST(ColumnListTest, AddAtAPositionMovesTheColumnsUpAndLeavesTheirFlags) {
  this->Fill({1, 2});
  this->columns->Item(2)->Properties()->ChangeFlag()->Modified(true);
  EXPECT_EQ(this->ListState(), "[{N: 1}, {N: 2}] +[- *]");
  this->columns->Add(Integer{2});
  EXPECT_EQ(this->ListState(), "[{N: 1}, {}, {N: 2}] *[- *]");
  this->columns->Call("Add", CDec(Variant("4")));
  EXPECT_EQ(this->ListState(), "[{N: 1}, {}, {N: 2}, {}] *[- *]");
}

TYPED_TEST(ColumnListTest, AddAtPositionOneFillsAnEmptyList) {
  this->columns->Add(1);
  EXPECT_EQ(this->ListState(), "[{}] *");
}

TYPED_TEST(ColumnListTest, AddOutsideTheListIsTheVectorsError) {
  this->Fill({1});
  for (const Long index : {0, -1, 3}) {
    EXPECT_EQ(ErrorOf([&] { this->columns->Add(index); }), "error 9") << index;
  }
  EXPECT_EQ(this->ListState(), "[{N: 1}] -");
}

TYPED_TEST(ColumnListTest, AddRefusesAPositionThatIsNoWholeNumber) {
  this->Fill({1, 2});
  const Variant indexes[] = {
      1.0,  1.5,  Single{1},   Byte{1}, Currency(1),      "1",           Variant(),
      Null, true, DateTime(1), Nothing, Variant(Row({})), Make<Opaque>()};
  for (const Variant& index : indexes) {
    EXPECT_EQ(ErrorOf([&] { this->columns->Add(index); }), "error 13") << StateText(index);
    EXPECT_EQ(this->ListState(), "[{N: 1}, {N: 2}] -");
  }
}

TYPED_TEST(ColumnListTest, ItemGivesEachColumnTheFlagOfItsPosition) {
  this->Fill({1, 2});
  const auto first = this->columns->Item(1);
  const auto second = this->columns->Get("Item", 2);
  EXPECT_EQ(this->ListState(), "[{N: 1}, {N: 2}] -[- -]");
  first->Properties()->ChangeFlag()->Modified(true);
  EXPECT_TRUE(first->Modified());
  EXPECT_EQ(StateText(second.template As<Object>()->Get("Modified")), "False");
  EXPECT_TRUE(this->columns->Modified());
  EXPECT_EQ(this->ListState(), "[{N: 1}, {N: 2}] +[* -]");
}

TYPED_TEST(ColumnListTest, ItemOutsideTheListIsTheVectorsError) {
  this->Fill({1});
  for (const Long index : {2, 0, -1, 100}) {
    EXPECT_EQ(ErrorOf([&] { this->columns->Item(index); }), "error 9") << index;
  }
  EXPECT_EQ(this->ListState(), "[{N: 1}] -");
}

TYPED_TEST(ColumnListTest, ItemFillsAHoleAndSetsNoFlag) {
  this->rows->Append(Nothing);
  this->columns->Item(1);
  EXPECT_EQ(this->ListState(), "[{}] -[-]");
}

TYPED_TEST(ColumnListTest, RemoveTakesTheColumnAndTheFlagOfItsPosition) {
  this->Fill({1, 2, 3});
  this->columns->Item(3)->Properties()->ChangeFlag()->Modified(true);
  this->columns->Remove(1);
  EXPECT_EQ(this->ListState(), "[{N: 2}, {N: 3}] *[- *]");
  this->columns->Call("Remove", 2);
  EXPECT_EQ(this->ListState(), "[{N: 2}] *[-]");
  for (const Long index : {2, 0}) {
    EXPECT_EQ(ErrorOf([&] { this->columns->Remove(index); }), "error 9") << index;
  }
}

TYPED_TEST(ColumnListTest, CountGrowsCutsAndSetsTheFlagInAnyCaseAndTheFlagsOfWhatIsCutStay) {
  this->columns->Count(2);
  EXPECT_EQ(this->ListState(), "[{}, {}] *");
  this->columns->Item(2)->Properties()->ChangeFlag()->Modified(true);
  this->flag->Modified(false);
  this->columns->Let("Count", 2);
  EXPECT_EQ(this->ListState(), "[{}, {}] *[- *]");
  this->flag->Modified(false);
  this->columns->Count(0);
  EXPECT_EQ(this->ListState(), "[] *[- *]");
}

TYPED_TEST(ColumnListTest, AWalkGivesWhatItemGivesAndFillsHoles) {
  this->Fill({1});
  this->rows->Append(Nothing);
  std::string met;
  for (auto& column : *this->columns) met += State(column) + " ";
  EXPECT_EQ(met, "{N: 1} {} ");
  EXPECT_EQ(this->ListState(), "[{N: 1}, {}] -[- -]");
  const Ref<Enumerator> enumerator = this->columns->NewEnum();
  Variant element;
  ASSERT_TRUE(enumerator->Next(element));
  element.As<LineView>()->Properties()->Item("N")->Value(7);
  EXPECT_EQ(this->ListState(), "[{N: 7}, {}] +[* -]");
}

TYPED_TEST(ColumnListTest, AWalkBehindThe32767thColumnRaisesOverflow) {
  this->columns->Count(32768);
  const Ref<Enumerator> enumerator = this->columns->NewEnum();
  ASSERT_TRUE(enumerator->Skip(32767));
  Variant element;
  EXPECT_EQ(ErrorOf([&] { enumerator->Next(element); }), "error 6");
}

TYPED_TEST(ColumnListTest, RaisesNinetyOneUntilALedgerHasBoundIt) {
  const auto set = Make<TypeParam>();
  EXPECT_EQ(ErrorOf([&] { set->Add(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->NewEnum(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Remove(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Count(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Count(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Item(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Modified(); }), "error 91");
}

TYPED_TEST(ColumnListTest, AColumnThatEndsMayLetGoOfTheList) {
  auto row = Row({{"N", Long{1}}});
  row->Put("Held", Variant(Make<AtEnd>([this] { this->columns = nullptr; })));
  this->rows->Append(Variant(row));
  row = nullptr;
  this->columns->Remove(1);
  EXPECT_EQ(this->columns, nullptr);
  EXPECT_EQ(this->ListState(), "[] *");
}

TYPED_TEST(ColumnListTest, NoServerCallIsMade) {
  this->columns->Count(3);
  this->columns->Item(2);
  this->columns->Remove(1);
  EXPECT_EQ(this->server.TakeLog(), "");
}

}  // namespace
}  // namespace qdclgl
