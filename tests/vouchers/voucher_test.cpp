#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/vouchers/voucher_set.h"
#include "tests/support/recording_server.h"
#include "tests/support/set_suite.h"
#include "tests/support/voucher_state.h"

namespace qdclgl {
namespace {

using testing::ChangeRecord;
using testing::EntityCase;
using testing::EntityCaseOf;
using testing::EntitySuite;
using testing::ErrorOf;
using testing::List;
using testing::NameOfUse;
using testing::Opaque;
using testing::OtherKey;
using testing::RecordingServer;
using testing::Records;
using testing::Row;
using testing::SetCase;
using testing::SetCaseOf;
using testing::SetSuite;
using testing::State;
using testing::StateText;
using testing::TypedAndByName;
using testing::VoucherOf;
using testing::WholeState;

constexpr const char* kInfo = "QDSVGLVoucher.VoucherInfo";

// A saved voucher of two lines, the first with a detail, the second without a list of details.
Ref<Dictionary> TwoLineRow() {
  const auto detail = Row({{"FItemClassID", Long{3}}, {"FItemID", Long{30}}});
  return Row({{"FVoucherID", Long{5}},
              {"FNumber", Long{12}},
              {"_Entries", List({Row({{"FAccountID", Long{100}}, {"_Details", List({detail})}}),
                                 Row({{"FAccountID", Long{200}}})})}});
}

constexpr const char* kTwoLines =
    "{FVoucherID: 5, FNumber: 12, _Entries: [{FAccountID: 100, _Details: [{FItemClassID: 3, "
    "FItemID: 30}]}, {FAccountID: 200}]}";

class VoucherTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

// ---- What vouchers share with all entities and sets ----

EntityCase VoucherCase() {
  return EntityCaseOf(&Voucher::VoucherID, &Voucher::Reference,
                      {.info_component = kInfo,
                       .update_component = "QDSVGLVoucher.VoucherUpdate",
                       .id_member = "VoucherID",
                       .id_key = "FVoucherID",
                       .text_member = "Reference",
                       .text_key = "FReference",
                       .get_detail = "GetDetail(\"props\", ref <id>, ref False)",
                       .track_state = {.construct = 0, .cancel_changes = 1, .refresh = 0},
                       .refresh_takes_id = true,
                       .saved_by = ChangeRecord::kFlag,
                       .stamps_first = true,
                       .save_adds = ", FFootNote: \" \"",
                       .before_update = {"create QDSVGLVoucher.Voucherinfo",
                                         "call CheckExistCashProfit(\"props\", ref <id>)"},
                       .reads_back_update = false});
}

// The text key of a voucher is its number, within a year, a period and a group.
SetCase VoucherSetCase() {
  SetCase vouchers = SetCaseOf<VoucherSet>(
      VoucherCase(),
      {.get_detail = "GetDetail(\"props\", <id>, ref False)",
       .get_detail_by_text =
           "GetDetailByNumber(\"props\", ref 0, ref 0, ref \"\", ref 0, ref False)",
       .exists_by_text = "ExistenceCheck(\"props\", nYear:=ref Variant 2024, Period:=ref Variant "
                         "3, Group:=ref Variant \"J\", Number:=ref Variant <key>)",
       .remove = "Delete(\"props\", ref <id>, False, \"HOST\", \"10.0.0.1\")",
       .item_key = OtherKey::kAny,
       .remove_key = OtherKey::kNone,
       .created_row = "id 0 {FYear: 0} modified flagged"});
  vouchers.typed.existence_check = [](EntityListBase& set, const Variant& id,
                                      const Variant& number) {
    return static_cast<VoucherSet&>(set).ExistenceCheck(id, 2024, 3, "J", number);
  };
  vouchers.by_name.existence_check = [](EntityListBase& set, const Variant& id,
                                        const Variant& number) {
    return set.Call("ExistenceCheck", id, 2024, 3, "J", number).As<Long>();
  };
  return vouchers;
}

INSTANTIATE_TEST_SUITE_P(Voucher, EntitySuite, TypedAndByName(VoucherCase()), NameOfUse());
INSTANTIATE_TEST_SUITE_P(VoucherSet, SetSuite, TypedAndByName(VoucherSetCase()), NameOfUse());

// ---- The members that stand for a key ----

// A member as typed callers use it.
struct Typed {
  std::function<Variant(const Voucher&)> get;
  std::function<void(Voucher&, const Variant&)> let;  // none for a member that is only read
};

// A member of the class or of its base.
template <class T, class Owner>
Typed Get(T (Owner::*get)() const) {
  return {[get](const Voucher& voucher) { return Variant((voucher.*get)()); }, nullptr};
}

template <class T, class Owner>
Typed GetLet(T (Owner::*get)() const, void (Owner::*let)(T)) {
  Typed typed = Get(get);
  typed.let = [let](Voucher& voucher, const Variant& value) { (voucher.*let)(value.As<T>()); };
  return typed;
}

// What stands for a type: a value with its text, and its zero.
struct Sample {
  Variant value;
  const char* text;
  Variant zero;
  const char* zero_text;
};

Sample SampleOf(std::string_view type) {
  if (type == "Long") return {Long{7}, "7", Long{0}, "0"};
  if (type == "Integer") return {Integer{7}, "7%", Integer{0}, "0%"};
  if (type == "Boolean") return {true, "True", false, "False"};
  if (type == "Currency") return {Currency(7.25), "7.25@", Currency(), "0@"};
  if (type == "Date") return {DateTime(45000), "#2023-03-15#", DateTime(), "#1899-12-30#"};
  return {"a text", "\"a text\"", "", "\"\""};
}

struct KeyMember {
  const char* name;
  const char* type;
  Typed typed;
  std::string_view key;
  const char* default_text;
  const char* let_key = nullptr;      // where a write goes, unless to `key`
  const char* stored_text = nullptr;  // how a write is stored, unless as it was written
  const char* stored_zero_text = nullptr;

  std::string LetKey() const { return let_key != nullptr ? let_key : std::string(key); }
  std::string Stored() const { return stored_text != nullptr ? stored_text : SampleOf(type).text; }
  std::string StoredZero() const {
    return stored_zero_text != nullptr ? stored_zero_text : SampleOf(type).zero_text;
  }
};

const std::vector<KeyMember>& KeyMembers() {
  using V = Voucher;
  static const std::vector<KeyMember> members = {
      {"AmortizeSchemeID", "Long", GetLet<Long>(&V::AmortizeSchemeID, &V::AmortizeSchemeID),
       "FIsAmortize", "0", "FAmortizeSchemeID"},
      {"ApproveID", "Integer", Get<Integer>(&V::ApproveID), "FApproveID", "-1%"},
      {"Approver", "String", Get<String>(&V::Approver), "FApprover", "\"\""},
      {"Attachments", "Long", GetLet<Long>(&V::Attachments, &V::Attachments), "FAttachments", "0"},
      {"BlankOutFlag", "Boolean", GetLet<Boolean>(&V::BlankOutFlag, &V::BlankOutFlag),
       "FBlankOutFlag", "False", nullptr, "1%", "0%"},
      {"Cashier", "String", Get<String>(&V::Cashier), "FCashier", "\"\""},
      {"CashierID", "Integer", Get<Integer>(&V::CashierID), "FCashierID", "-1%"},
      {"Checked", "Boolean", Get<Boolean>(&V::Checked), "FChecked", "False"},
      {"Checker", "String", Get<String>(&V::Checker), "FChecker", "\"\""},
      {"CheckerID", "Integer", Get<Integer>(&V::CheckerID), "FCheckerID", "-1%"},
      {"CreditTotal2", "Currency", Get<Currency>(&V::CreditTotal2), "FCreditTotal", "0@"},
      {"DebitTotal2", "Currency", Get<Currency>(&V::DebitTotal2), "FDebitTotal", "0@"},
      {"EditMode", "String", GetLet<String>(&V::EditMode, &V::EditMode), "EditMode", "\"2\""},
      {"FootNote", "String", GetLet<String>(&V::FootNote, &V::FootNote), "FFootNote", "\"\""},
      {"Group", "String", GetLet<String>(&V::Group, &V::Group), "FGroup", "\"\""},
      {"GroupID", "Long", GetLet<Long>(&V::GroupID, &V::GroupID), "FGroupID", "0"},
      {"Handler", "String", GetLet<String>(&V::Handler, &V::Handler), "FHandler", "\"\""},
      {"InternalInd", "String", GetLet<String>(&V::InternalInd, &V::InternalInd), "FInternalInd",
       "\"\""},
      {"LockDate", "Boolean", GetLet<Boolean>(&V::LockDate, &V::LockDate), "FLockDate", "False"},
      {"Number", "Long", GetLet<Long>(&V::Number, &V::Number), "FNumber", "0"},
      {"ObjectName", "String", GetLet<String>(&V::ObjectName, &V::ObjectName), "FObjectName",
       "\"\"", nullptr, nullptr, "Null"},
      {"OwnerGroupID", "Integer", Get<Integer>(&V::OwnerGroupID), "FOwnerGroupID", "-1%"},
      {"Parameter", "String", GetLet<String>(&V::Parameter, &V::Parameter), "FParameter", "\"\"",
       nullptr, nullptr, "Null"},
      {"Period", "Long", GetLet<Long>(&V::Period, &V::Period), "FPeriod", "0"},
      {"Posted", "Boolean", Get<Boolean>(&V::Posted), "FPosted", "False"},
      {"Poster", "String", Get<String>(&V::Poster), "FPoster", "\"\""},
      {"PosterID", "Integer", Get<Integer>(&V::PosterID), "FPosterID", "-1%"},
      {"Preparer", "String", GetLet<String>(&V::Preparer, &V::Preparer), "FPreparer", "\"\""},
      {"PreparerID", "Integer", GetLet<Integer>(&V::PreparerID, &V::PreparerID), "FPreparerID",
       "-1%"},
      {"Reference", "String", GetLet<String>(&V::Reference, &V::Reference), "FReference", "\"\""},
      {"SerialNum", "Long", GetLet<Long>(&V::SerialNum, &V::SerialNum), "FSerialNum", "0"},
      {"Summarized", "Boolean", Get<Boolean>(&V::Summarized), "FSummarized", "False"},
      {"TransDate", "Date", GetLet<DateTime>(&V::TransDate, &V::TransDate), "FTransDate",
       "#1899-12-30#"},
      {"TranType", "Long", GetLet<Long>(&V::TranType, &V::TranType), "FTranType", "0"},
      {"VoucherDate", "Date", GetLet<DateTime>(&V::VoucherDate, &V::VoucherDate), "FDate",
       "#1899-12-30#"},
      {"Year", "Long", GetLet<Long>(&V::Year, &V::Year), "FYear", "0"},
  };
  return members;
}

std::string NotThisWay(const std::string& member) {
  return "error 438 (Voucher): The member " + member + " can't be used this way.";
}

TEST_F(VoucherTest, HasItsMembersInInterfaceOrder) {
  std::string text;
  for (const ClassMember& member : Voucher::Table().members()) {
    text += std::string(member.row.name) + (member.row.method != nullptr ? "()" : "") +
            (member.row.get != nullptr ? " get" : "") + (member.row.let != nullptr ? " let" : "") +
            (member.row.set != nullptr ? " set" : "") + "; ";
  }
  EXPECT_EQ(
      text,
      "ShowDeleted let; Approve(); CancelChanges(); Cash(); Check(); Clone(); Construct(); "
      "ConstructEx(); Refresh(); Refresh1(); ResetModified(); SaveChanges(); SaveChanges2(); "
      "SaveChanges1(); UnApprove(); UnCash(); UnCheck(); ValueChanged(); ValueDifferent(); "
      "AmortizeSchemeID get let; ApproveID get; Approver get; Attachments get let; BillInfo get "
      "let; BlankOutFlag get let; Cashier get; CashierID get; Checked get; Checker get; CheckerID "
      "get; CreditTotal2 get; CreditTotal get; DebitTotal2 get; DebitTotal get; DictOrig get; "
      "EditMode get let; Entries get; Explanation get let; FootNote get let; Group get let; "
      "GroupID get let; Handler get let; HasForCyOrUnit get; InternalInd get let; LockDate get "
      "let; Modified get; Number get let; ObjectName get let; OwnerGroupID get; Parameter get "
      "let; Period get let; Posted get; Poster get; PosterID get; Preparer get let; PreparerID "
      "get let; Properties get; Reference get let; SerialNum get let; Summarized get; TransDate "
      "get let; TranType get let; VoucherDate get let; VoucherID get let; Year get let; ");
}

TEST_F(VoucherTest, AMemberReadsItsDefaultWhereItsKeyIsAbsentNullOrEmpty) {
  for (const KeyMember& member : KeyMembers()) {
    for (const auto& row : {Row({}), Row({{member.key, Null}}), Row({{member.key, ""}}),
                            Row({{member.key, Variant()}})}) {
      const auto voucher = VoucherOf(row);
      EXPECT_EQ(StateText(member.typed.get(*voucher)), member.default_text) << member.name;
      EXPECT_EQ(StateText(voucher->Get(member.name)), member.default_text) << member.name;
      EXPECT_EQ(State(*voucher), "id 0 " + StateText(Variant(row))) << member.name;
    }
  }
}

TEST_F(VoucherTest, AMemberReadsWhatIsStoredUnderItsKey) {
  for (const KeyMember& member : KeyMembers()) {
    // Names show only while the person is known.
    const auto row = Row({{"FCheckerID", 1}, {"FCashierID", 1}, {"FPosterID", 1}});
    const Sample sample = SampleOf(member.type);
    row->Put(member.key, member.name == std::string("BlankOutFlag") ? Variant(1) : sample.value);
    EXPECT_EQ(StateText(member.typed.get(*VoucherOf(row))), sample.text) << member.name;
    EXPECT_EQ(StateText(VoucherOf(row)->Get(member.name)), sample.text) << member.name;
    row->Put(member.key, sample.zero);
    const std::string zero =
        std::string(member.type) == "String" ? member.default_text : sample.zero_text;
    EXPECT_EQ(StateText(member.typed.get(*VoucherOf(row))), zero) << member.name;
  }
}

TEST_F(VoucherTest, AMemberStoresWhatIsWrittenZeroAndEmptyTextIncluded) {
  for (const KeyMember& member : KeyMembers()) {
    if (!member.typed.let) continue;
    const Sample sample = SampleOf(member.type);
    const std::string key = member.LetKey();
    const auto typed = VoucherOf(Nothing);
    const auto late = VoucherOf(Nothing);
    member.typed.let(*typed, sample.value);
    late->Let(member.name, sample.value);
    const std::string written = "id 0 {" + key + ": " + member.Stored() + "} modified flagged";
    EXPECT_EQ(State(*typed), written) << member.name;
    EXPECT_EQ(State(*late), written) << member.name;
    member.typed.let(*typed, sample.zero);
    late->Let(member.name, sample.zero);
    const std::string zero = "id 0 {" + key + ": " + member.StoredZero() + "} modified flagged";
    EXPECT_EQ(State(*typed), zero) << member.name;
    EXPECT_EQ(State(*late), zero) << member.name;
    const auto fresh = VoucherOf(Nothing);
    member.typed.let(*fresh, sample.zero);
    EXPECT_EQ(State(*fresh), zero) << member.name;
  }
}

TEST_F(VoucherTest, AMemberThatIsOnlyReadRefusesAWrite) {
  std::string only_read;
  for (const KeyMember& member : KeyMembers()) {
    if (member.typed.let) continue;
    only_read += std::string(member.name) + " ";
    const auto voucher = VoucherOf(Row({}));
    EXPECT_EQ(ErrorOf([&] { voucher->Let(member.name, SampleOf(member.type).value); }),
              NotThisWay(member.name));
    EXPECT_EQ(State(*voucher), "id 0 {}") << member.name;
  }
  EXPECT_EQ(only_read,
            "ApproveID Approver Cashier CashierID Checked Checker CheckerID CreditTotal2 "
            "DebitTotal2 OwnerGroupID Posted Poster PosterID Summarized ");
  for (const char* member : {"CreditTotal", "DebitTotal", "DictOrig", "Entries", "HasForCyOrUnit",
                             "Modified", "Properties"}) {
    const auto voucher = VoucherOf(Row({}));
    EXPECT_EQ(ErrorOf([&] { voucher->Let(member, 1); }), NotThisWay(member));
    EXPECT_EQ(State(*voucher), "id 0 {}") << member;
  }
}

TEST_F(VoucherTest, AMemberThatIsWrittenStoresNothingWhenTheValueDoesNotConvert) {
  for (const KeyMember& member : KeyMembers()) {
    if (!member.typed.let) continue;
    const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}}));
    EXPECT_EQ(ErrorOf([&] { voucher->Let(member.name, Nothing); }), "error 13") << member.name;
    EXPECT_EQ(State(*voucher), "id 5 {FVoucherID: 5}") << member.name;
  }
}

TEST_F(VoucherTest, AStoredNumberTooLargeForItsMemberRaisesOverflowAndATextTypeMismatch) {
  const char* integers[] = {"ApproveID",    "CashierID", "CheckerID",
                            "OwnerGroupID", "PosterID",  "PreparerID"};
  for (const char* name : integers) {
    const std::string key = std::string("F") + name;
    EXPECT_EQ(ErrorOf([&] { VoucherOf(Row({{key, Long{40000}}}))->Get(name); }), "error 6");
    EXPECT_EQ(ErrorOf([&] { VoucherOf(Row({{key, "many"}}))->Get(name); }), "error 13");
    EXPECT_EQ(StateText(VoucherOf(Row({{key, "12"}}))->Get(name)), "12%");
  }
}

TEST_F(VoucherTest, ANewVoucherKnowsNobody) {
  const auto voucher = VoucherOf(Nothing);
  EXPECT_EQ(voucher->ApproveID(), -1);
  EXPECT_EQ(voucher->CheckerID(), -1);
  EXPECT_EQ(voucher->CashierID(), -1);
  EXPECT_EQ(voucher->PosterID(), -1);
  EXPECT_EQ(voucher->PreparerID(), -1);
  EXPECT_EQ(voucher->OwnerGroupID(), -1);
  EXPECT_EQ(voucher->Approver() + voucher->Checker() + voucher->Cashier() + voucher->Poster(), "");
  EXPECT_EQ(WholeState(*voucher), "id 0 {} from Nothing");
}

TEST_F(VoucherTest, NamesOfPeopleShowWhileTheirIdIsKnownAndTheApproverWhileTheCheckerIs) {
  const auto names = [](std::string_view key, const Variant& id) {
    const auto voucher = VoucherOf(Row({{"FApprover", "Ann"},
                                        {"FCashier", "Cid"},
                                        {"FChecker", "Bob"},
                                        {"FPoster", "Dan"},
                                        {key, id}}));
    return voucher->Approver() + "," + voucher->Checker() + "," + voucher->Cashier() + "," +
           voucher->Poster();
  };
  EXPECT_EQ(names("FOther", 7), ",,,");
  EXPECT_EQ(names("FApproveID", 7), ",,,");
  EXPECT_EQ(names("FCheckerID", 7), "Ann,Bob,,");
  EXPECT_EQ(names("FCashierID", 7), ",,Cid,");
  EXPECT_EQ(names("FPosterID", 7), ",,,Dan");
  EXPECT_EQ(names("FCheckerID", 0), "Ann,Bob,,");
  EXPECT_EQ(names("FCheckerID", -1), ",,,");
  EXPECT_EQ(names("FCheckerID", "-1"), ",,,");
  EXPECT_EQ(names("FCheckerID", Null), ",,,");
}

TEST_F(VoucherTest, TheApproverShowsWithTheCheckerThoughNobodyApproved) {
  const auto voucher = VoucherOf(Row({{"FApprover", "Ann"}, {"FCheckerID", Long{7}}}));
  EXPECT_EQ(voucher->ApproveID(), -1);
  EXPECT_EQ(voucher->Approver(), "Ann");
}

TEST_F(VoucherTest, AnAmortizeSchemeWrittenIsNotTheOneThatIsRead) {
  const auto voucher = VoucherOf(Nothing);
  voucher->AmortizeSchemeID(5);
  EXPECT_EQ(voucher->AmortizeSchemeID(), 0);
  EXPECT_EQ(State(*voucher), "id 0 {FAmortizeSchemeID: 5} modified flagged");
  EXPECT_EQ(VoucherOf(Row({{"FIsAmortize", 1}, {"FAmortizeSchemeID", 5}}))->AmortizeSchemeID(), 1);
}

TEST_F(VoucherTest, BlankOutFlagIsTrueExactlyForTheNumberOne) {
  const std::pair<Variant, bool> cases[] = {
      {Long{1}, true},
      {Integer{1}, true},
      {Byte{1}, true},
      {1.0, true},
      {Single{1}, true},
      {Currency(1), true},
      {CDec("1.0"), true},
      {DateTime(1), true},
      {Long{0}, false},
      {Long{2}, false},
      {Long{-1}, false},
      {1.5, false},
      {Currency(1.0001), false},
      {true, false},
      {false, false},
      {"", false},
      {Null, false},
      {Variant(), false},
  };
  for (const auto& [stored, read] : cases) {
    EXPECT_EQ(VoucherOf(Row({{"FBlankOutFlag", stored}}))->BlankOutFlag(), read)
        << StateText(stored);
  }
}

TEST_F(VoucherTest, LockDateReadsAnyNumberButZeroAsTrue) {
  const std::pair<Variant, bool> cases[] = {
      {Long{5}, true},  {Integer{-1}, true}, {0.25, true},     {"True", true},
      {Long{0}, false}, {"0", false},        {"False", false},
  };
  for (const auto& [stored, read] : cases) {
    EXPECT_EQ(VoucherOf(Row({{"FLockDate", stored}}))->LockDate(), read) << StateText(stored);
  }
}

TEST_F(VoucherTest, EditModeIsATextThatReadsTwoUntilItIsSet) {
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}}));
  EXPECT_EQ(voucher->EditMode(), "2");
  voucher->EditMode("anything at all");
  EXPECT_EQ(voucher->EditMode(), "anything at all");
  EXPECT_EQ(VoucherOf(Row({{"EditMode", Long{0}}}))->EditMode(), "0");
}

TEST_F(VoucherTest, ObjectNameAndParameterKeepNullForEmptyTextAndReadItAsEmptyText) {
  const auto voucher = VoucherOf(Row({{"FObjectName", "o"}, {"FParameter", "p"}}));
  voucher->ObjectName("");
  voucher->Parameter("");
  EXPECT_EQ(State(*voucher), "id 0 {FObjectName: Null, FParameter: Null} modified flagged");
  EXPECT_EQ(voucher->ObjectName() + voucher->Parameter(), "");
  voucher->ObjectName(" ");
  EXPECT_EQ(State(*voucher), "id 0 {FObjectName: \" \", FParameter: Null} modified flagged");
}

TEST_F(VoucherTest, AnUnsetTransDateReadsAsDayZeroBesideAVoucherDate) {
  EXPECT_EQ(VoucherOf(Row({{"FDate", DateTime(45000)}}))->TransDate(), DateTime(0));
  EXPECT_EQ(VoucherOf(Row({{"FDate", DateTime(45000)}, {"FTransDate", Null}}))->TransDate(),
            DateTime(0));
  EXPECT_EQ(
      VoucherOf(Row({{"FDate", DateTime(45000)}, {"FTransDate", DateTime(44000)}}))->TransDate(),
      DateTime(44000));
  EXPECT_EQ(VoucherOf(Row({{"FTransDate", Long{44000}}}))->TransDate(), DateTime(44000));
}

TEST_F(VoucherTest, TransDateReadsTheVoucherDateToo) {
  const auto voucher = VoucherOf(Row({{"FDate", "someday"}, {"FTransDate", DateTime(44000)}}));
  EXPECT_EQ(ErrorOf([&] { voucher->TransDate(); }), "error 13");
}

TEST_F(VoucherTest, ABillIsKeptAsItIsAndNothingRemovesIt) {
  const auto voucher = VoucherOf(Nothing);
  EXPECT_EQ(voucher->BillInfo(), nullptr);
  EXPECT_EQ(State(*voucher), "id 0 {}") << "a read leaves nothing behind";
  const auto bill = Row({{"FBillNo", "B1"}});
  voucher->BillInfo(bill);
  EXPECT_EQ(voucher->BillInfo(), bill);
  EXPECT_EQ(State(*voucher), "id 0 {BillInfo: {FBillNo: \"B1\"}} modified flagged");
  voucher->BillInfo(Nothing);
  EXPECT_EQ(State(*voucher), "id 0 {} modified flagged");

  voucher->Let("BillInfo", bill);
  EXPECT_EQ(voucher->Get("BillInfo").As<Dictionary>(), bill);
  EXPECT_EQ(ErrorOf([&] { voucher->Let("BillInfo", "B1"); }), "error 13");
  EXPECT_EQ(voucher->BillInfo(), bill);
}

TEST_F(VoucherTest, WhatIsNoBillCannotBeReadAsOne) {
  EXPECT_EQ(ErrorOf([] { VoucherOf(Row({{"BillInfo", "B1"}}))->BillInfo(); }), "error 13");
  EXPECT_EQ(ErrorOf([] { VoucherOf(Row({{"BillInfo", List({})}}))->BillInfo(); }), "error 13");
  EXPECT_EQ(VoucherOf(Row({{"BillInfo", Nothing}}))->BillInfo(), nullptr);
}

TEST_F(VoucherTest, TheIdIsNoKeyAndSetsNoFlag) {
  const auto voucher = VoucherOf(Row({{"FVoucherID", "17"}}));
  EXPECT_EQ(State(*voucher), "id 17 {FVoucherID: \"17\"}");
  voucher->VoucherID(9);
  EXPECT_EQ(State(*voucher), "id 9 {FVoucherID: \"17\"}");
  voucher->Let("VoucherID", 0);
  EXPECT_EQ(State(*voucher), "id 0 {FVoucherID: \"17\"}");
  EXPECT_EQ(StateText(voucher->Get("VoucherID")), "0");
}

TEST_F(VoucherTest, AVoucherThatWasNeverConstructedRaisesObjectNotSet) {
  const auto voucher = Make<Voucher>();
  const std::function<void()> operations[] = {
      [&] { voucher->Number(); },        [&] { voucher->Number(1); },  [&] { voucher->Entries(); },
      [&] { voucher->Modified(); },      [&] { voucher->Refresh1(); }, [&] { voucher->Clone(); },
      [&] { voucher->ResetModified(); }, [&] { voucher->Check(); },
  };
  for (const auto& operation : operations) EXPECT_EQ(ErrorOf(operation), "error 91");
  EXPECT_EQ(voucher->DictOrig(), nullptr);
  EXPECT_EQ(server.TakeLog(), "");
}

// ---- Construct, ConstructEx ----

TEST_F(VoucherTest, ConstructTakesTheRowAsBaselineAndADeepCopyToWorkOn) {
  const auto row = TwoLineRow();
  const auto voucher = VoucherOf(row);
  EXPECT_EQ(voucher->DictOrig(), row);
  EXPECT_NE(voucher->Properties()->Dictionary(), row);
  EXPECT_EQ(WholeState(*voucher), std::string("id 5 ") + kTwoLines + " from " + kTwoLines);

  voucher->Number(13);
  voucher->Entries()->Item(1)->Details()->Item(1)->ItemID(31);
  EXPECT_EQ(WholeState(*voucher),
            std::string("id 5 {FVoucherID: 5, FNumber: 13, _Entries: [{FAccountID: 100, _Details: "
                        "[{FItemClassID: 3, FItemID: 31}]}, {FAccountID: 200}]} modified flagged "
                        "from ") +
                kTwoLines);
}

TEST_F(VoucherTest, ConstructForgetsEditsAndLeavesEarlierViewsOnTheOldData) {
  const auto voucher = VoucherOf(TwoLineRow());
  const auto bag = voucher->Properties();
  const auto line = voucher->Entries()->Item(1);
  voucher->Number(13);
  voucher->Construct(TwoLineRow(), Nothing);
  EXPECT_EQ(State(*voucher), std::string("id 5 ") + kTwoLines);
  EXPECT_NE(voucher->Properties(), bag);
  line->AccountID(101);
  bag->Item("FNumber")->Value(14);
  EXPECT_EQ(State(*voucher), std::string("id 5 ") + kTwoLines);
}

TEST_F(VoucherTest, ConstructExDoesAsConstruct) {
  const auto context = Make<Opaque>();
  const auto row = TwoLineRow();
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{1}}}));
  voucher->Number(13);
  voucher->ConstructEx(row, context);
  EXPECT_EQ(voucher->DictOrig(), row);
  EXPECT_EQ(WholeState(*voucher), std::string("id 5 ") + kTwoLines + " from " + kTwoLines);
  EXPECT_EQ(context->holders(), 2);
  voucher->ConstructEx(Nothing, Nothing);
  EXPECT_EQ(WholeState(*voucher), "id 5 {} from Nothing");
  EXPECT_EQ(context->holders(), 1);
}

TEST_F(VoucherTest, TheTransactionContextIsKeptAndHandedOnByTheReloads) {
  const auto context = Make<Opaque>();
  const auto voucher = Make<Voucher>();
  voucher->Construct(Row({{"FVoucherID", Long{5}}}), context);
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}})));
  voucher->Refresh();
  voucher->Refresh1();
  voucher->CancelChanges();
  EXPECT_EQ(context->holders(), 2);
  const auto other = Make<Opaque>();
  voucher->SetTransactionContext(other);
  EXPECT_EQ(context->holders(), 1);
  EXPECT_EQ(other->holders(), 2);
  EXPECT_EQ(State(*voucher), "id 5 {FVoucherID: 5}");
}

// ---- Refresh ----

TEST_F(VoucherTest, RefreshLeavesEarlierViewsOnTheOldData) {
  const auto voucher = VoucherOf(TwoLineRow());
  const auto bag = voucher->Properties();
  const auto lines = voucher->Entries();
  server.Answer(kInfo, "GetDetail", Variant(TwoLineRow()));
  voucher->Refresh();
  EXPECT_NE(voucher->Properties(), bag);
  lines->Item(1)->Debit(5);
  lines->Add();
  bag->Item("FNumber")->Value(14);
  EXPECT_EQ(lines->Count(), 3);
  EXPECT_EQ(State(*voucher), std::string("id 5 ") + kTwoLines);
}

TEST_F(VoucherTest, TheServerMayWriteTheIdAndShowDeletedBackThroughTheirReferences) {
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}}));
  server.AnswerWith(kInfo, "GetDetail", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{6}));
    arguments[2].Put(Variant(true));
    return Variant(Nothing);
  });
  voucher->Refresh();
  EXPECT_EQ(State(*voucher), "id 6 {}");
  voucher->Refresh();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherInfo\n"
                              "call GetDetail(\"props\", ref 5, ref False) -> Nothing\n"
                              "create QDSVGLVoucher.VoucherInfo\n"
                              "call GetDetail(\"props\", ref 6, ref True) -> Nothing\n");
}

TEST_F(VoucherTest, ShowDeletedIsPassedByRefreshAndCannotBeRead) {
  const std::pair<Long, const char*> cases[] = {
      {1, "True"}, {0, "False"}, {-1, "True"}, {2, "True"}, {0, "False"}};
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}}));
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}})));
  for (const auto& [value, passed] : cases) {
    voucher->ShowDeleted(value);
    EXPECT_EQ(State(*voucher), "id 5 {FVoucherID: 5}");
    voucher->Refresh();
    EXPECT_EQ(server.TakeLog(), std::string("create QDSVGLVoucher.VoucherInfo\n"
                                            "call GetDetail(\"props\", ref 5, ref ") +
                                    passed + ") -> {FVoucherID: 5}\n");
  }
  voucher->Let("showdeleted", true);
  voucher->Refresh();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherInfo\n"
                              "call GetDetail(\"props\", ref 5, ref True) -> {FVoucherID: 5}\n");
  EXPECT_EQ(ErrorOf([&] { voucher->Get("ShowDeleted"); }), NotThisWay("ShowDeleted"));
}

// ---- Refresh1, CancelChanges, ResetModified ----

TEST_F(VoucherTest, Refresh1TakesTheWorkingDataAsTheNewBaseline) {
  const auto voucher = VoucherOf(TwoLineRow());
  voucher->Number(13);
  voucher->Entries()->Item(2)->Debit(7);
  const auto edited = voucher->Properties()->Dictionary();
  voucher->Refresh1();
  const std::string kEdited =
      "{FVoucherID: 5, FNumber: 13, _Entries: [{FAccountID: 100, _Details: [{FItemClassID: 3, "
      "FItemID: 30}]}, {FAccountID: 200, FDC: 1, FAmount: 7@}]}";
  EXPECT_EQ(WholeState(*voucher), "id 5 " + kEdited + " from " + kEdited);
  EXPECT_EQ(voucher->DictOrig(), edited);
  EXPECT_NE(voucher->Properties()->Dictionary(), edited);
  EXPECT_EQ(server.TakeLog(), "");
  voucher->Number(14);
  voucher->CancelChanges();
  EXPECT_EQ(WholeState(*voucher), "id 5 " + kEdited + " from " + kEdited);
}

TEST_F(VoucherTest, Refresh1ReadsTheIdOfTheWorkingDataAgain) {
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}}));
  voucher->VoucherID(9);
  voucher->Refresh1();
  EXPECT_EQ(WholeState(*voucher), "id 5 {FVoucherID: 5} from {FVoucherID: 5}");
  voucher->Properties()->Dictionary()->Put("FVoucherID", Variant(Long{6}));
  voucher->Refresh1();
  EXPECT_EQ(WholeState(*voucher), "id 6 {FVoucherID: 6} from {FVoucherID: 6}");
  const auto fresh = VoucherOf(Nothing);
  fresh->VoucherID(9);
  fresh->Refresh1();
  EXPECT_EQ(WholeState(*fresh), "id 0 {} from {}");
}

TEST_F(VoucherTest, ALineTakenBeforeRefresh1WritesIntoTheBaseline) {
  const auto voucher = VoucherOf(Row({{"_Entries", List({Row({})})}}));
  const auto line = voucher->Entries()->Item(1);
  voucher->Refresh1();
  line->AccountID(101);
  EXPECT_EQ(WholeState(*voucher), "id 0 {_Entries: [{}]} from {_Entries: [{FAccountID: 101}]}");
}

TEST_F(VoucherTest, CancelChangesRestoresHeaderLinesAndDetails) {
  const auto voucher = VoucherOf(TwoLineRow());
  voucher->Number(13);
  voucher->Preparer("Ann");
  voucher->Entries()->Item(1)->AccountID(0);
  voucher->Entries()->Item(1)->Details()->Remove(1);
  voucher->Entries()->Remove(2);
  voucher->VoucherID(9);
  EXPECT_EQ(WholeState(*voucher),
            std::string("id 9 {FVoucherID: 5, FNumber: 13, _Entries: [{_Details: []}], "
                        "FPreparer: \"Ann\"} modified flagged from ") +
                kTwoLines);
  voucher->CancelChanges();
  EXPECT_EQ(WholeState(*voucher), std::string("id 9 ") + kTwoLines + " from " + kTwoLines);
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherTest, AcrossCancelChangesTheBagStaysAndLinesAreLeftOnTheOldData) {
  const auto voucher = VoucherOf(TwoLineRow());
  const auto bag = voucher->Properties();
  const auto number = bag->Item("FNumber");
  const auto line = voucher->Entries()->Item(1);
  voucher->Number(13);
  voucher->CancelChanges();
  EXPECT_EQ(voucher->Properties(), bag);
  EXPECT_EQ(StateText(number->Value()), "\"12\"");
  line->AccountID(101);
  EXPECT_EQ(State(*voucher), std::string("id 5 ") + kTwoLines);
}

TEST_F(VoucherTest, ResetModifiedClearsTheFlagsOfTheWholeTreeAndLeavesTheData) {
  const auto voucher = VoucherOf(TwoLineRow());
  const auto line = voucher->Entries()->Item(1);
  const Ref<VoucherDetail> walked(&*line->Details()->begin());
  voucher->Number(13);
  line->AccountID(101);
  walked->ItemID(31);
  line->Details()->Item(1)->Value("v");
  voucher->Entries()->Add();
  voucher->ResetModified();
  EXPECT_EQ(WholeState(*voucher),
            std::string("id 5 {FVoucherID: 5, FNumber: 13, _Entries: [{FAccountID: 101, _Details: "
                        "[{FItemClassID: 3, FItemID: 31, FValue: \"v\"}]}, {FAccountID: 200}, {}]} "
                        "modified from ") +
                kTwoLines);
  EXPECT_FALSE(line->Modified());
  EXPECT_FALSE(walked->Modified());
  EXPECT_FALSE(voucher->Entries()->Modified());
  walked->ItemID(32);
  EXPECT_TRUE(voucher->Modified()) << "the views stay on the voucher";
  EXPECT_EQ(server.TakeLog(), "");
}

// ---- What counts as modified ----

// The records of a loaded voucher behind an operation on it.
template <class Operation>
std::string RecordsBehind(Operation operation) {
  const auto voucher = VoucherOf(TwoLineRow());
  operation(*voucher);
  return Records(*voucher);
}

TEST_F(VoucherTest, AHeaderMemberWrittenCountsEvenWithTheValueThatItHad) {
  for (const KeyMember& member : KeyMembers()) {
    if (!member.typed.let) continue;
    const auto voucher = VoucherOf(Nothing);
    member.typed.let(*voucher, SampleOf(member.type).value);
    voucher->Refresh1();
    EXPECT_EQ(Records(*voucher), "");
    EXPECT_FALSE(voucher->Modified());
    member.typed.let(*voucher, SampleOf(member.type).value);
    EXPECT_EQ(Records(*voucher), " modified flagged") << member.name;
    EXPECT_TRUE(voucher->Modified());
  }
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Explanation(""); }), " modified flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.BillInfo(Row({})); }), " modified flagged");
}

TEST_F(VoucherTest, ABillTakenAwayThatWasNeverThereCountsForTheFlagAlone) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.BillInfo(Nothing); }), " flagged");
}

TEST_F(VoucherTest, ALineWrittenCountsForTheFlagAndNotForTheHeadersOwnRecord) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Item(1)->AccountID(100); }), " flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Item(2)->AccountID(0); }), " flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) {
              const auto lines = v.Entries();
              for (auto& line : *lines) line.Debit(1);
            }),
            " flagged");
}

TEST_F(VoucherTest, ADetailWrittenCountsHoweverItWasReached) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Item(1)->Details()->Item(1)->ItemID(1); }),
            " flagged");
  EXPECT_EQ(
      RecordsBehind([](Voucher& v) { v.Entries()->Item(1)->Details()->FindItem(3)->ItemID(1); }),
      " flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) {
              const auto details = v.Entries()->Item(1)->Details();
              for (auto& detail : *details) detail.Value("");
            }),
            " flagged");
}

TEST_F(VoucherTest, AddRemoveCountAndItemOfTheLinesCount) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Add(); }), " flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Add(1); }), " flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Remove(1); }), " flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Count(2); }), " flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) {
              const auto lines = v.Entries();
              lines->Item(2, lines->CreateNewEntry());
            }),
            " flagged");
}

TEST_F(VoucherTest, AddRemoveAndCountOfTheDetailsCount) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Item(1)->Details()->Add(); }), " flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Item(1)->Details()->Remove(1); }),
            " flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Item(1)->Details()->Count(1); }),
            " flagged");
}

TEST_F(VoucherTest, ReadingTheDetailsCountsOnALineWithoutAnyAndOnNoOther) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Item(1)->Details(); }), "");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Item(2)->Details(); }), " flagged");
}

TEST_F(VoucherTest, APropertyWrittenCounts) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Properties()->Item("FNumber")->Value(12); }),
            " modified flagged");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Properties()->Item("FOwn")->Value(""); }),
            " modified flagged");
}

TEST_F(VoucherTest, TheIdAndShowDeletedDoNotCount) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.VoucherID(9); }), "");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.ShowDeleted(1); }), "");
}

TEST_F(VoucherTest, TheStampsOfASaveAndWhatGoesPastTheBagCountForTheDictionaryAlone) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.SaveChanges(); }), " modified");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Properties()->Dictionary()->Value("FNumber", 1); }),
            " modified");
  EXPECT_EQ(RecordsBehind([](Voucher& v) {
              v.Entries()->Item(1)->Properties()->Dictionary()->Value("FAccountID", 1);
            }),
            "");
}

TEST_F(VoucherTest, ReadingDoesNotCount) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) {
              for (const ClassMember& member : Voucher::Table().members()) {
                if (member.row.get != nullptr) v.Get(member.row.name);
              }
              const auto lines = v.Entries();
              for (auto& line : *lines) line.AccountID();
              lines->Item(3);
              v.Clone();
            }),
            "");
}

TEST_F(VoucherTest, ALineTakenOffTheVoucherDoesNotCount) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->Item(1)->Clone()->AccountID(1); }), "");
  EXPECT_EQ(RecordsBehind([](Voucher& v) { v.Entries()->CreateNewEntry()->AccountID(1); }), "");
}

TEST_F(VoucherTest, EveryWayOfStartingOverClearsBothRecords) {
  const std::function<void(Voucher&)> operations[] = {
      [](Voucher& v) { v.Construct(TwoLineRow(), Nothing); },
      [](Voucher& v) { v.ConstructEx(TwoLineRow(), Nothing); },
      [](Voucher& v) { v.Refresh(); },
      [](Voucher& v) { v.Refresh1(); },
      [](Voucher& v) { v.CancelChanges(); },
  };
  server.Answer(kInfo, "GetDetail", Variant(TwoLineRow()));
  for (const auto& operation : operations) {
    EXPECT_EQ(RecordsBehind([&](Voucher& v) {
                v.Number(1);
                v.Entries()->Item(2)->Details()->Add();
                operation(v);
              }),
              "");
  }
  EXPECT_EQ(RecordsBehind([](Voucher& v) {
              v.Number(1);
              v.Entries()->Item(2)->Details()->Add();
              v.ResetModified();
            }),
            " modified");
}

TEST_F(VoucherTest, BehindCancelChangesTheDictionarysRecordCoversTheLinesToo) {
  EXPECT_EQ(RecordsBehind([](Voucher& v) {
              v.CancelChanges();
              v.Entries()->Item(1)->AccountID(1);
            }),
            " modified flagged");
  server.Answer(kInfo, "GetDetail", Variant(TwoLineRow()));
  EXPECT_EQ(RecordsBehind([](Voucher& v) {
              v.Refresh();
              v.Entries()->Item(1)->AccountID(1);
            }),
            " flagged");
}

// ---- The lines ----

TEST_F(VoucherTest, ReadingTheLinesOfANewVoucherMakesTheirListAndNoFlag) {
  const auto voucher = VoucherOf(Nothing);
  const auto lines = voucher->Entries();
  EXPECT_EQ(lines->Count(), 0);
  EXPECT_FALSE(voucher->Modified());
  EXPECT_EQ(State(*voucher), "id 0 {_Entries: []} modified");
  lines->Add();
  EXPECT_TRUE(voucher->Modified());
  voucher->ResetModified();
  EXPECT_FALSE(voucher->Modified());
  EXPECT_EQ(voucher->Entries()->Count(), 1);
  EXPECT_EQ(State(*voucher), "id 0 {_Entries: [{}]} modified");
}

TEST_F(VoucherTest, EachReadOfTheLinesIsANewViewOfOneList) {
  const auto voucher = VoucherOf(TwoLineRow());
  const auto first = voucher->Entries();
  const auto second = voucher->Entries();
  EXPECT_NE(first, second);
  first->Add();
  first->Item(3)->Explanation("x");
  EXPECT_EQ(second->Count(), 3);
  EXPECT_EQ(second->Item(3)->Explanation(), "x");
  EXPECT_TRUE(second->Modified());
}

TEST_F(VoucherTest, WhatIsNoListOfLinesCannotBeReadAsOne) {
  EXPECT_EQ(ErrorOf([] { VoucherOf(Row({{"_Entries", Row({})}}))->Entries(); }), "error 13");
}

TEST_F(VoucherTest, ALineOutlivesItsVoucher) {
  auto voucher = VoucherOf(TwoLineRow());
  const auto line = voucher->Entries()->Item(1);
  voucher = nullptr;
  line->AccountID(101);
  EXPECT_EQ(StateText(Variant(line->Properties()->Dictionary())),
            "{FAccountID: 101, _Details: [{FItemClassID: 3, FItemID: 30}]}");
}

TEST_F(VoucherTest, TotalsAddUpTheSidesOfTheLinesWhateverTheServerStored) {
  const auto voucher =
      VoucherOf(Row({{"FDebitTotal", Currency(1)},
                     {"FCreditTotal", Currency(2)},
                     {"_Entries", List({Row({{"FDC", 1}, {"FAmount", Currency(100)}}),
                                        Row({{"FDC", 0}, {"FAmount", Currency(40)}})})}}));
  EXPECT_EQ(voucher->DebitTotal(), Currency(100));
  EXPECT_EQ(voucher->CreditTotal(), Currency(40));
  voucher->Entries()->Item(1)->Debit(0.1);
  voucher->Entries()->Add();
  voucher->Entries()->Item(3)->Debit(0.2);
  EXPECT_EQ(voucher->DebitTotal(), Currency(0.3));
  EXPECT_EQ(StateText(voucher->Get("CreditTotal")), "40@");
  EXPECT_EQ(voucher->DebitTotal2(), Currency(1));
  EXPECT_EQ(voucher->CreditTotal2(), Currency(2));
}

TEST_F(VoucherTest, ALineOfNeitherSideIsInNoTotalAndANegativeOneInItsOwn) {
  const auto voucher =
      VoucherOf(Row({{"_Entries", List({Row({{"FDC", 2}, {"FAmount", Currency(100)}}),
                                        Row({{"FDC", 1}, {"FAmount", Currency(-5)}}),
                                        Row({{"FAmount", Currency(8)}})})}}));
  EXPECT_EQ(voucher->DebitTotal(), Currency(-5));
  EXPECT_EQ(voucher->CreditTotal(), Currency(8));
}

TEST_F(VoucherTest, ATotalBeyondTheRangeOfCurrencyRaisesOverflow) {
  const auto of = [](Integer side) {
    return VoucherOf(
        Row({{"_Entries", List({Row({{"FDC", side}, {"FAmount", Currency::FromUnits(INT64_MAX)}}),
                                Row({{"FDC", side}, {"FAmount", Currency::FromUnits(1)}})})}}));
  };
  EXPECT_EQ(ErrorOf([&] { of(1)->DebitTotal(); }), "error 6");
  EXPECT_EQ(of(1)->CreditTotal(), Currency());
  EXPECT_EQ(ErrorOf([&] { of(0)->CreditTotal(); }), "error 6");
  EXPECT_EQ(of(0)->DebitTotal(), Currency());
  const auto largest = of(1);
  largest->Entries()->Remove(2);
  EXPECT_EQ(largest->DebitTotal(), Currency::FromUnits(INT64_MAX));
}

TEST_F(VoucherTest, TheExplanationReadIsThatOfTheFirstExplainedLine) {
  const auto voucher = VoucherOf(Row(
      {{"FExplanation", "header"},
       {"_Entries", List({Row({}), Row({{"FExplanation", Null}}), Row({{"FExplanation", "third"}}),
                          Row({{"FExplanation", "fourth"}})})}}));
  EXPECT_EQ(voucher->Explanation(), "third");
  voucher->Entries()->Item(2)->Explanation("second");
  EXPECT_EQ(StateText(voucher->Get("Explanation")), "\"second\"");
}

TEST_F(VoucherTest, AnExplanationWrittenIsStoredAndNeverRead) {
  const auto voucher = VoucherOf(Nothing);
  voucher->Explanation("header");
  EXPECT_EQ(voucher->Explanation(), "");
  EXPECT_EQ(State(*voucher), "id 0 {FExplanation: \"header\", _Entries: []} modified flagged");
  voucher->Let("Explanation", "");
  EXPECT_EQ(State(*voucher), "id 0 {FExplanation: \"\", _Entries: []} modified flagged");
}

TEST_F(VoucherTest, AForeignCurrencyOrAUnitOnAnyLineIsFound) {
  const auto voucher = VoucherOf(Nothing);
  EXPECT_FALSE(voucher->HasForCyOrUnit()) << "without lines";
  voucher->Entries()->Add();
  EXPECT_TRUE(voucher->HasForCyOrUnit()) << "currency 0 is none of the base";
  voucher->Entries()->Item(1)->CurrencyID(1);
  EXPECT_FALSE(voucher->HasForCyOrUnit());
  voucher->Entries()->Add();
  voucher->Entries()->Item(2)->CurrencyID(1);
  EXPECT_FALSE(voucher->HasForCyOrUnit());
  voucher->Entries()->Item(2)->MeasureUnitID(4);
  EXPECT_TRUE(voucher->HasForCyOrUnit());
  voucher->Entries()->Item(2)->MeasureUnitID(0);
  voucher->Entries()->Item(2)->CurrencyID(2);
  EXPECT_EQ(StateText(voucher->Get("HasForCyOrUnit")), "True");
}

TEST_F(VoucherTest, TheSearchForAForeignCurrencyStopsAtTheFirstLineThatHasOne) {
  const auto lines = [](const Variant& first_currency) {
    return VoucherOf(Row({{"_Entries", List({Row({{"FCurrencyID", first_currency}}),
                                             Row({{"FCurrencyID", "no number"}})})}}));
  };
  EXPECT_TRUE(lines(Long{2})->HasForCyOrUnit());
  EXPECT_EQ(ErrorOf([&] { lines(Long{1})->HasForCyOrUnit(); }), "error 13");
}

// ---- Clone ----

TEST_F(VoucherTest, ACloneHasTheWorkingValuesTheSameBaselineAndNoEdit) {
  const auto voucher = VoucherOf(TwoLineRow());
  voucher->Number(13);
  voucher->Entries()->Item(2)->AccountID(201);
  const auto clone = voucher->Clone();
  EXPECT_EQ(WholeState(*clone),
            std::string("id 5 {FVoucherID: 5, FNumber: 13, _Entries: [{FAccountID: 100, _Details: "
                        "[{FItemClassID: 3, FItemID: 30}]}, {FAccountID: 201}]} from ") +
                kTwoLines);
  EXPECT_FALSE(clone->Modified());
  EXPECT_NE(clone->DictOrig(), voucher->DictOrig());
  clone->CancelChanges();
  EXPECT_EQ(State(*clone), std::string("id 5 ") + kTwoLines);
  EXPECT_EQ(voucher->Number(), 13);
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherTest, ACloneAndItsVoucherShareNoData) {
  const auto voucher = VoucherOf(TwoLineRow());
  const auto clone = voucher->Clone();
  clone->Number(14);
  clone->Entries()->Item(1)->Details()->Item(1)->ItemID(1);
  clone->DictOrig()->Put("FNumber", Variant(15));
  EXPECT_EQ(WholeState(*voucher), std::string("id 5 ") + kTwoLines + " from " + kTwoLines);
  voucher->Entries()->Item(2)->AccountID(1);
  EXPECT_EQ(clone->Entries()->Item(2)->AccountID(), 200);
}

TEST_F(VoucherTest, ACloneOfANewVoucherHasNoBaseline) {
  const auto voucher = VoucherOf(Nothing);
  voucher->Number(13);
  const auto clone = voucher->Call("Clone").As<Voucher>();
  EXPECT_EQ(WholeState(*clone), "id 0 {FNumber: 13} from Nothing");
  clone->CancelChanges();
  EXPECT_EQ(WholeState(*clone), "id 0 {} from Nothing");
}

TEST_F(VoucherTest, ACloneTakesItsIdFromTheData) {
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}}));
  voucher->VoucherID(9);
  EXPECT_EQ(voucher->Clone()->VoucherID(), 5);
  const auto unsaved = VoucherOf(Row({}));
  unsaved->VoucherID(9);
  EXPECT_EQ(unsaved->Clone()->VoucherID(), 0);
}

TEST_F(VoucherTest, ACloneHasNeitherTheTransactionContextNorShowDeleted) {
  const auto context = Make<Opaque>();
  const auto voucher = Make<Voucher>();
  voucher->Construct(Row({{"FVoucherID", Long{5}}}), context);
  voucher->ShowDeleted(1);
  const auto clone = voucher->Clone();
  EXPECT_EQ(context->holders(), 2);
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}})));
  clone->Refresh();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherInfo\n"
                              "call GetDetail(\"props\", ref 5, ref False) -> {FVoucherID: 5}\n");
}

// ---- ValueDifferent, ValueChanged ----

// The fields that two vouchers are compared by, in order. A step is told by the key that it reads,
// with two values that differ as little as values of its kind can; the steps that count have none.
enum class Level { kHeader, kLine, kDetail };

struct Step {
  const char* what;
  Level level;
  std::string_view key;
  Variant value;
  Variant other;
};

const std::vector<Step>& Steps() {
  static const Currency kLargest = Currency::FromUnits(INT64_MAX);
  static const Currency kNextToLargest = Currency::FromUnits(INT64_MAX - 1);
  static const double kDay = 45000.25;
  static const std::vector<Step> steps = {
      {"VoucherID", Level::kHeader, "FVoucherID", Long{5}, Long{6}},
      {"VoucherDate", Level::kHeader, "FDate", DateTime(kDay), DateTime(std::nextafter(kDay, 0))},
      {"Number", Level::kHeader, "FNumber", Long{1}, Long{2}},
      {"GroupID", Level::kHeader, "FGroupID", Long{1}, Long{2}},
      {"Attachments", Level::kHeader, "FAttachments", Long{1}, Long{2}},
      {"Reference", Level::kHeader, "FReference", "r", "R"},
      {"Entries.Count", Level::kHeader, "_Entries", {}, {}},
      {"AccountID", Level::kLine, "FAccountID", Long{1}, Long{2}},
      {"CurrencyID", Level::kLine, "FCurrencyID", Long{1}, Long{2}},
      {"Explanation", Level::kLine, "FExplanation", "e", "E"},
      {"ExchangeRate", Level::kLine, "FExchangeRate", 0.1, std::nextafter(0.1, 0)},
      {"Amount", Level::kLine, "FAmount", kLargest, kNextToLargest},
      {"AmountFor", Level::kLine, "FAmountFor", kLargest, kNextToLargest},
      {"DC", Level::kLine, "FDC", Long{1}, Long{0}},
      {"MeasureUnitID", Level::kLine, "FMeasureUnitID", Long{1}, Long{2}},
      {"UnitPrice", Level::kLine, "FUnitPrice", 0.1, std::nextafter(0.1, 0)},
      {"Quantity", Level::kLine, "FQuantity", 0.1, std::nextafter(0.1, 0)},
      {"Details.Count", Level::kLine, "_Details", {}, {}},
      {"ItemClassID", Level::kDetail, "FItemClassID", Long{1}, Long{2}},
      {"ItemID", Level::kDetail, "FItemID", Long{1}, Long{2}},
      {"Value", Level::kDetail, "FValue", "v", "V"},
  };
  return steps;
}

constexpr int kNone = -1;

// A voucher of one line with one detail that has a value at every step. At the step `changed` it
// has the other value (or one line or detail more), at the step `broken` one that can't be read.
Ref<Voucher> Compared(int changed, int broken) {
  const Ref<Dictionary> rows[] = {Row({}), Row({}), Row({})};
  const auto row = [&](Level level) -> Dictionary& { return *rows[static_cast<int>(level)]; };
  for (int i = 0; i < static_cast<int>(Steps().size()); ++i) {
    const Step& step = Steps()[static_cast<std::size_t>(i)];
    row(step.level).Put(step.key, i == changed ? step.other : step.value);
  }
  const auto put_list = [&](const Ref<Dictionary>& owner, std::string_view key,
                            const Ref<Dictionary>& element) {
    const auto list = List({Variant(element)});
    if (changed != kNone && Steps()[static_cast<std::size_t>(changed)].key == key) {
      list->Append(Variant(Row({})));
    }
    owner->Put(key, Variant(list));
  };
  put_list(rows[1], "_Details", rows[2]);
  put_list(rows[0], "_Entries", rows[1]);
  if (broken != kNone) {
    const Step& step = Steps()[static_cast<std::size_t>(broken)];
    const bool counts = step.key[0] == '_';
    row(step.level).Put(step.key, counts ? Variant(Row({})) : Variant(Nothing));
  }
  return VoucherOf(rows[0]);
}

// "True" or the error.
std::string Comparison(const Ref<Voucher>& own, const Ref<Voucher>& other) {
  bool answer = false;
  const std::string error = ErrorOf([&] { answer = own->ValueDifferent(other); });
  return error != "no error" ? error : CStr(answer);
}

TEST_F(VoucherTest, VouchersAreAlwaysDifferent) {
  EXPECT_EQ(Comparison(Compared(kNone, kNone), Compared(kNone, kNone)), "True");
  for (int step = 0; step < 21; ++step) {
    EXPECT_EQ(Comparison(Compared(kNone, kNone), Compared(step, kNone)), "True") << step;
    EXPECT_EQ(Comparison(Compared(step, kNone), Compared(kNone, kNone)), "True") << step;
  }
  const auto voucher = VoucherOf(TwoLineRow());
  EXPECT_EQ(Comparison(voucher, voucher->Clone()), "True");
  EXPECT_EQ(Comparison(voucher, voucher), "True");
  EXPECT_TRUE(voucher->ValueChanged());
  EXPECT_EQ(StateText(voucher->Call("ValueChanged")), "True");
  EXPECT_EQ(StateText(voucher->Call("ValueDifferent", Named("vch", voucher))), "True");
}

TEST_F(VoucherTest, EveryFieldOfTheComparisonIsReadInBothVouchersWhileNothingDiffers) {
  ASSERT_EQ(Steps().size(), 21u);
  for (int step = 1; step < 21; ++step) {  // an id can always be read
    const char* what = Steps()[static_cast<std::size_t>(step)].what;
    EXPECT_EQ(Comparison(Compared(kNone, step), Compared(kNone, kNone)), "error 13") << what;
    EXPECT_EQ(Comparison(Compared(kNone, kNone), Compared(kNone, step)), "error 13") << what;
  }
}

TEST_F(VoucherTest, TheComparisonStopsAtTheFirstDifferenceAndReadsNothingBehindIt) {
  for (int step = 0; step + 1 < 21; ++step) {
    const char* what = Steps()[static_cast<std::size_t>(step)].what;
    EXPECT_EQ(Comparison(Compared(step, step + 1), Compared(kNone, kNone)), "True") << what;
    EXPECT_EQ(Comparison(Compared(step, kNone), Compared(kNone, step + 1)), "True") << what;
  }
}

TEST_F(VoucherTest, TheComparisonGoesDetailByDetailAndLineByLine) {
  const auto detail = [](const Variant& item_class, const char* value) {
    return Row({{"FItemClassID", item_class}, {"FValue", value}});
  };
  const auto voucher = [&](const char* first_value, const Variant& second_class,
                           const Variant& second_account) {
    return VoucherOf(
        Row({{"_Entries",
              List({Row({{"_Details", List({detail(1, first_value), detail(second_class, "")})}}),
                    Row({{"FAccountID", second_account}})})}}));
  };
  EXPECT_EQ(Comparison(voucher("v", Nothing, 9), voucher("v", 2, 9)), "error 13");
  EXPECT_EQ(Comparison(voucher("v", Nothing, 9), voucher("w", 2, 9)), "True");
  EXPECT_EQ(Comparison(voucher("v", 2, Nothing), voucher("v", 2, 9)), "error 13");
  EXPECT_EQ(Comparison(voucher("v", 2, Nothing), voucher("w", 2, 9)), "True");
}

TEST_F(VoucherTest, DetailsAreMatchedByTheirClassAndTheFirstOfAClassIsTaken) {
  const auto of = [](std::initializer_list<Variant> details) {
    return VoucherOf(Row({{"_Entries", List({Row({{"_Details", List(details)}}),
                                             Row({{"FAccountID", Nothing}})})}}));
  };
  const auto detail = [](Long item_class, Long item) {
    return Row({{"FItemClassID", item_class}, {"FItemID", item}});
  };
  // The account of the second line can't be read, so an error tells that the details were equal.
  EXPECT_EQ(Comparison(of({detail(1, 10), detail(2, 20)}), of({detail(2, 20), detail(1, 10)})),
            "error 13");
  EXPECT_EQ(Comparison(of({detail(1, 10), detail(1, 10)}), of({detail(1, 10), detail(1, 11)})),
            "error 13");
  EXPECT_EQ(Comparison(of({detail(1, 10), detail(1, 11)}), of({detail(1, 10), detail(1, 11)})),
            "True");
  EXPECT_EQ(Comparison(of({detail(3, 10)}), of({detail(1, 10)})), "True");
}

TEST_F(VoucherTest, WhatTheComparisonDoesNotListIsNotRead) {
  const auto with = [](const Variant& value) {
    const auto line = Row({{"_Details", List({})}});
    for (const std::string_view key :
         {"FAccountName", "FAccountNumber", "FSettleNo", "FSettleTypeID", "FCashFlowItem",
          "FContrastID", "FCussentID", "FMgBillID"}) {
      line->Put(key, value);
    }
    const auto row = Row({{"_Entries", List({line})}});
    for (const std::string_view key :
         {"FYear", "FPeriod", "FGroup", "FTranType", "FSerialNum", "FHandler", "FPreparer",
          "FFootNote", "FExplanation", "FTransDate", "FChecked", "FApproveID", "FPosted",
          "FCashierID"}) {
      row->Put(key, value);
    }
    return VoucherOf(row);
  };
  EXPECT_EQ(Comparison(with(Nothing), with(1)), "True");
}

TEST_F(VoucherTest, TheLinesAreNotReadBehindADifferenceInTheHeader) {
  const auto own = VoucherOf(Row({{"FVoucherID", Long{5}}}));
  const auto other = VoucherOf(Row({{"FVoucherID", Long{6}}}));
  EXPECT_TRUE(own->ValueDifferent(other));
  EXPECT_EQ(State(*own), "id 5 {FVoucherID: 5}");
  EXPECT_EQ(State(*other), "id 6 {FVoucherID: 6}");
}

TEST_F(VoucherTest, ReadingTheLinesForAComparisonFlagsNothing) {
  const auto own = VoucherOf(Row({{"FVoucherID", Long{5}}}));
  const auto other = VoucherOf(Row({{"FVoucherID", Long{5}}}));
  EXPECT_TRUE(own->ValueDifferent(other));
  EXPECT_EQ(State(*own), "id 5 {FVoucherID: 5, _Entries: []} modified");
  EXPECT_EQ(State(*other), "id 5 {FVoucherID: 5, _Entries: []} modified");
  const auto voucher = VoucherOf(Row({{"_Entries", List({})}}));
  EXPECT_TRUE(voucher->ValueChanged());
  EXPECT_FALSE(voucher->Modified());
}

TEST_F(VoucherTest, TheComparisonGivesBothVouchersListsOfDetailsAndFlagsThem) {
  const auto own = VoucherOf(Row({{"_Entries", List({Row({}), Row({})})}}));
  const auto other = VoucherOf(Row({{"_Entries", List({Row({}), Row({{"_Details", List({})}})})}}));
  EXPECT_TRUE(own->ValueDifferent(other));
  EXPECT_EQ(State(*own), "id 0 {_Entries: [{_Details: []}, {_Details: []}]} flagged");
  EXPECT_EQ(State(*other), "id 0 {_Entries: [{_Details: []}, {_Details: []}]} flagged");
  EXPECT_TRUE(other->Entries()->Item(1)->Modified());
  EXPECT_FALSE(other->Entries()->Item(2)->Modified());
}

TEST_F(VoucherTest, TheComparisonLeavesTheLinesBehindADifferenceAlone) {
  const auto own = VoucherOf(Row({{"_Entries", List({Row({}), Row({{"FDC", 1}}), Row({})})}}));
  const auto other = VoucherOf(Row({{"_Entries", List({Row({}), Row({}), Row({})})}}));
  EXPECT_TRUE(own->ValueDifferent(other));
  EXPECT_EQ(State(*own), "id 0 {_Entries: [{_Details: []}, {FDC: 1}, {}]} flagged");
  EXPECT_EQ(State(*other), "id 0 {_Entries: [{_Details: []}, {}, {}]} flagged");
}

TEST_F(VoucherTest, ValueChangedMarksAVoucherWhoseLinesHaveNoDetails) {
  const auto voucher = VoucherOf(Row({{"_Entries", List({Row({{"FAccountID", Long{1}}})})}}));
  EXPECT_FALSE(voucher->Modified());
  EXPECT_TRUE(voucher->ValueChanged());
  EXPECT_TRUE(voucher->Modified());
  EXPECT_EQ(State(*voucher), "id 0 {_Entries: [{FAccountID: 1, _Details: []}]} flagged");
}

TEST_F(VoucherTest, ValueChangedStopsAtAnIdThatTheDataDoesNotHave) {
  const auto voucher = VoucherOf(Row({{"_Entries", List({Row({})})}}));
  voucher->VoucherID(9);
  EXPECT_TRUE(voucher->ValueChanged());
  EXPECT_EQ(State(*voucher), "id 9 {_Entries: [{}]}");
}

TEST_F(VoucherTest, ComparingWithNothingRaisesObjectNotSet) {
  const auto voucher = VoucherOf(TwoLineRow());
  EXPECT_EQ(Comparison(voucher, Nothing), "error 91");
  EXPECT_EQ(ErrorOf([&] { voucher->Call("ValueDifferent", Nothing); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { voucher->Call("ValueDifferent", Row({})); }), "error 13");
  EXPECT_EQ(State(*voucher), std::string("id 5 ") + kTwoLines);
}

// ---- Late-bound callers ----

TEST_F(VoucherTest, TheOperationsWorkThroughLateBoundCallsToo) {
  const Ref<Object> voucher = Voucher::Table().Create();
  voucher->Call("Construct", TwoLineRow(), Nothing);
  voucher->Let("number", 13);
  EXPECT_EQ(StateText(voucher->Get("Modified")), "True");
  voucher->Call("CancelChanges");
  EXPECT_EQ(StateText(voucher->Get("Number")), "12");
  voucher->Let("Number", 14);
  voucher->Call("Refresh1");
  EXPECT_EQ(StateText(voucher->Get("DictOrig").As<Dictionary>()->Get("Value", "FNumber")), "14");
  voucher->Let("Number", 15);
  voucher->Call("ResetModified");
  EXPECT_EQ(StateText(voucher->Get("Modified")), "False");
  EXPECT_EQ(StateText(voucher->Get("Entries").As<VoucherEntrySet>()->Get("Count")), "2");
  voucher->Call("ConstructEx", Named("xa", Nothing), Named("dict", Row({{"FVoucherID", 8}})));
  EXPECT_EQ(StateText(voucher->Get("VoucherID")), "8");
  server.Answer(kInfo, "GetDetail", Variant(TwoLineRow()));
  voucher->Call("Refresh");
  EXPECT_EQ(State(*Variant(voucher).As<Voucher>()), std::string("id 5 ") + kTwoLines);
}

}  // namespace
}  // namespace qdclgl
