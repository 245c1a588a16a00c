#include "qdclgl/frame/containers/dictionary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::Row;
using testing::StateText;

std::string State(const Ref<Dictionary>& row) {
  return StateText(Variant(row)) + (row->Modified() ? " modified" : "");
}

// ---- Keys and values ----

TEST(Dictionary, IsBornEmptyAndUnmodified) {
  const auto row = Make<Dictionary>();
  EXPECT_EQ(State(row), "{}");
  EXPECT_EQ(row->Count(), 0);
  EXPECT_EQ(State(Dictionary::Create(0)), "{}");
  EXPECT_EQ(State(Dictionary::Create(20)), "{}");
}

TEST(Dictionary, KeepsKeysInTheOrderOfTheirFirstWrite) {
  const auto row = Make<Dictionary>();
  row->Value("FName", "Receipts");
  row->Value("FGroupID", Long{5});
  row->Value("A", true);
  row->Value("FName", "Payments");
  EXPECT_EQ(State(row), "{FName: \"Payments\", FGroupID: 5, A: True} modified");
  EXPECT_EQ(row->Count(), 3);
  EXPECT_EQ(row->Name(1), "FName");
  EXPECT_EQ(row->Name(2), "FGroupID");
  EXPECT_EQ(row->Name(3), "A");
}

TEST(Dictionary, ARemovedKeyComesBackAtTheEnd) {
  const auto row = Row({{"a", Long{1}}, {"b", Long{2}}, {"c", Long{3}}});
  row->Remove("a");
  EXPECT_EQ(State(row), "{b: 2, c: 3} modified");
  row->Value("a", Long{4});
  EXPECT_EQ(State(row), "{b: 2, c: 3, a: 4} modified");
}

TEST(Dictionary, MatchesKeysWithTheirCase) {
  const auto row = Make<Dictionary>();
  row->Value("fname", Long{1});
  row->Value("FName", Long{2});
  EXPECT_EQ(StateText(Variant(row)), "{fname: 1, FName: 2}");
  EXPECT_FALSE(row->Lookup("FNAME"));
  row->Remove("FNAME");
  EXPECT_EQ(row->Count(), 2);
}

TEST(Dictionary, AnAbsentKeyReadsAsEmptyAndIsNotMade) {
  const auto row = Row({{"a", Long{1}}});
  EXPECT_TRUE(row->Value("b").IsEmpty());
  EXPECT_TRUE(Make<Dictionary>()->Value("b").IsEmpty());
  EXPECT_EQ(State(row), "{a: 1}");
}

TEST(Dictionary, HoldsValuesOfEveryType) {
  const auto row = Make<Dictionary>();
  row->Value("1", Variant());
  row->Value("2", Null);
  row->Value("3", Nothing);
  row->Value("4", "a text of more than fourteen bytes");
  row->Value("5", Currency(1.5));
  row->Value("6", Make<Opaque>());
  row->Value("7", Make<Vector>());
  EXPECT_EQ(StateText(Variant(row)),
            "{1: Empty, 2: Null, 3: Nothing, 4: \"a text of more than fourteen bytes\", 5: 1.5@, "
            "6: <Opaque>, 7: []}");
}

TEST(Dictionary, ReleasesAnObjectThatIsReplacedRemovedOrLeftBehind) {
  const auto object = Make<Opaque>();
  {
    const auto row = Make<Dictionary>();
    row->Value("a", object);
    row->Value("b", object);
    row->Value("c", object);
    EXPECT_EQ(object->holders(), 4);
    row->Value("a", Long{1});
    EXPECT_EQ(object->holders(), 3);
    row->Remove("b");
    EXPECT_EQ(object->holders(), 2);
  }
  EXPECT_EQ(object->holders(), 1);
}

TEST(Dictionary, NameOutsideTheKeysRaisesError) {
  const auto row = Row({{"a", Long{1}}, {"b", Long{2}}});
  for (const Long index : {0, 3, -1, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(ErrorOf([&] { row->Name(index); }), "error 9") << index;
  }
  EXPECT_EQ(ErrorOf([] { Make<Dictionary>()->Name(1); }), "error 9");
}

TEST(Dictionary, LookupTellsWhetherAKeyExists) {
  const auto row = Row({{"a", Variant()}, {"b", Null}, {"c", Nothing}});
  EXPECT_TRUE(row->Lookup("a"));
  EXPECT_TRUE(row->Lookup("b"));
  EXPECT_TRUE(row->Lookup("c"));
  EXPECT_FALSE(row->Lookup("d"));
  EXPECT_FALSE(Make<Dictionary>()->Lookup("a"));
  EXPECT_EQ(State(row), "{a: Empty, b: Null, c: Nothing}");
}

TEST(Dictionary, LookupLeavesItsSecondArgumentAlone) {
  const auto row = Row({{"a", Long{1}}});
  Variant value = "before";
  EXPECT_TRUE(row->Call("Lookup", "a", ByRef(value)).As<Boolean>());
  EXPECT_EQ(StateText(value), "\"before\"");
}

TEST(Dictionary, ValueOrDefaultGivesTheDefaultForAnAbsentKeyOnly) {
  const auto row = Row({{"a", Long{1}}, {"n", Null}, {"e", Variant()}});
  EXPECT_EQ(StateText(row->ValueOrDefault("a", Long{7})), "1");
  EXPECT_EQ(StateText(row->ValueOrDefault("n", Long{7})), "Null");
  EXPECT_EQ(StateText(row->ValueOrDefault("e", Long{7})), "Empty");
  EXPECT_EQ(StateText(row->ValueOrDefault("b", Long{7})), "7");
  EXPECT_EQ(StateText(row->ValueOrDefault("b")), "Empty");
  EXPECT_EQ(State(row), "{a: 1, n: Null, e: Empty}");
}

TEST(Dictionary, RemoveOfAnAbsentKeyMarksItModifiedAllTheSame) {
  const auto row = Row({{"a", Long{1}}});
  row->Remove("b");
  EXPECT_EQ(State(row), "{a: 1} modified");
  const auto empty = Make<Dictionary>();
  empty->Remove("b");
  EXPECT_EQ(State(empty), "{} modified");
}

TEST(Dictionary, EraseTellsWhetherTheKeyWasThere) {
  const auto row = Row({{"a", Long{1}}});
  EXPECT_FALSE(row->Erase("b"));
  EXPECT_EQ(State(row), "{a: 1}");
  EXPECT_TRUE(row->Erase("a"));
  EXPECT_EQ(State(row), "{} modified");
}

TEST(Dictionary, FindGivesTheValueInPlace) {
  const auto row = Row({{"a", Long{1}}});
  const Variant* value = row->Find("a");
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(StateText(*value), "1");
  EXPECT_EQ(row->Find("b"), nullptr);
  EXPECT_TRUE(row->Contains("a"));
  EXPECT_FALSE(row->Contains("A"));
}

TEST(Dictionary, TakesTheEmptyKeyAndKeysOfAnyText) {
  const auto row = Make<Dictionary>();
  row->Value("", Long{1});
  row->Value("凭证字", Long{2});
  row->Value("凭证", Long{3});
  row->Value("a key of far more than sixteen characters", Long{4});
  row->Value("a key of far more than sixteen characterz", Long{5});
  row->Value(std::string_view("a\0b", 3), Long{6});
  row->Value("a", Long{7});
  EXPECT_EQ(row->Count(), 7);
  EXPECT_EQ(StateText(row->Value("")), "1");
  EXPECT_EQ(StateText(row->Value("凭证字")), "2");
  EXPECT_EQ(StateText(row->Value("凭证")), "3");
  EXPECT_EQ(StateText(row->Value("a key of far more than sixteen characters")), "4");
  EXPECT_EQ(StateText(row->Value("a key of far more than sixteen characterz")), "5");
  EXPECT_EQ(StateText(row->Value(std::string_view("a\0b", 3))), "6");
  EXPECT_EQ(StateText(row->Value("a")), "7");
  EXPECT_TRUE(row->Value(std::string_view("a\0", 2)).IsEmpty());
  row->Remove("");
  EXPECT_EQ(row->Name(1), "凭证字");
}

TEST(Dictionary, AKeyInTheCodeAndTheSameKeyAtRunTimeAreOne) {
  const auto row = Make<Dictionary>();
  constexpr RowKey key("FExplanation");
  row->Put(key, Long{1});
  row->Put(std::string("FExpl") + "anation", Long{2});
  EXPECT_EQ(StateText(Variant(row)), "{FExplanation: 2}");
}

TEST(Dictionary, GrowsBeyondTheRoomItWasMadeWith) {
  for (const std::size_t capacity : {0u, 1u, 3u, 8u}) {
    const auto object = Make<Opaque>();
    const auto row = Dictionary::Create(capacity);
    std::string expected = "{";
    for (int i = 0; i < 30; ++i) {
      const std::string key = "k" + std::to_string(i);
      if (i % 3 == 0) {
        row->Value(key, object);
        expected += (i > 0 ? ", " : "") + key + ": <Opaque>";
      } else {
        row->Value(key, Long{i});
        expected += ", " + key + ": " + std::to_string(i);
      }
    }
    EXPECT_EQ(StateText(Variant(row)), expected + "}") << capacity;
    EXPECT_EQ(object->holders(), 11) << capacity;
  }
}

TEST(Dictionary, HoldsAThousandKeys) {
  const auto row = Make<Dictionary>();
  for (Long i = 0; i < 1000; ++i) row->Value("key " + std::to_string(i), i);
  ASSERT_EQ(row->Count(), 1000);
  for (Long i = 0; i < 1000; ++i) {
    ASSERT_EQ(row->Name(i + 1), "key " + std::to_string(i));
    ASSERT_EQ(row->Value("key " + std::to_string(i)).As<Long>(), i);
  }
  for (Long i = 0; i < 1000; i += 2) row->Remove("key " + std::to_string(i));
  ASSERT_EQ(row->Count(), 500);
  for (Long i = 0; i < 1000; ++i) {
    ASSERT_EQ(row->Lookup("key " + std::to_string(i)), i % 2 == 1);
  }
  EXPECT_EQ(row->Name(500), "key 999");
}

TEST(Dictionary, RemovesKeysAtEveryPlace) {
  const auto full = [] {
    return Row({{"a", "the first long text of the row"}, {"b", Long{2}}, {"c", Make<Opaque>()}});
  };
  const std::pair<const char*, const char*> cases[] = {
      {"a", "{b: 2, c: <Opaque>}"},
      {"b", "{a: \"the first long text of the row\", c: <Opaque>}"},
      {"c", "{a: \"the first long text of the row\", b: 2}"},
  };
  for (const auto& [key, rest] : cases) {
    const auto row = full();
    row->Remove(key);
    EXPECT_EQ(StateText(Variant(row)), rest);
  }
}

// ---- Modified ----

TEST(Dictionary, IsModifiedByEveryWayOfWriting) {
  const auto row = Row({{"a", Long{1}}});
  const std::function<void()> edits[] = {
      [&] { row->Value("a", Long{1}); },  // the same value again
      [&] { row->Value("b", Long{2}); },
      [&] { row->Remove("b"); },
      [&] { row->Remove("b"); },
      [&] { row->Put("c", Null); },
      [&] { row->Erase("c"); },
      [&] { row->Let("Value", "a", Long{3}); },
      [&] { row->Set("Value", "d", Make<Opaque>()); },
  };
  for (const auto& edit : edits) {
    row->ResetModified();
    EXPECT_FALSE(row->Modified());
    edit();
    EXPECT_TRUE(row->Modified());
  }
}

TEST(Dictionary, SetTrackStateLeavesItUnmodified) {
  for (const Long flag : {0, 1}) {
    const auto row = Make<Dictionary>();
    row->Value("a", Long{1});
    EXPECT_TRUE(row->Modified());
    row->SetTrackState(flag);
    EXPECT_EQ(State(row), "{a: 1}");
    row->Value("a", Long{2});
    EXPECT_TRUE(row->Modified());
  }
}

// A row with a row, a list, and a row in that list below it.
struct Tree {
  Ref<Dictionary> leaf = Row({{"x", Long{1}}});
  Ref<Vector> list = Make<Vector>();
  Ref<Dictionary> child = Row({{"y", Long{1}}});
  Ref<Dictionary> root = Make<Dictionary>();

  explicit Tree(Long flag) {
    list->Append(Variant(leaf));
    root->Value("_Entries", Variant(list));
    root->Value("child", Variant(child));
    root->SetTrackState(flag);
  }
};

TEST(DictionaryTracking, WithZeroOnlyOwnKeysCount) {
  const Tree tree(0);
  tree.leaf->Value("x", Long{2});
  tree.child->Value("y", Long{2});
  tree.list->Append(Long{1});
  EXPECT_FALSE(tree.root->Modified());
  EXPECT_TRUE(tree.leaf->Modified());
  EXPECT_TRUE(tree.child->Modified());
  tree.root->Value("z", Long{1});
  EXPECT_TRUE(tree.root->Modified());
}

TEST(DictionaryTracking, WithOneEditsBelowCountToo) {
  const std::function<void(const Tree&)> edits[] = {
      [](const Tree& tree) { tree.leaf->Value("x", Long{2}); },
      [](const Tree& tree) { tree.leaf->Remove("x"); },
      [](const Tree& tree) { tree.leaf->Remove("absent"); },
      [](const Tree& tree) { tree.child->Value("new", Long{2}); },
      [](const Tree& tree) { tree.list->Append(Long{1}); },
      [](const Tree& tree) { tree.list->Insert(1, Long{1}); },
      [](const Tree& tree) { tree.list->Remove(1); },
      [](const Tree& tree) { tree.list->Item(1, Long{1}); },
      [](const Tree& tree) { tree.root->Value("own", Long{1}); },
  };
  for (const auto& edit : edits) {
    const Tree tree(1);
    EXPECT_FALSE(tree.root->Modified());
    edit(tree);
    EXPECT_TRUE(tree.root->Modified());
    tree.root->ResetModified();
    EXPECT_FALSE(tree.root->Modified());
    edit(Tree(1));  // an edit elsewhere
    EXPECT_FALSE(tree.root->Modified());
  }
}

TEST(DictionaryTracking, EditsAfterAResetCountAgain) {
  const Tree tree(1);
  for (Long i = 0; i < 3; ++i) {
    tree.leaf->Value("x", i);
    EXPECT_TRUE(tree.root->Modified());
    tree.root->ResetModified();
    EXPECT_FALSE(tree.root->Modified());
  }
}

TEST(DictionaryTracking, SettingTheStateAgainForgetsEarlierEditsBelow) {
  const Tree tree(0);
  tree.leaf->Value("x", Long{2});
  tree.root->SetTrackState(1);
  EXPECT_FALSE(tree.root->Modified());
  tree.leaf->Value("x", Long{3});
  EXPECT_TRUE(tree.root->Modified());
  tree.root->SetTrackState(0);
  EXPECT_FALSE(tree.root->Modified());
}

TEST(DictionaryTracking, AViewThatBindsItselfToARowDoesNotMakeTheOwnerForget) {
  const Tree tree(1);
  tree.leaf->Value("x", Long{2});
  tree.child->Value("y", Long{2});
  tree.leaf->SetTrackState(0);
  tree.child->SetTrackState(0);
  EXPECT_FALSE(tree.leaf->Modified());
  EXPECT_TRUE(tree.root->Modified());
  tree.leaf->ResetModified();
  tree.child->ResetModified();
  EXPECT_TRUE(tree.root->Modified());
  tree.root->ResetModified();
  EXPECT_FALSE(tree.root->Modified());
}

TEST(DictionaryTracking, AnOwnersResetLeavesTheRowsOwnStateAlone) {
  const Tree tree(1);
  tree.leaf->Value("x", Long{2});
  tree.root->ResetModified();
  EXPECT_TRUE(tree.leaf->Modified());
}

TEST(DictionaryTracking, AFilledRowTellsOfWritesBehindItsFillingAlone) {
  const auto inner = Make<Dictionary>();
  inner->Value("a", Long{1});
  inner->EndFilling();
  const auto outer = Make<Dictionary>();
  outer->Value("inner", Variant(inner));
  EXPECT_FALSE(outer->WrittenWithin()) << "it was not filled";
  outer->EndFilling();
  EXPECT_FALSE(outer->WrittenWithin());
  EXPECT_FALSE(outer->Modified());
  EXPECT_FALSE(outer->TouchedWithin());
  inner->Value("a", Long{2});
  EXPECT_TRUE(outer->WrittenWithin());
  outer->SetTrackState(1);
  EXPECT_FALSE(outer->Modified());
  EXPECT_TRUE(outer->WrittenWithin()) << "what a view resets is another record";
}

TEST(DictionaryTracking, ARowTakenOutOfTheTreeNoLongerCounts) {
  const Tree tree(1);
  tree.root->Value("child", Nothing);
  tree.root->ResetModified();
  tree.child->Value("y", Long{2});
  EXPECT_FALSE(tree.root->Modified());
}

TEST(DictionaryTracking, LooksThroughListsOfLists) {
  const auto leaf = Row({{"x", Long{1}}});
  const auto inner = Make<Vector>();
  inner->Append(Variant(leaf));
  const auto outer = Make<Vector>();
  outer->Append(Variant(inner));
  const auto root = Row({{"list", Variant(outer)}});
  root->SetTrackState(1);
  EXPECT_FALSE(root->Modified());
  leaf->Value("x", Long{2});
  EXPECT_TRUE(root->Modified());
}

TEST(DictionaryTracking, ATreeThatHoldsItselfEndsInAnError) {
  const auto root = Make<Dictionary>();
  root->Value("self", Variant(root));
  EXPECT_EQ(ErrorOf([&] { root->SetTrackState(1); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { root->Modified(); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { root->Modified(); }), "error 28");
  root->Value("self", Nothing);
  root->ResetModified();
  EXPECT_FALSE(root->Modified());
}

// ---- Clones ----

TEST(DictionaryClone, HasTheSameKeysInTheSameOrderAndIsUnmodified) {
  const auto row = Make<Dictionary>();
  row->Value("b", "a text of more than fourteen bytes");
  row->Value("a", Long{1});
  row->Value("n", Nothing);
  EXPECT_EQ(State(row->Clone()), "{b: \"a text of more than fourteen bytes\", a: 1, n: Nothing}");
  EXPECT_TRUE(row->Modified());
  EXPECT_EQ(State(Make<Dictionary>()->Clone()), "{}");
}

TEST(DictionaryClone, SharesTheObjects) {
  const auto child = Row({{"x", Long{1}}});
  const auto row = Row({{"child", Variant(child)}});
  const auto clone = row->Clone();
  EXPECT_EQ(clone->Value("child").As<Dictionary>(), child);
  child->Value("x", Long{2});
  EXPECT_EQ(StateText(Variant(clone)), "{child: {x: 2}}");
}

TEST(DictionaryClone, ReleasesItsObjects) {
  const auto object = Make<Opaque>();
  const auto row = Row({{"a", object}, {"b", Long{1}}});
  {
    const auto clone = row->Clone();
    EXPECT_EQ(object->holders(), 3);
    clone->Remove("a");
    EXPECT_EQ(object->holders(), 2);
    const auto second = row->Clone();
    EXPECT_EQ(object->holders(), 3);
  }
  EXPECT_EQ(object->holders(), 2);
}

TEST(DictionaryClone, WritesOnEitherSideStayThere) {
  const auto row = Row({{"a", Long{1}}, {"b", Long{2}}});
  const auto clone = row->Clone();
  row->Value("a", Long{10});
  clone->Value("b", Long{20});
  row->Value("c", Long{3});
  clone->Remove("a");
  clone->Value("d", Long{4});
  EXPECT_EQ(StateText(Variant(row)), "{a: 10, b: 2, c: 3}");
  EXPECT_EQ(StateText(Variant(clone)), "{b: 20, d: 4}");
}

TEST(DictionaryClone, KeysThatOneCloneGainsAreNotSeenByTheOthers) {
  const auto row = Row({{"a", Long{1}}});
  const auto first = row->Clone(), second = row->Clone(), third = row->Clone();
  first->Value("x", Long{2});
  EXPECT_FALSE(second->Lookup("x"));
  second->Value("x", Long{3});
  third->Value("y", Long{4});
  second->Value("y", Long{5});
  first->Value("z", Long{6});
  row->Value("q", Long{7});
  EXPECT_EQ(StateText(Variant(row)), "{a: 1, q: 7}");
  EXPECT_EQ(StateText(Variant(first)), "{a: 1, x: 2, z: 6}");
  EXPECT_EQ(StateText(Variant(second)), "{a: 1, x: 3, y: 5}");
  EXPECT_EQ(StateText(Variant(third)), "{a: 1, y: 4}");
}

TEST(DictionaryClone, OutlivesTheRowItCameFrom) {
  auto row = Row({{"a", "a text of more than fourteen bytes"}});
  auto clone = row->Clone();
  clone->Value("b", Long{1});
  const auto second = clone->Clone();
  row = nullptr;
  clone = nullptr;
  second->Value("c", Long{2});
  EXPECT_EQ(StateText(Variant(second)), "{a: \"a text of more than fourteen bytes\", b: 1, c: 2}");
}

// A row as plain as it can be, beside which a Dictionary is held.
struct Model {
  std::vector<std::pair<std::string, Long>> cells;

  auto Find(const std::string& key) {
    return std::find_if(cells.begin(), cells.end(),
                        [&](const auto& cell) { return cell.first == key; });
  }
  void Put(const std::string& key, Long value) {
    if (const auto cell = Find(key); cell != cells.end()) {
      cell->second = value;
    } else {
      cells.emplace_back(key, value);
    }
  }
  void Remove(const std::string& key) {
    if (const auto cell = Find(key); cell != cells.end()) cells.erase(cell);
  }
  std::string Text() const {
    std::string text = "{";
    for (const auto& [key, value] : cells) {
      text += (text.size() > 1 ? ", " : "") + key + ": " + std::to_string(value);
    }
    return text + "}";
  }
};

struct Pair {
  Ref<Dictionary> row;
  Model model;
};

// Changes, clones and drops rows at random, and compares each with its model all the time.
void ChangeRowsAtRandom(std::vector<Pair> pairs, const std::function<Pair()>& fresh,
                        unsigned seed) {
  std::mt19937 random(seed);
  const auto below = [&](std::size_t end) { return static_cast<std::size_t>(random() % end); };
  for (Long step = 0; step < 400; ++step) {
    Pair& pair = pairs[below(pairs.size())];
    const std::string key = "F" + std::to_string(below(7));
    switch (below(8)) {
      case 0:
        if (pairs.size() < 12) pairs.push_back({pair.row->Clone(), pair.model});
        break;
      case 1:
        if (pairs.size() < 12) pairs.push_back(fresh());
        break;
      case 2:
        if (pairs.size() > 3)
          pairs.erase(pairs.begin() + static_cast<std::ptrdiff_t>(below(pairs.size())));
        break;
      case 3:
      case 4:
        pair.row->Remove(key);
        pair.model.Remove(key);
        break;
      default: pair.row->Value(key, step); pair.model.Put(key, step);
    }
    for (const Pair& each : pairs) {
      ASSERT_EQ(StateText(Variant(each.row)), each.model.Text()) << "seed " << seed;
    }
    for (int i = 0; i < 7; ++i) {
      const std::string name = "F" + std::to_string(i);
      for (Pair& each : pairs) {
        ASSERT_EQ(each.row->Lookup(name), each.model.Find(name) != each.model.cells.end())
            << "seed " << seed;
      }
    }
  }
}

TEST(DictionaryKeys, NeverLeakFromOneRowToAnother) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    ChangeRowsAtRandom(
        {{Make<Dictionary>(), {}}, {Row({{"F1", Long{0}}}), {{{"F1", 0}}}}},
        [] {
          return Pair{Make<Dictionary>(), {}};
        },
        seed);
    if (HasFatalFailure()) return;
  }
}

TEST(DictionaryKeys, NeverLeakBetweenRowsOfARecordset) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    const auto list = Recordset::Create({"F1", "F2", "F3"});
    list->AddRow({Long{1}, Long{2}, Long{3}});
    const auto fresh = [&] { return Pair{list->Row(), {{{"F1", 1}, {"F2", 2}, {"F3", 3}}}}; };
    ChangeRowsAtRandom({fresh(), fresh()}, fresh, seed);
    if (HasFatalFailure()) return;
    EXPECT_EQ(StateText(Variant(list)), "recordset{F1, F2, F3 | 1, 2, 3}");
  }
}

TEST(DictionaryKeys, NeverLeakBetweenRowsOfManyKeys) {
  const auto key = [](int i) { return "a column with a long name, number " + std::to_string(i); };
  std::vector<Pair> pairs = {{Make<Dictionary>(), {}}};
  for (int i = 0; i < 150; ++i) {
    if (i % 10 == 0) pairs.push_back({pairs[0].row->Clone(), pairs[0].model});
    for (Pair& pair : pairs) {
      pair.row->Value(key(i), Long{i});
      pair.model.Put(key(i), i);
    }
    Pair& other = pairs.back();
    other.row->Remove(key(i / 2));
    other.model.Remove(key(i / 2));
  }
  for (const Pair& pair : pairs) EXPECT_EQ(StateText(Variant(pair.row)), pair.model.Text());
}

TEST(DictionaryKeys, RowsOfARecordsetOutliveIt) {
  auto list = Recordset::Create({"F1"});
  list->AddRow({"a text of more than fourteen bytes"});
  const auto row = list->Row();
  list->Close();
  list = nullptr;
  row->Value("F2", Long{1});
  EXPECT_EQ(StateText(Variant(row)), "{F1: \"a text of more than fourteen bytes\", F2: 1}");
}

// ---- Late-bound calls ----

// ---- As script programmers know such ----

TEST(Dictionary, AddTakesNewKeysOnly) {
  const auto row = Make<Dictionary>();
  row->Add("a", Long{1});
  row->Add("A", Null);
  row->ResetModified();
  EXPECT_EQ(ErrorOf([&] { row->Add("a", Long{2}); }),
            "error 457 (Dictionary): The key a is there already.");
  EXPECT_EQ(StateText(Variant(row)), "{a: 1, A: Null}");
  EXPECT_FALSE(row->Modified());
  row->Add("b", Long{2});
  EXPECT_TRUE(row->Modified());
}

TEST(Dictionary, KeysAndItemsAreListsFromIndexZeroThatStayAsTheyAre) {
  const auto row = Row({{"a", Long{1}}, {"b", Null}});
  const auto keys = row->Keys();
  const auto items = row->Items();
  row->Remove("a");
  row->Value("c", Long{3});
  EXPECT_EQ(StateText(keys->Item(0)) + StateText(keys->Item(1)), "\"a\"\"b\"");
  EXPECT_EQ(StateText(items->Item(0)) + StateText(items->Item(1)), "1Null");
  EXPECT_EQ(keys->UpperBound(), 1);
  EXPECT_EQ(items->UpperBound(), 1);
  const auto none = Make<Dictionary>();
  EXPECT_EQ(none->Keys()->UpperBound(), -1);
  EXPECT_EQ(none->Items()->UpperBound(), -1);
}

TEST(Dictionary, AWalkPassesTheKeysThatWereThereAtItsBeginning) {
  const auto row = Row({{"a", Long{1}}, {"b", Long{2}}, {"c", Long{3}}});
  const auto walk = row->NewEnum();
  std::string passed;
  for (Variant key; walk->Next(key);) {
    passed += CStr(key);
    row->Remove(CStr(key));
    row->Value("new " + CStr(key), Null);
  }
  EXPECT_EQ(passed, "abc");
  EXPECT_EQ(StateText(Variant(row)), "{new a: Null, new b: Null, new c: Null}");
  walk->Reset();
  EXPECT_TRUE(walk->Skip(2));
  Variant last;
  EXPECT_TRUE(walk->Next(last));
  EXPECT_EQ(StateText(last), "\"c\"");
  EXPECT_FALSE(walk->Skip(1));
}

TEST(Dictionary, AWalkOutlivesItsDictionaryAndAnEmptyOneEndsAtOnce) {
  auto row = Row({{"a", Long{1}}});
  const auto walk = row->NewEnum();
  row = nullptr;
  Variant key;
  EXPECT_TRUE(walk->Next(key));
  EXPECT_EQ(StateText(key), "\"a\"");
  EXPECT_FALSE(walk->Next(key));
  EXPECT_FALSE(Make<Dictionary>()->NewEnum()->Next(key));
}

TEST(DictionaryLateBound, EveryMemberAnswersToItsName) {
  const auto row = Make<Dictionary>();
  row->Let("Value", "a", Long{1});
  row->Set("value", "b", Make<Opaque>());
  row->Let("VALUE", "c", Null);
  EXPECT_EQ(StateText(row->Get("Count")), "3");
  EXPECT_EQ(StateText(row->Get("Name", Long{2})), "\"b\"");
  EXPECT_EQ(StateText(row->Get("Value", "a")), "1");
  EXPECT_EQ(StateText(row->Get("Value", "absent")), "Empty");
  EXPECT_EQ(StateText(row->Call("Lookup", "a")), "True");
  EXPECT_EQ(StateText(row->Call("Lookup", "x", Missing)), "False");
  EXPECT_EQ(StateText(row->Call("ValueOrDefault", "x", Long{5})), "5");
  EXPECT_EQ(StateText(row->Call("ValueOrDefault", "x")), "Empty");
  EXPECT_EQ(StateText(row->Get("Modified")), "True");
  EXPECT_EQ(StateText(row->Call("Remove", "b")), "Empty");
  EXPECT_EQ(StateText(row->Call("Clone")), "{a: 1, c: Null}");
  EXPECT_EQ(StateText(row->Call("ResetModified")), "Empty");
  EXPECT_EQ(StateText(row->Get("Modified")), "False");
  row->Let("Value", "a", Long{2});
  row->Call("SetTrackState", Long{0});
  EXPECT_EQ(State(row), "{a: 2, c: Null}");
  row->Call("Add", "d", Long{4});
  EXPECT_EQ(StateText(row->Call("Exists", "d")), "True");
  EXPECT_EQ(StateText(row->Call("Exists", "D")), "False");
  EXPECT_EQ(row->Call("Keys").As<Vector>()->Count(), 3);
  EXPECT_EQ(row->Call("Items").As<Vector>()->Count(), 3);
  EXPECT_EQ(StateText(row->Call("NewEnum")), "<IEnumVARIANT>");
}

TEST(DictionaryLateBound, TakesNamedArgumentsInAnyOrder) {
  const auto row = Row({{"a", Long{1}}});
  EXPECT_EQ(StateText(row->Call("ValueOrDefault", Named("Default", Long{5}), Named("Key", "x"))),
            "5");
  EXPECT_EQ(StateText(row->Call("ValueOrDefault", Named("default", Long{5}), Named("key", "a"))),
            "1");
  EXPECT_EQ(StateText(row->Call("Lookup", Named("Key", "a"))), "True");
  EXPECT_EQ(StateText(row->Get("Name", Named("Index", Long{1}))), "\"a\"");
  row->Let("Value", Long{9}, Named("Key", "b"));
  EXPECT_EQ(StateText(Variant(row)), "{a: 1, b: 9}");
}

TEST(DictionaryLateBound, ConvertsItsArguments) {
  const auto row = Make<Dictionary>();
  row->Let("Value", Long{5}, "five");
  EXPECT_EQ(StateText(Variant(row)), "{5: \"five\"}");
  EXPECT_EQ(StateText(row->Get("Name", "1")), "\"5\"");
  EXPECT_EQ(ErrorOf([&] { row->Get("Name", "one"); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { row->Get("Name", Long{2}); }), "error 9");
  EXPECT_EQ(ErrorOf([&] { row->Get("Value", Null); }), "error 13");
}

TEST(DictionaryLateBound, RefusesWhatIsNoMemberOrNotUsedThisWay) {
  const auto row = Make<Dictionary>();
  EXPECT_EQ(ErrorOf([&] { row->Call("Contains", "a"); }),
            "error 438 (Dictionary): No member Contains.");
  EXPECT_EQ(ErrorOf([&] { row->Let("Count", Long{1}); }),
            "error 438 (Dictionary): The member Count can't be used this way.");
  EXPECT_EQ(ErrorOf([&] { row->Let("Modified", true); }),
            "error 438 (Dictionary): The member Modified can't be used this way.");
  EXPECT_EQ(ErrorOf([&] { row->Call("Lookup"); }), "error 449");
  EXPECT_EQ(ErrorOf([&] { row->Call("Remove", "a", "b"); }), "error 450");
  EXPECT_EQ(ErrorOf([&] { row->Call("Remove", Named("Name", "a")); }), "error 448");
}

}  // namespace
}  // namespace qdclgl
