// The vocabulary of the server's schema: tables, columns, nested lists, profile categories.
//
// Misspelt names are the schema's own and stay. Many words have no user in this library; they are
// kept so that programs find the whole vocabulary in one place. Each constant's text is its name;
// the key of a nested list is its name behind an underscore.
#pragma once

#include <array>
#include <string_view>

#include "qdclgl/language.h"

// clang-format 14 would put one word on a line, and others the next time.
// clang-format off
#define QD_IMPL_TABLES(WORD)                                                                       \
  WORD(t_Account) WORD(t_AcctGroup) WORD(t_Balance) WORD(t_Budget) WORD(t_Currency)                \
  WORD(t_Department) WORD(t_Dict) WORD(t_Item) WORD(t_ItemClass) WORD(t_MeasureUnit)               \
  WORD(t_Organization) WORD(t_Personnel) WORD(t_ProfitAndLoss) WORD(t_QuantityBalance)             \
  WORD(t_RateAdjust) WORD(t_StockPlace) WORD(t_StockPlaceGroup) WORD(t_UnitGroup)                  \
  WORD(t_Voucher) WORD(t_VoucherDetail) WORD(t_VoucherEntry) WORD(t_VoucherGroup)                  \
  WORD(t_ItemBalance) WORD(t_ItemBalanceDetail) WORD(t_AutoTransfer) WORD(t_AutoTransferEntry)     \
  WORD(t_MultiColumnLedger) WORD(t_MultiColumn) WORD(t_MultiSubColumn) WORD(t_Contact)             \
  WORD(t_ContactEntry) WORD(t_ContactVoucher) WORD(t_Acnt)

#define QD_IMPL_LISTS(WORD)                                                                        \
  WORD(Entries) WORD(Details) WORD(Items) WORD(Accounts) WORD(MeasureUnits) WORD(PropDesc)         \
  WORD(Balances) WORD(Extras) WORD(AlterItems) WORD(ExpenseItems) WORD(CardBookValues)             \
  WORD(CardValues) WORD(CardDepartments) WORD(CardExpenses) WORD(CardAssetItems)                   \
  WORD(CardDepreciationItems) WORD(CardPropDescs) WORD(CardPropValues) WORD(VoucherBookValues)     \
  WORD(VoucherValues) WORD(VoucherDepartments) WORD(VoucherExpenses) WORD(VoucherAssetItems)       \
  WORD(VoucherDepreciationItems) WORD(Columns) WORD(SubColumns)

#define QD_IMPL_COLUMNS(WORD)                                                                      \
  WORD(FAccount) WORD(FAccountItem) WORD(FAccountID) WORD(FAccountID2) WORD(FActualType)           \
  WORD(FActualSize) WORD(FAddress) WORD(FAdjustRate) WORD(FAmount) WORD(FAmountFor)                \
  WORD(FAttachments) WORD(FAuxClass) WORD(FBalChecked) WORD(FBank) WORD(FBeginBalance)             \
  WORD(FBeginBalanceFor) WORD(FBeginQty) WORD(FBehavior) WORD(FBirthday) WORD(FBudget)             \
  WORD(FBudgetFor) WORD(FMinBudget) WORD(FMinBudgetFor) WORD(FCashierID) WORD(FChecked)            \
  WORD(FCheckerID) WORD(FChkUserID) WORD(FCity) WORD(FCoefficient) WORD(FContact)                  \
  WORD(FCountry) WORD(FCredit) WORD(FCreditFor) WORD(FCreditLimit) WORD(FCreditQty)                \
  WORD(FGender) WORD(FCreditTotal) WORD(FCurrencyID) WORD(FDataType) WORD(FDate) WORD(FDC)         \
  WORD(FDelete) WORD(FDetailID) WORD(FDebit) WORD(FDebitFor) WORD(FDebitQty) WORD(FDebitTotal)     \
  WORD(FDefaultUnit) WORD(FDefaultUnitID) WORD(FDepartmental) WORD(FDepartmentID) WORD(FDetail)    \
  WORD(FDetailCount) WORD(FDictItemID) WORD(FDifference) WORD(FDuty) WORD(FEarnAccountID)          \
  WORD(FEmail) WORD(FEndBalance) WORD(FEndBalanceFor) WORD(FEndBlance) WORD(FEndBlanceFor)         \
  WORD(FEndQty) WORD(FEntryCount) WORD(FEntryID) WORD(FExchangeRate) WORD(FExplanation)            \
  WORD(FFixRate) WORD(FFullName) WORD(FGroup) WORD(FGroupID) WORD(FHandler) WORD(FHelperCode)      \
  WORD(FHireDate) WORD(FHomePage) WORD(FID) WORD(FImmPosted) WORD(FIndex) WORD(FInternalInd)       \
  WORD(FIsBank) WORD(FIsCash) WORD(FIsCashFlow) WORD(FIsBusi) WORD(FCashFlowItem)                  \
  WORD(FSubItemID) WORD(FCashAccountID) WORD(FTaskID) WORD(FResourceID) WORD(FIsFolder)            \
  WORD(FIsBudget) WORD(FItemClassID) WORD(FName) WORD(FBalID) WORD(FItemID) WORD(FInterID)         \
  WORD(FJournal) WORD(FLeaveDate) WORD(FLevel) WORD(FMeasureUnitID) WORD(FModel) WORD(FNote)       \
  WORD(FNumber) WORD(FStandard) WORD(FControl) WORD(FTradeNum) WORD(FObjectName)                   \
  WORD(FOperator) WORD(FOrganizational) WORD(FOrganizationID) WORD(FOwnerGroupID) WORD(FParent)    \
  WORD(FParentID) WORD(FParameter) WORD(FPeriod) WORD(FPeriodRange) WORD(FPersonnel)               \
  WORD(FPersonnelID) WORD(FPhone) WORD(FPhone1) WORD(FPhone2) WORD(FPhone3) WORD(FPostalCode)      \
  WORD(FPosted) WORD(FPosterID) WORD(FPrecision) WORD(FPreparerID) WORD(FPropID)                   \
  WORD(FProportion) WORD(FProvince) WORD(FQuantities) WORD(FQuantity) WORD(FReference)             \
  WORD(FRootID) WORD(FSerialNum) WORD(FScale) WORD(FSettleTypeID) WORD(FSettleNo)                  \
  WORD(FSQLColumnName) WORD(FSummarized) WORD(FTaxID) WORD(FText) WORD(FTransNo)                   \
  WORD(FTransferID) WORD(FTransDate) WORD(FTranType) WORD(FType) WORD(FUnitGroupID)                \
  WORD(FDeleted) WORD(FUnitPrice) WORD(FUnnsed) WORD(FUseSign) WORD(FValue) WORD(FVoucherID)       \
  WORD(FYtdAmount) WORD(FYtdAmountFor) WORD(FYtdCredit) WORD(FYtdCreditFor) WORD(FYtdCreditQty)    \
  WORD(FYtdDebit) WORD(FYtdDebitFor) WORD(FYtdDebitQty) WORD(FYear) WORD(FImport) WORD(FTypeID)    \
  WORD(FSrcTable) WORD(FSrcField) WORD(FDisplayField) WORD(FComCall) WORD(FPageName)               \
  WORD(FViewMask) WORD(FHelpCode) WORD(FIsShownList) WORD(FIsDisplay) WORD(FIsInput)               \
  WORD(FConversation) WORD(FPresion) WORD(FSPID) WORD(FSPGroupID) WORD(FFullNumber)                \
  WORD(FShortNumber) WORD(FDescription) WORD(FDefaultSPID) WORD(FForCurrencyColumn)                \
  WORD(FExchangeRateColumn) WORD(FBaseCurrencyColumn) WORD(FColumnID) WORD(FColumnName)            \
  WORD(FSerialNo) WORD(FSubColumnID) WORD(FSubColumnName) WORD(FCurrencyName)                      \
  WORD(FAccountNumber) WORD(FLedgerID) WORD(FLedgerName) WORD(FContactID) WORD(FClosed)            \
  WORD(FBalance) WORD(FViewMsg) WORD(FMessage) WORD(FAcctint) WORD(FintRate) WORD(FAcctID)         \
  WORD(FAcctNo) WORD(FAcnt) WORD(FAcntType) WORD(FAcntID) WORD(FAcntNo) WORD(FAcntName)            \
  WORD(FAllowOD) WORD(FARIntAcct) WORD(FARIntAcctID) WORD(FARIntAcctName) WORD(FOutRptAcct)        \
  WORD(FOutRptAcctID) WORD(FOutRptAcctName) WORD(FClientID) WORD(FClientNo) WORD(FClientName)      \
  WORD(FDelDate) WORD(FDpst) WORD(FInt) WORD(FIntAcct) WORD(FIntAcctID) WORD(FInterest)            \
  WORD(FIsAcnt) WORD(FLastIntDate) WORD(FLoan) WORD(FODAcct) WORD(FODAcctID) WORD(FOpenDate)       \
  WORD(FOppAcct) WORD(FOppAcctID) WORD(FOppAcctName) WORD(FPayIntMethod) WORD(FRate)               \
  WORD(FRateDays) WORD(FRateType) WORD(FStatedDpst) WORD(FSummaryID) WORD(FTZRate)                 \
  WORD(FTZRateDays) WORD(FTZRateType) WORD(FMgBillID) WORD(FMgDetailID) WORD(FMgBillMoney)

#define QD_IMPL_PROFILE_CATEGORIES(WORD)                                                           \
  WORD(Base) WORD(General) WORD(GL) WORD(SC) WORD(MG) WORD(GB) WORD(GR) WORD(PM) WORD(BM)          \
  WORD(CM) WORD(Bank) WORD(CN) WORD(IC) WORD(FA) WORD(PA)

#define QD_IMPL_FURTHER_WORDS(WORD)                                                                \
  WORD(AutoNumbers) WORD(Version) WORD(ProgramName) WORD(AccountLength) WORD(MaxAccountLevel)      \
  WORD(PeriodDates) WORD(YearDifference) WORD(StartYear) WORD(StartPeriod)                         \
  WORD(RateAdjustAccount) WORD(RateAdjustVoucherGroup) WORD(RateAdjustVoucherExplanation)          \
  WORD(TransPLVoucherGroup) WORD(TransPLVoucherExplanation) WORD(InitClosed)                       \
  WORD(EndBalDCFormat) WORD(FAVersion) WORD(FAProgramName) WORD(RateAdjust) WORD(TransferPL)       \
  WORD(QueryStatus)

#define QD_IMPL_FUNCTION_CODES(WORD)                                                               \
  WORD(A00406) WORD(A00405) WORD(A00101) WORD(A00201) WORD(A00202) WORD(A00203) WORD(A00204)       \
  WORD(A00205) WORD(A00206) WORD(A00301) WORD(A00302) WORD(A00303) WORD(A00304) WORD(A00305)       \
  WORD(A00306) WORD(A00307) WORD(A00401) WORD(A00402) WORD(A00403) WORD(A00404) WORD(A00407)       \
  WORD(A00408) WORD(A00409) WORD(A00410) WORD(A00501) WORD(A00502) WORD(A00503) WORD(A00504)       \
  WORD(A00601) WORD(A00602) WORD(A00603) WORD(A00604) WORD(A00701) WORD(A00702) WORD(A00703)       \
  WORD(A00704)
// clang-format on

namespace qdclgl::strings {

#define QD_IMPL_CONSTANT(word) inline constexpr std::string_view word = #word;
QD_IMPL_TABLES(QD_IMPL_CONSTANT)
QD_IMPL_COLUMNS(QD_IMPL_CONSTANT)
QD_IMPL_FURTHER_WORDS(QD_IMPL_CONSTANT)
QD_IMPL_FUNCTION_CODES(QD_IMPL_CONSTANT)

// Keys of nested lists in a row's Dictionary.
namespace lists {
#define QD_IMPL_LIST_CONSTANT(word) inline constexpr std::string_view word = "_" #word;
QD_IMPL_LISTS(QD_IMPL_LIST_CONSTANT)
#undef QD_IMPL_LIST_CONSTANT
}  // namespace lists

// Categories of the system profile.
namespace categories {
QD_IMPL_PROFILE_CATEGORIES(QD_IMPL_CONSTANT)
}  // namespace categories
#undef QD_IMPL_CONSTANT

inline constexpr std::string_view YearUnit = "年";
inline constexpr std::string_view MonthUnit = "月";
inline constexpr std::string_view DayUnit = "日";
inline constexpr std::string_view BasicDataPage = "1.基本资料";
inline constexpr std::string_view DatabaseName = "Microsoft SQL Server";

// The same words as lists, for those that walk them.
#define QD_IMPL_ELEMENT(word) std::string_view(#word),
inline constexpr auto kTables = std::to_array<std::string_view>({QD_IMPL_TABLES(QD_IMPL_ELEMENT)});
inline constexpr auto kColumns =
    std::to_array<std::string_view>({QD_IMPL_COLUMNS(QD_IMPL_ELEMENT)});
// In the order in which they are loaded.
inline constexpr auto kProfileCategories =
    std::to_array<std::string_view>({QD_IMPL_PROFILE_CATEGORIES(QD_IMPL_ELEMENT)});
inline constexpr auto kFunctionCodes =
    std::to_array<std::string_view>({QD_IMPL_FUNCTION_CODES(QD_IMPL_ELEMENT)});
#undef QD_IMPL_ELEMENT
#define QD_IMPL_LIST_ELEMENT(word) std::string_view("_" #word),
inline constexpr auto kLists =
    std::to_array<std::string_view>({QD_IMPL_LISTS(QD_IMPL_LIST_ELEMENT)});
#undef QD_IMPL_LIST_ELEMENT

}  // namespace qdclgl::strings
