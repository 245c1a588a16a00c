#include "qdclgl/frame/entities/row_view.h"

#include <gtest/gtest.h>

#include "tests/support/test_objects.h"
#include "tests/support/view_state.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Row;
using testing::State;
using testing::StateText;

class View final : public RowView {
 public:
  std::string_view ClassName() const override { return "View"; }

  using RowView::Attach;
  using RowView::Bag;

  void Reattach(const Ref<Dictionary>& row, Long track_state) {
    qdclgl::Bag bag;
    bag.Attach(row, false, Nothing, track_state);
    PutSharedBag(bag);
  }
};

constexpr RowKey kN("N");

TEST(RowView, PropertiesGoAlongToAnotherRowOfTheObject) {
  const auto view = Make<View>();
  view->Attach(Row({{"N", 1}}), false, Nothing, 0);
  const Ref<Properties> bag = view->Properties();
  bag->SetValue(kN, Long{2});
  EXPECT_EQ(State(*view), "{N: 2} modified flagged");
  view->Reattach(Row({{"N", 3}}), 1);
  EXPECT_EQ(view->Properties(), bag);
  EXPECT_EQ(State(*view), "{N: 3}");
  EXPECT_EQ(StateText(bag->GetValue(kN)), "\"3\"");
  view->Bag().SetValue(kN, Long{4});
  EXPECT_EQ(StateText(Variant(bag->Dictionary())), "{N: 4}");
  EXPECT_TRUE(bag->ChangeFlag()->Modified());
}

TEST(RowView, PropertiesOfTheFormerBagStayWithItsRow) {
  const auto view = Make<View>();
  const auto first = Row({{"N", 1}});
  view->Attach(first, true, Nothing, 0);
  const Ref<Properties> bag = view->Properties();
  view->Attach(Row({{"N", 2}}), true, Nothing, 0);
  EXPECT_NE(view->Properties(), bag);
  EXPECT_EQ(bag->Dictionary(), first);
  bag->SetValue(kN, Long{5});
  EXPECT_EQ(State(*view), "{N: 2}");
}

TEST(RowView, IsSharedOrCopiedAsItIsAttached) {
  const auto row = Row({{"N", 1}});
  const auto sharing = Make<View>(), copying = Make<View>();
  sharing->Attach(row, true, Nothing, 0);
  copying->Attach(row, false, Nothing, 0);
  EXPECT_EQ(sharing->Bag().Dictionary(), row);
  EXPECT_NE(copying->Bag().Dictionary(), row);
  row->Put(kN, Variant(2));
  EXPECT_EQ(State(*sharing), "{N: 2} modified");
  EXPECT_EQ(State(*copying), "{N: 1}");
}

TEST(RowView, WithoutABagRaisesNinetyOne) {
  const auto view = Make<View>();
  EXPECT_EQ(view->Properties(), nullptr);
  EXPECT_EQ(ErrorOf([&] { view->Bag(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { view->Reattach(Row({}), 0); }), "error 91");
}

TEST(Bag, ThatWasNeverAttachedRaisesNinetyOne) {
  Bag bag;
  EXPECT_FALSE(bag.IsAttached());
  EXPECT_EQ(ErrorOf([&] { bag.GetValue(kN); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { bag.SetValue(kN, Long{1}); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { bag.ClearValue(kN); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { bag.Modified(); }), "error 91");
  const auto properties = Make<Properties>();
  EXPECT_EQ(ErrorOf([&] { properties->Count(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { properties->Lookup("N"); }), "error 91");
}

TEST(Bag, ACopySharesRowAndFlag) {
  Bag bag;
  bag.Attach(Row({}), true, Nothing, 0);
  Bag copy = bag;
  copy.SetValue(kN, Long{1});
  EXPECT_EQ(StateText(Variant(bag.Dictionary())), "{N: 1}");
  EXPECT_EQ(bag.ChangeFlag(), copy.ChangeFlag());
  EXPECT_TRUE(bag.ChangeFlag()->Modified());
}

}  // namespace
}  // namespace qdclgl
