#include "qdclgl/frame/containers/deep_copy.h"

#include <gtest/gtest.h>

#include <functional>

#include "qdclgl/frame/objects/late_bound.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::Row;
using testing::StateText;

// An object of a foreign class: its members are known by name only.
class Foreign final : public Object {
 public:
  using Answer = std::function<Variant()>;

  explicit Foreign(Answer clone) : clone_(std::move(clone)) {}
  std::string_view ClassName() const override { return "Foreign"; }
  Variant Invoke(std::string_view name, CallKind, std::span<Argument> arguments) override {
    calls_ += std::string(name) + "(" + StateText(arguments) + ");";
    return clone_();
  }
  const std::string& calls() const { return calls_; }

 private:
  Answer clone_;
  std::string calls_;
};

Ref<Vector> List(std::initializer_list<Variant> elements) {
  auto list = Make<Vector>();
  for (const Variant& element : elements) list->Append(element);
  return list;
}

std::string Text(const Ref<Dictionary>& row) { return StateText(Variant(row)); }
std::string Text(const Ref<Vector>& list) { return StateText(Variant(list)); }

// A row that has its content from elsewhere and copies what is there now.
class Mirror final : public Dictionary {
 public:
  explicit Mirror(Ref<Dictionary> source) : source_(std::move(source)) {}
  Ref<Dictionary> CopyWith(Variant (*copy_object)(const Variant&)) const override {
    return source_->CopyWith(copy_object);
  }

 private:
  Ref<Dictionary> source_;
};

// ---- CloneDictionary ----

TEST(CloneDictionary, AnHeirOfADictionaryIsOneAndCopiesItselfItsOwnWay) {
  const auto source = Row({{"a", Long{1}}});
  const Variant mirror = Make<Mirror>(source);
  const auto outer = Row({{"inner", mirror}});
  EXPECT_EQ(mirror.As<Dictionary>(), Ref<Dictionary>(mirror.As<Mirror>()));
  source->Put("a", Long{2});
  EXPECT_EQ(Text(CloneDictionary(mirror.As<Dictionary>())), "{a: 2}");
  EXPECT_EQ(Text(CloneDictionary(outer)), "{inner: {a: 2}}");
  EXPECT_EQ(Text(mirror.As<Dictionary>()->Clone()), "{a: 2}");
  EXPECT_EQ(Text(CloneVector(List({mirror}))), "[{a: 2}]");
}

TEST(CloneDictionary, OfNothingIsNothing) { EXPECT_EQ(CloneDictionary(Nothing), nullptr); }

TEST(CloneDictionary, CopiesPlainValuesAndKeepsNothing) {
  const auto row = Row({{"b", "a text of more than fourteen bytes"},
                        {"a", Long{1}},
                        {"n", Nothing},
                        {"u", Null},
                        {"e", Variant()}});
  const auto copy = CloneDictionary(row);
  EXPECT_EQ(Text(copy),
            "{b: \"a text of more than fourteen bytes\", a: 1, n: Nothing, u: Null, e: Empty}");
  EXPECT_NE(copy, row);
  EXPECT_EQ(Text(CloneDictionary(Make<Dictionary>())), "{}");
}

TEST(CloneDictionary, CopiesTheRowsAndListsBelow) {
  const auto detail = Row({{"FItemID", Long{7}}});
  const auto entry = Row({{"FAccountID", Long{5}}, {"_Details", Variant(List({Variant(detail)}))}});
  const auto entries = List({Variant(entry), Nothing, Long{3}});
  const auto child = Row({{"x", Long{1}}});
  const auto row = Row({{"_Entries", Variant(entries)}, {"child", Variant(child)}});
  const auto copy = CloneDictionary(row);
  const std::string before = Text(row);
  EXPECT_EQ(Text(copy), before);
  EXPECT_EQ(before,
            "{_Entries: [{FAccountID: 5, _Details: [{FItemID: 7}]}, Nothing, 3], child: {x: 1}}");

  detail->Value("FItemID", Long{8});
  entry->Value("FAccountID", Long{6});
  entries->Append(Long{4});
  child->Value("x", Long{2});
  EXPECT_EQ(Text(copy), before);

  copy->Value("child").As<Dictionary>()->Value("x", Long{3});
  EXPECT_EQ(Text(child), "{x: 2}");
}

TEST(CloneDictionary, KeepsTheLowerBoundsOfLists) {
  const auto from_zero = List({Long{1}});
  from_zero->LowerBound(0);
  const auto row = Row({{"zero", Variant(from_zero)}, {"one", Variant(List({Long{1}}))}});
  EXPECT_EQ(Text(CloneDictionary(row)), "{zero: [0: 1], one: [1]}");
}

TEST(CloneDictionary, IsUnmodifiedAllTheWayDown) {
  const auto child = Row({{"x", Long{1}}});
  const auto entry = Row({{"y", Long{1}}});
  const auto entries = List({Variant(entry)});
  const auto row = Row({{"child", Variant(child)}, {"_Entries", Variant(entries)}});
  row->Value("z", Long{1});
  child->Value("x", Long{2});
  entry->Value("y", Long{2});
  const auto copy = CloneDictionary(row);
  EXPECT_FALSE(copy->Modified());
  EXPECT_FALSE(copy->TouchedWithin());
  EXPECT_FALSE(copy->Value("child").As<Dictionary>()->Modified());
  EXPECT_FALSE(copy->Value("_Entries").As<Vector>()->Item(1).As<Dictionary>()->Modified());
  EXPECT_TRUE(row->Modified());
  EXPECT_TRUE(child->Modified());
  EXPECT_TRUE(entries->touched());
}

TEST(CloneDictionary, TracksOwnKeysOnly) {
  const auto row = Row({{"child", Variant(Row({{"x", Long{1}}}))}});
  row->SetTrackState(1);
  const auto copy = CloneDictionary(row);
  copy->Value("child").As<Dictionary>()->Value("x", Long{2});
  EXPECT_FALSE(copy->Modified());
  copy->Value("y", Long{1});
  EXPECT_TRUE(copy->Modified());
}

TEST(CloneDictionary, CopiesAnyOtherObjectByItsCloneMethodCalledOnce) {
  const auto answer = Make<Opaque>();
  const auto foreign = Make<Foreign>([&] { return Variant(answer); });
  const auto copy = CloneDictionary(Row({{"a", Long{1}}, {"foreign", foreign}}));
  EXPECT_EQ(copy->Value("foreign").As<Opaque>(), answer);
  EXPECT_EQ(foreign->calls(), "Clone();");
}

TEST(CloneDictionary, TakesNothingFromACloneMethod) {
  const auto foreign = Make<Foreign>([] { return Variant(Nothing); });
  EXPECT_EQ(Text(CloneDictionary(Row({{"foreign", foreign}}))), "{foreign: Nothing}");
}

TEST(CloneDictionary, ACloneThatIsNoObjectRaisesTypeMismatch) {
  for (const Variant& answer : {Variant(), Variant(Long{1}), Variant("x"), Variant(Null)}) {
    const auto foreign = Make<Foreign>([&] { return answer; });
    const auto row = Row({{"a", "a text of more than fourteen bytes"}, {"foreign", foreign}});
    EXPECT_EQ(ErrorOf([&] { CloneDictionary(row); }), "error 13") << StateText(answer);
  }
}

TEST(CloneDictionary, AnErrorOfACloneMethodPassesUnchanged) {
  const auto foreign = Make<Foreign>([]() -> Variant { throw Error(1234, "Foreign", "words"); });
  const auto row = Row({{"list", Variant(List({foreign}))}});
  EXPECT_EQ(ErrorOf([&] { CloneDictionary(row); }), "error 1234 (Foreign): words");
}

TEST(CloneDictionary, AnObjectWithoutACloneMethodRaisesError438) {
  const auto row = Row({{"x", Make<Opaque>()}});
  EXPECT_EQ(ErrorOf([&] { CloneDictionary(row); }), "error 438 (Opaque): No member Clone.");
}

TEST(CloneDictionary, ATreeThatHoldsItselfEndsInAnError) {
  const auto row = Make<Dictionary>();
  row->Value("self", Variant(row));
  EXPECT_EQ(ErrorOf([&] { CloneDictionary(row); }), "error 28");
  row->Value("self", Variant(List({Variant(row)})));
  EXPECT_EQ(ErrorOf([&] { CloneDictionary(row); }), "error 28");
  row->Value("self", Nothing);
  EXPECT_EQ(Text(CloneDictionary(row)), "{self: Nothing}");
}

TEST(CloneDictionary, CopiesDeepTreesThatDoNotHoldThemselves) {
  auto row = Row({{"x", Long{0}}});
  for (int level = 0; level < 200; ++level) row = Row({{"x", Variant(row)}});
  EXPECT_EQ(Text(CloneDictionary(row)), Text(row));
}

// ---- CloneVector ----

TEST(CloneVector, OfNothingRaisesError) {
  EXPECT_EQ(ErrorOf([] { CloneVector(Nothing); }), "error 91");
}

TEST(CloneVector, KeepsPlainElementsNothingAndTheLowerBound) {
  const auto list = List({Long{1}, Nothing, Null, "a text of more than fourteen bytes"});
  EXPECT_EQ(Text(CloneVector(list)), "[1, Nothing, Null, \"a text of more than fourteen bytes\"]");
  list->LowerBound(0);
  EXPECT_EQ(Text(CloneVector(list)),
            "[0: 1, Nothing, Null, \"a text of more than fourteen bytes\"]");
  EXPECT_EQ(Text(CloneVector(Make<Vector>())), "[]");
}

TEST(CloneVector, CopiesItsRowsDeep) {
  const auto detail = Row({{"FItemID", Long{7}}});
  const auto entry = Row({{"_Details", Variant(List({Variant(detail)}))}});
  const auto copy = CloneVector(List({Variant(entry)}));
  detail->Value("FItemID", Long{8});
  entry->Value("new", Long{1});
  EXPECT_EQ(Text(copy), "[{_Details: [{FItemID: 7}]}]");
  EXPECT_FALSE(copy->TouchedWithin());
}

TEST(CloneVector, AListDirectlyInsideAListIsCopiedShallow) {
  const auto row = Row({{"x", Long{1}}});
  const auto inner = List({Variant(row)});
  inner->LowerBound(0);
  const auto copy = CloneVector(List({Variant(inner)}));
  const auto inner_copy = copy->Item(1).As<Vector>();
  EXPECT_NE(inner_copy, inner);
  EXPECT_EQ(inner_copy->Item(0).As<Dictionary>(), row);
  inner->Append(Long{2});
  row->Value("x", Long{2});
  EXPECT_EQ(Text(copy), "[[0: {x: 2}]]");
}

TEST(CloneVector, AListUnderAKeyIsCopiedDeep) {
  const auto row = Row({{"x", Long{1}}});
  const auto list = List({Variant(Row({{"list", Variant(List({Variant(row)}))}}))});
  const auto copy = CloneVector(list);
  row->Value("x", Long{2});
  EXPECT_EQ(Text(copy), "[{list: [{x: 1}]}]");
}

TEST(CloneVector, CopiesAnyOtherObjectByItsCloneMethodCalledOnce) {
  const auto answer = Make<Opaque>();
  const auto foreign = Make<Foreign>([&] { return Variant(answer); });
  const auto copy = CloneVector(List({foreign, Long{1}}));
  EXPECT_EQ(copy->Item(1).As<Opaque>(), answer);
  EXPECT_EQ(foreign->calls(), "Clone();");
}

TEST(CloneVector, ACloneThatIsNoObjectRaisesTypeMismatch) {
  const auto foreign = Make<Foreign>([] { return Variant(Long{1}); });
  EXPECT_EQ(ErrorOf([&] { CloneVector(List({foreign})); }), "error 13");
}

TEST(CloneVector, ATreeThatHoldsItselfEndsInAnError) {
  const auto row = Make<Dictionary>();
  const auto list = List({Variant(row)});
  row->Value("list", Variant(list));
  EXPECT_EQ(ErrorOf([&] { CloneVector(list); }), "error 28");
  list->Remove(1);
}

// ---- VectorInsertAt ----

TEST(VectorInsertAt, PutsTheItemAtAnyPosition) {
  const std::pair<Long, const char*> cases[] = {
      {1, "[<Opaque>, 1, 2, 3]"},
      {2, "[1, <Opaque>, 2, 3]"},
      {3, "[1, 2, <Opaque>, 3]"},
      {4, "[1, 2, 3, <Opaque>]"},
  };
  for (const auto& [index, result] : cases) {
    const auto list = List({Long{1}, Long{2}, Long{3}});
    VectorInsertAt(list, index, Make<Opaque>());
    EXPECT_EQ(Text(list), result);
  }
}

TEST(VectorInsertAt, CountsFromTheLowerBound) {
  const auto list = List({Long{1}, Long{2}});
  list->LowerBound(0);
  VectorInsertAt(list, 0, Make<Opaque>());
  VectorInsertAt(list, 2, Make<Opaque>());
  EXPECT_EQ(Text(list), "[0: <Opaque>, 1, <Opaque>, 2]");
}

TEST(VectorInsertAt, StoresTheObjectItselfAndTakesNothing) {
  const auto row = Row({{"x", Long{1}}});
  const auto list = List({Long{1}});
  VectorInsertAt(list, 1, row);
  EXPECT_EQ(list->Item(1).As<Dictionary>(), row);
  VectorInsertAt(list, 1, Nothing);
  EXPECT_EQ(Text(list), "[Nothing, {x: 1}, 1]");
}

TEST(VectorInsertAt, OnAnEmptyVectorRaisesError) {
  for (const Long lower_bound : {0, 1, -3}) {
    const auto list = Make<Vector>();
    list->LowerBound(lower_bound);
    EXPECT_EQ(ErrorOf([&] { VectorInsertAt(list, lower_bound, Make<Opaque>()); }), "error 9");
    EXPECT_EQ(list->Count(), 0);
  }
}

TEST(VectorInsertAt, OutsideTheListRaisesError) {
  for (const Long index : {0, -1, 5}) {
    const auto list = List({Long{1}, Long{2}, Long{3}});
    EXPECT_EQ(ErrorOf([&] { VectorInsertAt(list, index, Make<Opaque>()); }), "error 9") << index;
  }
}

}  // namespace
}  // namespace qdclgl
