#include "qdclgl/masterdata/sub_mes.h"

#include <gtest/gtest.h>

#include "tests/support/columns.h"
#include "tests/support/entity_suite.h"
#include "tests/support/recording_server.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::EntityCase;
using testing::EntityCaseOf;
using testing::EntitySuite;
using testing::ErrorOf;
using testing::Event;
using testing::NameOfUse;
using testing::Opaque;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;
using testing::TypedAndByName;
using testing::WritableColumn;
using enum testing::Zero;

constexpr const char* kInfo = "QDSVGLItem.ItemInfo";
constexpr const char* kUpdate = "QDSVGLItem.ItemUpdate";

#define COLUMN(Type, Name, key) \
  WritableColumn<Type>(#Name, key, &SubMes::Name, &SubMes::Name, kIsStored)

// The members that read and write one key.
std::vector<Column<SubMes>> Columns() {
  return {
      COLUMN(Double, AgioRatio, "FAgioRatio"),
      COLUMN(Double, Coefficient, "FCoefficient"),
      COLUMN(String, Name, "FName"),
      COLUMN(String, FullName, "FFullName"),
      COLUMN(String, Number, "FNumber"),
      COLUMN(Long, sDay, "FDay"),
      COLUMN(String, Spec, "FSpec"),
      COLUMN(Long, TypeID, "FTypeID"),
      COLUMN(String, UUID, "UUID"),
  };
}

#undef COLUMN

std::string State(const SubMes& entry) {
  return "id " + std::to_string(entry.ItemID()) + " " +
         testing::State(static_cast<const RowView&>(entry));
}
std::string State(const Ref<Object>& entry) { return State(dynamic_cast<SubMes&>(*entry)); }

// ---- What entries share with all entities ----

EntityCase SubMesCase() {
  return EntityCaseOf(&SubMes::ItemID, &SubMes::Name,
                      {.info_component = kInfo,
                       .update_component = kUpdate,
                       .id_member = "ItemID",
                       .id_key = "FItemID",
                       .text_member = "Name",
                       .text_key = "FName",
                       .get_detail = "GetSubMesDetail(\"props\", ref <id>, 0)",
                       .create = "CreateSubMes(\"props\", 0, <row>)",
                       .update = "UpdateSubMes(\"props\", ref <id>, <row>, 0)"});
}

INSTANTIATE_TEST_SUITE_P(SubMes, EntitySuite, TypedAndByName(SubMesCase()), NameOfUse());

class SubMesTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

TEST_F(SubMesTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<SubMes>(),
            "CancelChanges Construct Refresh SaveChanges AgioRatio Coefficient ItemID Modified "
            "Name FullName Number Properties sDay Spec TypeID UUID");
}

TEST_F(SubMesTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }
TEST_F(SubMesTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }
TEST_F(SubMesTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }
TEST_F(SubMesTest, StoresTheDefaultSinceNoMemberHasAClearValue) {
  testing::ExpectWritesOfZero(Columns());
}
TEST_F(SubMesTest, RefusesALetOfAnotherTypeAndAnyLetOfAReadOnlyMember) {
  testing::ExpectRefusedLets(Columns());
}
TEST_F(SubMesTest, AnEntryThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  EXPECT_EQ(ErrorOf([&] { Make<SubMes>()->Modified(); }), "error 91");
}

TEST_F(SubMesTest, ModifiedTellsOfTheRowAndNotOfTheFlag) {
  const auto entry = testing::ViewOn<SubMes>(Row({{"FName", "a"}}));
  EXPECT_FALSE(entry->Modified());
  entry->Properties()->Dictionary()->Put("FName", "b");
  EXPECT_EQ(StateText(entry->Get("Modified")), "True");
  entry->CancelChanges();
  entry->Properties()->ChangeFlag()->Modified(true);
  EXPECT_FALSE(entry->Modified());
}

TEST_F(SubMesTest, EveryCallOfASaveTellsTheTypeInItsPlace) {
  const auto entry = testing::ViewOn<SubMes>(Row({{"FTypeID", Long{30}}}));
  server.Answer(kUpdate, "CreateSubMes", Long{8});
  server.Answer(kInfo, "GetSubMesDetail",
                Variant(Row({{"FItemID", Long{8}}, {"FTypeID", Long{31}}})));
  entry->sDay(3);
  entry->SaveChanges();
  entry->sDay(4);
  entry->SaveChanges();
  const std::string stamps = ", MachineName: \"HOST\", IPAddress: \"10.0.0.1\"}";
  EXPECT_EQ(server.TakeLog(), "create QDSVGLItem.ItemUpdate\n"
                              "call CreateSubMes(\"props\", 30, {FTypeID: 30, FDay: 3" +
                                  stamps +
                                  ") -> 8\n"
                                  "create QDSVGLItem.ItemInfo\n"
                                  "call GetSubMesDetail(\"props\", ref 8, 30) -> {FItemID: 8, "
                                  "FTypeID: 31}\n"
                                  "create QDSVGLItem.ItemUpdate\n"
                                  "call UpdateSubMes(\"props\", ref 8, {FItemID: 8, FTypeID: 31, "
                                  "FDay: 4" +
                                  stamps +
                                  ", 31)\n"
                                  "create QDSVGLItem.ItemInfo\n"
                                  "call GetSubMesDetail(\"props\", ref 8, 31) -> {FItemID: 8, "
                                  "FTypeID: 31}\n");
}

// ---- The set ----

class SubMesSetTest : public ::testing::Test {
 protected:
  SubMesSetTest() {
    server.AnswerWith(kInfo, "GetSubMesList", [](std::span<Argument>) { return Variant(List()); });
    server.Answer(kInfo, "GetSubMesDetail", Variant(Row({{"FItemID", Long{6}}})));
    server.Answer(kInfo, "GetSubMesDetailByNumber", Variant(Row({{"FItemID", Long{7}}})));
  }
  static Ref<Recordset> List() {
    auto list = Recordset::Create({"FItemID", "FNumber"});
    list->AddRow({Long{1}, "a"});
    list->AddRow({Long{2}, "b"});
    return list;
  }
  static Ref<SubMesSet> OfType(Long type) {
    auto set = Make<SubMesSet>();
    set->TypeID(type);
    return set;
  }
  // The fields and where the list's cursor stands.
  static std::string StateOf(SubMesSet& set) {
    const Ref<Recordset> list = set.RecordSet();
    const std::string cursor = !list         ? "none"
                               : list->Eof() ? "at the end"
                                             : "at " + StateText(list->FieldValue(0));
    return cursor + " of " + std::to_string(set.TypeID()) + " by " +
           std::to_string(set.ListOptions()) + " \"" + set.Filter() + "\" \"" + set.Sort() + "\"";
  }
  void ExpectCalls(const std::function<void(SubMesSet&)>& operate, const std::vector<Event>& events,
                   const std::string& behind) {
    testing::ExpectEvents(
        server, [] { return OfType(30); }, operate, events, behind, StateOf);
  }

  RecordingServer server;
  const std::string unfetched = "none of 30 by 0 \"\" \"\"";
  const std::string listed = " -> recordset{FItemID, FNumber | 1, \"a\" | 2, \"b\"}";
};

TEST_F(SubMesSetTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<SubMesSet>(),
            "ListOptions Filter Sort TypeID CreateNew ExistenceCheck GetCurrent GetNext NewEnum "
            "Refresh Remove Count Item RecordSet");
  EXPECT_EQ(Make<SubMesSet>()->Members()->default_member(), nullptr);
}

TEST_F(SubMesSetTest, EveryUseOfTheListFetchesItWithAllFieldsAndPassesAFailureAtEachEvent) {
  const std::string call = "call GetSubMesList(\"props\", ref 30, ref 0, ref \"\", ref \"\")";
  const std::vector<Event> fetch = {{"create QDSVGLItem.ItemInfo", "", unfetched},
                                    {call, listed, unfetched}};
  const std::string at_first = "at 1 of 30 by 0 \"\" \"\"";
  ExpectCalls([](SubMesSet& set) { set.Refresh(); }, fetch, at_first);
  ExpectCalls([](SubMesSet& set) { set.Call("Refresh"); }, fetch, at_first);
  ExpectCalls([](SubMesSet& set) { EXPECT_EQ(set.Count(), 2); }, fetch, at_first);
  ExpectCalls([](SubMesSet& set) { set.GetCurrent(); }, fetch, at_first);
  ExpectCalls([](SubMesSet& set) { set.GetNext(); }, fetch, "at 2 of 30 by 0 \"\" \"\"");
  ExpectCalls([](SubMesSet& set) { set.NewEnum(); }, fetch, at_first);
}

TEST_F(SubMesSetTest, TheFieldsGoByReferenceWithTheNextRefresh) {
  server.AnswerWith(kInfo, "GetSubMesList", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{31}));
    arguments[2].Put(Variant(Long{9}));
    arguments[3].Put(Variant("f back"));
    arguments[4].Put(Variant("s back"));
    return Variant(List());
  });
  const auto set = OfType(30);
  set->ListOptions(4);
  set->Filter("f");
  set->Sort("s");
  set->Refresh();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLItem.ItemInfo\n"
                              "call GetSubMesList(\"props\", ref 30, ref 4, ref \"f\", ref \"s\")" +
                                  listed + "\n");
  EXPECT_EQ(StateOf(*set), "at 1 of 31 by 9 \"f back\" \"s back\"");
}

TEST_F(SubMesSetTest, TheCursorAndTheWalkGiveAnEntryForEachRow) {
  const auto set = OfType(30);
  EXPECT_EQ(State(set->GetCurrent()), "id 1 {FItemID: 1, FNumber: \"a\"}");
  EXPECT_EQ(State(set->GetNext()), "id 1 {FItemID: 1, FNumber: \"a\"}");
  EXPECT_EQ(State(set->Call("GetCurrent").As<Object>()), "id 2 {FItemID: 2, FNumber: \"b\"}");
  std::string walked;
  for (auto& entry : *set) walked += entry.Number();
  EXPECT_EQ(walked, "ab");
  set->GetNext();
  EXPECT_EQ(ErrorOf([&] { set->GetCurrent(); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { set->GetNext(); }), "error 5");
}

TEST_F(SubMesSetTest, CreateNewFillsTheRowThatCancelChangesGoesBackTo) {
  const auto set = OfType(30);
  const auto only_type = set->CreateNew(5);
  EXPECT_EQ(State(only_type), "id 0 {FTypeID: 5}");
  EXPECT_EQ(StateText(only_type->Get("Number")), "\"\"");
  EXPECT_EQ(State(set->CreateNew(5, Long{7}, "x")),
            "id 0 {FTypeID: 5, FNumber: \"7\", FName: \"x\"}");
  const auto named = set->Call("CreateNew", Long{5}, Named("Name", "x")).As<Object>();
  named->Let("Name", "y");
  named->Call("CancelChanges");
  EXPECT_EQ(State(named), "id 0 {FTypeID: 5, FName: \"x\"}");
  EXPECT_EQ(ErrorOf([&] { set->CreateNew(0, "n"); }), "error 0x80044104");
  EXPECT_EQ(ErrorOf([&] { set->Call("CreateNew"); }), "error 449");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(SubMesSetTest, ExistenceCheckSearchesAListOfItsOwnForTheNumber) {
  Long found = 0;
  ExpectCalls([&](SubMesSet& set) { found = set.ExistenceCheck(Long{7}, "b"); },
              {{"create QDSVGLItem.ItemInfo", "", unfetched},
               {"call GetSubMesList(\"props\", ref Variant 7)", listed, unfetched}},
              unfetched);
  EXPECT_EQ(found, 2);
  const auto set = OfType(30);
  set->GetNext();
  EXPECT_EQ(set->ExistenceCheck("7", "nobody"), 0);
  EXPECT_EQ(StateOf(*set), "at 2 of 30 by 0 \"\" \"\"") << "its own list and cursor stay";
  EXPECT_EQ(ErrorOf([&] { set->ExistenceCheck(Long{7}, "O'Neil"); }),
            "error 3001 (Recordset): The criterion \" FNumber = 'O'Neil'\" needs its end at "
            "position 15.");
  EXPECT_EQ(ErrorOf([&] { set->Call("ExistenceCheck", Long{7}); }), "error 449");
  server.Answer(kInfo, "GetSubMesList", Variant(Recordset::Create({"FItemID"})));
  EXPECT_EQ(set->ExistenceCheck(Long{7}, "O'Neil"), 0) << "an empty list is not searched";
}

TEST_F(SubMesSetTest, ItemGoesByTheIdFirst) {
  ExpectCalls([](SubMesSet& set) { EXPECT_EQ(State(set.Item(6)), "id 6 {FItemID: 6}"); },
              {{"create QDSVGLItem.ItemInfo", "", unfetched},
               {"call GetSubMesDetail(\"props\", ref 6, ref 0)", " -> {FItemID: 6}", unfetched}},
              unfetched);
  OfType(30)->Item(6, 5, "n");
  EXPECT_EQ(server.TakeLog(), "create QDSVGLItem.ItemInfo\n"
                              "call GetSubMesDetail(\"props\", ref 6, ref 5) -> {FItemID: 6}\n");
}

TEST_F(SubMesSetTest, ItemGoesByANumberInTheTypeGivenOrTheSetsOwn) {
  const auto by_number = [&](Long given, const std::string& type) {
    ExpectCalls(
        [&](SubMesSet& set) { EXPECT_EQ(State(set.Item(0, given, "n")), "id 7 {FItemID: 7}"); },
        {{"create QDSVGLItem.ItemInfo", "", unfetched},
         {"call GetSubMesDetailByNumber(\"props\", ref " + type + ", ref \"n\")",
          " -> {FItemID: 7}", unfetched}},
        unfetched);
  };
  by_number(5, "5");
  by_number(0, "30");
  EXPECT_EQ(State(OfType(30)->Get("Item", Named("Number", "n")).As<Object>()), "id 7 {FItemID: 7}");
}

TEST_F(SubMesSetTest, ItemWithoutATypeIsRefusedBeforeItsNumberIsLookedAt) {
  EXPECT_EQ(ErrorOf([&] { OfType(0)->Item(0, 0, "n"); }), "error 0x80044104");
  EXPECT_EQ(ErrorOf([&] { OfType(0)->Item(); }), "error 0x80044104");
  EXPECT_EQ(ErrorOf([&] { OfType(30)->Item(); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { OfType(0)->Item(0, 5); }), "error 5");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(SubMesSetTest, RemoveHandsItsArgumentsOnAndKeepsTheList) {
  testing::ExpectEvents(
      server,
      [&] {
        auto set = OfType(30);
        set->GetNext();
        return set;
      },
      [](SubMesSet& set) { set.Remove(6); },
      {{"create QDSVGLItem.ItemUpdate", "", "at 2 of 30 by 0 \"\" \"\""},
       {"call DeleteSubMes(\"props\", ref 6, ref 0, \"HOST\", \"10.0.0.1\")", "",
        "at 2 of 30 by 0 \"\" \"\""}},
      "at 2 of 30 by 0 \"\" \"\"", StateOf);
  OfType(30)->Call("Remove", Long{0}, Long{5});
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLItem.ItemUpdate\n"
            "call DeleteSubMes(\"props\", ref 0, ref 5, \"HOST\", \"10.0.0.1\")\n");
}

TEST_F(SubMesSetTest, RecordSetFetchesAClosedListAgainAndNoMissingOne) {
  const auto set = OfType(30);
  EXPECT_EQ(set->RecordSet(), nullptr);
  EXPECT_EQ(server.TakeLog(), "");
  const auto own = List();
  set->RecordSet(own);
  EXPECT_EQ(set->RecordSet(), own);
  EXPECT_EQ(server.TakeLog(), "");
  own->Close();
  const Ref<Recordset> fetched = set->Get("RecordSet").As<Recordset>();
  EXPECT_NE(fetched, own);
  EXPECT_EQ(fetched->RecordCount(), 2);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLItem.ItemInfo\n"
                              "call GetSubMesList(\"props\", ref 30, ref 0, ref \"\", ref \"\")" +
                                  listed + "\n");
  set->Set("RecordSet", Nothing);
  EXPECT_EQ(set->RecordSet(), nullptr);
}

TEST_F(SubMesSetTest, TheTransactionContextGoesToEveryEntryMade) {
  const auto context = Make<Opaque>();
  const auto set = OfType(30);
  set->SetTransactionContext(context);
  const auto created = set->CreateNew(5);
  const auto current = set->GetCurrent();
  const auto read = set->Item(6);
  EXPECT_EQ(context->holders(), 5);
}

}  // namespace
}  // namespace qdclgl
