#include "qdclgl/frame/values/value_rules.h"

#include <gtest/gtest.h>

#include <limits>

namespace qdclgl {
namespace {

// ---- IsValidCode ----

TEST(IsValidCode, TakesLettersDigitsAndUnderscores) {
  EXPECT_TRUE(IsValidCode("AB_1", 0, false));
  EXPECT_TRUE(IsValidCode("abcxyz", 0, false));
  EXPECT_TRUE(IsValidCode("ABCXYZ0189_", 0, false));
  EXPECT_TRUE(IsValidCode("_", 0, false));
}

TEST(IsValidCode, RefusesEveryOtherAsciiCharacter) {
  for (char c = 1; c < 127; ++c) {
    const bool valid =
        (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    const std::string text = std::string("A") + c + "B";
    EXPECT_EQ(IsValidCode(text, 0, false), valid) << text;
    EXPECT_EQ(IsValidCode(text, 0, true), valid) << text;
  }
  EXPECT_FALSE(IsValidCode(std::string(1, '\0'), 0, true));
  EXPECT_FALSE(IsValidCode("\x7F", 0, true));
}

TEST(IsValidCode, EmptyTextIsValid) {
  EXPECT_TRUE(IsValidCode("", 0, false));
  EXPECT_TRUE(IsValidCode("", 4, true));
}

TEST(IsValidCode, LimitsTheLengthWhenToldTo) {
  EXPECT_TRUE(IsValidCode("ABCD", 4, false));
  EXPECT_FALSE(IsValidCode("ABCDE", 4, false));
  EXPECT_TRUE(IsValidCode("ABCDE", 0, false));
  EXPECT_TRUE(IsValidCode("ABCDE", -1, false));
}

TEST(IsValidCode, CountsTheLengthInUnitsAndNotInBytes) {
  EXPECT_TRUE(IsValidCode("凭证字号", 4, true));
  EXPECT_FALSE(IsValidCode("凭证字号", 3, true));
}

TEST(IsValidCode, TakesWideCharactersOnlyWhenAllowed) {
  EXPECT_FALSE(IsValidCode("凭证", 0, false));
  EXPECT_TRUE(IsValidCode("凭证", 0, true));
  EXPECT_TRUE(IsValidCode("A凭1", 0, true));
  EXPECT_FALSE(IsValidCode("凭-证", 0, true));
}

TEST(IsValidCode, RefusesCharactersThatNoDoubleByteCodePageHolds) {
  EXPECT_FALSE(IsValidCode("\xF0\x9F\x98\x80", 0, true));
  EXPECT_FALSE(IsValidCode("A\xFF", 0, true));
  EXPECT_FALSE(IsValidCode("A\xED\xA0\xBD", 0, true)) << "half a character";
}

// ---- DoubleLosesPrecision ----

TEST(DoubleLosesPrecision, IsFalseForNumbersOfFifteenDigits) {
  for (const double value : {0.0, -0.0, 1.0, 0.1, -0.1, 0.3, 2.5, 100.0, 123456789012345.0, 0.00001,
                             1e15, 1e-300, 1e300, 999999999999999.0, -1234567.89}) {
    EXPECT_FALSE(DoubleLosesPrecision(value)) << value;
  }
}

TEST(DoubleLosesPrecision, IsTrueForNumbersThatNeedMoreDigits) {
  for (const double value :
       {1.0 / 3, -1.0 / 3, 2.0 / 3, 0.1 + 0.2, 1234567890123456.0, 9007199254740993.0, 1e15 + 1}) {
    EXPECT_TRUE(DoubleLosesPrecision(value)) << value;
  }
}

TEST(DoubleLosesPrecision, IsTrueForWhatIsNoFiniteNumber) {
  EXPECT_TRUE(DoubleLosesPrecision(std::numeric_limits<double>::infinity()));
  EXPECT_TRUE(DoubleLosesPrecision(-std::numeric_limits<double>::infinity()));
  EXPECT_TRUE(DoubleLosesPrecision(std::numeric_limits<double>::quiet_NaN()));
}

// ---- LocalizedFieldName ----

TEST(LocalizedFieldName, IsThePlainName) {
  for (const char* name : {"FName", "", " FName ", "凭证字"}) {
    EXPECT_EQ(LocalizedFieldName(name), name);
  }
}

}  // namespace
}  // namespace qdclgl
