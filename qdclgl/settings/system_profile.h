// The system's settings, kept on the server as text under a category and a key, and the mapping
// between dates and accounting periods.
//
// Server components: QDSVBase.SystemProfile and QDSVBase.BaseInfo for the settings,
// QDCPeriodDate.clsPeriodDate for the calendar.
#pragma once

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/frame/session/transaction_context.h"

namespace qdclgl {

// A method that reads one setting and converts its text: a number is what the text begins with,
// rounded to the method's type; a Boolean tells whether that number is not 0.
#define QD_IMPL_READER(Type, Name, category, profile_key, help_text) \
  Type Name() { return ReadProfile<Type>(category, profile_key); }   \
  QD_IMPL_ROW({.name = #Name,                                        \
               .help = help_text,                                    \
               .type = ::qdclgl::TypeWord<Type, Self>(),             \
               .parameters = "()",                                   \
               .method = ::qdclgl::detail::InvokeMember<&Self::Name>})

class SystemProfile final : public Object, public ISetXactContext, private ApartmentMember {
  QD_MEMBERS(SystemProfile, Object, Creatable, "The system's settings and its accounting calendar.")

 public:
  QD_METHOD(String, GetSystemProfile, (String Category, String ProfileID, String Default),
            "The text of a setting, or the default when there is no such key. Error 0x80044000 for "
            "an unknown category.")
  QD_METHOD(Boolean, GLGetCheckBeforePost, (),
            "Whether vouchers must be checked before they are posted; the local override file can "
            "force it on.")
  QD_IMPL_READER(Integer, GLGetCurrentPeriod, "GL", "CurrentPeriod",
                 "The current accounting period.")
  QD_IMPL_READER(Integer, GLGetCurrentYear, "GL", "CurrentYear", "The current accounting year.")
  QD_IMPL_READER(Long, GLGetEarnAccount, "GL", "EarnAccount",
                 "Id of the account of the year's earnings.")
  QD_IMPL_READER(Long, GLGetEarnAssignAccount, "GL", "EarnAssignAccount",
                 "Id of the account that earnings are assigned by.")
  QD_METHOD(Boolean, GLGetExpEachEnt, (),
            "Whether every line needs an explanation; the local override file can force it on.")
  QD_METHOD(Long, GLGetPeriodByDate, (DateTime d, Long& nYear),
            "The accounting period of a date, and its year in the second argument; the calendar's "
            "month and year when the server can't tell. Calls GetPeriod.")
  QD_IMPL_READER(Boolean, GLGetPeriodByMonth, "GL", "PeriodByMonth",
                 "Whether periods are calendar months.")
  QD_IMPL_READER(Integer, GLGetPeriodCount, "GL", "PeriodCount", "The number of periods in a year.")
  QD_METHOD(DateTime, GLGetPeriodDate, (Long nYear, Long Period),
            "The first day of a period; 0 stands for the current year or period, and a period past "
            "the year's end counts on in the next year. Error 5 below 1, error 6 when no year can "
            "hold the period. Calls GetPeriodStartEnd.")
  QD_METHOD(Boolean, IsNeedOffline, (),
            "Whether the server wants this client offline. Calls IsNeedOffline.")
  QD_METHOD(void, Refresh, (),
            "Fetches the settings of all categories. Calls ListProfiles for each.")
  QD_IMPL_READER(Boolean, ScGetAcctBalStop, "SC", "SCAcctBalStop",
                 "Settlement option SCAcctBalStop.")
  QD_IMPL_READER(Integer, SCGetActionForOverDue, "SC", "SCActionForOverDue",
                 "Settlement option SCActionForOverDue.")
  QD_IMPL_READER(Boolean, ScGetAutoVchNotDblChk, "SC", "SCAutoVchNotDblChk",
                 "Settlement option SCAutoVchNotDblChk.")
  QD_IMPL_READER(Boolean, SCGetBillAutoVch, "SC", "SCBillAutoVch",
                 "Settlement option SCBillAutoVch.")
  QD_IMPL_READER(Boolean, SCGetChangeRenewAcct, "SC", "SCChangeRenewAcct",
                 "Settlement option SCChangeRenewAcct.")
  QD_IMPL_READER(Boolean, SCGetConsignSaveAutoCheck, "SC", "SCConsignSaveAutoCheck",
                 "Settlement option SCConsignSaveAutoCheck.")
  QD_IMPL_READER(Boolean, ScGetDailyEnd, "SC", "SCDailyEnd", "Settlement option SCDailyEnd.")
  QD_METHOD(DateTime, SCGetDateToday, (),
            "Settlement option SCDateToday, the day without a time; today when it is not set or "
            "can't be read. Raises nothing.")
  QD_IMPL_READER(Long, SCGetDiscAmtAcct, "SC", "SCDiscAmtAcct", "Settlement option SCDiscAmtAcct.")
  QD_IMPL_READER(Long, SCGetDiscIntEarnAcct, "SC", "SCDiscIntEarnAcct",
                 "Settlement option SCDiscIntEarnAcct.")
  QD_IMPL_READER(Long, SCGetDiscInterAcct, "SC", "SCDiscinterAcct",
                 "Settlement option SCDiscinterAcct.")
  QD_IMPL_READER(Boolean, SCGetDpstPayWithInt, "SC", "SCDpstPayWithInt",
                 "Settlement option SCDpstPayWithInt.")
  QD_IMPL_READER(Boolean, SCGetForbidHistory, "SC", "SCForbidHistory",
                 "Settlement option SCForbidHistory.")
  QD_IMPL_READER(Boolean, ScGetForIntMakeNow, "SC", "SCForIntMakeNow",
                 "Settlement option SCForIntMakeNow.")
  QD_IMPL_READER(Boolean, ScGetInSettNoteReCheck, "SC", "SCInSettNoteReCheck",
                 "Settlement option SCInSettNoteReCheck.")
  QD_IMPL_READER(Boolean, ScGetInSettReCheck, "SC", "SCInSettReCheck",
                 "Settlement option SCInSettReCheck.")
  QD_IMPL_READER(Boolean, SCGetIntAutoVch, "SC", "SCIntAutoVch", "Settlement option SCIntAutoVch.")
  QD_IMPL_READER(Boolean, ScGetIntCalByBill, "SC", "SCIntCalByBill",
                 "Settlement option SCIntCalByBill.")
  QD_IMPL_READER(Boolean, SCGetIntDpstModifySum, "SC", "SCIntDpstModifySum",
                 "Settlement option SCIntDpstModifySum.")
  QD_IMPL_READER(Boolean, SCGetIntMultiSaveNoVch, "SC", "SCIntMultiSaveNoVch",
                 "Settlement option SCIntMultiSaveNoVch.")
  QD_IMPL_READER(Boolean, SCGetIntOneYear, "SC", "SCIntOneYear", "Settlement option SCIntOneYear.")
  QD_IMPL_READER(Boolean, SCGetIntSaveAutoCheck, "SC", "SCIntSaveAutoCheck",
                 "Settlement option SCIntSaveAutoCheck.")
  QD_IMPL_READER(Integer, SCGetIntTaxAcct, "SC", "SCIntTaxAcct", "Settlement option SCIntTaxAcct.")
  QD_IMPL_READER(Double, SCGetIntTaxRate, "SC", "SCIntTaxRate", "Settlement option SCIntTaxRate.")
  QD_IMPL_READER(Boolean, SCGetIntToDpst, "SC", "SCIntToDpst", "Settlement option SCIntToDpst.")
  QD_IMPL_READER(Boolean, SCGetIntToLoan, "SC", "SCIntToLoan", "Settlement option SCIntToLoan.")
  QD_IMPL_READER(Boolean, SCGetIntToOneVch, "SC", "SCIntToOneVch",
                 "Settlement option SCIntToOneVch.")
  QD_IMPL_READER(Boolean, SCGetLoanPayWithInt, "SC", "SCLoanPayWithInt",
                 "Settlement option SCLoanPayWithInt.")
  QD_IMPL_READER(Boolean, SCGetLongTermLoanMidCal, "SC", "SCLongTermLoanMidCal",
                 "Settlement option SCLongTermLoanMidCal.")
  QD_IMPL_READER(Boolean, ScGetMakeVchInLoanExt, "SC", "SCMakeVchInLoanExt",
                 "Settlement option SCMakeVchInLoanExt.")
  QD_IMPL_READER(Boolean, ScGetMakeVchInReStat, "SC", "SCMakeVchInReStat",
                 "Settlement option SCMakeVchInReStat.")
  QD_IMPL_READER(Long, SCGetMaxLoanExt, "SC", "SCMaxLoanExt", "Settlement option SCMaxLoanExt.")
  QD_IMPL_READER(Long, SCGetMaxRtStat, "SC", "SCMaxRtStat", "Settlement option SCMaxRtStat.")
  QD_IMPL_READER(Boolean, ScGetNotiPayBillVch, "SC", "SCNotiPayBillVch",
                 "Settlement option SCNotiPayBillVch.")
  QD_IMPL_READER(Boolean, SCGetOneTimeLoanMidCal, "SC", "SCOneTimeLoanMidCal",
                 "Settlement option SCOneTimeLoanMidCal.")
  QD_IMPL_READER(Boolean, ScGetOverDue180, "SC", "SCOverDue180", "Settlement option SCOverDue180.")
  QD_METHOD(Long, ScGetOverDueNum, (), "Settlement option SCOverDueNum; 180 when it is not set.")
  QD_IMPL_READER(Boolean, ScGetPayBillVch, "SC", "SCPayBillVch", "Settlement option SCPayBillVch.")
  QD_IMPL_READER(Boolean, ScGetPayNoteReCheck, "SC", "SCPayNoteReCheck",
                 "Settlement option SCPayNoteReCheck.")
  QD_IMPL_READER(Boolean, ScGetPayReCheck, "SC", "SCPayReCheck", "Settlement option SCPayReCheck.")
  QD_IMPL_READER(Boolean, SCGetPreIntCalDpst, "SC", "SCPreIntCalDpst",
                 "Settlement option SCPreIntCalDpst.")
  QD_IMPL_READER(Boolean, SCGetPreIntCalLoan, "SC", "SCPreIntCalLoan",
                 "Settlement option SCPreIntCalLoan.")
  QD_IMPL_READER(Boolean, SCGetPreIntCalStat, "SC", "SCPreIntCalStat",
                 "Settlement option SCPreIntCalStat.")
  QD_IMPL_READER(Integer, SCGetRtLongLoanIntMethod, "SC", "SCRtLongLoanIntMethod",
                 "Settlement option SCRtLongLoanIntMethod.")
  QD_IMPL_READER(Integer, SCGetRtShortLoanIntMethod, "SC", "SCRtShortLoanIntMethod",
                 "Settlement option SCRtShortLoanIntMethod.")
  QD_IMPL_READER(Integer, SCGetRtStatIntMethod, "SC", "SCRtStatIntMethod",
                 "Settlement option SCRtStatIntMethod.")
  QD_IMPL_READER(Boolean, SCGetSettAcntSel, "SC", "SCSettAcntSel",
                 "Settlement option SCSettAcntSel.")
  QD_IMPL_READER(Boolean, SCGetSettOneVch, "SC", "SCSettOneVch", "Settlement option SCSettOneVch.")
  QD_IMPL_READER(Boolean, ScGetStrikeRed, "SC", "SCStrikeRed", "Settlement option SCStrikeRed.")
  QD_IMPL_READER(Boolean, ScGetTransferBillVch, "SC", "SCTransferBillVch",
                 "Settlement option SCTransferBillVch.")
  QD_IMPL_READER(Boolean, SCGetUsePlan, "SC", "SCUsePlan", "Settlement option SCUsePlan.")
  QD_METHOD(DateTime, SCGetYearRateStartDate, (),
            "Settlement option SCYearRateStartDate, the day without a time; 1995-10-25 when it is "
            "not set or can't be read. Raises nothing.")
  QD_IMPL_READER(Boolean, SCStatIntCalWhole, "SC", "SCStatIntCalWhole",
                 "Settlement option SCStatIntCalWhole.")
  QD_METHOD(void, SetGlobalQueryStatus, (const Boolean& bOffline),
            "Keeps the caller's decision about working offline and writes it to the registry. "
            "Error 5 for a connection text in which no ; follows the database.")
  QD_PROPERTY(Get, String, CompanyAddress, "The company's address.")
  QD_PROPERTY(Get, String, CompanyName, "The company's name.")
  QD_PROPERTY(Get, String, CompanyPhone, "The company's telephone number.")
  QD_PROPERTY(Get, Boolean, GLGetClosed, "Whether the ledger is closed.")
  QD_INDEXED(GetLet, String, Item, (String Category, String ProfileID),
             "The text of a setting, empty when there is no such key; a write that changes more "
             "than the case of letters goes to the server. Error 0x80044000 for an unknown "
             "category. Calls SetProfile.",
             DefaultMember)
  QD_INDEXED(Get, Ref<Dictionary>, ProfileList, (String Category = {}),
             "The settings of a category, or of all categories by name: the live cache.")
  QD_INDEXED(Get, Long, SpecItem, (String Section, String Key),
             "A number of the local override file, 0 when the file does not hold it; -1 without "
             "the file.")

  void SetTransactionContext(const Ref<Object>& xa) override { m_Xa = xa; }

 private:
  // The stored text, or `fallback` when the category has no such key.
  String ProfileText(const String& category, const String& profile_id,
                     const String& fallback) const;
  template <class T>
  T ReadProfile(const char* category, const char* profile_id) const;
  Boolean IsForcedOn(const char* section, const char* key) const;
  // A setting that is a day, without a time; `fallback` when it can't be had.
  DateTime ReadDay(const char* profile_id, DateTime fallback) const;

  void Fetch() const;

  // The settings by category and key, Nothing before the first use. A reader fetches them: what
  // callers see of the object does not change by it.
  mutable Ref<Dictionary> m_Lists;
  Ref<Object> m_Xa;
};

#undef QD_IMPL_READER

}  // namespace qdclgl
