#include "qdclgl/frame/objects/conversions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "qdclgl/frame/containers/recordset.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::StateText;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::uint8_t kTextBytes[] = {'4', 0, '2', 0};
constexpr std::uint8_t kOneByte[] = {'4'};

// What a conversion gives, or the error that it raises.
template <class Operation>
std::string Outcome(Operation operation) {
  try {
    return StateText(Variant(operation()));
  } catch (const Error& error) {
    return error.what();
  }
}

// The outcomes of all conversions of `value` in one line, numbers first: CBool, CByte, CInt, CLng,
// CSng, CDbl, CCur, CDec, CDate, CStr.
std::string AllConversions(const Variant& value) {
  std::string text;
  const auto add = [&](auto conversion) {
    if (!text.empty()) text += ", ";
    text += Outcome([&] { return conversion(value); });
  };
  add(CBool);
  add(CByte);
  add(CInt);
  add(CLng);
  add(CSng);
  add(CDbl);
  add(CCur);
  add(CDec);
  add(CDate);
  add(CStr);
  return text;
}

// An object whose default member is `value`.
Variant ObjectWithDefault(const Variant& value) {
  const auto row = Recordset::Create({"F"});
  row->AddRow({value});
  return Variant(row->Fields()->Item(Long{0}));
}

std::string Repeated(const std::string& text, int times) {
  std::string all = text;
  for (int i = 1; i < times; ++i) all += ", " + text;
  return all;
}

// ---- From every type to every type ----

TEST(Conversions, EveryTypeConvertsToEveryType) {
  const std::pair<Variant, const char*> cases[] = {
      {Variant(), "False, 0b, 0%, 0, 0!, 0#, 0@, 0d, #1899-12-30#, \"\""},
      {false, "False, 0b, 0%, 0, 0!, 0#, 0@, 0d, #1899-12-30#, \"False\""},
      {true, "True, 255b, -1%, -1, -1!, -1#, -1@, -1d, #1899-12-29#, \"True\""},
      {Byte{0}, "False, 0b, 0%, 0, 0!, 0#, 0@, 0d, #1899-12-30#, \"0\""},
      {Byte{255}, "True, 255b, 255%, 255, 255!, 255#, 255@, 255d, #1900-09-11#, \"255\""},
      {Integer{5}, "True, 5b, 5%, 5, 5!, 5#, 5@, 5d, #1900-01-04#, \"5\""},
      {Integer{-32768},
       "True, error 6, -32768%, -32768, -32768!, -32768#, -32768@, -32768d, #1810-04-13#, "
       "\"-32768\""},
      {Long{45322},
       "True, error 6, error 6, 45322, 45322!, 45322#, 45322@, 45322d, #2024-01-31#, \"45322\""},
      {Long{2147483647},
       "True, error 6, error 6, 2147483647, 2.147484E+09!, 2147483647#, 2147483647@, 2147483647d, "
       "error 6, \"2147483647\""},
      {0.5f, "True, 0b, 0%, 0, 0.5!, 0.5#, 0.5@, 0.5d, #12:00:00#, \"0.5\""},
      {1e20f, "True, error 6, error 6, error 6, 1E+20!, 1.00000002004088E+20#, error 6, "
              "100000000000000000000d, error 6, \"1E+20\""},
      {-2.5, "True, error 6, -2%, -2, -2.5!, -2.5#, -2.5@, -2.5d, #1899-12-28 12:00:00#, \"-2.5\""},
      {1e300, "True, error 6, error 6, error 6, error 6, 1E+300#, error 6, error 6, error 6, "
              "\"1E+300\""},
      {1e-300, "True, 0b, 0%, 0, 0!, 1E-300#, 0@, 0d, #1899-12-30#, \"1E-300\""},
      {kInfinity, "True, error 6, error 6, error 6, 1.#INF!, 1.#INF#, error 6, error 6, error 6, "
                  "\"1.#INF\""},
      {Currency(2.5), "True, 2b, 2%, 2, 2.5!, 2.5#, 2.5@, 2.5d, #1900-01-01 12:00:00#, \"2.5\""},
      {Currency::FromUnits(9223372036854775807),
       "True, error 6, error 6, error 6, 9.223372E+14!, 922337203685478#, "
       "922337203685477.5807@, 922337203685477.5807d, error 6, \"922337203685477.5807\""},
      {DateTime(1.5), "True, 2b, 2%, 2, 1.5!, 1.5#, 1.5@, 1.5d, #1899-12-31 12:00:00#, "
                      "\"1899-12-31 12:00:00\""},
      {DateTime(45322),
       "True, error 6, error 6, 45322, 45322!, 45322#, 45322@, 45322d, #2024-01-31#, "
       "\"2024-01-31\""},
      {Decimal::FromText("3.5"),
       "True, 4b, 4%, 4, 3.5!, 3.5#, 3.5@, 3.5d, #1900-01-02 12:00:00#, \"3.5\""},
      {Decimal::FromText("0.00000000000000000001"),
       "True, 0b, 0%, 0, 1E-20!, 1E-20#, 0@, 0.00000000000000000001d, #1899-12-30#, "
       "\"0.00000000000000000001\""},
      {Decimal::FromText("79228162514264337593543950335"),
       "True, error 6, error 6, error 6, 7.922816E+28!, 7.92281625142643E+28#, error 6, "
       "79228162514264337593543950335d, error 6, \"79228162514264337593543950335\""},
      {"7", "True, 7b, 7%, 7, 7!, 7#, 7@, 7d, #1900-01-06#, \"7\""},
      {" 1,234.5 ", "True, error 6, 1234%, 1234, 1234.5!, 1234.5#, 1234.5@, 1234.5d, "
                    "#1903-05-18 12:00:00#, \" 1,234.5 \""},
  };
  for (const auto& [value, outcomes] : cases) {
    EXPECT_EQ(AllConversions(value), outcomes) << StateText(value);
  }
}

TEST(Conversions, WhatHasNoFormOfTheWantedTypeRaisesTypeMismatch) {
  const std::string mismatch = "error 13";
  for (const Variant& value :
       {Variant(Null), Variant(Missing), Variant(Nothing), Variant(ErrorValue{5})}) {
    EXPECT_EQ(AllConversions(value), Repeated(mismatch, 10)) << StateText(value);
  }
  EXPECT_EQ(AllConversions("abc"), Repeated(mismatch, 9) + ", \"abc\"");
  EXPECT_EQ(AllConversions(""), Repeated(mismatch, 9) + ", \"\"");
  EXPECT_EQ(AllConversions(Bytes{kTextBytes}), Repeated(mismatch, 9) + ", \"42\"");
}

TEST(Conversions, AnObjectStandsForItsDefaultMember) {
  const Variant values[] = {
      Variant(), true,  Byte{7},       Integer{7},        Long{7},
      2.5f,      2.5,   Currency(2.5), DateTime(45322.5), Decimal::FromText("2.5"),
      "7",       "abc", Null,          Bytes{kTextBytes}, Nothing};
  for (const Variant& value : values) {
    EXPECT_EQ(AllConversions(ObjectWithDefault(value)), AllConversions(value)) << StateText(value);
    EXPECT_EQ(AllConversions(ObjectWithDefault(ObjectWithDefault(value))), AllConversions(value))
        << StateText(value);
  }
}

TEST(Conversions, AnObjectWithoutADefaultMemberRaisesError438) {
  EXPECT_EQ(AllConversions(Variant(Make<Opaque>())),
            Repeated("error 438 (Opaque): The object has no default value.", 10));
}

// ---- Rounding and ranges of whole numbers ----

// The same number as each type that can hold it.
std::vector<Variant> EveryFormOf(const char* number) {
  const double value = CDbl(number);
  std::vector<Variant> forms = {value, CDec(number), number, CCur(number)};
  if (static_cast<double>(static_cast<float>(value)) == value) {
    forms.emplace_back(static_cast<float>(value));
  }
  if (std::fabs(value) < 600000) forms.emplace_back(DateTime(value));
  return forms;
}

TEST(Conversions, ClngRoundsHalvesToEven) {
  const std::pair<const char*, const char*> cases[] = {
      {"0.5", "0"},
      {"1.5", "2"},
      {"2.5", "2"},
      {"-0.5", "0"},
      {"-1.5", "-2"},
      {"-2.5", "-2"},
      {"0.4999", "0"},
      {"0.5001", "1"},
      {"2.5001", "3"},
      {"-2.5001", "-3"},
      {"-2.4999", "-2"},
      {"2147483646.5", "2147483646"},
      {"2147483647.4999", "2147483647"},
      {"2147483647.5", "error 6"},
      {"2147483648", "error 6"},
      {"-2147483648", "-2147483648"},
      {"-2147483648.5", "-2147483648"},
      {"-2147483648.5001", "error 6"},
      {"-2147483649", "error 6"},
      {"-2147483647.5", "-2147483648"},
  };
  for (const auto& [number, rounded] : cases) {
    for (const Variant& value : EveryFormOf(number)) {
      EXPECT_EQ(Outcome([&] { return CLng(value); }), rounded) << StateText(value);
    }
  }
}

TEST(Conversions, CintRoundsHalvesToEven) {
  const std::pair<const char*, const char*> cases[] = {
      {"0.5", "0%"},           {"1.5", "2%"},
      {"-3.5", "-4%"},         {"32766.5", "32766%"},
      {"32767.25", "32767%"},  {"32767.5", "error 6"},
      {"32768", "error 6"},    {"-32767.5", "-32768%"},
      {"-32768.5", "-32768%"}, {"-32768.75", "error 6"},
      {"-32769", "error 6"},
  };
  for (const auto& [number, rounded] : cases) {
    for (const Variant& value : EveryFormOf(number)) {
      EXPECT_EQ(Outcome([&] { return CInt(value); }), rounded) << StateText(value);
    }
  }
}

TEST(Conversions, CbyteRoundsHalvesToEven) {
  const std::pair<const char*, const char*> cases[] = {
      {"-0.5", "0b"},       {"-0.5001", "error 6"}, {"-1", "error 6"},
      {"0.5", "0b"},        {"1.5", "2b"},          {"254.5", "254b"},
      {"255.4999", "255b"}, {"255.5", "error 6"},   {"256", "error 6"},
  };
  for (const auto& [number, rounded] : cases) {
    for (const Variant& value : EveryFormOf(number)) {
      EXPECT_EQ(Outcome([&] { return CByte(value); }), rounded) << StateText(value);
    }
  }
}

// The exact value of the Double decides, not the product that its scaling rounds.
TEST(Conversions, CcurOfADoubleBesideAHalfRoundsToTheNearerUnit) {
  EXPECT_EQ(Outcome([] { return CCur(0.00005); }), "0.0001@");  // a little above the half
  EXPECT_EQ(Outcome([] { return CCur(-0.00005); }), "-0.0001@");
  EXPECT_EQ(Outcome([] { return CCur(5.00015); }), "5.0001@");  // a little below
  EXPECT_EQ(Outcome([] { return CCur(-5.00015); }), "-5.0001@");
  EXPECT_EQ(Outcome([] { return CCur(0.00390625); }), "0.0039@");
  EXPECT_EQ(Outcome([] { return CCur(0.03125); }), "0.0312@");  // halves themselves
  EXPECT_EQ(Outcome([] { return CCur(0.09375); }), "0.0938@");
}

TEST(Conversions, CcurOfALargeDoubleKeepsEveryDigit) {
  EXPECT_EQ(Outcome([] { return CCur(922337203685477.0); }), "922337203685477@");
  EXPECT_EQ(Outcome([] { return CCur(-922337203685477.0); }), "-922337203685477@");
  EXPECT_EQ(Outcome([] { return CCur(900719925474099.125); }), "900719925474099.125@");
  EXPECT_EQ(Outcome([] { return CCur(922337203685478.0); }), "error 6");
}

TEST(Conversions, CdecOfASingleHasItsSevenDigits) {
  EXPECT_EQ(Outcome([] { return CDec(0.1f); }), "0.1d");
  EXPECT_EQ(Outcome([] { return CDec(16777216.0f); }), "16777220d");
}

TEST(Conversions, ClngOfNoFiniteNumberRaisesOverflow) {
  for (const double value : {kInfinity, -kInfinity, kNaN, 1e300, -1e300}) {
    EXPECT_EQ(ErrorOf([&] { CLng(value); }), "error 6") << value;
  }
}

TEST(Conversions, CcurRoundsTheFifthDecimalHalfToEven) {
  const std::pair<Variant, const char*> cases[] = {
      {"1.00005", "1@"},
      {"1.00015", "1.0002@"},
      {"1.00025", "1.0002@"},
      {"1.000250000000000000000001", "1.0003@"},
      {"-1.00005", "-1@"},
      {"-1.00015", "-1.0002@"},
      {Decimal::FromText("1.00005"), "1@"},
      {Decimal::FromText("1.00015"), "1.0002@"},
      {0.03125, "0.0312@"},
      {0.09375, "0.0938@"},
      {0.03125f, "0.0312@"},
  };
  for (const auto& [value, amount] : cases) {
    EXPECT_EQ(Outcome([&value = value] { return CCur(value); }), amount) << StateText(value);
  }
}

TEST(Conversions, CcurTakesLargeTextsAndDecimalsExactly) {
  const std::pair<Variant, const char*> cases[] = {
      {"922337203685477.5807", "922337203685477.5807@"},
      {"-922337203685477.5808", "-922337203685477.5808@"},
      {"922337203685477.58074999", "922337203685477.5807@"},
      {"922337203685477.58075", "error 6"},
      {"-922337203685477.5809", "error 6"},
      {Decimal::FromText("922337203685477.5806"), "922337203685477.5806@"},
      {Decimal::FromText("922337203685477.5808"), "error 6"},
      {1e15, "error 6"},
      {-1e15, "error 6"},
  };
  for (const auto& [value, amount] : cases) {
    EXPECT_EQ(Outcome([&value = value] { return CCur(value); }), amount) << StateText(value);
  }
}

TEST(Conversions, CsngOverflowsBeyondItsRange) {
  EXPECT_EQ(CSng(3.4e38), 3.4e38f);
  EXPECT_EQ(ErrorOf([] { CSng(3.5e38); }), "error 6");
  EXPECT_EQ(ErrorOf([] { CSng(-3.5e38); }), "error 6");
  EXPECT_EQ(ErrorOf([] { CSng("1E39"); }), "error 6");
  EXPECT_EQ(CSng(1e-50), 0.0f);
}

// ---- Texts that are numbers ----

TEST(Conversions, TextsThatAreNumbers) {
  const std::pair<const char*, double> cases[] = {
      {"12", 12},
      {" 12 ", 12},
      {"\t12\r\n", 12},
      {"+5", 5},
      {"-5", -5},
      {"- 5", -5},
      {"5-", -5},
      {"5+", 5},
      {"5 -", -5},
      {"(5)", -5},
      {"( 5 )", -5},
      {" (5) ", -5},
      {"1,234.5", 1234.5},
      {"1,234,567", 1234567},
      {"1E3", 1000},
      {"1e3", 1000},
      {"1E+3", 1000},
      {"1.5E-3", 0.0015},
      {".5", 0.5},
      {"5.", 5},
      {"-.5", -0.5},
      {"007", 7},
      {"&HFF", 255},
      {"&hff", 255},
      {" &HFF ", 255},
      {"&O17", 15},
      {"&o17", 15},
      {"&HFFFFFFFF", -1},
      {"&H7FFFFFFF", 2147483647},
      {"0E400", 0},
      {"1E308", 1e308},
  };
  for (const auto& [text, number] : cases) {
    EXPECT_EQ(CDbl(text), number) << text;
    if (number < 1e300) {
      EXPECT_EQ(CDec(text).ToDouble(), number) << text;
    }
  }
}

TEST(Conversions, TextsThatAreNoNumbersRaiseTypeMismatch) {
  const char* texts[] = {"",           " ",     "abc",      "12abc", "1 2",       "--5",  "+-5",
                         "5--",        "-",     "+",        ".",     "-.",        ",",    ",5",
                         "1.2.3",      "1.5,3", "()",       "( )",   "(5",        "5)",   "(-5)",
                         "1E",         "1E+",   "E5",       "1E5.5", "1EE5",      "&H",   "&",
                         "&HFG",       "&O18",  "&H-1",     "&X12",  "0xFF",      "1d5x", "True",
                         "2024-01-31", "１２",  "Infinity", "nan",   "12\xC2\xA0"};
  for (const char* text : texts) {
    EXPECT_EQ(ErrorOf([&] { CDbl(text); }), "error 13") << text;
    EXPECT_EQ(ErrorOf([&] { CLng(text); }), "error 13") << text;
    EXPECT_EQ(ErrorOf([&] { CCur(text); }), "error 13") << text;
    EXPECT_EQ(ErrorOf([&] { CDec(text); }), "error 13") << text;
  }
}

TEST(Conversions, TextsOfTooLargeNumbersRaiseOverflow) {
  const std::string texts[] = {"1E400",
                               "-1E400",
                               "1E309",
                               "1E99999999999",
                               "&HFFFFFFFFF",
                               "&O77777777777777",
                               std::string(400, '9'),
                               std::string(400, '9') + "E-50",
                               std::string(400, '9') + ".5"};
  for (const std::string& text : texts) {
    EXPECT_EQ(ErrorOf([&] { CDbl(text); }), "error 6") << text;
    EXPECT_EQ(ErrorOf([&] { CLng(text); }), "error 6") << text;
    EXPECT_EQ(ErrorOf([&] { CCur(text); }), "error 6") << text;
    EXPECT_EQ(ErrorOf([&] { CDec(text); }), "error 6") << text;
  }
}

TEST(Conversions, TextsOfTooSmallNumbersAreZero) {
  const std::string zeros(400, '0');
  for (const std::string& text :
       {std::string("1E-400"), std::string("-1E-400"), std::string("1E-99999999999"),
        std::string("1E-2147483648"), "0." + zeros + "1", "." + zeros + "1E+50",
        "12345E-" + std::string("400")}) {
    EXPECT_EQ(CDbl(text), 0) << text;
    EXPECT_EQ(CLng(text), 0) << text;
    EXPECT_EQ(CCur(text).units(), 0) << text;
    EXPECT_EQ(CDec(text).ToText(), "0") << text;
  }
}

TEST(Conversions, LongTextsOfOrdinaryNumbersAreRead) {
  EXPECT_EQ(CDbl("1" + std::string(400, '0') + "E-400"), 1);
  EXPECT_EQ(CDbl("0." + std::string(399, '0') + "1E400"), 1);
  EXPECT_EQ(CLng("1" + std::string(400, '0') + "E-400"), 1);
}

// ---- Booleans ----

TEST(Conversions, CboolReadsTheTwoWordsWithoutRegardToCase) {
  for (const char* text : {"True", "true", "TRUE", "tRuE"}) EXPECT_TRUE(CBool(text)) << text;
  for (const char* text : {"False", "false", "FALSE"}) EXPECT_FALSE(CBool(text)) << text;
}

TEST(Conversions, CboolOfANumberIsWhetherItIsNotZero) {
  const std::pair<Variant, bool> cases[] = {
      {"1", true},
      {"-1", true},
      {"0", false},
      {"0.0", false},
      {"0.001", true},
      {"&H1", true},
      {"&H0", false},
      {" 5 ", true},
      {"(0)", false},
      {Long{-1}, true},
      {0.001, true},
      {-0.0, false},
      {DateTime(0), false},
      {DateTime(0.5), true},
      {Currency::FromUnits(1), true},
      {Decimal(0, 0, 5, true), false},
  };
  for (const auto& [value, truth] : cases) EXPECT_EQ(CBool(value), truth) << StateText(value);
}

TEST(Conversions, CboolOfAnyOtherTextRaisesTypeMismatch) {
  for (const char* text : {"", "yes", "Truex", "T", "on"}) {
    EXPECT_EQ(ErrorOf([&] { CBool(text); }), "error 13") << text;
  }
}

// ---- Dates ----

TEST(Conversions, DatesAreReadFromText) {
  const std::pair<const char*, const char*> cases[] = {
      {"2024-01-31", "2024-01-31"},
      {"2024/1/31", "2024-01-31"},
      {"2024-1-3", "2024-01-03"},
      {" 2024-01-31 ", "2024-01-31"},
      {"2024-01-31 13:05", "2024-01-31 13:05:00"},
      {"2024-01-31 13:05:09", "2024-01-31 13:05:09"},
      {"2024-01-31T13:05:09", "2024-01-31 13:05:09"},
      {"2024/01/31 1:2:3", "2024-01-31 01:02:03"},
      {"13:05", "13:05:00"},
      {"13:05:09", "13:05:09"},
      {"0:00:01", "00:00:01"},
      {"0100-01-01", "0100-01-01"},
      {"9999-12-31 23:59:59", "9999-12-31 23:59:59"},
      {"1899-12-29 18:00", "1899-12-29 18:00:00"},
      {"2024-02-29", "2024-02-29"},
      {"45322", "2024-01-31"},
      {"45322.5", "2024-01-31 12:00:00"},
      {"-1.25", "1899-12-29 06:00:00"},
  };
  for (const auto& [text, date] : cases) EXPECT_EQ(CDate(text).ToText(), date) << text;
}

TEST(Conversions, TextsThatNameNoDateRaiseTypeMismatch) {
  const char* texts[] = {"",
                         "abc",
                         "2024-01",
                         "2024-13-01",
                         "2024-02-30",
                         "2023-02-29",
                         "2024-01-32",
                         "99-01-01",
                         "10000-01-01",
                         "2024-01/31",
                         "2024-00-01",
                         "24:00",
                         "12:60",
                         "12:00:60",
                         "12:",
                         ":30",
                         "12:30:15:1",
                         "2024-01-31 13",
                         "2024-01-31x",
                         "2024-01-31 ab",
                         "2024-01-31 25:00",
                         "2024-01-31T",
                         "2024-001-01",
                         "31.01.2024",
                         "12:30 PM x"};
  for (const char* text : texts) {
    EXPECT_EQ(ErrorOf([&] { CDate(text); }), "error 13") << text;
  }
}

TEST(Conversions, NumbersBeyondTheCalendarAreNoDates) {
  for (const Variant& value : {Variant(2958466.0), Variant(-657435.0), Variant("2958466"),
                               Variant(Long{2147483647}), Variant(1e300), Variant(kNaN)}) {
    EXPECT_EQ(ErrorOf([&] { CDate(value); }), "error 6") << StateText(value);
  }
  EXPECT_EQ(CDate(2958465.0).ToText(), "9999-12-31");
  EXPECT_EQ(CDate(Long{-657434}).ToText(), "0100-01-01");
}

TEST(Conversions, TheTextOfADateReadsBackAsTheDate) {
  for (const double days : {45322.0, 45322.25, 0.5, -1.75, -657434.0, 2958465.5}) {
    EXPECT_EQ(CDate(CStr(DateTime(days))).days, days) << CStr(DateTime(days));
  }
}

// ---- Texts ----

TEST(Conversions, CstrOfAByteArrayIsTheUtf16TextOfItsBytes) {
  constexpr std::uint8_t wide[] = {0x2d, 0x4e, 'a', 0, 0x3d, 0xd8, 0x00, 0xde};
  EXPECT_EQ(CStr(Bytes{wide}), "中a\xF0\x9F\x98\x80");
  EXPECT_EQ(CStr(Bytes{std::span(wide).first(6)}), "中a\xED\xA0\xBD");
  EXPECT_EQ(CStr(Bytes{kOneByte}), "");
  EXPECT_EQ(CStr(Bytes{}), "");
}

TEST(Conversions, CstrOfTheNegativeZeroIsZero) { EXPECT_EQ(CStr(-0.0), "0"); }

TEST(Conversions, ConcatenatedTextIsTheTextAndNothingForNull) {
  EXPECT_EQ(ConcatenatedText(Null), "");
  EXPECT_EQ(ConcatenatedText(Variant()), "");
  EXPECT_EQ(ConcatenatedText(true), "True");
  EXPECT_EQ(ConcatenatedText(Currency(1.5)), "1.5");
  EXPECT_EQ(ConcatenatedText(ObjectWithDefault(Null)), "");
  EXPECT_EQ(ConcatenatedText(ObjectWithDefault("x")), "x");
  EXPECT_EQ(ErrorOf([] { ConcatenatedText(Missing); }), "error 13");
  EXPECT_EQ(ErrorOf([] { ConcatenatedText(Nothing); }), "error 13");
}

TEST(Conversions, HasEmptyTextAgreesWithConcatenatedText) {
  const Variant values[] = {
      Variant(),
      Null,
      Missing,
      true,
      false,
      Byte{0},
      Byte{7},
      Integer{0},
      Integer{7},
      Long{0},
      Long{7},
      0.0f,
      7.0f,
      0.0,
      7.0,
      Currency(),
      Currency(7.5),
      DateTime(0),
      DateTime(7.5),
      Decimal(),
      Decimal::FromInteger(7),
      "",
      " ",
      "text",
      "a text of more than fourteen bytes",
      std::string(1, '\0'),
      Nothing,
      Bytes{},
      Bytes{kOneByte},
      Bytes{kTextBytes},
      Variant(Make<Opaque>()),
  };
  const auto agree = [](const Variant& value) {
    const std::string by_text = Outcome([&] { return ConcatenatedText(value).empty(); });
    EXPECT_EQ(Outcome([&] { return HasEmptyText(value); }), by_text) << StateText(value);
  };
  for (const Variant& value : values) {
    agree(value);
    agree(ObjectWithDefault(value));
  }
}

// ---- Val ----

TEST(Val, ReadsTheNumberAtTheBeginning) {
  const std::pair<const char*, double> cases[] = {
      {"12abc", 12},     {"12", 12},    {"  12", 12},       {"1 615 198th", 1615198},
      {"\t1\n2", 12},    {"-5", -5},    {"- 5", -5},        {"+5", 5},
      {"5-", 5},         {"(5)", 0},    {"1,234", 1},       {"1.5.3", 1.5},
      {".5", 0.5},       {"-.5", -0.5}, {"5.", 5},          {"1E3", 1000},
      {"1e-3x", 0.001},  {"1E", 1},     {"1E+", 1},         {"1E5.5", 100000},
      {"1EE5", 1},       {"&HFF", 255}, {"&hffz", 255},     {"& H F F", 255},
      {"&O17", 15},      {"&O18", 1},   {"&HFFFFFFFF", -1}, {"007", 7},
      {"12 abc 34", 12}, {"1E-400", 0},
  };
  for (const auto& [text, number] : cases) EXPECT_EQ(Val(text), number) << text;
}

TEST(Val, IsZeroWhenNoNumberStandsThere) {
  for (const char* text : {"", " ", "abc", "-", "+", ".", "-.", "--5", "+-5", "E5", "-E5", "&",
                           "&H", "&HG", "&X12", "$5", "True", "凭证"}) {
    EXPECT_EQ(Val(text), 0) << text;
  }
}

// ---- Comparison ----

constexpr auto kLess = std::partial_ordering::less;
constexpr auto kEqual = std::partial_ordering::equivalent;
constexpr auto kGreater = std::partial_ordering::greater;

std::string OrderText(std::partial_ordering order) {
  return order == kLess ? "<" : order == kEqual ? "=" : order == kGreater ? ">" : "unordered";
}

// "<", "=", ">", "unordered" or the error.
std::string Order(const Variant& left, const Variant& right) {
  std::string order;
  const std::string error = ErrorOf([&] { order = OrderText(Compare(left, right)); });
  return error == "no error" ? order : error;
}

std::string Mirrored(const std::string& order) {
  return order == "<" ? ">" : order == ">" ? "<" : order;
}

TEST(Compare, NullIsUnorderedBesideWhateverCanBeCompared) {
  for (const Variant& value : {Variant(), Variant(Null), Variant(true), Variant(Long{0}),
                               Variant(0.0), Variant(""), Variant("a"), Variant(DateTime(0))}) {
    EXPECT_EQ(Order(Null, value), "unordered") << StateText(value);
    EXPECT_EQ(Order(value, Null), "unordered") << StateText(value);
    EXPECT_FALSE(Equals(Null, value)) << StateText(value);
  }
}

TEST(Compare, NumbersOfEveryTypeCompareByValue) {
  const std::vector<std::vector<Variant>> ascending = {
      {
          Variant(-2.0),
          Integer{-2},
          Long{-2},
          -2.0f,
          Currency(Long{-2}),
          DateTime(-2),
          Decimal::FromInteger(-2),
      },
      {true, Integer{-1}, Long{-1}, -1.0f, -1.0, Currency(Long{-1}), DateTime(-1),
       Decimal::FromInteger(-1)},
      {false, Byte{0}, Integer{0}, Long{0}, 0.0f, 0.0, -0.0, Currency(), DateTime(0), Decimal(),
       Decimal(0, 0, 7, true), Variant()},
      {0.5f, 0.5, Currency(0.5), DateTime(0.5), Decimal::FromText("0.50")},
      {Byte{255}, Integer{255}, Long{255}, 255.0f, 255.0, Currency(Long{255}), DateTime(255),
       Decimal::FromInteger(255)},
  };
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      const char* expected = i < j ? "<" : i == j ? "=" : ">";
      for (const Variant& left : ascending[i]) {
        for (const Variant& right : ascending[j]) {
          EXPECT_EQ(Order(left, right), expected) << StateText(left) << " and " << StateText(right);
          EXPECT_EQ(Equals(left, right), i == j) << StateText(left) << " and " << StateText(right);
        }
      }
    }
  }
}

TEST(Compare, FixedPointNumbersCompareExactly) {
  const Variant currency = Currency::FromUnits(9223372036854775807);
  EXPECT_EQ(Order(currency, Currency::FromUnits(9223372036854775806)), ">");
  EXPECT_EQ(Order(currency, Decimal::FromText("922337203685477.58070000001")), "<");
  EXPECT_EQ(Order(currency, Decimal::FromText("922337203685477.5807")), "=");
  EXPECT_EQ(Order(Decimal::FromText("79228162514264337593543950335"),
                  Decimal::FromText("79228162514264337593543950334")),
            ">");
  EXPECT_EQ(Order(Long{2147483647}, Currency::FromUnits(21474836470001)), "<");
  EXPECT_EQ(Order(Long{2147483647}, Decimal::FromText("2147483647.00000000000000001")), "<");
  EXPECT_EQ(Order(true, Decimal::FromText("-1.0000000000000000000000001")), ">");
}

TEST(Compare, BesideAFloatingNumberAllNumbersAreDoubles) {
  const Variant most = Currency::FromUnits(9223372036854775807);
  const Variant almost_most = Currency::FromUnits(9223372036854775806);
  const Variant as_double = most.As<Double>();
  EXPECT_EQ(Order(most, as_double), "=");
  EXPECT_EQ(Order(almost_most, as_double), "=");
  EXPECT_EQ(Order(0.1f, 0.1), ">");
  EXPECT_EQ(Order(0.1f, Currency(0.1)), ">");
  EXPECT_EQ(Order(0.1, Currency(0.1)), "=");
  EXPECT_EQ(Order(0.1, Decimal::FromText("0.1")), "=");
  EXPECT_EQ(Order(DateTime(0.1), Decimal::FromText("0.1")), "=");
}

TEST(Compare, NoNumberIsUnorderedBesideNumbers) {
  EXPECT_EQ(Order(kNaN, kNaN), "unordered");
  EXPECT_EQ(Order(kNaN, Long{1}), "unordered");
  EXPECT_EQ(Order(Variant(), kNaN), "unordered");
  EXPECT_EQ(Order(kInfinity, 1e300), ">");
}

TEST(Compare, TextsCompareByteByByteWithCase) {
  const char* ascending[] = {"", " ", "10", "9", "A", "AB", "B", "a", "aa", "b", "é", "凭", "凭证"};
  for (std::size_t i = 0; i < std::size(ascending); ++i) {
    for (std::size_t j = 0; j < std::size(ascending); ++j) {
      EXPECT_EQ(Order(ascending[i], ascending[j]), i < j    ? "<"
                                                   : i == j ? "="
                                                            : ">")
          << ascending[i] << " and " << ascending[j];
    }
  }
}

TEST(Compare, LongAndShortTextsCompareAlike) {
  const std::string text(40, 'x');
  EXPECT_EQ(Order(text, std::string(40, 'x')), "=");
  EXPECT_EQ(Order(text, text.substr(0, 10)), ">");
  EXPECT_EQ(Order(text, "y"), "<");
}

TEST(Compare, ANumberIsLessThanAnyText) {
  for (const Variant& number :
       {Variant(true), Variant(Byte{5}), Variant(Integer{5}), Variant(Long{5}), Variant(5.0f),
        Variant(5.0), Variant(Currency(5.0)), Variant(DateTime(5)),
        Variant(Decimal::FromInteger(5)), Variant(kInfinity)}) {
    for (const char* text : {"", "5", "0", "-1", "a"}) {
      EXPECT_EQ(Order(number, text), "<") << StateText(number) << " and " << text;
      EXPECT_EQ(Order(text, number), ">") << StateText(number) << " and " << text;
    }
  }
}

TEST(Compare, EmptyIsZeroBesideANumberAndEmptyTextBesideAText) {
  EXPECT_EQ(Order(Variant(), Variant()), "=");
  EXPECT_EQ(Order(Variant(), Long{0}), "=");
  EXPECT_EQ(Order(Variant(), false), "=");
  EXPECT_EQ(Order(Variant(), Long{1}), "<");
  EXPECT_EQ(Order(Variant(), -0.5), ">");
  EXPECT_EQ(Order(Variant(), Decimal::FromText("0.1")), "<");
  EXPECT_EQ(Order(Variant(), ""), "=");
  EXPECT_EQ(Order(Variant(), "a"), "<");
  EXPECT_EQ(Order("0", Variant()), ">");
}

TEST(Compare, AnObjectStandsForItsDefaultMember) {
  EXPECT_EQ(Order(ObjectWithDefault(Long{5}), 5.0), "=");
  EXPECT_EQ(Order("a", ObjectWithDefault("b")), "<");
  EXPECT_EQ(Order(ObjectWithDefault(Long{2}), ObjectWithDefault(Long{1})), ">");
  EXPECT_EQ(Order(ObjectWithDefault(Null), Long{1}), "unordered");
  EXPECT_EQ(Order(Variant(Make<Opaque>()), Long{1}),
            "error 438 (Opaque): The object has no default value.");
}

TEST(Compare, MissingNothingByteArraysAndErrorsRaiseTypeMismatch) {
  for (const Variant& refused :
       {Variant(Missing), Variant(Nothing), Variant(Bytes{kTextBytes}), Variant(ErrorValue{5})}) {
    for (const Variant& value : {Variant(), Variant(Null), Variant(Long{1}), Variant(1.5),
                                 Variant("a"), Variant(DateTime(1)), Variant(Missing), refused}) {
      EXPECT_EQ(Order(refused, value), "error 13") << StateText(refused) << StateText(value);
      EXPECT_EQ(Order(value, refused), "error 13") << StateText(refused) << StateText(value);
    }
  }
}

// Numbers of all types, among them neighbours that only differ exactly.
std::vector<Variant> ManyNumbers() {
  return {
      -kInfinity,
      -1e300,
      Decimal::FromText("-79228162514264337593543950335"),
      Currency::FromUnits(-9223372036854775807 - 1),
      Currency::FromUnits(-9223372036854775807),
      -922337203685477.5,
      Long{-2147483647},
      DateTime(-657434),
      Integer{-32768},
      -2.5f,
      -2.5,
      Currency(-2.5),
      true,
      -1.0,
      DateTime(-0.25),
      false,
      Byte{0},
      Variant(),
      0.0f,
      -0.0,
      Decimal(0, 0, 28, true),
      DateTime(0),
      Decimal::FromText("0.0000000000000000000000000001"),
      5e-324,
      Currency::FromUnits(1),
      0.0001,
      0.1f,
      0.1,
      Currency(0.1),
      Decimal::FromText("0.1"),
      1.0 / 3,
      Decimal::FromText("0.3333333333333333333333333333"),
      0.5,
      DateTime(0.5),
      Byte{1},
      Integer{1},
      Long{1},
      1.0f,
      Currency(Long{1}),
      DateTime(1),
      Decimal::FromText("1.000"),
      Byte{255},
      Integer{32767},
      DateTime(45322.5),
      Long{2147483647},
      2147483647.0,
      Currency(Long{2147483647}),
      Decimal::FromText("2147483647.0000000000000001"),
      9007199254740992.0,
      Decimal::FromText("9007199254740993"),
      Currency::FromUnits(9223372036854775806),
      Currency::FromUnits(9223372036854775807),
      Currency::FromUnits(9223372036854775807).ToDouble(),
      Decimal::FromText("922337203685477.58071"),
      Decimal::FromText("79228162514264337593543950334"),
      Decimal::FromText("79228162514264337593543950335"),
      79228162514264337593543950335.0,
      1e300,
      kInfinity,
  };
}

TEST(Compare, IsAntisymmetricOverAllTypes) {
  std::vector<Variant> values = ManyNumbers();
  for (const Variant& value :
       {Variant(Null), Variant(Missing), Variant(Nothing), Variant(Bytes{kTextBytes}), Variant(""),
        Variant("a"), Variant("A"), Variant("0"), Variant("凭证字"), Variant(std::string(20, 'z')),
        Variant(kNaN), ObjectWithDefault(Long{1}), ObjectWithDefault("a"),
        ObjectWithDefault(Null)}) {
    values.push_back(value);
  }
  for (const Variant& left : values) {
    for (const Variant& right : values) {
      EXPECT_EQ(Order(left, right), Mirrored(Order(right, left)))
          << StateText(left) << " and " << StateText(right);
    }
  }
}

TEST(Compare, EveryNumberEqualsItself) {
  for (const Variant& value : ManyNumbers())
    EXPECT_EQ(Order(value, value), "=") << StateText(value);
}

TEST(Compare, BeingLessIsTransitiveWithinNumbers) {
  const std::vector<Variant> numbers = ManyNumbers();
  for (const Variant& a : numbers) {
    for (const Variant& b : numbers) {
      if (Compare(a, b) != kLess) continue;
      for (const Variant& c : numbers) {
        if (Compare(b, c) != kLess) continue;
        EXPECT_EQ(Order(a, c), "<")
            << StateText(a) << " < " << StateText(b) << " < " << StateText(c);
      }
    }
  }
}

TEST(Compare, BeingEqualIsTransitiveWithinNumbersThatADoubleHolds) {
  std::vector<Variant> numbers;
  for (const Variant& value : ManyNumbers()) {
    // Of the fixed-point numbers those with few digits and whole eighths.
    const bool fixed = value.Is(VariantType::kCurrency) || value.Is(VariantType::kDecimal);
    const double number = CDbl(value);
    if (!fixed || (std::fabs(number) < 1e9 && std::fmod(number * 8, 1) == 0)) {
      numbers.push_back(value);
    }
  }
  ASSERT_GT(numbers.size(), 40u);
  for (const Variant& a : numbers) {
    for (const Variant& b : numbers) {
      if (!Equals(a, b)) continue;
      for (const Variant& c : numbers) {
        if (!Equals(b, c)) continue;
        EXPECT_EQ(Order(a, c), "=")
            << StateText(a) << " = " << StateText(b) << " = " << StateText(c);
      }
    }
  }
}

TEST(Equals, HoldsForEqualValuesOnly) {
  EXPECT_TRUE(Equals(Long{5}, 5.0));
  EXPECT_TRUE(Equals("a", "a"));
  EXPECT_TRUE(Equals(Variant(), ""));
  EXPECT_FALSE(Equals("a", "A"));
  EXPECT_FALSE(Equals(Long{5}, "5"));
  EXPECT_FALSE(Equals(Null, Null));
  EXPECT_FALSE(Equals(kNaN, kNaN));
}

// ---- As ----

TEST(Conversions, AsConvertsAsAnAssignmentDoes) {
  EXPECT_EQ(Variant("7").As<Long>(), 7);
  EXPECT_EQ(Variant(2.5).As<Integer>(), 2);
  EXPECT_EQ(Variant(Long{7}).As<String>(), "7");
  EXPECT_EQ(Variant(Long{7}).As<Boolean>(), true);
  EXPECT_EQ(Variant("1.5").As<Currency>(), Currency(1.5));
  EXPECT_EQ(Variant("2024-01-31").As<DateTime>(), DateTime::FromYmd(2024, 1, 31));
  EXPECT_EQ(Variant(Long{7}).As<Byte>(), 7);
  EXPECT_EQ(Variant(Long{7}).As<Single>(), 7.0f);
  EXPECT_EQ(Variant(Long{7}).As<Double>(), 7.0);
  EXPECT_EQ(Variant("7.50").As<Decimal>().ToText(), "7.5");
  EXPECT_EQ(StateText(Variant(Null).As<Variant>()), "Null");
  EXPECT_EQ(ErrorOf([] { Variant(Null).As<String>(); }), "error 13");
}

TEST(Conversions, AValueOfTheWantedTypeIsTakenAsItIs) {
  EXPECT_EQ(Variant(DateTime(1e10)).As<DateTime>().days, 1e10);
  EXPECT_TRUE(std::isnan(Variant(kNaN).As<Double>()));
}

}  // namespace
}  // namespace qdclgl
