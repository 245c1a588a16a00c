#include "qdclgl/ledgers/multi_ledger.h"

#include <gtest/gtest.h>

#include "qdclgl/ledgers/multi_ledger_set.h"
#include "tests/support/columns.h"
#include "tests/support/failing_events.h"
#include "tests/support/recording_server.h"
#include "tests/support/set_suite.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::EntityCase;
using testing::EntitySuite;
using testing::ErrorOf;
using testing::ExpectEvents;
using testing::FlagText;
using testing::NameOfUse;
using testing::OtherKey;
using testing::RecordingServer;
using testing::Row;
using testing::SetCase;
using testing::SetSuite;
using testing::StateText;
using testing::TypedAndByName;
using testing::ViewOn;
using enum testing::Zero;

constexpr const char* kInfo = "QDSVGLMCLedger.MultiColumnLedgerInfo";
constexpr const char* kUpdate = "QDSVGLMCLedger.MColLedgerUpdate";

// ---- What ledgers share with all entities and sets ----

EntityCase MultiLedgerCase() {
  EntityCase ledger = testing::EntityCaseOf(&MultiLedger::LedgerID, &MultiLedger::LedgerName,
                                            {.info_component = kInfo,
                                             .update_component = kUpdate,
                                             .id_member = "LedgerID",
                                             .id_key = "FLedgerID",
                                             .text_member = "LedgerName",
                                             .text_key = "FLedgerName",
                                             .track_state = {.construct = 1},
                                             .stamps = false});
  ledger.by_name.construct = ledger.typed.construct;  // callers can't
  return ledger;
}

SetCase MultiLedgerSetCase() {
  SetCase ledgers = testing::SetCaseOf<MultiLedgerSet>(
      MultiLedgerCase(), {.get_detail = "GetDetail(\"props\", <id>, ref True, ref <filter>)",
                          .exists_by_text = "",
                          .exists_of_nothing = "error 5",
                          .remove = "Delete(\"props\", ref <id>)",
                          .item_key = OtherKey::kNone,
                          .remove_key = OtherKey::kNone,
                          .get_next = "error 13"});
  ledgers.typed.existence_check = [](EntityListBase& set, const Variant& id, const Variant&) {
    return static_cast<MultiLedgerSet&>(set).ExistenceCheck(id);
  };
  ledgers.by_name.existence_check = [](EntityListBase& set, const Variant& id, const Variant&) {
    return set.Call("ExistenceCheck", id).As<Long>();
  };
  return ledgers;
}

INSTANTIATE_TEST_SUITE_P(MultiLedger, EntitySuite, TypedAndByName(MultiLedgerCase()), NameOfUse());
INSTANTIATE_TEST_SUITE_P(MultiLedgerSet, SetSuite, TypedAndByName(MultiLedgerSetCase()),
                         NameOfUse());

// ---- The members ----

#define READ_ONLY(Type, Name, key) testing::ReadOnlyColumn<Type>(#Name, key, &MultiLedger::Name)
#define COLUMN(Type, Name, key) \
  testing::WritableColumn<Type>(#Name, key, &MultiLedger::Name, &MultiLedger::Name, kIsStored)

std::vector<Column<MultiLedger>> Columns() {
  return {
      COLUMN(Long, AccountID, "FAccountID"),
      READ_ONLY(String, AccountName, "FAccountName"),
      READ_ONLY(String, AccountNumber, "FAccountNumber"),
      COLUMN(String, LedgerName, "FLedgerName"),
  };
}

#undef COLUMN
#undef READ_ONLY

class MultiLedgerTest : public ::testing::Test {
 protected:
  MultiLedgerTest() { server.Answer(kInfo, "GetDetail", Nothing); }

  // A row with one column and one sub-column.
  static Ref<Dictionary> Stored(const Variant& name = "Stored") {
    auto columns = Make<Vector>();
    columns->Append(Variant(Row({{"FColumnID", Long{1}}, {"FDC", Long{1}}})));
    auto sub_columns = Make<Vector>();
    sub_columns->Append(Variant(Row({{"FCurrencyID", Long{2}}})));
    return Row({{"FLedgerID", Long{5}},
                {"FLedgerName", name},
                {"_Columns", Variant(columns)},
                {"_SubColumns", Variant(sub_columns)}});
  }
  // Everything that one can see of a ledger, with its tree of flags.
  static std::string State(const MultiLedger& ledger) {
    return "id " + std::to_string(ledger.LedgerID()) + " " +
           StateText(Variant(ledger.Properties()->Dictionary())) +
           (ledger.Properties()->Modified() ? " modified " : " ") +
           FlagText(*ledger.Properties()->ChangeFlag());
  }

  RecordingServer server;
};

constexpr const char* kStored =
    "id 5 {FLedgerID: 5, FLedgerName: \"Stored\", _Columns: [{FColumnID: 1, FDC: 1}], "
    "_SubColumns: [{FCurrencyID: 2}]}";

TEST_F(MultiLedgerTest, HasItsMembersInInterfaceOrderAndIsMadeByItsSetAlone) {
  EXPECT_EQ(testing::MemberNames<MultiLedger>(),
            "CancelChanges Refresh SaveChanges AccountID AccountName AccountNumber Columns "
            "LedgerID LedgerName Properties SubColumns");
  ASSERT_NE(MultiLedger::Table().default_member(), nullptr);
  EXPECT_EQ(MultiLedger::Table().default_member()->row.name, "Properties");
  EXPECT_FALSE(MultiLedger::Table().creatable());
  EXPECT_FALSE(MultiLedger::Table().takes_context());
  const auto ledger = ViewOn<MultiLedger>(Row({}));
  EXPECT_EQ(ErrorOf([&] { ledger->Call("Construct", Nothing, Nothing); }),
            "error 438 (MultiLedger): No member Construct.");
}

TEST_F(MultiLedgerTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(MultiLedgerTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(MultiLedgerTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST_F(MultiLedgerTest, StoresZerosAndEmptyTexts) { testing::ExpectWritesOfZero(Columns()); }

TEST_F(MultiLedgerTest, RefusesALetOfAnotherType) { testing::ExpectRefusedLets(Columns()); }

TEST_F(MultiLedgerTest, RaisesNinetyOneUntilItIsConstructed) {
  testing::ExpectUnusable(Columns());
  EXPECT_EQ(ErrorOf([] { Make<MultiLedger>()->Columns(); }), "error 91");
  EXPECT_EQ(ErrorOf([] { Make<MultiLedger>()->SubColumns(); }), "error 91");
}

TEST_F(MultiLedgerTest, AWriteOfTheAccountLeavesItsNameAndNumberUntilRefresh) {
  const auto ledger = ViewOn<MultiLedger>(
      Row({{"FLedgerID", Long{5}}, {"FAccountID", Long{1}}, {"FAccountNumber", "1000"}}));
  ledger->AccountID(2);
  EXPECT_EQ(State(*ledger),
            "id 5 {FLedgerID: 5, FAccountID: 2, FAccountNumber: \"1000\"} modified *");
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FAccountNumber", "2000"}})));
  ledger->Refresh();
  EXPECT_EQ(ledger->AccountNumber(), "2000");
}

// ---- The columns ----

TEST_F(MultiLedgerTest, ColumnsAreViewsOfTheRowWithTheFlagOfTheirKey) {
  const auto ledger = ViewOn<MultiLedger>(Stored());
  const auto columns = ledger->Columns();
  EXPECT_NE(ledger->Columns(), columns);
  EXPECT_EQ(State(*ledger), std::string(kStored) + " -[-]") << "reads are no edits";
  columns->Item(1)->DC(0);
  EXPECT_EQ(ledger->Columns()->Item(1)->DC(), 0);
  EXPECT_TRUE(ledger->Columns()->Modified());
  EXPECT_FALSE(ledger->SubColumns()->Modified());
  ledger->Get("SubColumns").As<MultiSubColumnSet>()->Item(1)->SerialNo(4);
  EXPECT_EQ(State(*ledger),
            "id 5 {FLedgerID: 5, FLedgerName: \"Stored\", _Columns: [{FColumnID: 1, FDC: 0}], "
            "_SubColumns: [{FCurrencyID: 2, FSerialNo: 4}]} modified +[+[*] +[*]]");
}

TEST_F(MultiLedgerTest, TheFirstReadOfColumnsThatAreNotThereMakesThemAndALedgerToSave) {
  const auto ledger = ViewOn<MultiLedger>(Row({{"FLedgerID", Long{5}}}));
  EXPECT_EQ(ledger->Columns()->Count(), 0);
  EXPECT_EQ(State(*ledger), "id 5 {FLedgerID: 5, _Columns: []} modified -[-]");
  EXPECT_EQ(ledger->SubColumns()->Count(), 0);
  EXPECT_EQ(State(*ledger), "id 5 {FLedgerID: 5, _Columns: [], _SubColumns: []} modified -[- -]");
  ledger->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLMCLedger.MColLedgerUpdate\n"
            "call Update(\"props\", ref 5, {FLedgerID: 5, _Columns: [], _SubColumns: []})\n"
            "create QDSVGLMCLedger.MultiColumnLedgerInfo\n"
            "call GetDetail(\"props\", ref 5) -> Nothing\n");
}

TEST_F(MultiLedgerTest, NothingNullAndEmptyTextAreColumnsThatAreNotThere) {
  for (const Variant& stored : {Variant(Nothing), Variant(Null), Variant(""), Variant()}) {
    const auto ledger = ViewOn<MultiLedger>(Row({{"_Columns", stored}}));
    EXPECT_EQ(ledger->Columns()->Count(), 0) << StateText(stored);
    EXPECT_EQ(State(*ledger), "id 0 {_Columns: []} modified -[-]");
  }
  for (const Variant& stored : {Variant("text"), Variant(Long{1}), Variant(Row({}))}) {
    const auto ledger = ViewOn<MultiLedger>(Row({{"_Columns", stored}}));
    EXPECT_EQ(ErrorOf([&] { ledger->Columns(); }), "error 13") << StateText(stored);
  }
}

TEST_F(MultiLedgerTest, AListThatIsMadeBeginsAtOne) {
  const auto ledger = ViewOn<MultiLedger>(Row({}));
  ledger->Columns();
  EXPECT_EQ(ledger->Properties()->Dictionary()->Value("_Columns").As<Vector>()->LowerBound(), 1);
}

TEST_F(MultiLedgerTest, AnEditOfAColumnAloneIsSavedAndEveryFailureLeavesIt) {
  server.AnswerWith(kInfo, "GetDetail",
                    [](std::span<Argument>) { return Variant(Stored("Read again")); });
  const std::string sent =
      "{FLedgerID: 5, FLedgerName: \"Stored\", _Columns: [{FColumnID: 1, FDC: 0}], _SubColumns: "
      "[{FCurrencyID: 2}]}";
  const std::string edited = "id 5 " + sent + " modified +[+[*]]";
  const std::string read =
      "{FLedgerID: 5, FLedgerName: \"Read again\", _Columns: [{FColumnID: 1, FDC: 1}], "
      "_SubColumns: [{FCurrencyID: 2}]}";
  const auto make = [](bool reloaded) {
    const auto ledger = ViewOn<MultiLedger>(Stored());
    if (reloaded) ledger->CancelChanges();
    ledger->Columns()->Item(1)->DC(0);
    return ledger;
  };
  for (const bool reloaded : {false, true}) {
    ExpectEvents(
        server, [&] { return make(reloaded); }, [](MultiLedger& ledger) { ledger.SaveChanges(); },
        {{std::string("create ") + kUpdate, "", edited},
         {"call Update(\"props\", ref 5, " + sent + ")", "", edited},
         {std::string("create ") + kInfo, "", edited},
         {"call GetDetail(\"props\", ref 5)", " -> " + read, edited}},
        "id 5 " + read + " -", [](const MultiLedger& ledger) { return State(ledger); });
  }
}

TEST_F(MultiLedgerTest, EveryWayToChangeTheListsAloneIsSaved) {
  const std::pair<const char*, std::function<void(MultiLedger&)>> edits[] = {
      {"a column", [](MultiLedger& ledger) { ledger.Columns()->Item(1)->ColumnName("x"); }},
      {"a sub-column", [](MultiLedger& ledger) { ledger.SubColumns()->Item(1)->SerialNo(9); }},
      {"Add", [](MultiLedger& ledger) { ledger.Columns()->Add(); }},
      {"Remove", [](MultiLedger& ledger) { ledger.SubColumns()->Remove(1); }},
      {"Count", [](MultiLedger& ledger) { ledger.Columns()->Count(3); }},
      {"a walk", [](MultiLedger& ledger) {
         for (auto& column : ledger.Columns()) column.DC(0);
       }}};
  for (const auto& [what, edit] : edits) {
    const auto ledger = ViewOn<MultiLedger>(Stored());
    edit(*ledger);
    ledger->SaveChanges();
    EXPECT_NE(server.TakeLog().find("call Update"), std::string::npos) << what;
  }
  const auto ledger = ViewOn<MultiLedger>(Stored());
  ledger->Columns()->Count(1);
  ledger->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "") << "a flag alone is nothing to save";
}

// A view that binds itself to a row begins that row's record of edits anew.
TEST_F(MultiLedgerTest, AnEditIsSavedWhoeverLooksAtItsColumnAgain) {
  const std::pair<const char*, std::function<void(MultiLedger&)>> looks[] = {
      {"nobody", [](MultiLedger&) {}},
      {"Item", [](MultiLedger& ledger) { ledger.Columns()->Item(1); }},
      {"the same list",
       [list = Ref<MultiColumnSet>()](MultiLedger& ledger) mutable {
         list = ledger.Columns();
         list->Item(1);
         list->Item(1);
       }},
      {"a walk",
       [](MultiLedger& ledger) {
         for (auto& column : ledger.Columns()) column.DC();
       }},
      {"another list", [](MultiLedger& ledger) { ledger.SubColumns()->Item(1); }},
      {"a sort that moves nothing", [](MultiLedger& ledger) { ledger.Columns()->SortByDC(); }}};
  for (const auto& [who, look] : looks) {
    const auto ledger = ViewOn<MultiLedger>(Stored());
    ledger->Columns()->Item(1)->DC(0);
    look(*ledger);
    ledger->SaveChanges();
    EXPECT_NE(server.TakeLog().find("_Columns: [{FColumnID: 1, FDC: 0}]"), std::string::npos)
        << who;
  }
}

TEST_F(MultiLedgerTest, ASortIsSavedWhereItMoves) {
  const auto row = Stored();
  row->Value("_Columns").As<Vector>()->Append(Variant(Row({{"FDC", Long{1}}})));
  const auto ledger = ViewOn<MultiLedger>(row);
  ledger->Columns()->SortByDC();
  ledger->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "");
  ledger->Columns()->Item(1)->DC(0);
  ledger->Columns()->SortByDC();
  EXPECT_EQ(State(*ledger),
            "id 5 {FLedgerID: 5, FLedgerName: \"Stored\", _Columns: [{FDC: 1}, {FColumnID: 1, FDC: "
            "0}], _SubColumns: [{FCurrencyID: 2}]} modified +[+[*]]");
}

TEST_F(MultiLedgerTest, ColumnsTakenBeforeCancelChangesStayWithTheAbandonedCopy) {
  const auto ledger = ViewOn<MultiLedger>(Stored());
  const auto before = ledger->Columns();
  ledger->CancelChanges();
  before->Item(1)->DC(0);
  before->Add();
  EXPECT_EQ(State(*ledger), std::string(kStored) + " -");
  EXPECT_TRUE(before->Modified());
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(MultiLedgerTest, CancelChangesAndRefreshOfANewOneMakeAnEmptyBagAndNothing) {
  const auto ledger = Make<MultiLedgerSet>()->CreateNew("New");
  ledger->Columns()->Add();
  ledger->Refresh();
  EXPECT_EQ(State(*ledger), "id 0 {FLedgerName: \"New\", _Columns: [{}]} modified *[*]");
  EXPECT_EQ(ledger->AccountID(), 0);
  EXPECT_EQ(ledger->AccountNumber(), "");
  ledger->CancelChanges();
  EXPECT_EQ(State(*ledger), "id 0 {} -");
  EXPECT_EQ(server.TakeLog(), "");
}

// ---- The set ----

class MultiLedgerSetTest : public ::testing::Test {
 protected:
  RecordingServer server;
  Ref<MultiLedgerSet> ledgers = Make<MultiLedgerSet>();
};

TEST_F(MultiLedgerSetTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<MultiLedgerSet>(),
            "ListOptions Filter Sort m_ViewDisable CreateNew ExistenceCheck GetCurrent GetNext "
            "NewEnum Refresh Remove Count Item RecordSet");
  EXPECT_TRUE(MultiLedgerSet::Table().takes_context());
}

TEST_F(MultiLedgerSetTest, ItemSendsTheViewSwitchAndTheFilterByReferenceAndKeepsWhatComesBack) {
  EXPECT_TRUE(ledgers->m_ViewDisable());
  ledgers->Filter("f");
  server.AnswerWith(kInfo, "GetDetail", [](std::span<Argument> arguments) {
    arguments[2].Put(Variant(false));
    arguments[3].Put(Variant("back"));
    return Variant(Row({{"FLedgerID", Long{5}}}));
  });
  EXPECT_EQ(ledgers->Item(Long{5})->LedgerID(), 5);
  EXPECT_FALSE(ledgers->m_ViewDisable());
  EXPECT_EQ(ledgers->Filter(), "back");
  ledgers->Let("m_ViewDisable", true);
  ledgers->Get("Item", 5);
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLMCLedger.MultiColumnLedgerInfo\n"
            "call GetDetail(\"props\", 5, ref True, ref \"f\") -> {FLedgerID: 5}\n"
            "create QDSVGLMCLedger.MultiColumnLedgerInfo\n"
            "call GetDetail(\"props\", 5, ref True, ref \"back\") -> {FLedgerID: 5}\n");
}

TEST_F(MultiLedgerSetTest, CreateNewTakesANameOfAnyKind) {
  EXPECT_EQ(testing::State(*ledgers->CreateNew("Costs")),
            "{FLedgerName: \"Costs\"} modified flagged");
  EXPECT_EQ(testing::State(*ledgers->CreateNew(Long{7})), "{FLedgerName: \"7\"} modified flagged");
  EXPECT_EQ(ErrorOf([&] { ledgers->CreateNew(Null); }), "error 13");
  EXPECT_EQ(testing::State(*ledgers->Call("CreateNew", Named("Name", "x")).As<MultiLedger>()),
            "{FLedgerName: \"x\"} modified flagged");
}

TEST_F(MultiLedgerSetTest, ALedgerOfTheListHasTheColumnsOfItsRow) {
  auto list = Recordset::Create({"FLedgerID", "_Columns"});
  auto columns = Make<Vector>();
  columns->Append(Variant(Row({{"FDC", Long{1}}})));
  list->AddRow({Long{1}, Variant(columns)});
  list->AddRow({Long{2}, Null});
  ledgers->RecordSet(list);
  std::string counts;
  for (auto& ledger : *ledgers) counts += std::to_string(ledger.Columns()->Count()) + " ";
  EXPECT_EQ(counts, "1 0 ");
  ledgers->GetCurrent()->Columns()->Item(1)->DC(0);
  EXPECT_EQ(ledgers->GetCurrent()->Columns()->Item(1)->DC(), 1);
}

TEST_F(MultiLedgerSetTest, AWalkByGetCurrentAndMoveNextReachesEveryLedgerAsGetNextStands) {
  auto list = Recordset::Create({"FLedgerID"});
  for (const Long id : {1, 2}) list->AddRow({id});
  ledgers->RecordSet(list);
  std::string met;
  for (; !list->Eof(); list->MoveNext()) {
    met += std::to_string(ledgers->GetCurrent()->LedgerID());
    EXPECT_EQ(ErrorOf([&] { ledgers->GetNext(); }), "error 13");
    met += std::to_string(ledgers->GetCurrent()->LedgerID());
  }
  EXPECT_EQ(met, "1122");
  EXPECT_EQ(ErrorOf([&] { ledgers->GetNext(); }), "error 5");
}

}  // namespace
}  // namespace qdclgl
