#include "qdclgl/server/periods/setting_types.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "qdclgl/frame/values/values.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr std::int64_t kLargestInteger = std::numeric_limits<Integer>::max();
constexpr std::int64_t kLargestLong = std::numeric_limits<Long>::max();

using enum SettingType;

// What is known of these is their type; what they mean is settlement programs' own.
constexpr std::string_view kSettlement = "an option of settlement programs";

constexpr KnownSetting kKnown[] = {
    {"Base", "Offline", kSwitchOrName, 0, 0, "",
     "whether clients work off line: none, all, or one computer"},
    {"Base", "SessionMinutes", kWhole, 0, kMinutesOfAWeek, "480",
     "how long an unused session lasts; 0 without an end"},
    {"General", "CompanyAddress", kAnyText, 0, 0, "",
     "the company's address, at the head of pages and exports"},
    {"General", "CompanyName", kAnyText, 0, 0, "",
     "the company's name, at the head of pages and exports"},
    {"General", "CompanyPhone", kAnyText, 0, 0, "", "the company's telephone number"},
    {"GL", "ApproverNotPreparer", kSwitch, 0, 0, "0",
     "nobody approves a voucher that he had a hand in"},
    {"GL", "CashierNotPreparer", kSwitch, 0, 0, "0",
     "nobody cashes a voucher that he had a hand in"},
    {"GL", "CheckBeforePost", kSwitch, 0, 0, "0", "a voucher is checked before it is posted"},
    {"GL", "CheckerNotPreparer", kSwitch, 0, 0, "0",
     "nobody checks a voucher that he had a hand in"},
    {"GL", "Closed", kSwitch, 0, 0, "0", "the ledger is closed, for programs that ask"},
    {"GL", "CurrentPeriod", kKept, 0, 0, "", "the period that the books stand in"},
    {"GL", "CurrentYear", kKept, 0, 0, "", "the year that the books stand in"},
    {"GL", "EarnAccount", kWhole, 0, kLargestLong, "",
     "id of the account that a year's result is carried to"},
    {"GL", "EarnAssignAccount", kWhole, 0, kLargestLong, "",
     "id of the account that earnings are assigned by"},
    {"GL", "ExplanationEachEntry", kSwitch, 0, 0, "0",
     "programs ask for an explanation on each line"},
    {"GL", "NoNegativeAmounts", kSwitch, 0, 0, "0", "vouchers have no negative amounts"},
    {"GL", "PeriodByMonth", kSwitch, 0, 0, "1", "periods are calendar months, otherwise weeks"},
    {"GL", "PeriodCount", kWhole, 1, 52, "12", "how many periods a year has"},
    {"GL", "PosterNotPreparer", kSwitch, 0, 0, "0", "nobody posts a voucher that he had a hand in"},
    {"GL", "RevaluationAccount", kWhole, 0, kLargestLong, "",
     "id of the account that differences of a revaluation are booked on"},
    {"GL", "StartPeriod", kKept, 0, 0, "", "the period that the books begin with"},
    {"GL", "StartYear", kKept, 0, 0, "", "the year that the books begin with"},
    {"GL", "YearStartMonth", kWhole, 1, 12, "1", "the month that an accounting year begins with"},
    {"SC", "SCAcctBalStop", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCAutoVchNotDblChk", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCBillAutoVch", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCChangeRenewAcct", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCConsignSaveAutoCheck", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCDailyEnd", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCDpstPayWithInt", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCForbidHistory", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCForIntMakeNow", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCInSettNoteReCheck", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCInSettReCheck", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCIntAutoVch", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCIntCalByBill", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCIntDpstModifySum", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCIntMultiSaveNoVch", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCIntOneYear", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCIntSaveAutoCheck", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCIntToDpst", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCIntToLoan", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCIntToOneVch", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCLoanPayWithInt", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCLongTermLoanMidCal", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCMakeVchInLoanExt", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCMakeVchInReStat", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCNotiPayBillVch", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCOneTimeLoanMidCal", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCOverDue180", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCPayBillVch", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCPayNoteReCheck", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCPayReCheck", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCPreIntCalDpst", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCPreIntCalLoan", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCPreIntCalStat", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCSettAcntSel", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCSettOneVch", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCStrikeRed", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCTransferBillVch", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCUsePlan", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCStatIntCalWhole", kSwitch, 0, 0, "0", kSettlement},
    {"SC", "SCActionForOverDue", kWhole, 0, kLargestInteger, "", kSettlement},
    {"SC", "SCIntTaxAcct", kWhole, 0, kLargestInteger, "", kSettlement},
    {"SC", "SCRtLongLoanIntMethod", kWhole, 0, kLargestInteger, "", kSettlement},
    {"SC", "SCRtShortLoanIntMethod", kWhole, 0, kLargestInteger, "", kSettlement},
    {"SC", "SCRtStatIntMethod", kWhole, 0, kLargestInteger, "", kSettlement},
    {"SC", "SCDiscAmtAcct", kWhole, 0, kLargestLong, "", kSettlement},
    {"SC", "SCDiscIntEarnAcct", kWhole, 0, kLargestLong, "", kSettlement},
    {"SC", "SCDiscinterAcct", kWhole, 0, kLargestLong, "", kSettlement},
    {"SC", "SCMaxLoanExt", kWhole, 0, kLargestLong, "", kSettlement},
    {"SC", "SCMaxRtStat", kWhole, 0, kLargestLong, "", kSettlement},
    {"SC", "SCOverDueNum", kWhole, 0, kLargestLong, "180", kSettlement},
    {"SC", "SCIntTaxRate", kNumber, 0, 0, "", kSettlement},
    {"SC", "SCDateToday", kDate, 0, 0, "", "the day of settlement; today where it is not set"},
    {"SC", "SCYearRateStartDate", kDate, 0, 0, "1995-10-25", kSettlement},
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

// "10,080"
std::string WithThousands(std::int64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3 && number >= 0;) text.insert(at -= 3, ",");
  return text;
}

bool Fits(const KnownSetting& setting, std::string_view text) {
  switch (setting.type) {
    case kAnyText:
    case kKept: break;  // what closing keeps is refused by its name
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

}  // namespace

std::span<const KnownSetting> KnownSettings() { return kKnown; }

std::string RangeOf(const KnownSetting& setting) {
  switch (setting.type) {
    case kAnyText: return "any text";
    case kKept: return "kept by closing and reopening";
    case kSwitch: return "0 or 1";
    case kSwitchOrName: return "0, 1 or the name of a computer";
    case kWhole:
      return "a whole number from " + WithThousands(setting.least) + " to " +
             WithThousands(setting.most);
    case kNumber: return "a number";
    case kDate: return "a date such as 2024-01-31";
  }
  return "";
}

void CheckSettingType(std::string_view category, std::string_view key, std::string_view text) {
  if (text.empty()) return;
  for (const KnownSetting& setting : kKnown) {
    if (setting.category != category || setting.key != key || Fits(setting, text)) continue;
    Refuse(refusal::kBadSetting, "Setting " + std::string(key) + " of " + std::string(category) +
                                     " is " + RangeOf(setting) + ", not \"" + std::string(text) +
                                     "\".");
  }
}

}  // namespace qdclgl::server
