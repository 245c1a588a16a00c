#include "qdclgl/cli/nearest.h"

#include <gtest/gtest.h>

#include <array>

namespace qdclgl::cli {
namespace {

constexpr std::array<std::string_view, 4> kWords = {"accounts", "units", "users", "FName"};

TEST(Nearest, AWordIsMeantWithLettersMissingSuperfluousOtherOrSwapped) {
  for (const char* word : {"account", "acounts", "accountss", "ACCOUNTX"}) {
    EXPECT_EQ(Nearest(word, kWords), "accounts") << word;
  }
  EXPECT_EQ(Nearest("user", kWords), "users");
  EXPECT_EQ(Nearest("untis", kWords), "units");
  EXPECT_EQ(Nearest("name", kWords), "FName");
  constexpr std::array<std::string_view, 2> kTwo = {"user", "year"};
  EXPECT_EQ(Nearest("yaer", kTwo), "year") << "two letters that are swapped are one slip";
}

TEST(Nearest, AWordTooFarFromAllIsNone) {
  for (const char* word : {"", "x", "usd", "vouchers", "1000", "books.db"}) {
    EXPECT_EQ(Nearest(word, kWords), "") << word;
  }
  EXPECT_EQ(Nearest(std::string(1'000'000, 'x'), kWords), "");
  EXPECT_EQ(Nearest("users", {}), "");
}

TEST(Nearest, TheSentenceListsAllWords) {
  EXPECT_EQ(NoSuch("kind", "usrs", kWords),
            "there is no kind \"usrs\"; did you mean users? There are accounts, units, users, "
            "FName");
  EXPECT_EQ(NoSuch("kind", "x", kWords),
            "there is no kind \"x\"; there are accounts, units, users, FName");
}

}  // namespace
}  // namespace qdclgl::cli
