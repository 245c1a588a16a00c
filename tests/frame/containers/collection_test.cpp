#include "qdclgl/frame/containers/collection.h"

#include <gtest/gtest.h>

#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::StateText;

// The elements in order, as an enumerator gives them.
std::string Elements(const Ref<Collection>& collection) {
  std::string text;
  const auto enumerator = collection->NewEnum();
  for (Variant item; enumerator->Next(item);) text += (text.empty() ? "" : ", ") + StateText(item);
  return text;
}

Ref<Collection> Numbered() {
  auto collection = Make<Collection>();
  collection->Add(Long{1}, "one");
  collection->Add(Long{2}, "two");
  collection->Add(Long{3});
  return collection;
}

TEST(Collection, IsBornEmpty) {
  const auto collection = Make<Collection>();
  EXPECT_EQ(collection->Count(), 0);
  EXPECT_EQ(Elements(collection), "");
}

TEST(Collection, GivesElementsByPositionAndByKey) {
  const auto collection = Numbered();
  EXPECT_EQ(collection->Count(), 3);
  EXPECT_EQ(StateText(collection->Item(Long{1})), "1");
  EXPECT_EQ(StateText(collection->Item(Long{3})), "3");
  EXPECT_EQ(StateText(collection->Item("two")), "2");
  EXPECT_EQ(StateText(collection->Item(2.0)), "2");
  EXPECT_EQ(StateText(collection->Item(Integer{2})), "2");
}

TEST(Collection, KeysIgnoreCase) {
  const auto collection = Numbered();
  collection->Add(Long{4}, "Größe");
  EXPECT_EQ(StateText(collection->Item("TWO")), "2");
  EXPECT_EQ(StateText(collection->Item("GRÖßE")), "4");
  EXPECT_EQ(ErrorOf([&] { collection->Add(Long{5}, "ONE"); }), "error 457");
  EXPECT_EQ(ErrorOf([&] { collection->Add(Long{5}, "größe"); }), "error 457");
  EXPECT_EQ(Elements(collection), "1, 2, 3, 4");
}

TEST(Collection, ATextThatLooksLikeANumberIsAKey) {
  const auto collection = Make<Collection>();
  collection->Add("first", "2");
  collection->Add("second", "1");
  EXPECT_EQ(StateText(collection->Item("2")), "\"first\"");
  EXPECT_EQ(StateText(collection->Item(Long{2})), "\"second\"");
}

TEST(Collection, AnUnknownKeyOrPositionRaisesError) {
  const auto collection = Numbered();
  for (const Long position : {0, 4, -1}) {
    EXPECT_EQ(ErrorOf([&] { collection->Item(position); }), "error 9") << position;
    EXPECT_EQ(ErrorOf([&] { collection->Remove(position); }), "error 9") << position;
    EXPECT_EQ(ErrorOf([&] { collection->Add(Long{5}, Missing, position); }), "error 9") << position;
  }
  EXPECT_EQ(ErrorOf([&] { collection->Item("three"); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { collection->Remove("three"); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { collection->Add(Long{5}, Missing, "three"); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { collection->Item(Null); }), "error 13");
  EXPECT_EQ(Elements(collection), "1, 2, 3");
}

TEST(Collection, ARefusedAdditionLeavesItAsItWas) {
  const auto collection = Numbered();
  EXPECT_EQ(ErrorOf([&] { collection->Add(Long{5}, "new", Long{9}); }), "error 9");
  collection->Add(Long{6}, "new");
  EXPECT_EQ(StateText(collection->Item("new")), "6");
}

TEST(Collection, AddsBeforeAPositionOrKey) {
  const auto collection = Numbered();
  collection->Add("a", "ka", Long{1});
  collection->Add("b", Missing, "two");
  collection->Add("c", "kc", Long{5});
  EXPECT_EQ(Elements(collection), "\"a\", 1, \"b\", 2, \"c\", 3");
  EXPECT_EQ(StateText(collection->Item("two")), "2");
  EXPECT_EQ(StateText(collection->Item("kc")), "\"c\"");
}

TEST(Collection, RemovesByPositionAndByKey) {
  const auto collection = Numbered();
  collection->Remove("ONE");
  EXPECT_EQ(Elements(collection), "2, 3");
  EXPECT_EQ(ErrorOf([&] { collection->Item("one"); }), "error 5");
  collection->Remove(Long{2});
  EXPECT_EQ(Elements(collection), "2");
  EXPECT_EQ(StateText(collection->Item("two")), "2");
  collection->Remove(Long{1});
  EXPECT_EQ(ErrorOf([&] { collection->Item("two"); }), "error 5");
  EXPECT_EQ(collection->Count(), 0);
}

TEST(Collection, AKeyIsFreeAgainAfterItsElementWasRemoved) {
  const auto collection = Numbered();
  collection->Remove(Long{1});
  collection->Add("again", "one");
  EXPECT_EQ(StateText(collection->Item("one")), "\"again\"");
}

TEST(Collection, RemovingAnElementWithoutAKeyLeavesTheEmptyKeyAlone) {
  const auto collection = Make<Collection>();
  collection->Add("keyed", "");
  collection->Add("unkeyed");
  collection->Remove(Long{2});
  EXPECT_EQ(StateText(collection->Item("")), "\"keyed\"");
}

TEST(Collection, ReleasesWhatItNoLongerHolds) {
  const auto object = Make<Opaque>();
  {
    const auto collection = Make<Collection>();
    collection->Add(object);
    collection->Add(object, "key");
    EXPECT_EQ(object->holders(), 3);
    collection->Remove("key");
    EXPECT_EQ(object->holders(), 2);
    EXPECT_EQ(ErrorOf([&] { collection->Add(object, Null); }), "error 13");
    EXPECT_EQ(object->holders(), 2);
  }
  EXPECT_EQ(object->holders(), 1);
}

TEST(Collection, AnEnumeratorMeetsElementsThatAreAddedOnTheWay) {
  const auto collection = Numbered();
  const auto enumerator = collection->NewEnum();
  Variant item;
  EXPECT_TRUE(enumerator->Skip(2));
  collection->Add(Long{4});
  EXPECT_TRUE(enumerator->Next(item));
  EXPECT_TRUE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "4");
  EXPECT_FALSE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "4");
  enumerator->Reset();
  EXPECT_TRUE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "1");
}

TEST(Collection, AnEnumeratorKeepsItsCollectionAlive) {
  auto collection = Numbered();
  const auto enumerator = collection->NewEnum();
  collection = nullptr;
  Variant item;
  EXPECT_TRUE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "1");
}

TEST(CollectionLateBound, EveryMemberAnswersToItsName) {
  const auto collection = Make<Collection>();
  collection->Call("Add", Long{1}, "one");
  collection->Call("Add", Named("Before", Long{1}), Named("Item", Long{2}));
  collection->Call("add", Long{3}, Missing, "one");
  EXPECT_EQ(Elements(collection), "2, 3, 1");
  EXPECT_EQ(StateText(collection->Get("Count")), "3");
  EXPECT_EQ(StateText(collection->Get("Item", "ONE")), "1");
  collection->Call("Remove", "one");
  EXPECT_EQ(Elements(collection), "2, 3");
  EXPECT_EQ(StateText(collection->Call("NewEnum")), "<IEnumVARIANT>");
  EXPECT_EQ(ErrorOf([&] { collection->Let("Item", Long{1}, Long{5}); }),
            "error 438 (Collection): The member Item can't be used this way.");
  EXPECT_EQ(ErrorOf([&] { collection->Call("Add"); }), "error 449");
}

}  // namespace
}  // namespace qdclgl
