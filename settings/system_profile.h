// The system's settings, kept on the server as text under a category and a key, and the mapping
// between dates and accounting periods.
//
// Server components: QDSVBase.SystemProfile and QDSVBase.BaseInfo for the settings,
// QDCPeriodDate.clsPeriodDate for the calendar.
#pragma once

#include "frame/dictionary.h"
#include "frame/startup.h"
#include "frame/transaction_context.h"

namespace qdclgl {

// A method that reads one setting and converts its text: a number is what the text begins with,
// rounded to the method's type; a Boolean tells whether that number is not 0.
#define READER(Type, Name, category, profile_key, help_text)            \
  Type Name() { return ReadProfile<Type>(category, profile_key); }      \
  QD_ROW({.name = #Name,                                                \
          .help = help_text,                                            \
          .type = ::qdclgl::TypeWord<Type, Self>(),                     \
          .parameters = "()",                                           \
          .method = ::qdclgl::detail::InvokeMember<&Self::Name>})

class SystemProfile final : public Object, public ISetXactContext, private ApartmentMember {
  MEMBERS(SystemProfile, Object, Creatable, "The system's settings and its accounting calendar.")

 public:
  METHOD(String, GetSystemProfile, (String Category, String ProfileID, String Default), "The text of a setting, or the default when there is no such key. Error 0x80044000 for an unknown category.")
  METHOD(Boolean, GLGetCheckBeforePost, (), "Whether vouchers must be checked before they are posted; the local override file can force it on.")
  READER(Integer, GLGetCurrentPeriod, "GL", "CurrentPeriod", "The current accounting period.")
  READER(Integer, GLGetCurrentYear, "GL", "CurrentYear", "The current accounting year.")
  READER(Long, GLGetEarnAccount, "GL", "EarnAccount", "Id of the account of the year's earnings.")
  READER(Long, GLGetEarnAssignAccount, "GL", "EarnAssignAccount", "Id of the account that earnings are assigned by.")
  METHOD(Boolean, GLGetExpEachEnt, (), "Whether every line needs an explanation; the local override file can force it on.")
  METHOD(Long, GLGetPeriodByDate, (Date d, Long& nYear), "The accounting period of a date, and its year in the second argument; the calendar's month and year when the server can't tell. Calls GetPeriod.")
  READER(Boolean, GLGetPeriodByMonth, "GL", "PeriodByMonth", "Whether periods are calendar months.")
  READER(Integer, GLGetPeriodCount, "GL", "PeriodCount", "The number of periods in a year.")
  METHOD(Date, GLGetPeriodDate, (Long nYear, Long Period), "The first day of a period; 0 stands for the current year or period, and a period past the year's end counts on in the next year. Error 5 below 1, error 6 when no year can hold the period. Calls GetPeriodStartEnd.")
  METHOD(Boolean, IsNeedOffline, (), "Whether the server wants this client offline. Calls IsNeedOffline.")
  METHOD(void, Refresh, (), "Fetches the settings of all categories. Calls ListProfiles for each.")
  READER(Boolean, ScGetAcctBalStop, "SC", "SCAcctBalStop", "Settlement option SCAcctBalStop.")
  READER(Integer, SCGetActionForOverDue, "SC", "SCActionForOverDue", "Settlement option SCActionForOverDue.")
  READER(Boolean, ScGetAutoVchNotDblChk, "SC", "SCAutoVchNotDblChk", "Settlement option SCAutoVchNotDblChk.")
  READER(Boolean, SCGetBillAutoVch, "SC", "SCBillAutoVch", "Settlement option SCBillAutoVch.")
  READER(Boolean, SCGetChangeRenewAcct, "SC", "SCChangeRenewAcct", "Settlement option SCChangeRenewAcct.")
  READER(Boolean, SCGetConsignSaveAutoCheck, "SC", "SCConsignSaveAutoCheck", "Settlement option SCConsignSaveAutoCheck.")
  READER(Boolean, ScGetDailyEnd, "SC", "SCDailyEnd", "Settlement option SCDailyEnd.")
  METHOD(Date, SCGetDateToday, (), "Settlement option SCDateToday, the day without a time; today when it is not set or can't be read. Raises nothing.")
  READER(Long, SCGetDiscAmtAcct, "SC", "SCDiscAmtAcct", "Settlement option SCDiscAmtAcct.")
  READER(Long, SCGetDiscIntEarnAcct, "SC", "SCDiscIntEarnAcct", "Settlement option SCDiscIntEarnAcct.")
  READER(Long, SCGetDiscInterAcct, "SC", "SCDiscinterAcct", "Settlement option SCDiscinterAcct.")
  READER(Boolean, SCGetDpstPayWithInt, "SC", "SCDpstPayWithInt", "Settlement option SCDpstPayWithInt.")
  READER(Boolean, SCGetForbidHistory, "SC", "SCForbidHistory", "Settlement option SCForbidHistory.")
  READER(Boolean, ScGetForIntMakeNow, "SC", "SCForIntMakeNow", "Settlement option SCForIntMakeNow.")
  READER(Boolean, ScGetInSettNoteReCheck, "SC", "SCInSettNoteReCheck", "Settlement option SCInSettNoteReCheck.")
  READER(Boolean, ScGetInSettReCheck, "SC", "SCInSettReCheck", "Settlement option SCInSettReCheck.")
  READER(Boolean, SCGetIntAutoVch, "SC", "SCIntAutoVch", "Settlement option SCIntAutoVch.")
  READER(Boolean, ScGetIntCalByBill, "SC", "SCIntCalByBill", "Settlement option SCIntCalByBill.")
  READER(Boolean, SCGetIntDpstModifySum, "SC", "SCIntDpstModifySum", "Settlement option SCIntDpstModifySum.")
  READER(Boolean, SCGetIntMultiSaveNoVch, "SC", "SCIntMultiSaveNoVch", "Settlement option SCIntMultiSaveNoVch.")
  READER(Boolean, SCGetIntOneYear, "SC", "SCIntOneYear", "Settlement option SCIntOneYear.")
  READER(Boolean, SCGetIntSaveAutoCheck, "SC", "SCIntSaveAutoCheck", "Settlement option SCIntSaveAutoCheck.")
  READER(Integer, SCGetIntTaxAcct, "SC", "SCIntTaxAcct", "Settlement option SCIntTaxAcct.")
  READER(Double, SCGetIntTaxRate, "SC", "SCIntTaxRate", "Settlement option SCIntTaxRate.")
  READER(Boolean, SCGetIntToDpst, "SC", "SCIntToDpst", "Settlement option SCIntToDpst.")
  READER(Boolean, SCGetIntToLoan, "SC", "SCIntToLoan", "Settlement option SCIntToLoan.")
  READER(Boolean, SCGetIntToOneVch, "SC", "SCIntToOneVch", "Settlement option SCIntToOneVch.")
  READER(Boolean, SCGetLoanPayWithInt, "SC", "SCLoanPayWithInt", "Settlement option SCLoanPayWithInt.")
  READER(Boolean, SCGetLongTermLoanMidCal, "SC", "SCLongTermLoanMidCal", "Settlement option SCLongTermLoanMidCal.")
  READER(Boolean, ScGetMakeVchInLoanExt, "SC", "SCMakeVchInLoanExt", "Settlement option SCMakeVchInLoanExt.")
  READER(Boolean, ScGetMakeVchInReStat, "SC", "SCMakeVchInReStat", "Settlement option SCMakeVchInReStat.")
  READER(Long, SCGetMaxLoanExt, "SC", "SCMaxLoanExt", "Settlement option SCMaxLoanExt.")
  READER(Long, SCGetMaxRtStat, "SC", "SCMaxRtStat", "Settlement option SCMaxRtStat.")
  READER(Boolean, ScGetNotiPayBillVch, "SC", "SCNotiPayBillVch", "Settlement option SCNotiPayBillVch.")
  READER(Boolean, SCGetOneTimeLoanMidCal, "SC", "SCOneTimeLoanMidCal", "Settlement option SCOneTimeLoanMidCal.")
  READER(Boolean, ScGetOverDue180, "SC", "SCOverDue180", "Settlement option SCOverDue180.")
  METHOD(Long, ScGetOverDueNum, (), "Settlement option SCOverDueNum; 180 when it is not set.")
  READER(Boolean, ScGetPayBillVch, "SC", "SCPayBillVch", "Settlement option SCPayBillVch.")
  READER(Boolean, ScGetPayNoteReCheck, "SC", "SCPayNoteReCheck", "Settlement option SCPayNoteReCheck.")
  READER(Boolean, ScGetPayReCheck, "SC", "SCPayReCheck", "Settlement option SCPayReCheck.")
  READER(Boolean, SCGetPreIntCalDpst, "SC", "SCPreIntCalDpst", "Settlement option SCPreIntCalDpst.")
  READER(Boolean, SCGetPreIntCalLoan, "SC", "SCPreIntCalLoan", "Settlement option SCPreIntCalLoan.")
  READER(Boolean, SCGetPreIntCalStat, "SC", "SCPreIntCalStat", "Settlement option SCPreIntCalStat.")
  READER(Integer, SCGetRtLongLoanIntMethod, "SC", "SCRtLongLoanIntMethod", "Settlement option SCRtLongLoanIntMethod.")
  READER(Integer, SCGetRtShortLoanIntMethod, "SC", "SCRtShortLoanIntMethod", "Settlement option SCRtShortLoanIntMethod.")
  READER(Integer, SCGetRtStatIntMethod, "SC", "SCRtStatIntMethod", "Settlement option SCRtStatIntMethod.")
  READER(Boolean, SCGetSettAcntSel, "SC", "SCSettAcntSel", "Settlement option SCSettAcntSel.")
  READER(Boolean, SCGetSettOneVch, "SC", "SCSettOneVch", "Settlement option SCSettOneVch.")
  READER(Boolean, ScGetStrikeRed, "SC", "SCStrikeRed", "Settlement option SCStrikeRed.")
  READER(Boolean, ScGetTransferBillVch, "SC", "SCTransferBillVch", "Settlement option SCTransferBillVch.")
  READER(Boolean, SCGetUsePlan, "SC", "SCUsePlan", "Settlement option SCUsePlan.")
  METHOD(Date, SCGetYearRateStartDate, (), "Settlement option SCYearRateStartDate, the day without a time; 1995-10-25 when it is not set or can't be read. Raises nothing.")
  READER(Boolean, SCStatIntCalWhole, "SC", "SCStatIntCalWhole", "Settlement option SCStatIntCalWhole.")
  METHOD(void, SetGlobalQueryStatus, (const Boolean& bOffline), "Keeps the caller's decision about working offline and writes it to the registry. Error 5 for a connection text in which no ; follows the database.")
  PROPERTY(Get, String, CompanyAddress, "The company's address.")
  PROPERTY(Get, String, CompanyName, "The company's name.")
  PROPERTY(Get, String, CompanyPhone, "The company's telephone number.")
  PROPERTY(Get, Boolean, GLGetClosed, "Whether the ledger is closed.")
  INDEXED(GetLet, String, Item, (String Category, String ProfileID), "The text of a setting, empty when there is no such key; a write that changes more than the case of letters goes to the server. Error 0x80044000 for an unknown category. Calls SetProfile.", DefaultMember)
  INDEXED(Get, Ref<Dictionary>, ProfileList, (String Category = {}), "The settings of a category, or of all categories by name: the live cache.")
  INDEXED(Get, Long, SpecItem, (String Section, String Key), "A number of the local override file, 0 when the file does not hold it; -1 without the file.")

  void SetTransactionContext(const Ref<Object>& xa) override { m_Xa = xa; }

 private:
  // The stored text, or `fallback` when the category has no such key.
  String ProfileText(const String& category, const String& profile_id,
                     const String& fallback) const;
  template <class T>
  T ReadProfile(const char* category, const char* profile_id) const;
  Boolean IsForcedOn(const char* section, const char* key) const;
  // A setting that is a day, without a time; `fallback` when it can't be had.
  Date ReadDay(const char* profile_id, Date fallback) const;

  Ref<Dictionary> m_Lists;  // the settings by category and key; Nothing before the first use
  Ref<Object> m_Xa;
};

#undef READER

}  // namespace qdclgl
