#include "qdclgl/vouchers/voucher_detail.h"

#include <gtest/gtest.h>

#include "qdclgl/vouchers/voucher_entry.h"
#include "tests/support/columns.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::ErrorOf;
using testing::FlagText;
using testing::Opaque;
using testing::Row;
using testing::State;
using testing::StateText;
using testing::ViewOn;
using testing::WritableColumn;
using enum testing::Zero;

#define COLUMN(Type, Name, key, zero) \
  WritableColumn<Type>(#Name, key, &VoucherDetail::Name, &VoucherDetail::Name, zero)

std::vector<Column<VoucherDetail>> Columns() {
  return {
      COLUMN(Boolean, Detail, "FDetail", kRemovesTheKey),
      COLUMN(Long, ItemClassID, "FItemClassID", kRemovesTheKey),
      COLUMN(String, ItemClassName, "FItemClassName", kRemovesTheKey),
      COLUMN(String, ItemClassNumber, "FItemClassNumber", kRemovesTheKey),
      COLUMN(String, ItemFullName, "FItemFullName", kRemovesTheKey),
      COLUMN(Long, ItemID, "FItemID", kRemovesTheKey),
      COLUMN(String, ItemName, "FItemName", kRemovesTheKey),
      COLUMN(String, ItemNumber, "FItemNumber", kRemovesTheKey),
      COLUMN(String, Value, "FValue", kRemovesTheKey),
  };
}

#undef COLUMN

// ---- One detail ----

TEST(VoucherDetail, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<VoucherDetail>(),
            "Detail ItemClassID ItemClassName ItemClassNumber ItemFullName ItemID ItemName "
            "ItemNumber Modified Properties Value");
}

TEST(VoucherDetail, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST(VoucherDetail, ReadsEachMemberFromItsKey) { testing::ExpectReads(Columns()); }

TEST(VoucherDetail, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST(VoucherDetail, AWriteOfZeroFalseOrEmptyTextRemovesTheKey) {
  testing::ExpectWritesOfZero(Columns());
}

TEST(VoucherDetail, RefusesALetOfAnotherType) { testing::ExpectRefusedLets(Columns()); }

TEST(VoucherDetail, RaisesNinetyOneUntilItIsAttached) {
  testing::ExpectUnusable(Columns());
  EXPECT_EQ(ErrorOf([] { Make<VoucherDetail>()->Modified(); }), "error 91");
}

TEST(VoucherDetail, ModifiedAndPropertiesAreReadOnly) {
  const auto detail = ViewOn<VoucherDetail>(Row({}));
  EXPECT_EQ(ErrorOf([&] { detail->Let("Modified", true); }),
            "error 438 (VoucherDetail): The member Modified can't be used this way.");
  EXPECT_EQ(ErrorOf([&] { detail->Set("Properties", Row({})); }),
            "error 438 (VoucherDetail): The member Properties can't be used this way.");
  EXPECT_EQ(State(*detail), "{}");
}

TEST(VoucherDetail, ModifiedIsTheFlagsAnswerAndNotTheDictionarys) {
  const auto detail = ViewOn<VoucherDetail>(Row({}));
  detail->Properties()->Dictionary()->Value("FValue", "direct");
  EXPECT_FALSE(detail->Modified());
  EXPECT_EQ(StateText(detail->Get("Modified")), "False");
  detail->Properties()->Item("FItemID")->Value(3);
  EXPECT_TRUE(detail->Modified());
  EXPECT_EQ(StateText(detail->Get("Modified")), "True");
  EXPECT_EQ(State(*detail), "{FValue: \"direct\", FItemID: 3} modified flagged");
}

TEST(VoucherDetail, TwoViewsOfOneRowShareItsData) {
  const Ref<Dictionary> row = Row({{"FValue", "a"}});
  const auto one = ViewOn<VoucherDetail>(row);
  const auto other = ViewOn<VoucherDetail>(row);
  one->Value("b");
  EXPECT_EQ(other->Value(), "b");
  EXPECT_FALSE(other->Modified()) << "each has the flag that it was given";
  EXPECT_EQ(other->Properties()->Dictionary(), row);
}

// ---- The list ----

class VoucherDetailSetTest : public ::testing::Test {
 protected:
  VoucherDetailSetTest() { details->Attach(rows, flag); }

  // Details with these values of the key "N".
  void Fill(std::initializer_list<Long> numbers) {
    for (const Long number : numbers) rows->Append(Variant(Row({{"N", number}})));
  }
  void AppendHole() { rows->Append(Nothing); }
  // The list and the flags beside it.
  std::string ListState() const { return State(rows, flag); }

  Ref<Vector> rows = Make<Vector>();
  Ref<ChangeFlag> flag = Make<ChangeFlag>();
  Ref<VoucherDetailSet> details = Make<VoucherDetailSet>();
};

TEST_F(VoucherDetailSetTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<VoucherDetailSet>(), "Add FindItem NewEnum Remove Count Item");
  ASSERT_NE(VoucherDetailSet::Table().default_member(), nullptr);
  EXPECT_EQ(VoucherDetailSet::Table().default_member()->row.name, "Item");
}

TEST_F(VoucherDetailSetTest, HasNoModifiedNoItemSetAndNoCreator) {
  Fill({1});
  EXPECT_EQ(ErrorOf([&] { details->Get("Modified"); }),
            "error 438 (VoucherDetailSet): No member Modified.");
  EXPECT_EQ(ErrorOf([&] { details->Call("CreateNewEntry"); }),
            "error 438 (VoucherDetailSet): No member CreateNewEntry.");
  EXPECT_EQ(ErrorOf([&] { details->Set("Item", 1, details->Item(1)); }),
            "error 438 (VoucherDetailSet): The member Item can't be used this way.");
  EXPECT_EQ(ListState(), "[{N: 1}] -");
}

TEST_F(VoucherDetailSetTest, AddAppendsAnEmptyDetailAndSetsTheSharedFlag) {
  details->Add();
  EXPECT_EQ(ListState(), "[{}] *");
  EXPECT_EQ(details->Count(), 1);
  details->Call("Add");
  EXPECT_EQ(ListState(), "[{}, {}] *");
}

TEST_F(VoucherDetailSetTest, AddAtAPositionMovesTheLaterDetailsUp) {
  const std::pair<Variant, const char*> cases[] = {
      {Long{1}, "[{}, {N: 1}, {N: 2}] *"},
      {Integer{2}, "[{N: 1}, {}, {N: 2}] *"},
      {CDec(Variant("3")), "[{N: 1}, {N: 2}, {}] *"},
  };
  for (const auto& [index, expected] : cases) {
    rows = Make<Vector>();
    flag = Make<ChangeFlag>();
    details->Attach(rows, flag);
    Fill({1, 2});
    details->Add(index);
    EXPECT_EQ(ListState(), expected);
  }
}

TEST_F(VoucherDetailSetTest, AddRefusesAPositionThatIsNoWholeNumber) {
  Fill({1, 2});
  const Variant indexes[] = {
      1.0,  1.5,  Single{1},   Byte{1}, Currency(1),      "1",           Variant(),
      Null, true, DateTime(1), Nothing, Variant(Row({})), Make<Opaque>()};
  for (const Variant& index : indexes) {
    EXPECT_EQ(ErrorOf([&] { details->Add(index); }), "error 13") << StateText(index);
    EXPECT_EQ(ErrorOf([&] { details->Call("Add", index); }), "error 13") << StateText(index);
    EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}] -");
  }
}

TEST_F(VoucherDetailSetTest, AddAtAPositionOfAnEmptyListIsTheVectorsError) {
  EXPECT_EQ(ErrorOf([&] { details->Add(1); }), "error 9");
  EXPECT_EQ(ListState(), "[] -");
}

TEST_F(VoucherDetailSetTest, AllDetailsReachedByItemShareOneFlag) {
  Fill({1, 2});
  const auto first = details->Item(1);
  const auto second = details->Item(2);
  EXPECT_FALSE(first->Modified());
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}] -") << "a read sets no flag and makes no child flag";
  first->Value("x");
  EXPECT_TRUE(second->Modified());
  EXPECT_TRUE(details->Item(2)->Modified());
  EXPECT_EQ(ListState(), "[{N: 1, FValue: \"x\"}, {N: 2}] *");
}

TEST_F(VoucherDetailSetTest, AddRemoveAndCountMakeEveryDetailModified) {
  Fill({1, 2, 3});
  const auto held = details->Item(1);
  details->Add();
  EXPECT_TRUE(held->Modified());
  flag->Reset();
  EXPECT_FALSE(held->Modified());
  details->Remove(2);
  EXPECT_TRUE(held->Modified());
  flag->Reset();
  details->Count(3);
  EXPECT_TRUE(held->Modified());
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 3}, {}] *");
}

TEST_F(VoucherDetailSetTest, ItemOutsideTheListIsTheVectorsError) {
  Fill({1});
  for (const Long index : {2, 0, -1, 100}) {
    EXPECT_EQ(ErrorOf([&] { details->Item(index); }), "error 9") << index;
  }
  EXPECT_EQ(ListState(), "[{N: 1}] -");
}

TEST_F(VoucherDetailSetTest, ItemFillsAHoleWithAnEmptyDetailThatStays) {
  Fill({1});
  AppendHole();
  details->Item(2)->ItemID(7);
  EXPECT_EQ(ListState(), "[{N: 1}, {FItemID: 7}] *");
}

TEST_F(VoucherDetailSetTest, TwoReadsOfItemAreTwoViewsOfOneDetail) {
  Fill({1});
  const auto one = details->Item(1);
  const auto other = details->Get("Item", 1).As<VoucherDetail>();
  EXPECT_NE(one, other);
  one->ItemName("seen");
  EXPECT_EQ(other->ItemName(), "seen");
}

TEST_F(VoucherDetailSetTest, CountGrowsCutsAndSetsTheFlagInAnyCase) {
  details->Count(2);
  EXPECT_EQ(ListState(), "[{}, {}] *");
  EXPECT_EQ(details->Item(2)->ItemClassID(), 0);
  flag->Reset();
  details->Count(2);
  EXPECT_EQ(ListState(), "[{}, {}] *");
  flag->Reset();
  details->Let("Count", 1);
  EXPECT_EQ(ListState(), "[{}] *");
  flag->Reset();
  details->Count(0);
  EXPECT_EQ(ListState(), "[] *");
  flag->Reset();
  details->Count(0);
  EXPECT_EQ(ListState(), "[] *");
  EXPECT_EQ(StateText(details->Get("Count")), "0");
}

TEST_F(VoucherDetailSetTest, CountCutsNoChildFlag) {
  Fill({1, 2, 3});
  for (auto& detail : *details) detail.Value("x");
  details->Count(1);
  EXPECT_EQ(ListState(), "[{N: 1, FValue: \"x\"}] *[* * *]");
}

TEST_F(VoucherDetailSetTest, CountBelowZeroIsTheVectorsError) {
  Fill({1});
  EXPECT_EQ(ErrorOf([&] { details->Count(-1); }), "error 9");
  EXPECT_EQ(ListState(), "[{N: 1}] -");
}

TEST_F(VoucherDetailSetTest, RemoveTakesTheDetailAndTheChildFlagOfItsPosition) {
  Fill({1, 2, 3});
  for (auto& detail : *details) {
    if (detail.Properties()->Dictionary()->Value("N").As<Long>() == 3) detail.Value("x");
  }
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}, {N: 3, FValue: \"x\"}] +[- - *]");
  details->Remove(1);
  EXPECT_EQ(ListState(), "[{N: 2}, {N: 3, FValue: \"x\"}] *[- *]");
  details->Call("Remove", 2);
  EXPECT_EQ(ListState(), "[{N: 2}] *[-]");
}

TEST_F(VoucherDetailSetTest, RemoveWithoutAChildFlagSetsTheSharedFlag) {
  Fill({1, 2});
  details->Remove(2);
  EXPECT_EQ(ListState(), "[{N: 1}] *");
}

TEST_F(VoucherDetailSetTest, RemoveOutsideTheListIsTheVectorsError) {
  Fill({1});
  for (const Long index : {2, 0, -1}) {
    EXPECT_EQ(ErrorOf([&] { details->Remove(index); }), "error 9") << index;
  }
  EXPECT_EQ(ListState(), "[{N: 1}] -");
}

// ---- The walk ----

TEST_F(VoucherDetailSetTest, AWalkGivesEachDetailTheChildFlagOfItsPosition) {
  Fill({1, 2});
  const Ref<Enumerator> enumerator = details->NewEnum();
  Variant first, second, none = "left alone";
  ASSERT_TRUE(enumerator->Next(first));
  ASSERT_TRUE(enumerator->Next(second));
  EXPECT_FALSE(enumerator->Next(none));
  EXPECT_EQ(StateText(none), "\"left alone\"");
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}] -[- -]");
  second.As<VoucherDetail>()->Value("x");
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2, FValue: \"x\"}] +[- *]");
  EXPECT_FALSE(first.As<VoucherDetail>()->Modified());
  EXPECT_TRUE(second.As<VoucherDetail>()->Modified());
}

TEST_F(VoucherDetailSetTest, AWalkFillsHoles) {
  AppendHole();
  Fill({2});
  AppendHole();
  std::string states;
  for (auto& detail : *details) states += State(detail) + " ";
  EXPECT_EQ(states, "{} {N: 2} {} ");
  EXPECT_EQ(ListState(), "[{}, {N: 2}, {}] -[- - -]");
}

TEST_F(VoucherDetailSetTest, TheWalkIsReachedByName) {
  Fill({5});
  Variant element;
  const Ref<Object> enumerator = details->Call("NewEnum").As<Object>();
  EXPECT_EQ(StateText(enumerator->Call("Next", ByRef(element))), "True");
  EXPECT_EQ(State(*element.As<VoucherDetail>()), "{N: 5}");
  EXPECT_EQ(StateText(enumerator->Call("Next", ByRef(element))), "False");
}

TEST_F(VoucherDetailSetTest, AWalkOverAnEmptyListGivesNothing) {
  Variant element;
  EXPECT_FALSE(details->NewEnum()->Next(element));
  for (auto& detail : *details) ADD_FAILURE() << State(detail);
  EXPECT_EQ(ListState(), "[] -");
}

// ---- FindItem ----

class VoucherDetailSetFindTest : public VoucherDetailSetTest {
 protected:
  VoucherDetailSetFindTest() {
    rows->Append(Variant(Row({{"FItemClassID", Long{3}}, {"FItemClassNumber", "03"}})));
    rows->Append(Variant(Row({{"FItemClassID", Long{4}}, {"FItemClassNumber", "Dept"}})));
    rows->Append(Variant(
        Row({{"FItemClassID", Long{3}}, {"FItemClassNumber", "03"}, {"FValue", "second"}})));
    rows->Append(Variant(Row({{"FItemID", Long{9}}})));
  }

  // The position of what is found, 0 for Nothing.
  Long Found(const Variant& key) {
    const Ref<VoucherDetail> detail = details->FindItem(key);
    for (Long i = 1; detail && i <= rows->Count(); ++i) {
      if (rows->Item(i).As<Dictionary>() == detail->Properties()->Dictionary()) return i;
    }
    return 0;
  }
};

TEST_F(VoucherDetailSetFindTest, FindItemOfANumberLooksForTheRoundedId) {
  const std::pair<Variant, Long> cases[] = {
      {Long{3}, 1}, {Integer{4}, 2}, {Byte{4}, 2},  {Single{4}, 2}, {CDec(Variant("4.4")), 2},
      {3.7, 2},     {3.4, 1},        {3.5, 2},      {4.5, 2},       {2.5, 0},
      {Long{0}, 4}, {Long{5}, 0},    {Long{-3}, 0},
  };
  for (const auto& [key, position] : cases) {
    EXPECT_EQ(Found(key), position) << StateText(key);
  }
}

TEST_F(VoucherDetailSetFindTest, FindItemOfATextComparesTheNumberWithCase) {
  const std::pair<Variant, Long> cases[] = {
      {"03", 1}, {"Dept", 2}, {"dept", 0}, {"DEPT", 0}, {"3", 0}, {"4", 0}, {"Dept ", 0}, {"", 4},
  };
  for (const auto& [key, position] : cases) {
    EXPECT_EQ(Found(key), position) << StateText(key);
  }
}

TEST_F(VoucherDetailSetFindTest, FindItemOfAnyOtherTypeFindsNothing) {
  const Variant keys[] = {Variant(),   Null,    Missing,         true, false, Currency(3),
                          DateTime(3), Nothing, Variant(Row({}))};
  for (const Variant& key : keys) EXPECT_EQ(Found(key), 0) << StateText(key);
}

TEST_F(VoucherDetailSetFindTest, FindItemComparesANumberThatTheServerSentAsText) {
  rows->Append(Variant(Row({{"FItemClassID", "12"}, {"FItemClassNumber", Long{7}}})));
  EXPECT_EQ(Found(12), 5);
  EXPECT_EQ(Found("7"), 5);
}

TEST_F(VoucherDetailSetFindTest, FindItemStopsAtTheFirstHit) {
  AppendHole();
  details->FindItem("Dept");
  EXPECT_EQ(FlagText(*flag), "-[- -]");
  EXPECT_TRUE(rows->Item(5).IsNothing());
  details->FindItem("nowhere");
  EXPECT_EQ(FlagText(*flag), "-[- - - - -]");
  EXPECT_EQ(StateText(rows->Item(5)), "{}");
}

TEST_F(VoucherDetailSetFindTest, FindItemIsReachedByName) {
  EXPECT_EQ(StateText(details->Call("FindItem", 3).As<VoucherDetail>()->Get("ItemClassNumber")),
            "\"03\"");
  EXPECT_EQ(StateText(details->Call("FindItem", Named("ItemClassKey", "nowhere"))), "Nothing");
}

TEST_F(VoucherDetailSetTest, FindItemOnAnEmptyListIsNothing) {
  for (const Variant& key : {Variant(3), Variant(3e9), Variant("03"), Variant(Null)}) {
    EXPECT_EQ(details->FindItem(key), nullptr) << StateText(key);
  }
  EXPECT_EQ(ListState(), "[] -");
}

TEST_F(VoucherDetailSetTest, AWriteThroughAFoundDetailReachesTheLineAndLeavesTheSharedFlagClear) {
  const auto line = ViewOn<VoucherEntry>(Row({}));
  line->Details()->Count(2);
  line->Details()->Item(2)->ItemClassID(4);
  line->Properties()->ChangeFlag()->Reset();
  const auto set = line->Details();
  set->FindItem(4)->Value("x");
  EXPECT_TRUE(line->Modified());
  EXPECT_EQ(FlagText(*line->Properties()->ChangeFlag()), "+[+[- *]]");
  EXPECT_FALSE(set->Item(1)->Modified());
  EXPECT_FALSE(set->Item(2)->Modified()) << "the found detail itself, reached the other way";
  EXPECT_TRUE(set->FindItem(4)->Modified());
  set->Item(1)->Value("y");
  EXPECT_TRUE(set->Item(2)->Modified());
  EXPECT_EQ(FlagText(*line->Properties()->ChangeFlag()), "+[*[- *]]");
}

// ---- Unattached ----

TEST(VoucherDetailSet, RaisesNinetyOneUntilItIsAttached) {
  const auto set = Make<VoucherDetailSet>();
  EXPECT_EQ(ErrorOf([&] { set->Add(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Add(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->FindItem(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->NewEnum(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->begin(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Remove(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Count(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Count(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Item(1); }), "error 91");
}

}  // namespace
}  // namespace qdclgl
