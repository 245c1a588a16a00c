#include "qdclgl/server/periods/setting_types.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "qdclgl/frame/values/values.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

enum class SettingType {
  kSwitch,        // 0 or 1
  kSwitchOrName,  // the same, or the name of a computer
  kWhole,         // a whole number from `least` to `most`
  kNumber,
  kDate,  // 2024-01-31 or 2024/01/31
};

struct KnownSetting {
  std::string_view category, key;
  SettingType type;
  std::int64_t least = 0, most = 0;
};

constexpr std::int64_t kLargestInteger = std::numeric_limits<Integer>::max();
constexpr std::int64_t kLargestLong = std::numeric_limits<Long>::max();
constexpr std::int64_t kMinutesOfAWeek = 7 * 24 * 60;

using enum SettingType;
constexpr KnownSetting kKnown[] = {
    {"Base", "Offline", kSwitchOrName},
    {"Base", "SessionMinutes", kWhole, 0, kMinutesOfAWeek},
    {"GL", "ApproverNotPreparer", kSwitch},
    {"GL", "CashierNotPreparer", kSwitch},
    {"GL", "CheckBeforePost", kSwitch},
    {"GL", "CheckerNotPreparer", kSwitch},
    {"GL", "Closed", kSwitch},
    {"GL", "EarnAccount", kWhole, 0, kLargestLong},
    {"GL", "EarnAssignAccount", kWhole, 0, kLargestLong},
    {"GL", "ExplanationEachEntry", kSwitch},
    {"GL", "NoNegativeAmounts", kSwitch},
    {"GL", "PeriodByMonth", kSwitch},
    {"GL", "PeriodCount", kWhole, 1, 52},
    {"GL", "PosterNotPreparer", kSwitch},
    {"GL", "YearStartMonth", kWhole, 1, 12},
    {"SC", "SCAcctBalStop", kSwitch},
    {"SC", "SCAutoVchNotDblChk", kSwitch},
    {"SC", "SCBillAutoVch", kSwitch},
    {"SC", "SCChangeRenewAcct", kSwitch},
    {"SC", "SCConsignSaveAutoCheck", kSwitch},
    {"SC", "SCDailyEnd", kSwitch},
    {"SC", "SCDpstPayWithInt", kSwitch},
    {"SC", "SCForbidHistory", kSwitch},
    {"SC", "SCForIntMakeNow", kSwitch},
    {"SC", "SCInSettNoteReCheck", kSwitch},
    {"SC", "SCInSettReCheck", kSwitch},
    {"SC", "SCIntAutoVch", kSwitch},
    {"SC", "SCIntCalByBill", kSwitch},
    {"SC", "SCIntDpstModifySum", kSwitch},
    {"SC", "SCIntMultiSaveNoVch", kSwitch},
    {"SC", "SCIntOneYear", kSwitch},
    {"SC", "SCIntSaveAutoCheck", kSwitch},
    {"SC", "SCIntToDpst", kSwitch},
    {"SC", "SCIntToLoan", kSwitch},
    {"SC", "SCIntToOneVch", kSwitch},
    {"SC", "SCLoanPayWithInt", kSwitch},
    {"SC", "SCLongTermLoanMidCal", kSwitch},
    {"SC", "SCMakeVchInLoanExt", kSwitch},
    {"SC", "SCMakeVchInReStat", kSwitch},
    {"SC", "SCNotiPayBillVch", kSwitch},
    {"SC", "SCOneTimeLoanMidCal", kSwitch},
    {"SC", "SCOverDue180", kSwitch},
    {"SC", "SCPayBillVch", kSwitch},
    {"SC", "SCPayNoteReCheck", kSwitch},
    {"SC", "SCPayReCheck", kSwitch},
    {"SC", "SCPreIntCalDpst", kSwitch},
    {"SC", "SCPreIntCalLoan", kSwitch},
    {"SC", "SCPreIntCalStat", kSwitch},
    {"SC", "SCSettAcntSel", kSwitch},
    {"SC", "SCSettOneVch", kSwitch},
    {"SC", "SCStrikeRed", kSwitch},
    {"SC", "SCTransferBillVch", kSwitch},
    {"SC", "SCUsePlan", kSwitch},
    {"SC", "SCStatIntCalWhole", kSwitch},
    {"SC", "SCActionForOverDue", kWhole, 0, kLargestInteger},
    {"SC", "SCIntTaxAcct", kWhole, 0, kLargestInteger},
    {"SC", "SCRtLongLoanIntMethod", kWhole, 0, kLargestInteger},
    {"SC", "SCRtShortLoanIntMethod", kWhole, 0, kLargestInteger},
    {"SC", "SCRtStatIntMethod", kWhole, 0, kLargestInteger},
    {"SC", "SCDiscAmtAcct", kWhole, 0, kLargestLong},
    {"SC", "SCDiscIntEarnAcct", kWhole, 0, kLargestLong},
    {"SC", "SCDiscinterAcct", kWhole, 0, kLargestLong},
    {"SC", "SCMaxLoanExt", kWhole, 0, kLargestLong},
    {"SC", "SCMaxRtStat", kWhole, 0, kLargestLong},
    {"SC", "SCOverDueNum", kWhole, 0, kLargestLong},
    {"SC", "SCIntTaxRate", kNumber},
    {"SC", "SCDateToday", kDate},
    {"SC", "SCYearRateStartDate", kDate},
};

// The whole text as a number; false for anything else.
template <class Number>
bool Reads(std::string_view text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end;
}

bool IsDate(std::string_view text) {
  const char mark = text.size() == 10 ? text[4] : 0;
  Long year = 0, month = 0, day = 0;
  if ((mark != '-' && mark != '/') || text[7] != mark || !Reads(text.substr(0, 4), year) ||
      !Reads(text.substr(5, 2), month) || !Reads(text.substr(8), day)) {
    return false;
  }
  constexpr Long kFirstYear = 100, kLastYear = 9998;
  if (year < kFirstYear || year > kLastYear || month < 1 || month > 12) return false;
  const DateTime next_month = DateTime::FromYmd(year + month / 12, month % 12 + 1, 1);
  return day >= 1 && day <= next_month.days - DateTime::FromYmd(year, month, 1).days;
}

bool IsSwitch(std::string_view text) { return text == "0" || text == "1"; }

// Whether a text that shall be a computer's name looks like one for "on" or "off".
bool LooksLikeSwitch(std::string_view text) {
  static constexpr std::string_view kWords[] = {"true", "false", "yes", "no", "on", "off"};
  double number = 0;
  return Reads(text, number) || std::ranges::any_of(kWords, [&](std::string_view word) {
           return EqualsIgnoringAsciiCase(word, text);
         });
}

bool Fits(const KnownSetting& setting, std::string_view text) {
  switch (setting.type) {
    case kSwitch: return IsSwitch(text);
    case kSwitchOrName: return IsSwitch(text) || !LooksLikeSwitch(text);
    case kWhole: {
      std::int64_t number = 0;
      return Reads(text, number) && number >= setting.least && number <= setting.most;
    }
    case kNumber: {
      double number = 0;
      return Reads(text, number) && std::isfinite(number);
    }
    case kDate: return IsDate(text);
  }
  return true;
}

std::string Wanted(const KnownSetting& setting) {
  switch (setting.type) {
    case kSwitch: return "0 or 1";
    case kSwitchOrName: return "0, 1 or the name of a computer";
    case kWhole:
      return "a whole number from " + std::to_string(setting.least) + " to " +
             std::to_string(setting.most);
    case kNumber: return "a number";
    case kDate: return "a date such as 2024-01-31";
  }
  return "";
}

}  // namespace

void CheckSettingType(std::string_view category, std::string_view key, std::string_view text) {
  if (text.empty()) return;
  for (const KnownSetting& setting : kKnown) {
    if (setting.category != category || setting.key != key || Fits(setting, text)) continue;
    Refuse(refusal::kBadSetting, "Setting " + std::string(key) + " of " + std::string(category) +
                                     " is " + Wanted(setting) + ", not \"" + std::string(text) +
                                     "\".");
  }
}

}  // namespace qdclgl::server
