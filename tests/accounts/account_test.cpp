#include <gtest/gtest.h>

#include "qdclgl/accounts/account_set.h"
#include "tests/support/columns.h"
#include "tests/support/failing_events.h"
#include "tests/support/recording_server.h"
#include "tests/support/set_suite.h"

namespace qdclgl {
namespace {

using testing::AtEachFailure;
using testing::ChangeRecord;
using testing::Column;
using testing::EntityCase;
using testing::EntityCaseOf;
using testing::EntitySuite;
using testing::ErrorOf;
using testing::NameOfUse;
using testing::Opaque;
using testing::ReadOnlyColumn;
using testing::RecordingServer;
using testing::Row;
using testing::SetCase;
using testing::SetCaseOf;
using testing::SetSuite;
using testing::StateText;
using testing::TypedAndByName;
using testing::WithDefault;
using testing::WritableColumn;
using enum testing::Zero;

constexpr const char* kInfo = "QDSVGLAccount.AccountInfo";
constexpr const char* kUpdate = "QDSVGLAccount.AccountUpdate";

#define COLUMN(Type, Name, key) \
  WritableColumn<Type>(#Name, key, &Account::Name, &Account::Name, kIsStored)
#define CLEARED_COLUMN(Type, Name, key) \
  WritableColumn<Type>(#Name, key, &Account::Name, &Account::Name, kRemovesTheKey)
#define READ_ONLY(Type, Name, key) ReadOnlyColumn<Type>(#Name, key, &Account::Name)

// The members that read and write one key; EarnAccountID and MeasureUnit have tests of their own.
std::vector<Column<Account>> Columns() {
  return {
      COLUMN(Boolean, Acctint, "FAcctint"),
      COLUMN(Boolean, Acnt, "FAcnt"),
      READ_ONLY(Long, AcntID, "FAcntID"),
      COLUMN(Long, AcntType, "FAcntType"),
      COLUMN(Boolean, AdjustRate, "FAdjustRate"),
      COLUMN(Boolean, Contact, "FContact"),
      READ_ONLY(Long, Control, "FControl"),
      CLEARED_COLUMN(Long, ControlSystem, "FControlSystem"),
      WithDefault(COLUMN(Long, CurrencyID, "FCurrencyID"), Long{1}, Long{7}),
      READ_ONLY(String, CurrencyName, "FCurrencyName"),
      READ_ONLY(String, CurrencyNumber, "FCurrencyNumber"),
      COLUMN(Long, DC, "FDC"),
      COLUMN(Boolean, Delete, "FDelete"),
      WithDefault(READ_ONLY(Boolean, Detail, "FDetail"), true, false),
      READ_ONLY(Long, DetailID, "FDetailID"),
      WithDefault(READ_ONLY(String, FullName, "FFullName"), " ", "Assets_Cash"),
      COLUMN(Long, GroupID, "FGroupID"),
      COLUMN(String, HelperCode, "FHelperCode"),
      COLUMN(Boolean, Interest, "FInterest"),
      WithDefault(COLUMN(Single, intRate, "FintRate"), Single{0}, Single{2.5}),
      READ_ONLY(Boolean, IsAcnt, "FIsAcnt"),
      COLUMN(Boolean, IsBank, "FIsBank"),
      COLUMN(Boolean, IsBudget, "FIsBudget"),
      COLUMN(Boolean, IsBusi, "FIsBusi"),
      COLUMN(Boolean, IsCashFlow, "FIsCashFlow"),
      COLUMN(Boolean, IsCash, "FIsCash"),
      COLUMN(Boolean, Journal, "FJournal"),
      WithDefault(COLUMN(DateTime, LastIntDate, "FLastIntDate"), DateTime(0),
                  DateTime::FromYmd(2026, 1, 31)),
      READ_ONLY(Integer, Level, "FLevel"),
      CLEARED_COLUMN(Long, MeasureUnitID, "FMeasureUnitID"),
      COLUMN(String, Message, "FMessage"),
      COLUMN(String, Name, "FName"),
      WithDefault(COLUMN(String, Number, "FNumber"), "", "1001.A"),
      READ_ONLY(Long, ParentID, "FParentID"),
      COLUMN(Boolean, Quantities, "FQuantities"),
      READ_ONLY(Long, RootID, "FRootID"),
      COLUMN(Integer, SpecialType, "FSpecialType"),
      READ_ONLY(String, UnitGroup, "FUnitGroup"),
      COLUMN(Long, UnitGroupID, "FUnitGroupID"),
      COLUMN(String, UUID, "UUID"),
      COLUMN(Boolean, ViewMsg, "FViewMsg"),
  };
}

#undef COLUMN
#undef CLEARED_COLUMN
#undef READ_ONLY

Ref<Account> AccountOf(const Ref<Dictionary>& row) { return testing::ViewOn<Account>(row); }

// Everything that one can see of an account: id, bag, the Dictionary's modified state, the flag.
std::string State(const Account& account) {
  return "id " + std::to_string(account.AccountID()) + " " +
         testing::State(static_cast<const RowView&>(account));
}

class AccountTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

// ---- What accounts share with all entities and sets ----

EntityCase AccountCase() {
  return EntityCaseOf(&Account::AccountID, &Account::Name,
                      {.info_component = kInfo,
                       .update_component = kUpdate,
                       .id_member = "AccountID",
                       .id_key = "FAccountID",
                       .text_member = "Name",
                       .text_key = "FName",
                       .track_state = {.construct = 0, .cancel_changes = 0, .refresh = 0},
                       .keeps_id_without_key = true,
                       .saved_by = ChangeRecord::kFlag});
}

// Item completes the row with the account's item classes, so it needs one.
SetCase AccountSetCase() {
  return SetCaseOf<AccountSet>(
      AccountCase(),
      {.get_list = "GetList(\"props\", ref <options>, ref <filter>, ref <sort>, Missing, ref 3)",
       .get_detail_by_text = "GetDetailByNumber(\"props\", <key>)",
       .item_makes_component_first = true,
       .behind_get_detail = {{"create QDSVGLAccount.AccountItemInfo", "", ""},
                             {"call GetListByAccount(\"props\", <id>)",
                              " -> recordset{FItemClassID | 21}", ""}},
       .item_adds = ", _Items: [{FItemClassID: 21}]",
       .item_of_nothing = "error 91",
       .takes_record_set = false,
       .prepare = [](RecordingServer& server) {
         server.AnswerWith("QDSVGLAccount.AccountItemInfo", "GetListByAccount",
                           [](std::span<Argument>) {
                             const auto items = Recordset::Create({"FItemClassID"});
                             items->AddRow({Long{21}});
                             return Variant(items);
                           });
       }});
}

INSTANTIATE_TEST_SUITE_P(Account, EntitySuite, TypedAndByName(AccountCase()), NameOfUse());
INSTANTIATE_TEST_SUITE_P(AccountSet, SetSuite, TypedAndByName(AccountSetCase()), NameOfUse());

// ---- The members ----

TEST_F(AccountTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<Account>(),
            "SetProps CancelChanges CheckAccountInVoucher Clone Construct ExistsSpecialChild "
            "GetFullName Refresh SaveChanges SetAccountID AccountID Acctint Acnt AcntID AcntType "
            "AdjustRate Contact Control ControlSystem CurrencyID CurrencyName CurrencyNumber DC "
            "Delete Detail DetailID EarnAccountID FullName GroupID HelperCode Interest intRate "
            "IsAcnt IsBank IsBudget IsBusi IsCashFlow IsCash Journal LastIntDate Level "
            "MeasureUnit MeasureUnitID Message Modified Name Number ParentID Properties "
            "Quantities RootID SpecialType UnitGroup UnitGroupID UUID ViewMsg");
}

TEST_F(AccountTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(AccountTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(AccountTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST_F(AccountTest, AWriteOfTheDefaultRemovesTheKeyForAClearValueAndIsStoredOtherwise) {
  testing::ExpectWritesOfZero(Columns());
}

TEST_F(AccountTest, RefusesALetOfAnotherTypeAndAnyLetOfAReadOnlyMember) {
  testing::ExpectRefusedLets(Columns());
}

TEST_F(AccountTest, AnAccountThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  const auto account = Make<Account>();
  EXPECT_EQ(ErrorOf([&] { account->EarnAccountID(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { account->EarnAccountID(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { account->MeasureUnit(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { account->MeasureUnit("kg"); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { account->SetProps("FName", "x"); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { account->Modified(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { account->Clone(); }), "error 91");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(AccountTest, TheIdAndTheFlagCannotBeLet) {
  Ref<Object> account = AccountOf(Row({{"FAccountID", Long{5}}}));
  for (const std::string name : {"AccountID", "Modified"}) {
    EXPECT_EQ(ErrorOf([&] { account->Let(name, Long{1}); }),
              "error 438 (Account): The member " + name + " can't be used this way.");
  }
  EXPECT_EQ(StateText(account->Get("AccountID")), "5");
  EXPECT_EQ(StateText(account->Get("Modified")), "False");
}

TEST_F(AccountTest, ANewAccountHasCurrencyOneAndIsDetailWithoutEitherKey) {
  const auto account = AccountOf(Nothing);
  EXPECT_EQ(account->CurrencyID(), 1);
  EXPECT_TRUE(account->Detail());
  EXPECT_EQ(State(*account), "id 0 {}");
}

TEST_F(AccountTest, ACurrencyIdOfZeroIsStoredAndReadAsZero) {
  const auto account = AccountOf(Nothing);
  account->CurrencyID(0);
  EXPECT_EQ(account->CurrencyID(), 0);
  EXPECT_EQ(State(*account), "id 0 {FCurrencyID: 0} modified flagged");
}

TEST_F(AccountTest, LastIntDateWithoutAKeyIsTheDateZero) {
  EXPECT_EQ(AccountOf(Nothing)->LastIntDate(), DateTime(0));
}

TEST_F(AccountTest, SixteenBitMembersRaiseOverflowForALargerStoredNumber) {
  const auto account = AccountOf(Row({{"FLevel", Long{40000}}, {"FSpecialType", Long{40000}}}));
  EXPECT_EQ(ErrorOf([&] { account->Level(); }), "error 6");
  EXPECT_EQ(ErrorOf([&] { account->SpecialType(); }), "error 6");
}

TEST_F(AccountTest, UUIDTakesAnyText) {
  const auto account = AccountOf(Nothing);
  for (const char* uuid : {"x", "not a uuid at all", "{00000000}", "账", " "}) {
    account->UUID(uuid);
    EXPECT_EQ(account->UUID(), uuid);
  }
}

// ---- Members with a rule of their own ----

TEST_F(AccountTest, ZeroIsSentForSomeIdsAsNullForOneAndNotAtAllForOthers) {
  const auto account = AccountOf(Row({{"FAccountID", Long{5}},
                                      {"FMeasureUnitID", Long{1}},
                                      {"FControlSystem", Long{2}},
                                      {"FGroupID", Long{3}},
                                      {"FUnitGroupID", Long{4}},
                                      {"FEarnAccountID", Long{6}}}));
  account->MeasureUnitID(0);
  account->ControlSystem(0);
  account->GroupID(0);
  account->UnitGroupID(0);
  account->EarnAccountID(0);
  server.Answer(kInfo, "GetDetail", Nothing);
  account->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLAccount.AccountUpdate\n"
            "call Update(\"props\", ref 5, {FAccountID: 5, FGroupID: 0, FUnitGroupID: 0, "
            "FEarnAccountID: Null, MachineName: \"HOST\", IPAddress: \"10.0.0.1\"})\n"
            "create QDSVGLAccount.AccountInfo\n"
            "call GetDetail(\"props\", ref 5) -> Nothing\n");
}

TEST_F(AccountTest, EarnAccountIDStoresNullForZeroAndReadsZeroAgain) {
  const auto account = AccountOf(Nothing);
  EXPECT_EQ(account->EarnAccountID(), 0);
  account->EarnAccountID(0);
  EXPECT_EQ(State(*account), "id 0 {FEarnAccountID: Null} modified flagged");
  EXPECT_EQ(account->EarnAccountID(), 0);

  Ref<Object> late = account;
  late->Let("EarnAccountID", "12");
  EXPECT_EQ(State(*account), "id 0 {FEarnAccountID: 12} modified flagged");
  EXPECT_EQ(StateText(late->Get("EarnAccountID")), "12");
  late->Let("EarnAccountID", Long{0});
  EXPECT_EQ(State(*account), "id 0 {FEarnAccountID: Null} modified flagged");
  EXPECT_EQ(StateText(late->Get("EarnAccountID")), "0");
  EXPECT_EQ(ErrorOf([&] { late->Let("EarnAccountID", Null); }), "error 13");
}

TEST_F(AccountTest, FullNameIsOneBlankWithoutAStoredText) {
  const std::pair<Variant, const char*> cases[] = {
      {Null, " "}, {"", " "}, {Variant(), " "}, {" ", " "}, {"Assets_Cash", "Assets_Cash"}};
  EXPECT_EQ(AccountOf(Nothing)->FullName(), " ");
  for (const auto& [stored, read] : cases) {
    const auto account = AccountOf(Row({{"FFullName", stored}}));
    EXPECT_EQ(account->FullName(), read) << StateText(stored);
    EXPECT_EQ(State(*account), "id 0 {FFullName: " + StateText(stored) + "}");
  }
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(AccountTest, MeasureUnitIsEmptyWhileTheUnitsIdIsZeroThoughTheNameStaysInTheBag) {
  const auto account = AccountOf(Row({{"FMeasureUnit", "kg"}}));
  EXPECT_EQ(account->MeasureUnit(), "");
  account->MeasureUnitID(3);
  EXPECT_EQ(account->MeasureUnit(), "kg");
  account->MeasureUnitID(0);
  EXPECT_EQ(account->MeasureUnit(), "");
  EXPECT_EQ(State(*account), "id 0 {FMeasureUnit: \"kg\"} modified flagged");
  EXPECT_EQ(StateText(account->Properties()->Item("FMeasureUnit")->Value()), "\"kg\"");
}

TEST_F(AccountTest, MeasureUnitIsReadAndWrittenUnderItsKeyAndEmptyTextRemovesIt) {
  const auto account = AccountOf(Row({{"FMeasureUnitID", Long{3}}}));
  Ref<Object> late = account;
  EXPECT_EQ(account->MeasureUnit(), "");
  account->MeasureUnit("kg");
  EXPECT_EQ(State(*account), "id 0 {FMeasureUnitID: 3, FMeasureUnit: \"kg\"} modified flagged");
  EXPECT_EQ(StateText(late->Get("MeasureUnit")), "\"kg\"");
  account->MeasureUnit("");
  EXPECT_EQ(State(*account), "id 0 {FMeasureUnitID: 3} modified flagged");
  late->Let("MeasureUnit", "t");
  EXPECT_EQ(State(*account), "id 0 {FMeasureUnitID: 3, FMeasureUnit: \"t\"} modified flagged");
  late->Let("MeasureUnit", "");
  EXPECT_EQ(State(*account), "id 0 {FMeasureUnitID: 3} modified flagged");
  EXPECT_EQ(AccountOf(Row({{"FMeasureUnitID", Long{3}}, {"FMeasureUnit", Null}}))->MeasureUnit(),
            "");
}

TEST_F(AccountTest, MeasureUnitRemovedWhereThereIsNoneStillSetsTheFlag) {
  const auto account = AccountOf(Nothing);
  account->MeasureUnit("");
  EXPECT_EQ(State(*account), "id 0 {} flagged");
}

TEST_F(AccountTest, NumberIsStoredInUpperCase) {
  const std::pair<const char*, const char*> cases[] = {
      {"1001a", "1001A"},   {"abc.Def", "ABC.DEF"}, {"é1", "É1"},           {"я", "Я"},
      {"ａｂＣ", "ＡＢＣ"}, {"现金1a", "现金1A"},   {" 1001a ", " 1001A "}, {"", ""},
  };
  for (const auto& [written, stored] : cases) {
    const auto account = AccountOf(Nothing);
    account->Number(written);
    EXPECT_EQ(account->Number(), stored);
    EXPECT_EQ(State(*account), std::string("id 0 {FNumber: \"") + stored + "\"} modified flagged");

    const auto late = AccountOf(Nothing);
    late->Let("Number", written);
    EXPECT_EQ(State(*late), State(*account));
  }
}

TEST_F(AccountTest, ANumberFromTheServerStaysAsItIs) {
  EXPECT_EQ(AccountOf(Row({{"FNumber", "1001a"}}))->Number(), "1001a");
}

TEST_F(AccountTest, DCTakesZeroOneAndMinusOne) {
  for (const Long dc : {1, 0, -1}) {
    const auto account = AccountOf(Nothing);
    account->DC(dc);
    EXPECT_EQ(account->DC(), dc);
    EXPECT_EQ(State(*account), "id 0 {FDC: " + std::to_string(dc) + "} modified flagged");
  }
}

TEST_F(AccountTest, DCOfAnyOtherValueRaises380AndLeavesTheOldValue) {
  for (const Long dc : {2, -2, 3, 100, 2147483647, -2147483647 - 1}) {
    const auto account = AccountOf(Row({{"FDC", Long{-1}}}));
    EXPECT_EQ(ErrorOf([&] { account->DC(dc); }), "error 380");
    EXPECT_EQ(ErrorOf([&] { account->Let("DC", dc); }), "error 380");
    EXPECT_EQ(State(*account), "id 0 {FDC: -1}");
    EXPECT_EQ(account->DC(), -1);
  }
}

TEST_F(AccountTest, DCConvertsALateBoundValueBeforeItsCheck) {
  const auto account = AccountOf(Nothing);
  account->Let("DC", 1.4);
  EXPECT_EQ(State(*account), "id 0 {FDC: 1} modified flagged");
  EXPECT_EQ(ErrorOf([&] { account->Let("DC", 1.6); }), "error 380");
  account->Let("DC", true);
  EXPECT_EQ(State(*account), "id 0 {FDC: -1} modified flagged");
}

TEST_F(AccountTest, SetPropsWritesAnyKey) {
  const auto account = AccountOf(Row({{"FName", "Cash"}}));
  account->SetProps("FName", "Bank");
  account->SetProps("FOwn", Long{7});
  account->SetProps("FNumber", "1001a");
  EXPECT_EQ(State(*account),
            "id 0 {FName: \"Bank\", FOwn: 7, FNumber: \"1001a\"} modified flagged");
  EXPECT_EQ(account->Name(), "Bank");
}

TEST_F(AccountTest, SetPropsChecksNothingAndKeepsTheIdOfTheObject) {
  const auto account = AccountOf(Row({{"FAccountID", Long{5}}}));
  account->SetProps("FDC", Long{2});
  account->SetProps("FAccountID", Long{6});
  account->SetProps("FControlSystem", Long{0});
  account->SetProps("FGroupID", Null);
  EXPECT_EQ(State(*account),
            "id 5 {FAccountID: 6, FDC: 2, FControlSystem: 0, FGroupID: Null} modified flagged");
}

TEST_F(AccountTest, SetPropsKeepsAnObjectAsOne) {
  const auto account = AccountOf(Nothing);
  account->SetProps("_Own", Variant(Row({{"FItemID", Long{1}}})));
  EXPECT_EQ(State(*account), "id 0 {_Own: {FItemID: 1}} modified flagged");
}

TEST_F(AccountTest, SetPropsIsWriteOnlyAndTakesItsNameByPositionOrName) {
  const auto account = AccountOf(Nothing);
  Ref<Object> late = account;
  late->Let("SetProps", "FName", "Cash");
  late->Let("setprops", Variant("Bank"), Named("name", "FHelperCode"));
  EXPECT_EQ(State(*account), "id 0 {FName: \"Cash\", FHelperCode: \"Bank\"} modified flagged");
  EXPECT_EQ(ErrorOf([&] { late->Get("SetProps", "FName"); }),
            "error 438 (Account): The member SetProps can't be used this way.");
  EXPECT_EQ(ErrorOf([&] { late->Call("SetProps", "FName"); }),
            "error 438 (Account): The member SetProps can't be used this way.");
}

// ---- SetAccountID, Clone ----

TEST_F(AccountTest, SetAccountIDSetsTheIdAndNothingElse) {
  const auto account = AccountOf(Row({{"FAccountID", Long{5}}}));
  account->SetAccountID(9);
  EXPECT_EQ(State(*account), "id 9 {FAccountID: 5}");
  account->Name("Cash");
  account->Call("SetAccountID", Named("lngAccountID", "12"));
  EXPECT_EQ(State(*account), "id 12 {FAccountID: 5, FName: \"Cash\"} modified flagged");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(AccountTest, SetAccountIDAndRefreshLoadAKnownAccount) {
  const auto account = AccountOf(Nothing);
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FAccountID", Long{9}}, {"FName", "Cash"}})));
  account->SetAccountID(9);
  account->Refresh();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLAccount.AccountInfo\n"
            "call GetDetail(\"props\", ref 9) -> {FAccountID: 9, FName: \"Cash\"}\n");
  EXPECT_EQ(State(*account), "id 9 {FAccountID: 9, FName: \"Cash\"}");
}

TEST_F(AccountTest, CancelChangesLeavesAnIdThatWasSetAlone) {
  const auto account = AccountOf(Row({{"FAccountID", Long{5}}}));
  account->SetAccountID(9);
  account->CancelChanges();
  EXPECT_EQ(State(*account), "id 9 {FAccountID: 5}");
}

TEST_F(AccountTest, ACloneOfAModifiedAccountKeepsItsEditsAndIsUnmodified) {
  const auto account = AccountOf(Row({{"FAccountID", Long{5}}, {"FName", "Cash"}}));
  account->Name("Bank");
  const auto clone = account->Clone();
  EXPECT_EQ(State(*clone), "id 0 {FAccountID: 0%, FName: \"Bank\"}");
  EXPECT_FALSE(clone->Modified());
  EXPECT_EQ(State(*account), "id 5 {FAccountID: 5, FName: \"Bank\"} modified flagged");
  clone->Name("Safe");
  EXPECT_EQ(account->Name(), "Bank");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(AccountTest, ACloneOfANewAccountHasTheIdZeroAsAKey) {
  EXPECT_EQ(State(*AccountOf(Nothing)->Clone()), "id 0 {FAccountID: 0%}");
  EXPECT_EQ(StateText(AccountOf(Nothing)->Call("Clone")), "<Account>");
}

TEST_F(AccountTest, ACloneGoesBackToTheStateItWasMadeFrom) {
  const auto account = AccountOf(Row({{"FAccountID", Long{5}}, {"FName", "Cash"}}));
  account->Name("Bank");
  const auto clone = account->Clone();
  clone->Name("Safe");
  clone->CancelChanges();
  EXPECT_EQ(State(*clone), "id 0 {FAccountID: 0%, FName: \"Bank\"}");
}

TEST_F(AccountTest, ACloneSharesNestedRowsWithTheAccountUntilItTakesItsOwnCopy) {
  const auto account = AccountOf(Row({{"_Own", Variant(Row({{"FItemID", Long{1}}}))}}));
  const auto clone = account->Clone();
  account->Properties()->Dictionary()->Value("_Own").As<Dictionary>()->Value("FItemID", Long{2});
  EXPECT_EQ(State(*clone), "id 0 {_Own: {FItemID: 1}, FAccountID: 0%}");
  clone->CancelChanges();
  EXPECT_EQ(State(*clone), "id 0 {_Own: {FItemID: 2}, FAccountID: 0%}");
}

TEST_F(AccountTest, ACloneIsSavedOnlyBehindAnEditAndThenCreated) {
  const auto clone = AccountOf(Row({{"FAccountID", Long{5}}, {"FName", "Cash"}}))->Clone();
  clone->SaveChanges();
  clone->Refresh();
  EXPECT_EQ(server.TakeLog(), "");
  clone->Number("1002");
  server.Answer(kUpdate, "Create", Long{8});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FAccountID", Long{8}}})));
  clone->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLAccount.AccountUpdate\n"
            "call Create(\"props\", {FAccountID: 0%, FName: \"Cash\", FNumber: \"1002\", "
            "MachineName: \"HOST\", IPAddress: \"10.0.0.1\"}) -> 8\n"
            "create QDSVGLAccount.AccountInfo\n"
            "call GetDetail(\"props\", ref 8) -> {FAccountID: 8}\n");
  EXPECT_EQ(State(*clone), "id 8 {FAccountID: 8}");
}

TEST_F(AccountTest, ACloneHasTheTransactionContext) {
  const auto context = Make<Opaque>();
  const auto account = Make<Account>();
  account->Construct(Nothing, context);
  const auto clone = account->Clone();
  EXPECT_EQ(context->holders(), 3);  // this variable, the account and its clone
}

// ---- The questions to the server ----

TEST_F(AccountTest, TheQuestionsOfAnUnsavedAccountAreAnsweredWithoutTheServer) {
  const auto account = AccountOf(Row({{"FFullName", "Assets_Cash"}}));
  EXPECT_FALSE(account->CheckAccountInVoucher());
  EXPECT_FALSE(account->ExistsSpecialChild());
  EXPECT_EQ(account->GetFullName(), "");
  EXPECT_EQ(account->GetFullName("/"), "");
  EXPECT_EQ(StateText(account->Call("CheckAccountInVoucher")), "False");
  EXPECT_EQ(StateText(account->Call("ExistsSpecialChild")), "False");
  EXPECT_EQ(StateText(account->Call("GetFullName")), "\"\"");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(AccountTest, CheckAccountInVoucherAsksByTheIdByReference) {
  server.Answer(kInfo, "CheckAccountInVoucher", true);
  const auto account = AccountOf(Row({{"FAccountID", Long{5}}}));
  EXPECT_TRUE(account->CheckAccountInVoucher());
  EXPECT_EQ(server.TakeLog(), "create QDSVGLAccount.AccountInfo\n"
                              "call CheckAccountInVoucher(\"props\", ref 5) -> True\n");
}

TEST_F(AccountTest, ExistsSpecialChildAsksByTheIdByReference) {
  server.Answer(kInfo, "ExistsSpecialChild", true);
  const auto account = AccountOf(Row({{"FAccountID", Long{5}}}));
  EXPECT_TRUE(account->ExistsSpecialChild());
  EXPECT_EQ(server.TakeLog(), "create QDSVGLAccount.AccountInfo\n"
                              "call ExistsSpecialChild(\"props\", ref 5) -> True\n");
}

TEST_F(AccountTest, GetFullNameAsksWithASeparatorByReferenceThatIsAnUnderscoreUnlessGiven) {
  server.Answer(kInfo, "GetFullName", "Assets_Cash");
  const auto account = AccountOf(Row({{"FAccountID", Long{5}}, {"FFullName", "stored"}}));
  EXPECT_EQ(account->GetFullName(), "Assets_Cash");
  account->GetFullName("/");
  account->GetFullName("");
  account->Call("GetFullName");
  account->Call("GetFullName", Missing);
  account->Call("GetFullName", Named("separator", "-"));
  const std::string kCreate = "create QDSVGLAccount.AccountInfo\n";
  const auto call = [](const std::string& separator) {
    return "call GetFullName(\"props\", ref 5, ref \"" + separator + "\") -> \"Assets_Cash\"\n";
  };
  EXPECT_EQ(server.TakeLog(), kCreate + call("_") + kCreate + call("/") + kCreate + call("") +
                                  kCreate + call("_") + kCreate + call("_") + kCreate + call("-"));
  EXPECT_EQ(account->FullName(), "stored");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(AccountTest, TheAnswersAreConvertedToTheirTypes) {
  const auto account = AccountOf(Row({{"FAccountID", Long{5}}}));
  const std::pair<Variant, bool> truths[] = {
      {Long{2}, true}, {Integer{-1}, true}, {Long{0}, false}, {"True", true}, {Variant(), false}};
  for (const auto& [answer, truth] : truths) {
    server.Answer(kInfo, "CheckAccountInVoucher", answer);
    server.Answer(kInfo, "ExistsSpecialChild", answer);
    EXPECT_EQ(account->CheckAccountInVoucher(), truth) << StateText(answer);
    EXPECT_EQ(account->ExistsSpecialChild(), truth) << StateText(answer);
  }
  EXPECT_EQ(account->GetFullName(), "") << "Empty is the empty text";
  server.Answer(kInfo, "GetFullName", Long{1001});
  EXPECT_EQ(account->GetFullName(), "1001");

  server.Answer(kInfo, "CheckAccountInVoucher", "perhaps");
  server.Answer(kInfo, "ExistsSpecialChild", Null);
  server.Answer(kInfo, "GetFullName", Null);
  EXPECT_EQ(ErrorOf([&] { account->CheckAccountInVoucher(); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { account->ExistsSpecialChild(); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { account->GetFullName(); }), "error 13");
}

TEST_F(AccountTest, AQuestionThatFailsPassesTheErrorAndChangesNothing) {
  const auto saved = [] {
    const auto account = AccountOf(Row({{"FAccountID", Long{5}}}));
    account->Name("x");
    return account;
  };
  const std::string kOutcomes = "1 fails: id 5 {FAccountID: 5, FName: \"x\"} modified flagged\n"
                                "2 fails: id 5 {FAccountID: 5, FName: \"x\"} modified flagged\n"
                                "3 no error: id 5 {FAccountID: 5, FName: \"x\"} modified flagged\n";
  EXPECT_EQ(AtEachFailure(
                server, saved, [](Account& a) { a.CheckAccountInVoucher(); }, State),
            kOutcomes);
  EXPECT_EQ(AtEachFailure(
                server, saved, [](Account& a) { a.ExistsSpecialChild(); }, State),
            kOutcomes);
  EXPECT_EQ(AtEachFailure(
                server, saved, [](Account& a) { a.GetFullName(); }, State),
            kOutcomes);
}

}  // namespace
}  // namespace qdclgl
