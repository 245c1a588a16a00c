#include <gtest/gtest.h>

#include <limits>

#include "qdclgl/vouchers/voucher_entry.h"
#include "tests/support/columns.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::FlagText;
using testing::Opaque;
using testing::Row;
using testing::State;
using testing::StateText;
using testing::ViewOn;

class VoucherEntrySetTest : public ::testing::Test {
 protected:
  VoucherEntrySetTest() { entries->Attach(rows, flag); }

  // Lines with these values of the key "N".
  void Fill(std::initializer_list<Long> numbers) {
    for (const Long number : numbers) rows->Append(Variant(Row({{"N", number}})));
  }
  // A new list with the lines 1 to 3 and no flag.
  void Restart() {
    rows = Make<Vector>();
    flag = Make<ChangeFlag>();
    entries->Attach(rows, flag);
    Fill({1, 2, 3});
  }
  Ref<Dictionary> RowOf(Long index) const { return rows->Item(index).As<Dictionary>(); }
  // The list and the flags beside it.
  std::string ListState() const { return State(rows, flag); }

  Ref<Vector> rows = Make<Vector>();
  Ref<ChangeFlag> flag = Make<ChangeFlag>();
  Ref<VoucherEntrySet> entries = Make<VoucherEntrySet>();
};

TEST_F(VoucherEntrySetTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<VoucherEntrySet>(),
            "Add CreateNewEntry NewEnum Remove Count Item Modified");
  ASSERT_NE(VoucherEntrySet::Table().default_member(), nullptr);
  EXPECT_EQ(VoucherEntrySet::Table().default_member()->row.name, "Item");
}

TEST_F(VoucherEntrySetTest, ASetOfNoLinesIsUnmodified) {
  EXPECT_EQ(entries->Count(), 0);
  EXPECT_FALSE(entries->Modified());
  EXPECT_EQ(StateText(entries->Get("Count")) + StateText(entries->Get("Modified")), "0False");
  EXPECT_EQ(ListState(), "[] -");
}

// ---- Add ----

TEST_F(VoucherEntrySetTest, AddOnAnEmptySetMakesAnEmptyLine) {
  entries->Add();
  EXPECT_EQ(ListState(), "[{}] *");
  EXPECT_EQ(entries->Count(), 1);
  EXPECT_TRUE(entries->Modified());
  EXPECT_TRUE(entries->Item(1)->IsEmpty());
}

TEST_F(VoucherEntrySetTest, AddWithoutAPositionAppends) {
  Fill({1});
  entries->Add();
  entries->Add(Missing);
  entries->Call("Add");
  entries->Call("Add", Missing);
  EXPECT_EQ(ListState(), "[{N: 1}, {}, {}, {}, {}] *");
}

TEST_F(VoucherEntrySetTest, AddAtAPositionMovesTheLaterLinesUp) {
  const char* expected[] = {
      "[{}, {N: 1}, {N: 2}, {N: 3}] *",
      "[{N: 1}, {}, {N: 2}, {N: 3}] *",
      "[{N: 1}, {N: 2}, {}, {N: 3}] *",
      "[{N: 1}, {N: 2}, {N: 3}, {}] *",
  };
  for (Long index = 1; index <= 4; ++index) {
    const Variant kinds[] = {index, static_cast<Integer>(index), Decimal::FromInteger(index)};
    for (const Variant& kind : kinds) {
      Restart();
      entries->Add(kind);
      EXPECT_EQ(ListState(), expected[index - 1]) << StateText(kind);
      Restart();
      entries->Call("Add", Named("index", kind));
      EXPECT_EQ(ListState(), expected[index - 1]) << StateText(kind);
    }
  }
}

TEST_F(VoucherEntrySetTest, AddAtAPositionPutsANewLineInAndKeepsTheOthersAsTheyAre) {
  Fill({1, 2});
  const auto first = rows->Item(1).As<Dictionary>();
  entries->Add(1);
  EXPECT_EQ(rows->Item(2).As<Dictionary>(), first);
  entries->Item(1)->Explanation("new");
  EXPECT_EQ(StateText(Variant(rows)), "[{FExplanation: \"new\"}, {N: 1}, {N: 2}]");
}

TEST_F(VoucherEntrySetTest, AddRoundsADecimalPosition) {
  Fill({1, 2, 3});
  entries->Add(CDec(Variant("2.5")));
  EXPECT_EQ(ListState(), "[{N: 1}, {}, {N: 2}, {N: 3}] *");
}

TEST_F(VoucherEntrySetTest, AddRefusesAPositionThatIsNoWholeNumber) {
  Fill({1, 2, 3});
  const Variant indexes[] = {1.5,         1.0,     Single{1},        Byte{1},       Currency(1),
                             "1",         "text",  Variant(),        Null,          true,
                             DateTime(1), Nothing, Variant(Row({})), Make<Opaque>()};
  for (const Variant& index : indexes) {
    EXPECT_EQ(ErrorOf([&] { entries->Add(index); }), "error 13") << StateText(index);
    EXPECT_EQ(ErrorOf([&] { entries->Call("Add", index); }), "error 13") << StateText(index);
    EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}, {N: 3}] -");
  }
}

TEST_F(VoucherEntrySetTest, AddAtAPositionOfAnEmptySetIsTheVectorsError) {
  EXPECT_EQ(ErrorOf([&] { entries->Add(1); }), "error 9");
  EXPECT_EQ(ListState(), "[] -");
}

TEST_F(VoucherEntrySetTest, AddOutsideTheListIsTheVectorsErrorAndSetsNoFlag) {
  for (const Long index : {0, -1, 5, 100}) {
    Restart();
    EXPECT_EQ(ErrorOf([&] { entries->Add(index); }), "error 9") << index;
    EXPECT_EQ(FlagText(*flag), "-");
  }
}

TEST_F(VoucherEntrySetTest, AddLeavesTheFlagsAtTheirPositions) {
  Fill({1, 2, 3});
  entries->Item(3)->Explanation("x");
  const auto held = entries->Item(3);
  EXPECT_EQ(FlagText(*flag), "+[- - *]");
  entries->Add(1);
  EXPECT_EQ(ListState(), "[{}, {N: 1}, {N: 2}, {N: 3, FExplanation: \"x\"}] *[- - *]");
  EXPECT_TRUE(entries->Item(3)->Modified()) << "the flag of the line that stood there before";
  EXPECT_FALSE(entries->Item(4)->Modified());
  EXPECT_EQ(FlagText(*flag), "*[- - * -]");
  held->Explanation("y");
  EXPECT_EQ(ListState(), "[{}, {N: 1}, {N: 2}, {N: 3, FExplanation: \"y\"}] *[- - * -]");
}

// ---- CreateNewEntry ----

TEST_F(VoucherEntrySetTest, ANewEntryBelongsToNoList) {
  Fill({1});
  const auto entry = entries->CreateNewEntry();
  EXPECT_EQ(State(*entry), "{}");
  entry->Debit(5);
  EXPECT_EQ(State(*entry), "{FDC: 1, FAmount: 5@} modified flagged");
  EXPECT_EQ(ListState(), "[{N: 1}] -");
  const auto other = entries->Call("CreateNewEntry").As<VoucherEntry>();
  EXPECT_EQ(State(*other), "{}");
}

// ---- Remove ----

TEST_F(VoucherEntrySetTest, RemoveKeepsTheFlagsAlignedWithTheLines) {
  Fill({1, 2, 3, 4});
  entries->Item(2)->Explanation("b");
  entries->Item(4)->Explanation("d");
  EXPECT_EQ(FlagText(*flag), "+[- * - *]");
  entries->Remove(1);
  EXPECT_EQ(ListState(),
            "[{N: 2, FExplanation: \"b\"}, {N: 3}, {N: 4, FExplanation: \"d\"}] *[* - *]");
  entries->Call("Remove", 2);
  EXPECT_EQ(ListState(), "[{N: 2, FExplanation: \"b\"}, {N: 4, FExplanation: \"d\"}] *[* *]");
  entries->Remove(2);
  EXPECT_EQ(ListState(), "[{N: 2, FExplanation: \"b\"}] *[*]");
  entries->Remove(1);
  EXPECT_EQ(ListState(), "[] *");
}

TEST_F(VoucherEntrySetTest, RemoveOfALineWithoutAFlagMarksTheList) {
  Fill({1, 2});
  EXPECT_EQ(ErrorOf([&] { entries->Remove(2); }), "no error");
  EXPECT_EQ(ListState(), "[{N: 1}] *");
  EXPECT_TRUE(entries->Modified());
}

TEST_F(VoucherEntrySetTest, RemoveOutsideTheListIsTheVectorsErrorAndMarksNothing) {
  Fill({1, 2});
  entries->Item(2);
  for (const Long index : {3, 0, -1}) {
    EXPECT_EQ(ErrorOf([&] { entries->Remove(index); }), "error 9") << index;
  }
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}] -[- -]");
}

TEST_F(VoucherEntrySetTest, AViewOfARemovedLineStillWorksAndReachesNobody) {
  Fill({1, 2});
  const auto removed = entries->Item(1);
  entries->Remove(1);
  flag->Reset();
  removed->Explanation("late");
  EXPECT_EQ(State(*removed), "{N: 1, FExplanation: \"late\"} modified flagged");
  EXPECT_EQ(ListState(), "[{N: 2}] -");
}

// ---- Count ----

TEST_F(VoucherEntrySetTest, CountGrowsByEmptyLines) {
  Fill({1});
  entries->Count(3);
  EXPECT_EQ(ListState(), "[{N: 1}, {}, {}] *");
  entries->Item(2)->Explanation("x");
  EXPECT_EQ(ListState(), "[{N: 1}, {FExplanation: \"x\"}, {}] *[- *]")
      << "each new line has a row of its own";
}

TEST_F(VoucherEntrySetTest, CountOfZeroEmptiesTheList) {
  Fill({1, 2});
  entries->Let("Count", 0);
  EXPECT_EQ(ListState(), "[] *");
  EXPECT_EQ(entries->Count(), 0);
  EXPECT_TRUE(entries->Modified());
}

TEST_F(VoucherEntrySetTest, CountWrittenWithItsOwnValueMarksTheList) {
  Fill({1, 2});
  entries->Count(entries->Count());
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}] *");
  Restart();
  entries->Let("Count", "3");
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}, {N: 3}] *");
}

TEST_F(VoucherEntrySetTest, CountLeavesTheFlagsOfLinesThatItCutsOff) {
  Fill({1, 2, 3});
  entries->Item(3)->Explanation("x");
  entries->Count(1);
  EXPECT_EQ(ListState(), "[{N: 1}] *[- - *]");
  flag->Modified(false);
  EXPECT_TRUE(entries->Modified()) << "by the flag that stayed behind";
  entries->Count(3);
  flag->Modified(false);
  EXPECT_EQ(ListState(), "[{N: 1}, {}, {}] +[- - *]");
  EXPECT_TRUE(entries->Item(3)->Modified()) << "the new line finds the old flag";
}

TEST_F(VoucherEntrySetTest, CountBelowZeroIsTheVectorsErrorAndMarksNothing) {
  Fill({1});
  for (const Long count : {-1, -2, std::numeric_limits<Long>::min()}) {
    EXPECT_EQ(ErrorOf([&] { entries->Count(count); }), "error 9") << count;
  }
  EXPECT_EQ(ErrorOf([&] { entries->Let("Count", "many"); }), "error 13");
  EXPECT_EQ(ListState(), "[{N: 1}] -");
}

TEST_F(VoucherEntrySetTest, MoreLinesThanAnyDocumentHasAreRefusedBeforeTheListGrows) {
  Fill({1});
  for (const Long count : {1'000'001, 2'000'000'000, std::numeric_limits<Long>::max()}) {
    EXPECT_EQ(ErrorOf([&] { entries->Count(count); }), "error 6") << count;
  }
  EXPECT_EQ(ListState(), "[{N: 1}] -");
}

TEST_F(VoucherEntrySetTest, AFullListTakesNoLineMoreAndCanBeCut) {
  for (int i = 0; i < 1'000'001; ++i) rows->Append(Nothing);
  EXPECT_EQ(ErrorOf([&] { entries->Add(); }), "error 6");
  EXPECT_EQ(ErrorOf([&] { entries->Add(1); }), "error 6");
  EXPECT_EQ(entries->Count(), 1'000'001);
  entries->Count(1'000'001);
  entries->Count(2);
  EXPECT_EQ(entries->Count(), 2);
}

TEST_F(VoucherEntrySetTest, AddOutsideIsRefusedBeforeTheListGrows) {
  Fill({1, 2});
  for (const Long index : {0, -1, 4, 5, std::numeric_limits<Long>::max()}) {
    EXPECT_EQ(ErrorOf([&] { entries->Add(index); }), "error 9") << index;
  }
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}] -");
  entries->Add(3);
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}, {}] *");
}

// ---- Lines that end ----

TEST_F(VoucherEntrySetTest, WhatALineHoldsMayUseTheLinesWhenItEnds) {
  std::string seen;
  const auto fill = [&] {
    Restart();
    flag->At(3)->Modified(true);
    RowOf(2)->Put("End", Variant(Make<testing::AtEnd>([&] {
                    seen = ListState();
                    entries->Add();
                  })));
  };
  fill();
  entries->Remove(2);
  EXPECT_EQ(seen, "[{N: 1}, {N: 3}] *[- *]") << "lines and flags agree";
  EXPECT_EQ(entries->Count(), 3);
  fill();
  entries->Count(1);
  EXPECT_EQ(seen, "[{N: 1}] *[- - *]");
  EXPECT_EQ(entries->Count(), 2);
  fill();
  entries->Item(2, entries->CreateNewEntry());
  EXPECT_EQ(entries->Count(), 4);
}

TEST_F(VoucherEntrySetTest, WhatALineHoldsMayReleaseTheListWhenItEnds) {
  const auto fill = [&] {
    entries = Make<VoucherEntrySet>();
    Restart();
    RowOf(2)->Put("End", Variant(Make<testing::AtEnd>([&] {
                    entries = nullptr;
                    rows = nullptr;
                    flag = nullptr;
                  })));
  };
  fill();
  entries->Remove(2);
  EXPECT_EQ(entries, nullptr);
  fill();
  entries->Count(1);
  EXPECT_EQ(entries, nullptr);
  fill();
  entries->Item(2, entries->CreateNewEntry());
  EXPECT_EQ(entries, nullptr);
}

// ---- Item ----

TEST_F(VoucherEntrySetTest, ItemGivesTheLineAtAPositionAndMarksNothing) {
  Fill({1, 2});
  EXPECT_EQ(State(*entries->Item(2)), "{N: 2}");
  EXPECT_EQ(State(*entries->Get("Item", "1").As<VoucherEntry>()), "{N: 1}");
  EXPECT_FALSE(entries->Modified());
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}] -[- -]");
}

TEST_F(VoucherEntrySetTest, AWriteThroughItemSetsTheFlagOfThatLineAlone) {
  Fill({1, 2, 3});
  entries->Item(2)->Explanation("x");
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2, FExplanation: \"x\"}, {N: 3}] +[- *]");
  EXPECT_TRUE(entries->Modified());
  EXPECT_TRUE(entries->Item(2)->Modified());
  EXPECT_FALSE(entries->Item(1)->Modified());
  EXPECT_FALSE(entries->Item(3)->Modified());
}

TEST_F(VoucherEntrySetTest, ADetailWrittenDeepInALineReachesTheList) {
  Fill({1, 2});
  entries->Item(2)->Details()->Add();
  flag->Reset();
  const auto details = entries->Item(2)->Details();
  for (auto& detail : *details) detail.Value("x");
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2, _Details: [{FValue: \"x\"}]}] +[- +[+[*]]]");
}

TEST_F(VoucherEntrySetTest, ItemBehindTheEndIsNothingAndMarksNothing) {
  Fill({1});
  for (const Long index : {2, 3, 1000}) {
    EXPECT_EQ(entries->Item(index), nullptr) << index;
    EXPECT_EQ(StateText(entries->Get("Item", index)), "Nothing") << index;
  }
  EXPECT_EQ(ListState(), "[{N: 1}] -");
  entries->Count(0);
  EXPECT_EQ(entries->Item(1), nullptr);
  EXPECT_EQ(ListState(), "[] *");
}

TEST_F(VoucherEntrySetTest, ItemBelowOneIsTheVectorsError) {
  Fill({1});
  EXPECT_EQ(ErrorOf([&] { entries->Item(0); }), "error 9");
  EXPECT_EQ(ErrorOf([&] { entries->Item(-1); }), "error 9");
  EXPECT_EQ(ListState(), "[{N: 1}] -");
}

TEST_F(VoucherEntrySetTest, ItemFillsAHoleWithAnEmptyLineThatStays) {
  rows->Append(Nothing);
  Fill({2});
  EXPECT_EQ(State(*entries->Item(1)), "{}");
  EXPECT_EQ(ListState(), "[{}, {N: 2}] -[-]") << "filling a hole is no edit";
  entries->Item(1)->Explanation("x");
  EXPECT_EQ(ListState(), "[{FExplanation: \"x\"}, {N: 2}] +[*]");
}

TEST_F(VoucherEntrySetTest, ASlotThatHoldsNoRowRaisesThirteen) {
  rows->Append(Variant("text"));
  EXPECT_EQ(ErrorOf([&] { entries->Item(1); }), "error 13");
  EXPECT_EQ(ListState(), "[\"text\"] -");
}

TEST_F(VoucherEntrySetTest, TwoReadsOfItemAreTwoViewsOfOneLine) {
  Fill({1});
  const auto one = entries->Item(1);
  const auto other = entries->Item(1);
  EXPECT_NE(one, other);
  one->Debit(100);
  EXPECT_EQ(other->Debit(), Currency(100));
  EXPECT_TRUE(other->Modified());
}

// ---- Item set ----

TEST_F(VoucherEntrySetTest, ALinePutInSharesItsDataAndMarksItsPosition) {
  Fill({1, 2, 3});
  const auto entry = entries->CreateNewEntry();
  entry->Explanation("new");
  entries->Item(2, entry);
  EXPECT_EQ(rows->Item(2).As<Dictionary>(), entry->Properties()->Dictionary());
  EXPECT_EQ(ListState(), "[{N: 1}, {FExplanation: \"new\"}, {N: 3}] +[- *]");
  entries->Item(2)->Debit(7);
  EXPECT_EQ(entry->Debit(), Currency(7));
}

TEST_F(VoucherEntrySetTest, TheEntryPutInKeepsAFlagOfItsOwn) {
  Fill({1});
  const auto entry = entries->CreateNewEntry();
  entries->Item(1, entry);
  EXPECT_FALSE(entry->Modified());
  flag->Reset();
  entry->Explanation("late");
  EXPECT_EQ(ListState(), "[{FExplanation: \"late\"}] -[-]") << "data without a flag";
  EXPECT_TRUE(entry->Modified());
  EXPECT_FALSE(entries->Modified());
  entries->Item(1)->Explanation("seen");
  EXPECT_EQ(ListState(), "[{FExplanation: \"seen\"}] +[*]");
}

TEST_F(VoucherEntrySetTest, ALinePutInAtASecondPositionIsOneLineAtTwoPositions) {
  Fill({1, 2});
  entries->Item(2, entries->Item(1));
  entries->Item(2)->Explanation("both");
  EXPECT_EQ(ListState(), "[{N: 1, FExplanation: \"both\"}, {N: 1, FExplanation: \"both\"}] +[- *]");
}

TEST_F(VoucherEntrySetTest, ALineCanBePutIntoAHole) {
  rows->Append(Nothing);
  entries->Item(1, ViewOn<VoucherEntry>(Row({{"N", Long{9}}})));
  EXPECT_EQ(ListState(), "[{N: 9}] +[*]");
}

TEST_F(VoucherEntrySetTest, ItemIsSetByName) {
  Fill({1, 2});
  const auto entry = entries->CreateNewEntry();
  entries->Set("Item", 1, entry);
  EXPECT_EQ(rows->Item(1).As<Dictionary>(), entry->Properties()->Dictionary());
  EXPECT_EQ(ListState(), "[{}, {N: 2}] +[*]");
}

TEST_F(VoucherEntrySetTest, ItemSetRefusesWhatIsNoLine) {
  Fill({1});
  EXPECT_EQ(ErrorOf([&] { entries->Item(1, Nothing); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { entries->Set("Item", 1, Nothing); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { entries->Item(1, Make<VoucherEntry>()); }), "error 91");
  for (const Variant& value :
       {Variant(5), Variant("text"), Variant(Row({})), Variant(ViewOn<VoucherDetail>(Row({})))}) {
    EXPECT_EQ(ErrorOf([&] { entries->Set("Item", 1, value); }), "error 13") << StateText(value);
  }
  EXPECT_EQ(ListState(), "[{N: 1}] -");
}

TEST_F(VoucherEntrySetTest, ItemSetOutsideTheListIsTheVectorsErrorAndMarksNothing) {
  Fill({1});
  const auto entry = entries->CreateNewEntry();
  for (const Long index : {2, 0, -1}) {
    EXPECT_EQ(ErrorOf([&] { entries->Item(index, entry); }), "error 9") << index;
  }
  EXPECT_EQ(ListState(), "[{N: 1}] -");
}

// ---- The walk ----

TEST_F(VoucherEntrySetTest, AWalkGivesEachLineWithTheFlagOfItsPosition) {
  Fill({1, 2});
  const Ref<Enumerator> enumerator = entries->NewEnum();
  Variant first, second, none = "left alone";
  ASSERT_TRUE(enumerator->Next(first));
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2}] -[-]");
  ASSERT_TRUE(enumerator->Next(second));
  EXPECT_FALSE(enumerator->Next(none));
  EXPECT_EQ(StateText(none), "\"left alone\"");
  second.As<VoucherEntry>()->Explanation("x");
  EXPECT_EQ(ListState(), "[{N: 1}, {N: 2, FExplanation: \"x\"}] +[- *]");
  EXPECT_TRUE(entries->Item(2)->Modified());
  EXPECT_FALSE(first.As<VoucherEntry>()->Modified());
}

TEST_F(VoucherEntrySetTest, AWalkSkipsAndStartsAgain) {
  Fill({1, 2, 3});
  const Ref<Enumerator> enumerator = entries->NewEnum();
  Variant line;
  EXPECT_TRUE(enumerator->Skip(2));
  ASSERT_TRUE(enumerator->Next(line));
  EXPECT_EQ(State(*line.As<VoucherEntry>()), "{N: 3}");
  EXPECT_FALSE(enumerator->Skip(1));
  enumerator->Reset();
  ASSERT_TRUE(enumerator->Next(line));
  EXPECT_EQ(State(*line.As<VoucherEntry>()), "{N: 1}");
  EXPECT_FALSE(enumerator->Skip(3));
}

TEST_F(VoucherEntrySetTest, AWalkFillsHoles) {
  rows->Append(Nothing);
  Fill({2});
  std::string states;
  for (auto& line : *entries) states += State(line) + " ";
  EXPECT_EQ(states, "{} {N: 2} ");
  EXPECT_EQ(ListState(), "[{}, {N: 2}] -[- -]");
}

TEST_F(VoucherEntrySetTest, AWalkOverAnEmptySetGivesNothing) {
  Variant line;
  EXPECT_FALSE(entries->NewEnum()->Next(line));
  for (auto& entry : *entries) ADD_FAILURE() << State(entry);
  EXPECT_EQ(ListState(), "[] -");
}

TEST_F(VoucherEntrySetTest, ALoopWritesEachLineUnderItsOwnFlag) {
  Fill({1, 2, 3});
  Long position = 0;
  for (auto& line : *entries) {
    if (++position != 2) line.Debit(position);
  }
  EXPECT_EQ(ListState(),
            "[{N: 1, FDC: 1, FAmount: 1@}, {N: 2}, {N: 3, FDC: 1, FAmount: 3@}] +[* - *]");
}

TEST_F(VoucherEntrySetTest, TwoWalksDoNotDisturbEachOther) {
  Fill({1, 2});
  Long pairs = 0;
  for (auto& outer : *entries) {
    for (auto& inner : *entries) {
      EXPECT_EQ(&outer == &inner, false);
      ++pairs;
    }
  }
  EXPECT_EQ(pairs, 4);
}

TEST_F(VoucherEntrySetTest, TheWalkIsReachedByName) {
  Fill({5});
  const Ref<Object> enumerator = entries->Call("NewEnum").As<Object>();
  Variant line;
  EXPECT_EQ(StateText(enumerator->Call("Next", ByRef(line))), "True");
  EXPECT_EQ(State(*line.As<VoucherEntry>()), "{N: 5}");
  EXPECT_EQ(StateText(enumerator->Call("Next", ByRef(line))), "False");
}

TEST_F(VoucherEntrySetTest, AWalkBehindTheLastSixteenBitPositionOverflows) {
  entries->Count(32768);
  const Ref<Enumerator> enumerator = entries->NewEnum();
  ASSERT_TRUE(enumerator->Skip(32767));
  Variant line;
  EXPECT_EQ(ErrorOf([&] { enumerator->Next(line); }), "error 6");
}

// ---- Unattached ----

TEST(VoucherEntrySet, RaisesNinetyOneUntilItIsAttached) {
  const auto set = Make<VoucherEntrySet>();
  const auto line = ViewOn<VoucherEntry>(Row({}));
  EXPECT_EQ(ErrorOf([&] { set->Add(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Add(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->NewEnum(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->begin(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Remove(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Count(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Count(0); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Item(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Item(1, line); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Modified(); }), "error 91");
}

}  // namespace
}  // namespace qdclgl
