#include "qdclgl/frame/entities/change_flag.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"
#include "tests/support/view_state.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::StateText;

std::vector<Ref<ChangeFlag>> ChildrenOf(ChangeFlag& flag) {
  std::vector<Ref<ChangeFlag>> children;
  const Ref<Enumerator> enumerator = flag.NewEnum();
  Variant child;
  while (enumerator->Next(child)) children.push_back(child.As<ChangeFlag>());
  return children;
}

std::string TreeText(const Ref<ChangeFlag>& flag) { return testing::FlagText(*flag); }

Ref<ChangeFlag> FlagWithChildren(Long count) {
  auto flag = Make<ChangeFlag>();
  flag->Item(count);
  return flag;
}

TEST(ChangeFlag, BeginsUnmodifiedAndWithoutChildren) {
  const auto flag = Make<ChangeFlag>();
  EXPECT_EQ(TreeText(flag), "-");
  EXPECT_FALSE(flag->Modified());
  EXPECT_FALSE(flag->PrivateModified());
}

// ---- Item ----

TEST(ChangeFlag, ItemAddsChildrenUpToThePositionAskedFor) {
  const auto flag = Make<ChangeFlag>();
  const Ref<ChangeFlag> third = flag->Item(3);
  EXPECT_EQ(TreeText(flag), "-[- - -]");
  EXPECT_EQ(ChildrenOf(*flag)[2], third);
}

TEST(ChangeFlag, ItemAtAPositionThatExistsAddsNothing) {
  const auto flag = FlagWithChildren(3);
  const auto children = ChildrenOf(*flag);
  EXPECT_EQ(flag->Item(1), children[0]);
  EXPECT_EQ(flag->Item(2), children[1]);
  EXPECT_EQ(flag->Item(3), children[2]);
  EXPECT_EQ(TreeText(flag), "-[- - -]");
}

TEST(ChangeFlag, ItemBelowPositionOneGivesNothingAndAddsNothing) {
  const auto flag = FlagWithChildren(1);
  EXPECT_EQ(flag->Item(0), nullptr);
  EXPECT_EQ(flag->Item(-1), nullptr);
  EXPECT_EQ(flag->Item(0.5), nullptr);
  EXPECT_EQ(TreeText(flag), "-[-]");
}

TEST(ChangeFlag, ItemAtAPositionThatNoLongHoldsGivesNothing) {
  const auto flag = Make<ChangeFlag>();
  EXPECT_EQ(flag->Item(1e10), nullptr);
  EXPECT_EQ(TreeText(flag), "-");
}

TEST(ChangeFlag, EveryNumberTypeIsAPosition) {
  const auto flag = FlagWithChildren(2);
  const Ref<ChangeFlag> second = ChildrenOf(*flag)[1];
  EXPECT_EQ(flag->Item(Byte{2}), second);
  EXPECT_EQ(flag->Item(Integer{2}), second);
  EXPECT_EQ(flag->Item(Long{2}), second);
  EXPECT_EQ(flag->Item(2.0f), second);
  EXPECT_EQ(flag->Item(2.0), second);
  EXPECT_EQ(flag->Item(Decimal::FromInteger(2)), second);
  EXPECT_EQ(TreeText(flag), "-[- -]");
}

TEST(ChangeFlag, AFractionalPositionRoundsHalvesToEven) {
  const auto flag = Make<ChangeFlag>();
  EXPECT_EQ(flag->Item(2.5), flag->Item(2));
  EXPECT_EQ(TreeText(flag), "-[- -]");
  EXPECT_EQ(flag->Item(3.5), flag->Item(4));
  EXPECT_EQ(TreeText(flag), "-[- - - -]");
}

TEST(ChangeFlag, CurrencyAndBooleanAreTextKeys) {
  const auto flag = Make<ChangeFlag>();
  const Ref<ChangeFlag> by_amount = flag->Item(Currency(7));
  const Ref<ChangeFlag> by_truth = flag->Item(true);
  EXPECT_EQ(TreeText(flag), "-[- -]");
  EXPECT_EQ(flag->Item("7"), by_amount);
  EXPECT_EQ(flag->Item("True"), by_truth);
  EXPECT_EQ(TreeText(flag), "-[- -]");
}

TEST(ChangeFlag, ItemUnderATextKeyIsMadeOnFirstUse) {
  const auto flag = Make<ChangeFlag>();
  flag->Item("_Entries");
  EXPECT_EQ(TreeText(flag), "-[-]");
  flag->Item("_Details");
  EXPECT_EQ(TreeText(flag), "-[- -]");
}

TEST(ChangeFlag, TheSameTextKeyGivesTheSameChild) {
  const auto flag = Make<ChangeFlag>();
  const Ref<ChangeFlag> child = flag->Item("x");
  EXPECT_NE(child, nullptr);
  EXPECT_EQ(flag->Item("x"), child);
  EXPECT_EQ(TreeText(flag), "-[-]");
}

TEST(ChangeFlag, TextKeysIgnoreCase) {
  const auto flag = Make<ChangeFlag>();
  const Ref<ChangeFlag> child = flag->Item("_Entries");
  EXPECT_EQ(flag->Item("_ENTRIES"), child);
  EXPECT_EQ(flag->Item("_entries"), child);
  EXPECT_EQ(TreeText(flag), "-[-]");
}

TEST(ChangeFlag, AnEmptyTextIsAKeyToo) {
  const auto flag = Make<ChangeFlag>();
  const Ref<ChangeFlag> child = flag->Item("");
  EXPECT_EQ(flag->Item(""), child);
  EXPECT_EQ(TreeText(flag), "-[-]");
}

TEST(ChangeFlag, ADigitAsTextIsNotAPosition) {
  const auto flag = FlagWithChildren(2);
  const Ref<ChangeFlag> child = flag->Item("1");
  EXPECT_EQ(TreeText(flag), "-[- - -]");
  EXPECT_NE(child, flag->Item(1));
  EXPECT_EQ(child, flag->Item(3));
}

TEST(ChangeFlag, AChildUnderATextKeyHasAPositionToo) {
  const auto flag = Make<ChangeFlag>();
  const Ref<ChangeFlag> child = flag->Item("x");
  EXPECT_EQ(flag->Item(1), child);
  EXPECT_EQ(TreeText(flag), "-[-]");
}

// ---- Insert ----

TEST(ChangeFlag, InsertBehindTheLastChildAddsNothing) {
  const auto flag = FlagWithChildren(2);
  flag->Insert(5);
  EXPECT_EQ(TreeText(flag), "-[- -]");
  flag->Insert(3);
  EXPECT_EQ(TreeText(flag), "-[- -]");
}

TEST(ChangeFlag, InsertWithoutChildrenAddsNothing) {
  const auto flag = Make<ChangeFlag>();
  flag->Insert(1);
  EXPECT_EQ(TreeText(flag), "-");
}

TEST(ChangeFlag, InsertBelowPositionOneIsOutOfRange) {
  const auto flag = FlagWithChildren(2);
  EXPECT_EQ(ErrorOf([&] { flag->Insert(0); }), "error 9");
  EXPECT_EQ(ErrorOf([&] { flag->Insert(-1); }), "error 9");
  EXPECT_EQ(ErrorOf([] { Make<ChangeFlag>()->Insert(0); }), "error 9");
  EXPECT_EQ(TreeText(flag), "-[- -]");
}

TEST(ChangeFlag, InsertAtTheLastPositionAddsAChildBeforeTheLastOne) {
  const auto flag = FlagWithChildren(2);
  flag->Item(1)->Modified(true);
  flag->Item(2)->Modified(true);
  flag->Insert(2);
  EXPECT_EQ(TreeText(flag), "+[* - *]");
}

TEST(ChangeFlag, InsertKeepsTheOtherChildrenAtTheirRows) {
  const auto flag = FlagWithChildren(3);
  const auto before = ChildrenOf(*flag);
  flag->Insert(1);
  const auto after = ChildrenOf(*flag);
  ASSERT_EQ(after.size(), 4u);
  EXPECT_EQ(after[1], before[0]);
  EXPECT_EQ(after[2], before[1]);
  EXPECT_EQ(after[3], before[2]);
}

TEST(ChangeFlag, InsertLeavesTheNodeUnmodified) {
  const auto flag = FlagWithChildren(2);
  flag->Insert(1);
  EXPECT_EQ(TreeText(flag), "-[- - -]");
}

TEST(ChangeFlag, AnInsertedChildIsKnownUnderTheKeyOfItsPosition) {
  const auto flag = FlagWithChildren(2);
  flag->Insert(2);
  EXPECT_EQ(flag->Item("2"), flag->Item(2));
  EXPECT_EQ(TreeText(flag), "-[- - -]");
}

TEST(ChangeFlag, InsertAtAPositionWhoseKeyIsInUseIsADuplicateKey) {
  const auto flag = FlagWithChildren(2);
  flag->Insert(2);
  EXPECT_EQ(ErrorOf([&] { flag->Insert(2); }), "error 457");
  EXPECT_EQ(TreeText(flag), "-[- - -]");
}

TEST(ChangeFlag, InsertAtAPositionThatATextKeyNamesIsADuplicateKey) {
  const auto flag = FlagWithChildren(2);
  flag->Item("2")->Modified(true);
  EXPECT_EQ(ErrorOf([&] { flag->Insert(2); }), "error 457");
  EXPECT_EQ(TreeText(flag), "+[- - *]");
}

TEST(ChangeFlag, InsertGoesAgainOnceTheChildWithItsKeyIsRemoved) {
  const auto flag = FlagWithChildren(2);
  flag->Insert(2);
  flag->Remove(2);
  flag->Reset();
  flag->Insert(2);
  EXPECT_EQ(TreeText(flag), "-[- - -]");
}

// ---- Remove ----

TEST(ChangeFlag, RemoveByPositionMovesTheLaterChildrenDown) {
  const auto flag = FlagWithChildren(4);
  const auto before = ChildrenOf(*flag);
  flag->Remove(2);
  const auto after = ChildrenOf(*flag);
  ASSERT_EQ(after.size(), 3u);
  EXPECT_EQ(after[0], before[0]);
  EXPECT_EQ(after[1], before[2]);
  EXPECT_EQ(after[2], before[3]);
}

TEST(ChangeFlag, RemoveSetsTheNodeAlone) {
  const auto flag = FlagWithChildren(2);
  flag->Remove(1);
  EXPECT_EQ(TreeText(flag), "*[-]");
}

TEST(ChangeFlag, RemoveUnderATextKeyIgnoresCase) {
  const auto flag = Make<ChangeFlag>();
  flag->Item("_Entries")->Modified(true);
  flag->Item("_Details");
  flag->Remove("_ENTRIES");
  EXPECT_EQ(TreeText(flag), "*[-]");
}

TEST(ChangeFlag, AKeyIsFreeAgainOnceItsChildIsRemoved) {
  const auto flag = Make<ChangeFlag>();
  const Ref<ChangeFlag> former = flag->Item("x");
  flag->Remove("x");
  EXPECT_NE(flag->Item("x"), former);
  EXPECT_EQ(TreeText(flag), "*[-]");
}

TEST(ChangeFlag, RemoveByPositionFreesTheKeyOfThatChild) {
  const auto flag = Make<ChangeFlag>();
  const Ref<ChangeFlag> former = flag->Item("x");
  flag->Remove(1);
  EXPECT_NE(flag->Item("x"), former);
  EXPECT_EQ(TreeText(flag), "*[-]");
}

TEST(ChangeFlag, RemoveOfAnAbsentChildIsSilentAndSetsTheFlag) {
  const std::vector<Variant> absent = {0, -1, 3, 1e10, "x", "1", Currency(1), Nothing, Missing};
  for (const Variant& key : absent) {
    SCOPED_TRACE(StateText(key));
    const auto flag = FlagWithChildren(2);
    EXPECT_EQ(ErrorOf([&] { flag->Remove(key); }), "no error");
    EXPECT_EQ(TreeText(flag), "*[- -]");
  }
}

TEST(ChangeFlag, RemoveFromANodeWithoutChildrenSetsTheFlag) {
  const auto flag = Make<ChangeFlag>();
  flag->Remove(1);
  EXPECT_EQ(TreeText(flag), "*");
}

TEST(ChangeFlag, ARemovedChildNoLongerCounts) {
  const auto flag = FlagWithChildren(1);
  flag->Item(1)->Modified(true);
  flag->Remove(1);
  flag->Modified(false);
  EXPECT_FALSE(flag->Modified());
}

TEST(ChangeFlag, ARemovedChildLivesOnWithItsHolder) {
  const auto flag = FlagWithChildren(1);
  const Ref<ChangeFlag> child = flag->Item(1);
  flag->Remove(1);
  child->Item(2)->Modified(true);
  EXPECT_EQ(TreeText(child), "+[- *]");
  EXPECT_EQ(TreeText(flag), "*");
}

// ---- Modified, PrivateModified, Reset ----

TEST(ChangeFlag, AModifiedChildMakesTheRootModifiedButNotItsOwnFlag) {
  const auto root = Make<ChangeFlag>();
  root->Item("_Entries")->Modified(true);
  EXPECT_TRUE(root->Modified());
  EXPECT_FALSE(root->PrivateModified());
}

TEST(ChangeFlag, AModifiedGrandchildMakesAllAboveItModified) {
  const auto root = Make<ChangeFlag>();
  root->Item("_Entries")->Item(2)->Item("_Details")->Item(1)->Modified(true);
  EXPECT_EQ(TreeText(root), "+[+[- +[+[*]]]]");
}

TEST(ChangeFlag, AModifiedParentLeavesItsChildrenUnmodified) {
  const auto root = FlagWithChildren(2);
  root->Modified(true);
  EXPECT_EQ(TreeText(root), "*[- -]");
}

TEST(ChangeFlag, ClearingTheRootLeavesAModifiedChild) {
  const auto root = FlagWithChildren(1);
  root->Item(1)->Modified(true);
  root->Modified(true);
  root->Modified(false);
  EXPECT_TRUE(root->Modified());
  EXPECT_EQ(TreeText(root), "+[*]");
}

TEST(ChangeFlag, ResetClearsTheTreeToTheBottomAndKeepsItsNodes) {
  const auto root = Make<ChangeFlag>();
  root->Modified(true);
  root->Item("_Entries")->Modified(true);
  root->Item("_Entries")->Item(3)->Modified(true);
  root->Item("_Entries")->Item(3)->Item("_Details")->Item(2)->Modified(true);
  ASSERT_EQ(TreeText(root), "*[*[- - *[+[- *]]]]");
  root->Reset();
  EXPECT_EQ(TreeText(root), "-[-[- - -[-[- -]]]]");
}

TEST(ChangeFlag, ResetLeavesWhatStandsAboveIt) {
  const auto root = FlagWithChildren(2);
  root->Modified(true);
  root->Item(1)->Modified(true);
  root->Item(2)->Modified(true);
  root->Item(1)->Reset();
  EXPECT_EQ(TreeText(root), "*[- *]");
}

// ---- NewEnum ----

TEST(ChangeFlag, AnEnumeratorGivesTheChildrenInTheirOrder) {
  const auto flag = FlagWithChildren(2);
  const Ref<ChangeFlag> named = flag->Item("x");
  flag->Insert(1);
  const auto children = ChildrenOf(*flag);
  ASSERT_EQ(children.size(), 4u);
  EXPECT_EQ(children[0], flag->Item(1));
  EXPECT_EQ(children[1], flag->Item(2));
  EXPECT_EQ(children[2], flag->Item(3));
  EXPECT_EQ(children[3], named);
}

TEST(ChangeFlag, AnEnumeratorOverNoChildrenIsAtItsEnd) {
  const auto flag = Make<ChangeFlag>();
  Variant child = "untouched";
  EXPECT_FALSE(flag->NewEnum()->Next(child));
  EXPECT_EQ(StateText(child), "\"untouched\"");
}

TEST(ChangeFlag, AnEnumeratorMeetsChildrenThatAreAddedOnTheWay) {
  const auto flag = FlagWithChildren(1);
  const Ref<Enumerator> enumerator = flag->NewEnum();
  Variant child;
  EXPECT_TRUE(enumerator->Next(child));
  EXPECT_FALSE(enumerator->Next(child));
  const Ref<ChangeFlag> added = flag->Item("x");
  ASSERT_TRUE(enumerator->Next(child));
  EXPECT_EQ(child.As<ChangeFlag>(), added);
}

TEST(ChangeFlag, AnEnumeratorSkipsAndResets) {
  const auto flag = FlagWithChildren(3);
  const Ref<Enumerator> enumerator = flag->NewEnum();
  Variant child;
  EXPECT_TRUE(enumerator->Skip(2));
  ASSERT_TRUE(enumerator->Next(child));
  EXPECT_EQ(child.As<ChangeFlag>(), flag->Item(3));
  EXPECT_FALSE(enumerator->Skip(1));
  enumerator->Reset();
  ASSERT_TRUE(enumerator->Next(child));
  EXPECT_EQ(child.As<ChangeFlag>(), flag->Item(1));
}

}  // namespace
}  // namespace qdclgl
