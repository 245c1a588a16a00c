#include "qdclgl/frame/vocabulary/text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace qdclgl {
namespace {

using namespace std::string_literals;

// One of a kind that begins no character, and characters cut short.
const std::string kMalformed[] = {"\x80"s,         "\xC3"s,     "\xE4\xB8"s,
                                  "\xF0\x9F\x98"s, "\xC0\x80"s, "\xE0\x80\x80"s,
                                  "\xFF"s,         "\xED\xA0"s, "\xF4\x90\x80\x80"s};

const std::u16string kHigh(1, 0xD83D), kLow(1, 0xDE00);
const std::string kHighBytes = "\xED\xA0\xBD", kLowBytes = "\xED\xB8\x80";
const std::string kWhole = "\xF0\x9F\x98\x80";

// ---- Utf16Length ----

TEST(Utf16Length, CountsUnitsAndNotBytes) {
  const std::pair<std::string, std::size_t> cases[] = {
      {"", 0},
      {"abc", 3},
      {"é", 1},
      {"凭证字", 3},
      {"\xF0\x9F\x98\x80", 2},
      {"a\0b"s, 3},
      {"a凭\xF0\x9F\x98\x80z", 5},
      {"\xEF\xBF\xBF", 1},
      {"\xF0\x90\x80\x80", 2},
      {"\xF4\x8F\xBF\xBF", 2},
  };
  for (const auto& [text, units] : cases) EXPECT_EQ(Utf16Length(text), units) << text;
}

TEST(Utf16Length, CountsEachMalformedByteAsOne) {
  for (const std::string& text : kMalformed) {
    EXPECT_EQ(Utf16Length(text), text.size());
    EXPECT_EQ(Utf16Length("a" + text + "b"), text.size() + 2);
  }
}

// ---- UTF-16 ----

TEST(Utf16, EveryCharacterSurvivesTheTrip) {
  for (char32_t character = 1; character <= 0x10FFFF; character += character < 0x11000 ? 1 : 257) {
    std::u16string units;
    if (character < 0x10000) {
      units = {static_cast<char16_t>(character)};
    } else {
      units = {static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)),
               static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF))};
    }
    const std::string text = FromUtf16(units);
    ASSERT_EQ(ToUtf16(text), units) << std::hex << static_cast<unsigned>(character);
    ASSERT_EQ(Utf16Length(text), units.size()) << std::hex << static_cast<unsigned>(character);
  }
}

TEST(Utf16, TextsBecomeTheirUnits) {
  EXPECT_EQ(ToUtf16("aé凭\xF0\x9F\x98\x80"), u"aé凭\xD83D\xDE00");
  EXPECT_EQ(FromUtf16(u"aé凭\xD83D\xDE00"), "aé凭\xF0\x9F\x98\x80");
  EXPECT_EQ(ToUtf16(""), u"");
  EXPECT_EQ(ToUtf16("a\0b"s), u"a\0b"s);
  EXPECT_EQ(FromUtf16(u"a\0b"s), "a\0b"s);
}

TEST(Utf16, MalformedBytesBecomeReplacements) {
  for (const std::string& text : kMalformed) {
    EXPECT_EQ(ToUtf16("a" + text + "b"), u"a" + std::u16string(text.size(), 0xFFFD) + u"b");
  }
}

TEST(Utf16, HalfACharacterGoesThroughInBothDirections) {
  const std::pair<std::u16string, std::string> cases[] = {
      {kHigh, kHighBytes},
      {kLow, kLowBytes},
      {kHigh + u"a", kHighBytes + "a"},
      {kLow + kHigh, kLowBytes + kHighBytes},
      {kHigh + kHigh + kLow, kHighBytes + kWhole},
      {kHigh + kLow + kLow, kWhole + kLowBytes},
  };
  for (const auto& [units, text] : cases) {
    EXPECT_EQ(FromUtf16(units), text);
    EXPECT_EQ(ToUtf16(text), units);
    EXPECT_EQ(Utf16Length(text), units.size());
    EXPECT_EQ(ToUpper("a" + text), "A" + (text.ends_with("a") ? kHighBytes + "A" : text));
  }
}

TEST(Utf16, TwoHalvesOfTwoTextsBecomeTheWholeCharacter) {
  const std::string joined = FromUtf16(u"a" + kHigh) + FromUtf16(kLow + u"b");
  EXPECT_EQ(Utf16Length(joined), 4u);
  EXPECT_EQ(ToUtf16(joined), u"a" + kHigh + kLow + u"b");
  EXPECT_EQ(FromUtf16(ToUtf16(joined)), "a" + kWhole + "b");
}

// ---- IsUtf8 ----

TEST(IsUtf8, TellsItFromOtherBytesAndFromHalvesOfCharacters) {
  for (const std::string& text : {""s, "a\0b"s, "tea \xE8\x8C\xB6 caf\xC3\xA9"s, kWhole}) {
    EXPECT_TRUE(IsUtf8(text)) << text;
  }
  for (const std::string& text : kMalformed) EXPECT_FALSE(IsUtf8("a" + text + "b"));
  for (const std::string& text : {"\xE9"s, "\xE0\x80\xAF"s, "\xF8\x88\x80\x80\x80"s, kHighBytes,
                                  kLowBytes, kHighBytes + kLowBytes}) {
    EXPECT_FALSE(IsUtf8(text));
  }
}

// ---- ToUpper ----

TEST(ToUpper, FoldsTheLettersOfTheKnownScripts) {
  const std::pair<const char*, const char*> cases[] = {
      {"abcxyz019_-", "ABCXYZ019_-"},
      {"àéîõüýþÿ", "ÀÉÎÕÜÝÞŸ"},
      {"āćıĺłňŋőŷźž", "ĀĆıĹŁŇŊŐŶŹŽ"},
      {"άέήίαβωϊςσόύώ", "ΆΈΉΊΑΒΩΪΣΣΌΎΏ"},
      {"абвяёџѡҋ", "АБВЯЁЏѠҊ"},
      {"աբֆ", "ԱԲՖ"},
      {"ａｚ", "ＡＺ"},
  };
  for (const auto& [text, upper] : cases) {
    EXPECT_EQ(ToUpper(text), upper);
    EXPECT_EQ(ToUpper(upper), upper);
  }
}

TEST(ToUpper, LeavesEverythingElseAlone) {
  for (const char* text : {"", "ß", "÷", "凭证字", "\xF0\x9F\x98\x80", "ŉ", "ĸ", "[]{}@`~"}) {
    EXPECT_EQ(ToUpper(text), text);
  }
  EXPECT_EQ(ToUpper("a\0b"s), "A\0B"s);
}

TEST(ToUpper, KeepsMalformedBytes) {
  for (const std::string& text : kMalformed) EXPECT_EQ(ToUpper("a" + text + "b"), "A" + text + "B");
}

TEST(ToUpper, NeverChangesTheNumberOfUnitsAndIsDoneAfterOneTurn) {
  for (char16_t unit = 1; unit != 0; ++unit) {
    if (unit >= 0xD800 && unit <= 0xDFFF) continue;
    const std::string text = FromUtf16(std::u16string(1, unit));
    const std::string upper = ToUpper(text);
    ASSERT_EQ(Utf16Length(upper), 1u) << static_cast<unsigned>(unit);
    ASSERT_EQ(ToUpper(upper), upper) << static_cast<unsigned>(unit);
  }
}

// ---- Blanks ----

TEST(TrimBlanks, TakesBlanksOffBothEnds) {
  EXPECT_EQ(TrimBlanks("  a b  "), "a b");
  EXPECT_EQ(TrimBlanks("a"), "a");
  EXPECT_EQ(TrimBlanks("   "), "");
  EXPECT_EQ(TrimBlanks(""), "");
}

TEST(TrimBlanks, TakesNothingButBlanks) {
  EXPECT_EQ(TrimBlanks("\t a \n"), "\t a \n");
  EXPECT_EQ(TrimBlanks("\xC2\xA0x"), "\xC2\xA0x");
}

// ---- ASCII case ----

TEST(AsciiCase, EqualsIgnoringItComparesWholeTexts) {
  EXPECT_TRUE(EqualsIgnoringAsciiCase("", ""));
  EXPECT_TRUE(EqualsIgnoringAsciiCase("GetList", "GETLIST"));
  EXPECT_TRUE(EqualsIgnoringAsciiCase("a_1", "A_1"));
  EXPECT_FALSE(EqualsIgnoringAsciiCase("a", "ab"));
  EXPECT_FALSE(EqualsIgnoringAsciiCase("ab", "a"));
  EXPECT_FALSE(EqualsIgnoringAsciiCase("a", "b"));
}

TEST(AsciiCase, OnlyLettersOfAsciiAreFolded) {
  EXPECT_FALSE(EqualsIgnoringAsciiCase("é", "É"));
  EXPECT_FALSE(EqualsIgnoringAsciiCase("[", "{"));
  EXPECT_FALSE(EqualsIgnoringAsciiCase("@", "`"));
  EXPECT_EQ(FoldAsciiCase("AbC [É] Z@"), "abc [É] z@");
  EXPECT_EQ(FoldAsciiCase(""), "");
}

TEST(AsciiCase, ToLowerTurnsTheLettersAToZ) {
  static_assert(AsciiToLower('A') == 'a' && AsciiToLower('Z') == 'z');
  for (const char c : "az09_@[`{") EXPECT_EQ(AsciiToLower(c), c);
}

}  // namespace
}  // namespace qdclgl
