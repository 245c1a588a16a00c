#include "qdclgl/masterdata/measure_unit.h"

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
using testing::NameOfUse;
using testing::Opaque;
using testing::ReadOnlyColumn;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;
using testing::TypedAndByName;
using testing::WithDefault;
using testing::WritableColumn;
using enum testing::Zero;

constexpr const char* kInfo = "QDSVGLUnit.MeasureUnitInfo";
constexpr const char* kUpdate = "QDSVGLUnit.MeasureUnitUpdate";

#define COLUMN(Type, Name, key) \
  WritableColumn<Type>(#Name, key, &MeasureUnit::Name, &MeasureUnit::Name, kIsStored)

// The members that read and write one key.
std::vector<Column<MeasureUnit>> Columns() {
  return {
      COLUMN(String, AuxClass, "FAuxClass"),
      WithDefault(COLUMN(Double, Coefficient, "FCoefficient"), 1.0, 2.25),
      WithDefault(COLUMN(Long, Conversation, "FConversation"), Long{1}, Long{7}),
      ReadOnlyColumn<Boolean>("Deleted", "FDeleted", &MeasureUnit::Deleted),
      COLUMN(String, Name, "FName"),
      COLUMN(String, Number, "FNumber"),
      COLUMN(Long, Precision, "FPrecision"),
      COLUMN(Long, Standard, "FStandard"),
      COLUMN(Long, UnitGroupID, "FUnitGroupID"),
      COLUMN(String, UUID, "UUID"),
  };
}

#undef COLUMN

Ref<MeasureUnit> UnitOf(const Ref<Dictionary>& row) { return testing::ViewOn<MeasureUnit>(row); }

std::string State(const MeasureUnit& unit) {
  return "id " + std::to_string(unit.MeasureUnitID()) + " " +
         testing::State(static_cast<const RowView&>(unit));
}
std::string State(const Ref<MeasureUnit>& unit) { return unit ? State(*unit) : "Nothing"; }

// ---- What units share with all entities ----

EntityCase MeasureUnitCase() {
  return EntityCaseOf(&MeasureUnit::MeasureUnitID, &MeasureUnit::Name,
                      {.info_component = kInfo,
                       .update_component = kUpdate,
                       .id_member = "MeasureUnitID",
                       .id_key = "FMeasureUnitID",
                       .text_member = "Name",
                       .text_key = "FName",
                       .get_detail = "GetUnitDetail(\"props\", ref <id>)",
                       .create = "CreateUnit(\"props\", 0, <row>)",
                       .update = "UpdateUnit(\"props\", ref <id>, <row>)",
                       .stamps_before_component = true});
}

INSTANTIATE_TEST_SUITE_P(MeasureUnit, EntitySuite, TypedAndByName(MeasureUnitCase()), NameOfUse());

class MeasureUnitTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

TEST_F(MeasureUnitTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<MeasureUnit>(),
            "CancelChanges Construct Refresh SaveChanges AuxClass Coefficient Conversation Deleted "
            "MeasureUnitID Modified Name Number Precision Properties Standard UnitGroupID UUID");
}

TEST_F(MeasureUnitTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }
TEST_F(MeasureUnitTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }
TEST_F(MeasureUnitTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }
TEST_F(MeasureUnitTest, StoresTheDefaultSinceNoMemberHasAClearValue) {
  testing::ExpectWritesOfZero(Columns());
}
TEST_F(MeasureUnitTest, RefusesALetOfAnotherTypeAndAnyLetOfAReadOnlyMember) {
  testing::ExpectRefusedLets(Columns());
}
TEST_F(MeasureUnitTest, AUnitThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  EXPECT_EQ(ErrorOf([&] { Make<MeasureUnit>()->Modified(); }), "error 91");
}

TEST_F(MeasureUnitTest, ANewUnitConvertsByOne) {
  const auto unit = UnitOf(Nothing);
  EXPECT_EQ(unit->Coefficient(), 1);
  EXPECT_EQ(unit->Conversation(), 1);
  EXPECT_FALSE(unit->Modified());
  EXPECT_EQ(State(unit), "id 0 {}");
}

TEST_F(MeasureUnitTest, TheAuxiliaryClassIsTrimmedOnBothWaysAndTheNumberKeepsItsCase) {
  const auto unit = UnitOf(Row({{"FAuxClass", " box "}}));
  EXPECT_EQ(unit->AuxClass(), "box");
  EXPECT_EQ(State(unit), "id 0 {FAuxClass: \" box \"}");
  unit->AuxClass("  a b ");
  unit->Let("Number", "ab");
  EXPECT_EQ(unit->Number(), "ab");
  EXPECT_EQ(State(unit), "id 0 {FAuxClass: \"a b\", FNumber: \"ab\"} modified flagged");
}

TEST_F(MeasureUnitTest, ACoefficientThatDoesNotSurviveItsTextIsRefusedAndNoOther) {
  const auto unit = UnitOf(Row({{"FCoefficient", 12.0}}));
  for (const double value : {1.0 / 3, 0.1 + 0.2, 1e15 + 0.3}) {
    EXPECT_EQ(ErrorOf([&] { unit->Coefficient(value); }), "error 0x80044150") << value;
    EXPECT_EQ(ErrorOf([&] { unit->Let("Coefficient", value); }), "error 0x80044150") << value;
    EXPECT_EQ(State(unit), "id 0 {FCoefficient: 12#}");
  }
  for (const double value : {0.0, -1.5, 0.001, 1e15, 1e300}) {
    unit->Coefficient(value);
    EXPECT_EQ(unit->Coefficient(), value);
  }
}

TEST_F(MeasureUnitTest, ModifiedTellsOfTheRowAndNotOfTheFlag) {
  const auto unit = UnitOf(Row({{"FName", "piece"}}));
  EXPECT_FALSE(unit->Modified());
  unit->Properties()->Dictionary()->Put("FName", "box");
  EXPECT_TRUE(unit->Modified());
  EXPECT_EQ(StateText(unit->Get("Modified")), "True");
  unit->CancelChanges();
  unit->Properties()->ChangeFlag()->Modified(true);
  EXPECT_FALSE(unit->Modified());
  EXPECT_EQ(ErrorOf([&] { unit->Let("Modified", true); }),
            "error 438 (MeasureUnit): The member Modified can't be used this way.");
}

TEST_F(MeasureUnitTest, ANewUnitIsCreatedInItsGroup) {
  const auto unit = UnitOf(Nothing);
  unit->UnitGroupID(7);
  server.Answer(kUpdate, "CreateUnit", Long{12});
  server.Answer(kInfo, "GetUnitDetail", Variant(Row({{"FMeasureUnitID", Long{12}}})));
  unit->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLUnit.MeasureUnitUpdate\n"
            "call CreateUnit(\"props\", 7, {FUnitGroupID: 7, MachineName: \"HOST\", IPAddress: "
            "\"10.0.0.1\"}) -> 12\n"
            "create QDSVGLUnit.MeasureUnitInfo\n"
            "call GetUnitDetail(\"props\", ref 12) -> {FMeasureUnitID: 12}\n");
  EXPECT_EQ(State(unit), "id 12 {FMeasureUnitID: 12}");
}

// ---- The set ----

class MeasureUnitSetTest : public ::testing::Test {
 protected:
  static Ref<Recordset> Rows(std::initializer_list<std::array<Variant, 3>> rows) {
    auto list = Recordset::Create({"FMeasureUnitID", "FNumber", "FName"});
    for (const auto& row : rows) list->AddRow({row[0], row[1], row[2]});
    return list;
  }
  // Three units of group 7: 5, 12 and 9.
  void KnowUnits() {
    server.AnswerWith(kInfo, "GetUnitList", [](std::span<Argument>) {
      return Variant(Rows({{Long{5}, "pc", "piece"}, {Long{12}, "bx", "box"}, {Long{9}, "", ""}}));
    });
  }
  Ref<MeasureUnitSet> Fetched() {
    KnowUnits();
    auto set = Make<MeasureUnitSet>();
    set->UnitGroupID(7);
    set->Refresh();
    server.TakeLog();
    return set;
  }
  // The ids in order, as the set's own enumerator gives them.
  static std::string Ids(MeasureUnitSet& set) {
    std::string ids;
    for (auto& unit : set) ids += std::to_string(unit.MeasureUnitID()) + " ";
    return ids;
  }
  // What the set holds, "none" before the first Refresh.
  static std::string StateOf(MeasureUnitSet& set) {
    std::string state;
    const std::string error = ErrorOf([&] { state = Ids(set); });
    return (error == "error 91" ? "none" : state) + " of " + std::to_string(set.UnitGroupID()) +
           " by \"" + set.Filter() + "\"" + (set.ShowDeleted() ? " with deleted" : "");
  }

  RecordingServer server;
  Ref<MeasureUnitSet> units = Make<MeasureUnitSet>();
};

constexpr const char* kListed =
    " -> recordset{FMeasureUnitID, FNumber, FName | 5, \"pc\", \"piece\" | 12, \"bx\", \"box\" | "
    "9, \"\", \"\"}";

TEST_F(MeasureUnitSetTest, HasItsMembersInInterfaceOrderWithItemForTheObject) {
  EXPECT_EQ(testing::MemberNames<MeasureUnitSet>(),
            "ShowDeleted Filter Append CreateNew ExistenceCheck Find GetUnit NewEnum Refresh "
            "Remove Count Item UnitGroupID");
  EXPECT_EQ(units->Members()->default_member()->row.name, "Item");
}

TEST_F(MeasureUnitSetTest, RefreshWritesShowDeletedAndFillsTheCollectionAnew) {
  KnowUnits();
  testing::ExpectEvents(
      server,
      [] {
        auto set = Make<MeasureUnitSet>();
        set->ShowDeleted(true);
        set->Filter("f");
        set->UnitGroupID(7);
        return set;
      },
      [](MeasureUnitSet& set) { set.Refresh(); },
      {{"create QDSVGLUnit.MeasureUnitInfo", "", "none of 7 by \"f\" with deleted"},
       {"let ShowDeleted(True)", "", "none of 7 by \"f\" with deleted"},
       {"call GetUnitList(\"props\", ref 7, ref \"f\")", kListed,
        "none of 7 by \"f\" with deleted"}},
      "5 12 9  of 7 by \"f\" with deleted", StateOf);
}

TEST_F(MeasureUnitSetTest, AFailedRefreshLeavesTheFormerCollection) {
  testing::ExpectEvents(
      server,
      [&] {
        auto set = Fetched();
        server.Answer(kInfo, "GetUnitList", Variant(Rows({{Long{1}, "", ""}})));
        return set;
      },
      [](MeasureUnitSet& set) { set.Call("Refresh"); },
      {{"create QDSVGLUnit.MeasureUnitInfo", "", "5 12 9  of 7 by \"\""},
       {"let ShowDeleted(False)", "", "5 12 9  of 7 by \"\""},
       {"call GetUnitList(\"props\", ref 7, ref \"\")",
        " -> recordset{FMeasureUnitID, FNumber, FName | 1, \"\", \"\"}", "5 12 9  of 7 by \"\""}},
      "1  of 7 by \"\"", StateOf);
}

TEST_F(MeasureUnitSetTest, RefreshReadsFromTheCursorOnAndKeepsWhatTheServerWritesBack) {
  server.AnswerWith(kInfo, "GetUnitList", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{8}));
    arguments[2].Put(Variant("back"));
    auto list = Rows({{Long{5}, "", ""}, {Long{6}, "", ""}});
    list->MoveNext();
    return Variant(list);
  });
  units->Refresh();
  EXPECT_EQ(StateOf(*units), "6  of 8 by \"back\"");
}

TEST_F(MeasureUnitSetTest, ARowThatCannotBeAUnitLeavesThoseBeforeIt) {
  server.Answer(kInfo, "GetUnitList",
                Variant(Rows({{Long{5}, "", ""}, {"six", "", ""}, {Long{7}, "", ""}})));
  EXPECT_EQ(ErrorOf([&] { units->Refresh(); }), "error 13");
  EXPECT_EQ(Ids(*units), "5 ");
  server.Answer(kInfo, "GetUnitList", Variant(Rows({{Long{5}, "", ""}, {Long{5}, "", ""}})));
  EXPECT_EQ(ErrorOf([&] { units->Refresh(); }), "error 457");
  server.Answer(kInfo, "GetUnitList", Nothing);
  EXPECT_EQ(ErrorOf([&] { units->Refresh(); }), "error 91");
  EXPECT_EQ(Ids(*units), "5 ");
}

TEST_F(MeasureUnitSetTest, BeforeTheFirstRefreshTheCollectionIsNotSetAndItemGivesNothing) {
  EXPECT_EQ(ErrorOf([&] { units->Count(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { units->NewEnum(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { units->Find("pc"); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { units->Remove(1); }), "error 91");
  EXPECT_EQ(units->Item(1), nullptr);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLUnit.MeasureUnitUpdate\n") << "of Remove";
  Ref<MeasureUnit> saved = UnitOf(Row({{"FMeasureUnitID", Long{5}}}));
  EXPECT_EQ(ErrorOf([&] { units->Append(saved); }), "error 91");
}

TEST_F(MeasureUnitSetTest, TheUnitsAreLiveObjectsThatAllReadersShare) {
  const auto set = Fetched();
  set->Item(1)->Name("edited");
  EXPECT_EQ(set->Item(0, 5)->Name(), "edited");
  EXPECT_EQ(set->Find("nobody", "edited")->MeasureUnitID(), 5);
  EXPECT_EQ(set->begin()->Name(), "edited");
  const Ref<MeasureUnit> held = set->Item(1);
  set->Refresh();
  EXPECT_EQ(set->Item(1)->Name(), "piece");
  EXPECT_EQ(held->Name(), "edited") << "an object handed out before belongs to the former list";
  EXPECT_NE(set->Item(1), held);
}

TEST_F(MeasureUnitSetTest, ItemGivesAPositionOrAnIdAndNothingWithoutAMatch) {
  const auto set = Fetched();
  EXPECT_EQ(set->Item(3)->MeasureUnitID(), 9);
  EXPECT_EQ(set->Item(0, 12)->MeasureUnitID(), 12);
  EXPECT_EQ(set->Item(2, 5)->MeasureUnitID(), 12) << "the position goes first";
  for (const Long index : {99, 4, -1}) EXPECT_EQ(set->Item(index), nullptr) << index;
  EXPECT_EQ(set->Item(0, 3), nullptr) << "an id is no position";
  EXPECT_EQ(set->Item(), nullptr);
  EXPECT_TRUE(set->Get("Item", Long{99}).IsNothing());
  EXPECT_EQ(set->Get("Item", Named("MeasureUnitID", Long{12})).As<MeasureUnit>(), set->Item(2));
  EXPECT_EQ(ErrorOf([&] { set->Get("Item", "K5"); }), "error 13");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(MeasureUnitSetTest, TheCollectionsOwnEnumeratorWalksTheUnitsThemselves) {
  const auto set = Fetched();
  EXPECT_EQ(set->Count(), 3);
  const Ref<Enumerator> enumerator = set->NewEnum();
  Variant unit;
  EXPECT_TRUE(enumerator->Skip(1));
  EXPECT_TRUE(enumerator->Next(unit));
  EXPECT_EQ(unit.As<MeasureUnit>(), set->Item(2));
  Ref<MeasureUnit> added = UnitOf(Row({{"FMeasureUnitID", Long{20}}, {"FUnitGroupID", Long{7}}}));
  set->Append(added);
  EXPECT_TRUE(enumerator->Skip(1));
  EXPECT_TRUE(enumerator->Next(unit)) << "one that is added on the way is met";
  EXPECT_EQ(unit.As<MeasureUnit>(), added);
  set->Refresh();
  enumerator->Reset();
  EXPECT_TRUE(enumerator->Next(unit));
  EXPECT_NE(unit.As<MeasureUnit>(), set->Item(1)) << "it goes on over the former collection";
}

TEST_F(MeasureUnitSetTest, CreateNewMakesAnUnsavedUnitOfTheGroupOutsideTheCollection) {
  const auto set = Fetched();
  EXPECT_EQ(State(set->CreateNew()), "id 0 {FUnitGroupID: 7} modified flagged");
  EXPECT_EQ(Ids(*set), "5 12 9 ");
  EXPECT_EQ(State(Make<MeasureUnitSet>()->CreateNew()), "id 0 {FUnitGroupID: 0} modified flagged");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(MeasureUnitSetTest, AppendSavesANewUnitAndAddsItUnderItsNewId) {
  server.Answer(kUpdate, "CreateUnit", Long{12});
  server.Answer(kInfo, "GetUnitDetail",
                Variant(Row({{"FMeasureUnitID", Long{20}}, {"FUnitGroupID", Long{7}}})));
  server.Answer(kUpdate, "CreateUnit", Long{20});
  testing::ExpectEvents(
      server, [&] { return Fetched(); },
      [](MeasureUnitSet& set) {
        Ref<MeasureUnit> unit = set.CreateNew();
        const Ref<MeasureUnit> same = unit;
        set.Append(unit);
        EXPECT_EQ(unit, same);
        EXPECT_EQ(set.Item(0, 20), same);
      },
      {{"create QDSVGLUnit.MeasureUnitUpdate", "", "5 12 9  of 7 by \"\""},
       {"call CreateUnit(\"props\", 7, {FUnitGroupID: 7, MachineName: \"HOST\", IPAddress: "
        "\"10.0.0.1\"})",
        " -> 20", "5 12 9  of 7 by \"\""},
       {"create QDSVGLUnit.MeasureUnitInfo", "", "5 12 9  of 7 by \"\""},
       {"call GetUnitDetail(\"props\", ref 20)", " -> {FMeasureUnitID: 20, FUnitGroupID: 7}",
        "5 12 9  of 7 by \"\""}},
      "5 12 9 20  of 7 by \"\"", StateOf);
}

TEST_F(MeasureUnitSetTest, AppendRefusesAUnitOfAnotherGroupAndOneThatIsThere) {
  const auto set = Fetched();
  Ref<MeasureUnit> foreign = UnitOf(Row({{"FUnitGroupID", Long{8}}}));
  foreign->Name("x");
  EXPECT_EQ(ErrorOf([&] { set->Append(foreign); }), "error 13");
  Ref<MeasureUnit> known = UnitOf(Row({{"FMeasureUnitID", Long{5}}, {"FUnitGroupID", Long{7}}}));
  EXPECT_EQ(ErrorOf([&] { set->Append(known); }), "error 457");
  Ref<MeasureUnit> none;
  EXPECT_EQ(ErrorOf([&] { set->Append(none); }), "error 91");
  EXPECT_EQ(Ids(*set), "5 12 9 ");
  EXPECT_EQ(server.TakeLog(), "") << "a saved unit is not saved again";
}

TEST_F(MeasureUnitSetTest, AppendGivesTheObjectBackToALateBoundCallersVariable) {
  const auto set = Fetched();
  const auto unit = UnitOf(Row({{"FMeasureUnitID", Long{20}}, {"FUnitGroupID", Long{7}}}));
  Variant variable{Ref<Object>(unit)};
  set->Call("Append", ByRef(variable));
  EXPECT_EQ(variable.As<MeasureUnit>(), unit);
  EXPECT_EQ(set->Item(4), unit);
}

TEST_F(MeasureUnitSetTest, FindTakesTheFirstUnitOfThatNumberOrThatNameWithCase) {
  const auto set = Fetched();
  EXPECT_EQ(State(set->Find("bx", "nobody")),
            "id 12 {FMeasureUnitID: 12, FNumber: \"bx\", FName: \"box\"}");
  EXPECT_EQ(set->Find("bx", "piece")->MeasureUnitID(), 5) << "the first in order";
  EXPECT_EQ(set->Find("BX", "Box"), nullptr);
  EXPECT_EQ(set->Find("bx ", " box"), nullptr);
  EXPECT_EQ(set->Call("Find", Named("UnitName", "nobody")).As<MeasureUnit>()->MeasureUnitID(), 9)
      << "a number left out is an empty one";
  EXPECT_EQ(set->Call("Find", "nobody").As<MeasureUnit>()->MeasureUnitID(), 9);
  EXPECT_TRUE(set->Call("Find", "x", "y").IsNothing());
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(MeasureUnitSetTest, FindMeetsAUnitWithoutANumberBeforeOneOfThatName) {
  server.Answer(kInfo, "GetUnitList", Variant(Rows({{Long{1}, "", "a"}, {Long{2}, "n", "b"}})));
  units->Refresh();
  EXPECT_EQ(units->Find("", "b")->MeasureUnitID(), 1);
}

TEST_F(MeasureUnitSetTest, GetUnitReadsAUnitOfAnyGroupAndLeavesTheCollection) {
  server.Answer(kInfo, "GetUnitDetail",
                Variant(Row({{"FMeasureUnitID", Long{77}}, {"FUnitGroupID", Long{8}}})));
  Ref<MeasureUnit> unit;
  testing::ExpectEvents(
      server, [&] { return Fetched(); }, [&](MeasureUnitSet& set) { unit = set.GetUnit(77); },
      {{"create QDSVGLUnit.MeasureUnitInfo", "", "5 12 9  of 7 by \"\""},
       {"call GetUnitDetail(\"props\", ref 77)", " -> {FMeasureUnitID: 77, FUnitGroupID: 8}",
        "5 12 9  of 7 by \"\""}},
      "5 12 9  of 7 by \"\"", StateOf);
  EXPECT_EQ(State(unit), "id 77 {FMeasureUnitID: 77, FUnitGroupID: 8}");
}

TEST_F(MeasureUnitSetTest, ExistenceCheckAsksTheWritingComponentAndGivesItsAnswerAsItIs) {
  for (const Variant& answer : {Variant(Long{5}), Variant("five"), Variant(Null), Variant()}) {
    server.Answer(kUpdate, "UnitExistenceCheck", answer);
    EXPECT_EQ(StateText(units->ExistenceCheck(5)), StateText(answer));
    const std::string tail = answer.IsEmpty() ? "" : " -> " + StateText(answer);
    EXPECT_EQ(server.TakeLog(), "create QDSVGLUnit.MeasureUnitUpdate\n"
                                "call UnitExistenceCheck(\"props\", ref 5)" +
                                    tail + "\n");
  }
  EXPECT_EQ(ErrorOf([&] { units->Call("ExistenceCheck", "x"); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { units->Call("ExistenceCheck"); }), "error 449");
}

TEST_F(MeasureUnitSetTest, RemoveDeletesWhatItemGivesAndTakesItOutAtOnce) {
  const auto remove = [&](Long index, Long id, const char* gone, const char* left) {
    testing::ExpectEvents(
        server, [&] { return Fetched(); }, [&](MeasureUnitSet& set) { set.Remove(index, id); },
        {{"create QDSVGLUnit.MeasureUnitUpdate", "", "5 12 9  of 7 by \"\""},
         {std::string("call DeleteUnit(\"props\", ") + gone + ", \"HOST\", \"10.0.0.1\")", "",
          "5 12 9  of 7 by \"\""}},
        std::string(left) + " of 7 by \"\"", StateOf);
  };
  remove(1, 0, "5", "12 9 ");
  remove(0, 12, "12", "5 9 ");
  remove(3, 5, "9", "5 12 ");
}

TEST_F(MeasureUnitSetTest, RemoveOfNoUnitRaisesObjectNotSetBehindMakingTheComponent) {
  const auto set = Fetched();
  EXPECT_EQ(ErrorOf([&] { set->Remove(99); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { set->Call("Remove", Long{0}, Long{77}); }), "error 91");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLUnit.MeasureUnitUpdate\ncreate QDSVGLUnit.MeasureUnitUpdate\n");
  EXPECT_EQ(Ids(*set), "5 12 9 ");
}

TEST_F(MeasureUnitSetTest, TheTransactionContextGoesToEveryUnitMade) {
  const auto context = Make<Opaque>();
  const auto set = Fetched();
  set->SetTransactionContext(context);
  EXPECT_EQ(context->holders(), 2);
  set->Refresh();
  EXPECT_EQ(context->holders(), 5);
  server.Answer(kInfo, "GetUnitDetail", Variant(Row({{"FMeasureUnitID", Long{5}}})));
  const auto created = set->CreateNew();
  const auto read = set->GetUnit(5);
  EXPECT_EQ(context->holders(), 7);
  set->SetTransactionContext(Nothing);
  EXPECT_EQ(context->holders(), 6);
}

}  // namespace
}  // namespace qdclgl
