#include "qdclgl/frame/vocabulary/strings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace qdclgl {
namespace {

template <class Words>
std::string Joined(const Words& words) {
  std::string text;
  for (const std::string_view word : words) text += (text.empty() ? "" : " ") + std::string(word);
  return text;
}

template <class Words>
bool Contains(const Words& words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

// The words that stand more than once.
template <class Words>
std::string Repeated(const Words& words) {
  std::set<std::string_view> seen;
  std::vector<std::string_view> repeated;
  for (const std::string_view word : words) {
    if (!seen.insert(word).second) repeated.push_back(word);
  }
  return Joined(repeated);
}

// The words that do not begin with `prefix`, or that hold anything but letters and digits behind
// it.
template <class Words>
std::string Unlike(std::string_view prefix, const Words& words) {
  std::vector<std::string_view> unlike;
  for (const std::string_view word : words) {
    const std::string_view rest = word.substr(std::min(prefix.size(), word.size()));
    const bool plain = std::all_of(rest.begin(), rest.end(), [](char c) {
      return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    });
    if (!word.starts_with(prefix) || rest.empty() || !plain) unlike.push_back(word);
  }
  return Joined(unlike);
}

TEST(Strings, TheVocabularyIsComplete) {
  EXPECT_EQ(strings::kTables.size(), 33u);
  EXPECT_EQ(strings::kLists.size(), 26u);
  EXPECT_EQ(strings::kColumns.size(), 245u);
  EXPECT_EQ(strings::kProfileCategories.size(), 15u);
  EXPECT_EQ(strings::kFunctionCodes.size(), 36u);
}

TEST(Strings, NoWordStandsTwiceInItsGroup) {
  EXPECT_EQ(Repeated(strings::kTables), "");
  EXPECT_EQ(Repeated(strings::kLists), "");
  EXPECT_EQ(Repeated(strings::kColumns), "");
  EXPECT_EQ(Repeated(strings::kProfileCategories), "");
  EXPECT_EQ(Repeated(strings::kFunctionCodes), "");
}

TEST(Strings, EachGroupHasItsOwnFormOfWord) {
  EXPECT_EQ(Unlike("t_", strings::kTables), "");
  EXPECT_EQ(Unlike("_", strings::kLists), "");
  EXPECT_EQ(Unlike("F", strings::kColumns), "");
  EXPECT_EQ(Unlike("A00", strings::kFunctionCodes), "");
}

TEST(Strings, GroupsBeginAndEndWithTheirWords) {
  EXPECT_EQ(strings::kTables.front(), "t_Account");
  EXPECT_EQ(strings::kTables.back(), "t_Acnt");
  EXPECT_EQ(strings::kLists.front(), "_Entries");
  EXPECT_EQ(strings::kLists.back(), "_SubColumns");
  EXPECT_EQ(strings::kColumns.front(), "FAccount");
  EXPECT_EQ(strings::kColumns.back(), "FMgBillMoney");
  EXPECT_EQ(strings::kFunctionCodes.front(), "A00406");
  EXPECT_EQ(strings::kFunctionCodes.back(), "A00704");
}

TEST(Strings, AConstantsTextIsItsName) {
  EXPECT_EQ(strings::t_VoucherEntry, "t_VoucherEntry");
  EXPECT_EQ(strings::t_MultiSubColumn, "t_MultiSubColumn");
  EXPECT_EQ(strings::FName, "FName");
  EXPECT_EQ(strings::FSQLColumnName, "FSQLColumnName");
  EXPECT_EQ(strings::FAccountID2, "FAccountID2");
  EXPECT_EQ(strings::FintRate, "FintRate");
  EXPECT_EQ(strings::FAcctint, "FAcctint");
  EXPECT_EQ(strings::A00101, "A00101");
  EXPECT_EQ(strings::categories::GL, "GL");
  EXPECT_EQ(strings::categories::Bank, "Bank");
}

TEST(Strings, TheKeyOfANestedListIsItsNameBehindAnUnderscore) {
  EXPECT_EQ(strings::lists::Entries, "_Entries");
  EXPECT_EQ(strings::lists::Details, "_Details");
  EXPECT_EQ(strings::lists::Columns, "_Columns");
  EXPECT_EQ(strings::lists::CardDepreciationItems, "_CardDepreciationItems");
}

TEST(Strings, MisspeltColumnsStayBesideTheWellSpeltOnes) {
  const std::string_view misspelt[] = {strings::FEndBlance, strings::FEndBlanceFor,
                                       strings::FUnnsed, strings::FPresion, strings::FConversation};
  EXPECT_EQ(Joined(misspelt), "FEndBlance FEndBlanceFor FUnnsed FPresion FConversation");
  for (const std::string_view word : misspelt) EXPECT_TRUE(Contains(strings::kColumns, word));
  EXPECT_TRUE(Contains(strings::kColumns, "FEndBalance"));
  EXPECT_TRUE(Contains(strings::kColumns, "FEndBalanceFor"));
  EXPECT_TRUE(Contains(strings::kColumns, "FPrecision"));
}

TEST(Strings, ProfileCategoriesStandInTheOrderOfLoading) {
  EXPECT_EQ(Joined(strings::kProfileCategories),
            "Base General GL SC MG GB GR PM BM CM Bank CN IC FA PA");
}

TEST(Strings, FurtherWordsAreTheirOwnNames) {
  const std::string_view words[] = {strings::AutoNumbers,
                                    strings::Version,
                                    strings::ProgramName,
                                    strings::AccountLength,
                                    strings::MaxAccountLevel,
                                    strings::PeriodDates,
                                    strings::YearDifference,
                                    strings::StartYear,
                                    strings::StartPeriod,
                                    strings::RateAdjustAccount,
                                    strings::RateAdjustVoucherGroup,
                                    strings::RateAdjustVoucherExplanation,
                                    strings::TransPLVoucherGroup,
                                    strings::TransPLVoucherExplanation,
                                    strings::InitClosed,
                                    strings::EndBalDCFormat,
                                    strings::FAVersion,
                                    strings::FAProgramName,
                                    strings::RateAdjust,
                                    strings::TransferPL,
                                    strings::QueryStatus};
  EXPECT_EQ(Joined(words),
            "AutoNumbers Version ProgramName AccountLength MaxAccountLevel PeriodDates "
            "YearDifference StartYear StartPeriod RateAdjustAccount RateAdjustVoucherGroup "
            "RateAdjustVoucherExplanation TransPLVoucherGroup TransPLVoucherExplanation "
            "InitClosed EndBalDCFormat FAVersion FAProgramName RateAdjust TransferPL QueryStatus");
}

TEST(Strings, WordsForPeopleAreInTheLanguageOfTheLedger) {
  EXPECT_EQ(strings::YearUnit, "\xE5\xB9\xB4");
  EXPECT_EQ(strings::MonthUnit, "\xE6\x9C\x88");
  EXPECT_EQ(strings::DayUnit, "\xE6\x97\xA5");
  EXPECT_EQ(strings::BasicDataPage, "1.\xE5\x9F\xBA\xE6\x9C\xAC\xE8\xB5\x84\xE6\x96\x99");
  EXPECT_EQ(strings::DatabaseName, "Microsoft SQL Server");
}

}  // namespace
}  // namespace qdclgl
