#include "qdclgl/frame/objects/enumeration.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Row;
using testing::StateText;

// Walks over values and leaves `Item` and `Done` alone at the end.
class WalkValues final : public IWalkVariant {
 public:
  explicit WalkValues(std::vector<Variant> values) : values_(std::move(values)) {}
  std::string_view ClassName() const override { return "WalkValues"; }

  void Next(Variant& Item, Boolean& Done) override {
    if (position_ == values_.size()) return;
    Item = values_[position_++];
    Done = true;
  }
  void Skip(Boolean& Done) override {
    if (position_ == values_.size()) return;
    ++position_;
    Done = true;
  }
  void Reset() override { position_ = 0; }

 private:
  std::vector<Variant> values_;
  std::size_t position_ = 0;
};

Ref<Enumerator> Over(std::vector<Variant> values) {
  return EnumFactory().CreateEnum(Make<WalkValues>(std::move(values)));
}

TEST(Enumerator, GivesOneElementAfterAnother) {
  const auto enumerator = Over({Long{1}, "two"});
  Variant item;
  EXPECT_TRUE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "1");
  EXPECT_TRUE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "\"two\"");
}

TEST(Enumerator, AtTheEndLeavesTheItemAlone) {
  const auto enumerator = Over({});
  Variant item = "before";
  EXPECT_FALSE(enumerator->Next(item));
  EXPECT_FALSE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "\"before\"");
}

TEST(Enumerator, SkipPassesElements) {
  const auto enumerator = Over({Long{1}, Long{2}, Long{3}});
  Variant item;
  EXPECT_TRUE(enumerator->Skip(2));
  EXPECT_TRUE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "3");
  EXPECT_TRUE(enumerator->Skip(0));
  EXPECT_FALSE(enumerator->Skip(1));
}

TEST(Enumerator, SkipBeyondTheEndPassesWhatThereIs) {
  const auto enumerator = Over({Long{1}, Long{2}});
  Variant item;
  EXPECT_FALSE(enumerator->Skip(3));
  EXPECT_FALSE(enumerator->Next(item));
}

TEST(Enumerator, ResetBeginsAnew) {
  const auto enumerator = Over({Long{1}, Long{2}});
  Variant item;
  EXPECT_TRUE(enumerator->Skip(2));
  enumerator->Reset();
  EXPECT_TRUE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "1");
}

TEST(Enumerator, AnswersToLateBoundCalls) {
  const auto enumerator = Over({Long{1}, Long{2}, Long{3}});
  Variant item;
  EXPECT_EQ(StateText(enumerator->Call("Next", ByRef(item))), "True");
  EXPECT_EQ(StateText(item), "1");
  EXPECT_EQ(StateText(enumerator->Call("skip", Long{1})), "True");
  Long number = 0;
  EXPECT_EQ(StateText(enumerator->Call("NEXT", ByRef(number))), "True");
  EXPECT_EQ(number, 3);
  EXPECT_EQ(StateText(enumerator->Call("Next", ByRef(item))), "False");
  EXPECT_EQ(StateText(item), "1");
  EXPECT_EQ(StateText(enumerator->Call("Skip", Long{1})), "False");
  EXPECT_EQ(StateText(enumerator->Call("Reset")), "Empty");
  EXPECT_EQ(StateText(enumerator->Call("Next", ByRef(item))), "True");
}

TEST(Enumerator, RefusesLateBoundCallsThatItDoesNotKnow) {
  const auto enumerator = Over({Long{1}});
  EXPECT_EQ(ErrorOf([&] { enumerator->Call("Next"); }), "error 450");
  EXPECT_EQ(ErrorOf([&] { enumerator->Call("Skip"); }), "error 450");
  EXPECT_EQ(ErrorOf([&] { enumerator->Call("Reset", Long{1}); }), "error 450");
  EXPECT_EQ(ErrorOf([&] { enumerator->Call("Skip", "many"); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { enumerator->Call("Clone"); }),
            "error 438 (IEnumVARIANT): No member Clone.");
}

TEST(EnumeratorRange, RunsOverObjectsInALoop) {
  const auto first = Row({{"x", Long{1}}}), second = Row({{"x", Long{2}}});
  std::string text;
  Ref<Dictionary> kept;
  for (Dictionary& row : EnumeratorRange<Dictionary>(Over({Variant(first), Variant(second)}))) {
    text += StateText(row.Value("x")) + ";";
    kept = Ref<Dictionary>(&row);
  }
  EXPECT_EQ(text, "1;2;");
  EXPECT_EQ(kept, second);
}

TEST(EnumeratorRange, OverNothingEndsAtOnce) {
  const EnumeratorRange<Dictionary> range(Over({}));
  EXPECT_TRUE(range.begin() == range.end());
}

TEST(EnumeratorRange, AnElementThatIsNothingIsMetAndRaisesWhenItIsUsed) {
  const EnumeratorRange<Dictionary> range(Over({Nothing, Variant(Row({{"x", Long{1}}}))}));
  auto iterator = range.begin();
  EXPECT_FALSE(iterator == range.end());
  EXPECT_EQ(ErrorOf([&] { *iterator; }), "error 91");
  EXPECT_EQ(ErrorOf([&] { iterator->Count(); }), "error 91");
  ++iterator;
  EXPECT_EQ(iterator->Count(), 1);
  ++iterator;
  EXPECT_TRUE(iterator == range.end());
}

TEST(EnumeratorRange, AnElementOfAnotherClassRaisesTypeMismatch) {
  EXPECT_EQ(ErrorOf([] { EnumeratorRange<Dictionary>(Over({Long{1}})).begin(); }), "error 13");
}

TEST(EnumFactory, NullToDefaultReplacesNullOnly) {
  const EnumeratorFactory& factory = EnumFactory();
  EXPECT_EQ(StateText(factory.NullToDefault(Null, Long{5})), "5");
  EXPECT_EQ(StateText(factory.NullToDefault(Variant(), Long{5})), "Empty");
  EXPECT_EQ(StateText(factory.NullToDefault("", Long{5})), "\"\"");
  EXPECT_EQ(StateText(factory.NullToDefault(Nothing, Long{5})), "Nothing");
  EXPECT_EQ(StateText(factory.NullToDefault(Missing, Long{5})), "Missing");
  EXPECT_EQ(StateText(factory.NullToDefault(Null, Null)), "Null");
}

}  // namespace
}  // namespace qdclgl
