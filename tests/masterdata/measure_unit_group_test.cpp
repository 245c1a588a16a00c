#include "qdclgl/masterdata/measure_unit_group.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/columns.h"
#include "tests/support/failing_events.h"
#include "tests/support/family.h"
#include "tests/support/recording_server.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;

constexpr const char* kInfo = "QDSVGLUnit.MeasureUnitInfo";

// "5 Pieces, unit 7 piece"
std::string State(const MeasureUnitGroup& group) {
  return std::to_string(group.GroupID()) + " " + group.Name() + ", unit " +
         std::to_string(group.DefaultUnitID()) + " " + group.DefaultUnit();
}

class MeasureUnitGroupTest : public ::testing::Test {
 protected:
  static Ref<MeasureUnitGroup> Group() {
    auto group = Make<MeasureUnitGroup>();
    group->Construct(Nothing, 5, "Pieces", 7, "piece");
    return group;
  }

  RecordingServer server;
};

TEST_F(MeasureUnitGroupTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<MeasureUnitGroup>(),
            "AdjustCoefficient CancelChanges Construct ExistenceCheck GetDefaultUnit Refresh "
            "SaveChanges SetDefaultUnit DefaultUnit DefaultUnitID GroupID Name UUID");
}

TEST_F(MeasureUnitGroupTest, ConstructTakesTheDefaultUnitAsTextANullAsAnEmptyOne) {
  EXPECT_EQ(State(*Group()), "5 Pieces, unit 7 piece");
  const auto group = Make<MeasureUnitGroup>();
  group->Construct(Nothing);
  EXPECT_EQ(State(*group), "0 , unit 0 ");
  group->Construct(Nothing, 5, "Pieces", 7, Null);
  EXPECT_EQ(State(*group), "5 Pieces, unit 7 ");
  group->Construct(Nothing, 5, "Pieces", 7, Long{12});
  EXPECT_EQ(State(*group), "5 Pieces, unit 7 12");
  group->Call("Construct", Nothing, Named("DefaultUnit", "box"));
  EXPECT_EQ(State(*group), "0 , unit 0 box");
}

TEST_F(MeasureUnitGroupTest, AValueThatIsNoTextLeavesTheGroupAsItWas) {
  const auto group = Group();
  EXPECT_EQ(ErrorOf([&] { group->Construct(Nothing, 6, "x", 8, Variant(Row({}))); }),
            "error 438 (Dictionary): The object has no default value.");
  EXPECT_EQ(State(*group), "5 Pieces, unit 7 piece");
}

TEST_F(MeasureUnitGroupTest, RefreshReadsNameAndDefaultUnit) {
  const auto group = Group();
  server.Answer(kInfo, "GetUnitGroupDetail",
                Variant(Row({{"FUnitGroupID", Long{6}},
                             {"FName", "Weights"},
                             {"FDefaultUnitID", Long{9}},
                             {"FDefaultUnit", Null}})));
  group->Refresh();
  EXPECT_EQ(State(*group), "5 Weights, unit 9 ");
}

TEST_F(MeasureUnitGroupTest, AdjustCoefficientPassesFactorAndDirectionByReference) {
  const auto expect = [&](Double factor, Boolean division, const std::string& arguments) {
    testing::ExpectEvents(
        server, Group, [&](MeasureUnitGroup& group) { group.AdjustCoefficient(factor, division); },
        {{"create QDSVGLUnit.MeasureUnitUpdate", "", "5 Pieces, unit 7 piece"},
         {"call AdjustCoefficient(\"props\", ref 5, " + arguments + ")", "",
          "5 Pieces, unit 7 piece"}},
        "5 Pieces, unit 7 piece", State);
  };
  expect(2.5, false, "ref 2.5#, ref False");
  expect(1000, true, "ref 1000#, ref True");
  expect(-1, false, "ref -1#, ref False");
  Group()->Call("AdjustCoefficient", 3.0);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLUnit.MeasureUnitUpdate\n"
                              "call AdjustCoefficient(\"props\", ref 5, ref 3#, ref False)\n");
}

TEST_F(MeasureUnitGroupTest, AFactorOfOneMakesNoCallAndZeroOrOneBeyondItsTextIsRefused) {
  const auto group = Group();
  group->AdjustCoefficient(1);
  group->AdjustCoefficient(1, true);
  for (const double factor : {0.0, -0.0, 1.0 / 3, std::nextafter(1.0, 2.0)}) {
    EXPECT_EQ(ErrorOf([&] { group->AdjustCoefficient(factor); }), "error 0x80044150") << factor;
  }
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(MeasureUnitGroupTest, SetDefaultUnitTakesTheIdBehindTheCallAndLeavesTheName) {
  testing::ExpectEvents(
      server, Group, [](MeasureUnitGroup& group) { group.SetDefaultUnit(9); },
      {{"create QDSVGLUnit.MeasureUnitUpdate", "", "5 Pieces, unit 7 piece"},
       {"call SetDefaultMeasureUnit(\"props\", ref 5, ref 9)", "", "5 Pieces, unit 7 piece"}},
      "5 Pieces, unit 9 piece", State);
}

TEST_F(MeasureUnitGroupTest, ExistenceCheckAsksForAUnitByIdOrByName) {
  const auto group = Group();
  server.Answer(kInfo, "UnitExistenceCheck", "7");
  EXPECT_EQ(group->ExistenceCheck(9, "piece"), 7);
  EXPECT_EQ(group->ExistenceCheck(Missing, "piece"), 7);
  EXPECT_EQ(group->ExistenceCheck(), 0);
  EXPECT_EQ(StateText(group->Call("ExistenceCheck", Named("name", "box"))), "7");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLUnit.MeasureUnitInfo\n"
            "call UnitExistenceCheck(\"props\", ref Variant 9) -> \"7\"\n"
            "create QDSVGLUnit.MeasureUnitInfo\n"
            "call UnitExistenceCheck(\"props\", UnitName:=ref Variant \"piece\") -> \"7\"\n"
            "create QDSVGLUnit.MeasureUnitInfo\n"
            "create QDSVGLUnit.MeasureUnitInfo\n"
            "call UnitExistenceCheck(\"props\", UnitName:=ref Variant \"box\") -> \"7\"\n");
  server.FailAt(2, Error(70));
  EXPECT_EQ(ErrorOf([&] { group->ExistenceCheck(9); }), "error 70");
}

TEST_F(MeasureUnitGroupTest, GetDefaultUnitReadsTheUnitOnceTheServerKnowsIt) {
  server.Answer(kInfo, "UnitExistenceCheck", Long{7});
  server.Answer(kInfo, "GetUnitDetail",
                Variant(Row({{"FMeasureUnitID", Long{7}}, {"FName", "piece"}})));
  testing::ExpectEvents(
      server, Group,
      [](MeasureUnitGroup& group) {
        const Ref<MeasureUnit> unit = group.GetDefaultUnit();
        EXPECT_EQ(std::to_string(unit->MeasureUnitID()) + " " + unit->Name(), "7 piece");
      },
      {{"create QDSVGLUnit.MeasureUnitInfo", "", "5 Pieces, unit 7 piece"},
       {"call UnitExistenceCheck(\"props\", ref Variant 7)", " -> 7", "5 Pieces, unit 7 piece"},
       {"create QDSVGLUnit.MeasureUnitInfo", "", "5 Pieces, unit 7 piece"},
       {"call GetUnitDetail(\"props\", ref 7)", " -> {FMeasureUnitID: 7, FName: \"piece\"}",
        "5 Pieces, unit 7 piece"}},
      "5 Pieces, unit 7 piece", State);
}

TEST_F(MeasureUnitGroupTest, GetDefaultUnitOfNoneAsksForTheIdZeroAndGivesNothing) {
  server.Answer(kInfo, "UnitExistenceCheck", Long{0});
  const auto group = Make<MeasureUnitGroup>();
  EXPECT_EQ(group->GetDefaultUnit(), nullptr);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLUnit.MeasureUnitInfo\n"
                              "call UnitExistenceCheck(\"props\", ref Variant 0) -> 0\n");
}

TEST_F(MeasureUnitGroupTest, TheDefaultUnitGetsTheContextOfTheGroup) {
  server.Answer(kInfo, "UnitExistenceCheck", Long{7});
  server.Answer(kInfo, "GetUnitDetail", Variant(Row({{"FMeasureUnitID", Long{7}}})));
  const auto context = Make<testing::Opaque>();
  const auto group = Group();
  group->SetTransactionContext(context);
  const auto unit = group->GetDefaultUnit();
  EXPECT_EQ(context->holders(), 3);
}

// ---- The set ----

TEST_F(MeasureUnitGroupTest, TheSetHasItsMembersInInterfaceOrderWithItemForTheObject) {
  EXPECT_EQ(testing::MemberNames<MeasureUnitGroupSet>(),
            "CreateNew ExistenceCheck GetCurrent GetNext NewEnum Refresh Remove Count Item "
            "RecordSet UnitGroupID");
  EXPECT_EQ(Make<MeasureUnitGroupSet>()->Members()->default_member()->row.name, "Item");
}

TEST_F(MeasureUnitGroupTest, ARowOfTheListBecomesAGroupOfItsFourValues) {
  auto list = Recordset::Create({"FUnitGroupID", "FName", "FDefaultUnitID", "FDefaultUnit"});
  list->AddRow({Long{5}, "Pieces", Long{7}, Null});
  list->AddRow({"6", "Weights", Long{9}, "kg"});
  server.Answer(kInfo, "GetUnitGroupList", Variant(list));
  const auto set = Make<MeasureUnitGroupSet>();
  EXPECT_EQ(State(*set->GetCurrent()), "5 Pieces, unit 7 ");
  std::string walked;
  for (auto& group : *set) walked += State(group) + "; ";
  EXPECT_EQ(walked, "5 Pieces, unit 7 ; 6 Weights, unit 9 kg; ");
}

TEST_F(MeasureUnitGroupTest, TheGroupToListGoesByReferenceWithTheNextRefresh) {
  server.AnswerWith(kInfo, "GetUnitGroupList", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{9}));
    return Variant(Recordset::Create({"FUnitGroupID"}));
  });
  const auto set = Make<MeasureUnitGroupSet>();
  set->Let("UnitGroupID", Long{5});
  EXPECT_EQ(set->Count(), 0);
  EXPECT_EQ(set->UnitGroupID(), 9);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLUnit.MeasureUnitInfo\n"
                              "call GetUnitGroupList(\"props\", ref 5) -> "
                              "recordset{FUnitGroupID}\n");
}

TEST_F(MeasureUnitGroupTest, RemoveOfATextAsksForTheIdAndAnyOtherKeyOrTheIdZeroRaisesFive) {
  server.Answer(kInfo, "GetUnitGroupID", Long{5});
  const auto set = Make<MeasureUnitGroupSet>();
  set->RecordSet(Recordset::Create({"FUnitGroupID"}));
  server.Answer(kInfo, "GetUnitGroupList", Variant(set->RecordSet()));
  const auto held = [](MeasureUnitGroupSet& of) -> std::string {
    return of.RecordSet() ? "list" : "none";
  };
  testing::ExpectEvents(
      server,
      [&] {
        set->RecordSet(Recordset::Create({"FUnitGroupID"}));
        return set;
      },
      [](MeasureUnitGroupSet& of) { of.Remove("Pieces"); },
      {{"create QDSVGLUnit.MeasureUnitInfo", "", "list"},
       {"call GetUnitGroupID(\"props\", ref Variant \"Pieces\")", " -> 5", "list"},
       {"create QDSVGLUnit.MeasureUnitUpdate", "", "list"},
       {"call DeleteUnitGroup(\"props\", ref 5, \"HOST\", \"10.0.0.1\")", "", "list"},
       {"create QDSVGLUnit.MeasureUnitInfo", "", "none"},
       {"call GetUnitGroupList(\"props\", ref 0)", " -> recordset{FUnitGroupID}", "none"}},
      "list", held);

  server.Answer(kInfo, "GetUnitGroupID", Long{0});
  EXPECT_EQ(ErrorOf([&] { set->Remove("nobody"); }), "error 5");
  EXPECT_EQ(server.TakeLog(), "create QDSVGLUnit.MeasureUnitInfo\n"
                              "call GetUnitGroupID(\"props\", ref Variant \"nobody\") -> 0\n");
  std::vector<Variant> keys = testing::OtherKeys();
  keys.emplace_back(Long{0});
  for (const Variant& key : keys) {
    EXPECT_EQ(ErrorOf([&] { set->Remove(key); }), "error 5") << StateText(key);
  }
  EXPECT_EQ(server.TakeLog(), "");
}

}  // namespace
}  // namespace qdclgl
