#include "qdclgl/frame/vocabulary/errors.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

namespace qdclgl {
namespace {

Error Raised(std::int32_t number) {
  try {
    RaiseError(number);
  } catch (const Error& error) {
    return error;
  }
}

TEST(Errors, NumbersAreThoseThatCallersKnow) {
  const struct {
    std::int32_t constant;
    std::int64_t number;
  } table[] = {
      {error_number::kInvalidCall, 5},
      {error_number::kOverflow, 6},
      {error_number::kSubscriptOutOfRange, 9},
      {error_number::kTypeMismatch, 13},
      {error_number::kOutOfStackSpace, 28},
      {error_number::kObjectNotSet, 91},
      {error_number::kInvalidPropertyValue, 380},
      {error_number::kPropertyNotSettable, 387},
      {error_number::kCannotCreateObject, 429},
      {error_number::kMemberNotFound, 438},
      {error_number::kNamedArgumentNotFound, 448},
      {error_number::kArgumentNotOptional, 449},
      {error_number::kWrongArgumentCount, 450},
      {error_number::kDuplicateKey, 457},
      {error_number::kBadArguments, 3001},
      {error_number::kNoCurrentRow, 3021},
      {error_number::kFieldNotFound, 3265},
      {error_number::kObjectClosed, 3704},
      {error_number::kWrongThread, 0x8001010E - 0x100000000},
      {error_number::kUnknownProfileCategory, 0x80044000 - 0x100000000},
      {error_number::kSystemFieldNotRemovable, 0x80044042 - 0x100000000},
      {error_number::kNoClassOrType, 0x80044104 - 0x100000000},
      {error_number::kCoefficientRejected, 0x80044150 - 0x100000000},
  };
  for (const auto& row : table) EXPECT_EQ(row.constant, row.number);
}

TEST(Errors, AnOwnNumberIsTheObjectErrorBaseAndACode) {
  EXPECT_EQ(static_cast<std::uint32_t>(error_number::Own(0)), 0x80044000u);
  EXPECT_EQ(static_cast<std::uint32_t>(error_number::Own(0xFFF)), 0x80044FFFu);
  EXPECT_LT(error_number::Own(0), 0);
}

TEST(Errors, RaiseErrorLeavesSourceAndDescriptionEmpty) {
  const Error error = Raised(380);
  EXPECT_EQ(error.number(), 380);
  EXPECT_EQ(error.source(), "");
  EXPECT_EQ(error.description(), "");
}

TEST(Errors, AnErrorKeepsNumberSourceAndDescription) {
  const Error error(5, "QDCLGL.CustomProperty", "名称重复，请重新输入");
  EXPECT_EQ(error.number(), 5);
  EXPECT_EQ(error.source(), "QDCLGL.CustomProperty");
  EXPECT_EQ(error.description(), "名称重复，请重新输入");
}

TEST(Errors, TheLineShowsWhatIsThere) {
  EXPECT_STREQ(Error(5).what(), "error 5");
  EXPECT_STREQ(Error(5, "Source").what(), "error 5 (Source)");
  EXPECT_STREQ(Error(5, "", "words").what(), "error 5: words");
  EXPECT_STREQ(Error(5, "Source", "words").what(), "error 5 (Source): words");
  EXPECT_STREQ(Error(0).what(), "error 0");
}

TEST(Errors, ANegativeNumberReadsAsEightHexadecimalDigits) {
  EXPECT_STREQ(Raised(error_number::kSystemFieldNotRemovable).what(), "error 0x80044042");
  EXPECT_STREQ(Error(-1, "Server", "words").what(), "error 0xFFFFFFFF (Server): words");
  EXPECT_STREQ(Error(INT32_MIN).what(), "error 0x80000000");
  EXPECT_STREQ(Error(INT32_MAX).what(), "error 2147483647");
}

TEST(Errors, ACopyOutlivesTheErrorItCameFrom) {
  auto original = std::make_unique<Error>(-1, std::string(100, 's'), std::string(100, 'd'));
  const Error copy = *original;
  original.reset();
  EXPECT_EQ(copy.what(),
            "error 0xFFFFFFFF (" + std::string(100, 's') + "): " + std::string(100, 'd'));
}

TEST(Errors, AnErrorIsCaughtAsAStandardException) { EXPECT_THROW(RaiseError(5), std::exception); }

}  // namespace
}  // namespace qdclgl
