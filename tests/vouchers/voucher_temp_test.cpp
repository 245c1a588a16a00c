#include "qdclgl/vouchers/voucher_temp.h"

#include <gtest/gtest.h>

#include "tests/support/columns.h"
#include "tests/support/family.h"
#include "tests/support/recording_server.h"
#include "tests/support/set_suite.h"
#include "tests/support/voucher_state.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::EntityCase;
using testing::EntityCaseOf;
using testing::EntitySuite;
using testing::ErrorOf;
using testing::Event;
using testing::ExpectEvents;
using testing::List;
using testing::NameOfUse;
using testing::Opaque;
using testing::OtherKey;
using testing::RecordingServer;
using testing::Row;
using testing::SetCase;
using testing::SetCaseOf;
using testing::SetSuite;
using testing::StateText;
using testing::TypedAndByName;
using testing::ViewOn;
using testing::WithDefault;
using testing::WritableColumn;
using enum testing::ChangeRecord;
using enum testing::Zero;

constexpr const char* kInfo = "QDSVGLVoucherTemp.VoucherTempInfo";
constexpr const char* kUpdate = "QDSVGLVoucherTemp.VoucherTempUpdate";

#define COLUMN(Type, Name, key) \
  WritableColumn<Type, VoucherTemp>(#Name, key, &VoucherTemp::Name, &VoucherTemp::Name, kIsStored)

std::vector<Column<VoucherTemp>> Columns() {
  return {
      COLUMN(Long, Attachments, "FAttachments"),
      COLUMN(Long, GroupID, "FGroupID"),
      COLUMN(String, Name, "FName"),
      COLUMN(String, Reference, "FReference"),
      WithDefault(COLUMN(String, SaveFlag, "FSaveFlag"), Variant("0"), Variant("text")),
      COLUMN(Long, TypeID, "FTypeID"),
      COLUMN(Long, VoucherID, "FVoucherID"),
  };
}

#undef COLUMN

// A stored template of two lines, the first with a detail.
Ref<Dictionary> TwoLineRow() {
  const auto detail = Row({{"FItemClassID", Long{3}}});
  return Row({{"FVoucherTempID", Long{5}},
              {"FName", "Rent"},
              {"_Entries", List({Row({{"FAccountID", Long{100}}, {"_Details", List({detail})}}),
                                 Row({{"FAccountID", Long{200}}})})}});
}

constexpr const char* kTwoLines =
    "{FVoucherTempID: 5, FName: \"Rent\", _Entries: [{FAccountID: 100, _Details: [{FItemClassID: "
    "3}]}, {FAccountID: 200}]}";

Ref<VoucherTemp> TempOf(const Ref<Dictionary>& row) { return ViewOn<VoucherTemp>(row); }

std::string State(const VoucherTemp& temp) {
  return "id " + std::to_string(temp.VoucherTempID()) + " " +
         testing::State(static_cast<const RowView&>(temp));
}

// The same with the baseline behind it.
std::string WholeState(const VoucherTemp& temp) {
  return State(temp) + " from " + StateText(Variant(temp.DictOrig()));
}

class VoucherTempTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

class VoucherTempSetTest : public ::testing::Test {
 protected:
  RecordingServer server;
  Ref<VoucherTempSet> temps = Make<VoucherTempSet>();
};

// ---- What templates share with all entities and sets ----

EntityCase VoucherTempCase() {
  return EntityCaseOf(&VoucherTemp::VoucherTempID, &VoucherTemp::Name,
                      {.info_component = kInfo,
                       .update_component = kUpdate,
                       .id_member = "VoucherTempID",
                       .id_key = "FVoucherTempID",
                       .text_member = "Name",
                       .text_key = "FName",
                       .track_state = {.construct = 0, .cancel_changes = 1, .refresh = 0},
                       .copies_baseline = true,
                       .refresh_takes_id = true,
                       .saved_by = kFlag,
                       .stamps = false});
}

SetCase VoucherTempSetCase() {
  SetCase temps = SetCaseOf<VoucherTempSet>(
      VoucherTempCase(),
      {.get_list = "GetList(\"props\", ref <filter>, ref <sort>)",
       .get_detail_by_text = "GetDetailByNumber(\"props\", ref 0, ref \"\", ref 0)",
       .exists_by_text = "ExistenceCheck(\"props\", Period:=ref Variant 3, Group:=ref Variant "
                         "\"J\", Number:=ref Variant <key>)",
       .remove = "Delete(\"props\", ref <id>)",
       .item_key = OtherKey::kAny,
       .remove_key = OtherKey::kNone,
       .created_error = "error 13",
       .walked_class = "Voucher",
       .item_is_default = false});
  temps.typed.existence_check = [](EntityListBase& set, const Variant& id, const Variant& number) {
    return static_cast<VoucherTempSet&>(set).ExistenceCheck(id, 3, "J", number);
  };
  temps.by_name.existence_check = [](EntityListBase& set, const Variant& id,
                                     const Variant& number) {
    return set.Call("ExistenceCheck", id, 3, "J", number).As<Long>();
  };
  return temps;
}

INSTANTIATE_TEST_SUITE_P(VoucherTemp, EntitySuite, TypedAndByName(VoucherTempCase()), NameOfUse());
INSTANTIATE_TEST_SUITE_P(VoucherTempSet, SetSuite, TypedAndByName(VoucherTempSetCase()),
                         NameOfUse());

// ---- The members ----

TEST_F(VoucherTempTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<VoucherTemp>(),
            "CancelChanges Clone Construct Refresh ResetModified SaveChanges Attachments DictOrig "
            "Entries GroupID Modified Name Properties Reference SaveFlag TypeID VoucherID "
            "VoucherTempID");
  EXPECT_EQ(testing::MemberNames<VoucherTempSet>(),
            "ListOptions Filter Sort CreateNew ExistenceCheck GetCurrent GetNext NewEnum Refresh "
            "Remove Count Item RecordSet");
}

TEST_F(VoucherTempTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(VoucherTempTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(VoucherTempTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST_F(VoucherTempTest, StoresZeroAndEmptyTextSinceNoMemberHasAClearValue) {
  testing::ExpectWritesOfZero(Columns());
}

TEST_F(VoucherTempTest, RefusesALetOfAnotherType) { testing::ExpectRefusedLets(Columns()); }

TEST_F(VoucherTempTest, OneThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  const auto temp = Make<VoucherTemp>();
  EXPECT_EQ(ErrorOf([&] { temp->Entries(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { temp->Modified(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { temp->ResetModified(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { temp->Clone(); }), "error 91");
}

TEST_F(VoucherTempTest, WhatIsOnlyReadCannotBeLet) {
  const auto temp = TempOf(TwoLineRow());
  for (const char* member : {"VoucherTempID", "Modified", "DictOrig", "Entries"}) {
    EXPECT_EQ(
        ErrorOf([&] { temp->Let(member, 5); }),
        "error 438 (VoucherTemp): The member " + std::string(member) + " can't be used this way.");
  }
  EXPECT_EQ(State(*temp), std::string("id 5 ") + kTwoLines);
}

TEST_F(VoucherTempTest, ASaveFlagOfANumberReadsAsItsTextAndAnEmptyOneAsZero) {
  const auto temp = TempOf(Row({{"FSaveFlag", Integer{3}}}));
  EXPECT_EQ(temp->SaveFlag(), "3");
  temp->SaveFlag("");
  EXPECT_EQ(State(*temp), "id 0 {FSaveFlag: \"\"} modified flagged");
  EXPECT_EQ(temp->SaveFlag(), "0");
}

// ---- The baseline ----

TEST_F(VoucherTempTest, TheBaselineIsACopyOfTheRowThatNoOneElseHolds) {
  const auto row = TwoLineRow();
  const auto temp = TempOf(row);
  EXPECT_NE(temp->DictOrig(), row);
  EXPECT_EQ(StateText(Variant(temp->DictOrig())), kTwoLines);
  EXPECT_EQ(temp->DictOrig(), temp->DictOrig()) << "it is given out itself";
  row->Value("FName", "Other");
  temp->CancelChanges();
  EXPECT_EQ(WholeState(*temp), std::string("id 5 ") + kTwoLines + " from " + kTwoLines);
  EXPECT_EQ(TempOf(Nothing)->DictOrig(), nullptr);
}

TEST_F(VoucherTempTest, ARefreshMakesTheTemplateAnewAndLeavesWhatWasTakenBeforeOnTheOldData) {
  server.Answer(kInfo, "GetDetail", Variant(TwoLineRow()));
  const auto temp = TempOf(TwoLineRow());
  const Ref<Properties> bag = temp->Properties();
  const Ref<VoucherEntrySet> lines = temp->Entries();
  temp->Refresh();
  EXPECT_NE(temp->Properties(), bag);
  lines->Item(1)->AccountID(7);
  bag->Item("FName")->Value("behind");
  EXPECT_EQ(WholeState(*temp), std::string("id 5 ") + kTwoLines + " from " + kTwoLines);
  EXPECT_FALSE(temp->Modified());
}

// ---- Lines ----

TEST_F(VoucherTempTest, ReadingTheLinesOfANewTemplateMakesTheListWithoutAChange) {
  const auto temp = TempOf(Nothing);
  EXPECT_EQ(temp->Entries()->Count(), 0);
  EXPECT_EQ(State(*temp), "id 0 {_Entries: []} modified");
  EXPECT_FALSE(temp->Modified());
  temp->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "");
  temp->Entries()->Add();
  EXPECT_TRUE(temp->Modified());
  EXPECT_EQ(State(*temp), "id 0 {_Entries: [{}]} modified flagged");
}

TEST_F(VoucherTempTest, EachReadOfTheLinesIsAnotherViewOnTheSameList) {
  const auto temp = TempOf(TwoLineRow());
  const Ref<VoucherEntrySet> one = temp->Entries(), other = temp->Entries();
  EXPECT_NE(one, other);
  one->Item(2)->AccountID(300);
  EXPECT_EQ(other->Item(2)->AccountID(), 300);
  EXPECT_TRUE(temp->Modified());
}

TEST_F(VoucherTempTest, AChangeOfALineOrADetailAloneIsSaved) {
  const std::string sent =
      "{FVoucherTempID: 5, FName: \"Rent\", _Entries: [{FAccountID: 100, _Details: "
      "[{FItemClassID: 4}]}, {FAccountID: 200}]}";
  server.Answer(kInfo, "GetDetail", Variant(TwoLineRow()));
  const auto temp = TempOf(TwoLineRow());
  temp->Entries()->Item(1)->Details()->Item(1)->ItemClassID(4);
  temp->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "create " + std::string(kUpdate) +
                                  "\ncall Update(\"props\", ref 5, " + sent + ")\ncreate " + kInfo +
                                  "\ncall GetDetail(\"props\", ref 5) -> " + kTwoLines + "\n");
  EXPECT_EQ(WholeState(*temp), std::string("id 5 ") + kTwoLines + " from " + kTwoLines);
}

TEST_F(VoucherTempTest, ResetModifiedClearsTheFlagsAndLeavesDataAndBaseline) {
  const auto temp = TempOf(TwoLineRow());
  temp->Name("New");
  temp->Entries()->Item(2)->AccountID(300);
  temp->ResetModified();
  EXPECT_FALSE(temp->Modified());
  EXPECT_EQ(temp->Name(), "New");
  EXPECT_EQ(temp->Entries()->Item(2)->AccountID(), 300);
  temp->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "");
  temp->CancelChanges();
  EXPECT_EQ(State(*temp), std::string("id 5 ") + kTwoLines);
}

// ---- Clone ----

TEST_F(VoucherTempTest, ACloneHasTheEditsAndTheSourcesBaselineAndNoContext) {
  const auto xa = Make<Opaque>();
  auto temp = Make<VoucherTemp>();
  temp->Construct(TwoLineRow(), xa);
  temp->Name("New");
  const int holders = xa->holders();
  const Ref<VoucherTemp> clone = temp->Clone();
  EXPECT_EQ(xa->holders(), holders);
  std::string edited = kTwoLines;
  edited.replace(edited.find("Rent"), 4, "New");
  EXPECT_EQ(WholeState(*clone), "id 5 " + edited + " from " + kTwoLines);
  EXPECT_NE(clone->DictOrig(), temp->DictOrig());
  clone->Entries()->Item(1)->AccountID(7);
  clone->DictOrig()->Value("FName", "Mine");
  EXPECT_EQ(WholeState(*temp), "id 5 " + edited + " modified flagged from " + kTwoLines);
  EXPECT_EQ(temp->Call("Clone").As<VoucherTemp>()->Name(), "New");
}

TEST_F(VoucherTempTest, ACloneOfAStoredTemplateSavesOverTheSameOne) {
  const Ref<VoucherTemp> clone = TempOf(TwoLineRow())->Clone();
  clone->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "") << "nothing of it is modified";
  clone->Name("New");
  server.FailAt(2, Error(70));
  EXPECT_EQ(ErrorOf([&] { clone->SaveChanges(); }), "error 70");
  EXPECT_TRUE(server.TakeLog().find("call Update(\"props\", ref 5, ") != std::string::npos);
}

// ---- The set ----

TEST_F(VoucherTempSetTest, CreateNewConvertsWhatItIsGivenAndEndsInAMismatchWithoutACall) {
  const auto outcome = [&](const Variant& period, const Variant& group, const Variant& number) {
    return ErrorOf([&] { temps->CreateNew(period, group, number); });
  };
  EXPECT_EQ(outcome(Missing, Missing, Missing), "error 13");
  EXPECT_EQ(outcome(3, 1, 7), "error 13");
  EXPECT_EQ(outcome("3", 1.5, true), "error 13");
  // Each is converted, in this order, before that.
  EXPECT_EQ(outcome(3e9, Missing, Missing), "error 6");
  EXPECT_EQ(outcome(Missing, 3e9, Missing), "error 6");
  EXPECT_EQ(outcome(1, 1, 3e9), "error 6");
  EXPECT_EQ(outcome(Variant(Make<Opaque>()), 3e9, 3e9), "error 438 (Opaque): The object has no "
                                                        "default value.");
  EXPECT_EQ(ErrorOf([&] { temps->Call("CreateNew", Named("Number", 5)); }), "error 13");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherTempSetTest, ExistenceCheckNeedsAllThreeOfPeriodGroupAndNumber) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  const Variant given(Long{1});
  for (const int left_out : {0, 1, 2}) {
    Variant parts[] = {given, given, given};
    parts[left_out] = Missing;
    EXPECT_EQ(temps->ExistenceCheck(Missing, parts[0], parts[1], parts[2]), 0);
    EXPECT_EQ(server.TakeLog(), "create " + std::string(kInfo) + "\n");
  }
  EXPECT_EQ(temps->ExistenceCheck(Missing, given, given, given), 7);
  EXPECT_EQ(server.TakeLog(),
            "create " + std::string(kInfo) +
                "\ncall ExistenceCheck(\"props\", Period:=ref Variant 1, Group:=ref Variant 1, "
                "Number:=ref Variant 1) -> 7\n");
}

TEST_F(VoucherTempSetTest, RemoveWithoutAKeyLooksThePartsUp) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  ExpectEvents(
      server, [&] { return temps; }, [](VoucherTempSet& set) { set.Remove(Missing, 3, "J", 12); },
      {{"create " + std::string(kInfo), "", ""},
       {"call ExistenceCheck(\"props\", Period:=ref Variant 3, Group:=ref Variant \"J\", "
        "Number:=ref Variant 12)",
        " -> 7", ""},
       {"create " + std::string(kUpdate), "", ""},
       {"call Delete(\"props\", ref 7)", "", ""}},
      "", [](VoucherTempSet&) { return std::string(); });
  EXPECT_EQ(ErrorOf([&] { temps->Remove(Missing, 3, Missing, 12); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { temps->Remove(); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { temps->Remove("J", 3, "J", 12); }), "error 5") << "the key goes first";
  EXPECT_EQ(server.TakeLog(), "");
  server.Answer(kInfo, "ExistenceCheck", Long{0});
  EXPECT_EQ(ErrorOf([&] { temps->Remove(Missing, 3, "J", 12); }), "error 5");
}

TEST_F(VoucherTempSetTest, ItemOfAnyOtherKeyLooksUpThePartsAndNotTheKey) {
  server.Answer(kInfo, "GetDetailByNumber", Variant(Row({{"FVoucherTempID", Long{5}}})));
  EXPECT_EQ(State(*temps->Item("Rent", 3, "J", 12)), "id 5 {FVoucherTempID: 5}");
  EXPECT_EQ(server.TakeLog(),
            "create " + std::string(kInfo) +
                "\ncall GetDetailByNumber(\"props\", ref 3, ref \"J\", ref 12) -> "
                "{FVoucherTempID: 5}\n");
}

TEST_F(VoucherTempSetTest, AWalkGivesVouchersAndGetNextTemplatesOfTheSameRows) {
  auto list = Recordset::Create({"FVoucherTempID", "FVoucherID", "FName"});
  list->AddRow({Long{1}, Long{21}, "Rent"});
  list->AddRow({Long{2}, Long{0}, "Wages"});
  temps->RecordSet(list);
  std::string walked;
  for (Voucher& voucher : *temps) {
    walked += std::to_string(voucher.VoucherID()) + " " +
              testing::State(static_cast<const RowView&>(voucher)) + "\n";
  }
  EXPECT_EQ(walked, "21 {FVoucherTempID: 1, FVoucherID: 21, FName: \"Rent\"}\n"
                    "0 {FVoucherTempID: 2, FVoucherID: 0, FName: \"Wages\"}\n");
  EXPECT_EQ(State(*temps->GetNext()), "id 1 {FVoucherTempID: 1, FVoucherID: 21, FName: \"Rent\"}");
  EXPECT_EQ(temps->GetNext()->VoucherID(), 0);
  EXPECT_EQ(server.TakeLog(), "");
}

}  // namespace
}  // namespace qdclgl
