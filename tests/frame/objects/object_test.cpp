#include "qdclgl/frame/objects/object.h"

#include <gtest/gtest.h>

#include "qdclgl/vouchers/voucher.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;

TEST(Ref, UsingNothingRaisesNinetyOne) {
  Ref<VoucherEntry> line;
  EXPECT_EQ(ErrorOf([&] { line->AccountID(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { line->Amount(Currency(1)); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { line->Clone(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { (*line).AccountID(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { *line; }), "error 91");
  EXPECT_EQ(ErrorOf([&] { line->Call("Clone"); }), "error 91");
}

TEST(Ref, UsingAConstantNothingRaisesNinetyOne) {
  const Ref<VoucherEntry> line;
  EXPECT_EQ(ErrorOf([&] { line->AccountID(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { line->Amount(Currency(1)); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { (*line).AccountID(); }), "error 91");
  const Ref<const VoucherEntry> unchanged;
  EXPECT_EQ(ErrorOf([&] { unchanged->AccountID(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { *unchanged; }), "error 91");
}

TEST(Ref, AMemberThatGivesNothingRaisesWhenItIsUsed) {
  const auto voucher = Make<Voucher>();
  voucher->Construct(Nothing, Nothing);
  EXPECT_EQ(ErrorOf([&] { voucher->Entries()->Item(1)->AccountID(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { voucher->BillInfo()->Count(); }), "error 91");
}

TEST(Ref, AMovedOneIsNothing) {
  auto first = Make<Opaque>();
  const Ref<Opaque> second = std::move(first);
  EXPECT_EQ(ErrorOf([&] { first->holders(); }), "error 91");
  EXPECT_EQ(second->holders(), 1);
}

TEST(Ref, AWalkOverNothingRaisesNinetyOne) {
  const Ref<VoucherEntrySet> none;
  EXPECT_EQ(ErrorOf([&] {
              for (auto& line : none) line.AccountID();
            }),
            "error 91");
}

TEST(Ref, NothingMayBeAskedForComparedAndCopied) {
  const Ref<Opaque> none;
  EXPECT_FALSE(none);
  EXPECT_EQ(none.get(), nullptr);
  EXPECT_EQ(none, nullptr);
  const Ref<Object> copy = none;
  EXPECT_FALSE(copy);
  EXPECT_TRUE(Variant(none).IsNothing());
}

TEST(Object, IsSharedWhileMoreThanOneHoldsIt) {
  const auto object = Make<Opaque>();
  EXPECT_FALSE(object->IsShared());
  {
    const Variant second(object);
    EXPECT_TRUE(object->IsShared());
  }
  EXPECT_FALSE(object->IsShared());
}

}  // namespace
}  // namespace qdclgl
