#include "qdclgl/frame/values/values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;

constexpr std::int64_t kMostUnits = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeastUnits = std::numeric_limits<std::int64_t>::min();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// ---- Rounding ----

TEST(RoundHalfEven, SendsHalvesToTheEvenNeighbour) {
  const std::pair<double, double> cases[] = {
      {0.5, 0}, {1.5, 2}, {2.5, 2}, {3.5, 4}, {-0.5, 0}, {-1.5, -2}, {-2.5, -2}, {-3.5, -4},
  };
  for (const auto& [value, rounded] : cases) EXPECT_EQ(RoundHalfEven(value), rounded) << value;
}

TEST(RoundHalfEven, SendsEverythingElseToTheNearestNeighbour) {
  EXPECT_EQ(RoundHalfEven(0.49999999999999994), 0);
  EXPECT_EQ(RoundHalfEven(2.5000000000000004), 3);
  EXPECT_EQ(RoundHalfEven(-2.5000000000000004), -3);
  EXPECT_EQ(RoundHalfEven(-0.49999999999999994), 0);
  EXPECT_EQ(RoundHalfEven(4503599627370497.0), 4503599627370497.0);
  EXPECT_EQ(RoundHalfEven(4503599627370495.5), 4503599627370496.0);
  EXPECT_EQ(RoundHalfEven(1e300), 1e300);
}

// ---- RealText ----

TEST(RealText, HasAtMostFifteenSignificantDigits) {
  const std::pair<double, const char*> cases[] = {
      {0.1, "0.1"},
      {0.1 + 0.2, "0.3"},
      {1.0 / 3, "0.333333333333333"},
      {2.0 / 3, "0.666666666666667"},
      {1, "1"},
      {-2.5, "-2.5"},
      {100, "100"},
      {123456789012345.0, "123456789012345"},
      {999999999999999.0, "999999999999999"},
      {1e14, "100000000000000"},
      {1e15, "1E+15"},
      {1234567890123456.0, "1.23456789012346E+15"},
      {9999999999999999.0, "1E+16"},
      {-1e100, "-1E+100"},
      {0.0001, "0.0001"},
      {-2.5e-7, "-2.5E-07"},
      {1.7976931348623157e308, "1.79769313486232E+308"},
      {5e-324, "4.94065645841247E-324"},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(RealText(value, 15), text);
}

TEST(RealText, OfASingleHasSevenDigits) {
  EXPECT_EQ(RealText(static_cast<double>(0.1f), 7), "0.1");
  EXPECT_EQ(RealText(static_cast<double>(16777216.0f), 7), "1.677722E+07");
  EXPECT_EQ(RealText(static_cast<double>(1234567.0f), 7), "1234567");
}

TEST(RealText, NegativeZeroIsPlainZero) {
  EXPECT_EQ(RealText(-0.0, 15), "0");
  EXPECT_EQ(RealText(0.0, 15), "0");
}

TEST(RealText, NamesWhatIsNoFiniteNumber) {
  EXPECT_EQ(RealText(kInfinity, 15), "1.#INF");
  EXPECT_EQ(RealText(-kInfinity, 15), "-1.#INF");
  EXPECT_EQ(RealText(std::copysign(kNaN, 1.0), 15), "1.#QNAN");
  EXPECT_EQ(RealText(std::copysign(kNaN, -1.0), 15), "-1.#IND");
}

// ---- Currency ----

TEST(Currency, CountsTenThousandths) {
  EXPECT_EQ(Currency().units(), 0);
  EXPECT_EQ(Currency(Long{3}).units(), 30000);
  EXPECT_EQ(Currency(Integer{-3}).units(), -30000);
  EXPECT_EQ(Currency(1.5), Currency::FromUnits(15000));
  EXPECT_EQ(Currency(1.5).ToDouble(), 1.5);
}

TEST(Currency, RoundsTheFifthDecimalHalfToEven) {
  EXPECT_EQ(Currency(0.00005).units(), 1);  // as a Double a little more than the half
  EXPECT_EQ(Currency(-0.00005).units(), -1);
  EXPECT_EQ(Currency(0.00006).units(), 1);
  EXPECT_EQ(Currency(-0.00006).units(), -1);
  EXPECT_EQ(Currency(0.03125).units(), 312);
  EXPECT_EQ(Currency(0.09375).units(), 938);
}

TEST(Currency, WholeNumbersBeyondTheRangeRaiseOverflow) {
  EXPECT_EQ(Currency(std::int64_t{922337203685477}).units(), 9223372036854770000);
  EXPECT_EQ(Currency(std::int64_t{-922337203685477}).units(), -9223372036854770000);
  EXPECT_EQ(ErrorOf([] { Currency(std::int64_t{922337203685478}); }), "error 6");
  EXPECT_EQ(ErrorOf([] { Currency(std::int64_t{-922337203685478}); }), "error 6");
}

TEST(Currency, DoublesBeyondTheRangeRaiseOverflow) {
  EXPECT_EQ(Currency(-562949953421312.0).units(), -5629499534213120000);
  for (const double value :
       {922337203685478.0, -922337203685478.0, 1e300, kInfinity, -kInfinity, kNaN}) {
    EXPECT_EQ(ErrorOf([&] { Currency{value}; }), "error 6") << value;
  }
}

TEST(Currency, AddsAndSubtracts) {
  Currency sum = Currency(1.25) + Currency(2.5);
  EXPECT_EQ(sum, Currency(3.75));
  sum += Currency(Long{1});
  EXPECT_EQ(sum, Currency(4.75));
  sum -= Currency(0.0001);
  EXPECT_EQ(sum.units(), 47499);
  EXPECT_EQ(Currency(1.0) - Currency(2.5), Currency(-1.5));
  EXPECT_EQ(-Currency(1.5), Currency(-1.5));
}

TEST(Currency, ArithmeticReachesBothEndsOfTheRange) {
  const Currency most = Currency::FromUnits(kMostUnits);
  const Currency least = Currency::FromUnits(kLeastUnits);
  const Currency unit = Currency::FromUnits(1);
  EXPECT_EQ(((most - unit) + unit).units(), kMostUnits);
  EXPECT_EQ(((least + unit) - unit).units(), kLeastUnits);
  EXPECT_EQ((-most).units(), -kMostUnits);
}

TEST(Currency, ArithmeticBeyondTheRangeRaisesOverflow) {
  const Currency most = Currency::FromUnits(kMostUnits);
  const Currency least = Currency::FromUnits(kLeastUnits);
  const Currency unit = Currency::FromUnits(1);
  EXPECT_EQ(ErrorOf([&] { most + unit; }), "error 6");
  EXPECT_EQ(ErrorOf([&] { least - unit; }), "error 6");
  EXPECT_EQ(ErrorOf([&] { most - least; }), "error 6");
  EXPECT_EQ(ErrorOf([&] { -least; }), "error 6");
}

TEST(Currency, AFailedAdditionLeavesTheAmountAsItWas) {
  Currency amount = Currency::FromUnits(kMostUnits);
  EXPECT_EQ(ErrorOf([&] { amount += Currency::FromUnits(1); }), "error 6");
  EXPECT_EQ(amount.units(), kMostUnits);
}

TEST(Currency, OrdersByAmount) {
  EXPECT_LT(Currency(-0.0001), Currency());
  EXPECT_LT(Currency(9.9999), Currency(Long{10}));
  EXPECT_EQ(Currency(10.0), Currency(Long{10}));
}

TEST(Currency, TextHasNoTrailingZeros) {
  const std::pair<std::int64_t, const char*> cases[] = {
      {0, "0"},
      {1, "0.0001"},
      {-1, "-0.0001"},
      {5000, "0.5"},
      {-5000, "-0.5"},
      {10000, "1"},
      {15000, "1.5"},
      {100000, "10"},
      {-1234500, "-123.45"},
      {1000000000, "100000"},
      {kMostUnits, "922337203685477.5807"},
      {kLeastUnits, "-922337203685477.5808"},
  };
  for (const auto& [units, text] : cases) EXPECT_EQ(Currency::FromUnits(units).ToText(), text);
}

// ---- Date ----

TEST(DateTime, CountsDaysFromTheEndOf1899) {
  EXPECT_EQ(DateTime::FromYmd(1899, 12, 30).days, 0);
  EXPECT_EQ(DateTime::FromYmd(1900, 1, 1).days, 2);
  EXPECT_EQ(DateTime::FromYmd(2024, 1, 31).days, 45322);
  EXPECT_EQ(DateTime::FromYmd(2024, 3, 1).days - DateTime::FromYmd(2024, 2, 28).days, 2);
  EXPECT_EQ(DateTime::FromYmd(1899, 12, 29).days, -1);
  EXPECT_EQ(DateTime::FromYmd(100, 1, 1).days, -657434);
  EXPECT_EQ(DateTime::FromYmd(9999, 12, 31).days, 2958465);
}

TEST(DateTime, PartsSurviveTheTripThroughANumber) {
  const DateTime::Parts cases[] = {
      {2024, 1, 31, 13, 5, 9},  {2024, 2, 29, 23, 59, 59},  {1899, 12, 30, 0, 0, 1},
      {1899, 12, 29, 18, 0, 0}, {1600, 2, 29, 6, 30, 0},    {100, 1, 1, 0, 0, 0},
      {100, 1, 1, 23, 59, 58},  {9999, 12, 31, 23, 59, 59}, {2000, 2, 29, 0, 0, 0},
      {1900, 2, 28, 12, 0, 0},  {1900, 3, 1, 0, 0, 0},
  };
  for (const DateTime::Parts& parts : cases) {
    EXPECT_EQ(DateTime::FromParts(parts).ToParts(), parts) << DateTime::FromParts(parts).ToText();
  }
}

TEST(DateTime, EveryDayOfFourHundredYearsIsOneDayBehindTheOther) {
  double expected = DateTime::FromYmd(1800, 1, 1).days;
  for (int year = 1800; year < 2200; ++year) {
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; day <= 31; ++day) {
        DateTime date;
        try {
          date = DateTime::FromYmd(year, month, day);
        } catch (const Error&) {
          ASSERT_GT(day, 28);
          continue;
        }
        ASSERT_EQ(date.days, expected) << year << "-" << month << "-" << day;
        ASSERT_EQ(date.ToParts(), (DateTime::Parts{year, month, day, 0, 0, 0}));
        ++expected;
      }
    }
  }
  EXPECT_EQ(expected, DateTime::FromYmd(2200, 1, 1).days);
}

TEST(DateTime, TheTimeRunsForwardOnDaysBeforeDayZero) {
  EXPECT_EQ(DateTime(-1.25).ToParts(), (DateTime::Parts{1899, 12, 29, 6, 0, 0}));
  EXPECT_EQ(DateTime(-1.75).ToParts(), (DateTime::Parts{1899, 12, 29, 18, 0, 0}));
  EXPECT_EQ(DateTime(-0.25).ToParts(), (DateTime::Parts{1899, 12, 30, 6, 0, 0}));
  EXPECT_EQ(DateTime::FromParts({1899, 12, 29, 18, 0, 0}).days, -1.75);
}

TEST(DateTime, PartsThatNameNoDateRaiseAnError) {
  const DateTime::Parts cases[] = {
      {99, 12, 31, 0, 0, 0},  {10000, 1, 1, 0, 0, 0}, {2024, 0, 1, 0, 0, 0},
      {2024, 13, 1, 0, 0, 0}, {2024, 1, 0, 0, 0, 0},  {2024, 1, 32, 0, 0, 0},
      {2024, 4, 31, 0, 0, 0}, {2023, 2, 29, 0, 0, 0}, {1900, 2, 29, 0, 0, 0},
      {2024, 2, 30, 0, 0, 0}, {2024, 1, 1, 24, 0, 0}, {2024, 1, 1, -1, 0, 0},
      {2024, 1, 1, 0, 60, 0}, {2024, 1, 1, 0, 0, 60}, {2024, 1, 1, 0, 0, -1},
  };
  for (const DateTime::Parts& parts : cases) {
    EXPECT_EQ(ErrorOf([&] { DateTime::FromParts(parts); }), "error 5")
        << parts.year << "-" << parts.month << "-" << parts.day << " " << parts.hour;
  }
}

TEST(DateTime, NumbersOutsideTheCalendarRaiseOverflow) {
  for (const double days : {-657435.0, 2958466.0, 1e10, -1e10, kInfinity, -kInfinity, kNaN}) {
    EXPECT_EQ(ErrorOf([&] { DateTime(days).ToParts(); }), "error 6") << days;
    EXPECT_EQ(ErrorOf([&] { DateTime(days).ToText(); }), "error 6") << days;
  }
  EXPECT_EQ(DateTime(-657434.75).ToParts(), (DateTime::Parts{100, 1, 1, 18, 0, 0}));
  EXPECT_EQ(DateTime(2958465.75).ToParts(), (DateTime::Parts{9999, 12, 31, 18, 0, 0}));
}

TEST(DateTime, TheTimeIsRoundedToTheNearestSecond) {
  constexpr double kSecond = 1.0 / 86400;
  EXPECT_EQ(DateTime(45322 + 0.4 * kSecond).ToText(), "2024-01-31");
  EXPECT_EQ(DateTime(45322 + 0.6 * kSecond).ToText(), "2024-01-31 00:00:01");
  EXPECT_EQ(DateTime(45322.5 - 0.4 * kSecond).ToText(), "2024-01-31 12:00:00");
}

TEST(DateTime, TheLastHalfSecondOfADayBelongsToTheNextDay) {
  constexpr double kSecond = 1.0 / 86400;
  EXPECT_EQ(DateTime(45323 - 0.4 * kSecond).ToText(), "2024-02-01");
  EXPECT_EQ(DateTime(45323 - 0.6 * kSecond).ToText(), "2024-01-31 23:59:59");
  EXPECT_EQ(DateTime(1 - 0.4 * kSecond).ToText(), "1899-12-31");
  // Before day zero the day behind -3 is -2.
  EXPECT_EQ(DateTime(-(4 - 0.4 * kSecond)).ToParts(), (DateTime::Parts{1899, 12, 28, 0, 0, 0}));
  EXPECT_EQ(DateTime(-(2 - 0.4 * kSecond)).ToParts(), (DateTime::Parts{1899, 12, 30, 0, 0, 0}));
  EXPECT_EQ(ErrorOf([] { DateTime(2958466 - 0.4 * kSecond).ToParts(); }), "error 6");
}

TEST(DateTime, TextHasTheTimeOnlyWhenThereIsOne) {
  EXPECT_EQ(DateTime::FromYmd(2024, 1, 31).ToText(), "2024-01-31");
  EXPECT_EQ(DateTime::FromParts({2024, 1, 31, 13, 5, 0}).ToText(), "2024-01-31 13:05:00");
  EXPECT_EQ(DateTime::FromParts({2024, 11, 3, 0, 0, 7}).ToText(), "2024-11-03 00:00:07");
  EXPECT_EQ(DateTime::FromYmd(100, 1, 1).ToText(), "0100-01-01");
  EXPECT_EQ(DateTime::FromParts({1899, 12, 29, 18, 0, 0}).ToText(), "1899-12-29 18:00:00");
}

TEST(DateTime, TextOfDayZeroIsTheTimeAlone) {
  EXPECT_EQ(DateTime(0.25).ToText(), "06:00:00");
  EXPECT_EQ(DateTime::FromParts({1899, 12, 30, 13, 5, 0}).ToText(), "13:05:00");
}

TEST(DateTime, OrdersByNumber) {
  EXPECT_LT(DateTime::FromYmd(2023, 12, 31), DateTime::FromYmd(2024, 1, 1));
  EXPECT_EQ(DateTime(1.5), DateTime(1.5));
}

// ---- Decimal ----

// High part, low part, scale and sign.
std::string Content(const Decimal& value) {
  return (value.negative() ? "-" : "") + std::to_string(value.high()) + ":" +
         std::to_string(value.low()) + " scale " + std::to_string(value.scale());
}

constexpr const char* kMostDecimal = "79228162514264337593543950335";

TEST(Decimal, FromTextKeepsTheDecimalsAsWritten) {
  const std::pair<const char*, const char*> cases[] = {
      {"0", "0:0 scale 0"},
      {"-0", "0:0 scale 0"},
      {"0.000", "0:0 scale 0"},
      {"12", "0:12 scale 0"},
      {"+12", "0:12 scale 0"},
      {"-1.50", "-0:150 scale 2"},
      {".5", "0:5 scale 1"},
      {"1.5E2", "0:150 scale 0"},
      {"1.5e+2", "0:150 scale 0"},
      {"15E-3", "0:15 scale 3"},
      {"18446744073709551616", "1:0 scale 0"},
      {kMostDecimal, "4294967295:18446744073709551615 scale 0"},
      {"-7.9228162514264337593543950335", "-4294967295:18446744073709551615 scale 28"},
  };
  for (const auto& [text, content] : cases) {
    EXPECT_EQ(Content(Decimal::FromText(text)), content) << text;
  }
}

TEST(Decimal, DecimalsThatDoNotFitAreRoundedHalfToEven) {
  const std::pair<const char*, const char*> cases[] = {
      {"0.00000000000000000000000000005", "0"},
      {"0.00000000000000000000000000015", "0.0000000000000000000000000002"},
      {"0.00000000000000000000000000025", "0.0000000000000000000000000002"},
      {"0.000000000000000000000000000250001", "0.0000000000000000000000000003"},
      {"-0.00000000000000000000000000035", "-0.0000000000000000000000000004"},
      {"7922816251426433759354395033.45", "7922816251426433759354395033.4"},
      {"7922816251426433759354395033.35", "7922816251426433759354395033.4"},
      {"79228162514264337593543950334.5", "79228162514264337593543950334"},
      {"79228162514264337593543950333.5", "79228162514264337593543950334"},
      {"79228162514264337593543950335.4", kMostDecimal},
  };
  for (const auto& [text, rounded] : cases) {
    EXPECT_EQ(Decimal::FromText(text).ToText(), rounded) << text;
  }
}

TEST(Decimal, ADigitFarBehindATieDecidesIt) {
  const std::string tie = "0.00000000000000000000000000025";
  EXPECT_EQ(Decimal::FromText(tie + std::string(200, '0')).ToText(),
            "0.0000000000000000000000000002");
  EXPECT_EQ(Decimal::FromText(tie + std::string(200, '0') + "1").ToText(),
            "0.0000000000000000000000000003");
}

TEST(Decimal, WholePartsBeyond96BitsRaiseOverflow) {
  const std::string texts[] = {
      "79228162514264337593543950336",
      "-79228162514264337593543950336",
      "79228162514264337593543950335.5",
      "1E29",
      "1E400",
      "1E2147483647",
      "1E99999999999",
      std::string(300, '9'),
      std::string(300, '9') + ".5",
  };
  for (const std::string& text : texts) {
    EXPECT_EQ(ErrorOf([&] { Decimal::FromText(text); }), "error 6") << text;
  }
}

TEST(Decimal, WhatIsTooSmallIsZero) {
  for (const char* text : {"1E-29", "1E-400", "-1E-400", "1E-2147483647", "1E-2147483648",
                           "1.5E-2147483648", "1E-99999999999", "0E400"}) {
    EXPECT_EQ(Decimal::FromText(text).ToText(), "0") << text;
  }
}

TEST(Decimal, AnExponentMovesAPointThatStandsFarAway) {
  EXPECT_EQ(Decimal::FromText("1" + std::string(100, '0') + "E-100").ToText(), "1");
  EXPECT_EQ(Decimal::FromText("0." + std::string(99, '0') + "1E100").ToText(), "1");
}

TEST(Decimal, FromIntegerTakesEvery64BitNumber) {
  EXPECT_EQ(Decimal::FromInteger(0).ToText(), "0");
  EXPECT_EQ(Decimal::FromInteger(-5).ToText(), "-5");
  EXPECT_EQ(Decimal::FromInteger(kMostUnits).ToText(), "9223372036854775807");
  EXPECT_EQ(Decimal::FromInteger(kLeastUnits).ToText(), "-9223372036854775808");
}

TEST(Decimal, FromCurrencyIsExact) {
  EXPECT_EQ(Content(Decimal::FromCurrency(Currency(-1.5))), "-0:15000 scale 4");
  EXPECT_EQ(Decimal::FromCurrency(Currency::FromUnits(kLeastUnits)).ToText(),
            "-922337203685477.5808");
}

TEST(Decimal, FromDoubleTakesFifteenDigits) {
  EXPECT_EQ(Content(Decimal::FromDouble(0.1)), "0:1 scale 1");
  EXPECT_EQ(Decimal::FromDouble(1.0 / 3).ToText(), "0.333333333333333");
  EXPECT_EQ(Decimal::FromDouble(-1e28).ToText(), "-10000000000000000000000000000");
  EXPECT_EQ(Decimal::FromDouble(1e-28).ToText(), "0.0000000000000000000000000001");
  EXPECT_EQ(Decimal::FromDouble(-0.0).ToText(), "0");
  for (const double value : {1e29, -1e29, kInfinity, -kInfinity, kNaN}) {
    EXPECT_EQ(ErrorOf([&] { Decimal::FromDouble(value); }), "error 6") << value;
  }
}

TEST(Decimal, TextHasNoTrailingZerosAndNoNegativeZero) {
  EXPECT_EQ(Decimal::FromText("1.500").ToText(), "1.5");
  EXPECT_EQ(Decimal::FromText("100").ToText(), "100");
  EXPECT_EQ(Decimal(0, 1000, 3, true).ToText(), "-1");
  EXPECT_EQ(Decimal(0, 0, 3, true).ToText(), "0");
  EXPECT_EQ(Decimal(0, 1, 28, false).ToText(), "0.0000000000000000000000000001");
}

TEST(Decimal, ToDoubleIsTheNearestDouble) {
  EXPECT_EQ(Decimal::FromText("0.1").ToDouble(), 0.1);
  EXPECT_EQ(Decimal::FromText("-2.50").ToDouble(), -2.5);
  EXPECT_EQ(Decimal::FromText(kMostDecimal).ToDouble(), 79228162514264337593543950335.0);
}

TEST(Decimal, ToScaledIntegerRoundsHalfToEven) {
  const auto scaled = [](const char* text, int decimals) {
    return Decimal::FromText(text).ToScaledInteger(decimals);
  };
  EXPECT_EQ(scaled("2.5", 0), 2);
  EXPECT_EQ(scaled("3.5", 0), 4);
  EXPECT_EQ(scaled("-2.5", 0), -2);
  EXPECT_EQ(scaled("2.50000000000000000001", 0), 3);
  EXPECT_EQ(scaled("1.23455", 4), 12346);
  EXPECT_EQ(scaled("1.23445", 4), 12344);
  EXPECT_EQ(scaled("7", 4), 70000);
}

TEST(Decimal, ToScaledIntegerIsNothingBeyond64Bits) {
  const auto scaled = [](const char* text, int decimals) {
    return Decimal::FromText(text).ToScaledInteger(decimals);
  };
  EXPECT_EQ(scaled("9223372036854775807", 0), kMostUnits);
  EXPECT_EQ(scaled("9223372036854775808", 0), std::nullopt);
  EXPECT_EQ(scaled("-9223372036854775808", 0), kLeastUnits);
  EXPECT_EQ(scaled("-9223372036854775809", 0), std::nullopt);
  EXPECT_EQ(scaled("922337203685477.58075", 4), std::nullopt);
  EXPECT_EQ(scaled("922337203685477.58074", 4), kMostUnits);
  EXPECT_EQ(scaled(kMostDecimal, 4), std::nullopt);
}

TEST(Decimal, ComparesByValueWhateverTheScale) {
  EXPECT_EQ(Decimal::FromText("1.5"), Decimal::FromText("1.500"));
  EXPECT_EQ(Decimal(0, 0, 5, true), Decimal());
  EXPECT_EQ(Decimal(0, 0, 0, true) <=> Decimal(0, 0, 28, false), std::strong_ordering::equal);
  const char* ascending[] = {
      "-79228162514264337593543950335",  "-1.5",
      "-1.4999999999999999999999999999", "0",
      "0.0000000000000000000000000001",  "1",
      "1.0000000000000000000000000001",  "18446744073709551616",
      "79228162514264337593543950334",   kMostDecimal,
  };
  for (std::size_t i = 0; i < std::size(ascending); ++i) {
    for (std::size_t j = 0; j < std::size(ascending); ++j) {
      EXPECT_EQ(Decimal::FromText(ascending[i]) <=> Decimal::FromText(ascending[j]), i <=> j)
          << ascending[i] << " and " << ascending[j];
    }
  }
}

}  // namespace
}  // namespace qdclgl
