#include "qdclgl/cli/cell_values.h"

#include <gtest/gtest.h>

namespace qdclgl::cli {
namespace {

template <class T>
std::string ReasonOf(T (*read)(std::string_view), std::string_view text) {
  try {
    read(text);
    return "none";
  } catch (const BadCell& bad) {
    return bad.what();
  }
}

TEST(CellValues, AnAmountIsReadToItsLastDigit) {
  EXPECT_EQ(ReadAmount("0.1").units(), 1000);
  EXPECT_EQ(ReadAmount("-12.3456").units(), -123456);
  EXPECT_EQ(ReadAmount("922337203685477.5807").units(), INT64_MAX);
  EXPECT_EQ(ReadAmount("-922337203685477.5808").units(), INT64_MIN);
  // A binary fraction would lose the last digit here.
  EXPECT_EQ(ReadAmount("900719925474.0993").units(), 9007199254740993);
}

TEST(CellValues, WhatIsNoAmountIsToldWithItsReason) {
  EXPECT_EQ(ReasonOf(ReadAmount, "1.23456"), "\"1.23456\" has more than 4 decimals");
  EXPECT_EQ(ReasonOf(ReadAmount, "922337203685477.5808"), "\"922337203685477.5808\" is too large");
  for (const char* text : {"1.", ".5", "", "-", "+1", "1e3", "0x1", "1 000", "--1", "1.-5"}) {
    EXPECT_EQ(ReasonOf(ReadAmount, text), "\"" + std::string(text) + "\" is not an amount");
  }
  EXPECT_EQ(ReasonOf(ReadAmount, "1,5"), "\"1,5\" is not an amount; decimals stand behind a point");
}

TEST(CellValues, AmountsHaveFourDecimalsAsText) {
  EXPECT_EQ(AmountText(Currency()), "0.0000");
  EXPECT_EQ(AmountText(Currency::FromUnits(-1)), "-0.0001");
  EXPECT_EQ(AmountText(Currency::FromUnits(123456)), "12.3456");
  EXPECT_EQ(AmountText(Currency::FromUnits(INT64_MIN)), "-922337203685477.5808");
}

TEST(CellValues, QuantitiesHaveAtMostSixDecimals) {
  EXPECT_EQ(ReadQuantity("2.123456"), 2.123456);
  EXPECT_EQ(ReadQuantity("-3"), -3);
  EXPECT_EQ(ReasonOf(ReadQuantity, "2.1234567"), "\"2.1234567\" has more than 6 decimals");
  EXPECT_EQ(ReasonOf(ReadQuantity, "nan"), "\"nan\" is not a quantity");
}

TEST(CellValues, RatesAreAboveZero) {
  EXPECT_EQ(ReadRate("0.925"), 0.925);
  EXPECT_EQ(ReasonOf(ReadRate, "0"), "\"0\" is not a rate above 0");
  EXPECT_EQ(ReasonOf(ReadRate, "-1"), "\"-1\" is not a rate above 0");
  EXPECT_EQ(ReadPrice("212.407080123"), 212.407080123);
}

TEST(CellValues, DatesAreDaysOfTheCalendar) {
  EXPECT_EQ(ReadDate("2024-02-29"), DateTime::FromYmd(2024, 2, 29));
  EXPECT_EQ(ReasonOf(ReadDate, "2023-02-29"), "\"2023-02-29\" is not a day of the calendar");
  for (const char* text :
       {"2024-2-29", "29.02.2024", "2024-02-29 ", "20240229", "2024-02-2x", ""}) {
    EXPECT_EQ(ReasonOf(ReadDate, text),
              "\"" + std::string(text) + "\" is not a date; dates are written as yyyy-mm-dd");
  }
}

TEST(CellValues, WholeNumbersAreDecimalWhateverZeroesTheyBeginWith) {
  EXPECT_EQ(ReadWhole("010"), 10);
  EXPECT_EQ(ReadWhole("2147483647"), 2147483647);
  EXPECT_EQ(ReasonOf(ReadWhole, "2147483648"), "\"2147483648\" is too large");
  EXPECT_EQ(ReasonOf(ReadWhole, "-1"), "\"-1\" is not a whole number");
}

TEST(CellValues, IntegersLieBetweenTheirBounds) {
  const auto read = [](std::string_view text) { return ReadInteger(text, -5, 7); };
  EXPECT_EQ(read("-5"), -5);
  EXPECT_EQ(read("07"), 7);
  for (const char* text : {"8", "-6", "99999999999"}) {
    EXPECT_EQ(ReasonOf<Long>(read, text), "\"" + std::string(text) + "\" is not between -5 and 7");
  }
  for (const char* text : {"", "-", "1.0", "+1", "--1", " 1", "1e1"}) {
    EXPECT_EQ(ReasonOf<Long>(read, text), "\"" + std::string(text) + "\" is not a whole number");
  }
}

TEST(CellValues, NumbersMayHaveAnExponentAndAreFinite) {
  EXPECT_EQ(ReadNumber("-0.5"), -0.5);
  EXPECT_EQ(ReadNumber("1e-7"), 1e-7);
  EXPECT_EQ(ReadNumber("0.1234567890123456"), 0.1234567890123456);
  EXPECT_EQ(ReasonOf(ReadNumber, "1e999"), "\"1e999\" is too large");
  EXPECT_EQ(ReasonOf(ReadNumber, "inf"), "\"inf\" is too large");
  for (const char* text : {"", "1,5", "x", "1x", "+1", "0x1"}) {
    EXPECT_EQ(ReasonOf(ReadNumber, text), "\"" + std::string(text) + "\" is not a number");
  }
}

TEST(CellValues, ATimeMayStandBehindADate) {
  EXPECT_EQ(ReadTime("2024-02-29 13:05:09").ToText(), "2024-02-29 13:05:09");
  EXPECT_EQ(ReadTime("2024-02-29"), DateTime::FromYmd(2024, 2, 29));
  EXPECT_EQ(ReasonOf(ReadTime, "2024-02-29 24:00:00"),
            "\"2024-02-29 24:00:00\" is not a time of the day");
  EXPECT_EQ(ReasonOf(ReadTime, "2024-02-29 13:05"),
            "\"2024-02-29 13:05\" is not a date; dates are written as yyyy-mm-dd");
  EXPECT_EQ(ReasonOf(ReadTime, "2023-02-29 13:05:09"),
            "\"2023-02-29\" is not a day of the calendar");
}

TEST(CellValues, TruthIsSaidInThreeWays) {
  for (const char* text : {"1", "Yes", "TRUE"}) EXPECT_TRUE(ReadTruth(text));
  for (const char* text : {"0", "no", "False"}) EXPECT_FALSE(ReadTruth(text));
  EXPECT_EQ(ReasonOf(ReadTruth, "maybe"), "\"maybe\" is neither yes nor no");
}

}  // namespace
}  // namespace qdclgl::cli
