#include "qdclgl/frame/objects/variant.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::Opaque;
using testing::StateText;

// No automation type stands behind these.
static_assert(!std::is_constructible_v<Variant, std::int64_t>);
static_assert(!std::is_constructible_v<Variant, std::uint32_t>);
static_assert(!std::is_constructible_v<Variant, std::uint64_t>);
static_assert(!std::is_constructible_v<Variant, std::nullptr_t>);
static_assert(!std::is_constructible_v<Variant, long double>);
static_assert(std::is_constructible_v<Variant, int>);
static_assert(std::is_nothrow_move_constructible_v<Variant>);
static_assert(std::is_nothrow_move_assignable_v<Variant>);
static_assert(sizeof(Variant) == 16);

const char kFourteen[] = "abcdefghijklmn";
const char kFifteen[] = "abcdefghijklmno";
static_assert(sizeof kFourteen == 15 && sizeof kFifteen == 16);

constexpr std::uint8_t kThreeBytes[] = {0x00, 0x2a, 0xff};

// A value of each type, texts and objects in their several forms, with what it reads as.
std::vector<std::pair<Variant, std::string>> AllKinds() {
  return {
      {Variant(), "Empty"},
      {Null, "Null"},
      {Missing, "Missing"},
      {true, "True"},
      {false, "False"},
      {Byte{255}, "255b"},
      {Integer{-32768}, "-32768%"},
      {Long{-2147483647}, "-2147483647"},
      {1.5f, "1.5!"},
      {-2.25, "-2.25#"},
      {Currency::FromUnits(-12345), "-1.2345@"},
      {DateTime(45322.5), "#2024-01-31 12:00:00#"},
      {Decimal::FromText("-79228162514264337593.54395033"), "-79228162514264337593.54395033d"},
      {"", "\"\""},
      {kFourteen, "\"abcdefghijklmn\""},
      {kFifteen, "\"abcdefghijklmno\""},
      {Nothing, "Nothing"},
      {Variant(Make<Opaque>()), "<Opaque>"},
      {Bytes{kThreeBytes}, "bytes(002aff)"},
      {Bytes{}, "bytes()"},
  };
}

TEST(Variant, HoldsAValueOfEachType) {
  for (const auto& [value, text] : AllKinds()) EXPECT_EQ(StateText(value), text);
}

TEST(Variant, TellsItsType) {
  const std::pair<Variant, VariantType> cases[] = {
      {Variant(), VariantType::kEmpty},
      {Null, VariantType::kNull},
      {Missing, VariantType::kMissing},
      {true, VariantType::kBoolean},
      {Byte{1}, VariantType::kByte},
      {Integer{1}, VariantType::kInteger},
      {1, VariantType::kLong},
      {1.0f, VariantType::kSingle},
      {1.0, VariantType::kDouble},
      {Currency(Long{1}), VariantType::kCurrency},
      {DateTime(1), VariantType::kDate},
      {Decimal::FromInteger(1), VariantType::kDecimal},
      {kFourteen, VariantType::kString},
      {std::string(kFifteen), VariantType::kString},
      {std::string_view("x"), VariantType::kString},
      {Nothing, VariantType::kObject},
      {Make<Opaque>(), VariantType::kObject},
      {Ref<Opaque>(), VariantType::kObject},
      {Bytes{kThreeBytes}, VariantType::kByteArray},
      {ErrorValue{5}, VariantType::kError},
  };
  for (const auto& [value, type] : cases) {
    EXPECT_EQ(value.Type(), type) << StateText(value);
    EXPECT_TRUE(value.Is(type)) << StateText(value);
    EXPECT_EQ(value.IsEmpty(), type == VariantType::kEmpty) << StateText(value);
    EXPECT_EQ(value.IsNull(), type == VariantType::kNull) << StateText(value);
    EXPECT_EQ(value.IsMissing(), type == VariantType::kMissing) << StateText(value);
    EXPECT_EQ(value.IsString(), type == VariantType::kString) << StateText(value);
    EXPECT_EQ(value.IsObject(), type == VariantType::kObject) << StateText(value);
  }
}

TEST(Variant, AByteArrayKeepsItsLowerBound) {
  for (const Long bound : {0, 1, -1, INT32_MAX, INT32_MIN}) {
    const Variant value = Bytes{kThreeBytes, bound};
    const Variant copy = value;
    EXPECT_EQ(copy.BytesLowerBound(), bound);
    EXPECT_EQ(copy.BytesView().size(), 3u);
  }
}

TEST(Variant, AnErrorValueKeepsItsCode) {
  for (const std::int32_t code : {0, 5, -1, INT32_MIN}) {
    const Variant value = ErrorValue{code};
    const Variant copy = value;
    EXPECT_EQ(copy.ErrorCode(), code);
    EXPECT_TRUE(copy.IsPlain());
  }
}

TEST(Variant, NamesItsTypes) {
  EXPECT_EQ(TypeName(VariantType::kEmpty), "Empty");
  EXPECT_EQ(TypeName(VariantType::kNull), "Null");
  EXPECT_EQ(TypeName(VariantType::kMissing), "Missing");
  EXPECT_EQ(TypeName(VariantType::kBoolean), "Boolean");
  EXPECT_EQ(TypeName(VariantType::kByte), "Byte");
  EXPECT_EQ(TypeName(VariantType::kInteger), "Integer");
  EXPECT_EQ(TypeName(VariantType::kLong), "Long");
  EXPECT_EQ(TypeName(VariantType::kSingle), "Single");
  EXPECT_EQ(TypeName(VariantType::kDouble), "Double");
  EXPECT_EQ(TypeName(VariantType::kCurrency), "Currency");
  EXPECT_EQ(TypeName(VariantType::kDate), "Date");
  EXPECT_EQ(TypeName(VariantType::kDecimal), "Decimal");
  EXPECT_EQ(TypeName(VariantType::kString), "String");
  EXPECT_EQ(TypeName(VariantType::kObject), "Object");
  EXPECT_EQ(TypeName(VariantType::kByteArray), "Byte array");
  EXPECT_EQ(TypeName(VariantType::kError), "Error");
}

TEST(Variant, HoldsJustItsOwnType) {
  EXPECT_TRUE(Variant(true).Holds<bool>());
  EXPECT_TRUE(Variant(Byte{7}).Holds<Byte>());
  EXPECT_TRUE(Variant(Integer{7}).Holds<Integer>());
  EXPECT_TRUE(Variant(Long{7}).Holds<Long>());
  EXPECT_TRUE(Variant(7.0f).Holds<Single>());
  EXPECT_TRUE(Variant(7.0).Holds<Double>());
  EXPECT_TRUE(Variant(Currency(Long{7})).Holds<Currency>());
  EXPECT_TRUE(Variant(DateTime(7)).Holds<DateTime>());
  EXPECT_TRUE(Variant(Decimal::FromInteger(7)).Holds<Decimal>());
  EXPECT_TRUE(Variant("short").Holds<String>());
  EXPECT_TRUE(Variant(kFifteen).Holds<String>());
  EXPECT_FALSE(Variant(Long{7}).Holds<Integer>());
  EXPECT_FALSE(Variant(Integer{7}).Holds<Long>());
  EXPECT_FALSE(Variant(7.0).Holds<DateTime>());
  EXPECT_FALSE(Variant("7").Holds<Long>());
  EXPECT_FALSE(Variant().Holds<Long>());
}

TEST(Variant, GivesBackWhatItHolds) {
  EXPECT_EQ(Variant(true).Held<bool>(), true);
  EXPECT_EQ(Variant(Byte{200}).Held<Byte>(), 200);
  EXPECT_EQ(Variant(Integer{-7}).Held<Integer>(), -7);
  EXPECT_EQ(Variant(Long{-70000}).Held<Long>(), -70000);
  EXPECT_EQ(Variant(0.1f).Held<Single>(), 0.1f);
  EXPECT_EQ(Variant(0.1).Held<Double>(), 0.1);
  EXPECT_EQ(Variant(Currency::FromUnits(-1)).Held<Currency>().units(), -1);
  EXPECT_EQ(Variant(DateTime(-1.75)).Held<DateTime>().days, -1.75);
  EXPECT_EQ(Variant(kFifteen).Held<String>(), kFifteen);
}

TEST(Variant, KeepsEveryPartOfADecimal) {
  const Decimal held =
      Variant(Decimal(4294967295u, 18446744073709551615u, 28, true)).Held<Decimal>();
  EXPECT_EQ(held.high(), 4294967295u);
  EXPECT_EQ(held.low(), 18446744073709551615u);
  EXPECT_EQ(held.scale(), 28);
  EXPECT_TRUE(held.negative());
}

TEST(Variant, CopiesEachKind) {
  for (const auto& [value, text] : AllKinds()) {
    const Variant copy(value);
    EXPECT_EQ(StateText(copy), text);
    EXPECT_EQ(StateText(value), text);
  }
}

TEST(Variant, AssignsEachKindOverEachOther) {
  const auto kinds = AllKinds();
  for (const auto& [value, text] : kinds) {
    for (const auto& [other, other_text] : kinds) {
      Variant target(other);
      target = value;
      EXPECT_EQ(StateText(target), text) << "over " << other_text;
      EXPECT_EQ(StateText(value), text) << "over " << other_text;
      EXPECT_EQ(StateText(other), other_text) << "under " << text;
    }
  }
}

TEST(Variant, MovesEachKindAndLeavesEmptyBehind) {
  for (const auto& [value, text] : AllKinds()) {
    Variant source(value);
    const Variant target(std::move(source));
    EXPECT_EQ(StateText(target), text);
    EXPECT_TRUE(source.IsEmpty()) << text;
  }
}

TEST(Variant, MoveAssignsEachKindOverEachOther) {
  const auto kinds = AllKinds();
  for (const auto& [value, text] : kinds) {
    for (const auto& [other, other_text] : kinds) {
      Variant source(value), target(other);
      target = std::move(source);
      EXPECT_EQ(StateText(target), text) << "over " << other_text;
    }
  }
}

TEST(Variant, SurvivesAssignmentToItself) {
  for (const auto& [value, text] : AllKinds()) {
    Variant target(value);
    const Variant& same = target;
    target = same;
    EXPECT_EQ(StateText(target), text);
    Variant& moved = target;
    target = std::move(moved);
    EXPECT_EQ(StateText(target), text);
  }
}

TEST(Variant, HoldsTextsOfEveryLengthAroundTheShortForm) {
  for (std::size_t length = 0; length <= 40; ++length) {
    const std::string text(length, 'x');
    const Variant value(text);
    EXPECT_EQ(value.TextView(), text);
    EXPECT_EQ(Variant(value).TextView(), text);
    EXPECT_EQ(value.IsPlain(), length <= 14) << length;
  }
}

TEST(Variant, TextsMayHoldNulCharactersAndUtf8) {
  const std::string nul("a\0b", 3);
  EXPECT_EQ(Variant(nul).TextView(), nul);
  const std::string long_nul("a\0bcdefghijklmnopq\0", 19);
  EXPECT_EQ(Variant(long_nul).TextView(), long_nul);
  EXPECT_EQ(Variant("凭证字").TextView(), "凭证字");
  EXPECT_EQ(Variant(std::string_view()).TextView(), "");
}

TEST(Variant, CopiesOfAShortTextHaveTheirOwnBytes) {
  const Variant value(kFourteen);
  const Variant copy(value);
  EXPECT_NE(copy.TextView().data(), value.TextView().data());
}

TEST(Variant, CopiesOfALongTextShareIt) {
  const Variant value(kFifteen);
  const Variant copy(value);
  EXPECT_EQ(copy.TextView().data(), value.TextView().data());
}

TEST(Variant, ASharedTextOutlivesTheValueItWasCopiedFrom) {
  Variant copy;
  {
    const Variant value(std::string(100, 'y'));
    copy = value;
  }
  EXPECT_EQ(copy.TextView(), std::string(100, 'y'));
}

TEST(Variant, WritingOneCopyLeavesTheOtherAlone) {
  const Variant value(kFifteen);
  Variant copy(value);
  copy = "another text of some length";
  EXPECT_EQ(value.TextView(), kFifteen);
}

TEST(Variant, CopiesOfAByteArrayShareIt) {
  const Variant value(Bytes{kThreeBytes});
  const Variant copy(value);
  EXPECT_EQ(copy.BytesView().data(), value.BytesView().data());
  EXPECT_EQ(copy.BytesView().size(), 3u);
}

TEST(Variant, CountsItsReferencesToAnObject) {
  const auto object = Make<Opaque>();
  EXPECT_EQ(object->holders(), 1);
  {
    const Variant value(object);
    EXPECT_EQ(object->holders(), 2);
    Variant copy(value);
    EXPECT_EQ(object->holders(), 3);
    const Variant moved(std::move(copy));
    EXPECT_EQ(object->holders(), 3);
    Variant assigned;
    assigned = moved;
    EXPECT_EQ(object->holders(), 4);
    const Variant& same = assigned;
    assigned = same;
    EXPECT_EQ(object->holders(), 4);
    assigned = Long{5};
    EXPECT_EQ(object->holders(), 3);
    assigned = value;
    assigned = Variant(Nothing);
    EXPECT_EQ(object->holders(), 3);
  }
  EXPECT_EQ(object->holders(), 1);
}

TEST(Variant, OwnsTheObjectItHoldsAlone) {
  Variant value(Make<Opaque>());
  EXPECT_EQ(static_cast<Opaque*>(value.ObjectPointer())->holders(), 1);
}

TEST(Variant, ANullReferenceIsNothing) {
  EXPECT_TRUE(Variant(Ref<Opaque>()).IsNothing());
  EXPECT_TRUE(Variant(static_cast<Object*>(nullptr)).IsNothing());
  EXPECT_TRUE(Variant(Nothing).IsNothing());
  EXPECT_EQ(Variant(Nothing).ObjectPointer(), nullptr);
  EXPECT_FALSE(Variant(Make<Opaque>()).IsNothing());
  EXPECT_FALSE(Variant().IsNothing());
}

TEST(Variant, IsPlainUnlessItSharesSomething) {
  EXPECT_TRUE(Variant().IsPlain());
  EXPECT_TRUE(Variant(Nothing).IsPlain());
  EXPECT_TRUE(Variant(Decimal::FromInteger(1)).IsPlain());
  EXPECT_FALSE(Variant(Make<Opaque>()).IsPlain());
  EXPECT_FALSE(Variant(Bytes{}).IsPlain());
}

TEST(Variant, AsGivesAReferenceOfTheWantedClass) {
  const auto object = Make<Opaque>();
  EXPECT_EQ(Variant(object).As<Opaque>(), object);
  EXPECT_EQ(Variant(object).As<Object>().get(), object.get());
  EXPECT_EQ(Variant(Nothing).As<Opaque>(), nullptr);
  EXPECT_EQ(testing::ErrorOf([&] { Variant(object).As<Dictionary>(); }), "error 13");
  EXPECT_EQ(testing::ErrorOf([] { Variant(Long{5}).As<Object>(); }), "error 13");
  EXPECT_EQ(testing::ErrorOf([] { Variant().As<Object>(); }), "error 13");
}

}  // namespace
}  // namespace qdclgl
