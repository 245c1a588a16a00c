#include "qdclgl/vouchers/voucher_group.h"

#include <gtest/gtest.h>

#include "qdclgl/frame/objects/class_table.h"
#include "tests/support/recording_server.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;

constexpr const char* kInfo = "QDSVGLVoucherGroup.VoucherGroupInfo";
constexpr const char* kUpdate = "QDSVGLVoucherGroup.VoucherGroupUpdate";

// Everything that one can see of a group: id, bag, the Dictionary's modified state, the flag.
std::string State(const VoucherGroup& group) {
  const Ref<Properties> bag = group.Properties();
  return "id " + std::to_string(group.VoucherGroupID()) + " " +
         StateText(Variant(bag->Dictionary())) + (bag->Modified() ? " modified" : "") +
         (bag->ChangeFlag()->Modified() ? " flagged" : "");
}

Ref<VoucherGroup> Group(const Ref<Dictionary>& row) {
  auto group = Make<VoucherGroup>();
  group->Construct(row, Nothing);
  return group;
}

Ref<Recordset> ThreeGroups() {
  auto list = Recordset::Create({"FGroupID", "FName"});
  list->AddRow({Long{1}, "Receipts"});
  list->AddRow({Long{2}, "Payments"});
  list->AddRow({Long{3}, Null});
  return list;
}

class VoucherGroupTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

class VoucherGroupSetTest : public ::testing::Test {
 protected:
  RecordingServer server;
  Ref<VoucherGroupSet> groups = Make<VoucherGroupSet>();
};

// ---- The members ----

TEST_F(VoucherGroupTest, ReadsDefaultsFromAnEmptyRow) {
  const auto group = Group(Nothing);
  EXPECT_EQ(group->CRange(), "");
  EXPECT_EQ(group->DCRange(), "");
  EXPECT_EQ(group->DRange(), "");
  EXPECT_EQ(group->LimitMulti(), 0);
  EXPECT_EQ(group->Name(), "");
  EXPECT_EQ(group->NCRange(), "");
  EXPECT_EQ(group->NDCRange(), "");
  EXPECT_EQ(group->NDRange(), "");
  EXPECT_EQ(group->Standard(), 0);
  EXPECT_EQ(group->UUID(), "");
  EXPECT_EQ(group->VoucherGroupID(), 0);
  EXPECT_EQ(State(*group), "id 0 {}");
}

TEST_F(VoucherGroupTest, WritesEachMemberUnderItsKey) {
  const auto group = Group(Nothing);
  group->CRange("a");
  group->DCRange("b");
  group->DRange("c");
  group->LimitMulti(5);
  group->Name("d");
  group->NCRange("e");
  group->NDCRange("f");
  group->NDRange("g");
  group->Standard(7);
  group->UUID("h");
  EXPECT_EQ(State(*group),
            "id 0 {FCRange: \"a\", FDCRange: \"b\", FDRange: \"c\", FLimitMulti: 5%, FName: \"d\", "
            "FNCRange: \"e\", FNDCRange: \"f\", FNDRange: \"g\", FStandard: 7%, UUID: \"h\"} "
            "modified flagged");
}

TEST_F(VoucherGroupTest, ReadsEachMemberFromItsKey) {
  const auto group = Group(Row({{"FCRange", "a"},
                                {"FDCRange", "b"},
                                {"FDRange", "c"},
                                {"FLimitMulti", Long{1}},
                                {"FName", "d"},
                                {"FNCRange", "e"},
                                {"FNDCRange", "f"},
                                {"FNDRange", "g"},
                                {"FStandard", Long{7}},
                                {"UUID", "h"},
                                {"FGroupID", Long{12}}}));
  EXPECT_EQ(group->CRange() + group->DCRange() + group->DRange() + group->Name() +
                group->NCRange() + group->NDCRange() + group->NDRange() + group->UUID(),
            "abcdefgh");
  EXPECT_EQ(group->LimitMulti(), 1);
  EXPECT_EQ(group->Standard(), 7);
  EXPECT_EQ(group->VoucherGroupID(), 12);
}

TEST_F(VoucherGroupTest, StoresZeroAndEmptyTextSinceNoMemberHasAClearValue) {
  const auto group = Group(Row({{"FName", "Receipts"}, {"FStandard", Long{1}}}));
  group->Name("");
  group->Standard(0);
  group->LimitMulti(0);
  EXPECT_EQ(State(*group), "id 0 {FName: \"\", FStandard: 0%, FLimitMulti: 0%} modified flagged");
}

TEST_F(VoucherGroupTest, NullReadsAsTheDefault) {
  const auto group =
      Group(Row({{"FName", Null}, {"FStandard", Null}, {"FLimitMulti", Null}, {"UUID", Null}}));
  EXPECT_EQ(group->Name(), "");
  EXPECT_EQ(group->Standard(), 0);
  EXPECT_EQ(group->LimitMulti(), 0);
  EXPECT_EQ(group->UUID(), "");
}

TEST_F(VoucherGroupTest, LimitMultiReadsOneForWhateverIsTrue) {
  const std::pair<Variant, Integer> cases[] = {
      {Long{5}, 1}, {Long{0}, 0}, {Integer{-1}, 1}, {true, 1}, {false, 0},
      {0.25, 1},    {"True", 1},  {"0", 0},         {"", 0},   {Null, 0},
  };
  for (const auto& [stored, read] : cases) {
    EXPECT_EQ(Group(Row({{"FLimitMulti", stored}}))->LimitMulti(), read) << StateText(stored);
  }
  EXPECT_EQ(ErrorOf([] { Group(Row({{"FLimitMulti", "many"}}))->LimitMulti(); }), "error 13");
}

TEST_F(VoucherGroupTest, LimitMultiOfFiveSavedReadsBackAsOneWithoutAnotherChange) {
  const auto group = Group(Row({{"FGroupID", Long{3}}}));
  server.Answer(kInfo, "GetDetail",
                Variant(Row({{"FGroupID", Long{3}}, {"FLimitMulti", Long{5}}})));
  group->LimitMulti(5);
  group->SaveChanges();
  EXPECT_EQ(group->LimitMulti(), 1);
  EXPECT_EQ(State(*group), "id 3 {FGroupID: 3, FLimitMulti: 5}");
}

TEST_F(VoucherGroupTest, AStandardBeyondSixteenBitsRaisesOverflow) {
  EXPECT_EQ(ErrorOf([] { Group(Row({{"FStandard", Long{40000}}}))->Standard(); }), "error 6");
}

// ---- Construct, Refresh, CancelChanges ----

TEST_F(VoucherGroupTest, ConstructTakesACopyAndTheIdAndIsUnmodified) {
  const auto row = Row({{"FGroupID", "17"}, {"FName", "Receipts"}});
  const auto group = Group(row);
  group->Name("Payments");
  EXPECT_EQ(State(*group), "id 17 {FGroupID: \"17\", FName: \"Payments\"} modified flagged");
  EXPECT_EQ(StateText(Variant(row)), "{FGroupID: \"17\", FName: \"Receipts\"}");
  EXPECT_EQ(State(*Group(row)), "id 17 {FGroupID: \"17\", FName: \"Receipts\"}");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherGroupTest, ConstructOfNothingKeepsTheId) {
  const auto group = Group(Row({{"FGroupID", Long{4}}}));
  group->Construct(Nothing, Nothing);
  EXPECT_EQ(State(*group), "id 4 {}");
}

TEST_F(VoucherGroupTest, ConstructOfARowWithoutTheIdGivesZero) {
  EXPECT_EQ(State(*Group(Row({{"FName", "Receipts"}}))), "id 0 {FName: \"Receipts\"}");
}

TEST_F(VoucherGroupTest, ConstructPassesOnAnIdThatIsNoNumber) {
  EXPECT_EQ(ErrorOf([] { Group(Row({{"FGroupID", "seven"}})); }), "error 13");
}

TEST_F(VoucherGroupTest, RefreshOfAnUnsavedGroupDoesNothing) {
  const auto group = Group(Nothing);
  group->Name("Receipts");
  group->Refresh();
  EXPECT_EQ(server.TakeLog(), "");
  EXPECT_EQ(State(*group), "id 0 {FName: \"Receipts\"} modified flagged");
}

TEST_F(VoucherGroupTest, RefreshReadsTheRowByItsIdByReference) {
  const auto group = Group(Row({{"FGroupID", Long{5}}, {"FName", "Old"}}));
  group->Name("Edited");
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{5}}, {"FName", "New"}})));
  group->Refresh();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call GetDetail(\"props\", ref 5) -> {FGroupID: 5, FName: \"New\"}\n");
  EXPECT_EQ(State(*group), "id 5 {FGroupID: 5, FName: \"New\"}");
}

TEST_F(VoucherGroupTest, RefreshToNothingLeavesAnEmptyBagAndTheId) {
  const auto group = Group(Row({{"FGroupID", Long{5}}}));
  server.Answer(kInfo, "GetDetail", Nothing);
  group->Refresh();
  EXPECT_EQ(State(*group), "id 5 {}");
}

TEST_F(VoucherGroupTest, RefreshRefusesAnAnswerThatIsNoDictionary) {
  for (const Variant& answer : {Variant("text"), Variant(Long{1}), Variant(Make<Vector>())}) {
    const auto group = Group(Row({{"FGroupID", Long{5}}, {"FName", "Old"}}));
    server.Answer(kInfo, "GetDetail", answer);
    EXPECT_EQ(ErrorOf([&] { group->Refresh(); }), "error 13") << StateText(answer);
    EXPECT_EQ(State(*group), "id 5 {FGroupID: 5, FName: \"Old\"}");
  }
}

TEST_F(VoucherGroupTest, AGroupIsModifiedByAnEditBehindARefreshAndClearAgainByTheNextOne) {
  const auto group = Group(Row({{"FGroupID", Long{5}}}));
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{5}}})));
  group->Refresh();
  EXPECT_EQ(State(*group), "id 5 {FGroupID: 5}");
  group->Name("x");
  EXPECT_EQ(State(*group), "id 5 {FGroupID: 5, FName: \"x\"} modified flagged");
  group->Refresh();
  EXPECT_EQ(State(*group), "id 5 {FGroupID: 5}");
}

TEST_F(VoucherGroupTest, CancelChangesGoesBackToTheLastRowWithoutAServerCall) {
  const auto group = Group(Row({{"FGroupID", Long{5}}, {"FName", "First"}}));
  group->Name("Edited");
  group->CancelChanges();
  EXPECT_EQ(State(*group), "id 5 {FGroupID: 5, FName: \"First\"}");

  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{5}}, {"FName", "Second"}})));
  group->Refresh();
  server.TakeLog();
  group->Name("Edited");
  group->CancelChanges();
  EXPECT_EQ(State(*group), "id 5 {FGroupID: 5, FName: \"Second\"}");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherGroupTest, CancelChangesOfANewGroupEmptiesTheBag) {
  const auto group = Group(Nothing);
  group->Name("Receipts");
  group->CancelChanges();
  EXPECT_EQ(State(*group), "id 0 {}");
}

TEST_F(VoucherGroupTest, APropertyHeldAcrossCancelChangesSeesTheRestoredValue) {
  const auto group = Group(Row({{"FName", "First"}}));
  const Ref<Property> name = group->Properties()->Item("FName");
  group->Name("Edited");
  EXPECT_EQ(StateText(name->Value()), "\"Edited\"");
  group->CancelChanges();
  EXPECT_EQ(StateText(name->Value()), "\"First\"");
}

// ---- SaveChanges ----

TEST_F(VoucherGroupTest, SaveChangesOfAnUnmodifiedGroupMakesNoServerCall) {
  Group(Row({{"FGroupID", Long{5}}}))->SaveChanges();
  Group(Nothing)->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherGroupTest, SaveChangesOfANewGroupCreatesItAndReadsItByItsNewId) {
  const auto group = Group(Nothing);
  group->Name("Receipts");
  server.Answer(kUpdate, "Create", Long{8});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{8}}, {"FName", "Receipts"}})));
  group->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupUpdate\n"
            "call Create(\"props\", {FName: \"Receipts\", MachineName: \"HOST\", "
            "IPAddress: \"10.0.0.1\"}) -> 8\n"
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call GetDetail(\"props\", ref 8) -> {FGroupID: 8, FName: \"Receipts\"}\n");
  EXPECT_EQ(State(*group), "id 8 {FGroupID: 8, FName: \"Receipts\"}");
}

TEST_F(VoucherGroupTest, SaveChangesOfAnExistingGroupUpdatesItWithTheIdByReference) {
  const auto group = Group(Row({{"FGroupID", Long{5}}, {"FName", "Old"}}));
  group->Name("New");
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{5}}, {"FName", "New"}})));
  group->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupUpdate\n"
            "call Update(\"props\", ref 5, {FGroupID: 5, FName: \"New\", MachineName: \"HOST\", "
            "IPAddress: \"10.0.0.1\"})\n"
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call GetDetail(\"props\", ref 5) -> {FGroupID: 5, FName: \"New\"}\n");
  EXPECT_EQ(State(*group), "id 5 {FGroupID: 5, FName: \"New\"}");
}

TEST_F(VoucherGroupTest, ASecondSaveWithoutAnEditMakesNoServerCall) {
  const auto group = Group(Row({{"FGroupID", Long{5}}}));
  group->Name("New");
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{5}}})));
  group->SaveChanges();
  server.TakeLog();
  group->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherGroupTest, AChangeMadeInTheLiveDictionaryIsSavedThoughNoFlagTellsOfIt) {
  const auto group = Group(Row({{"FGroupID", Long{5}}}));
  group->Properties()->Dictionary()->Value("FName", "Direct");
  EXPECT_EQ(State(*group), "id 5 {FGroupID: 5, FName: \"Direct\"} modified");
  server.Answer(kInfo, "GetDetail", Nothing);
  group->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucherGroup.VoucherGroupUpdate\n"
                              "call Update(\"props\", ref 5, {FGroupID: 5, FName: \"Direct\", "
                              "MachineName: \"HOST\", IPAddress: \"10.0.0.1\"})\n"
                              "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
                              "call GetDetail(\"props\", ref 5) -> Nothing\n");
}

TEST_F(VoucherGroupTest, TheStampsSetNoChangeFlagOfTheirOwn) {
  const auto group = Group(Row({{"FGroupID", Long{5}}}));
  group->Properties()->Dictionary()->Value("FName", "Direct");
  server.FailAt(2, Error(70, "server", "refused"));
  EXPECT_EQ(ErrorOf([&] { group->SaveChanges(); }), "error 70 (server): refused");
  EXPECT_EQ(State(*group), "id 5 {FGroupID: 5, FName: \"Direct\", MachineName: \"HOST\", "
                           "IPAddress: \"10.0.0.1\"} modified");
}

TEST_F(VoucherGroupTest, SaveChangesStampsEmptyTextsWhenTheMachineGivesNone) {
  server.platform().fail_computer_name = true;
  server.platform().fail_address_text = true;
  const auto group = Group(Nothing);
  group->Name("x");
  server.Answer(kUpdate, "Create", Long{1});
  server.Answer(kInfo, "GetDetail", Nothing);
  group->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupUpdate\n"
            "call Create(\"props\", {FName: \"x\", MachineName: \"\", IPAddress: \"\"}) -> 1\n"
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call GetDetail(\"props\", ref 1) -> Nothing\n");
}

TEST_F(VoucherGroupTest, AServerFailureAtAnyStepOfACreatingSavePassesUnchanged) {
  const std::string kEdited = "id 0 {FName: \"x\"} modified flagged";
  const std::string kStamped =
      "id 0 {FName: \"x\", MachineName: \"HOST\", IPAddress: \"10.0.0.1\"} modified flagged";
  // Once the server has made the row the group has its id; only the reading back is missing.
  const std::string kCreated =
      "id 8 {FName: \"x\", MachineName: \"HOST\", IPAddress: \"10.0.0.1\"} modified flagged";
  const std::string states[] = {kEdited, kStamped, kCreated, kCreated};
  for (int position = 1; position <= 4; ++position) {
    const auto group = Group(Nothing);
    group->Name("x");
    server.Answer(kUpdate, "Create", Long{8});
    server.FailAt(position, Error(-2147217900, "database", "deadlock"));
    EXPECT_EQ(ErrorOf([&] { group->SaveChanges(); }), "error 0x80040E14 (database): deadlock");
    EXPECT_EQ(State(*group), states[position - 1]) << "failure at " << position;
    EXPECT_NE(server.TakeLog().find(" -> error 0x80040E14 (database): deadlock\n"),
              std::string::npos);
  }
}

TEST_F(VoucherGroupTest, AServerFailureAtAnyStepOfAnUpdatingSaveLeavesTheEditedState) {
  const std::string kEdited = "id 5 {FGroupID: 5, FName: \"x\"} modified flagged";
  const std::string kStamped =
      "id 5 {FGroupID: 5, FName: \"x\", MachineName: \"HOST\", IPAddress: \"10.0.0.1\"} "
      "modified flagged";
  for (int position = 1; position <= 4; ++position) {
    const auto group = Group(Row({{"FGroupID", Long{5}}}));
    group->Name("x");
    server.FailAt(position, Error(70));
    EXPECT_EQ(ErrorOf([&] { group->SaveChanges(); }), "error 70");
    EXPECT_EQ(State(*group), position == 1 ? kEdited : kStamped) << "failure at " << position;
    server.TakeLog();
    group->CancelChanges();
    EXPECT_EQ(State(*group), "id 5 {FGroupID: 5}");
  }
}

TEST_F(VoucherGroupTest, AFailedSaveCanBeTriedAgain) {
  const auto group = Group(Nothing);
  group->Name("x");
  server.Answer(kUpdate, "Create", Long{8});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{8}}, {"FName", "x"}})));
  server.FailAt(2, Error(70));
  EXPECT_EQ(ErrorOf([&] { group->SaveChanges(); }), "error 70");
  group->SaveChanges();
  EXPECT_EQ(State(*group), "id 8 {FGroupID: 8, FName: \"x\"}");
}

TEST_F(VoucherGroupTest, ACreateThatAnswersNoNumberRaisesTypeMismatchAndKeepsTheId) {
  const auto group = Group(Nothing);
  group->Name("x");
  server.Answer(kUpdate, "Create", "new");
  EXPECT_EQ(ErrorOf([&] { group->SaveChanges(); }), "error 13");
  EXPECT_EQ(group->VoucherGroupID(), 0);
}

TEST_F(VoucherGroupTest, TheServerMayWriteTheIdBackThroughItsReference) {
  const auto group = Group(Row({{"FGroupID", Long{5}}}));
  group->Name("x");
  server.AnswerWith(kUpdate, "Update", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{6}));
    return Variant();
  });
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{6}}})));
  group->SaveChanges();
  EXPECT_EQ(State(*group), "id 6 {FGroupID: 6}");
}

TEST_F(VoucherGroupTest, TheConnectionTextIsAskedForBehindTheComponentAndAfreshForEachCall) {
  const auto group = Group(Nothing);
  group->Name("x");
  server.Answer(kUpdate, "Create", Long{8});
  server.Answer(kInfo, "GetDetail", Nothing);
  server.LogSession();
  group->SaveChanges();
  const std::string kSession = "create-object QDCMtsCacheService.CacheFacade\n"
                               "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                               "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                               "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n";
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucherGroup.VoucherGroupUpdate\n" + kSession +
                                  "call Create(\"props\", {FName: \"x\", MachineName: \"HOST\", "
                                  "IPAddress: \"10.0.0.1\"}) -> 8\n"
                                  "create QDSVGLVoucherGroup.VoucherGroupInfo\n" +
                                  kSession + "call GetDetail(\"props\", ref 8) -> Nothing\n");
}

TEST_F(VoucherGroupTest, WithoutASessionTheServerIsHandedAnEmptyConnectionText) {
  server.outer_login = Variant(Long{2});
  const auto group = Group(Row({{"FGroupID", Long{5}}}));
  server.Answer(kInfo, "GetDetail", Nothing);
  group->Refresh();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
                              "call GetDetail(\"\", ref 5) -> Nothing\n");
}

TEST_F(VoucherGroupTest, AGroupThatWasNeverConstructedRaisesObjectNotSet) {
  const auto group = Make<VoucherGroup>();
  EXPECT_EQ(ErrorOf([&] { group->Name(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { group->Name("x"); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { group->SaveChanges(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { group->CancelChanges(); }), "error 91");
  EXPECT_EQ(group->Properties(), nullptr);
  group->Refresh();
  EXPECT_EQ(group->VoucherGroupID(), 0);
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherGroupTest, WorksThroughLateBoundCallsAsThroughTypedOnes) {
  Ref<Object> group = Group(Nothing);
  group->Let("Name", "Receipts");
  group->Let("LIMITMULTI", 5);
  EXPECT_EQ(StateText(group->Get("name")), "\"Receipts\"");
  EXPECT_EQ(StateText(group->Get("LimitMulti")), "1%");
  EXPECT_EQ(StateText(group->Get("VoucherGroupID")), "0");
  EXPECT_EQ(ErrorOf([&] { group->Let("VoucherGroupID", 5); }),
            "error 438 (VoucherGroup): The member VoucherGroupID can't be used this way.");
  group->Call("CancelChanges");
  EXPECT_EQ(StateText(group->Get("Properties").As<Properties>()->Get("Count")), "0");
  group->Call("Construct", Named("xa", Nothing), Named("dict", Row({{"FGroupID", Long{9}}})));
  EXPECT_EQ(StateText(group->Get("VoucherGroupID")), "9");
}

// ---- The set: list, cursor, fields ----

TEST_F(VoucherGroupSetTest, CountOfASetNeverRefreshedFetchesTheListOnce) {
  server.Answer(kInfo, "GetList", Variant(ThreeGroups()));
  EXPECT_EQ(groups->Count(), 3);
  EXPECT_EQ(groups->Count(), 3);
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call GetList(\"props\", ref 0, ref \"\", ref \"\") -> "
            "recordset{FGroupID, FName | 1, \"Receipts\" | 2, \"Payments\" | 3, Null}\n");
}

TEST_F(VoucherGroupSetTest, RefreshPassesTheThreeFieldsByReference) {
  groups->ListOptions(4);
  groups->Filter("FStandard = 1");
  groups->Sort("FName");
  server.AnswerWith(kInfo, "GetList", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{9}));
    arguments[2].Put(Variant("filter back"));
    arguments[3].Put(Variant("sort back"));
    return Variant(Recordset::Create({"FGroupID"}));
  });
  groups->Refresh();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call GetList(\"props\", ref 4, ref \"FStandard = 1\", ref \"FName\") -> "
            "recordset{FGroupID}\n");
  EXPECT_EQ(groups->ListOptions(), 9);
  EXPECT_EQ(groups->Filter(), "filter back");
  EXPECT_EQ(groups->Sort(), "sort back");
}

TEST_F(VoucherGroupSetTest, AChangedFilterKeepsTheOldRowsUntilRefresh) {
  server.AnswerOnce(kInfo, "GetList", Variant(ThreeGroups()));
  EXPECT_EQ(groups->Count(), 3);
  groups->Filter("FGroupID > 10");
  groups->ListOptions(1);
  groups->Sort("FName");
  EXPECT_EQ(groups->Count(), 3);
  EXPECT_EQ(groups->GetCurrent()->Name(), "Receipts");
  server.TakeLog();
  server.AnswerOnce(kInfo, "GetList", Variant(Recordset::Create({"FGroupID"})));
  groups->Refresh();
  EXPECT_EQ(groups->Count(), 0);
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call GetList(\"props\", ref 1, ref \"FGroupID > 10\", ref \"FName\") -> "
            "recordset{FGroupID}\n");
}

TEST_F(VoucherGroupSetTest, AFailedRefreshHasDroppedTheListAndTheNextUseTriesAgain) {
  groups->RecordSet(ThreeGroups());
  server.FailAt(2, Error(70, "server", "gone"));
  EXPECT_EQ(ErrorOf([&] { groups->Refresh(); }), "error 70 (server): gone");
  EXPECT_EQ(groups->RecordSet(), nullptr);
  server.TakeLog();
  server.Answer(kInfo, "GetList", Variant(ThreeGroups()));
  EXPECT_EQ(groups->Count(), 3);
  EXPECT_EQ(server.TakeLog().substr(0, 43), "create QDSVGLVoucherGroup.VoucherGroupInfo\n");
}

TEST_F(VoucherGroupSetTest, RefreshDropsTheListEvenWhenNoComponentCanBeMade) {
  groups->RecordSet(ThreeGroups());
  server.missing_components = {kInfo};
  EXPECT_EQ(ErrorOf([&] { groups->Refresh(); }), "error 429");
  EXPECT_EQ(groups->RecordSet(), nullptr);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucherGroup.VoucherGroupInfo -> error 429\n");
}

TEST_F(VoucherGroupSetTest, RefreshRefusesAnAnswerThatIsNoRecordset) {
  server.Answer(kInfo, "GetList", Variant(Row({})));
  EXPECT_EQ(ErrorOf([&] { groups->Refresh(); }), "error 13");
  server.Answer(kInfo, "GetList", Nothing);
  EXPECT_EQ(ErrorOf([&] { groups->Count(); }), "error 91");
}

TEST_F(VoucherGroupSetTest, RecordSetIsNothingBeforeTheFirstUseAndFetchesNothing) {
  EXPECT_EQ(groups->RecordSet(), nullptr);
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherGroupSetTest, ARecordsetPutInIsUsedWithoutTheServer) {
  const auto list = ThreeGroups();
  groups->RecordSet(list);
  EXPECT_EQ(groups->RecordSet(), list);
  EXPECT_EQ(groups->Count(), 3);
  EXPECT_EQ(groups->GetCurrent()->Name(), "Receipts");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherGroupSetTest, GetCurrentLeavesTheCursorAndHoldsJustTheColumnsOfTheList) {
  groups->RecordSet(ThreeGroups());
  EXPECT_EQ(State(*groups->GetCurrent()), "id 1 {FGroupID: 1, FName: \"Receipts\"}");
  EXPECT_EQ(State(*groups->GetCurrent()), "id 1 {FGroupID: 1, FName: \"Receipts\"}");
}

TEST_F(VoucherGroupSetTest, GetNextReturnsTheLastRowAndThenRaisesFive) {
  groups->RecordSet(ThreeGroups());
  EXPECT_EQ(groups->GetNext()->VoucherGroupID(), 1);
  EXPECT_EQ(groups->GetNext()->VoucherGroupID(), 2);
  EXPECT_EQ(groups->GetNext()->VoucherGroupID(), 3);
  EXPECT_EQ(ErrorOf([&] { groups->GetNext(); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { groups->GetNext(); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { groups->GetCurrent(); }), "error 5");
}

TEST_F(VoucherGroupSetTest, GetCurrentOfAnEmptyListFetchesItAndRaisesFive) {
  server.Answer(kInfo, "GetList", Variant(Recordset::Create({"FGroupID"})));
  EXPECT_EQ(ErrorOf([&] { groups->GetCurrent(); }), "error 5");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call GetList(\"props\", ref 0, ref \"\", ref \"\") -> recordset{FGroupID}\n");
}

TEST_F(VoucherGroupSetTest, AWalkFetchesTheListOnceAndLeavesTheCursor) {
  server.Answer(kInfo, "GetList", Variant(ThreeGroups()));
  std::string names;
  for (auto& group : *groups) names += std::to_string(group.VoucherGroupID()) + group.Name() + " ";
  EXPECT_EQ(names, "1Receipts 2Payments 3 ");
  EXPECT_EQ(groups->GetNext()->VoucherGroupID(), 1);
  for (auto& group : *groups) names += std::to_string(group.VoucherGroupID());
  EXPECT_EQ(names, "1Receipts 2Payments 3 123");
  EXPECT_EQ(groups->GetNext()->VoucherGroupID(), 2);
}

// ---- The set: single groups ----

TEST_F(VoucherGroupSetTest, ItemOfANumberReadsTheRowByItsIdByValue) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{5}}, {"FName", "x"}})));
  const std::pair<Variant, const char*> keys[] = {
      {Long{5}, "5"},   {Integer{5}, "5"},         {Byte{5}, "5"}, {5.4, "5"},
      {Single{5}, "5"}, {CDec(Variant("5")), "5"}, {4.5, "4"},     {5.5, "6"},
  };
  for (const auto& [key, id] : keys) {
    EXPECT_EQ(State(*groups->Item(key)), "id 5 {FGroupID: 5, FName: \"x\"}");
    EXPECT_EQ(server.TakeLog(), std::string("create QDSVGLVoucherGroup.VoucherGroupInfo\n"
                                            "call GetDetail(\"props\", ") +
                                    id + ") -> {FGroupID: 5, FName: \"x\"}\n");
  }
}

TEST_F(VoucherGroupSetTest, ItemOfATextReadsTheRowByItsNumberByReference) {
  server.Answer(kInfo, "GetDetailByNumber", Variant(Row({{"FGroupID", Long{5}}})));
  EXPECT_EQ(State(*groups->Item("12")), "id 5 {FGroupID: 5}");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call GetDetailByNumber(\"props\", ref Variant \"12\") -> {FGroupID: 5}\n");
}

TEST_F(VoucherGroupSetTest, ItemOfAnyOtherKeyRaisesFiveWithoutAServerCall) {
  const Variant keys[] = {Variant(),   Null,        Missing, true,
                          Currency(5), DateTime(5), Nothing, Variant(Row({}))};
  for (const Variant& key : keys) {
    EXPECT_EQ(ErrorOf([&] { groups->Item(key); }), "error 5") << StateText(key);
  }
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherGroupSetTest, ItemOfAnUnknownIdIsAnEmptyNewGroup) {
  server.Answer(kInfo, "GetDetail", Nothing);
  const auto group = groups->Item(99);
  EXPECT_EQ(State(*group), "id 0 {}");
}

TEST_F(VoucherGroupSetTest, ItemNeedsNoListAndSearchesNone) {
  groups->RecordSet(ThreeGroups());
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{1}}, {"FName", "fresh"}})));
  EXPECT_EQ(groups->Item(1)->Name(), "fresh");
}

TEST_F(VoucherGroupSetTest, ItemOfANumberTooLargeRaisesOverflow) {
  EXPECT_EQ(ErrorOf([&] { groups->Item(3e9); }), "error 6");
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucherGroup.VoucherGroupInfo\n");
}

TEST_F(VoucherGroupSetTest, ItemIsTheDefaultMember) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FGroupID", Long{5}}})));
  ASSERT_NE(VoucherGroupSet::Table().default_member(), nullptr);
  EXPECT_EQ(VoucherGroupSet::Table().default_member()->row.name, "Item");
  Ref<Object> late = groups;
  EXPECT_EQ(StateText(late->Get("Item", 5).As<VoucherGroup>()->Get("VoucherGroupID")), "5");
}

TEST_F(VoucherGroupSetTest, ExistenceCheckPassesTheIdAsANamedArgumentByReference) {
  server.Answer(kInfo, "ExistenceCheck", Long{5});
  EXPECT_EQ(groups->ExistenceCheck(5), 5);
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call ExistenceCheck(\"props\", VoucherGroupID:=ref Variant 5) -> 5\n");
}

TEST_F(VoucherGroupSetTest, ExistenceCheckPassesTheNameAsANamedArgumentByReference) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  EXPECT_EQ(groups->ExistenceCheck(Missing, "Receipts"), 7);
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call ExistenceCheck(\"props\", Name:=ref Variant \"Receipts\") -> 7\n");
}

TEST_F(VoucherGroupSetTest, ExistenceCheckWithBothUsesTheIdOnly) {
  server.Answer(kInfo, "ExistenceCheck", Long{0});
  EXPECT_EQ(groups->ExistenceCheck(5, "Receipts"), 0);
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call ExistenceCheck(\"props\", VoucherGroupID:=ref Variant 5) -> 0\n");
}

TEST_F(VoucherGroupSetTest, ExistenceCheckWithNoArgumentMakesTheComponentAndAnswersZero) {
  EXPECT_EQ(groups->ExistenceCheck(), 0);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucherGroup.VoucherGroupInfo\n");
}

TEST_F(VoucherGroupSetTest, ExistenceCheckTakesNamedAndLeftOutArgumentsLateBound) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  Ref<Object> late = groups;
  EXPECT_EQ(StateText(late->Call("ExistenceCheck", Named("name", "Receipts"))), "7");
  EXPECT_EQ(StateText(late->Call("ExistenceCheck", Missing, "Receipts")), "7");
  EXPECT_EQ(StateText(late->Call("ExistenceCheck")), "0");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call ExistenceCheck(\"props\", Name:=ref Variant \"Receipts\") -> 7\n"
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call ExistenceCheck(\"props\", Name:=ref Variant \"Receipts\") -> 7\n"
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n");
}

TEST_F(VoucherGroupSetTest, RemoveByIdDeletesWithStampsAndTheSignByReference) {
  groups->RecordSet(ThreeGroups());
  groups->Remove(5);
  groups->Remove(5.5, 3);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucherGroup.VoucherGroupUpdate\n"
                              "call Delete(\"props\", ref 5, \"HOST\", \"10.0.0.1\", ref 0)\n"
                              "create QDSVGLVoucherGroup.VoucherGroupUpdate\n"
                              "call Delete(\"props\", ref 6, \"HOST\", \"10.0.0.1\", ref 3)\n");
  EXPECT_EQ(groups->Count(), 3) << "the list keeps showing the row";
}

TEST_F(VoucherGroupSetTest, RemoveByTextLooksTheNameUpFirst) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  groups->Remove("Receipts");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call ExistenceCheck(\"props\", Name:=ref Variant \"Receipts\") -> 7\n"
            "create QDSVGLVoucherGroup.VoucherGroupUpdate\n"
            "call Delete(\"props\", ref 7, \"HOST\", \"10.0.0.1\", ref 0)\n");
}

TEST_F(VoucherGroupSetTest, RemoveOfACurrencyTakesTheTextPath) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  groups->Remove(Currency(5));
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
                              "call ExistenceCheck(\"props\", Name:=ref Variant 5@) -> 7\n"
                              "create QDSVGLVoucherGroup.VoucherGroupUpdate\n"
                              "call Delete(\"props\", ref 7, \"HOST\", \"10.0.0.1\", ref 0)\n");
}

TEST_F(VoucherGroupSetTest, RemoveOfWhatDoesNotExistRaisesFive) {
  server.Answer(kInfo, "ExistenceCheck", Long{0});
  EXPECT_EQ(ErrorOf([&] { groups->Remove("nobody"); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { groups->Remove(0); }), "error 5");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call ExistenceCheck(\"props\", Name:=ref Variant \"nobody\") -> 0\n");
}

TEST_F(VoucherGroupSetTest, ServerFailuresOfEveryOperationPassUnchanged) {
  const Error failure(-2147217900, "database", "deadlock");
  const std::function<void()> operations[] = {
      [&] { groups->Refresh(); },
      [&] { groups->Count(); },
      [&] { groups->GetCurrent(); },
      [&] { groups->GetNext(); },
      [&] { groups->NewEnum(); },
      [&] { groups->Item(5); },
      [&] { groups->Item("5"); },
      [&] { groups->ExistenceCheck(5); },
      [&] { groups->Remove(5); },
      [&] { groups->Remove("x"); },
      [&] { groups->ExistenceCheck(Missing, "x"); },
  };
  for (const auto& operation : operations) {
    for (const int position : {1, 2}) {
      server.FailAt(position, failure);
      EXPECT_EQ(ErrorOf(operation), "error 0x80040E14 (database): deadlock");
      EXPECT_EQ(groups->RecordSet(), nullptr);
    }
  }
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  for (const int position : {3, 4}) {
    server.FailAt(position, failure);
    EXPECT_EQ(ErrorOf([&] { groups->Remove("x"); }), "error 0x80040E14 (database): deadlock");
  }
}

TEST_F(VoucherGroupSetTest, CreateNewMakesAnUnsavedGroupWithTheNameAsText) {
  EXPECT_EQ(State(*groups->CreateNew()), "id 0 {}");
  EXPECT_EQ(State(*groups->CreateNew("Receipts")), "id 0 {FName: \"Receipts\"} modified flagged");
  EXPECT_EQ(State(*groups->CreateNew(12)), "id 0 {FName: \"12\"} modified flagged");
  EXPECT_EQ(ErrorOf([&] { groups->CreateNew(Null); }), "error 13");
  EXPECT_EQ(server.TakeLog(), "");
}

// ---- The transaction context ----

TEST_F(VoucherGroupSetTest, TheTransactionContextIsKeptHandedOnAndReleased) {
  const auto context = Make<Opaque>();
  server.Answer(kInfo, "GetDetailByNumber", Nothing);
  groups->SetTransactionContext(context);
  groups->RecordSet(ThreeGroups());
  EXPECT_EQ(context->holders(), 2);  // this variable and the set
  {
    const auto created = groups->CreateNew();
    const auto current = groups->GetCurrent();
    const auto item = groups->Item("x");
    EXPECT_EQ(context->holders(), 5);
    auto enumerator = groups->NewEnum();
    Variant element;
    ASSERT_TRUE(enumerator->Next(element));
    EXPECT_EQ(context->holders(), 7);  // the walker and its group
  }
  EXPECT_EQ(context->holders(), 2);
  groups->SetTransactionContext(Nothing);
  EXPECT_EQ(context->holders(), 1);
}

}  // namespace
}  // namespace qdclgl
