#include "qdclgl/frame/containers/vector.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::Row;
using testing::StateText;

constexpr Long kMost = std::numeric_limits<Long>::max();
constexpr Long kLeast = std::numeric_limits<Long>::min();

Ref<Vector> List(std::initializer_list<Variant> elements) {
  auto list = Make<Vector>();
  for (const Variant& element : elements) list->Append(element);
  return list;
}

std::string State(const Ref<Vector>& list) { return StateText(Variant(list)); }

TEST(Vector, IsBornEmptyWithTheLowerBoundOne) {
  const auto list = Make<Vector>();
  EXPECT_EQ(State(list), "[]");
  EXPECT_EQ(list->Count(), 0);
  EXPECT_EQ(list->LowerBound(), 1);
  EXPECT_EQ(list->UpperBound(), 0);
  EXPECT_FALSE(list->touched());
}

TEST(Vector, AppendAddsBehindTheLastElement) {
  const auto list = List({Long{1}, "two", Null, Nothing, Variant()});
  EXPECT_EQ(State(list), "[1, \"two\", Null, Nothing, Empty]");
  EXPECT_EQ(list->Count(), 5);
  EXPECT_EQ(list->UpperBound(), 5);
}

TEST(Vector, ItemReadsAndWritesAtAnIndex) {
  const auto list = List({Long{1}, Long{2}, Long{3}});
  EXPECT_EQ(StateText(list->Item(1)), "1");
  EXPECT_EQ(StateText(list->Item(3)), "3");
  list->Item(2, "two");
  EXPECT_EQ(State(list), "[1, \"two\", 3]");
}

TEST(Vector, AnIndexOutsideRaisesError) {
  const auto list = List({Long{1}, Long{2}});
  for (const Long index : {0, 3, -1, kMost, kLeast}) {
    EXPECT_EQ(ErrorOf([&] { list->Item(index); }), "error 9") << index;
    EXPECT_EQ(ErrorOf([&] { list->Item(index, Long{5}); }), "error 9") << index;
    EXPECT_EQ(ErrorOf([&] { list->Remove(index); }), "error 9") << index;
  }
  for (const Long index : {0, 4, -1, kMost, kLeast}) {
    EXPECT_EQ(ErrorOf([&] { list->Insert(index, Long{5}); }), "error 9") << index;
  }
  EXPECT_EQ(ErrorOf([] { Make<Vector>()->Item(1); }), "error 9");
  EXPECT_EQ(State(list), "[1, 2]");
}

TEST(Vector, TheLowerBoundMovesTheIndexes) {
  const auto list = List({Long{10}, Long{11}});
  list->LowerBound(0);
  EXPECT_EQ(State(list), "[0: 10, 11]");
  EXPECT_EQ(list->UpperBound(), 1);
  EXPECT_EQ(StateText(list->Item(0)), "10");
  EXPECT_EQ(ErrorOf([&] { list->Item(2); }), "error 9");
  list->LowerBound(-5);
  EXPECT_EQ(StateText(list->Item(-4)), "11");
  EXPECT_EQ(list->UpperBound(), -4);
  list->Insert(-3, Long{12});
  EXPECT_EQ(State(list), "[-5: 10, 11, 12]");
}

TEST(Vector, BoundsAtTheEndsOfTheRange) {
  const auto list = List({Long{10}, Long{11}});
  list->LowerBound(kMost - 1);
  EXPECT_EQ(list->UpperBound(), kMost);
  EXPECT_EQ(StateText(list->Item(kMost)), "11");
  EXPECT_EQ(ErrorOf([&] { list->Item(kLeast); }), "error 9");
  list->LowerBound(kMost);
  EXPECT_EQ(ErrorOf([&] { list->UpperBound(); }), "error 6");
  list->LowerBound(kLeast);
  EXPECT_EQ(list->UpperBound(), kLeast + 1);
  list->Remove(kLeast, 2);
  EXPECT_EQ(ErrorOf([&] { list->UpperBound(); }), "error 6");
}

TEST(Vector, InsertPutsAnElementBeforeAnIndex) {
  const auto list = List({Long{1}, Long{2}});
  list->Insert(1, "first");
  list->Insert(3, "middle");
  list->Insert(5, "last");
  EXPECT_EQ(State(list), "[\"first\", 1, \"middle\", 2, \"last\"]");
  const auto empty = Make<Vector>();
  empty->Insert(1, Long{1});
  EXPECT_EQ(State(empty), "[1]");
}

TEST(Vector, RemoveTakesElementsFromAnIndexOn) {
  const auto list = List({Long{1}, Long{2}, Long{3}, Long{4}, Long{5}});
  list->Remove(2);
  EXPECT_EQ(State(list), "[1, 3, 4, 5]");
  list->Remove(2, 2);
  EXPECT_EQ(State(list), "[1, 5]");
  list->Remove(1, 0);
  EXPECT_EQ(State(list), "[1, 5]");
  list->Remove(1, 2);
  EXPECT_EQ(State(list), "[]");
}

TEST(Vector, RemoveOfElementsThatAreNotAllThereRemovesNothing) {
  const auto list = List({Long{1}, Long{2}, Long{3}});
  EXPECT_EQ(ErrorOf([&] { list->Remove(2, 3); }), "error 9");
  EXPECT_EQ(ErrorOf([&] { list->Remove(1, 4); }), "error 9");
  EXPECT_EQ(ErrorOf([&] { list->Remove(1, kMost); }), "error 9");
  EXPECT_EQ(ErrorOf([&] { list->Remove(1, -1); }), "error 9");
  EXPECT_EQ(ErrorOf([&] { list->Remove(4, 1); }), "error 9");
  EXPECT_EQ(State(list), "[1, 2, 3]");
}

TEST(Vector, ReleasesWhatItNoLongerHolds) {
  const auto object = Make<Opaque>();
  {
    const auto list = List({object, object, object});
    EXPECT_EQ(object->holders(), 4);
    list->Remove(1);
    EXPECT_EQ(object->holders(), 3);
    list->Item(1, Long{1});
    EXPECT_EQ(object->holders(), 2);
  }
  EXPECT_EQ(object->holders(), 1);
}

TEST(Vector, RemembersThatItWasEdited) {
  const auto appended = List({Long{1}});
  EXPECT_TRUE(appended->touched());
  appended->ClearTouched();
  EXPECT_FALSE(appended->TouchedWithin());
  appended->Item(1, Long{1});
  EXPECT_TRUE(appended->TouchedWithin());
  appended->ClearTouched();
  EXPECT_EQ(ErrorOf([&] { appended->Item(2, Long{1}); }), "error 9");
  EXPECT_FALSE(appended->TouchedWithin());
}

TEST(Vector, KnowsOfEditsInItsRows) {
  const auto row = Row({{"x", Long{1}}});
  const auto list = List({Variant(row)});
  list->ClearTouched();
  row->Value("x", Long{2});
  EXPECT_FALSE(list->touched());
  EXPECT_TRUE(list->TouchedWithin());
  list->ClearTouched();
  EXPECT_FALSE(list->TouchedWithin());
}

TEST(VectorClone, IsShallowAndKeepsTheLowerBound) {
  const auto row = Row({{"x", Long{1}}});
  const auto list = List({Variant(row), Nothing, "a text of more than fourteen bytes"});
  list->LowerBound(0);
  const auto clone = list->Clone();
  EXPECT_EQ(State(clone), "[0: {x: 1}, Nothing, \"a text of more than fourteen bytes\"]");
  EXPECT_EQ(clone->Item(0).As<Dictionary>(), row);
  EXPECT_FALSE(clone->touched());
}

TEST(VectorClone, ChangesOnEitherSideStayThere) {
  const auto list = List({Long{1}, Long{2}});
  const auto clone = list->Clone();
  list->Append(Long{3});
  clone->Item(1, "one");
  clone->LowerBound(5);
  EXPECT_EQ(State(list), "[1, 2, 3]");
  EXPECT_EQ(State(clone), "[5: \"one\", 2]");
  EXPECT_EQ(State(Make<Vector>()->Clone()), "[]");
}

TEST(Vector, AWalkGoesByPlaceWhateverHappensMeanwhile) {
  const auto list = List({Long{1}, Long{2}, Long{3}, Long{4}});
  list->LowerBound(7);
  const auto walk = list->NewEnum();
  Variant element;
  std::string passed;
  const auto pass = [&] { passed += walk->Next(element) ? StateText(element) : "end"; };
  pass();
  list->Remove(7);  // what was passed: 2 moves to its place
  pass();
  list->Append(Long{5});
  pass();
  pass();
  pass();
  EXPECT_EQ(passed, "1345end");
  walk->Reset();
  EXPECT_TRUE(walk->Skip(3));
  list->Remove(7, 4);
  EXPECT_FALSE(walk->Skip(1));
  EXPECT_FALSE(walk->Next(element));
  list->Append(Long{6});
  walk->Reset();
  EXPECT_TRUE(walk->Next(element));
  EXPECT_EQ(StateText(element), "6");
}

TEST(Vector, AWalkKeepsItsVectorAlive) {
  auto list = List({Long{1}});
  const auto walk = list->NewEnum();
  list = nullptr;
  Variant element;
  EXPECT_TRUE(walk->Next(element));
  EXPECT_EQ(StateText(element), "1");
}

TEST(VectorLateBound, EveryMemberAnswersToItsName) {
  const auto list = Make<Vector>();
  list->Call("Append", Long{1});
  list->Call("append", Make<Opaque>());
  list->Call("Insert", Long{1}, "first");
  list->Call("Insert", Named("Item", "last"), Named("Index", Long{4}));
  EXPECT_EQ(State(list), "[\"first\", 1, <Opaque>, \"last\"]");
  list->Let("Item", Long{2}, Long{20});
  list->Set("Item", Long{3}, Nothing);
  list->Call("Remove", Long{1});
  EXPECT_EQ(State(list), "[20, Nothing, \"last\"]");
  EXPECT_EQ(StateText(list->Get("Item", Long{1})), "20");
  EXPECT_EQ(StateText(list->Get("Count")), "3");
  list->Let("LowerBound", Long{0});
  EXPECT_EQ(StateText(list->Get("LowerBound")), "0");
  EXPECT_EQ(StateText(list->Get("UpperBound")), "2");
  list->Call("Remove", Long{0}, Long{2});
  EXPECT_EQ(StateText(list->Call("Clone")), "[0: \"last\"]");
  EXPECT_EQ(ErrorOf([&] { list->Let("UpperBound", Long{1}); }),
            "error 438 (Vector): The member UpperBound can't be used this way.");
  EXPECT_EQ(ErrorOf([&] { list->Get("Item", Long{7}); }), "error 9");
}

}  // namespace
}  // namespace qdclgl
