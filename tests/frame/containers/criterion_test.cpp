#include "qdclgl/frame/containers/criterion.h"

#include <gtest/gtest.h>

#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;

bool Meets(const Variant& value, const std::string& rest) {
  return Criterion("F " + rest).IsMetBy(value);
}

TEST(Criterion, NamesItsColumn) {
  const std::pair<const char*, const char*> cases[] = {
      {"FName = 'x'", "FName"},   {"  FName='x'  ", "FName"}, {"[FName] = 'x'", "FName"},
      {"[F Name]='x'", "F Name"}, {"F_1=5", "F_1"},           {"凭证字 = 5", "凭证字"},
      {"[a=b] = 5", "a=b"},
  };
  for (const auto& [text, column] : cases) EXPECT_EQ(Criterion(text).column(), column) << text;
}

TEST(Criterion, EachOperatorComparesNumbers) {
  struct Case {
    const char* operation;
    bool below, same, above;
  };
  const Case cases[] = {
      {"=", false, true, false}, {"<>", true, false, true}, {"<", true, false, false},
      {">", false, false, true}, {"<=", true, true, false}, {">=", false, true, true},
  };
  for (const Case& c : cases) {
    for (const std::string& text : {std::string(c.operation) + " 5", std::string(c.operation) + "5",
                                    "  " + std::string(c.operation) + "   5.0  "}) {
      EXPECT_EQ(Meets(Long{4}, text), c.below) << text;
      EXPECT_EQ(Meets(Long{5}, text), c.same) << text;
      EXPECT_EQ(Meets(Currency(5.0), text), c.same) << text;
      EXPECT_EQ(Meets(Decimal::FromText("5.000"), text), c.same) << text;
      EXPECT_EQ(Meets(5.5, text), c.above) << text;
    }
  }
}

TEST(Criterion, EachOperatorComparesTexts) {
  struct Case {
    const char* operation;
    bool below, same, above;
  };
  const Case cases[] = {
      {"=", false, true, false}, {"<>", true, false, true}, {"<", true, false, false},
      {">", false, false, true}, {"<=", true, true, false}, {">=", false, true, true},
  };
  for (const Case& c : cases) {
    const std::string text = std::string(c.operation) + " 'm'";
    EXPECT_EQ(Meets("a", text), c.below) << text;
    EXPECT_EQ(Meets("m", text), c.same) << text;
    EXPECT_EQ(Meets("z", text), c.above) << text;
  }
}

TEST(Criterion, ReadsNumbersWithSignPointAndExponent) {
  EXPECT_TRUE(Meets(Long{-5}, "= -5"));
  EXPECT_TRUE(Meets(0.5, "= .5"));
  EXPECT_TRUE(Meets(Long{1500}, "= 1.5E3"));
  EXPECT_TRUE(Meets(Currency(0.1), "= 0.1"));
}

TEST(Criterion, ReadsDatesBetweenSigns) {
  const Variant date = DateTime::FromYmd(2024, 1, 31);
  EXPECT_TRUE(Meets(date, "= #2024-01-31#"));
  EXPECT_TRUE(Meets(date, "= #2024/1/31#"));
  EXPECT_TRUE(Meets(date, "< #2024-01-31 00:00:01#"));
  EXPECT_FALSE(Meets(date, "> #2024-01-31#"));
}

TEST(Criterion, CaseCountsInTexts) {
  EXPECT_FALSE(Meets("receipts", "= 'Receipts'"));
  EXPECT_FALSE(Meets("receipts", "like 'R*'"));
}

TEST(Criterion, AnApostropheInsideATextIsDoubled) {
  EXPECT_TRUE(Meets("O'Brien", "= 'O''Brien'"));
  EXPECT_TRUE(Meets("'", "= ''''"));
  EXPECT_TRUE(Meets("''", "= ''''''"));
  EXPECT_TRUE(Meets("", "= ''"));
  EXPECT_TRUE(Meets("O'Brien", "like 'O''*'"));
}

TEST(Criterion, TextsAndNumbersAreNeverEqual) {
  EXPECT_FALSE(Meets("5", "= 5"));
  EXPECT_FALSE(Meets(Long{5}, "= '5'"));
  EXPECT_TRUE(Meets("5", "<> 5"));
  EXPECT_TRUE(Meets(Long{5}, "< '5'"));
}

TEST(Criterion, ANullMeetsNoCriterion) {
  for (const char* text :
       {"= 5", "<> 5", "< 5", "> 5", "<= 5", ">= 5", "= ''", "<> 'x'", "like '*'", "like ''"}) {
    EXPECT_FALSE(Meets(Null, text)) << text;
  }
}

TEST(Criterion, EmptyIsZeroOrEmptyText) {
  EXPECT_TRUE(Meets(Variant(), "= 0"));
  EXPECT_TRUE(Meets(Variant(), "= ''"));
  EXPECT_TRUE(Meets(Variant(), "like '*'"));
  EXPECT_FALSE(Meets(Variant(), "like '?'"));
}

TEST(Criterion, LikeTakesStarsForAnyRunOfCharacters) {
  struct Case {
    const char* pattern;
    const char* text;
    bool met;
  };
  const Case cases[] = {
      {"abc", "abc", true},
      {"abc", "abcd", false},
      {"a*", "abc", true},
      {"a%", "abc", true},
      {"*c", "abc", true},
      {"%b%", "abc", true},
      {"*", "", true},
      {"*", "abc", true},
      {"**", "x", true},
      {"a*c", "abc", true},
      {"a*c", "ac", true},
      {"a*c", "abcd", false},
      {"a*b*c", "aXbYbZc", true},
      {"*ab", "aab", true},
      {"*aab", "aaab", true},
      {"a*a", "a", false},
      {"", "", true},
      {"", "a", false},
      {"a?c", "abc", false},
      {"a_c", "abc", false},
      {"凭*字", "凭证字", true},
      {"*b*b*", "ab", false},
      {"a*", "ba", false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Meets(c.text, "like '" + std::string(c.pattern) + "'"), c.met)
        << c.pattern << " and " << c.text;
  }
}

TEST(Criterion, LikeComparesTheTextOfANumber) {
  EXPECT_TRUE(Meets(Long{1001}, "like '10*'"));
  EXPECT_TRUE(Meets(Currency(1.5), "LIKE '1.5'"));
  EXPECT_TRUE(Meets(DateTime::FromYmd(2024, 1, 31), "like '2024-01*'"));
  EXPECT_TRUE(Meets("x", "like'x'"));
}

TEST(Criterion, AValueThatCannotBeComparedRaisesTypeMismatch) {
  EXPECT_EQ(ErrorOf([] { Meets(Nothing, "= 5"); }), "error 13");
  EXPECT_EQ(ErrorOf([] { Meets(Missing, "= 5"); }), "error 13");
}

TEST(Criterion, WhatIsNoCriterionIsRefused) {
  const char* texts[] = {
      "",
      "   ",
      "= 5",
      "[] = 5",
      "[FName = 5",
      "FName",
      "FName 5",
      "FName == 5",
      "FName ! 5",
      "FName =",
      "FName = ",
      "FName = x",
      "FName = 'x",
      "FName = 'O'Brien'",
      "FName = 'x' y",
      "FName = 'x' AND FID = 5",
      "FName = 5 6",
      "FName = 5x",
      "FName = \"x\"",
      "FName = #2024-01-31",
      "FName = #2024-13-31#",
      "FName = ##",
      "FName like",
      "FName like 5",
      "FName like x",
      "FName likes 'x'",
      "FName = Null",
      "F-Name = 5",
      "F.Name = 5",
      "FName = 1E400",
  };
  for (const char* text : texts) {
    try {
      Criterion{text};
      ADD_FAILURE() << "accepted: " << text;
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), error_number::kBadArguments) << text;
      EXPECT_NE(error.description().find(text), std::string::npos) << error.description();
    }
  }
}

TEST(Criterion, ARefusalTellsWhatWasNeededAndWhere) {
  const std::pair<const char*, const char*> cases[] = {
      {"FName = 'O'Brien'", "its end at position 12"},
      {"FName", "an operator (= <> < > <= >= like) at position 6"},
      {"= 5", "a column name at position 1"},
      {"FName = x", "a number, a text in quotes or a date at position 9"},
      {"FName = 'x", "a closing quote at position 11"},
      {"FName like 5", "a text in quotes at position 12"},
  };
  for (const auto& [text, wanted] : cases) {
    EXPECT_EQ(ErrorOf([&text = text] { Criterion{text}; }),
              "error 3001 (Recordset): The criterion \"" + std::string(text) + "\" needs " +
                  wanted + ".");
  }
}

}  // namespace
}  // namespace qdclgl
