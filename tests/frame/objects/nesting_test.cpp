#include "qdclgl/frame/objects/nesting.h"

#include <gtest/gtest.h>

#include "qdclgl/frame/containers/collection.h"
#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/frame/entities/properties.h"
#include "qdclgl/vouchers/voucher.h"
#include "tests/support/recording_server.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::AtEnd;
using testing::ErrorOf;
using testing::Foreign;
using testing::Row;

constexpr int kMany = 1'000'000;

// ---- Frees ----

TEST(Nesting, AMillionNestedDictionariesAreFreed) {
  auto row = Make<Dictionary>();
  bool ended = false;
  row->Put("end", Variant(Make<AtEnd>([&] { ended = true; })));
  for (int i = 0; i < kMany; ++i) {
    auto outer = Make<Dictionary>();
    outer->Put("row", Variant(row));
    row = std::move(outer);
  }
  row = nullptr;
  EXPECT_TRUE(ended);
}

TEST(Nesting, AMillionNestedListsOfEachKindAreFreed) {
  bool ended = false;
  Variant inner(Make<AtEnd>([&] { ended = true; }));
  for (int i = 0; i < kMany; ++i) {
    if (i % 2 == 0) {
      auto list = Make<Vector>();
      list->Append(inner);
      inner = Variant(list);
    } else {
      auto list = Make<Collection>();
      list->Add(inner);
      inner = Variant(list);
    }
  }
  inner = Variant();
  EXPECT_TRUE(ended);
}

TEST(Nesting, WhatEndsBelowTheBoundEndsBeforeTheOutermostReleaseReturns) {
  int ended = 0;
  auto row = Make<Dictionary>();
  for (int i = 0; i < 3 * kDeepestNesting; ++i) {
    auto outer = Make<Dictionary>();
    outer->Put("end", Variant(Make<AtEnd>([&] { ++ended; })));
    outer->Put("row", Variant(row));
    row = std::move(outer);
  }
  row = nullptr;
  EXPECT_EQ(ended, 3 * kDeepestNesting);
}

// ---- Default values ----

TEST(Nesting, APropertyThatIsItsOwnValueHasNoText) {
  const auto bag = Make<Properties>();
  bag->Attach(Nothing, true, Nothing, 0);
  const Ref<Property> property = bag->Item("Self");
  property->Value(Variant(property));
  EXPECT_EQ(property->Value().As<Property>(), property);
  const Variant value(property);
  EXPECT_EQ(ErrorOf([&] { CStr(value); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { CLng(value); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { CBool(value); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { CDate(value); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { CCur(value); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { CDec(value); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { CByte(value); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { HasEmptyText(value); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { ConcatenatedText(value); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { Equals(value, Variant(1)); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { Equals(Variant(1), value); }), "error 28");
  bag->Dictionary()->Erase("Self");
}

TEST(Nesting, AForeignObjectThatIsItsOwnDefaultValueHasNoText) {
  Ref<Foreign> self;
  const auto foreign = Make<Foreign>([&] { return Variant(self); });
  self = foreign;
  EXPECT_EQ(ErrorOf([&] { CStr(Variant(foreign)); }), "error 28");
  self = nullptr;
  EXPECT_EQ(ErrorOf([&] { CStr(Variant(foreign)); }), "error 13");
}

TEST(Nesting, ADefaultValueThatAsksForItselfEndsInAnError) {
  Ref<Foreign> self;
  const auto foreign = Make<Foreign>([&] { return Variant(CStr(Variant(self))); });
  self = foreign;
  EXPECT_EQ(ErrorOf([&] { CStr(Variant(foreign)); }), "error 28");
  self = nullptr;
}

TEST(Nesting, ADefaultValueThroughOtherObjectsIsTheLastOnes) {
  Variant value(Long{7});
  for (int i = 0; i < 100; ++i) value = Variant(Make<Foreign>([value] { return value; }));
  EXPECT_EQ(CLng(value), 7);
}

// ---- Copies ----

TEST(Nesting, ARowThatHoldsItsOwnObjectCannotBeCopied) {
  testing::RecordingServer server;
  const auto voucher = Make<Voucher>();
  voucher->Construct(Row({{"FVoucherID", 5}}), Nothing);
  voucher->Properties()->Dictionary()->Put("Self", Variant(voucher));
  EXPECT_EQ(ErrorOf([&] { voucher->Clone(); }), "error 28");
  EXPECT_EQ(ErrorOf([&] { CloneDictionary(voucher->Properties()->Dictionary()); }), "error 28");
  voucher->Properties()->Dictionary()->Erase("Self");
  EXPECT_EQ(voucher->Clone()->VoucherID(), 5);
}

TEST(Nesting, TheLevelsAreGivenBackBehindAnError) {
  const auto row = Make<Dictionary>();
  row->Put("self", Variant(row));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ErrorOf([&] { CloneDictionary(row); }), "error 28");
  row->Erase("self");
  auto deep = Make<Dictionary>();
  for (int i = 0; i < kDeepestNesting - 2; ++i) deep = Row({{"row", Variant(deep)}});
  EXPECT_EQ(ErrorOf([&] { CloneDictionary(deep); }), "no error");
}

// A row that holds itself in no place, but each level of it twice: `levels` rows with a copy of
// 2^levels ones.
Ref<Dictionary> Doubling(int levels) {
  auto row = Row({});
  for (int i = 0; i < levels; ++i) row = Row({{"a", Variant(row)}, {"b", Variant(row)}});
  return row;
}

constexpr std::string_view kTooMany = "error 7 (QDCLGL): A copy has more than 4000000 objects.";

TEST(Nesting, ACopyThatDoublesAtEachLevelIsAnError) {
  EXPECT_EQ(ErrorOf([] { CloneDictionary(Doubling(60)); }), kTooMany);
  const auto list = Make<Vector>();
  list->Append(Variant(Doubling(60)));
  EXPECT_EQ(ErrorOf([&] { CloneVector(list); }), kTooMany);
}

TEST(Nesting, ACopyOfObjectsThatHoldEachOtherTwiceIsAnError) {
  testing::RecordingServer server;
  const auto voucher_over = [](const Ref<Object>& held) {
    const auto voucher = Make<Voucher>();
    voucher->Construct(Row({{"FVoucherID", 5}}), Nothing);
    for (const std::string_view key : {"a", "b"}) {
      voucher->Properties()->Dictionary()->Put(key, Variant(held));
    }
    return voucher;
  };
  Ref<Voucher> voucher = voucher_over(Nothing);
  for (int i = 0; i < 40; ++i) voucher = voucher_over(voucher);
  EXPECT_EQ(ErrorOf([&] { voucher->Clone(); }), kTooMany);
  EXPECT_EQ(voucher->VoucherID(), 5);
}

TEST(Nesting, TheSizeOfACopyIsCountedAnewForEachCopy) {
  const Ref<Dictionary> row = Doubling(20);  // 2,097,151 rows
  EXPECT_EQ(ErrorOf([&] { CloneDictionary(row); }), "no error");
  EXPECT_EQ(ErrorOf([&] { CloneDictionary(row); }), "no error");
  EXPECT_EQ(ErrorOf([] { CloneDictionary(Doubling(21)); }), kTooMany);
  EXPECT_EQ(ErrorOf([&] { CloneDictionary(row); }), "no error");
}

// ---- Calls out ----

TEST(Nesting, ARefreshWithinARefreshWithoutEndIsAnError) {
  testing::RecordingServer server;
  const auto voucher = Make<Voucher>();
  voucher->Construct(Row({{"FVoucherID", 5}}), Nothing);
  server.AnswerWith("QDSVGLVoucher.VoucherInfo", "GetDetail", [&](std::span<Argument>) {
    voucher->Refresh();
    return Variant(Row({{"FVoucherID", 6}}));
  });
  EXPECT_EQ(ErrorOf([&] { voucher->Refresh(); }), "error 28");
  EXPECT_EQ(voucher->VoucherID(), 5);
}

}  // namespace
}  // namespace qdclgl
