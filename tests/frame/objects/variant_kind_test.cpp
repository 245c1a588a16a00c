#include "qdclgl/frame/objects/variant_kind.h"

#include <gtest/gtest.h>

#include "qdclgl/frame/containers/dictionary.h"
#include "tests/support/state_text.h"

namespace qdclgl {
namespace {

using testing::StateText;

TEST(VariantKind, IsDecidedByTheTypeAlone) {
  constexpr std::uint8_t bytes[] = {1, 2};
  struct Case {
    Variant value;
    bool number;
    bool text;
    bool whole_number;
  };
  const Case cases[] = {
      {Variant(), false, false, false},
      {Null, false, false, false},
      {Missing, false, false, false},
      {true, false, false, false},
      {Byte{12}, true, false, false},
      {Integer{12}, true, false, true},
      {Long{12}, true, false, true},
      {12.0f, true, false, false},
      {12.0, true, false, false},
      {Currency(Long{12}), false, false, false},
      {DateTime(12), false, false, false},
      {Decimal::FromInteger(12), true, false, true},
      {Decimal::FromText("12.5"), true, false, true},
      {"12", false, true, false},
      {"", false, true, false},
      {"a name of more than fourteen bytes", false, true, false},
      {Nothing, false, false, false},
      {Variant(Make<Dictionary>()), false, false, false},
      {Bytes{bytes}, false, false, false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(IsVariantKind(c.value, 0), c.number) << StateText(c.value);
    EXPECT_EQ(IsVariantKind(c.value, 1), c.text) << StateText(c.value);
    EXPECT_EQ(IsVariantKind(c.value, 2), c.whole_number) << StateText(c.value);
    EXPECT_FALSE(IsVariantKind(c.value, 3)) << StateText(c.value);
    EXPECT_FALSE(IsVariantKind(c.value, -1)) << StateText(c.value);
  }
}

TEST(VariantKind, HasANameForEachKind) {
  EXPECT_EQ(variant_kind::kNumber, 0);
  EXPECT_EQ(variant_kind::kText, 1);
  EXPECT_EQ(variant_kind::kWholeNumber, 2);
}

}  // namespace
}  // namespace qdclgl
