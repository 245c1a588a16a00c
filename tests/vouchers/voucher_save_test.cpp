#include <gtest/gtest.h>

#include <functional>

#include "tests/support/failing_events.h"
#include "tests/support/recording_server.h"
#include "tests/support/voucher_state.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Event;
using testing::List;
using testing::RecordingServer;
using testing::Records;
using testing::Row;
using testing::State;
using testing::StateText;
using testing::VoucherOf;
using testing::WholeState;

constexpr const char* kInfo = "QDSVGLVoucher.VoucherInfo";
constexpr const char* kUpdate = "QDSVGLVoucher.VoucherUpdate";

using Operation = void (*)(Voucher&);

class VoucherSave : public ::testing::Test {
 protected:
  // The whole state behind `operation` and behind its failure at each event.
  void ExpectEvents(const std::function<Ref<Voucher>()>& make, Operation operation,
                    const std::vector<Event>& events, const std::string& state_behind) {
    testing::ExpectEvents(server, make, operation, events, state_behind,
                          [](const Voucher& voucher) { return WholeState(voucher); });
  }

  RecordingServer server;
};

// An edited voucher that is not saved yet.
Ref<Voucher> NewVoucher() {
  const auto voucher = VoucherOf(Nothing);
  voucher->Year(2024);
  voucher->Entries()->Add();
  voucher->Entries()->Item(1)->Debit(5);
  return voucher;
}

// An edited voucher that the server knows as 5.
Ref<Voucher> ExistingVoucher() {
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}},
                                      {"FNumber", Long{1}},
                                      {"_Entries", List({Row({{"FAccountID", Long{100}}})})}}));
  voucher->Number(2);
  voucher->Entries()->Item(1)->AccountID(200);
  return voucher;
}

const std::string kNewData = "FYear: 2024, _Entries: [{FDC: 1, FAmount: 5@}]";
const std::string kExistingData = "FVoucherID: 5, FNumber: 2, _Entries: [{FAccountID: 200}]";
const std::string kExistingBaseline = "{FVoucherID: 5, FNumber: 1, _Entries: [{FAccountID: 100}]}";
const std::string kStamps = ", MachineName: \"HOST\", IPAddress: \"10.0.0.1\"";
const std::string kBlankNote = ", FFootNote: \" \"";

// A voucher that was edited and not saved: the data, and where it came from.
std::string Edited(const std::string& id, const std::string& data, const std::string& baseline) {
  return "id " + id + " {" + data + "} modified flagged from " + baseline;
}

// A voucher as it was read or accepted.
std::string Clean(const std::string& id, const std::string& data) {
  return "id " + id + " {" + data + "} from {" + data + "}";
}

// ---- The saves of a new voucher ----

TEST_F(VoucherSave, SaveChanges1CreatesANewVoucherAndOnlyTakesItsId) {
  server.Answer(kUpdate, "Create", Long{8});
  const std::string data = kNewData + kStamps;
  ExpectEvents(
      NewVoucher, [](Voucher& v) { v.SaveChanges1(); },
      {{"create QDSVGLVoucher.VoucherUpdate", "", Edited("0", data, "Nothing")},
       {"call Create(\"props\", {" + data + "})", " -> 8", Edited("0", data, "Nothing")}},
      Edited("8", data, "Nothing"));
}

TEST_F(VoucherSave, SaveChanges2CreatesANewVoucherWithTheKindTwo) {
  server.Answer(kUpdate, "Create", Long{8});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{8}}, {"FNumber", Long{1}}})));
  const std::string data = kNewData + kStamps + kBlankNote;
  ExpectEvents(
      NewVoucher, [](Voucher& v) { v.SaveChanges2(); },
      {{"create QDSVGLVoucher.VoucherUpdate", "", Edited("0", kNewData + kStamps, "Nothing")},
       {"call Create(\"props\", {" + data + "}, 2%)", " -> 8", Edited("0", data, "Nothing")},
       {"create QDSVGLVoucher.VoucherInfo", "", Edited("8", data, "Nothing")},
       {"call GetDetail(\"props\", ref 8, ref False)", " -> {FVoucherID: 8, FNumber: 1}",
        Edited("8", data, "Nothing")}},
      Clean("8", "FVoucherID: 8, FNumber: 1"));
}

// ---- The saves of an existing voucher ----

TEST_F(VoucherSave, SaveChangesClearsAStaleCashFlowBeforeTheUpdate) {
  server.Answer(kInfo, "CheckExistCashProfit", Long{3});
  const std::string stamped = Edited("5", kExistingData + kStamps, kExistingBaseline);
  const std::string data = kExistingData + kStamps + kBlankNote;
  const std::string edited = Edited("5", data, kExistingBaseline);
  ExpectEvents(
      ExistingVoucher, [](Voucher& v) { v.SaveChanges(); },
      {{"create QDSVGLVoucher.VoucherUpdate", "", stamped},
       {"create QDSVGLVoucher.Voucherinfo", "", edited},
       {"call CheckExistCashProfit(\"props\", ref 5)", " -> 3", edited},
       {"call ClearCashFlow(\"props\", ref 5)", "", edited},
       {"call Update(\"props\", ref 5, {" + data + "})", "", edited}},
      Clean("5", data));
}

TEST_F(VoucherSave, SaveChanges1UpdatesAnExistingVoucherAndLeavesItModified) {
  server.Answer(kInfo, "CheckExistCashProfit", Long{4});
  const std::string data = kExistingData + kStamps;
  const std::string edited = Edited("5", data, kExistingBaseline);
  ExpectEvents(
      ExistingVoucher, [](Voucher& v) { v.SaveChanges1(); },
      {{"create QDSVGLVoucher.VoucherUpdate", "", edited},
       {"create QDSVGLVoucher.Voucherinfo", "", edited},
       {"call CheckExistCashProfit(\"props\", ref 5)", " -> 4", edited},
       {"call Update(\"props\", ref 5, {" + data + "})", "", edited}},
      edited);
}

TEST_F(VoucherSave, SaveChanges1ClearsAStaleCashFlowToo) {
  server.Answer(kInfo, "CheckExistCashProfit", Long{3});
  const std::string data = kExistingData + kStamps;
  const std::string edited = Edited("5", data, kExistingBaseline);
  ExpectEvents(
      ExistingVoucher, [](Voucher& v) { v.SaveChanges1(); },
      {{"create QDSVGLVoucher.VoucherUpdate", "", edited},
       {"create QDSVGLVoucher.Voucherinfo", "", edited},
       {"call CheckExistCashProfit(\"props\", ref 5)", " -> 3", edited},
       {"call ClearCashFlow(\"props\", ref 5)", "", edited},
       {"call Update(\"props\", ref 5, {" + data + "})", "", edited}},
      edited);
}

TEST_F(VoucherSave, SaveChanges2MarksTheConnectionTextOfTheUpdateAlone) {
  server.Answer(kInfo, "CheckExistCashProfit", Long{1});
  const std::string stamped = Edited("5", kExistingData + kStamps, kExistingBaseline);
  const std::string data = kExistingData + kStamps + kBlankNote;
  const std::string edited = Edited("5", data, kExistingBaseline);
  ExpectEvents(
      ExistingVoucher, [](Voucher& v) { v.SaveChanges2(); },
      {{"create QDSVGLVoucher.VoucherUpdate", "", stamped},
       {"create QDSVGLVoucher.Voucherinfo", "", edited},
       {"call CheckExistCashProfit(\"props\", ref 5)", " -> 1", edited},
       {"call Update(ref \"<>1props\", ref 5, {" + data + "})", "", edited}},
      Clean("5", data));
}

TEST_F(VoucherSave, SaveChanges2ClearsAStaleCashFlowUnderThePlainConnectionText) {
  server.Answer(kInfo, "CheckExistCashProfit", Long{3});
  const std::string stamped = Edited("5", kExistingData + kStamps, kExistingBaseline);
  const std::string data = kExistingData + kStamps + kBlankNote;
  const std::string edited = Edited("5", data, kExistingBaseline);
  ExpectEvents(
      ExistingVoucher, [](Voucher& v) { v.SaveChanges2(); },
      {{"create QDSVGLVoucher.VoucherUpdate", "", stamped},
       {"create QDSVGLVoucher.Voucherinfo", "", edited},
       {"call CheckExistCashProfit(\"props\", ref 5)", " -> 3", edited},
       {"call ClearCashFlow(\"props\", ref 5)", "", edited},
       {"call Update(ref \"<>1props\", ref 5, {" + data + "})", "", edited}},
      Clean("5", data));
}

TEST_F(VoucherSave, OnlyTheAnswerThreeClearsTheCashFlow) {
  const std::pair<Variant, const char*> answers[] = {
      {Variant(), "left"},     {Long{0}, "left"},    {Long{1}, "left"},  {Long{2}, "left"},
      {Long{3}, "cleared"},    {Long{4}, "left"},    {Long{-3}, "left"}, {true, "left"},
      {Integer{3}, "cleared"}, {3.4, "cleared"},     {2.5, "left"},      {3.5, "left"},
      {"3", "cleared"},        {Byte{3}, "cleared"},
  };
  for (const auto& [answer, expected] : answers) {
    server.Answer(kInfo, "CheckExistCashProfit", answer);
    ExistingVoucher()->SaveChanges();
    const bool cleared = server.TakeLog().find("ClearCashFlow") != std::string::npos;
    EXPECT_EQ(cleared ? "cleared" : "left", std::string(expected)) << StateText(answer);
  }
}

TEST_F(VoucherSave, AnAnswerAboutTheCashFlowThatIsNoNumberStopsTheSave) {
  for (const Variant& answer : {Variant("many"), Variant(Null), Variant(Nothing)}) {
    const auto voucher = ExistingVoucher();
    server.Answer(kInfo, "CheckExistCashProfit", answer);
    EXPECT_EQ(ErrorOf([&] { voucher->SaveChanges1(); }), "error 13") << StateText(answer);
    EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherUpdate\n"
                                "create QDSVGLVoucher.Voucherinfo\n"
                                "call CheckExistCashProfit(\"props\", ref 5) -> " +
                                    StateText(answer) + "\n");
    EXPECT_EQ(WholeState(*voucher), Edited("5", kExistingData + kStamps, kExistingBaseline));
  }
}

// ---- Nothing to save, stamps, the foot note ----

TEST_F(VoucherSave, AVoucherThatIsNotModifiedIsStampedAndNotSaved) {
  for (const Operation save : {Operation([](Voucher& v) { v.SaveChanges(); }),
                               Operation([](Voucher& v) { v.SaveChanges1(); }),
                               Operation([](Voucher& v) { v.SaveChanges2(); })}) {
    const auto saved = VoucherOf(Row({{"FVoucherID", Long{5}}}));
    save(*saved);
    EXPECT_FALSE(saved->Modified());
    EXPECT_EQ(WholeState(*saved),
              "id 5 {FVoucherID: 5" + kStamps + "} modified from {FVoucherID: 5}");
    const auto fresh = VoucherOf(Nothing);
    save(*fresh);
    EXPECT_EQ(WholeState(*fresh),
              "id 0 {MachineName: \"HOST\", IPAddress: \"10.0.0.1\"} modified from Nothing");
    EXPECT_EQ(server.TakeLog(), "");
  }
}

TEST_F(VoucherSave, AnEditOfALineAloneIsSaved) {
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}, {"_Entries", List({Row({})})}}));
  voucher->Entries()->Item(1)->Details()->Add();
  voucher->SaveChanges1();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucher.VoucherUpdate\n"
            "create QDSVGLVoucher.Voucherinfo\n"
            "call CheckExistCashProfit(\"props\", ref 5)\n"
            "call Update(\"props\", ref 5, {FVoucherID: 5, _Entries: [{_Details: [{}]}]" +
                kStamps + "})\n");
}

TEST_F(VoucherSave, AFootNoteIsSavedAsItStandsAndAnEmptyOneAsABlank) {
  const std::pair<Variant, const char*> notes[] = {
      {"", "\" \""}, {Null, "\" \""}, {" ", "\" \""}, {"a note", "\"a note\""}, {0, "0"}};
  for (const auto& [note, saved] : notes) {
    const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}, {"FFootNote", note}}));
    voucher->Number(1);
    voucher->SaveChanges();
    EXPECT_EQ(StateText(voucher->Properties()->Dictionary()->Value("FFootNote")), saved)
        << StateText(note);
  }
}

TEST_F(VoucherSave, SaveChanges1SendsAnEmptyFootNoteEmpty) {
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}, {"FFootNote", "old"}}));
  voucher->FootNote("");
  voucher->SaveChanges1();
  EXPECT_EQ(State(*voucher),
            "id 5 {FVoucherID: 5, FFootNote: \"\"" + kStamps + "} modified flagged");
}

// ---- What the server is handed and hands back ----

TEST_F(VoucherSave, TheServerIsHandedTheWorkingDataItselfAndMayWriteIntoIt) {
  for (const char* method : {"Create", "Update"}) {
    server.AnswerWith(kUpdate, method, [](std::span<Argument> arguments) {
      arguments[arguments.size() - 1].As<Dictionary>()->Put("FVersion", Variant(2));
      return Variant(Long{8});
    });
  }
  const auto existing = ExistingVoucher();
  const auto data = existing->Properties()->Dictionary();
  existing->SaveChanges();
  EXPECT_EQ(existing->DictOrig(), data);
  EXPECT_EQ(WholeState(*existing),
            Clean("5", kExistingData + kStamps + kBlankNote + ", FVersion: 2"));
  const auto fresh = NewVoucher();
  fresh->SaveChanges1();
  EXPECT_EQ(WholeState(*fresh), Edited("8", kNewData + kStamps + ", FVersion: 2", "Nothing"));
}

TEST_F(VoucherSave, AnIdThatTheServerWritesBackIsGoodForTheRestOfTheSave) {
  server.AnswerWith(kInfo, "CheckExistCashProfit", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{6}));
    return Variant(Long{3});
  });
  server.AnswerWith(kUpdate, "ClearCashFlow", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{7}));
    return Variant();
  });
  server.AnswerWith(kUpdate, "Update", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{9}));
    return Variant();
  });
  const auto voucher = ExistingVoucher();
  voucher->SaveChanges1();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherUpdate\n"
                              "create QDSVGLVoucher.Voucherinfo\n"
                              "call CheckExistCashProfit(\"props\", ref 5) -> 3\n"
                              "call ClearCashFlow(\"props\", ref 6)\n"
                              "call Update(\"props\", ref 7, {" +
                                  kExistingData + kStamps + "})\n");
  EXPECT_EQ(voucher->VoucherID(), 9);
  const auto reloaded = ExistingVoucher();
  reloaded->SaveChanges();
  EXPECT_EQ(reloaded->VoucherID(), 5) << "the accepted data has the id that counts";
}

TEST_F(VoucherSave, TheMarkedConnectionTextGoesByReferenceToATextOfItsOwn) {
  std::string seen;
  server.AnswerWith(kUpdate, "Update", [&](std::span<Argument> arguments) {
    seen += arguments[0].As<String>() + " ";
    arguments[0].Put(Variant("changed"));
    return Variant();
  });
  for (int i = 0; i < 2; ++i) {
    const auto voucher = ExistingVoucher();
    voucher->SaveChanges2();
  }
  EXPECT_EQ(seen, "<>1props <>1props ");
}

TEST_F(VoucherSave, TheConnectionTextIsAskedForBehindEachComponentAndAfreshForEachCall) {
  server.Answer(kInfo, "CheckExistCashProfit", Long{3});
  const auto voucher = ExistingVoucher();
  server.LogSession();
  voucher->SaveChanges2();
  const std::string kSession = "create-object QDCMtsCacheService.CacheFacade\n"
                               "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                               "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                               "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n";
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherUpdate\n"
                              "create QDSVGLVoucher.Voucherinfo\n" +
                                  kSession + "call CheckExistCashProfit(\"props\", ref 5) -> 3\n" +
                                  kSession + "call ClearCashFlow(\"props\", ref 5)\n" + kSession +
                                  "call Update(ref \"<>1props\", ref 5, {" + kExistingData +
                                  kStamps + kBlankNote + "})\n");
}

TEST_F(VoucherSave, WithoutASessionTheMarkerStandsAlone) {
  server.outer_login = Variant(Long{2});
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}, {"FFootNote", "n"}}));
  voucher->Number(1);
  voucher->SaveChanges2();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucher.VoucherUpdate\n"
            "create QDSVGLVoucher.Voucherinfo\n"
            "call CheckExistCashProfit(\"\", ref 5)\n"
            "call Update(ref \"<>1\", ref 5, {FVoucherID: 5, FFootNote: \"n\", FNumber: 1" +
                kStamps + "})\n");
}

TEST_F(VoucherSave, TheReloadBehindACreateAsksForDeletedVouchersAsTheVoucherWasTold) {
  const auto voucher = NewVoucher();
  voucher->ShowDeleted(1);
  server.Answer(kUpdate, "Create", Long{8});
  server.Answer(kInfo, "GetDetail", Nothing);
  voucher->SaveChanges2();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherUpdate\n"
                              "call Create(\"props\", {" +
                                  kNewData + kStamps + kBlankNote +
                                  "}, 2%) -> 8\n"
                                  "create QDSVGLVoucher.VoucherInfo\n"
                                  "call GetDetail(\"props\", ref 8, ref True) -> Nothing\n");
  EXPECT_EQ(WholeState(*voucher), "id 8 {} from Nothing");
}

// ---- One save behind another ----

TEST_F(VoucherSave, ASecondSaveWithoutAnEditMakesNoServerCall) {
  const auto voucher = ExistingVoucher();
  voucher->SaveChanges();
  server.TakeLog();
  voucher->SaveChanges();
  voucher->SaveChanges2();
  EXPECT_EQ(server.TakeLog(), "");
  EXPECT_EQ(WholeState(*voucher), "id 5 {" + kExistingData + kStamps + kBlankNote +
                                      "} modified from {" + kExistingData + kStamps + kBlankNote +
                                      "}");
}

TEST_F(VoucherSave, CancelChangesBehindASaveGoesBackToWhatWasSaved) {
  const auto voucher = ExistingVoucher();
  voucher->SaveChanges();
  voucher->Number(3);
  voucher->Entries()->Remove(1);
  voucher->CancelChanges();
  EXPECT_EQ(WholeState(*voucher), Clean("5", kExistingData + kStamps + kBlankNote));
}

TEST_F(VoucherSave, ASecondSaveChanges1OfANewVoucherUpdatesIt) {
  const auto voucher = NewVoucher();
  server.Answer(kUpdate, "Create", Long{8});
  voucher->SaveChanges1();
  EXPECT_TRUE(voucher->Modified());
  server.TakeLog();
  voucher->SaveChanges1();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherUpdate\n"
                              "create QDSVGLVoucher.Voucherinfo\n"
                              "call CheckExistCashProfit(\"props\", ref 8)\n"
                              "call Update(\"props\", ref 8, {" +
                                  kNewData + kStamps + "})\n");
  EXPECT_EQ(WholeState(*voucher), Edited("8", kNewData + kStamps, "Nothing"));
}

TEST_F(VoucherSave, CancelChangesBehindSaveChanges1GoesBackToTheOldBaseline) {
  const auto voucher = ExistingVoucher();
  voucher->SaveChanges1();
  voucher->CancelChanges();
  EXPECT_EQ(WholeState(*voucher), "id 5 " + kExistingBaseline + " from " + kExistingBaseline);
}

TEST_F(VoucherSave, AFailedUpdateCanBeTriedAgainAndAsksAboutTheCashFlowAfresh) {
  server.AnswerOnce(kInfo, "CheckExistCashProfit", Long{3});
  const auto voucher = ExistingVoucher();
  server.FailAt(5, Error(70));
  EXPECT_EQ(ErrorOf([&] { voucher->SaveChanges(); }), "error 70");
  server.TakeLog();
  voucher->SaveChanges();
  const std::string data = kExistingData + kStamps + kBlankNote;
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherUpdate\n"
                              "create QDSVGLVoucher.Voucherinfo\n"
                              "call CheckExistCashProfit(\"props\", ref 5)\n"
                              "call Update(\"props\", ref 5, {" +
                                  data + "})\n");
  EXPECT_EQ(WholeState(*voucher), Clean("5", data));
}

TEST_F(VoucherSave, ASaveBehindAFailedReloadUpdatesTheCreatedVoucher) {
  server.Answer(kUpdate, "Create", Long{8});
  const auto voucher = NewVoucher();
  server.FailAt(4, Error(70));
  EXPECT_EQ(ErrorOf([&] { voucher->SaveChanges(); }), "error 70");
  server.TakeLog();
  voucher->SaveChanges1();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherUpdate\n"
                              "create QDSVGLVoucher.Voucherinfo\n"
                              "call CheckExistCashProfit(\"props\", ref 8)\n"
                              "call Update(\"props\", ref 8, {" +
                                  kNewData + kStamps + kBlankNote + "})\n");
}

// ---- The workflow ----

// Which steps a voucher of each state takes.
TEST_F(VoucherSave, AVoucherTakesTheStepsThatItsStateAllows) {
  struct Step {
    const char* name;
    Operation run;
    const char* call;
  };
  const Step steps[] = {
      {"Check", [](Voucher& v) { v.Check(); }, "Check(\"props\", ref 5, True)"},
      {"UnCheck", [](Voucher& v) { v.UnCheck(); }, "Check(\"props\", ref 5, False)"},
      {"Approve", [](Voucher& v) { v.Approve(); }, "Approve(\"props\", ref 5, True)"},
      {"UnApprove", [](Voucher& v) { v.UnApprove(); }, "Approve(\"props\", ref 5, False)"},
      {"Cash", [](Voucher& v) { v.Cash(); }, "Cash(\"props\", ref 5, True, "},
      {"UnCash", [](Voucher& v) { v.UnCash(); }, "Cash(\"props\", ref 5, False, "},
  };
  struct VoucherState {
    const char* what;
    Long id;
    bool is_checked;
    Variant approve_id;
    bool is_posted;
    const char* allowed;
  };
  const VoucherState states[] = {
      {"never saved", 0, false, {}, false, ""},
      {"never saved and checked", 0, true, 7, false, ""},
      {"never saved and posted", 0, false, {}, true, ""},
      {"saved", 5, false, {}, false, "Check Cash UnCash "},
      {"approved, not checked", 5, false, 7, false, "Check Cash UnCash "},
      {"checked", 5, true, {}, false, "UnCheck Approve Cash UnCash "},
      {"checked, approved by -1", 5, true, -1, false, "UnCheck Approve Cash UnCash "},
      {"checked, approved by 0", 5, true, 0, false, "UnCheck Approve Cash UnCash "},
      {"checked and approved", 5, true, 1, false, "UnCheck Approve UnApprove Cash UnCash "},
      {"posted", 5, false, {}, true, "Cash UnCash "},
      {"posted and checked", 5, true, {}, true, "Cash UnCash "},
      {"posted, checked and approved", 5, true, 7, true, "Cash UnCash "},
  };
  for (const VoucherState& state : states) {
    const auto row = Row({{"FVoucherID", state.id},
                          {"FChecked", state.is_checked},
                          {"FApproveID", state.approve_id},
                          {"FPosted", state.is_posted}});
    server.Answer(kInfo, "GetDetail", Variant(row));
    std::string allowed;
    for (const Step& step : steps) {
      const auto voucher = VoucherOf(row);
      step.run(*voucher);
      const std::string log = server.TakeLog();
      if (log.empty()) continue;
      allowed += step.name + std::string(" ");
      EXPECT_NE(log.find(step.call), std::string::npos) << log;
    }
    EXPECT_EQ(allowed, state.allowed) << state.what;
  }
}

TEST_F(VoucherSave, TheGuardsReadTheMembersAsTheyStandUnsavedEditsIncluded) {
  server.Answer(kInfo, "GetDetail", Nothing);
  const auto voucher = VoucherOf(Row({{"FVoucherID", Long{5}}}));
  voucher->Properties()->Item("FChecked")->Value(1);
  voucher->Check();
  EXPECT_EQ(server.TakeLog(), "");
  voucher->Properties()->Item("FPosted")->Value("True");
  voucher->UnCheck();
  voucher->Approve();
  EXPECT_EQ(server.TakeLog(), "");
  voucher->Properties()->Item("FPosted")->Value(0);
  voucher->UnCheck();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherUpdate\n"
                              "call Check(\"props\", ref 5, False)\n"
                              "create QDSVGLVoucher.VoucherInfo\n"
                              "call GetDetail(\"props\", ref 5, ref False) -> Nothing\n");
}

TEST_F(VoucherSave, AStepThatIsRefusedLeavesTheEdits) {
  const auto voucher = ExistingVoucher();
  voucher->UnCheck();
  voucher->Approve();
  voucher->UnApprove();
  EXPECT_EQ(server.TakeLog(), "");
  EXPECT_EQ(WholeState(*voucher), Edited("5", kExistingData, kExistingBaseline));
}

// A checked and approved voucher with an edit.
Ref<Voucher> CheckedVoucher() {
  const auto voucher =
      VoucherOf(Row({{"FVoucherID", Long{5}}, {"FChecked", true}, {"FApproveID", Integer{7}}}));
  voucher->Number(2);
  return voucher;
}

const std::string kChecked = "FVoucherID: 5, FChecked: True, FApproveID: 7%";

// The events of a step that makes `call`, with the state `edited` as long as it fails.
std::vector<Event> StepEvents(const std::string& call, const std::string& edited) {
  return {
      {"create QDSVGLVoucher.VoucherUpdate", "", edited},
      {"call " + call, "", edited},
      {"create QDSVGLVoucher.VoucherInfo", "", edited},
      {"call GetDetail(\"props\", ref 5, ref False)", " -> {FVoucherID: 5, FNumber: 9}", edited}};
}

TEST_F(VoucherSave, CheckAsksTheServerAndReadsTheVoucherAgain) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}, {"FNumber", Long{9}}})));
  ExpectEvents(
      ExistingVoucher, [](Voucher& v) { v.Check(); },
      StepEvents("Check(\"props\", ref 5, True)", Edited("5", kExistingData, kExistingBaseline)),
      Clean("5", "FVoucherID: 5, FNumber: 9"));
}

TEST_F(VoucherSave, UnCheckAsksTheServerAndReadsTheVoucherAgain) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}, {"FNumber", Long{9}}})));
  ExpectEvents(
      CheckedVoucher, [](Voucher& v) { v.UnCheck(); },
      StepEvents("Check(\"props\", ref 5, False)",
                 Edited("5", kChecked + ", FNumber: 2", "{" + kChecked + "}")),
      Clean("5", "FVoucherID: 5, FNumber: 9"));
}

TEST_F(VoucherSave, ApproveAsksTheServerAndReadsTheVoucherAgain) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}, {"FNumber", Long{9}}})));
  ExpectEvents(
      CheckedVoucher, [](Voucher& v) { v.Approve(); },
      StepEvents("Approve(\"props\", ref 5, True)",
                 Edited("5", kChecked + ", FNumber: 2", "{" + kChecked + "}")),
      Clean("5", "FVoucherID: 5, FNumber: 9"));
}

TEST_F(VoucherSave, UnApproveAsksTheServerAndReadsTheVoucherAgain) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}, {"FNumber", Long{9}}})));
  ExpectEvents(
      CheckedVoucher, [](Voucher& v) { v.UnApprove(); },
      StepEvents("Approve(\"props\", ref 5, False)",
                 Edited("5", kChecked + ", FNumber: 2", "{" + kChecked + "}")),
      Clean("5", "FVoucherID: 5, FNumber: 9"));
}

TEST_F(VoucherSave, CashSendsTheEditsAndReadsTheVoucherAgain) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}, {"FNumber", Long{9}}})));
  ExpectEvents(
      ExistingVoucher, [](Voucher& v) { v.Cash(); },
      StepEvents("Cash(\"props\", ref 5, True, {" + kExistingData + "})",
                 Edited("5", kExistingData, kExistingBaseline)),
      Clean("5", "FVoucherID: 5, FNumber: 9"));
}

TEST_F(VoucherSave, UnCashSendsTheEditsAndReadsTheVoucherAgain) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}, {"FNumber", Long{9}}})));
  ExpectEvents(
      ExistingVoucher, [](Voucher& v) { v.UnCash(); },
      StepEvents("Cash(\"props\", ref 5, False, {" + kExistingData + "})",
                 Edited("5", kExistingData, kExistingBaseline)),
      Clean("5", "FVoucherID: 5, FNumber: 9"));
}

TEST_F(VoucherSave, CashSendsAVoucherWithoutEditsTooAndWritesNoStamps) {
  server.Answer(kInfo, "GetDetail", Nothing);
  VoucherOf(Row({{"FVoucherID", Long{5}}, {"FCashierID", Integer{3}}}))->Cash();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherUpdate\n"
                              "call Cash(\"props\", ref 5, True, {FVoucherID: 5, FCashierID: 3%})\n"
                              "create QDSVGLVoucher.VoucherInfo\n"
                              "call GetDetail(\"props\", ref 5, ref False) -> Nothing\n");
}

TEST_F(VoucherSave, AStepReadsTheVoucherUnderTheIdThatTheServerWroteBack) {
  const auto write_six = [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{6}));
    return Variant();
  };
  for (const char* method : {"Check", "Approve", "Cash"}) {
    server.AnswerWith(kUpdate, method, write_six);
  }
  server.Answer(kInfo, "GetDetail", Nothing);
  const std::pair<Ref<Voucher>, Operation> steps[] = {
      {ExistingVoucher(), [](Voucher& v) { v.Check(); }},
      {CheckedVoucher(), [](Voucher& v) { v.UnCheck(); }},
      {CheckedVoucher(), [](Voucher& v) { v.Approve(); }},
      {CheckedVoucher(), [](Voucher& v) { v.UnApprove(); }},
      {ExistingVoucher(), [](Voucher& v) { v.Cash(); }},
      {ExistingVoucher(), [](Voucher& v) { v.UnCash(); }},
  };
  for (const auto& [voucher, step] : steps) {
    step(*voucher);
    EXPECT_NE(server.TakeLog().find("call GetDetail(\"props\", ref 6, ref False) -> Nothing\n"),
              std::string::npos);
    EXPECT_EQ(WholeState(*voucher), "id 6 {} from Nothing");
  }
}

TEST_F(VoucherSave, AFailedStepCanBeTriedAgain) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}, {"FChecked", true}})));
  const auto voucher = ExistingVoucher();
  server.FailAt(2, Error(70));
  EXPECT_EQ(ErrorOf([&] { voucher->Check(); }), "error 70");
  server.TakeLog();
  voucher->Check();
  EXPECT_TRUE(voucher->Checked());
  voucher->Check();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucher.VoucherUpdate\n"
            "call Check(\"props\", ref 5, True)\n"
            "create QDSVGLVoucher.VoucherInfo\n"
            "call GetDetail(\"props\", ref 5, ref False) -> {FVoucherID: 5, FChecked: True}\n");
}

// ---- Late-bound callers ----

TEST_F(VoucherSave, TheSavesAndStepsWorkThroughLateBoundCallsToo) {
  server.Answer(kUpdate, "Create", Long{8});
  const auto row = Row({{"FVoucherID", Long{8}}, {"FFootNote", "n"}});
  server.Answer(kInfo, "GetDetail", Variant(row));
  const Ref<Object> voucher = VoucherOf(Nothing);
  voucher->Let("FootNote", "n");
  voucher->Call("SaveChanges2");
  voucher->Let("FootNote", "n");
  voucher->Call("savechanges1");
  voucher->Call("SaveChanges");
  for (const char* step : {"Check", "Cash", "UnCash", "UnCheck", "Approve", "UnApprove"}) {
    voucher->Call(step);
  }
  const std::string data = "FVoucherID: 8, FFootNote: \"n\"";
  const std::string save = "create QDSVGLVoucher.VoucherUpdate\n"
                           "create QDSVGLVoucher.Voucherinfo\n"
                           "call CheckExistCashProfit(\"props\", ref 8)\n"
                           "call Update(\"props\", ref 8, {" +
                           data + kStamps + "})\n";
  const std::string reload = "create QDSVGLVoucher.VoucherInfo\n"
                             "call GetDetail(\"props\", ref 8, ref False) -> {" +
                             data + "}\n";
  const auto step = [&](const std::string& call) {
    return "create QDSVGLVoucher.VoucherUpdate\ncall " + call + "\n" + reload;
  };
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucher.VoucherUpdate\n"
                              "call Create(\"props\", {FFootNote: \"n\"" +
                                  kStamps + "}, 2%) -> 8\n" + reload + save + save +
                                  step("Check(\"props\", ref 8, True)") +
                                  step("Cash(\"props\", ref 8, True, {" + data + "})") +
                                  step("Cash(\"props\", ref 8, False, {" + data + "})"));
}

}  // namespace
}  // namespace qdclgl
